// gdiplus::bdc: a double-buffered paint for a paint handler. Drawing goes to
// an off-screen buffer of the rectangle (through mTarget, or Transfer of a
// prepared image), and the destructor paints the buffer onto the context.
//
//   gboolean OnDraw(GtkWidget *widget, cairo_t *cr, gpointer) {
//       CRect client{0, 0, gtk_widget_get_allocated_width(widget), gtk_widget_get_allocated_height(widget)};
//       gdiplus::bdc paint(cr, client, BPBF_TOPDOWNDIB);
//       paint.mTarget->FillRectangle(gdiplus::brush(0xFFFFFFFFul), 0, 0, client.right, client.bottom);
//       return TRUE;
//   }   // shown here
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/gdiplus/target.h"
#include "qor/tools/platform/uxtheme.h"

namespace qor::tools::gdiplus {

class QOR_TOOLS_API bdc {
public:
    // Begins a buffered paint of `rect` on `context` in `format`, or one
    // that starts with `picture` drawn in it; the buffer goes to the context
    // when the bdc ends.
    bdc(HDC context, CRect &rect, _BP_BUFFERFORMAT format);
    bdc(HDC context, CRect &rect, image const &picture);
    // Copies the buffer handles and shares the graphics: both end the paint,
    // the second time doing nothing.
    bdc(bdc const &) = default;
    bdc &operator=(bdc const &) = default;
    virtual ~bdc();

    // Draws the image at (0, 0) of the buffer.
    void Transfer(image const &picture);
    operator HDC() const { return mDc; }

    HPAINTBUFFER mPaintBuffer = nullptr;  // the platform's paint buffer
    HDC mDc = nullptr;                    // the buffer's context
    target mTarget;                       // graphics on the buffer
};

}  // namespace qor::tools::gdiplus
