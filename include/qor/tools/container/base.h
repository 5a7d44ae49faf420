// The handle/body layers every container and smart pointer stands on.
//
//   base::_counter<P>  the policy P, a 31-bit handle count and the reference mark
//   base::_elem<T, P>  the held element
//   base::ptr<T*, P>   a body that gives its element back by P (unless marked)
//   base::_base<B>     the handle: one pointer to a shared body B
//   base::_xptr<T*, P> the pointer-like handle behind sptr and comptr
//
// Copying a handle shares the body; nothing is copied on write. Counts are
// plain integers: handles on one body belong to one thread.
#pragma once

#include "qor/tools/container/policy.h"

namespace qor::tools::container::base {

// The count of handles on a body, and its reference mark.
template <typename P>
class _counter : public P {
public:
    // One handle, the mark clear or as given; copies take count and mark.
    _counter() noexcept : mCounter(1), mReference(0) {}
    explicit _counter(bool reference) noexcept : mCounter(1), mReference(reference) {}
    _counter(_counter const &other) noexcept : P(other), mCounter(other.mCounter), mReference(other.mReference) {}
    _counter &operator=(_counter const &other) noexcept {
        mCounter = other.mCounter;
        mReference = other.mReference;
        return *this;
    }
    virtual ~_counter() = default;

    // The count of handles, and the mark (set: the held thing is not given back).
    unsigned Counter() const noexcept { return mCounter; }
    bool Reference() const noexcept { return mReference; }
    void Reference(bool reference) noexcept { mReference = reference; }
    // One handle more or less; the body deletes itself at 0.
    void Inc() noexcept { ++mCounter; }
    void Dec() noexcept {
        if (--mCounter == 0) delete this;
    }

private:
    unsigned mCounter : 31;
    unsigned mReference : 1;
};

// A body holding one element.
template <typename T, typename P>
class _elem : public _counter<P> {
public:
    // No element, or `element` with the mark as given.
    _elem() noexcept : mElement() {}
    _elem(T element, bool reference) noexcept : _counter<P>(reference), mElement(element) {}
    _elem(_elem const &) = default;
    _elem &operator=(_elem const &) = default;

    // Whether there is no element, the element, and where it is stored.
    bool IsEmpty() const noexcept { return !mElement; }
    T Get() const noexcept { return mElement; }
    T *Addr() const noexcept { return const_cast<T *>(&mElement); }

    T mElement;  // the held element
};

template <typename T, typename P>
class ptr;

// The body of a pointer handle: gives its element back by P unless marked.
template <typename T, typename P>
class ptr<T *, P> : public _elem<T *, P> {
public:
    ptr() noexcept = default;
    // Holds `element`, marked or not.
    ptr(T *element, bool reference) noexcept : _elem<T *, P>(element, reference) {}
    ~ptr() override {
        if (this->mElement && !this->Reference()) P::GiveBack(this->mElement);
        this->Reference(false);
        this->mElement = nullptr;
    }
    // Gives back the element (unless marked) and holds `p` instead.
    void Hold(T *p, bool reference) {
        if (this->mElement && !this->Reference()) P::GiveBack(this->mElement);
        this->mElement = p;
        this->Reference(reference);
    }
};

// The handle: one pointer to a shared body B.
template <typename B>
class _base {
public:
    // Shares the other handle's body (letting go of its own).
    _base &operator=(_base const &other) noexcept {
        other.mBody->Inc();
        mBody->Dec();
        mBody = other.mBody;
        return *this;
    }
    virtual ~_base() { mBody->Dec(); }

    // The body.
    B *Body() const noexcept { return mBody; }

protected:
    _base() : mBody(new B) {}
    explicit _base(B *body) noexcept : mBody(body) {}
    _base(_base const &other) noexcept : mBody(other.mBody) { mBody->Inc(); }

    B *mBody;
};

template <typename T, typename P>
class _xptr;

// The pointer-like handle behind sptr and comptr.
template <typename T, typename P>
class _xptr<T *, P> : public _base<ptr<T *, P>> {
    using body = ptr<T *, P>;

public:
    // Holding nothing, or `p` (not given back when `reference`); copies share.
    _xptr() : _base<body>() {}
    explicit _xptr(T *p, bool reference = false) : _base<body>(new body(p, reference)) {}
    _xptr(_xptr const &other) noexcept : _base<body>(other) {}
    _xptr &operator=(_xptr const &other) noexcept {
        _base<body>::operator=(other);
        return *this;
    }
    // Holds `p` (Attach without the mark).
    _xptr &operator=(T *p) {
        Attach(p, false);
        return *this;
    }

    // This handle holds `p`; other handles on a shared body keep the old element.
    void Attach(T *p, bool reference) {
        if (this->mBody->mElement == p) return;
        if (this->mBody->Counter() < 2) {
            this->mBody->Hold(p, reference);
            return;
        }
        body *next = new body(p, reference);
        this->mBody->Dec();
        this->mBody = next;
    }
    // Every handle on the body holds `p`.
    void Replace(T *p, bool reference) {
        if (this->mBody->mElement != p) this->mBody->Hold(p, reference);
    }
    // This handle holds nothing.
    void Release() { Attach(nullptr, false); }
    // Takes the element out of the body: all handles see null; the caller owns it.
    T *Detach() noexcept {
        T *p = this->mBody->mElement;
        this->mBody->mElement = nullptr;
        this->mBody->Reference(false);
        return p;
    }
    // Where the pointer is stored, for a call that fills it in: Addr lets go
    // of the held one first, RefAddr does not.
    T **Addr() {
        Release();
        return this->mBody->Addr();
    }
    T **RefAddr() const noexcept { return this->mBody->Addr(); }

    // The held pointer, in every form a pointer is used in.
    T *Get() const noexcept { return this->mBody->mElement; }
    operator T *() const noexcept { return this->mBody->mElement; }
    T *operator->() const noexcept { return this->mBody->mElement; }
    // Whether nothing is held, and whether `p` is what is held.
    bool IsEmpty() const noexcept { return !this->mBody->mElement; }
    bool operator==(T *const p) const noexcept { return this->mBody->mElement == p; }
    bool operator!=(T *const p) const noexcept { return this->mBody->mElement != p; }
    // The body's mark: while set, the pointer is not given back.
    bool Reference() const noexcept { return this->mBody->Reference(); }
    void Reference(bool reference) noexcept { this->mBody->Reference(reference); }
};

}  // namespace qor::tools::container::base
