#include "qor/tools/gdiplus/image_lock.h"

namespace qor::tools::gdiplus {

image::lock::lock(image &picture, int flags) : mFlags(flags), mBitmap(picture.Get()), mBitmapData{} {
    if (mBitmap) mRect = Gdiplus::Rect(0, 0, int(mBitmap->GetWidth()), int(mBitmap->GetHeight()));
    _Lock();
}

image::lock::lock(image &picture, Gdiplus::Rect const &rect, int flags)
    : mFlags(flags), mRect(rect), mBitmap(picture.Get()), mBitmapData{} {
    _Lock();
}

image::lock::lock(image &picture, int left, int top, int right, int bottom, int flags)
    : mFlags(flags), mRect(left, top, right - left, bottom - top), mBitmap(picture.Get()), mBitmapData{} {
    _Lock();
}

image::lock::~lock() {
    _Unlock();
    align16::Release();
}

// A failed lock leaves the record zeroed, which reads as an empty view.
void image::lock::_Lock() {
    if (!mBitmap) return;
    mBitmap->LockBits(&mRect, Gdiplus::UINT(mFlags), Gdiplus::PixelFormat32bppARGB, &mBitmapData);
    mWidth = int(mBitmapData.Width);
    mHeight = int(mBitmapData.Height);
    mStride = mBitmapData.Stride;
    mData = static_cast<unsigned char *>(mBitmapData.Scan0);
    mSize = mStride * mHeight;
}

// The platform finds the bitmap from the lock record itself, so the bitmap
// object, which may be gone by now, is not read.
void image::lock::_Unlock() {
    if (mData) Gdiplus::GdipBitmapUnlockBits(nullptr, &mBitmapData);
}

void image::lock::Release() {
    _Unlock();
    graphic::dib::Release();
}

}  // namespace qor::tools::gdiplus
