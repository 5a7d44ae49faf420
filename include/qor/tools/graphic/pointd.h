// graphic::vector, graphic::pointd and graphic::angle: the plane geometry's
// value types in double precision. Every comparison is exact (no tolerance),
// angles are in degrees turning from +x towards +y, and pi is the double
// 3.141592653589793.
//
//   pointd p(1, 0);
//   p.Rotation(90, pointd(0, 0));            // (0, 1) up to rounding
//   double sweep = angle::Get(a, centre, b); // in (0, 360]
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/direct2d/float_types.h"

namespace qor::tools::graphic {

inline constexpr double pi = 3.141592653589793;

class pointd;

// A displacement (or a size) in the plane.
class QOR_TOOLS_API vector {
public:
    // Zero, or the components of a point, a size or another vector.
    vector() noexcept = default;
    vector(D2D_POINT_2F const &p) noexcept : x(p.x), y(p.y) {}
    vector(D2D_SIZE_F const &s) noexcept : x(s.width), y(s.height) {}
    vector(CPoint const &p) noexcept : x(p.x), y(p.y) {}
    vector(pointd const &p) noexcept;
    vector(vector const &) noexcept = default;
    vector &operator=(vector const &) noexcept = default;

    // Sets both components to 0; adds or subtracts another vector; compares
    // exactly; converts to an integer point (truncated) or to float pairs.
    void Empty() noexcept { x = y = 0; }
    vector &operator+=(vector const &v) noexcept;
    vector &operator-=(vector const &v) noexcept;
    bool operator==(vector const &v) const noexcept { return x == v.x && y == v.y; }
    bool operator!=(vector const &v) const noexcept { return x != v.x || y != v.y; }
    operator CPoint() const noexcept;
    operator D2D_POINT_2F() const noexcept { return {float(x), float(y)}; }
    operator D2D_SIZE_F() const noexcept { return {float(x), float(y)}; }

    double x = 0;  // the horizontal component
    double y = 0;  // the vertical component
};

// A point in the plane.
class QOR_TOOLS_API pointd {
public:
    // The origin, (px, py), or the coordinates of another point or vector.
    pointd() noexcept = default;
    pointd(double px, double py) noexcept : x(px), y(py) {}
    pointd(direct2d::pointf const &p) noexcept : x(p.x), y(p.y) {}
    pointd(CPoint const &p) noexcept : x(p.x), y(p.y) {}
    pointd(vector const &v) noexcept : x(v.x), y(v.y) {}
    pointd(pointd const &) noexcept = default;
    pointd &operator=(pointd const &) noexcept = default;
    virtual ~pointd() = default;

    // As a float point.
    operator direct2d::pointf() const noexcept { return {float(x), float(y)}; }
    // Moves the point to (px, py), by (dx, dy), or turns it by `degrees`
    // around `center`; each answers the point. IsEqual compares exactly.
    pointd &Set(double px, double py) noexcept;
    pointd &Offset(double dx, double dy) noexcept;
    pointd &Rotation(double degrees, pointd const &center) noexcept;
    bool IsEqual(pointd const &other) const noexcept { return x == other.x && y == other.y; }

    // The same moves on a copy of `p`.
    static pointd Offset(pointd const &p, double dx, double dy) noexcept;
    static pointd Rotation(pointd const &p, double degrees, pointd const &center) noexcept;
    // Left, top from `a`; right, bottom from `b`; not normalised.
    static direct2d::rectf Rect(pointd const &a, pointd const &b) noexcept;
    // a - b, per axis and signed.
    static direct2d::sizef Size(pointd const &a, pointd const &b) noexcept;
    // b - a, per axis and signed (not a length: that is line::Distance).
    static direct2d::sizef Distance(pointd const &a, pointd const &b) noexcept;

    double x = 0;  // the horizontal coordinate
    double y = 0;  // the vertical coordinate
};

// Angles in degrees, turning from +x towards +y.
class QOR_TOOLS_API angle {
public:
    // Carries no value: the operations are static.
    angle() noexcept {}
    angle(angle const &) noexcept = default;
    angle &operator=(angle const &) noexcept = default;

    // The complement to a full turn, and whether an angle is 180 or more.
    static double Reverse(double a) noexcept { return 360 - a; }
    static bool IsLarge(double a) noexcept { return a >= 180; }
    // Direction of `to` seen from `from`, in [0, 360).
    static double Get(pointd const &from, pointd const &to) noexcept;
    // Sweep from `a` to `b` around `center` in the positive direction, in (0, 360].
    static double Get(pointd const &a, pointd const &center, pointd const &b) noexcept;
    // The sweep or its complement, whichever is large (or not) as asked.
    static double Get(pointd const &a, pointd const &center, pointd const &b, bool large) noexcept;

private:
    double mValue;  // read by no operation
};

}  // namespace qor::tools::graphic
