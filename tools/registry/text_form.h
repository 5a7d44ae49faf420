// The text form of registry keys that qortools-registry exports and imports:
// a key per "[ROOT\path]" line, then its values, one a line:
//
//   [HKEY_CURRENT_USER\Software\App]
//   "Width"=dword:1024
//   "Title"=sz:"写真 \"一覧\""
//   "Paths"=multi_sz:"/a","/b"
//   "Blob"=hex(3):00,ff,10
//
// Texts are UTF-8 with \\, \" and \n escaped; a value that is not a
// terminated UTF-16 text (or number of the right size) goes as hex(type), so
// that every value comes back byte for byte.
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>

#include "qor/tools/platform/registry.h"

namespace qortools_registry {

using qor::tools::DWORD;
using qor::tools::HKEY;

struct root_name {
    HKEY mKey;
    char const *mLong;
    char const *mShort;
};

// Names and texts between the command line's UTF-8 and the store's UTF-16.
std::u16string Wide(std::string const &utf8);
std::string Narrow(char16_t const *wide);

// HKEY_CURRENT_USER / HKCU and the others; null when unknown.
root_name const *RootByName(std::string const &name);
root_name const &RootOf(HKEY key);

// One value as the text after "=".
std::string ValueText(DWORD type, std::string const &bytes);
// The type and bytes of a value's text; false when it is malformed.
bool ParseValue(std::string const &text, DWORD &type, std::string &bytes);

std::string Quoted(std::string const &utf8);
// Reads a quoted text at `pos` (moved past it); false when malformed.
bool Unquote(std::string const &line, std::size_t &pos, std::string &utf8);

// Writes the key and everything below it; false when it cannot be read.
bool Export(HKEY root, std::string const &path, std::ostream &out);
// Reads keys and values and writes them; the line number of the first
// malformed or refused line, 0 when all went in.
int Import(std::istream &in, std::ostream &errors);

}  // namespace qortools_registry
