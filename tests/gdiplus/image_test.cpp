// gdiplus::image and its locks, decoder and encoder: loading and saving with
// the failure texts, the encoder table and its search by extension, locks in
// straight 32bppARGB that give back exactly what was written, and the same
// graphic::dib code on both image stacks.
#include <gtest/gtest.h>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <cairo.h>

#include <cstring>
#include <filesystem>

#include "qor/tools/gdiplus/font.h"
#include "qor/tools/gdiplus/image.h"
#include "qor/tools/gdiplus/target.h"
#include "support/imaging.h"
#include "support/painting.h"
#include "support/temp_dir.h"
#include "support/thrown.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;

namespace {

class Image : public qt::painting {
protected:
    static void SetUpTestSuite() {
        qt::painting::SetUpTestSuite();
        qt::imaging::SetUpTestSuite();
    }
    static void TearDownTestSuite() {
        qt::imaging::TearDownTestSuite();
        qt::painting::TearDownTestSuite();
    }
    qt::temp_dir mDir;
};

class exposed_encoder : public gdiplus::image::encoder {
public:
    using gdiplus::image::encoder::_EncoderClsid;
    using gdiplus::image::encoder::_ImageCodecInfoEncoder;
};

std::string Head(std::string const &path, std::size_t count) {
    std::string bytes(count, '\0');
    FILE *f = std::fopen(path.c_str(), "rb");
    if (!f) return {};
    bytes.resize(std::fread(bytes.data(), 1, count, f));
    std::fclose(f);
    return bytes;
}

// A picture with red on the left half and blue on the right, drawn through a target.
gdiplus::image RedBlue(int width, int height) {
    gdiplus::target canvas(width, height, Gdiplus::PixelFormat32bppARGB);
    canvas->FillRectangle(gdiplus::brush(0xFFFF0000ul), 0, 0, width / 2, height);
    canvas->FillRectangle(gdiplus::brush(0xFF0000FFul), width / 2, 0, width - width / 2, height);
    return canvas.Image();
}

// The same code on either stack's lock: every colour channel inverted.
void Invert(graphic::dib &pixels) {
    for (int y = 0; y < pixels.Height(); ++y) {
        unsigned char *row = pixels.Data() + y * pixels.Stride();
        for (int x = 0; x < pixels.Width(); ++x) {
            for (int c = 0; c < 3; ++c) row[x * 4 + c] = std::uint8_t(255 - row[x * 4 + c]);
        }
    }
}

}  // namespace

TEST_F(Image, TheEncoderTableHoldsFiveFormatsInOrder) {
    exposed_encoder encoder;
    unsigned char *block = nullptr;
    ASSERT_EQ(encoder._ImageCodecInfoEncoder(&block), 5);
    auto const *codecs = reinterpret_cast<Gdiplus::ImageCodecInfo const *>(block);
    char16_t const *descriptions[] = {u"BMP", u"JPEG", u"GIF", u"TIFF", u"PNG"};
    char16_t const *extensions[] = {u"*.BMP;*.DIB;*.RLE", u"*.JPG;*.JPEG;*.JPE;*.JFIF", u"*.GIF", u"*.TIF;*.TIFF",
                                    u"*.PNG"};
    CLSID const clsids[] = {Gdiplus::CLSID_EncoderBMP, Gdiplus::CLSID_EncoderJPEG, Gdiplus::CLSID_EncoderGIF,
                            Gdiplus::CLSID_EncoderTIFF, Gdiplus::CLSID_EncoderPNG};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(std::u16string(codecs[i].FormatDescription), descriptions[i]);
        EXPECT_EQ(std::u16string(codecs[i].FilenameExtension), extensions[i]);
        EXPECT_TRUE(codecs[i].Clsid == clsids[i]);
    }
    std::free(block);
}

