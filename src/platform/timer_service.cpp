// Multimedia timers on one service thread for the process: a deadline table
// that the thread sleeps on, setting or pulsing each timer's event when it is
// due. A timer holds a reference on its event, so that an event whose handle
// was closed before the timer was killed is still a valid object.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

#include "kernel_object.h"

namespace qor::tools {

namespace {

using namespace platform::kernel;

class timer_service {
public:
    static timer_service &Instance() {
        static timer_service *service = new timer_service;  // lives as long as the process
        return *service;
    }

    unsigned Add(unsigned delay, HANDLE event, unsigned flags) {
        object *o = Acquire(event);
        if (!o) return 0;
        std::lock_guard lock(mLock);
        unsigned id = mNextId++;
        if (mNextId == 0) mNextId = 1;
        view v{o, o->mIncarnation.load()};
        mTimers[id] = {Clock::now() + std::chrono::milliseconds(delay), std::chrono::milliseconds(delay), v, flags};
        if (!mRunning) {
            mRunning = true;
            std::thread([this] { Run(); }).detach();
        }
        mChanged.notify_one();
        return id;
    }

    bool Kill(unsigned id) {
        object *o = nullptr;
        {
            std::lock_guard lock(mLock);
            auto found = mTimers.find(id);
            if (found == mTimers.end()) return false;
            o = found->second.mEvent.mObject;
            mTimers.erase(found);
        }
        Release(o);
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;
    struct entry {
        Clock::time_point mDue;
        std::chrono::milliseconds mPeriod;
        view mEvent;
        unsigned mFlags;
    };

    void Run() {
        std::unique_lock lock(mLock);
        for (;;) {
            if (mTimers.empty()) {
                mChanged.wait(lock);
                continue;
            }
            auto next = std::min_element(mTimers.begin(), mTimers.end(),
                                         [](auto const &a, auto const &b) { return a.second.mDue < b.second.mDue; });
            Clock::time_point due = next->second.mDue;  // the entry may go while we wait
            if (Clock::now() < due) {
                mChanged.wait_until(lock, due);
                continue;
            }
            entry &e = next->second;
            if (e.mFlags & TIME_CALLBACK_EVENT_PULSE) {
                Pulse(e.mEvent);
            } else {
                Signal(e.mEvent);
            }
            if (e.mFlags & TIME_PERIODIC) {
                e.mDue += e.mPeriod.count() > 0 ? e.mPeriod : std::chrono::milliseconds(1);
                continue;
            }
            object *o = e.mEvent.mObject;
            mTimers.erase(next);
            lock.unlock();
            Release(o);
            lock.lock();
        }
    }

    std::mutex mLock;
    std::condition_variable mChanged;
    std::map<unsigned, entry> mTimers;
    unsigned mNextId = 1;
    bool mRunning = false;
};

std::atomic<unsigned> gPeriods{0};

}  // namespace

unsigned timeSetEvent(unsigned delay, unsigned, HANDLE event, std::uintptr_t, unsigned flags) {
    if (!event || !(flags & (TIME_CALLBACK_EVENT_SET | TIME_CALLBACK_EVENT_PULSE))) return 0;
    return timer_service::Instance().Add(delay, event, flags);
}

unsigned timeKillEvent(unsigned id) { return timer_service::Instance().Kill(id) ? 0 : 97; }

unsigned timeBeginPeriod(unsigned period) {
    if (period == 0) return 97;
    ++gPeriods;
    return 0;
}

unsigned timeEndPeriod(unsigned period) {
    if (period == 0) return 97;
    if (gPeriods > 0) --gPeriods;
    return 0;
}

}  // namespace qor::tools
