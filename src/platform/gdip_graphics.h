// A graphics of the painting interface: a Cairo context of its own (a
// reference on the one it was made from, or one on a bitmap's surface or on
// an off-screen picture of a window), with the world transform, clip and
// smoothing that each drawing call sets up afresh inside a save and restore,
// so that what the application does on the context between calls does not
// leak in, and nothing of a call leaks out.
#pragma once

#include <cairo.h>

#include <memory>
#include <vector>

#include "gdip_objects.h"

namespace qor::tools::Gdiplus {

struct GpGraphics {
    GpGraphics(cairo_t *cr, double dpiX, double dpiY);
    GpGraphics(GpGraphics const &) = delete;
    GpGraphics &operator=(GpGraphics const &) = delete;
    ~GpGraphics();

    struct clip {
        RectF mRect;
        cairo_matrix_t mWorld;
    };

    cairo_t *mCr;
    cairo_matrix_t mBase;   // the context's own transform when the graphics was made
    cairo_matrix_t mWorld;  // the world transform, applied before mBase
    std::vector<clip> mClips;
    SmoothingMode mSmoothing = SmoothingModeDefault;
    double mDpiX, mDpiY;
    std::shared_ptr<pixel_store> mPixels;  // the bitmap drawn on, if any
    GtkWidget *mWidget = nullptr;          // the window shown on, if any (cleared when it goes)
    HDC mLent = nullptr;                   // the context while GdipGetDC has lent it
};

// One drawing call: the context set up with the graphics' transform, clip
// and smoothing, restored when it ends. Ready() is false when the graphics
// cannot draw now (null, or its context lent out); Result() says why. A
// call that only measures leaves the bitmap's pixels marked as they were.
class drawing {
public:
    explicit drawing(GpGraphics *graphics, bool paints = true);
    drawing(drawing const &) = delete;
    drawing &operator=(drawing const &) = delete;
    ~drawing();

    bool Ready() const { return mStatus == Ok; }
    Status Result() const { return mStatus; }
    cairo_t *Cr() const { return mGraphics->mCr; }
    GpGraphics &Graphics() const { return *mGraphics; }

private:
    GpGraphics *mGraphics;
    Status mStatus;
    bool mPaints;
};

void SetColor(cairo_t *cr, ARGB color);
// Stroke settings of a pen: colour, width (0: one device pixel), dashes in
// multiples of the width, flat ends, mitred joins.
void UsePen(cairo_t *cr, GpPen const &pen);
// An arc of the ellipse in the box, angles in degrees measured on the
// ellipse itself, added to the current path (from its centre for a pie).
void AddArc(cairo_t *cr, REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep, bool pie);
void AddPath(cairo_t *cr, GpPath const &path);

// A shape that `shape` adds to the path, stroked with `pen` or filled with `brush`.
template <typename F>
Status StrokeShape(GpGraphics *graphics, GpPen *pen, F &&shape) {
    if (!pen) return InvalidParameter;
    drawing d(graphics);
    if (!d.Ready()) return d.Result();
    shape(d.Cr());
    UsePen(d.Cr(), *pen);
    cairo_stroke(d.Cr());
    return Ok;
}

template <typename F>
Status FillShape(GpGraphics *graphics, GpBrush *brush, F &&shape, cairo_fill_rule_t rule = CAIRO_FILL_RULE_EVEN_ODD) {
    if (!brush) return InvalidParameter;
    drawing d(graphics);
    if (!d.Ready()) return d.Result();
    shape(d.Cr());
    SetColor(d.Cr(), brush->mColor);
    cairo_set_fill_rule(d.Cr(), rule);
    cairo_fill(d.Cr());
    return Ok;
}

}  // namespace qor::tools::Gdiplus
