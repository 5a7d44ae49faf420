#include "d2d_path.h"

#include <cairo.h>

#include <cmath>

namespace qor::tools::platform::d2d {

namespace {

constexpr double kPi = 3.14159265358979323846;

// Writes the figures of one geometry; closing it closes the geometry.
class sink final : public com_object<ID2D1GeometrySink, ID2D1SimplifiedGeometrySink> {
public:
    explicit sink(path_geometry *owner) : mOwner(owner) { mOwner->AddRef(); }
    ~sink() override { mOwner->Release(); }

    void SetFillMode(D2D1_FILL_MODE mode) override {
        if (Writing()) mOwner->mFillMode = mode;
    }
    void SetSegmentFlags(D2D1_PATH_SEGMENT) override {}
    void BeginFigure(D2D1_POINT_2F start, D2D1_FIGURE_BEGIN begin) override {
        if (!Writing() || mInFigure) return Fail();
        mOwner->mFigures.push_back(figure{start, begin, D2D1_FIGURE_END_OPEN, {}});
        mInFigure = true;
    }
    void AddLines(D2D1_POINT_2F const *points, std::uint32_t count) override {
        for (std::uint32_t i = 0; points && i < count; ++i) AddLine(points[i]);
    }
    void AddBeziers(D2D1_BEZIER_SEGMENT const *beziers, std::uint32_t count) override {
        for (std::uint32_t i = 0; beziers && i < count; ++i) AddBezier(beziers[i]);
    }
    void EndFigure(D2D1_FIGURE_END end) override {
        if (!mInFigure) return Fail();
        mOwner->mFigures.back().mEnd = end;
        mInFigure = false;
    }
    HRESULT Close() override {
        if (!Writing() || mInFigure || mFailed) {
            if (Writing()) mOwner->mState = path_geometry::state::closed;
            return D2DERR_WRONG_STATE;
        }
        mOwner->mState = path_geometry::state::closed;
        return S_OK;
    }
    void AddLine(D2D1_POINT_2F point) override {
        segment s;
        s.mPoints[0] = point;
        Add(s);
    }
    void AddBezier(D2D1_BEZIER_SEGMENT const &b) override {
        segment s;
        s.mKind = segment::bezier;
        s.mPoints[0] = b.point1, s.mPoints[1] = b.point2, s.mPoints[2] = b.point3;
        Add(s);
    }
    void AddQuadraticBezier(D2D1_QUADRATIC_BEZIER_SEGMENT const &b) override {
        segment s;
        s.mKind = segment::quadratic;
        s.mPoints[0] = b.point1, s.mPoints[1] = b.point2;
        Add(s);
    }
    void AddQuadraticBeziers(D2D1_QUADRATIC_BEZIER_SEGMENT const *beziers, std::uint32_t count) override {
        for (std::uint32_t i = 0; beziers && i < count; ++i) AddQuadraticBezier(beziers[i]);
    }
    void AddArc(D2D1_ARC_SEGMENT const &arc) override {
        segment s;
        s.mKind = segment::arc;
        s.mArc = arc;
        s.mPoints[0] = arc.point;
        Add(s);
    }

private:
    bool Writing() const noexcept { return mOwner->mState == path_geometry::state::open; }
    void Fail() noexcept { mFailed = true; }
    void Add(segment const &s) {
        if (!mInFigure || !Writing()) return Fail();
        mOwner->mFigures.back().mSegments.push_back(s);
    }

