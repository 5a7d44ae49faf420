#include "qor/tools/platform/kernel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "platform/kernel_internal.h"

using namespace qor::tools;

namespace {

void WaitForWaiters(HANDLE h, int n) {
    while (platform::WaitingThreads(h) < n) std::this_thread::yield();
}

std::atomic<HANDLE> gSelf{nullptr};

}  // namespace

TEST(KernelEvent, ManualAndAutoReset) {
    HANDLE manual = CreateEventW(nullptr, true, false, nullptr);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_TIMEOUT);
    SetEvent(manual);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_OBJECT_0);  // stays signalled
    ResetEvent(manual);
    EXPECT_EQ(WaitForSingleObject(manual, 10), WAIT_TIMEOUT);

    HANDLE automatic = CreateEventW(nullptr, false, true, nullptr);
    EXPECT_EQ(WaitForSingleObject(automatic, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(automatic, 0), WAIT_TIMEOUT);  // consumed
    CloseHandle(manual);
    CloseHandle(automatic);
}

TEST(KernelEvent, AutoResetReleasesOneWaiterPerSet) {
    HANDLE e = CreateEventW(nullptr, false, false, nullptr);
    std::atomic<int> released{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) threads.emplace_back([&] {
        WaitForSingleObject(e, INFINITE);
        ++released;
    });
    WaitForWaiters(e, 3);
    SetEvent(e);
    while (released < 1) std::this_thread::yield();
    WaitForWaiters(e, 2);
    EXPECT_EQ(released, 1);
    SetEvent(e);
    SetEvent(e);
    for (auto &t : threads) t.join();
    EXPECT_EQ(WaitForSingleObject(e, 0), WAIT_TIMEOUT);
    CloseHandle(e);
}

TEST(KernelEvent, PulseReleasesOnlyThoseWaiting) {
    HANDLE manual = CreateEventW(nullptr, true, false, nullptr);
    std::vector<std::thread> threads;
    std::atomic<int> released{0};
    for (int i = 0; i < 2; ++i) threads.emplace_back([&] {
        EXPECT_EQ(WaitForSingleObject(manual, INFINITE), WAIT_OBJECT_0);
        ++released;
    });
    WaitForWaiters(manual, 2);
    PulseEvent(manual);
    for (auto &t : threads) t.join();
    EXPECT_EQ(released, 2);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_TIMEOUT);  // nobody waiting: a pulse is lost

    HANDLE automatic = CreateEventW(nullptr, false, false, nullptr);
    PulseEvent(automatic);
    EXPECT_EQ(WaitForSingleObject(automatic, 0), WAIT_TIMEOUT);
    std::atomic<int> woke{0};
    std::thread a([&] { WaitForSingleObject(automatic, INFINITE); ++woke; });
    std::thread b([&] { WaitForSingleObject(automatic, INFINITE); ++woke; });
    WaitForWaiters(automatic, 2);
    PulseEvent(automatic);
    while (woke < 1) std::this_thread::yield();
    WaitForWaiters(automatic, 1);
    EXPECT_EQ(woke, 1);  // one waiter per pulse on an auto-reset event
    SetEvent(automatic);
    a.join();
    b.join();
    CloseHandle(manual);
    CloseHandle(automatic);
}

TEST(KernelWait, LowestIndexWinsAndTimeouts) {
    HANDLE h[3];
    for (auto &x : h) x = CreateEventW(nullptr, true, false, nullptr);
    SetEvent(h[2]);
    SetEvent(h[1]);
    EXPECT_EQ(WaitForMultipleObjects(3, h, false, 0), WAIT_OBJECT_0 + 1);
    ResetEvent(h[1]);
    EXPECT_EQ(WaitForMultipleObjects(3, h, false, 0), WAIT_OBJECT_0 + 2);
    ResetEvent(h[2]);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForMultipleObjects(3, h, false, 30), WAIT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(29));
    EXPECT_EQ(WaitForMultipleObjects(0, h, false, 0), WAIT_FAILED);
    EXPECT_EQ(WaitForMultipleObjects(3, h, true, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);

    std::thread setter([&] {
        WaitForWaiters(h[0], 1);
        SetEvent(h[2]);
    });
    EXPECT_EQ(WaitForMultipleObjects(3, h, false, INFINITE), WAIT_OBJECT_0 + 2);
    setter.join();
    for (auto x : h) CloseHandle(x);
}

