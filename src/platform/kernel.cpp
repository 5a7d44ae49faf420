// Kernel objects on POSIX threads.
//
// All objects share one lock. A waiter registers itself with every object it
// waits on and sleeps on its own condition variable; whoever signals an object
// hands it directly to the first waiter (auto reset, mutex) or to all of them
// (manual reset, thread end, pulse), removes the waiter from every list and
// wakes it with the index that satisfied it. So a pulse releases exactly the
// threads waiting at that moment, and no wake-up is ever lost or spurious.
#include "qor/tools/platform/kernel.h"
#include "kernel_internal.h"

#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace qor::tools {

namespace {

thread_local DWORD tLastError = 0;

struct waiter;

enum class kind { event, mutex, thread };

struct kobject {
    explicit kobject(kind k) : mKind(k) {}
    virtual ~kobject() = default;

    kind mKind;
    int mReferences = 1;
    bool mSignaled = false;
    bool mManual = true;
    // Mutexes.
    unsigned mOwner = 0;
    int mRecursion = 0;
    std::u16string mName;
    std::vector<std::pair<waiter *, int>> mWaiters;
};

struct waiter {
    std::condition_variable mWake;
    int mSatisfied = -1;
    unsigned mThread = 0;
    std::vector<kobject *> mObjects;
};

std::mutex gKernel;
std::map<std::u16string, kobject *> gNames;  // named objects; guarded by gKernel

kobject *Object(HANDLE h) { return static_cast<kobject *>(h); }

void Unregister(waiter *w) {
    for (kobject *o : w->mObjects) {
        auto &list = o->mWaiters;
        list.erase(std::remove_if(list.begin(), list.end(), [w](auto const &p) { return p.first == w; }), list.end());
    }
    w->mObjects.clear();
}

void Satisfy(waiter *w, int index) {
    w->mSatisfied = index;
    Unregister(w);
    w->mWake.notify_one();
}

// Takes the object for `self` if it is signalled (or a free or own mutex).
bool TryAcquire(kobject *o, unsigned self) {
    switch (o->mKind) {
        case kind::event:
        case kind::thread:
            if (!o->mSignaled) return false;
            if (!o->mManual) o->mSignaled = false;
            return true;
        case kind::mutex:
            if (o->mOwner != 0 && o->mOwner != self) return false;
            o->mOwner = self;
            ++o->mRecursion;
            return true;
    }
    return false;
}

// The object became signalled: hand it to waiters as its kind allows.
void Wake(kobject *o) {
    while (!o->mWaiters.empty()) {
        auto [w, index] = o->mWaiters.front();
        if (o->mKind == kind::mutex) {
            o->mOwner = w->mThread;
            o->mRecursion = 1;
            Satisfy(w, index);
            return;
        }
        if (!o->mManual) {
            o->mSignaled = false;
            Satisfy(w, index);
            return;
        }
        Satisfy(w, index);
    }
}

void Release(kobject *o) {
    if (--o->mReferences > 0) return;
    if (!o->mName.empty()) gNames.erase(o->mName);
    delete o;
}

HANDLE CreateNamed(kind k, char16_t const *name, bool &existed, auto &&make) {
    std::lock_guard lock(gKernel);
    existed = false;
    if (name && *name) {
        auto found = gNames.find(name);
        if (found != gNames.end()) {
            if (found->second->mKind != k) {
                tLastError = ERROR_INVALID_HANDLE;
                return nullptr;
            }
            ++found->second->mReferences;
            existed = true;
            return found->second;
        }
    }
    kobject *o = make();
    if (name && *name) {
        o->mName = name;
        gNames[o->mName] = o;
    }
    return o;
}

}  // namespace

namespace {
std::atomic<unsigned> gNextThreadId{1};
thread_local unsigned tThreadId = 0;
}  // namespace

// Thread ids are numbered by the library, from 1, in the order threads first ask.
unsigned GetCurrentThreadId() {
    if (tThreadId == 0) tThreadId = gNextThreadId++;
    return tThreadId;
}

DWORD GetLastError() { return tLastError; }
void SetLastError(DWORD error) { tLastError = error; }

// ---------------------------------------------------------------- events and mutexes

