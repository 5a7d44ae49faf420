// The render target on a GTK widget: drawn off screen, shown at EndDraw
// through a drawing frame of the widget's window, and shown again from the
// widget's own draw signal whenever GTK repaints it.
#include <gtk/gtk.h>

#include <algorithm>

#include "codec.h"
#include "d2d_target.h"
#include "widget_present.h"

namespace qor::tools::platform::d2d {

namespace {

class window_target final : public target_base<ID2D1HwndRenderTarget> {
public:
    window_target(ID2D1Factory *factory, cairo_surface_t *surface, GtkWidget *widget, float dpiX, float dpiY)
        : target_base(factory, surface, nullptr, dpiX, dpiY), mWidget(GTK_WIDGET(g_object_ref(widget))) {
        mHandler = g_signal_connect(mWidget, "draw", G_CALLBACK(Redraw), this);
    }
    ~window_target() override {
        g_signal_handler_disconnect(mWidget, mHandler);
        g_object_unref(mWidget);
    }

    D2D1_WINDOW_STATE CheckWindowState() override {
        return gtk_widget_get_mapped(mWidget) ? D2D1_WINDOW_STATE_NONE : D2D1_WINDOW_STATE_OCCLUDED;
    }
    HRESULT Resize(D2D1_SIZE_U const *size) override {
        if (!size) return E_INVALIDARG;
        codec::surface pixels = codec::NewSurface(int(size->width), int(size->height));
        if (!pixels) return E_INVALIDARG;
        _Bind(pixels.get());
        return S_OK;
    }
    HWND GetHwnd() const override { return mWidget; }
    HRESULT EndDraw(D2D1_TAG *tag1, D2D1_TAG *tag2) override {
        HRESULT result = target_base::EndDraw(tag1, tag2);
        if (FAILED(result)) return result;
        Present();
        return S_OK;
    }

private:
    // Shown now, if the widget has a window to show it in.
    void Present() { PresentOnWidget(mWidget, mSurface); }
    void Paint(cairo_t *cr) {
        cairo_save(cr);
        cairo_set_source_surface(cr, mSurface, 0, 0);
        cairo_paint(cr);
        cairo_restore(cr);
    }
    static gboolean Redraw(GtkWidget *, cairo_t *cr, gpointer self) {
        static_cast<window_target *>(self)->Paint(cr);
        return FALSE;
    }

    GtkWidget *mWidget;
    gulong mHandler = 0;
};

}  // namespace

void ForgetWhenDestroyed(HWND &slot) {
    if (slot && GTK_IS_WIDGET(slot)) g_object_add_weak_pointer(G_OBJECT(slot), reinterpret_cast<gpointer *>(&slot));
}

// A size of 0 by 0 takes the widget's allocated size (at least one pixel).
ID2D1HwndRenderTarget *NewWindowTarget(ID2D1Factory *factory, D2D1_HWND_RENDER_TARGET_PROPERTIES const &window,
                                       float dpiX, float dpiY) {
    if (!window.hwnd || !GTK_IS_WIDGET(window.hwnd)) return nullptr;
    int width = int(window.pixelSize.width), height = int(window.pixelSize.height);
    if (width == 0 && height == 0) WidgetSize(window.hwnd, width, height);
    codec::surface pixels = codec::NewSurface(width, height);
    if (!pixels) return nullptr;
    return new window_target(factory, pixels.get(), window.hwnd, dpiX, dpiY);
}

}  // namespace qor::tools::platform::d2d
