// graphic::spline: the natural cubic spline y = f(x) through knots of strictly
// increasing x, second derivative zero at both ends. Fit once with Initialize,
// then ask Value(x) as often as needed; with fewer than three knots it is the
// straight line through the first two. Copies share the fitted arrays.
//
//   spline s;
//   s.Initialize(points);      // array<direct2d::pointf> or array<CPoint>
//   double y = s.Value(2.5);
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/array.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/graphic/line.h"

namespace qor::tools::graphic {

class QOR_TOOLS_API spline {
public:
    // One number per knot (or per interval).
    using values = container::array<double>;

    // Not fitted yet; copies share the fitted arrays.
    spline();
    spline(spline const &) = default;
    spline &operator=(spline const &) = default;

    // Fits the spline through the knots (x strictly increasing).
    void Initialize(container::array<CPoint, container::pif::array::object> points);
    void Initialize(container::array<direct2d::pointf, container::pif::array::object> const &points);
    // f(x) of the fitted spline.
    double Value(double x) const noexcept;

    int mCount = 0;  // the number of knots
    // The fit: interval widths, the tridiagonal system's diagonal, right-hand
    // side and elimination factors, the second-derivative terms, the cubic's
    // coefficients per interval (c, b, d), and the knots themselves.
    values mH, mDiagonal, mRhs, mMu, mZ, mC, mB, mD, mX, mY;
    container::sptr<line> mFallback;  // the line used with fewer than three knots

private:
    void _Fallback(pointd const &a, pointd const &b);
};

}  // namespace qor::tools::graphic
