#include "format.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/text_codec.h"

namespace qor::tools::detail {

format_buffer::~format_buffer() {
    if (mData != mInline) std::free(mData);
}

void format_buffer::Reserve(std::size_t extra) {
    if (mSize + extra <= mCapacity) return;
    std::size_t capacity = mCapacity * 2;
    if (capacity < mSize + extra) capacity = mSize + extra;
    auto *next = static_cast<char16_t *>(std::malloc((capacity + 1) * sizeof(char16_t)));
    if (!next) throw std::bad_alloc();
    std::memcpy(next, mData, (mSize + 1) * sizeof(char16_t));
    if (mData != mInline) std::free(mData);
    mData = next;
    mCapacity = capacity;
}

void format_buffer::Put(char16_t const *s, std::size_t n) {
    Reserve(n);
    std::memcpy(mData + mSize, s, n * sizeof(char16_t));
    mSize += n;
    mData[mSize] = 0;
}

void format_buffer::Fill(char16_t c, std::size_t n) {
    Reserve(n);
    for (std::size_t i = 0; i < n; ++i) mData[mSize + i] = c;
    mSize += n;
    mData[mSize] = 0;
}

namespace {

enum class size_mod { none, hh, h, l, ll, L, j, z, t, i32 };

struct directive {
    bool left = false, plus = false, space = false, alt = false, zero = false;
    int width = -1;
    int precision = -1;
    size_mod size = size_mod::none;
    bool narrow = false;  // h on s/c, or S/C
    bool wide = false;    // l or w on s/c
    char16_t conversion = 0;
};

void Pad(format_buffer &out, directive const &sp, std::size_t length, char16_t fill = u' ') {
    if (sp.width > 0 && std::size_t(sp.width) > length) out.Fill(fill, std::size_t(sp.width) - length);
}

void PutPadded(format_buffer &out, directive const &sp, char16_t const *s, std::size_t n) {
    char16_t fill = (sp.zero && !sp.left) ? u'0' : u' ';
    if (!sp.left) Pad(out, sp, n, fill);
    out.Put(s, n);
    if (sp.left) Pad(out, sp, n);
}

void PutAscii(format_buffer &out, char const *s, std::size_t n) {
    char16_t chunk[128];
    while (n) {
        std::size_t k = n < 128 ? n : 128;
        for (std::size_t i = 0; i < k; ++i) chunk[i] = char16_t(static_cast<unsigned char>(s[i]));
        out.Put(chunk, k);
        s += k;
        n -= k;
    }
}

// Builds the narrow conversion "%<flags><width>.<precision><len><conv>".
std::string NarrowDirective(directive const &sp, char const *length, char conversion) {
    std::string f = "%";
    if (sp.left) f += '-';
    if (sp.plus) f += '+';
    if (sp.space) f += ' ';
    if (sp.alt) f += '#';
    if (sp.zero) f += '0';
    if (sp.width >= 0) f += std::to_string(sp.width);
    if (sp.precision >= 0) f += '.' + std::to_string(sp.precision);
    f += length;
    f += conversion;
    return f;
}

template <typename T>
void PutNumber(format_buffer &out, std::string const &f, T value) {
    char local[128];
    int n = std::snprintf(local, sizeof local, f.c_str(), value);
    if (n < 0) return;
    if (std::size_t(n) < sizeof local) {
        PutAscii(out, local, std::size_t(n));
        return;
    }
    std::string big(std::size_t(n) + 1, '\0');
    std::snprintf(big.data(), big.size(), f.c_str(), value);
    PutAscii(out, big.data(), std::size_t(n));
}

void PutInteger(format_buffer &out, directive const &sp, va_list &args) {
    bool isSigned = sp.conversion == u'd' || sp.conversion == u'i';
    long long s = 0;
    unsigned long long u = 0;
    switch (sp.size) {
        case size_mod::hh: s = static_cast<signed char>(va_arg(args, int)); u = static_cast<unsigned char>(s); break;
        case size_mod::h: s = static_cast<short>(va_arg(args, int)); u = static_cast<unsigned short>(s); break;
        case size_mod::l: s = va_arg(args, long); u = static_cast<unsigned long>(s); break;
        case size_mod::ll: s = va_arg(args, long long); u = static_cast<unsigned long long>(s); break;
        case size_mod::j: s = va_arg(args, std::intmax_t); u = static_cast<std::uintmax_t>(s); break;
        case size_mod::z:
        case size_mod::t: s = va_arg(args, std::ptrdiff_t); u = static_cast<std::size_t>(s); break;
        default: s = va_arg(args, int); u = static_cast<unsigned int>(s); break;
    }
    char c = char(sp.conversion == u'i' ? u'd' : sp.conversion);
    std::string f = NarrowDirective(sp, "ll", c);
    if (isSigned) {
        PutNumber(out, f, s);
    } else {
        PutNumber(out, f, u);
    }
}

void PutFloat(format_buffer &out, directive const &sp, va_list &args) {
    char c = char(sp.conversion);
    if (sp.size == size_mod::L) {
        PutNumber(out, NarrowDirective(sp, "L", c), va_arg(args, long double));
    } else {
        PutNumber(out, NarrowDirective(sp, "", c), va_arg(args, double));
    }
}

void PutPointer(format_buffer &out, directive const &sp, va_list &args) {
    // Windows prints a pointer as 16 upper-case hexadecimal digits.
    auto value = reinterpret_cast<std::uintptr_t>(va_arg(args, void *));
    char16_t digits[16];
    for (int i = 15; i >= 0; --i, value >>= 4) digits[i] = u"0123456789ABCDEF"[value & 0xF];
    directive plain = sp;
    plain.zero = false;
    PutPadded(out, plain, digits, 16);
}

void PutWideString(format_buffer &out, directive const &sp, char16_t const *s) {
    static char16_t const null[] = u"(null)";
    if (!s) s = null;
    std::size_t n = 0;
    while ((sp.precision < 0 || n < std::size_t(sp.precision)) && s[n]) ++n;
    PutPadded(out, sp, s, n);
}

void PutNarrowString(format_buffer &out, directive const &sp, char const *s) {
    if (!s) {
        PutWideString(out, sp, nullptr);
        return;
    }
    std::u16string wide;
    platform::LocaleToUtf16(s, std::strlen(s), wide);
    std::size_t n = wide.size();
    if (sp.precision >= 0 && n > std::size_t(sp.precision)) n = std::size_t(sp.precision);
    PutPadded(out, sp, wide.data(), n);
}

void PutCharacter(format_buffer &out, directive const &sp, va_list &args) {
    int value = va_arg(args, int);
    char16_t c;
    if (sp.narrow) {
        char one[2] = {char(value), 0};
        std::u16string wide;
        platform::LocaleToUtf16(one, 1, wide);
        c = wide.empty() ? char16_t(static_cast<unsigned char>(value)) : wide[0];
    } else {
        c = char16_t(value);
    }
    PutPadded(out, sp, &c, 1);
}

// Reads flags, width, precision and size at `p`; returns the character after them.
char16_t const *ParseDirective(char16_t const *p, directive &sp, va_list &args) {
    for (;; ++p) {
        if (*p == u'-') sp.left = true;
        else if (*p == u'+') sp.plus = true;
        else if (*p == u' ') sp.space = true;
        else if (*p == u'#') sp.alt = true;
        else if (*p == u'0') sp.zero = true;
        else break;
    }
    if (*p == u'*') {
        sp.width = va_arg(args, int);
        if (sp.width < 0) {
            sp.left = true;
            sp.width = -sp.width;
        }
        ++p;
    } else {
        while (*p >= u'0' && *p <= u'9') sp.width = (sp.width < 0 ? 0 : sp.width * 10) + (*p++ - u'0');
    }
    if (*p == u'.') {
        ++p;
        sp.precision = 0;
        if (*p == u'*') {
            sp.precision = va_arg(args, int);
            if (sp.precision < 0) sp.precision = -1;
            ++p;
        } else {
            while (*p >= u'0' && *p <= u'9') sp.precision = sp.precision * 10 + (*p++ - u'0');
        }
    }
    switch (*p) {
        case u'h':
            if (p[1] == u'h') { sp.size = size_mod::hh; p += 2; }
            else { sp.size = size_mod::h; sp.narrow = true; ++p; }
            break;
        case u'l':
            if (p[1] == u'l') { sp.size = size_mod::ll; p += 2; }
            else { sp.size = size_mod::l; sp.wide = true; ++p; }
            break;
        case u'w': sp.wide = true; ++p; break;
        case u'L': sp.size = size_mod::L; ++p; break;
        case u'j': sp.size = size_mod::j; ++p; break;
        case u'z': sp.size = size_mod::z; ++p; break;
        case u't': sp.size = size_mod::t; ++p; break;
        case u'I':
            if (p[1] == u'6' && p[2] == u'4') { sp.size = size_mod::ll; p += 3; }
            else if (p[1] == u'3' && p[2] == u'2') { sp.size = size_mod::i32; p += 3; }
            else { sp.size = size_mod::z; ++p; }
            break;
        default: break;
    }
    return p;
}

}  // namespace

int FormatV(format_buffer &out, char16_t const *format, va_list args) {
    if (!format) return -1;
    va_list ap;
    va_copy(ap, args);
    char16_t const *p = format;
    while (*p) {
        char16_t const *plain = p;
        while (*p && *p != u'%') ++p;
        if (p != plain) out.Put(plain, std::size_t(p - plain));
        if (!*p) break;
        ++p;  // the '%'
        directive sp;
        p = ParseDirective(p, sp, ap);
        sp.conversion = *p;
        if (!*p) break;
        ++p;
        switch (sp.conversion) {
            case u'd': case u'i': case u'u': case u'x': case u'X': case u'o':
                PutInteger(out, sp, ap);
                break;
            case u'f': case u'F': case u'e': case u'E': case u'g': case u'G': case u'a': case u'A':
                PutFloat(out, sp, ap);
                break;
            case u'p':
                PutPointer(out, sp, ap);
                break;
            case u's':
                if (sp.narrow) PutNarrowString(out, sp, va_arg(ap, char const *));
                else PutWideString(out, sp, va_arg(ap, char16_t const *));
                break;
            case u'S':
                if (sp.wide) PutWideString(out, sp, va_arg(ap, char16_t const *));
                else PutNarrowString(out, sp, va_arg(ap, char const *));
                break;
            case u'c':
                PutCharacter(out, sp, ap);
                break;
            case u'C':
                if (!sp.wide) sp.narrow = true;
                PutCharacter(out, sp, ap);
                break;
            case u'n':
                (void)va_arg(ap, void *);  // writing counts through arguments is not supported
                break;
            case u'%':
                out.Put(u"%", 1);
                break;
            default:
                out.Put(&sp.conversion, 1);  // an unknown conversion is copied as it stands
                break;
        }
    }
    va_end(ap);
    return int(out.Size());
}

}  // namespace qor::tools::detail
