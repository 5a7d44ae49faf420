// gdiplus::target: a shared Gdiplus::Graphics on a window, a context or an
// image, with the image it draws on (Image()). Drawing goes through
// operator->; DrawRoundRect strokes a rounded rectangle as eight pieces.
// The graphics keeps its own reference to what it draws on, so a target's
// image may go first. Copies share the graphics but not the image.
//
//   gdiplus::target canvas(400, 300, PixelFormat32bppARGB);
//   canvas->Clear(Gdiplus::Color(255, 255, 255, 255));
//   canvas.DrawRoundRect(gdiplus::pen(2.0f, 0xFF000000ul), 10, 10, 200, 100, 12, 12);
//   canvas.Image().Save(u"/tmp/canvas.png");
//
// target::selector selects a GDI object into a context for a scope and puts
// the previous one back; target::dc lends the graphics' context for direct
// Cairo or GDI calls for a scope, during which the graphics draws nothing.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/sptr.h"
#include "qor/tools/gdiplus/image.h"
#include "qor/tools/platform/gdiplus.h"

namespace qor::tools::gdiplus {

class QOR_TOOLS_API target : public container::sptr<Gdiplus::Graphics> {
public:
    class selector;
    class dc;

    // Empty, or made as by the Create of the same arguments.
    target() = default;
    explicit target(HWND window) { Create(window); }
    explicit target(HDC context) { Create(context); }
    explicit target(image &picture) { Create(picture); }
    target(CRect const &rect, int format) { Create(rect, format); }
    target(int width, int height, int format) { Create(width, height, format); }
    // Shares the graphics; the copy's Image() is empty.
    target(target const &other) : container::sptr<Gdiplus::Graphics>(other) {}
    // Shares the graphics; Image() stays as it was.
    target &operator=(target const &other) {
        container::sptr<Gdiplus::Graphics>::operator=(other);
        return *this;
    }
    ~target() override = default;

    // Graphics on a window, a device context or an image.
    void Create(HWND window);
    void Create(HDC context);
    void Create(image &picture);
    // A new image of the rectangle's size; drawing starts at (0, 0).
    void Create(CRect const &rect, int format);
    void Create(int width, int height, int format);
    image &Image() { return mSurface; }

    // The outline of a rectangle with corners rounded by radii rx and ry.
    void DrawRoundRect(Gdiplus::Pen const *pen, Gdiplus::RectF const &rect, float rx, float ry);
    void DrawRoundRect(Gdiplus::Pen const *pen, int x, int y, int width, int height, int rx, int ry);

    image mSurface;  // the image that Create(rect) or Create(width, height) made
};

// Selects a font or bitmap into a device context for its lifetime and puts
// the earlier one back at its end.
class QOR_TOOLS_API target::selector {
public:
    // A null object selects nothing and restores nothing. An untyped object
    // is one the context knows from an earlier typed selection; the typed
    // forms select any font or bitmap.
    selector(HDC context, void *object);
    selector(HDC context, HFONT font) : mDc(context), mPrevious(font ? SelectObject(context, font) : nullptr) {}
    selector(HDC context, HBITMAP bitmap) : mDc(context), mPrevious(bitmap ? SelectObject(context, bitmap) : nullptr) {}
    selector(HDC context, CGdiObject *object);
    selector(selector const &) = default;
    selector &operator=(selector const &) = default;
    ~selector();

    HDC mDc;            // the context
    HGDIOBJ mPrevious;  // what was selected before, put back at the end
};

// The device context of a target's graphics, held for its lifetime.
class QOR_TOOLS_API target::dc {
public:
    // Takes the context of `owner`'s graphics and gives it back at the end.
    explicit dc(target &owner);
    dc(dc const &) = default;
    dc &operator=(dc const &) = default;
    ~dc();

    // The context, as a handle or as a number.
    operator HDC() const { return mHandle; }
    operator long long() const { return reinterpret_cast<long long>(mHandle); }

    target *mOwner;  // the target whose context it is
    HDC mHandle;     // the context
};

}  // namespace qor::tools::gdiplus
