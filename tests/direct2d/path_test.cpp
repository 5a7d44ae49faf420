// Path geometries and the target on a device context: the notched round
// rectangle's twelve vertices, a geometry that opens once, arcs and curves
// drawn by pixel, and a context target laid over its rectangle only.
#include <gtest/gtest.h>

#include <cairo.h>

#include <vector>

#include "qor/tools/direct2d/path.h"
#include "qor/tools/exception.h"
#include "support/thrown.h"
#include "support/imaging.h"

using namespace qor::tools;
using qor::tools::testing::Thrown;
namespace qt = qor::tools::testing;
using direct2d::wic;

namespace {

class Path : public qt::imaging {
protected:
    direct2d::factory &Factory() { return *direct2d::factory::Instance(); }
};

// A sink that records what a geometry streams into it.
class recorder final : public ID2D1GeometrySink {
public:
    HRESULT QueryInterface(REFIID, void **out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    void SetFillMode(D2D1_FILL_MODE) override {}
    void SetSegmentFlags(D2D1_PATH_SEGMENT) override {}
    void BeginFigure(D2D1_POINT_2F start, D2D1_FIGURE_BEGIN begin) override {
        mPoints.push_back(start);
        mFilled = begin == D2D1_FIGURE_BEGIN_FILLED;
    }
    void AddLines(D2D1_POINT_2F const *points, std::uint32_t count) override { mPoints.insert(mPoints.end(), points, points + count); }
    void AddBeziers(D2D1_BEZIER_SEGMENT const *, std::uint32_t) override { ++mOthers; }
    void EndFigure(D2D1_FIGURE_END end) override { mClosed = end == D2D1_FIGURE_END_CLOSED; }
    HRESULT Close() override { return S_OK; }
    void AddLine(D2D1_POINT_2F point) override { mPoints.push_back(point); }
    void AddBezier(D2D1_BEZIER_SEGMENT const &) override { ++mOthers; }
    void AddQuadraticBezier(D2D1_QUADRATIC_BEZIER_SEGMENT const &) override { ++mOthers; }
    void AddQuadraticBeziers(D2D1_QUADRATIC_BEZIER_SEGMENT const *, std::uint32_t) override { ++mOthers; }
    void AddArc(D2D1_ARC_SEGMENT const &) override { ++mOthers; }

    std::vector<D2D1_POINT_2F> mPoints;
    bool mFilled = false, mClosed = false;
    int mOthers = 0;
};

container::comptr<ID2D1SolidColorBrush> Black(ID2D1RenderTarget *t) {
    container::comptr<ID2D1SolidColorBrush> brush;
    t->CreateSolidColorBrush(D2D1::ColorF(0, 0, 0), brush.Addr());
    return brush;
}

}  // namespace

TEST_F(Path, RoundRectIsTwelveNotchedSidesAndOpensOnce) {
    direct2d::path frame = Factory().CreatePathGeometry();
    frame.CreateRoundRect(direct2d::rectf(0, 0, 10, 10));
    recorder r;
    ASSERT_EQ(frame->Stream(&r), S_OK);
    float const expected[][2] = {{1, 0}, {9, 0}, {9, 1}, {10, 1}, {10, 9}, {9, 9}, {9, 10}, {1, 10}, {1, 9}, {0, 9}, {0, 1}, {1, 1}};
    ASSERT_EQ(r.mPoints.size(), 12u);
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(r.mPoints[i].x, expected[i][0]) << i;
        EXPECT_EQ(r.mPoints[i].y, expected[i][1]) << i;
    }
    EXPECT_TRUE(r.mFilled);
    EXPECT_TRUE(r.mClosed);
    std::uint32_t segments = 0;
    frame->GetSegmentCount(&segments);
    EXPECT_EQ(segments, 11u);
    EXPECT_EQ(Thrown([&] { frame.CreateRoundRect(direct2d::rectf(0, 0, 5, 5)); }),
              string(u"direct2d geometry path create round rect"));
    D2D1_RECT_F bounds;
    frame->GetBounds(nullptr, &bounds);
    EXPECT_EQ(bounds.right, 10);
    BOOL inside = 0;
    frame->FillContainsPoint(D2D1::Point2F(5, 5), nullptr, 0.25f, &inside);
    EXPECT_TRUE(inside);
    frame->FillContainsPoint(D2D1::Point2F(0.2f, 0.2f), nullptr, 0.25f, &inside);  // the notch
    EXPECT_FALSE(inside);
}