TEST(KernelWait, SixtyFourHandles) {
    std::vector<HANDLE> h(64);
    for (auto &x : h) x = CreateEventW(nullptr, false, false, nullptr);
    std::thread setter([&] {
        WaitForWaiters(h[63], 1);
        SetEvent(h[63]);
    });
    EXPECT_EQ(WaitForMultipleObjects(64, h.data(), false, INFINITE), WAIT_OBJECT_0 + 63);
    setter.join();
    std::vector<HANDLE> tooMany(65, h[0]);
    EXPECT_EQ(WaitForMultipleObjects(65, tooMany.data(), false, 0), WAIT_FAILED);
    for (auto x : h) CloseHandle(x);
}

TEST(KernelMutex, OwnershipRecursionAndNames) {
    HANDLE m = CreateMutexW(nullptr, true, u"qor-test-mutex");
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    HANDLE again = CreateMutexW(nullptr, false, u"qor-test-mutex");
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(WaitForSingleObject(again, 0), WAIT_OBJECT_0);  // the owner enters again
    std::atomic<bool> acquired{false};
    std::thread other([&] {
        EXPECT_EQ(WaitForSingleObject(again, INFINITE), WAIT_OBJECT_0);
        acquired = true;
        EXPECT_FALSE(ReleaseMutex(m) == false);
    });
    WaitForWaiters(m, 1);
    EXPECT_TRUE(ReleaseMutex(m));
    EXPECT_FALSE(acquired);  // still held once
    EXPECT_TRUE(ReleaseMutex(m));
    other.join();
    EXPECT_TRUE(acquired);
    EXPECT_FALSE(ReleaseMutex(m));
    EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
    CloseHandle(m);
    CloseHandle(again);
    HANDLE fresh = CreateMutexW(nullptr, false, u"qor-test-mutex");
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);  // the name went with its last handle
    CloseHandle(fresh);
}

namespace {
std::atomic<long> gSpins{0};
unsigned Spin(void *stop) {
    while (!static_cast<std::atomic<bool> *>(stop)->load()) gSpins.fetch_add(1, std::memory_order_relaxed);
    return 0;
}
unsigned Nothing(void *ran) {
    *static_cast<std::atomic<bool> *>(ran) = true;
    return 0;
}
}  // namespace

