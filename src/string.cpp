#include "qor/tools/string.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <cwctype>

#include "format.h"
#include "qor/tools/allocator.h"
#include "text_case.h"
#include "text_scan.h"

namespace qor::tools {

char16_t const string::kEmpty[1] = {0};

namespace {

constexpr bool IsBlank(char16_t c, bool space, bool wide) noexcept {
    if (space) return c <= 0x20 || (wide && c == 0x3000);
    return c <= 0x1F;
}

// Bounded length: the smaller of n and the length of s (s need not be terminated).
int BoundedLength(char16_t const *s, int n) noexcept {
    if (!s || n < 1) return 0;
    return int(detail::ScanLength(s, std::size_t(n)));
}

// The first occurrence of the terminated text `s` in `text`: a vectorised
// scan for the first two units, then a comparison of the rest up to the
// terminator of `s`, which stops at the first unit that differs (the
// terminator of `text` always does).
inline __attribute__((always_inline)) char16_t const *SearchText(char16_t const *text, char16_t const *s) noexcept {
    if (s[1] == 0) return detail::ScanUnit(text, s[0]);
    for (char16_t const *p = detail::ScanPair(text, s[0], s[1]); p; p = detail::ScanPair(p + 1, s[0], s[1])) {
        int k = 2;
        while (s[k] && p[k] == s[k]) ++k;
        if (!s[k]) return p;
    }
    return nullptr;
}

// Copies n units between blocks that do not overlap. The pieces of a
// replacement are mostly a few units long: up to sixteen they are moved by
// two loads and two stores that may overlap, without a call.
template <typename Word>
inline void CopyEnds(char16_t *dst, char16_t const *src, std::size_t bytes) noexcept {
    Word head, tail;
    std::memcpy(&head, src, sizeof head);
    std::memcpy(&tail, reinterpret_cast<char const *>(src) + bytes - sizeof tail, sizeof tail);
    std::memcpy(dst, &head, sizeof head);
    std::memcpy(reinterpret_cast<char *>(dst) + bytes - sizeof tail, &tail, sizeof tail);
}

inline void CopyShort(char16_t *dst, char16_t const *src, int n) noexcept {
    if (n <= 0) return;
    std::size_t bytes = std::size_t(n) * sizeof(char16_t);
    if (bytes > 32) {
        std::memcpy(dst, src, bytes);
    } else if (bytes > 16) {
        CopyEnds<__uint128_t>(dst, src, bytes);
    } else if (bytes > 8) {
        CopyEnds<std::uint64_t>(dst, src, bytes);
    } else if (bytes > 4) {
        CopyEnds<std::uint32_t>(dst, src, bytes);
    } else {
        CopyEnds<std::uint16_t>(dst, src, bytes);
    }
}

// Positions of matches: the first few without an allocation.
class matches {
public:
    matches() = default;
    matches(matches const &) = delete;
    matches &operator=(matches const &) = delete;
    ~matches() {
        if (mAt != mInline) delete[] mAt;
    }
    int Size() const noexcept { return mSize; }
    int operator[](int i) const noexcept { return mAt[i]; }
    void Add(int at) {
        if (mSize == mRoom) {
            int *more = new int[std::size_t(mRoom) * 2];
            std::memcpy(more, mAt, std::size_t(mSize) * sizeof(int));
            if (mAt != mInline) delete[] mAt;
            mAt = more;
            mRoom *= 2;
        }
        mAt[mSize++] = at;
    }

private:
    int mInline[64];
    int *mAt = mInline;
    int mSize = 0;
    int mRoom = 64;
};

// Whether `text` holds more than `start` units.
bool Reaches(char16_t const *text, int start) noexcept {
    if (start == 0) return text[0] != 0;
    return start > 0 && detail::ScanLength(text, std::size_t(start) + 1) > std::size_t(start);
}

}  // namespace

// ---------------------------------------------------------------- blocks

char16_t *string::_CreateHandle(int length) {
    if (length < 1) return nullptr;
    auto *h = static_cast<HANDLE *>(ArrayAlloc(sizeof(HANDLE) + (std::size_t(length) + 1) * sizeof(char16_t)));
    if (!h) return nullptr;
    h->mSize = length + 1;
    h->mCount = 1;
    return reinterpret_cast<char16_t *>(h + 1);
}

void string::_Dec(char16_t *next) noexcept {
    if (mText) {
        HANDLE *h = _Handle();
        if (--h->mCount < 1) ArrayFree(h);
    }
    mText = next;
}

bool string::_IsNewHandle() const noexcept { return !mText || _Handle()->mCount > 1; }

bool string::_IsNewHandle(int length) const noexcept {
    if (!mText) return length > 0;
    HANDLE const *h = _Handle();
    return length > h->mSize - 1 || h->mCount > 1;
}

void string::_Duplicate(int length, bool copy) {
    char16_t *next = _CreateHandle(length);
    if (next) {
        next[0] = 0;
        if (copy && mText) {
            int n = BoundedLength(mText, length);
            _Copy(next, mText, n);
            next[n] = 0;
        }
    }
    _Dec(next);
}

void string::_Unshare() {
    if (mText && _Handle()->mCount > 1) _Duplicate(_Handle()->mSize - 1, true);
}

void string::_Create(char16_t const *s, int length) {
    mText = _CreateHandle(length);
    if (!mText) return;
    _Copy(mText, s, length);
    mText[length] = 0;
}

void string::_Create(char16_t c) {
    mText = _CreateHandle(1);
    if (!mText) return;
    mText[0] = c;
    mText[1] = 0;
}

void string::_Copy(char16_t *dst, char16_t const *src, int n) noexcept {
    if (n > 0) std::memmove(dst, src, std::size_t(n) * sizeof(char16_t));
}

void string::_Shift(char16_t *text, int size, int pos, int delta) noexcept {
    if (delta > 0) {
        _Insert(text, size, pos, delta);
    } else if (delta < 0) {
        std::memmove(text + pos + delta, text + pos, std::size_t(size - pos) * sizeof(char16_t));
    }
}

void string::_Insert(char16_t *text, int size, int pos, int n) noexcept {
    int moved = size - pos - n;
    if (moved > 0) std::memmove(text + pos + n, text + pos, std::size_t(moved) * sizeof(char16_t));
}

void string::_Remove(char16_t *text, int size, int pos, int n) noexcept {
    int moved = size - pos - n;
    if (moved > 0) std::memmove(text + pos, text + pos + n, std::size_t(moved) * sizeof(char16_t));
}

// ---------------------------------------------------------------- construction

string::string(char16_t const *s) : mText(nullptr) { _Create(s, Length(s)); }

string::string(char16_t const *a, char16_t const *b) : mText(nullptr) {
    int la = Length(a), lb = Length(b);
    mText = _CreateHandle(la + lb);
    if (!mText) return;
    _Copy(mText, a, la);
    _Copy(mText + la, b, lb);
    mText[la + lb] = 0;
}

string::string(char16_t c) : mText(nullptr) { _Create(c); }

string::string(std::u16string_view s) : mText(nullptr) {
    _Create(s.data(), BoundedLength(s.data(), int(s.size())));
}

string::string(int length, bool clear) : mText(_CreateHandle(length)) {
    if (!mText) return;
    if (clear) {
        std::memset(mText, 0, std::size_t(length + 1) * sizeof(char16_t));
    } else {
        mText[0] = 0;
    }
}

string::string(char16_t const *s, int n) : mText(nullptr) { _Create(s, BoundedLength(s, n)); }

string::string(string const &other) noexcept : mText(other.mText) { _Inc(); }

string::~string() { _Dec(nullptr); }

// ---------------------------------------------------------------- assignment

string &string::Set(string const &s) {
    if (s.mText == mText) return *this;
    char16_t *next = s.mText;
    if (next) ++(reinterpret_cast<HANDLE *>(next) - 1)->mCount;
    _Dec(next);
    return *this;
}

string &string::Set(char16_t const *s) {
    if (s != mText) _Copy(s);
    return *this;
}

string &string::Set(char16_t c) {
    char16_t const one[2] = {c, 0};
    _Copy(one);
    return *this;
}

string &string::operator=(std::u16string_view s) { return Set(string(s)); }

void string::_Copy(char16_t const *s) {
    int ls = Length(s);
    if (ls == 0) {
        _Dec(nullptr);
        return;
    }
    if (!_IsNewHandle(ls)) {
        _Copy(mText, s, ls);
        mText[ls] = 0;
        return;
    }
    // The new block is filled before the old one goes, so `s` may lie in it.
    char16_t *next = _CreateHandle(ls);
    if (next) {
        _Copy(next, s, ls);
        next[ls] = 0;
    }
    _Dec(next);
}

string &string::Add(string const &s) { _Add(s.mText); return *this; }
string &string::Add(char16_t const *s) { _Add(s); return *this; }
string &string::Add(char16_t c) {
    char16_t const one[2] = {c, 0};
    _Add(one);
    return *this;
}
string &string::operator+=(std::u16string_view s) { return Add(string(s)); }

void string::_Add(char16_t const *s) {
    int ls = Length(s);
    if (ls == 0) return;
    int own = Length();
    int length = own + ls;
    string hold;  // keeps the old text (and `s`, if it lies in it) alive
    if (_IsNewHandle(length)) {
        hold = *this;
        char16_t *next = _CreateHandle(length);
        if (!next) return;
        _Dec(next);
        _Copy(mText, hold.mText, own);
    }
    _Copy(mText + own, s, ls);
    mText[length] = 0;
}

string &string::Insert(int pos, string const &s) { _Insert(pos, s.mText); return *this; }
string &string::Insert(int pos, char16_t const *s) { _Insert(pos, s); return *this; }
string &string::Insert(int pos, char16_t c) {
    char16_t const one[2] = {c, 0};
    _Insert(pos, one);
    return *this;
}

void string::_Insert(int pos, char16_t const *s) {
    int ls = Length(s);
    if (ls == 0) return;
    int own = Length();
    if (pos > own) pos = own;
    if (pos < 0) pos = 0;  // a negative position would write before the block
    int length = own + ls;
    if (_IsNewHandle(length)) {
        string hold(*this);
        char16_t *next = _CreateHandle(length);
        if (!next) return;
        _Dec(next);
        _Copy(mText, hold.mText, pos);
        _Copy(mText + pos, s, ls);
        _Copy(mText + pos + ls, hold.mText + pos, own - pos);
        mText[length] = 0;
        return;
    }
    string keep(_Owns(s) ? s : nullptr);
    if (keep.mText) s = keep.mText;
    _Insert(mText, _Handle()->mSize, pos, ls);
    _Copy(mText + pos, s, ls);
}

void string::Empty() { _Dec(nullptr); }

void string::Clear(bool full) {
    if (!mText) return;
    if (_Handle()->mCount > 1) _Duplicate(_Handle()->mSize - 1, false);
    if (!mText) return;
    if (full) {
        std::memset(mText, 0, std::size_t(_Handle()->mSize) * sizeof(char16_t));
    } else {
        mText[0] = 0;
    }
}

char16_t *string::Area(int length, bool clear) {
    _Dec(_CreateHandle(length));
    if (!mText) return nullptr;
    if (clear) {
        std::memset(mText, 0, std::size_t(length + 1) * sizeof(char16_t));
    } else {
        mText[0] = 0;
    }
    return mText;
}

// ---------------------------------------------------------------- replace and remove

string &string::Replace(char16_t const *from, char16_t const *to, int start, int count) {
    _Replace(from, to, start, count);
    return *this;
}
string &string::Replace(char16_t from, char16_t to, int start, int count) {
    _Replace(from, to, start, count);
    return *this;
}
string &string::Replace(int start, int length, char16_t const *to) {
    _Replace(start, length, to);
    return *this;
}
string &string::Replace(int start, int length, char16_t to) {
    char16_t const one[2] = {to, 0};
    _Replace(start, length, one);
    return *this;
}

void string::_Replace(char16_t const *from, char16_t const *to, int start, int count) {
    if (count < 1 || !from || !*from || Compare(from, to) == 0 || !mText || !Reaches(mText, start)) return;
    int lf = Length(from), lt = Length(to);
    // One pass finds the matches (and so the text's end), one builds the text.
    matches found;
    for (char16_t const *p = SearchText(mText + start, from); p && found.Size() < count;
         p = SearchText(p + lf, from)) {
        found.Add(int(p - mText));
    }
    int treated = found.Size();
    if (treated < 1) return;
    int tail = found[treated - 1] + lf;
    int own = tail + Length(mText + tail);
    int length = own + treated * (lt - lf);
    string keepFrom(_Owns(from) ? from : nullptr), keepTo(_Owns(to) ? to : nullptr);
    if (keepFrom.mText) from = keepFrom.mText;
    if (keepTo.mText) to = keepTo.mText;
    if (_IsNewHandle(length)) {
        string hold(*this);
        _Dec(_CreateHandle(length));
        if (!mText) return;
        char16_t const *src = hold.mText;
        char16_t *dst = mText;
        int done = 0;
        for (int i = 0; i < treated; ++i) {
            CopyShort(dst, src + done, found[i] - done);
            dst += found[i] - done;
            CopyShort(dst, to, lt);
            dst += lt;
            done = found[i] + lf;
        }
        _Copy(dst, src + done, own - done);
        dst[own - done] = 0;
        return;
    }
    int size = _Handle()->mSize;
    char16_t *cursor = mText + start;
    for (int i = 0; i < treated; ++i) {
        char16_t const *match = SearchText(cursor, from);
        if (!match) break;
        int at = int(match - mText);
        _Shift(mText, size, at + lf, lt - lf);
        _Copy(mText + at, to, lt);
        cursor = mText + at + lt;
    }
}

void string::_Replace(char16_t from, char16_t to, int start, int count) {
    if (count < 1 || from == to || start < 0 || start >= Length()) return;
    if (Find(mText, from, start) < 0) return;
    _Unshare();
    for (char16_t *p = mText + start; *p && count > 0; ++p) {
        if (*p == from) {
            *p = to;
            --count;
        }
    }
}

void string::_Replace(int start, int length, char16_t const *to) {
    int own = Length();
    if (start >= own) return;
    // A negative start or a range past the end would reach outside the text.
    if (start < 0) start = 0;
    if (length < 0) length = 0;
    if (length > own - start) length = own - start;
    int lt = Length(to);
    int total = own + lt - length;
    string keepTo(_Owns(to) ? to : nullptr);
    if (keepTo.mText) to = keepTo.mText;
    to = Safe(to);
    if (_IsNewHandle(total)) {
        string hold(*this);
        _Dec(_CreateHandle(total));
        if (!mText) return;
        _Copy(mText, hold.mText, start);
        _Copy(mText + start, to, lt);
        _Copy(mText + start + lt, hold.mText + start + length, own - start - length);
        mText[total] = 0;
        return;
    }
    _Shift(mText, _Handle()->mSize, start + length, lt - length);
    _Copy(mText + start, to, lt);
}

string &string::Remove(int start, int length) {
    int own = Length();
    if (start < 0 || length < 1 || start >= own) return *this;
    if (length > own - start) length = own - start;
    _Unshare();
    _Remove(mText, _Handle()->mSize, start, length);
    return *this;
}

string &string::Remove(char16_t const *s, int start, int count) {
    _Remove(s, start, count);
    return *this;
}

string &string::Remove(char16_t c, int start, int count) {
    char16_t const one[2] = {c, 0};
    _Remove(one, start, count);
    return *this;
}

void string::_Remove(char16_t const *s, int start, int count) {
    if (start < 0 || count < 1 || Find(mText, s, start) < 0) return;
    string keep(_Owns(s) ? s : nullptr);
    if (keep.mText) s = keep.mText;
    int ls = Length(s);
    _Unshare();
    int size = _Handle()->mSize;
    char16_t *from = mText + start;
    for (int i = 0; i < count; ++i) {
        char16_t const *match = SearchText(from, s);
        if (!match) break;
        _Remove(mText, size, int(match - mText), ls);
    }
}

// ---------------------------------------------------------------- comparison

int string::Compare(char16_t c) const {
    char16_t const one[2] = {c, 0};
    return Compare(mText, one);
}

int string::CompareView(std::u16string_view s) const noexcept {
    std::u16string_view own(Safe());
    s = s.substr(0, BoundedLength(s.data(), int(s.size())));
    int r = own.compare(s);
    return r < 0 ? -1 : r > 0 ? 1 : 0;
}

int string::Compare(char16_t const *a, char16_t const *b) noexcept {
    a = Safe(a);
    b = Safe(b);
    while (*a && *a == *b) ++a, ++b;
    return *a < *b ? -1 : *a > *b ? 1 : 0;
}

int string::Compare(char const *a, char const *b) noexcept {
    int r = std::strcmp(Safe(a), Safe(b));
    return r < 0 ? -1 : r > 0 ? 1 : 0;
}

int string::Compare(char16_t const *a, char16_t const *b, int n) noexcept {
    a = Safe(a);
    b = Safe(b);
    for (int i = 0; i < n; ++i) {
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
        if (!a[i]) break;
    }
    return 0;
}

int string::Compare(char const *a, char const *b, int n) noexcept {
    if (n < 1) return 0;
    int r = std::strncmp(Safe(a), Safe(b), std::size_t(n));
    return r < 0 ? -1 : r > 0 ? 1 : 0;
}

int string::CompareNoCase(char16_t const *a, char16_t const *b) noexcept {
    return CompareNoCase(a, b, kAll);
}

int string::CompareNoCase(char16_t const *a, char16_t const *b, int n) noexcept {
    a = Safe(a);
    b = Safe(b);
    for (int i = 0; i < n; ++i) {
        int ca = detail::ToLower(a[i]), cb = detail::ToLower(b[i]);
        if (ca != cb || !ca) return ca - cb;
    }
    return 0;
}

// ---------------------------------------------------------------- extraction

string string::Left(int n) const {
    if (n < 1) return string();
    return string(mText, n);
}

string string::Left(char16_t c) const {
    int i = Find(mText, c, 0);
    return i < 0 ? *this : string(mText, i);
}

string string::Right(int n) const {
    int own = Length();
    if (n >= own) return *this;
    if (n < 1) return string();
    return string(mText + own - n);
}

string string::Right(char16_t c) const {
    int i = FindReverse(mText, c, kAll);
    return i < 0 ? *this : string(mText + i + 1);
}

string string::Mid(int start, int n) const {
    int own = Length();
    if (start >= own || n < 1) return string();
    if (start < 0) start = 0;  // reading before the text is never wanted
    return string(mText + start, n);
}

string string::GetLower() const { return string(*this).Lower(); }
string string::GetUpper() const { return string(*this).Upper(); }

string &string::Lower() {
    if (IsEmpty()) return *this;
    _Unshare();
    for (char16_t *p = mText; *p; ++p) *p = detail::ToLower(*p);
    return *this;
}

string &string::Upper() {
    if (IsEmpty()) return *this;
    _Unshare();
    for (char16_t *p = mText; *p; ++p) *p = detail::ToUpper(*p);
    return *this;
}

// ---------------------------------------------------------------- trimming

int string::_SpaceMatching(char16_t const *text, int length, int start, bool wanted, bool wide,
                           bool reverse, bool space) noexcept {
    if (!text || start < 0) return -1;
    if (reverse && start == 0) start = length - 1;
    if (start < 0 || start >= length) return -1;
    int step = reverse ? -1 : 1;
    for (int i = start; i >= 0 && i < length; i += step) {
        if (IsBlank(text[i], space, wide) == wanted) return i;
    }
    return -1;
}

string &string::TrimLeft(bool full) {
    int own = Length();
    int first = _SpaceMatching(mText, own, 0, false, full, false, full);
    if (first <= 0) return *this;
    _Unshare();
    _Remove(mText, _Handle()->mSize, 0, first);
    return *this;
}

string &string::TrimRight(bool full) {
    int own = Length();
    int last = _SpaceMatching(mText, own, 0, false, full, true, full);
    if (last <= 0 || last == own - 1) return *this;
    _Unshare();
    mText[last + 1] = 0;
    return *this;
}

// ---------------------------------------------------------------- formatting

string &string::Format(char16_t const *format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
    return *this;
}

string string::Formatter(char16_t const *format, ...) {
    string s;
    va_list args;
    va_start(args, format);
    s.FormatV(format, args);
    va_end(args);
    return s;
}

string &string::FormatV(char16_t const *format, va_list args) {
    detail::format_buffer out;
    int n = detail::FormatV(out, format, args);
    if (n <= 0) {
        _Dec(nullptr);
        return *this;
    }
    // The text is made first, so an argument may point into this string's block.
    if (_IsNewHandle(n)) {
        char16_t *next = _CreateHandle(n);
        if (next) _Copy(next, out.Data(), n + 1);
        _Dec(next);
    } else {
        _Copy(mText, out.Data(), n + 1);
    }
    return *this;
}

string &string::DateTime(char16_t separator) {
    std::time_t now = std::time(nullptr);
    std::tm t{};
    localtime_r(&now, &t);
    return Format(u"%04d%c%02d%c%02d %02d:%02d:%02d", t.tm_year + 1900, separator, t.tm_mon + 1,
                  separator, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
}

// ---------------------------------------------------------------- search

int string::Length(char16_t const *s) noexcept { return s ? int(detail::ScanLength(s)) : 0; }

int string::Length(char const *s) noexcept { return s ? int(std::strlen(s)) : 0; }

// The searches never measure the text first: they stop at its terminator.
int string::Find(char16_t const *text, char16_t const *s, int start) noexcept {
    if (!text || !s || !*s || !Reaches(text, start)) return -1;
    char16_t const *p = SearchText(text + start, s);
    return p ? int(p - text) : -1;
}

int string::Find(char16_t const *text, char16_t c, int start) noexcept {
    if (!text || !Reaches(text, start)) return -1;
    if (c == 0) return Length(text);  // the terminator itself
    char16_t const *p = detail::ScanUnit(text + start, c);
    return p ? int(p - text) : -1;
}

int string::FindNoCase(char16_t const *s, int start) const {
    string a(GetLower()), b(string(s).Lower());
    return Find(a.mText, b.mText, start);
}

int string::FindNoCase(char16_t c, int start) const {
    string a(GetLower());
    return Find(a.mText, detail::ToLower(c), start);
}

// Backwards: the text is measured once (the end must be known), then the last
// unit of the sought text is scanned for from the end.
int string::FindReverse(char16_t const *text, char16_t const *s, int start) noexcept {
    int ls = Length(s);
    if (!text || start < 0 || ls == 0) return -1;
    int lt = int(detail::ScanLength(text, start < 0x7FFFFFFF ? std::size_t(start) : std::size_t(0x7FFFFFFF)));
    if (ls > lt) return -1;
    // Candidates end at or before `lt`; a candidate's first unit is at most lt - ls.
    std::size_t room = std::size_t(lt - ls + 1);
    for (char16_t const *p = detail::ScanUnitBack(text, room, s[0]); p;
         p = detail::ScanUnitBack(text, std::size_t(p - text), s[0])) {
        if (std::memcmp(p, s, std::size_t(ls) * sizeof(char16_t)) == 0) return int(p - text);
    }
    return -1;
}

int string::FindReverse(char16_t const *text, char16_t c, int start) noexcept {
    if (!text || start < 0) return -1;
    int lt = int(detail::ScanLength(text, std::size_t(start)));
    char16_t const *p = detail::ScanUnitBack(text, std::size_t(lt), c);
    return p ? int(p - text) : -1;
}

int string::Count(char16_t const *text, char16_t const *s, int start) noexcept {
    if (!text || !s || !*s || !Reaches(text, start)) return 0;
    int ls = Length(s), n = 0;
    for (char16_t const *p = SearchText(text + start, s); p; p = SearchText(p + ls, s)) ++n;
    return n;
}

int string::Count(char16_t const *text, char16_t c, int start) noexcept {
    if (!text || c == 0 || !Reaches(text, start)) return 0;
    int n = 0;
    for (char16_t const *p = detail::ScanUnit(text + start, c); p; p = detail::ScanUnit(p + 1, c)) ++n;
    return n;
}

int string::Matching(char16_t const *text, char16_t const **list, int count) noexcept {
    for (int i = 0; i < count; ++i) {
        if (Compare(text, list[i]) == 0) return i;
    }
    return -1;
}

// ---------------------------------------------------------------- raw copies

void string::Copy(char *dst, char const *src) { std::memcpy(dst, Safe(src), std::strlen(Safe(src)) + 1); }

void string::Copy(char16_t *dst, char16_t const *src) {
    _Copy(dst, Safe(src), Length(src) + 1);
}

// The bounded copies never cut text short: a text that does not fit leaves an empty one.
void string::Copy(char *dst, int bound, char const *src) {
    if (!dst || bound < 1) return;
    int n = Length(src);
    if (n >= bound) {
        dst[0] = 0;
        return;
    }
    std::memcpy(dst, Safe(src), std::size_t(n) + 1);
}

void string::Copy(char16_t *dst, int bound, char16_t const *src) {
    if (!dst || bound < 1) return;
    int n = Length(src);
    if (n >= bound) {
        dst[0] = 0;
        return;
    }
    _Copy(dst, Safe(src), n + 1);
}

}  // namespace qor::tools
