// thread::manager: owns the application's workers. It creates them by name,
// finds them, routes messages between them and ends them all, oldest first.
// Every reading and change of the worker list happens under its lock, and the
// lock is never held while a worker's thread is waited for, so routines may
// use the manager (Find, Count, Function, Send, Broadcast) while Terminate or
// Unregist ends them.
//
//   thread::manager workers;
//   auto *w = workers.Function(u"loader", Routine, false, true);
//   workers.Send(u"loader", new thread::message(1));
//   workers.Terminate();
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/array.h"
#include "qor/tools/thread/critical.h"
#include "qor/tools/thread/worker.h"

namespace qor::tools::thread {

class QOR_TOOLS_API manager {
public:
    // A manager with no worker; Terminate ends them all when it goes. Copies
    // share nothing but the list's pointers: keep one manager per set of
    // workers.
    manager();
    manager(manager const &) = default;
    manager &operator=(manager const &) = default;
    virtual ~manager();

    // Creates a worker, adds it to the list, starts its thread; returns it
    // (also when its thread could not be made).
    worker *Function(char16_t const *name, void (*routine)(worker *), bool autoRelease = false, bool start = true);
    // The same with a member function of a shared object.
    template <typename T>
    worker *Function(char16_t const *name, container::sptr<T> object, void (T::*method)(worker *),
                     bool autoRelease = false, bool start = true) {
        worker *w = _Make(name, autoRelease);
        w->_Begin(new worker::functionT<T>(object, method), start, nullptr, 0);
        return w;
    }

    // The worker of that name (null when none) and the number of workers.
    // Terminate ends and deletes every worker, Unregist the one of that name,
    // each waiting for its thread; Broadcast gives every worker but the
    // sender a copy of `m` and deletes it; Send queues `m` for the worker of
    // that name (nothing is done, and `m` is not deleted, when there is none).
    worker *Find(char16_t const *name) const;
    int Count() const;
    virtual void Terminate();
    virtual void Unregist(char16_t const *name);
    virtual void Broadcast(message *m);
    virtual void Send(char16_t const *name, message *m);

protected:
    friend class worker;
    void _Regist(worker *w);
    void _Unregist(worker *w);
    int _Find(char16_t const *name) const;
    int _Find(worker const *w) const;

private:
    worker *_Make(char16_t const *name, bool autoRelease);
    // Takes the worker at `index` out of the list; the lock is held.
    worker *_Take(int index);

    container::set<worker, container::pif::set::object> mWorkers;
    mutable critical mLock;
};

}  // namespace qor::tools::thread
