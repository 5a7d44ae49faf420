#include "qor/tools/database/field.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "layout.h"
#include "qor/tools/database/record.h"
#include "qor/tools/database/stream.h"

using namespace qor::tools;
using namespace qor::tools::database;
using qor::tools::testing::counted_unknown;
using qor::tools::testing::layout;

namespace {

// A row with one column of each kind, started with an odd-sized text so that
// the numbers behind it sit at odd offsets.
class row : public record {
public:
    row() {
        auto *t = new layout;
        t->Add(u"pad", DBTYPE_STR, 2).Add(u"i2", DBTYPE_I2, 2).Add(u"i4", DBTYPE_I4).Add(u"r8", DBTYPE_R8);
        t->Add(u"u4", DBTYPE_UI4).Add(u"s", DBTYPE_STR, 10).Add(u"w", DBTYPE_WSTR, 10);
        t->Add(u"ts", DBTYPE_DBTIMESTAMP).Add(u"blob", DBTYPE_BYTES).Add(u"unk", DBTYPE_IUNKNOWN);
        t->Add(u"bit", DBTYPE_BOOL, 2);
        _Create(t, false);
    }
};

std::u16string Text(field const &f) {
    char16_t out[4096];
    f.Text(out);
    return out;
}

}  // namespace

TEST(FieldLayout, OddOffsetsReadAndWriteExactly) {
    row r;
    EXPECT_EQ(r.Info(u"i4")->mOffset % 2, 1);
    r[u"i4"] = -123456;
    r[u"r8"] = 2.5;
    EXPECT_EQ(int(r[u"i4"]), -123456);
    EXPECT_EQ(double(r[u"r8"]), 2.5);
    EXPECT_TRUE(r[u"i4"].IsNumber());
    EXPECT_TRUE(r[u"ts"].IsNumber());
    EXPECT_FALSE(r[u"blob"].IsNumber());
    EXPECT_TRUE(r[u"w"].IsString());
}

TEST(FieldConversions, OutByType) {
    row r;
    std::int16_t sixteen = 300;
    std::memcpy(r[u"i2"].Address(), &sixteen, 2);
    EXPECT_EQ(short(r[u"i2"]), 300);
    EXPECT_EQ(int(r[u"i2"]), 0);  // a 16-bit column reads only through the short cast
    r[u"u4"] = 4294967295u;
    EXPECT_EQ(double(r[u"u4"]), -1.0);
    r[u"r8"] = -7.9;
    EXPECT_EQ(int(r[u"r8"]), -7);
    EXPECT_EQ(short(r[u"r8"]), -7);
    r[u"w"] = u"  42abc";
    EXPECT_EQ(int(r[u"w"]), 42);
    r[u"s"] = 1234;  // a number stored into narrow text, as text
    EXPECT_STREQ(static_cast<char const *>(r[u"s"]), "1234");
    EXPECT_EQ(double(r[u"s"]), 1234.0);
    EXPECT_EQ(static_cast<char16_t const *>(r[u"s"]), nullptr);
    EXPECT_EQ(static_cast<char const *>(r[u"w"]), nullptr);
    EXPECT_EQ(int(r[u"bit"]), 0);
    EXPECT_EQ(static_cast<tagDBTIMESTAMP *>(r[u"ts"]), r[u"ts"].Address());
}

TEST(FieldAssignment, StoresByType) {
    row r;
    r[u"i4"].Null();
    EXPECT_TRUE(r[u"i4"].IsNull());
    r[u"i4"] = 5;
    EXPECT_FALSE(r[u"i4"].IsNull());  // a store takes the NULL away
    r[u"i4"] = 3.99;
    EXPECT_EQ(int(r[u"i4"]), 3);
    r[u"r8"] = 4294967295u;
    EXPECT_EQ(double(r[u"r8"]), 4294967295.0);
    r[u"r8"] = -1;
    EXPECT_EQ(double(r[u"r8"]), -1.0);
    r[u"w"] = 4294967295u;
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(r[u"w"])), u"-1");
    r[u"w"] = 1.5;
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(r[u"w"])), u"1.500000");

    r[u"s"].Null();
    r[u"s"] = u"wide";  // wide text into a narrow column: nothing at all
    EXPECT_TRUE(r[u"s"].IsNull());
    r[u"w"] = u"0123456789";
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(r[u"w"])), u"0123456789");
    r[u"w"] = u"0123456789X";  // too long: never cut, never past the slot
    EXPECT_TRUE(r[u"w"].IsEmpty());
    r[u"bit"] = 1;
    EXPECT_FALSE(r[u"bit"].IsEmpty());
}

