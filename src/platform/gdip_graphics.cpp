// Making graphics on windows, contexts and bitmaps, and their state: world
// transform, clip, smoothing, resolution, and lending the context for calls
// made on it directly.
#include "gdip_graphics.h"

#include <gtk/gtk.h>

#include <new>

#include "widget_present.h"

namespace qor::tools::Gdiplus {

namespace {

Status Made(GpGraphics *made, GpGraphics **graphics) {
    *graphics = made;
    return made ? Ok : OutOfMemory;
}

// Drawn on a window: shown now and whenever it is flushed.
void Show(GpGraphics &graphics) {
    if (graphics.mWidget) platform::PresentOnWidget(graphics.mWidget, cairo_get_target(graphics.mCr));
}

Status Transformed(GpGraphics *graphics, cairo_matrix_t const &op, INT order) {
    if (!graphics) return InvalidParameter;
    cairo_matrix_t result;
    if (order == 0) {
        cairo_matrix_multiply(&result, &op, &graphics->mWorld);
    } else {
        cairo_matrix_multiply(&result, &graphics->mWorld, &op);
    }
    graphics->mWorld = result;
    return Ok;
}

}  // namespace

GpGraphics::GpGraphics(cairo_t *cr, double dpiX, double dpiY) : mCr(cairo_reference(cr)), mDpiX(dpiX), mDpiY(dpiY) {
    cairo_get_matrix(mCr, &mBase);
    cairo_matrix_init_identity(&mWorld);
}

GpGraphics::~GpGraphics() {
    if (mLent) cairo_restore(mCr);
    Show(*this);
    if (mWidget) g_object_remove_weak_pointer(G_OBJECT(mWidget), reinterpret_cast<gpointer *>(&mWidget));
    cairo_destroy(mCr);
}

drawing::drawing(GpGraphics *graphics, bool paints) : mGraphics(graphics), mStatus(Ok), mPaints(paints) {
    if (!graphics) {
        mStatus = InvalidParameter;
        return;
    }
    if (graphics->mLent) {
        mStatus = ObjectBusy;
        return;
    }
    cairo_t *cr = graphics->mCr;
    cairo_save(cr);
    cairo_matrix_t m;
    for (GpGraphics::clip const &c : graphics->mClips) {
        cairo_matrix_multiply(&m, &c.mWorld, &graphics->mBase);
        cairo_set_matrix(cr, &m);
        cairo_rectangle(cr, c.mRect.X, c.mRect.Y, c.mRect.Width, c.mRect.Height);
        cairo_clip(cr);
    }
    cairo_matrix_multiply(&m, &graphics->mWorld, &graphics->mBase);
    cairo_set_matrix(cr, &m);
    bool smooth = graphics->mSmoothing == SmoothingModeAntiAlias || graphics->mSmoothing == SmoothingModeHighQuality;
    cairo_set_antialias(cr, smooth ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
    cairo_new_path(cr);
}

drawing::~drawing() {
    if (mStatus != Ok) return;
    cairo_new_path(mGraphics->mCr);
    cairo_restore(mGraphics->mCr);
    if (mPaints && mGraphics->mPixels) Touch(*mGraphics->mPixels);
}

Status GdipCreateFromHDC(HDC dc, GpGraphics **graphics) {
    if (!graphics) return InvalidParameter;
    *graphics = nullptr;
    if (!dc || cairo_status(dc) != CAIRO_STATUS_SUCCESS) return InvalidParameter;
    return Made(new (std::nothrow) GpGraphics(dc, GetDeviceCaps(dc, LOGPIXELSX), GetDeviceCaps(dc, LOGPIXELSY)),
                graphics);
}

Status GdipCreateFromHWND(HWND window, GpGraphics **graphics) {
    if (!graphics) return InvalidParameter;
    *graphics = nullptr;
    if (!window || !GTK_IS_WIDGET(window)) return InvalidParameter;
    int width = 1, height = 1;
    platform::WidgetSize(window, width, height);
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t *cr = cairo_create(surface);
    cairo_surface_destroy(surface);
    if (cairo_status(cr) != CAIRO_STATUS_SUCCESS) {
        cairo_destroy(cr);
        return OutOfMemory;
    }
    GdkScreen *screen = gtk_widget_get_screen(window);
    double dpi = screen && gdk_screen_get_resolution(screen) > 0 ? gdk_screen_get_resolution(screen) : 96.0;
    auto *made = new (std::nothrow) GpGraphics(cr, dpi, dpi);
    cairo_destroy(cr);
    if (made) {
        made->mWidget = window;
        g_object_add_weak_pointer(G_OBJECT(window), reinterpret_cast<gpointer *>(&made->mWidget));
    }
    return Made(made, graphics);
}

Status GdipGetImageGraphicsContext(GpImage *image, GpGraphics **graphics) {
    if (!graphics) return InvalidParameter;
    *graphics = nullptr;
    auto *bitmap = dynamic_cast<GpBitmap *>(image);
    if (!bitmap) return InvalidParameter;
    if (bitmap->mPixels->mLocked) return WrongState;
    cairo_t *cr = cairo_create(bitmap->mPixels->mSurface);
    auto *made = new (std::nothrow) GpGraphics(cr, 96, 96);
    cairo_destroy(cr);
    if (made) made->mPixels = bitmap->mPixels;
    return Made(made, graphics);
}

Status GdipDeleteGraphics(GpGraphics *graphics) {
    if (!graphics) return InvalidParameter;
    delete graphics;
    return Ok;
}

Status GdipFlush(GpGraphics *graphics, INT) {
    if (!graphics) return InvalidParameter;
    cairo_surface_flush(cairo_get_target(graphics->mCr));
    Show(*graphics);
    return Ok;
}

Status GdipGetDC(GpGraphics *graphics, HDC *dc) {
    if (!graphics || !dc) return InvalidParameter;
    if (graphics->mLent) return ObjectBusy;
    cairo_save(graphics->mCr);
    graphics->mLent = graphics->mCr;
    *dc = graphics->mCr;
    return Ok;
}

Status GdipReleaseDC(GpGraphics *graphics, HDC dc) {
    if (!graphics || !dc || dc != graphics->mLent) return InvalidParameter;
    cairo_restore(graphics->mCr);
    graphics->mLent = nullptr;
    if (graphics->mPixels) Touch(*graphics->mPixels);
    return Ok;
}

Status GdipGetDpiX(GpGraphics *graphics, REAL *dpi) {
    if (!graphics || !dpi) return InvalidParameter;
    *dpi = REAL(graphics->mDpiX);
    return Ok;
}

Status GdipGetDpiY(GpGraphics *graphics, REAL *dpi) {
    if (!graphics || !dpi) return InvalidParameter;
    *dpi = REAL(graphics->mDpiY);
    return Ok;
}

Status GdipSetSmoothingMode(GpGraphics *graphics, SmoothingMode mode) {
    if (!graphics || mode < SmoothingModeDefault || mode > SmoothingModeAntiAlias) return InvalidParameter;
    graphics->mSmoothing = mode;
    return Ok;
}

Status GdipGetSmoothingMode(GpGraphics *graphics, SmoothingMode *mode) {
    if (!graphics || !mode) return InvalidParameter;
    *mode = graphics->mSmoothing;
    return Ok;
}

Status GdipTranslateWorldTransform(GpGraphics *graphics, REAL dx, REAL dy, INT order) {
    cairo_matrix_t op;
    cairo_matrix_init_translate(&op, dx, dy);
    return Transformed(graphics, op, order);
}

Status GdipScaleWorldTransform(GpGraphics *graphics, REAL sx, REAL sy, INT order) {
    if (sx == 0 || sy == 0) return InvalidParameter;
    cairo_matrix_t op;
    cairo_matrix_init_scale(&op, sx, sy);
    return Transformed(graphics, op, order);
}

Status GdipRotateWorldTransform(GpGraphics *graphics, REAL angle, INT order) {
    cairo_matrix_t op;
    cairo_matrix_init_rotate(&op, angle * G_PI / 180.0);
    return Transformed(graphics, op, order);
}

Status GdipResetWorldTransform(GpGraphics *graphics) {
    if (!graphics) return InvalidParameter;
    cairo_matrix_init_identity(&graphics->mWorld);
    return Ok;
}

// Replace (0) and intersect (1) are the ways of combining a clip kept here.
Status GdipSetClipRect(GpGraphics *graphics, REAL x, REAL y, REAL width, REAL height, INT combine) {
    if (!graphics) return InvalidParameter;
    if (combine != 0 && combine != 1) return NotImplemented;
    if (combine == 0) graphics->mClips.clear();
    graphics->mClips.push_back({RectF(x, y, width, height), graphics->mWorld});
    return Ok;
}

Status GdipResetClip(GpGraphics *graphics) {
    if (!graphics) return InvalidParameter;
    graphics->mClips.clear();
    return Ok;
}

}  // namespace qor::tools::Gdiplus
