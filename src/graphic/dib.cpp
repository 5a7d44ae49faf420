#include "qor/tools/graphic/dib.h"

#include <cstring>

#include "qor/tools/direct2d/wic.h"

namespace qor::tools::graphic {

void dib::Alloc(int width, int height, int stride) {
    if (stride == 0) {
        stride = width * 4;
        if (stride & 15) stride = (stride + 16) & ~15;
    }
    if (width == mWidth && height == mHeight && stride == mStride) return;
    align16::Release();
    align16::Alloc(stride * height);
    mWidth = width;
    mHeight = height;
    mStride = stride;
}

void dib::Reference(unsigned char *data, int width, int height, int stride) {
    align16::Reference(data, height * stride);
    mWidth = width;
    mHeight = height;
    mStride = stride;
}

void dib::Release() {
    align16::Release();
    mWidth = mHeight = mStride = 0;
}

void dib::Copy(dib const &other) { align16::Copy(other); }

void dib::SafeCopy(dib const &other) {
    if (!mData || !other.mData) return;
    for (int y = 0; y < mHeight; ++y) {
        std::memcpy(mData + std::ptrdiff_t(y) * mStride, other.mData + std::ptrdiff_t(y) * other.mStride,
                    std::size_t(mWidth) * 4);
    }
}

void dib::Clone(dib const &other, bool copy) {
    if (&other == this) return;
    Alloc(other.mWidth, other.mHeight, other.mStride);
    if (copy && other.mData && mData && mSize > 0) std::memcpy(mData, other.mData, std::size_t(mSize));
}

bool dib::IsEqual(dib const &other) const noexcept {
    return mWidth == other.mWidth && mHeight == other.mHeight && mStride == other.mStride;
}

void dib::Save(char16_t const *path) {
    direct2d::wic image;
    image.Create(mWidth, mHeight);
    {
        direct2d::wic::lock target(image, WICBitmapLockWrite);
        for (int y = 0; target.Data() && mData && y < mHeight; ++y) {
            std::memcpy(target.Data() + std::ptrdiff_t(y) * target.Stride(), mData + std::ptrdiff_t(y) * mStride,
                        std::size_t(mWidth) * 4);
        }
    }
    image.Save(1.0f, path, nullptr);
}

}  // namespace qor::tools::graphic
