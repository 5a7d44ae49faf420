// Encrypting and decrypting 100 MB against the same work written plainly
// (OpenSSL's SHA-1 and RC4 over the bytes in memory, and one write or read of
// the file), with the peak memory of each; XML load and save of a ~10 MB
// document.
#include <benchmark/benchmark.h>

#include <openssl/evp.h>
#include <openssl/provider.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "memory_growth.h"
#include "qor/tools/file/crypto.h"
#include "qor/tools/file/xml.h"

using namespace qor::tools;

namespace {

constexpr int kSize = 100 << 20;

// Files in memory (tmpfs), so that the disk's write-back does not time itself
// into whichever benchmark runs next.
std::u16string Path(char const *name) {
    std::string p = std::string("/dev/shm/qorbench-") + std::to_string(::getpid()) + "-" + name;
    return std::u16string(p.begin(), p.end());
}

void Remove(std::u16string const &p) { std::remove(std::string(p.begin(), p.end()).c_str()); }

// OpenSSL's SHA-1 and RC4 (its legacy provider) over bytes in memory: the
// anchors' cipher.
class openssl_rc4 {
public:
    openssl_rc4() {
        mLegacy = OSSL_PROVIDER_load(nullptr, "legacy");
        mDefault = OSSL_PROVIDER_load(nullptr, "default");
        mRc4 = EVP_CIPHER_fetch(nullptr, "RC4", nullptr);
    }
    ~openssl_rc4() {
        EVP_CIPHER_free(mRc4);
        OSSL_PROVIDER_unload(mLegacy);
        OSSL_PROVIDER_unload(mDefault);
    }
    bool Usable() const { return mRc4 != nullptr; }
    void Apply(unsigned char const *in, unsigned char *out, int size) {
        unsigned char digest[20];
        unsigned length = 0;
        EVP_Digest("p\0a\0s\0s\0", 8, digest, &length, EVP_sha1(), nullptr);
        EVP_CIPHER_CTX *ctx = EVP_CIPHER_CTX_new();
        EVP_EncryptInit_ex(ctx, mRc4, nullptr, digest, nullptr);
        int written = 0;
        EVP_EncryptUpdate(ctx, out, &written, in, size);
        EVP_CIPHER_CTX_free(ctx);
    }

private:
    OSSL_PROVIDER *mLegacy, *mDefault;
    EVP_CIPHER *mRc4;
};

void CryptoEncrypt(benchmark::State &state) {
    container::buffer data(kSize, true);
    auto path = Path("enc");
    for (auto _ : state) file::Crypto::Encrypt(u"password", path.c_str(), data);
    state.SetBytesProcessed(state.iterations() * kSize);
    Remove(path);
}

// The same work written plainly: the cipher over the bytes in memory, and one
// write of the result.
void CryptoEncrypt_Anchor(benchmark::State &state) {
    openssl_rc4 cipher;
    if (!cipher.Usable()) return state.SkipWithError("RC4 is not available from OpenSSL here");
    std::vector<unsigned char> data(kSize), out(kSize);
    auto path = Path("enc-anchor");
    std::string p(path.begin(), path.end());
    for (auto _ : state) {
        cipher.Apply(data.data(), out.data(), kSize);
        FILE *f = std::fopen(p.c_str(), "wb");
        std::fwrite(out.data(), 1, out.size(), f);
        std::fclose(f);
    }
    state.SetBytesProcessed(state.iterations() * kSize);
    Remove(path);
}

void CryptoDecrypt(benchmark::State &state) {
    container::buffer data(kSize, true), out;
    auto path = Path("dec");
    file::Crypto::Encrypt(u"password", path.c_str(), data);
    file::Crypto::Decrypt(u"password", path.c_str(), out);  // `out` in memory already, as the anchor's buffer is
    for (auto _ : state) file::Crypto::Decrypt(u"password", path.c_str(), out);
    state.SetBytesProcessed(state.iterations() * kSize);
    Remove(path);
}

// One read of the file into memory, and the cipher over it in place.
void CryptoDecrypt_Anchor(benchmark::State &state) {
    openssl_rc4 cipher;
    if (!cipher.Usable()) return state.SkipWithError("RC4 is not available from OpenSSL here");
    std::vector<unsigned char> data(kSize);
    auto path = Path("dec-anchor");
    std::string p(path.begin(), path.end());
    FILE *f = std::fopen(p.c_str(), "wb");
    std::fwrite(data.data(), 1, data.size(), f);
    std::fclose(f);
    for (auto _ : state) {
        f = std::fopen(p.c_str(), "rb");
        benchmark::DoNotOptimize(std::fread(data.data(), 1, data.size(), f));
        std::fclose(f);
        cipher.Apply(data.data(), data.data(), kSize);
    }
    state.SetBytesProcessed(state.iterations() * kSize);
    Remove(path);
}

// The heap that Encrypt and Decrypt of 100 MB add at their peak, as a share of
// the file's size (measured once, in a child process each).
void CryptoPeakMemory(benchmark::State &state) {
    container::buffer data(kSize, true);
    auto path = Path("peak");
    double encrypt = 0, decrypt = 0;
    for (auto _ : state) {
        encrypt = GrowthMegabytes([&] { file::Crypto::Encrypt(u"password", path.c_str(), data); });
        decrypt = GrowthMegabytes([&] {
            container::buffer fresh;
            file::Crypto::Decrypt(u"password", path.c_str(), fresh);
        });
    }
    state.counters["encrypt_peak_over_size"] = encrypt / 100.0;
    state.counters["decrypt_peak_over_size"] = decrypt / 100.0;
    Remove(path);
}

std::u16string BigXml() {
    auto path = Path("big.xml");
    std::string p(path.begin(), path.end());
    FILE *f = std::fopen(p.c_str(), "w");
    std::fputs("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<items>\n", f);
    for (int i = 0; i < 100000; ++i) {
        std::fprintf(f, "  <item id=\"%d\" kind=\"sample\"><name>東京都千代田区 %d</name><value>%d.5</value></item>\n", i,
                     i, i);
    }
    std::fputs("</items>\n", f);
    std::fclose(f);
    return path;
}

void XmlLoad(benchmark::State &state) {
    auto path = BigXml();
    for (auto _ : state) {
        file::xml doc;
        benchmark::DoNotOptimize(doc.Load(path.c_str()));
    }
    Remove(path);
}

void XmlSave(benchmark::State &state) {
    auto path = BigXml();
    file::xml doc(path.c_str());
    auto out = Path("out.xml");
    for (auto _ : state) {
        doc.Update();
        benchmark::DoNotOptimize(doc.Save(out.c_str()));
    }
    Remove(path);
    Remove(out);
}

}  // namespace

BENCHMARK(CryptoEncrypt)->Unit(benchmark::kMillisecond);
BENCHMARK(CryptoEncrypt_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(CryptoDecrypt)->Unit(benchmark::kMillisecond);
BENCHMARK(CryptoDecrypt_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(CryptoPeakMemory)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(XmlLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(XmlSave)->Unit(benchmark::kMillisecond);
