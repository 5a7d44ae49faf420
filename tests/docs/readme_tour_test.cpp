// The snippets of the README's tour, as they stand there, compiled and run.
#include <gtest/gtest.h>

#include <gtk/gtk.h>
#include <qor/tools.h>

#include <unistd.h>

#include "support/temp_dir.h"

using namespace qor::tools;

namespace {
struct Photo {
    virtual ~Photo() = default;
};
}  // namespace

TEST(ReadmeTour, EverySnippetRuns) {
    qor::tools::testing::temp_dir dir;
    ASSERT_EQ(::chdir(dir.Path().c_str()), 0);
    {
        qor::tools::string s(u"日本語");
        s.Format(u"%s: %d", u"count", 3);
        qor::tools::string half = qor::tools::string::converter::FullHalf(u"ＡＢＣ");
        EXPECT_TRUE(s == u"count: 3");
        EXPECT_TRUE(half == u"ABC");
    }
    {
        qor::tools::container::sptr<Photo> photo(new Photo);
        qor::tools::container::hash<qor::tools::string, Photo, qor::tools::container::pif::object> byName;
        byName.Set(u"cover", new Photo);
        EXPECT_NE(byName.Find(u"cover"), nullptr);
    }
    {
        qor::tools::thread::manager workers;
        workers.Function(u"loader", [](qor::tools::thread::worker *w) {
            while (w->Wait(INFINITE) >= 2) w->Message(true);
        });
        workers.Send(u"loader", new qor::tools::thread::message(1));
        workers.Terminate();
    }
    {
        std::u16string file = dir.Wide("app.db");
        qor::tools::database::session db;
        db.Driver(u"SQLite3");
        ASSERT_TRUE(db.Open(u"embedded", file.c_str(), u"app", u""));
        db.Execute(u"create table photos (id integer primary key, width integer)");
        db.Execute(u"insert into photos values (7, 640)");
        int width = 0;
        qor::tools::database::command &photos = db.Table(u"photos", true);
        if (photos.Select(u"where id = 7") && photos.MoveNext()) width = photos[u"width"];
        EXPECT_EQ(width, 640);
    }
    {
        dir.Write("settings.xml", "<settings><window><width>800</width></window></settings>");
        qor::tools::file::xml settings(u"settings.xml");
        settings.Int(u"/settings/window/width", 1024);
        settings.Save(nullptr);
        EXPECT_NE(dir.Read("settings.xml").find("1024"), std::string::npos);
    }
    {
        qor::tools::CoInitialize(nullptr);
        (new qor::tools::direct2d::factory)->Initialize(qor::tools::D2D1_FACTORY_TYPE_SINGLE_THREADED);
        qor::tools::direct2d::wic picture(64, 48);
        qor::tools::direct2d::wic::exif record;
        record.mMake = u"QorTools";
        picture.Save(0.9f, u"picture.jpg", &record);   // EXIF and a thumbnail
        qor::tools::direct2d::wic thumbnail = picture.Scale(16, 16);
        qor::tools::direct2d::factory::Instance()->Terminate();
        EXPECT_EQ(thumbnail.Size().height, 12);
        EXPECT_EQ(record.mThumbnailWidth, 160);
        qor::tools::CoUninitialize();
    }
    {
        (new qor::tools::gdiplus::factory)->Initialize();
        qor::tools::gdiplus::target card(320, 120, qor::tools::Gdiplus::PixelFormat32bppARGB);
        card->Clear(qor::tools::Gdiplus::Color(0xFFFFFFFFu));
        card->DrawString(u"写真", -1, qor::tools::gdiplus::font(u"IPAGothic", 14.0f, 0),
                         qor::tools::Gdiplus::PointF{10, 10}, qor::tools::gdiplus::brush(0xFF000000ul));
        card.DrawRoundRect(qor::tools::gdiplus::pen(2.0f, 0xFF3060A0ul), 2, 2, 316, 116, 10, 10);
        card.Image().Save(u"card.png");
        qor::tools::gdiplus::factory::Instance()->Terminate();
        EXPECT_EQ(qor::tools::gdiplus::image(u"card.png").Size().Width, 320);
    }
    if (gtk_init_check(nullptr, nullptr)) {
        qor::tools::database::session db;
        db.Driver(u"SQLite3");
        ASSERT_TRUE(db.Open(u"embedded", dir.Wide("grid.db").c_str(), u"app", u""));
        ASSERT_TRUE(db.Execute(u"create table photos(name varchar(20), width integer)"));
        ASSERT_TRUE(db.Execute(u"insert into photos values ('写真', 640)"));
        GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        qor::tools::database::grid list;
        list.Open(db, u"photos", false);
        list.InsertColumn(0, u"名前", qor::tools::LVCFMT_LEFT, u"name", nullptr, 200);
        list.InsertColumn(1, u"幅", qor::tools::LVCFMT_RIGHT, u"width", u"*,***,**9", 80);
        gtk_container_add(GTK_CONTAINER(window), list.Widget());
        list.RecordSet(u"order by name");
        EXPECT_EQ(list.GetItemCount(), 1);
        gtk_widget_destroy(window);
    }
    {
        ::setenv("QORTOOLS_REGISTRY_DIR", dir.Path().c_str(), 1);
        qor::tools::system::registry::SetInteger(qor::tools::HKEY_CURRENT_USER, u"Software\\App", u"Width", 1024);
        int width = qor::tools::system::registry::GetInteger(qor::tools::HKEY_CURRENT_USER, u"Software\\App", u"Width", 800);
        EXPECT_EQ(width, 1024);
        ::unsetenv("QORTOOLS_REGISTRY_DIR");
    }
    {
        qor::tools::graphic::circle c(qor::tools::graphic::pointd(0, 0), qor::tools::graphic::pointd(2, 0),
                                      qor::tools::graphic::pointd(1, 1));
        double area = c.Area();
        EXPECT_NEAR(area, 3.141592653589793, 1e-12);
    }
}
