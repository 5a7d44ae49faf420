// The notice: a modal GTK message dialog once the application has opened a
// display (answered here from a timeout, as a person would click), one line
// on standard error before that, and the hook in place of both.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <string>

#include "qor/tools/platform/notice.h"

using namespace qor::tools;

namespace {

struct seen {
    std::string mText;
    std::string mTitle;
    GtkResponseType mAnswer;
};

// Finds the shown message dialog, notes what it says and answers it.
gboolean AnswerDialog(gpointer data) {
    auto *s = static_cast<seen *>(data);
    GList *windows = gtk_window_list_toplevels();
    for (GList *w = windows; w; w = w->next) {
        if (!GTK_IS_MESSAGE_DIALOG(w->data) || !gtk_widget_get_visible(GTK_WIDGET(w->data))) continue;
        gchar *text = nullptr;
        g_object_get(w->data, "text", &text, nullptr);
        s->mText = text ? text : "";
        g_free(text);
        s->mTitle = gtk_window_get_title(GTK_WINDOW(w->data));
        gtk_dialog_response(GTK_DIALOG(w->data), s->mAnswer);
        g_list_free(windows);
        return G_SOURCE_REMOVE;
    }
    g_list_free(windows);
    return G_SOURCE_CONTINUE;
}

}  // namespace

TEST(Notice, WithoutADisplayItIsOneLineOnStandardError) {
    ASSERT_EQ(gdk_display_get_default(), nullptr);  // this test runs before GTK is initialised
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxW(nullptr, u"接続できません", u"SQL", MB_ICONERROR), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "SQL: 接続できません\n");
}

TEST(Notice, WithADisplayItIsADialogThatWaitsForTheAnswer) {
    if (!gtk_init_check(nullptr, nullptr)) GTEST_SKIP() << "no display";
    seen ok{{}, {}, GTK_RESPONSE_OK};
    g_timeout_add(50, AnswerDialog, &ok);
    EXPECT_EQ(MessageBoxW(nullptr, u"保存しました", u"class::watch", MB_ICONEXCLAMATION), IDOK);
    EXPECT_EQ(ok.mText, "保存しました");
    EXPECT_EQ(ok.mTitle, "class::watch");

    seen no{{}, {}, GTK_RESPONSE_NO};
    g_timeout_add(50, AnswerDialog, &no);
    EXPECT_EQ(MessageBoxW(nullptr, u"Replace?", u"Files", MB_YESNO | MB_ICONQUESTION), IDNO);
}

TEST(Notice, TheHookTakesThePlaceOfTheDialog) {
    std::u16string text;
    notice_hook old = SetNoticeHook([&](char16_t const *t, char16_t const *, unsigned) {
        text = t;
        return IDCANCEL;
    });
    EXPECT_EQ(MessageBoxW(nullptr, u"hooked", u"caption", MB_OKCANCEL), IDCANCEL);
    EXPECT_EQ(text, u"hooked");
    SetNoticeHook(old);
}
