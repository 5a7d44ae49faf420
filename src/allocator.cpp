#include "qor/tools/allocator.h"

#include <cstdlib>

namespace qor::tools {

void *ArrayAlloc(std::size_t bytes) { return bytes ? std::malloc(bytes) : nullptr; }

void ArrayFree(void *block) { std::free(block); }

}  // namespace qor::tools
