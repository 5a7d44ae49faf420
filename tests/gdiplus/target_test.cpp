// gdiplus::target and its helpers on image surfaces: the common drawing set
// checked pixel by pixel (and kept as PNG files to look at), the round
// rectangle's eight strokes, copies, selection and the lent context.
#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include "qor/tools/gdiplus/font.h"
#include "qor/tools/gdiplus/target.h"
#include "support/painting.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class Target : public qt::painting {};

constexpr std::uint32_t kWhite = 0xFFFFFFFFu, kBlack = 0xFF000000u;

gdiplus::target WhiteCanvas(int width, int height) {
    gdiplus::target canvas(width, height, Gdiplus::PixelFormat32bppARGB);
    canvas->Clear(Gdiplus::Color(kWhite));
    return canvas;
}

}  // namespace

TEST_F(Target, ARectangleMakesASurfaceOfItsSizeDrawnFromTheOrigin) {
    gdiplus::target canvas(CRect{10, 10, 110, 60}, Gdiplus::PixelFormat32bppARGB);
    EXPECT_EQ(canvas.Image().Size().Width, 100);
    EXPECT_EQ(canvas.Image().Size().Height, 50);
    canvas->FillRectangle(gdiplus::brush(0xFFFF0000ul), 0, 0, 5, 5);
    EXPECT_EQ(qt::Argb(canvas.Image(), 2, 2), 0xFFFF0000u);
}

TEST_F(Target, TheCommonDrawingSetDraws) {
    gdiplus::target canvas = WhiteCanvas(320, 200);
    gdiplus::pen blue(4.0f, 0xFF0000FFul), dashed(2.0f, 0xFF008000ul, Gdiplus::DashStyleDash);
    canvas->FillRectangle(gdiplus::brush(0xFFFF0000ul), 10, 10, 60, 40);
    canvas->DrawRectangle(blue, 90.0f, 10.0f, 60.0f, 40.0f);
    canvas->FillEllipse(gdiplus::brush(0xFF0000FFul), 170.0f, 10.0f, 60.0f, 40.0f);
    canvas->DrawLine(dashed, 10.0f, 70.0f, 300.0f, 70.0f);
    canvas->FillPie(gdiplus::brush(0xFFFFA500ul), Gdiplus::RectF(240, 10, 60, 60), 0, 90);
    Gdiplus::PointF triangle[] = {{10, 90}, {70, 90}, {40, 140}};
    canvas->FillPolygon(gdiplus::brush(0xFF800080ul), triangle, 3);
    Gdiplus::GraphicsPath path;
    path.AddBezier(90, 140, 110, 80, 150, 160, 170, 100);
    path.AddLine(170, 100, 170, 140);
    path.CloseFigure();
    canvas->FillPath(gdiplus::brush(0xFF008080ul), &path);
    gdiplus::font text(u"DejaVu Sans", 12.0f, 0);
    canvas->DrawString(u"Hello 日本語", -1, text, Gdiplus::PointF{180, 110}, gdiplus::brush(kBlack));
    qt::Keep(canvas.Image(), "drawing-set");

    gdiplus::image &picture = canvas.Image();
    EXPECT_EQ(qt::Argb(picture, 40, 30), 0xFFFF0000u);
    EXPECT_EQ(qt::Argb(picture, 91, 30), 0xFF0000FFu);   // the outline
    EXPECT_EQ(qt::Argb(picture, 120, 30), kWhite);       // not filled
    EXPECT_EQ(qt::Argb(picture, 200, 30), 0xFF0000FFu);
    EXPECT_EQ(qt::Argb(picture, 172, 12), kWhite);       // outside the ellipse
    EXPECT_EQ(qt::Argb(picture, 280, 50), 0xFFFFA500u);  // the pie's quarter below the x axis
    EXPECT_EQ(qt::Argb(picture, 280, 25), kWhite);
    EXPECT_EQ(qt::Argb(picture, 40, 100), 0xFF800080u);
    int dashes = 0;
    for (int x = 10; x < 300; ++x) dashes += qt::Argb(picture, x, 70) != qt::Argb(picture, x + 1, 70);
    EXPECT_GT(dashes, 40);  // dash 6, gap 2: on and off along the line
    EXPECT_GT(qt::Inked(picture, 180, 110, 230, 130, kWhite), 40);  // "Hello"
    EXPECT_GT(qt::Inked(picture, 232, 110, 300, 132, kWhite), 60);  // the Japanese, not empty boxes
}

