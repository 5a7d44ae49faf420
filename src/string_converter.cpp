#include "qor/tools/string_converter.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "platform/text_codec.h"
#include "utf8.h"
#include "width_tables.h"

namespace qor::tools {

namespace {

// A private copy of the first `n` units of `s` in `n * 2 + 2` zeroed bytes,
// whose byte `n` (not unit `n`) is then set to zero, as the original does.
std::u16string WideCopy(char16_t const *s, int n) {
    std::u16string copy(std::size_t(n) + 1, u'\0');
    int length = 0;
    while (length < n && s[length]) ++length;
    std::memcpy(copy.data(), s, std::size_t(length) * sizeof(char16_t));
    if (n >= 1) reinterpret_cast<unsigned char *>(copy.data())[n] = 0;
    return copy;
}

int BoundedNarrowLength(char const *s, int n) {
    int length = 0;
    while (length < n && s[length]) ++length;
    return length;
}

}  // namespace

// ---------------------------------------------------------------- conversions

void string::converter::_Store(void const *bytes, std::size_t size, int minimum, int terminator) {
    int total = int(size) + terminator;
    if (total < minimum) total = minimum;
    Size(total, true);
    if (size) std::memcpy(Data(), bytes, size);
    std::memset(Data() + size, 0, std::size_t(total) - size);
}

void string::converter::_Mbcs(char16_t const *s, int n) {
    std::string out;
    if (n >= 1) platform::Utf16ToLocale(s, std::size_t(n), out);
    _Store(out.data(), out.size(), n * 2 + 2, 1);
}

void string::converter::_Unicode(char const *s, int n) {
    std::u16string out;
    if (n >= 1) platform::LocaleToUtf16(s, std::size_t(n), out);
    _Store(out.data(), out.size() * sizeof(char16_t), n * 2 + 2, 2);
}

void string::converter::_Utf8(char const *s, int n) {
    std::u16string out;
    if (n >= 1) detail::Utf8ToUtf16(s, std::size_t(n), out);
    _Store(out.data(), out.size() * sizeof(char16_t), int(out.size()) * 2 + 2, 2);
}

void string::converter::_Utf8(char16_t const *s, int n) {
    std::string out;
    if (n >= 1) detail::Utf16ToUtf8(s, std::size_t(n), out);
    _Store(out.data(), out.size(), int(out.size()) + 1, 1);
}

char const *string::converter::Mbcs(char16_t const *s) {
    _Mbcs(s, Length(s));
    return *this;
}

char const *string::converter::Mbcs(char16_t const *s, int n) {
    if (!s || n < 1) return Mbcs(nullptr);
    std::u16string copy = WideCopy(s, n);
    _Mbcs(copy.data(), Length(copy.data()));
    return *this;
}

char16_t const *string::converter::Unicode(char const *s) {
    _Unicode(s, Length(s));
    return *this;
}

char16_t const *string::converter::Unicode(char const *s, int n) {
    if (!s || n < 1) return Unicode(nullptr);
    std::string copy(s, std::size_t(BoundedNarrowLength(s, n)));
    _Unicode(copy.c_str(), int(copy.size()));
    return *this;
}

char16_t const *string::converter::Utf8(char const *s) {
    _Utf8(s, Length(s));
    return *this;
}

char16_t const *string::converter::Utf8(char const *s, int n) {
    if (!s || n < 1) return Utf8(static_cast<char const *>(nullptr));
    std::string copy(s, std::size_t(BoundedNarrowLength(s, n)));
    _Utf8(copy.c_str(), int(copy.size()));
    return *this;
}

char const *string::converter::Utf8(char16_t const *s) {
    _Utf8(s, Length(s));
    return *this;
}

char const *string::converter::Utf8(char16_t const *s, int n) {
    if (!s || n < 1) return Utf8(static_cast<char16_t const *>(nullptr));
    std::u16string copy = WideCopy(s, n);
    _Utf8(copy.data(), Length(copy.data()));
    return *this;
}

string::converter::operator char16_t const *() const noexcept {
    return Data() && Size() >= 2 ? reinterpret_cast<char16_t const *>(Data()) : kEmpty;
}

string::converter::operator char const *() const noexcept {
    return Data() && Size() >= 1 ? reinterpret_cast<char const *>(Data()) : "";
}

// ---------------------------------------------------------------- the string constructors

string::string(char const *s) : mText(nullptr) {
    converter c;
    char16_t const *wide = c.Unicode(s);
    _Create(wide, Length(wide));
}

string::string(char const *s, int n) : mText(nullptr) {
    converter c;
    char16_t const *wide = c.Unicode(s, n);
    _Create(wide, Length(wide));
}

// ---------------------------------------------------------------- numbers

namespace {

bool IsSpace(char16_t c) {
    return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}

int DigitValue(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= 0xFF10 && c <= 0xFF19) return c - 0xFF10;  // full-width digits, as the platform reads them
    if (c >= u'a' && c <= u'z') return c - u'a' + 10;
    if (c >= u'A' && c <= u'Z') return c - u'A' + 10;
    return 99;
}

// wcstoul's scan: white space, sign, radix prefix, digits. `overflow` is set
// when the magnitude exceeds `limit`; `end` is where the parse stopped.
struct parsed {
    unsigned long long magnitude = 0;
    bool negative = false;
    bool overflow = false;
    bool any = false;
};

parsed ParseInteger(char16_t const *text, int radix, unsigned long long limit) {
    parsed r;
    if (!text || radix < 0 || radix == 1 || radix > 36) return r;
    char16_t const *p = text;
    while (IsSpace(*p)) ++p;
    if (*p == u'+' || *p == u'-') r.negative = *p++ == u'-';
    if ((radix == 0 || radix == 16) && p[0] == u'0' && (p[1] == u'x' || p[1] == u'X') && DigitValue(p[2]) < 16) {
        p += 2;
        radix = 16;
    } else if (radix == 0) {
        radix = p[0] == u'0' ? 8 : 10;
    }
    for (int d; (d = DigitValue(*p)) < radix; ++p) {
        r.any = true;
        if (r.magnitude > (limit - unsigned(d)) / unsigned(radix)) {
            r.overflow = true;
        } else {
            r.magnitude = r.magnitude * unsigned(radix) + unsigned(d);
        }
    }
    return r;
}

// The longest ASCII prefix of `text`, for strtod in the "C" locale.
std::string AsciiPrefix(char16_t const *text) {
    std::string s;
    for (char16_t const *p = text; p && *p; ++p) {
        char16_t c = *p;
        if (c >= 0xFF10 && c <= 0xFF19) c = char16_t(c - 0xFF10 + u'0');
        if (c >= 0x80 || c == 0) {
            if (IsSpace(c) && s.find_first_not_of(" \t\n\v\f\r") == std::string::npos) {
                s.push_back(' ');
                continue;
            }
            break;
        }
        s.push_back(char(c));
    }
    return s;
}

double ParseReal(char16_t const *text, std::size_t *used) {
    std::string ascii = AsciiPrefix(text);
    static locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
    char *end = nullptr;
    double value = strtod_l(ascii.c_str(), &end, c);
    if (used) *used = std::size_t(end - ascii.c_str());
    return value;
}

}  // namespace

