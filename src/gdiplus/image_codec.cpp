#include "qor/tools/gdiplus/image_codec.h"

#include <cstdlib>

namespace qor::tools::gdiplus {

Gdiplus::Bitmap *image::decoder::Load(char16_t const *path) {
    auto *bitmap = new Gdiplus::Bitmap(path);
    if (bitmap && bitmap->GetLastStatus() != Gdiplus::Ok) {
        delete bitmap;
        return nullptr;
    }
    return bitmap;
}

Gdiplus::Status image::encoder::Save(Gdiplus::Bitmap *bitmap, char16_t const *path) {
    _GUID clsid = _EncoderClsid(path);
    if (clsid == GUID_NULL || !bitmap) return Gdiplus::UnknownImageFormat;
    return bitmap->Save(path, &clsid, nullptr);
}

// A search by substring: "J" and "PE" find the JPEG entry as ".jpg" does.
_GUID image::encoder::_EncoderClsid(char16_t const *path) const {
    if (!path) return GUID_NULL;
    string extension = string(path).Right(u'.');
    unsigned char *block = nullptr;
    int count = _ImageCodecInfoEncoder(&block);
    auto const *codecs = reinterpret_cast<Gdiplus::ImageCodecInfo const *>(block);
    _GUID chosen = GUID_NULL;
    for (int i = 0; i < count; ++i) {
        string description(codecs[i].FormatDescription), extensions(codecs[i].FilenameExtension);
        if (description == extensions || extensions.FindNoCase(extension, 0) > 0) {
            chosen = codecs[i].Clsid;
            break;
        }
    }
    std::free(block);
    return chosen;
}

int image::encoder::_ImageCodecInfoEncoder(unsigned char **codecs) const {
    *codecs = nullptr;
    Gdiplus::UINT count = 0, size = 0;
    if (Gdiplus::GdipGetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0) return 0;
    *codecs = static_cast<unsigned char *>(std::malloc(size));
    if (!*codecs) return 0;
    if (Gdiplus::GdipGetImageEncoders(count, size, reinterpret_cast<Gdiplus::ImageCodecInfo *>(*codecs)) !=
        Gdiplus::Ok) {
        std::free(*codecs);
        *codecs = nullptr;
        return 0;
    }
    return int(count);
}

}  // namespace qor::tools::gdiplus
