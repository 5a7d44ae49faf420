#include "profile.h"

#include <cstring>

#include "../text_case.h"
#include "../utf8.h"
#include "file_io.h"

namespace qor::tools::platform {

namespace {

std::u16string Trim(std::u16string const &s) {
    std::size_t first = s.find_first_not_of(u" \t\r");
    if (first == std::u16string::npos) return {};
    std::size_t last = s.find_last_not_of(u" \t\r");
    return s.substr(first, last - first + 1);
}

std::u16string Text(std::string const &bytes) {
    std::u16string text;
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF && static_cast<unsigned char>(bytes[1]) == 0xFE) {
        text.resize((bytes.size() - 2) / 2);
        std::memcpy(text.data(), bytes.data() + 2, text.size() * 2);
        return text;
    }
    std::size_t skip = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    detail::Utf8ToUtf16(bytes.data() + skip, bytes.size() - skip, text);
    return text;
}

}  // namespace

std::u16string GetPrivateProfileString(char16_t const *section, char16_t const *key, char16_t const *fallback,
                                       char16_t const *path, int size) {
    std::u16string result = fallback ? fallback : u"";
    std::string bytes;
    if (path && ReadFile(path, bytes) && section && key) {
        std::u16string text = Text(bytes), wantedSection = detail::AsciiLower(section), wantedKey = detail::AsciiLower(key);
        bool inSection = false;
        for (std::size_t at = 0; at <= text.size();) {
            std::size_t end = text.find(u'\n', at);
            if (end == std::u16string::npos) end = text.size();
            std::u16string line = Trim(text.substr(at, end - at));
            at = end + 1;
            if (line.empty() || line[0] == u';' || line[0] == u'#') continue;
            if (line[0] == u'[') {
                std::size_t close = line.find(u']');
                inSection = close != std::u16string::npos && detail::AsciiLower(Trim(line.substr(1, close - 1))) == wantedSection;
                continue;
            }
            std::size_t equals = line.find(u'=');
            if (!inSection || equals == std::u16string::npos) continue;
            if (detail::AsciiLower(Trim(line.substr(0, equals))) != wantedKey) continue;
            result = Trim(line.substr(equals + 1));
            if (result.size() >= 2 && result.front() == u'"' && result.back() == u'"') result = result.substr(1, result.size() - 2);
            break;
        }
    }
    if (size > 0 && result.size() > std::size_t(size - 1)) result.resize(std::size_t(size - 1));
    return result;
}

}  // namespace qor::tools::platform
