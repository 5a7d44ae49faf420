// EXIF through the working image: what wic::Save writes is read by exiftool
// and exiv2 with the field types the value types choose, the thumbnail is a
// JPEG of 160 by 120 (90 by 120 upright), the maker note's bytes come back
// as they were, and what exiftool writes is read here field by field.
#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <thread>

#include "qor/tools/exception.h"
#include "support/command.h"
#include "support/imaging.h"
#include "support/temp_dir.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;
using direct2d::wic;

namespace {

constexpr unsigned char kNote[] = {0x01, 0x00, 0xff, 0x7f, 'M', 'N'};

class WicExif : public qt::imaging {
protected:
    void SetUp() override {
        if (!qt::Have("exiftool") || !qt::Have("exiv2")) GTEST_SKIP() << "exiftool and exiv2 are needed";
    }
    std::u16string Path(char const *name) { return mDir.Wide(name); }
    std::string Tool(char const *command, char const *name) { return qt::Output(std::string(command) + " " + mDir.Path(name)); }
    qt::temp_dir mDir;
};

// The text with every run of spaces made one space, for matching lines of columns.
std::string Squeezed(std::string const &text) {
    std::string out;
    for (char c : text) {
        if (c != ' ' || out.empty() || out.back() != ' ') out += c;
    }
    return out;
}

// "2024/03/09 17:05:33": digits with slashes in the date and colons in the time.
bool IsSlashedStamp(std::string const &t) {
    std::string const shape = "dddd/dd/dd dd:dd:dd";
    if (t.size() != shape.size()) return false;
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (shape[i] == 'd' ? !std::isdigit(static_cast<unsigned char>(t[i])) : t[i] != shape[i]) return false;
    }
    return true;
}

std::string Narrow(string const &s) { return std::string(s.View().begin(), s.View().end()); }

wic::exif Filled() {
    wic::exif e;
    e.mMake = u"Maker";
    e.mModel = u"Model 1";
    e.mSoftware = u"QorTools";
    e.mMakerNote.Copy(kNote, sizeof kNote);
    e.mXResolution = (1LL << 32) | 72;  // 72/1: numerator in the low half
    e.mYResolution = (1LL << 32) | 96;
    e.mResolutionUnit = 2;
    e.mShutterSpeed = (2LL << 32) | 13;
    e.mDateTimeOriginal = u"2024:03:09 17:05:33";
    return e;
}

}  // namespace

TEST_F(WicExif, IndependentReadersSeeTheFieldsWithTheirTypes) {
    wic image(400, 300);
    wic::exif e = Filled();
    image.Save(0.9f, Path("e.jpg").c_str(), &e);
    std::string exiv2 = Squeezed(Tool("exiv2 -pa", "e.jpg"));
    for (char const *line : {"Exif.Image.Make Ascii 6 Maker", "Exif.Image.XResolution Rational 1 72",
                             "Exif.Image.YResolution Rational 1 96", "Exif.Image.ResolutionUnit Short 1",
                             "Exif.Image.Orientation Short 1 top, left", "Exif.Image.YCbCrPositioning Short",
                             "Exif.Photo.MakerNote Undefined 6 1 0 255 127 77 78",
                             "Exif.Photo.DateTimeDigitized Ascii 1", "Exif.Photo.PixelXDimension Short 1 400",
                             "Exif.Photo.ShutterSpeedValue Rational", "Exif.Thumbnail.ImageWidth Short 1 160",
                             "Exif.Thumbnail.ImageLength Short 1 120", "Exif.Thumbnail.Compression Short",
                             "Exif.Thumbnail.JPEGInterchangeFormatLength SLong"}) {
        EXPECT_NE(exiv2.find(line), std::string::npos) << line << "\n" << exiv2;
    }
    std::string v3 = Tool("exiftool -v3", "e.jpg");
    EXPECT_NE(v3.find("ShutterSpeedValue = 6.5 (13/2)"), std::string::npos) << v3;
    // The date of the save, with slashes, and kept in the record.
    EXPECT_TRUE(IsSlashedStamp(Narrow(e.mDateTime))) << Narrow(e.mDateTime);
    EXPECT_NE(v3.find("ModifyDate = " + Narrow(e.mDateTime)), std::string::npos);
    EXPECT_EQ(e.mPixelXDimension, 400);
    EXPECT_EQ(e.mPixelYDimension, 300);
}

TEST_F(WicExif, ThumbnailIsAJpegFittedInto160By120) {
    for (auto [width, height, tw, th] : {std::array{4000, 3000, 160, 120}, std::array{300, 400, 90, 120}}) {
        wic image(width, height);
        qt::Fill(image, 0xff3060a0u);
        wic::exif e;
        image.Save(Path("t.jpg").c_str(), &e);
        EXPECT_EQ(e.mThumbnailWidth, tw);
        EXPECT_EQ(e.mThumbnailHeight, th);
        EXPECT_LT(e.mThumbnail.Size(), 57600);
        qt::Output("exiftool -b -ThumbnailImage " + mDir.Path("t.jpg") + " > " + mDir.Path("thumb.jpg"));
        EXPECT_EQ(mDir.Read("thumb.jpg"), std::string(reinterpret_cast<char *>(e.mThumbnail.Offset(0)), e.mThumbnail.Size()));
        wic thumb(Path("thumb.jpg").c_str());
        EXPECT_EQ(thumb.Size().width, float(tw));
        EXPECT_EQ(thumb.Size().height, float(th));
    }
}

