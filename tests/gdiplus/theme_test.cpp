// Theme drawing through GTK 3 style contexts under Xvfb: a push button in its
// four states gives four different pictures (kept beside the test as
// painting-button-*.png), an unknown class draws nothing, clips and the
// text forms behave as the interface says.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstring>
#include <vector>

#include "qor/tools/gdiplus/theme.h"
#include "support/painting.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class Theme : public qt::painting {
protected:
    void SetUp() override {
        if (!gtk_init_check(nullptr, nullptr)) GTEST_SKIP() << "no display";
    }
};

constexpr int kWidth = 120, kHeight = 40;

// A transparent picture that `draw` paints on through a context.
struct canvas {
    canvas() : mSurface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight)), mCr(cairo_create(mSurface)) {}
    canvas(canvas const &) = delete;
    canvas &operator=(canvas const &) = delete;
    ~canvas() {
        cairo_destroy(mCr);
        cairo_surface_destroy(mSurface);
    }
    std::vector<unsigned char> Pixels() {
        cairo_surface_flush(mSurface);
        unsigned char const *data = cairo_image_surface_get_data(mSurface);
        return {data, data + cairo_image_surface_get_stride(mSurface) * kHeight};
    }
    int Inked(int left, int top, int right, int bottom) {
        cairo_surface_flush(mSurface);
        int count = 0, stride = cairo_image_surface_get_stride(mSurface);
        for (int y = top; y < bottom; ++y) {
            auto const *row = reinterpret_cast<std::uint32_t const *>(cairo_image_surface_get_data(mSurface) + y * stride);
            for (int x = left; x < right; ++x) count += row[x] != 0;
        }
        return count;
    }
    void Keep(char const *name) {
        cairo_surface_write_to_png(mSurface, (std::string("painting-button-") + name + ".png").c_str());
    }
    cairo_surface_t *mSurface;
    cairo_t *mCr;
};

constexpr tagRECT kRect{4, 4, kWidth - 4, kHeight - 4};

}  // namespace

TEST_F(Theme, AButtonInFourStatesGivesFourPictures) {
    struct {
        int state;
        char const *name;
    } const states[] = {{PBS_NORMAL, "normal"}, {PBS_HOT, "hot"}, {PBS_PRESSED, "pressed"}, {PBS_DISABLED, "disabled"}};
    std::vector<std::vector<unsigned char>> pictures;
    for (auto const &s : states) {
        canvas c;
        gdiplus::theme button(nullptr, c.mCr, u"BUTTON", BP_PUSHBUTTON, s.state);
        ASSERT_TRUE(button);
        button.DrawBackground(kRect, nullptr);
        button.DrawTextW(u"&OK", DT_CENTER | DT_VCENTER | DT_SINGLELINE, kRect);
        c.Keep(s.name);
        EXPECT_GT(c.Inked(kRect.left, kRect.top, kRect.right, kRect.bottom), (kWidth - 8) * (kHeight - 8) / 2);
        pictures.push_back(c.Pixels());
    }
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        for (std::size_t j = i + 1; j < pictures.size(); ++j) EXPECT_NE(pictures[i], pictures[j]) << i << " " << j;
    }
}

TEST_F(Theme, AnUnknownClassTestsFalseAndDrawsNothing) {
    canvas c;
    gdiplus::theme unknown(nullptr, c.mCr, u"NO_SUCH_CLASS", 1, 1);
    EXPECT_FALSE(unknown);
    unknown.DrawBackground(kRect, nullptr);
    unknown.DrawTextW(u"text", DT_SINGLELINE, kRect);
    EXPECT_EQ(c.Inked(0, 0, kWidth, kHeight), 0);
    EXPECT_EQ(unknown.BackgroundRegion(1, 1, kRect), nullptr);

    gdiplus::theme listed(nullptr, c.mCr, u"Nothing; edit ;BUTTON");  // the first known, any case
    EXPECT_TRUE(listed);
    listed.DrawBackground(EP_EDITTEXT, ETS_NORMAL, kRect, nullptr);
    EXPECT_GT(c.Inked(0, 0, kWidth, kHeight), 0);
}

TEST_F(Theme, ClipsLimitTheBackground) {
    canvas whole, clipped;
    gdiplus::theme a(nullptr, whole.mCr, u"BUTTON", BP_PUSHBUTTON, PBS_NORMAL);
    gdiplus::theme b(nullptr, clipped.mCr, u"BUTTON", BP_PUSHBUTTON, PBS_NORMAL);
    tagRECT left{0, 0, kWidth / 2, kHeight};
    a.DrawBackground(kRect, nullptr);
    b.DrawBackground(kRect, &left);
    EXPECT_GT(whole.Inked(kWidth / 2, 0, kWidth, kHeight), 0);
    EXPECT_EQ(clipped.Inked(kWidth / 2, 0, kWidth, kHeight), 0);
    EXPECT_EQ(whole.Inked(0, 0, kWidth / 2, kHeight), clipped.Inked(0, 0, kWidth / 2, kHeight));
}

TEST_F(Theme, TextFormsMeasureAndDraw) {
    canvas c;
    gdiplus::theme label(nullptr, c.mCr, u"BUTTON", BP_PUSHBUTTON, PBS_NORMAL);
    label.DrawTextW(string(), DT_SINGLELINE, kRect);  // an empty text: nothing
    EXPECT_EQ(c.Inked(0, 0, kWidth, kHeight), 0);
    label.DrawTextW(BP_PUSHBUTTON, PBS_NORMAL, u"Label", -1, DT_SINGLELINE, kRect);  // -1: to the terminator
    EXPECT_GT(c.Inked(0, 0, kWidth, kHeight), 20);

    tagRECT extent{}, shortExtent{};
    label.DrawTextExtent(u"A longer label", DT_SINGLELINE, kRect, extent);
    label.DrawTextExtent(BP_PUSHBUTTON, PBS_NORMAL, u"A longer label", 1, DT_SINGLELINE, kRect, shortExtent);
    EXPECT_EQ(extent.left, kRect.left);
    EXPECT_GT(extent.right - extent.left, 3 * (shortExtent.right - shortExtent.left));
    EXPECT_GT(extent.bottom - extent.top, 8);
}

TEST_F(Theme, TheBackgroundRegionLiesInTheRectangle) {
    canvas c;
    gdiplus::theme button(nullptr, c.mCr, u"BUTTON");
    HRGN region = button.BackgroundRegion(BP_PUSHBUTTON, PBS_NORMAL, kRect);
    ASSERT_NE(region, nullptr);
    cairo_rectangle_int_t box;
    cairo_region_get_extents(region, &box);
    EXPECT_GE(box.x, kRect.left);
    EXPECT_LE(box.x + box.width, kRect.right);
    EXPECT_GT(box.width, 0);
    DeleteObject(region);
}

TEST_F(Theme, CopiesCloseOneHandleSafely) {
    canvas c;
    auto *first = new gdiplus::theme(nullptr, c.mCr, u"PROGRESS", PP_CHUNK, 1);
    gdiplus::theme copy = *first;
    delete first;  // closes the handle the copy holds too
    EXPECT_TRUE(copy);
    copy.DrawBackground(kRect, nullptr);  // a closed handle draws nothing
    EXPECT_EQ(c.Inked(0, 0, kWidth, kHeight), 0);
}
