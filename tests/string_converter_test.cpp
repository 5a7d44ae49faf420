#include "qor/tools/string_converter.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <string>

using qor::tools::string;
using converter = qor::tools::string::converter;

namespace {

std::u16string Text(string const &s) { return std::u16string(s.Safe()); }

// Switches the C library's locale for one test and back.
class locale_scope {
public:
    explicit locale_scope(char const *name) : mOld(std::setlocale(LC_ALL, nullptr)) {
        mActive = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~locale_scope() { std::setlocale(LC_ALL, mOld.c_str()); }
    bool Active() const { return mActive; }

private:
    std::string mOld;
    bool mActive = false;
};

}  // namespace

TEST(ConverterObject, NeverHandsOutNull) {
    converter c;
    EXPECT_EQ(static_cast<char16_t const *>(c)[0], 0);
    EXPECT_STREQ(c.Mbcs(static_cast<char16_t const *>(nullptr)), "");
    EXPECT_EQ(c.Unicode(static_cast<char const *>(nullptr))[0], 0);
    converter shared = c;
    c.Utf8(u"x");
    EXPECT_STREQ(static_cast<char const *>(shared), "x");  // the buffer is shared
    c.Release();
    EXPECT_STREQ(static_cast<char const *>(c), "");
}

TEST(ConverterUtf8, BothWaysWithoutALocale) {
    converter c;
    char const *bytes = c.Utf8(u"\u65E5");
    EXPECT_EQ(std::string(bytes), "\xE6\x97\xA5");
    EXPECT_EQ(c.Size(), 4);
    EXPECT_EQ(std::u16string(c.Utf8("\xE6\x97\xA5\xE6\x9C\xAC")), u"\u65E5\u672C");
    EXPECT_EQ(std::u16string(c.Utf8("a\xFF" "b\xE6\x97")), u"a\uFFFDb\uFFFD");
    EXPECT_EQ(std::string(c.Utf8(u"\U0001F600")), "\xF0\x9F\x98\x80");
    EXPECT_EQ(std::string(c.Utf8(u"\xD800x")), "\xEF\xBF\xBDx");
    EXPECT_EQ(std::u16string(c.Utf8("abcdef", 3)), u"abc");
    converter reused;
    reused.Utf8(u"a long text first");
    EXPECT_EQ(std::string(reused.Utf8(u"ab")), "ab");  // always terminated here
}

TEST(ConverterUtf8, LengthFormsLoseAByteAtIndexN) {
    converter c;
    // Byte n of the copy is cleared: for even n the unit n/2 loses its low byte.
    EXPECT_EQ(std::string(c.Utf8(u"abcd", 2)), "a");
    EXPECT_EQ(std::string(c.Utf8(u"abcd", 3)), "abc");
    EXPECT_EQ(std::string(c.Utf8(u"\u65E5\u672C", 1)), "\xC3\xA5");  // U+65E5 lost its high byte
    EXPECT_EQ(std::string(c.Mbcs(u"abcd", 4)), "ab");
}

TEST(ConverterLocale, JapaneseRoundTripsInUtf8AndShiftJis) {
    std::u16string japanese = u"日本語のテキスト、ｶﾀｶﾅ";
    {
        locale_scope utf8("ja_JP.UTF-8");
        if (!utf8.Active()) GTEST_SKIP() << "ja_JP.UTF-8 is not installed (scripts/install-deps.sh makes it)";
        converter c;
        std::string narrow = c.Mbcs(japanese.c_str());
        EXPECT_EQ(narrow, std::string(reinterpret_cast<char const *>(u8"日本語のテキスト、ｶﾀｶﾅ")));
        EXPECT_EQ(std::u16string(converter().Unicode(narrow.c_str())), japanese);
        EXPECT_TRUE(string(narrow.c_str()) == japanese);
    }
    {
        locale_scope sjis("ja_JP.SJIS");
        if (!sjis.Active()) GTEST_SKIP() << "ja_JP.SJIS is not installed (scripts/install-deps.sh makes it)";
        converter c;
        std::string narrow = c.Mbcs(japanese.c_str());
        EXPECT_EQ(narrow.substr(0, 2), "\x93\xfa");  // 日 in Shift_JIS
        EXPECT_EQ(narrow.size(), 9 * 2 + 4u);  // half-width kana take one byte
        EXPECT_EQ(std::u16string(converter().Unicode(narrow.c_str())), japanese);
        // An unmappable character ends the conversion, keeping what was made.
        EXPECT_EQ(std::string(c.Mbcs(u"ab\U0001F600cd")), "ab");
    }
}

TEST(ConverterLocale, CLocaleIsLatin1) {
    locale_scope c("C");
    converter conv;
    EXPECT_EQ(std::u16string(conv.Unicode("caf\xE9")), u"caf\u00E9");
    EXPECT_EQ(std::string(conv.Mbcs(u"caf\u00E9\u65E5")), "caf\xE9");
}

TEST(ConverterNumbers, CLibraryRules) {
    EXPECT_EQ(converter::Int(u"  -42xyz"), -42);
    EXPECT_EQ(converter::Int(u"0x1F", 16), 31);
    EXPECT_EQ(converter::Int(u"0x1F", 0), 31);
    EXPECT_EQ(converter::Int(u"017", 0), 15);
    EXPECT_EQ(converter::Int(u"99999999999"), 2147483647);
    EXPECT_EQ(converter::Int(u"-99999999999"), -2147483647 - 1);
    EXPECT_EQ(converter::Int(nullptr), 0);
    EXPECT_EQ(converter::Int(u"\uFF11\uFF12"), 12);
    EXPECT_EQ(converter::UInt(u"-1"), 4294967295u);
    EXPECT_EQ(converter::UInt(u"4294967296"), 4294967295u);
    EXPECT_EQ(converter::Int64(u"-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(converter::Int64(u"123456789012"), 123456789012LL);
    EXPECT_DOUBLE_EQ(converter::Real(u" 12.5e1abc"), 125.0);
    EXPECT_FLOAT_EQ(converter::Float(u"0.1"), 0.1f);
    EXPECT_TRUE(converter::IsReal(u"12.5"));
    EXPECT_TRUE(converter::IsReal(u""));
    EXPECT_FALSE(converter::IsReal(u"12x"));
    EXPECT_FALSE(converter::IsReal(u"  "));
    EXPECT_EQ(Text(converter::Text(1.5, 3)), u"1.500");
    EXPECT_EQ(Text(converter::Text(-7)), u"-7");
    EXPECT_EQ(Text(converter::Text(1LL << 40)), u"1099511627776");
    EXPECT_EQ(Text(converter::Text(2.25f, 1)), u"2.2");
}

TEST(ConverterJapanese, ClassesAndRuns) {
    EXPECT_EQ(converter::UnicodeType(u'a'), converter::Latin);
    EXPECT_EQ(converter::UnicodeType(u'\u3042'), converter::Hiragana);
    EXPECT_EQ(converter::UnicodeType(u'\u30A2'), converter::Katakana);
    EXPECT_EQ(converter::UnicodeType(u'\u65E5'), converter::Kanji);
    EXPECT_EQ(converter::UnicodeType(u'\uFF11'), converter::FullDigit);
    EXPECT_EQ(converter::UnicodeType(u'\uFF21'), converter::FullUpper);
    EXPECT_EQ(converter::UnicodeType(u'\uFF41'), converter::FullLower);
    EXPECT_EQ(converter::UnicodeType(u'\uFF76'), converter::HalfKana);
    EXPECT_EQ(converter::UnicodeType(u'\uFF5B'), converter::Other);
    EXPECT_EQ(converter::UnicodeType(u'\u3000'), converter::Other);

    auto runs = converter::Distribution(u"ab\u3042\u3044");
    ASSERT_EQ(runs.Size(), 2);
    EXPECT_EQ(runs[0].mFirst, 0);
    EXPECT_EQ(runs[0].mSecond, 2);
    EXPECT_EQ(runs[1].mFirst, 1);
    EXPECT_EQ(runs[1].mSecond, 2);
    EXPECT_EQ(converter::Distribution(u"").Size(), 0);
}

TEST(ConverterJapanese, WidthTables) {
    EXPECT_EQ(Text(converter::HalfFull(u"ｶﾞ")), u"ガ");
    EXPECT_EQ(Text(converter::HalfFull(u"ﾊﾟﾋﾞｳﾞﾜﾞｦﾞ")), u"パビヴヷヺ");
    EXPECT_EQ(Text(converter::HalfFull(u"ｱﾞﾟ")), u"ア\u3099\u309A");
    EXPECT_EQ(Text(converter::HalfFull(u"A 1\\~")), u"Ａ\u3000１\\～");
    EXPECT_EQ(Text(converter::HalfFull(u"｡｢｣､･ｰｯ\u00A5\u309B")), u"。「」、・ーッ￥\u3099");
    EXPECT_TRUE(converter::HalfFull(nullptr).IsEmpty());

    EXPECT_EQ(Text(converter::FullHalf(u"ガ")), u"ｶﾞ");
    EXPECT_EQ(Text(converter::FullHalf(u"パヴヾヮヵヶ")), u"ﾊﾟｳﾞヽﾞヮヵヶ");
    EXPECT_EQ(Text(converter::FullHalf(u"Ａ\u3000１＼’”￥")), u"A 1＼'\"\u00A5");
    EXPECT_EQ(Text(converter::FullHalf(u"ひらがな漢字")), u"ひらがな漢字");
    EXPECT_EQ(Text(converter::FullHalf(u"、。「」・ー")), u"､｡｢｣･ｰ");

    // Round trip of every half-width kana with every mark.
    for (char16_t c = 0xFF66; c <= 0xFF9D; ++c) {
        std::u16string half(1, c);
        EXPECT_EQ(Text(converter::FullHalf(converter::HalfFull(half.c_str()))), half);
    }
}

TEST(ConverterJapanese, KanaOnly) {
    EXPECT_EQ(Text(converter::KanaHalfFull(u"ｶﾞｲﾄﾞ 12 ひらがな", true)), u"ガイド 12 ひらがな");
    EXPECT_EQ(Text(converter::KanaHalfFull(u"ガイド１２ひらがな", false)), u"ｶﾞｲﾄﾞ１２ひらがな");
    EXPECT_EQ(Text(converter::KanaHalfFull(u"plain text", false)), u"plain text");
}

TEST(StringFromNarrow, ConvertsInTheLocale) {
    locale_scope c("C.UTF-8");
    EXPECT_TRUE(string("caf\xC3\xA9") == u"café");
    EXPECT_TRUE(string("abcdef", 3) == u"abc");
    EXPECT_EQ(string("", 3).Area(), nullptr);
    EXPECT_EQ(string(static_cast<char const *>(nullptr)).Area(), nullptr);
}
