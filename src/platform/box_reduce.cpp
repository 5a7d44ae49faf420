#include "box_reduce.h"

#include <cstdint>
#include <vector>

#include "codec_formats.h"

namespace qor::tools::platform {

namespace {

// Adds the channels of each block of `kx` pixels of one row to `sums`. Two
// channels travel in one word, 16 bits apart: a block of at most 64 pixels
// sums to at most 16,320 in each.
void AddRow(std::uint32_t const *row, int blocks, int kx, std::uint32_t *sums) {
    for (int block = 0; block < blocks; ++block, sums += 4) {
        std::uint32_t blueRed = 0, greenAlpha = 0;
        for (int i = 0; i < kx; ++i, ++row) {
            blueRed += *row & 0x00ff00ffu;
            greenAlpha += (*row >> 8) & 0x00ff00ffu;
        }
        sums[0] += blueRed & 0xffff;
        sums[1] += greenAlpha & 0xffff;
        sums[2] += blueRed >> 16;
        sums[3] += greenAlpha >> 16;
    }
}

}  // namespace

codec::surface BoxReduce(cairo_surface_t *image, int kx, int ky) {
    if (!image || kx < 1 || ky < 1 || kx > 64) return nullptr;
    int width = cairo_image_surface_get_width(image) / kx, height = cairo_image_surface_get_height(image) / ky;
    codec::surface out = codec::NewSurface(width, height);
    if (!out) return nullptr;
    cairo_surface_flush(image);
    unsigned char const *data = cairo_image_surface_get_data(image);
    int stride = cairo_image_surface_get_stride(image);
    std::uint32_t const count = std::uint32_t(kx) * std::uint32_t(ky), half = count / 2;
    std::vector<std::uint32_t> sums(std::size_t(width) * 4);
    for (int y = 0; y < height; ++y) {
        std::fill(sums.begin(), sums.end(), 0u);
        for (int r = 0; r < ky; ++r) {
            auto const *row = reinterpret_cast<std::uint32_t const *>(data + std::ptrdiff_t(y * ky + r) * stride);
            AddRow(row, width, kx, sums.data());
        }
        std::uint32_t *row = codec::Row(out.get(), y);
        for (int x = 0; x < width; ++x) {
            std::uint32_t const *s = &sums[std::size_t(x) * 4];
            row[x] = ((s[3] + half) / count) << 24 | ((s[2] + half) / count) << 16 | ((s[1] + half) / count) << 8 |
                     ((s[0] + half) / count);
        }
    }
    cairo_surface_mark_dirty(out.get());
    return out;
}

}  // namespace qor::tools::platform
