// The inside of the kernel objects: what the files of the kernel layer share.
//
// A HANDLE is an entry of one table for the process: an index and a
// generation, never a pointer. Closing an entry bumps its generation, so a
// handle that was closed (or closed twice) is recognised and refused with
// ERROR_INVALID_HANDLE instead of reaching freed memory.
//
// Objects are counted (one reference per handle, per waiter and per running
// thread) and, when the last reference goes, recycled into a pool rather than
// freed: their memory stays an object for the life of the process, and an
// incarnation number, bumped on every recycling, tells a stale reference from
// a live one. Each object has a lock of its own and an atomic signalled state,
// so that work on one object never waits for another, and the common cases
// (setting an event that is already set, a zero wait on a manual event) take
// no lock at all.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "qor/tools/platform/kernel.h"

namespace qor::tools::platform::kernel {

enum class kind : std::uint8_t { event, mutex, thread };

struct waiter;
struct thread_state;

// One waiter's place in one object's list; lives in the waiter's stack frame.
struct wait_link {
    waiter *mWaiter = nullptr;
    DWORD mIndex = 0;
    wait_link *mPrev = nullptr;
    wait_link *mNext = nullptr;
    bool mLinked = false;
};

struct object {
    std::mutex mLock;
    std::atomic<bool> mSignaled{false};
    std::atomic<std::uint32_t> mIncarnation{0};
    // Waiters linked in the list. A waiter counts itself in before it looks
    // at mSignaled, and a setter sets mSignaled before it looks here, so a
    // setter that sees no waiter may leave without taking the lock.
    std::atomic<int> mWaiting{0};
    // Fixed for an incarnation; atomic so that a stale handle may look.
    std::atomic<kind> mKind{kind::event};
    std::atomic<bool> mManual{true};
    // Guarded by mLock:
    bool mNamed = false;
    int mReferences = 0;
    unsigned mOwner = 0;  // mutexes: the owning thread, its recursion, abandonment
    int mRecursion = 0;
    bool mAbandoned = false;
    wait_link *mFirst = nullptr;
    wait_link *mLast = nullptr;
    thread_state *mThread = nullptr;
    std::u16string mName;  // guarded by the table of names
};

// An object as a handle named it: valid while its incarnation is unchanged.
// (Left uninitialised by default: waits keep 64 of them on the stack.)
struct view {
    object *mObject;
    std::uint32_t mIncarnation;
};

// ---- the handle table and the pool (kernel_objects.cpp)

object *New(kind k);  // a fresh object with one reference
HANDLE Open(object *o);  // a new handle on it; takes over one reference
bool Lookup(HANDLE h, view &v);  // lock-free; false (and ERROR_INVALID_HANDLE) when closed
object *Acquire(HANDLE h);       // a counted reference, or null when closed
void AddReference(object *o);
void Release(object *o);

// Locks the object of a view when it is still that incarnation.
class locked {
public:
    explicit locked(view const &v) : mLock(v.mObject->mLock) {
        mValid = v.mObject->mIncarnation.load(std::memory_order_relaxed) == v.mIncarnation;
    }
    explicit operator bool() const noexcept { return mValid; }

private:
    std::unique_lock<std::mutex> mLock;
    bool mValid;
};

// A mutex that the current thread came to own (recursion 1): remembered so
// that it is abandoned, and handed on, when the thread ends.
void NoteOwned(object *o);
void NoteReleased(object *o);

// ---- signalling (kernel_wait.cpp); the object's lock is held

// Hands a signalled event, an ended thread or a free mutex to its waiters as
// its kind allows (all waiters, the first one, or the next owner).
void HandOff(object *o);
void Link(object *o, wait_link *link);
void Unlink(object *o, wait_link *link);
int Waiters(object *o);

// Sets or pulses an event, if the view is still its incarnation; these take
// the object's lock themselves.
bool Signal(view const &v);
bool Pulse(view const &v);

void SetError(DWORD error);
unsigned CurrentThread();

// The thread's own state goes with its object's incarnation (kernel_threads.cpp).
void Forget(thread_state *state);

}  // namespace qor::tools::platform::kernel