TEST(FieldTimeStamp, SixteenBitStoreAndCalendarNumber) {
    row r;
    r[u"ts"] = 12345;
    auto *t = static_cast<tagDBTIMESTAMP *>(r[u"ts"]);
    DBTIMESTAMP stamp;
    std::memcpy(&stamp, t, sizeof stamp);
    EXPECT_EQ(stamp.year, 1);
    EXPECT_EQ(stamp.month, 23);
    EXPECT_EQ(stamp.day, 45);
    r[u"ts"] = 20240131;  // low 16 bits 55043: year -1, month 50, day 43
    std::memcpy(&stamp, t, sizeof stamp);
    EXPECT_EQ(stamp.year, -1);
    EXPECT_EQ(stamp.month, 50);
    EXPECT_EQ(stamp.day, 43);
    stamp = {2024, 1, 5, 12, 30, 7, 0};
    std::memcpy(t, &stamp, sizeof stamp);
    EXPECT_EQ(int(r[u"ts"]), 20240105);
    EXPECT_EQ(Text(r[u"ts"]), u"2024/01/502d 12:30:702d");  // "%d02d", to the letter
    EXPECT_TRUE(r[u"ts"] == 20240105);
    EXPECT_TRUE(r[u"ts"] > 20240104.9);

    row other;
    other[u"ts"] = r[u"ts"];  // a time stamp does not come through field assignment
    std::memcpy(&stamp, other[u"ts"].Address(), sizeof stamp);
    EXPECT_NE(stamp.year, 2024);
}

TEST(FieldArithmetic, CompoundOperatorsByType) {
    row r;
    field &i = r[u"i4"];
    field &u = r[u"u4"];
    field &d = r[u"r8"];
    i = 4;
    i >>= 1;  // a signed field shifts LEFT
    EXPECT_EQ(int(i), 8);
    u = 4;
    u >>= 1;
    EXPECT_EQ(int(u), 2);
    i = 7;
    i += 0.9;  // truncated first: adds 0
    EXPECT_EQ(int(i), 7);
    i /= 0;
    EXPECT_EQ(int(i), 0);
    EXPECT_FALSE(i.IsNull());
    d = 5.5;
    d %= 0.0;
    EXPECT_EQ(double(d), 0.0);
    i = 2147483647;
    i += 1;
    EXPECT_EQ(int(i), INT32_MIN);  // 32-bit wrap
    u = 10;
    u /= -3;  // unsigned division by the divisor's magnitude
    EXPECT_EQ(int(u), 3);
    i = -10;
    i /= 3u;
    EXPECT_EQ(int(i), -3);
    i = INT32_MIN;
    i /= -1;
    EXPECT_EQ(int(i), INT32_MIN);
    i = 7;
    i %= 2.5;
    EXPECT_EQ(int(i), 2);
    i = 6;
    i *= 1.5;
    EXPECT_EQ(int(i), 9);
    i = 12;
    i &= 10;
    i |= 1;
    EXPECT_EQ(int(i), 9);
    i <<= 33;  // the low 5 bits of the count
    EXPECT_EQ(int(i), 18);
    d = 1.0;
    d &= 3;
    EXPECT_EQ(double(d), 1.0);
    ++d;
    d++;
    --i;
    EXPECT_EQ(double(d), 3.0);
    EXPECT_EQ(int(i), 17);
    field &w = r[u"w"];
    w = u"x";
    w += 1;
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(w)), u"x");
    u = 3;
    i = 5;
    i += u;  // the right side read by the left side's type
    EXPECT_EQ(int(i), 8);
    d += i;
    EXPECT_EQ(double(d), 11.0);
}

