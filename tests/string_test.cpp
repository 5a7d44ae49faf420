#include "qor/tools/string.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <random>

#include <cstring>
#include <string>

using qor::tools::string;

namespace {

// The block header sits right in front of the text.
int Shares(string const &s) { return reinterpret_cast<string::HANDLE const *>(s.Area())[-1].mCount; }
int Capacity(string const &s) { return reinterpret_cast<string::HANDLE const *>(s.Area())[-1].mSize; }
std::u16string Text(string const &s) { return std::u16string(s.Safe()); }

}  // namespace

TEST(StringLayout, IsOnePointerBesideTheVtable) {
    EXPECT_EQ(sizeof(string), 2 * sizeof(void *));
}

TEST(StringEmpty, NullAndEmptyAreEqualEverywhere) {
    string s;
    EXPECT_EQ(s.Length(), 0);
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.Safe()[0], 0);
    EXPECT_EQ(static_cast<char16_t const *>(s), nullptr);

    string fromNull(static_cast<char16_t const *>(nullptr)), fromEmpty(u"");
    EXPECT_EQ(fromNull.Area(), nullptr);
    EXPECT_EQ(fromEmpty.Area(), nullptr);
    EXPECT_TRUE(fromNull == fromEmpty);
    EXPECT_TRUE(fromNull == static_cast<char16_t const *>(nullptr));
    EXPECT_EQ(string::Compare(nullptr, u""), 0);

    string nul(char16_t(0));
    EXPECT_NE(nul.Area(), nullptr);
    EXPECT_TRUE(nul.IsEmpty());
    EXPECT_EQ(Capacity(nul), 2);
}

TEST(StringConstruct, ExactBlocksAndBounds) {
    string a(u"abc");
    EXPECT_EQ(Capacity(a), 4);
    EXPECT_EQ(Text(string(u"ab", u"cd")), u"abcd");
    EXPECT_EQ(string(u"", u"").Area(), nullptr);
    EXPECT_EQ(Text(string(u"abcdef", 3)), u"abc");
    EXPECT_EQ(Text(string(u"ab", 10)), u"ab");
    EXPECT_EQ(string(u"ab", 0).Area(), nullptr);
    EXPECT_EQ(string(static_cast<char16_t const *>(nullptr), 5).Area(), nullptr);

    string cleared(5, true);
    EXPECT_EQ(Capacity(cleared), 6);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(cleared.Area()[i], 0);
    EXPECT_EQ(string(0, true).Area(), nullptr);

    EXPECT_EQ(Text(string(std::u16string_view(u"view"))), u"view");
    std::u16string framework(u"abc");
    string fromFramework(framework);
    EXPECT_TRUE(fromFramework == framework);
}

TEST(StringSharing, CopiesShareAndMutatorsUnshare) {
    string a(u"hello");
    string b = a;
    EXPECT_EQ(a.Area(), b.Area());
    EXPECT_EQ(Shares(a), 2);

    b += u"!";
    EXPECT_EQ(Text(a), u"hello");
    EXPECT_EQ(Text(b), u"hello!");
    EXPECT_EQ(Shares(a), 1);

    // Every mutator leaves the other sharer alone.
    auto check = [](auto mutate) {
        string original(u"a b a");
        string copy = original;
        mutate(copy);
        EXPECT_EQ(Text(original), u"a b a");
        EXPECT_EQ(Shares(original), 1);
    };
    check([](string &s) { s.Replace(u"a", u"xyz"); });
    check([](string &s) { s.Replace(u"a", u"x"); });
    check([](string &s) { s.Replace(u'a', u'x'); });
    check([](string &s) { s.Replace(0, 1, u"q"); });
    check([](string &s) { s.Remove(0, 2); });
    check([](string &s) { s.Remove(u"a"); });
    check([](string &s) { s.Insert(1, u"zz"); });
    check([](string &s) { s.Upper(); });
    check([](string &s) { s.Remove(u'b'); });
    check([](string &s) { s.Clear(true); });
    check([](string &s) { s.Format(u"%d", 1); });
    check([](string &s) { s.Set(u"other"); });
}

