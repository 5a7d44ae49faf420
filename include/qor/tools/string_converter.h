// string::converter: conversions between UTF-16, 8-bit and UTF-8 text, number
// parsing and printing, and Japanese character classes and widths.
//
// An object holds the result of its last conversion in its buffer; the pointer
// it hands out stays valid until the next conversion or its destruction:
//
//   string::converter c;
//   char const *narrow = c.Mbcs(u"日本語");     // current locale's encoding
//   char16_t const *wide = c.Utf8("caf\xc3\xa9");
//
// The statics need no object: converter::Int(u" 42"), converter::HalfFull(u"ｶﾞ").
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/array.h"
#include "qor/tools/container/buffer.h"
#include "qor/tools/container/two.h"
#include "qor/tools/string.h"

namespace qor::tools {

// Conversions between encodings into a buffer of its own, numbers to and
// from text, and the classes of Japanese characters.
class QOR_TOOLS_API string::converter : public container::buffer {
public:
    // The classes of characters UnicodeType tells apart.
    enum unitype { Latin = 0, Hiragana, Katakana, Kanji, FullDigit, FullUpper, FullLower, HalfKana, Other };
    // Runs of one class: (start, length) pairs.
    using runs = container::array<container::two<int, int>, container::pif::array::object>;

    // An empty buffer; copies share it.
    converter() = default;
    converter(converter const &) = default;
    converter &operator=(converter const &) = default;

    // UTF-16 to the current locale's 8-bit encoding; stops at an unmappable character.
    char const *Mbcs(char16_t const *s);
    char const *Mbcs(char16_t const *s, int n);
    // The current locale's 8-bit encoding to UTF-16.
    char16_t const *Unicode(char const *s);
    char16_t const *Unicode(char const *s, int n);
    // UTF-8 to UTF-16 and back; invalid sequences become U+FFFD.
    char16_t const *Utf8(char const *s);
    char16_t const *Utf8(char const *s, int n);
    char const *Utf8(char16_t const *s);
    char const *Utf8(char16_t const *s, int n);

    // The last result, as UTF-16 or 8-bit text, and the buffer holding it.
    operator char16_t const *() const noexcept;
    operator char const *() const noexcept;
    container::buffer &Buffer() noexcept { return *this; }

    // Numbers by the C library's rules over UTF-16 text; null counts as empty.
    static int Int(char16_t const *text, int radix = 10);
    static unsigned int UInt(char16_t const *text, int radix = 10);
    static long long Int64(char16_t const *text, int radix = 10);
    static double Real(char16_t const *text);
    static float Float(char16_t const *text);
    static bool IsReal(char16_t const *text);
    static string Text(int value);
    static string Text(long value) { return Text(static_cast<long long>(value)); }
    static string Text(long long value);
    static string Text(double value, int digits);
    static string Text(float value, int digits);

    // Japanese text.
    static unitype UnicodeType(char16_t c) noexcept;
    static runs Distribution(char16_t const *text);
    static string HalfFull(char16_t const *text);
    static string FullHalf(char16_t const *text);
    static string KanaHalfFull(char16_t const *text, bool full);

private:
    void _Mbcs(char16_t const *s, int n);
    void _Unicode(char const *s, int n);
    void _Utf8(char const *s, int n);
    void _Utf8(char16_t const *s, int n);
    void _Store(void const *bytes, std::size_t size, int minimum, int terminator);
};

}  // namespace qor::tools
