// The working image: locks as views of the bitmap, sharing and detaching of
// copies with their path, the fit of Scale, Clone, the region runs, loads and
// saves of all six formats through the file names, and failed loads and
// saves that leave the image and the files as they were.
#include <gtest/gtest.h>

#include <cairo.h>
#include <sys/stat.h>

#include <filesystem>

#include "qor/tools/exception.h"
#include "support/thrown.h"
#include "support/imaging.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

using namespace qor::tools;
using qor::tools::testing::Thrown;
namespace qt = qor::tools::testing;
using direct2d::wic;
using qt::PixelAt;
using qt::SetPixelAt;

namespace {

class Wic : public qt::imaging {
protected:
    qt::temp_dir mDir;
    std::u16string Path(char const *name) { return mDir.Wide(name); }
};

constexpr std::uint32_t kHalfRed = 0x80800000u;  // red at half opacity, premultiplied

}  // namespace

// ------------------------------------------------------------------ locks

TEST_F(Wic, LockIsAViewOfTheBitmapItself) {
    wic image(4, 3);
    {
        wic::lock whole(image, WICBitmapLockWrite);
        ASSERT_NE(whole.Data(), nullptr);
        EXPECT_EQ(whole.Width(), 4);
        EXPECT_EQ(whole.Height(), 3);
        EXPECT_EQ(whole.Stride(), 16);
        EXPECT_EQ(whole.Size(), 48);
        reinterpret_cast<std::uint32_t *>(whole.Data() + 2 * whole.Stride())[1] = kHalfRed;
    }
    EXPECT_EQ(PixelAt(image, 1, 2), kHalfRed);
    wic::lock part(image, 1, 2, 2, 1, WICBitmapLockRead);  // x, y, width, height
    EXPECT_EQ(*reinterpret_cast<std::uint32_t *>(part.Data()), kHalfRed);
    EXPECT_EQ(part.mRect.Width, 2);
    EXPECT_EQ(part.Size(), 8);
}

TEST_F(Wic, ConflictingLocksAndBadAreasGiveAnEmptyView) {
    wic image(4, 3);
    {
        wic::lock writer(image, WICBitmapLockWrite);
        ASSERT_NE(writer.Data(), nullptr);
        wic::lock second(image, WICBitmapLockWrite);
        wic::lock reader(image, WICBitmapLockRead);
        EXPECT_EQ(second.Data(), nullptr);
        EXPECT_EQ(reader.Data(), nullptr);
        EXPECT_EQ(second.Width(), 0);
        writer.Release();
        writer.Release();  // twice is harmless
        wic::lock after(image, WICBitmapLockWrite);
        EXPECT_NE(after.Data(), nullptr);
    }
    wic::lock one(image, WICBitmapLockRead), two(image, WICBitmapLockRead);
    EXPECT_NE(two.Data(), nullptr);
    wic::lock outside(image, 3, 0, 2, 1, WICBitmapLockRead);
    EXPECT_EQ(outside.Data(), nullptr);
    wic::lock noFlags(image, 0);
    EXPECT_EQ(noFlags.Data(), nullptr);
    wic empty;
    wic::lock nothing(empty, WICBitmapLockRead);
    EXPECT_EQ(nothing.Data(), nullptr);
}

// ------------------------------------------------------ sharing and paths

TEST_F(Wic, CopiesShareBitmapAndPathUntilOneIsReplaced) {
    mDir.Write("a.png", "");
    wic a(3, 3);
    a.Save(Path("a.png").c_str(), nullptr);
    wic b = a;
    SetPixelAt(b, 0, 0, 0xff00ff00u);
    EXPECT_EQ(PixelAt(a, 0, 0), 0xff00ff00u);
    EXPECT_EQ(b.Path(), string(Path("a.png").c_str()));

    wic other(2, 2);
    other.Save(Path("b.png").c_str(), nullptr);
    b.Load(Path("b.png").c_str(), nullptr);  // b detaches: a keeps the old pixels and path
    EXPECT_EQ(b.Size().width, 2);
    EXPECT_EQ(a.Size().width, 3);
    EXPECT_EQ(a.Path(), string(Path("a.png").c_str()));
    EXPECT_EQ(b.Path(), string(Path("b.png").c_str()));
}

