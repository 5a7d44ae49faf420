// gdiplus::image::lock: a graphic::dib over a copy of an area of an image's
// pixels in straight (not premultiplied) 32bppARGB, written back when a write
// lock ends. The six-argument form takes edges (left, top, right, bottom).
// A lock does not keep its image alive, and one that outlives its image ends
// quietly. A lock that cannot be taken has a null Data(): test it.
//
//   gdiplus::image::lock pixels(picture, 10, 20, 110, 220, Gdiplus::ImageLockModeWrite);   // 100 x 200
//   if (pixels.Data()) ...
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/gdiplus/image.h"
#include "qor/tools/graphic/dib.h"

namespace qor::tools::gdiplus {

// A view of a bitmap's pixels (a graphic::dib) held locked until Release.
class QOR_TOOLS_API image::lock : public graphic::dib {
public:
    // Locks the whole bitmap, a rectangle, or the rectangle between those
    // edges, for the access `flags` asks (Gdiplus::ImageLockModeRead, ...).
    lock(image &picture, int flags);
    lock(image &picture, Gdiplus::Rect const &rect, int flags);
    lock(image &picture, int left, int top, int right, int bottom, int flags);
    // Field by field: both will unlock, the second time doing nothing.
    lock(lock const &) = default;
    lock &operator=(lock const &) = default;
    ~lock() override;

    // Gives the lock back (writing the pixels of a write lock) and empties the view.
    void Release();

    int mFlags;                       // the access asked for
    Gdiplus::Rect mRect;              // the locked rectangle
    Gdiplus::Bitmap *mBitmap;         // the locked bitmap
    Gdiplus::BitmapData mBitmapData;  // the platform's lock record

private:
    void _Lock();
    void _Unlock();
};

}  // namespace qor::tools::gdiplus
