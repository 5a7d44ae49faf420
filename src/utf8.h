// UTF-8 <-> UTF-16 as the platform's code page 65001 converts: ill-formed
// input (bytes, or unpaired surrogates) becomes U+FFFD per maximal subpart.
//
// File names are the exception: Linux names are bytes, and a name that is not
// UTF-8 must still be found again from its UTF-16 form. With `escape`, each
// byte of an ill-formed sequence becomes the lone low surrogate U+DC00 + byte,
// and the way back turns U+DC80..U+DCFF into that byte again, so that every
// name survives the round trip exactly.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qor::tools::detail {

enum class ill_formed { replace, escape };

void Utf8ToUtf16(char const *s, std::size_t n, std::u16string &out, ill_formed mode = ill_formed::replace);
void Utf16ToUtf8(char16_t const *s, std::size_t n, std::string &out, ill_formed mode = ill_formed::replace);

// The same, giving the result.
std::string ToUtf8(std::u16string_view s);
std::u16string ToUtf16(std::string_view s);

}  // namespace qor::tools::detail
