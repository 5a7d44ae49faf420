// Real GTK windows for the tests that draw on screen (scripts/test.sh runs
// the suite under Xvfb): a shown drawing area, waiting for GTK to settle,
// and pixels of a screenshot.
#pragma once

#include <gtk/gtk.h>

#include <cstdint>

namespace qor::tools::testing {

// A window with a drawing area of `width` by `height`, shown and mapped;
// `draw`, if given, is connected to the area's draw signal first.
inline GtkWidget *ShownArea(int width, int height, GCallback draw = nullptr, gpointer data = nullptr) {
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget *area = gtk_drawing_area_new();
    gtk_widget_set_size_request(area, width, height);
    if (draw) g_signal_connect(area, "draw", draw, data);
    gtk_container_add(GTK_CONTAINER(window), area);
    gtk_widget_show_all(window);
    for (int i = 0; i < 200 && !gtk_widget_get_mapped(area); ++i) g_main_context_iteration(nullptr, TRUE);
    while (g_main_context_pending(nullptr)) g_main_context_iteration(nullptr, FALSE);
    return area;
}

inline void Settle() {
    for (int i = 0; i < 20; ++i) {
        while (g_main_context_pending(nullptr)) g_main_context_iteration(nullptr, FALSE);
        g_usleep(10000);
    }
}

// 0xRRGGBB of a pixel of a screenshot.
inline std::uint32_t ScreenPixel(GdkPixbuf *shot, int x, int y) {
    guchar const *p = gdk_pixbuf_get_pixels(shot) + y * gdk_pixbuf_get_rowstride(shot) + x * gdk_pixbuf_get_n_channels(shot);
    return std::uint32_t(p[0]) << 16 | std::uint32_t(p[1]) << 8 | p[2];
}

}  // namespace qor::tools::testing
