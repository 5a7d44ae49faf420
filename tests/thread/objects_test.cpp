#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/kernel_internal.h"
#include "qor/tools/thread/critical.h"
#include "qor/tools/thread/event.h"
#include "qor/tools/thread/message.h"
#include "qor/tools/thread/mutex.h"
#include "qor/tools/thread/queue.h"
#include "qor/tools/thread/timer.h"

using namespace qor::tools;
using namespace qor::tools::thread;

namespace {
struct counted : message {
    explicit counted(int *alive, unsigned long id = 0) : message(id), mAlive(alive) { ++*mAlive; }
    counted(counted const &other) : message(other), mAlive(other.mAlive) { ++*mAlive; }
    ~counted() override { --*mAlive; }
    int *mAlive;
};
}  // namespace

TEST(ThreadHandle, RawCopiesAndHarmlessClose) {
    handle h;
    h.Close();
    h.Close();
    event e;
    void *raw = e;
    handle other(CreateEventW(nullptr, true, false, nullptr));
    void *otherRaw = other;
    other = raw;  // the old value is not closed...
    EXPECT_TRUE(other == raw);
    EXPECT_EQ(WaitForSingleObject(otherRaw, 0), WAIT_TIMEOUT);  // ...so it still works
    CloseHandle(otherRaw);
    other = static_cast<void *>(nullptr);
}

// An event passed by value: the copy closes the handle when it goes, and the
// original is then a closed handle that fails quietly, twice over.
void TakeByValue(event copy) { copy.Set(); }

