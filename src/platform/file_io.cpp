#include "file_io.h"
#include "last_error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>

namespace qor::tools::platform {

namespace {

int OpenRetrying(char const *path, int flags, mode_t mode = 0) {
    int fd;
    do {
        fd = ::open(path, flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

// A name for a temporary file beside `target` that no other writer picks.
std::string TemporaryName(std::string const &target) {
    static std::atomic<unsigned> counter{0};
    std::size_t slash = target.find_last_of('/');
    std::string folder = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
    std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
    char suffix[40];
    std::snprintf(suffix, sizeof suffix, ".%d.%u.%lx", int(::getpid()), counter.fetch_add(1),
                  long(::clock()) & 0xFFFFF);
    return folder + "." + name + suffix + ".tmp";
}

timespec Timespec(std::int64_t nanoseconds) {
    timespec ts{};
    ts.tv_sec = time_t(nanoseconds / 1000000000);
    ts.tv_nsec = long(nanoseconds % 1000000000);
    if (ts.tv_nsec < 0) {
        ts.tv_nsec += 1000000000;
        --ts.tv_sec;
    }
    return ts;
}

}  // namespace

std::int64_t FileSize(char16_t const *path) {
    struct stat st {};
    if (!path || ::stat(PathBytes(path).c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return -1;
    return st.st_size;
}

bool ReadFile(char16_t const *path, std::string &out, std::int64_t offset, std::int64_t count) {
    out.clear();
    input_file in;
    if (!in.Open(path)) return false;
    std::int64_t available = in.Size() > offset ? in.Size() - offset : 0;
    std::int64_t wanted = count < 0 || count > available ? available : count;
    out.resize(std::size_t(wanted));
    std::int64_t done = in.Read(out.data(), out.size(), offset);
    if (done < 0) {
        out.clear();
        return false;
    }
    out.resize(std::size_t(done));
    return true;
}

bool ReadWhole(char16_t const *path, std::unique_ptr<char[]> &data, std::size_t &size, std::int64_t offset,
               std::size_t pad) {
    data.reset();
    size = 0;
    input_file in;
    if (!in.Open(path)) return false;
    std::size_t wanted = in.Size() > offset ? std::size_t(in.Size() - offset) : 0;
    data.reset(new char[wanted + pad]);
    std::int64_t done = in.Read(data.get(), wanted, offset);
    if (done < 0) {
        data.reset();
        return false;
    }
    size = std::size_t(done);
    std::fill(data.get() + size, data.get() + size + pad, '\0');
    return true;
}

// ---------------------------------------------------------------- input_file

input_file::~input_file() { Close(); }

bool input_file::Open(char16_t const *path) {
    Close();
    if (!path) return false;
    mFd = OpenRetrying(PathBytes(path).c_str(), O_RDONLY);
    if (mFd < 0) return KeepErrno();
    struct stat st {};
    if (::fstat(mFd, &st) != 0 || !S_ISREG(st.st_mode)) {
        Close();
        return false;
    }
    mSize = st.st_size;
    return true;
}

std::int64_t input_file::Read(void *data, std::size_t size, std::int64_t offset) {
    auto *p = static_cast<char *>(data);
    std::size_t done = 0;
    while (done < size) {
        ssize_t r = ::pread(mFd, p + done, size - done, off_t(offset + std::int64_t(done)));
        if (r < 0 && errno == EINTR) continue;
        if (r < 0) return KeepErrno(), -1;
        if (r == 0) break;
        done += std::size_t(r);
    }
    return std::int64_t(done);
}

void input_file::Close() {
    if (mFd >= 0) ::close(mFd);
    mFd = -1;
    mSize = 0;
}

// ---------------------------------------------------------------- output_file

output_file::~output_file() { Close(); }

bool output_file::Open(char16_t const *path) {
    Close();
    if (!path) return false;
    mFd = OpenRetrying(PathBytes(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    return Checked(mFd >= 0);
}

bool output_file::Write(void const *data, std::size_t size) {
    if (mFd < 0) return false;
    auto const *p = static_cast<char const *>(data);
    while (size) {
        ssize_t r = ::write(mFd, p, size);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) return KeepErrno();
        p += r;
        size -= std::size_t(r);
    }
    return true;
}

bool output_file::Close() {
    if (mFd < 0) return true;
    bool ok = Checked(::close(mFd) == 0);
    mFd = -1;
    return ok;
}

// ---------------------------------------------------------------- replacement_file

replacement_file::~replacement_file() { _Discard(); }

bool replacement_file::Open(char16_t const *path) {
    _Discard();
    if (!path || !*path) return false;
    mTarget = ResolveLinks(PathBytes(path));
    struct stat old {};
    bool exists = ::stat(mTarget.c_str(), &old) == 0;
    if (exists && (!S_ISREG(old.st_mode) || !(old.st_mode & S_IWUSR))) return false;
    if (exists && !mHasMode) mMode = old.st_mode & 07777;
    mHasMode = mHasMode || exists;

    for (int attempt = 0; attempt < 100; ++attempt) {
        mTemporary = TemporaryName(mTarget);
        mOut.mFd = OpenRetrying(mTemporary.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
        if (mOut.mFd >= 0 || errno != EEXIST) break;
    }
    if (mOut.mFd < 0) {
        mTemporary.clear();
        // Only a folder that refuses new files is a reason to write in place;
        // a full disk is not (the old file would be lost as well).
        if (errno != EACCES && errno != EPERM) return KeepErrno();
        mOut.mFd = OpenRetrying(mTarget.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        return Checked(mOut.mFd >= 0);
    }
    if (exists && (old.st_uid != ::geteuid() || old.st_gid != ::getegid())) {
        if (::fchown(mOut.mFd, old.st_uid, old.st_gid) != 0) (void)::fchown(mOut.mFd, uid_t(-1), old.st_gid);
    }
    return true;
}

void replacement_file::Times(std::int64_t access, std::int64_t modification) noexcept {
    mAccess = access;
    mModification = modification;
    mHasTimes = true;
}

bool replacement_file::Commit() {
    if (mOut.mFd < 0) return false;
    bool ok = true;
    if (mHasMode) ok = Checked(::fchmod(mOut.mFd, mMode) == 0);
    if (ok && mHasTimes) {
        timespec times[2] = {Timespec(mAccess), Timespec(mModification)};
        ok = Checked(::futimens(mOut.mFd, times) == 0);
    }
    ok = mOut.Close() && ok;
    if (!ok) {
        _Discard();
        return false;
    }
    if (mTemporary.empty()) return true;
    if (::rename(mTemporary.c_str(), mTarget.c_str()) != 0) {
        KeepErrno();
        _Discard();
        return false;
    }
    mTemporary.clear();
    return true;
}

void replacement_file::_Discard() {
    mOut.Close();
    if (!mTemporary.empty()) ::unlink(mTemporary.c_str());
    mTemporary.clear();
}

}  // namespace qor::tools::platform
