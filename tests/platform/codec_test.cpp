// The picture codecs: pixels known in advance read back from files made by
// the codec libraries themselves (grey, palettes, 16 bits, CMYK, progressive,
// interlaced, several frames or pages), round trips through all six formats,
// and damaged files that must fail without harm.
#include <gtest/gtest.h>

#include <csetjmp>
#include <random>
#include <string>
#include <vector>

#include <gif_lib.h>
#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

#include "platform/codec.h"
#include "support/picture_files.h"

using namespace qor::tools::platform;
using qor::tools::testing::MakeAnimatedGif;
using qor::tools::testing::MakeTiffPages;
using codec::format;

namespace {

std::uint32_t Pixel(cairo_surface_t *s, int x, int y) {
    cairo_surface_flush(s);
    return reinterpret_cast<std::uint32_t const *>(cairo_image_surface_get_data(s) +
                                                   y * cairo_image_surface_get_stride(s))[x];
}

void SetPixel(cairo_surface_t *s, int x, int y, std::uint32_t word) {
    reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s))[x] =
        word;
    cairo_surface_mark_dirty(s);
}

codec::surface Decode(std::string const &file) {
    return codec::Decode(reinterpret_cast<unsigned char const *>(file.data()), file.size());
}

// A picture of every kind of premultiplied pixel: random colours at random
// opacities, with fully clear and fully opaque ones among them.
codec::surface Mixed(int width, int height, bool opaque) {
    codec::surface s = codec::NewSurface(width, height);
    std::mt19937 random(7);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            unsigned a = opaque ? 255 : (x % 5 == 0 ? 0 : x % 5 == 1 ? 255 : random() % 256);
            auto c = [&] { return unsigned(random() % 256) * a / 255; };
            SetPixel(s.get(), x, y, a << 24 | c() << 16 | c() << 8 | c());
        }
    }
    return s;
}

// ---- files made by the codec libraries, as other programs make them

struct png_options {
    int mType = PNG_COLOR_TYPE_RGB_ALPHA;
    int mDepth = 8;
    int mInterlace = PNG_INTERLACE_NONE;
};

void PngWrite(png_structp png, png_bytep data, png_size_t n) {
    static_cast<std::string *>(png_get_io_ptr(png))->append(reinterpret_cast<char *>(data), n);
}

// `rows` hold the samples as the colour type and depth lay them out.
std::string MakePng(png_options o, int width, std::vector<std::vector<unsigned char>> rows,
                    std::vector<png_color> palette = {}, std::vector<unsigned char> alphas = {}) {
    std::string out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &out, PngWrite, nullptr);
    png_set_IHDR(png, info, png_uint_32(width), png_uint_32(rows.size()), o.mDepth, o.mType, o.mInterlace,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!palette.empty()) png_set_PLTE(png, info, palette.data(), int(palette.size()));
    if (!alphas.empty()) png_set_tRNS(png, info, alphas.data(), int(alphas.size()), nullptr);
    png_write_info(png, info);
    std::vector<png_bytep> pointers;
    for (auto &r : rows) pointers.push_back(r.data());
    png_write_image(png, pointers.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

std::string MakeJpeg(int width, int height, J_COLOR_SPACE space, int components, bool progressive,
                     std::vector<unsigned char> const &samples) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char *buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = JDIMENSION(width);
    info.image_height = JDIMENSION(height);
    info.input_components = components;
    info.in_color_space = space;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 95, TRUE);
    if (progressive) jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto *row = const_cast<JSAMPLE *>(&samples[std::size_t(info.next_scanline) * std::size_t(width * components)]);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string out(reinterpret_cast<char *>(buffer), size);
    std::free(buffer);
    return out;
}

std::string Le16(unsigned v) { return {char(v & 0xff), char(v >> 8)}; }
std::string Le32(std::uint32_t v) { return Le16(v & 0xffff) + Le16(v >> 16); }

std::string BmpFile(std::string const &dib, std::uint32_t pixelsAt) {
    return "BM" + Le32(std::uint32_t(14 + dib.size())) + Le32(0) + Le32(14 + pixelsAt) + dib;
}

}  // namespace

// ---------------------------------------------------------------- known pixels

