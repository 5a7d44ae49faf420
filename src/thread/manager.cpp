#include "qor/tools/thread/manager.h"

#include <vector>

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
    mLock.Lock();
    mWorkers.Add(w);
    mLock.Unlock();
}

worker *manager::Find(char16_t const *name) const {
    mLock.Lock();
    int i = _Find(name);
    worker *w = i < 0 ? nullptr : mWorkers[i];
    mLock.Unlock();
    return w;
}

int manager::Count() const {
    mLock.Lock();
    int n = mWorkers.Size();
    mLock.Unlock();
    return n;
}

void manager::Broadcast(message *m) {
    mLock.Lock();
    for (int i = 0; i < mWorkers.Size(); ++i) {
        worker *w = mWorkers[i];
        if (m->mWorker && m->mWorker != w) w->_Queue(new message(*m));
    }
    mLock.Unlock();
    delete m;
}

void manager::Send(char16_t const *name, message *m) {
    mLock.Lock();
    int i = _Find(name);
    if (i >= 0) mWorkers[i]->_Queue(m);
    mLock.Unlock();
}

namespace {

// Workers whose threads were already removing themselves: waited for and
// deleted once the list's lock is free, so that those threads can finish.
void Finish(std::vector<worker *> const &pending, auto &&thread) {
    for (worker *w : pending) {
        WaitForSingleObject(thread(w), INFINITE);
        delete w;
    }
}

}  // namespace

void manager::Unregist(char16_t const *name) {
    std::vector<worker *> pending;
    mLock.Lock();
    int i = _Find(name);
    if (i >= 0) {
        worker *w = mWorkers[i];
        mWorkers[i] = nullptr;
        mWorkers.Remove(i);
        if (!w->_Release(true)) pending.push_back(w);
    }
    mLock.Unlock();
    Finish(pending, [](worker *w) -> void * { return w->mThread; });
}

void manager::_Unregist(worker *w) {
    mLock.Lock();
    int i = _Find(w);
    if (i >= 0) {
        mWorkers[i] = nullptr;
        mWorkers.Remove(i);
        w->_Release(false);
    }
    mLock.Unlock();
}

void manager::Terminate() {
    std::vector<worker *> pending;
    mLock.Lock();
    while (mWorkers.Size() > 0) {
        worker *w = mWorkers[0];
        mWorkers[0] = nullptr;
        mWorkers.Remove(0);
        if (!w->_Release(true)) pending.push_back(w);
    }
    mWorkers.Release();
    mLock.Unlock();
    Finish(pending, [](worker *w) -> void * { return w->mThread; });
}

}  // namespace qor::tools::thread
