// Showing an off-screen picture on a GTK widget outside its draw signal:
// painted over the widget's window through a drawing frame, now.
#pragma once

#include <cairo.h>

#include "qor/tools/platform/handles.h"

namespace qor::tools::platform {

// Nothing happens when the widget has no window or is not mapped.
void PresentOnWidget(GtkWidget *widget, cairo_surface_t *surface);

// The widget's allocated size, at least one pixel each way.
void WidgetSize(GtkWidget *widget, int &width, int &height);

}  // namespace qor::tools::platform
