#include "qor/tools/thread/worker.h"

#include "qor/tools/exception.h"
#include "qor/tools/platform/com.h"
#include "qor/tools/thread/manager.h"

namespace qor::tools::thread {

worker::worker(manager *owner, char16_t const *name, bool autoRelease)
    : mAutoRelease(autoRelease), mEnd(false, true), mStart(false, true), mStop(false, true),
      mManager(owner), mName(name) {}

worker::~worker() = default;

void worker::End() { mEnd.Set(); }

void worker::Start() {
    mStop.Reset();
    mStart.Set();
}

void worker::Stop() {
    mStart.Reset();
    mStop.Set();
}

bool worker::IsAlive() const { return !mEnd.IsEnable(0); }

bool worker::IsStart() const { return !mEnd.IsEnable(0) && mStart.IsEnable(0); }

DWORD worker::Resume() { return ResumeThread(mThread); }

DWORD worker::Suspend() { return SuspendThread(mThread); }

void worker::Broadcast(message *m) {
    if (!IsAlive()) {
        delete m;
        return;
    }
    m->mWorker = this;
    mManager->Broadcast(m);
}

void worker::Send(char16_t const *name, message *m) {
    if (!IsAlive()) {
        delete m;
        return;
    }
    m->mWorker = this;
    mManager->Send(name, m);
}

container::sptr<message> worker::Message(bool take) { return mQueue.Message(take); }

DWORD worker::_WaitWith(void *const *extra, int count, unsigned long ms) {
    void *handles[MAXIMUM_WAIT_OBJECTS + 3];
    if (count < 0 || count + 3 > int(MAXIMUM_WAIT_OBJECTS)) {
        mLastEvent = WAIT_FAILED;
        return WAIT_FAILED;
    }
    handles[0] = mEnd;
    handles[1] = mStop;
    handles[2] = mQueue.mEvent;
    for (int i = 0; i < count; ++i) handles[3 + i] = extra[i];
    return _Wait(handles, count + 3, ms);
}

DWORD worker::Wait(container::array<void *, container::pif::array::object> &handles, unsigned long ms) {
    return _WaitWith(handles, handles.Size(), ms);
}

DWORD worker::Wait(void *h1, void *h2, void *h3, void *h4, void *h5, unsigned long ms) {
    void *extra[] = {h1, h2, h3, h4, h5};
    return _WaitWith(extra, 5, ms);
}

DWORD worker::Wait(void *h1, void *h2, void *h3, void *h4, unsigned long ms) {
    void *extra[] = {h1, h2, h3, h4};
    return _WaitWith(extra, 4, ms);
}

DWORD worker::Wait(void *h1, void *h2, void *h3, unsigned long ms) {
    void *extra[] = {h1, h2, h3};
    return _WaitWith(extra, 3, ms);
}

DWORD worker::Wait(void *h1, void *h2, unsigned long ms) {
    void *extra[] = {h1, h2};
    return _WaitWith(extra, 2, ms);
}

DWORD worker::Wait(void *h1, unsigned long ms) { return _WaitWith(&h1, 1, ms); }

DWORD worker::Wait(unsigned long ms) { return _WaitWith(nullptr, 0, ms); }

bool worker::_Begin(void (*routine)(worker *), bool start) {
    return _Begin(new functionT<container::empty>(routine), start, nullptr, 0);
}

bool worker::_Begin(function *f, bool start, _SECURITY_ATTRIBUTES *security, unsigned int stack) {
    mFunction = f;
    mThread = BeginThread(security, stack, _ThreadEntry, this, CREATE_SUSPENDED, &mThreadId);
    if (mThread == nullptr) return false;
    Resume();
    if (start) Start();
    return true;
}

unsigned worker::_ThreadEntry(void *self) {
    auto *w = static_cast<worker *>(self);
    CoInitialize(nullptr);
    try {
        while (w->_WaitStart(INFINITE) == 1) w->mFunction->Run(w);
    } catch (exception const &) {
        // The routine has failed: the thread leaves its loop, unreported.
    }
    CoUninitialize();
    // Unless Terminate or Unregist has taken the worker (and waits for this
    // thread), it removes and deletes itself.
    if (w->mAutoRelease.exchange(false)) w->mManager->_Unregist(w);
    return 0;
}

void worker::_WaitEnd() {
    mEnd.Set();
    if (mThread != nullptr) WaitForSingleObject(mThread, INFINITE);
}

DWORD worker::_WaitStart(unsigned long ms) {
    void *handles[] = {mEnd, mStart};
    return _Wait(handles, 2, ms);
}

DWORD worker::_Wait(void **handles, int count, unsigned long ms) {
    DWORD r = WaitForMultipleObjects(DWORD(count), handles, false, ms >= INFINITE ? INFINITE : DWORD(ms));
    mLastEvent = r;
    return r;
}

void worker::_Queue(message *m) {
    if (IsAlive()) {
        mQueue.Push(m);
    } else {
        delete m;
    }
}

void worker::_Release(bool wait) {
    if (wait) {
        mAutoRelease = false;
        _WaitEnd();
    }
    delete this;
}

}  // namespace qor::tools::thread
