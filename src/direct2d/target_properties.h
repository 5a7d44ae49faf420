// The render target properties every target of the library is made with:
// premultiplied BGRA at 8 bits a channel, the platform's resolution, built
// once and reused.
#pragma once

#include "qor/tools/platform/d2d1.h"

namespace qor::tools::direct2d {

inline D2D1_RENDER_TARGET_PROPERTIES const &TargetProperties() {
    static D2D1_RENDER_TARGET_PROPERTIES const properties = D2D1::RenderTargetProperties(
        D2D1_RENDER_TARGET_TYPE_DEFAULT, D2D1::PixelFormat(DXGI_FORMAT_B8G8R8A8_UNORM, D2D1_ALPHA_MODE_PREMULTIPLIED), 0,
        0, D2D1_RENDER_TARGET_USAGE_NONE, D2D1_FEATURE_LEVEL_DEFAULT);
    return properties;
}

}  // namespace qor::tools::direct2d
