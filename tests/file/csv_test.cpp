#include "qor/tools/file/csv.h"

#include <gtest/gtest.h>

#include <clocale>
#include <stdexcept>
#include <string>

#include "qor/tools/exception.h"
#include "support/read_faults.h"
#include "support/temp_dir.h"

using namespace qor::tools;
using qor::tools::file::csv;
using namespace qor::tools::testing;

namespace {

std::u16string Thrown(auto &&action) {
    try {
        action();
    } catch (exception const &e) {
        return std::u16string(e.mMessage.Safe());
    }
    return u"no throw";
}

std::u16string Cell(csv const &t, int r, int c) { return std::u16string(t[r][c].Safe()); }

std::string Utf16(std::u16string const &s) {
    return std::string(reinterpret_cast<char const *>(s.data()), s.size() * 2);
}

csv TwoRows() {
    csv t;
    auto &first = t.Add();
    first.Size(2);
    first[0] = u"a";
    first[1] = u"b";
    auto &second = t.Add();
    second.Size(1);
    second[0] = u"c";
    return t;
}

class Csv : public ::testing::Test {
protected:
    void SetUp() override { std::setlocale(LC_ALL, "C.UTF-8"); }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
    temp_dir mDir;
};

}  // namespace

TEST_F(Csv, SaveWritesCrLfAndTrailingDelimiters) {
    csv t = TwoRows();
    t.Save(mDir.Wide("t.csv").c_str());
    EXPECT_EQ(mDir.Read("t.csv"), "a,b,\r\nc,\r\n");
    csv back;
    back.Load(mDir.Wide("t.csv").c_str());
    ASSERT_EQ(back.Rows(), 2);
    EXPECT_EQ(back[0].Size(), 2);
    EXPECT_EQ(back[1].Size(), 1);
    EXPECT_EQ(Cell(back, 1, 0), u"c");
}

TEST_F(Csv, SaveUnicodeWritesBomAndLfAndReadsBackAsymmetrically) {
    csv t = TwoRows();
    t.SaveUnicode(mDir.Wide("u.csv").c_str());
    EXPECT_EQ(mDir.Read("u.csv"), "\xFF\xFE" + Utf16(u"a,b,\nc,\n"));
    csv back;
    back.LoadUnicode(mDir.Wide("u.csv").c_str());
    ASSERT_EQ(back.Rows(), 2);
    ASSERT_EQ(back[0].Size(), 3);  // the first line keeps its LF, which ends one more cell
    EXPECT_EQ(Cell(back, 0, 2), u"");
    EXPECT_EQ(back[1].Size(), 1);
}

TEST_F(Csv, UnicodeLineRules) {
    auto load = [&](std::u16string const &text) {
        mDir.Write("x.csv", "\xFF\xFE" + Utf16(text));
        csv t;
        t.LoadUnicode(mDir.Wide("x.csv").c_str());
        return t;
    };
    csv last = load(u"a,\r\nb,c");  // a last line without line end is lost
    EXPECT_EQ(last.Rows(), 1);
    csv mixed = load(u"a\nb\r\n");  // an LF before a later CR only separates cells
    ASSERT_EQ(mixed.Rows(), 1);
    EXPECT_EQ(mixed[0].Size(), 2);
    csv after = load(u"a\r\nb\n");  // after CR LF, an LF line starts at the LF
    ASSERT_EQ(after.Rows(), 2);
    EXPECT_EQ(Cell(after, 1, 0), u"");
    EXPECT_EQ(Cell(after, 1, 1), u"b");
    csv lone = load(u"ab\rcd\r\n");  // a lone CR ends a line and the unit after it is lost
    ASSERT_EQ(lone.Rows(), 2);
    EXPECT_EQ(Cell(lone, 1, 0), u"d");
    csv endsInCr = load(u"x\r");
    EXPECT_EQ(endsInCr.Rows(), 1);
    csv nul = load(std::u16string(u"a,b\r\n") + u'\0' + u"c\r\n");
    EXPECT_EQ(nul.Rows(), 1);
    mDir.Write("odd.csv", "\xFF\xFE" + Utf16(u"a\r\nb,") + "\x0D");  // a last odd byte is no unit, no CR
    csv odd;
    odd.LoadUnicode(mDir.Wide("odd.csv").c_str());
    EXPECT_EQ(odd.Rows(), 1);
    mDir.Write("noBom.csv", Utf16(u"xa,b\r\n"));
    csv noBom;
    noBom.LoadUnicode(mDir.Wide("noBom.csv").c_str());  // the first character is taken for a mark
    EXPECT_EQ(Cell(noBom, 0, 0), u"a");
}

