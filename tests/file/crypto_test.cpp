#include "qor/tools/file/crypto.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "qor/tools/file/crypto_xml.h"
#include "support/file_limit.h"
#include "support/temp_dir.h"

using namespace qor::tools;
using qor::tools::file::Crypto;
using qor::tools::file::CryptoXml;
using namespace qor::tools::testing;

namespace {

class Encryption : public ::testing::Test {
protected:
    void TearDown() override { Crypto::KeyLength(Crypto::keylength::rc4_128); }
    std::u16string Path(char const *name) { return mDir.Wide(name); }
    temp_dir mDir;
};

}  // namespace

TEST_F(Encryption, FixedVectors) {
    EXPECT_TRUE(Crypto::Encrypt(u"valen", Path("a").c_str(), string(u"ab")));
    EXPECT_EQ(mDir.Read("a"), std::string("\xbe\x0e\xf0\x14", 4));
    Crypto::KeyLength(Crypto::keylength::rc4_40);
    EXPECT_TRUE(Crypto::Encrypt(u"valen", Path("b").c_str(), string(u"ab")));
    EXPECT_EQ(mDir.Read("b"), std::string("\x67\xfa\x64\xae", 4));
    string text;
    EXPECT_TRUE(Crypto::Decrypt(u"valen", Path("b").c_str(), text));
    EXPECT_TRUE(text == u"ab");
}

TEST_F(Encryption, FilesFromTheVectorsDecrypt) {
    mDir.Write("windows", std::string("\xbe\x0e\xf0\x14", 4));
    string text;
    EXPECT_TRUE(Crypto::Decrypt(u"valen", Path("windows").c_str(), text));
    EXPECT_TRUE(text == u"ab");
}

TEST_F(Encryption, RoundTripsAndSizes) {
    container::buffer data(1000, true);
    for (int i = 0; i < 1000; ++i) data[i] = static_cast<unsigned char>(i * 7);
    EXPECT_TRUE(Crypto::Encrypt(u"pw", Path("d").c_str(), data));
    EXPECT_EQ(mDir.Read("d").size(), 1000u);
    EXPECT_EQ(data[1], 7);  // the input is not changed
    container::buffer back;
    EXPECT_TRUE(Crypto::Decrypt(u"pw", Path("d").c_str(), back));
    EXPECT_TRUE(back == data);

    EXPECT_TRUE(Crypto::Encrypt(u"pw", Path("e").c_str(), string()));
    EXPECT_EQ(mDir.Read("e").size(), 0u);
    Crypto::Encrypt(u"pw", Path("twice").c_str(), data);
    EXPECT_EQ(mDir.Read("twice"), mDir.Read("d"));  // the same key stream every time

    container::buffer wrong;
    EXPECT_TRUE(Crypto::Decrypt(u"other", Path("d").c_str(), wrong));  // undetected here
    EXPECT_EQ(wrong.Size(), 1000);
    EXPECT_FALSE(wrong == data);

    string kept(u"kept");
    EXPECT_FALSE(Crypto::Decrypt(u"pw", Path("missing").c_str(), kept));
    EXPECT_TRUE(kept == u"kept");
    EXPECT_TRUE(Crypto::Encrypt(nullptr, Path("null").c_str(), string(u"日本語")));
    string japanese;
    EXPECT_TRUE(Crypto::Decrypt(u"", Path("null").c_str(), japanese));  // null and empty are one password
    EXPECT_TRUE(japanese == u"日本語");
    mDir.Write("odd", "abc");
    EXPECT_TRUE(Crypto::Decrypt(u"pw", Path("odd").c_str(), japanese));
    EXPECT_EQ(japanese.Length(), 1);  // the odd last byte is dropped
}

