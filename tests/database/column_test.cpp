#include "qor/tools/database/column.h"

#include <gtest/gtest.h>

#include "layout.h"

using namespace qor::tools;
using namespace qor::tools::database;
using qor::tools::testing::layout;

TEST(ColumnLayout, TheFiftyOneByteRow) {
    layout t;
    t.Bookmark().Add(u"id", DBTYPE_I4, 4).Add(u"name", DBTYPE_STR, 10).Add(u"picture", DBTYPE_BYTES, 0x7fffffff);
    struct {
        int value, status, length;
    } const expected[] = {{0, 4, -1}, {8, 12, -1}, {16, 27, -1}, {31, 39, 43}};
    unsigned char row[64] = {};
    for (int i = 0; i < 4; ++i) {
        auto *e = t.Info(i);
        EXPECT_EQ(e->mOffset, expected[i].value) << i;
        EXPECT_EQ(static_cast<unsigned char *>(e->Status(row).Address()) - row, expected[i].status) << i;
        void *length = e->Length(row);
        EXPECT_EQ(length ? static_cast<unsigned char *>(length) - row : -1, expected[i].length) << i;
        EXPECT_EQ(e->mIndex, i);
    }
    EXPECT_EQ(t.RecordSize(), 51);
    EXPECT_TRUE(t.IsUseReadOnly());  // the bookmark
    EXPECT_EQ(t.Blob(), 1);
    EXPECT_EQ(t.Unknown(), 1);
    EXPECT_TRUE(t.TableName().IsEmpty());
    EXPECT_EQ(t.Info(u""), t.Info(0));  // the bookmark's name is empty
}

TEST(ColumnLayout, TypeMapping) {
    struct {
        unsigned short type;
        unsigned long size;
        unsigned short stored;
        unsigned expectedSize, kind;
    } const table[] = {
        {DBTYPE_I2, 2, 2, 2, 0},          {DBTYPE_I4, 99, 3, 4, 0},           {DBTYPE_R4, 9, 4, 4, 0},
        {DBTYPE_R8, 0, 5, 8, 0},          {DBTYPE_IUNKNOWN, 0, 13, 8, 4},     {DBTYPE_UI2, 2, 18, 2, 0},
        {DBTYPE_UI4, 0, 19, 4, 0},        {DBTYPE_BYTES, 100, 13, 8, 7},      {DBTYPE_STR, 10, 129, 11, 0},
        {DBTYPE_WSTR, 10, 130, 22, 0},    {DBTYPE_NUMERIC, 38, 129, 32, 0},   {DBTYPE_DBTIMESTAMP, 0, 135, 16, 0},
        {DBTYPE_BOOL, 2, 11, 0, 0},       {DBTYPE_I8, 8, 20, 0, 0},
    };
    for (auto const &row : table) {
        layout t;
        t.Add(u"c", row.type, row.size);
        auto *e = t.Info(u"c");
        EXPECT_EQ(e->mType, row.stored) << row.type;
        EXPECT_EQ(e->mSize, row.expectedSize) << row.type;
        EXPECT_EQ(e->mKind, row.kind) << row.type;
        EXPECT_EQ(t.RecordSize(), int(row.expectedSize + 4 + (row.kind & 1 ? 8 : 0)));
    }
    layout unknown;
    unknown.Add(u"u", DBTYPE_IUNKNOWN);
    EXPECT_EQ(unknown.Unknown(), 1);
    EXPECT_EQ(unknown.Blob(), 0);
    EXPECT_TRUE(unknown.Info(0)->mObject.iid == IID_IUnknown);
    layout blob;
    blob.Add(u"b", DBTYPE_BYTES);
    EXPECT_TRUE(blob.Info(0)->mObject.iid == IID_ISequentialStream);
}

TEST(ColumnSet, FromColumnInfoAndBindings) {
    char16_t id[] = u"id", text[] = u"text", data[] = u"data";
    tagDBCOLUMNINFO infos[3] = {};
    infos[0] = {id, nullptr, 1, DBCOLUMNFLAGS_WRITE, 4, DBTYPE_I4, 10, 0, {}};
    infos[1] = {text, nullptr, 2, 0, 5, DBTYPE_WSTR, 0, 0, {}};
    infos[2] = {data, nullptr, 3, DBCOLUMNFLAGS_WRITEUNKNOWN, 0, DBTYPE_BYTES, 0, 0, {}};
    column c(3, infos);
    EXPECT_EQ(c.Columns(), 3);
    EXPECT_TRUE(c.PrimaryKeys().IsEmpty());
    EXPECT_TRUE(c.IsInfo(u"text"));
    EXPECT_FALSE(c.IsInfo(u"missing"));
    EXPECT_EQ(c.Info(u"missing"), nullptr);
    EXPECT_TRUE(c.IsUseReadOnly());
    EXPECT_TRUE(c.Info(1)->IsReadOnly());
    EXPECT_FALSE(c.Info(2)->IsReadOnly());

    container::array<tagDBBINDING> bindings;
    c.CreateBindData(bindings);
    ASSERT_EQ(bindings.Size(), 3);
    EXPECT_EQ(bindings[0].iOrdinal, 1u);
    EXPECT_EQ(bindings[0].obValue, 0u);
    EXPECT_EQ(bindings[0].obStatus, 4u);
    EXPECT_EQ(bindings[0].obLength, 0u);
    EXPECT_EQ(bindings[0].dwPart, 5u);
    EXPECT_EQ(bindings[0].pObject, nullptr);
    EXPECT_EQ(bindings[1].obValue, 8u);
    EXPECT_EQ(bindings[1].cbMaxLen, 12u);
    EXPECT_EQ(bindings[2].obValue, 24u);
    EXPECT_EQ(bindings[2].obLength, 36u);
    EXPECT_EQ(bindings[2].dwPart, 7u);
    EXPECT_EQ(bindings[2].wType, DBTYPE_IUNKNOWN);
    EXPECT_EQ(bindings[2].pObject, &c.Info(2)->mObject);
    EXPECT_EQ(bindings[2].dwMemOwner, 0u);

    column shared = c;
    EXPECT_EQ(shared.Info(1), c.Info(1));  // entries are shared, never duplicated
}
