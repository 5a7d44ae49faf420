#include "qor/tools/graphic/spline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

using namespace qor::tools;
using namespace qor::tools::graphic;
using floats = container::array<direct2d::pointf, container::pif::array::object>;
using ints = container::array<CPoint, container::pif::array::object>;

namespace {

floats Knots(std::initializer_list<std::pair<float, float>> list) {
    floats a;
    for (auto [x, y] : list) a.Add(direct2d::pointf(x, y));
    return a;
}

// A natural cubic spline solved independently: second derivatives M by the
// Thomas algorithm on the standard system, then the Hermite-like form.
struct reference {
    std::vector<double> x, y, m;
    reference(floats const &k) {
        int n = k.Size() - 1;
        for (int i = 0; i <= n; ++i) x.push_back(k[i].x), y.push_back(k[i].y);
        m.assign(n + 1, 0);
        std::vector<double> a(n + 1), b(n + 1), c(n + 1), r(n + 1);
        for (int i = 1; i < n; ++i) {
            double h0 = x[i] - x[i - 1], h1 = x[i + 1] - x[i];
            a[i] = h0, b[i] = 2 * (h0 + h1), c[i] = h1;
            r[i] = 6 * ((y[i + 1] - y[i]) / h1 - (y[i] - y[i - 1]) / h0);
        }
        for (int i = 2; i < n; ++i) {
            double w = a[i] / b[i - 1];
            b[i] -= w * c[i - 1];
            r[i] -= w * r[i - 1];
        }
        for (int i = n - 1; i >= 1; --i) m[i] = (r[i] - (i + 1 < n ? c[i] * m[i + 1] : 0)) / b[i];
    }
    double Value(double t) const {
        int n = int(x.size()) - 1, j = n - 1;
        for (int i = 0; i < n; ++i) {
            if (t < x[i + 1]) { j = i; break; }
        }
        double h = x[j + 1] - x[j], u = t - x[j], v = x[j + 1] - t;
        return m[j] * v * v * v / (6 * h) + m[j + 1] * u * u * u / (6 * h) + (y[j] / h - m[j] * h / 6) * v +
               (y[j + 1] / h - m[j + 1] * h / 6) * u;
    }
};

}  // namespace

TEST(Spline, StraightLineIsReproduced) {
    spline s;
    s.Initialize(Knots({{0, 0}, {1, 1}, {2, 2}}));
    for (double t : {-1.0, 0.0, 0.5, 1.0, 1.5, 2.0, 3.0}) EXPECT_DOUBLE_EQ(s.Value(t), t);
}

TEST(Spline, KnownValues) {
    spline s;
    s.Initialize(Knots({{0, 0}, {1, 1}, {2, 0}}));
    EXPECT_EQ(s.Value(0), 0);
    EXPECT_EQ(s.Value(1), 1);
    EXPECT_DOUBLE_EQ(s.Value(2), 0);
    EXPECT_DOUBLE_EQ(s.Value(0.5), 0.6875);
}

TEST(Spline, FallbackLineBelowThreeKnots) {
    spline s;
    ints two;
    two.Add(CPoint{0, 0});
    two.Add(CPoint{10, 5});
    s.Initialize(two);
    EXPECT_DOUBLE_EQ(s.Value(4), 2);
    ints vertical;
    vertical.Add(CPoint{3, 0});
    vertical.Add(CPoint{3, 5});
    s.Initialize(vertical);
    EXPECT_EQ(s.Value(7), 0);
    ints flat;
    flat.Add(CPoint{0, 4});
    flat.Add(CPoint{9, 4});
    s.Initialize(flat);
    EXPECT_EQ(s.Value(-3), 4);
    ints three;
    for (int i = 0; i < 3; ++i) three.Add(CPoint{i, i * i});
    s.Initialize(three);
    EXPECT_EQ(s.Value(1), 1);  // the fallback stays, unused
    EXPECT_EQ(s.mFallback->mIntercept, 4);
    spline copy = s;
    ints other;
    for (int i = 0; i < 3; ++i) other.Add(CPoint{i, 5});
    s.Initialize(other);
    EXPECT_EQ(copy.Value(1), 5);  // copies share the fitted arrays
    spline few;
    few.Initialize(ints());
    EXPECT_EQ(few.Value(5), 0);
}

TEST(Spline, RandomKnotsAgainstAnIndependentSolve) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> step(0.25f, 4), value(-20, 20);
    for (int round = 0; round < 50; ++round) {
        floats k;
        float x = value(random);
        int n = 3 + round % 20;
        for (int i = 0; i < n; ++i, x += step(random)) k.Add(direct2d::pointf(x, value(random)));
        spline s;
        s.Initialize(k);
        reference r(k);
        // Every knot but the last starts its segment and comes back exactly;
        // the last one is the end of the last segment's polynomial.
        for (int i = 0; i + 1 < n; ++i) EXPECT_EQ(s.Value(k[i].x), double(k[i].y)) << "knot " << i;
        EXPECT_NEAR(s.Value(k[n - 1].x), k[n - 1].y, 1e-9 * (1 + std::fabs(k[n - 1].y)));
        for (int i = 0; i + 1 < n; ++i) {
            for (double f : {0.1, 0.5, 0.9}) {
                double t = k[i].x + f * (k[i + 1].x - k[i].x);
                EXPECT_NEAR(s.Value(t), r.Value(t), 1e-9 * (1 + std::fabs(r.Value(t))));
            }
        }
        // Continuity of value, slope and curvature at inner knots.
        for (int i = 1; i + 1 < n; ++i) {
            double t = k[i].x, e = 1e-6;
            auto f = [&](double u) { return s.Value(u); };
            double leftSlope = (f(t) - f(t - e)) / e, rightSlope = (f(t + e) - f(t)) / e;
            EXPECT_NEAR(leftSlope, rightSlope, 1e-3 * (1 + std::fabs(leftSlope)));
            EXPECT_NEAR(2 * s.mC[i - 1] + 6 * s.mD[i - 1] * s.mH[i - 1], 2 * s.mC[i], 1e-9 * (1 + std::fabs(s.mC[i])));
        }
    }
}