    path_geometry *mOwner;
    bool mInFigure = false;
    bool mFailed = false;
};

D2D1_POINT_2F End(segment const &s) {
    switch (s.mKind) {
    case segment::bezier: return s.mPoints[2];
    case segment::quadratic: return s.mPoints[1];
    default: break;
    }
    return s.mPoints[0];
}

// An elliptical arc from `from` to the arc's point, as the SVG arc is
// defined: the centre is found from the radii (grown if they cannot reach),
// the rotation, the size and the sweep.
void ArcTo(cairo_t *cr, D2D1_POINT_2F from, D2D1_ARC_SEGMENT const &a) {
    double x1 = from.x, y1 = from.y, x2 = a.point.x, y2 = a.point.y;
    double rx = std::fabs(a.size.width), ry = std::fabs(a.size.height);
    if ((x1 == x2 && y1 == y2)) return;
    if (rx == 0 || ry == 0) {
        cairo_line_to(cr, x2, y2);
        return;
    }
    double phi = a.rotationAngle * kPi / 180, c = std::cos(phi), s = std::sin(phi);
    double dx = (x1 - x2) / 2, dy = (y1 - y2) / 2;
    double px = c * dx + s * dy, py = -s * dx + c * dy;
    double grow = px * px / (rx * rx) + py * py / (ry * ry);
    if (grow > 1) rx *= std::sqrt(grow), ry *= std::sqrt(grow);
    double num = rx * rx * ry * ry - rx * rx * py * py - ry * ry * px * px;
    double den = rx * rx * py * py + ry * ry * px * px;
    double factor = std::sqrt(std::max(0.0, num / den));
    bool large = a.arcSize == D2D1_ARC_SIZE_LARGE, clockwise = a.sweepDirection == D2D1_SWEEP_DIRECTION_CLOCKWISE;
    if (large == clockwise) factor = -factor;
    double cx1 = factor * rx * py / ry, cy1 = -factor * ry * px / rx;
    double cx = c * cx1 - s * cy1 + (x1 + x2) / 2, cy = s * cx1 + c * cy1 + (y1 + y2) / 2;
    double start = std::atan2((py - cy1) / ry, (px - cx1) / rx);
    double end = std::atan2((-py - cy1) / ry, (-px - cx1) / rx);
    cairo_save(cr);
    cairo_translate(cr, cx, cy);
    cairo_rotate(cr, phi);
    cairo_scale(cr, rx, ry);
    // Clockwise on the screen (y down) is the growing angle, as cairo_arc draws.
    if (clockwise) {
        if (end < start) end += 2 * kPi;
        cairo_arc(cr, 0, 0, 1, start, end);
    } else {
        if (end > start) end -= 2 * kPi;
        cairo_arc_negative(cr, 0, 0, 1, start, end);
    }
    cairo_restore(cr);
}

void Matrix(cairo_t *cr, D2D1_MATRIX_3X2_F const *m) {
    if (!m) return;
    cairo_matrix_t c;
    cairo_matrix_init(&c, m->_11, m->_12, m->_21, m->_22, m->_31, m->_32);
    cairo_transform(cr, &c);
}

// A context on a tiny surface, for questions about a path.
struct scratch {
    cairo_surface_t *mSurface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t *mCairo = cairo_create(mSurface);
    ~scratch() {
        cairo_destroy(mCairo);
        cairo_surface_destroy(mSurface);
    }
};

}  // namespace

void path_geometry::Trace(cairo_t *cr, bool filled) const {
    for (figure const &f : mFigures) {
        if (filled && f.mBegin == D2D1_FIGURE_BEGIN_HOLLOW) continue;
        cairo_move_to(cr, f.mStart.x, f.mStart.y);
        D2D1_POINT_2F at = f.mStart;
        for (segment const &s : f.mSegments) {
            switch (s.mKind) {
            case segment::line: cairo_line_to(cr, s.mPoints[0].x, s.mPoints[0].y); break;
            case segment::bezier:
                cairo_curve_to(cr, s.mPoints[0].x, s.mPoints[0].y, s.mPoints[1].x, s.mPoints[1].y, s.mPoints[2].x,
                               s.mPoints[2].y);
                break;
            case segment::quadratic: {
                double qx = s.mPoints[0].x, qy = s.mPoints[0].y, ex = s.mPoints[1].x, ey = s.mPoints[1].y;
                cairo_curve_to(cr, at.x + 2.0 / 3 * (qx - at.x), at.y + 2.0 / 3 * (qy - at.y), ex + 2.0 / 3 * (qx - ex),
                               ey + 2.0 / 3 * (qy - ey), ex, ey);
                break;
            }
            case segment::arc: ArcTo(cr, at, s.mArc); break;
            }
            at = End(s);
        }
        if (f.mEnd == D2D1_FIGURE_END_CLOSED) cairo_close_path(cr);
    }
}

cairo_fill_rule_t path_geometry::FillRule() const noexcept {
    return mFillMode == D2D1_FILL_MODE_WINDING ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD;
}

HRESULT path_geometry::GetBounds(D2D1_MATRIX_3X2_F const *transform, D2D1_RECT_F *bounds) const {
    if (!bounds) return E_INVALIDARG;
    if (mState != state::closed) return D2DERR_WRONG_STATE;
    scratch s;
    Matrix(s.mCairo, transform);
    Trace(s.mCairo, false);
    cairo_identity_matrix(s.mCairo);
    double x1, y1, x2, y2;
    cairo_path_extents(s.mCairo, &x1, &y1, &x2, &y2);
    *bounds = {float(x1), float(y1), float(x2), float(y2)};
    return S_OK;
}

HRESULT path_geometry::FillContainsPoint(D2D1_POINT_2F point, D2D1_MATRIX_3X2_F const *transform, float,
                                         BOOL *contains) const {
    if (!contains) return E_INVALIDARG;
    if (mState != state::closed) return D2DERR_WRONG_STATE;
    scratch s;
    Matrix(s.mCairo, transform);
    Trace(s.mCairo, true);
    cairo_identity_matrix(s.mCairo);
    cairo_set_fill_rule(s.mCairo, FillRule());
    *contains = cairo_in_fill(s.mCairo, point.x, point.y);
    return S_OK;
}

HRESULT path_geometry::Open(ID2D1GeometrySink **out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (mState != state::fresh) return D2DERR_WRONG_STATE;
    mState = state::open;
    return HandOut(new sink(this), out);
}

HRESULT path_geometry::Stream(ID2D1GeometrySink *target) const {
    if (!target) return E_INVALIDARG;
    if (mState != state::closed) return D2DERR_WRONG_STATE;
    target->SetFillMode(mFillMode);
    for (figure const &f : mFigures) {
        target->BeginFigure(f.mStart, f.mBegin);
        for (segment const &s : f.mSegments) {
            switch (s.mKind) {
            case segment::line: target->AddLine(s.mPoints[0]); break;
            case segment::bezier: target->AddBezier({s.mPoints[0], s.mPoints[1], s.mPoints[2]}); break;
            case segment::quadratic: target->AddQuadraticBezier({s.mPoints[0], s.mPoints[1]}); break;
            case segment::arc: target->AddArc(s.mArc); break;
            }
        }
        target->EndFigure(f.mEnd);
    }
    return S_OK;
}

HRESULT path_geometry::GetSegmentCount(std::uint32_t *count) const {
    if (!count) return E_INVALIDARG;
    if (mState != state::closed) return D2DERR_WRONG_STATE;
    *count = 0;
    for (figure const &f : mFigures) *count += std::uint32_t(f.mSegments.size());
    return S_OK;
}

HRESULT path_geometry::GetFigureCount(std::uint32_t *count) const {
    if (!count) return E_INVALIDARG;
    if (mState != state::closed) return D2DERR_WRONG_STATE;
    *count = std::uint32_t(mFigures.size());
    return S_OK;
}

}  // namespace qor::tools::platform::d2d
