#include "shell.h"

#include <gio/gio.h>
#include <gtk/gtk.h>

#include <mutex>

#include "path.h"

namespace qor::tools::platform {

namespace {
std::mutex gChooserLock;
std::function<void(void *)> gChooserHook;
}  // namespace

bool Trash(char16_t const *path) {
    if (!path) return false;
    GFile *file = g_file_new_for_path(PathBytes(path).c_str());
    GError *error = nullptr;
    gboolean ok = g_file_trash(file, nullptr, &error);
    if (error) g_error_free(error);
    g_object_unref(file);
    return ok;
}

void SetFolderChooserHook(std::function<void(void *dialog)> hook) {
    std::lock_guard lock(gChooserLock);
    gChooserHook = std::move(hook);
}

std::u16string ChooseFolder(char16_t const *title, void *owner) {
    if (!gtk_init_check(nullptr, nullptr)) return {};
    std::string caption = PathBytes(title);
    GtkWidget *dialog = gtk_file_chooser_dialog_new(caption.c_str(), owner ? GTK_WINDOW(owner) : nullptr,
                                                    GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, "_Cancel",
                                                    GTK_RESPONSE_CANCEL, "_Select", GTK_RESPONSE_ACCEPT, nullptr);
    std::function<void(void *)> hook;
    {
        std::lock_guard lock(gChooserLock);
        hook = gChooserHook;
    }
    if (hook) hook(dialog);
    std::u16string result;
    if (gtk_dialog_run(GTK_DIALOG(dialog)) == GTK_RESPONSE_ACCEPT) {
        if (char *name = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog))) {
            result = PathText(name);
            g_free(name);
        }
    }
    gtk_widget_destroy(dialog);
    while (gtk_events_pending()) gtk_main_iteration();
    return result;
}

}  // namespace qor::tools::platform
