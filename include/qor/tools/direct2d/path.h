// direct2d::path: a shared handle on a path geometry, made by
// factory::CreatePathGeometry and drawn with DrawGeometry or FillGeometry of
// a render target. CreateRoundRect writes the library's "round" rectangle:
// twelve sides with one-unit notches at the corners, no arcs.
//
//   direct2d::path frame = direct2d::factory::Instance()->CreatePathGeometry();
//   frame.CreateRoundRect(direct2d::rectf(0, 0, 100, 40));
//   target->DrawGeometry(frame, brush);
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/sptr.h"
#include "qor/tools/direct2d/float_types.h"
#include "qor/tools/platform/d2d1.h"

namespace qor::tools::direct2d {

class QOR_TOOLS_API path : public container::comptr<ID2D1PathGeometry> {
public:
    // Empty or on a geometry; copies share it.
    using container::comptr<ID2D1PathGeometry>::comptr;
    path() = default;
    path(path const &) = default;
    path &operator=(path const &) = default;
    ~path() override = default;

    // One closed figure; a geometry opens once, so a second call throws
    // exception "direct2d geometry path create round rect".
    void CreateRoundRect(rectf const &rect);
};

// direct2d::image: a shared handle on a bitmap of a render target.
class QOR_TOOLS_API image : public container::comptr<ID2D1Bitmap> {
public:
    // Empty or on a bitmap; copies share it.
    using container::comptr<ID2D1Bitmap>::comptr;
    image() = default;
    image(image const &) = default;
    image &operator=(image const &) = default;
    ~image() override = default;
};

}  // namespace qor::tools::direct2d
