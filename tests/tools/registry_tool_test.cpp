// qortools-registry, run as an administrator would: values of every kind
// exported as text, imported under another root byte for byte, read, set,
// listed and deleted; a malformed line is refused with its number.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "qor/tools/system/registry.h"
#include "support/command.h"
#include "support/temp_dir.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;
using reg = system::registry;

namespace {

class RegistryTool : public ::testing::Test {
protected:
    void SetUp() override { ::setenv("QORTOOLS_REGISTRY_DIR", mDir.Path().c_str(), 1); }
    void TearDown() override { ::unsetenv("QORTOOLS_REGISTRY_DIR"); }
    std::string Run(std::string const &arguments) {
        return qt::Output("QORTOOLS_REGISTRY_DIR=" + mDir.Path() + " " + QORTOOLS_REGISTRY_TOOL + " " + arguments);
    }
    int Status(std::string const &arguments) {
        return std::system(("QORTOOLS_REGISTRY_DIR=" + mDir.Path() + " " + QORTOOLS_REGISTRY_TOOL + " " + arguments +
                            " >/dev/null 2>&1").c_str());
    }
    qt::temp_dir mDir;
};

std::string Bytes(HKEY root, char16_t const *path, char16_t const *name, DWORD &type) {
    reg key(root, path, false);
    DWORD size = 0;
    if (RegQueryValueExW(key.mKey, name, nullptr, &type, nullptr, &size) != 0) return "(missing)";
    std::string bytes(size, '\0');
    RegQueryValueExW(key.mKey, name, nullptr, &type, reinterpret_cast<std::uint8_t *>(bytes.data()), &size);
    return bytes;
}

}  // namespace

TEST_F(RegistryTool, ExportAndImportCarryEveryValueExactly) {
    char16_t const *app = u"Software\\App";
    reg key(HKEY_CURRENT_USER, app, true);
    key.Set(u"Width", reg::data(1024));
    key.Set(u"Title", reg::data(u"写真 \"一覧\"\n二行目"));
    key.Set(u"Narrow", reg::data("8-bit"));  // not UTF-16: goes as hex
    key.Set(u"Scale", reg::data(0.75));
    key.Set(u"Big", reg::data(1LL << 40));
    char16_t const multi[] = u"/a\0/b\0";
    RegSetValueExW(key.mKey, u"Paths", 0, REG_MULTI_SZ, reinterpret_cast<std::uint8_t const *>(multi), sizeof multi);
    reg::SetText(HKEY_CURRENT_USER, u"Software\\App\\Sub", u"Leaf", u"葉");

    std::string text = Run("export Software");
    EXPECT_NE(text.find("[HKEY_CURRENT_USER\\Software\\App]\n\"Width\"=dword:1024\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\"Title\"=sz:\"写真 \\\"一覧\\\"\\n二行目\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"Paths\"=multi_sz:\"/a\",\"/b\""), std::string::npos) << text;
    EXPECT_NE(text.find("[HKEY_CURRENT_USER\\Software\\App\\Sub]\n\"Leaf\"=sz:\"葉\""), std::string::npos) << text;

    std::string moved = text;
    for (std::size_t at; (at = moved.find("HKEY_CURRENT_USER")) != std::string::npos;) moved.replace(at, 17, "HKEY_LOCAL_MACHINE");
    std::ofstream(mDir.Path("moved.txt")) << moved;
    ASSERT_EQ(Status("import " + mDir.Path("moved.txt")), 0);
    for (char16_t const *name : {u"Width", u"Title", u"Narrow", u"Scale", u"Big", u"Paths"}) {
        DWORD a = 0, b = 0;
        EXPECT_EQ(Bytes(HKEY_CURRENT_USER, app, name, a), Bytes(HKEY_LOCAL_MACHINE, app, name, b));
        EXPECT_EQ(a, b);
    }
    EXPECT_EQ(reg::GetText(HKEY_LOCAL_MACHINE, u"Software\\App\\Sub", u"Leaf", u""), u"葉");
}

TEST_F(RegistryTool, ReadsSetsListsAndDeletes) {
    EXPECT_EQ(Status("set 'Software\\App' Count dword:7"), 0);
    EXPECT_EQ(reg::GetInteger(HKEY_CURRENT_USER, u"Software\\App", u"Count", 0), 7);
    EXPECT_EQ(Run("get 'Software\\App' count"), "dword:7\n");
    EXPECT_EQ(Status("set 'Software\\App\\Child' Name 'sz:\"x\"'"), 0);
    EXPECT_EQ(Run("list 'Software\\App'"), "Child\\\nCount\n");
    EXPECT_NE(Status("delete 'Software'"), 0);  // it has subkeys
    EXPECT_EQ(Status("delete 'Software\\App' Count"), 0);
    EXPECT_NE(Status("get 'Software\\App' Count"), 0);
    EXPECT_NE(Status("set 'Software\\App' Bad dword:notanumber"), 0);
    EXPECT_NE(Status("--root HKXX list"), 0);
}

TEST_F(RegistryTool, AMalformedImportNamesItsLine) {
    std::ofstream(mDir.Path("bad.txt")) << "[HKEY_CURRENT_USER\\Software\\Good]\n\"a\"=dword:1\n\"b\"=nonsense\n";
    EXPECT_NE(Status("import " + mDir.Path("bad.txt")), 0);
    std::string errors = qt::Output("(QORTOOLS_REGISTRY_DIR=" + mDir.Path() + " " + QORTOOLS_REGISTRY_TOOL + " import " +
                                    mDir.Path("bad.txt") + " 2>&1 >/dev/null)");
    EXPECT_EQ(errors, "line 3: not a value\n");
    EXPECT_EQ(reg::GetInteger(HKEY_CURRENT_USER, u"Software\\Good", u"a", 0), 1);  // the good lines went in
}
