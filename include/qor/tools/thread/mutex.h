// thread::mutex: a kernel mutex with an owner thread and a recursion count.
// Named mutexes live in one table for the process: a second Create of a name
// answers ERROR_ALREADY_EXISTS and gives a working handle on the same mutex.
// Lock it by waiting on the handle; release it with ReleaseMutex.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/thread/handle.h"

namespace qor::tools::thread {

class QOR_TOOLS_API mutex : public handle {
public:
    // No mutex yet, or a new one (owned by this thread when `owner`); a name
    // shares it with other holders of the name. Copies are for handing over.
    mutex() noexcept = default;
    explicit mutex(char16_t const *name, bool owner = false, _SECURITY_ATTRIBUTES *security = nullptr)
        : handle(CreateMutexW(security, owner, name)) {}
    mutex(mutex const &) noexcept = default;
    mutex &operator=(mutex const &) noexcept = default;

    // Creates on this object (the old handle is not closed) and returns the last error.
    DWORD Create(char16_t const *name, bool owner = false, _SECURITY_ATTRIBUTES *security = nullptr) {
        mHandle = CreateMutexW(security, owner, name);
        return GetLastError();
    }
};

}  // namespace qor::tools::thread
