// The objects behind the painting interface's flat calls. Pens, brushes,
// fonts and formats are plain records read when something is drawn; a bitmap
// keeps its pixels in a Cairo image surface (ARGB32, premultiplied, for the
// formats with alpha; RGB24 for the others), shared with every graphics made
// on it, so that the graphics outlives the bitmap safely.
#pragma once

#include <cairo.h>

#include <memory>
#include <string>
#include <vector>

#include "qor/tools/platform/gdiplus_flat.h"

namespace qor::tools::Gdiplus {

struct GpFontFamily {
    std::string mName;  // UTF-8, as the font map spells it
};

struct GpFont {
    std::string mFamily;
    REAL mSize = 0;
    INT mStyle = FontStyleRegular;
    Unit mUnit = UnitPoint;
};

struct GpPen {
    ARGB mColor = 0;
    REAL mWidth = 1;
    Unit mUnit = UnitWorld;
    DashStyle mDash = DashStyleSolid;
};

struct GpBrush {
    ARGB mColor = 0;
};
struct GpSolidFill : GpBrush {};

struct GpStringFormat {
    INT mFlags = 0;
    StringAlignment mAlign = StringAlignmentNear;
    StringAlignment mLineAlign = StringAlignmentNear;
};

// A path as the steps that build it, replayed onto a Cairo context.
struct GpPath {
    enum class step { line, bezier, arc, close, start };
    struct item {
        step mStep;
        REAL mArgs[8];
    };
    FillMode mFill = FillModeAlternate;
    std::vector<item> mItems;
};

// The pixels of a bitmap. For 32bppARGB the straight (not premultiplied)
// values written through a lock are kept as well, so that what is written is
// read back exactly; drawing on the surface makes them stale.
struct pixel_store {
    explicit pixel_store(cairo_surface_t *surface) : mSurface(surface) {}
    pixel_store(pixel_store const &) = delete;
    pixel_store &operator=(pixel_store const &) = delete;
    ~pixel_store() { cairo_surface_destroy(mSurface); }

    cairo_surface_t *mSurface;
    std::vector<std::uint32_t> mStraight;
    bool mStraightValid = false;
    bool mLocked = false;
};

struct GpImage {
    virtual ~GpImage() = default;
};

struct GpBitmap : GpImage {
    GpBitmap(std::shared_ptr<pixel_store> pixels, PixelFormat format, int width, int height)
        : mPixels(std::move(pixels)), mFormat(format), mWidth(width), mHeight(height) {}

    std::shared_ptr<pixel_store> mPixels;
    PixelFormat mFormat;
    int mWidth;
    int mHeight;
};

// A bitmap's pixels as straight 0xAARRGGBB words, row after row (computed
// from the surface unless written through a lock since it was drawn on).
std::vector<std::uint32_t> const &StraightPixels(GpBitmap &bitmap);
// The surface to draw or encode from, after pending writes are in it.
cairo_surface_t *SurfaceOf(GpImage *image);
// Every drawing on a bitmap's surface goes through here first.
inline void Touch(pixel_store &pixels) { pixels.mStraightValid = false; }

}  // namespace qor::tools::Gdiplus
