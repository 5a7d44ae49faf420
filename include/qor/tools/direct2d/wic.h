// direct2d::wic: the working image. An in-memory bitmap in the one pixel
// format of the library (premultiplied blue, green, red, alpha) with the path
// of the file it belongs to. Copies share the bitmap and the path: a pixel
// written through one copy shows in all; Clone makes an independent copy.
// Needs the one direct2d::factory, made and initialised first.
//
//   direct2d::wic photo(u"/photos/a.jpg");          // throws "wic bitmap load <...>"
//   direct2d::wic small = photo.Scale(160, 120);    // fitted, proportions kept
//   {
//       direct2d::wic::lock pixels(small, WICBitmapLockWrite);   // a graphic::dib
//       ...
//   }
//   small.Save(0.9f, u"/photos/a-small.jpg", nullptr);
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/base.h"
#include "qor/tools/direct2d/float_types.h"
#include "qor/tools/direct2d/target.h"
#include "qor/tools/platform/region.h"
#include "qor/tools/platform/wincodec.h"
#include "qor/tools/string.h"

namespace qor::tools::direct2d {

namespace pif {

// Bitmaps are given back by Release; every body also holds the file path.
struct QOR_TOOLS_API wic : container::pif::com {
    string mPath;  // the file the bitmap came from or goes to
};

}  // namespace pif

class QOR_TOOLS_API wic : public container::base::_xptr<IWICBitmap *, pif::wic> {
    using xptr = container::base::_xptr<IWICBitmap *, pif::wic>;

public:
    class lock;
    class decoder;
    class encoder;
    class exif;

    // Empty; loaded from `path` (throws as Load); a bitmap taken over; a new
    // bitmap of that size; copies share the bitmap.
    wic() = default;
    explicit wic(char16_t const *path);
    // Takes `bitmap` over without adding a reference.
    wic(IWICBitmap *bitmap, char16_t const *path);
    wic(int width, int height);
    wic(float width, float height);
    wic(wic const &) = default;
    wic &operator=(wic const &) = default;
    ~wic() override = default;

    // A new bitmap of that size; the picture of `path` (and its metadata into
    // `record`, if given); only the metadata. They throw on failure.
    void Create(int width, int height);
    void Create(float width, float height);
    void Load(char16_t const *path, exif *record);
    void LoadExif(char16_t const *path, exif *record);
    // Saves to `path` (null: the image's own path) in the format its extension
    // names; a file saved over is replaced whole or not at all.
    void Save(float quality, char16_t const *path, exif *record);
    void Save(char16_t const *path, exif *record);
    wic Scale(float width, float height);
    wic Scale(sizef const &size);
    static wic Scale(IWICBitmap *bitmap, float width, float height);
    target<ID2D1RenderTarget> CreateRenderTarget();
    // The pixels that differ from `color` (0xAARRGGBB) as a region, in runs
    // a row; the caller owns it.
    HRGN CreateRegion(unsigned long color);
    void Clone(wic &source);
    sizef Size();
    string Path();
};

}  // namespace qor::tools::direct2d

#include "qor/tools/direct2d/wic_exif.h"
#include "qor/tools/direct2d/wic_lock.h"
#include "qor/tools/direct2d/wic_codec.h"
