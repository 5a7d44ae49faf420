#include "support/read_faults.h"

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace {

std::atomic<bool> gArmed{false};
std::atomic<long long> gLeft{0};

using pread_fn = ssize_t (*)(int, void *, size_t, off_t);

pread_fn Real() {
    static pread_fn real = reinterpret_cast<pread_fn>(::dlsym(RTLD_NEXT, "pread"));
    return real;
}

}  // namespace

namespace qor::tools::testing {

void FailReadsAfter(std::size_t bytes) {
    gLeft = static_cast<long long>(bytes);
    gArmed = true;
}

void StopReadFaults() { gArmed = false; }

}  // namespace qor::tools::testing

extern "C" ssize_t pread(int fd, void *buffer, size_t count, off_t offset) {
    if (!gArmed) return Real()(fd, buffer, count, offset);
    long long left = gLeft.load();
    if (left <= 0) {
        errno = EIO;
        return -1;
    }
    if (static_cast<long long>(count) > left) count = static_cast<size_t>(left);
    ssize_t r = Real()(fd, buffer, count, offset);
    if (r > 0) gLeft -= r;
    return r;
}
