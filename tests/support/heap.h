// The bytes the process holds on its heap right now, for tests that bound the
// memory a loop may keep. Under a sanitizer its allocator is asked; otherwise
// the C library's.
#pragma once

#include <malloc.h>

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QOR_TEST_SANITIZED_HEAP 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define QOR_TEST_SANITIZED_HEAP 1
#endif

#ifdef QOR_TEST_SANITIZED_HEAP
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace qor::tools::testing {

inline std::size_t HeapInUse() {
#ifdef QOR_TEST_SANITIZED_HEAP
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

}  // namespace qor::tools::testing