TEST(StringSharing, SelfAssignmentAndSelfAppend) {
    string a(u"ab");
    string const &same = a;  // assigned to itself, through another name
    a = same;
    EXPECT_EQ(Shares(a), 1);
    a.Add(a);
    EXPECT_EQ(Text(a), u"abab");
    a.Set(a.Area());
    EXPECT_EQ(Text(a), u"abab");
    a.Set(a.Area() + 2);  // a tail of its own text
    EXPECT_EQ(Text(a), u"ab");
    a.Insert(1, a.Area());
    EXPECT_EQ(Text(a), u"aabb");
    a.Replace(u"b", a.Area());
    EXPECT_EQ(Text(a), u"aaaabbaabb");
}

TEST(StringAssign, ShorterTextKeepsCapacity) {
    string a(u"abcdef");
    char16_t const *block = a.Area();
    a = u"ab";
    EXPECT_EQ(a.Area(), block);
    EXPECT_EQ(Capacity(a), 7);
    a += u"cd";
    EXPECT_EQ(a.Area(), block);
    EXPECT_EQ(Text(a), u"abcd");
    a.Set(u"");
    EXPECT_EQ(a.Area(), nullptr);

    string b(u"xyz");
    char16_t const *kept = b.Area();
    b.Clear(false);
    EXPECT_EQ(b.Area(), kept);
    EXPECT_TRUE(b.IsEmpty());
    b.Empty();
    EXPECT_EQ(b.Area(), nullptr);
}

TEST(StringInsert, PositionsAreCutToTheText) {
    string a(u"abc");
    a.Insert(1, u"XY");
    EXPECT_EQ(Text(a), u"aXYbc");
    a.Insert(100, u"!");
    EXPECT_EQ(Text(a), u"aXYbc!");
    a.Insert(-5, u"<");
    EXPECT_EQ(Text(a), u"<aXYbc!");

    string roomy(u"abcdefgh");
    roomy = u"abc";
    roomy.Insert(1, u"12");  // in place, the tail moved by the capacity
    EXPECT_EQ(Text(roomy), u"a12bc");
}

TEST(StringReplace, TextByText) {
    string a(u"one two one two one");
    a.Replace(u"one", u"1");
    EXPECT_EQ(Text(a), u"1 two 1 two 1");
    a.Replace(u"1", u"three", 2, 1);
    EXPECT_EQ(Text(a), u"1 two three two 1");
    a.Replace(u"two", u"");
    EXPECT_EQ(Text(a), u"1  three  1");
    a.Replace(u"zzz", u"y");
    EXPECT_EQ(Text(a), u"1  three  1");
    a.Replace(u"1", u"2", 100);
    EXPECT_EQ(Text(a), u"1  three  1");
    a.Replace(u"1", u"2", 0, 0);
    EXPECT_EQ(Text(a), u"1  three  1");

    string inPlace(u"aaaaaaaaaa");
    inPlace = u"abab";
    char16_t const *block = inPlace.Area();
    inPlace.Replace(u"b", u"cc");
    EXPECT_EQ(inPlace.Area(), block);
    EXPECT_EQ(Text(inPlace), u"accacc");

    string shared(u"xx");
    string other = shared;
    shared.Replace(u"xx", u"");
    EXPECT_TRUE(shared.IsEmpty());
    EXPECT_EQ(Text(other), u"xx");
}

TEST(StringReplace, EqualTextLeavesSharedBlockUntouched) {
    string a(u"abc");
    string b = a;
    a.Replace(u"b", u"b");
    EXPECT_EQ(a.Area(), b.Area());
    EXPECT_EQ(Shares(a), 2);
}

TEST(StringReplace, CharactersAndRanges) {
    string a(u"banana");
    a.Replace(u'a', u'o', 2, 1);
    EXPECT_EQ(Text(a), u"banona");
    a.Replace(u'a', u'o', -1);
    EXPECT_EQ(Text(a), u"banona");
    a.Replace(0, 3, u"X");
    EXPECT_EQ(Text(a), u"Xona");
    a.Replace(1, 1, u'\u65E5');
    EXPECT_EQ(Text(a), u"X\u65E5na");
    a.Replace(2, 100, u"!");  // a length past the end takes what remains
    EXPECT_EQ(Text(a), u"X\u65E5!");
    a.Replace(9, 1, u"?");
    EXPECT_EQ(Text(a), u"X\u65E5!");
}

