// thread::handle: owns one kernel object handle and closes it on destruction.
// Copies copy the raw value without a count: they are for handing over, and
// two owners would each close it. Base of event, mutex and timer.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/kernel.h"

namespace qor::tools::thread {

class QOR_TOOLS_API handle {
public:
    // Holds `h` (none by default); it is closed when the holder ends. Copies
    // hold the same value and are for handing over: closing twice is refused
    // harmlessly.
    handle() noexcept = default;
    explicit handle(void *h) noexcept : mHandle(h) {}
    handle(handle const &other) noexcept = default;
    handle &operator=(handle const &other) noexcept = default;
    // Stores `h`; the old value is not closed.
    handle &operator=(void *h) noexcept {
        mHandle = h;
        return *this;
    }
    virtual ~handle() { Close(); }

    // Whether the stored value is `h`.
    bool operator==(void *h) const noexcept { return mHandle == h; }
    bool operator!=(void *h) const noexcept { return mHandle != h; }
    // The stored value, for calls that wait on it or fill it.
    operator void *&() const noexcept { return const_cast<void *&>(mHandle); }
    // Closes the handle (if any) and forgets it.
    void Close() noexcept {
        if (mHandle) CloseHandle(mHandle);
        mHandle = nullptr;
    }

protected:
    void *mHandle = nullptr;
};

}  // namespace qor::tools::thread
