// array<T, P> and set<T, P>: handles on one shared block of elements.
//
// Elements stand inline in one block and are moved by plain byte copy when the
// block is replaced or a gap is opened or closed, so an element type must bear
// being moved by memcpy: it may not hold a pointer into itself. The library's
// string, buffer, record, field and smart pointers qualify; so do plain values
// and pointers. (std::string with its inline buffer does not.)
//
// Capacity grows in steps of `growup` (10 by default), never geometrically:
// pass a larger step or call Size() first when many elements are coming.
// Copying a handle shares the elements; Copy() is the deep copy.
//
//   array<string> names;              // policy pif::array::object
//   names.Add(u"a");
//   set<worker> owned;                // pointers, deleted unless the mark is set
#pragma once

#include <cstring>
#include <new>

#include "qor/tools/container/base.h"

namespace qor::tools::container {

namespace base {

// The body of an array: the block, its size, capacity and growth step.
template <typename T, typename P>
class array : public _elem<T *, P> {
public:
    // Bodies are made empty by their handle and never copied.
    array() noexcept = default;
    array(array const &) = delete;
    array &operator=(array const &) = delete;
    ~array() override { Release(); }

    // A position in the block, moved one element at a time.
    class iterator {
    public:
        // At `index` of `body`; IsValid says whether an element stands there.
        iterator(array *body, int index) noexcept : mBody(body), mIndex(index) {}
        virtual ~iterator() = default;
        bool IsValid() const noexcept { return mBody && mIndex >= 0 && mIndex < mBody->mSize; }
        int Index() const noexcept { return mIndex; }
        T &Get() const noexcept { return mBody->mElement[mIndex]; }
        iterator &Next() noexcept { ++mIndex; return *this; }
        iterator &Prev() noexcept { --mIndex; return *this; }

    protected:
        array *mBody;
        int mIndex;
    };

    // Gives back the elements from `from` on (the size stays).
    void Destroy(int from) {
        for (int i = from; i < mSize; ++i) P::Destroy(this->mElement[i], this->Reference());
    }
    // Gives back every element and frees the block.
    void Release() {
        Destroy(0);
        P::FreeBlock(this->mElement);
        this->mElement = nullptr;
        mSize = mCapacity = 0;
    }
    // A new block of `capacity` slots with the used slots moved over; the
    // old block is returned to the caller, who frees it.
    T *Regrow(int capacity) {
        T *old = this->mElement;
        auto *block = static_cast<T *>(P::AllocBlock(std::size_t(capacity) * sizeof(T)));
        if (!block) throw std::bad_alloc();
        if (mSize > 0) std::memcpy(static_cast<void *>(block), static_cast<void const *>(old), std::size_t(mSize) * sizeof(T));
        this->mElement = block;
        mCapacity = capacity;
        return old;
    }
    // Makes room for one more element by the growth step; returns the old block to free.
    T *Grow() {
        int needed = mSize + 1;
        int wanted = (needed + mGrowup - 1) / mGrowup * mGrowup;
        return wanted > mCapacity ? Regrow(wanted) : nullptr;
    }
    // Whether `p` points at one of the elements.
    bool Holds(T const *p) const noexcept { return p >= this->mElement && p < this->mElement + mSize; }

    int mSize = 0;       // elements in use
    int mCapacity = 0;   // slots of the block
    int mGrowup = 10;    // the growth step
};

}  // namespace base

// The handle that array and set share: every operation works on the body, so
// all handles on it see the change.
template <typename T, typename P>
class _array : public base::_base<base::array<T, P>> {
    using body = base::array<T, P>;

public:
    // A position in the array (Iterator() gives one).
    class iterator : public body::iterator {
    public:
        using body::iterator::iterator;
    };

    // `size` default-made elements, growing by `growup`; `reference` sets the
    // mark, so that the elements are not given back.
    explicit _array(int size = 0, int growup = 10, bool reference = false) {
        this->mBody->Reference(reference);
        this->mBody->mGrowup = growup < 1 ? 1 : growup;
        Size(size);
    }
    // A handle on a body made elsewhere, taking over the count it was made with.
    explicit _array(body *b) noexcept : base::_base<body>(b) {}
    // Copies share the elements.
    _array(_array const &other) noexcept : base::_base<body>(other) {}
    _array &operator=(_array const &other) noexcept {
        base::_base<body>::operator=(other);
        return *this;
    }

    // The number of elements, the slots of the block, the growth step, and
    // whether there is no element.
    int Size() const noexcept { return this->mBody->mSize; }
    int Capacity() const noexcept { return this->mBody->mCapacity; }
    int Growup() const noexcept { return this->mBody->mGrowup; }
    bool IsEmpty() const noexcept { return this->mBody->mSize == 0; }

