// qor::tools::string, the library's one text type.
//
// UTF-16 text (char16_t units), NUL-terminated, in a reference-counted block
// that is copied on write. The object is one pointer beside its vtable; the
// length is never stored and blocks are allocated to fit exactly. A null text
// and an empty text are equal everywhere. Copies share the block (one plain,
// non-atomic increment), so two strings sharing a block belong to one thread.
//
//   qor::tools::string s(u"abc");
//   s += u"def";
//   s.Replace(u"cd", u"XY");
//   const char16_t *p = s;        // usable directly, may be null
#pragma once

#include "qor/tools/export.h"

#include <cstdarg>
#include <string_view>

namespace qor::tools {

namespace container {
namespace pif::array { struct object; }
template <typename T, typename P> class array;
}  // namespace container

class QOR_TOOLS_API string {
public:
    // Header of a text block; the text follows it in the same allocation.
    struct HANDLE {
        int mSize;   // capacity in characters, terminator included
        int mCount;  // number of strings sharing the block
    };
    class converter;
    // What Tokenize answers: the pieces of a text.
    using tokens = container::array<string, container::pif::array::object>;

    // "As many as there are", for counts and lengths.
    static constexpr int kAll = 0x7fffffff;

    // Construction.
    string() noexcept : mText(nullptr) {}
    string(char16_t const *s);
    string(char16_t const *a, char16_t const *b);
    string(char16_t c);
    string(std::u16string_view s);
    string(int length, bool clear);
    string(char16_t const *s, int n);
    string(char const *s);
    string(char const *s, int n);
    string(string const &other) noexcept;
    virtual ~string();

    // Assignment and append.
    string &Set(string const &s);
    string &Set(char16_t const *s);
    string &Set(char16_t c);
    string &operator=(string const &s) { return Set(s); }
    string &operator=(char16_t const *s) { return Set(s); }
    string &operator=(char16_t c) { return Set(c); }
    string &operator=(std::u16string_view s);
    string &Add(string const &s);
    string &Add(char16_t const *s);
    string &Add(char16_t c);
    string &operator+=(string const &s) { return Add(s); }
    string &operator+=(char16_t const *s) { return Add(s); }
    string &operator+=(char16_t c) { return Add(c); }
    string &operator+=(std::u16string_view s);
    string &Insert(int pos, string const &s);
    string &Insert(int pos, char16_t const *s);
    string &Insert(int pos, char16_t c);
    void Empty();
    void Clear(bool full = false);

    // Replacing and removing.
    string &Replace(char16_t const *from, char16_t const *to, int start = 0, int count = kAll);
    string &Replace(char16_t from, char16_t to, int start = 0, int count = kAll);
    string &Replace(int start, int length, char16_t const *to);
    string &Replace(int start, int length, char16_t to);
    string &Remove(int start, int length);
    string &Remove(char16_t const *s, int start = 0, int count = kAll);
    string &Remove(char16_t c, int start = 0, int count = kAll);

    // Comparison: -1, 0 or +1 by unsigned code unit; null counts as empty.
    int Compare(string const &s) const { return Compare(mText, s.mText); }
    int Compare(char16_t const *s) const { return Compare(mText, s); }
    int Compare(char16_t c) const;
    int Compare(string const &s, int n) const { return Compare(mText, s.mText, n); }
    int Compare(char16_t const *s, int n) const { return Compare(mText, s, n); }
    int CompareNoCase(string const &s) const { return CompareNoCase(mText, s.mText); }
    int CompareNoCase(char16_t const *s) const { return CompareNoCase(mText, s); }
    int CompareNoCase(string const &s, int n) const { return CompareNoCase(mText, s.mText, n); }
    int CompareNoCase(char16_t const *s, int n) const { return CompareNoCase(mText, s, n); }