TEST(Codec, PngOfEveryColourTypeReadsPremultiplied) {
    // One half-transparent red pixel and one opaque green one.
    auto rgba = MakePng({}, 2, {{255, 0, 0, 128, 0, 255, 0, 255}});
    auto s = Decode(rgba);
    ASSERT_TRUE(s);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0x80800000u);
    EXPECT_EQ(Pixel(s.get(), 1, 0), 0xff00ff00u);

    auto deep = MakePng({PNG_COLOR_TYPE_RGB_ALPHA, 16}, 1, {{0xff, 0xff, 0, 0, 0, 0, 0x80, 0x00}});
    s = Decode(deep);
    ASSERT_TRUE(s);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0x80800000u);

    auto grey = MakePng({PNG_COLOR_TYPE_GRAY, 2}, 4, {{0x1b}});  // 0, 1, 2, 3 of 4 levels
    s = Decode(grey);
    ASSERT_TRUE(s);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0xff000000u);
    EXPECT_EQ(Pixel(s.get(), 1, 0), 0xff555555u);
    EXPECT_EQ(Pixel(s.get(), 3, 0), 0xffffffffu);

    auto palette = MakePng({PNG_COLOR_TYPE_PALETTE, 8}, 3, {{0, 1, 2}}, {{255, 0, 0}, {0, 0, 255}, {9, 9, 9}}, {0, 128});
    s = Decode(palette);
    ASSERT_TRUE(s);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0u);           // clear by tRNS
    EXPECT_EQ(Pixel(s.get(), 1, 0), 0x80000080u);  // half blue
    EXPECT_EQ(Pixel(s.get(), 2, 0), 0xff090909u);  // past the tRNS entries: opaque

    std::vector<std::vector<unsigned char>> rows;
    for (int y = 0; y < 9; ++y) rows.push_back(std::vector<unsigned char>(9 * 3, (unsigned char)(y * 20)));
    auto interlaced = MakePng({PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_ADAM7}, 9, rows);
    s = Decode(interlaced);
    ASSERT_TRUE(s);
    for (int y = 0; y < 9; ++y) EXPECT_EQ(Pixel(s.get(), 8, y), 0xff000000u | 0x010101u * unsigned(y * 20));
}

TEST(Codec, JpegGreyCmykAndProgressiveRead) {
    std::vector<unsigned char> grey(16 * 16, 200);
    auto s = Decode(MakeJpeg(16, 16, JCS_GRAYSCALE, 1, false, grey));
    ASSERT_TRUE(s);
    EXPECT_EQ(Pixel(s.get(), 5, 5), 0xffc8c8c8u);

    // CMYK as print software writes it, inverted beside an Adobe marker:
    // no cyan, full magenta and yellow, no black is red.
    std::vector<unsigned char> cmyk;
    for (int i = 0; i < 16 * 16; ++i) cmyk.insert(cmyk.end(), {255, 0, 0, 255});
    s = Decode(MakeJpeg(16, 16, JCS_CMYK, 4, false, cmyk));
    ASSERT_TRUE(s);
    std::uint32_t red = Pixel(s.get(), 8, 8);
    EXPECT_GE((red >> 16) & 0xff, 240u);
    EXPECT_LE(red & 0xffff, 0x0f0fu);

    std::vector<unsigned char> rgb;
    for (int i = 0; i < 32 * 32; ++i) rgb.insert(rgb.end(), {10, 120, 240});
    s = Decode(MakeJpeg(32, 32, JCS_RGB, 3, true, rgb));
    ASSERT_TRUE(s);
    std::uint32_t p = Pixel(s.get(), 16, 16);
    EXPECT_NEAR(int((p >> 16) & 0xff), 10, 3);
    EXPECT_NEAR(int((p >> 8) & 0xff), 120, 3);
    EXPECT_NEAR(int(p & 0xff), 240, 3);
}

TEST(Codec, JpegDecodedReducedForABox) {
    std::vector<unsigned char> rgb(1600 * 1200 * 3, 90);
    std::string file = MakeJpeg(1600, 1200, JCS_RGB, 3, false, rgb);
    auto *bytes = reinterpret_cast<unsigned char const *>(file.data());
    auto s = codec::DecodeForBox(bytes, file.size(), 160, 120);
    ASSERT_TRUE(s);
    EXPECT_EQ(cairo_image_surface_get_width(s.get()), 200);  // 1/8 still covers the box
    EXPECT_EQ(cairo_image_surface_get_height(s.get()), 150);
    s = codec::DecodeForBox(bytes, file.size(), 900, 100);
    EXPECT_EQ(cairo_image_surface_get_width(s.get()), 1600);  // 1/2 would not
    s = codec::DecodeForBox(bytes, file.size(), 0, 0);
    EXPECT_EQ(cairo_image_surface_get_width(s.get()), 1600);
}

