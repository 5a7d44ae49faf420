#include "qor/tools/file/crypto.h"

#include <atomic>
#include <cstring>
#include <vector>

#include "platform/cipher.h"
#include "platform/file_io.h"

namespace qor::tools::file {

namespace {

std::atomic<Crypto::keylength> gKeyLength{Crypto::keylength::rc4_128};

// The file is enciphered and written a piece at a time through one reused
// buffer, so that a large file never needs a second copy in memory.
constexpr std::size_t kPiece = std::size_t(1) << 20;

using key = std::array<unsigned char, 16>;

bool EncryptBytes(key const &k, char16_t const *path, unsigned char const *data, std::size_t size) {
    platform::rc4_stream cipher(k);
    // The file goes through a temporary file and a rename: a write that fails
    // leaves the old file whole. Whether it could be written is not part of
    // the answer, only whether the bytes could be enciphered.
    platform::replacement_file out;
    bool writing = out.Open(path);
    std::vector<unsigned char> piece(size < kPiece ? size : kPiece);
    for (std::size_t done = 0; done < size; done += kPiece) {
        std::size_t n = size - done < kPiece ? size - done : kPiece;
        if (!cipher.Apply(data + done, piece.data(), n)) return false;
        writing = writing && out.Write(piece.data(), n);
    }
    if (writing) out.Commit();
    return true;
}

// Deciphers the file into the room that `reserve(size)` gives for the file's
// `size` bytes: a pointer and how many of the bytes it takes.
template <typename Reserve>
bool DecryptInto(key const &k, char16_t const *path, Reserve &&reserve) {
    platform::input_file in;
    if (!in.Open(path)) return false;
    std::size_t size = std::uint32_t(in.Size());  // the low 32 bits, as GetFileSize gives them
    auto [data, wanted] = reserve(size);
    platform::rc4_stream cipher(k);
    for (std::size_t done = 0; done < wanted; done += kPiece) {
        std::size_t n = wanted - done < kPiece ? wanted - done : kPiece;
        std::int64_t read = in.Read(data + done, n, std::int64_t(done));
        if (read < 0) return false;
        if (std::size_t(read) < n) std::memset(data + done + read, 0, n - std::size_t(read));
        if (!cipher.Apply(data + done, data + done, n)) return false;
    }
    return true;
}

// A local object for one call: the key lives as long as it does.
class session : public Crypto {
public:
    using Crypto::_Decrypt;
    using Crypto::_Encrypt;
    using Crypto::_Initialize;
    key const &Key() const noexcept { return mKey; }
};

}  // namespace

void Crypto::KeyLength(keylength length) noexcept { gKeyLength = length; }
Crypto::keylength Crypto::KeyLength() noexcept { return gKeyLength; }

bool Crypto::_Initialize(string const &password) {
    int units = password.Length();
    std::vector<unsigned char> bytes(std::size_t(units) * 2);
    for (int i = 0; i < units; ++i) {
        bytes[std::size_t(i) * 2] = static_cast<unsigned char>(password[i] & 0xFF);
        bytes[std::size_t(i) * 2 + 1] = static_cast<unsigned char>(password[i] >> 8);
    }
    std::array<unsigned char, 20> digest{};
    if (!platform::Sha1(bytes.data(), bytes.size(), digest)) return false;
    mKey.fill(0);
    std::size_t keep = gKeyLength == keylength::rc4_40 ? 5 : 16;
    std::memcpy(mKey.data(), digest.data(), keep);
    mProvider = true;
    return true;
}

void Crypto::_Terminate() {
    mKey.fill(0);
    mProvider = false;
}

bool Crypto::_Encrypt(char16_t const *path, container::buffer const &data) {
    std::size_t size = data.Size() > 0 ? std::size_t(data.Size()) : 0;
    return EncryptBytes(mKey, path, data.Data(), size);
}

bool Crypto::_Decrypt(char16_t const *path, container::buffer &data) {
    return DecryptInto(mKey, path, [&](std::size_t size) {
        if (int(size) != data.Size()) data.Size(int(size), false);
        return std::pair(data.Data(), size);
    });
}

bool Crypto::Encrypt(char16_t const *password, char16_t const *path, container::buffer const &data) {
    session s;
    if (!s._Initialize(string(password))) return false;
    return s._Encrypt(path, data);
}

bool Crypto::Encrypt(char16_t const *password, char16_t const *path, string const &text) {
    session s;
    if (!s._Initialize(string(password))) return false;
    auto const *bytes = reinterpret_cast<unsigned char const *>(text.Safe());
    return EncryptBytes(s.Key(), path, bytes, std::size_t(text.Length()) * sizeof(char16_t));
}

bool Crypto::Decrypt(char16_t const *password, char16_t const *path, container::buffer &data) {
    session s;
    if (!s._Initialize(string(password))) return false;
    return s._Decrypt(path, data);
}

bool Crypto::Decrypt(char16_t const *password, char16_t const *path, string &text) {
    session s;
    if (!s._Initialize(string(password))) return false;
    // Deciphered straight into the new text's block; an odd last byte is dropped.
    string result;
    int units = 0;
    bool ok = DecryptInto(s.Key(), path, [&](std::size_t size) {
        units = int(size / 2);
        char16_t *area = result.Area(units);
        if (area) area[units] = 0;
        return std::pair(reinterpret_cast<unsigned char *>(area), std::size_t(units) * sizeof(char16_t));
    });
    if (!ok) return false;
    // A text ends at its first NUL, and its block fits it exactly.
    int length = string::Length(result.Safe());
    text = length == units ? result : string(result.Safe(), length);
    return true;
}

}  // namespace qor::tools::file
