// direct2d::wic::decoder and encoder: a file into a bitmap of the library's
// pixel format, and a bitmap into a file of the format its extension names
// ("bmp", "jpg", "jpeg", "png", "ico", "tiff", "tif", "gif", any case), with
// a quality (0 to 1) and, for JPEG only, EXIF metadata and a thumbnail.
// wic::Load and wic::Save make them; they are here for direct use.
//
//   IWICBitmap *bitmap = direct2d::wic::decoder().Load(u"a.png", nullptr);   // null: not a picture
//   long result = direct2d::wic::encoder().Save(bitmap, u"a.jpg", &metadata, 0.9f);  // 0 or E_FAIL
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/sptr.h"
#include "qor/tools/direct2d/wic.h"

namespace qor::tools::direct2d {

// Reads pictures and their metadata from files (frame 0).
class QOR_TOOLS_API wic::decoder {
public:
    // A decoder; a copy is a new one.
    decoder() = default;
    decoder(decoder const &) noexcept {}
    decoder &operator=(decoder const &) noexcept { return *this; }
    virtual ~decoder() = default;

    // Frame 0 as a bitmap decoded at its first use (one reference, the
    // caller's), or null; reads the metadata into `record` if given.
    IWICBitmap *Load(char16_t const *path, exif *record);
    void LoadExif(char16_t const *path, exif *record);
    // Walks the metadata tree of frame 0, handing each value to TraceProp.
    void Trace(char16_t const *path);
    // A hook for printing one value: does nothing.
    static void TraceProp(PROPVARIANT &value);

protected:
    void _LoadExif(IWICBitmapFrameDecode *frame, exif *record);
    void _TraceMetadata(IWICBitmapFrameDecode *frame);
    void _TraceMetadata(IWICMetadataQueryReader *reader, string const &prefix);
};

// Writes a bitmap to a file in the format its extension names.
class QOR_TOOLS_API wic::encoder {
public:
    // An encoder; copies are independent.
    encoder() = default;
    encoder(encoder const &) = default;
    encoder &operator=(encoder const &) = default;
    virtual ~encoder() = default;

    // 0, or E_FAIL for any failure (nothing is thrown). A file that is saved
    // over is replaced only when the whole picture was written.
    long Save(IWICBitmap *bitmap, char16_t const *path, exif *record, float quality);

protected:
    void _SelectEncoder(char16_t const *path, container::comptr<IWICBitmapEncoder> &platformEncoder);
    void _EncodeImageQuality(IPropertyBag2 *bag, float quality);
    void _Thumbnail(IWICBitmap *bitmap, exif *record);
    void _TraceEncodeFramePropertyBag2(IPropertyBag2 *bag);

    GUID mContainer = GUID_NULL;
};

}  // namespace qor::tools::direct2d
