// A fixture for tests of the imaging layer: COM initialised on the thread
// and the one direct2d::factory made and initialised for the whole suite,
// with helpers to read and write single pixels through wic::lock.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "qor/tools/direct2d/factory.h"
#include "qor/tools/direct2d/wic.h"

namespace qor::tools::testing {

class imaging : public ::testing::Test {
public:
    static void SetUpTestSuite() {
        CoInitialize(nullptr);
        if (direct2d::factory::Instance()) return;
        (new direct2d::factory)->Initialize(D2D1_FACTORY_TYPE_SINGLE_THREADED);
    }
    static void TearDownTestSuite() {
        if (direct2d::factory *f = direct2d::factory::Instance()) f->Terminate();
        CoUninitialize();
    }
};

inline std::uint32_t PixelAt(direct2d::wic &image, int x, int y) {
    direct2d::wic::lock pixels(image, x, y, 1, 1, WICBitmapLockRead);
    return pixels.Data() ? *reinterpret_cast<std::uint32_t const *>(pixels.Data()) : 0xdeadbeefu;
}

inline void SetPixelAt(direct2d::wic &image, int x, int y, std::uint32_t word) {
    direct2d::wic::lock pixels(image, x, y, 1, 1, WICBitmapLockWrite);
    if (pixels.Data()) *reinterpret_cast<std::uint32_t *>(pixels.Data()) = word;
}

inline void Fill(direct2d::wic &image, std::uint32_t word) {
    direct2d::wic::lock pixels(image, WICBitmapLockWrite);
    for (int y = 0; y < pixels.Height(); ++y) {
        auto *row = reinterpret_cast<std::uint32_t *>(pixels.Data() + y * pixels.Stride());
        for (int x = 0; x < pixels.Width(); ++x) row[x] = word;
    }
}

}  // namespace qor::tools::testing
