#include "qor/tools/graphic/spline.h"

#include <initializer_list>

namespace qor::tools::graphic {

spline::spline() : mFallback(new line) {}

void spline::_Fallback(pointd const &a, pointd const &b) { mFallback.Replace(new line(a, b), false); }

void spline::Initialize(container::array<CPoint, container::pif::array::object> points) {
    container::array<direct2d::pointf, container::pif::array::object> converted(0, points.Size() > 0 ? points.Size() : 1);
    for (int i = 0; i < points.Size(); ++i) converted.Add(direct2d::pointf(float(points[i].x), float(points[i].y)));
    mCount = points.Size() - 1;
    if (mCount < 2) {
        if (points.Size() >= 2) {
            _Fallback(pointd(points[0].x, points[0].y), pointd(points[1].x, points[1].y));
        } else {
            _Fallback(pointd(), pointd());  // too few knots: a line that gives 0 everywhere
        }
        return;
    }
    Initialize(converted);
}

void spline::Initialize(container::array<direct2d::pointf, container::pif::array::object> const &points) {
    int n = points.Size() - 1;
    mCount = n;
    if (n < 2) {
        if (n == 1) {
            _Fallback(pointd(points[0]), pointd(points[1]));
        } else {
            _Fallback(pointd(), pointd());
        }
        return;
    }
    for (values *a : {&mH, &mDiagonal, &mRhs, &mMu, &mZ, &mB, &mD}) a->Size(n);
    for (values *a : {&mC, &mX, &mY}) a->Size(n + 1);
    values &h = mH, &diagonal = mDiagonal, &rhs = mRhs, &mu = mMu, &z = mZ, &c = mC, &b = mB, &d = mD, &x = mX,
           &y = mY;
    for (int i = 0; i <= n; ++i) {
        x[i] = points[i].x;
        y[i] = points[i].y;
    }
    for (int i = 0; i < n; ++i) h[i] = x[i + 1] - x[i];
    for (int i = 1; i < n; ++i) {
        diagonal[i] = (h[i - 1] + h[i]) * 2;
        rhs[i] = ((y[i + 1] - y[i]) / h[i] - (y[i] - y[i - 1]) / h[i - 1]) * 3;
    }
    mu[1] = h[1] / diagonal[1];
    for (int i = 2; i <= n - 2; ++i) mu[i] = h[i] / (diagonal[i] - mu[i - 1] * h[i - 1]);
    z[1] = rhs[1] / diagonal[1];
    for (int i = 2; i <= n - 1; ++i) z[i] = (rhs[i] - h[i - 1] * z[i - 1]) / (diagonal[i] - h[i - 1] * mu[i - 1]);
    c[0] = 0;
    c[n] = 0;
    c[n - 1] = z[n - 1];
    for (int i = n - 2; i >= 1; --i) c[i] = z[i] - mu[i] * c[i + 1];
    for (int i = 0; i < n; ++i) {
        b[i] = (y[i + 1] - y[i]) / h[i] - (c[i] * 2 + c[i + 1]) * h[i] / 3;
        d[i] = (c[i + 1] - c[i]) / (h[i] * 3);
    }
}

double spline::Value(double t) const noexcept {
    if (mCount < 2) return t * mFallback->mGradient + mFallback->mIntercept;
    int j = mCount - 1;
    for (int i = 1; i <= mCount - 1; ++i) {
        if (mX[i] > t) {
            j = i - 1;
            break;
        }
    }
    double u = t - mX[j];
    return ((u * mD[j] + mC[j]) * u + mB[j]) * u + mY[j];
}

}  // namespace qor::tools::graphic
