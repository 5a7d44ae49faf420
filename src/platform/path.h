// File names between the library's UTF-16 paths and Linux's byte names.
// Paths reach the file system as UTF-8, the file-name encoding of Linux
// desktops; a backslash separates folders as a slash does, and the drive
// prefix "C:" stands for the root of the file system. A name that is not
// UTF-8 keeps its bytes: each ill-formed byte travels as the lone surrogate
// U+DC00 + byte (see utf8.h), so a name read from a folder reaches the same
// file again.
#pragma once

#include <string>

namespace qor::tools::platform {

std::string PathBytes(char16_t const *path);
std::u16string PathText(char const *bytes);
std::u16string PathText(char const *bytes, std::size_t n);

// The file a path names after following symbolic links (up to 40 of them),
// whether or not that file exists yet.
std::string ResolveLinks(std::string const &path);

}  // namespace qor::tools::platform
