// The factory and the three resource handles: fonts in points by family or
// from a GDI font, pens in world units, solid brushes with alpha-first
// colours, and the sharing of copies.
#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include "qor/tools/gdiplus/font.h"
#include "qor/tools/gdiplus/target.h"
#include "support/painting.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class Resources : public qt::painting {};

class exposed_font : public gdiplus::font {
public:
    using gdiplus::font::_CalcPoint;
};

std::u16string FamilyOf(Gdiplus::Font const &font) {
    Gdiplus::FontFamily family;
    font.GetFamily(&family);
    char16_t name[LF_FACESIZE] = {};
    family.GetFamilyName(name);
    return name;
}

struct image_context {
    cairo_surface_t *mSurface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 8, 8);
    cairo_t *mCr = cairo_create(mSurface);
    ~image_context() {
        cairo_destroy(mCr);
        cairo_surface_destroy(mSurface);
    }
};

}  // namespace

TEST_F(Resources, TheFactoryStartsAndEndsThePainting) {
    gdiplus::factory *f = gdiplus::factory::Instance();
    ASSERT_NE(f, nullptr);
    EXPECT_NE(f->mToken, 0u);
}

TEST_F(Resources, PensKeepWidthColourAndDash) {
    gdiplus::pen plain(2.0f, 0xFF000000), solid(2.0f, 0xFF000000ul, Gdiplus::DashStyleSolid);
    for (gdiplus::pen *p : {&plain, &solid}) {
        Gdiplus::Color color;
        ASSERT_FALSE(p->IsEmpty());
        EXPECT_EQ((*p)->GetWidth(), 2.0f);
        EXPECT_EQ((*p)->GetColor(&color), Gdiplus::Ok);
        EXPECT_EQ(color.GetValue(), 0xFF000000u);
        EXPECT_EQ((*p)->GetDashStyle(), Gdiplus::DashStyleSolid);
    }
    gdiplus::pen dotted(1.5f, 0x80FF0000ul, Gdiplus::DashStyleDot);
    EXPECT_EQ(dotted->GetDashStyle(), Gdiplus::DashStyleDot);
    gdiplus::pen signedColour(1.0f, int(0x7F00FF00));
    Gdiplus::Color color;
    signedColour->GetColor(&color);
    EXPECT_EQ(color.GetValue(), 0x7F00FF00u);
}

TEST_F(Resources, CopiesShareOnePlatformObjectUntilOneIsMadeAgain) {
    gdiplus::pen first(2.0f, 0xFF000000ul);
    gdiplus::pen second = first;
    EXPECT_EQ(first.Get(), second.Get());
    Gdiplus::Pen *old = first.Get();
    second.CreatePen(5.0f, 0xFFFF0000ul, Gdiplus::DashStyleDash);
    EXPECT_EQ(first.Get(), old);
    EXPECT_NE(second.Get(), old);
    EXPECT_EQ(first->GetWidth(), 2.0f);
    EXPECT_EQ(second->GetWidth(), 5.0f);
}

TEST_F(Resources, BrushesTakeAlphaFirstColours) {
    gdiplus::brush clear(0x00FF0000), red(0xFFFF0000ul), half(Gdiplus::Color(128, 0, 0, 255));
    Gdiplus::Color color;
    static_cast<Gdiplus::SolidBrush *>(clear.Get())->GetColor(&color);
    EXPECT_EQ(color.GetA(), 0);
    static_cast<Gdiplus::SolidBrush *>(half.Get())->GetColor(&color);
    EXPECT_EQ(color.GetValue(), 0x800000FFu);

    // The 0x00RRGGBB form is fully transparent: filling with it changes nothing.
    gdiplus::target canvas(4, 4, Gdiplus::PixelFormat32bppARGB);
    canvas->FillRectangle(red, 0, 0, 4, 4);
    canvas->FillRectangle(clear, 0, 0, 4, 4);
    EXPECT_EQ(qt::Argb(canvas.Image(), 1, 1), 0xFFFF0000u);
}

TEST_F(Resources, FontsByFamilyAreInPoints) {
    gdiplus::font label(u"DejaVu Sans", 12.0f, Gdiplus::FontStyleBold);
    ASSERT_TRUE(label->IsAvailable());
    EXPECT_EQ(label->GetSize(), 12.0f);
    EXPECT_EQ(label->GetUnit(), Gdiplus::UnitPoint);
    EXPECT_EQ(label->GetStyle(), Gdiplus::FontStyleBold);
    EXPECT_EQ(FamilyOf(*label.Get()), u"DejaVu Sans");

    // 12 points at 96 per inch are 16 pixels: a line of text is about 19 high.
    gdiplus::target canvas(200, 60, Gdiplus::PixelFormat32bppARGB);
    Gdiplus::RectF bounds;
    canvas->MeasureString(u"Hg", -1, label, Gdiplus::RectF(0, 0, 0, 0), nullptr, &bounds);
    EXPECT_GT(bounds.Height, 16.0f);
    EXPECT_LT(bounds.Height, 22.0f);
}

TEST_F(Resources, AFamilyThatIsNotInstalledLeavesAFontThatDoesNotWork) {
    gdiplus::font missing(u"No Such Family 4711", 10.0f, 0);
    ASSERT_FALSE(missing.IsEmpty());
    EXPECT_FALSE(missing->IsAvailable());
    EXPECT_NE(missing->GetLastStatus(), Gdiplus::Ok);
    gdiplus::target canvas(10, 10, Gdiplus::PixelFormat32bppARGB);
    EXPECT_EQ(canvas->DrawString(u"x", 1, missing, Gdiplus::PointF{0, 0}, gdiplus::brush(0xFF000000ul)),
              Gdiplus::InvalidParameter);
}

TEST_F(Resources, FontsFromAGdiFontOrTheOneSelectedInAContext) {
    image_context context;
    PangoFontDescription *gothic = pango_font_description_from_string("IPAGothic 20px");
    gdiplus::font direct(gothic, context.mCr);
    ASSERT_TRUE(direct->IsAvailable());
    EXPECT_EQ(FamilyOf(*direct.Get()), u"IPAGothic");
    EXPECT_EQ(direct->GetSize(), 20.0f);

    gdiplus::font none(nullptr, context.mCr);
    EXPECT_FALSE(none->IsAvailable());  // nothing selected yet
    {
        gdiplus::target::selector selected(context.mCr, static_cast<void *>(nullptr));
        EXPECT_EQ(selected.mPrevious, nullptr);
        EXPECT_EQ(SelectObject(context.mCr, gothic), nullptr);
        gdiplus::font fromContext(nullptr, context.mCr);
        ASSERT_TRUE(fromContext->IsAvailable());
        EXPECT_EQ(FamilyOf(*fromContext.Get()), u"IPAGothic");
    }
    pango_font_description_free(gothic);
}

TEST_F(Resources, CalcPointTurnsAGdiHeightIntoPoints) {
    image_context context;
    exposed_font f;
    EXPECT_EQ(f._CalcPoint(-16, context.mCr), 12.0f);
    EXPECT_EQ(f._CalcPoint(16, context.mCr), 12.0f);
    cairo_surface_set_device_scale(context.mSurface, 1.25, 1.25);  // 120 per inch
    EXPECT_EQ(f._CalcPoint(-20, context.mCr), 12.0f);
}
