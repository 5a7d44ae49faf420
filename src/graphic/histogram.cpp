#include "qor/tools/graphic/histogram.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "qor/tools/direct2d/wic.h"

namespace qor::tools::graphic {

namespace {

// The luminance weights, exactly these single-precision values.
float const kGreen = std::bit_cast<float>(std::uint32_t(0x3F162C23));
float const kBlue = std::bit_cast<float>(std::uint32_t(0x3DEA7371));
float const kRed = std::bit_cast<float>(std::uint32_t(0x3E990AFE));

// Each channel's products, made once: the same single-precision products the
// sum adds, so that the sum is the same to the bit.
struct products {
    float mGreen[256], mBlue[256], mRed[256];
    products() {
        for (int v = 0; v < 256; ++v) {
            mGreen[v] = float(v) * kGreen;
            mBlue[v] = float(v) * kBlue;
            mRed[v] = float(v) * kRed;
        }
    }
};

// The maximum is taken before the count goes up, so it lags by one.
inline void Count(unsigned int *data, unsigned int &maximum, int index) {
    unsigned int &entry = data[index];
    if (entry > maximum) maximum = entry;
    ++entry;
}

}  // namespace

histogram::histogram() noexcept : mEmpty(true) { std::memset(mData, 0, sizeof mData); }

void histogram::Image(direct2d::wic &image) {
    std::memset(mData, 0, sizeof mData);
    if (image.IsEmpty()) return;
    mEmpty = false;
    static products const p;
    direct2d::wic::lock pixels(image, WICBitmapLockRead);
    if (!pixels.Data()) return;
    unsigned int &maximum = mData[4 * kEntries];
    for (int y = 0; y < pixels.Height(); ++y) {
        unsigned char const *px = pixels.Data() + std::ptrdiff_t(y) * pixels.Stride();
        for (int x = 0; x < pixels.Width(); ++x, px += 4) {
            unsigned b = px[0], g = px[1], r = px[2];
            float sum = p.mGreen[g] + p.mBlue[b];
            sum += p.mRed[r];
            int l = int(static_cast<unsigned int>(sum) & 0xff);
            Count(mData, maximum, l);
            Count(mData, maximum, kEntries + int(r));
            Count(mData, maximum, 2 * kEntries + int(g));
            Count(mData, maximum, 3 * kEntries + int(b));
        }
    }
}

}  // namespace qor::tools::graphic
