#include "qor/tools/graphic/pointd.h"

#include <cmath>
#include <cstdint>

namespace qor::tools::graphic {

namespace {

// Truncation toward zero as the processor does it: out of range or NaN gives INT32_MIN.
int Truncate(double v) noexcept {
    if (!(v > -2147483649.0 && v < 2147483648.0)) return INT32_MIN;
    return int(v);
}

}  // namespace

vector::vector(pointd const &p) noexcept : x(p.x), y(p.y) {}

vector &vector::operator+=(vector const &v) noexcept {
    x += v.x;
    y += v.y;
    return *this;
}

vector &vector::operator-=(vector const &v) noexcept {
    x -= v.x;
    y -= v.y;
    return *this;
}

vector::operator CPoint() const noexcept { return {Truncate(x), Truncate(y)}; }

pointd &pointd::Set(double px, double py) noexcept {
    x = px;
    y = py;
    return *this;
}

pointd &pointd::Offset(double dx, double dy) noexcept {
    x += dx;
    y += dy;
    return *this;
}

pointd &pointd::Rotation(double degrees, pointd const &center) noexcept {
    double r = degrees * pi / 180;
    double dx = x - center.x, dy = y - center.y;
    x = std::cos(r) * dx + center.x - std::sin(r) * dy;
    y = std::sin(r) * dx + center.y + std::cos(r) * dy;
    return *this;
}

pointd pointd::Offset(pointd const &p, double dx, double dy) noexcept { return pointd(p).Offset(dx, dy); }

pointd pointd::Rotation(pointd const &p, double degrees, pointd const &center) noexcept {
    return pointd(p).Rotation(degrees, center);
}

direct2d::rectf pointd::Rect(pointd const &a, pointd const &b) noexcept {
    return {float(a.x), float(a.y), float(b.x), float(b.y)};
}

direct2d::sizef pointd::Size(pointd const &a, pointd const &b) noexcept {
    return {float(a.x - b.x), float(a.y - b.y)};
}

direct2d::sizef pointd::Distance(pointd const &a, pointd const &b) noexcept {
    return {float(b.x - a.x), float(b.y - a.y)};
}

double angle::Get(pointd const &from, pointd const &to) noexcept {
    double r = std::atan2(to.y - from.y, to.x - from.x) * 180 / pi;
    return r < 0 ? r + 360 : r;
}

double angle::Get(pointd const &a, pointd const &center, pointd const &b) noexcept {
    double alpha = Get(center, a), beta = Get(center, b);
    return beta > alpha ? beta - alpha : 360 - alpha + beta;
}

double angle::Get(pointd const &a, pointd const &center, pointd const &b, bool large) noexcept {
    double s = Get(a, center, b);
    return (s >= 180) == large ? s : 360 - s;
}

}  // namespace qor::tools::graphic
