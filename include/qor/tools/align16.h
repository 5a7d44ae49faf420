// align16: a byte block whose first byte lies on a 16-byte boundary, for pixel
// data that vector code reads. It owns its block (Alloc, Clone) or only refers
// to someone else's memory (the pointer constructor, Reference).
//
// Copies are member-wise: the copy points at the same memory and believes it
// owns it if the source did, so owners are not copied this way: Clone copies.
#pragma once

#include "qor/tools/export.h"

namespace qor::tools {

class QOR_TOOLS_API align16 {
public:
    // Empty; an owned block of `size` bytes; a view of `data`; a block of the
    // other's size (with its bytes when `copy`); a member-wise copy.
    align16() noexcept = default;
    explicit align16(int size) { Alloc(size); }
    align16(unsigned char *data, int size) noexcept : mSize(size), mData(data) {}
    align16(align16 const &other, bool copy) { Clone(other, copy); }
    align16(align16 const &) = default;
    align16 &operator=(align16 const &) = default;
    virtual ~align16() { Release(); }

    // Alloc owns a new aligned block of `size` bytes (the old one freed;
    // throws std::bad_alloc) and answers it; Reference refers to `data`;
    // Release frees what is owned and forgets the rest; Clone allocates the
    // other's size and copies its bytes when `copy`.
    unsigned char *Alloc(int size);
    void Reference(unsigned char *data, int size);
    void Release();
    void Clone(align16 const &other, bool copy);
    // Copy this block's size of bytes from the other block (or `size` bytes
    // from `data`) into this one; Clear zero-fills it.
    void Copy(align16 const &other);
    void Copy(unsigned char *const data, int size);
    void Clear();

    // Whether there is no block, its size, its first byte (aligned), and a
    // byte by index (not checked).
    bool IsEmpty() const noexcept { return !mData; }
    int Size() const noexcept { return mSize; }
    unsigned char *Data() const noexcept { return mData; }
    operator unsigned char *() const noexcept { return mData; }
    unsigned char &operator[](int i) const noexcept { return mData[i]; }
    unsigned char &operator[](long long i) const noexcept { return mData[i]; }

protected:
    unsigned char *mBlock = nullptr;
    int mSize = 0;
    unsigned char *mData = nullptr;
};

}  // namespace qor::tools
