// thread::queue<T, P>: a thread-safe first-in-first-out line of owned objects
// paired with a manual-reset event that is signalled while the line is not
// empty, so that a worker can wait for messages beside its other handles.
// The event and the line change together under the lock.
#pragma once

#include "qor/tools/container/list.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/thread/critical.h"
#include "qor/tools/thread/event.h"

namespace qor::tools::thread {

template <typename T, typename P = container::pif::object>
class queue : public container::queue<T, P> {
public:
    queue() : mEvent(false, true) {}

    // Appends; the event is set when the line stops being empty.
    void Push(T *object) {
        critical::guard lock(mLock);
        container::queue<T, P>::Push(object);
        if (this->Count() == 1) mEvent.Set();
    }
    // Takes the first element out; the caller owns it. Null when empty.
    T *Pop() {
        critical::guard lock(mLock);
        T *object = container::queue<T, P>::Pop();
        if (this->IsEmpty()) mEvent.Reset();
        return object;
    }
    // The first element, still the line's. Null when empty.
    T *Peek() {
        critical::guard lock(mLock);
        T *object = container::queue<T, P>::Peek();
        if (this->IsEmpty()) mEvent.Reset();
        return object;
    }
    // take: an owning sptr on the first element (empty when there is none);
    // otherwise a marked sptr that only refers to it.
    container::sptr<T> Message(bool take) {
        if (take) return container::sptr<T>(Pop(), false);
        return container::sptr<T>(Peek(), true);
    }

    event mEvent;    // signalled while a message waits
    critical mLock;  // guards the line and the event together
};

}  // namespace qor::tools::thread
