#include "qor/tools/graphic/line.h"

#include <gtest/gtest.h>

using namespace qor::tools::graphic;
using status = line::eStatus;

namespace {
void ExpectPoint(pointd const &p, double x, double y) {
    EXPECT_DOUBLE_EQ(p.x, x);
    EXPECT_DOUBLE_EQ(p.y, y);
}
}  // namespace

TEST(Line, StatusesFromTwoPoints) {
    line normal(pointd(0, 0), pointd(2, 4));
    EXPECT_TRUE(normal.Normal());
    EXPECT_EQ(normal.mGradient, 2);
    EXPECT_EQ(normal.mIntercept, 0);
    EXPECT_EQ(normal.Y(3), 6);
    EXPECT_EQ(normal.X(6), 3);

    line vertical(pointd(1, 0), pointd(1, 5));
    EXPECT_TRUE(vertical.Vertical());
    EXPECT_EQ(vertical.mX, 1);
    EXPECT_EQ(vertical.X(2), 0);
    EXPECT_EQ(vertical.Y(2), 0);

    line horizontal(pointd(0, 3), pointd(5, 3));
    EXPECT_TRUE(horizontal.Horizontal());
    EXPECT_EQ(horizontal.Y(9), 3);
    EXPECT_EQ(horizontal.X(3), 0);

    EXPECT_FALSE(line(pointd(1, 1), pointd(1, 1)).IsValid());
    line flat(pointd(1, 1), 0.0), flat2(0.0, 5.0);
    EXPECT_EQ(flat.mStatus, status::Invalid);
    EXPECT_EQ(flat2.mIntercept, 0);
    EXPECT_EQ(line(pointd(1, 1), 2.0).mIntercept, -1);
    EXPECT_EQ(line(3.0, 4.0).Y(1), 7);
}

TEST(Line, IntersectionsKeepTheirQuirks) {
    line a(1.0, 2.0), b(1.0, 5.0);
    ExpectPoint(line::Intersection(a, b), 0, 2);  // parallel: (0, intercept of the first)
    ExpectPoint(line::Intersection(a, line()), -1, -1);
    line vertical(pointd(2, 0), pointd(2, 1)), diagonal(1.0, 1.0);
    ExpectPoint(line::Intersection(vertical, diagonal), 2, 3);
    ExpectPoint(line::Intersection(diagonal, vertical), 2, 3);
    line horizontal(pointd(0, 4), pointd(1, 4));
    ExpectPoint(line::Intersection(horizontal, vertical), 2, 4);
    ExpectPoint(line::Intersection(vertical, horizontal), 2, 4);
    ExpectPoint(line::Intersection(horizontal, diagonal), 3, 4);
    ExpectPoint(line::Intersection(diagonal, horizontal), 3, 4);
    ExpectPoint(line::Intersection(vertical, line(pointd(5, 0), pointd(5, 1))), 2, 0);
    ExpectPoint(line::Intersection(horizontal, line(pointd(0, 7), pointd(1, 7))), 0, 4);
    ExpectPoint(line::Intersection(line(3.0, -1.0), line(-1.0, 7.0)), 2, 5);
}

TEST(Line, FootOfThePerpendicular) {
    ExpectPoint(line::Intersection(pointd(0, 2), line(pointd(0, 0), pointd(2, 2))), 1, 1);
    ExpectPoint(line::Intersection(pointd(5, 2), line(pointd(1, 0), pointd(1, 3))), 1, 2);
    ExpectPoint(line::Intersection(pointd(5, 2), line(pointd(0, 3), pointd(1, 3))), 5, 3);
    ExpectPoint(line::Intersection(pointd(5, 2), line()), -1, -1);
}

TEST(Line, BisectorsAndSegments) {
    line v = line::VerticalLine(pointd(0, 0), pointd(2, 0));
    EXPECT_TRUE(v.Vertical());
    EXPECT_EQ(v.mX, 1);
    line h = line::VerticalLine(pointd(0, 0), pointd(0, 2));
    EXPECT_TRUE(h.Horizontal());
    EXPECT_EQ(h.mIntercept, 1);
    line n = line::VerticalLine(pointd(0, 0), pointd(2, 2));
    EXPECT_EQ(n.mGradient, -1);
    EXPECT_EQ(n.mIntercept, 2);
    EXPECT_FALSE(line::VerticalLine(pointd(1, 1), pointd(1, 1)).IsValid());
    ExpectPoint(line::Center(pointd(0, 0), pointd(1, 1)), 0.5, 0.5);
    EXPECT_EQ(line::Distance(pointd(0, 0), pointd(3, 4)), 5);
    EXPECT_EQ(line::DistanceHorz(pointd(3, 0), pointd(1, 0)), 2);
    EXPECT_EQ(line::DistanceVert(pointd(0, 1), pointd(0, 4)), 3);
    EXPECT_EQ(line::GradientVerticalLine(0), 0);
    EXPECT_EQ(line::GradientVerticalLine(2), -0.5);
    EXPECT_EQ(line::Gradient(pointd(1, 1), pointd(1, 5)), 0);
    EXPECT_TRUE(line::IsVertical(pointd(1, 0), pointd(1, 2), pointd(1, 9)));
    EXPECT_FALSE(line::IsHorizontal(pointd(1, 0), pointd(2, 0), pointd(3, 1)));
    EXPECT_FALSE(line::IsValid(pointd(1, 1), pointd(1, 1)));
}

TEST(Line, ParallelRules) {
    EXPECT_TRUE(line::IsParallel(line(pointd(1, 0), pointd(1, 2)), line(pointd(3, 0), pointd(3, 2))));
    EXPECT_TRUE(line::IsParallel(line(pointd(0, 1), pointd(2, 1)), line(pointd(0, 3), pointd(2, 3))));
    EXPECT_TRUE(line::IsParallel(line(2.0, 1.0), line(2.0, 5.0)));
    EXPECT_FALSE(line::IsParallel(line(2.0, 1.0), line(3.0, 5.0)));
    EXPECT_FALSE(line::IsParallel(line(), line()));
}
