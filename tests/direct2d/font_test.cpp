// Text: formats and their GDI description, layouts measured in a box (width,
// height, lines, wrapping, trailing white space), Japanese with a Japanese
// font, and text drawn into a picture where the box says.
#include <gtest/gtest.h>

#include <pango/pangocairo.h>

#include "qor/tools/direct2d/font.h"
#include "qor/tools/exception.h"
#include "support/thrown.h"
#include "support/imaging.h"

using namespace qor::tools;
using qor::tools::testing::Thrown;
namespace qt = qor::tools::testing;
using direct2d::wic;

namespace {

class Text : public qt::imaging {
protected:
    direct2d::font Font(char16_t const *family, float size) {
        return direct2d::factory::Instance()->CreateFontW(family, size);
    }
    DWRITE_TEXT_METRICS Measure(direct2d::font &f, float width, string const &text, int length = -1) {
        DWRITE_TEXT_METRICS m;
        f.CreateLayout(direct2d::rectf(0, 0, width, 500), text, length).Metrics(m);
        return m;
    }
};

// Pixels with any ink, inside and outside a rectangle.
std::pair<int, int> Ink(wic &image, int left, int top, int right, int bottom) {
    wic::lock pixels(image, WICBitmapLockRead);
    int inside = 0, outside = 0;
    for (int y = 0; y < pixels.Height(); ++y) {
        auto const *row = reinterpret_cast<std::uint32_t const *>(pixels.Data() + y * pixels.Stride());
        for (int x = 0; x < pixels.Width(); ++x) {
            if (!row[x]) continue;
            (x >= left && x < right && y >= top && y < bottom ? inside : outside)++;
        }
    }
    return {inside, outside};
}

}  // namespace

TEST_F(Text, FormatDescribesItselfToGdiAndClonesWithoutAlignment) {
    direct2d::font f = Font(u"DejaVu Sans", 13.7f);
    tagLOGFONTW lf{};
    lf.lfWeight = 700;
    f.LogFont(lf);
    EXPECT_EQ(lf.lfHeight, -13);
    EXPECT_EQ(std::u16string(lf.lfFaceName), u"DejaVu Sans");
    EXPECT_EQ(lf.lfWeight, 700);  // left as the caller set it
    f->SetTextAlignment(DWRITE_TEXT_ALIGNMENT_CENTER);
    direct2d::font copy = f.Clone();
    EXPECT_EQ(copy->GetTextAlignment(), DWRITE_TEXT_ALIGNMENT_LEADING);
    EXPECT_EQ(copy->GetFontSize(), 13.7f);
    EXPECT_NE(copy.Get(), f.Get());
    EXPECT_EQ(Thrown([] { direct2d::factory::Instance()->CreateFontW(u"DejaVu Sans", 0); }),
              string(u"direct2d factory create font"));
}

TEST_F(Text, LatinMetricsInABox) {
    direct2d::font f = Font(u"DejaVu Sans", 16);
    DWRITE_TEXT_METRICS one = Measure(f, 1000, u"Hello world");
    EXPECT_EQ(one.lineCount, 1u);
    EXPECT_GT(one.width, 60);
    EXPECT_LT(one.width, 120);
    EXPECT_NEAR(one.height, 18.6, 1.5);  // one line of DejaVu Sans at 16
    EXPECT_EQ(one.layoutWidth, 1000);
    DWRITE_TEXT_METRICS wrapped = Measure(f, 60, u"Hello world");
    EXPECT_EQ(wrapped.lineCount, 2u);
    EXPECT_LE(wrapped.width, 60);
    EXPECT_NEAR(wrapped.height, 2 * one.height, 1);
    DWRITE_TEXT_METRICS spaces = Measure(f, 1000, u"Hello   ");
    EXPECT_LT(spaces.width + 10, spaces.widthIncludingTrailingWhitespace);
    DWRITE_TEXT_METRICS none = Measure(f, 1000, u"Hello", 0);
    EXPECT_EQ(none.width, 0);
    EXPECT_EQ(none.lineCount, 1u);
    EXPECT_NEAR(none.height, one.height, 0.01);  // an empty text is one line high
    EXPECT_EQ(Measure(f, 1000, u"Hello", 99).width, Measure(f, 1000, u"Hello").width);
}