HANDLE CreateEventW(_SECURITY_ATTRIBUTES *, bool manual, bool initial, char16_t const *name) {
    bool existed;
    HANDLE h = CreateNamed(kind::event, name, existed, [&] {
        auto *o = new kobject(kind::event);
        o->mManual = manual;
        o->mSignaled = initial;
        return o;
    });
    if (h) tLastError = existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS;
    return h;
}

bool SetEvent(HANDLE h) {
    if (!h) return false;
    std::lock_guard lock(gKernel);
    kobject *o = Object(h);
    o->mSignaled = true;
    Wake(o);
    return true;
}

bool ResetEvent(HANDLE h) {
    if (!h) return false;
    std::lock_guard lock(gKernel);
    Object(h)->mSignaled = false;
    return true;
}

bool PulseEvent(HANDLE h) {
    if (!h) return false;
    std::lock_guard lock(gKernel);
    kobject *o = Object(h);
    if (!o->mWaiters.empty()) {
        o->mSignaled = true;
        Wake(o);
    }
    o->mSignaled = false;
    return true;
}

HANDLE CreateMutexW(_SECURITY_ATTRIBUTES *, bool owner, char16_t const *name) {
    unsigned self = GetCurrentThreadId();
    bool existed;
    HANDLE h = CreateNamed(kind::mutex, name, existed, [&] {
        auto *o = new kobject(kind::mutex);
        if (owner) {
            o->mOwner = self;
            o->mRecursion = 1;
        }
        return o;
    });
    if (h) tLastError = existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS;
    return h;
}

bool ReleaseMutex(HANDLE h) {
    if (!h) return false;
    std::lock_guard lock(gKernel);
    kobject *o = Object(h);
    if (o->mKind != kind::mutex || o->mOwner != GetCurrentThreadId()) {
        tLastError = ERROR_NOT_OWNER;
        return false;
    }
    if (--o->mRecursion == 0) {
        o->mOwner = 0;
        Wake(o);
    }
    return true;
}

bool CloseHandle(HANDLE h) {
    if (!h) {
        tLastError = ERROR_INVALID_HANDLE;
        return false;
    }
    std::lock_guard lock(gKernel);
    Release(Object(h));
    return true;
}

// ---------------------------------------------------------------- waits

DWORD WaitForMultipleObjects(DWORD count, HANDLE const *objects, bool waitAll, DWORD milliseconds) {
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || !objects || waitAll) {
        tLastError = ERROR_INVALID_PARAMETER;
        return WAIT_FAILED;
    }
    for (DWORD i = 0; i < count; ++i) {
        if (!objects[i]) {
            tLastError = ERROR_INVALID_HANDLE;
            return WAIT_FAILED;
        }
    }
    unsigned self = GetCurrentThreadId();
    std::unique_lock lock(gKernel);
    for (DWORD i = 0; i < count; ++i) {
        if (TryAcquire(Object(objects[i]), self)) return WAIT_OBJECT_0 + i;
    }
    if (milliseconds == 0) return WAIT_TIMEOUT;

    waiter w;
    w.mThread = self;
    for (DWORD i = 0; i < count; ++i) {
        kobject *o = Object(objects[i]);
        ++o->mReferences;  // the object outlives a close during the wait
        o->mWaiters.emplace_back(&w, int(i));
        w.mObjects.push_back(o);
    }
    std::vector<kobject *> held(w.mObjects);
    if (milliseconds == INFINITE) {
        w.mWake.wait(lock, [&] { return w.mSatisfied >= 0; });
    } else {
        auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        w.mWake.wait_until(lock, deadline, [&] { return w.mSatisfied >= 0; });
    }
    Unregister(&w);
    for (kobject *o : held) Release(o);
    return w.mSatisfied >= 0 ? WAIT_OBJECT_0 + DWORD(w.mSatisfied) : WAIT_TIMEOUT;
}

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
    return WaitForMultipleObjects(1, &object, false, milliseconds);
}

// ---------------------------------------------------------------- threads

namespace {

constexpr int kSuspendSignal = 7;  // offsets from SIGRTMIN
constexpr int kResumeSignal = 8;

struct thread_object : kobject {
    thread_object() : kobject(kind::thread) { sem_init(&mParked, 0, 0); }
    ~thread_object() override { sem_destroy(&mParked); }

