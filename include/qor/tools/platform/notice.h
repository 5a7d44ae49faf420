// The notice function that stands for MessageBoxW: a blocking notice to the
// user. Without a hook it shows a modal GTK message dialog when the
// application has opened a display with GTK (and the call comes from the
// thread that runs GTK's main context), and otherwise writes one line to
// standard error ("caption: text"). A hook set with SetNoticeHook replaces
// both, for tests or for the application's own notices.
#pragma once

#include "qor/tools/export.h"

#include <functional>

namespace qor::tools {

inline constexpr unsigned MB_OK = 0;
inline constexpr unsigned MB_OKCANCEL = 1;
inline constexpr unsigned MB_YESNO = 4;
inline constexpr unsigned MB_ICONERROR = 16;
inline constexpr unsigned MB_ICONQUESTION = 32;
inline constexpr unsigned MB_ICONEXCLAMATION = 48;
inline constexpr unsigned MB_ICONINFORMATION = 64;
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

using notice_hook = std::function<int(char16_t const *text, char16_t const *caption, unsigned type)>;

// Installs `hook` (an empty one restores the default) and returns the old one.
QOR_TOOLS_API notice_hook SetNoticeHook(notice_hook hook);

QOR_TOOLS_API int MessageBoxW(void *owner, char16_t const *text, char16_t const *caption, unsigned type);

}  // namespace qor::tools
