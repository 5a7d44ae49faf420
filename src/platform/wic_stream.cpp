#include "wic_stream.h"

#include <cstring>

namespace qor::tools::platform::wic {

HRESULT stream::InitializeFromFilename(char16_t const *path, DWORD access) {
    if (mKind != kind::none) return WINCODEC_ERR_WRONGSTATE;
    if (!path) return E_INVALIDARG;
    if (access & GENERIC_WRITE) {
        auto file = std::make_unique<replacement_file>();
        if (!file->Open(path)) return E_ACCESSDENIED;
        mFile = std::move(file);
        mKind = kind::write;
        return S_OK;
    }
    if (!ReadFile(path, mBytes)) return HRESULT_FILE_NOT_FOUND;
    mSize = mBytes.size();
    mKind = kind::read;
    return S_OK;
}

HRESULT stream::InitializeFromMemory(BYTE *memory, DWORD size) {
    if (mKind != kind::none) return WINCODEC_ERR_WRONGSTATE;
    if (!memory) return E_INVALIDARG;
    mMemory = memory;
    mCapacity = size;
    mSize = size;
    mKind = kind::memory;
    return S_OK;
}

HRESULT stream::Read(void *out, ULONG count, ULONG *done) {
    if (done) *done = 0;
    if (!out) return STG_E_INVALIDPOINTER;
    if (mKind == kind::none || mKind == kind::write) return WINCODEC_ERR_WRONGSTATE;
    unsigned char const *data = mKind == kind::memory ? mMemory : reinterpret_cast<unsigned char const *>(mBytes.data());
    std::size_t n = mPosition < mSize ? std::min<std::size_t>(count, mSize - mPosition) : 0;
    if (n) std::memcpy(out, data + mPosition, n);
    mPosition += n;
    if (done) *done = ULONG(n);
    return n == count ? S_OK : S_FALSE;
}

// A file is written as it comes; seeking back in it is not offered.
HRESULT stream::Write(void const *data, ULONG count, ULONG *done) {
    if (done) *done = 0;
    if (!data) return STG_E_INVALIDPOINTER;
    switch (mKind) {
    case kind::memory:
        if (mPosition > mCapacity || count > mCapacity - mPosition) return STG_E_MEDIUMFULL;
        std::memcpy(mMemory + mPosition, data, count);
        break;
    case kind::write:
        if (!mFile->Write(data, count)) return STG_E_MEDIUMFULL;
        mSize += count;
        break;
    default: return WINCODEC_ERR_WRONGSTATE;
    }
    mPosition += count;
    if (done) *done = count;
    return S_OK;
}

HRESULT stream::Seek(std::int64_t move, DWORD origin, std::uint64_t *position) {
    std::int64_t base = origin == STREAM_SEEK_SET ? 0 : origin == STREAM_SEEK_CUR ? std::int64_t(mPosition)
                                                                                   : std::int64_t(mSize);
    if (origin > STREAM_SEEK_END) return E_INVALIDARG;
    std::int64_t to = base + move;
    if (to < 0) return E_INVALIDARG;
    if (mKind == kind::write && std::uint64_t(to) != mPosition) return E_NOTIMPL;
    mPosition = std::size_t(to);
    if (position) *position = mPosition;
    return S_OK;
}

HRESULT stream::SetSize(std::uint64_t) { return E_NOTIMPL; }

HRESULT stream::Stat(std::uint64_t *size) {
    if (!size) return E_INVALIDARG;
    *size = mSize;
    return S_OK;
}

bool stream::Finish() { return mKind != kind::write || mFile->Commit(); }

}  // namespace qor::tools::platform::wic
