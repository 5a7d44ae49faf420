// Threads: their handles, ids and suspension.
//
// SuspendThread stops a running thread where it is: it sends the real-time
// signal SIGRTMIN + 7, whose handler parks the thread in sigsuspend until
// ResumeThread sends SIGRTMIN + 8. A thread that suspends itself parks on a
// condition instead, having let go of every lock, so that another thread can
// resume it. A thread made with CREATE_SUSPENDED starts at its first resume.
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <optional>

#include "kernel_object.h"

namespace qor::tools {

namespace platform::kernel {

namespace {

constexpr int kSuspendSignal = 7;  // offsets from SIGRTMIN
constexpr int kResumeSignal = 8;

std::atomic<unsigned> gNextThreadId{1};
thread_local unsigned tThreadId = 0;

}  // namespace

struct thread_state {
    thread_state() { sem_init(&mParked, 0, 0); }
    ~thread_state() { sem_destroy(&mParked); }

    object *mObject = nullptr;
    unsigned (*mRoutine)(void *) = nullptr;
    void *mArgument = nullptr;
    pthread_t mThread{};
    unsigned mId = 0;
    // Guarded by mControl:
    std::mutex mControl;
    std::condition_variable mResumed;  // the start gate, and a thread that suspended itself
    int mSuspendCount = 0;
    bool mStarted = false;
    bool mFinished = false;
    unsigned mRequests = 0;
    // What the signal handler sees: the suspension asked for by signal (0:
    // none), and the last one it acknowledged. Each request is acknowledged
    // once, by a post of mParked, whether the thread parks for it on arrival,
    // is already parked when it comes, or has finished its routine.
    std::atomic<unsigned> mRequest{0};
    std::atomic<unsigned> mAcknowledged{0};
    sem_t mParked;

    void Acknowledge(unsigned request) {
        if (request == 0 || request == mAcknowledged.load()) return;
        mAcknowledged = request;
        sem_post(&mParked);
    }
};

namespace {

thread_local thread_state *tSelf = nullptr;

void OnSuspend(int) {
    thread_state *self = tSelf;
    if (!self) return;
    int saved = errno;
    sigset_t wait;
    pthread_sigmask(SIG_SETMASK, nullptr, &wait);
    sigdelset(&wait, SIGRTMIN + kResumeSignal);
    for (unsigned request; (request = self->mRequest.load()) != 0;) {
        self->Acknowledge(request);
        sigsuspend(&wait);
    }
    errno = saved;
}

void OnResume(int) {}

void InstallSignals() {
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction suspend {};
        suspend.sa_handler = OnSuspend;
        sigemptyset(&suspend.sa_mask);
        sigaddset(&suspend.sa_mask, SIGRTMIN + kResumeSignal);
        suspend.sa_flags = SA_RESTART;
        sigaction(SIGRTMIN + kSuspendSignal, &suspend, nullptr);
        struct sigaction resume {};
        resume.sa_handler = OnResume;
        sigemptyset(&resume.sa_mask);
        resume.sa_flags = SA_RESTART;
        sigaction(SIGRTMIN + kResumeSignal, &resume, nullptr);
    });
}

// While a thread holds a lock that SuspendThread or ResumeThread need (its own
// control, or its object's), a request to suspend it waits until it lets go.
class suspension_blocked {
public:
    suspension_blocked() {
        sigset_t block;
        sigemptyset(&block);
        sigaddset(&block, SIGRTMIN + kSuspendSignal);
        pthread_sigmask(SIG_BLOCK, &block, &mOld);
    }
    suspension_blocked(suspension_blocked const &) = delete;
    suspension_blocked &operator=(suspension_blocked const &) = delete;
    ~suspension_blocked() { pthread_sigmask(SIG_SETMASK, &mOld, nullptr); }

private:
    sigset_t mOld;
};

void *Trampoline(void *argument) {
    auto *t = static_cast<thread_state *>(argument);
    tSelf = t;
    tThreadId = t->mId;
    {
        suspension_blocked blocked;
        std::unique_lock control(t->mControl);
        t->mResumed.wait(control, [t] { return t->mSuspendCount == 0; });
        t->mStarted = true;
    }
    t->mRoutine(t->mArgument);
    suspension_blocked blocked;
    {
        std::lock_guard control(t->mControl);
        t->mFinished = true;
        // A suspension asked for meanwhile will not be delivered: a thread
        // past its routine counts as suspended.
        t->Acknowledge(t->mRequest.exchange(0));
    }
    object *o = t->mObject;
    {
        std::lock_guard lock(o->mLock);
        o->mSignaled.store(true);
        HandOff(o);
    }
    tSelf = nullptr;
    Release(o);  // the running thread's reference; the state may go with it
    return nullptr;
}

// The state of a thread handle, with a reference on its object that `done` gives back.
thread_state *StateOf(HANDLE h, object *&held) {
    held = Acquire(h);
    if (!held) return nullptr;
    if (held->mKind != kind::thread) {
        Release(held);
        held = nullptr;
        SetError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    std::lock_guard lock(held->mLock);
    return held->mThread;
}

}  // namespace

unsigned CurrentThread() {
    if (tThreadId == 0) tThreadId = gNextThreadId++;
    return tThreadId;
}

void Forget(thread_state *state) { delete state; }

}  // namespace platform::kernel