    unsigned (*mRoutine)(void *) = nullptr;
    void *mArgument = nullptr;
    pthread_t mThread{};
    unsigned mId = 0;
    bool mFinished = false;  // the routine has returned; guarded by mControl
    // Suspension: guarded by mControl.
    std::mutex mControl;
    std::condition_variable mStartGate;
    int mSuspendCount = 0;
    bool mStarted = false;  // has left the start gate
    std::atomic<int> mSignalCount{0};  // what the signal handler sees
    sem_t mParked;
};

thread_local thread_object *tSelf = nullptr;

void OnSuspend(int) {
    thread_object *self = tSelf;
    if (!self) return;
    int saved = errno;
    sigset_t wait;
    pthread_sigmask(SIG_SETMASK, nullptr, &wait);
    sigdelset(&wait, SIGRTMIN + kResumeSignal);
    sem_post(&self->mParked);
    while (self->mSignalCount.load() > 0) sigsuspend(&wait);
    errno = saved;
}

void OnResume(int) {}

void InstallSignals() {
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction sa {};
        sa.sa_handler = OnSuspend;
        sigemptyset(&sa.sa_mask);
        sigaddset(&sa.sa_mask, SIGRTMIN + kResumeSignal);
        sa.sa_flags = SA_RESTART;
        sigaction(SIGRTMIN + kSuspendSignal, &sa, nullptr);
        struct sigaction sr {};
        sr.sa_handler = OnResume;
        sigemptyset(&sr.sa_mask);
        sr.sa_flags = SA_RESTART;
        sigaction(SIGRTMIN + kResumeSignal, &sr, nullptr);
    });
}

void *Trampoline(void *argument) {
    auto *t = static_cast<thread_object *>(argument);
    tSelf = t;
    tThreadId = t->mId;
    {
        std::unique_lock control(t->mControl);
        t->mStartGate.wait(control, [t] { return t->mSuspendCount == 0; });
        t->mStarted = true;
    }
    t->mRoutine(t->mArgument);
    {
        std::lock_guard control(t->mControl);
        t->mFinished = true;
    }
    {
        std::lock_guard lock(gKernel);
        t->mSignaled = true;
        Wake(t);
        tSelf = nullptr;
        Release(t);
    }
    return nullptr;
}

}  // namespace

HANDLE BeginThread(_SECURITY_ATTRIBUTES *, unsigned stack, unsigned (*routine)(void *), void *argument,
                   unsigned flags, unsigned *id) {
    InstallSignals();
    auto *t = new thread_object;
    t->mRoutine = routine;
    t->mArgument = argument;
    t->mSuspendCount = (flags & CREATE_SUSPENDED) ? 1 : 0;
    t->mReferences = 2;  // the handle and the running thread
    t->mId = gNextThreadId++;
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    if (stack) pthread_attr_setstacksize(&attr, std::max<std::size_t>(stack, PTHREAD_STACK_MIN));
    int rc = pthread_create(&t->mThread, &attr, Trampoline, t);
    pthread_attr_destroy(&attr);
    if (rc != 0) {
        delete t;
        tLastError = ERROR_NOT_ENOUGH_MEMORY;
        return nullptr;
    }
    if (id) *id = t->mId;
    return t;
}

DWORD SuspendThread(HANDLE h) {
    auto *t = static_cast<thread_object *>(h);
    if (!t || t->mKind != kind::thread) return DWORD(-1);
    std::lock_guard control(t->mControl);
    int previous = t->mSuspendCount++;
    if (previous == 0 && t->mStarted && !t->mFinished) {
        t->mSignalCount = 1;
        if (pthread_kill(t->mThread, SIGRTMIN + kSuspendSignal) == 0) {
            while (sem_wait(&t->mParked) != 0) {
            }
        } else {
            t->mSignalCount = 0;
        }
    }
    return DWORD(previous);
}

DWORD ResumeThread(HANDLE h) {
    auto *t = static_cast<thread_object *>(h);
    if (!t || t->mKind != kind::thread) return DWORD(-1);
    std::lock_guard control(t->mControl);
    int previous = t->mSuspendCount;
    if (previous == 0) return 0;
    if (--t->mSuspendCount == 0) {
        if (!t->mStarted) {
            t->mStartGate.notify_all();
        } else if (t->mSignalCount.exchange(0) > 0) {
            pthread_kill(t->mThread, SIGRTMIN + kResumeSignal);
        }
    }
    return DWORD(previous);
}