TEST_F(Wic, CreateOnASoleHandleKeepsThePathForTheNextSave) {
    wic a(3, 3);
    a.Save(Path("a.png").c_str(), nullptr);
    a.Create(7, 5);
    a.Save(nullptr, nullptr);
    wic back(Path("a.png").c_str());
    EXPECT_EQ(back.Size().width, 7);
    EXPECT_EQ(back.Size().height, 5);
}

TEST_F(Wic, SaveWithoutABitmapStoresThePathAndClearsReadOnly) {
    mDir.Write("kept.png", "old");
    ::chmod(mDir.Path("kept.png").c_str(), 0444);
    wic empty;
    empty.Save(Path("kept.png").c_str(), nullptr);
    EXPECT_EQ(empty.Path(), string(Path("kept.png").c_str()));
    struct stat st {};
    ::stat(mDir.Path("kept.png").c_str(), &st);
    EXPECT_TRUE(st.st_mode & S_IWUSR);
    EXPECT_EQ(mDir.Read("kept.png"), "old");
}

// ------------------------------------------------------- scale and clone

TEST_F(Wic, ScaleFitsTheBoxKeepingProportions) {
    wic wide(1000, 500);
    EXPECT_EQ(wide.Scale(160, 120).Size().width, 160);
    EXPECT_EQ(wide.Scale(160, 120).Size().height, 80);
    EXPECT_EQ(wide.Scale(2000, 2000).Size().width, 2000);
    EXPECT_EQ(wide.Scale(direct2d::sizef(2000, 2000)).Size().height, 1000);
    wic line(1000, 1);
    EXPECT_EQ(line.Scale(100, 100).Size().height, 1);  // 0.1 is raised to 1
    EXPECT_TRUE(wide.Scale(160, 120).Path().IsEmpty());
    EXPECT_EQ(Thrown([] { wic().Scale(10, 10); }), string(u"direct2d exception"));
}

TEST_F(Wic, ScaledPixelsComeFromTheSource) {
    wic halves(200, 100);
    qt::Fill(halves, 0xffff0000u);
    {
        wic::lock right(halves, 100, 0, 100, 100, WICBitmapLockWrite);
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 100; ++x) reinterpret_cast<std::uint32_t *>(right.Data() + y * right.Stride())[x] = 0xff0000ffu;
        }
    }
    wic small = halves.Scale(20, 20);
    ASSERT_EQ(small.Size().height, 10);
    EXPECT_EQ(PixelAt(small, 2, 5), 0xffff0000u);
    EXPECT_EQ(PixelAt(small, 17, 5), 0xff0000ffu);
}

TEST_F(Wic, CloneCopiesPixelsAndPathIndependently) {
    wic source(5, 4);
    source.Save(Path("s.png").c_str(), nullptr);
    SetPixelAt(source, 4, 3, kHalfRed);
    wic copy;
    copy.Clone(source);
    EXPECT_EQ(PixelAt(copy, 4, 3), kHalfRed);
    EXPECT_EQ(copy.Path(), source.Path());
    SetPixelAt(copy, 4, 3, 0);
    EXPECT_EQ(PixelAt(source, 4, 3), kHalfRed);

    wic keeps(2, 2);
    keeps.Save(Path("k.png").c_str(), nullptr);
    wic nothing;
    keeps.Clone(nothing);
    EXPECT_TRUE(keeps.IsEmpty());
    EXPECT_EQ(keeps.Path(), string(Path("k.png").c_str()));
}

// ----------------------------------------------------------------- region

namespace {

std::vector<cairo_rectangle_int_t> Rectangles(HRGN region) {
    std::vector<cairo_rectangle_int_t> out(cairo_region_num_rectangles(region));
    for (int i = 0; i < int(out.size()); ++i) cairo_region_get_rectangle(region, i, &out[i]);
    return out;
}

}  // namespace