TEST(StringRemove, RangesAndOccurrences) {
    string a(u"abcdef");
    a.Remove(2, 100);
    EXPECT_EQ(Text(a), u"ab");
    a.Remove(-1, 1).Remove(0, 0).Remove(5, 1);
    EXPECT_EQ(Text(a), u"ab");

    string b(u"xaabbx");
    b.Remove(u"ab");  // the text joined by a removal matches again
    EXPECT_EQ(Text(b), u"xx");
    string c(u"a-b-c-d");
    c.Remove(u'-', 2, 2);
    EXPECT_EQ(Text(c), u"a-bcd");
}

TEST(StringCompare, OrdinalByUnsignedUnit) {
    EXPECT_EQ(string(u"a").Compare(u"b"), -1);
    EXPECT_EQ(string(u"b").Compare(u"a"), 1);
    EXPECT_EQ(string(u"\uFF21").Compare(u"a"), 1);  // no locale, no sign trouble
    EXPECT_EQ(string(u"abc").Compare(u"abd", 2), 0);
    EXPECT_EQ(string(u"ABC").CompareNoCase(u"abc"), 0);
    EXPECT_LT(string(u"ABC").CompareNoCase(u"abd"), 0);
    EXPECT_TRUE(string(u"a") < string(u"b"));
    EXPECT_TRUE(string(u"a") == u'a');
    EXPECT_TRUE(u"a" == string(u"a"));
    EXPECT_EQ(string::Compare("b", "a"), 1);
}

TEST(StringExtract, LeftRightMid) {
    string a(u"key=value");
    EXPECT_TRUE(a.Left(0).IsEmpty());
    EXPECT_EQ(Text(a.Left(3)), u"key");
    EXPECT_EQ(Text(a.Left(100)), u"key=value");
    EXPECT_EQ(Text(a.Left(u'=')), u"key");
    EXPECT_EQ(Text(a.Left(u'#')), u"key=value");
    EXPECT_EQ(Text(a.Right(5)), u"value");
    EXPECT_EQ(Text(a.Right(u'=')), u"value");
    EXPECT_EQ(Text(a.Right(u'#')), u"key=value");
    EXPECT_TRUE(a.Mid(a.Length(), 2).IsEmpty());
    EXPECT_EQ(Text(a.Mid(0, 0x7fffffff)), u"key=value");
    EXPECT_EQ(Text(a.Mid(4, 2)), u"va");
    EXPECT_EQ(Text(a.GetUpper()), u"KEY=VALUE");
    EXPECT_EQ(Text(a), u"key=value");
}

TEST(StringFind, RejectionRulesAndReverse) {
    string a(u"abcb");
    EXPECT_EQ(a.Find(u""), -1);
    EXPECT_EQ(string(u"ab").Find(u"abc"), -1);
    EXPECT_EQ(a.Find(u"b", 2), 3);
    EXPECT_EQ(a.Find(u"b", -1), -1);
    EXPECT_EQ(a.Find(u"b", 4), -1);
    EXPECT_EQ(a.Find(u'c'), 2);
    EXPECT_EQ(a.FindReverse(u"b", 3), 1);  // a match must end at or before index 3
    EXPECT_EQ(a.FindReverse(u"b"), 3);
    EXPECT_EQ(a.FindReverse(u'b', 3), 1);
    EXPECT_EQ(a.FindNoCase(u"CB"), 2);
    EXPECT_EQ(string(u"aaaa").Count(u"aa", 0), 2);
    EXPECT_EQ(a.Count(u'b'), 2);
    EXPECT_EQ(a.Count(u"zz"), 0);
    char16_t const *list[] = {u"x", u"abcb", u"abcb"};
    EXPECT_EQ(string::Matching(a, list, 3), 1);
    EXPECT_EQ(string::Matching(a, list, 0), -1);
}

