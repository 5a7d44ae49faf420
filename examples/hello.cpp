// A first look at QorTools: UTF-16 text and the library's exception.
#include <qor/tools.h>

#include <cstdio>
#include <string>

namespace {

std::string Utf8(qor::tools::string const &s) {
    std::string out;
    for (char16_t const *p = s.Safe(); *p; ++p) {
        char32_t c = *p;
        if (c < 0x80) {
            out += char(c);
        } else if (c < 0x800) {
            out += char(0xC0 | (c >> 6));
            out += char(0x80 | (c & 0x3F));
        } else {
            out += char(0xE0 | (c >> 12));
            out += char(0x80 | ((c >> 6) & 0x3F));
            out += char(0x80 | (c & 0x3F));
        }
    }
    return out;
}

}  // namespace

int main() {
    using qor::tools::string;
    string greeting(u"こんにちは、世界");
    string copy = greeting;
    copy.Replace(u"世界", u"QorTools");
    std::printf("%s -> %s\n", Utf8(greeting).c_str(), Utf8(copy).c_str());

    string price;
    price.FormatD(u"***,***,**9", 1234567.0, true);
    std::printf("FormatD: %s\n", Utf8(price).c_str());

    try {
        throw qor::tools::exception(u"file %s not found", u"設定.xml");
    } catch (qor::tools::exception const &e) {
        std::printf("caught: %s (code %d)\n", Utf8(e.mMessage).c_str(), e.mCode);
    }
    return 0;
}
