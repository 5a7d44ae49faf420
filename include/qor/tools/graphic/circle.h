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
    circle() noexcept = default;
    circle(pointd const &a, pointd const &b, pointd const &c) noexcept { Set(a, b, c); }
    circle(pointd const &center, pointd const &p) noexcept { Set(center, p); }
    circle(circle const &) noexcept = default;
    circle &operator=(circle const &) noexcept = default;

    bool Set(pointd const &a, pointd const &b, pointd const &c) noexcept;
    bool Set(pointd const &center, pointd const &p) noexcept;
    bool IsValid() const noexcept { return mStatus != -1; }
    double Diameter() const noexcept { return mRadius + mRadius; }
    double Length() const noexcept { return (mRadius + mRadius) * pi; }
    double Area() const noexcept { return mRadius * mRadius * pi; }
    direct2d::rectf Rect() const noexcept;

    static bool IsValid(pointd const &a, pointd const &b, pointd const &c) noexcept;
    // Where the line of centres meets each circle on the side facing the other.
    static void BetweenPoint(circle const &a, circle const &b, pointd &pa, pointd &pb) noexcept;

    std::int32_t mStatus = -1;
    pointd mCenter;
    double mRadius = 0;
};

class QOR_TOOLS_API arc : public circle {
public:
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
    bool IsLarge() const noexcept { return mAngle >= 180; }
    double Length(bool chord) const noexcept;
    double Area() const noexcept;
    bool IsContainAngle(pointd const &p) const noexcept;

    double mAngle = 0;
    pointd mStart;
    pointd mEnd;

protected:
    bool _Set(pointd const &center, pointd const &p1, pointd const &p2) noexcept;
};

}  // namespace qor::tools::graphic
