// The file system as the file classes need it: attributes, times, folder
// search with the platform's wildcards, moves, copies, the desktop trash and
// the folder chooser. Attribute bits: read-only = no owner write permission,
// hidden = a name beginning with a dot, directory; a regular file with neither
// is "normal". Times come from statx (birth time where the file system keeps it).
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "qor/tools/platform/find_data.h"

namespace qor::tools::platform {

bool Exists(char16_t const *path);
bool IsDirectory(char16_t const *path);
bool GetAttributes(char16_t const *path, DWORD &attributes);
bool SetAttributes(char16_t const *path, DWORD attributes);
// The three times of a path (creation, last access, last write).
bool GetTimes(char16_t const *path, FILETIME &creation, FILETIME &access, FILETIME &write);
// Sets the access and write times; the creation (birth) time cannot be set on Linux.
bool SetTimes(char16_t const *path, FILETIME const &access, FILETIME const &write);

bool MoveFile(char16_t const *from, char16_t const *to, bool replace);
bool CopyFile(char16_t const *from, char16_t const *to, bool failIfExists);
bool CreateDirectory(char16_t const *path);
bool RemoveDirectory(char16_t const *path);
bool RemoveFile(char16_t const *path);
bool Rename(char16_t const *from, char16_t const *to);

// Moves a file or folder to the desktop trash (the freedesktop.org trash layout).
bool Trash(char16_t const *path);
// The folder chooser; empty when cancelled or when there is no display.
std::u16string ChooseFolder(char16_t const *title, void *owner);
// For tests: called with the dialog once it is shown.
void SetFolderChooserHook(std::function<void(void *dialog)> hook);

// FILETIME <-> local calendar time.
struct calendar {
    int year, month, day, hour, minute, second;
};
bool FileTimeToLocal(FILETIME const &time, calendar &local);

// One folder search (FindFirstFileW / FindNextFileW).
class folder_search {
public:
    folder_search() = default;
    folder_search(folder_search const &) = delete;
    folder_search &operator=(folder_search const &) = delete;
    ~folder_search();

    bool First(char16_t const *pattern, WIN32_FIND_DATAW &entry);
    bool Next(WIN32_FIND_DATAW &entry);
    void Close();

private:
    bool _Fill(WIN32_FIND_DATAW &entry);

    void *mDir = nullptr;
    std::string mFolder;
    std::u16string mMask;
};

}  // namespace qor::tools::platform