TEST_F(Image, TheEncoderIsFoundByASubstringOfTheExtensionList) {
    exposed_encoder encoder;
    EXPECT_TRUE(encoder._EncoderClsid(u"photo.jpg") == Gdiplus::CLSID_EncoderJPEG);
    EXPECT_TRUE(encoder._EncoderClsid(u"photo.JPEG") == Gdiplus::CLSID_EncoderJPEG);
    EXPECT_TRUE(encoder._EncoderClsid(u"x.J") == Gdiplus::CLSID_EncoderJPEG);
    EXPECT_TRUE(encoder._EncoderClsid(u"x.PE") == Gdiplus::CLSID_EncoderJPEG);
    EXPECT_TRUE(encoder._EncoderClsid(u"x.F") == Gdiplus::CLSID_EncoderJPEG);  // *.JFIF comes before *.GIF
    EXPECT_TRUE(encoder._EncoderClsid(u"scan.tif") == Gdiplus::CLSID_EncoderTIFF);
    EXPECT_TRUE(encoder._EncoderClsid(u"a.b/shot.png") == Gdiplus::CLSID_EncoderPNG);
    EXPECT_TRUE(encoder._EncoderClsid(u"PNG") == Gdiplus::CLSID_EncoderPNG);  // no full stop: the whole path
    EXPECT_TRUE(encoder._EncoderClsid(u"picture.") == GUID_NULL);
    EXPECT_TRUE(encoder._EncoderClsid(u"picture.xyz") == GUID_NULL);
    EXPECT_TRUE(encoder._EncoderClsid(nullptr) == GUID_NULL);
}

TEST_F(Image, SaveWritesTheFormatTheExtensionNames) {
    gdiplus::image picture = RedBlue(40, 20);
    struct {
        char const *name;
        std::string magic;
    } const cases[] = {{"a.JPEG", "\xFF\xD8\xFF"}, {"b.jpg", "\xFF\xD8\xFF"}, {"c.png", "\x89PNG"},
                       {"d.bmp", "BM"},           {"e.gif", "GIF8"},          {"f.tiff", "II*"}};
    for (auto const &c : cases) {
        picture.Save(mDir.Wide(c.name).c_str());
        EXPECT_EQ(Head(mDir.Path(c.name), c.magic.size()), c.magic) << c.name;
        EXPECT_EQ(std::u16string(picture.Path()), mDir.Wide(c.name));
    }
    // Read back by an independent decoder.
    GdkPixbuf *decoded = gdk_pixbuf_new_from_file(mDir.Path("c.png").c_str(), nullptr);
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(gdk_pixbuf_get_width(decoded), 40);
    guchar const *p = gdk_pixbuf_get_pixels(decoded);
    EXPECT_EQ(p[0], 255);
    EXPECT_EQ(p[2], 0);
    g_object_unref(decoded);

    gdiplus::image loaded(mDir.Wide("c.png").c_str());
    EXPECT_EQ(loaded.Size().Width, 40);
    EXPECT_EQ(qt::Argb(loaded, 5, 5), 0xFFFF0000u);
    EXPECT_EQ(qt::Argb(loaded, 35, 5), 0xFF0000FFu);
    EXPECT_EQ(gdiplus::image(mDir.Wide("a.JPEG").c_str())->GetPixelFormat(), Gdiplus::PixelFormat24bppRGB);
}

TEST_F(Image, SaveFailuresThrowAndKeepTheName) {
    gdiplus::image picture = RedBlue(8, 8);
    std::u16string odd = mDir.Wide("picture.xyz");
    EXPECT_EQ(qt::Thrown([&] { picture.Save(odd.c_str()); }), u"gdiplus image save");
    EXPECT_EQ(std::u16string(picture.Path()), odd);
    EXPECT_FALSE(std::filesystem::exists(mDir.Path("picture.xyz")));

    picture.Save(mDir.Wide("kept.png").c_str());
    gdiplus::image loaded(mDir.Wide("kept.png").c_str());
    EXPECT_EQ(qt::Thrown([&] { loaded.Save(nullptr); }), u"gdiplus image save");
    EXPECT_EQ(qt::Thrown([&] { picture.Save(mDir.Wide("no/such/folder/x.png").c_str()); }), u"gdiplus image save");

    gdiplus::image empty;
    EXPECT_NO_THROW(empty.Save(mDir.Wide("empty.png").c_str()));  // nothing to save: no report
    EXPECT_FALSE(std::filesystem::exists(mDir.Path("empty.png")));
}

