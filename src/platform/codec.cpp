#include "codec.h"

#include <cstring>

#include "codec_formats.h"

namespace qor::tools::platform::codec {

format Sniff(unsigned char const *d, std::size_t n) {
    auto starts = [&](char const *magic, std::size_t m) { return n >= m && std::memcmp(d, magic, m) == 0; };
    if (starts("\xff\xd8\xff", 3)) return format::jpeg;
    if (starts("\x89PNG\r\n\x1a\n", 8)) return format::png;
    if (starts("II*\0", 4) || starts("MM\0*", 4)) return format::tiff;
    if (starts("GIF87a", 6) || starts("GIF89a", 6)) return format::gif;
    if (starts("BM", 2)) return format::bmp;
    if (starts("\0\0\1\0", 4) || starts("\0\0\2\0", 4)) return format::ico;
    return format::unknown;
}

surface DecodeForBox(unsigned char const *data, std::size_t size, int width, int height) {
    if (!data || size == 0) return nullptr;
    if (Sniff(data, size) == format::jpeg) return DecodeJpeg(data, size, width, height);
    return Decode(data, size);
}

surface Decode(unsigned char const *data, std::size_t size) {
    if (!data || size == 0) return nullptr;
    switch (Sniff(data, size)) {
        case format::jpeg: return DecodeJpeg(data, size, 0, 0);
        case format::png: return DecodePng(data, size);
        case format::tiff: return DecodeTiff(data, size);
        case format::gif: return DecodeGif(data, size);
        case format::bmp: return DecodeBmp(data, size);
        case format::ico: return DecodeIco(data, size);
        case format::unknown: break;
    }
    return nullptr;
}

bool IsWritable(cairo_surface_t *image) {
    if (!image || cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) return false;
    if (cairo_surface_get_type(image) != CAIRO_SURFACE_TYPE_IMAGE) return false;
    if (cairo_image_surface_get_format(image) != CAIRO_FORMAT_ARGB32) return false;
    cairo_surface_flush(image);
    return cairo_image_surface_get_width(image) > 0 && cairo_image_surface_get_height(image) > 0;
}

bool Encode(format f, cairo_surface_t *image, options const &o, std::string &out) {
    out.clear();
    if (!IsWritable(image)) return false;
    try {
        switch (f) {
            case format::jpeg: return EncodeJpeg(image, o, out);
            case format::png: return EncodePng(image, out);
            case format::tiff: return EncodeTiff(image, out);
            case format::gif: return EncodeGif(image, out);
            case format::bmp: return EncodeBmp(image, out);
            case format::ico: return EncodeIco(image, out);
            case format::unknown: break;
        }
    } catch (std::bad_alloc const &) {
        out.clear();
    }
    return false;
}

surface NewSurface(int width, int height) {
    if (width < 1 || height < 1 || width > kMaxSide || height > kMaxSide) return nullptr;
    if (std::int64_t(width) * height > kMaxPixels) return nullptr;
    surface s(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    if (cairo_surface_status(s.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    return s;
}

}  // namespace qor::tools::platform::codec
