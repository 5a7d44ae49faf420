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

// The body of a list: the chain of nodes and their count.
template <typename T, typename P>
class list : public _counter<P> {
public:
    // One link of the chain.
    struct node {
        T *mObject;  // the element
        node *mPrev;  // the node before (null at the head)
        node *mNext;  // the node after (null at the tail)
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

    node *mHead = nullptr;  // the first node
    node *mTail = nullptr;  // the last node
    int mCount = 0;         // the number of elements

private:
    static constexpr int kSpareNodes = 64;
    node *mSpare = nullptr;
    int mSpareCount = 0;
};

}  // namespace base

// The list handle: all handles on one body see the same elements.
template <typename T, typename P = pif::object>
class list : public base::_base<base::list<T, P>> {
    using body = base::list<T, P>;

public:
    // One link: the element and its neighbours.
    using node = typename body::node;

    // An empty list; copies share the elements.
    list() = default;
    list(list const &other) noexcept : base::_base<body>(other) {}
    list &operator=(list const &other) noexcept {
        base::_base<body>::operator=(other);
        return *this;
    }

    // Links `element` behind `after` (null: at the front) or at the end; the
    // list owns it from then on. The new node.
    node *Insert(node *after, T *element) { return this->mBody->Insert(after, element); }
    node *Append(T *element) { return this->mBody->Insert(this->mBody->mTail, element); }
    // Unlinks the first element and hands it over (null when empty).
    T *TakeFirst() noexcept { return this->mBody->TakeFirst(); }
    // The first element (still the list's), the first and last nodes.
    T *First() const noexcept { return this->mBody->mHead ? this->mBody->mHead->mObject : nullptr; }
    node *Head() const noexcept { return this->mBody->mHead; }
    node *Tail() const noexcept { return this->mBody->mTail; }
    // Gives back every element.
    void Clear() { this->mBody->Clear(); }
    // The number of elements, and whether there is none.
    int Count() const noexcept { return this->mBody->mCount; }
    bool IsEmpty() const noexcept { return this->mBody->mCount == 0; }
};

// First in, first out on top of a list.
template <typename T, typename P = pif::object>
class queue : public list<T, P> {
public:
    // Appends (the queue owns it), takes the first out (the caller owns it;
    // null when empty), or looks at the first.
    void Push(T *element) { this->Append(element); }
    T *Pop() noexcept { return this->TakeFirst(); }
    T *Peek() const noexcept { return this->First(); }
};

}  // namespace qor::tools::container
