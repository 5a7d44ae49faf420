#include "cipher.h"

#include <openssl/evp.h>
#include <openssl/provider.h>

#include <climits>
#include <optional>

#include "rc4.h"

namespace qor::tools::platform {

namespace {

EVP_CIPHER *OpenSslRc4() {
    static EVP_CIPHER *cipher = [] {
        OSSL_LIB_CTX *context = OSSL_LIB_CTX_new();
        if (!context || !OSSL_PROVIDER_load(context, "legacy")) return static_cast<EVP_CIPHER *>(nullptr);
        return EVP_CIPHER_fetch(context, "RC4", nullptr);
    }();
    return cipher;
}

}  // namespace

bool Sha1(void const *data, std::size_t size, std::array<unsigned char, 20> &digest) {
    unsigned int length = 0;
    return EVP_Digest(data, size, digest.data(), &length, EVP_sha1(), nullptr) && length == digest.size();
}

struct rc4_stream::state {
    EVP_CIPHER_CTX *mContext = nullptr;
    std::optional<detail::rc4> mOwn;
};

rc4_stream::rc4_stream(std::array<unsigned char, 16> const &key) : mState(std::make_unique<state>()) {
    if (EVP_CIPHER *cipher = OpenSslRc4()) {
        mState->mContext = EVP_CIPHER_CTX_new();
        if (mState->mContext && EVP_EncryptInit_ex(mState->mContext, cipher, nullptr, key.data(), nullptr)) return;
        EVP_CIPHER_CTX_free(mState->mContext);
        mState->mContext = nullptr;
    }
    mState->mOwn.emplace(key.data(), key.size());
}

rc4_stream::~rc4_stream() { EVP_CIPHER_CTX_free(mState->mContext); }

bool rc4_stream::Apply(unsigned char const *in, unsigned char *out, std::size_t size) {
    if (!mState->mContext) {
        mState->mOwn->Apply(in, out, size);
        return true;
    }
    for (std::size_t done = 0; done < size;) {
        int chunk = int(size - done < (1u << 30) ? size - done : (1u << 30)), written = 0;
        if (!EVP_EncryptUpdate(mState->mContext, out + done, &written, in + done, chunk) || written != chunk) {
            return false;
        }
        done += std::size_t(chunk);
    }
    return true;
}

}  // namespace qor::tools::platform
