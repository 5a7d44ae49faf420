#include "platform/rc4.h"

#include <gtest/gtest.h>

#include <string>

using qor::tools::detail::Rc4;

namespace {

std::string Cipher(std::string const &key, std::string text) {
    Rc4(reinterpret_cast<unsigned char const *>(key.data()), key.size(), reinterpret_cast<unsigned char *>(text.data()),
        text.size());
    return text;
}

}  // namespace

// The library's own RC4 (used where OpenSSL's legacy provider is missing),
// against the published test vectors.
TEST(Rc4, PublishedVectors) {
    EXPECT_EQ(Cipher("Key", "Plaintext"), "\xBB\xF3\x16\xE8\xD9\x40\xAF\x0A\xD3");
    EXPECT_EQ(Cipher("Wiki", "pedia"), "\x10\x21\xBF\x04\x20");
    EXPECT_EQ(Cipher("Secret", "Attack at dawn"), "\x45\xA0\x1F\x64\x5F\xC3\x5B\x38\x35\x52\x54\x4B\x9B\xF5");
    EXPECT_EQ(Cipher("Key", Cipher("Key", "round trip")), "round trip");
}

TEST(Rc4, TheFileVectorWithTheDefaultKey) {
    // SHA1("valen" as UTF-16LE)[0:16] enciphers "ab" (UTF-16LE) into be 0e f0 14.
    std::string key("\xf2\x14\x2b\x6e\xca\x32\xa3\xef\x10\xb1\x5d\xef\x4a\x06\x5b\x50", 16);
    EXPECT_EQ(Cipher(key, std::string("a\0b\0", 4)), "\xbe\x0e\xf0\x14");
}
