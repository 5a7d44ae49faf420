// The picture codecs under the imaging layers: a file of any of six formats
// (JPEG, PNG, TIFF, GIF, BMP, ICO) read into the library's one pixel format,
// a Cairo ARGB32 image surface (bytes blue, green, red, alpha, premultiplied),
// and written back from one. Only the first frame or page is read.
//
// No codec prints, aborts or exits: a file that cannot be read whole is a
// null surface, a picture that cannot be written a false answer.
//
//   codec::surface image = codec::Decode(bytes.data(), bytes.size());
//   std::string jpeg;
//   codec::Encode(codec::format::jpeg, image.get(), {0.9, exif}, jpeg);
#pragma once

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace qor::tools::platform::codec {

enum class format { unknown, bmp, jpeg, gif, tiff, png, ico };

struct surface_release {
    void operator()(cairo_surface_t *s) const noexcept { cairo_surface_destroy(s); }
};
using surface = std::unique_ptr<cairo_surface_t, surface_release>;

// Largest picture read: 32,767 pixels a side (Cairo's bound) and 2^28 pixels
// in all (1 GB of pixels), so that a small file cannot claim all memory.
inline constexpr int kMaxSide = 32767;
inline constexpr std::int64_t kMaxPixels = std::int64_t(1) << 28;

struct options {
    double mQuality = 0.9;  // JPEG only: 0 to 1
    std::string mApp1;      // JPEG only: an APP1 segment's payload ("Exif\0\0" and the TIFF block)
};

// The format of a file by its first bytes.
format Sniff(unsigned char const *data, std::size_t size);

// Reads the first frame of a file of any of the six formats; null when the
// bytes are not a whole picture of one of them.
surface Decode(unsigned char const *data, std::size_t size);
// Reads as Decode does, for a picture that will be shown reduced to fit
// `width` by `height`: a JPEG is decoded at the smallest of 1/2, 1/4 and 1/8
// of its size that still covers the box; other formats come whole.
surface DecodeForBox(unsigned char const *data, std::size_t size, int width, int height);

// The size of a picture that can be decoded later, at the size its first use
// needs: a sequential JPEG whose header reads whole and whose data runs to an
// end-of-image marker. False for anything else, which is decoded at once.
bool MeasureJpeg(unsigned char const *data, std::size_t size, int &width, int &height);

// Writes an ARGB32 image surface in format `f` into `out`.
bool Encode(format f, cairo_surface_t *image, options const &o, std::string &out);

// A new, transparent ARGB32 surface, or null for a size out of bounds.
surface NewSurface(int width, int height);

}  // namespace qor::tools::platform::codec
