// The resources a render target makes: solid brushes, stroke styles and
// bitmaps (a bitmap of an imaging bitmap shows that bitmap's pixels as they
// are when it is drawn, decoded at a reduced size when the first use of a
// picture decoded on demand is a large reduction).
#pragma once

#include <vector>

#include "codec.h"
#include "com_object.h"
#include "qor/tools/platform/d2d1.h"

namespace qor::tools::platform::d2d {

template <typename Top, typename... Bases>
class resource : public com_object<Top, Bases..., ID2D1Resource> {
public:
    explicit resource(ID2D1Factory *factory) : mFactory(factory) {
        if (mFactory) mFactory->AddRef();
    }
    ~resource() override {
        if (mFactory) mFactory->Release();
    }
    void GetFactory(ID2D1Factory **factory) const override {
        if (!factory) return;
        *factory = mFactory;
        if (mFactory) mFactory->AddRef();
    }

private:
    ID2D1Factory *mFactory;
};

class solid_brush final : public resource<ID2D1SolidColorBrush, ID2D1Brush> {
public:
    solid_brush(ID2D1Factory *factory, D2D1_COLOR_F const &color, D2D1_BRUSH_PROPERTIES const *properties);
    void SetOpacity(float opacity) override { mOpacity = opacity; }
    void SetTransform(D2D1_MATRIX_3X2_F const &transform) override { mTransform = transform; }
    float GetOpacity() const override { return mOpacity; }
    void GetTransform(D2D1_MATRIX_3X2_F *transform) const override {
        if (transform) *transform = mTransform;
    }
    void SetColor(D2D1_COLOR_F const &color) override { mColor = color; }
    D2D1_COLOR_F GetColor() const override { return mColor; }

private:
    D2D1_COLOR_F mColor;
    float mOpacity = 1;
    D2D1_MATRIX_3X2_F mTransform;
};

class stroke_style final : public resource<ID2D1StrokeStyle> {
public:
    stroke_style(ID2D1Factory *factory, D2D1_STROKE_STYLE_PROPERTIES const &properties, float const *dashes,
                 std::uint32_t count);
    D2D1_CAP_STYLE GetStartCap() const override { return mProperties.startCap; }
    D2D1_CAP_STYLE GetEndCap() const override { return mProperties.endCap; }
    D2D1_CAP_STYLE GetDashCap() const override { return mProperties.dashCap; }
    float GetMiterLimit() const override { return mProperties.miterLimit; }
    D2D1_LINE_JOIN GetLineJoin() const override { return mProperties.lineJoin; }
    float GetDashOffset() const override { return mProperties.dashOffset; }
    D2D1_DASH_STYLE GetDashStyle() const override { return mProperties.dashStyle; }
    std::uint32_t GetDashesCount() const override { return std::uint32_t(mDashes.size()); }
    void GetDashes(float *dashes, std::uint32_t count) const override;
    // The dash pattern in units of the stroke's width (empty: solid).
    std::vector<double> Pattern() const;

private:
    D2D1_STROKE_STYLE_PROPERTIES mProperties;
    std::vector<float> mDashes;
};

class bitmap final : public resource<ID2D1Bitmap> {
public:
    // Shows `source`, a bitmap of the imaging layer, kept alive by a reference.
    bitmap(ID2D1Factory *factory, IWICBitmap *source);
    // Owns `pixels`.
    bitmap(ID2D1Factory *factory, codec::surface pixels);
    ~bitmap() override;
    D2D1_SIZE_F GetSize() const override;
    D2D1_SIZE_U GetPixelSize() const override;
    D2D1_PIXEL_FORMAT GetPixelFormat() const override {
        return {DXGI_FORMAT_B8G8R8A8_UNORM, D2D1_ALPHA_MODE_PREMULTIPLIED};
    }
    void GetDpi(float *dpiX, float *dpiY) const override {
        if (dpiX) *dpiX = 96;
        if (dpiY) *dpiY = 96;
    }
    // A new reference on pixels covering `width` by `height` at least.
    cairo_surface_t *Pixels(int width, int height) const;

private:
    IWICBitmap *mSource = nullptr;
    codec::surface mPixels;
    D2D1_SIZE_U mSize;
};

}  // namespace qor::tools::platform::d2d
