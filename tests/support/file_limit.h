// A full disk, as a process sees one: RLIMIT_FSIZE makes every write beyond
// `bytes` fail (EFBIG) for as long as the guard lives. SIGXFSZ is ignored
// meanwhile, so that the write fails instead of ending the process.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace qor::tools::testing {

class file_limit {
public:
    explicit file_limit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &mOld);
        mOldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limited = mOld;
        limited.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    file_limit(file_limit const &) = delete;
    file_limit &operator=(file_limit const &) = delete;
    ~file_limit() {
        ::setrlimit(RLIMIT_FSIZE, &mOld);
        std::signal(SIGXFSZ, mOldHandler);
    }

private:
    rlimit mOld{};
    void (*mOldHandler)(int) = nullptr;
};

}  // namespace qor::tools::testing
