#include "file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "file_io.h"
#include "last_error.h"
#include "qor/tools/platform/kernel.h"

namespace qor::tools::platform {

namespace {

constexpr std::int64_t kEpochDifference = 11644473600LL;  // seconds from 1601 to 1970

FILETIME ToFileTime(statx_timestamp const &t) {
    std::uint64_t ticks = std::uint64_t((t.tv_sec + kEpochDifference) * 10000000LL + t.tv_nsec / 100);
    return {DWORD(ticks & 0xFFFFFFFFu), DWORD(ticks >> 32)};
}

timespec ToTimespec(FILETIME const &f) {
    std::int64_t ticks = std::int64_t((std::uint64_t(f.dwHighDateTime) << 32) | f.dwLowDateTime);
    timespec ts{};
    ts.tv_sec = ticks / 10000000 - kEpochDifference;
    ts.tv_nsec = long(ticks % 10000000) * 100;
    return ts;
}

std::int64_t Nanoseconds(timespec const &t) { return std::int64_t(t.tv_sec) * 1000000000 + t.tv_nsec; }

bool Stat(std::string const &path, struct statx &st) {
    return ::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW,
                   STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_ATIME | STATX_MTIME | STATX_BTIME, &st) == 0;
}

DWORD Attributes(struct statx const &st, char const *name) {
    DWORD a = 0;
    if (S_ISDIR(st.stx_mode)) a |= FILE_ATTRIBUTE_DIRECTORY;
    if (!S_ISLNK(st.stx_mode) && !(st.stx_mode & S_IWUSR)) a |= FILE_ATTRIBUTE_READONLY;
    if (name[0] == '.' && std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) a |= FILE_ATTRIBUTE_HIDDEN;
    if (a == 0) a = FILE_ATTRIBUTE_NORMAL;
    return a;
}

char const *BaseName(std::string const &path) {
    std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path.c_str() : path.c_str() + slash + 1;
}

// The device of a path, or of its nearest existing folder while it does not exist.
bool DeviceOf(std::string path, dev_t &device) {
    struct stat st {};
    while (::lstat(path.c_str(), &st) != 0) {
        if (path == "." || path == "/") return false;
        std::size_t slash = path.find_last_of('/');
        path = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    }
    device = st.st_dev;
    return true;
}

// A link to anything but a regular file becomes a link again at `target`.
bool CopyLink(std::string const &source, std::string const &target, bool replace) {
    std::string text(PATH_MAX, '\0');
    ssize_t n = ::readlink(source.c_str(), text.data(), text.size());
    if (n <= 0 || std::size_t(n) >= text.size()) return false;
    text.resize(std::size_t(n));
    struct stat st {};
    if (::lstat(target.c_str(), &st) == 0) {
        if (!replace || S_ISDIR(st.st_mode) || ::unlink(target.c_str()) != 0) return false;
    }
    return ::symlink(text.c_str(), target.c_str()) == 0;
}

bool CopyBytes(int in, int out, std::int64_t size) {
    std::int64_t done = 0;
    while (done < size) {
        ssize_t r = ::copy_file_range(in, nullptr, out, nullptr, std::size_t(size - done), 0);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) break;
        done += r;
    }
    if (done >= size) return true;
    // Some file systems cannot copy in the kernel: read and write the rest.
    static thread_local char chunk[1 << 16];
    for (;;) {
        ssize_t r = ::pread(in, chunk, sizeof chunk, off_t(done));
        if (r < 0 && errno == EINTR) continue;
        if (r < 0) return false;
        if (r == 0) return true;
        for (ssize_t written = 0; written < r;) {
            ssize_t w = ::write(out, chunk + written, std::size_t(r - written));
            if (w < 0 && errno == EINTR) continue;
            if (w <= 0) return false;
            written += w;
        }
        done += r;
    }
}

}  // namespace

bool Describe(std::string const &path, char const *name, WIN32_FIND_DATAW &entry) {
    struct statx st {};
    if (!Stat(path, st)) return false;
    std::memset(&entry, 0, sizeof entry);
    entry.dwFileAttributes = Attributes(st, name);
    entry.ftCreationTime = ToFileTime((st.stx_mask & STATX_BTIME) ? st.stx_btime : st.stx_mtime);
    entry.ftLastAccessTime = ToFileTime(st.stx_atime);
    entry.ftLastWriteTime = ToFileTime(st.stx_mtime);
    entry.nFileSizeHigh = DWORD(st.stx_size >> 32);
    entry.nFileSizeLow = DWORD(st.stx_size & 0xFFFFFFFFu);
    return true;
}

bool Exists(char16_t const *path) {
    struct stat st {};
    return path && ::lstat(PathBytes(path).c_str(), &st) == 0;
}

