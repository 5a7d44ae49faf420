// The encoder table and the saving of bitmaps: BMP, JPEG, GIF, TIFF and PNG
// in that order, with the platform's class ids, descriptions and extension
// lists, written through the library's codecs.
#include <cstring>
#include <string>

#include "codec.h"
#include "file_io.h"
#include "gdip_objects.h"

namespace qor::tools::Gdiplus {

namespace codec = platform::codec;

namespace {

constexpr GUID Format(std::uint32_t first) {
    return {first, 0x0728, 0x11d3, {0x9d, 0x7b, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
}

struct encoder {
    CLSID mClsid;
    GUID mFormat;
    char16_t const *mName;
    char16_t const *mDescription;
    char16_t const *mExtensions;
    char16_t const *mMime;
    codec::format mCodec;
};

constexpr encoder kEncoders[] = {
    {CLSID_EncoderBMP, Format(0xb96b3cab), u"Built-in BMP Codec", u"BMP", u"*.BMP;*.DIB;*.RLE", u"image/bmp",
     codec::format::bmp},
    {CLSID_EncoderJPEG, Format(0xb96b3cae), u"Built-in JPEG Codec", u"JPEG", u"*.JPG;*.JPEG;*.JPE;*.JFIF",
     u"image/jpeg", codec::format::jpeg},
    {CLSID_EncoderGIF, Format(0xb96b3cb0), u"Built-in GIF Codec", u"GIF", u"*.GIF", u"image/gif", codec::format::gif},
    {CLSID_EncoderTIFF, Format(0xb96b3cb1), u"Built-in TIFF Codec", u"TIFF", u"*.TIF;*.TIFF", u"image/tiff",
     codec::format::tiff},
    {CLSID_EncoderPNG, Format(0xb96b3caf), u"Built-in PNG Codec", u"PNG", u"*.PNG", u"image/png", codec::format::png},
};
constexpr UINT kCount = sizeof kEncoders / sizeof kEncoders[0];
constexpr DWORD kEncoderFlags = 0x00010007;  // built in; encoder, decoder, bitmap

std::size_t Units(char16_t const *text) { return std::char_traits<char16_t>::length(text) + 1; }

std::size_t StringBytes() {
    std::size_t units = 0;
    for (encoder const &e : kEncoders) {
        units += Units(e.mName) + Units(e.mDescription) + Units(e.mExtensions) + Units(e.mMime);
    }
    return units * sizeof(char16_t);
}

// Copies `text` to `*cursor` and moves the cursor past it.
WCHAR const *Place(char16_t const *text, WCHAR *&cursor) {
    std::size_t units = Units(text);
    std::memcpy(cursor, text, units * sizeof(char16_t));
    WCHAR const *placed = cursor;
    cursor += units;
    return placed;
}

// An ARGB32 surface with the bitmap's pixels, referenced or newly made.
cairo_surface_t *EncodableSurface(cairo_surface_t *surface) {
    if (cairo_image_surface_get_format(surface) == CAIRO_FORMAT_ARGB32) return cairo_surface_reference(surface);
    cairo_surface_t *copy = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, cairo_image_surface_get_width(surface),
                                                       cairo_image_surface_get_height(surface));
    cairo_t *cr = cairo_create(copy);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_paint(cr);
    cairo_set_source_surface(cr, surface, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
    return copy;
}

}  // namespace

Status GdipGetImageEncodersSize(UINT *count, UINT *size) {
    if (!count || !size) return InvalidParameter;
    *count = kCount;
    *size = UINT(kCount * sizeof(ImageCodecInfo) + StringBytes());
    return Ok;
}

Status GdipGetImageEncoders(UINT count, UINT size, ImageCodecInfo *encoders) {
    if (!encoders || count != kCount || size != kCount * sizeof(ImageCodecInfo) + StringBytes()) {
        return InvalidParameter;
    }
    auto *cursor = reinterpret_cast<WCHAR *>(encoders + kCount);
    for (UINT i = 0; i < kCount; ++i) {
        encoder const &e = kEncoders[i];
        ImageCodecInfo &info = encoders[i];
        info = ImageCodecInfo{};
        info.Clsid = e.mClsid;
        info.FormatID = e.mFormat;
        info.CodecName = Place(e.mName, cursor);
        info.FormatDescription = Place(e.mDescription, cursor);
        info.FilenameExtension = Place(e.mExtensions, cursor);
        info.MimeType = Place(e.mMime, cursor);
        info.Flags = kEncoderFlags;
        info.Version = 1;
    }
    return Ok;
}

Status GdipSaveImageToFile(GpImage *image, WCHAR const *path, CLSID const *clsid, EncoderParameters const *) {
    auto *bitmap = dynamic_cast<GpBitmap *>(image);
    if (!bitmap || !path || !*path || !clsid) return InvalidParameter;
    if (bitmap->mPixels->mLocked) return WrongState;
    encoder const *chosen = nullptr;
    for (encoder const &e : kEncoders) {
        if (e.mClsid == *clsid) chosen = &e;
    }
    if (!chosen) return FileNotFound;
    cairo_surface_t *surface = EncodableSurface(bitmap->mPixels->mSurface);
    std::string bytes;
    bool encoded = codec::Encode(chosen->mCodec, surface, {}, bytes);
    cairo_surface_destroy(surface);
    if (!encoded) return Win32Error;
    platform::replacement_file file;
    if (!file.Open(path) || !file.Write(bytes.data(), bytes.size()) || !file.Commit()) return Win32Error;
    return Ok;
}

}  // namespace qor::tools::Gdiplus
