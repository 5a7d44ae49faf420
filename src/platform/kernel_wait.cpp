// Waits and hand-offs.
//
// A waiter links itself, from its own stack frame, into the list of every
// object it waits on and sleeps on a semaphore of its own. Whoever
// signals an object claims the first waiters in its list with one atomic
// exchange on that word, which decides the wait's result once and for all;
// so an object is handed to exactly the waiters it may satisfy (one for an
// auto-reset event or a mutex, all for a manual event or an ended thread), a
// pulse releases exactly those waiting at that moment, and no wake-up is lost.
// The signaller unlinks what it claimed while holding the object's lock; the
// waiter unlinks the rest under each object's lock before it returns, so no
// list ever holds a link to a frame that has gone.
#include <semaphore.h>
#include <time.h>

#include <cerrno>

#include "kernel_internal.h"
#include "kernel_object.h"

namespace qor::tools {

namespace platform::kernel {

namespace {

constexpr std::uint32_t kPending = 0xFFFFFFFEu;
constexpr int kSpinRounds = 200;

}  // namespace

struct waiter {
    waiter() { sem_init(&mWake, 0, 0); }
    waiter(waiter const &) = delete;
    waiter &operator=(waiter const &) = delete;
    ~waiter() { sem_destroy(&mWake); }

