#include "memory_stream.h"

#include <cstring>
#include <vector>

#include "com_object.h"

namespace qor::tools::platform {

namespace {

class memory_stream final : public com_object<IStream, ISequentialStream> {
public:
    memory_stream(void const *data, std::size_t size)
        : mBytes(static_cast<unsigned char const *>(data), static_cast<unsigned char const *>(data) + size) {}

    HRESULT Read(void *out, ULONG count, ULONG *done) override {
        if (done) *done = 0;
        if (!out) return STG_E_INVALIDPOINTER;
        std::size_t left = mPosition < mBytes.size() ? mBytes.size() - mPosition : 0;
        std::size_t n = count < left ? count : left;
        if (n) std::memcpy(out, mBytes.data() + mPosition, n);
        mPosition += n;
        if (done) *done = ULONG(n);
        return n == count ? S_OK : S_FALSE;
    }
    HRESULT Write(void const *data, ULONG count, ULONG *done) override {
        if (done) *done = 0;
        if (!data) return STG_E_INVALIDPOINTER;
        if (mPosition + count > mBytes.size()) mBytes.resize(mPosition + count);
        std::memcpy(mBytes.data() + mPosition, data, count);
        mPosition += count;
        if (done) *done = count;
        return S_OK;
    }
    HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t *position) override {
        std::int64_t base = origin == STREAM_SEEK_SET ? 0 : origin == STREAM_SEEK_CUR ? std::int64_t(mPosition)
                                                                                       : std::int64_t(mBytes.size());
        if (origin > STREAM_SEEK_END || base + move < 0) return E_INVALIDARG;
        mPosition = std::size_t(base + move);
        if (position) *position = mPosition;
        return S_OK;
    }
    HRESULT SetSize(std::uint64_t size) override {
        mBytes.resize(std::size_t(size));
        return S_OK;
    }
    HRESULT Stat(std::uint64_t *size) override {
        if (!size) return E_POINTER;
        *size = mBytes.size();
        return S_OK;
    }

private:
    std::vector<unsigned char> mBytes;
    std::size_t mPosition = 0;
};

}  // namespace

IStream *CreateMemoryStream(void const *data, std::size_t size) { return new memory_stream(data, size); }

}  // namespace qor::tools::platform
