// graphic::circle and graphic::arc in double precision, built from a centre and
// a point or from three points. A construction that cannot succeed leaves an
// invalid status (read by IsValid) and never throws. Three collinear points on
// a slanted line are not rejected: the bisectors' parallel intersection rule
// then places the centre at x = 0 on the first bisector.
//
//   circle c(pointd(0, 0), pointd(2, 0), pointd(0, 2));   // centre (1, 1)
//   arc quarter(pointd(0, 0), pointd(1, 0), pointd(0, 1)); // 90 degrees
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/graphic/line.h"

namespace qor::tools::graphic {

class QOR_TOOLS_API circle {
public:
    // An invalid circle, the circle through three points, or the one around
    // `center` through `p`.
    circle() noexcept = default;
    circle(pointd const &a, pointd const &b, pointd const &c) noexcept { Set(a, b, c); }
    circle(pointd const &center, pointd const &p) noexcept { Set(center, p); }
    circle(circle const &) noexcept = default;
    circle &operator=(circle const &) noexcept = default;

    // The same as the constructors; false (and invalid) when the three points
    // fail IsValid or the two points are equal.
    bool Set(pointd const &a, pointd const &b, pointd const &c) noexcept;
    bool Set(pointd const &center, pointd const &p) noexcept;
    // Whether the circle is valid, its diameter, circumference, area and
    // bounding rectangle.
    bool IsValid() const noexcept { return mStatus != -1; }
    double Diameter() const noexcept { return mRadius + mRadius; }
    double Length() const noexcept { return (mRadius + mRadius) * pi; }
    double Area() const noexcept { return mRadius * mRadius * pi; }
    direct2d::rectf Rect() const noexcept;

    // The test Set applies to three points: distinct, and not all on one
    // horizontal or vertical line (other collinear points pass it).
    static bool IsValid(pointd const &a, pointd const &b, pointd const &c) noexcept;
    // Where the line of centres meets each circle on the side facing the other.
    static void BetweenPoint(circle const &a, circle const &b, pointd &pa, pointd &pb) noexcept;

    std::int32_t mStatus = -1;  // -1: invalid
    pointd mCenter;             // the centre
    double mRadius = 0;         // the radius
};

// An arc of a circle: where it starts and ends and the sweep between.
class QOR_TOOLS_API arc : public circle {
public:
    // An invalid arc, or one made as the Set of the same arguments.
    arc() noexcept = default;
    arc(pointd const &center, pointd const &p1, pointd const &p2) noexcept { Set(center, p1, p2); }
    arc(pointd const &center, pointd const &p1, pointd const &p2, bool large) noexcept { Set(center, p1, p2, large); }
    arc(pointd const &a, pointd const &b, pointd const &c, int through) noexcept { Set(a, b, c, through); }
    arc(arc const &) noexcept = default;
    arc &operator=(arc const &) noexcept = default;
    virtual ~arc() = default;

    // From p1 to p2 in the positive direction.
    bool Set(pointd const &center, pointd const &p1, pointd const &p2) noexcept;
    // The one of the two arcs between p1 and p2 whose sweep is large or not.
    bool Set(pointd const &center, pointd const &p1, pointd const &p2, bool large) noexcept;
    // Through three points: ends a and b, passing through c (the int only selects this form).
    bool Set(pointd const &a, pointd const &b, pointd const &c, int) noexcept;
    // Whether the sweep is 180 degrees or more; the arc's length (plus the
    // chord when `chord`); the area between arc and chord; whether the
    // direction of `p` from the centre lies within the sweep.
    bool IsLarge() const noexcept { return mAngle >= 180; }
    double Length(bool chord) const noexcept;
    double Area() const noexcept;
    bool IsContainAngle(pointd const &p) const noexcept;

    double mAngle = 0;  // the sweep in degrees, from mStart in the positive direction
    pointd mStart;      // where the arc begins
    pointd mEnd;        // where it ends

protected:
    bool _Set(pointd const &center, pointd const &p1, pointd const &p2) noexcept;
};

}  // namespace qor::tools::graphic
