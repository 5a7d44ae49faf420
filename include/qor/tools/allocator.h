// The module's array allocator: the one pair of functions that text blocks
// (string) and byte blocks (buffer, align16) come from. A block handed to
// buffer::Attach must have been made by ArrayAlloc.
#pragma once

#include "qor/tools/export.h"

#include <cstddef>

namespace qor::tools {

// Returns a block of `bytes` bytes, or null when `bytes` is 0 or memory is out.
QOR_TOOLS_API void *ArrayAlloc(std::size_t bytes);
// Frees a block of ArrayAlloc; null is ignored.
QOR_TOOLS_API void ArrayFree(void *block);

}  // namespace qor::tools