TEST_F(Target, ARoundRectangleIsEightStrokesOnPositionAndSize) {
    gdiplus::target canvas = WhiteCanvas(130, 80);
    gdiplus::pen black(2.0f, kBlack);
    canvas.DrawRoundRect(black, 10, 10, 100, 50, 10, 10);
    qt::Keep(canvas.Image(), "round-rect");
    gdiplus::image &picture = canvas.Image();
    EXPECT_EQ(qt::Argb(picture, 60, 10), kBlack);   // top
    EXPECT_EQ(qt::Argb(picture, 60, 60), kBlack);   // bottom at y + height, not at 50
    EXPECT_EQ(qt::Argb(picture, 110, 35), kBlack);  // right at x + width
    EXPECT_EQ(qt::Argb(picture, 10, 35), kBlack);
    EXPECT_EQ(qt::Argb(picture, 10, 10), kWhite);   // the corner is rounded off
    EXPECT_EQ(qt::Argb(picture, 60, 35), kWhite);
    EXPECT_GT(qt::Inked(picture, 9, 9, 16, 16, kWhite), 3);  // the arc itself
    EXPECT_EQ(canvas->GetLastStatus(), Gdiplus::Ok);

    // Zero radii: the arcs are refused (their status stays), the lines are drawn.
    gdiplus::target square = WhiteCanvas(130, 80);
    square.DrawRoundRect(black, Gdiplus::RectF(10, 10, 100, 50), 0, 0);
    EXPECT_EQ(square->GetLastStatus(), Gdiplus::InvalidParameter);
    EXPECT_EQ(qt::Argb(square.Image(), 60, 10), kBlack);
    EXPECT_EQ(qt::Argb(square.Image(), 110, 35), kBlack);
}

TEST_F(Target, ACopySharesTheGraphicsButNotTheImage) {
    gdiplus::target canvas = WhiteCanvas(20, 20);
    gdiplus::target copy = canvas;
    EXPECT_TRUE(copy.Image().IsEmpty());
    EXPECT_EQ(copy.Get(), canvas.Get());
    copy->FillRectangle(gdiplus::brush(kBlack), 0, 0, 5, 5);
    EXPECT_EQ(qt::Argb(canvas.Image(), 2, 2), kBlack);

    gdiplus::target other = WhiteCanvas(5, 5);
    other = canvas;
    EXPECT_EQ(other.Image().Size().Width, 5);  // kept its own image
    EXPECT_EQ(other.Get(), canvas.Get());
}

TEST_F(Target, TheGraphicsOutlivesTheImageItDrawsOn) {
    auto *canvas = new gdiplus::target(50, 50, Gdiplus::PixelFormat32bppARGB);
    gdiplus::target survivor = *canvas;
    delete canvas;  // its image goes first, then its share of the graphics
    EXPECT_EQ(survivor->FillRectangle(gdiplus::brush(kBlack), 0, 0, 50, 50), Gdiplus::Ok);

    gdiplus::image empty;
    gdiplus::target nothing(empty);
    ASSERT_FALSE(nothing.IsEmpty());
    EXPECT_EQ(nothing->nativeGraphics, nullptr);
    EXPECT_NE(nothing->FillRectangle(gdiplus::brush(kBlack), 0, 0, 5, 5), Gdiplus::Ok);
}

