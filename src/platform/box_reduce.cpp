#include "box_reduce.h"

#include <cstdint>
#include <vector>

#include "codec_formats.h"

namespace qor::tools::platform {

namespace {

// Adds the channels of each block of `kx` pixels of one row to `sums`.
void AddRow(unsigned char const *row, int blocks, int kx, std::uint32_t *sums) {
    for (int block = 0; block < blocks; ++block, sums += 4) {
        std::uint32_t b = 0, g = 0, r = 0, a = 0;
        for (int i = 0; i < kx; ++i, row += 4) {
            b += row[0];
            g += row[1];
            r += row[2];
            a += row[3];
        }
        sums[0] += b;
        sums[1] += g;
        sums[2] += r;
        sums[3] += a;
    }
}

}  // namespace

codec::surface BoxReduce(cairo_surface_t *image, int kx, int ky) {
    if (!image || kx < 1 || ky < 1) return nullptr;
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
        for (int r = 0; r < ky; ++r) AddRow(data + std::ptrdiff_t(y * ky + r) * stride, width, kx, sums.data());
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