TEST_F(Wic, RegionRunsKeepTheirTraditionalEdges) {
    constexpr std::uint32_t key = 0xff00ff00u;
    wic image(30, 2);
    qt::Fill(image, key);
    for (int x = 10; x <= 20; ++x) SetPixelAt(image, x, 0, 0xff000000u);  // a run of 10 to 20 in row 0
    SetPixelAt(image, 25, 0, 0xff000000u);                                   // a run of one pixel
    for (int x = 27; x < 30; ++x) SetPixelAt(image, x, 1, 0xff000000u);      // a run to the end of the last row
    HRGN region = image.CreateRegion(key);
    auto rects = Rectangles(region);
    ASSERT_EQ(rects.size(), 2u);  // the one-pixel run is an empty rectangle
    EXPECT_EQ(rects[0].x, 11);
    EXPECT_EQ(rects[0].width, 9);  // right 20
    EXPECT_EQ(rects[1].x, 28);
    EXPECT_EQ(rects[1].y, 1);
    EXPECT_EQ(rects[1].x + rects[1].width, 30);
    DeleteObject(region);
}

TEST_F(Wic, RegionWithoutKeyPixelsIsOneRunARow) {
    wic image(8, 3);
    qt::Fill(image, 0xff112233u);
    HRGN region = image.CreateRegion(0xff00ff00u);
    cairo_rectangle_int_t box;
    cairo_region_get_extents(region, &box);
    EXPECT_EQ(box.x, 1);
    EXPECT_EQ(box.x + box.width, 8);
    EXPECT_EQ(box.height, 3);
    DeleteObject(region);
    HRGN none = wic().CreateRegion(0);
    EXPECT_TRUE(cairo_region_is_empty(none));
    DeleteObject(none);
}

// --------------------------------------------------------- files and formats

namespace {

// A 5 by 4 picture: opaque colours, a clear pixel and a half-transparent red.
void Paint(wic &image) {
    std::uint32_t const colours[] = {0xffff0000u, 0xff00ff00u, 0xff0000ffu, 0xffffffffu, 0xff000000u};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) SetPixelAt(image, x, y, colours[(x + y) % 5]);
    }
    SetPixelAt(image, 0, 0, 0);
    SetPixelAt(image, 4, 3, kHalfRed);
}

bool Near(std::uint32_t a, std::uint32_t b, int tolerance) {
    for (int shift = 0; shift < 32; shift += 8) {
        if (std::abs(int((a >> shift) & 0xff) - int((b >> shift) & 0xff)) > tolerance) return false;
    }
    return true;
}

}  // namespace

TEST_F(Wic, EveryFormatComesBackThroughItsExtension) {
    wic image(5, 4);
    Paint(image);
    for (char const *name : {"p.png", "p.tiff", "p.bmp", "p.ico", "p.gif", "p.jpg"}) {
        SCOPED_TRACE(name);
        image.Save(Path(name).c_str(), nullptr);
        wic back(Path(name).c_str());
        ASSERT_EQ(back.Size().width, 5);
        std::string format = name + 2;
        bool lossless = format != "jpg" && format != "gif";
        if (lossless) {
            EXPECT_EQ(PixelAt(back, 4, 3), kHalfRed);
        }
        if (format != "jpg") {
            EXPECT_EQ(PixelAt(back, 0, 0), 0u);
        }
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 5; ++x) {
                if ((x == 0 && y == 0) || (x == 4 && y == 3)) continue;
                if (format == "jpg") continue;  // a checkerboard of pure colours is not what JPEG keeps
                EXPECT_EQ(PixelAt(back, x, y), PixelAt(image, x, y))
                    << x << "," << y << " " << std::hex << PixelAt(back, x, y);
            }
        }
    }
}

TEST_F(Wic, JpegKeepsAnEvenColourAndTakesItsQuality) {
    wic image(32, 32);
    qt::Fill(image, 0xffc04020u);
    image.Save(0.9f, Path("q90.jpg").c_str(), nullptr);
    image.Save(0.1f, Path("q10.jpg").c_str(), nullptr);
    wic back(Path("q90.jpg").c_str());
    EXPECT_TRUE(Near(PixelAt(back, 16, 16), 0xffc04020u, 3)) << std::hex << PixelAt(back, 16, 16);
    EXPECT_LT(mDir.Read("q10.jpg").size(), mDir.Read("q90.jpg").size());
}

