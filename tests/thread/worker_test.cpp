#include "qor/tools/thread/worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/kernel_internal.h"
#include "qor/tools/exception.h"
#include "qor/tools/thread/manager.h"

using namespace qor::tools;
using namespace qor::tools::thread;

namespace {

std::atomic<int> gRuns{0};
std::atomic<int> gMessages{0};
std::atomic<int> gAlive{0};

struct counted : message {
    explicit counted(unsigned long id, worker *from = nullptr) : message(id, from) { ++gAlive; }
    ~counted() override { --gAlive; }
};

// Counts its passes, takes messages one at a time, returns on end or stop.
void Loop(worker *w) {
    ++gRuns;
    for (;;) {
        DWORD r = w->Wait(INFINITE);
        if (r < 2) return;
        if (r == 2) {
            auto m = w->Message(true);
            if (!m.IsEmpty()) ++gMessages;
        }
    }
}

void Throws(worker *) { throw exception(u"routine failed"); }

template <typename F>
void Eventually(F &&condition) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    ASSERT_TRUE(condition());
}

class Worker : public ::testing::Test {
protected:
    void SetUp() override {
        gRuns = 0;
        gMessages = 0;
        gAlive = 0;
    }
    void TearDown() override {
        mWorkers.Terminate();
        EXPECT_EQ(gAlive, 0);
    }
    manager mWorkers;
};

}  // namespace

TEST_F(Worker, StartStopEndTransitions) {
    worker *w = mWorkers.Function(u"w", Loop, false, false);
    EXPECT_TRUE(w->IsAlive());
    EXPECT_FALSE(w->IsStart());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(gRuns, 0);  // not run before Start
    w->Start();
    EXPECT_TRUE(w->IsStart());
    Eventually([] { return gRuns == 1; });
    w->Stop();
    Eventually([&] { return w->LastEvent() == 0 || w->LastEvent() == 1; });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(gRuns, 1);  // stopped: not called again
    w->Start();
    Eventually([] { return gRuns == 2; });
    w->End();
    EXPECT_FALSE(w->IsAlive());
    EXPECT_FALSE(w->IsStart());
    EXPECT_EQ(mWorkers.Count(), 1);  // a dead entry until Terminate
}

TEST_F(Worker, WaitPriorities) {
    worker *w = mWorkers.Function(u"w", Loop, false, false);
    EXPECT_EQ(w->LastEvent(), 0xFFFFFFFFu);
    event extra(true);
    w->Stop();
    mWorkers.Send(u"w", new counted(1));
    // From another thread, the waits see stop (1) before a message (2) before a handle (3).
    EXPECT_EQ(w->Wait(extra, 0), 1u);
    w->Start();
    w->End();
    EXPECT_EQ(w->Wait(extra, 0), 0u);
}

TEST_F(Worker, EndBeforeMessage) {
    worker *w = mWorkers.Function(u"w", Loop, false, false);
    mWorkers.Send(u"w", new counted(1));
    w->End();
    EXPECT_EQ(w->Wait(0), 0u);
    mWorkers.Send(u"w", new counted(2));  // queued into a dead worker: deleted at once
}

TEST_F(Worker, ExceptionEndsTheThreadSilently) {
    worker *w = mWorkers.Function(u"thrower", Throws, false, true);
    Eventually([&] { return WaitForSingleObject(w->Thread(), 0) == WAIT_OBJECT_0; });
    EXPECT_TRUE(w->IsAlive());  // mEnd was not set
}

TEST_F(Worker, MessagesAreHandedOverWhole) {
    worker *a = mWorkers.Function(u"a", Loop);
    worker *b = mWorkers.Function(u"b", Loop);
    mWorkers.Function(u"c", Loop);
    for (int i = 0; i < 100; ++i) a->Send(u"b", new counted(i));
    Eventually([] { return gMessages == 100; });
    b->Broadcast(new counted(7));  // reaches a and c, not b
    Eventually([] { return gMessages == 102; });
    mWorkers.Broadcast(new counted(8));  // no sender: reaches nobody, deleted
    auto *lost = new counted(9);
    mWorkers.Send(u"nobody", lost);  // unknown: neither queued nor deleted
    EXPECT_EQ(gAlive, 1);
    delete lost;
    Eventually([] { return gAlive == 0; });
}

