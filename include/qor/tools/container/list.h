// list<T, P> and queue<T, P>: handles on a shared doubly linked list of
// pointers that the list owns. Clearing (and the last handle) gives every
// element back by P; Pop() hands the first element over without giving it back.
//
//   queue<message> q;
//   q.Push(new message(1, nullptr));
//   message *m = q.Pop();   // the caller owns m now
#pragma once

#include "qor/tools/container/base.h"

namespace qor::tools::container {

namespace base {

template <typename T, typename P>
class list : public _counter<P> {
public:
    struct node {
        T *mObject;
        node *mPrev;
        node *mNext;
    };

    list() noexcept = default;
    list(list const &) = delete;
    list &operator=(list const &) = delete;
    ~list() override {
        Clear();
        while (node *n = mSpare) {
            mSpare = n->mNext;
            delete n;
        }
    }

    // Links a new node behind `after` (null: at the very front).
    node *Insert(node *after, T *element) {
        node *next = after ? after->mNext : mHead;
        node *n = mSpare;
        if (n) {
            mSpare = n->mNext;
            --mSpareCount;
            *n = node{element, after, next};
        } else {
            n = new node{element, after, next};
        }
        if (after) after->mNext = n; else mHead = n;
        if (next) next->mPrev = n; else mTail = n;
        ++mCount;
        return n;
    }
    // Unlinks the first node and hands its element over; null when empty.
    T *TakeFirst() noexcept {
        node *n = mHead;
        if (!n) return nullptr;
        mHead = n->mNext;
        if (mHead) mHead->mPrev = nullptr; else mTail = nullptr;
        --mCount;
        T *element = n->mObject;
        // A few nodes are kept for the next elements: a line that is filled
        // and emptied again and again allocates nothing.
        if (mSpareCount < kSpareNodes) {
            n->mNext = mSpare;
            mSpare = n;
            ++mSpareCount;
        } else {
            delete n;
        }
        return element;
    }
    void Clear() {
        while (mHead) P::GiveBack(TakeFirst());
        mHead = mTail = nullptr;
        mCount = 0;
    }

    node *mHead = nullptr;
    node *mTail = nullptr;
    int mCount = 0;

private:
    static constexpr int kSpareNodes = 64;
    node *mSpare = nullptr;
    int mSpareCount = 0;
};

}  // namespace base

template <typename T, typename P = pif::object>
class list : public base::_base<base::list<T, P>> {
    using body = base::list<T, P>;

public:
    using node = typename body::node;

    list() = default;
    list(list const &other) noexcept : base::_base<body>(other) {}
    list &operator=(list const &other) noexcept {
        base::_base<body>::operator=(other);
        return *this;
    }

    node *Insert(node *after, T *element) { return this->mBody->Insert(after, element); }
    node *Append(T *element) { return this->mBody->Insert(this->mBody->mTail, element); }
    T *TakeFirst() noexcept { return this->mBody->TakeFirst(); }
    T *First() const noexcept { return this->mBody->mHead ? this->mBody->mHead->mObject : nullptr; }
    node *Head() const noexcept { return this->mBody->mHead; }
    node *Tail() const noexcept { return this->mBody->mTail; }
    void Clear() { this->mBody->Clear(); }
    int Count() const noexcept { return this->mBody->mCount; }
    bool IsEmpty() const noexcept { return this->mBody->mCount == 0; }
};

template <typename T, typename P = pif::object>
class queue : public list<T, P> {
public:
    void Push(T *element) { this->Append(element); }
    T *Pop() noexcept { return this->TakeFirst(); }
    T *Peek() const noexcept { return this->First(); }
};

}  // namespace qor::tools::container