TEST_F(Encryption, EncryptedXmlDocuments) {
    CryptoXml doc;
    doc.Password(u"secret");
    ASSERT_TRUE(doc.Initialize());
    doc.SelectNode(u"/");
    ASSERT_TRUE(doc.CreateElementCurrent(u"settings", nullptr, true));
    ASSERT_TRUE(doc.CreateElementCurrent(u"name", u"東京\t都", false));
    EXPECT_TRUE(doc.Save(Path("s.dat").c_str()));
    EXPECT_TRUE(doc.Save(nullptr));  // writes even when not modified

    CryptoXml back;
    back.Password(u"secret");
    ASSERT_TRUE(back.Load(Path("s.dat").c_str()));
    EXPECT_TRUE(back.String(u"/settings/name") == u"東京\t都");
    CryptoXml wrong;
    wrong.Password(u"nope");
    EXPECT_FALSE(wrong.Load(Path("s.dat").c_str()));
    mDir.Write("plain.xml", "<a>text</a>");
    EXPECT_FALSE(back.Load(Path("plain.xml").c_str()));
    CryptoXml never;
    EXPECT_FALSE(never.Save(Path("x.dat").c_str()));  // no document: false, not a throw

    std::unique_ptr<file::xml> missing(file::xml::CreateCryptoXml(Path("missing").c_str()));
    EXPECT_EQ(missing, nullptr);
    CryptoXml fixed;
    fixed.Password(u"valen");
    fixed.Initialize();
    fixed.SelectNode(u"/");
    fixed.CreateElementCurrent(u"root", u"42", false);
    fixed.Save(Path("fixed.dat").c_str());
    std::unique_ptr<file::xml> built(file::xml::CreateCryptoXml(Path("fixed.dat").c_str()));
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->Int(u"/root"), 42);
}

// ---------------------------------------------------------------- the old file survives a failed write

TEST_F(Encryption, AFailedWriteLeavesTheOldCiphertext) {
    container::buffer big(100000, true);
    ASSERT_TRUE(Crypto::Encrypt(u"pw", Path("f").c_str(), string(u"old")));
    std::string old = mDir.Read("f");
    {
        file_limit limit(4096);
        EXPECT_TRUE(Crypto::Encrypt(u"pw", Path("f").c_str(), big));  // the answer is the cipher's, as ever
    }
    EXPECT_EQ(mDir.Read("f"), old);
    EXPECT_TRUE(Crypto::Encrypt(u"pw", Path("no/such/folder/f").c_str(), big));
    for (auto const &entry : std::filesystem::directory_iterator(mDir.Path())) {
        EXPECT_EQ(entry.path().filename().string(), "f");  // no temporary left behind
    }

    CryptoXml doc;
    doc.Password(u"pw");
    doc.Initialize();
    doc.SelectNode(u"/");
    doc.CreateElementCurrent(u"settings", nullptr, true);
    ASSERT_TRUE(doc.Save(Path("s.dat").c_str()));
    std::string saved = mDir.Read("s.dat");
    for (int i = 0; i < 500; ++i) doc.CreateElement(u"/settings", u"entry", u"a value that takes room", false);
    {
        file_limit limit(1024);
        doc.Save(nullptr);
    }
    EXPECT_EQ(mDir.Read("s.dat"), saved);
}

TEST_F(Encryption, ReplacingKeepsPermissionsAndLinks) {
    ASSERT_TRUE(Crypto::Encrypt(u"pw", Path("secret").c_str(), string(u"one")));
    ::chmod(mDir.Path("secret").c_str(), 0600);
    ASSERT_EQ(::symlink("secret", mDir.Path("link").c_str()), 0);
    ASSERT_TRUE(Crypto::Encrypt(u"pw", Path("link").c_str(), string(u"two")));
    struct stat st {};
    ::lstat(mDir.Path("link").c_str(), &st);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    ::stat(mDir.Path("secret").c_str(), &st);
    EXPECT_EQ(st.st_mode & 07777, 0600u);
    string text;
    ASSERT_TRUE(Crypto::Decrypt(u"pw", Path("secret").c_str(), text));
    EXPECT_TRUE(text == u"two");
    // A read-only file is not replaced, as the platform refuses to open it for writing.
    ::chmod(mDir.Path("secret").c_str(), 0400);
    EXPECT_TRUE(Crypto::Encrypt(u"pw", Path("secret").c_str(), string(u"three")));
    ASSERT_TRUE(Crypto::Decrypt(u"pw", Path("secret").c_str(), text));
    EXPECT_TRUE(text == u"two");
}
