#include "qor/tools/graphic/circle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace qor::tools::graphic;

TEST(Circle, ThroughThreePoints) {
    circle c(pointd(0, 0), pointd(2, 0), pointd(0, 2));
    EXPECT_TRUE(c.IsValid());
    EXPECT_DOUBLE_EQ(c.mCenter.x, 1);
    EXPECT_DOUBLE_EQ(c.mCenter.y, 1);
    EXPECT_DOUBLE_EQ(c.mRadius, std::sqrt(2.0));
    EXPECT_FALSE(circle(pointd(0, 0), pointd(1, 0), pointd(2, 0)).IsValid());
    EXPECT_FALSE(circle(pointd(0, 0), pointd(0, 1), pointd(0, 2)).IsValid());
    EXPECT_FALSE(circle::IsValid(pointd(0, 0), pointd(0, 0), pointd(1, 2)));

    circle slanted(pointd(0, 0), pointd(1, 1), pointd(2, 2));  // kept, not rejected
    EXPECT_TRUE(slanted.IsValid());
    EXPECT_DOUBLE_EQ(slanted.mCenter.x, 0);
    EXPECT_DOUBLE_EQ(slanted.mCenter.y, 1);
    EXPECT_DOUBLE_EQ(slanted.mRadius, 1);
}

TEST(Circle, RandomCirclesPassThroughTheirPoints) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> coordinate(-1000, 1000);
    for (int i = 0; i < 2000; ++i) {
        pointd a(coordinate(random), coordinate(random)), b(coordinate(random), coordinate(random));
        pointd c(coordinate(random), coordinate(random));
        circle k(a, b, c);
        ASSERT_TRUE(k.IsValid());
        double tolerance = 1e-6 * std::max(1.0, k.mRadius);
        if (k.mRadius > 1e7) continue;  // nearly collinear: rounding dominates
        EXPECT_NEAR(line::Distance(k.mCenter, a), k.mRadius, tolerance);
        EXPECT_NEAR(line::Distance(k.mCenter, b), k.mRadius, tolerance);
        EXPECT_NEAR(line::Distance(k.mCenter, c), k.mRadius, tolerance);
    }
}

TEST(Circle, CentreAndPointAndMeasures) {
    circle same(pointd(1, 1), pointd(1, 1));
    EXPECT_FALSE(same.IsValid());
    EXPECT_EQ(same.mCenter.x, 1);
    EXPECT_EQ(same.mRadius, 0);
    circle c(pointd(1, 2), pointd(1, 3));
    auto r = c.Rect();
    EXPECT_EQ(r.left, 0);
    EXPECT_EQ(r.top, 1);
    EXPECT_EQ(r.right, 2);
    EXPECT_EQ(r.bottom, 3);
    EXPECT_EQ(c.Diameter(), 2);
    EXPECT_DOUBLE_EQ(c.Length(), 2 * pi);
    EXPECT_DOUBLE_EQ(c.Area(), pi);
    EXPECT_FALSE(circle().IsValid());
}

TEST(Circle, BetweenPoints) {
    circle a(pointd(0, 0), pointd(1, 0)), b(pointd(4, 0), pointd(5, 0));
    pointd pa, pb;
    circle::BetweenPoint(a, b, pa, pb);
    EXPECT_DOUBLE_EQ(pa.x, 1);
    EXPECT_DOUBLE_EQ(pa.y, 0);
    EXPECT_DOUBLE_EQ(pb.x, 3);
    EXPECT_NEAR(pb.y, 0, 1e-15);
}

TEST(Arc, SweepsAndEnds) {
    pointd o(0, 0), east(1, 0), north(0, 1);
    arc quarter(o, east, north);
    EXPECT_DOUBLE_EQ(quarter.mAngle, 90);
    EXPECT_DOUBLE_EQ(arc(o, north, east).mAngle, 270);
    arc large(o, east, north, true);
    EXPECT_DOUBLE_EQ(large.mAngle, 270);
    EXPECT_TRUE(large.mStart.IsEqual(north));
    EXPECT_TRUE(large.mEnd.IsEqual(east));
    EXPECT_TRUE(large.IsLarge());
    arc half(o, east, pointd(-1, 0));
    EXPECT_FALSE(half.IsValid());
    EXPECT_EQ(half.mAngle, 0);
    EXPECT_TRUE(half.mStart.IsEqual(o));
    EXPECT_FALSE(quarter.IsContainAngle(east));
    EXPECT_TRUE(quarter.IsContainAngle(pointd(1, 1)));
    EXPECT_FALSE(quarter.IsContainAngle(pointd(-1, -1)));
    EXPECT_DOUBLE_EQ(quarter.Length(false), pi / 2);
    EXPECT_DOUBLE_EQ(quarter.Length(true), pi / 2 + std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(quarter.Area(), pi / 4 - 0.5);
}

TEST(Arc, ThroughThreePoints) {
    // Ends (1, 0) and (0, 1) of the unit circle about (0, 0).
    arc shortWay(pointd(1, 0), pointd(0, 1), pointd(std::sqrt(0.5), std::sqrt(0.5)), 0);
    EXPECT_NEAR(shortWay.mAngle, 90, 1e-9);
    arc longWay(pointd(1, 0), pointd(0, 1), pointd(-1, 0), 0);
    EXPECT_NEAR(longWay.mAngle, 270, 1e-9);
    EXPECT_TRUE(longWay.mStart.IsEqual(pointd(1, 0)) || longWay.mStart.IsEqual(pointd(0, 1)));
}

TEST(Arc, ReverseSweepsMakeAFullTurn) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> coordinate(-50, 50);
    for (int i = 0; i < 1000; ++i) {
        pointd c(coordinate(random), coordinate(random)), p(coordinate(random), coordinate(random));
        pointd q(coordinate(random), coordinate(random));
        arc forward(c, p, q), backward(c, q, p);
        if (!forward.IsValid()) continue;
        EXPECT_NEAR(forward.mAngle + backward.mAngle, 360, 1e-9);
    }
}
