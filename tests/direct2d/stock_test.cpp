// The factory's stock: named pictures and fonts handed out as private
// copies, replaced under one name, and failures that change nothing.
#include <gtest/gtest.h>

#include "support/imaging.h"
#include "support/temp_dir.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;
using direct2d::wic;

namespace {

class Stock : public qt::imaging {
protected:
    direct2d::factory &Factory() { return *direct2d::factory::Instance(); }
    qt::temp_dir mDir;
};

}  // namespace

TEST_F(Stock, PicturesComeAsPrivateCopies) {
    wic red(4, 4), blue(2, 2);
    qt::Fill(red, 0xffff0000u);
    qt::Fill(blue, 0xff0000ffu);
    red.Save(mDir.Wide("red.png").c_str(), nullptr);
    blue.Save(mDir.Wide("blue.png").c_str(), nullptr);
    Factory().StockImage(u"logo", mDir.Wide("red.png").c_str());
    wic first = Factory().StockImage(u"logo");
    qt::SetPixelAt(first, 0, 0, 0);  // drawing on the copy leaves the stock alone
    wic second = Factory().StockImage(u"logo");
    EXPECT_EQ(qt::PixelAt(second, 0, 0), 0xffff0000u);

    Factory().StockImage(u"logo", mDir.Wide("missing.png").c_str());  // silently nothing
    EXPECT_EQ(Factory().StockImage(u"logo").Size().width, 4);
    Factory().StockImage(u"logo", mDir.Wide("blue.png").c_str());  // replaces
    EXPECT_EQ(Factory().StockImage(u"logo").Size().width, 2);
    EXPECT_EQ(qt::PixelAt(first, 1, 1), 0xffff0000u);  // a copy taken before is not affected
    EXPECT_TRUE(Factory().StockImage(u"never stocked").IsEmpty());
}

TEST_F(Stock, FontsAreRegularAndNew) {
    Factory().StockFont(u"title", u"DejaVu Sans", 18, DWRITE_FONT_WEIGHT_BOLD);
    direct2d::font a = Factory().StockFont(u"title"), b = Factory().StockFont(u"title");
    EXPECT_NE(a.Get(), b.Get());
    EXPECT_EQ(a->GetFontWeight(), DWRITE_FONT_WEIGHT_BOLD);
    EXPECT_EQ(a->GetFontStyle(), DWRITE_FONT_STYLE_NORMAL);
    EXPECT_EQ(a->GetFontSize(), 18);
    Factory().StockFont(u"title", u"DejaVu Sans", -1, DWRITE_FONT_WEIGHT_NORMAL);  // refused: nothing changes
    EXPECT_EQ(Factory().StockFont(u"title")->GetFontSize(), 18);
    Factory().StockFont(u"odd", u"No Such Family", 12, DWRITE_FONT_WEIGHT_NORMAL);  // fontconfig stands in
    DWRITE_TEXT_METRICS m;
    Factory().StockFont(u"odd").CreateLayout(direct2d::rectf(0, 0, 500, 50), u"text", -1).Metrics(m);
    EXPECT_GT(m.width, 10);
    EXPECT_TRUE(Factory().StockFont(u"never stocked").IsEmpty());
}
