#include "qor/tools/database/record.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "layout.h"
#include "qor/tools/database/stream.h"

using namespace qor::tools;
using namespace qor::tools::database;
using qor::tools::testing::layout;

namespace {

layout *People() {
    auto *t = new layout;
    t->Bookmark().Add(u"id", DBTYPE_I4).Add(u"name", DBTYPE_WSTR, 8).Add(u"photo", DBTYPE_BYTES);
    return t;
}

class row : public record {
public:
    explicit row(column *c, bool shared = false) { _Create(c, shared); }
};

}  // namespace

TEST(Record, CreateGivesAZeroRowAndFields) {
    row r(People());
    EXPECT_EQ(r.RecordSize(), r.Column()->RecordSize());
    EXPECT_EQ(r.Columns(), 4);
    EXPECT_TRUE(r.IsUseBlob());
    EXPECT_TRUE(r.IsUseUnknown());
    EXPECT_TRUE(r.IsField(u"name"));
    EXPECT_FALSE(r.IsField(u"nope"));
    for (int i = 0; i < r.RecordSize(); ++i) EXPECT_EQ(r.RecordBuffer()[i], 0);
    r[u"id"] = 7;
    r.Status(u"name") = DBSTATUS_S_ISNULL;
    r.StatusOK();
    EXPECT_FALSE(r[u"name"].IsNull());
    r.Clear();
    EXPECT_EQ(int(r[u"id"]), 0);
    EXPECT_TRUE(record().IsEmpty());
}

TEST(Record, CopiesAddRefTheirStreams) {
    row r(People());
    r[u"photo"].SetBlob("jpeg", 4);
    auto *s = static_cast<stream *>(r[u"photo"]);
    {
        record copy(r);
        EXPECT_NE(copy.RecordBuffer(), r.RecordBuffer());
        EXPECT_TRUE(copy == r);  // the same bytes, the same stream pointer
        EXPECT_EQ(s->AddRef(), 3u);
        s->Release();
        // The copy does not know it holds the library's stream: it drains it into its own.
        EXPECT_EQ(static_cast<stream *>(copy[u"photo"]), nullptr);
        EXPECT_EQ(copy[u"photo"].GetBlobSize(), 4);
        char out[4];
        ULONG done = 0;
        EXPECT_EQ(s->Read(out, 4, &done), S_FALSE);  // the shared stream was consumed
        EXPECT_EQ(done, 0u);
    }
    EXPECT_EQ(s->AddRef(), 2u);
    s->Release();
    EXPECT_EQ(r[u"photo"].GetBlobSize(), 4);
}

TEST(Record, EqualityIsBytes) {
    row a(People()), b(People());
    EXPECT_TRUE(a == b);  // different column sets, equal bytes
    b[u"id"] = 1;
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(record() == record());
}

TEST(Record, FieldCopyByName) {
    row a(People());
    auto *other = new layout;
    other->Bookmark().Add(u"name", DBTYPE_WSTR, 8).Add(u"age", DBTYPE_I4);
    row b(other);
    std::uint32_t mark = 42;
    std::memcpy(b[0].Address(), &mark, 4);
    b[u"name"] = u"tanaka";
    b[u"age"] = 30;
    a[u"id"] = 5;
    a.FieldCopy(b);
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(a[u"name"])), u"tanaka");
    EXPECT_EQ(int(a[u"id"]), 5);  // not in the source: as it was
    EXPECT_EQ(int(a[0]), 42);     // the bookmark (empty name) comes along
}

TEST(Record, SharedAndOwnedColumnSets) {
    layout *cached = People();
    {
        row viewer(cached, true);
        row owner(People(), false);
    }
    EXPECT_EQ(cached->Columns(), 4);  // still alive: the record did not own it
    delete cached;
}

TEST(Rset, ViewsIntoOneBlockFreedOnce) {
    row source(People());
    rset rows;
    EXPECT_EQ(rows.Size(), 100);
    unsigned char *block = rows.Setup(source, 3);
    ASSERT_EQ(rows.Size(), 3);
    EXPECT_EQ(block, rows.Rows());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(rows[i].RecordBuffer(), block + i * source.RecordSize());
        rows[i][u"id"] = i + 1;
    }
    rows[1][u"photo"].SetBlob("blob", 4);
    rset copy(rows);
    ASSERT_EQ(copy.Size(), 3);
    EXPECT_EQ(int(copy[2][u"id"]), 3);
    EXPECT_NE(copy[2].RecordBuffer(), rows[2].RecordBuffer());  // copies own their bytes
    rows.Clear();
    EXPECT_EQ(rows.Size(), 0);
    EXPECT_EQ(rows.Rows()[0], 0);  // the block is zeroed, not freed
    rows.Setup(source, 0);
    EXPECT_EQ(rows.Size(), 0);
    EXPECT_EQ(rows.Rows(), nullptr);
    rows.Setup(source, 2);
    rows.Setup(source, 5);  // again without Clear: the views are released first
    EXPECT_EQ(rows.Size(), 5);
}

// The views' handles and fields stand in one slab per Setup; a view that is
// assigned, copied, moved by the array's growth or removed must behave as any
// record, and every byte must be freed once (the sanitizer builds check that).
TEST(Rset, ViewsBearAssignmentGrowthAndRemoval) {
    row source(People());
    auto *wide = new layout;
    wide->Add(u"a", DBTYPE_I4).Add(u"b", DBTYPE_I4).Add(u"c", DBTYPE_I4).Add(u"d", DBTYPE_I4).Add(u"e", DBTYPE_R8);
    row big(wide);
    big[u"e"] = 2.5;
    rset rows;
    for (int round = 0; round < 3; ++round) {
        int n = round == 1 ? 500 : 40;  // larger than the kept slab, then smaller again
        unsigned char *block = rows.Setup(source, n);
        ASSERT_EQ(rows.Size(), n);
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(rows[i].Columns(), 4);
            ASSERT_EQ(int(rows[i][u"id"]), 0);
            rows[i][u"id"] = i;
        }
        std::int32_t fifth = 0;
        std::memcpy(&fifth, block + 5 * source.RecordSize() + rows[5].Info(u"id")->mOffset, sizeof fifth);
        EXPECT_EQ(fifth, 5);
        rows[3] = big;  // more columns than the slab made room for
        EXPECT_EQ(rows[3].Columns(), 5);
        EXPECT_EQ(double(rows[3][u"e"]), 2.5);
        EXPECT_NE(rows[3].RecordBuffer(), block + 3 * source.RecordSize());
        rows[4] = rows[7];
        EXPECT_EQ(int(rows[4][u"id"]), 7);
        record kept = rows[9];
        rows.Remove(9);
        EXPECT_EQ(int(rows[9][u"id"]), 10);
        for (int i = 0; i < 30; ++i) rows.Add(big);  // the records move to a new block
        EXPECT_EQ(int(rows[10][u"id"]), 11);
        EXPECT_EQ(double(rows[n + 20][u"e"]), 2.5);
        rows.Clear();
        EXPECT_EQ(int(kept[u"id"]), 9);  // a copy owns its row
    }
    rset other;
    other.Setup(source, 10);  // two sets at once: each has its own slab
    rows.Setup(big, 10);
    other[2][u"id"] = 4;
    rows[2][u"e"] = 1.5;
    EXPECT_EQ(int(other[2][u"id"]), 4);
    EXPECT_EQ(double(rows[2][u"e"]), 1.5);
}
