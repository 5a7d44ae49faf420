// Introspection of kernel objects for the library's own tests.
#pragma once

#include "qor/tools/platform/kernel.h"

namespace qor::tools::platform {

// The number of threads waiting on `object` right now.
int WaitingThreads(HANDLE object);

}  // namespace qor::tools::platform
