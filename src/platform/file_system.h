// The file system as the file classes need it: attributes, times, moves and
// copies. Attribute bits: read-only = no owner write permission, hidden = a
// name beginning with a dot, directory; a regular file with neither is
// "normal". Times come from statx (birth time where the file system keeps it).
// A symbolic link is an entry of its own: it is moved, copied and removed as a
// link and never followed into a folder.
#pragma once

#include <cstdint>
#include <string>

#include "path.h"
#include "qor/tools/platform/find_data.h"

namespace qor::tools::platform {

// Whether the path names anything, a dangling symbolic link included.
bool Exists(char16_t const *path);
// Whether the path is a folder, following symbolic links.
bool IsDirectory(char16_t const *path);
bool IsLink(char16_t const *path);
bool GetAttributes(char16_t const *path, DWORD &attributes);
bool SetAttributes(char16_t const *path, DWORD attributes);
// The three times of a path (creation, last access, last write).
bool GetTimes(char16_t const *path, FILETIME &creation, FILETIME &access, FILETIME &write);
// Sets the access and write times; the creation (birth) time cannot be set on Linux.
bool SetTimes(char16_t const *path, FILETIME const &access, FILETIME const &write);

// Whether `to` (or, while it does not exist, its nearest existing folder) is
// on the file system of `from`, so that a rename can move one onto the other.
bool SameFileSystem(char16_t const *from, char16_t const *to);
// Whether `path` lies strictly inside `folder`, links and ".." resolved.
bool IsWithin(char16_t const *path, char16_t const *folder);

// Renames a file or link; across file systems the file is copied (keeping
// its times) and the source removed.
bool MoveFile(char16_t const *from, char16_t const *to, bool replace);
// Copies a file with its permission bits and last-write time, through a
// temporary file. A link to anything but a regular file is copied as a link.
// Copying a file onto itself fails.
bool CopyFile(char16_t const *from, char16_t const *to, bool failIfExists);
bool CreateDirectory(char16_t const *path);
bool RemoveDirectory(char16_t const *path);
bool RemoveFile(char16_t const *path);
bool Rename(char16_t const *from, char16_t const *to);

// FILETIME <-> local calendar time.
struct calendar {
    int year, month, day, hour, minute, second;
};
bool FileTimeToLocal(FILETIME const &time, calendar &local);

// Fills the attribute bits, times and size of `entry` from the file at `path`
// (a link describes itself); `name` decides the hidden bit. The name is left
// to the caller.
bool Describe(std::string const &path, char const *name, WIN32_FIND_DATAW &entry);

}  // namespace qor::tools::platform
