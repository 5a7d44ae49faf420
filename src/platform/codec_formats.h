// The decoders and encoders of each format, behind codec.h. Each decoder
// takes only its own format, known by its first bytes (Sniff).
#pragma once

#include "codec.h"

namespace qor::tools::platform::codec {

// With a box (`boxWidth` and `boxHeight` above 0), the smallest of 1/8, 1/4,
// 1/2 and the whole size that still covers the box.
surface DecodeJpeg(unsigned char const *data, std::size_t size, int boxWidth, int boxHeight);
surface DecodePng(unsigned char const *data, std::size_t size);
surface DecodeTiff(unsigned char const *data, std::size_t size);
surface DecodeGif(unsigned char const *data, std::size_t size);
surface DecodeBmp(unsigned char const *data, std::size_t size);
surface DecodeIco(unsigned char const *data, std::size_t size);
// A device-independent bitmap without its file header (as inside an icon,
// whose height counts the AND mask too when `icon`).
surface DecodeDib(unsigned char const *data, std::size_t size, std::size_t pixelsAt, bool icon);

// Appends a 32-bit device-independent bitmap of `image` without a file
// header: with a V5 header and an alpha mask, or for an icon with an info
// header, a doubled height and an AND mask.
void AppendDib(cairo_surface_t *image, bool icon, std::string &out);

bool EncodeJpeg(cairo_surface_t *image, options const &o, std::string &out);
bool EncodePng(cairo_surface_t *image, std::string &out);
bool EncodeTiff(cairo_surface_t *image, std::string &out);
bool EncodeGif(cairo_surface_t *image, std::string &out);
bool EncodeBmp(cairo_surface_t *image, std::string &out);
bool EncodeIco(cairo_surface_t *image, std::string &out);

// The pixel words of row `y` of an ARGB32 surface.
inline std::uint32_t *Row(cairo_surface_t *s, int y) {
    return reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(s) +
                                             std::ptrdiff_t(y) * cairo_image_surface_get_stride(s));
}
// Whether `image` is an ARGB32 image surface that can be written.
bool IsWritable(cairo_surface_t *image);

}  // namespace qor::tools::platform::codec
