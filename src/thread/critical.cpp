#include "qor/tools/thread/critical.h"

namespace qor::tools::thread {

namespace {
constexpr int kSpinRounds = 100;
}

void critical::Lock() {
    std::thread::id self = std::this_thread::get_id();
    // Only this thread ever stores its own id, so the owner can be read freely.
    if (mOwner.load(std::memory_order_relaxed) == self) {
        ++mRecursion;
        return;
    }
    // Spin a little while the owner is inside (reading only, which keeps the
    // lock's cache line shared), then sleep.
    bool locked = mSection.try_lock();
    for (int round = 0; !locked && round < kSpinRounds; ++round) {
        __builtin_ia32_pause();
        if (mOwner.load(std::memory_order_relaxed) == std::thread::id()) locked = mSection.try_lock();
    }
    if (!locked) mSection.lock();
    mOwner.store(self, std::memory_order_relaxed);
    mRecursion = 1;
}

void critical::Unlock() {
    if (--mRecursion > 0) return;
    mOwner.store(std::thread::id(), std::memory_order_relaxed);
    mSection.unlock();
}

}  // namespace qor::tools::thread
