// sptr<T> and comptr<T>: shared handles on one pointer.
//
// Copies share one counted body; the last handle gives the object back
// (delete for sptr, IUnknown::Release for comptr) unless the body's reference
// mark says the object is only referred to.
//
//   sptr<X> a(new X);      // owns
//   sptr<X> b = a;         // shares
//   a.Attach(q, false);    // only a moves on to q; b keeps the X
//   a.Replace(q, false);   // every handle on the body moves on; the X is deleted
//   sptr<X> v(p, true);    // a view: p is never deleted
#pragma once

#include "qor/tools/container/base.h"
#include "qor/tools/platform/com.h"

namespace qor::tools::container {

// A shared handle that deletes its object when the last handle goes.
template <typename T>
class sptr : public base::_xptr<T *, pif::object> {
    using xptr = base::_xptr<T *, pif::object>;

public:
    using xptr::xptr;
    using xptr::operator=;
    // Holding nothing; copies share the object.
    sptr() = default;
    sptr(sptr const &) = default;
    sptr &operator=(sptr const &) = default;
};

// A shared handle that releases its interface when the last handle goes.
template <typename T>
class comptr : public base::_xptr<T *, pif::com> {
    using xptr = base::_xptr<T *, pif::com>;

public:
    using xptr::xptr;
    using xptr::operator=;
    // Holding nothing; copies share the interface.
    comptr() = default;
    comptr(comptr const &) = default;
    comptr &operator=(comptr const &) = default;

    // Creates the class `clsid` (or the one a ProgID names) and holds its T
    // interface; the creation's result.
    HRESULT CoCreateInstance(GUID const &clsid, IUnknown *outer = nullptr, unsigned long context = CLSCTX_ALL) {
        this->Release();
        return tools::CoCreateInstance(clsid, outer, DWORD(context), T::iid,
                                       reinterpret_cast<void **>(this->RefAddr()));
    }
    HRESULT CoCreateInstance(char16_t const *progid, IUnknown *outer = nullptr, unsigned long context = CLSCTX_ALL) {
        GUID clsid;
        HRESULT hr = CLSIDFromProgID(progid, &clsid);
        if (FAILED(hr)) return hr;
        return CoCreateInstance(clsid, outer, context);
    }
};

}  // namespace qor::tools::container
