#include "qor/tools/container/array.h"

#include <gtest/gtest.h>

#include "support/tracked.h"

#include "qor/tools/container/sptr.h"
#include "qor/tools/string.h"

using namespace qor::tools;
using namespace qor::tools::container;

namespace {
using qor::tools::testing::tracked;
}  // namespace

TEST(ArrayGrowth, StepsNotDoubling) {
    array<int> a(0, 10);
    a.Add(1);
    EXPECT_EQ(a.Capacity(), 10);
    for (int i = 0; i < 10; ++i) a.Add(i);
    EXPECT_EQ(a.Capacity(), 20);

    array<int> b(0, 3);
    for (int i = 0; i < 4; ++i) b.Add(i);
    EXPECT_EQ(b.Capacity(), 6);

    array<int> c;
    c.Size(25);
    EXPECT_EQ(c.Capacity(), 25);
    c.Add(1);
    EXPECT_EQ(c.Capacity(), 30);
    int *block = c;
    c.Size(0);
    EXPECT_EQ(static_cast<int *>(c), block);
    c.Release();
    EXPECT_EQ(static_cast<int *>(c), nullptr);
    EXPECT_EQ(c.Growup(), 10);
}

TEST(ArraySharing, HandlesShareCopyIsDeep) {
    array<int> a;
    array<int> b = a;
    b.Add(5);
    EXPECT_EQ(a.Size(), 1);
    array<int> c;
    c.Copy(a);
    EXPECT_EQ(c.Capacity(), 1);  // Copy allocates exactly, then the step applies
    c.Add(6);
    EXPECT_EQ(a.Size(), 1);
    EXPECT_EQ(c.Size(), 2);
    EXPECT_EQ(c.Capacity(), 10);
    EXPECT_EQ(c.Copy(c), 2);
}

TEST(ArrayIndexes, InsertFindLastRemove) {
    array<int> a;
    for (int i = 0; i < 5; ++i) a.Add(i * 10);
    EXPECT_EQ(a.Insert(1000, 99), 5);
    EXPECT_EQ(a.Insert(1, 5), 1);
    EXPECT_EQ(a[1], 5);
    EXPECT_EQ(a[2], 10);
    EXPECT_EQ(a.Last(0), a[a.Size() - 1]);
    EXPECT_EQ(a.Last(1), 40);
    EXPECT_EQ(a.Find(10), 2);
    EXPECT_EQ(a.Find(10, 3), -1);
    EXPECT_EQ(a.Find(0, a.Size()), -1);
    EXPECT_EQ(a.Remove(0), 6);
    EXPECT_EQ(a[0], 5);
    EXPECT_EQ(a.Offset(6)[0], 0);  // the slot that fell free is zeroed
    EXPECT_EQ(a.Remove(100), 6);
    EXPECT_EQ(array<int>().Iterator(false).Index(), -1);
    int sum = 0;
    for (auto it = a.Iterator(true); it.IsValid(); it.Next()) sum += it.Get();
    EXPECT_EQ(sum, 5 + 10 + 20 + 30 + 40 + 99);
}

TEST(ArrayElements, DestroyedInPlaceAndMovedByByteCopy) {
    int alive = 0;
    {
        array<tracked> a(0, 2);
        for (int i = 0; i < 5; ++i) a.Add(tracked(&alive));  // three regrowths move by memcpy
        EXPECT_EQ(alive, 5);
        a.Remove(2);
        EXPECT_EQ(alive, 4);
        a.Size(1);
        EXPECT_EQ(alive, 1);
        a.Add(a[0]);  // an element of its own, across a regrowth
        EXPECT_EQ(alive, 2);
    }
    EXPECT_EQ(alive, 0);
}

TEST(ArrayElements, LibraryTypesSurviveMoves) {
    array<string> names(0, 1);
    for (int i = 0; i < 50; ++i) names.Insert(0, string::Formatter(u"n%d", i));
    EXPECT_TRUE(names[0] == u"n49");
    EXPECT_TRUE(names[49] == u"n0");
    int alive = 0;
    array<sptr<tracked>> pointers(0, 1);
    for (int i = 0; i < 20; ++i) pointers.Add(sptr<tracked>(new tracked(&alive)));
    sptr<tracked> shared = pointers[3];
    pointers.Release();
    EXPECT_EQ(alive, 1);
}

TEST(Set, OwnsPointersUnlessMarked) {
    int alive = 0;
    {
        set<tracked> owning;
        owning.Add(new tracked(&alive));
        owning.Add(new tracked(&alive));
        owning.Remove(0);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
    tracked a(&alive), b(&alive);
    {
        set<tracked> viewing(0, 10, true);
        viewing.Add(&a);
        viewing.Add(&b);
        viewing.Remove(0);
    }
    EXPECT_EQ(alive, 2);
}

TEST(Tokenize, QuotesAndEmptyTokens) {
    auto t = string::Tokenize(u"a,\"b,c\",d", u",");
    ASSERT_EQ(t.Size(), 3);
    EXPECT_TRUE(t[0] == u"a");
    EXPECT_TRUE(t[1] == u"b,c");
    EXPECT_TRUE(t[2] == u"d");

    t = string(u"a,,b").Tokenize(u",");
    ASSERT_EQ(t.Size(), 3);
    EXPECT_TRUE(t[1].IsEmpty());

    t = string::Tokenize(u"a,", u",");
    ASSERT_EQ(t.Size(), 1);

    t = string::Tokenize(u"a,\"b\"", u",");
    ASSERT_EQ(t.Size(), 2);
    EXPECT_TRUE(t[1] == u"\"b\"");

    t = string::Tokenize(u"x\t\"a\"\"b\",y", u",\t");
    ASSERT_EQ(t.Size(), 3);
    EXPECT_TRUE(t[1] == u"a\"\"b");

    t = string::Tokenize(u"open \"never, closed", u", ");
    ASSERT_EQ(t.Size(), 2);
    EXPECT_TRUE(t[1] == u"\"never, closed");
    EXPECT_EQ(string::Tokenize(nullptr, u",").Size(), 0);
}
