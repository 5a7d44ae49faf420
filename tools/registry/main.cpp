// qortools-registry: reads and fixes what applications keep in the registry
// store, without writing code.
//
//   qortools-registry [--root HKCU|HKLM|HKCR] list [PATH]
//   qortools-registry [--root ...] get PATH NAME
//   qortools-registry [--root ...] set PATH NAME VALUE      (VALUE as exported: dword:5, sz:"text", ...)
//   qortools-registry [--root ...] delete PATH [NAME]       (a key only when it has no subkeys)
//   qortools-registry [--root ...] export [PATH]            (the key and all below it, to standard output)
//   qortools-registry import [FILE]                         (standard input without FILE)
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "text_form.h"

using namespace qor::tools;
using namespace qortools_registry;

namespace {

int Usage() {
    std::cerr << "usage: qortools-registry [--root HKCU|HKLM|HKCR] list|get|set|delete|export [PATH [NAME [VALUE]]]\n"
                 "       qortools-registry import [FILE]\n";
    return 2;
}

int Failed(char const *what, LSTATUS status) {
    std::cerr << "qortools-registry: " << what << " (error " << status << ")\n";
    return 1;
}

int List(HKEY root, std::string const &path) {
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExW(root, Wide(path).c_str(), 0, KEY_READ, &key);
    if (status != 0) return Failed("no such key", status);
    std::vector<char16_t> name(16384);
    for (DWORD i = 0;; ++i) {
        DWORD length = DWORD(name.size());
        if (RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
        std::cout << Narrow(name.data()) << "\\\n";
    }
    for (DWORD i = 0;; ++i) {
        DWORD length = DWORD(name.size()), type = 0, size = 0;
        if (RegEnumValueW(key, i, name.data(), &length, nullptr, &type, nullptr, &size) != 0) break;
        std::cout << Narrow(name.data()) << '\n';
    }
    RegCloseKey(key);
    return 0;
}

int Get(HKEY root, std::string const &path, std::string const &name) {
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExW(root, Wide(path).c_str(), 0, KEY_READ, &key);
    if (status != 0) return Failed("no such key", status);
    DWORD type = 0, size = 0;
    std::u16string wide = Wide(name);
    status = RegQueryValueExW(key, wide.c_str(), nullptr, &type, nullptr, &size);
    std::string bytes(size, '\0');
    if (status == 0) {
        status = RegQueryValueExW(key, wide.c_str(), nullptr, &type, reinterpret_cast<std::uint8_t *>(bytes.data()), &size);
    }
    RegCloseKey(key);
    if (status != 0) return Failed("no such value", status);
    std::cout << ValueText(type, bytes) << '\n';
    return 0;
}

int Set(HKEY root, std::string const &path, std::string const &name, std::string const &text) {
    DWORD type = 0;
    std::string bytes;
    if (!ParseValue(text, type, bytes)) return Failed("not a value (dword:5, sz:\"text\", hex(3):00,ff, ...)", 0);
    HKEY key = nullptr;
    LSTATUS status = RegCreateKeyExW(root, Wide(path).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (status != 0) return Failed("the key cannot be made", status);
    status = RegSetValueExW(key, Wide(name).c_str(), 0, type, reinterpret_cast<std::uint8_t const *>(bytes.data()),
                            DWORD(bytes.size()));
    RegCloseKey(key);
    return status == 0 ? 0 : Failed("the value cannot be written", status);
}

int Delete(HKEY root, std::string const &path, std::string const *name) {
    if (!name) {
        std::size_t slash = path.rfind('\\');
        std::string parent = slash == std::string::npos ? "" : path.substr(0, slash);
        std::string leaf = slash == std::string::npos ? path : path.substr(slash + 1);
        HKEY key = nullptr;
        LSTATUS status = RegOpenKeyExW(root, Wide(parent).c_str(), 0, KEY_ALL_ACCESS, &key);
        if (status == 0) status = RegDeleteKeyW(key, Wide(leaf).c_str());
        if (key) RegCloseKey(key);
        return status == 0 ? 0 : Failed("the key cannot be deleted", status);
    }
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExW(root, Wide(path).c_str(), 0, KEY_ALL_ACCESS, &key);
    if (status == 0) status = RegDeleteValueW(key, Wide(*name).c_str());
    if (key) RegCloseKey(key);
    return status == 0 ? 0 : Failed("the value cannot be deleted", status);
}

}  // namespace

int main(int argc, char **argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    HKEY root = HKEY_CURRENT_USER;
    if (args.size() >= 2 && args[0] == "--root") {
        root_name const *named = RootByName(args[1]);
        if (!named) return Usage();
        root = named->mKey;
        args.erase(args.begin(), args.begin() + 2);
    }
    if (args.empty()) return Usage();
    std::string command = args[0];
    std::string path = args.size() > 1 ? args[1] : "";
    if (command == "list") return List(root, path);
    if (command == "export") return Export(root, path, std::cout) ? 0 : Failed("no such key", 0);
    if (command == "get" && args.size() == 3) return Get(root, path, args[2]);
    if (command == "set" && args.size() == 4) return Set(root, path, args[2], args[3]);
    if (command == "delete" && (args.size() == 2 || args.size() == 3)) {
        return Delete(root, path, args.size() == 3 ? &args[2] : nullptr);
    }
    if (command == "import" && args.size() <= 2) {
        std::ifstream file;
        if (args.size() == 2) {
            file.open(args[1]);
            if (!file) return Failed("the file cannot be read", 0);
        }
        return Import(args.size() == 2 ? file : std::cin, std::cerr) ? 1 : 0;
    }
    return Usage();
}
