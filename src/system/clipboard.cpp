#include "qor/tools/system/clipboard.h"

#include "platform/desktop_clipboard.h"
#include "qor/tools/string_converter.h"
#include "utf8.h"

namespace qor::tools::system {

namespace clip = platform::clipboard;

bool clipboard::IsData(unsigned short format) {
    if (format == CF_TEXT || format == CF_UNICODETEXT) return clip::HasText();
    return format == CF_BITMAP && clip::HasImage();
}

// Through the locale's 8-bit encoding both ways, as 8-bit text goes.
string clipboard::Text() const {
    std::string utf8;
    if (!clip::GetText(utf8)) return string();
    string::converter narrow, wide;
    char const *mbcs = narrow.Mbcs(detail::ToUtf16(utf8).c_str());
    return string(wide.Unicode(mbcs));
}

bool clipboard::Text(char16_t const *text) {
    if (!text || !*text) return false;
    string::converter narrow, wide;
    return clip::PutText(detail::ToUtf8(wide.Unicode(narrow.Mbcs(text))));
}

string clipboard::Text2() const {
    std::string ignored;
    if (clip::HasText()) clip::GetText(ignored);
    return string();
}

bool clipboard::Text2(char16_t const *text) { return clip::PutText(detail::ToUtf8(text ? text : u"")); }

bool clipboard::Image(CWnd *window) { return clip::PutWidgetImage(window); }

}  // namespace qor::tools::system
