#include "file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "../utf8.h"

namespace qor::tools::platform {

std::string PathBytes(char16_t const *path) {
    std::string bytes;
    if (!path) return bytes;
    std::size_t n = 0;
    while (path[n]) ++n;
    // Drive C is the root of the file system; backslashes separate as slashes do.
    if (n >= 2 && (path[0] == u'C' || path[0] == u'c') && path[1] == u':') {
        path += 2;
        n -= 2;
        if (n == 0) return "/";
    }
    detail::Utf16ToUtf8(path, n, bytes);
    for (char &c : bytes) {
        if (c == '\\') c = '/';
    }
    return bytes;
}

std::int64_t FileSize(char16_t const *path) {
    struct stat st {};
    if (!path || ::stat(PathBytes(path).c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return -1;
    return st.st_size;
}

bool ReadFile(char16_t const *path, std::string &out, std::int64_t offset, std::int64_t count) {
    out.clear();
    if (!path) return false;
    int fd = ::open(PathBytes(path).c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    struct stat st {};
    bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    if (ok) {
        std::int64_t available = st.st_size > offset ? st.st_size - offset : 0;
        std::int64_t wanted = count < 0 || count > available ? available : count;
        out.resize(std::size_t(wanted));
        std::size_t done = 0;
        while (done < out.size()) {
            ssize_t r = ::pread(fd, out.data() + done, out.size() - done, offset + std::int64_t(done));
            if (r < 0 && errno == EINTR) continue;
            if (r <= 0) break;
            done += std::size_t(r);
        }
        out.resize(done);
    }
    ::close(fd);
    return ok;
}

output_file::~output_file() { Close(); }

bool output_file::Open(char16_t const *path) {
    Close();
    if (!path) return false;
    mFd = ::open(PathBytes(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return mFd >= 0;
}

bool output_file::Write(void const *data, std::size_t size) {
    auto const *p = static_cast<char const *>(data);
    while (size) {
        ssize_t r = ::write(mFd, p, size);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) return false;
        p += r;
        size -= std::size_t(r);
    }
    return true;
}

bool output_file::Close() {
    if (mFd < 0) return true;
    bool ok = ::close(mFd) == 0;
    mFd = -1;
    return ok;
}

}  // namespace qor::tools::platform
