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
    enum class eStatus : std::int32_t { Invalid = -1, Normal = 0, Vertical = 1, Horizontal = 2 };

    line() noexcept = default;
    line(pointd const &a, pointd const &b) noexcept;
    line(pointd const &p, double gradient) noexcept;
    line(double gradient, double intercept) noexcept;
    line(line const &) noexcept = default;
    line &operator=(line const &) noexcept = default;

    double Y(double x) const noexcept { return x * mGradient + mIntercept; }
    double X(double y) const noexcept { return mGradient == 0 ? 0 : (y - mIntercept) / mGradient; }
    bool IsValid() const noexcept { return mStatus != eStatus::Invalid; }
    bool Normal() const noexcept { return mStatus == eStatus::Normal; }
    bool Vertical() const noexcept { return mStatus == eStatus::Vertical; }
    bool Horizontal() const noexcept { return mStatus == eStatus::Horizontal; }

    static double Intercept(pointd const &p, double gradient) noexcept { return p.y - gradient * p.x; }
    static double GradientVerticalLine(double gradient) noexcept { return gradient == 0 ? 0 : -1 / gradient; }
    static eStatus Status(pointd const &a, pointd const &b) noexcept;
    static double Gradient(pointd const &a, pointd const &b) noexcept;
    static pointd Intersection(line const &a, line const &b) noexcept;
    static pointd Intersection(pointd const &p, line const &l) noexcept;
    static pointd Center(pointd const &a, pointd const &b) noexcept;
    static double Distance(pointd const &a, pointd const &b) noexcept;
    static double DistanceHorz(pointd const &a, pointd const &b) noexcept;
    static double DistanceVert(pointd const &a, pointd const &b) noexcept;
    // The perpendicular bisector of the segment a-b.
    static line VerticalLine(pointd const &a, pointd const &b) noexcept;
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

    eStatus mStatus = eStatus::Invalid;
    double mGradient = 0;
    double mIntercept = 0;
    double mX = 0;

private:
    static line Make(eStatus status, double gradient, double intercept, double x) noexcept;
};

}  // namespace qor::tools::graphic
