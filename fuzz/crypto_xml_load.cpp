// Fuzzes CryptoXml::Load: the bytes are deciphered with the built-in password
// and parsed as a document; a wrong-password file must only give null.
#include <cstdint>
#include <memory>

#include "fuzz_file.h"
#include "qor/tools/file/crypto_xml.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    std::u16string path = qor::tools::fuzzing::ScratchFile(data, size);
    std::unique_ptr<qor::tools::file::xml> doc(qor::tools::file::xml::CreateCryptoXml(path.c_str()));
    if (doc) doc->String(u"/*");
    qor::tools::file::CryptoXml other;
    other.Password(u"fuzz");
    other.Load(path.c_str());
    return 0;
}
