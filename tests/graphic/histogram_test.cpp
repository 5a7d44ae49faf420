// The histogram: counts by channel with the maximum taken before each count,
// and the flat tables where a value of 255 counts into the next table.
#include <gtest/gtest.h>

#include "qor/tools/graphic/histogram.h"
#include "support/imaging.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class Histogram : public qt::imaging {};

unsigned Total(graphic::histogram &h, int channel) {
    unsigned sum = 0;
    for (int v = 0; v < graphic::histogram::kEntries; ++v) sum += h.Data(channel)[v];
    return sum;
}

}  // namespace

TEST_F(Histogram, NewIsEmptyAndZero) {
    graphic::histogram h;
    EXPECT_TRUE(h.IsEmpty());
    EXPECT_EQ(h.MaxValue(), 0u);
    for (int k = 0; k < 4; ++k) EXPECT_EQ(Total(h, k), 0u);
}

TEST_F(Histogram, OnePixelAndTwo) {
    direct2d::wic one(1, 1);
    qt::Fill(one, 0xff1e140au);  // R 30, G 20, B 10
    graphic::histogram h;
    h.Image(one);
    EXPECT_FALSE(h.IsEmpty());
    EXPECT_EQ(h.Data(1)[30], 1u);
    EXPECT_EQ(h.Data(2)[20], 1u);
    EXPECT_EQ(h.Data(3)[10], 1u);
    EXPECT_EQ(h.Data(0)[21], 1u);  // 20 * 0.586611 + 10 * 0.114478 + 30 * 0.298912
    EXPECT_EQ(h.MaxValue(), 0u);
    direct2d::wic two(2, 1);
    qt::Fill(two, 0xff1e140au);
    h.Image(two);
    EXPECT_EQ(h.Data(1)[30], 2u);
    EXPECT_EQ(h.MaxValue(), 1u);  // lags the largest count by one
}

TEST_F(Histogram, WhiteCountsIntoTheNextTables) {
    direct2d::wic white(1, 1);
    qt::Fill(white, 0xffffffffu);
    graphic::histogram h;
    h.Image(white);
    EXPECT_EQ(h.Data(1)[0], 1u);  // luminance 255
    EXPECT_EQ(h.Data(2)[0], 1u);  // red 255
    EXPECT_EQ(h.Data(3)[0], 1u);  // green 255
    EXPECT_EQ(h.MaxValue(), 1u);  // blue 255
}

TEST_F(Histogram, AnImageWithoutBitmapClearsButStaysUsed) {
    direct2d::wic one(3, 3);
    graphic::histogram h;
    h.Image(one);
    EXPECT_EQ(h.Data(0)[0], 9u);
    direct2d::wic none;
    h.Image(none);
    EXPECT_EQ(h.Data(0)[0], 0u);
    EXPECT_EQ(h.MaxValue(), 0u);
    EXPECT_FALSE(h.IsEmpty());
}
