#include "qor/tools/container/list.h"

#include <gtest/gtest.h>

using namespace qor::tools::container;

namespace {
struct tracked {
    tracked(int id, int *alive) : mId(id), mAlive(alive) { ++*mAlive; }
    ~tracked() { --*mAlive; }
    int mId;
    int *mAlive;
};
}  // namespace

TEST(Queue, FirstInFirstOutAndHandOver) {
    int alive = 0;
    queue<tracked> q;
    for (int i = 0; i < 3; ++i) q.Push(new tracked(i, &alive));
    EXPECT_EQ(q.Peek()->mId, 0);
    tracked *first = q.Pop();
    EXPECT_EQ(first->mId, 0);
    EXPECT_EQ(q.Count(), 2);
    EXPECT_EQ(alive, 3);  // popped, not deleted
    delete first;
    queue<tracked> shared = q;
    shared.Push(new tracked(9, &alive));
    EXPECT_EQ(q.Count(), 3);
    q.Clear();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(shared.IsEmpty());
    EXPECT_EQ(shared.Pop(), nullptr);
    EXPECT_EQ(shared.Tail(), nullptr);
}

TEST(List, InsertBehindANodeAndDestroyTheRest) {
    int alive = 0;
    {
        list<tracked> l;
        auto *middle = l.Append(new tracked(2, &alive));
        l.Insert(nullptr, new tracked(1, &alive));
        l.Insert(middle, new tracked(3, &alive));
        int expected = 1;
        for (auto *n = l.Head(); n; n = n->mNext) EXPECT_EQ(n->mObject->mId, expected++);
        EXPECT_EQ(l.Tail()->mObject->mId, 3);
        EXPECT_EQ(l.Tail()->mPrev, middle);
    }
    EXPECT_EQ(alive, 0);
}
