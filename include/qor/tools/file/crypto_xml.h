// file::CryptoXml: an xml document whose file is enciphered with Crypto: the
// file holds the RC4 ciphertext of the document's UTF-16LE text. Load answers
// false for a wrong password (the deciphered text does not parse); Save writes
// every time, modified or not.
//
//   file::CryptoXml doc;
//   doc.Password(u"secret");
//   if (doc.Load(u"settings.dat")) ...
//   std::unique_ptr<file::xml> fixed(file::xml::CreateCryptoXml(u"app.dat"));  // built-in password
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/file/xml.h"

namespace qor::tools::file {

class QOR_TOOLS_API CryptoXml : public xml {
public:
    // An empty document without a password; copies share the document.
    CryptoXml() = default;
    CryptoXml(CryptoXml const &) = default;
    CryptoXml &operator=(CryptoXml const &) = default;
    ~CryptoXml() override = default;

    // The password of later loads and saves; the document deciphered from
    // `path` (false for a wrong password or a file that is not one); the
    // document enciphered into `path`.
    void Password(char16_t const *password) { mPassword = password; }
    bool Load(char16_t const *path) override;
    bool Save(char16_t const *path) override;

private:
    string mPassword;
};

}  // namespace qor::tools::file
