#include "widget_present.h"

#include <gtk/gtk.h>

#include <algorithm>

namespace qor::tools::platform {

void PresentOnWidget(GtkWidget *widget, cairo_surface_t *surface) {
    GdkWindow *window = gtk_widget_get_window(widget);
    if (!window || !gtk_widget_get_mapped(widget)) return;
    cairo_rectangle_int_t area{0, 0, gtk_widget_get_allocated_width(widget), gtk_widget_get_allocated_height(widget)};
    cairo_region_t *region = cairo_region_create_rectangle(&area);
    GdkDrawingContext *frame = gdk_window_begin_draw_frame(window, region);
    cairo_t *cr = gdk_drawing_context_get_cairo_context(frame);
    cairo_save(cr);
    cairo_set_source_surface(cr, surface, 0, 0);
    cairo_paint(cr);
    cairo_restore(cr);
    gdk_window_end_draw_frame(window, frame);
    cairo_region_destroy(region);
}

void WidgetSize(GtkWidget *widget, int &width, int &height) {
    width = std::max(1, gtk_widget_get_allocated_width(widget));
    height = std::max(1, gtk_widget_get_allocated_height(widget));
}

}  // namespace qor::tools::platform
