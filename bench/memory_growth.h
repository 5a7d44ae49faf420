// How far a process's resident memory rises over an action, measured in a
// child process of its own: the child gives its free heap back and resets
// its high-water mark first, so that only what the action takes counts.
#pragma once

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

// A line of /proc/self/status, in bytes ("VmRSS:", "VmHWM:").
inline double StatusBytes(char const *key) {
    double kb = 0;
    if (FILE *f = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, f)) {
            if (std::strncmp(line, key, std::strlen(key)) == 0) kb = std::atof(line + std::strlen(key));
        }
        std::fclose(f);
    }
    return kb * 1024.0;
}

// Megabytes that `action(*setup())` adds to resident memory at its peak.
template <typename S, typename F>
double GrowthMegabytes(S &&setup, F &&action) {
    int pipe[2];
    if (::pipe(pipe) != 0) return -1;
    pid_t child = ::fork();
    if (child == 0) {
        auto kept = setup();
        ::malloc_trim(0);
        if (FILE *f = std::fopen("/proc/self/clear_refs", "w")) {
            std::fputs("5", f);
            std::fclose(f);
        }
        double before = StatusBytes("VmRSS:");
        action(*kept);
        double grown = StatusBytes("VmHWM:") - before;
        (void)!::write(pipe[1], &grown, sizeof grown);
        ::_exit(0);
    }
    double grown = -1;
    (void)!::read(pipe[0], &grown, sizeof grown);
    ::waitpid(child, nullptr, 0);
    ::close(pipe[0]);
    ::close(pipe[1]);
    return grown / double(1 << 20);
}

// The same for an action that needs nothing prepared.
template <typename F>
double GrowthMegabytes(F &&action) {
    return GrowthMegabytes([] { return std::make_unique<int>(0); }, [&](int &) { action(); });
}
