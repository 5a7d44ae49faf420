// Whole-factor reduction: each output pixel the rounded mean of its block,
// channel by channel, and the columns and rows that fill no block left out.
#include <gtest/gtest.h>

#include "platform/box_reduce.h"

using namespace qor::tools::platform;

namespace {

std::uint32_t *Row(cairo_surface_t *s, int y) {
    return reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s));
}

}  // namespace

TEST(BoxReduce, MeansOfBlocksPerChannel) {
    codec::surface s = codec::NewSurface(5, 3);
    std::uint32_t const top[] = {0xff000000u, 0xff0000ffu, 0x80808080u, 0x00000000u, 0xffffffffu};
    std::uint32_t const bottom[] = {0xffff0000u, 0xff00ff00u, 0x80808080u, 0x02020202u, 0xffffffffu};
    for (int x = 0; x < 5; ++x) Row(s.get(), 0)[x] = top[x], Row(s.get(), 1)[x] = bottom[x];
    cairo_surface_mark_dirty(s.get());
    codec::surface r = BoxReduce(s.get(), 2, 2);
    ASSERT_EQ(cairo_image_surface_get_width(r.get()), 2);  // the fifth column fills no block
    ASSERT_EQ(cairo_image_surface_get_height(r.get()), 1);  // nor does the third row
    EXPECT_EQ(Row(r.get(), 0)[0], 0xff404040u);  // 255 / 4 rounds to 64 in each colour
    EXPECT_EQ(Row(r.get(), 0)[1], 0x41414141u);  // (128 + 0 + 128 + 2 + 2) / 4 = 64.5, rounded up
    EXPECT_EQ(BoxReduce(s.get(), 6, 1), nullptr);
    EXPECT_EQ(BoxReduce(s.get(), 65, 1), nullptr);
}

TEST(BoxReduce, LargestBlocksDoNotOverflow) {
    codec::surface s = codec::NewSurface(64, 64);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) Row(s.get(), y)[x] = 0xffffffffu;
    }
    cairo_surface_mark_dirty(s.get());
    codec::surface r = BoxReduce(s.get(), 64, 64);
    EXPECT_EQ(Row(r.get(), 0)[0], 0xffffffffu);
}
