// The folder chooser in a real X server (scripts/test.sh runs the suite under Xvfb).
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <sys/stat.h>

#include <cstdlib>

#include "platform/shell.h"
#include "qor/tools/file/operations.h"
#include "support/temp_dir.h"

using namespace qor::tools;

namespace {

struct answer {
    GtkWidget *mDialog;
    int mResponse;
};

gboolean Respond(gpointer data) {
    auto *a = static_cast<answer *>(data);
    gtk_dialog_response(GTK_DIALOG(a->mDialog), a->mResponse);
    return G_SOURCE_REMOVE;
}

void Drive(std::string const &folder, int response, std::string *title) {
    static answer a;
    platform::SetFolderChooserHook([=](void *dialog) {
        *title = gtk_window_get_title(GTK_WINDOW(dialog));
        gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(dialog), folder.c_str());
        a = {GTK_WIDGET(dialog), response};
        g_timeout_add(300, Respond, &a);
    });
}

}  // namespace

TEST(SelectFolder, ChooserAnswersTheChosenFolder) {
    char const *display = std::getenv("DISPLAY");
    if (!display || !*display) GTEST_SKIP() << "no display";
    qor::tools::testing::temp_dir dir;
    ::mkdir(dir.Path("chosen").c_str(), 0755);
    std::string title;
    Drive(dir.Path("chosen"), GTK_RESPONSE_ACCEPT, &title);
    string chosen = file::SelectFolder(nullptr);
    EXPECT_EQ(title, "フォルダの選択");
    EXPECT_FALSE(chosen.IsEmpty());
    EXPECT_NE(chosen.Find(dir.Wide().c_str()), -1);

    Drive(dir.Path("chosen"), GTK_RESPONSE_CANCEL, &title);
    EXPECT_TRUE(file::SelectFolder(nullptr).IsEmpty());
    platform::SetFolderChooserHook(nullptr);
}
