#include "qor/tools/direct2d/wic.h"

namespace qor::tools::direct2d {

wic::lock::lock(wic &image, int flags) : mFlags(flags), mRect{0, 0, 0, 0} {
    UINT width = 0, height = 0;
    if (!image.IsEmpty() && SUCCEEDED(image->GetSize(&width, &height))) {
        mRect.Width = int(width);
        mRect.Height = int(height);
    }
    _Lock(image);
}

wic::lock::lock(wic &image, WICRect const &rect, int flags) : mFlags(flags), mRect(rect) { _Lock(image); }

wic::lock::lock(wic &image, int x, int y, int width, int height, int flags)
    : mFlags(flags), mRect{x, y, width, height} {
    _Lock(image);
}

wic::lock::~lock() {
    mBitmapLock.Release();
    align16::Release();
}

// The view is filled as far as the platform's calls succeed.
void wic::lock::_Lock(wic &image) {
    if (image.IsEmpty() || FAILED(image->Lock(&mRect, DWORD(mFlags), mBitmapLock.Addr()))) return;
    UINT width = 0, height = 0, stride = 0, size = 0;
    WICInProcPointer data = nullptr;
    if (FAILED(mBitmapLock->GetSize(&width, &height))) return;
    mWidth = int(width);
    mHeight = int(height);
    if (FAILED(mBitmapLock->GetStride(&stride))) return;
    mStride = int(stride);
    if (FAILED(mBitmapLock->GetDataPointer(&size, &data))) return;
    mData = data;
    mSize = int(size);
}

void wic::lock::Release() {
    if (mData) mBitmapLock.Release();
    graphic::dib::Release();
}

}  // namespace qor::tools::direct2d