TEST(KernelThread, SuspendedStartAndEndSignal) {
    std::atomic<bool> ran{false};
    unsigned id = 0;
    HANDLE t = BeginThread(nullptr, 0, Nothing, &ran, CREATE_SUSPENDED, &id);
    ASSERT_NE(t, nullptr);
    EXPECT_NE(id, 0u);
    EXPECT_EQ(WaitForSingleObject(t, 30), WAIT_TIMEOUT);
    EXPECT_FALSE(ran);
    EXPECT_EQ(SuspendThread(t), 1u);
    EXPECT_EQ(ResumeThread(t), 2u);
    EXPECT_EQ(WaitForSingleObject(t, 30), WAIT_TIMEOUT);
    EXPECT_EQ(ResumeThread(t), 1u);
    EXPECT_EQ(WaitForSingleObject(t, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(ran);
    EXPECT_EQ(WaitForSingleObject(t, 0), WAIT_OBJECT_0);  // stays signalled
    CloseHandle(t);
}

TEST(KernelThread, SuspendStopsARunningThread) {
    std::atomic<bool> stop{false};
    HANDLE t = BeginThread(nullptr, 0, Spin, &stop, 0, nullptr);
    while (gSpins.load() == 0) std::this_thread::yield();
    EXPECT_EQ(SuspendThread(t), 0u);
    long frozen = gSpins.load();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(gSpins.load(), frozen);
    EXPECT_EQ(ResumeThread(t), 1u);
    while (gSpins.load() == frozen) std::this_thread::yield();
    stop = true;
    EXPECT_EQ(WaitForSingleObject(t, INFINITE), WAIT_OBJECT_0);
    CloseHandle(t);
}

TEST(KernelCounter, NanosecondFrequency) {
    std::int64_t f = 0, a = 0, b = 0;
    EXPECT_TRUE(QueryPerformanceFrequency(&f));
    EXPECT_EQ(f, 1000000000);
    QueryPerformanceCounter(&a);
    QueryPerformanceCounter(&b);
    EXPECT_GE(b, a);
}

// ---------------------------------------------------------------- handles that are closed

TEST(KernelHandles, ClosedHandlesAreRefusedNotFollowed) {
    HANDLE e = CreateEventW(nullptr, true, true, nullptr);
    ASSERT_TRUE(CloseHandle(e));
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(e));  // a second close only fails
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    SetLastError(0);
    EXPECT_EQ(WaitForSingleObject(e, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(SetEvent(e));
    EXPECT_FALSE(ResetEvent(e));
    EXPECT_FALSE(ReleaseMutex(e));
    EXPECT_EQ(ResumeThread(e), DWORD(-1));
    // The slot is used again, with another generation: the old value stays refused.
    HANDLE other = CreateEventW(nullptr, true, false, nullptr);
    EXPECT_NE(other, e);
    EXPECT_FALSE(SetEvent(e));
    EXPECT_EQ(WaitForSingleObject(other, 0), WAIT_TIMEOUT);
    HANDLE list[] = {other, e};
    EXPECT_EQ(WaitForMultipleObjects(2, list, false, 0), WAIT_FAILED);
    EXPECT_FALSE(CloseHandle(reinterpret_cast<HANDLE>(0x12345)));  // never a handle at all
    CloseHandle(other);
}

TEST(KernelHandles, ACloseDuringAWaitLeavesTheWaitWhole) {
    HANDLE e = CreateEventW(nullptr, false, false, nullptr);
    HANDLE second = CreateEventW(nullptr, false, false, nullptr);
    HANDLE list[] = {e, second};
    std::thread waiter([&] { EXPECT_EQ(WaitForMultipleObjects(2, list, false, INFINITE), WAIT_OBJECT_0 + 1); });
    WaitForWaiters(e, 1);
    CloseHandle(e);  // the object lives on for the waiter
    SetEvent(second);
    waiter.join();
    CloseHandle(second);
}

// ---------------------------------------------------------------- abandoned mutexes

TEST(KernelMutex, AThreadThatEndsOwningAMutexAbandonsIt) {
    HANDLE m = CreateMutexW(nullptr, false, nullptr);
    HANDLE other = CreateEventW(nullptr, true, false, nullptr);
    std::thread owner([&] { EXPECT_EQ(WaitForSingleObject(m, 0), WAIT_OBJECT_0); });
    owner.join();  // ends without ReleaseMutex
    HANDLE list[] = {other, m};
    EXPECT_EQ(WaitForMultipleObjects(2, list, false, 1000), WAIT_ABANDONED_0 + 1);
    EXPECT_TRUE(ReleaseMutex(m));
    EXPECT_EQ(WaitForSingleObject(m, 0), WAIT_OBJECT_0);  // abandoned once, then as usual
    EXPECT_TRUE(ReleaseMutex(m));

    // A waiter already waiting is handed the mutex when its owner ends.
    std::atomic<bool> owned{false};
    HANDLE done = CreateEventW(nullptr, true, false, nullptr);
    std::thread holder([&] {
        WaitForSingleObject(m, INFINITE);
        owned = true;
        WaitForSingleObject(done, INFINITE);
    });
    while (!owned) std::this_thread::yield();
    std::thread waiter([&] { EXPECT_EQ(WaitForSingleObject(m, 5000), WAIT_ABANDONED_0); });
    WaitForWaiters(m, 1);
    SetEvent(done);
    holder.join();
    waiter.join();
    CloseHandle(m);
    CloseHandle(other);
    CloseHandle(done);
}

// ---------------------------------------------------------------- a thread that suspends itself

namespace {
unsigned SuspendSelf(void *counter) {
    auto *passes = static_cast<std::atomic<int> *>(counter);
    ++*passes;
    SuspendThread(gSelf.load());
    ++*passes;
    return 0;
}
}  // namespace

TEST(KernelThread, AThreadThatSuspendsItselfIsResumedByAnother) {
    std::atomic<int> passes{0};
    HANDLE t = BeginThread(nullptr, 0, SuspendSelf, &passes, CREATE_SUSPENDED, nullptr);
    gSelf = t;
    ResumeThread(t);
    while (passes < 1) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(passes, 1);
    DWORD previous = DWORD(-1);
    for (int i = 0; i < 1000 && previous != 1; ++i) {
        previous = ResumeThread(t);  // until the thread has counted its own suspension
        if (previous == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(previous, 1u);
    EXPECT_EQ(WaitForSingleObject(t, 5000), WAIT_OBJECT_0);
    EXPECT_EQ(passes, 2);
    CloseHandle(t);
}
