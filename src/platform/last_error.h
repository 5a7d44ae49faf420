// The library's last error (GetLastError) after a platform call failed: the
// C library's errno, in the Windows code that means the same.
#pragma once

#include "qor/tools/platform/types.h"

namespace qor::tools::platform {

DWORD ErrorOf(int error) noexcept;

// Records errno as the last error. Returns false, so that a failing path can
// end with `return KeepErrno();`.
bool KeepErrno() noexcept;

// `ok`, recording errno as the last error when it is false.
inline bool Checked(bool ok) noexcept { return ok || KeepErrno(); }

}  // namespace qor::tools::platform
