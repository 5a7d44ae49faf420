// The clipboard under Xvfb, read back by this process and by another one
// (xclip), as text in the locale's encoding, as UTF-16 text and as a picture
// of a window.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <clocale>
#include <string>

#include "qor/tools/system/clipboard.h"
#include "support/command.h"
#include "support/gtk_window.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class Clipboard : public ::testing::Test {
protected:
    void SetUp() override {
        std::setlocale(LC_ALL, "C.UTF-8");
        if (!gtk_init_check(nullptr, nullptr)) GTEST_SKIP() << "no display";
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

// What another program reads from the clipboard, while this one serves it.
std::string ReadByXclip(char const *target) {
    gchar *argv[] = {const_cast<gchar *>("xclip"), const_cast<gchar *>("-o"), const_cast<gchar *>("-selection"),
                     const_cast<gchar *>("clipboard"), const_cast<gchar *>("-t"), const_cast<gchar *>(target), nullptr};
    GPid pid = 0;
    gint out = -1;
    if (!g_spawn_async_with_pipes(nullptr, argv, nullptr, GSpawnFlags(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD),
                                  nullptr, nullptr, &pid, nullptr, &out, nullptr, nullptr)) {
        return "(xclip did not start)";
    }
    bool done = false;
    g_child_watch_add(pid, [](GPid p, gint, gpointer flag) {
        *static_cast<bool *>(flag) = true;
        g_spawn_close_pid(p);
    }, &done);
    std::string read;
    GIOChannel *channel = g_io_channel_unix_new(out);
    g_io_channel_set_encoding(channel, nullptr, nullptr);
    g_io_channel_set_flags(channel, G_IO_FLAG_NONBLOCK, nullptr);
    for (int i = 0; i < 1000 && !done; ++i) {
        g_main_context_iteration(nullptr, FALSE);
        char buffer[4096];
        gsize n = 0;
        while (g_io_channel_read_chars(channel, buffer, sizeof buffer, &n, nullptr) == G_IO_STATUS_NORMAL && n) read.append(buffer, n);
        g_usleep(5000);
    }
    char buffer[4096];
    gsize n = 0;
    while (g_io_channel_read_chars(channel, buffer, sizeof buffer, &n, nullptr) == G_IO_STATUS_NORMAL && n) read.append(buffer, n);
    g_io_channel_shutdown(channel, FALSE, nullptr);
    g_io_channel_unref(channel);
    return read;
}

}  // namespace

TEST_F(Clipboard, TextGoesOutAndComesBack) {
    system::clipboard clip;
    ASSERT_TRUE(clip.Text(u"写真一覧 photos"));
    EXPECT_TRUE(clip.IsData(CF_TEXT));
    EXPECT_TRUE(clip.IsData(CF_UNICODETEXT));
    EXPECT_EQ(clip.Text(), u"写真一覧 photos");
    if (qt::Have("xclip")) {
        EXPECT_EQ(ReadByXclip("UTF8_STRING"), "写真一覧 photos");
    }

    EXPECT_FALSE(clip.Text(u""));
    EXPECT_FALSE(clip.Text(nullptr));
    EXPECT_EQ(clip.Text(), u"写真一覧 photos");  // left in place
}

TEST_F(Clipboard, WideTextIsPutButText2ReadsNothing) {
    system::clipboard clip;
    ASSERT_TRUE(clip.Text2(u"半角ｶﾅ and 全角"));
    EXPECT_EQ(clip.Text2(), u"");
    EXPECT_EQ(clip.Text(), u"半角ｶﾅ and 全角");
}

TEST_F(Clipboard, AWindowGoesAsAPictureOfItsSize) {
    GtkWidget *area = qt::ShownArea(160, 90);
    system::clipboard clip;
    ASSERT_TRUE(clip.Image(area));
    EXPECT_TRUE(clip.IsData(CF_BITMAP));
    GdkPixbuf *picture = gtk_clipboard_wait_for_image(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(gdk_pixbuf_get_width(picture), 160);
    EXPECT_EQ(gdk_pixbuf_get_height(picture), 90);
    g_object_unref(picture);
    if (qt::Have("xclip")) {
        std::string png = ReadByXclip("image/png");
        ASSERT_GT(png.size(), 24u);
        EXPECT_EQ(png.substr(1, 3), "PNG");
        auto be32 = [&](std::size_t at) {
            return unsigned(static_cast<unsigned char>(png[at])) << 24 | unsigned(static_cast<unsigned char>(png[at + 1])) << 16 |
                   unsigned(static_cast<unsigned char>(png[at + 2])) << 8 | unsigned(static_cast<unsigned char>(png[at + 3]));
        };
        EXPECT_EQ(be32(16), 160u);  // the IHDR's width and height
        EXPECT_EQ(be32(20), 90u);
    }
    EXPECT_FALSE(clip.Image(nullptr));
    gtk_widget_destroy(gtk_widget_get_toplevel(area));
}
