// thread::timer: a timer that sets or pulses its own event, which a worker
// passes to Wait beside its other handles, so that ticks arrive on the
// worker's own thread. One-shot or periodic; with `pulse` false the event
// stays signalled until the routine resets it. Kill before destroying a set
// timer (the timer service keeps the event alive until then).
//
//   thread::timer tick;
//   tick.Set(100, true, false, 10);    // every 100 ms, SetEvent
//   w->Wait(tick, INFINITE);           // result 3 on a tick
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/thread/event.h"

namespace qor::tools::thread {

class QOR_TOOLS_API timer : public event {
public:
    // A timer is an event that the timer service sets; not running at first.
    timer() : event(false, true) {}
    timer(timer const &) noexcept = default;
    timer &operator=(timer const &) noexcept = default;

    // Sets (or pulses) the event after `delay` milliseconds, every `delay`
    // milliseconds when `periodic`.
    void Set(int delay, bool periodic = true, bool pulse = false, int resolution = 1) {
        unsigned flags = (pulse ? TIME_CALLBACK_EVENT_PULSE : TIME_CALLBACK_EVENT_SET) |
                         (periodic ? TIME_PERIODIC : TIME_ONESHOT);
        mTimer = timeSetEvent(unsigned(delay), unsigned(resolution), mHandle, 0, flags);
    }
    // Stops the timer and resets the event.
    void Kill() {
        if (mTimer == 0) return;
        Reset();
        timeKillEvent(mTimer);
        mTimer = 0;
    }
    // Whether the timer runs; the resolution requests (accepted, no effect).
    bool IsSet() const noexcept { return mTimer != 0; }
    static void BeginPeriod(unsigned int period) { timeBeginPeriod(period); }
    static void EndPeriod(unsigned int period) { timeEndPeriod(period); }

private:
    unsigned int mTimer = 0;
};

}  // namespace qor::tools::thread