int string::converter::Int(char16_t const *text, int radix) {
    parsed r = ParseInteger(text, radix, 0x80000000ull);
    if (r.overflow || (!r.negative && r.magnitude > 0x7FFFFFFFull)) return r.negative ? INT32_MIN : INT32_MAX;
    return r.negative ? int(-static_cast<long long>(r.magnitude)) : int(r.magnitude);
}

unsigned int string::converter::UInt(char16_t const *text, int radix) {
    parsed r = ParseInteger(text, radix, 0xFFFFFFFFull);
    if (r.overflow) return UINT32_MAX;
    return r.negative ? unsigned(-static_cast<long long>(r.magnitude)) : unsigned(r.magnitude);
}

long long string::converter::Int64(char16_t const *text, int radix) {
    parsed r = ParseInteger(text, radix, 0x8000000000000000ull);
    if (r.overflow || (!r.negative && r.magnitude > 0x7FFFFFFFFFFFFFFFull)) return r.negative ? INT64_MIN : INT64_MAX;
    return r.negative ? static_cast<long long>(0 - r.magnitude) : static_cast<long long>(r.magnitude);
}

double string::converter::Real(char16_t const *text) { return ParseReal(text, nullptr); }

float string::converter::Float(char16_t const *text) { return float(ParseReal(text, nullptr)); }

bool string::converter::IsReal(char16_t const *text) {
    std::size_t used = 0;
    ParseReal(text, &used);
    return !text || text[used] == 0;
}

string string::converter::Text(int value) { return Formatter(u"%d", value); }

string string::converter::Text(long long value) { return Formatter(u"%I64d", value); }

string string::converter::Text(double value, int digits) {
    string format = Formatter(u"%%.%df", digits);
    return Formatter(format, value);
}

string string::converter::Text(float value, int digits) { return Text(double(value), digits); }

// ---------------------------------------------------------------- Japanese text

string::converter::unitype string::converter::UnicodeType(char16_t c) noexcept {
    if (c < 0x0100) return Latin;
    if (c >= 0x3040 && c <= 0x309F) return Hiragana;
    if (c >= 0x30A0 && c <= 0x30FF) return Katakana;
    if (c >= 0x4E00 && c <= 0x9FFF) return Kanji;
    if (c >= 0xFF10 && c <= 0xFF19) return FullDigit;
    if (c >= 0xFF21 && c <= 0xFF3A) return FullUpper;
    if (c >= 0xFF41 && c <= 0xFF5A) return FullLower;
    if (c >= 0xFF61 && c <= 0xFF9F) return HalfKana;
    return Other;
}

string::converter::runs string::converter::Distribution(char16_t const *text) {
    runs result;
    int current = -1, count = 0;
    for (char16_t const *p = Safe(text); *p; ++p) {
        int type = UnicodeType(*p);
        if (type != current && current >= 0) {
            result.Add({current, count});
            count = 0;
        }
        current = type;
        ++count;
    }
    if (current >= 0) result.Add({current, count});
    return result;
}

string string::converter::HalfFull(char16_t const *text) {
    int length = Length(text);
    if (length == 0) return string();
    std::u16string full = detail::ToFullWidth(text, std::size_t(length));
    return string(full.c_str());
}

string string::converter::FullHalf(char16_t const *text) {
    int length = Length(text);
    if (length == 0) return string();
    std::u16string half = detail::ToHalfWidth(text, std::size_t(length));
    return string(half.c_str());
}

string string::converter::KanaHalfFull(char16_t const *text, bool full) {
    string source(text), result;
    int at = 0;
    for (auto const &run : Distribution(text)) {
        string piece = source.Mid(at, run.mSecond);
        at += run.mSecond;
        if (run.mFirst == Katakana && !full) {
            result += FullHalf(piece);
        } else if (run.mFirst == HalfKana && full) {
            result += HalfFull(piece);
        } else {
            result += piece;
        }
    }
    return result;
}

}  // namespace qor::tools
