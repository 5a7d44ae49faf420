// The free functions of file: move, copy, remove and create files and folders.
// Each either does what it says or throws exception with a fixed text naming
// the failed step ("file MoveFileEx", "file CopyFile", "file remove", ...),
// with no path in it. Nothing is retried and nothing is rolled back: a tree
// operation that fails midway leaves what it had done.
//
//   file::CopyFolder(u"/data/in", u"/data/backup", true, true);
//   file::TrashBox(FO_DELETE, u"/data/old.txt", nullptr);   // to the desktop trash
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/string.h"

namespace qor::tools {

// The operations of TrashBox.
inline constexpr int FO_MOVE = 1;
inline constexpr int FO_COPY = 2;
inline constexpr int FO_DELETE = 3;
inline constexpr int FO_RENAME = 4;

namespace file {

class find;

// Moves or renames a file (over an existing one when `overwrite`).
QOR_TOOLS_API void Move(char16_t const *from, char16_t const *to, bool overwrite);
// Creates a folder and the folders above it that are missing.
QOR_TOOLS_API void CreateFolder(char16_t const *path);
// Removes a folder with everything in it (read-only entries too when `force`);
// nothing when it does not exist.
QOR_TOOLS_API void RemoveFolder(char16_t const *path, bool force);
// Renames a folder (making it writable first when `force`).
QOR_TOOLS_API void RenameFolder(char16_t const *from, char16_t const *to, bool force);
// Copies a folder's tree into `to` (made when missing), over existing files
// when `overwrite`, with attributes and times when `attributes`.
QOR_TOOLS_API void CopyFolder(char16_t const *from, char16_t const *to, bool overwrite, bool attributes);
// Moves a folder: a rename on one file system, a copy and a removal across.
QOR_TOOLS_API void MoveFolder(char16_t const *from, char16_t const *to, bool overwrite);
// Gives `to` the attributes and times of `from`.
QOR_TOOLS_API void CopyAttribute(char16_t const *from, char16_t const *to);
// FO_DELETE sends `from` to the desktop trash; FO_MOVE, FO_COPY and FO_RENAME
// are plain operations on `from` and `to`.
QOR_TOOLS_API void TrashBox(int operation, char16_t const *from, char16_t const *to);
// The folder chooser titled "フォルダの選択"; empty when cancelled or with no display.
QOR_TOOLS_API string SelectFolder(void *owner);

// The helpers the operations are built of: make writable, remove or copy one
// file, the path with its backslashes turned into slashes, its drive (what
// comes before the first colon, with the colon; empty when there is none),
// and a walk over a tree that calls `callback` for every entry below `folder`
// (a folder before its contents).
QOR_TOOLS_API void _ClearReadOnly(char16_t const *path);
QOR_TOOLS_API void _RemoveFile(char16_t const *path, bool force);
QOR_TOOLS_API void _CopyFile(char16_t const *from, char16_t const *to, bool overwrite);
QOR_TOOLS_API string _NormalizePath(char16_t const *path);
QOR_TOOLS_API string _DriveOf(char16_t const *path);
QOR_TOOLS_API void _Walk(char16_t const *folder, void *context, void (*callback)(void *context, find &entry));

}  // namespace file

}  // namespace qor::tools
