// The EXIF block: what it writes is read by two independent programs
// (exiftool, exiv2) with the field types it chose, what exiftool writes is
// read here field by field, big-endian blocks read the same, and damaged
// blocks are read without harm.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

#include "platform/codec.h"
#include "platform/exif_block.h"
#include "support/command.h"
#include "support/temp_dir.h"

using namespace qor::tools::platform;
using qor::tools::testing::temp_dir;
using qor::tools::testing::Have;
using qor::tools::testing::Output;

namespace {

std::string Le16(unsigned v) { return {char(v & 0xff), char(v >> 8)}; }
std::string Le32(std::uint32_t v) { return Le16(v & 0xffff) + Le16(v >> 16); }
std::string Be16(unsigned v) { return {char(v >> 8), char(v & 0xff)}; }
std::string Be32(std::uint32_t v) { return Be16(v >> 16) + Be16(v & 0xffff); }

unsigned char const *Bytes(std::string const &s) { return reinterpret_cast<unsigned char const *>(s.data()); }

std::string Jpeg(int width, int height, std::string const &app1 = {}) {
    auto s = codec::NewSurface(width, height);
    std::string out;
    codec::Encode(codec::format::jpeg, s.get(), {0.8, app1}, out);
    return out;
}


// A block with a field of each kind the imaging layer writes, and a thumbnail.
exif::block Sample(std::string const &thumbnail) {
    exif::block b;
    b.Set(exif::kIfd0, 271, exif::kAscii, 6, std::string("Maker\0", 6));
    b.Set(exif::kIfd0, 282, exif::kRational, 1, Le32(900) + Le32(3));
    b.Set(exif::kIfd0, 296, exif::kShort, 1, Le16(2));
    b.Set(exif::kIfd0, 306, exif::kAscii, 20, std::string("2024/03/09 17:05:33\0", 20));
    b.Set(exif::kExifIfd, 37500, exif::kUndefined, 6, std::string("\x01\x00\xff\x7fMN", 6));
    b.Set(exif::kExifIfd, 40962, exif::kShort, 1, Le16(64));
    b.Set(exif::kExifIfd, 37377, exif::kRational, 1, Le32(7) + Le32(1));
    b.Set(exif::kIfd1, 259, exif::kShort, 1, Le16(6));
    b.Set(exif::kIfd1, 256, exif::kShort, 1, Le16(16));
    b.Set(exif::kIfd1, 514, exif::kSLong, 1, Le32(std::uint32_t(thumbnail.size())));
    b.Thumbnail(thumbnail);
    return b;
}

}  // namespace

TEST(ExifBlock, IndependentReadersSeeTheFieldsWithTheirTypes) {
    if (!Have("exiftool") || !Have("exiv2")) GTEST_SKIP() << "exiftool and exiv2 are installed by scripts/install-deps.sh";
    temp_dir dir;
    std::string thumbnail = Jpeg(16, 12);
    dir.Write("picture.jpg", Jpeg(64, 48, Sample(thumbnail).Build()));
    std::string verbose = Output("exiftool -v3 " + dir.Path("picture.jpg"));
    EXPECT_NE(verbose.find("Make = Maker"), std::string::npos) << verbose;
    EXPECT_NE(verbose.find("XResolution = 300 (900/3)"), std::string::npos);
    EXPECT_NE(verbose.find("(8 bytes, rational64u[1])"), std::string::npos);
    EXPECT_NE(verbose.find("Tag 0x0128 (2 bytes, int16u[1])"), std::string::npos);
    EXPECT_NE(verbose.find("Tag 0x0202 (4 bytes, int32s[1])"), std::string::npos);
    EXPECT_EQ(verbose.find("Warning = [minor] Bad"), std::string::npos) << verbose;

    std::string listed = Output("exiv2 -pa " + dir.Path("picture.jpg"));
    EXPECT_NE(listed.find("Exif.Image.DateTime                          Ascii      20  2024/03/09 17:05:33"),
              std::string::npos) << listed;
    EXPECT_NE(listed.find("Exif.Photo.MakerNote                         Undefined   6  1 0 255 127 77 78"),
              std::string::npos) << listed;
    EXPECT_NE(listed.find("Exif.Photo.PixelXDimension                   Short       1  64"), std::string::npos);
    EXPECT_NE(listed.find("Exif.Thumbnail.ImageWidth                    Short       1  16"), std::string::npos);

    // The thumbnail comes out whole, as the JPEG it was.
    EXPECT_EQ(Output("exiftool -b -ThumbnailImage " + dir.Path("picture.jpg")), thumbnail);
}

