#include "qor/tools/direct2d/path.h"

#include "qor/tools/exception.h"

namespace qor::tools::direct2d {

void path::CreateRoundRect(rectf const &rect) {
    float l = rect.left, t = rect.top, r = rect.right, b = rect.bottom;
    container::comptr<ID2D1GeometrySink> sink;
    if (IsEmpty() || FAILED(Get()->Open(sink.Addr()))) throw exception(u"direct2d geometry path create round rect");
    sink->BeginFigure(D2D1::Point2F(l + 1, t), D2D1_FIGURE_BEGIN_FILLED);
    D2D1_POINT_2F const outline[] = {
        {r - 1, t}, {r - 1, t + 1}, {r, t + 1}, {r, b - 1}, {r - 1, b - 1}, {r - 1, b},
        {l + 1, b}, {l + 1, b - 1}, {l, b - 1}, {l, t + 1}, {l + 1, t + 1},
    };
    for (D2D1_POINT_2F const &point : outline) sink->AddLine(point);
    sink->EndFigure(D2D1_FIGURE_END_CLOSED);
    if (FAILED(sink->Close())) throw exception(u"direct2d geometry path create round rect");
}

}  // namespace qor::tools::direct2d
