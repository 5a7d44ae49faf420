// The notice function that stands for MessageBoxW: a blocking notice to the
// user. Without a hook it writes one line to standard error ("caption: text").
// Tests and applications replace it with SetNoticeHook, to assert or show it.
#pragma once

#include "qor/tools/export.h"

#include <functional>

namespace qor::tools {

inline constexpr unsigned MB_ICONERROR = 16;
inline constexpr unsigned MB_ICONEXCLAMATION = 48;
inline constexpr int IDOK = 1;

using notice_hook = std::function<int(char16_t const *text, char16_t const *caption, unsigned type)>;

// Installs `hook` (an empty one restores the default) and returns the old one.
QOR_TOOLS_API notice_hook SetNoticeHook(notice_hook hook);

QOR_TOOLS_API int MessageBoxW(void *owner, char16_t const *text, char16_t const *caption, unsigned type);

}  // namespace qor::tools
