// A render target that draws with Cairo onto an ARGB32 image surface (the
// pixels of an imaging bitmap): the common drawing set of the 2D interface,
// each call setting the whole Cairo state it needs, so that nothing an
// application does on the Cairo context between calls can leak into them.
// Calls outside BeginDraw and EndDraw draw nothing; shapes with coordinates
// that are not finite, and everything under a singular transform, are skipped.
#pragma once

#include <vector>

#include "com_object.h"
#include "qor/tools/platform/d2d1.h"

namespace qor::tools::platform::d2d {

// The drawing of every target; Top is the interface handed out, the render
// target itself or one of its family that adds calls of its own.
template <typename Top>
class target_base : public com_object<Top, ID2D1RenderTarget, ID2D1Resource> {
public:
    // Draws on `surface` (a reference is taken);
    // `owner`, if any, is kept alive as long as the target (the bitmap whose
    // pixels these are).
    target_base(ID2D1Factory *factory, cairo_surface_t *surface, IUnknown *owner, float dpiX, float dpiY);
    ~target_base() override;

    void GetFactory(ID2D1Factory **factory) const override;
    HRESULT CreateBitmap(D2D1_SIZE_U size, void const *source, std::uint32_t pitch,
                         D2D1_BITMAP_PROPERTIES const &properties, ID2D1Bitmap **bitmap) override;
    HRESULT CreateBitmapFromWicBitmap(IWICBitmapSource *source, D2D1_BITMAP_PROPERTIES const *properties,
                                      ID2D1Bitmap **bitmap) override;
    HRESULT CreateSolidColorBrush(D2D1_COLOR_F const &color, D2D1_BRUSH_PROPERTIES const *properties,
                                  ID2D1SolidColorBrush **brush) override;
    using ID2D1RenderTarget::CreateSolidColorBrush;
    void DrawLine(D2D1_POINT_2F from, D2D1_POINT_2F to, ID2D1Brush *brush, float width,
                  ID2D1StrokeStyle *style) override;
    void DrawRectangle(D2D1_RECT_F const &rect, ID2D1Brush *brush, float width, ID2D1StrokeStyle *style) override;
    void FillRectangle(D2D1_RECT_F const &rect, ID2D1Brush *brush) override;
    void DrawRoundedRectangle(D2D1_ROUNDED_RECT const &rect, ID2D1Brush *brush, float width,
                              ID2D1StrokeStyle *style) override;
    void FillRoundedRectangle(D2D1_ROUNDED_RECT const &rect, ID2D1Brush *brush) override;
    void DrawEllipse(D2D1_ELLIPSE const &ellipse, ID2D1Brush *brush, float width, ID2D1StrokeStyle *style) override;
    void FillEllipse(D2D1_ELLIPSE const &ellipse, ID2D1Brush *brush) override;
    void DrawBitmap(ID2D1Bitmap *bitmap, D2D1_RECT_F const *destination, float opacity,
                    D2D1_BITMAP_INTERPOLATION_MODE mode, D2D1_RECT_F const *source) override;
    void DrawGeometry(ID2D1Geometry *geometry, ID2D1Brush *brush, float width, ID2D1StrokeStyle *style) override;
    void FillGeometry(ID2D1Geometry *geometry, ID2D1Brush *brush, ID2D1Brush *opacityBrush) override;
    void DrawText(char16_t const *text, std::uint32_t length, IDWriteTextFormat *format, D2D1_RECT_F const &rect,
                  ID2D1Brush *brush, DWORD options, DWORD measuring) override;
    void DrawTextLayout(D2D1_POINT_2F origin, IDWriteTextLayout *layout, ID2D1Brush *brush, DWORD options) override;
    void SetTransform(D2D1_MATRIX_3X2_F const &transform) override;
    void GetTransform(D2D1_MATRIX_3X2_F *transform) const override;
    void SetAntialiasMode(D2D1_ANTIALIAS_MODE mode) override { mAntialias = mode; }
    D2D1_ANTIALIAS_MODE GetAntialiasMode() const override { return mAntialias; }
    void PushAxisAlignedClip(D2D1_RECT_F const &clip, D2D1_ANTIALIAS_MODE mode) override;
    void PopAxisAlignedClip() override;
    void Clear(D2D1_COLOR_F const *color) override;
    using ID2D1RenderTarget::Clear;
    void BeginDraw() override;
    HRESULT EndDraw(D2D1_TAG *tag1, D2D1_TAG *tag2) override;
    HRESULT Flush(D2D1_TAG *tag1, D2D1_TAG *tag2) override;
    D2D1_PIXEL_FORMAT GetPixelFormat() const override;
    void SetDpi(float dpiX, float dpiY) override;
    void GetDpi(float *dpiX, float *dpiY) const override;
    D2D1_SIZE_F GetSize() const override;
    D2D1_SIZE_U GetPixelSize() const override;
    cairo_t *GetCairoContext() override { return mCairo; }

protected:
    // Draws from now on onto `surface` (a reference is taken).
    void _Bind(cairo_surface_t *surface);
    // Sets the transform (device scale included) and antialiasing; false when
    // nothing may be drawn now.
    bool _Begin();
    void _Fill(ID2D1Brush *brush);
    void _Stroke(ID2D1Brush *brush, float width, ID2D1StrokeStyle *style);

    ID2D1Factory *mFactory;
    IUnknown *mOwner;
    cairo_surface_t *mSurface;
    cairo_t *mCairo;
    bool mDrawing = false;
    HRESULT mError = S_OK;
    D2D1_MATRIX_3X2_F mTransform;
    D2D1_ANTIALIAS_MODE mAntialias = D2D1_ANTIALIAS_MODE_PER_PRIMITIVE;
    float mDpiX, mDpiY;
    int mClips = 0;
};

using render_target = target_base<ID2D1RenderTarget>;

// A target on a device context: drawn off screen at the rectangle's size and
// laid over the rectangle of the context at EndDraw.
class dc_target final : public target_base<ID2D1DCRenderTarget> {
public:
    dc_target(ID2D1Factory *factory, float dpiX, float dpiY);
    ~dc_target() override;
    HRESULT BindDC(HDC dc, RECT const *rect) override;
    HRESULT EndDraw(D2D1_TAG *tag1, D2D1_TAG *tag2) override;

private:
    cairo_t *mDc = nullptr;
    RECT mRect;
};

// A target on a GTK widget's window (in d2d_window.cpp, where GTK is).
ID2D1HwndRenderTarget *NewWindowTarget(ID2D1Factory *factory, D2D1_HWND_RENDER_TARGET_PROPERTIES const &window,
                                       float dpiX, float dpiY);

// Sets `slot` to null when the widget it names is destroyed, so that a
// handle kept for later calls never points at a freed widget.
void ForgetWhenDestroyed(HWND &slot);

ID2D1StrokeStyle *NewStrokeStyle(ID2D1Factory *factory, D2D1_STROKE_STYLE_PROPERTIES const &properties,
                                 float const *dashes, std::uint32_t count);

}  // namespace qor::tools::platform::d2d