TEST(FieldComparison, ByLeftType) {
    row r;
    r[u"i4"] = -1;
    EXPECT_TRUE(r[u"i4"] == 4294967295ul);  // the operand's bits as int32
    EXPECT_TRUE(r[u"i4"] < 0);
    r[u"u4"] = 4294967295u;
    EXPECT_TRUE(r[u"u4"] > 5);
    EXPECT_TRUE(r[u"u4"] == -1);
    EXPECT_FALSE(r[u"bit"] != 1);  // no behaviour: false for every operator
    r[u"w"] = u"abc";
    EXPECT_TRUE(r[u"w"] == u"abc");
    EXPECT_TRUE(r[u"w"] < u"abd");
    EXPECT_FALSE(r[u"i4"] == u"abc");

    row other;
    other[u"w"] = u"xyz";
    EXPECT_FALSE(r[u"w"] == other[u"w"]);
    EXPECT_FALSE(r[u"w"] != other[u"w"]);  // text fields never compare unequal through field != field
    EXPECT_TRUE(r[u"w"] < other[u"w"]);
    other[u"i4"] = -1;
    EXPECT_TRUE(r[u"i4"] == other[u"i4"]);
}

TEST(FieldEmptiness, ClearNullAndText) {
    row r;
    EXPECT_TRUE(r[u"i4"].IsEmpty());
    EXPECT_TRUE(r[u"w"].IsEmpty());
    EXPECT_FALSE(r[u"bit"].IsEmpty());
    r[u"r8"] = 1.0;
    r[u"r8"].Null();
    EXPECT_TRUE(r[u"r8"].IsNull());
    EXPECT_TRUE(r[u"r8"].IsEmpty());
    EXPECT_EQ(Text(r[u"r8"]), u"0.000000");
    r[u"blob"].SetBlob("abc", 3);
    EXPECT_EQ(Text(r[u"blob"]), u"enable");
    r[u"blob"].Null();
    EXPECT_FALSE(r[u"blob"].IsNull());  // the interface step ends with status 0
    EXPECT_EQ(Text(r[u"blob"]), u"");
    EXPECT_EQ(Text(r[u"i2"]), u"");
    r[u"u4"] = 4000000000u;
    EXPECT_EQ(Text(r[u"u4"]), u"4000000000");
    r[u"s"] = 7;
    EXPECT_EQ(Text(r[u"s"]), u"7");
}

TEST(FieldBlob, StreamsAndProviderStreams) {
    row r;
    field &b = r[u"blob"];
    unsigned char out[8] = {};
    b.GetBlob(out, 0);
    b.GetBlob(nullptr, 4);
    EXPECT_EQ(b.GetBlob(), nullptr);
    b.SetBlob("hello", 5);
    EXPECT_EQ(std::uint64_t(b.Length()), 5u);
    EXPECT_EQ(b.GetBlobSize(), 5);
    b.GetBlob(out, 3);
    EXPECT_EQ(std::memcmp(out, "hel", 3), 0);
    container::buffer copy;
    b.GetBlob(copy);
    EXPECT_EQ(copy.Size(), 5);
    EXPECT_NE(static_cast<stream *>(b), nullptr);

    // A provider's stream in the slot is drained at first access and released.
    row fetched;
    auto *provider = new stream;
    provider->SetData("provider", 8);
    provider->AddRef();  // keep one for the test
    IUnknown *p = provider;
    std::memcpy(fetched[u"blob"].Address(), &p, sizeof p);
    fetched[u"blob"].Length() = 8;
    EXPECT_EQ(static_cast<stream *>(fetched[u"blob"]), nullptr);  // not yet the library's
    EXPECT_EQ(fetched[u"blob"].GetBlobSize(), 8);
    EXPECT_EQ(provider->Release(), 0u);  // the field gave its reference back
    EXPECT_NE(static_cast<stream *>(fetched[u"blob"]), nullptr);
}

TEST(FieldInterfaces, ReferenceCounts) {
    auto *object = new counted_unknown;  // the test's own reference
    {
        row source, r;
        object->AddRef();  // the one that source's slot holds
        std::memcpy(source[u"unk"].Address(), &object, sizeof object);
        r[u"unk"] = source[u"unk"];  // the store takes one more
        EXPECT_EQ(object->mCount, 3u);
        r[u"unk"] = source[u"unk"];  // the same pointer: nothing
        EXPECT_EQ(object->mCount, 3u);
        {
            field copy(r[u"unk"]);  // a copy adds one, on the same slot...
            EXPECT_EQ(object->mCount, 4u);
        }
        // ...and its end gives one back and empties the row's slot.
        EXPECT_EQ(object->mCount, 3u);
        EXPECT_EQ(static_cast<IUnknown *>(r[u"unk"]), nullptr);
        source[u"unk"].ReleaseOther();  // forgets without a Release
    }
    EXPECT_EQ(object->mCount, 3u);
    object->mCount = 1;
    object->Release();
}
