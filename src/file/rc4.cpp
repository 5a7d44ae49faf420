#include "rc4.h"

#include <utility>

namespace qor::tools::detail {

void Rc4(unsigned char const *key, std::size_t keyLength, unsigned char *data, std::size_t size) {
    if (keyLength == 0) return;
    unsigned char s[256];
    for (int i = 0; i < 256; ++i) s[i] = static_cast<unsigned char>(i);
    for (unsigned i = 0, j = 0; i < 256; ++i) {
        j = (j + s[i] + key[i % keyLength]) & 0xFF;
        std::swap(s[i], s[j]);
    }
    unsigned i = 0, j = 0;
    for (std::size_t k = 0; k < size; ++k) {
        i = (i + 1) & 0xFF;
        j = (j + s[i]) & 0xFF;
        std::swap(s[i], s[j]);
        data[k] ^= s[(s[i] + s[j]) & 0xFF];
    }
}

}  // namespace qor::tools::detail
