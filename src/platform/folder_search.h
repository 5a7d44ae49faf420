// One folder search (FindFirstFileW / FindNextFileW): the entries of a folder
// whose names match a mask of the platform's wildcards, '*' and '?' only,
// without regard to ASCII case ("*.*" and "*" are every entry). Other
// characters, '[' and '\' among them, stand for themselves.
#pragma once

#include <string>
#include <string_view>

#include "qor/tools/platform/find_data.h"

namespace qor::tools::platform {

bool MatchesMask(std::u16string_view mask, std::u16string_view name) noexcept;

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
