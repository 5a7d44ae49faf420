// The platform's window and drawing handles as the library stands them in:
// a device context (HDC) is a cairo_t * and a window (HWND) a GtkWidget *.
#pragma once

#include "qor/tools/platform/cairo_fwd.h"
#include "qor/tools/platform/geometry.h"

extern "C" {
typedef struct _GtkWidget GtkWidget;
}

namespace qor::tools {

using HDC = cairo_t *;
using HWND = GtkWidget *;
using RECT = CRect;

}  // namespace qor::tools
