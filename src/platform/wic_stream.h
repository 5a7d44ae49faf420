// The imaging component's stream: a file written beside its target and put
// in its place on Finish (nothing changes at the target before), a file read
// whole, or a fixed block of the caller's memory.
#pragma once

#include <memory>
#include <string>

#include "com_object.h"
#include "file_io.h"
#include "qor/tools/platform/wincodec.h"

namespace qor::tools::platform::wic {

class stream final : public com_object<IWICStream, IStream, ISequentialStream> {
public:
    HRESULT Read(void *out, ULONG count, ULONG *done) override;
    HRESULT Write(void const *data, ULONG count, ULONG *done) override;
    HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t *position) override;
    HRESULT SetSize(std::uint64_t size) override;
    HRESULT Stat(std::uint64_t *size) override;
    HRESULT InitializeFromFilename(char16_t const *path, DWORD access) override;
    HRESULT InitializeFromMemory(BYTE *memory, DWORD size) override;

    // Puts a file being written in place of its target; true for other streams.
    bool Finish();

private:
    enum class kind { none, memory, read, write };
    kind mKind = kind::none;
    BYTE *mMemory = nullptr;  // memory: the caller's block
    std::size_t mCapacity = 0;
    std::string mBytes;  // read: the file; write: what was written
    std::size_t mSize = 0;
    std::size_t mPosition = 0;
    std::unique_ptr<replacement_file> mFile;
};

}  // namespace qor::tools::platform::wic
