// graphic::histogram: counts of the luminance, red, green and blue values of
// a bitmap's pixels, in four tables of 255 entries (a value of 255 counts
// into the first entry of the next table, and a blue 255 into the maximum,
// which stands right behind the tables), and the running maximum, which lags
// the largest count by one. A value type without allocation.
//
//   graphic::histogram h;
//   h.Image(photo);
//   unsigned int const *red = h.Data(1);
#pragma once

#include "qor/tools/export.h"

namespace qor::tools::direct2d {
class wic;
}

namespace qor::tools::graphic {

class QOR_TOOLS_API histogram {
public:
    // Entries of a channel's table, one per value 0 to 254. The tables follow
    // each other in one block, so a value of 255 lands in the next table's
    // first entry (blue's in the maximum).
    static constexpr int kEntries = 255;

    // Empty tables.
    histogram() noexcept;

    // Counts the pixels of `image` into the four tables (zeroed first).
    void Image(direct2d::wic &image);
    // The table of a channel: 0 luminance, 1 red, 2 green, 3 blue (not checked).
    unsigned int *Data(int channel) noexcept { return mData + channel * kEntries; }
    unsigned int MaxValue() const noexcept { return mData[4 * kEntries]; }
    bool IsEmpty() const noexcept { return mEmpty; }

private:
    // The four tables and, as the last element, the maximum: one flat array.
    unsigned int mData[4 * kEntries + 1];
    bool mEmpty;
};

}  // namespace qor::tools::graphic