TEST_F(Csv, QuotesOnReadingOnly) {
    mDir.Write("q.csv", "x,\"y,z\",w\nx,\"y,z\"\n\"open,never closed\tstill\n");
    csv t;
    t.Load(mDir.Wide("q.csv").c_str());
    ASSERT_EQ(t.Rows(), 3);
    EXPECT_EQ(Cell(t, 0, 1), u"y,z");
    EXPECT_EQ(Cell(t, 0, 2), u"w");
    EXPECT_EQ(Cell(t, 1, 1), u"\"y,z\"");
    ASSERT_EQ(t[2].Size(), 1);

    csv written = TwoRows();
    written[0][0] = u"has,comma";
    written[0][1] = u"has\ttab";
    written.Save(mDir.Wide("w.csv").c_str());
    csv back(mDir.Wide("w.csv").c_str());
    EXPECT_EQ(back[0].Size(), 4);
}

TEST_F(Csv, DelimiterIsForWritingOnly) {
    csv t = TwoRows();
    t.Deleimter(u';');
    t.Save(mDir.Wide("s.csv").c_str());
    EXPECT_EQ(mDir.Read("s.csv"), "a;b;\r\nc;\r\n");
    csv back(mDir.Wide("s.csv").c_str());
    EXPECT_EQ(back[0].Size(), 1);
    EXPECT_EQ(Cell(back, 0, 0), u"a;b;");
}

TEST_F(Csv, PathsSizesAndNumbers) {
    csv t = TwoRows();
    t.Save(mDir.Wide("p.csv").c_str());
    t[1][0] = u"changed";
    t.Save();  // the stored path
    csv back(mDir.Wide("p.csv").c_str());
    EXPECT_EQ(Cell(back, 1, 0), u"changed");
    csv shallow = back;
    shallow.Rows(3);
    EXPECT_EQ(back.Rows(), 3);
    EXPECT_EQ(back[2].Size(), 0);

    csv::row r;
    r.Size(3);
    r[0] = u"12abc";
    r[1] = u"abc";
    EXPECT_EQ(r.I(0), 12);
    EXPECT_EQ(r.I(1), 0);
    EXPECT_EQ(r.D(2), 0.0);
    r[2] = u"2.5";
    EXPECT_FLOAT_EQ(r.F(2), 2.5f);
}

TEST_F(Csv, JapaneseInBothEncodings) {
    csv t;
    auto &row = t.Add();
    row.Size(2);
    row[0] = u"日本語";
    row[1] = u"ｶﾀｶﾅ";
    t.Save(mDir.Wide("j.csv").c_str());
    EXPECT_EQ(mDir.Read("j.csv"), std::string(reinterpret_cast<char const *>(u8"日本語,ｶﾀｶﾅ,\r\n")));
    t.SaveUnicode(mDir.Wide("ju.csv").c_str());
    csv back, backUnicode;
    back.Load(mDir.Wide("j.csv").c_str());
    backUnicode.LoadUnicode(mDir.Wide("ju.csv").c_str());
    EXPECT_EQ(Cell(back, 0, 0), u"日本語");
    EXPECT_EQ(Cell(backUnicode, 0, 1), u"ｶﾀｶﾅ");
    if (std::setlocale(LC_ALL, "ja_JP.SJIS")) {
        t.Save(mDir.Wide("sjis.csv").c_str());
        EXPECT_EQ(mDir.Read("sjis.csv"), "\x93\xfa\x96\x7b\x8c\xea,\xb6\xc0\xb6\xc5,\r\n");
        csv sjis(mDir.Wide("sjis.csv").c_str());
        EXPECT_EQ(Cell(sjis, 0, 0), u"日本語");
    }
}

