#include "qor/tools/thread/manager.h"

namespace qor::tools::thread {

manager::manager() : mWorkers(0, 10, true) {}

manager::~manager() { Terminate(); }

worker *manager::_Make(char16_t const *name, bool autoRelease) {
    auto *w = new worker(this, name, autoRelease);
    _Regist(w);
    return w;
}

worker *manager::Function(char16_t const *name, void (*routine)(worker *), bool autoRelease, bool start) {
    worker *w = _Make(name, autoRelease);
    w->_Begin(routine, start);
    return w;
}

int manager::_Find(char16_t const *name) const {
    for (int i = 0; i < mWorkers.Size(); ++i) {
        if (mWorkers[i]->mName.Compare(name) == 0) return i;
    }
    return -1;
}

int manager::_Find(worker const *w) const {
    for (int i = 0; i < mWorkers.Size(); ++i) {
        if (mWorkers[i] == w) return i;
    }
    return -1;
}

void manager::_Regist(worker *w) {
    critical::guard lock(mLock);
    mWorkers.Add(w);
}

worker *manager::Find(char16_t const *name) const {
    critical::guard lock(mLock);
    int i = _Find(name);
    return i < 0 ? nullptr : mWorkers[i];
}

int manager::Count() const {
    critical::guard lock(mLock);
    return mWorkers.Size();
}

void manager::Broadcast(message *m) {
    {
        critical::guard lock(mLock);
        for (int i = 0; i < mWorkers.Size(); ++i) {
            worker *w = mWorkers[i];
            if (m->mWorker && m->mWorker != w) w->_Queue(new message(*m));
        }
    }
    delete m;
}

void manager::Send(char16_t const *name, message *m) {
    critical::guard lock(mLock);
    int i = _Find(name);
    if (i >= 0) mWorkers[i]->_Queue(m);
}

worker *manager::_Take(int index) {
    worker *w = mWorkers[index];
    mWorkers[index] = nullptr;  // the set has nothing to delete
    mWorkers.Remove(index);
    return w;
}

// The list's lock is never held while a thread is waited for: a routine may
// find, count, create, send and broadcast while it is being ended.
void manager::Unregist(char16_t const *name) {
    worker *w = nullptr;
    {
        critical::guard lock(mLock);
        int i = _Find(name);
        if (i < 0) return;
        w = _Take(i);
    }
    w->_Release(true);
}

void manager::_Unregist(worker *w) {
    {
        critical::guard lock(mLock);
        int i = _Find(w);
        if (i < 0) return;  // Terminate or Unregist has it, and deletes it
        _Take(i);
    }
    w->_Release(false);
}

void manager::Terminate() {
    for (;;) {
        worker *w = nullptr;
        {
            critical::guard lock(mLock);
            if (mWorkers.Size() == 0) {
                mWorkers.Release();
                return;
            }
            w = _Take(0);
        }
        w->_Release(true);
    }
}

}  // namespace qor::tools::thread
