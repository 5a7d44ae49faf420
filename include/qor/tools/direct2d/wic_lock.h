// direct2d::wic::lock: a graphic::dib over the memory of a wic's bitmap, for
// reading (WICBitmapLockRead) or writing (WICBitmapLockWrite). Pixel (x, y)
// of the locked area is at Data() + y * Stride() + x * 4. A lock that cannot
// be taken (no bitmap, an area outside it, a write lock while another lock is
// open) has a null Data(): test it. The wic must outlive its locks.
//
//   direct2d::wic::lock pixels(image, 10, 10, 100, 50, WICBitmapLockWrite);   // x, y, width, height
//   if (pixels.Data()) ...
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/sptr.h"
#include "qor/tools/direct2d/wic.h"
#include "qor/tools/graphic/dib.h"

namespace qor::tools::direct2d {

// A view of a bitmap's pixels (a graphic::dib) held locked until Release.
class QOR_TOOLS_API wic::lock : public graphic::dib {
public:
    // Locks the whole bitmap, a rectangle of it, or the rectangle at (x, y)
    // of that size, for the access `flags` asks (WICBitmapLockRead, ...);
    // copies share the lock.
    lock(wic &image, int flags);
    lock(wic &image, WICRect const &rect, int flags);
    lock(wic &image, int x, int y, int width, int height, int flags);
    lock(lock const &) = default;
    lock &operator=(lock const &) = default;
    ~lock() override;

    // Gives the platform's lock back and empties the view; safe twice.
    void Release();

    int mFlags;                                     // the access asked for
    WICRect mRect;                                  // the locked rectangle
    container::comptr<IWICBitmapLock> mBitmapLock;  // the platform's lock

private:
    void _Lock(wic &image);
};

}  // namespace qor::tools::direct2d