TEST_F(Path, ArcsAndCurvesFillWhereTheyBend) {
    direct2d::path shape = Factory().CreatePathGeometry();
    container::comptr<ID2D1GeometrySink> sink;
    ASSERT_EQ(shape->Open(sink.Addr()), S_OK);
    // A half disc of radius 20 around (30, 30), its flat side up, then a Bézier hump.
    sink->BeginFigure(D2D1::Point2F(10, 30), D2D1_FIGURE_BEGIN_FILLED);
    sink->AddLine(D2D1::Point2F(50, 30));
    sink->AddArc({D2D1::Point2F(10, 30), D2D1::SizeF(20, 20), 0, D2D1_SWEEP_DIRECTION_CLOCKWISE, D2D1_ARC_SIZE_SMALL});
    sink->EndFigure(D2D1_FIGURE_END_CLOSED);
    sink->BeginFigure(D2D1::Point2F(60, 50), D2D1_FIGURE_BEGIN_FILLED);
    sink->AddBezier({D2D1::Point2F(60, 10), D2D1::Point2F(90, 10), D2D1::Point2F(90, 50)});
    sink->EndFigure(D2D1_FIGURE_END_CLOSED);
    EXPECT_EQ(sink->Close(), S_OK);
    EXPECT_EQ(sink->Close(), D2DERR_WRONG_STATE);

    wic image(100, 60);
    direct2d::target<ID2D1RenderTarget> t = image.CreateRenderTarget();
    t->BeginDraw();
    t->FillGeometry(shape, Black(t));
    EXPECT_EQ(t->EndDraw(), S_OK);
    image.Save(u"path_shapes.png", nullptr);
    EXPECT_EQ(qt::PixelAt(image, 30, 45), 0xff000000u);  // inside the lower half disc
    EXPECT_EQ(qt::PixelAt(image, 30, 20), 0u);           // above its flat side
    EXPECT_EQ(qt::PixelAt(image, 12, 48), 0u);           // outside the curve, inside its box
    EXPECT_EQ(qt::PixelAt(image, 75, 35), 0xff000000u);  // under the hump
    EXPECT_EQ(qt::PixelAt(image, 62, 15), 0u);
}

TEST_F(Path, ContextTargetDrawsOnlyInsideItsRectangle) {
    cairo_surface_t *window = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 60, 40);
    cairo_t *dc = cairo_create(window);
    cairo_set_source_rgb(dc, 1, 1, 1);
    cairo_paint(dc);
    CRect box{10, 10, 30, 30};
    direct2d::target<ID2D1DCRenderTarget> t = Factory().CreateRenderTarget(dc, box);
    EXPECT_EQ(t->GetPixelSize().width, 20u);
    t->BeginDraw();
    t->FillRectangle(D2D1::RectF(-100, -100, 100, 100), Black(t));  // far beyond the rectangle
    EXPECT_EQ(t->EndDraw(), S_OK);
    cairo_surface_flush(window);
    auto at = [&](int x, int y) {
        return reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(window) +
                                                 y * cairo_image_surface_get_stride(window))[x];
    };
    EXPECT_EQ(at(15, 15), 0xff000000u);
    EXPECT_EQ(at(5, 5), 0xffffffffu);
    EXPECT_EQ(at(35, 20), 0xffffffffu);
    EXPECT_EQ(Thrown([&] { Factory().CreateRenderTarget(dc, CRect{5, 5, 5, 9}); }),
              string(u"direct2d factory create dc target"));
    cairo_destroy(dc);
    cairo_surface_destroy(window);
}