TEST(StringTrim, BlankRulesAndQuirks) {
    string spaces(u"   ");
    spaces.TrimLeft(true);
    EXPECT_EQ(Text(spaces), u"   ");
    string a(u"a  ");
    a.TrimRight(true);
    EXPECT_EQ(Text(a), u"a  ");  // only index 0 is not blank: left as it is
    string ab(u"ab ");
    ab.TrimRight(false);
    EXPECT_EQ(Text(ab), u"ab ");
    string wide(u"\u3000 x y\u3000\t");
    wide.TrimLeft(true).TrimRight(true);
    EXPECT_EQ(Text(wide), u"x y");
    string control(u"\t\n x");
    control.TrimLeft(false);
    EXPECT_EQ(Text(control), u" x");
}

TEST(StringFormat, WideConversionsAndBlocks) {
    string s;
    s.Format(u"");
    EXPECT_EQ(s.Area(), nullptr);
    s.Format(u"%s|%ls|%hs|%S|%c|%C", u"wide", u"long", "narrow", "upper", u'\u65E5', 'n');
    EXPECT_EQ(Text(s), u"wide|long|narrow|upper|\u65E5|n");
    s.Format(u"[%5d][%-5d][%05d][%+d][% d][%x][%X][%o][%#x]", 42, 42, 42, 42, 42, 255, 255, 8, 255);
    EXPECT_EQ(Text(s), u"[   42][42   ][00042][+42][ 42][ff][FF][10][0xff]");
    s.Format(u"%I64d %lld %u %d %hd", -9000000000LL, 9000000000LL, 4294967295u, -1, 70000);
    EXPECT_EQ(Text(s), u"-9000000000 9000000000 4294967295 -1 4464");
    s.Format(u"%.2f %e %g %*d %.*s %%", 1.005, 12345.678, 0.0001, 4, 7, 2, u"abc");
    EXPECT_EQ(Text(s), u"1.00 1.234568e+04 0.0001    7 ab %");
    s.Format(u"%p", reinterpret_cast<void *>(0xABCDEF));
    EXPECT_EQ(Text(s), u"0000000000ABCDEF");
    s.Format(u"%s", static_cast<char16_t const *>(nullptr));
    EXPECT_EQ(Text(s), u"(null)");
    std::u16string big(1000, u'x');
    s.Format(u"%s", big.c_str());
    EXPECT_EQ(s.Length(), 1000);
    EXPECT_EQ(Capacity(s), 1001);

    string arg(u"self");
    arg.Format(u"%s and %s", arg.Area(), arg.Area());
    EXPECT_EQ(Text(arg), u"self and self");

    EXPECT_EQ(Text(string::Formatter(u"%d-%d", 1, 2)), u"1-2");
}

TEST(StringFormat, DateTimeShape) {
    string s;
    s.DateTime(u'-');
    ASSERT_EQ(s.Length(), 19);
    EXPECT_EQ(s[4], u'-');
    EXPECT_EQ(s[7], u'-');
    EXPECT_EQ(s[10], u' ');
    EXPECT_EQ(s[13], u':');
}

TEST(StringFormatD, PicturesStepByStep) {
    string s;
    EXPECT_EQ(Text(s.FormatD(u"***,**9.99", 1234.5)), u"  1,234.59");
    EXPECT_EQ(Text(s.FormatD(u"***,**9.**", 1234.5)), u"  1,234.5 ");
    EXPECT_EQ(Text(s.FormatD(u"***,**9.**", 1234.5, true, true)), u"1,234.5");
    EXPECT_EQ(Text(s.FormatD(u"***,**9.**", 12.0, true, true)), u"12");
    EXPECT_EQ(Text(s.FormatD(u"++++9", -42.0)), u"  -42");
    EXPECT_EQ(Text(s.FormatD(u"----9", 42.0)), u"   42");
    EXPECT_EQ(Text(s.FormatD(u"*****", 0.0, true)), u"0");
    EXPECT_TRUE(s.FormatD(u".**", 0.0).IsEmpty());  // no digit reached
    EXPECT_EQ(Text(s.FormatD(u".**", 0.5)), u".5 ");
}

TEST(StringFormatD, HiddenSeparatorMovesHalfTheTail) {
    // The tail "34" is moved by 3 bytes, not 3 units: '3' lands on the
    // separator, the low byte of '4' on the next unit, and the last '4' stays.
    string s;
    EXPECT_EQ(Text(s.FormatD(u"****|**", 12.34)), u"  12344");
    EXPECT_EQ(Text(s.FormatD(u"****|**", 12.3)), u"  123  ");
}