TEST_F(Csv, FailuresThrowTheirTexts) {
    auto message = [](auto &&action) {
        try {
            action();
        } catch (exception const &e) {
            return std::u16string(e.mMessage.Safe());
        }
        return std::u16string(u"no throw");
    };
    std::u16string missing = mDir.Wide("missing.csv");
    csv t = TwoRows();
    EXPECT_EQ(message([&] { t.Load(missing.c_str()); }), u"csv::LoadError <" + missing + u">");
    EXPECT_EQ(t.Rows(), 0);
    EXPECT_EQ(message([&] { t.LoadUnicode(missing.c_str()); }), u"csv::LoadUnicodeError");
    std::u16string folder = mDir.Wide("no/such/folder/x.csv");
    EXPECT_EQ(message([&] { TwoRows().Save(folder.c_str()); }), u"csv::SaveError <" + folder + u">");
    EXPECT_EQ(message([&] { TwoRows().SaveUnicode(folder.c_str()); }), u"csv::SaveUnicode <" + folder + u">");
    mDir.Write("bom.csv", "\xFF\xFE");
    t.LoadUnicode(mDir.Wide("bom.csv").c_str());
    EXPECT_EQ(t.Rows(), 0);
    mDir.Write("one.csv", "\xFF");
    EXPECT_THROW(t.LoadUnicode(mDir.Wide("one.csv").c_str()), std::invalid_argument);
    std::setlocale(LC_ALL, "C");
    csv wide;
    wide.Add().Data().Add(string(u"日本"));
    EXPECT_EQ(message([&] { wide.Save(mDir.Wide("c.csv").c_str()); }), u"csv::SaveError <" + mDir.Wide("c.csv") + u">");
}

// ---------------------------------------------------------------- no cell lost without a word

TEST_F(Csv, UndecodableBytesBecomeReplacementCharacters) {
    // Under UTF-8: a stray byte and a NUL inside a line; the cells behind them stay.
    mDir.Write("bad.csv", std::string("a,b\xff\xfe,c\r\nd,e\0f,g\r\nh\n", 20));
    csv t(mDir.Wide("bad.csv").c_str());
    ASSERT_EQ(t.Rows(), 3);
    ASSERT_EQ(t[0].Size(), 3);
    EXPECT_EQ(Cell(t, 0, 1), u"b\xFFFD\xFFFD");
    EXPECT_EQ(Cell(t, 0, 2), u"c");
    ASSERT_EQ(t[1].Size(), 3);
    EXPECT_EQ(Cell(t, 1, 1), u"e\xFFFD" u"f");
    EXPECT_EQ(Cell(t, 2, 0), u"h");
    if (!std::setlocale(LC_ALL, "ja_JP.SJIS")) GTEST_SKIP() << "no ja_JP.SJIS locale";
    // Under Shift_JIS: a lead byte with no valid trail byte.
    mDir.Write("sjis.csv", "\x82\xa0,\x81\x20x,\x82\xa2\r\n\x82\xa4");
    csv sjis(mDir.Wide("sjis.csv").c_str());
    ASSERT_EQ(sjis.Rows(), 2);
    ASSERT_EQ(sjis[0].Size(), 3);
    EXPECT_EQ(Cell(sjis, 0, 0), u"あ");
    EXPECT_EQ(Cell(sjis, 0, 1), u"\xFFFD x");
    EXPECT_EQ(Cell(sjis, 0, 2), u"い");
    EXPECT_EQ(Cell(sjis, 1, 0), u"う");
}

TEST_F(Csv, AReadThatFailsPartWayThrows) {
    std::string line = "cell,cell,cell,cell\r\n";
    std::string big;
    for (int i = 0; i < 20000; ++i) big += line;
    mDir.Write("big.csv", big);
    std::u16string path = mDir.Wide("big.csv");
    FailReadsAfter(100000);
    std::u16string thrown = Thrown([&] { csv t(path.c_str()); });
    StopReadFaults();
    EXPECT_EQ(thrown, u"csv::LoadError <" + path + u">");
    csv t(path.c_str());
    EXPECT_EQ(t.Rows(), 20000);
}

TEST_F(Csv, FailureTextsCarryThePathAsGiven) {
    std::u16string odd = u"C:" + mDir.Wide("%s %d 日本\\missing.csv");
    EXPECT_EQ(Thrown([&] { csv t(odd.c_str()); }), u"csv::LoadError <" + odd + u">");
}
