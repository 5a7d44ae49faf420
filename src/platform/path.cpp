#include "path.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "../utf8.h"
#include "drive_letters.h"

namespace qor::tools::platform {

std::string PathBytes(char16_t const *path) {
    std::string bytes;
    if (!path) return bytes;
    std::size_t n = std::char_traits<char16_t>::length(path);
    if (n >= 2 && (path[0] == u'C' || path[0] == u'c') && path[1] == u':') {
        path += 2;
        n -= 2;
        if (n == 0) return "/";
    } else if (n >= 2 && path[1] == u':' && ((path[0] >= u'A' && path[0] <= u'Z') || (path[0] >= u'a' && path[0] <= u'z'))) {
        // Another letter reaches its mount point, when it has one.
        std::string root = drives::MountPointOf(path[0]);
        if (!root.empty()) {
            path += 2;
            n -= 2;
            bytes = root == "/" ? std::string() : root;
            if (n == 0) return root;
        }
    }
    std::string rest;
    detail::Utf16ToUtf8(path, n, rest, detail::ill_formed::escape);
    bytes += rest;
    for (char &c : bytes) {
        if (c == '\\') c = '/';
    }
    return bytes;
}

std::u16string PathText(char const *bytes, std::size_t n) {
    std::u16string text;
    if (bytes) detail::Utf8ToUtf16(bytes, n, text, detail::ill_formed::escape);
    return text;
}

std::u16string PathText(char const *bytes) { return PathText(bytes, bytes ? std::strlen(bytes) : 0); }

std::string ResolveLinks(std::string const &path) {
    std::string p = path;
    for (int hops = 0; hops < 40; ++hops) {
        struct stat st {};
        if (::lstat(p.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return p;
        std::string link(std::size_t(st.st_size > 0 ? st.st_size : 256) + 1, '\0');
        ssize_t n = ::readlink(p.c_str(), link.data(), link.size());
        if (n <= 0 || std::size_t(n) >= link.size()) return p;
        link.resize(std::size_t(n));
        if (link[0] == '/') {
            p = link;
            continue;
        }
        std::size_t slash = p.find_last_of('/');
        p = slash == std::string::npos ? link : p.substr(0, slash + 1) + link;
    }
    return p;
}

}  // namespace qor::tools::platform