TEST(ThreadEvent, PassedByValueIsHarmless) {
    {
        event original;
        TakeByValue(original);
        original.Set();
        EXPECT_FALSE(original.IsEnable(0));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }  // the second close fails quietly
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(ThreadCritical, AGuardLetsGoWhenAnExceptionPasses) {
    critical lock;
    try {
        critical::guard held(lock);
        critical::guard again(lock);  // its owner may enter again
        throw std::runtime_error("fails while held");
    } catch (std::runtime_error const &) {
    }
    std::atomic<bool> taken{false};
    std::thread other([&] {
        critical::guard held(lock);
        taken = true;
    });
    other.join();
    EXPECT_TRUE(taken);
}

TEST(ThreadEvent, ManualByDefault) {
    event e;
    EXPECT_FALSE(e.IsEnable(0));
    e = true;
    EXPECT_TRUE(e.IsEnable(0));
    EXPECT_TRUE(e.IsEnable(0));
    e = false;
    EXPECT_FALSE(e.IsEnable(0));
    event automatic(true, false);
    EXPECT_TRUE(automatic.IsEnable(0));
    EXPECT_FALSE(automatic.IsEnable(0));
}

TEST(ThreadMutex, SecondCreateOfANameAlreadyExists) {
    mutex a;
    EXPECT_EQ(a.Create(u"qor-thread-mutex", true), ERROR_SUCCESS);
    mutex b(u"qor-thread-mutex", false);
    mutex c;
    EXPECT_EQ(c.Create(u"qor-thread-mutex"), ERROR_ALREADY_EXISTS);
    std::thread other([&] { EXPECT_EQ(WaitForSingleObject(c, 20), WAIT_TIMEOUT); });
    other.join();
    ReleaseMutex(a);
    std::thread again([&] {
        EXPECT_EQ(WaitForSingleObject(c, INFINITE), WAIT_OBJECT_0);
        ReleaseMutex(c);
    });
    again.join();
}

TEST(ThreadQueue, OwnershipAndTheEvent) {
    int alive = 0;
    {
        queue<message> q;
        auto empty = q.Message(true);
        EXPECT_TRUE(empty.IsEmpty());
        EXPECT_FALSE(q.mEvent.IsEnable(0));
        q.Push(new counted(&alive, 1));
        q.Push(new counted(&alive, 2));
        EXPECT_TRUE(q.mEvent.IsEnable(0));
        {
            auto peek1 = q.Message(false);
            auto peek2 = q.Message(false);
            EXPECT_EQ(peek1.Get(), peek2.Get());
            EXPECT_EQ(peek1->mId, 1u);
        }
        EXPECT_EQ(alive, 2);  // a peek does not own
        {
            auto taken = q.Message(true);
            EXPECT_EQ(taken->mId, 1u);
            EXPECT_TRUE(q.mEvent.IsEnable(0));
        }
        EXPECT_EQ(alive, 1);  // a take owns
        auto last = q.Message(true);
        EXPECT_EQ(last->mId, 2u);
        EXPECT_FALSE(q.mEvent.IsEnable(0));
        q.Push(new counted(&alive, 3));
    }
    EXPECT_EQ(alive, 0);  // the queue deletes what it still holds
}

TEST(ThreadQueue, MessagesMoveBetweenLinesWhole) {
    // A message taken from one line and pushed into another is linked anew,
    // and a copy of a waiting message is not linked at all.
    int alive = 0;
    queue<message> first, second;
    for (unsigned long id = 1; id <= 5; ++id) first.Push(new counted(&alive, id));
    EXPECT_EQ(first.Count(), 5);
    message *moved = first.Pop();
    second.Push(moved);
    counted copy(*static_cast<counted *>(first.Message(false).Get()));
    second.Push(new counted(copy));
    EXPECT_EQ(second.Count(), 2);
    EXPECT_EQ(second.Pop(), moved);
    delete moved;
    EXPECT_EQ(second.Message(true)->mId, 2u);
    EXPECT_TRUE(second.IsEmpty());
    EXPECT_FALSE(second.mEvent.IsEnable(0));
    for (unsigned long id = 2; id <= 5; ++id) EXPECT_EQ(first.Message(true)->mId, id);
    EXPECT_EQ(alive, 1);  // the copy on the stack
}

TEST(ThreadQueue, ClearGivesBackAndResets) {
    int alive = 0;
    queue<message> q;
    for (int i = 0; i < 3; ++i) q.Push(new counted(&alive));
    q.Clear();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(q.IsEmpty());
    EXPECT_FALSE(q.mEvent.IsEnable(0));
    q.Push(new counted(&alive, 7));
    EXPECT_TRUE(q.mEvent.IsEnable(0));
    EXPECT_EQ(q.Message(true)->mId, 7u);
}

TEST(ThreadQueue, ManySendersOneReceiverInOrder) {
    // Each sender's messages (numbered sender * kEach + i) arrive once each and
    // in the order it sent them; the receiver waits on the event whenever the
    // line is empty.
    constexpr unsigned long kSenders = 4, kEach = 20000;
    queue<message> q;
    std::vector<std::thread> senders;
    for (unsigned long s = 0; s < kSenders; ++s) {
        senders.emplace_back([&q, s] {
            for (unsigned long i = 0; i < kEach; ++i) q.Push(new message(s * kEach + i));
        });
    }
    std::vector<unsigned long> next(kSenders, 0);
    unsigned long received = 0, outOfOrder = 0;
    while (received < kSenders * kEach) {
        if (WaitForSingleObject(q.mEvent, 10000) != WAIT_OBJECT_0) break;
        auto m = q.Message(true);
        if (m.IsEmpty()) continue;
        ++received;
        unsigned long &expected = next[m->mId / kEach];
        if (m->mId % kEach != expected) ++outOfOrder;
        expected = m->mId % kEach + 1;
    }
    for (auto &t : senders) t.join();
    EXPECT_EQ(received, kSenders * kEach);
    EXPECT_EQ(outOfOrder, 0u);
    EXPECT_TRUE(q.IsEmpty());
    EXPECT_FALSE(q.mEvent.IsEnable(0));
}

TEST(ThreadCritical, SleepersAreWokenAndCountsStayExact) {
    // A holder that sleeps inside makes the others give up spinning and sleep
    // on the lock; every one of them must be woken, and the count be exact.
    critical lock;
    long counter = 0;
    constexpr int kThreads = 6, kRounds = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRounds; ++i) {
                critical::guard held(lock);
                critical::guard again(lock);
                ++counter;
                if (t == 0 && i % 100 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    }
    for (auto &t : threads) t.join();
    EXPECT_EQ(counter, long(kThreads) * kRounds);
    critical copy(lock);  // a copy is a lock of its own
    critical::guard one(lock);
    std::thread([&] { critical::guard two(copy); }).join();
}

TEST(ThreadTimer, OneShotPeriodicPulseAndKill) {
    timer t;
    EXPECT_FALSE(t.IsSet());
    EXPECT_FALSE(t.IsEnable(0));
    t.Kill();
    t.Set(20, false, false, 1);
    EXPECT_TRUE(t.IsSet());
    EXPECT_TRUE(t.IsEnable(2000));
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_TRUE(t.IsEnable(0));  // a one shot stays signalled
    EXPECT_TRUE(t.IsSet());
    t.Kill();
    EXPECT_FALSE(t.IsEnable(0));
    EXPECT_FALSE(t.IsSet());

    timer periodic;
    periodic.Set(5, true, false, 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(periodic.IsEnable(2000));
        periodic.Reset();
    }
    periodic.Kill();

    timer pulse;
    timer::BeginPeriod(1);
    pulse.Set(5, true, true, 1);
    EXPECT_TRUE(pulse.IsEnable(2000));  // a waiter catches a pulse...
    EXPECT_FALSE(pulse.IsEnable(0));    // ...which leaves nothing signalled
    pulse.Kill();
    timer::EndPeriod(1);
}
