// The imaging component's bitmap: pixels in a Cairo ARGB32 image surface, or,
// for a picture decoded on demand, the encoded file until the first use of its
// pixels. Locks are views of the surface's own memory: any number of readers
// or one writer.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>

#include "codec.h"
#include "com_object.h"
#include "qor/tools/platform/wincodec.h"

namespace qor::tools::platform::wic {

// The bytes of an encoded picture, shared by a decoder, its frame and the
// bitmaps made from it.
struct encoded {
    std::unique_ptr<char[]> mData;
    std::size_t mSize = 0;
    unsigned char const *Bytes() const noexcept { return reinterpret_cast<unsigned char const *>(mData.get()); }
};

class bitmap final : public com_object<IWICBitmap, IWICBitmapSource> {
public:
    explicit bitmap(codec::surface pixels);
    // A picture of `width` by `height` that is decoded at the first use.
    bitmap(std::shared_ptr<encoded const> picture, int width, int height);

    HRESULT GetSize(UINT *width, UINT *height) override;
    HRESULT GetPixelFormat(WICPixelFormatGUID *format) override;
    HRESULT GetResolution(double *dpiX, double *dpiY) override;
    HRESULT CopyPixels(WICRect const *rect, UINT stride, UINT bufferSize, BYTE *buffer) override;
    HRESULT Lock(WICRect const *rect, DWORD flags, IWICBitmapLock **lock) override;
    HRESULT SetResolution(double dpiX, double dpiY) override;
    cairo_surface_t *GetCairoSurface() override;

    // A new reference on pixels that cover `width` by `height` at least: the
    // bitmap's own surface, or, while it is not decoded yet, a JPEG decoded at
    // a reduced size for this one use.
    cairo_surface_t *SurfaceForBox(int width, int height);
    void _Unlock(bool write);

private:
    cairo_surface_t *_Pixels();

    std::mutex mMutex;
    codec::surface mSurface;
    std::shared_ptr<encoded const> mPicture;  // until decoded
    int mWidth = 0;
    int mHeight = 0;
    int mReaders = 0;
    bool mWriter = false;
    double mDpiX = 96, mDpiY = 96;
};

// Copies `rect` (null: all) of an ARGB32 surface into rows of `stride` bytes,
// as IWICBitmapSource::CopyPixels answers.
HRESULT CopySurface(cairo_surface_t *surface, WICRect const *rect, UINT stride, UINT bufferSize, BYTE *buffer);

// A new surface holding the pixels of any bitmap source, or null.
codec::surface SurfaceOf(IWICBitmapSource *source);

}  // namespace qor::tools::platform::wic