TEST_F(Text, JapaneseFindsAJapaneseFontAndWraps) {
    direct2d::font f = Font(u"DejaVu Sans", 16);  // no kana in DejaVu: fontconfig supplies them
    direct2d::layout l = f.CreateLayout(direct2d::rectf(0, 0, 1000, 100), u"日本語の画像一覧", -1);
    EXPECT_EQ(pango_layout_get_unknown_glyphs_count(l->GetPangoLayout()), 0);
    DWRITE_TEXT_METRICS m;
    l.Metrics(m);
    EXPECT_NEAR(m.width, 8 * 16, 8);  // eight full-width characters
    DWRITE_TEXT_METRICS narrow = Measure(f, 50, u"日本語の画像一覧");
    EXPECT_EQ(narrow.lineCount, 3u);
    direct2d::font missing = Font(u"No Such Family", 16);
    EXPECT_GT(Measure(missing, 1000, u"fallback").width, 30);
}

TEST_F(Text, DrawnTextStaysInItsBox) {
    wic image(240, 80);
    direct2d::target<ID2D1RenderTarget> t = image.CreateRenderTarget();
    container::comptr<ID2D1SolidColorBrush> black;
    t->CreateSolidColorBrush(D2D1::ColorF(0, 0, 0), black.Addr());
    direct2d::font f = Font(u"IPAGothic", 20);
    f->SetTextAlignment(DWRITE_TEXT_ALIGNMENT_CENTER);
    f->SetParagraphAlignment(DWRITE_PARAGRAPH_ALIGNMENT_CENTER);
    std::u16string text = u"写真 photo 一覧 list of pictures";
    t->BeginDraw();
    t->DrawText(text.c_str(), std::uint32_t(text.size()), f, D2D1::RectF(20, 10, 220, 70), black,
                D2D1_DRAW_TEXT_OPTIONS_CLIP);
    EXPECT_EQ(t->EndDraw(), S_OK);
    image.Save(u"text.png", nullptr);
    auto [inside, outside] = Ink(image, 20, 10, 220, 70);
    EXPECT_GT(inside, 300);
    EXPECT_EQ(outside, 0);
    // Centred: ink on both halves of the box.
    EXPECT_GT(Ink(image, 20, 10, 120, 70).first, 100);
    EXPECT_GT(Ink(image, 120, 10, 220, 70).first, 100);
}

TEST_F(Text, GdiFontOnAContextTurnsIntoDevicePixels) {
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 10, 10);
    cairo_t *dc = cairo_create(surface);
    PangoFontDescription *gdi = pango_font_description_from_string("DejaVu Sans Bold");
    pango_font_description_set_absolute_size(gdi, 16 * PANGO_SCALE);  // a GDI height of -16
    direct2d::factory &factory = *direct2d::factory::Instance();
    direct2d::font at96 = factory.CreateFontW(dc, gdi);
    EXPECT_EQ(at96->GetFontSize(), 16);
    EXPECT_EQ(at96->GetFontWeight(), DWRITE_FONT_WEIGHT_BOLD);
    char16_t family[64];
    at96->GetFontFamilyName(family, 64);
    EXPECT_EQ(std::u16string(family), u"DejaVu Sans");
    cairo_surface_set_device_scale(surface, 1.25, 1.25);  // 120 per inch
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSY), 120);
    EXPECT_EQ(MulDiv(-16, 96, 120), -13);
    EXPECT_EQ(factory.CreateFontW(dc, gdi)->GetFontSize(), 13);
    EXPECT_TRUE(factory.CreateFontW(nullptr, gdi).IsEmpty());
    pango_font_description_free(gdi);
    cairo_destroy(dc);
    cairo_surface_destroy(surface);
}
