// Buffered paint in a real window under Xvfb: a draw handler paints through a
// gdiplus::bdc, and the screenshot of the window is compared with an
// off-screen rendering of the same calls. Both pictures are kept beside the
// test (painting-window-*.png) so that a person can look at a failure.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdlib>

#include "qor/tools/gdiplus/bdc.h"
#include "qor/tools/gdiplus/font.h"
#include "support/gtk_window.h"
#include "support/painting.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class BufferedPaint : public qt::painting {
protected:
    void SetUp() override {
        if (!gtk_init_check(nullptr, nullptr)) GTEST_SKIP() << "no display";
    }
};

constexpr int kWidth = 320, kHeight = 160;

struct scene {
    gdiplus::image mPicture;
    bool mEmpty = false;
};

// The calls under test: an image transferred, shapes, text with Japanese and
// a round rectangle, all into the buffer.
void Paint(cairo_t *cr, scene &s) {
    CRect client{0, 0, kWidth, kHeight};
    if (s.mEmpty) {
        gdiplus::bdc paint(cr, client, gdiplus::image());
        return;
    }
    gdiplus::bdc paint(cr, client, BPBF_TOPDOWNDIB);
    gdiplus::target &t = paint.mTarget;
    t->Clear(Gdiplus::Color(0xFFFFFFFFu));
    paint.Transfer(s.mPicture);
    t->FillEllipse(gdiplus::brush(0xFF2060C0ul), 100.0f, 10.0f, 80.0f, 50.0f);
    t->DrawLine(gdiplus::pen(3.0f, 0xFFC02020ul), 10.0f, 80.0f, 300.0f, 80.0f);
    gdiplus::font text(u"IPAGothic", 14.0f, 0);
    t->DrawString(u"窓の中 Window", -1, text, Gdiplus::PointF{10, 100}, gdiplus::brush(0xFF000000ul));
    t.DrawRoundRect(gdiplus::pen(2.0f, 0xFF008000ul), 200, 10, 100, 60, 12, 12);
}

gboolean OnDraw(GtkWidget *, cairo_t *cr, gpointer data) {
    cairo_set_source_rgb(cr, 0, 1, 0);  // what the window shows where the paint draws nothing
    cairo_paint(cr);
    Paint(cr, *static_cast<scene *>(data));
    return TRUE;
}

gdiplus::image Prepared() {
    gdiplus::target prepared(60, 40, Gdiplus::PixelFormat32bppARGB);
    prepared->FillRectangle(gdiplus::brush(0xFFFF0000ul), 0, 0, 30, 40);
    prepared->FillRectangle(gdiplus::brush(0xFF0000FFul), 30, 0, 30, 40);
    return prepared.Image();
}

// The window's picture through the library's own image (a screenshot in a surface).
gdiplus::image Screenshot(GtkWidget *area) {
    GdkPixbuf *shot = gdk_pixbuf_get_from_window(gtk_widget_get_window(area), 0, 0, kWidth, kHeight);
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t *cr = cairo_create(surface);
    gdk_cairo_set_source_pixbuf(cr, shot, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
    g_object_unref(shot);
    gdiplus::image picture(surface);
    cairo_surface_destroy(surface);
    return picture;
}

gdiplus::image OffScreen(scene &s) {
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t *cr = cairo_create(surface);
    OnDraw(nullptr, cr, &s);
    cairo_destroy(cr);
    gdiplus::image picture(surface);
    cairo_surface_destroy(surface);
    return picture;
}

// Pixels that differ by more than a little in any channel.
int Differing(gdiplus::image &a, gdiplus::image &b) {
    int count = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            std::uint32_t p = qt::Argb(a, x, y), q = qt::Argb(b, x, y);
            for (int shift = 0; shift < 24; shift += 8) {
                if (std::abs(int((p >> shift) & 0xff) - int((q >> shift) & 0xff)) > 24) {
                    ++count;
                    break;
                }
            }
        }
    }
    return count;
}

}  // namespace

TEST_F(BufferedPaint, TheWindowShowsWhatTheSameCallsDrawOffScreen) {
    scene s{Prepared()};
    GtkWidget *area = qt::ShownArea(kWidth, kHeight, G_CALLBACK(OnDraw), &s);
    gtk_widget_queue_draw(area);
    qt::Settle();
    gdiplus::image shot = Screenshot(area), expected = OffScreen(s);
    qt::Keep(shot, "window-screenshot");
    qt::Keep(expected, "window-offscreen");
    EXPECT_LT(Differing(shot, expected), kWidth * kHeight / 200);
    EXPECT_EQ(qt::Argb(shot, 10, 10), 0xFFFF0000u);   // the transferred image
    EXPECT_EQ(qt::Argb(shot, 50, 10), 0xFF0000FFu);
    EXPECT_EQ(qt::Argb(shot, 140, 35), 0xFF2060C0u);  // the ellipse
    EXPECT_EQ(qt::Argb(shot, 250, 10), 0xFF008000u);  // the round rectangle's top
    EXPECT_GT(qt::Inked(shot, 10, 100, 70, 125, 0xFFFFFFFFu), 80);  // the Japanese
    gtk_widget_destroy(gtk_widget_get_toplevel(area));
}

TEST_F(BufferedPaint, AnEmptyImageBeginsAndEndsThePaintAndDrawsNothing) {
    scene s;
    s.mEmpty = true;
    GtkWidget *area = qt::ShownArea(kWidth, kHeight, G_CALLBACK(OnDraw), &s);
    gtk_widget_queue_draw(area);
    qt::Settle();
    gdiplus::image shot = Screenshot(area);
    EXPECT_EQ(qt::Inked(shot, 0, 0, kWidth, kHeight, 0xFF00FF00u), 0);
    gtk_widget_destroy(gtk_widget_get_toplevel(area));
}

TEST_F(BufferedPaint, APaintOnAFailedBufferIsQuiet) {
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 10, 10);
    cairo_t *cr = cairo_create(surface);
    {
        CRect nothing{5, 5, 5, 5};
        gdiplus::bdc paint(cr, nothing, BPBF_TOPDOWNDIB);
        EXPECT_EQ(paint.mPaintBuffer, nullptr);
        EXPECT_EQ(HDC(paint), nullptr);
        EXPECT_NE(paint.mTarget->FillRectangle(gdiplus::brush(0xFF000000ul), 0, 0, 5, 5), Gdiplus::Ok);
        gdiplus::bdc copy = paint;  // ends the same null paint again
    }
    {
        CRect area{0, 0, 10, 10};
        gdiplus::bdc paint(cr, area, BPBF_TOPDOWNDIB);
        paint.mTarget->FillRectangle(gdiplus::brush(0xFF000000ul), 0, 0, 10, 10);
        gdiplus::bdc copy = paint;  // both end it: the second finds nothing
    }
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    EXPECT_EQ(*reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(surface)), 0xFF000000u);
    cairo_surface_destroy(surface);
}
