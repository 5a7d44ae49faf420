#include "text_form.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "qor/tools/string_converter.h"

namespace qortools_registry {

using namespace qor::tools;

namespace {

root_name const kRoots[] = {
    {HKEY_CURRENT_USER, "HKEY_CURRENT_USER", "HKCU"},
    {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE", "HKLM"},
    {HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT", "HKCR"},
};

// The UTF-16 texts of a value's bytes, each with its terminator; false when
// the bytes are not such texts (`multi` allows several and the final empty one).
bool Texts(std::string const &bytes, bool multi, std::vector<std::string> &texts) {
    if (bytes.size() < 2 || bytes.size() % 2) return false;
    std::u16string units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), bytes.size());
    if (units.back() != 0) return false;
    units.pop_back();
    if (multi) {
        if (units.empty() || units.back() != 0) return false;
        units.pop_back();
    }
    std::size_t start = 0;
    for (;;) {
        std::size_t end = units.find(u'\0', start);
        if (!multi && end != std::u16string::npos) return false;
        texts.push_back(Narrow(units.substr(start, end == std::u16string::npos ? std::u16string::npos : end - start).c_str()));
        if (end == std::u16string::npos) return true;
        start = end + 1;
    }
}

std::string Bytes(std::u16string const &units) {
    return std::string(reinterpret_cast<char const *>(units.c_str()), (units.size() + 1) * 2);
}

template <typename T>
std::string Raw(T value) {
    return std::string(reinterpret_cast<char const *>(&value), sizeof value);
}

bool Hex(std::string const &text, std::string &bytes) {
    bytes.clear();
    std::size_t pos = 0;
    while (pos < text.size()) {
        unsigned byte = 0;
        int used = 0;
        if (std::sscanf(text.c_str() + pos, "%2x%n", &byte, &used) != 1 || used != 2) return false;
        bytes += char(byte);
        pos += 2;
        if (pos < text.size() && text[pos++] != ',') return false;
    }
    return true;
}

}  // namespace

std::u16string Wide(std::string const &utf8) {
    string::converter c;
    return c.Utf8(utf8.c_str());
}

std::string Narrow(char16_t const *wide) {
    string::converter c;
    return c.Utf8(wide);
}

root_name const *RootByName(std::string const &name) {
    for (root_name const &r : kRoots) {
        if (name == r.mLong || name == r.mShort) return &r;
    }
    return nullptr;
}

root_name const &RootOf(HKEY key) {
    for (root_name const &r : kRoots) {
        if (r.mKey == key) return r;
    }
    return kRoots[0];
}

std::string Quoted(std::string const &utf8) {
    std::string out = "\"";
    for (char c : utf8) {
        if (c == '"' || c == '\\') out += '\\';
        if (c == '\n') {
            out += "\\n";
            continue;
        }
        out += c;
    }
    return out + '"';
}

bool Unquote(std::string const &line, std::size_t &pos, std::string &utf8) {
    if (pos >= line.size() || line[pos] != '"') return false;
    utf8.clear();
    for (++pos; pos < line.size(); ++pos) {
        char c = line[pos];
        if (c == '"') {
            ++pos;
            return true;
        }
        if (c == '\\' && pos + 1 < line.size()) {
            c = line[++pos];
            if (c == 'n') c = '\n';
        }
        utf8 += c;
    }
    return false;
}

std::string ValueText(DWORD type, std::string const &bytes) {
    std::vector<std::string> texts;
    if (type == REG_DWORD && bytes.size() == 4) {
        std::uint32_t v;
        std::memcpy(&v, bytes.data(), 4);
        return "dword:" + std::to_string(v);
    }
    if (type == REG_QWORD && bytes.size() == 8) {
        std::uint64_t v;
        std::memcpy(&v, bytes.data(), 8);
        return "qword:" + std::to_string(v);
    }
    if ((type == REG_SZ || type == REG_EXPAND_SZ) && Texts(bytes, false, texts)) {
        return std::string(type == REG_SZ ? "sz:" : "expand_sz:") + Quoted(texts[0]);
    }
    if (type == REG_MULTI_SZ && Texts(bytes, true, texts)) {
        std::string out = "multi_sz:";
        for (std::size_t i = 0; i < texts.size(); ++i) out += (i ? "," : "") + Quoted(texts[i]);
        return out;
    }
    std::string out = "hex(" + std::to_string(type) + "):";
    char digits[4];
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(digits, sizeof digits, i ? ",%02x" : "%02x", unsigned(static_cast<unsigned char>(bytes[i])));
        out += digits;
    }
    return out;
}

bool ParseValue(std::string const &text, DWORD &type, std::string &bytes) {
    std::size_t colon = text.find(':');
    if (colon == std::string::npos) return false;
    std::string kind = text.substr(0, colon), rest = text.substr(colon + 1);
    char *end = nullptr;
    if (kind == "dword" || kind == "qword") {
        unsigned long long v = std::strtoull(rest.c_str(), &end, 0);
        if (rest.empty() || *end) return false;
        type = kind == "dword" ? REG_DWORD : REG_QWORD;
        bytes = kind == "dword" ? Raw(std::uint32_t(v)) : Raw(std::uint64_t(v));
        return kind == "qword" || v <= 0xffffffffull;
    }
    if (kind == "sz" || kind == "expand_sz" || kind == "multi_sz") {
        type = kind == "sz" ? REG_SZ : kind == "expand_sz" ? REG_EXPAND_SZ : REG_MULTI_SZ;
        std::u16string units;
        std::size_t pos = 0;
        std::string one;
        do {
            if (!Unquote(rest, pos, one)) return false;
            units += Wide(one);
            units += u'\0';
        } while (type == REG_MULTI_SZ && pos < rest.size() && rest[pos++] == ',');
        if (pos != rest.size()) return false;
        units.pop_back();
        if (type == REG_MULTI_SZ) units += u'\0';
        bytes = Bytes(units);
        return true;
    }
    if (kind.rfind("hex(", 0) == 0 && kind.back() == ')') {
        unsigned long v = std::strtoul(kind.c_str() + 4, &end, 10);
        if (*end != ')') return false;
        type = DWORD(v);
        return Hex(rest, bytes);
    }
    return false;
}

}  // namespace qortools_registry
