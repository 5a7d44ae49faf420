#include "gdip_pixels.h"

#include <cstring>

#include "codec_pixels.h"

namespace qor::tools::Gdiplus {

namespace {

std::uint32_t ToStraight(std::uint32_t premultiplied) {
    std::uint8_t bgra[4];
    platform::codec::Straight(premultiplied, bgra);
    std::uint32_t word;
    std::memcpy(&word, bgra, 4);
    return word;
}

std::uint32_t ToPremultiplied(std::uint32_t argb) {
    return platform::codec::Premultiplied((argb >> 16) & 0xff, (argb >> 8) & 0xff, argb & 0xff, argb >> 24);
}

std::uint32_t Load(BYTE const *p, int bytes) {
    if (bytes == 3) return 0xff000000u | std::uint32_t(p[2]) << 16 | std::uint32_t(p[1]) << 8 | p[0];
    std::uint32_t word;
    std::memcpy(&word, p, 4);
    return word;
}

void Store(BYTE *p, int bytes, std::uint32_t word) {
    if (bytes == 3) {
        p[0] = BYTE(word);
        p[1] = BYTE(word >> 8);
        p[2] = BYTE(word >> 16);
        return;
    }
    std::memcpy(p, &word, 4);
}

}  // namespace

bool IsKnownFormat(PixelFormat format) {
    return format == PixelFormat24bppRGB || format == PixelFormat32bppRGB || format == PixelFormat32bppARGB ||
           format == PixelFormat32bppPARGB;
}

int BytesPerPixel(PixelFormat format) { return format == PixelFormat24bppRGB ? 3 : 4; }

pixel_access::pixel_access(GpBitmap &bitmap) : mBitmap(bitmap), mPixels(*bitmap.mPixels) {
    cairo_surface_flush(mPixels.mSurface);
    mData = cairo_image_surface_get_data(mPixels.mSurface);
    mStride = cairo_image_surface_get_stride(mPixels.mSurface);
}

pixel_access::~pixel_access() {
    if (mWritten) cairo_surface_mark_dirty(mPixels.mSurface);
}

std::uint32_t pixel_access::ReadStraight(int x, int y) const {
    if (mBitmap.mFormat == PixelFormat32bppARGB && mPixels.mStraightValid) {
        return mPixels.mStraight[std::size_t(y) * mBitmap.mWidth + x];
    }
    std::uint32_t word = *Word(x, y);
    return mBitmap.mFormat == PixelFormat32bppARGB || mBitmap.mFormat == PixelFormat32bppPARGB ? ToStraight(word)
                                                                                              : word | 0xff000000u;
}

void pixel_access::WriteStraight(int x, int y, std::uint32_t argb) {
    switch (mBitmap.mFormat) {
        case PixelFormat32bppARGB:
            mPixels.mStraight[std::size_t(y) * mBitmap.mWidth + x] = argb;
            *Word(x, y) = ToPremultiplied(argb);
            break;
        case PixelFormat32bppPARGB: *Word(x, y) = ToPremultiplied(argb); break;
        default: *Word(x, y) = argb | 0xff000000u; break;
    }
}

void pixel_access::ReadRow(int y, int x, int count, BYTE *out, PixelFormat format) {
    int bytes = BytesPerPixel(format);
    bool direct = format == PixelFormat32bppPARGB && mBitmap.mFormat == PixelFormat32bppPARGB;
    for (int i = 0; i < count; ++i, out += bytes) {
        if (direct) {
            Store(out, bytes, *Word(x + i, y));
            continue;
        }
        std::uint32_t argb = ReadStraight(x + i, y);
        if (format == PixelFormat32bppPARGB) argb = ToPremultiplied(argb);
        if (format == PixelFormat32bppRGB) argb |= 0xff000000u;
        Store(out, bytes, argb);
    }
}

void pixel_access::WriteRow(int y, int x, int count, BYTE const *in, PixelFormat format) {
    if (mBitmap.mFormat == PixelFormat32bppARGB && !mPixels.mStraightValid) {
        std::vector<std::uint32_t> straight(std::size_t(mBitmap.mWidth) * mBitmap.mHeight);
        for (int row = 0; row < mBitmap.mHeight; ++row) {
            for (int column = 0; column < mBitmap.mWidth; ++column) {
                straight[std::size_t(row) * mBitmap.mWidth + column] = ToStraight(*Word(column, row));
            }
        }
        mPixels.mStraight = std::move(straight);
        mPixels.mStraightValid = true;
    }
    mWritten = true;
    int bytes = BytesPerPixel(format);
    bool direct = format == PixelFormat32bppPARGB && mBitmap.mFormat == PixelFormat32bppPARGB;
    for (int i = 0; i < count; ++i, in += bytes) {
        std::uint32_t word = Load(in, bytes);
        if (direct) {
            *Word(x + i, y) = word;
            continue;
        }
        if (format == PixelFormat32bppPARGB) word = ToStraight(word);
        if (format == PixelFormat32bppRGB) word |= 0xff000000u;
        WriteStraight(x + i, y, word);
    }
}

}  // namespace qor::tools::Gdiplus
