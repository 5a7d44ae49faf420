// thread::critical: the library's own lock, a critical section that its owner
// may enter again. It is held for a few instructions at a time, so a thread
// that finds it taken spins a little before it sleeps; its state is one word
// (held, and how many threads sleep on it), which a release only has to wake
// when somebody sleeps. A copy is a new, independent lock (copies exist only
// so that classes holding a critical stay copyable).
//
//   thread::critical::guard lock(mLock);   // held until the end of the scope
#pragma once

#include "qor/tools/export.h"

#include <atomic>
#include <thread>

namespace qor::tools::thread {

class QOR_TOOLS_API critical {
public:
    // A new, unlocked critical; a copy is another new one.
    critical() = default;
    critical(critical const &) noexcept {}
    critical &operator=(critical const &) noexcept { return *this; }
    virtual ~critical() = default;

    // Enters (again, when this thread holds it) and leaves.
    void Lock();
    void Unlock();

    // Holds a critical for as long as it lives, so that no return or
    // exception leaves the lock held.
    class guard {
    public:
        // Locks `c` until the guard ends.
        explicit guard(critical &c) : mCritical(c) { mCritical.Lock(); }
        guard(guard const &) = delete;
        guard &operator=(guard const &) = delete;
        ~guard() { mCritical.Unlock(); }

    private:
        critical &mCritical;
    };

private:
    // Bit 0: held; the bits above: the number of threads asleep on the word.
    std::atomic<unsigned> mSection{0};
    std::atomic<std::thread::id> mOwner{};
    int mRecursion = 0;
};

}  // namespace qor::tools::thread
