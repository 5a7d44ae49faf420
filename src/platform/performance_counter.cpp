// The performance counter: CLOCK_MONOTONIC in nanoseconds.
#include <time.h>

#include "qor/tools/platform/kernel.h"

namespace qor::tools {

bool QueryPerformanceCounter(std::int64_t *counter) {
    timespec ts{};
    if (!counter || clock_gettime(CLOCK_MONOTONIC, &ts) != 0) return false;
    *counter = std::int64_t(ts.tv_sec) * 1000000000 + ts.tv_nsec;
    return true;
}

bool QueryPerformanceFrequency(std::int64_t *frequency) {
    if (!frequency) return false;
    *frequency = 1000000000;
    return true;
}

}  // namespace qor::tools
