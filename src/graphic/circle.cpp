#include "qor/tools/graphic/circle.h"

#include <cmath>

namespace qor::tools::graphic {

bool circle::IsValid(pointd const &a, pointd const &b, pointd const &c) noexcept {
    if (a.IsEqual(b) || b.IsEqual(c) || a.IsEqual(c)) return false;
    return !line::IsHorizontal(a, b, c) && !line::IsVertical(a, b, c);
}

bool circle::Set(pointd const &a, pointd const &b, pointd const &c) noexcept {
    if (!IsValid(a, b, c)) {
        mStatus = -1;
        mCenter = pointd();
        mRadius = 0;
        return false;
    }
    mStatus = 0;
    mCenter = line::Intersection(line::VerticalLine(a, b), line::VerticalLine(b, c));
    mRadius = line::Distance(mCenter, a);
    return true;
}

bool circle::Set(pointd const &center, pointd const &p) noexcept {
    mCenter = center;
    if (center.IsEqual(p)) {
        mStatus = -1;
        mRadius = 0;
        return false;
    }
    mStatus = 0;
    mRadius = line::Distance(center, p);
    return true;
}

direct2d::rectf circle::Rect() const noexcept {
    return {float(mCenter.x - mRadius), float(mCenter.y - mRadius), float(mCenter.x + mRadius),
            float(mCenter.y + mRadius)};
}

void circle::BetweenPoint(circle const &a, circle const &b, pointd &pa, pointd &pb) noexcept {
    pa.Set(a.mCenter.x + a.mRadius, a.mCenter.y);
    pa.Rotation(angle::Get(a.mCenter, b.mCenter), a.mCenter);
    pb.Set(b.mCenter.x + b.mRadius, b.mCenter.y);
    pb.Rotation(angle::Get(b.mCenter, a.mCenter), b.mCenter);
}

bool arc::_Set(pointd const &center, pointd const &p1, pointd const &p2) noexcept {
    if (circle::IsValid() && circle::IsValid(center, p1, p2)) {
        mStatus = 0;
        mAngle = angle::Get(p1, center, p2);
        mStart = p1;
        mEnd = p2;
    } else {
        mStatus = -1;
        mAngle = 0;
        mStart = center;
        mEnd = center;
    }
    return circle::IsValid();
}

bool arc::Set(pointd const &center, pointd const &p1, pointd const &p2) noexcept {
    circle::Set(center, p1);
    return _Set(center, p1, p2);
}

bool arc::Set(pointd const &center, pointd const &p1, pointd const &p2, bool large) noexcept {
    circle::Set(center, p1);
    double s = angle::Get(p1, center, p2);
    return (s >= 180) == large ? _Set(center, p1, p2) : _Set(center, p2, p1);
}

bool arc::Set(pointd const &a, pointd const &b, pointd const &c, int) noexcept {
    circle::Set(a, b, c);
    double s1 = angle::Get(a, mCenter, b), s2 = angle::Get(a, mCenter, c);
    pointd center = circle::IsValid() ? mCenter : a;
    return s1 > s2 ? _Set(center, a, b) : _Set(center, b, a);
}

double arc::Length(bool chord) const noexcept {
    double length = (mRadius + mRadius) * pi * (mAngle / 360);
    return chord ? length + line::Distance(mStart, mEnd) : length;
}

double arc::Area() const noexcept {
    return mRadius * mRadius * pi * (mAngle / 360) - std::sin(mAngle * pi / 180) * (mRadius * mRadius) * 0.5;
}

bool arc::IsContainAngle(pointd const &p) const noexcept { return mAngle >= angle::Get(mStart, mCenter, p); }

}  // namespace qor::tools::graphic
