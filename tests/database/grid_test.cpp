// database::grid in a real window under Xvfb, on a SQLite table of a million
// rows: the view asks only for the cells it shows, scrolls to the end, and
// the cell rules (pictures, wide text, blanks) hold. The screenshot of the
// first screen is kept as grid-first-screen.png beside the test.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <set>

#include "qor/tools/database/grid.h"
#include "qor/tools/database/session.h"
#include "qor/tools/platform/notice.h"
#include "support/gtk_window.h"
#include "support/temp_dir.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

constexpr int kRows = 1000000;

// A grid that counts the cells it is asked for.
class counting_grid : public database::grid {
public:
    int mAsked = 0;
    int mLastRow = -1;
    std::set<int> mRows;

protected:
    bool OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT *result) override {
        auto const *notice = reinterpret_cast<NMLVDISPINFOW const *>(lParam);
        ++mAsked;
        mLastRow = std::max(mLastRow, notice->item.iItem);
        mRows.insert(notice->item.iItem);
        return database::grid::OnChildNotify(message, wParam, lParam, result);
    }
};

class Grid : public ::testing::Test {
protected:
    void SetUp() override {
        if (!gtk_init_check(nullptr, nullptr)) GTEST_SKIP() << "no display";
        mOld = SetNoticeHook([](char16_t const *, char16_t const *, unsigned) { return IDOK; });
        mDb.Driver(u"SQLite3");
        ASSERT_TRUE(mDb.Open(u"embedded", mDir.Wide("grid.db").c_str(), u"tester", u""));
        ASSERT_TRUE(mDb.Execute(u"create table photos(id integer primary key, name varchar(40), width integer)"));
    }
    // Rows 0 to count - 1: the name "写真 i" and the width 3i.
    void Fill(int count) {
        string sql;
        sql.Format(u"insert into photos with recursive n(i) as (select 0 union all select i + 1 from n "
                   u"where i < %d) select i, '写真 ' || i, i * 3 from n",
                   count - 1);
        ASSERT_TRUE(mDb.Execute(sql));
    }
    void TearDown() override { SetNoticeHook(mOld); }

    // The grid's three columns: the name as text, the width through a picture, the id without one.
    void Columns(database::grid &g) {
        g.InsertColumn(0, u"名前", LVCFMT_LEFT, u"name", nullptr, 160);
        g.InsertColumn(1, u"幅", LVCFMT_RIGHT, u"width", u"*,***,**9", 100);
        g.InsertColumn(2, u"ID", LVCFMT_RIGHT, u"id", nullptr, 60);
    }
    std::u16string Cell(database::grid &g, int row, int column) {
        char16_t text[kListTextMax] = {};
        g.CellText(row, column, text, kListTextMax);
        return text;
    }

    qt::temp_dir mDir;
    database::session mDb;
    notice_hook mOld;
};

}  // namespace

TEST_F(Grid, AMillionRowsShowAndOnlyVisibleCellsAreAskedFor) {
    Fill(kRows);
    counting_grid g;
    ASSERT_TRUE(g.Open(mDb, u"photos", false));
    Columns(g);
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 360, 300);
    gtk_container_add(GTK_CONTAINER(window), g.Widget());
    ASSERT_EQ(g.RecordSet(u"order by id"), kRows);
    EXPECT_EQ(g.GetItemCount(), kRows);
    EXPECT_TRUE(g.GetStyle() & LVS_OWNERDATA);
    gtk_widget_show_all(window);
    qt::Settle();
    // The rows on screen and the few the view probes to size itself, never all.
    EXPECT_LT(g.mRows.size(), 100u);
    EXPECT_LT(g.mAsked, 3000);
    EXPECT_TRUE(g.mRows.count(0) && g.mRows.count(5));

    GdkPixbuf *shot = gdk_pixbuf_get_from_window(gtk_widget_get_window(g.View()), 0, 0, 360, 120);
    ASSERT_NE(shot, nullptr);
    gdk_pixbuf_save(shot, "grid-first-screen.png", "png", nullptr, nullptr);
    int dark = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 150; ++x) dark += (qt::ScreenPixel(shot, x, y) & 0xff) < 0x80;
    }
    EXPECT_GT(dark, 30);  // the first rows' names are drawn
    g_object_unref(shot);

    // To the end, as a user drags the scroll bar there.
    GtkAdjustment *rows = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(g.View()));
    gtk_adjustment_set_value(rows, gtk_adjustment_get_upper(rows) - gtk_adjustment_get_page_size(rows));
    qt::Settle();
    EXPECT_EQ(g.mLastRow, kRows - 1);
    EXPECT_EQ(Cell(g, kRows - 1, 0), u"写真 999999");
    EXPECT_EQ(Cell(g, kRows - 1, 1), u"2,999,997");
    gtk_widget_destroy(window);
}

TEST_F(Grid, CellsFollowTheirPictureOrShowWideTextOnly) {
    Fill(10);
    database::grid g;
    ASSERT_TRUE(g.Open(mDb, u"photos", false));
    Columns(g);
    g.InsertColumn(1, u"again", LVCFMT_LEFT, u"width", u"**9.9", 50);  // a position taken twice: looked up in call order
    ASSERT_EQ(g.RecordSet(u"where id < 3 order by id"), 3);
    EXPECT_EQ(Cell(g, 2, 0), u"写真 2");
    EXPECT_EQ(Cell(g, 2, 1), std::u16string(string().FormatD(u"*,***,**9", 6.0)));
    EXPECT_EQ(Cell(g, 2, 2), u"");     // a number without a picture stays blank
    EXPECT_EQ(Cell(g, 2, 3), std::u16string(string().FormatD(u"**9.9", 6.0)));  // the fourth info, wherever its view column went
    EXPECT_EQ(Cell(g, 2, 9), u"");     // no such column: empty
    EXPECT_EQ(g.mColumns.Size(), 4);
    EXPECT_EQ(std::u16string(g.mColumns[3].mField), u"width");

    char16_t small[4] = {};
    g.CellText(2, 0, small, 4);  // cut to the buffer
    EXPECT_EQ(std::u16string(small), u"写真 ");
}

TEST_F(Grid, AFailingQueryShowsAnEmptyList) {
    Fill(10);
    database::grid g;
    ASSERT_TRUE(g.Open(mDb, u"photos", false));
    Columns(g);
    ASSERT_EQ(g.RecordSet(u"where id < 5"), 5);
    EXPECT_EQ(g.RecordSet(u"where no_such_column = 1"), 0);
    EXPECT_EQ(g.GetItemCount(), 0);
}
