// container::buffer: a handle on a shared block of bytes.
//
// Handles share one body and a change shows through all of them: a buffer is
// not copied on write (the reverse of string). Blocks fit exactly: every
// change of size allocates a new block of the new size from the module's
// array allocator. The body's reference mark is stored and reported but bytes
// are freed whether or not it is set.
//
//   buffer a(10, true);
//   buffer b = a;
//   b.Fill(1);           // seen through a
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/base.h"

namespace qor::tools::container {

namespace base {

// The body: the block, its size, the count of handles and the mark. The
// handle's operations below are these, reached through the body.
class QOR_TOOLS_API buffer : public _elem<unsigned char *, pif::array::_base> {
public:
    // A block of `size` bytes (none for 0), zero-filled when `clear`.
    explicit buffer(int size = 0, bool clear = false);
    // Member-wise: count, mark, pointer and size; the bytes are not copied.
    buffer(buffer const &) = default;
    buffer &operator=(buffer const &) = default;
    ~buffer() override;

    // Resizes to exactly `size` bytes, keeping the bytes that remain and
    // zero-filling the new ones when `clear`; Extend resizes by `delta`.
    void Size(int size, bool clear = false);
    void Extend(int delta, bool clear = false) { Size(delta + mSize, clear); }
    // The bytes become a copy of `data`, or have `data` added at the end, put
    // in at `pos` (clamped to the bytes there are), or `size` bytes from `pos`
    // taken out; each makes a new block of the exact new size.
    void Copy(void const *data, int size);
    void Copy(buffer const *other);
    void Add(void const *data, int size);
    void Add(buffer const *other);
    void Insert(int pos, void const *data, int size);
    void Insert(int pos, buffer const *other);
    void Remove(int pos, int size);
    // Frees the held bytes and takes `data` (from ArrayAlloc) as its own.
    void Attach(unsigned char *data, int size);
    void _Assign(unsigned char *data, int size) { Attach(data, size); }
    void Release();
    void Clear();
    void Fill(unsigned char value);

    // The size, a byte and its address (not checked), whether there is no
    // byte, and whether two bodies hold the same bytes.
    int Size() const noexcept { return mSize; }
    unsigned char &Get(int i) const noexcept { return mElement[i]; }
    unsigned char *Offset(int i) const noexcept { return mElement + i; }
    bool IsEmpty() const noexcept { return mSize == 0; }
    bool Compare(buffer const &other) const noexcept;

    int mSize = 0;  // bytes in the block

private:
    void _Take(unsigned char *block, int size) noexcept;
};

}  // namespace base

class QOR_TOOLS_API buffer : public base::_base<base::buffer> {
public:
    // A block of `size` bytes, zero-filled when `clear`.
    explicit buffer(int size = 0, bool clear = false) : base::_base<base::buffer>(new base::buffer(size, clear)) {}
    // A handle on a body made elsewhere, taking over the count it was made with.
    explicit buffer(base::buffer *body) noexcept : base::_base<base::buffer>(body) {}
    // Copies share the bytes.
    buffer(buffer const &other) noexcept : base::_base<base::buffer>(other) {}
    buffer &operator=(buffer const &other) noexcept {
        base::_base<base::buffer>::operator=(other);
        return *this;
    }

    // Resizes to exactly `size` bytes (or by `delta`), zero-filling new bytes
    // when `clear`.
    void Size(int size, bool clear = false) { mBody->Size(size, clear); }
    void Extend(int delta, bool clear = false) { mBody->Extend(delta, clear); }

    // The bytes become a copy, have bytes added at the end (also +=), put in
    // at `pos` (clamped) or taken out; a new block of the exact size each time.
    void Copy(void const *data, int size) { mBody->Copy(data, size); }
    void Copy(buffer const &other) { mBody->Copy(other.mBody); }
    void Add(void const *data, int size) { mBody->Add(data, size); }
    void Add(buffer const &other) { mBody->Add(other.mBody); }
    void Insert(int pos, void const *data, int size) { mBody->Insert(pos, data, size); }
    void Insert(int pos, buffer const &other) { mBody->Insert(pos, other.mBody); }
    void Remove(int pos, int size) { mBody->Remove(pos, size); }
    buffer &operator+=(buffer const &other) {
        mBody->Add(other.mBody);
        return *this;
    }

    // Frees the bytes and takes `data` (from ArrayAlloc) as its own.
    void Attach(unsigned char *data, int size) { mBody->Attach(data, size); }
    // Frees the bytes: the buffer is empty.
    void Release() { mBody->Release(); }
    // Sets every byte to 0, or to `value`; the size stays.
    void Clear() { mBody->Clear(); }
    void Fill(unsigned char value) { mBody->Fill(value); }

    // The size, whether there is no byte, a byte and its address (not
    // checked), and the block itself.
    int Size() const noexcept { return mBody->mSize; }
    bool IsEmpty() const noexcept { return mBody->IsEmpty(); }
    unsigned char &Get(int i) const noexcept { return mBody->Get(i); }
    unsigned char *Offset(int i) const noexcept { return mBody->Offset(i); }
    unsigned char &operator[](int i) const noexcept { return mBody->Get(i); }
    unsigned char *Data() const noexcept { return mBody->mElement; }
    // Whether the two hold the same bytes.
    bool operator==(buffer const &other) const noexcept { return mBody->Compare(*other.mBody); }
    bool operator!=(buffer const &other) const noexcept { return !mBody->Compare(*other.mBody); }
    // The body's mark, stored and reported only.
    bool Reference() const noexcept { return mBody->Reference(); }
    void Reference(bool reference) noexcept { mBody->Reference(reference); }
};

}  // namespace qor::tools::container
