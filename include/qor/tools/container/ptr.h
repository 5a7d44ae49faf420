// ptr<T, P>: a single owner of one object, not shared and not counted. Its
// destructor gives the object back by the policy P.
//
//   container::ptr<routine, pif::object> mFunction(new routine);
#pragma once

#include "qor/tools/container/policy.h"

namespace qor::tools::container {

template <typename T, typename P = pif::object>
class ptr : public P {
public:
    ptr() noexcept : mObject(nullptr) {}
    // Owns `element`, given back by P at the end.
    explicit ptr(T *element) noexcept : mObject(element) {}
    ptr(ptr const &) = delete;
    ptr &operator=(ptr const &) = delete;
    virtual ~ptr() {
        if (mObject) P::GiveBack(mObject);
    }

    // Gives back the held object (if it is another one) and holds `element`.
    ptr &operator=(T *element) {
        if (element != mObject) {
            if (mObject) P::GiveBack(mObject);
            mObject = element;
        }
        return *this;
    }
    T *Detach() noexcept {
        T *element = mObject;
        mObject = nullptr;
        return element;
    }
    T *Get() const noexcept { return mObject; }
    operator T *() const noexcept { return mObject; }
    T *operator->() const noexcept { return mObject; }
    bool IsEmpty() const noexcept { return !mObject; }

private:
    T *mObject;
};

}  // namespace qor::tools::container
