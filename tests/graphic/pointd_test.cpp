#include "qor/tools/graphic/pointd.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

using namespace qor::tools;
using namespace qor::tools::graphic;

TEST(Pi, IsTheStatedDouble) {
    std::uint64_t bits;
    std::memcpy(&bits, &pi, sizeof bits);
    EXPECT_EQ(bits, 0x400921FB54442D18ull);
}

TEST(FloatTypes, FieldOrderOfThePublishedRecords) {
    direct2d::rectf r(1, 2, 3, 4);
    D2D1_RECT_F const &published = r;
    EXPECT_EQ(published.left, 1);
    EXPECT_EQ(published.bottom, 4);
    EXPECT_EQ(sizeof(direct2d::pointf), 2 * sizeof(float));
    EXPECT_EQ(sizeof(direct2d::rectf), 4 * sizeof(float));
    direct2d::sizef s(5, 6);
    EXPECT_EQ(static_cast<D2D_SIZE_F const &>(s).height, 6);
}

TEST(Vector, ConversionsAndExactEquality) {
    vector v(D2D_POINT_2F{1.5f, 2.5f});
    EXPECT_EQ(v.x, 1.5);
    v = CPoint{3, -4};
    EXPECT_EQ(v.y, -4);
    v = pointd(1.9, -1.9);
    CPoint p = v;
    EXPECT_EQ(p.x, 1);
    EXPECT_EQ(p.y, -1);
    v = pointd(1e12, std::nan(""));
    p = v;
    EXPECT_EQ(p.x, INT32_MIN);  // out of range, as the processor truncates
    EXPECT_EQ(p.y, INT32_MIN);
    vector a(pointd(1, 2)), b(pointd(1, 2));
    EXPECT_TRUE(a == b);
    a += b;
    a -= vector(pointd(0, 4));
    EXPECT_TRUE(a == vector(pointd(2, 0)));
    a.Empty();
    EXPECT_TRUE(a == vector());
    D2D_SIZE_F size = vector(pointd(0.1, 0.2));
    EXPECT_EQ(size.width, 0.1f);
}

TEST(Pointd, RotationOffsetAndExactness) {
    pointd p(1, 0);
    p.Rotation(90, pointd(0, 0));
    EXPECT_NEAR(p.x, 0, 1e-15);
    EXPECT_NE(p.x, 0);  // cos(90 degrees) is not exactly 0, and nothing rounds it
    EXPECT_DOUBLE_EQ(p.y, 1);
    EXPECT_FALSE(pointd(0.1 + 0.2, 0).IsEqual(pointd(0.3, 0)));
    pointd q = pointd::Offset(pointd(1, 1), 2, 3);
    EXPECT_TRUE(q.IsEqual(pointd(3, 4)));
    pointd r = pointd::Rotation(pointd(2, 1), 180, pointd(1, 1));
    EXPECT_NEAR(r.x, 0, 1e-15);
    direct2d::rectf rect = pointd::Rect(pointd(5, 5), pointd(1, 2));
    EXPECT_EQ(rect.right - rect.left, -4);  // not normalised
    pointd a(3, 7), b(-2, 11);
    direct2d::sizef size = pointd::Size(a, b), distance = pointd::Distance(a, b);
    EXPECT_EQ(size.width + distance.width, 0);
    EXPECT_EQ(size.height + distance.height, 0);
    direct2d::pointf narrowed = pointd(0.1, 0.2);
    EXPECT_EQ(narrowed.x, 0.1f);
}

TEST(Angle, SweepsAndFullTurns) {
    pointd o(0, 0), east(1, 0), north(0, 1);
    EXPECT_EQ(angle::Get(east, o, east), 360);
    EXPECT_DOUBLE_EQ(angle::Get(east, o, north), 90);
    EXPECT_DOUBLE_EQ(angle::Get(north, o, east), 270);
    EXPECT_DOUBLE_EQ(angle::Get(east, o, north, true), 270);
    EXPECT_DOUBLE_EQ(angle::Get(east, o, north, false), 90);
    EXPECT_TRUE(angle::IsLarge(180));
    EXPECT_EQ(angle::Reverse(30), 330);
    EXPECT_EQ(angle::Get(o, o), 0);
    EXPECT_DOUBLE_EQ(angle::Get(o, pointd(0, -1)), 270);

    std::mt19937 random(7);
    std::uniform_real_distribution<double> coordinate(-100, 100);
    for (int i = 0; i < 1000; ++i) {
        pointd a(coordinate(random), coordinate(random)), b(coordinate(random), coordinate(random));
        pointd c(coordinate(random), coordinate(random));
        double forward = angle::Get(a, c, b), backward = angle::Get(b, c, a);
        if (angle::Get(c, a) == angle::Get(c, b)) continue;
        EXPECT_NEAR(forward + backward, 360, 1e-9);
        EXPECT_GT(forward, 0);
        EXPECT_LE(forward, 360);
    }
}
