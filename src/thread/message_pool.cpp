// The heap of messages.
//
// A message is made by its sender and deleted by its receiver, on another
// thread. With the general heap that means every allocation takes a block
// that the other processor freed last, through the heap's shared free lists,
// and between two busy workers each message pays for it. Here each thread
// keeps freed blocks of each size in a list of its own; a thread that frees
// more than it makes (a receiver) hands them on in batches of 32 through a
// depot per size, where a thread that makes more than it frees (a sender)
// picks them up, so that blocks cross between threads a batch at a time.
//
// Blocks of up to 256 bytes are pooled, in sizes of 16; larger messages, and
// those whose type asks for more than the heap's own alignment, go to the
// general heap. A thread's list goes to the depot when the thread ends,
// and a depot keeps at most 16 batches: what a burst made beyond that goes
// back to the general heap. Under AddressSanitizer a pooled block is
// poisoned while it is free, but for its first 16 bytes, which link it (and
// must stay readable for the leak checker to follow), so a message's fields
// used after its deletion are still reported.
#include <cstddef>
#include <mutex>
#include <new>

#include "qor/tools/thread/message.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define QOR_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define QOR_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define QOR_POISON(p, n) ((void)(p), (void)(n))
#define QOR_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace qor::tools::thread {

namespace {

constexpr std::size_t kGrain = 16;
constexpr std::size_t kSizes = 16;  // blocks of 16 to 256 bytes
constexpr int kBatch = 32;
constexpr int kDepotBatches = 16;

// A free block: the next block of its list, and (for the first block of a
// batch in a depot) the next batch.
struct block {
    block *mNext;
    block *mNextBatch;
};

struct depot {
    std::mutex mLock;
    block *mBatches = nullptr;
    int mCount = 0;
};

// Trivially destructible, so that threads ending after the statics still
// find them.
constinit depot gDepots[kSizes];

// A thread's free blocks. Plain data (no constructor, no destructor), so that
// it can be reached at any moment of the thread's life; the flusher below
// empties it when the thread ends.
struct cache {
    block *mFree[kSizes];
    int mCount[kSizes];
    bool mArmed;   // the flusher is registered
    bool mClosed;  // the thread is ending: the general heap serves it
};

thread_local constinit cache tCache{};

void FreeBatch(block *b) {
    while (b) {
        block *next = b->mNext;
        ::operator delete(b);
        b = next;
    }
}

void Deposit(std::size_t size, block *batch) {
    depot &d = gDepots[size];
    {
        std::lock_guard lock(d.mLock);
        if (d.mCount < kDepotBatches) {
            batch->mNextBatch = d.mBatches;
            d.mBatches = batch;
            ++d.mCount;
            return;
        }
    }
    FreeBatch(batch);
}

block *Withdraw(std::size_t size) {
    depot &d = gDepots[size];
    std::lock_guard lock(d.mLock);
    block *batch = d.mBatches;
    if (batch) {
        d.mBatches = batch->mNextBatch;
        --d.mCount;
    }
    return batch;
}

// Detaches the first batch of a thread's list, which holds at least one.
block *TakeBatch(cache &local, std::size_t size) {
    block *first = local.mFree[size], *last = first;
    for (int i = 1; i < kBatch; ++i) last = last->mNext;
    local.mFree[size] = last->mNext;
    last->mNext = nullptr;
    local.mCount[size] -= kBatch;
    return first;
}

// Gives an ending thread's blocks to the depots, in whole batches (the count
// of a batch is known by all), and the rest back to the general heap.
struct flusher {
    bool mUsed = false;
    ~flusher() {
        cache &local = tCache;
        local.mClosed = true;
        for (std::size_t size = 0; size < kSizes; ++size) {
            while (local.mCount[size] >= kBatch) Deposit(size, TakeBatch(local, size));
            FreeBatch(local.mFree[size]);
            local.mFree[size] = nullptr;
            local.mCount[size] = 0;
        }
    }
};

thread_local flusher tFlusher;

// The calling thread's cache, with its flusher registered; null once the
// thread is ending.
cache *Local() {
    cache &local = tCache;
    if (local.mClosed) return nullptr;
    if (!local.mArmed) {
        local.mArmed = true;
        tFlusher.mUsed = true;  // the first use registers its destructor
    }
    return &local;
}

std::size_t SizeClass(std::size_t bytes) { return bytes == 0 ? 0 : (bytes - 1) / kGrain; }

}  // namespace

void *message::operator new(std::size_t bytes) {
    std::size_t size = SizeClass(bytes);
    if (size >= kSizes) return ::operator new(bytes);
    std::size_t rounded = (size + 1) * kGrain;  // any block may later serve its whole class
    cache *local = Local();
    if (!local) return ::operator new(rounded);
    block *b = local->mFree[size];
    if (!b) {
        b = Withdraw(size);
        if (!b) return ::operator new(rounded);
        local->mCount[size] = kBatch;
    }
    local->mFree[size] = b->mNext;
    --local->mCount[size];
    QOR_UNPOISON(b, rounded);
    return b;
}

void message::operator delete(void *memory, std::size_t bytes) noexcept {
    if (!memory) return;
    std::size_t size = SizeClass(bytes);
    cache *local = size < kSizes ? Local() : nullptr;
    if (!local) {
        ::operator delete(memory);
        return;
    }
    auto *b = static_cast<block *>(memory);
    QOR_POISON(b + 1, (size + 1) * kGrain - sizeof(block));
    b->mNext = local->mFree[size];
    local->mFree[size] = b;
    // Two batches are enough for one thread: one goes to the depot.
    if (++local->mCount[size] == 2 * kBatch) Deposit(size, TakeBatch(*local, size));
}

void *message::operator new(std::size_t bytes, std::align_val_t alignment) { return ::operator new(bytes, alignment); }

void message::operator delete(void *memory, std::size_t, std::align_val_t alignment) noexcept {
    ::operator delete(memory, alignment);
}

}  // namespace qor::tools::thread
