// Case mapping of one UTF-16 unit, as the C library maps it in the current
// locale (ASCII only in the "C" locale); surrogates are left alone.
#pragma once

#include <cwctype>
#include <string>

namespace qor::tools::detail {

// ASCII letters only, whatever the locale: for names of drivers, keys, columns.
constexpr char16_t AsciiLower(char16_t c) noexcept { return (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c; }

inline std::u16string AsciiLower(std::u16string s) {
    for (char16_t &c : s) c = AsciiLower(c);
    return s;
}

inline char16_t ToLower(char16_t c) noexcept {
    if (c < 0x80) return (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
    if (c >= 0xD800 && c <= 0xDFFF) return c;
    wint_t r = std::towlower(wint_t(c));
    return r <= 0xFFFF ? char16_t(r) : c;
}

inline char16_t ToUpper(char16_t c) noexcept {
    if (c < 0x80) return (c >= u'a' && c <= u'z') ? char16_t(c - 32) : c;
    if (c >= 0xD800 && c <= 0xDFFF) return c;
    wint_t r = std::towupper(wint_t(c));
    return r <= 0xFFFF ? char16_t(r) : c;
}

}  // namespace qor::tools::detail
