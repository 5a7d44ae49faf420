// singleton<T>: a registering base class. Making a T registers it, Instance()
// only looks it up (null before a T exists), and Terminate() deletes it.
//
//   class factory : public algorithm::singleton<factory> { ... };
//   new factory;                     // the application makes it once
//   factory::Instance()->...;
//   factory::Instance()->Terminate();
#pragma once

namespace qor::tools::algorithm {

template <typename T>
class singleton {
public:
    // Registers the object being made as the instance; a copy registers
    // nothing and assigns nothing.
    singleton() noexcept { mObject = this; }
    singleton(singleton const &) noexcept {}
    singleton &operator=(singleton const &) noexcept { return *this; }
    virtual ~singleton() = default;

    // The registered instance, or null; Terminate deletes it and forgets it.
    static T *Instance() noexcept { return static_cast<T *>(mObject); }
    virtual void Terminate() {
        singleton *object = mObject;
        mObject = nullptr;
        delete object;
    }

    // The registered instance (kept as its base: it is registered while the T
    // around it is still being made). A singleton of the library is
    // instantiated in the library, so that the application and the library
    // see the one registration.
    static singleton *mObject;
};

template <typename T>
singleton<T> *singleton<T>::mObject = nullptr;

}  // namespace qor::tools::algorithm
