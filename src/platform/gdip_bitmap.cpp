// Bitmaps of the painting interface: made empty, from pixels, from a file or
// from a Cairo surface, measured, read and written pixel by pixel.
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "codec.h"
#include "codec_pixels.h"
#include "file_io.h"
#include "gdip_objects.h"
#include "gdip_pixels.h"

namespace qor::tools::Gdiplus {

namespace codec = platform::codec;

namespace {

bool HasAlpha(PixelFormat format) { return format == PixelFormat32bppARGB || format == PixelFormat32bppPARGB; }

GpBitmap *Wrap(cairo_surface_t *surface, PixelFormat format) {
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    auto pixels = std::make_shared<pixel_store>(surface);
    int width = cairo_image_surface_get_width(surface), height = cairo_image_surface_get_height(surface);
    return new (std::nothrow) GpBitmap(std::move(pixels), format, width, height);
}

GpBitmap *NewBitmap(int width, int height, PixelFormat format) {
    if (!IsKnownFormat(format) || width < 1 || height < 1 || width > codec::kMaxSide || height > codec::kMaxSide) {
        return nullptr;
    }
    if (std::int64_t(width) * height > codec::kMaxPixels) return nullptr;
    cairo_format_t kind = HasAlpha(format) ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    return Wrap(cairo_image_surface_create(kind, width, height), format);
}

// A copy of `source` in a surface of the kind `format` keeps.
GpBitmap *BitmapOfSurface(cairo_surface_t *source, PixelFormat format) {
    int width = cairo_image_surface_get_width(source), height = cairo_image_surface_get_height(source);
    GpBitmap *bitmap = NewBitmap(width, height, format);
    if (!bitmap) return nullptr;
    cairo_t *cr = cairo_create(bitmap->mPixels->mSurface);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cr, source, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_flush(bitmap->mPixels->mSurface);
    return bitmap;
}

}  // namespace

Status GdipCreateBitmapFromScan0(INT width, INT height, INT stride, PixelFormat format, BYTE *scan0, GpBitmap **bitmap) {
    if (!bitmap) return InvalidParameter;
    *bitmap = nullptr;
    if (scan0 && std::abs(std::int64_t(stride)) < std::int64_t(width) * BytesPerPixel(format)) return InvalidParameter;
    GpBitmap *made = NewBitmap(width, height, format);
    if (!made) return IsKnownFormat(format) && width > 0 && height > 0 ? OutOfMemory : InvalidParameter;
    if (scan0) {
        pixel_access pixels(*made);
        for (int y = 0; y < height; ++y) pixels.WriteRow(y, 0, width, scan0 + std::int64_t(y) * stride, format);
    }
    *bitmap = made;
    return Ok;
}

Status GdipCreateBitmapFromFile(WCHAR const *path, GpBitmap **bitmap) {
    if (!path || !bitmap) return InvalidParameter;
    *bitmap = nullptr;
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
    if (platform::FileSize(path) < 0) return FileNotFound;
    if (!platform::ReadWhole(path, bytes, size)) return Win32Error;
    auto data = reinterpret_cast<unsigned char const *>(bytes.get());
    codec::surface picture = codec::Decode(data, size);
    if (!picture) return UnknownImageFormat;
    if (codec::Sniff(data, size) == codec::format::jpeg) {
        *bitmap = BitmapOfSurface(picture.get(), PixelFormat24bppRGB);
    } else {
        *bitmap = Wrap(picture.release(), PixelFormat32bppARGB);
    }
    return *bitmap ? Ok : OutOfMemory;
}

// The bitmap takes the surface's pixels as they are, without alpha: a
// bitmap handle has none in this interface.
Status GdipCreateBitmapFromHBITMAP(HBITMAP source, HPALETTE, GpBitmap **bitmap) {
    if (!bitmap) return InvalidParameter;
    *bitmap = nullptr;
    if (!source || cairo_surface_status(source) != CAIRO_STATUS_SUCCESS ||
        cairo_surface_get_type(source) != CAIRO_SURFACE_TYPE_IMAGE) {
        return InvalidParameter;
    }
    cairo_surface_flush(source);
    *bitmap = BitmapOfSurface(source, PixelFormat32bppRGB);
    return *bitmap ? Ok : InvalidParameter;
}

Status GdipCloneImage(GpImage *image, GpImage **clone) {
    auto *source = dynamic_cast<GpBitmap *>(image);
    if (!source || !clone) return InvalidParameter;
    GpBitmap *copy = BitmapOfSurface(SurfaceOf(source), source->mFormat);
    if (!copy) return OutOfMemory;
    copy->mPixels->mStraight = source->mPixels->mStraight;
    copy->mPixels->mStraightValid = source->mPixels->mStraightValid;
    *clone = copy;
    return Ok;
}

Status GdipDisposeImage(GpImage *image) {
    if (!image) return InvalidParameter;
    delete image;
    return Ok;
}

Status GdipGetImageWidth(GpImage *image, UINT *width) {
    auto *bitmap = dynamic_cast<GpBitmap *>(image);
    if (!bitmap || !width) return InvalidParameter;
    *width = UINT(bitmap->mWidth);
    return Ok;
}

Status GdipGetImageHeight(GpImage *image, UINT *height) {
    auto *bitmap = dynamic_cast<GpBitmap *>(image);
    if (!bitmap || !height) return InvalidParameter;
    *height = UINT(bitmap->mHeight);
    return Ok;
}

Status GdipGetImagePixelFormat(GpImage *image, PixelFormat *format) {
    auto *bitmap = dynamic_cast<GpBitmap *>(image);
    if (!bitmap || !format) return InvalidParameter;
    *format = bitmap->mFormat;
    return Ok;
}

Status GdipBitmapGetPixel(GpBitmap *bitmap, INT x, INT y, ARGB *color) {
    if (!bitmap || !color || x < 0 || y < 0 || x >= bitmap->mWidth || y >= bitmap->mHeight) return InvalidParameter;
    if (bitmap->mPixels->mLocked) return WrongState;
    pixel_access pixels(*bitmap);
    pixels.ReadRow(y, x, 1, reinterpret_cast<BYTE *>(color), PixelFormat32bppARGB);
    return Ok;
}

Status GdipBitmapSetPixel(GpBitmap *bitmap, INT x, INT y, ARGB color) {
    if (!bitmap || x < 0 || y < 0 || x >= bitmap->mWidth || y >= bitmap->mHeight) return InvalidParameter;
    if (bitmap->mPixels->mLocked) return WrongState;
    pixel_access pixels(*bitmap);
    pixels.WriteRow(y, x, 1, reinterpret_cast<BYTE const *>(&color), PixelFormat32bppARGB);
    return Ok;
}

cairo_surface_t *SurfaceOf(GpImage *image) {
    auto *bitmap = dynamic_cast<GpBitmap *>(image);
    return bitmap ? bitmap->mPixels->mSurface : nullptr;
}

}  // namespace qor::tools::Gdiplus
