// RC4 written out, for where OpenSSL's legacy provider (which holds its RC4)
// is not installed.
#pragma once

#include <cstddef>

namespace qor::tools::detail {

// The RC4 key stream, applied over consecutive pieces of one message.
class rc4 {
public:
    rc4(unsigned char const *key, std::size_t keyLength) noexcept;
    void Apply(unsigned char const *in, unsigned char *out, std::size_t size) noexcept;

private:
    unsigned char mState[256];
    unsigned mI = 0, mJ = 0;
};

// Enciphers (or deciphers) `size` bytes in place; the key stream starts afresh.
void Rc4(unsigned char const *key, std::size_t keyLength, unsigned char *data, std::size_t size);

}  // namespace qor::tools::detail
