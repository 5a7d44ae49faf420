// Export and import of the text form over the registry calls.
#include <vector>

#include "text_form.h"

namespace qortools_registry {

using namespace qor::tools;

namespace {

bool ExportKey(HKEY root, std::string const &path, std::ostream &out) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, Wide(path).c_str(), 0, KEY_READ, &key) != 0) return false;
    out << '[' << RootOf(root).mLong << (path.empty() ? "" : "\\") << path << "]\n";
    std::vector<char16_t> name(16384);
    for (DWORD i = 0;; ++i) {
        DWORD length = DWORD(name.size()), type = 0, size = 0;
        if (RegEnumValueW(key, i, name.data(), &length, nullptr, &type, nullptr, &size) != 0) break;
        std::string bytes(size, '\0');
        length = DWORD(name.size());
        RegEnumValueW(key, i, name.data(), &length, nullptr, &type, reinterpret_cast<std::uint8_t *>(bytes.data()), &size);
        out << Quoted(Narrow(name.data())) << '=' << ValueText(type, bytes) << '\n';
    }
    out << '\n';
    std::vector<std::string> children;
    for (DWORD i = 0;; ++i) {
        DWORD length = DWORD(name.size());
        if (RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
        children.push_back(Narrow(name.data()));
    }
    RegCloseKey(key);
    for (std::string const &child : children) ExportKey(root, path.empty() ? child : path + "\\" + child, out);
    return true;
}

}  // namespace

bool Export(HKEY root, std::string const &path, std::ostream &out) { return ExportKey(root, path, out); }

int Import(std::istream &in, std::ostream &errors) {
    HKEY key = nullptr;
    std::string line;
    int number = 0, failed = 0;
    auto fail = [&](char const *why) {
        errors << "line " << number << ": " << why << '\n';
        if (!failed) failed = number;
    };
    while (std::getline(in, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == ';') continue;
        if (line[0] == '[' && line.back() == ']') {
            if (key) RegCloseKey(key);
            key = nullptr;
            std::string full = line.substr(1, line.size() - 2);
            std::size_t slash = full.find('\\');
            root_name const *root = RootByName(full.substr(0, slash));
            std::string path = slash == std::string::npos ? "" : full.substr(slash + 1);
            if (!root) {
                fail("unknown root");
            } else if (RegCreateKeyExW(root->mKey, Wide(path).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                       nullptr) != 0) {
                fail("the key cannot be made");
            }
            continue;
        }
        std::size_t pos = 0;
        std::string name, bytes;
        DWORD type = 0;
        if (!Unquote(line, pos, name) || pos >= line.size() || line[pos] != '=' ||
            !ParseValue(line.substr(pos + 1), type, bytes)) {
            fail("not a value");
            continue;
        }
        if (!key) {
            fail("a value before any key");
            continue;
        }
        if (RegSetValueExW(key, Wide(name).c_str(), 0, type, reinterpret_cast<std::uint8_t const *>(bytes.data()),
                           DWORD(bytes.size())) != 0) {
            fail("the value cannot be written");
        }
    }
    if (key) RegCloseKey(key);
    return failed;
}

}  // namespace qortools_registry