TEST_F(Target, TransformsAndClipsApplyToLaterCalls) {
    gdiplus::target canvas = WhiteCanvas(100, 100);
    canvas->SetClip(Gdiplus::Rect(0, 0, 50, 100));
    canvas->TranslateTransform(10, 10);
    canvas->FillRectangle(gdiplus::brush(kBlack), 0, 0, 80, 20);
    gdiplus::image &picture = canvas.Image();
    EXPECT_EQ(qt::Argb(picture, 5, 15), kWhite);   // moved by the transform
    EXPECT_EQ(qt::Argb(picture, 15, 15), kBlack);
    EXPECT_EQ(qt::Argb(picture, 60, 15), kWhite);  // clipped
    canvas->ResetClip();
    canvas->ResetTransform();
    canvas->FillRectangle(gdiplus::brush(kBlack), 60, 60, 10, 10);
    EXPECT_EQ(qt::Argb(picture, 65, 65), kBlack);
}

TEST_F(Target, TheLentContextTakesTurnsWithTheGraphics) {
    gdiplus::target canvas = WhiteCanvas(40, 40);
    {
        gdiplus::target::dc context(canvas);
        ASSERT_NE(HDC(context), nullptr);
        EXPECT_EQ(canvas->FillRectangle(gdiplus::brush(kBlack), 0, 0, 40, 40), Gdiplus::ObjectBusy);
        cairo_set_source_rgb(context, 0, 1, 0);
        cairo_rectangle(context, 20, 20, 10, 10);
        cairo_fill(context);
    }
    EXPECT_EQ(qt::Argb(canvas.Image(), 25, 25), 0xFF00FF00u);
    EXPECT_EQ(qt::Argb(canvas.Image(), 5, 5), kWhite);
    EXPECT_EQ(canvas->FillRectangle(gdiplus::brush(kBlack), 0, 0, 10, 10), Gdiplus::Ok);
}

TEST_F(Target, ASelectorPutsBackWhatWasSelected) {
    gdiplus::target canvas = WhiteCanvas(10, 10);
    gdiplus::target::dc context(canvas);
    PangoFontDescription *first = pango_font_description_from_string("DejaVu Sans 10");
    PangoFontDescription *second = pango_font_description_from_string("IPAGothic 10");
    SelectObject(context, first);
    {
        gdiplus::target::selector scoped(context, second);
        EXPECT_EQ(scoped.mPrevious, first);
        EXPECT_EQ(GetCurrentFont(context), second);
        CGdiObject none;
        gdiplus::target::selector nothing(context, &none);
        EXPECT_EQ(nothing.mPrevious, nullptr);
    }
    EXPECT_EQ(GetCurrentFont(context), first);
    {
        gdiplus::target::selector known(context, static_cast<void *>(second));  // selected by type before
        EXPECT_EQ(GetCurrentFont(context), second);
    }
    EXPECT_EQ(GetCurrentFont(context), first);
    {
        gdiplus::target::selector unknown(context, static_cast<void *>(&canvas));  // never selected by type
        EXPECT_EQ(unknown.mPrevious, nullptr);
    }
    EXPECT_EQ(GetCurrentFont(context), first);
    pango_font_description_free(first);
    pango_font_description_free(second);
}

TEST_F(Target, TextIsAlignedInItsBox) {
    gdiplus::target canvas = WhiteCanvas(300, 60);
    gdiplus::font text(u"DejaVu Sans", 10.0f, 0);
    Gdiplus::StringFormat centred;
    centred.SetAlignment(Gdiplus::StringAlignmentFar);
    centred.SetLineAlignment(Gdiplus::StringAlignmentCenter);
    Gdiplus::RectF box(0, 0, 300, 60), near, far;
    canvas->MeasureString(u"right", -1, text, box, nullptr, &near);
    canvas->MeasureString(u"right", -1, text, box, &centred, &far);
    EXPECT_EQ(near.X, 0.0f);
    EXPECT_NEAR(far.X + far.Width, 300.0f, 1.0f);
    EXPECT_NEAR(far.Y * 2 + far.Height, 60.0f, 1.0f);
    canvas->DrawString(u"right", -1, text, box, &centred, gdiplus::brush(kBlack));
    EXPECT_EQ(qt::Inked(canvas.Image(), 0, 0, 200, 60, kWhite), 0);
    EXPECT_GT(qt::Inked(canvas.Image(), 250, 15, 300, 45, kWhite), 20);
}
