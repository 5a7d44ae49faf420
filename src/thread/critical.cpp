#include "qor/tools/thread/critical.h"

namespace qor::tools::thread {

namespace {

constexpr unsigned kHeld = 1;
constexpr unsigned kSleeper = 2;
// About ten microseconds of pauses: far longer than anybody holds the lock,
// unless the holder has lost its processor, and then sleeping is right.
constexpr int kSpinRounds = 400;

void Relax() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

using word_t = std::atomic<unsigned>;

bool TryTake(word_t &section) noexcept {
    unsigned word = section.load(std::memory_order_relaxed);
    while (!(word & kHeld)) {
        if (section.compare_exchange_weak(word, word | kHeld, std::memory_order_acquire, std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

// Spins while the holder is inside (reading only, which leaves the holder the
// line), then counts itself among the sleepers and sleeps until the word
// changes. A sleeper that takes the lock counts itself out in the same step.
void TakeContended(word_t &section) noexcept {
    for (int round = 0; round < kSpinRounds; ++round) {
        Relax();
        if (!(section.load(std::memory_order_relaxed) & kHeld) && TryTake(section)) return;
    }
    unsigned word = section.fetch_add(kSleeper, std::memory_order_relaxed) + kSleeper;
    for (;;) {
        if (!(word & kHeld)) {
            if (section.compare_exchange_weak(word, (word | kHeld) - kSleeper, std::memory_order_acquire,
                                              std::memory_order_relaxed)) {
                return;
            }
            continue;
        }
        section.wait(word, std::memory_order_relaxed);
        word = section.load(std::memory_order_relaxed);
    }
}

}  // namespace

void critical::Lock() {
    std::thread::id self = std::this_thread::get_id();
    // Only this thread ever stores its own id, so the owner can be read freely.
    if (mOwner.load(std::memory_order_relaxed) == self) {
        ++mRecursion;
        return;
    }
    if (!TryTake(mSection)) TakeContended(mSection);
    mOwner.store(self, std::memory_order_relaxed);
    mRecursion = 1;
}

void critical::Unlock() {
    if (--mRecursion > 0) return;
    mOwner.store(std::thread::id(), std::memory_order_relaxed);
    // Anything left beside the held bit is a sleeper to wake.
    if (mSection.fetch_sub(kHeld, std::memory_order_release) != kHeld) mSection.notify_one();
}

}  // namespace qor::tools::thread
