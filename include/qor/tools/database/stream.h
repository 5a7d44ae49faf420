// database::stream: a memory stream written against ISequentialStream, with
// its own reference count and separate read and write positions. Blob columns
// hold one: the library drains a provider's stream into it on fetch, and the
// provider reads it back on write. `new stream` starts at count 1.
//
// Write reports STG_E_INVALIDPOINTER even when it stored every byte (as the
// original does): judge success by `*done`.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/container/buffer.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/platform/com.h"

namespace qor::tools::database {

class QOR_TOOLS_API stream : public ISequentialStream {
public:
    // An empty stream with a count of 1; a copy copies the bytes.
    stream() noexcept = default;
    stream(stream const &other);
    stream &operator=(stream const &other);
    virtual ~stream();

    // The interface's calls: the counts, and reads and writes at the stream's
    // own read and write positions (Write reports STG_E_INVALIDPOINTER even
    // on success: judge by `done`).
    HRESULT QueryInterface(REFIID riid, void **out) override;
    ULONG AddRef() override { return ++mCount; }
    ULONG Release() override;
    HRESULT Read(void *out, ULONG count, ULONG *done) override;
    HRESULT Write(void const *data, ULONG count, ULONG *done) override;

    // A zeroed block of `size` bytes; no bytes; both positions to `position`;
    // the bytes from memory, a buffer or `size` bytes read from a stream.
    void Alloc(int size);
    void Clear();
    void Seek(int position) noexcept { mRead = mWrite = std::uint32_t(position); }
    void SetData(void const *data, int size);
    void SetData(container::buffer const &data) { SetData(data.Data(), data.Size()); }
    void SetData(ISequentialStream *source, int size);
    // Copies the smaller of (size - start) and `count` bytes from the very
    // beginning of the data (start shortens the copy but does not move it).
    int GetData(void *out, int count, int start) const;
    void GetData(container::buffer &out) const;
    // An independent random-access stream over a copy of the bytes.
    container::comptr<IStream> MakeStream() const;

    // The size, the bytes, and whether there are none.
    int Size() const noexcept { return mSize; }
    unsigned char *Address() const noexcept { return mData; }
    bool IsEmpty() const noexcept { return !mData; }

private:
    std::uint32_t mCount = 1;
    unsigned char *mData = nullptr;
    std::int32_t mSize = 0;
    std::uint32_t mRead = 0;
    std::uint32_t mWrite = 0;
};

}  // namespace qor::tools::database
