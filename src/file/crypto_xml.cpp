#include "qor/tools/file/crypto_xml.h"

#include <memory>

#include "qor/tools/file/crypto.h"
#include "qor/tools/file/operations.h"

namespace qor::tools::file {

namespace {
constexpr char16_t kBuiltInPassword[] = u"valen";
}

bool CryptoXml::Load(char16_t const *path) {
    mPath = path;
    try {
        Initialize();
        string text;
        if (!Crypto::Decrypt(mPassword, path, text)) return false;
        return _LoadText(text);
    } catch (...) {
        return false;
    }
}

bool CryptoXml::Save(char16_t const *path) {
    if (path) mPath = path;
    try {
        string text = _Text();
        if (text.IsEmpty()) return false;  // no root element: the file would not load again
        _ClearReadOnly(mPath);
        return Crypto::Encrypt(mPassword, mPath, text);
    } catch (...) {
        return false;
    }
}

xml *xml::CreateCryptoXml(char16_t const *path) {
    auto document = std::make_unique<CryptoXml>();
    document->Password(kBuiltInPassword);
    if (!document->Load(path)) return nullptr;
    return document.release();
}

}  // namespace qor::tools::file
