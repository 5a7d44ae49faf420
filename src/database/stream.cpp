#include "qor/tools/database/stream.h"

#include <cstring>

#include "platform/memory_stream.h"

namespace qor::tools::database {

stream::stream(stream const &other) : ISequentialStream() { SetData(other.mData, other.mSize); }

stream &stream::operator=(stream const &other) {
    if (&other != this) SetData(other.mData, other.mSize);
    return *this;
}

stream::~stream() { CoTaskMemFree(mData); }

HRESULT stream::QueryInterface(REFIID riid, void **out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (riid == IID_IUnknown || riid == IID_ISequentialStream) {
        *out = static_cast<ISequentialStream *>(this);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

ULONG stream::Release() {
    ULONG n = --mCount;
    if (n == 0) delete this;
    return n;
}

HRESULT stream::Read(void *out, ULONG count, ULONG *done) {
    if (done) *done = 0;
    if (!out) return STG_E_INVALIDPOINTER;
    if (count == 0) return S_OK;
    if (mRead >= std::uint32_t(mSize)) return S_FALSE;
    std::uint32_t left = std::uint32_t(mSize) - mRead;
    std::uint32_t n = count < left ? count : left;
    std::memcpy(out, mData + mRead, n);
    mRead += n;
    if (done) *done = n;
    return n == count ? S_OK : S_FALSE;
}

HRESULT stream::Write(void const *data, ULONG count, ULONG *done) {
    if (done) *done = 0;
    if (!data) return STG_E_INVALIDPOINTER;
    if (count == 0) return S_OK;
    std::uint64_t end = std::uint64_t(mWrite) + count;
    if (end > 0x7FFFFFFF) return E_OUTOFMEMORY;
    if (std::int64_t(end) > mSize) {
        auto *grown = static_cast<unsigned char *>(CoTaskMemRealloc(mData, std::size_t(end)));
        if (!grown) {
            CoTaskMemFree(mData);
            mData = nullptr;
            mSize = 0;
            mRead = mWrite = 0;
            return E_OUTOFMEMORY;
        }
        mData = grown;
        mSize = std::int32_t(end);
    }
    std::memcpy(mData + mWrite, data, count);
    mWrite += count;
    if (done) *done = count;
    return STG_E_INVALIDPOINTER;
}

void stream::Alloc(int size) {
    Clear();
    mSize = size;
    if (size > 0) mData = static_cast<unsigned char *>(CoTaskMemAlloc(std::size_t(size)));
}

void stream::Clear() {
    CoTaskMemFree(mData);
    mData = nullptr;
    mSize = 0;
    mRead = mWrite = 0;
}

void stream::SetData(void const *data, int size) {
    if (data && data == mData) {
        Seek(0);  // its own bytes: nothing to copy
        return;
    }
    Alloc(size);
    if (data && size >= 1 && mData) std::memcpy(mData, data, std::size_t(size));
}

void stream::SetData(ISequentialStream *source, int size) {
    Alloc(size);
    if (source && size > 0 && mData) source->Read(mData, ULONG(size), nullptr);
}

int stream::GetData(void *out, int count, int start) const {
    if (!mData || std::uint32_t(start) >= std::uint32_t(mSize) || !out || count < 1) return 0;
    int n = mSize - start < count ? mSize - start : count;
    std::memcpy(out, mData, std::size_t(n));
    return n;
}

void stream::GetData(container::buffer &out) const {
    out.Size(mSize > 0 ? mSize : 0);
    if (mData && mSize > 0) std::memcpy(out.Data(), mData, std::size_t(mSize));
}

container::comptr<IStream> stream::MakeStream() const {
    container::comptr<IStream> result;
    if (!mData) return result;
    result.Attach(platform::CreateMemoryStream(mData, std::size_t(mSize)), false);
    return result;
}

}  // namespace qor::tools::database