    // Comparisons by Compare (unit by unit; null and empty are equal).
    bool operator==(string const &s) const { return Compare(s) == 0; }
    bool operator!=(string const &s) const { return Compare(s) != 0; }
    bool operator<(string const &s) const { return Compare(s) < 0; }
    bool operator>(string const &s) const { return Compare(s) > 0; }
    bool operator<=(string const &s) const { return Compare(s) <= 0; }
    bool operator>=(string const &s) const { return Compare(s) >= 0; }
    bool operator==(char16_t const *s) const { return Compare(s) == 0; }
    bool operator!=(char16_t const *s) const { return Compare(s) != 0; }
    bool operator<(char16_t const *s) const { return Compare(s) < 0; }
    bool operator>(char16_t const *s) const { return Compare(s) > 0; }
    bool operator<=(char16_t const *s) const { return Compare(s) <= 0; }
    bool operator>=(char16_t const *s) const { return Compare(s) >= 0; }
    bool operator==(char16_t c) const { return Compare(c) == 0; }
    bool operator!=(char16_t c) const { return Compare(c) != 0; }
    bool operator<(char16_t c) const { return Compare(c) < 0; }
    bool operator>(char16_t c) const { return Compare(c) > 0; }
    bool operator<=(char16_t c) const { return Compare(c) <= 0; }
    bool operator>=(char16_t c) const { return Compare(c) >= 0; }
    bool operator==(std::u16string_view s) const { return CompareView(s) == 0; }
    bool operator!=(std::u16string_view s) const { return CompareView(s) != 0; }
    bool operator<(std::u16string_view s) const { return CompareView(s) < 0; }
    bool operator>(std::u16string_view s) const { return CompareView(s) > 0; }
    bool operator<=(std::u16string_view s) const { return CompareView(s) <= 0; }
    bool operator>=(std::u16string_view s) const { return CompareView(s) >= 0; }

    // Extraction: new strings, this one unchanged.
    string Left(int n) const;
    string Left(char16_t c) const;
    string Right(int n) const;
    string Right(char16_t c) const;
    string Mid(int start, int n = kAll) const;
    string GetLower() const;
    string GetUpper() const;

    // Changing in place.
    string &Lower();
    string &Upper();
    string &TrimLeft(bool full = true);
    string &TrimRight(bool full = true);
    string &Format(char16_t const *format, ...);
    string &FormatV(char16_t const *format, va_list args);
    string &FormatD(char16_t const *picture, double value, bool trim = false, bool cut = false);
    string &DateTime(char16_t separator = u'/');
    static string Formatter(char16_t const *format, ...);

    // Search: an index or -1.
    int Find(char16_t const *s, int start = 0) const { return Find(mText, s, start); }
    int Find(char16_t c, int start = 0) const { return Find(mText, c, start); }
    int FindNoCase(char16_t const *s, int start = 0) const;
    int FindNoCase(char16_t c, int start = 0) const;
    int FindReverse(char16_t const *s, int start = kAll) const { return FindReverse(mText, s, start); }
    int FindReverse(char16_t c, int start = kAll) const { return FindReverse(mText, c, start); }
    int Count(char16_t const *s, int start = 0) const { return Count(mText, s, start); }
    int Count(char16_t c, int start = 0) const { return Count(mText, c, start); }

    // Tokens split at any of `delimiters`, with the quote rule of CSV cells.
    tokens Tokenize(char16_t const *delimiters) const;
    static tokens Tokenize(char16_t const *text, char16_t const *delimiters);

    // Raw access.
    operator char16_t const *() const noexcept { return mText; }
    char16_t const *Area() const noexcept { return mText; }
    char16_t const *Safe() const noexcept { return mText ? mText : kEmpty; }
    char16_t operator[](int i) const { return mText[i]; }
    char16_t *Area(int length, bool clear = false);
    int Length() const noexcept { return Length(mText); }
    bool IsEmpty() const noexcept { return !mText || !*mText; }
    std::u16string_view View() const noexcept { return std::u16string_view(Safe()); }

