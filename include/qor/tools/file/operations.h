// The free functions of file: move, copy, remove and create files and folders.
// Each either does what it says or throws exception with a fixed text naming
// the failed step ("file MoveFileEx", "file CopyFile", "file remove", ...),
// with no path in it. Nothing is retried and nothing is rolled back: a tree
// operation that fails midway leaves what it had done.
//
//   file::CopyFolder(u"/data/in", u"/data/backup", true, true);
//   file::TrashBox(FO_DELETE, u"/data/old.txt", nullptr);   // to the desktop trash
#pragma once

#include "qor/tools/string.h"

namespace qor::tools {

inline constexpr int FO_MOVE = 1;
inline constexpr int FO_COPY = 2;
inline constexpr int FO_DELETE = 3;
inline constexpr int FO_RENAME = 4;

namespace file {

class find;

void Move(char16_t const *from, char16_t const *to, bool overwrite);
void CreateFolder(char16_t const *path);
void RemoveFolder(char16_t const *path, bool force);
void RenameFolder(char16_t const *from, char16_t const *to, bool force);
void CopyFolder(char16_t const *from, char16_t const *to, bool overwrite, bool attributes);
void MoveFolder(char16_t const *from, char16_t const *to, bool overwrite);
void CopyAttribute(char16_t const *from, char16_t const *to);
// FO_DELETE sends `from` to the desktop trash; FO_MOVE, FO_COPY and FO_RENAME
// are plain operations on `from` and `to`.
void TrashBox(int operation, char16_t const *from, char16_t const *to);
// The folder chooser titled "フォルダの選択"; empty when cancelled or with no display.
string SelectFolder(void *owner);

void _ClearReadOnly(char16_t const *path);
void _RemoveFile(char16_t const *path, bool force);
void _CopyFile(char16_t const *from, char16_t const *to, bool overwrite);
string _NormalizePath(char16_t const *path);
string _DriveOf(char16_t const *path);
void _Walk(char16_t const *folder, void *context, void (*callback)(void *context, find &entry));

}  // namespace file

}  // namespace qor::tools
