// The library's own reader of INI-style profile files (GetPrivateProfileStringW):
// "[section]" lines, "key=value" lines, names compared without regard to ASCII
// case, values trimmed of surrounding blanks and cut to `size - 1` characters.
// The file is UTF-8 (a byte-order mark is skipped) or UTF-16LE with its mark.
#pragma once

#include <string>

namespace qor::tools::platform {

std::u16string GetPrivateProfileString(char16_t const *section, char16_t const *key, char16_t const *fallback,
                                       char16_t const *path, int size);

}  // namespace qor::tools::platform
