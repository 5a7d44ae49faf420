// The two primitives of the encrypted files, as the Windows cryptographic
// provider offers them: SHA-1 (OpenSSL's libcrypto) and an RC4 key stream
// (OpenSSL's legacy provider, loaded into a library context of its own so
// that the application's default context is left alone; the library's own
// RC4 where that provider is not installed).
#pragma once

#include <array>
#include <cstddef>
#include <memory>

namespace qor::tools::platform {

bool Sha1(void const *data, std::size_t size, std::array<unsigned char, 20> &digest);

class rc4_stream {
public:
    explicit rc4_stream(std::array<unsigned char, 16> const &key);
    rc4_stream(rc4_stream const &) = delete;
    rc4_stream &operator=(rc4_stream const &) = delete;
    ~rc4_stream();

    // Enciphers (or deciphers) the next `size` bytes of the message; `in` and
    // `out` may be the same.
    bool Apply(unsigned char const *in, unsigned char *out, std::size_t size);

private:
    struct state;
    std::unique_ptr<state> mState;
};

}  // namespace qor::tools::platform
