// Runs a piece of a test as an unprivileged user. Permission checks (a
// read-only folder, a folder that takes no new file) do not hold for root, and
// the test suite runs as root in CI: as root the action runs in a child
// process as "nobody"; otherwise it runs here, as the user the tests run as.
// The answer is true when the action returned true.
#pragma once

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace qor::tools::testing {

inline constexpr uid_t kNobody = 65534;

inline bool IsRoot() { return ::geteuid() == 0; }

inline bool AsUser(std::function<bool()> const &action) {
    if (!IsRoot()) return action();
    pid_t child = ::fork();
    if (child == 0) {
        bool ok = ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0 && action();
        ::_exit(ok ? 0 : 1);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace qor::tools::testing
