// TIFF through libtiff, over memory: the first page read by libtiff's RGBA
// interface (every photometric, depth and layout it knows), written as 8-bit
// RGBA with associated (premultiplied) alpha and LZW compression.
#include <algorithm>
#include <cstring>
#include <vector>

#include <tiffio.h>

#include "codec_formats.h"

namespace qor::tools::platform::codec {

namespace {

// A file in memory for libtiff: read from the caller's bytes, or written into a string.
struct memory_file {
    unsigned char const *mData = nullptr;
    std::string *mOut = nullptr;
    std::size_t mSize = 0;
    std::size_t mAt = 0;
};

tmsize_t ReadProc(thandle_t h, void *buffer, tmsize_t n) {
    auto *f = static_cast<memory_file *>(h);
    if (n < 0 || !f->mData || f->mAt >= f->mSize) return 0;
    std::size_t count = std::min(std::size_t(n), f->mSize - f->mAt);
    std::memcpy(buffer, f->mData + f->mAt, count);
    f->mAt += count;
    return tmsize_t(count);
}

tmsize_t WriteProc(thandle_t h, void *buffer, tmsize_t n) {
    auto *f = static_cast<memory_file *>(h);
    if (n < 0 || !f->mOut) return -1;
    std::size_t end = f->mAt + std::size_t(n);
    if (end > f->mOut->size()) f->mOut->resize(end);
    std::memcpy(f->mOut->data() + f->mAt, buffer, std::size_t(n));
    f->mAt = end;
    f->mSize = std::max(f->mSize, end);
    return n;
}

toff_t SeekProc(thandle_t h, toff_t offset, int whence) {
    auto *f = static_cast<memory_file *>(h);
    std::size_t base = whence == SEEK_CUR ? f->mAt : whence == SEEK_END ? f->mSize : 0;
    f->mAt = base + std::size_t(offset);
    return toff_t(f->mAt);
}

int CloseProc(thandle_t) { return 0; }
toff_t SizeProc(thandle_t h) { return toff_t(static_cast<memory_file *>(h)->mSize); }
int MapProc(thandle_t, void **, toff_t *) { return 0; }
void UnmapProc(thandle_t, void *, toff_t) {}

int Quiet(TIFF *, void *, char const *, char const *, va_list) { return 1; }

TIFF *Open(memory_file &f, char const *mode) {
    TIFFOpenOptions *opts = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(opts, Quiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(opts, Quiet, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(opts, tmsize_t(kMaxPixels) * 4);
    TIFF *tif = TIFFClientOpenExt("memory", mode, &f, ReadProc, WriteProc, SeekProc, CloseProc, SizeProc, MapProc,
                                  UnmapProc, opts);
    TIFFOpenOptionsFree(opts);
    return tif;
}

struct tiff_close {
    void operator()(TIFF *t) const noexcept { TIFFClose(t); }
};

}  // namespace

surface DecodeTiff(unsigned char const *data, std::size_t size) {
    if (Sniff(data, size) != format::tiff) return nullptr;
    memory_file f;
    f.mData = data;
    f.mSize = size;
    std::unique_ptr<TIFF, tiff_close> tif(Open(f, "rm"));
    if (!tif) return nullptr;
    std::uint32_t width = 0, height = 0;
    TIFFGetField(tif.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tif.get(), TIFFTAG_IMAGELENGTH, &height);
    if (width > std::uint32_t(kMaxSide) || height > std::uint32_t(kMaxSide)) return nullptr;
    surface out = NewSurface(int(width), int(height));
    if (!out) return nullptr;
    // libtiff gives premultiplied words with red in the low byte; ARGB32 wants blue there.
    auto *pixels = reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(out.get()));
    if (cairo_image_surface_get_stride(out.get()) != int(width) * 4) return nullptr;
    if (!TIFFReadRGBAImageOriented(tif.get(), width, height, pixels, ORIENTATION_TOPLEFT, 1)) return nullptr;
    std::size_t n = std::size_t(width) * height;
    for (std::size_t i = 0; i < n; ++i) {
        std::uint32_t w = pixels[i];
        pixels[i] = (w & 0xff00ff00u) | ((w & 0xffu) << 16) | ((w >> 16) & 0xffu);
    }
    cairo_surface_mark_dirty(out.get());
    return out;
}

bool EncodeTiff(cairo_surface_t *image, std::string &out) {
    memory_file f;
    f.mOut = &out;
    std::unique_ptr<TIFF, tiff_close> tif(Open(f, "w"));
    if (!tif) return false;
    int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
    TIFF *t = tif.get();
    std::uint16_t extra = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(t, TIFFTAG_IMAGEWIDTH, std::uint32_t(width));
    TIFFSetField(t, TIFFTAG_IMAGELENGTH, std::uint32_t(height));
    TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(t, TIFFTAG_EXTRASAMPLES, 1, &extra);
    TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(t, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(t, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(t, 0));
    std::vector<unsigned char> line(std::size_t(width) * 4);
    for (int y = 0; y < height; ++y) {
        std::uint32_t const *row = Row(image, y);
        for (int x = 0; x < width; ++x) {
            std::uint32_t w = row[x];  // premultiplied already, as associated alpha wants
            unsigned char *p = &line[std::size_t(x) * 4];
            p[0] = std::uint8_t(w >> 16), p[1] = std::uint8_t(w >> 8), p[2] = std::uint8_t(w), p[3] = std::uint8_t(w >> 24);
        }
        if (TIFFWriteScanline(t, line.data(), std::uint32_t(y), 0) < 0) return false;
    }
    if (!TIFFFlush(t)) return false;
    tif.reset();
    return true;
}

}  // namespace qor::tools::platform::codec
