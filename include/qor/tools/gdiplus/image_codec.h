// gdiplus::image::decoder and encoder: a file into a new Gdiplus::Bitmap,
// and a bitmap into a file through the encoder that the file's extension
// picks. image::Load and image::Save use them; they are here for direct use.
//
//   Gdiplus::Bitmap *bitmap = gdiplus::image::decoder().Load(u"a.png");   // null: not a picture
//   Gdiplus::Status status = gdiplus::image::encoder().Save(bitmap, u"a.jpg");
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/gdiplus/image.h"

namespace qor::tools::gdiplus {

// Reads a picture file into a bitmap.
class QOR_TOOLS_API image::decoder {
public:
    // A decoder; copies are alike.
    decoder() = default;
    decoder(decoder const &) = default;
    decoder &operator=(decoder const &) = default;
    virtual ~decoder() = default;

    // The caller owns the result; null when the file is not a picture.
    Gdiplus::Bitmap *Load(char16_t const *path);
};

// Writes a bitmap to a file in the format its extension names.
class QOR_TOOLS_API image::encoder {
public:
    // An encoder; copies are alike.
    encoder() = default;
    encoder(encoder const &) = default;
    encoder &operator=(encoder const &) = default;
    virtual ~encoder() = default;

    // Ok, or the failure (also left in the bitmap); UnknownImageFormat, with
    // nothing written, when no encoder lists the path's extension.
    Gdiplus::Status Save(Gdiplus::Bitmap *bitmap, char16_t const *path);

protected:
    // The encoder whose extension list holds the path's extension anywhere
    // after its first character (any case), or whose description equals its
    // extension list; the null id when none does.
    _GUID _EncoderClsid(char16_t const *path) const;
    // The encoder table in a block the caller frees with std::free; the
    // number of entries, 0 on failure.
    int _ImageCodecInfoEncoder(unsigned char **codecs) const;
};

}  // namespace qor::tools::gdiplus
