// Path geometries: figures of lines, Béziers (cubic and quadratic) and
// elliptical arcs, written once through a geometry sink and then drawn,
// filled, measured or streamed into another sink as they were given.
#pragma once

#include <vector>

#include "d2d_resources.h"

namespace qor::tools::platform::d2d {

struct segment {
    enum kind { line, bezier, quadratic, arc };
    kind mKind = line;
    D2D1_POINT_2F mPoints[3];  // the end point last: [0] for a line, [2] for a Bézier, [1] for a quadratic
    D2D1_ARC_SEGMENT mArc;
};

struct figure {
    D2D1_POINT_2F mStart;
    D2D1_FIGURE_BEGIN mBegin = D2D1_FIGURE_BEGIN_FILLED;
    D2D1_FIGURE_END mEnd = D2D1_FIGURE_END_OPEN;
    std::vector<segment> mSegments;
};

class path_geometry final : public resource<ID2D1PathGeometry, ID2D1Geometry> {
public:
    explicit path_geometry(ID2D1Factory *factory) : resource(factory) {}

    HRESULT GetBounds(D2D1_MATRIX_3X2_F const *transform, D2D1_RECT_F *bounds) const override;
    HRESULT FillContainsPoint(D2D1_POINT_2F point, D2D1_MATRIX_3X2_F const *transform, float tolerance,
                              BOOL *contains) const override;
    HRESULT Open(ID2D1GeometrySink **sink) override;
    HRESULT Stream(ID2D1GeometrySink *sink) const override;
    HRESULT GetSegmentCount(std::uint32_t *count) const override;
    HRESULT GetFigureCount(std::uint32_t *count) const override;

    // Adds the figures to the path of `cr` (in its user space); `filled`
    // leaves out the hollow figures, as a fill does.
    void Trace(cairo_t *cr, bool filled) const;
    cairo_fill_rule_t FillRule() const noexcept;

    // Written by the sink.
    enum class state { fresh, open, closed };
    state mState = state::fresh;
    D2D1_FILL_MODE mFillMode = D2D1_FILL_MODE_ALTERNATE;
    std::vector<figure> mFigures;
};

}  // namespace qor::tools::platform::d2d
