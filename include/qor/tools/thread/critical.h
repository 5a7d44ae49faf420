// thread::critical: the library's own lock, a critical section that its owner
// may enter again. A copy is a new, independent lock (copies exist only so
// that classes holding a critical stay copyable).
#pragma once

#include <mutex>

namespace qor::tools::thread {

class critical {
public:
    critical() = default;
    critical(critical const &) noexcept {}
    critical &operator=(critical const &) noexcept { return *this; }
    virtual ~critical() = default;

    void Lock() { mSection.lock(); }
    void Unlock() { mSection.unlock(); }

private:
    std::recursive_mutex mSection;
};

}  // namespace qor::tools::thread