    // Statics on raw pointers; null counts as empty.
    static char16_t const *Safe(char16_t const *s) noexcept { return s ? s : kEmpty; }
    static char const *Safe(char const *s) noexcept { return s ? s : ""; }
    static int Length(char16_t const *s) noexcept;
    static int Length(char const *s) noexcept;
    static void Copy(char *dst, char const *src);
    static void Copy(char16_t *dst, char16_t const *src);
    static void Copy(char *dst, int bound, char const *src);
    static void Copy(char16_t *dst, int bound, char16_t const *src);
    static int Compare(char16_t const *a, char16_t const *b) noexcept;
    static int Compare(char const *a, char const *b) noexcept;
    static int Compare(char16_t const *a, char16_t const *b, int n) noexcept;
    static int Compare(char const *a, char const *b, int n) noexcept;
    static int CompareNoCase(char16_t const *a, char16_t const *b) noexcept;
    static int CompareNoCase(char16_t const *a, char16_t const *b, int n) noexcept;
    static int Find(char16_t const *text, char16_t const *s, int start = 0) noexcept;
    static int Find(char16_t const *text, char16_t c, int start = 0) noexcept;
    static int FindReverse(char16_t const *text, char16_t const *s, int start = kAll) noexcept;
    static int FindReverse(char16_t const *text, char16_t c, int start = kAll) noexcept;
    static int Count(char16_t const *text, char16_t const *s, int start = 0) noexcept;
    static int Count(char16_t const *text, char16_t c, int start = 0) noexcept;
    static int Matching(char16_t const *text, char16_t const **list, int count) noexcept;

    static char16_t const kEmpty[1];  // the empty text that Safe answers for null

private:
    HANDLE *_Handle() const noexcept { return reinterpret_cast<HANDLE *>(mText) - 1; }
    static char16_t *_CreateHandle(int length);
    void _Create(char16_t const *s, int length);
    void _Create(char16_t c);
    void _Inc() noexcept { if (mText) ++_Handle()->mCount; }
    void _Dec(char16_t *next) noexcept;
    bool _IsNewHandle() const noexcept;
    bool _IsNewHandle(int length) const noexcept;
    void _Duplicate(int length, bool copy);
    void _Unshare();
    bool _Owns(char16_t const *p) const noexcept {
        return mText && p >= mText && p < mText + _Handle()->mSize;
    }
    void _Copy(char16_t const *s);
    void _Add(char16_t const *s);
    void _Insert(int pos, char16_t const *s);
    void _Replace(char16_t const *from, char16_t const *to, int start, int count);
    void _Replace(char16_t from, char16_t to, int start, int count);
    void _Replace(int start, int length, char16_t const *to);
    void _Remove(char16_t const *s, int start, int count);
    int CompareView(std::u16string_view s) const noexcept;

    static void _Copy(char16_t *dst, char16_t const *src, int n) noexcept;
    static void _Shift(char16_t *text, int size, int pos, int delta) noexcept;
    static void _Insert(char16_t *text, int size, int pos, int n) noexcept;
    static void _Remove(char16_t *text, int size, int pos, int n) noexcept;

    static int _SpaceMatching(char16_t const *text, int length, int start, bool wanted, bool wide, bool reverse,
                              bool space) noexcept;

    char16_t *mText;
};

inline bool operator==(char16_t const *a, string const &b) { return b.Compare(a) == 0; }
inline string operator+(string const &a, string const &b) { return string(a.Safe(), b.Safe()); }
inline string operator+(string const &a, char16_t const *b) { return string(a.Safe(), string::Safe(b)); }
inline string operator+(char16_t const *a, string const &b) { return string(string::Safe(a), b.Safe()); }
inline bool operator!=(char16_t const *a, string const &b) { return b.Compare(a) != 0; }

}  // namespace qor::tools
