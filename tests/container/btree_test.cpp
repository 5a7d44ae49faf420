#include "qor/tools/container/btree.h"

#include <gtest/gtest.h>

#include "support/tracked.h"

#include <algorithm>
#include <map>
#include <random>
#include <string>

#include "qor/tools/string.h"

using namespace qor::tools;
using namespace qor::tools::container;

namespace {

using qor::tools::testing::tracked;

using tree = hash<string, int, pif::none, 2>;

// Checks order, balance and parent links; returns the depth of the leaves.
int CheckNode(tree::node const *n, tree::node const *parent, string const *low, string const *high, int depth,
              int &leafDepth, int &keys) {
    EXPECT_EQ(n->mParent, parent);
    EXPECT_GE(n->mCount, 1);
    EXPECT_LE(n->mCount, 2);
    for (int i = 0; i < n->mCount; ++i) {
        string const &k = n->mKey[i]->mKey;
        if (i > 0) { EXPECT_LT(n->mKey[i - 1]->mKey.Compare(k), 0); }
        if (low) { EXPECT_LT(low->Compare(k), 0); }
        if (high) { EXPECT_LT(k.Compare(*high), 0); }
    }
    keys += n->mCount;
    if (n->IsLeaf()) {
        for (auto *c : n->mChild) EXPECT_EQ(c, nullptr);
        if (leafDepth < 0) leafDepth = depth;
        EXPECT_EQ(depth, leafDepth);
        return depth;
    }
    for (int i = 0; i <= n->mCount; ++i) {
        EXPECT_NE(n->mChild[i], nullptr);
        string const *lo = i == 0 ? low : &n->mKey[i - 1]->mKey;
        string const *hi = i == n->mCount ? high : &n->mKey[i]->mKey;
        CheckNode(n->mChild[i], n, lo, hi, depth + 1, leafDepth, keys);
    }
    for (int i = n->mCount + 1; i <= 2; ++i) EXPECT_EQ(n->mChild[i], nullptr);
    return leafDepth;
}

}  // namespace

TEST(BtreeShape, SplitsAsDescribed) {
    tree t;
    EXPECT_EQ(t.Find(u"x"), nullptr);
    EXPECT_NE(t.Root(), nullptr);
    int v = 0;
    for (auto k : {u"b", u"a", u"c"}) t.Set(k, &v);
    EXPECT_TRUE(t.Root()->mKey[0]->mKey == u"b");
    EXPECT_EQ(t.Root()->mCount, 1);
    EXPECT_TRUE(t.Root()->mChild[0]->mKey[0]->mKey == u"a");
    EXPECT_TRUE(t.Root()->mChild[1]->mKey[0]->mKey == u"c");
    t.Set(u"d", &v);
    EXPECT_EQ(t.Root()->mChild[1]->mCount, 2);
    t.Set(u"e", &v);
    EXPECT_EQ(t.Root()->mCount, 2);
    EXPECT_TRUE(t.Root()->mKey[1]->mKey == u"d");
    EXPECT_TRUE(t.Root()->mChild[2]->mKey[0]->mKey == u"e");
}

TEST(BtreeKeys, CaseNullAndEmpty) {
    tree t;
    int a = 1, b = 2, c = 3;
    t.Set(u"Key", &a);
    t.Set(u"key", &b);
    EXPECT_EQ(t.Find(u"Key"), &a);
    EXPECT_EQ(t.Find(u"key"), &b);
    t.Set(string(), &c);
    EXPECT_EQ(t.Find(u""), &c);
    tree shared = t;
    EXPECT_EQ(shared.Find(u"key"), &b);
}

TEST(BtreeOwnership, ReplacingAValueByPolicy) {
    int alive = 0;
    {
        hash<string, tracked, pif::object, 2> owning;
        owning.Set(u"k", new tracked(&alive));
        owning.Set(u"k", new tracked(&alive));
        EXPECT_EQ(alive, 1);
        owning.Set(u"j", new tracked(&alive));
    }
    EXPECT_EQ(alive, 0);
    tracked kept(&alive);
    {
        hash<string, tracked, pif::none, 2> viewing;
        viewing.Set(u"k", &kept);
        viewing.Set(u"k", nullptr);
    }
    EXPECT_EQ(alive, 1);
}

TEST(BtreeRandom, InvariantsAgainstStdMap) {
    std::mt19937 random(12345);
    for (int round = 0; round < 5; ++round) {
        tree t;
        std::map<std::u16string, int> reference;
        std::vector<int> values(4000);
        for (int i = 0; i < 4000; ++i) {
            std::u16string key;
            int length = 1 + int(random() % 6);
            for (int j = 0; j < length; ++j) key += char16_t(u'a' + random() % 20);
            values[i] = i;
            t.Set(string(key.c_str()), &values[i]);
            reference[key] = i;
        }
        int leafDepth = -1, keys = 0;
        CheckNode(t.Root(), nullptr, nullptr, nullptr, 0, leafDepth, keys);
        EXPECT_EQ(keys, int(reference.size()));
        for (auto const &[key, index] : reference) {
            int *found = t.Find(string(key.c_str()));
            ASSERT_NE(found, nullptr);
            EXPECT_EQ(*found, index);
        }
        EXPECT_EQ(t.Find(u"zzzzzzz"), nullptr);
        auto it = t.Iterator();
        for (auto const &[key, index] : reference) {
            ASSERT_TRUE(it.IsValid());
            EXPECT_EQ(std::u16string(it.Key().Safe()), key);
            it.Next();
        }
        EXPECT_FALSE(it.IsValid());
    }
}
