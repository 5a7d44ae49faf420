// UTF-8 <-> UTF-16 as the platform's code page 65001 converts: ill-formed
// input (bytes, or unpaired surrogates) becomes U+FFFD per maximal subpart.
#pragma once

#include <cstddef>
#include <string>

namespace qor::tools::detail {

void Utf8ToUtf16(char const *s, std::size_t n, std::u16string &out);
void Utf16ToUtf8(char16_t const *s, std::size_t n, std::string &out);

}  // namespace qor::tools::detail
