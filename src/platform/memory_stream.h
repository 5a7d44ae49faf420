// A random-access IStream over a private copy of some bytes (what
// CreateStreamOnHGlobal makes on Windows).
#pragma once

#include "qor/tools/platform/com.h"

namespace qor::tools::platform {

IStream *CreateMemoryStream(void const *data, std::size_t size);

}  // namespace qor::tools::platform
