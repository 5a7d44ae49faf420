// The Cairo types that stand in the library's interface (a device context is
// a cairo_t *, a bitmap's pixels a cairo_surface_t *, a region a
// cairo_region_t *), declared as Cairo declares them, so that the library's
// headers do not need Cairo's. Include <cairo.h> to call Cairo on them.
#pragma once

extern "C" {
typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;
typedef struct _cairo_region cairo_region_t;
}
