#include "qor/tools/file/crypto.h"

#include <openssl/evp.h>
#include <openssl/provider.h>

#include <atomic>
#include <cstring>
#include <string>

#include "platform/file_io.h"
#include "rc4.h"

namespace qor::tools::file {

namespace {

std::atomic<Crypto::keylength> gKeyLength{Crypto::keylength::rc4_128};

// OpenSSL's RC4 lives in its legacy provider, loaded into a library context of
// our own so that the application's default context is left as it is.
EVP_CIPHER *OpenSslRc4() {
    static EVP_CIPHER *cipher = [] {
        OSSL_LIB_CTX *context = OSSL_LIB_CTX_new();
        if (!context || !OSSL_PROVIDER_load(context, "legacy")) return static_cast<EVP_CIPHER *>(nullptr);
        return EVP_CIPHER_fetch(context, "RC4", nullptr);
    }();
    return cipher;
}

bool Rc4WithOpenSsl(std::array<unsigned char, 16> const &key, unsigned char *data, std::size_t size) {
    EVP_CIPHER *cipher = OpenSslRc4();
    if (!cipher) return false;
    EVP_CIPHER_CTX *context = EVP_CIPHER_CTX_new();
    bool ok = context && EVP_EncryptInit_ex(context, cipher, nullptr, key.data(), nullptr);
    for (std::size_t done = 0; ok && done < size;) {
        int chunk = int(size - done < (1u << 30) ? size - done : (1u << 30)), written = 0;
        ok = EVP_EncryptUpdate(context, data + done, &written, data + done, chunk) && written == chunk;
        done += std::size_t(chunk);
    }
    EVP_CIPHER_CTX_free(context);
    return ok;
}

// RC4 over `size` bytes in place, the key stream starting afresh.
void Rc4(std::array<unsigned char, 16> const &key, unsigned char *data, std::size_t size) {
    if (size > 0 && Rc4WithOpenSsl(key, data, size)) return;
    detail::Rc4(key.data(), key.size(), data, size);
}

// A local object for one call: the key lives as long as it does.
class session : public Crypto {
public:
    using Crypto::_Decrypt;
    using Crypto::_Encrypt;
    using Crypto::_Initialize;
};

}  // namespace

void Crypto::KeyLength(keylength length) noexcept { gKeyLength = length; }
Crypto::keylength Crypto::KeyLength() noexcept { return gKeyLength; }

bool Crypto::_Initialize(string const &password) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    int units = password.Length();
    std::string bytes(std::size_t(units) * 2, '\0');
    for (int i = 0; i < units; ++i) {
        bytes[std::size_t(i) * 2] = char(password[i] & 0xFF);
        bytes[std::size_t(i) * 2 + 1] = char(password[i] >> 8);
    }
    if (!EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_sha1(), nullptr) || length < 16) return false;
    mKey.fill(0);
    std::size_t keep = gKeyLength == keylength::rc4_40 ? 5 : 16;
    std::memcpy(mKey.data(), digest, keep);
    mProvider = true;
    return true;
}

void Crypto::_Terminate() {
    mKey.fill(0);
    mProvider = false;
}

bool Crypto::_Encrypt(char16_t const *path, container::buffer const &data) {
    int size = data.Size() > 0 ? data.Size() : 0;
    std::string copy(std::size_t(size), '\0');
    if (size) std::memcpy(copy.data(), data.Data(), std::size_t(size));
    Rc4(mKey, reinterpret_cast<unsigned char *>(copy.data()), copy.size());
    // Whether the file could be written is not part of the answer.
    platform::output_file out;
    if (out.Open(path)) out.Write(copy.data(), copy.size());
    return true;
}

bool Crypto::_Decrypt(char16_t const *path, container::buffer &data) {
    std::string bytes;
    if (!platform::ReadFile(path, bytes)) return false;
    int size = int(std::uint32_t(bytes.size()));
    if (size != data.Size()) data.Size(size, false);
    if (size > 0) {
        std::memcpy(data.Data(), bytes.data(), std::size_t(size));
        Rc4(mKey, data.Data(), std::size_t(size));
    }
    return true;
}

bool Crypto::Encrypt(char16_t const *password, char16_t const *path, container::buffer const &data) {
    session s;
    if (!s._Initialize(string(password))) return false;
    return s._Encrypt(path, data);
}

bool Crypto::Encrypt(char16_t const *password, char16_t const *path, string const &text) {
    container::buffer data;
    data.Copy(text.Safe(), text.Length() * 2);
    return Encrypt(password, path, data);
}

bool Crypto::Decrypt(char16_t const *password, char16_t const *path, container::buffer &data) {
    session s;
    if (!s._Initialize(string(password))) return false;
    return s._Decrypt(path, data);
}

bool Crypto::Decrypt(char16_t const *password, char16_t const *path, string &text) {
    container::buffer data;
    if (!Decrypt(password, path, data)) return false;
    text = string(reinterpret_cast<char16_t const *>(data.Data()), data.Size() / 2);
    return true;
}

}  // namespace qor::tools::file
