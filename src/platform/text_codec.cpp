#include "text_codec.h"

#include <iconv.h>
#include <langinfo.h>

#include <cerrno>
#include <cstring>
#include <map>

#include "../utf8.h"

namespace qor::tools::platform {

namespace {

// One descriptor per direction and codeset, per thread (iconv_t keeps state).
class converter_cache {
public:
    ~converter_cache() {
        for (auto &entry : mOpen) iconv_close(entry.second);
    }
    iconv_t Get(std::string const &to, std::string const &from) {
        std::string key = to + '\n' + from;
        auto found = mOpen.find(key);
        if (found != mOpen.end()) {
            iconv(found->second, nullptr, nullptr, nullptr, nullptr);
            return found->second;
        }
        iconv_t cd = iconv_open(to.c_str(), from.c_str());
        if (cd != iconv_t(-1)) mOpen.emplace(key, cd);
        return cd;
    }

private:
    std::map<std::string, iconv_t> mOpen;
};

thread_local converter_cache tCache;

bool IsLatin1(std::string const &codeset) {
    return codeset == "ANSI_X3.4-1968" || codeset == "ISO-8859-1" || codeset.empty();
}

}  // namespace

std::string LocaleCodeset() {
    char const *name = nl_langinfo(CODESET);
    std::string codeset = name ? name : "";
    return IsLatin1(codeset) ? "ISO-8859-1" : codeset;
}

bool LocaleToUtf16(char const *s, std::size_t n, std::u16string &out) {
    if (!s) return true;
    n = strnlen(s, n);
    if (n == 0) return true;
    std::string codeset = LocaleCodeset();
    if (IsLatin1(codeset)) {
        for (std::size_t i = 0; i < n; ++i) out.push_back(char16_t(static_cast<unsigned char>(s[i])));
        return true;
    }
    iconv_t cd = tCache.Get("UTF-16LE", codeset);
    if (cd == iconv_t(-1)) return false;
    std::size_t start = out.size();
    out.resize(start + n * 2 + 2);
    char *in = const_cast<char *>(s);
    std::size_t inLeft = n;
    char *dst = reinterpret_cast<char *>(out.data() + start);
    std::size_t outLeft = (n * 2 + 2) * sizeof(char16_t);
    std::size_t r = iconv(cd, &in, &inLeft, &dst, &outLeft);
    out.resize(start + (reinterpret_cast<char16_t *>(dst) - (out.data() + start)));
    return r != std::size_t(-1);
}

void DecodeLocale(char const *s, std::size_t n, std::u16string &out) {
    std::size_t start = out.size();
    std::string codeset = LocaleCodeset();
    if (IsLatin1(codeset)) {
        out.resize(start + n);
        for (std::size_t i = 0; i < n; ++i) out[start + i] = char16_t(static_cast<unsigned char>(s[i]));
    } else if (codeset == "UTF-8") {
        detail::Utf8ToUtf16(s, n, out);
    } else {
        iconv_t cd = tCache.Get("UTF-16LE", codeset);
        char *in = const_cast<char *>(s);
        std::size_t inLeft = n;
        while (inLeft > 0) {
            std::size_t done = out.size();
            out.resize(done + inLeft + 8);
            char *dst = reinterpret_cast<char *>(out.data() + done);
            std::size_t outLeft = (inLeft + 8) * sizeof(char16_t);
            std::size_t r = cd == iconv_t(-1) ? std::size_t(-1) : iconv(cd, &in, &inLeft, &dst, &outLeft);
            int error = cd == iconv_t(-1) ? EILSEQ : errno;
            out.resize(std::size_t(reinterpret_cast<char16_t *>(dst) - out.data()));
            if (r != std::size_t(-1) || error == E2BIG) continue;
            // An undecodable byte (or a sequence cut off at the end) stands as U+FFFD.
            out.push_back(0xFFFD);
            ++in;
            --inLeft;
            if (cd != iconv_t(-1)) iconv(cd, nullptr, nullptr, nullptr, nullptr);
        }
    }
    for (std::size_t i = start; i < out.size(); ++i) {
        if (out[i] == 0) out[i] = 0xFFFD;
    }
}

bool Utf16ToLocale(char16_t const *s, std::size_t n, std::string &out) {
    if (!s) return true;
    std::size_t len = 0;
    while (len < n && s[len]) ++len;
    if (len == 0) return true;
    std::string codeset = LocaleCodeset();
    if (IsLatin1(codeset)) {
        for (std::size_t i = 0; i < len; ++i) {
            if (s[i] > 0xFF) return false;
            out.push_back(char(s[i]));
        }
        return true;
    }
    iconv_t cd = tCache.Get(codeset, "UTF-16LE");
    if (cd == iconv_t(-1)) return false;
    std::size_t start = out.size();
    std::size_t room = len * 4 + 4;
    out.resize(start + room);
    char *in = reinterpret_cast<char *>(const_cast<char16_t *>(s));
    std::size_t inLeft = len * sizeof(char16_t);
    char *dst = out.data() + start;
    std::size_t outLeft = room;
    std::size_t r = iconv(cd, &in, &inLeft, &dst, &outLeft);
    out.resize(std::size_t(dst - out.data()));
    return r != std::size_t(-1);
}

}  // namespace qor::tools::platform