TEST_F(WicExif, ReadBackFieldByFieldExceptTheThumbnail) {
    wic image(64, 48);
    wic::exif e = Filled();
    image.Save(Path("r.jpg").c_str(), &e);
    wic::exif r;
    r.mThumbnailWidth = 7;
    wic back(Path("r.jpg").c_str());
    back.LoadExif(Path("r.jpg").c_str(), &r);
    EXPECT_EQ(r.mMake, e.mMake);
    EXPECT_EQ(r.mModel, e.mModel);
    EXPECT_EQ(r.mSoftware, e.mSoftware);
    EXPECT_TRUE(r.mMakerNote == e.mMakerNote);
    EXPECT_EQ(r.mXResolution, e.mXResolution);
    EXPECT_EQ(r.mYResolution, e.mYResolution);
    EXPECT_EQ(r.mResolutionUnit, 2);
    EXPECT_EQ(r.mShutterSpeed, e.mShutterSpeed);
    EXPECT_EQ(r.mDateTime, e.mDateTime);
    EXPECT_EQ(r.mDateTimeOriginal, e.mDateTimeOriginal);
    EXPECT_TRUE(r.mDateTimeDigitized.IsEmpty());
    EXPECT_EQ(r.mPixelXDimension, 64);
    EXPECT_EQ(r.mThumbnailWidth, 7);  // a thumbnail in a file is not read
    EXPECT_TRUE(r.mThumbnail.IsEmpty());
}

TEST_F(WicExif, WhatExiftoolWritesIsReadHere) {
    wic image(32, 32);
    image.Save(Path("x.jpg").c_str(), nullptr);
    qt::Output("exiftool -overwrite_original -Make=Camera -Model='X 100' -Software=Editor -XResolution=300 "
               "-YResolution=300 -ResolutionUnit=cm -DateTimeOriginal='2020:01:02 03:04:05' -ExifImageWidth=32 " +
               mDir.Path("x.jpg"));
    wic::exif r;
    wic loaded;
    loaded.Load(Path("x.jpg").c_str(), &r);
    EXPECT_EQ(r.mMake, string(u"Camera"));
    EXPECT_EQ(r.mModel, string(u"X 100"));
    EXPECT_EQ(r.mSoftware, string(u"Editor"));
    EXPECT_EQ(r.mXResolution, (1LL << 32) | 300);
    EXPECT_EQ(r.mResolutionUnit, 3);
    EXPECT_EQ(r.mDateTimeOriginal, string(u"2020:01:02 03:04:05"));
    EXPECT_EQ(r.mPixelXDimension, 32);
    EXPECT_EQ(loaded.Size().width, 32);
}

TEST_F(WicExif, EmptyFieldsAndOtherFormats) {
    wic image(20, 10);
    wic::exif e;
    image.Save(Path("empty.jpg").c_str(), &e);
    std::string exiv2 = Squeezed(Tool("exiv2 -pa", "empty.jpg"));
    EXPECT_EQ(exiv2.find("MakerNote"), std::string::npos);
    EXPECT_NE(exiv2.find("Exif.Image.Make Ascii 1"), std::string::npos);  // present and empty

    wic::exif untouched = Filled();
    image.Save(Path("p.png").c_str(), &untouched);
    EXPECT_TRUE(untouched.mDateTime.IsEmpty());
    EXPECT_EQ(untouched.mPixelXDimension, 0);
    EXPECT_EQ(Tool("exiv2 -pa", "p.png").find("Exif."), std::string::npos);

    image.Save(Path("plain.jpg").c_str(), nullptr);
    EXPECT_EQ(mDir.Read("plain.jpg").substr(6, 4), "JFIF");  // no APP1, no thumbnail
}

TEST_F(WicExif, FilesWithoutOrWithBrokenExifReadAsEmpty) {
    wic image(16, 16);
    image.Save(Path("none.jpg").c_str(), nullptr);
    wic::exif r = Filled();
    r.mThumbnailWidth = 5;
    image.LoadExif(Path("none.jpg").c_str(), &r);
    EXPECT_TRUE(r.mMake.IsEmpty());
    EXPECT_TRUE(r.mMakerNote.IsEmpty());
    EXPECT_EQ(r.mXResolution, 0);
    EXPECT_EQ(r.mThumbnailWidth, 5);

    std::string jpeg = mDir.Read("none.jpg");
    std::string garbage = "Exif\0\0II*\0\x08\0\0\0\xff\xff\x0f\x01\x02\0\xff\xff\xff\x7f\x10\0\0\0";
    garbage.resize(60, '\xee');
    std::string segment = "\xff\xe1" + std::string{char((garbage.size() + 2) >> 8), char((garbage.size() + 2) & 0xff)} + garbage;
    mDir.Write("broken.jpg", jpeg.substr(0, 2) + segment + jpeg.substr(2));
    wic::exif b;
    wic loaded(Path("broken.jpg").c_str());
    loaded.LoadExif(Path("broken.jpg").c_str(), &b);
    EXPECT_TRUE(b.mMake.IsEmpty());
    EXPECT_EQ(loaded.Size().width, 16);
}

TEST_F(WicExif, EachSaveStampsItsOwnTime) {
    wic image(8, 8);
    wic::exif e;
    image.Save(Path("a.jpg").c_str(), &e);
    string first = e.mDateTime;
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    image.Save(Path("a.jpg").c_str(), &e);
    EXPECT_NE(first, e.mDateTime);
}

TEST_F(WicExif, CopiesOwnOrShareTheirBuffers) {
    wic::exif a = Filled();
    wic::exif copied(a);
    copied.mMakerNote.Fill(0);
    EXPECT_EQ(a.mMakerNote.Get(0), 1);
    wic::exif assigned;
    assigned = a;
    assigned.mMakerNote.Fill(0);
    EXPECT_EQ(a.mMakerNote.Get(0), 0);  // operator= shares the buffers
}
