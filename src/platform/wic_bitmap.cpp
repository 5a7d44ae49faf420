#include "wic_bitmap.h"

#include <cairo.h>

#include <cstring>

namespace qor::tools::platform::wic {

namespace {

bool Inside(WICRect const &r, int width, int height) {
    return r.X >= 0 && r.Y >= 0 && r.Width >= 0 && r.Height >= 0 && r.X <= width - r.Width &&
           r.Y <= height - r.Height;
}

class bitmap_lock final : public com_object<IWICBitmapLock> {
public:
    bitmap_lock(bitmap *owner, WICRect const &rect, bool write, BYTE *data, UINT stride)
        : mOwner(owner), mRect(rect), mWrite(write), mData(data), mStride(stride) {
        mOwner->AddRef();
    }
    ~bitmap_lock() override {
        mOwner->_Unlock(mWrite);
        mOwner->Release();
    }

    HRESULT GetSize(UINT *width, UINT *height) override {
        if (!width || !height) return E_INVALIDARG;
        *width = UINT(mRect.Width);
        *height = UINT(mRect.Height);
        return S_OK;
    }
    HRESULT GetStride(UINT *stride) override {
        if (!stride) return E_INVALIDARG;
        *stride = mStride;
        return S_OK;
    }
    // The locked area runs from its first pixel to the last pixel of its last row.
    HRESULT GetDataPointer(UINT *size, WICInProcPointer *data) override {
        if (!size || !data) return E_INVALIDARG;
        *size = mRect.Height ? mStride * UINT(mRect.Height - 1) + UINT(mRect.Width) * 4 : 0;
        *data = mData;
        return S_OK;
    }
    HRESULT GetPixelFormat(WICPixelFormatGUID *format) override {
        if (!format) return E_INVALIDARG;
        *format = GUID_WICPixelFormat32bppPBGRA;
        return S_OK;
    }

private:
    bitmap *mOwner;
    WICRect mRect;
    bool mWrite;
    BYTE *mData;
    UINT mStride;
};

}  // namespace

bitmap::bitmap(codec::surface pixels) : mSurface(std::move(pixels)) {
    mWidth = cairo_image_surface_get_width(mSurface.get());
    mHeight = cairo_image_surface_get_height(mSurface.get());
}

bitmap::bitmap(std::shared_ptr<encoded const> picture, int width, int height)
    : mPicture(std::move(picture)), mWidth(width), mHeight(height) {}

HRESULT bitmap::GetSize(UINT *width, UINT *height) {
    if (!width || !height) return E_INVALIDARG;
    *width = UINT(mWidth);
    *height = UINT(mHeight);
    return S_OK;
}

HRESULT bitmap::GetPixelFormat(WICPixelFormatGUID *format) {
    if (!format) return E_INVALIDARG;
    *format = GUID_WICPixelFormat32bppPBGRA;
    return S_OK;
}

HRESULT bitmap::GetResolution(double *dpiX, double *dpiY) {
    if (!dpiX || !dpiY) return E_INVALIDARG;
    *dpiX = mDpiX;
    *dpiY = mDpiY;
    return S_OK;
}

HRESULT bitmap::SetResolution(double dpiX, double dpiY) {
    if (!(dpiX > 0) || !(dpiY > 0)) return E_INVALIDARG;
    mDpiX = dpiX;
    mDpiY = dpiY;
    return S_OK;
}

HRESULT bitmap::CopyPixels(WICRect const *rect, UINT stride, UINT bufferSize, BYTE *buffer) {
    return CopySurface(_Pixels(), rect, stride, bufferSize, buffer);
}

cairo_surface_t *bitmap::GetCairoSurface() { return _Pixels(); }

// A picture that fails to decode now, after its header was read whole, keeps
// its size with transparent pixels: there is no call left that could report it.
cairo_surface_t *bitmap::_Pixels() {
    std::lock_guard<std::mutex> guard(mMutex);
    if (mSurface || !mPicture) return mSurface.get();
    mSurface = codec::Decode(mPicture->Bytes(), mPicture->mSize);
    if (!mSurface) mSurface = codec::NewSurface(mWidth, mHeight);
    mPicture.reset();
    return mSurface.get();
}

cairo_surface_t *bitmap::SurfaceForBox(int width, int height) {
    {
        std::lock_guard<std::mutex> guard(mMutex);
        bool reducible = width > 0 && height > 0 && width * 2 <= mWidth && height * 2 <= mHeight;
        if (!mSurface && mPicture && reducible) {
            codec::surface reduced = codec::DecodeForBox(mPicture->Bytes(), mPicture->mSize, width, height);
            if (reduced) return reduced.release();
        }
    }
    cairo_surface_t *pixels = _Pixels();
    return pixels ? cairo_surface_reference(pixels) : nullptr;
}

HRESULT bitmap::Lock(WICRect const *rect, DWORD flags, IWICBitmapLock **lock) {
    if (!lock) return E_INVALIDARG;
    *lock = nullptr;
    WICRect area = rect ? *rect : WICRect{0, 0, mWidth, mHeight};
    bool write = flags & WICBitmapLockWrite;
    if (!(flags & (WICBitmapLockRead | WICBitmapLockWrite)) || !Inside(area, mWidth, mHeight)) return E_INVALIDARG;
    cairo_surface_t *pixels = _Pixels();
    if (!pixels) return E_OUTOFMEMORY;
    {
        std::lock_guard<std::mutex> guard(mMutex);
        if (mWriter || (write && mReaders)) return WINCODEC_ERR_ALREADYLOCKED;
        if (write) mWriter = true;
        else ++mReaders;
    }
    cairo_surface_flush(pixels);
    UINT stride = UINT(cairo_image_surface_get_stride(pixels));
    BYTE *data = cairo_image_surface_get_data(pixels) + std::size_t(area.Y) * stride + std::size_t(area.X) * 4;
    return HandOut(new bitmap_lock(this, area, write, data, stride), lock);
}

void bitmap::_Unlock(bool write) {
    {
        std::lock_guard<std::mutex> guard(mMutex);
        if (write) mWriter = false;
        else --mReaders;
    }
    if (write && mSurface) cairo_surface_mark_dirty(mSurface.get());
}

HRESULT CopySurface(cairo_surface_t *surface, WICRect const *rect, UINT stride, UINT bufferSize, BYTE *buffer) {
    if (!surface) return E_OUTOFMEMORY;
    int width = cairo_image_surface_get_width(surface), height = cairo_image_surface_get_height(surface);
    WICRect area = rect ? *rect : WICRect{0, 0, width, height};
    if (!buffer || !Inside(area, width, height)) return E_INVALIDARG;
    std::size_t row = std::size_t(area.Width) * 4;
    if (area.Height == 0) return S_OK;
    if (stride < row || std::size_t(stride) * (area.Height - 1) + row > bufferSize) return E_INVALIDARG;
    cairo_surface_flush(surface);
    int from = cairo_image_surface_get_stride(surface);
    unsigned char const *source = cairo_image_surface_get_data(surface) + std::size_t(area.Y) * from + area.X * 4;
    for (int y = 0; y < area.Height; ++y) std::memcpy(buffer + std::size_t(y) * stride, source + std::size_t(y) * from, row);
    return S_OK;
}

codec::surface SurfaceOf(IWICBitmapSource *source) {
    if (!source) return nullptr;
    UINT width = 0, height = 0;
    if (FAILED(source->GetSize(&width, &height))) return nullptr;
    codec::surface pixels = codec::NewSurface(int(width), int(height));
    if (!pixels) return nullptr;
    UINT stride = UINT(cairo_image_surface_get_stride(pixels.get()));
    cairo_surface_flush(pixels.get());
    if (FAILED(source->CopyPixels(nullptr, stride, stride * height, cairo_image_surface_get_data(pixels.get())))) {
        return nullptr;
    }
    cairo_surface_mark_dirty(pixels.get());
    return pixels;
}

}  // namespace qor::tools::platform::wic
