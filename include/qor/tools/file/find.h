// file::find: the entries of one folder. Make it for a folder (and a mask with
// the platform's wildcards; "*.*" is every entry), call Next until it gives
// false, and read the current entry. "." and ".." are listed (IsDots tells).
//
//   file::find f(u"/data");
//   while (f.Next()) if (!f.IsDots()) use(f.FilePath(), f.FileSize());
//
// Copies share the running search.
#pragma once

#include "qor/tools/export.h"

#include <memory>

#include "qor/tools/container/two.h"
#include "qor/tools/platform/find_data.h"
#include "qor/tools/string.h"

namespace qor::tools::platform {
class folder_search;
}

namespace qor::tools::file {

class QOR_TOOLS_API find {
public:
    // A search of every entry of `folder`, or of those matching `mask`.
    explicit find(char16_t const *folder);
    find(char16_t const *folder, char16_t const *mask);
    find(find const &) = default;
    find &operator=(find const &) = default;
    virtual ~find() = default;

    // Steps to the next entry (the first on the first call); false when
    // there is none left. Close ends the search. IsDots: "." or "..".
    bool Next() { return (this->*mStep)(); }
    void Close();
    bool IsDots() const;
    // The entry's name, its path (folder and name), and its size in bytes.
    string FileName() const { return string(mEntry.cFileName); }
    string FilePath() const { return string(mFolder.Safe(), mEntry.cFileName); }
    long long FileSize() const {
        return (static_cast<long long>(mEntry.nFileSizeHigh) << 32) | mEntry.nFileSizeLow;
    }
    // The entry's times in local time as (YYYYMMDD, HHMMSS); (0, 0) when unknown.
    container::two<long, long> WriteTime() const { return _Time(mEntry.ftLastWriteTime); }
    container::two<long, long> AccessTime() const { return _Time(mEntry.ftLastAccessTime); }
    container::two<long, long> CreationTime() const { return _Time(mEntry.ftCreationTime); }

    // The entry's attributes as the platform's attribute bits give them.
    bool IsReadOnly() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_READONLY; }
    bool IsHidden() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN; }
    bool IsSystem() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_SYSTEM; }
    bool IsDirectory() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY; }
    bool IsArchived() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_ARCHIVE; }
    bool IsNormal() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_NORMAL; }
    bool IsTemporary() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_TEMPORARY; }
    bool IsCompressed() const noexcept { return mEntry.dwFileAttributes & FILE_ATTRIBUTE_COMPRESSED; }

protected:
    bool _First();
    bool _Next();

private:
    static container::two<long, long> _Time(FILETIME const &time);

    std::shared_ptr<platform::folder_search> mHandle;
    WIN32_FIND_DATAW mEntry{};
    string mPattern;
    string mFolder;
    bool (find::*mStep)() = &find::_First;
};

}  // namespace qor::tools::file
