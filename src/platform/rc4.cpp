#include "rc4.h"

#include <utility>

namespace qor::tools::detail {

rc4::rc4(unsigned char const *key, std::size_t keyLength) noexcept {
    for (int i = 0; i < 256; ++i) mState[i] = static_cast<unsigned char>(i);
    if (keyLength == 0) return;
    for (unsigned i = 0, j = 0; i < 256; ++i) {
        j = (j + mState[i] + key[i % keyLength]) & 0xFF;
        std::swap(mState[i], mState[j]);
    }
}

void rc4::Apply(unsigned char const *in, unsigned char *out, std::size_t size) noexcept {
    unsigned i = mI, j = mJ;
    for (std::size_t k = 0; k < size; ++k) {
        i = (i + 1) & 0xFF;
        j = (j + mState[i]) & 0xFF;
        std::swap(mState[i], mState[j]);
        out[k] = in[k] ^ mState[(mState[i] + mState[j]) & 0xFF];
    }
    mI = i;
    mJ = j;
}

void Rc4(unsigned char const *key, std::size_t keyLength, unsigned char *data, std::size_t size) {
    if (keyLength == 0) return;
    rc4(key, keyLength).Apply(data, data, size);
}

}  // namespace qor::tools::detail