TEST(StringStatics, RawCopiesNeverCutText) {
    char16_t dst[4] = {u'x', u'x', u'x', u'x'};
    string::Copy(dst, 4, u"abc");
    EXPECT_EQ(std::u16string(dst), u"abc");
    string::Copy(dst, 3, u"abc");
    EXPECT_EQ(dst[0], 0);
    char narrow[8];
    string::Copy(narrow, "hi");
    EXPECT_STREQ(narrow, "hi");
    EXPECT_EQ(string::Length(static_cast<char const *>(nullptr)), 0);
    EXPECT_STREQ(string::Safe(static_cast<char const *>(nullptr)), "");
}

TEST(StringArea, HandsOutANewExactBlock) {
    string s(u"old");
    string keep = s;
    char16_t *area = s.Area(5, false);
    EXPECT_EQ(area[0], 0);
    EXPECT_EQ(Capacity(s), 6);
    EXPECT_EQ(Text(keep), u"old");
    EXPECT_EQ(s.Area(0, false), nullptr);
}

// ---------------------------------------------------------------- the vectorised searches

namespace {

// Text that ends right before an unreadable page, at any alignment: a search
// that reads one unit too far crashes here.
class page_end_text {
public:
    page_end_text() {
        mPages = static_cast<char *>(::mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        ::mprotect(mPages + kPage, kPage, PROT_NONE);
    }
    ~page_end_text() { ::munmap(mPages, 2 * kPage); }
    char16_t const *Place(std::u16string const &text) {
        auto *end = reinterpret_cast<char16_t *>(mPages + kPage) - 1;
        char16_t *start = end - text.size();
        std::copy(text.begin(), text.end(), start);
        *end = 0;
        return start;
    }

private:
    static constexpr std::size_t kPage = 4096;
    char *mPages;
};

}  // namespace

TEST(StringSearch, AgreesWithAPlainSearchUpToTheLastReadableUnit) {
    page_end_text page;
    std::mt19937 random(7);
    char16_t const alphabet[] = u"abn日";
    for (int round = 0; round < 3000; ++round) {
        std::u16string text(std::size_t(random() % 70), u'a'), needle(std::size_t(1 + random() % 3), u'a');
        for (auto &c : text) c = alphabet[random() % 4];
        for (auto &c : needle) c = alphabet[random() % 4];
        char16_t const *placed = page.Place(text);
        int start = int(random() % 8);
        std::size_t expected = start < int(text.size()) ? text.find(needle, std::size_t(start)) : text.npos;
        ASSERT_EQ(string::Find(placed, needle.c_str(), start), expected == text.npos ? -1 : int(expected)) << round;
        std::size_t back = text.rfind(needle, std::size_t(start + 30) - needle.size());
        if (std::size_t(start + 30) < needle.size()) back = text.npos;
        ASSERT_EQ(string::FindReverse(placed, needle.c_str(), start + 30), back == text.npos ? -1 : int(back)) << round;
        std::size_t unit = start < int(text.size()) ? text.find(needle[0], std::size_t(start)) : text.npos;
        ASSERT_EQ(string::Find(placed, needle[0], start), unit == text.npos ? -1 : int(unit)) << round;
        ASSERT_EQ(string::Length(placed), int(text.size()));

        std::u16string replaced = text.substr(0, std::size_t(start < int(text.size()) ? start : 0));
        std::size_t done = replaced.size(), n = 0;
        if (start < int(text.size())) {
            for (std::size_t p = text.find(needle, done); p != text.npos; p = text.find(needle, done)) {
                replaced.append(text, done, p - done).append(u"<>");
                done = p + needle.size();
                ++n;
            }
            replaced.append(text, done);
        } else {
            replaced = text;
        }
        string s(placed);
        s.Replace(needle.c_str(), u"<>", start);
        ASSERT_EQ(std::u16string(s.Safe()), replaced) << round;
        ASSERT_EQ(string::Count(placed, needle.c_str(), start), int(n)) << round;
    }
}
