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

class QOR_TOOLS_API buffer : public _elem<unsigned char *, pif::array::_base> {
public:
    explicit buffer(int size = 0, bool clear = false);
    // Member-wise: count, mark, pointer and size; the bytes are not copied.
    buffer(buffer const &) = default;
    buffer &operator=(buffer const &) = default;
    ~buffer() override;

    void Size(int size, bool clear = false);
    void Extend(int delta, bool clear = false) { Size(delta + mSize, clear); }
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

    int Size() const noexcept { return mSize; }
    unsigned char &Get(int i) const noexcept { return mElement[i]; }
    unsigned char *Offset(int i) const noexcept { return mElement + i; }
    bool IsEmpty() const noexcept { return mSize == 0; }
    bool Compare(buffer const &other) const noexcept;

    int mSize = 0;

private:
    void _Take(unsigned char *block, int size) noexcept;
};

}  // namespace base

class QOR_TOOLS_API buffer : public base::_base<base::buffer> {
public:
    explicit buffer(int size = 0, bool clear = false) : base::_base<base::buffer>(new base::buffer(size, clear)) {}
    buffer(buffer const &other) noexcept : base::_base<base::buffer>(other) {}
    buffer &operator=(buffer const &other) noexcept {
        base::_base<base::buffer>::operator=(other);
        return *this;
    }

    void Size(int size, bool clear = false) { mBody->Size(size, clear); }
    void Extend(int delta, bool clear = false) { mBody->Extend(delta, clear); }
    void Copy(void const *data, int size) { mBody->Copy(data, size); }
    void Copy(buffer const &other) { mBody->Copy(other.mBody); }
    void Add(void const *data, int size) { mBody->Add(data, size); }
    void Add(buffer const &other) { mBody->Add(other.mBody); }
    void Insert(int pos, void const *data, int size) { mBody->Insert(pos, data, size); }
    void Insert(int pos, buffer const &other) { mBody->Insert(pos, other.mBody); }
    void Remove(int pos, int size) { mBody->Remove(pos, size); }
    void Attach(unsigned char *data, int size) { mBody->Attach(data, size); }
    void Release() { mBody->Release(); }
    void Clear() { mBody->Clear(); }
    void Fill(unsigned char value) { mBody->Fill(value); }
    buffer &operator+=(buffer const &other) {
        mBody->Add(other.mBody);
        return *this;
    }

    int Size() const noexcept { return mBody->mSize; }
    bool IsEmpty() const noexcept { return mBody->IsEmpty(); }
    unsigned char &Get(int i) const noexcept { return mBody->Get(i); }
    unsigned char *Offset(int i) const noexcept { return mBody->Offset(i); }
    unsigned char &operator[](int i) const noexcept { return mBody->Get(i); }
    unsigned char *Data() const noexcept { return mBody->mElement; }
    bool operator==(buffer const &other) const noexcept { return mBody->Compare(*other.mBody); }
    bool operator!=(buffer const &other) const noexcept { return !mBody->Compare(*other.mBody); }
    bool Reference() const noexcept { return mBody->Reference(); }
    void Reference(bool reference) noexcept { mBody->Reference(reference); }
};

}  // namespace qor::tools::container
