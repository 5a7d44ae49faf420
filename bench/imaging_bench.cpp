// The picture codecs against the codec libraries used bare: a 12-megapixel
// JPEG decoded into BGRA and encoded with an EXIF segment, and a PNG decoded,
// each beside an anchor that calls libjpeg-turbo or libpng directly; then the
// working image on files: load, thumbnail (against libvips' vipsthumbnail),
// save with EXIF and thumbnail, the histogram, and the memory a load holds.
#include <benchmark/benchmark.h>
#include <png.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <jpeglib.h>

#include "memory_growth.h"
#include "platform/codec.h"
#include "qor/tools/direct2d/factory.h"
#include "qor/tools/direct2d/wic.h"
#include "qor/tools/graphic/histogram.h"

using namespace qor::tools::platform;

namespace {

constexpr int kWidth = 4000, kHeight = 3000;

// A photograph-like picture: smooth gradients with some noise.
codec::surface Picture(int width, int height) {
    codec::surface s = codec::NewSurface(width, height);
    std::mt19937 random(1);
    for (int y = 0; y < height; ++y) {
        auto *row = reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(s.get()) +
                                                      y * cairo_image_surface_get_stride(s.get()));
        for (int x = 0; x < width; ++x) {
            unsigned noise = random() % 16;
            row[x] = 0xff000000u | ((x * 255 / width + noise) & 0xff) << 16 | ((y * 255 / height) & 0xff) << 8 |
                     ((x + y + noise) & 0xff);
        }
    }
    cairo_surface_mark_dirty(s.get());
    return s;
}

std::string const &File(codec::format f) {
    static std::string jpeg, png;
    std::string &file = f == codec::format::jpeg ? jpeg : png;
    if (file.empty()) {
        auto s = f == codec::format::jpeg ? Picture(kWidth, kHeight) : Picture(2000, 1500);
        codec::Encode(f, s.get(), {0.9, {}}, file);
    }
    return file;
}

unsigned char const *Bytes(std::string const &s) { return reinterpret_cast<unsigned char const *>(s.data()); }

// The anchors: libjpeg-turbo called bare, into a plain buffer and from rows of BGRA.
void DecodeBare(std::string const &file) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, Bytes(file), file.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGRA;
    jpeg_start_decompress(&info);
    std::size_t stride = std::size_t(info.output_width) * 4;
    auto *pixels = static_cast<unsigned char *>(std::malloc(stride * info.output_height));
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels + stride * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    benchmark::DoNotOptimize(pixels);
    std::free(pixels);
}

std::string EncodeBare(unsigned char const *pixels, int stride) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char *buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = kWidth;
    info.image_height = kHeight;
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRA;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 90, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto row = const_cast<JSAMPROW>(pixels + std::size_t(info.next_scanline) * std::size_t(stride));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string out(reinterpret_cast<char *>(buffer), size);
    std::free(buffer);
    return out;
}

