// Dozens of workers exchange messages and broadcasts while others start, stop,
// end, and suspend and resume each other; then Terminate, first on quiet
// workers, then on workers that still chat and ask their manager for its
// count while they are being ended. Nothing may leak or hang.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "qor/tools/thread/manager.h"

using namespace qor::tools;
using namespace qor::tools::thread;

namespace {

// ThreadSanitizer defers a signal to a thread until the thread next calls
// into it, so a thread asleep in the kernel is not stopped at once and the
// suspenders below would wait for ever; they run in the other builds.
#if defined(__SANITIZE_THREAD__)
constexpr int kSuspenders = 0;
#else
constexpr int kSuspenders = 3;
#endif

std::atomic<int> gAlive{0};
std::atomic<long> gHandled{0};
std::atomic<int> gActive{0};

struct counted : message {
    explicit counted(unsigned long id) : message(id) { ++gAlive; }
    counted(counted const &other) : message(other) { ++gAlive; }
    ~counted() override { --gAlive; }
};

void Chatter(worker *w) {
    ++gActive;
    struct leave {
        ~leave() { --gActive; }
    } scope;
    for (;;) {
        DWORD r = w->Wait(INFINITE);
        if (r < 2) return;
        auto m = w->Message(true);
        if (m.IsEmpty()) continue;
        ++gHandled;
        unsigned long id = m->mId;
        if (id > 0 && id % 5 != 0) w->Send(string::Formatter(u"chat%d", int(id % 24)), new counted(id - 1));
    }
}

// On each message, stops a chatting worker where it is and lets it go again.
// Nothing is allocated in between: the stopped thread may hold the allocator.
void Suspender(worker *w) {
    ++gActive;
    struct leave {
        ~leave() { --gActive; }
    } scope;
    std::mt19937 random(w->ThreadId());
    for (;;) {
        DWORD r = w->Wait(INFINITE);
        if (r < 2) return;
        if (w->Message(true).IsEmpty()) continue;
        worker *target = w->Manager()->Find(string::Formatter(u"chat%d", int(random() % 24)));
        if (!target) continue;
        target->Suspend();
        for (int spin = 0; spin < 100; ++spin) std::this_thread::yield();
        target->Resume();
    }
}

std::atomic<manager *> gManager{nullptr};
std::atomic<long> gCounts{0};

// Chats until ended, asking for the manager's count on every pass.
void Busy(worker *w) {
    for (;;) {
        gCounts += gManager.load()->Count();
        DWORD r = w->Wait(1);
        if (r < 2) return;
        w->Message(true);
        w->Broadcast(new counted(1));
    }
}

}  // namespace

TEST(ThreadStress, ManyWorkersManyMessages) {
    {
        manager workers;
        for (int i = 0; i < 24; ++i) workers.Function(string::Formatter(u"chat%d", i), Chatter, false, true);
        for (int i = 0; i < 8; ++i) workers.Function(string::Formatter(u"auto%d", i), Chatter, true, true);
        for (int i = 0; i < kSuspenders; ++i) {
            workers.Function(string::Formatter(u"suspender%d", i), Suspender, false, true);
        }
        std::mt19937 random(1);
        for (int round = 0; round < 20000; ++round) {
            int target = int(random() % 24);
            workers.Send(string::Formatter(u"chat%d", target), new counted(random() % 40));
            if (kSuspenders > 0 && round % 50 == 0) {
                workers.Send(string::Formatter(u"suspender%d", (round / 50) % std::max(kSuspenders, 1)), new counted(1));
            }
            if (round % 500 == 0) {
                worker *w = workers.Find(string::Formatter(u"chat%d", target));
                if (w) w->Broadcast(new counted(0));
                w = workers.Find(string::Formatter(u"chat%d", (target + 1) % 24));
                if (w) {
                    w->Stop();
                    w->Start();
                }
                if (round / 500 < 8) workers.Find(string::Formatter(u"auto%d", round / 500))->End();
            }
        }
        workers.Function(u"late", Chatter);
        // Every message sent from here is handled before the workers stop.
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
        while (gHandled < 20000 && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
        for (int i = 0; i < workers.Count(); ++i) {
            if (worker *w = workers.Find(string::Formatter(u"chat%d", i))) w->Stop();
        }
        workers.Find(u"late")->Stop();  // the auto workers have all been ended
        for (int i = 0; i < kSuspenders; ++i) workers.Find(string::Formatter(u"suspender%d", i))->Stop();
        while (gActive > 0) std::this_thread::yield();
        workers.Terminate();
        EXPECT_EQ(workers.Count(), 0);
    }
    EXPECT_EQ(gAlive, 0);
    EXPECT_GE(gHandled, 20000);
}

TEST(ThreadStress, TerminateWhileWorkersChatAndCount) {
    {
        manager workers;
        gManager = &workers;
        for (int i = 0; i < 16; ++i) workers.Function(string::Formatter(u"busy%d", i), Busy, i % 4 == 0, true);
        for (int i = 0; i < 200; ++i) workers.Send(string::Formatter(u"busy%d", i % 16), new counted(1));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        workers.Unregist(u"busy3");
        workers.Terminate();
        EXPECT_EQ(workers.Count(), 0);
    }
    EXPECT_EQ(gAlive, 0);
    EXPECT_GT(gCounts, 0);
}
