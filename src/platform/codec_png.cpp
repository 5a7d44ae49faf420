// PNG through libpng: every colour type and depth expanded to 8-bit BGRA
// (palettes, grey, 16 bits, tRNS transparency, Adam7 interlace), read into
// the surface's rows and premultiplied in place; written as 8-bit RGBA.
#include <csetjmp>
#include <cstring>
#include <vector>

#include <png.h>

#include "codec_bytes.h"
#include "codec_formats.h"
#include "codec_pixels.h"

namespace qor::tools::platform::codec {

namespace {

void ReadBytes(png_structp png, png_bytep out, png_size_t n) {
    if (static_cast<source *>(png_get_io_ptr(png))->Take(out, n) != n) png_error(png, "truncated");
}

void WriteBytes(png_structp png, png_bytep in, png_size_t n) {
    static_cast<std::string *>(png_get_io_ptr(png))->append(reinterpret_cast<char const *>(in), n);
}

void Flush(png_structp) {}

// libpng's default error handler prints and jumps; this one only jumps.
[[noreturn]] void Fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void Ignore(png_structp, png_const_charp) {}

void PremultiplyRows(cairo_surface_t *s) {
    int width = cairo_image_surface_get_width(s), height = cairo_image_surface_get_height(s);
    for (int y = 0; y < height; ++y) {
        std::uint32_t *row = Row(s, y);
        for (int x = 0; x < width; ++x) {
            std::uint32_t w = row[x];  // straight B, G, R, A as read
            unsigned a = w >> 24;
            if (a != 255) row[x] = Premultiplied((w >> 16) & 0xff, (w >> 8) & 0xff, w & 0xff, a);
        }
    }
}

bool Read(png_structp png, png_infop info, cairo_surface_t *&out, std::vector<png_bytep> &rows, bool &alpha) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_read_info(png, info);
    png_uint_32 width = png_get_image_width(png, info), height = png_get_image_height(png, info);
    int type = png_get_color_type(png, info);
    if (png_get_bit_depth(png, info) == 16) png_set_strip_16(png);
    if (type == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
    if (type == PNG_COLOR_TYPE_GRAY && png_get_bit_depth(png, info) < 8) png_set_expand_gray_1_2_4_to_8(png);
    alpha = (type & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png, info, PNG_INFO_tRNS);
    if (png_get_valid(png, info, PNG_INFO_tRNS)) png_set_tRNS_to_alpha(png);
    if (type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(png);
    png_set_filler(png, 0xff, PNG_FILLER_AFTER);
    png_set_bgr(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    if (png_get_rowbytes(png, info) != png_size_t(width) * 4) return false;
    out = NewSurface(int(width), int(height)).release();
    if (!out) return false;
    rows.resize(height);
    for (png_uint_32 y = 0; y < height; ++y) rows[y] = reinterpret_cast<png_bytep>(Row(out, int(y)));
    png_read_image(png, rows.data());
    png_read_end(png, nullptr);
    return true;
}

bool Write(png_structp png, png_infop info, cairo_surface_t *image, std::vector<unsigned char> &line) {
    if (setjmp(png_jmpbuf(png))) return false;
    int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
    png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), 8, PNG_COLOR_TYPE_RGB_ALPHA,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_bgr(png);
    png_write_info(png, info);
    for (int y = 0; y < height; ++y) {
        std::uint32_t const *row = Row(image, y);
        for (int x = 0; x < width; ++x) Straight(row[x], &line[std::size_t(x) * 4]);
        png_write_row(png, line.data());
    }
    png_write_end(png, nullptr);
    return true;
}

}  // namespace

surface DecodePng(unsigned char const *data, std::size_t size) {
    if (Sniff(data, size) != format::png) return nullptr;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore);
    if (!png) return nullptr;
    png_infop info = png_create_info_struct(png);
    source bytes{data, size};
    png_set_read_fn(png, &bytes, ReadBytes);
    png_set_user_limits(png, kMaxSide, kMaxSide);
    png_set_chunk_malloc_max(png, 64u << 20);
    png_set_crc_action(png, PNG_CRC_DEFAULT, PNG_CRC_WARN_DISCARD);
    cairo_surface_t *out = nullptr;
    std::vector<png_bytep> rows;
    bool alpha = false;
    bool ok = info && Read(png, info, out, rows, alpha);
    png_destroy_read_struct(&png, info ? &info : nullptr, nullptr);
    surface result(out);
    if (!ok) return nullptr;
    if (alpha) PremultiplyRows(result.get());  // opaque rows are premultiplied as they stand
    cairo_surface_mark_dirty(result.get());
    return result;
}

bool EncodePng(cairo_surface_t *image, std::string &out) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore);
    if (!png) return false;
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &out, WriteBytes, Flush);
    std::vector<unsigned char> line(std::size_t(cairo_image_surface_get_width(image)) * 4);
    bool ok = info && Write(png, info, image, line);
    png_destroy_write_struct(&png, info ? &info : nullptr);
    return ok;
}

}  // namespace qor::tools::platform::codec
