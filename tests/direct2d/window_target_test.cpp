// The render target on a GTK window in a real X server (scripts/test.sh runs
// the suite under Xvfb): what is drawn shows in the window, checked from a
// screenshot of it, and the first call's window is the one every later
// target is bound to.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "qor/tools/exception.h"
#include "support/gtk_window.h"
#include "support/imaging.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class WindowTarget : public qt::imaging {
protected:
    void SetUp() override {
        if (!gtk_init_check(nullptr, nullptr)) GTEST_SKIP() << "no display";
    }
};

}  // namespace

TEST_F(WindowTarget, DrawingShowsInTheWindowAndTheFirstWindowStays) {
    GtkWidget *area = qt::ShownArea(200, 120);
    direct2d::target<ID2D1HwndRenderTarget> t = direct2d::factory::Instance()->CreateRenderTarget(area, 200, 120);
    EXPECT_EQ(t->GetHwnd(), area);
    EXPECT_EQ(t->CheckWindowState(), D2D1_WINDOW_STATE_NONE);
    container::comptr<ID2D1SolidColorBrush> red, blue;
    t->CreateSolidColorBrush(D2D1::ColorF(1, 0, 0), red.Addr());
    t->CreateSolidColorBrush(D2D1::ColorF(0, 0, 1), blue.Addr());
    t->BeginDraw();
    t->Clear(D2D1::ColorF(1, 1, 1));
    t->FillRectangle(D2D1::RectF(10, 10, 90, 60), red);
    t->FillEllipse(D2D1::Ellipse(D2D1::Point2F(150, 80), 30, 30), blue);
    EXPECT_EQ(t->EndDraw(), S_OK);
    qt::Settle();

    GdkPixbuf *shot = gdk_pixbuf_get_from_window(gtk_widget_get_window(area), 0, 0, 200, 120);
    ASSERT_NE(shot, nullptr);
    gdk_pixbuf_save(shot, "window_target.png", "png", nullptr, nullptr);
    EXPECT_EQ(qt::ScreenPixel(shot, 50, 30), 0xff0000u);
    EXPECT_EQ(qt::ScreenPixel(shot, 150, 80), 0x0000ffu);
    EXPECT_EQ(qt::ScreenPixel(shot, 120, 20), 0xffffffu);
    g_object_unref(shot);

    // Hidden and shown again, GTK repaints the widget from the kept drawing.
    GtkWidget *window = gtk_widget_get_toplevel(area);
    gtk_widget_hide(window);
    qt::Settle();
    gtk_widget_show(window);
    qt::Settle();
    shot = gdk_pixbuf_get_from_window(gtk_widget_get_window(area), 0, 0, 200, 120);
    ASSERT_NE(shot, nullptr);
    EXPECT_EQ(qt::ScreenPixel(shot, 50, 30), 0xff0000u);
    g_object_unref(shot);

    GtkWidget *other = qt::ShownArea(80, 80);
    direct2d::target<ID2D1HwndRenderTarget> second = direct2d::factory::Instance()->CreateRenderTarget(other, 80, 80);
    EXPECT_EQ(second->GetHwnd(), area);  // the first call's window, as designed
    EXPECT_EQ(second->GetPixelSize().width, 200u);
    t = direct2d::target<ID2D1HwndRenderTarget>();
    second = direct2d::target<ID2D1HwndRenderTarget>();
    gtk_widget_destroy(gtk_widget_get_toplevel(other));
    gtk_widget_destroy(window);
    // The kept window is gone: later targets cannot be made, and nothing points at it.
    GtkWidget *third = qt::ShownArea(40, 40);
    EXPECT_THROW(direct2d::factory::Instance()->CreateRenderTarget(third, 40, 40), exception);
    gtk_widget_destroy(gtk_widget_get_toplevel(third));
}