TEST_F(Wic, ExtensionsAreFoundWhateverTheirCase) {
    wic image(3, 2);
    auto starts = [&](char const *name, std::string const &magic) {
        image.Save(Path(name).c_str(), nullptr);
        return mDir.Read(name).compare(0, magic.size(), magic) == 0;
    };
    EXPECT_TRUE(starts("photo.JPG", "\xff\xd8"));
    EXPECT_TRUE(starts("photo.Jpeg", "\xff\xd8"));
    EXPECT_TRUE(starts("photo.tif", "II*"));
    EXPECT_TRUE(starts("photo.TIFF", "II*"));
    auto back = std::filesystem::current_path();
    std::filesystem::current_path(mDir.Path());
    image.Save(u"png", nullptr);  // no full stop: the whole name is the extension
    std::filesystem::current_path(back);
    EXPECT_EQ(mDir.Read("png").substr(0, 4), "\x89PNG");
    EXPECT_TRUE(starts("a.b.Gif", "GIF8"));
}

TEST_F(Wic, UnknownExtensionWritesNoFile) {
    wic image(3, 2);
    EXPECT_EQ(Thrown([&] { image.Save(Path("photo.xyz").c_str(), nullptr); }), string(u"wic bitmap save"));
    EXPECT_FALSE(std::filesystem::exists(mDir.Path("photo.xyz")));
    mDir.Write("old.webp", "keep me");
    EXPECT_EQ(Thrown([&] { image.Save(Path("old.webp").c_str(), nullptr); }), string(u"wic bitmap save"));
    EXPECT_EQ(mDir.Read("old.webp"), "keep me");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(mDir.Path()), {}), 1);  // no temporary left
}

TEST_F(Wic, FirstFrameAndFirstPageOnly) {
    mDir.Write("anim.gif", qt::MakeAnimatedGif());
    wic gif(Path("anim.gif").c_str());
    EXPECT_EQ(gif.Size().width, 6);
    EXPECT_EQ(PixelAt(gif, 1, 1), 0xffff0000u);  // the first frame, not the blue second
    EXPECT_EQ(PixelAt(gif, 0, 0), 0u);
    mDir.Write("pages.tif", qt::MakeTiffPages(mDir.Path("scratch.tif").c_str()));
    wic tiff(Path("pages.tif").c_str());
    EXPECT_EQ(PixelAt(tiff, 1, 0), 0xff808080u);  // mid grey: the first page
}

TEST_F(Wic, BadFilesThrowAndLeaveTheImageAsItWas) {
    wic image(3, 2);
    SetPixelAt(image, 1, 1, kHalfRed);
    image.Save(Path("good.png").c_str(), nullptr);
    for (char const *name : {"good.png", "good.tiff", "good.gif", "good.bmp", "good.ico", "good.jpg"}) {
        image.Save(Path(name).c_str(), nullptr);
        std::string bytes = mDir.Read(name);
        mDir.Write(std::string("cut-") + name, bytes.substr(0, bytes.size() / 2));
    }
    image.Save(Path("good.png").c_str(), nullptr);
    mDir.Write("text.jpg", "not a picture at all");
    for (char const *name : {"cut-good.png", "cut-good.tiff", "cut-good.gif", "cut-good.bmp", "cut-good.ico",
                             "cut-good.jpg", "text.jpg", "missing.png"}) {
        SCOPED_TRACE(name);
        string expected = string(u"wic bitmap load <") + Path(name).c_str() + u">";
        EXPECT_EQ(Thrown([&] { image.Load(Path(name).c_str(), nullptr); }), expected);
        EXPECT_EQ(PixelAt(image, 1, 1), kHalfRed);
        EXPECT_EQ(image.Path(), string(Path("good.png").c_str()));
    }
}

TEST_F(Wic, DibSavesItsPixelsAsTheyStand) {
    graphic::dib pixels(3, 2, 0);
    auto *row = reinterpret_cast<std::uint32_t *>(pixels.Data() + pixels.Stride());
    pixels.Clear();
    row[2] = kHalfRed;
    pixels.Save(Path("dib.png").c_str());
    wic back(Path("dib.png").c_str());
    EXPECT_EQ(PixelAt(back, 2, 1), kHalfRed);
    EXPECT_EQ(Thrown([&] { pixels.Save(Path("dib.unknown").c_str()); }), string(u"wic bitmap save"));
}