TEST_F(Image, LoadFailuresThrowAndLeaveTheImageAsItWas) {
    gdiplus::image picture = RedBlue(8, 8);
    Gdiplus::Bitmap *before = picture.Get();
    mDir.Write("bad.png", "\x89PNG\r\n\x1a\nnot really");
    EXPECT_EQ(qt::Thrown([&] { picture.Load(mDir.Wide("bad.png").c_str()); }), u"gdiplus image load");
    EXPECT_EQ(qt::Thrown([&] { picture.Load(mDir.Wide("missing.png").c_str()); }), u"gdiplus image load");
    EXPECT_EQ(qt::Thrown([&] { picture.Load(HBITMAP(nullptr)); }), u"gdiplus image load");
    EXPECT_EQ(picture.Get(), before);
    EXPECT_EQ(gdiplus::image::decoder().Load(mDir.Wide("bad.png").c_str()), nullptr);
}

TEST_F(Image, ASurfaceLoadsWithoutAPath) {
    gdiplus::image picture = RedBlue(8, 8);
    picture.Save(mDir.Wide("named.png").c_str());
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 30, 10);
    cairo_t *cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 0, 1, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
    picture.Load(surface);
    cairo_surface_destroy(surface);
    EXPECT_TRUE(picture.Path().IsEmpty());
    EXPECT_EQ(picture.Size().Width, 30);
    EXPECT_EQ(qt::Argb(picture, 3, 3), 0xFF00FF00u);
}

TEST_F(Image, CopiesShareAndCreatingAgainMovesOnlyThatCopy) {
    gdiplus::image empty;
    EXPECT_EQ(empty.Size().Width, 0);
    EXPECT_EQ(empty.Size().Height, 0);

    gdiplus::image first(10, 10, Gdiplus::PixelFormat32bppARGB);
    first.Save(mDir.Wide("first.png").c_str());
    gdiplus::image second = first;
    EXPECT_EQ(first.Get(), second.Get());
    second.Create(20, 20, Gdiplus::PixelFormat24bppRGB);
    EXPECT_EQ(first.Size().Width, 10);
    EXPECT_EQ(second.Size().Width, 20);
    first.Create(30, 5, Gdiplus::PixelFormat32bppARGB);  // alone now: keeps its body and path
    EXPECT_EQ(std::u16string(first.Path()), mDir.Wide("first.png"));
    gdiplus::image refused(10, 10, 0x12345);  // no such format: an empty bitmap object, no report
    EXPECT_EQ(refused.Size().Width, 0);
}

TEST_F(Image, AWriteLockGivesBackExactlyWhatWasWritten) {
    gdiplus::image picture(64, 32, Gdiplus::PixelFormat32bppARGB);
    std::vector<std::uint32_t> written;
    {
        gdiplus::image::lock pixels(picture, Gdiplus::ImageLockModeWrite);
        ASSERT_NE(pixels.Data(), nullptr);
        EXPECT_EQ(pixels.mBitmapData.PixelFormat, Gdiplus::PixelFormat32bppARGB);
        for (int y = 0; y < 32; ++y) {
            auto *row = reinterpret_cast<std::uint32_t *>(pixels.Data() + y * pixels.Stride());
            for (int x = 0; x < 64; ++x) {
                row[x] = std::uint32_t(x * 4) << 24 | std::uint32_t(y * 8 + 3) << 16 | std::uint32_t(x + y) << 8 | 7u;
                written.push_back(row[x]);
            }
        }
    }
    gdiplus::image::lock back(picture, Gdiplus::ImageLockModeRead);
    std::size_t i = 0, differ = 0;
    for (int y = 0; y < 32; ++y) {
        auto const *row = reinterpret_cast<std::uint32_t const *>(back.Data() + y * back.Stride());
        for (int x = 0; x < 64; ++x) differ += row[x] != written[i++];
    }
    EXPECT_EQ(differ, 0u);
}

