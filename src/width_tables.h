// Full-width / half-width mapping of Japanese text, independent of the locale.
#pragma once

#include <string>

namespace qor::tools::detail {

// Half-width forms made full-width; a half-width kana with a following voiced
// or semi-voiced mark becomes one character, so the result may be shorter.
std::u16string ToFullWidth(char16_t const *text, std::size_t n);
// Full-width forms made half-width; a voiced kana becomes base + mark, so the
// result may be up to twice as long.
std::u16string ToHalfWidth(char16_t const *text, std::size_t n);

}  // namespace qor::tools::detail