// ---------------------------------------------------------------- the counter

bool QueryPerformanceCounter(std::int64_t *counter) {
    timespec ts{};
    if (!counter || clock_gettime(CLOCK_MONOTONIC, &ts) != 0) return false;
    *counter = std::int64_t(ts.tv_sec) * 1000000000 + ts.tv_nsec;
    return true;
}

bool QueryPerformanceFrequency(std::int64_t *frequency) {
    if (!frequency) return false;
    *frequency = 1000000000;
    return true;
}

// ---------------------------------------------------------------- timers

namespace {

// One service thread sets or pulses events at their deadlines.
class timer_service {
public:
    static timer_service &Instance() {
        static timer_service *service = new timer_service;  // lives as long as the process
        return *service;
    }

    unsigned Add(unsigned delay, HANDLE event, unsigned flags) {
        std::lock_guard lock(mLock);
        {
            std::lock_guard kernel(gKernel);
            ++Object(event)->mReferences;
        }
        unsigned id = mNextId++;
        if (mNextId == 0) mNextId = 1;
        mTimers[id] = {Clock::now() + std::chrono::milliseconds(delay), std::chrono::milliseconds(delay), event,
                       flags};
        if (!mRunning) {
            mRunning = true;
            std::thread([this] { Run(); }).detach();
        }
        mChanged.notify_one();
        return id;
    }

    bool Kill(unsigned id) {
        std::lock_guard lock(mLock);
        auto found = mTimers.find(id);
        if (found == mTimers.end()) return false;
        Drop(found->second.mEvent);
        mTimers.erase(found);
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;
    struct entry {
        Clock::time_point mDue;
        std::chrono::milliseconds mPeriod;
        HANDLE mEvent;
        unsigned mFlags;
    };

    static void Drop(HANDLE event) {
        std::lock_guard kernel(gKernel);
        Release(Object(event));
    }

    void Run() {
        std::unique_lock lock(mLock);
        for (;;) {
            if (mTimers.empty()) {
                mChanged.wait(lock);
                continue;
            }
            auto next = std::min_element(mTimers.begin(), mTimers.end(),
                                         [](auto const &a, auto const &b) { return a.second.mDue < b.second.mDue; });
            Clock::time_point due = next->second.mDue;  // the entry may go while we wait
            if (Clock::now() < due) {
                mChanged.wait_until(lock, due);
                continue;
            }
            entry &e = next->second;
            if (e.mFlags & TIME_CALLBACK_EVENT_PULSE) {
                PulseEvent(e.mEvent);
            } else {
                SetEvent(e.mEvent);
            }
            if (e.mFlags & TIME_PERIODIC) {
                e.mDue += e.mPeriod.count() > 0 ? e.mPeriod : std::chrono::milliseconds(1);
            } else {
                Drop(e.mEvent);
                mTimers.erase(next);
            }
        }
    }

    std::mutex mLock;
    std::condition_variable mChanged;
    std::map<unsigned, entry> mTimers;
    unsigned mNextId = 1;
    bool mRunning = false;
};

std::atomic<unsigned> gPeriods{0};

}  // namespace

unsigned timeSetEvent(unsigned delay, unsigned, HANDLE event, std::uintptr_t, unsigned flags) {
    if (!event || !(flags & (TIME_CALLBACK_EVENT_SET | TIME_CALLBACK_EVENT_PULSE))) return 0;
    return timer_service::Instance().Add(delay, event, flags);
}

unsigned timeKillEvent(unsigned id) { return timer_service::Instance().Kill(id) ? 0 : 97; }

unsigned timeBeginPeriod(unsigned period) {
    if (period == 0) return 97;
    ++gPeriods;
    return 0;
}

unsigned timeEndPeriod(unsigned period) {
    if (period == 0) return 97;
    if (gPeriods > 0) --gPeriods;
    return 0;
}

}  // namespace qor::tools

namespace qor::tools::platform {

int WaitingThreads(HANDLE object) {
    std::lock_guard lock(gKernel);
    return int(Object(object)->mWaiters.size());
}

}  // namespace qor::tools::platform
