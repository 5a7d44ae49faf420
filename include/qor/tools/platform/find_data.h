// The directory entry record of a folder search, with the Windows layout:
// attribute bits, three FILETIMEs (100-nanosecond units since 1601, UTC), the
// size in two halves and the name.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/types.h"

namespace qor::tools {

struct QOR_TOOLS_API FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct QOR_TOOLS_API WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    char16_t cFileName[260];
    char16_t cAlternateFileName[14];
};

inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_ATTRIBUTE_TEMPORARY = 0x100;
inline constexpr DWORD FILE_ATTRIBUTE_COMPRESSED = 0x800;

}  // namespace qor::tools
