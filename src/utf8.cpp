#include "utf8.h"

namespace qor::tools::detail {

namespace {

void PutUtf16(char32_t c, std::u16string &out) {
    if (c < 0x10000) {
        out.push_back(char16_t(c));
        return;
    }
    c -= 0x10000;
    out.push_back(char16_t(0xD800 + (c >> 10)));
    out.push_back(char16_t(0xDC00 + (c & 0x3FF)));
}

}  // namespace

void Utf8ToUtf16(char const *s, std::size_t n, std::u16string &out, ill_formed mode) {
    auto const *p = reinterpret_cast<unsigned char const *>(s);
    out.reserve(out.size() + n);
    std::size_t i = 0;
    while (i < n) {
        unsigned char b = p[i];
        if (b < 0x80) {
            out.push_back(b);
            ++i;
            continue;
        }
        int length = 0;
        char32_t c = 0;
        unsigned char low = 0x80, high = 0xBF;
        if (b >= 0xC2 && b <= 0xDF) { length = 2; c = b & 0x1F; }
        else if (b >= 0xE0 && b <= 0xEF) {
            length = 3; c = b & 0x0F;
            if (b == 0xE0) low = 0xA0;
            if (b == 0xED) high = 0x9F;
        } else if (b >= 0xF0 && b <= 0xF4) {
            length = 4; c = b & 0x07;
            if (b == 0xF0) low = 0x90;
            if (b == 0xF4) high = 0x8F;
        }
        if (length == 0) {
            out.push_back(mode == ill_formed::escape ? char16_t(0xDC00 + b) : char16_t(0xFFFD));
            ++i;
            continue;
        }
        std::size_t k = 1;
        for (; k < std::size_t(length) && i + k < n; ++k) {
            unsigned char t = p[i + k];
            if (t < low || t > high) break;
            c = (c << 6) | (t & 0x3F);
            low = 0x80;
            high = 0xBF;
        }
        if (k == std::size_t(length)) {
            PutUtf16(c, out);
        } else if (mode == ill_formed::escape) {
            for (std::size_t j = 0; j < k; ++j) out.push_back(char16_t(0xDC00 + p[i + j]));
        } else {
            out.push_back(0xFFFD);
        }
        i += k;
    }
}

void Utf16ToUtf8(char16_t const *s, std::size_t n, std::string &out, ill_formed mode) {
    out.reserve(out.size() + n * 3);
    for (std::size_t i = 0; i < n; ++i) {
        char32_t c = s[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (s[++i] - 0xDC00);
        } else if (mode == ill_formed::escape && c >= 0xDC80 && c <= 0xDCFF) {
            out.push_back(char(c - 0xDC00));
            continue;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = 0xFFFD;
        }
        if (c < 0x80) {
            out.push_back(char(c));
        } else if (c < 0x800) {
            out.push_back(char(0xC0 | (c >> 6)));
            out.push_back(char(0x80 | (c & 0x3F)));
        } else if (c < 0x10000) {
            out.push_back(char(0xE0 | (c >> 12)));
            out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(char(0x80 | (c & 0x3F)));
        } else {
            out.push_back(char(0xF0 | (c >> 18)));
            out.push_back(char(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(char(0x80 | (c & 0x3F)));
        }
    }
}

std::string ToUtf8(std::u16string_view s) {
    std::string out;
    Utf16ToUtf8(s.data(), s.size(), out);
    return out;
}

std::u16string ToUtf16(std::string_view s) {
    std::u16string out;
    Utf8ToUtf16(s.data(), s.size(), out);
    return out;
}

}  // namespace qor::tools::detail