bool IsDirectory(char16_t const *path) {
    struct stat st {};
    return path && ::stat(PathBytes(path).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsLink(char16_t const *path) {
    struct stat st {};
    return path && ::lstat(PathBytes(path).c_str(), &st) == 0 && S_ISLNK(st.st_mode);
}

bool GetAttributes(char16_t const *path, DWORD &attributes) {
    struct statx st {};
    std::string p = PathBytes(path);
    if (!path || !Stat(p, st)) return KeepErrno();
    attributes = Attributes(st, BaseName(p));
    return true;
}

bool SetAttributes(char16_t const *path, DWORD attributes) {
    std::string p = PathBytes(path);
    struct stat st {};
    if (!path || ::lstat(p.c_str(), &st) != 0) return KeepErrno();
    if (S_ISLNK(st.st_mode)) return true;  // a link has no permission bits of its own
    mode_t mode = st.st_mode & 07777;
    mode = (attributes & FILE_ATTRIBUTE_READONLY) ? mode & ~mode_t(S_IWUSR | S_IWGRP | S_IWOTH) : mode | S_IWUSR;
    return mode == (st.st_mode & 07777) || Checked(::chmod(p.c_str(), mode) == 0);
}

bool GetTimes(char16_t const *path, FILETIME &creation, FILETIME &access, FILETIME &write) {
    struct statx st {};
    if (!path || !Stat(PathBytes(path), st)) return KeepErrno();
    creation = ToFileTime((st.stx_mask & STATX_BTIME) ? st.stx_btime : st.stx_mtime);
    access = ToFileTime(st.stx_atime);
    write = ToFileTime(st.stx_mtime);
    return true;
}

bool SetTimes(char16_t const *path, FILETIME const &access, FILETIME const &write) {
    timespec times[2] = {ToTimespec(access), ToTimespec(write)};
    return path && Checked(::utimensat(AT_FDCWD, PathBytes(path).c_str(), times, AT_SYMLINK_NOFOLLOW) == 0);
}

bool SameFileSystem(char16_t const *from, char16_t const *to) {
    dev_t a = 0, b = 0;
    return from && to && DeviceOf(PathBytes(from), a) && DeviceOf(PathBytes(to), b) && a == b;
}

bool IsWithin(char16_t const *path, char16_t const *folder) {
    if (!path || !folder) return false;
    std::error_code error;
    std::string p = std::filesystem::weakly_canonical(PathBytes(path), error).string();
    if (error) return false;
    std::string f = std::filesystem::weakly_canonical(PathBytes(folder), error).string();
    if (error || f.empty()) return false;
    if (f.back() != '/') f += '/';
    return p.size() > f.size() && p.compare(0, f.size(), f) == 0;
}

bool MoveFile(char16_t const *from, char16_t const *to, bool replace) {
    if (!from || !to) return false;
    std::string f = PathBytes(from), t = PathBytes(to);
    if (!replace && Exists(to)) return false;
    if (::rename(f.c_str(), t.c_str()) == 0) return true;
    if (errno != EXDEV) return KeepErrno();
    // Another file system: copy (times kept), then remove the source.
    return CopyFile(from, to, !replace) && Checked(::unlink(f.c_str()) == 0);
}

bool CopyFile(char16_t const *from, char16_t const *to, bool failIfExists) {
    if (!from || !to) return false;
    std::string source = PathBytes(from), target = PathBytes(to);
    struct stat link {}, st {}, existing {};
    if (::lstat(source.c_str(), &link) != 0) return KeepErrno();
    bool exists = ::lstat(target.c_str(), &existing) == 0;
    if (exists && failIfExists) return SetLastError(ERROR_FILE_EXISTS), false;
    bool regular = ::stat(source.c_str(), &st) == 0 && S_ISREG(st.st_mode);
    if (S_ISLNK(link.st_mode) && !regular) return CopyLink(source, target, exists);
    if (!regular) return false;
    if (::stat(target.c_str(), &existing) == 0 && existing.st_dev == st.st_dev && existing.st_ino == st.st_ino) {
        return false;  // onto itself: the copy would truncate its own source
    }
    int in = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0) return KeepErrno();
    replacement_file out;
    bool ok = out.Open(to);
    if (ok) {
        out.Mode(st.st_mode);
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME, &now);
        out.Times(Nanoseconds(now), Nanoseconds(st.st_mtim));
        ok = CopyBytes(in, out.Descriptor(), st.st_size) && out.Commit();
    }
    ::close(in);
    return ok;
}

bool CreateDirectory(char16_t const *path) { return path && Checked(::mkdir(PathBytes(path).c_str(), 0777) == 0); }

bool RemoveDirectory(char16_t const *path) { return path && Checked(::rmdir(PathBytes(path).c_str()) == 0); }

bool RemoveFile(char16_t const *path) { return path && Checked(::unlink(PathBytes(path).c_str()) == 0); }

bool Rename(char16_t const *from, char16_t const *to) {
    return from && to && Checked(::rename(PathBytes(from).c_str(), PathBytes(to).c_str()) == 0);
}

bool FileTimeToLocal(FILETIME const &time, calendar &local) {
    timespec ts = ToTimespec(time);
    std::tm t{};
    if (!localtime_r(&ts.tv_sec, &t)) return false;
    local = {t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
    return true;
}

}  // namespace qor::tools::platform
