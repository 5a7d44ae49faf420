// thread::worker: one thread of the application with a name, a routine, a
// message queue and three control events (end, start, stop). Workers are made
// by thread::manager. The routine is called again and again while the worker
// is started; it normally loops on Wait and returns on result 0 (end) or 1
// (stop). Wait results: 0 end, 1 stop, 2 a message, 3.. the caller's handles,
// WAIT_TIMEOUT, WAIT_FAILED; the lowest index wins.
//
//   void Routine(thread::worker *w) {
//       for (;;) {
//           DWORD r = w->Wait(INFINITE);
//           if (r < 2) return;
//           if (r == 2) { auto m = w->Message(true); ... }
//       }
//   }
#pragma once

#include "qor/tools/export.h"

#include <atomic>

#include "qor/tools/container/array.h"
#include "qor/tools/container/ptr.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/container/two.h"
#include "qor/tools/string.h"
#include "qor/tools/thread/event.h"
#include "qor/tools/thread/message.h"
#include "qor/tools/thread/queue.h"

namespace qor::tools::thread {

class manager;

class QOR_TOOLS_API worker {
    friend class manager;

public:
    // The routine: Run is called once per pass.
    class function {
    public:
        virtual ~function() = default;
        // One pass of the routine for the worker `w`.
        virtual void Run(worker *w) = 0;
    };

    // A free function (T = container::empty) or a member function of a shared object.
    template <typename T>
    class functionT : public function {
    public:
        // Calls `routine`, or `method` on `object`.
        explicit functionT(void (*routine)(worker *)) : mRoutine(routine) {}
        functionT(container::sptr<T> object, void (T::*method)(worker *)) : mObject(object), mMethod(method) {}
        // Calls the member function when there is an object, else the routine.
        void Run(worker *w) override {
            if (!mObject.IsEmpty()) {
                (mObject.Get()->*mMethod)(w);
            } else if (mRoutine) {
                mRoutine(w);
            }
        }

        container::sptr<T> mObject;                // the object whose method runs
        void (*mRoutine)(worker *) = nullptr;      // the function, or null
        void (T::*mMethod)(worker *) = nullptr;    // the method, or null
    };

    virtual ~worker();
    // Control: End asks the thread to leave (for good), Start lets the
    // routine run, Stop pauses it between passes. IsAlive: End was not
    // asked; IsStart: alive and started.
    virtual void End();
    virtual void Start();
    virtual void Stop();
    virtual bool IsAlive() const;
    virtual bool IsStart() const;
    // Suspends or resumes the thread (from any thread, itself included); the
    // previous suspend count, as the platform's calls answer it.
    virtual DWORD Resume();
    virtual DWORD Suspend();
    // Messages: to every other worker, or to the one of that name (a dead
    // sender's message is deleted). Message takes the first waiting message
    // (`take`) or looks at it; empty when there is none.
    virtual void Broadcast(message *m);
    virtual void Send(char16_t const *name, message *m);
    virtual container::sptr<message> Message(bool take);
    // Waits up to `ms` for mEnd (0), mStop (1), a message (2) or one of the
    // given handles (3 on), the lowest index first; WAIT_TIMEOUT or
    // WAIT_FAILED otherwise.
    virtual DWORD Wait(container::array<void *, container::pif::array::object> &handles, unsigned long ms);
    virtual DWORD Wait(void *h1, void *h2, void *h3, void *h4, void *h5, unsigned long ms);
    virtual DWORD Wait(void *h1, void *h2, void *h3, void *h4, unsigned long ms);
    virtual DWORD Wait(void *h1, void *h2, void *h3, unsigned long ms);
    virtual DWORD Wait(void *h1, void *h2, unsigned long ms);
    virtual DWORD Wait(void *h1, unsigned long ms);
    virtual DWORD Wait(unsigned long ms);

    // The manager, the routine, the last Wait's result, the name, and the
    // thread's id and handle.
    manager *Manager() const noexcept { return mManager; }
    function *Function() const noexcept { return mFunction.Get(); }
    DWORD LastEvent() const noexcept { return mLastEvent.load(); }
    string const &Name() const noexcept { return mName; }
    unsigned ThreadId() const noexcept { return mThreadId; }
    void *Thread() const noexcept { return mThread; }

protected:
    worker(manager *owner, char16_t const *name, bool autoRelease);

    bool _Begin(void (*routine)(worker *), bool start);
    virtual bool _Begin(function *f, bool start, _SECURITY_ATTRIBUTES *security, unsigned int stack);
    static unsigned _ThreadEntry(void *self);
    virtual void _WaitEnd();
    virtual DWORD _WaitStart(unsigned long ms);
    virtual DWORD _Wait(void **handles, int count, unsigned long ms);
    virtual void _Queue(message *m);
    // Ends and deletes this worker. With `wait` (from another thread, once
    // the worker is out of the manager's list): the thread is told to end and
    // waited for. Without: on the worker's own thread at its end.
    virtual void _Release(bool wait);

    handle mThread;
    unsigned int mThreadId = 0;
    // The thread removes and deletes the worker at its end; cleared by
    // whoever takes that over (the thread itself, or _Release(true)).
    std::atomic<bool> mAutoRelease;
    container::ptr<function, container::pif::object> mFunction;
    event mEnd;
    event mStart;
    event mStop;
    manager *mManager;
    string mName;
    queue<message, container::pif::object> mQueue;
    std::atomic<DWORD> mLastEvent{0xFFFFFFFFu};

private:
    DWORD _WaitWith(void *const *extra, int count, unsigned long ms);
};

}  // namespace qor::tools::thread
