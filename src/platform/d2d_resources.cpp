#include "d2d_resources.h"

#include <cairo.h>

#include "wic_bitmap.h"

namespace qor::tools::platform::d2d {

solid_brush::solid_brush(ID2D1Factory *factory, D2D1_COLOR_F const &color, D2D1_BRUSH_PROPERTIES const *properties)
    : resource(factory), mColor(color) {
    if (!properties) return;
    mOpacity = properties->opacity;
    mTransform = properties->transform;
}

stroke_style::stroke_style(ID2D1Factory *factory, D2D1_STROKE_STYLE_PROPERTIES const &properties,
                           float const *dashes, std::uint32_t count)
    : resource(factory), mProperties(properties) {
    if (properties.dashStyle == D2D1_DASH_STYLE_CUSTOM && dashes) mDashes.assign(dashes, dashes + count);
}

void stroke_style::GetDashes(float *dashes, std::uint32_t count) const {
    if (!dashes) return;
    for (std::uint32_t i = 0; i < count; ++i) dashes[i] = i < mDashes.size() ? mDashes[i] : 0.0f;
}

std::vector<double> stroke_style::Pattern() const {
    switch (mProperties.dashStyle) {
    case D2D1_DASH_STYLE_DASH: return {2, 2};
    case D2D1_DASH_STYLE_DOT: return {0, 2};
    case D2D1_DASH_STYLE_DASH_DOT: return {2, 2, 0, 2};
    case D2D1_DASH_STYLE_DASH_DOT_DOT: return {2, 2, 0, 2, 0, 2};
    case D2D1_DASH_STYLE_CUSTOM: return std::vector<double>(mDashes.begin(), mDashes.end());
    case D2D1_DASH_STYLE_SOLID: break;
    }
    return {};
}

bitmap::bitmap(ID2D1Factory *factory, IWICBitmap *source) : resource(factory), mSource(source) {
    mSource->AddRef();
    UINT width = 0, height = 0;
    mSource->GetSize(&width, &height);
    mSize = {width, height};
}

bitmap::bitmap(ID2D1Factory *factory, codec::surface pixels) : resource(factory), mPixels(std::move(pixels)) {
    mSize = {std::uint32_t(cairo_image_surface_get_width(mPixels.get())),
             std::uint32_t(cairo_image_surface_get_height(mPixels.get()))};
}

bitmap::~bitmap() {
    if (mSource) mSource->Release();
}

D2D1_SIZE_F bitmap::GetSize() const { return {float(mSize.width), float(mSize.height)}; }

D2D1_SIZE_U bitmap::GetPixelSize() const { return mSize; }

cairo_surface_t *bitmap::Pixels(int width, int height) const {
    if (mPixels) return cairo_surface_reference(mPixels.get());
    if (auto *own = dynamic_cast<wic::bitmap *>(mSource)) return own->SurfaceForBox(width, height);
    cairo_surface_t *pixels = mSource->GetCairoSurface();
    return pixels ? cairo_surface_reference(pixels) : nullptr;
}

}  // namespace qor::tools::platform::d2d
