// direct2d::target<T>: a shared handle on a render target (ID2D1RenderTarget,
// and the targets on device contexts and windows), drawn on by calling the
// target through it.
//
//   direct2d::target<ID2D1RenderTarget> t = image.CreateRenderTarget();
//   t->BeginDraw();  ...  t->EndDraw();
#pragma once

#include "qor/tools/container/sptr.h"
#include "qor/tools/platform/d2d1.h"

namespace qor::tools::direct2d {

template <typename T>
class target : public container::comptr<T> {
public:
    // Empty or on a render target; copies share it.
    using container::comptr<T>::comptr;
    target() = default;
    target(target const &) = default;
    target &operator=(target const &) = default;
};

}  // namespace qor::tools::direct2d