    // Resizes to exactly `size` elements; grows the block to exactly `size`
    // slots when needed and never shrinks it.
    void Size(int size) {
        body &b = *this->mBody;
        if (size < 0) size = 0;
        if (size == b.mSize) return;
        if (size > b.mCapacity) P::FreeBlock(b.Regrow(size));
        if (size > b.mSize) {
            for (int i = b.mSize; i < size; ++i) new (&b.mElement[i]) T();
        } else {
            b.Destroy(size);
        }
        b.mSize = size;
    }
    int Extend(int delta) {
        Size(Size() + delta);
        return Size();
    }

    // Replaces every element by a copy of those of `other`.
    int Copy(_array const &other) {
        body &b = *this->mBody;
        body const &o = *other.mBody;
        if (&b == &o) return b.mSize;
        b.Release();
        if (o.mSize > 0) {
            P::FreeBlock(b.Regrow(o.mSize));
            for (int i = 0; i < o.mSize; ++i) {
                new (&b.mElement[i]) T(o.mElement[i]);
                b.mSize = i + 1;
            }
        }
        return b.mSize;
    }

    // Appends a copy of `value` (which may be an element of this array); the
    // new element's index.
    int Add(T const &value) {
        body &b = *this->mBody;
        if (b.Holds(&value)) {
            T copy(value);
            return Add(copy);
        }
        T *old = b.Grow();
        new (&b.mElement[b.mSize]) T(value);
        if (old) P::FreeBlock(old);
        return b.mSize++;
    }
    _array &operator+=(T const &value) {
        Add(value);
        return *this;
    }

    // An index at or past the end appends; a negative one inserts at the front.
    int Insert(int index, T const &value) {
        body &b = *this->mBody;
        if (index >= b.mSize) return Add(value);
        if (index < 0) index = 0;
        if (b.Holds(&value)) {
            T copy(value);
            return Insert(index, copy);
        }
        if (T *old = b.Grow()) P::FreeBlock(old);
        std::memmove(static_cast<void *>(b.mElement + index + 1), static_cast<void const *>(b.mElement + index),
                     std::size_t(b.mSize - index) * sizeof(T));
        ++b.mSize;
        new (&b.mElement[index]) T(value);
        return index;
    }

    // Removes one element; an index outside the array changes nothing.
    int Remove(int index) {
        body &b = *this->mBody;
        if (index < 0 || index >= b.mSize) return b.mSize;
        P::Destroy(b.mElement[index], b.Reference());
        std::memmove(static_cast<void *>(b.mElement + index), static_cast<void const *>(b.mElement + index + 1),
                     std::size_t(b.mSize - index - 1) * sizeof(T));
        --b.mSize;
        std::memset(static_cast<void *>(b.mElement + b.mSize), 0, sizeof(T));
        return b.mSize;
    }

    // Gives back every element and the block.
    void Release() { this->mBody->Release(); }

    // The element at `index` (not checked), its address, the block, and the
    // element `back` places before the last.
    T &Get(int index) const noexcept { return this->mBody->mElement[index]; }
    T &operator[](int index) const noexcept { return this->mBody->mElement[index]; }
    T *Offset(int index) const noexcept { return this->mBody->mElement + index; }
    operator T *() const noexcept { return this->mBody->mElement; }
    T &Last(int back = 0) const noexcept { return this->mBody->mElement[this->mBody->mSize - 1 - back]; }

    // The index of the first element equal to `value` from `start`, or -1.
    int Find(T const &value, int start = 0) const {
        body const &b = *this->mBody;
        for (int i = start < 0 ? 0 : start; i < b.mSize; ++i) {
            if (b.mElement[i] == value) return i;
        }
        return -1;
    }

    // An iterator at `index`, or at the first (true) or last (false) element.
    iterator Iterator(int index) const noexcept { return iterator(this->mBody, index); }
    iterator Iterator(bool first) const noexcept { return iterator(this->mBody, first ? 0 : Size() - 1); }

    // The body's mark: while set, elements are not given back.
    bool Reference() const noexcept { return this->mBody->Reference(); }
    void Reference(bool reference) noexcept { this->mBody->Reference(reference); }

    // Range-for support.
    T *begin() const noexcept { return this->mBody->mElement; }
    T *end() const noexcept { return this->mBody->mElement + this->mBody->mSize; }
};

template <typename T, typename P = pif::array::object>
class array : public _array<T, P> {
public:
    // `size` default-made elements, growing by `growup`.
    explicit array(int size = 0, int growup = 10) : _array<T, P>(size, growup, false) {}
    // A handle on a body made elsewhere, taking over the count it was made with.
    explicit array(base::array<T, P> *made) noexcept : _array<T, P>(made) {}
    array(array const &) = default;
    array &operator=(array const &) = default;
};

// An array of pointers to elements it owns (unless the body's mark is set).
template <typename T, typename P = pif::set::object>
class set : public _array<T *, P> {
public:
    // `size` null pointers, growing by `growup`; `reference`: nothing is deleted.
    explicit set(int size = 0, int growup = 10, bool reference = false) : _array<T *, P>(size, growup, reference) {}
    set(set const &) = default;
    set &operator=(set const &) = default;
};

}  // namespace qor::tools::container
