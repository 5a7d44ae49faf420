#include "qor/tools/align16.h"

#include <cstdint>
#include <cstring>
#include <new>

#include "qor/tools/allocator.h"

namespace qor::tools {

unsigned char *align16::Alloc(int size) {
    Release();
    mBlock = static_cast<unsigned char *>(ArrayAlloc(std::size_t(size < 0 ? 0 : size) + 16));
    if (!mBlock) throw std::bad_alloc();
    auto address = reinterpret_cast<std::uintptr_t>(mBlock);
    mData = address % 16 == 0 ? mBlock : reinterpret_cast<unsigned char *>((address & ~std::uintptr_t(15)) + 16);
    mSize = size;
    return mData;
}

void align16::Reference(unsigned char *data, int size) {
    Release();
    mData = data;
    mSize = size;
}

void align16::Release() {
    ArrayFree(mBlock);
    mBlock = nullptr;
    mData = nullptr;
    mSize = 0;
}

void align16::Clone(align16 const &other, bool copy) {
    unsigned char const *source = other.mData;
    int size = other.mSize;
    if (&other == this) return;
    Alloc(size);
    if (copy && source && size > 0) std::memcpy(mData, source, std::size_t(size));
}

void align16::Copy(align16 const &other) {
    if (mData && other.mData && mSize > 0) std::memcpy(mData, other.mData, std::size_t(mSize));
}

void align16::Copy(unsigned char *const data, int size) {
    if (mData && data && size > 0) std::memcpy(mData, data, std::size_t(size));
}

void align16::Clear() {
    if (mData && mSize > 0) std::memset(mData, 0, std::size_t(mSize));
}

}  // namespace qor::tools
