// 8-bit text in the C library's current locale, converted with iconv, as the
// Windows runtime converts with its current locale. Under the "C" locale a
// byte stands for the code point of the same value (Latin-1), as there.
#pragma once

#include <cstddef>
#include <string>

namespace qor::tools::platform {

// Converts up to `n` bytes (stopping early at a NUL) to UTF-16, appending to
// `out`. Stops at the first sequence that cannot be converted; returns false then.
bool LocaleToUtf16(char const *s, std::size_t n, std::u16string &out);

// Decodes all `n` bytes to UTF-16, appending to `out`: a sequence that the
// locale cannot decode, and a NUL byte, become U+FFFD each, and decoding goes
// on behind them, so that nothing after a bad byte is lost.
void DecodeLocale(char const *s, std::size_t n, std::u16string &out);

// Converts up to `n` units (stopping early at a NUL) to the locale's encoding,
// appending to `out`. Stops at the first unmappable character; returns false then.
bool Utf16ToLocale(char16_t const *s, std::size_t n, std::string &out);

// The name of the current locale's 8-bit encoding, as iconv knows it.
std::string LocaleCodeset();

}  // namespace qor::tools::platform
