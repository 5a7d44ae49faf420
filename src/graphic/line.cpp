#include "qor/tools/graphic/line.h"

#include <cmath>

namespace qor::tools::graphic {

line line::Make(eStatus status, double gradient, double intercept, double x) noexcept {
    line l;
    l.mStatus = status;
    l.mGradient = gradient;
    l.mIntercept = intercept;
    l.mX = x;
    return l;
}

line::line(pointd const &a, pointd const &b) noexcept : mStatus(Status(a, b)) {
    switch (mStatus) {
        case eStatus::Normal:
            mGradient = Gradient(a, b);
            mIntercept = a.y - mGradient * a.x;
            break;
        case eStatus::Vertical: mX = a.x; break;
        case eStatus::Horizontal: mIntercept = a.y; break;
        case eStatus::Invalid: break;
    }
}

line::line(pointd const &p, double gradient) noexcept {
    if (gradient == 0) return;
    *this = Make(eStatus::Normal, gradient, p.y - gradient * p.x, 0);
}

line::line(double gradient, double intercept) noexcept {
    if (gradient == 0) return;
    *this = Make(eStatus::Normal, gradient, intercept, 0);
}

line::eStatus line::Status(pointd const &a, pointd const &b) noexcept {
    if (a.x == b.x && a.y == b.y) return eStatus::Invalid;
    if (a.x == b.x) return eStatus::Vertical;
    if (a.y == b.y) return eStatus::Horizontal;
    return eStatus::Normal;
}

double line::Gradient(pointd const &a, pointd const &b) noexcept {
    double dx = b.x - a.x;
    return dx == 0 ? 0 : (b.y - a.y) / dx;
}

pointd line::Intersection(line const &a, line const &b) noexcept {
    if (!a.IsValid() || !b.IsValid()) return pointd(-1, -1);
    if (a.Normal() && b.Normal()) {
        double d = a.mGradient - b.mGradient;
        if (d == 0) return pointd(0, a.mIntercept);
        double x = (b.mIntercept - a.mIntercept) / d;
        return pointd(x, x * a.mGradient + a.mIntercept);
    }
    if (a.Horizontal() && b.Vertical()) return pointd(b.mX, a.mIntercept);
    if (a.Vertical() && b.Horizontal()) return pointd(a.mX, b.mIntercept);
    if (a.Vertical()) return pointd(a.mX, a.mX * b.mGradient + b.mIntercept);
    if (b.Vertical()) return pointd(b.mX, b.mX * a.mGradient + a.mIntercept);
    if (a.Horizontal()) {
        return pointd(b.mGradient != 0 ? (a.mIntercept - b.mIntercept) / b.mGradient : 0, a.mIntercept);
    }
    return pointd(a.mGradient != 0 ? (b.mIntercept - a.mIntercept) / a.mGradient : 0, b.mIntercept);
}

pointd line::Intersection(pointd const &p, line const &l) noexcept {
    if (l.Vertical()) return pointd(l.mX, p.y);
    if (l.Horizontal()) return pointd(p.x, l.mIntercept);
    double g = GradientVerticalLine(l.mGradient);
    if (g == 0) return Intersection(l, line());
    return Intersection(l, Make(eStatus::Normal, g, p.y - g * p.x, 0));
}

pointd line::Center(pointd const &a, pointd const &b) noexcept {
    return pointd((a.x + b.x) * 0.5, (a.y + b.y) * 0.5);
}

double line::Distance(pointd const &a, pointd const &b) noexcept {
    double dx = b.x - a.x, dy = b.y - a.y;
    return std::sqrt(dx * dx + dy * dy);
}

double line::DistanceHorz(pointd const &a, pointd const &b) noexcept { return std::fabs(a.x - b.x); }

double line::DistanceVert(pointd const &a, pointd const &b) noexcept { return std::fabs(a.y - b.y); }

line line::VerticalLine(pointd const &a, pointd const &b) noexcept {
    line l(a, b);
    pointd c = Center(a, b);
    double g = GradientVerticalLine(l.mGradient);
    if (g != 0) return Make(eStatus::Normal, g, c.y - g * c.x, 0);
    if (l.Vertical()) return Make(eStatus::Horizontal, 0, c.y, 0);
    if (l.Horizontal()) return Make(eStatus::Vertical, 0, 0, c.x);
    return line();
}

bool line::IsParallel(line const &a, line const &b) noexcept {
    if (a.Vertical() && b.Vertical()) return true;
    if (a.Horizontal() && b.Horizontal()) return true;
    return a.Normal() && b.Normal() && a.mGradient == b.mGradient;
}

}  // namespace qor::tools::graphic
