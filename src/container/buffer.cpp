#include "qor/tools/container/buffer.h"

#include <cstring>
#include <new>

#include "qor/tools/allocator.h"

namespace qor::tools::container::base {

namespace {

unsigned char *Allocate(int size) {
    if (size < 1) return nullptr;
    auto *block = static_cast<unsigned char *>(ArrayAlloc(std::size_t(size)));
    if (!block) throw std::bad_alloc();
    return block;
}

void CopyBytes(unsigned char *dst, void const *src, int n) noexcept {
    if (n > 0 && src) std::memcpy(dst, src, std::size_t(n));
}

int Clamp(int value, int low, int high) noexcept { return value < low ? low : value > high ? high : value; }

}  // namespace

buffer::buffer(int size, bool clear) {
    if (size > 0) Size(size, clear);
}

buffer::~buffer() { ArrayFree(mElement); }

void buffer::_Take(unsigned char *block, int size) noexcept {
    ArrayFree(mElement);
    mElement = block;
    mSize = size;
}

void buffer::Size(int size, bool clear) {
    if (size == mSize) return;
    unsigned char *block = Allocate(size);
    int kept = mSize < size ? mSize : size;
    if (block && kept > 0) CopyBytes(block, mElement, kept);
    if (block && clear && size > mSize) {
        int from = mSize > 0 ? mSize : 0;
        std::memset(block + from, 0, std::size_t(size - from));
    }
    _Take(block, size);
}

void buffer::Copy(void const *data, int size) {
    unsigned char *block = Allocate(size);
    CopyBytes(block, data, size);
    _Take(block, size < 1 ? 0 : size);
}

void buffer::Copy(buffer const *other) {
    if (other != this) Copy(other->mElement, other->mSize);
}

void buffer::Add(void const *data, int size) { Insert(mSize, data, size); }

void buffer::Add(buffer const *other) {
    if (other != this) Add(other->mElement, other->mSize);
}

void buffer::Insert(int pos, void const *data, int size) {
    int own = mSize > 0 ? mSize : 0;
    if (size < 0) size = 0;
    pos = Clamp(pos, 0, own);
    int total = own + size;
    unsigned char *block = Allocate(total);
    if (block) {
        CopyBytes(block, mElement, pos);
        CopyBytes(block + pos, data, size);
        CopyBytes(block + pos + size, mElement + pos, own - pos);
    }
    _Take(block, total);
}

void buffer::Insert(int pos, buffer const *other) {
    if (other != this) Insert(pos, other->mElement, other->mSize);
}

void buffer::Remove(int pos, int size) {
    int own = mSize > 0 ? mSize : 0;
    pos = Clamp(pos, 0, own);
    size = Clamp(size, 0, own - pos);
    int total = own - size;
    unsigned char *block = Allocate(total);
    if (block) {
        CopyBytes(block, mElement, pos);
        CopyBytes(block + pos, mElement + pos + size, own - pos - size);
    }
    _Take(block, total);
}

void buffer::Attach(unsigned char *data, int size) {
    if (data && data == mElement) {
        mSize = size;  // freeing the block it is handed again would leave it dangling
        return;
    }
    _Take(data, size);
}

void buffer::Release() { _Take(nullptr, 0); }

void buffer::Clear() {
    if (mElement && mSize > 0) std::memset(mElement, 0, std::size_t(mSize));
}

void buffer::Fill(unsigned char value) {
    if (mElement && mSize > 0) std::memset(mElement, value, std::size_t(mSize));
}

bool buffer::Compare(buffer const &other) const noexcept {
    if (mElement == other.mElement) return true;
    if (!mElement || !other.mElement || mSize != other.mSize) return false;
    return std::memcmp(mElement, other.mElement, std::size_t(mSize)) == 0;
}

}  // namespace qor::tools::container::base
