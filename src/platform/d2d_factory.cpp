// The 2D drawing factory and the text factory's entry point.
#include <cairo.h>

#include "d2d_path.h"
#include "dwrite_text.h"
#include "d2d_target.h"
#include "qor/tools/platform/dwrite.h"
#include "wic_bitmap.h"

namespace qor::tools {

namespace {

// Targets draw premultiplied BGRA only.
bool Supported(D2D1_PIXEL_FORMAT f) {
    return (f.format == DXGI_FORMAT_UNKNOWN || f.format == DXGI_FORMAT_B8G8R8A8_UNORM) &&
           f.alphaMode != D2D1_ALPHA_MODE_STRAIGHT;
}

class d2d_factory final : public platform::com_object<ID2D1Factory> {
public:
    HRESULT ReloadSystemMetrics() override { return S_OK; }
    void GetDesktopDpi(float *dpiX, float *dpiY) override {
        if (dpiX) *dpiX = 96;
        if (dpiY) *dpiY = 96;
    }
    HRESULT CreateStrokeStyle(D2D1_STROKE_STYLE_PROPERTIES const &properties, float const *dashes,
                              std::uint32_t count, ID2D1StrokeStyle **style) override {
        if (properties.dashStyle == D2D1_DASH_STYLE_CUSTOM && count && !dashes) return E_INVALIDARG;
        return platform::HandOut(platform::d2d::NewStrokeStyle(this, properties, dashes, count), style);
    }
    HRESULT CreatePathGeometry(ID2D1PathGeometry **geometry) override {
        return platform::HandOut(new platform::d2d::path_geometry(this), geometry);
    }
    HRESULT CreateHwndRenderTarget(D2D1_RENDER_TARGET_PROPERTIES const &properties,
                                   D2D1_HWND_RENDER_TARGET_PROPERTIES const &window,
                                   ID2D1HwndRenderTarget **target) override {
        if (!target) return E_INVALIDARG;
        *target = nullptr;
        if (!Supported(properties.pixelFormat)) return D2DERR_UNSUPPORTED_PIXEL_FORMAT;
        ID2D1HwndRenderTarget *made = platform::d2d::NewWindowTarget(this, window, properties.dpiX, properties.dpiY);
        return made ? platform::HandOut(made, target) : E_INVALIDARG;
    }
    HRESULT CreateDCRenderTarget(D2D1_RENDER_TARGET_PROPERTIES const &properties,
                                 ID2D1DCRenderTarget **target) override {
        if (!target) return E_INVALIDARG;
        *target = nullptr;
        if (!Supported(properties.pixelFormat)) return D2DERR_UNSUPPORTED_PIXEL_FORMAT;
        return platform::HandOut(new platform::d2d::dc_target(this, properties.dpiX, properties.dpiY), target);
    }
    HRESULT CreateWicBitmapRenderTarget(IWICBitmap *bitmap, D2D1_RENDER_TARGET_PROPERTIES const &properties,
                                        ID2D1RenderTarget **target) override {
        if (!target) return E_INVALIDARG;
        *target = nullptr;
        if (!bitmap) return E_INVALIDARG;
        if (!Supported(properties.pixelFormat)) return D2DERR_UNSUPPORTED_PIXEL_FORMAT;
        cairo_surface_t *pixels = bitmap->GetCairoSurface();
        if (!pixels) return E_OUTOFMEMORY;
        auto *made = new platform::d2d::render_target(this, pixels, bitmap, properties.dpiX, properties.dpiY);
        return platform::HandOut(made, target);
    }
};

template <typename T>
HRESULT Made(T *object, REFIID iid, void **out) {
    HRESULT result = object->QueryInterface(iid, out);
    object->Release();
    return result;
}

}  // namespace

HRESULT D2D1CreateFactory(D2D1_FACTORY_TYPE type, REFIID iid, D2D1_FACTORY_OPTIONS const *, void **factory) {
    if (!factory) return E_POINTER;
    *factory = nullptr;
    if (type != D2D1_FACTORY_TYPE_SINGLE_THREADED && type != D2D1_FACTORY_TYPE_MULTI_THREADED) return E_INVALIDARG;
    return Made(new d2d_factory, iid, factory);
}

HRESULT DWriteCreateFactory(DWRITE_FACTORY_TYPE type, REFIID iid, IUnknown **factory) {
    if (!factory) return E_POINTER;
    *factory = nullptr;
    if (type != DWRITE_FACTORY_TYPE_SHARED && type != DWRITE_FACTORY_TYPE_ISOLATED) return E_INVALIDARG;
    return Made(platform::dwrite::NewFactory(), iid, reinterpret_cast<void **>(factory));
}

}  // namespace qor::tools
