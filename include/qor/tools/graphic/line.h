// graphic::line: an unbounded straight line in slope-intercept form, with
// vertical and horizontal lines kept apart, and the segment helpers of the
// geometry (midpoint, distances, perpendicular bisector, predicates).
// Comparisons are exact; parallel lines intersect at (0, intercept of the
// first) and an invalid line gives (-1, -1), without any failure signalled.
//
//   line l(pointd(0, 0), pointd(2, 4));   // Normal, gradient 2
//   pointd foot = line::Intersection(p, l);
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/graphic/pointd.h"

namespace qor::tools::graphic {

class QOR_TOOLS_API line {
public:
    // The kind of line: none (two equal points), sloped, vertical, horizontal.
    enum class eStatus : std::int32_t { Invalid = -1, Normal = 0, Vertical = 1, Horizontal = 2 };

    // An invalid line; the line through two points; through a point with a
    // gradient; or from gradient and intercept.
    line() noexcept = default;
    line(pointd const &a, pointd const &b) noexcept;
    line(pointd const &p, double gradient) noexcept;
    line(double gradient, double intercept) noexcept;
    line(line const &) noexcept = default;
    line &operator=(line const &) noexcept = default;

    // The line's y at `x`, and its x at `y` (0 on a horizontal line).
    double Y(double x) const noexcept { return x * mGradient + mIntercept; }
    double X(double y) const noexcept { return mGradient == 0 ? 0 : (y - mIntercept) / mGradient; }
    // The kind of the line.
    bool IsValid() const noexcept { return mStatus != eStatus::Invalid; }
    bool Normal() const noexcept { return mStatus == eStatus::Normal; }
    bool Vertical() const noexcept { return mStatus == eStatus::Vertical; }
    bool Horizontal() const noexcept { return mStatus == eStatus::Horizontal; }

    // The intercept of the line through `p` with `gradient`, and the gradient
    // perpendicular to `gradient` (0 for 0).
    static double Intercept(pointd const &p, double gradient) noexcept { return p.y - gradient * p.x; }
    static double GradientVerticalLine(double gradient) noexcept { return gradient == 0 ? 0 : -1 / gradient; }
    // The kind and the gradient of the line through two points.
    static eStatus Status(pointd const &a, pointd const &b) noexcept;
    static double Gradient(pointd const &a, pointd const &b) noexcept;
    // Where two lines cross, and the foot of the perpendicular from `p` on `l`.
    static pointd Intersection(line const &a, line const &b) noexcept;
    static pointd Intersection(pointd const &p, line const &l) noexcept;
    // The midpoint of a segment, its length, and its horizontal and vertical
    // extents.
    static pointd Center(pointd const &a, pointd const &b) noexcept;
    static double Distance(pointd const &a, pointd const &b) noexcept;
    static double DistanceHorz(pointd const &a, pointd const &b) noexcept;
    static double DistanceVert(pointd const &a, pointd const &b) noexcept;
    // The perpendicular bisector of the segment a-b.
    static line VerticalLine(pointd const &a, pointd const &b) noexcept;
    // Whether two points make a line, and whether two or three points lie on
    // one vertical or horizontal line; whether two lines are parallel.
    static bool IsValid(pointd const &a, pointd const &b) noexcept { return !a.IsEqual(b); }
    static bool IsVertical(pointd const &a, pointd const &b) noexcept { return a.x == b.x; }
    static bool IsVertical(pointd const &a, pointd const &b, pointd const &c) noexcept {
        return a.x == b.x && b.x == c.x;
    }
    static bool IsHorizontal(pointd const &a, pointd const &b) noexcept { return a.y == b.y; }
    static bool IsHorizontal(pointd const &a, pointd const &b, pointd const &c) noexcept {
        return a.y == b.y && b.y == c.y;
    }
    static bool IsParallel(line const &a, line const &b) noexcept;

    eStatus mStatus = eStatus::Invalid;  // the kind of line
    double mGradient = 0;   // dy/dx of a sloped line
    double mIntercept = 0;  // y at x = 0 (a horizontal line's y)
    double mX = 0;          // a vertical line's x

private:
    static line Make(eStatus status, double gradient, double intercept, double x) noexcept;
};

}  // namespace qor::tools::graphic