using namespace platform::kernel;

// Thread ids are numbered by the library, from 1, in the order threads first ask.
unsigned GetCurrentThreadId() { return CurrentThread(); }

HANDLE BeginThread(_SECURITY_ATTRIBUTES *, unsigned stack, unsigned (*routine)(void *), void *argument,
                   unsigned flags, unsigned *id) {
    InstallSignals();
    object *o = New(kind::thread);
    auto *t = new thread_state;
    t->mObject = o;
    t->mRoutine = routine;
    t->mArgument = argument;
    t->mSuspendCount = (flags & CREATE_SUSPENDED) ? 1 : 0;
    t->mId = gNextThreadId++;
    {
        std::lock_guard lock(o->mLock);
        o->mThread = t;
        o->mReferences = 2;  // the handle and the running thread
    }
    HANDLE h = Open(o);
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    if (stack) pthread_attr_setstacksize(&attr, std::max<std::size_t>(stack, PTHREAD_STACK_MIN));
    int rc = h ? pthread_create(&t->mThread, &attr, Trampoline, t) : -1;
    pthread_attr_destroy(&attr);
    if (rc != 0) {
        if (h) CloseHandle(h);
        Release(o);
        SetError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    if (id) *id = t->mId;
    return h;
}

DWORD SuspendThread(HANDLE h) {
    object *held = nullptr;
    thread_state *t = StateOf(h, held);
    if (!t) return DWORD(-1);
    bool self = tSelf == t;
    // A thread never parks while it holds its own control: those who would
    // resume it need that lock.
    std::optional<suspension_blocked> blocked;
    if (self) blocked.emplace();
    std::unique_lock control(t->mControl);
    int previous = t->mSuspendCount++;
    bool running = previous == 0 && t->mStarted && !t->mFinished;
    if (running && self) t->mResumed.wait(control, [t] { return t->mSuspendCount == 0; });
    bool signalled = false;
    if (running && !self) {
        if (++t->mRequests == 0) ++t->mRequests;
        t->mRequest = t->mRequests;
        signalled = pthread_kill(t->mThread, SIGRTMIN + kSuspendSignal) == 0;
        if (!signalled) t->mRequest = 0;
    }
    control.unlock();
    // Waited for without the lock, so that the thread can still be resumed
    // (or finish) meanwhile.
    while (signalled && sem_wait(&t->mParked) != 0) {
    }
    Release(held);
    return DWORD(previous);
}

DWORD ResumeThread(HANDLE h) {
    object *held = nullptr;
    thread_state *t = StateOf(h, held);
    if (!t) return DWORD(-1);
    int previous = 0;
    {
        std::lock_guard control(t->mControl);
        previous = t->mSuspendCount;
        if (previous > 0 && --t->mSuspendCount == 0) {
            t->mResumed.notify_all();
            if (t->mRequest.exchange(0) != 0) pthread_kill(t->mThread, SIGRTMIN + kResumeSignal);
        }
    }
    Release(held);
    return DWORD(previous);
}

}  // namespace qor::tools