TEST(Codec, GifFirstFrameOnItsScreen) {
    auto s = Decode(MakeAnimatedGif());
    ASSERT_TRUE(s);
    EXPECT_EQ(cairo_image_surface_get_width(s.get()), 6);
    EXPECT_EQ(cairo_image_surface_get_height(s.get()), 4);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0u);  // outside the frame
    EXPECT_EQ(Pixel(s.get(), 1, 1), 0xffff0000u);
    EXPECT_EQ(Pixel(s.get(), 3, 1), 0u);  // transparent index
    EXPECT_EQ(Pixel(s.get(), 4, 1), 0xff00ff00u);
    EXPECT_EQ(Pixel(s.get(), 4, 2), 0xffff0000u);  // the interlaced second row in its place
    EXPECT_EQ(Pixel(s.get(), 1, 2), 0xff00ff00u);
}

TEST(Codec, TiffFirstPageOfSixteenBitGrey) {
    auto s = Decode(MakeTiffPages("/tmp/qor-codec-pages.tif"));
    ASSERT_TRUE(s);
    EXPECT_EQ(cairo_image_surface_get_width(s.get()), 3);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0xff000000u);
    EXPECT_EQ(Pixel(s.get(), 1, 1), 0xff808080u);  // the first page's middle grey, not the second's black
    EXPECT_EQ(Pixel(s.get(), 2, 0), 0xffffffffu);
}

TEST(Codec, BmpPaletteBitFieldsAndRowOrder) {
    // 8 bits with two colours, bottom-up: the first row in the file is the bottom row.
    std::string header = Le32(40) + Le32(2) + Le32(2) + Le16(1) + Le16(8) + Le32(0) + Le32(0) + Le32(0) + Le32(0) +
                         Le32(2) + Le32(0);
    std::string table = std::string("\xff\0\0\0", 4) + std::string("\0\0\xff\0", 4);  // blue, red
    std::string pixels = std::string("\0\1\0\0", 4) + std::string("\1\1\0\0", 4);
    auto s = Decode(BmpFile(header + table + pixels, 48));
    ASSERT_TRUE(s);
    EXPECT_EQ(Pixel(s.get(), 0, 1), 0xff0000ffu);
    EXPECT_EQ(Pixel(s.get(), 1, 1), 0xffff0000u);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0xffff0000u);

    // 16 bits 5-6-5 by bit fields, top-down (negative height).
    std::string h16 = Le32(40) + Le32(1) + Le32(std::uint32_t(-2)) + Le16(1) + Le16(16) + Le32(3) + Le32(0) + Le32(0) +
                      Le32(0) + Le32(0) + Le32(0);
    std::string masks = Le32(0xf800) + Le32(0x07e0) + Le32(0x001f);
    std::string p16 = Le16(0xf800) + Le16(0) + Le16(0x07e0) + Le16(0);
    s = Decode(BmpFile(h16 + masks + p16, 52));
    ASSERT_TRUE(s);
    EXPECT_EQ(Pixel(s.get(), 0, 0), 0xffff0000u);
    EXPECT_EQ(Pixel(s.get(), 0, 1), 0xff00ff00u);
}

// ---------------------------------------------------------------- round trips

TEST(Codec, LosslessFormatsGiveBackEveryPixel) {
    auto source = Mixed(37, 23, false);
    for (format f : {format::png, format::tiff, format::bmp, format::ico}) {
        std::string file;
        ASSERT_TRUE(codec::Encode(f, source.get(), {}, file)) << int(f);
        auto *bytes = reinterpret_cast<unsigned char const *>(file.data());
        EXPECT_EQ(codec::Sniff(bytes, file.size()), f);
        auto back = Decode(file);
        ASSERT_TRUE(back) << int(f);
        ASSERT_EQ(cairo_image_surface_get_width(back.get()), 37);
        ASSERT_EQ(cairo_image_surface_get_height(back.get()), 23);
        int wrong = 0;
        for (int y = 0; y < 23; ++y) {
            for (int x = 0; x < 37; ++x) wrong += Pixel(back.get(), x, y) != Pixel(source.get(), x, y);
        }
        EXPECT_EQ(wrong, 0) << "format " << int(f);
    }
}

TEST(Codec, LargeIconsHoldAPng) {
    auto source = Mixed(300, 2, false);
    std::string file;
    ASSERT_TRUE(codec::Encode(format::ico, source.get(), {}, file));
    auto back = Decode(file);
    ASSERT_TRUE(back);
    EXPECT_EQ(cairo_image_surface_get_width(back.get()), 300);
    EXPECT_EQ(Pixel(back.get(), 7, 1), Pixel(source.get(), 7, 1));
}