TEST_F(Worker, NamesakesAndFind) {
    worker *older = mWorkers.Function(u"same", Loop);
    worker *younger = mWorkers.Function(u"same", Loop);
    EXPECT_EQ(mWorkers.Find(u"same"), older);
    EXPECT_NE(older, younger);
    EXPECT_EQ(mWorkers.Find(u"other"), nullptr);
    mWorkers.Unregist(u"other");
    mWorkers.Unregist(u"same");
    EXPECT_EQ(mWorkers.Find(u"same"), younger);
    EXPECT_EQ(mWorkers.Count(), 1);
}

TEST_F(Worker, AutoReleaseRemovesItself) {
    worker *w = mWorkers.Function(u"auto", Loop, true, true);
    mWorkers.Function(u"kept", Loop);
    w->End();
    Eventually([&] { return mWorkers.Count() == 1; });
    EXPECT_EQ(mWorkers.Find(u"auto"), nullptr);
}

TEST_F(Worker, MemberFunctionRoutine) {
    struct target {
        void Run(worker *w) {
            mCalls++;
            w->Wait(INFINITE);
        }
        std::atomic<int> mCalls{0};
    };
    container::sptr<target> object(new target);
    mWorkers.Function(u"member", object, &target::Run);
    Eventually([&] { return object->mCalls >= 1; });
}

TEST_F(Worker, TerminateEndsAllOldestFirst) {
    for (int i = 0; i < 5; ++i) mWorkers.Function(string::Formatter(u"w%d", i), Loop, i % 2 == 0);
    mWorkers.Terminate();
    EXPECT_EQ(mWorkers.Count(), 0);
    mWorkers.Terminate();  // empty: nothing more
}

TEST_F(Worker, SuspendAndResume) {
    worker *w = mWorkers.Function(u"w", Loop);
    Eventually([] { return gRuns == 1; });
    EXPECT_EQ(w->Suspend(), 0u);
    mWorkers.Send(u"w", new counted(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(gMessages, 0);
    EXPECT_EQ(w->Resume(), 1u);
    Eventually([] { return gMessages == 1; });
}

// ---------------------------------------------------------------- routines that use their manager while it ends them

namespace {

std::atomic<manager *> gManager{nullptr};
std::atomic<int> gCounted{0};

// At its end the routine looks at, and even adds to, the list that is being
// emptied: nothing may wait for a lock that the ending holds.
std::atomic<int> gRunning{0};

void AsksOnTheWayOut(worker *w) {
    ++gRunning;
    for (;;) {
        if (w->Wait(INFINITE) < 2) break;
        w->Message(true);
    }
    manager *m = gManager;
    gCounted += m->Count();
    m->Find(u"anyone");
    w->Send(u"nobody", new message(1));
    w->Broadcast(new message(2));
    if (m->Count() < 6) m->Function(u"latecomer", Loop);
}

}  // namespace

TEST_F(Worker, RoutinesMayUseTheManagerWhileBeingEnded) {
    gManager = &mWorkers;
    for (int i = 0; i < 4; ++i) mWorkers.Function(string::Formatter(u"w%d", i), AsksOnTheWayOut);
    Eventually([] { return gRunning == 4; });
    mWorkers.Unregist(u"w1");
    EXPECT_EQ(mWorkers.Find(u"w1"), nullptr);
    mWorkers.Terminate();  // ends the latecomers too
    EXPECT_EQ(mWorkers.Count(), 0);
    EXPECT_GT(gCounted, 0);
}

namespace {
std::atomic<int> gSelfSuspended{0};
void SuspendsItself(worker *w) {
    ++gSelfSuspended;
    w->Suspend();
    ++gSelfSuspended;
    Loop(w);
}
}  // namespace

TEST_F(Worker, AWorkerThatSuspendsItselfIsResumed) {
    gSelfSuspended = 0;
    worker *w = mWorkers.Function(u"sleeper", SuspendsItself);
    Eventually([] { return gSelfSuspended == 1; });
    DWORD previous = 0;
    for (int i = 0; i < 1000 && previous == 0; ++i) {
        previous = w->Resume();  // 0 until the worker has counted its suspension
        if (previous == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(previous, 1u);
    Eventually([] { return gSelfSuspended == 2; });
    mWorkers.Send(u"sleeper", new counted(1));
    Eventually([] { return gMessages == 1; });
}
