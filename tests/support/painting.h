// A fixture for tests of the painting layer: the one gdiplus::factory made
// and initialised for the suite, and helpers to read pixels of an image and
// to keep what a test drew as a PNG file beside the test (to look at).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "qor/tools/gdiplus/factory.h"
#include "qor/tools/gdiplus/image.h"

namespace qor::tools::testing {

class painting : public ::testing::Test {
public:
    static void SetUpTestSuite() {
        if (gdiplus::factory::Instance()) return;
        (new gdiplus::factory)->Initialize();
    }
    static void TearDownTestSuite() {
        if (gdiplus::factory *f = gdiplus::factory::Instance()) f->Terminate();
    }
};

// 0xAARRGGBB, straight alpha.
inline std::uint32_t Argb(gdiplus::image &picture, int x, int y) {
    Gdiplus::Color color(0xdeadbeefu);
    if (picture.IsEmpty()) return color.GetValue();
    picture->GetPixel(x, y, &color);
    return color.GetValue();
}

// Pixels of the area that are not `background`.
inline int Inked(gdiplus::image &picture, int left, int top, int right, int bottom, std::uint32_t background) {
    int count = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) count += Argb(picture, x, y) != background;
    }
    return count;
}

// Kept as painting-<name>.png in the test's working folder.
inline void Keep(gdiplus::image &picture, char const *name) {
    std::string path = std::string("painting-") + name + ".png";
    std::u16string wide(path.begin(), path.end());
    gdiplus::image::encoder().Save(picture.Get(), wide.c_str());
}

}  // namespace qor::tools::testing