void JpegDecode(benchmark::State &state) {
    std::string const &file = File(codec::format::jpeg);
    for (auto _ : state) benchmark::DoNotOptimize(codec::Decode(Bytes(file), file.size()));
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void JpegDecode_Anchor(benchmark::State &state) {
    std::string const &file = File(codec::format::jpeg);
    for (auto _ : state) {
        DecodeBare(file);
    }
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

// Reduced for a thumbnail box: what a picture list does with every photograph.
void JpegDecodeForThumbnail(benchmark::State &state) {
    std::string const &file = File(codec::format::jpeg);
    for (auto _ : state) benchmark::DoNotOptimize(codec::DecodeForBox(Bytes(file), file.size(), 160, 120));
}

void JpegEncodeWithExif(benchmark::State &state) {
    auto picture = Picture(kWidth, kHeight);
    std::string exif("Exif\0\0II*\0\x08\0\0\0\0\0\0\0\0\0", 20);
    for (auto _ : state) {
        std::string out;
        codec::Encode(codec::format::jpeg, picture.get(), {0.9, exif}, out);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void JpegEncodeWithExif_Anchor(benchmark::State &state) {
    auto picture = Picture(kWidth, kHeight);
    unsigned char *pixels = cairo_image_surface_get_data(picture.get());
    for (auto _ : state) {
        std::string out = EncodeBare(pixels, kWidth * 4);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void PngDecode(benchmark::State &state) {
    std::string const &file = File(codec::format::png);
    for (auto _ : state) benchmark::DoNotOptimize(codec::Decode(Bytes(file), file.size()));
}

void PngDecode_Anchor(benchmark::State &state) {
    std::string const &file = File(codec::format::png);
    for (auto _ : state) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        png_image_begin_read_from_memory(&image, file.data(), file.size());
        image.format = PNG_FORMAT_BGRA;
        std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
        png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
        benchmark::DoNotOptimize(pixels.data());
    }
}

// ---- the working image on files

using qor::tools::direct2d::wic;

// The pictures as files in a scratch folder, and the one factory.
std::string const &Folder() {
    static std::string folder = [] {
        qor::tools::CoInitialize(nullptr);
        (new qor::tools::direct2d::factory)->Initialize(qor::tools::D2D1_FACTORY_TYPE_SINGLE_THREADED);
        char pattern[] = "/tmp/qor-bench-XXXXXX";
        std::string made = ::mkdtemp(pattern);
        std::ofstream(made + "/photo.jpg", std::ios::binary) << File(codec::format::jpeg);
        std::ofstream(made + "/picture.png", std::ios::binary) << File(codec::format::png);
        return made;
    }();
    return folder;
}

std::u16string Wide(std::string const &name) {
    std::string path = Folder() + "/" + name;
    return std::u16string(path.begin(), path.end());
}

std::string ReadAll(std::string const &name) {
    std::ifstream in(Folder() + "/" + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Loaded and touched: the pixels are decoded at their first use.
void WicLoad(benchmark::State &state) {
    std::u16string path = Wide("photo.jpg");
    for (auto _ : state) {
        wic image(path.c_str());
        wic::lock pixels(image, qor::tools::WICBitmapLockRead);
        benchmark::DoNotOptimize(pixels.Data());
    }
}

void WicLoad_Anchor(benchmark::State &state) {
    Folder();
    for (auto _ : state) {
        std::string file = ReadAll("photo.jpg");
        DecodeBare(file);
    }
}

// Load, fit into 160 by 120 and write the thumbnail as a JPEG, as vipsthumbnail does.
void WicThumbnail(benchmark::State &state) {
    std::u16string path = Wide("photo.jpg"), out = Wide("thumb-ours.jpg");
    for (auto _ : state) {
        wic image(path.c_str());
        image.Scale(160, 120).Save(0.75f, out.c_str(), nullptr);
    }
}

void WicThumbnail_Anchor(benchmark::State &state) {
    std::string command = "vipsthumbnail " + Folder() + "/photo.jpg --size 160x120 -o " + Folder() + "/thumb-vips.jpg";
    if (std::system("command -v vipsthumbnail >/dev/null") != 0) {
        state.SkipWithError("vipsthumbnail (package libvips-tools) is missing");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(std::system(command.c_str()));
}

wic const &Photo() {
    static wic photo = [] {
        Folder();
        wic made(kWidth, kHeight);
        auto picture = Picture(kWidth, kHeight);
        wic::lock pixels(made, qor::tools::WICBitmapLockWrite);
        std::memcpy(pixels.Data(), cairo_image_surface_get_data(picture.get()), std::size_t(pixels.Size()));
        return made;
    }();
    return photo;
}

// Saved with a full EXIF record and its thumbnail; the anchor encodes and writes the same picture bare.
void WicSaveWithExif(benchmark::State &state) {
    wic photo = Photo();
    std::u16string path = Wide("saved.jpg");
    for (auto _ : state) {
        wic::exif record;
        record.mMake = u"Maker";
        record.mModel = u"Model";
        record.mXResolution = record.mYResolution = (1LL << 32) | 72;
        photo.Save(0.9f, path.c_str(), &record);
    }
}

void WicSaveWithExif_Anchor(benchmark::State &state) {
    wic photo = Photo();
    wic::lock pixels(photo, qor::tools::WICBitmapLockRead);
    std::string path = Folder() + "/anchor.jpg";
    for (auto _ : state) {
        std::string out = EncodeBare(pixels.Data(), pixels.Stride());
        std::ofstream(path, std::ios::binary) << out;
    }
}

void WicPngLoad(benchmark::State &state) {
    std::u16string path = Wide("picture.png");
    for (auto _ : state) {
        wic image(path.c_str());
        wic::lock pixels(image, qor::tools::WICBitmapLockRead);
        benchmark::DoNotOptimize(pixels.Data());
    }
}

void WicPngLoad_Anchor(benchmark::State &state) {
    Folder();
    for (auto _ : state) {
        std::string file = ReadAll("picture.png");
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        png_image_begin_read_from_memory(&image, file.data(), file.size());
        image.format = PNG_FORMAT_BGRA;
        std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
        png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
        benchmark::DoNotOptimize(pixels.data());
    }
}

void Histogram(benchmark::State &state) {
    wic photo = Photo();
    qor::tools::graphic::histogram h;
    for (auto _ : state) {
        h.Image(photo);
        benchmark::DoNotOptimize(h.MaxValue());
    }
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

// What a loaded 12-megapixel JPEG holds: one BGRA copy is 48 MB (45.8 MiB).
void WicLoadMemory(benchmark::State &state) {
    std::u16string path = Wide("photo.jpg");
    double grown = 0;
    for (auto _ : state) {
        grown = GrowthMegabytes([&] {
            wic image(path.c_str());
            wic::lock pixels(image, qor::tools::WICBitmapLockRead);
            benchmark::DoNotOptimize(pixels.Data());
        });
    }
    double bgra = double(kWidth) * kHeight * 4 / double(1 << 20);
    state.counters["load_MB"] = grown;
    state.counters["copies_ratio"] = grown / bgra;
}

}  // namespace

BENCHMARK(JpegDecode)->Unit(benchmark::kMillisecond);
BENCHMARK(JpegDecode_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(JpegDecodeForThumbnail)->Unit(benchmark::kMillisecond);
BENCHMARK(JpegEncodeWithExif)->Unit(benchmark::kMillisecond);
BENCHMARK(JpegEncodeWithExif_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(PngDecode)->Unit(benchmark::kMillisecond);
BENCHMARK(PngDecode_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(WicLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(WicLoad_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(WicThumbnail)->Unit(benchmark::kMillisecond);
BENCHMARK(WicThumbnail_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(WicSaveWithExif)->Unit(benchmark::kMillisecond);
BENCHMARK(WicSaveWithExif_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(WicPngLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(WicPngLoad_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(Histogram)->Unit(benchmark::kMillisecond);
BENCHMARK(WicLoadMemory)->Iterations(1)->Unit(benchmark::kMillisecond);
