// Messages between two workers against a bare mutex + condition-variable
// queue, the latency from SetEvent to the waiter waking (a round trip is two
// wake-ups), a wait over 64 handles woken by any of them, and a wait that
// finds its first handle signalled, over one and over 64 handles.
#include <benchmark/benchmark.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "qor/tools/thread/manager.h"

using namespace qor::tools;
using namespace qor::tools::thread;

namespace {

constexpr int kBatch = 10000;
std::atomic<int> gReceived{0};
event *gDone = nullptr;

void Receiver(worker *w) {
    for (;;) {
        DWORD r = w->Wait(INFINITE);
        if (r < 2) return;
        if (r == 2 && !w->Message(true).IsEmpty() && ++gReceived == kBatch) gDone->Set();
    }
}

void Sender(worker *w) {
    for (;;) {
        DWORD r = w->Wait(INFINITE);
        if (r < 2) return;
        if (r == 2 && !w->Message(true).IsEmpty()) {
            for (int i = 0; i < kBatch; ++i) w->Send(u"receiver", new message(1));
        }
    }
}

void WorkerMessages(benchmark::State &state) {
    manager workers;
    event done;
    gDone = &done;
    workers.Function(u"receiver", Receiver);
    workers.Function(u"sender", Sender);
    for (auto _ : state) {
        gReceived = 0;
        done.Reset();
        workers.Send(u"sender", new message(0));
        done.IsEnable(INFINITE);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    workers.Find(u"receiver")->Stop();
    workers.Find(u"sender")->Stop();
    workers.Terminate();
}

void BareQueueMessages(benchmark::State &state) {
    std::mutex lock;
    std::condition_variable ready;
    std::deque<message *> line;
    bool stop = false;
    std::atomic<int> received{0};
    std::mutex doneLock;
    std::condition_variable doneReady;
    std::thread receiver([&] {
        std::unique_lock l(lock);
        for (;;) {
            ready.wait(l, [&] { return stop || !line.empty(); });
            if (stop) return;
            message *m = line.front();
            line.pop_front();
            l.unlock();
            delete m;
            if (++received == kBatch) {
                std::lock_guard d(doneLock);
                doneReady.notify_one();
            }
            l.lock();
        }
    });
    for (auto _ : state) {
        received = 0;
        std::thread sender([&] {
            for (int i = 0; i < kBatch; ++i) {
                std::lock_guard l(lock);
                line.push_back(new message(1));
                ready.notify_one();
            }
        });
        {
            std::unique_lock d(doneLock);
            doneReady.wait(d, [&] { return received == kBatch; });
        }
        sender.join();
    }
    {
        std::lock_guard l(lock);
        stop = true;
        ready.notify_one();
    }
    receiver.join();
    state.SetItemsProcessed(state.iterations() * kBatch);
}

void EventWakeLatency(benchmark::State &state) {
    HANDLE ping = CreateEventW(nullptr, false, false, nullptr), pong = CreateEventW(nullptr, false, false, nullptr);
    std::atomic<bool> stop{false};
    std::thread echo([&] {
        while (WaitForSingleObject(ping, INFINITE) == WAIT_OBJECT_0 && !stop) SetEvent(pong);
    });
    for (auto _ : state) {
        SetEvent(ping);
        WaitForSingleObject(pong, INFINITE);
    }
    stop = true;
    SetEvent(ping);
    echo.join();
    CloseHandle(ping);
    CloseHandle(pong);
    state.SetLabel("round trip = two wake-ups");
}

void Wait64Handles(benchmark::State &state) {
    std::vector<HANDLE> handles(64);
    for (auto &h : handles) h = CreateEventW(nullptr, false, false, nullptr);
    HANDLE pong = CreateEventW(nullptr, false, false, nullptr);
    std::atomic<bool> stop{false};
    std::thread waiter([&] {
        while (WaitForMultipleObjects(64, handles.data(), false, INFINITE) != WAIT_FAILED && !stop) SetEvent(pong);
    });
    int i = 0;
    for (auto _ : state) {
        SetEvent(handles[i++ % 64]);
        WaitForSingleObject(pong, INFINITE);
    }
    stop = true;
    SetEvent(handles[0]);
    waiter.join();
    for (auto h : handles) CloseHandle(h);
    CloseHandle(pong);
}

// A wait that finds its first handle signalled: as fast over 64 handles as
// over one, since the rest are never looked at.
void WaitFirstOf(benchmark::State &state) {
    std::vector<HANDLE> handles(std::size_t(state.range(0)));
    for (auto &h : handles) h = CreateEventW(nullptr, true, false, nullptr);
    SetEvent(handles[0]);
    for (auto _ : state) benchmark::DoNotOptimize(WaitForMultipleObjects(DWORD(handles.size()), handles.data(), false, 0));
    for (auto h : handles) CloseHandle(h);
}

}  // namespace

BENCHMARK(WaitFirstOf)->Arg(1)->Arg(64);
BENCHMARK(WorkerMessages)->Name("Messages")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BareQueueMessages)->Name("Messages_Anchor")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(EventWakeLatency)->UseRealTime();
BENCHMARK(Wait64Handles)->UseRealTime();
