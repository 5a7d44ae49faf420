// RC4 written out, for where OpenSSL's legacy provider (which holds its RC4)
// is not installed.
#pragma once

#include <cstddef>

namespace qor::tools::detail {

// Enciphers (or deciphers) `size` bytes in place; the key stream starts afresh.
void Rc4(unsigned char const *key, std::size_t keyLength, unsigned char *data, std::size_t size);

}  // namespace qor::tools::detail