TEST(ExifBlock, ReadsWhatExiftoolWrote) {
    if (!Have("exiftool")) GTEST_SKIP() << "exiftool is installed by scripts/install-deps.sh";
    temp_dir dir;
    dir.Write("picture.jpg", Jpeg(40, 30));
    dir.Write("thumb.jpg", Jpeg(8, 6));
    Output("exiftool -overwrite_original -Make=Foo -Model='Bar 2' -XResolution=300 -ResolutionUnit=inches "
        "'-DateTimeOriginal=2024:01:02 03:04:05' -ExifIFD:ExifImageWidth=640 '-ThumbnailImage<=" +
        dir.Path("thumb.jpg") + "' " + dir.Path("picture.jpg"));
    std::string file = dir.Read("picture.jpg");
    std::string_view app1 = exif::FindInJpeg(Bytes(file), file.size());
    ASSERT_FALSE(app1.empty());
    exif::block b;
    ASSERT_TRUE(b.Parse(reinterpret_cast<unsigned char const *>(app1.data()), app1.size()));
    exif::field const *make = b.Find(exif::kIfd0, 271);
    ASSERT_TRUE(make);
    EXPECT_EQ(make->mType, exif::kAscii);
    EXPECT_EQ(make->mData, std::string("Foo\0", 4));
    EXPECT_EQ(b.Find(exif::kIfd0, 272)->mData, std::string("Bar 2\0", 6));
    exif::field const *x = b.Find(exif::kIfd0, 282);
    ASSERT_TRUE(x);
    EXPECT_EQ(x->mType, exif::kRational);
    EXPECT_EQ(x->mData, Le32(300) + Le32(1));
    EXPECT_EQ(b.Find(exif::kIfd0, 296)->mData, Le16(2));
    EXPECT_EQ(b.Find(exif::kExifIfd, 36867)->mData, std::string("2024:01:02 03:04:05\0", 20));
    EXPECT_EQ(b.Find(exif::kExifIfd, 40962)->mData.substr(0, 2), Le16(640));
    EXPECT_EQ(b.Thumbnail(), dir.Read("thumb.jpg"));
}

TEST(ExifBlock, BigEndianBlocksReadAsLittleEndian) {
    // IFD0: XResolution {900, 3} out of line, Orientation 6 inline; no IFD1.
    std::string tiff = "MM" + Be16(42) + Be32(8) + Be16(2) + Be16(282) + Be16(exif::kRational) + Be32(1) + Be32(38) +
                       Be16(274) + Be16(exif::kShort) + Be32(1) + Be16(6) + Be16(0) + Be32(0) + Be32(900) + Be32(3);
    std::string block = std::string("Exif\0\0", 6) + tiff;
    exif::block b;
    ASSERT_TRUE(b.Parse(Bytes(block), block.size()));
    EXPECT_EQ(b.Find(exif::kIfd0, 282)->mData, Le32(900) + Le32(3));
    EXPECT_EQ(b.Find(exif::kIfd0, 274)->mData, Le16(6));
    EXPECT_TRUE(b.Thumbnail().empty());
}

TEST(ExifBlock, BuildThenParseGivesTheSameFields) {
    std::string thumbnail = Jpeg(16, 12);
    exif::block first = Sample(thumbnail);
    std::string built = first.Build();
    exif::block second;
    ASSERT_TRUE(second.Parse(Bytes(built), built.size()));
    for (auto [ifd, tag] : {std::pair{exif::kIfd0, 271}, {exif::kIfd0, 282}, {exif::kExifIfd, 37500},
                            {exif::kExifIfd, 40962}, {exif::kIfd1, 259}, {exif::kIfd1, 514}}) {
        exif::field const *a = first.Find(ifd, std::uint16_t(tag)), *b = second.Find(ifd, std::uint16_t(tag));
        ASSERT_TRUE(b) << tag;
        EXPECT_EQ(a->mType, b->mType);
        EXPECT_EQ(a->mCount, b->mCount);
        EXPECT_EQ(a->mData, b->mData);
    }
    EXPECT_EQ(second.Thumbnail(), thumbnail);
    EXPECT_EQ(second.Build(), built);  // a fixed point
    // Out-of-line values stand at even offsets from the TIFF header.
    exif::block odd;
    odd.Set(exif::kIfd0, 271, exif::kAscii, 5, std::string("Odd!\0", 5));
    odd.Set(exif::kIfd0, 272, exif::kAscii, 7, std::string("Model!\0", 7));
    std::string text = odd.Build();
    EXPECT_EQ(text.find("Model!"), text.find("Odd!") + 6);
}

TEST(ExifBlock, DamagedBlocksAreReadWithoutHarm) {
    exif::block b;
    EXPECT_FALSE(b.Parse(Bytes("Exif"), 4));
    EXPECT_FALSE(b.Parse(Bytes(std::string("Exif\0\0XX*\0\x08\0\0\0", 14)), 14));
    EXPECT_TRUE(exif::FindInJpeg(Bytes("\xff\xd8\xff\xe1\xff\xff"), 6).empty());  // a length past the end
    // A directory that names itself as the next one.
    std::string loop = std::string("Exif\0\0", 6) + "II" + Le16(42) + Le32(8) + Le16(0) + Le32(8);
    EXPECT_TRUE(b.Parse(Bytes(loop), loop.size()));
    std::string built = Sample(Jpeg(16, 12)).Build();
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round) {
        std::string damaged = built.substr(0, random() % (built.size() + 1));
        for (int k = 0; k < 3 && !damaged.empty(); ++k) damaged[random() % damaged.size()] = char(random());
        if (b.Parse(Bytes(damaged), damaged.size())) b.Build();
    }
}
