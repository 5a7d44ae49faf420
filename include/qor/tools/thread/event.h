// thread::event: a manual- or auto-reset event (manual and not signalled by
// default). A failed creation leaves a null handle and is not reported.
//
//   thread::event ready;
//   ready = true;                 // SetEvent
//   if (ready.IsEnable(0)) ...    // signalled?
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/thread/handle.h"

namespace qor::tools::thread {

class QOR_TOOLS_API event : public handle {
public:
    // A new event, signalled when `initial`, staying signalled until reset
    // when `manual`; a name shares the event with other holders of the name.
    explicit event(bool initial = false, bool manual = true, char16_t const *name = nullptr,
                   _SECURITY_ATTRIBUTES *security = nullptr)
        : handle(CreateEventW(security, manual, initial, name)) {}
    // Copies are for handing over: the last one closed closes the event.
    event(event const &) noexcept = default;
    event &operator=(event const &) noexcept = default;

    // Signals it, clears it, or wakes those waiting now and clears it.
    void Set() const { SetEvent(mHandle); }
    void Reset() const { ResetEvent(mHandle); }
    void Pulse() const { PulseEvent(mHandle); }
    // Waits up to `milliseconds` (INFINITE: for ever); whether it was signalled.
    bool IsEnable(unsigned long milliseconds = 0) const {
        return WaitForSingleObject(mHandle, milliseconds >= INFINITE ? INFINITE : DWORD(milliseconds)) == 0;
    }
    // Set (true) or Reset (false).
    event &operator=(bool value) {
        value ? Set() : Reset();
        return *this;
    }
};

}  // namespace qor::tools::thread
