// thread::queue<T, P>: the line of messages that a worker owns: first in,
// first out, safe for any number of threads, and paired with a manual-reset
// event that is signalled while the line is not empty, so that a worker can
// wait for messages beside its other handles. The event and the line change
// together under the lock; the event is set when the line stops being empty
// and reset when it empties.
//
// T is thread::message or a class derived from it. Messages are linked into
// the line through themselves, so queuing one allocates nothing, and the lock
// and both ends of the line share one cache line: that line and the message
// are all that a sender and a receiver on two processors hand each other.
//
//   thread::queue<thread::message> line;
//   line.Push(new thread::message(1));
//   container::sptr<thread::message> m = line.Message(true);   // owns it now
#pragma once

#include <type_traits>

#include "qor/tools/container/list.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/thread/critical.h"
#include "qor/tools/thread/event.h"
#include "qor/tools/thread/message.h"

namespace qor::tools::thread {

template <typename T, typename P = container::pif::object>
class queue : public container::queue<T, P> {
    static_assert(std::is_base_of_v<message, T>, "a thread::queue holds messages");

public:
    queue() : mEvent(false, true) {}
    // The line is linked through its messages: it cannot be shared or copied.
    queue(queue const &) = delete;
    queue &operator=(queue const &) = delete;
    // Gives back every message still waiting.
    ~queue() override { Clear(); }

    // Appends; the line owns `object` from now on.
    void Push(T *object) {
        Link(object) = nullptr;
        critical::guard lock(mLock);
        if (mLast) {
            Link(mLast) = object;
        } else {
            mFirst = object;
        }
        mLast = object;
        if (++mCount == 1) mEvent.Set();
    }
    // Takes the first message out; the caller owns it. Null when empty.
    T *Pop() {
        T *object = nullptr;
        T *next = nullptr;
        {
            critical::guard lock(mLock);
            object = mFirst;
            if (object) {
                next = mFirst = static_cast<T *>(Link(object));
                if (!mFirst) mLast = nullptr;
                Link(object) = nullptr;
                --mCount;
            }
            if (mCount == 0) mEvent.Reset();
        }
        // The next take reads the new first message's link under the lock:
        // fetched now, while the lock is free, it is at hand by then. (A
        // prefetch never faults, even if another thread takes and deletes
        // that message first.)
        if (next) __builtin_prefetch(next);
        return object;
    }
    // The first message, still the line's. Null when empty.
    T *Peek() {
        critical::guard lock(mLock);
        if (mCount == 0) mEvent.Reset();
        return mFirst;
    }
    // take: an owning sptr on the first message (empty when there is none);
    // otherwise a marked sptr that only refers to it.
    container::sptr<T> Message(bool take) {
        if (take) return container::sptr<T>(Pop(), false);
        return container::sptr<T>(Peek(), true);
    }

    // The number of waiting messages, and whether there is none.
    int Count() const {
        critical::guard lock(mLock);
        return mCount;
    }
    bool IsEmpty() const { return Count() == 0; }
    // Gives back every waiting message (outside the lock, so that their
    // destructors may use the line) and resets the event.
    void Clear() {
        T *object = nullptr;
        {
            critical::guard lock(mLock);
            object = mFirst;
            mFirst = mLast = nullptr;
            mCount = 0;
            mEvent.Reset();
        }
        while (object) {
            T *next = static_cast<T *>(Link(object));
            P::GiveBack(object);
            object = next;
        }
    }

    event mEvent;  // signalled while a message waits
    // Guards the line and the event together. It starts a cache line, and the
    // line's ends follow it there.
    alignas(64) mutable critical mLock;

private:
    // The list's own ways in would bypass the lock and the event.
    using container::queue<T, P>::Append;
    using container::queue<T, P>::Insert;
    using container::queue<T, P>::TakeFirst;
    using container::queue<T, P>::First;
    using container::queue<T, P>::Head;
    using container::queue<T, P>::Tail;

    static message *&Link(message *m) noexcept { return m->mNext; }

    T *mFirst = nullptr;  // the oldest message
    T *mLast = nullptr;   // the newest message
    int mCount = 0;       // the number of messages
};

}  // namespace qor::tools::thread
