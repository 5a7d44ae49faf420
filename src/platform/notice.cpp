#include "qor/tools/platform/notice.h"

#include <cstdio>
#include <mutex>
#include <string>

#include "../utf8.h"

namespace qor::tools {

namespace {

std::mutex gHookLock;
notice_hook gHook;

std::string Utf8(char16_t const *s) { return s ? detail::ToUtf8(s) : std::string(); }

}  // namespace

notice_hook SetNoticeHook(notice_hook hook) {
    std::lock_guard lock(gHookLock);
    notice_hook old = std::move(gHook);
    gHook = std::move(hook);
    return old;
}

int MessageBoxW(void *, char16_t const *text, char16_t const *caption, unsigned type) {
    notice_hook hook;
    {
        std::lock_guard lock(gHookLock);
        hook = gHook;
    }
    if (hook) return hook(text, caption, type);
    std::fprintf(stderr, "%s: %s\n", Utf8(caption).c_str(), Utf8(text).c_str());
    return IDOK;
}

}  // namespace qor::tools