TEST(Codec, GifKeepsFewColoursAndClearPixels) {
    auto source = codec::NewSurface(8, 8);
    std::uint32_t colours[] = {0xffff0000u, 0xff00ff00u, 0xff0000ffu, 0xff123456u};
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) SetPixel(source.get(), x, y, x == y ? 0x20000000u : colours[(x + y) % 4]);
    }
    std::string file;
    ASSERT_TRUE(codec::Encode(format::gif, source.get(), {}, file));
    auto back = Decode(file);
    ASSERT_TRUE(back);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            std::uint32_t want = x == y ? 0u : colours[(x + y) % 4];
            EXPECT_EQ(Pixel(back.get(), x, y), want) << x << "," << y;
        }
    }
}

TEST(Codec, JpegRoundTripWithItsApp1First) {
    auto source = Mixed(40, 30, true);
    std::string exif("Exif\0\0MM\0*\0\0\0\x08\0\0", 16);
    std::string file;
    ASSERT_TRUE(codec::Encode(format::jpeg, source.get(), {0.95, exif}, file));
    ASSERT_GT(file.size(), 4u + exif.size());
    EXPECT_EQ(file.substr(0, 4), "\xff\xd8\xff\xe1");  // APP1 straight after the start of image
    EXPECT_EQ(file.substr(6, exif.size()), exif);
    auto back = Decode(file);
    ASSERT_TRUE(back);
    EXPECT_EQ(cairo_image_surface_get_width(back.get()), 40);
    EXPECT_EQ(Pixel(back.get(), 3, 3) >> 24, 255u);

    std::string plain, tooLong;
    ASSERT_TRUE(codec::Encode(format::jpeg, source.get(), {0.5, {}}, plain));
    EXPECT_EQ(plain.substr(0, 4), "\xff\xd8\xff\xe0");  // a JFIF header when there is no APP1
    EXPECT_FALSE(codec::Encode(format::jpeg, source.get(), {0.5, std::string(65534, 'x')}, tooLong));
}

TEST(Codec, NothingToWriteWithout) {
    std::string out;
    auto source = Mixed(2, 2, true);
    EXPECT_FALSE(codec::Encode(format::unknown, source.get(), {}, out));
    EXPECT_FALSE(codec::Encode(format::png, nullptr, {}, out));
    codec::surface rgb(cairo_image_surface_create(CAIRO_FORMAT_RGB24, 2, 2));
    EXPECT_FALSE(codec::Encode(format::png, rgb.get(), {}, out));
    EXPECT_FALSE(codec::NewSurface(0, 5));
    EXPECT_FALSE(codec::NewSurface(32768, 1));
    EXPECT_FALSE(codec::NewSurface(20000, 20000));  // past the pixel budget
}

// ---------------------------------------------------------------- damaged files

TEST(Codec, TruncatedAndDamagedFilesFailQuietly) {
    auto source = Mixed(33, 17, false);
    for (format f : {format::jpeg, format::png, format::tiff, format::gif, format::bmp, format::ico}) {
        std::string file;
        ASSERT_TRUE(codec::Encode(f, source.get(), {}, file));
        for (std::size_t cut : {std::size_t(0), std::size_t(1), file.size() / 3, file.size() / 2, file.size() - 20}) {
            std::string part = file.substr(0, cut);
            EXPECT_FALSE(Decode(part)) << "format " << int(f) << " cut at " << cut;
        }
        std::mt19937 random{unsigned(f)};
        for (int round = 0; round < 200; ++round) {
            std::string damaged = file;
            for (int k = 0; k < 4; ++k) damaged[random() % damaged.size()] = char(random());
            Decode(damaged);  // anything but a crash, a hang or a message
        }
    }
    EXPECT_FALSE(Decode("not a picture at all"));
}

TEST(Codec, HeadersThatClaimTooMuchAreRefused) {
    // A BMP header claiming 30,000 by 30,000 pixels over a few bytes.
    std::string header = Le32(40) + Le32(30000) + Le32(30000) + Le16(1) + Le16(24) + std::string(24, '\0');
    EXPECT_FALSE(Decode(BmpFile(header + "abc", 40)));
    // A GIF whose screen is 65,535 a side.
    std::string gif = MakeAnimatedGif();
    gif[6] = gif[7] = gif[8] = gif[9] = char(0xff);
    EXPECT_FALSE(Decode(gif));
}
