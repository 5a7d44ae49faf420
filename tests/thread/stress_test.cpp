// Dozens of workers exchange messages and broadcasts while others start, stop
// and end; then Terminate. Nothing may leak or hang. Routines may not send
// while Terminate holds the list (they would wait for it forever), so the
// workers are stopped and quiet before it.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "qor/tools/thread/manager.h"

using namespace qor::tools;
using namespace qor::tools::thread;

namespace {

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

}  // namespace

TEST(ThreadStress, ManyWorkersManyMessages) {
    {
        manager workers;
        for (int i = 0; i < 24; ++i) workers.Function(string::Formatter(u"chat%d", i), Chatter, false, true);
        for (int i = 0; i < 8; ++i) workers.Function(string::Formatter(u"auto%d", i), Chatter, true, true);
        std::mt19937 random(1);
        for (int round = 0; round < 20000; ++round) {
            int target = int(random() % 24);
            workers.Send(string::Formatter(u"chat%d", target), new counted(random() % 40));
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
        while (gActive > 0) std::this_thread::yield();
        workers.Terminate();
        EXPECT_EQ(workers.Count(), 0);
    }
    EXPECT_EQ(gAlive, 0);
    EXPECT_GE(gHandled, 20000);
}
