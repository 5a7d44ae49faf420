// The render target on a working image: the common drawing set lands in the
// bitmap's own pixels, premultiplied, where the shapes say. The picture is
// kept as render_target.png in the test's folder to be looked at.
#include <gtest/gtest.h>

#include "support/imaging.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;
using direct2d::wic;

namespace {

class RenderTarget : public qt::imaging {};

container::comptr<ID2D1SolidColorBrush> Brush(direct2d::target<ID2D1RenderTarget> &t, D2D1_COLOR_F colour) {
    container::comptr<ID2D1SolidColorBrush> brush;
    t->CreateSolidColorBrush(colour, brush.Addr());
    return brush;
}

}  // namespace

TEST_F(RenderTarget, CommonDrawingSetLandsWhereTheShapesSay) {
    wic image(200, 150);
    direct2d::target<ID2D1RenderTarget> t = image.CreateRenderTarget();
    EXPECT_EQ(t->GetSize().width, 200);
    t->BeginDraw();
    t->Clear(D2D1::ColorF(1, 1, 1));
    auto red = Brush(t, D2D1::ColorF(1, 0, 0));
    auto blue = Brush(t, D2D1::ColorF(0, 0, 1));
    auto green = Brush(t, D2D1::ColorF(0, 0.5f, 0, 0.5f));
    t->FillRectangle(D2D1::RectF(10, 10, 60, 40), red);
    t->DrawEllipse(D2D1::Ellipse(D2D1::Point2F(120, 40), 40, 25), blue, 4);
    t->FillRoundedRectangle(D2D1::RoundedRect(D2D1::RectF(10, 80, 90, 140), 12, 12), green);
    container::comptr<ID2D1StrokeStyle> dashed;
    ID2D1Factory *factory = direct2d::factory::Instance()->Factory();
    factory->CreateStrokeStyle(D2D1::StrokeStyleProperties(D2D1_CAP_STYLE_FLAT, D2D1_CAP_STYLE_FLAT,
                                                           D2D1_CAP_STYLE_FLAT, D2D1_LINE_JOIN_MITER, 10,
                                                           D2D1_DASH_STYLE_DASH),
                               nullptr, 0, dashed.Addr());
    t->DrawRoundedRectangle(D2D1::RoundedRect(D2D1::RectF(110, 80, 190, 140), 12, 12), blue, 2, dashed);
    D2D1_MATRIX_3X2_F moved = D2D1::IdentityMatrix();
    moved._31 = 100;
    t->SetTransform(moved);
    t->DrawLine(D2D1::Point2F(0, 145), D2D1::Point2F(90, 145), red, 3);
    t->SetTransform(D2D1::IdentityMatrix());
    t->PushAxisAlignedClip(D2D1::RectF(0, 0, 30, 150), D2D1_ANTIALIAS_MODE_ALIASED);
    t->Clear(D2D1::ColorF(0, 0, 0, 0));  // only inside the clip
    t->PopAxisAlignedClip();
    t->FillRectangle(D2D1::RectF(0, 0, 1.0f / 0.0f, 10), red);  // not finite: skipped
    EXPECT_EQ(t->EndDraw(), S_OK);
    EXPECT_EQ(t->EndDraw(), D2DERR_WRONG_STATE);
    image.Save(u"render_target.png", nullptr);

    EXPECT_EQ(qt::PixelAt(image, 40, 20), 0xffff0000u);   // filled rectangle
    EXPECT_EQ(qt::PixelAt(image, 10, 20), 0u);            // cleared by the clip
    EXPECT_EQ(qt::PixelAt(image, 120, 40), 0xffffffffu);  // inside the ellipse's stroke
    EXPECT_EQ(qt::PixelAt(image, 160, 40), 0xff0000ffu);  // on it
    std::uint32_t half = qt::PixelAt(image, 50, 110);      // half green over white
    EXPECT_EQ(half >> 24, 0xffu);
    EXPECT_NEAR(int((half >> 8) & 0xff), 191, 2);
    EXPECT_NEAR(int(half & 0xff), 127, 2);
    EXPECT_EQ(qt::PixelAt(image, 150, 145), 0xffff0000u);  // the line, moved by the transform
    EXPECT_EQ(qt::PixelAt(image, 50, 145), 0xffffffffu);
    EXPECT_EQ(qt::PixelAt(image, 50, 5), 0xffffffffu);
}

TEST_F(RenderTarget, BitmapsDrawScaledWithOpacity) {
    wic source(2, 2);
    qt::Fill(source, 0xff0000ffu);
    wic image(40, 40);
    direct2d::target<ID2D1RenderTarget> t = image.CreateRenderTarget();
    container::comptr<ID2D1Bitmap> bitmap;
    ASSERT_EQ(t->CreateBitmapFromWicBitmap(source, nullptr, bitmap.Addr()), S_OK);
    EXPECT_EQ(bitmap->GetPixelSize().width, 2u);
    t->BeginDraw();
    D2D1_RECT_F box = D2D1::RectF(0, 0, 20, 20);
    t->DrawBitmap(bitmap, &box, 0.5f);
    D2D1_RECT_F nearest = D2D1::RectF(20, 20, 40, 40);
    t->DrawBitmap(bitmap, &nearest, 1.0f, D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR);
    t->EndDraw();
    EXPECT_EQ(qt::PixelAt(image, 10, 10), 0x80000080u);  // premultiplied half blue
    EXPECT_EQ(qt::PixelAt(image, 30, 30), 0xff0000ffu);
    EXPECT_EQ(qt::PixelAt(image, 30, 10), 0u);
}

TEST_F(RenderTarget, OutsideBeginDrawNothingIsDrawn) {
    wic image(10, 10);
    direct2d::target<ID2D1RenderTarget> t = image.CreateRenderTarget();
    auto red = Brush(t, D2D1::ColorF(1, 0, 0));
    t->FillRectangle(D2D1::RectF(0, 0, 10, 10), red);
    EXPECT_EQ(qt::PixelAt(image, 5, 5), 0u);
    EXPECT_NE(t->GetCairoContext(), nullptr);
}
