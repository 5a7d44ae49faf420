// file::Crypto: a password and some bytes, or a text, into a file and back,
// with RC4 under a key derived from the password's SHA-1, as the Windows
// cryptographic provider derives it. The file is the ciphertext alone: no
// header, its length that of the plaintext. Text is stored as UTF-16LE units.
//
//   file::Crypto::Encrypt(u"secret", u"notes.bin", string(u"本文"));
//   string text;
//   if (file::Crypto::Decrypt(u"secret", u"notes.bin", text)) ...
//
// The key is 128 bits (SHA1[0:16]) by default, what current Windows makes;
// KeyLength(keylength::rc4_40) selects the old 40-bit key with 11 zero bytes
// of salt, for files written on Windows 2000 and before. A wrong password
// deciphers into noise and is not detected here.
#pragma once

#include "qor/tools/export.h"

#include <array>
#include <cstdint>

#include "qor/tools/container/buffer.h"
#include "qor/tools/string.h"

namespace qor::tools::file {

class QOR_TOOLS_API Crypto {
public:
    // The key lengths: 128 bits, or the old 40 bits with 11 zero bytes of salt.
    enum class keylength { rc4_128, rc4_40 };

    // Nothing to hold: the calls are static.
    Crypto(Crypto const &) = default;
    Crypto &operator=(Crypto const &) = default;

    // Enciphers `text` (as UTF-16LE) or `data` into `path`, replacing the file
    // whole or not at all; deciphers `path` into `text` or `data`. False when
    // the file cannot be written or read.
    static bool Encrypt(char16_t const *password, char16_t const *path, string const &text);
    static bool Encrypt(char16_t const *password, char16_t const *path, container::buffer const &data);
    static bool Decrypt(char16_t const *password, char16_t const *path, string &text);
    static bool Decrypt(char16_t const *password, char16_t const *path, container::buffer &data);

    // The key length for every later call in the process.
    static void KeyLength(keylength length) noexcept;
    static keylength KeyLength() noexcept;

protected:
    Crypto() = default;
    virtual ~Crypto() { _Terminate(); }

    bool _Initialize(string const &password);
    void _Terminate();
    bool _Encrypt(char16_t const *path, container::buffer const &data);
    bool _Decrypt(char16_t const *path, container::buffer &data);

    bool mProvider = false;
    std::array<unsigned char, 16> mKey{};
};

}  // namespace qor::tools::file
