#include "folder_search.h"

#include <dirent.h>

#include <algorithm>
#include <cstring>

#include "file_system.h"
#include "../text_case.h"
#include "path.h"

namespace qor::tools::platform {

bool MatchesMask(std::u16string_view mask, std::u16string_view name) noexcept {
    if (mask == u"*.*" || mask == u"*") return true;
    // Greedy matching that goes back to the last '*' on a mismatch.
    std::size_t m = 0, n = 0, star = std::u16string_view::npos, resume = 0;
    while (n < name.size()) {
        if (m < mask.size() && mask[m] == u'*') {
            star = m++;
            resume = n;
        } else if (m < mask.size() && (mask[m] == u'?' || detail::AsciiLower(mask[m]) == detail::AsciiLower(name[n]))) {
            ++m;
            ++n;
        } else if (star != std::u16string_view::npos) {
            m = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (m < mask.size() && mask[m] == u'*') ++m;
    return m == mask.size();
}

folder_search::~folder_search() { Close(); }

void folder_search::Close() {
    if (mDir) ::closedir(static_cast<DIR *>(mDir));
    mDir = nullptr;
}

bool folder_search::First(char16_t const *pattern, WIN32_FIND_DATAW &entry) {
    Close();
    std::u16string p = pattern ? pattern : u"";
    std::size_t slash = p.find_last_of(u"/\\");
    std::u16string folder = slash == std::u16string::npos ? u"." : p.substr(0, slash + 1);
    mMask = slash == std::u16string::npos ? p : p.substr(slash + 1);
    mFolder = PathBytes(folder.c_str());
    if (mFolder.empty()) mFolder.assign(1, '/');  // (assigning "/" trips a false -Wrestrict in g++ 12)
    mDir = ::opendir(mFolder.c_str());
    if (!mDir) return false;
    if (_Fill(entry)) return true;
    Close();
    return false;
}

bool folder_search::Next(WIN32_FIND_DATAW &entry) { return mDir && _Fill(entry); }

bool folder_search::_Fill(WIN32_FIND_DATAW &entry) {
    while (dirent *d = ::readdir(static_cast<DIR *>(mDir))) {
        std::u16string name = PathText(d->d_name);
        if (!MatchesMask(mMask, name)) continue;
        std::string full = mFolder + (mFolder.back() == '/' ? "" : "/") + d->d_name;
        if (!Describe(full, d->d_name, entry)) continue;
        std::size_t n = std::min<std::size_t>(name.size(), 259);
        std::memcpy(entry.cFileName, name.data(), n * sizeof(char16_t));
        return true;
    }
    return false;
}

}  // namespace qor::tools::platform
