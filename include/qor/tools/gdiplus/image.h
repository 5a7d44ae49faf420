// gdiplus::image: the bitmap of the painting side, loaded from a file or a
// Cairo surface, or made in a pixel format, and drawn on through a
// gdiplus::target. Copies share the bitmap and its path; loading or creating
// again on a shared copy moves only that copy on. Locks (gdiplus::image::lock)
// give a graphic::dib view in straight 32bppARGB.
//
//   gdiplus::image photo(u"/photos/a.png");              // throws "gdiplus image load"
//   gdiplus::image canvas(640, 480, PixelFormat32bppARGB);
//   canvas.Save(u"/tmp/canvas.png");                      // throws "gdiplus image save"
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/base.h"
#include "qor/tools/platform/gdiplus.h"
#include "qor/tools/string.h"

namespace qor::tools::gdiplus {

namespace pif {

// Bitmaps are deleted; every body also holds the file path.
struct QOR_TOOLS_API image : container::pif::object {
    string mPath;  // the file the bitmap came from or goes to
};

}  // namespace pif

class QOR_TOOLS_API image : public container::base::_xptr<Gdiplus::Bitmap *, pif::image> {
    using xptr = container::base::_xptr<Gdiplus::Bitmap *, pif::image>;

public:
    class decoder;
    class encoder;
    class lock;

    // Empty, loaded from a file or a surface, or a new bitmap; copies share
    // the bitmap.
    image() = default;
    explicit image(char16_t const *path) { Load(path); }
    explicit image(HBITMAP bitmap) { Load(bitmap); }
    image(int width, int height, int format) { Create(width, height, format); }
    image(image const &) = default;
    image &operator=(image const &) = default;
    ~image() override = default;

    // A new bitmap in `format` (a Gdiplus::PixelFormat); nothing is reported.
    void Create(int width, int height, int format);
    void Load(char16_t const *path);
    // A copy of the surface's pixels; the path is cleared.
    void Load(HBITMAP bitmap);
    // Stores a non-null `path`, then writes the bitmap there in the format of
    // the encoder whose extension list holds the path's extension.
    void Save(char16_t const *path);
    Gdiplus::Size Size();
    string Path() const { return Body()->mPath; }
};

}  // namespace qor::tools::gdiplus

#include "qor/tools/gdiplus/image_codec.h"
#include "qor/tools/gdiplus/image_lock.h"