    std::atomic<std::uint32_t> mResult{kPending};
    unsigned mThread = 0;
    sem_t mWake;  // posted once, by whoever claims the waiter
};

namespace {

bool Claim(waiter *w, DWORD result) {
    std::uint32_t expected = kPending;
    return w->mResult.compare_exchange_strong(expected, result, std::memory_order_acq_rel);
}

void Wake(waiter *w) { sem_post(&w->mWake); }

// Sleeps until the waiter is claimed or the time (INFINITE: none) is up.
// (A semaphore rather than a bare futex: the sanitizers and the signal that
// suspends a thread both know a thread asleep in sem_wait.)
void Sleep(waiter &w, DWORD milliseconds) {
    timespec deadline{};
    if (milliseconds != INFINITE) {
        ::clock_gettime(CLOCK_REALTIME, &deadline);
        std::int64_t ns = std::int64_t(deadline.tv_nsec) + std::int64_t(milliseconds % 1000) * 1000000;
        deadline.tv_sec += time_t(milliseconds / 1000 + ns / 1000000000);
        deadline.tv_nsec = long(ns % 1000000000);
    }
    while (w.mResult.load(std::memory_order_acquire) == kPending) {
        int r = milliseconds == INFINITE ? sem_wait(&w.mWake) : sem_timedwait(&w.mWake, &deadline);
        if (r != 0 && errno == ETIMEDOUT) return;
    }
}

bool IsMutex(object *o) { return o->mKind.load(std::memory_order_relaxed) == kind::mutex; }

// Whether the waiting thread could take the object now; its lock is held.
bool CanTake(object *o, unsigned self) {
    if (IsMutex(o)) return o->mOwner == 0 || o->mOwner == self;
    return o->mSignaled.load();
}

// Takes the object for the waiting thread (CanTake was true); the result.
DWORD Take(object *o, unsigned self, DWORD index) {
    if (!IsMutex(o)) {
        if (!o->mManual.load(std::memory_order_relaxed)) o->mSignaled.store(false);
        return WAIT_OBJECT_0 + index;
    }
    if (o->mOwner == self) {
        ++o->mRecursion;
        return WAIT_OBJECT_0 + index;
    }
    DWORD result = (o->mAbandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + index;
    o->mOwner = self;
    o->mRecursion = 1;
    o->mAbandoned = false;
    return result;
}

// A signalled event or ended thread taken without a lock: a manual one is
// only looked at, an auto-reset one is cleared by an exchange. Mutexes need
// their lock.
bool TakeWithoutLock(view const &v) {
    object *o = v.mObject;
    if (IsMutex(o) || !o->mSignaled.load(std::memory_order_acquire)) return false;
    bool taken = true;
    if (!o->mManual.load(std::memory_order_relaxed)) {
        bool expected = true;
        taken = o->mSignaled.compare_exchange_strong(expected, false, std::memory_order_acq_rel);
    }
    return taken && o->mIncarnation.load() == v.mIncarnation;
}

}  // namespace

void Link(object *o, wait_link *link) {
    o->mWaiting.fetch_add(1);
    link->mPrev = o->mLast;
    link->mNext = nullptr;
    if (o->mLast) o->mLast->mNext = link; else o->mFirst = link;
    o->mLast = link;
    link->mLinked = true;
}

void Unlink(object *o, wait_link *link) {
    if (link->mPrev) link->mPrev->mNext = link->mNext; else o->mFirst = link->mNext;
    if (link->mNext) link->mNext->mPrev = link->mPrev; else o->mLast = link->mPrev;
    link->mPrev = link->mNext = nullptr;
    link->mLinked = false;
    o->mWaiting.fetch_sub(1);
}

int Waiters(object *o) {
    int n = 0;
    for (wait_link *link = o->mFirst; link; link = link->mNext) ++n;
    return n;
}

void HandOff(object *o) {
    bool mutex = IsMutex(o), manual = o->mManual.load(std::memory_order_relaxed);
    for (wait_link *link = o->mFirst; link;) {
        wait_link *next = link->mNext;
        waiter *w = link->mWaiter;
        if (mutex) {
            if (o->mOwner != 0) return;
            if (Claim(w, (o->mAbandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + link->mIndex)) {
                o->mOwner = w->mThread;
                o->mRecursion = 1;
                o->mAbandoned = false;
                Unlink(o, link);
                Wake(w);
                return;
            }
        } else if (manual) {
            if (!o->mSignaled.load()) return;
            if (Claim(w, WAIT_OBJECT_0 + link->mIndex)) {
                Unlink(o, link);
                Wake(w);
            }
        } else {
            // The signal is consumed before the waiter is claimed: a wait that
            // takes the event without the lock cannot take it a second time.
            bool expected = true;
            if (!o->mSignaled.compare_exchange_strong(expected, false)) return;
            if (Claim(w, WAIT_OBJECT_0 + link->mIndex)) {
                Unlink(o, link);
                Wake(w);
                return;
            }
            o->mSignaled.store(true);
        }
        link = next;
    }
}

bool Signal(view const &v) {
    object *o = v.mObject;
    if (o->mIncarnation.load() != v.mIncarnation) return false;
    o->mSignaled.store(true);
    if (o->mWaiting.load() == 0) return true;
    locked lock(v);
    if (!lock) return false;
    HandOff(o);
    return true;
}

bool Pulse(view const &v) {
    locked lock(v);
    if (!lock) return false;
    object *o = v.mObject;
    if (o->mFirst) {
        o->mSignaled.store(true);
        HandOff(o);
    }
    o->mSignaled.store(false);
    return true;
}

}  // namespace platform::kernel

using namespace platform::kernel;

DWORD WaitForMultipleObjects(DWORD count, HANDLE const *objects, bool waitAll, DWORD milliseconds) {
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || !objects || waitAll) {
        SetError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    // The common case, an event that is already set (or is set a moment
    // later, while another processor is at work on it): looked for in the
    // order of the list for a few microseconds before going to sleep. Handles
    // are looked up as they are reached, so a wait answered by its first
    // handle costs the same over 64 handles as over one.
    view views[MAXIMUM_WAIT_OBJECTS];
    bool anyMutex = false;
    int rounds = milliseconds == 0 ? 1 : kSpinRounds;
    for (int round = 0; round < rounds; ++round) {
        if (round > 0) __builtin_ia32_pause();
        for (DWORD i = 0; i < count; ++i) {
            if (round == 0 && !Lookup(objects[i], views[i])) return WAIT_FAILED;
            if (TakeWithoutLock(views[i])) return WAIT_OBJECT_0 + i;
            anyMutex = anyMutex || IsMutex(views[i].mObject);
        }
    }
    // Events and threads were seen as they are: a poll of them is done.
    if (milliseconds == 0 && !anyMutex) return WAIT_TIMEOUT;

    waiter w;
    w.mThread = CurrentThread();
    wait_link links[MAXIMUM_WAIT_OBJECTS];
    bool mutexes[MAXIMUM_WAIT_OBJECTS] = {};
    DWORD held = 0;
    for (DWORD i = 0; i < count; ++i) {
        object *o = views[i].mObject;
        std::lock_guard lock(o->mLock);
        if (o->mIncarnation.load() != views[i].mIncarnation) {
            // Closed (and its object gone) since the lookup.
            if (Claim(&w, WAIT_FAILED)) SetError(ERROR_INVALID_HANDLE);
            break;
        }
        ++o->mReferences;  // the object outlives a close during the wait
        held = i + 1;
        mutexes[i] = IsMutex(o);
        if (w.mResult.load(std::memory_order_acquire) != kPending) break;
        if (milliseconds != 0) {
            links[i].mWaiter = &w;
            links[i].mIndex = i;
            Link(o, &links[i]);  // counted in before mSignaled is looked at
        }
        if (CanTake(o, w.mThread)) {
            if (links[i].mLinked) Unlink(o, &links[i]);
            std::uint32_t expected = kPending;
            DWORD result = WAIT_OBJECT_0 + i;
            if (w.mResult.compare_exchange_strong(expected, result)) w.mResult.store(Take(o, w.mThread, i));
            break;
        }
    }
    if (milliseconds != 0) Sleep(w, milliseconds);
    Claim(&w, WAIT_TIMEOUT);
    DWORD result = w.mResult.load(std::memory_order_acquire);

    for (DWORD i = 0; i < held; ++i) {
        object *o = views[i].mObject;
        {
            std::lock_guard lock(o->mLock);
            if (links[i].mLinked) Unlink(o, &links[i]);
        }
        Release(o);
    }
    DWORD index = result >= WAIT_ABANDONED_0 ? result - WAIT_ABANDONED_0 : result - WAIT_OBJECT_0;
    bool owned = result != WAIT_TIMEOUT && result != WAIT_FAILED && index < held && mutexes[index];
    if (owned) NoteOwned(views[index].mObject);
    return result;
}

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
    return WaitForMultipleObjects(1, &object, false, milliseconds);
}

}  // namespace qor::tools

namespace qor::tools::platform {

int WaitingThreads(HANDLE h) {
    kernel::view v;
    if (!kernel::Lookup(h, v)) return 0;
    kernel::locked lock(v);
    return lock ? kernel::Waiters(v.mObject) : 0;
}

}  // namespace qor::tools::platform
