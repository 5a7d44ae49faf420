// Encrypting and decrypting 100 MB against OpenSSL's own SHA-1 + RC4, and XML
// load and save of a ~10 MB document.
#include <benchmark/benchmark.h>

#include <openssl/evp.h>
#include <openssl/provider.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "qor/tools/file/crypto.h"
#include "qor/tools/file/xml.h"

using namespace qor::tools;

namespace {

constexpr int kSize = 100 << 20;

std::u16string Path(char const *name) {
    std::string p = std::string("/tmp/qorbench-") + std::to_string(::getpid()) + "-" + name;
    return std::u16string(p.begin(), p.end());
}

void Remove(std::u16string const &p) { std::remove(std::string(p.begin(), p.end()).c_str()); }

void CryptoEncrypt(benchmark::State &state) {
    container::buffer data(kSize, true);
    auto path = Path("enc");
    for (auto _ : state) file::Crypto::Encrypt(u"password", path.c_str(), data);
    state.SetBytesProcessed(state.iterations() * kSize);
    Remove(path);
}

void CryptoDecrypt(benchmark::State &state) {
    container::buffer data(kSize, true), out;
    auto path = Path("dec");
    file::Crypto::Encrypt(u"password", path.c_str(), data);
    for (auto _ : state) file::Crypto::Decrypt(u"password", path.c_str(), out);
    state.SetBytesProcessed(state.iterations() * kSize);
    Remove(path);
}

// OpenSSL's RC4 (from its legacy provider) over the same bytes, in memory.
void OpenSslRc4(benchmark::State &state) {
    OSSL_PROVIDER *legacy = OSSL_PROVIDER_load(nullptr, "legacy");
    OSSL_PROVIDER *base = OSSL_PROVIDER_load(nullptr, "default");
    EVP_CIPHER *rc4 = EVP_CIPHER_fetch(nullptr, "RC4", nullptr);
    if (!rc4) {
        state.SkipWithError("RC4 is not available from OpenSSL here");
        return;
    }
    std::vector<unsigned char> data(kSize), out(kSize + 16);
    for (auto _ : state) {
        unsigned char digest[20];
        unsigned length = 0;
        EVP_Digest("p\0a\0s\0s\0", 8, digest, &length, EVP_sha1(), nullptr);
        EVP_CIPHER_CTX *ctx = EVP_CIPHER_CTX_new();
        EVP_EncryptInit_ex(ctx, rc4, nullptr, digest, nullptr);
        int written = 0;
        EVP_EncryptUpdate(ctx, out.data(), &written, data.data(), kSize);
        EVP_CIPHER_CTX_free(ctx);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(state.iterations() * kSize);
    EVP_CIPHER_free(rc4);
    OSSL_PROVIDER_unload(legacy);
    OSSL_PROVIDER_unload(base);
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
BENCHMARK(CryptoDecrypt)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenSslRc4)->Unit(benchmark::kMillisecond);
BENCHMARK(XmlLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(XmlSave)->Unit(benchmark::kMillisecond);
