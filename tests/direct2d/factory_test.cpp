// The factory singleton: looked up, never made, by Instance; its three
// platform factories; COM initialised first, as on the platform.
#include <gtest/gtest.h>

#include "qor/tools/direct2d/factory.h"
#include "qor/tools/direct2d/wic.h"
#include "qor/tools/exception.h"
#include "support/thrown.h"

using namespace qor::tools;
using qor::tools::testing::Thrown;

TEST(Direct2dFactory, LifeOfTheOneFactory) {
    EXPECT_EQ(direct2d::factory::Instance(), nullptr);
    EXPECT_EQ(Thrown([] { direct2d::wic(2, 2); }), string(u"wic create bitmap"));  // no factory yet

    auto *f = new direct2d::factory;
    EXPECT_EQ(direct2d::factory::Instance(), f);
    // Without COM on this thread the imaging factory cannot be made; the one made before stays.
    EXPECT_EQ(Thrown([&] { f->Initialize(D2D1_FACTORY_TYPE_SINGLE_THREADED); }),
              string(u"direct2d factory initialize"));
    EXPECT_NE(f->Factory(), nullptr);
    EXPECT_EQ(f->WICFactory(), nullptr);

    CoInitialize(nullptr);
    f->Initialize(D2D1_FACTORY_TYPE_MULTI_THREADED);
    EXPECT_NE(f->Factory(), nullptr);
    EXPECT_NE(f->WriteFactory(), nullptr);
    EXPECT_NE(f->WICFactory(), nullptr);
    direct2d::factory copy(*f);  // shares the three, registers nothing
    EXPECT_EQ(copy.WICFactory(), f->WICFactory());
    EXPECT_EQ(direct2d::factory::Instance(), f);

    direct2d::wic image(3, 2);
    EXPECT_EQ(image.Size().width, 3);
    f->Terminate();
    EXPECT_EQ(direct2d::factory::Instance(), nullptr);
    EXPECT_EQ(image.Size().width, 3);  // the bitmap lives on its own reference
    CoUninitialize();
}

TEST(Direct2dFactory, PlatformEntryPointsCheckTheirArguments) {
    void *out = reinterpret_cast<void *>(1);
    EXPECT_EQ(D2D1CreateFactory(D2D1_FACTORY_TYPE(7), IID_ID2D1Factory, nullptr, &out), E_INVALIDARG);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(D2D1CreateFactory(D2D1_FACTORY_TYPE_SINGLE_THREADED, IID_IWICBitmap, nullptr, &out), E_NOINTERFACE);
    EXPECT_EQ(CoCreateInstance(CLSID_WICImagingFactory2, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory, &out),
              CO_E_NOTINITIALIZED);
}
