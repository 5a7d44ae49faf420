#include "desktop_clipboard.h"

#include <gtk/gtk.h>

namespace qor::tools::platform::clipboard {

namespace {

GtkClipboard *Desktop() {
    if (!gtk_init_check(nullptr, nullptr)) return nullptr;
    return gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
}

}  // namespace

bool PutText(std::string const &utf8) {
    GtkClipboard *board = Desktop();
    if (!board) return false;
    gtk_clipboard_set_text(board, utf8.data(), gint(utf8.size()));
    return true;
}

bool GetText(std::string &utf8) {
    GtkClipboard *board = Desktop();
    if (!board) return false;
    gchar *text = gtk_clipboard_wait_for_text(board);
    if (!text) return false;
    utf8 = text;
    g_free(text);
    return true;
}

bool HasText() {
    GtkClipboard *board = Desktop();
    return board && gtk_clipboard_wait_is_text_available(board);
}

bool HasImage() {
    GtkClipboard *board = Desktop();
    return board && gtk_clipboard_wait_is_image_available(board);
}

bool PutWidgetImage(GtkWidget *widget) {
    GtkClipboard *board = Desktop();
    if (!board || !widget || !GTK_IS_WIDGET(widget)) return false;
    int width = gtk_widget_get_allocated_width(widget), height = gtk_widget_get_allocated_height(widget);
    if (width < 1 || height < 1) return false;
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t *cr = cairo_create(surface);
    gtk_widget_draw(widget, cr);
    cairo_destroy(cr);
    GdkPixbuf *picture = gdk_pixbuf_get_from_surface(surface, 0, 0, width, height);
    cairo_surface_destroy(surface);
    if (!picture) return false;
    gtk_clipboard_set_image(board, picture);
    g_object_unref(picture);
    return true;
}

}  // namespace qor::tools::platform::clipboard