TEST_F(Image, LocksTakeEdgesAndStayEmptyWithoutABitmap) {
    gdiplus::image picture(200, 300, Gdiplus::PixelFormat24bppRGB);
    gdiplus::image::lock area(picture, 10, 20, 110, 220, Gdiplus::ImageLockModeRead);
    EXPECT_EQ(area.Width(), 100);
    EXPECT_EQ(area.Height(), 200);
    EXPECT_EQ(area.mRect.Width, 100);
    EXPECT_EQ(area.Data()[3], 0xFF);  // a picture without alpha reads opaque

    gdiplus::image::lock outside(picture, 150, 0, 250, 10, Gdiplus::ImageLockModeRead);
    EXPECT_EQ(outside.Data(), nullptr);
    EXPECT_EQ(picture->GetLastStatus(), Gdiplus::InvalidParameter);

    gdiplus::image empty;
    gdiplus::image::lock none(empty, Gdiplus::ImageLockModeRead);
    EXPECT_EQ(none.Data(), nullptr);
    EXPECT_EQ(none.Width(), 0);
    EXPECT_EQ(none.Height(), 0);
    none.Release();
    none.Release();
}

TEST_F(Image, ALockMayOutliveItsImageAndCopiesUnlockOnce) {
    auto *picture = new gdiplus::image(16, 16, Gdiplus::PixelFormat32bppARGB);
    auto *pixels = new gdiplus::image::lock(*picture, Gdiplus::ImageLockModeWrite);
    ASSERT_NE(pixels->Data(), nullptr);
    std::memset(pixels->Data(), 0x55, std::size_t(pixels->Size()));
    delete picture;
    {
        gdiplus::image::lock copy = *pixels;  // unlocks at its end: the bitmap is gone, nothing is written
    }
    delete pixels;  // its unlock finds nothing left to do

    gdiplus::image again(4, 4, Gdiplus::PixelFormat32bppARGB);
    gdiplus::image::lock first(again, Gdiplus::ImageLockModeRead);
    gdiplus::image::lock second(again, Gdiplus::ImageLockModeRead);
    EXPECT_EQ(second.Data(), nullptr);  // one lock at a time
    first.Release();
    gdiplus::image::lock third(again, Gdiplus::ImageLockModeRead);
    EXPECT_NE(third.Data(), nullptr);
}

TEST_F(Image, TheSameDibCodeRunsOnBothStacks) {
    direct2d::wic photo(48, 24);
    gdiplus::image picture = RedBlue(48, 24);
    {
        direct2d::wic::lock target(photo, WICBitmapLockWrite);
        gdiplus::image::lock source(picture, Gdiplus::ImageLockModeRead);
        target.SafeCopy(source);  // opaque pixels: the same bytes premultiplied or not
    }
    {
        direct2d::wic::lock one(photo, WICBitmapLockWrite);
        gdiplus::image::lock other(picture, Gdiplus::ImageLockModeWrite | Gdiplus::ImageLockModeRead);
        Invert(one);
        Invert(other);
    }
    for (int x : {3, 40}) {
        EXPECT_EQ(qt::PixelAt(photo, x, 10), qt::Argb(picture, x, 10)) << x;
    }
    EXPECT_EQ(qt::Argb(picture, 3, 10), 0xFF00FFFFu);
    EXPECT_EQ(qt::Argb(picture, 40, 10), 0xFFFFFF00u);
}
