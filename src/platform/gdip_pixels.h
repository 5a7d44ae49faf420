// Pixels of a bitmap read and written a row piece at a time in any of the
// formats a lock may ask for, converting between the bitmap's own format and
// the one asked for. 32bppARGB is the straight form every conversion passes
// through, so that a 32bppARGB bitmap gives back exactly what was written.
#pragma once

#include "gdip_objects.h"

namespace qor::tools::Gdiplus {

bool IsKnownFormat(PixelFormat format);
int BytesPerPixel(PixelFormat format);

class pixel_access {
public:
    explicit pixel_access(GpBitmap &bitmap);
    pixel_access(pixel_access const &) = delete;
    pixel_access &operator=(pixel_access const &) = delete;
    ~pixel_access();

    // `count` pixels from (x, y) into `out` in `format`, and back.
    void ReadRow(int y, int x, int count, BYTE *out, PixelFormat format);
    void WriteRow(int y, int x, int count, BYTE const *in, PixelFormat format);

private:
    std::uint32_t *Word(int x, int y) const {
        return reinterpret_cast<std::uint32_t *>(mData + std::ptrdiff_t(y) * mStride) + x;
    }
    std::uint32_t ReadStraight(int x, int y) const;
    void WriteStraight(int x, int y, std::uint32_t argb);

    GpBitmap &mBitmap;
    pixel_store &mPixels;
    unsigned char *mData;
    int mStride;
    bool mWritten = false;
};

}  // namespace qor::tools::Gdiplus
