#include "qor/tools/platform/notice.h"

#include <gtk/gtk.h>

#include <cstdio>
#include <mutex>
#include <string>

#include "../utf8.h"

namespace qor::tools {

namespace {

std::mutex gHookLock;
notice_hook gHook;

std::string Utf8(char16_t const *s) { return s ? detail::ToUtf8(s) : std::string(); }

GtkMessageType MessageType(unsigned type) {
    switch (type & 0xf0) {
        case MB_ICONERROR: return GTK_MESSAGE_ERROR;
        case MB_ICONQUESTION: return GTK_MESSAGE_QUESTION;
        case MB_ICONEXCLAMATION: return GTK_MESSAGE_WARNING;
        default: return GTK_MESSAGE_INFO;
    }
}

int Answer(unsigned type, int response) {
    switch (type & 0x0f) {
        case MB_OKCANCEL: return response == GTK_RESPONSE_OK ? IDOK : IDCANCEL;
        case MB_YESNO: return response == GTK_RESPONSE_YES ? IDYES : IDNO;
        default: return IDOK;
    }
}

// Shown when GTK has a display and this thread may run its main context;
// -1 when the notice has to go elsewhere.
int ShowDialog(void *owner, char16_t const *text, char16_t const *caption, unsigned type) {
    if (!gdk_display_get_default()) return -1;
    GMainContext *context = g_main_context_default();
    if (!g_main_context_acquire(context)) return -1;
    GtkButtonsType buttons = (type & 0x0f) == MB_OKCANCEL ? GTK_BUTTONS_OK_CANCEL
                             : (type & 0x0f) == MB_YESNO  ? GTK_BUTTONS_YES_NO
                                                          : GTK_BUTTONS_OK;
    GtkWindow *parent = owner && GTK_IS_WINDOW(owner) ? GTK_WINDOW(owner) : nullptr;
    GtkWidget *dialog = gtk_message_dialog_new(parent, GTK_DIALOG_MODAL, MessageType(type), buttons, "%s",
                                               Utf8(text).c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), Utf8(caption).c_str());
    int response = gtk_dialog_run(GTK_DIALOG(dialog));
    gtk_widget_destroy(dialog);
    g_main_context_release(context);
    return Answer(type, response);
}

}  // namespace

notice_hook SetNoticeHook(notice_hook hook) {
    std::lock_guard lock(gHookLock);
    notice_hook old = std::move(gHook);
    gHook = std::move(hook);
    return old;
}

int MessageBoxW(void *owner, char16_t const *text, char16_t const *caption, unsigned type) {
    notice_hook hook;
    {
        std::lock_guard lock(gHookLock);
        hook = gHook;
    }
    if (hook) return hook(text, caption, type);
    int answer = ShowDialog(owner, text, caption, type);
    if (answer >= 0) return answer;
    std::fprintf(stderr, "%s: %s\n", Utf8(caption).c_str(), Utf8(text).c_str());
    return IDOK;
}

}  // namespace qor::tools
