// The metadata query reader and writer: the query paths of the EXIF fields and their
// aliases, value types to field types and back, padding, directories as
// nested readers, and paths that name nothing.
#include <gtest/gtest.h>

#include <memory>

#include "platform/wic_metadata.h"
#include "qor/tools/container/sptr.h"

using namespace qor::tools;
using namespace qor::tools::platform;

namespace {

struct value {
    PROPVARIANT mValue;
    value() { PropVariantInit(&mValue); }
    ~value() { PropVariantClear(&mValue); }
};

PROPVARIANT Of(VARTYPE type, std::uint64_t bits) {
    PROPVARIANT v;
    PropVariantInit(&v);
    v.vt = type;
    v.uhVal = bits;
    return v;
}

class Metadata : public ::testing::Test {
protected:
    std::shared_ptr<wic::metadata> mData = std::make_shared<wic::metadata>();
    container::comptr<IWICMetadataQueryWriter> mWriter{wic::NewWriter(mData, GUID_ContainerFormatJpeg)};
};

}  // namespace

TEST_F(Metadata, ValueTypesChooseFieldTypes) {
    char text[] = "Maker";
    PROPVARIANT s = Of(VT_LPSTR, 0);
    s.pszVal = text;
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1/{ushort=0}/{ushort=271}", &s), S_OK);
    PROPVARIANT r = Of(VT_UI8, (3ull << 32) | 900);
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1/ifd/{ushort=282}", &r), S_OK);
    PROPVARIANT l = Of(VT_I4, std::uint32_t(-5));
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1/thumb/{ushort=514}", &l), S_OK);
    PROPVARIANT u = Of(VT_UI2, 40);
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1/ifd/exif/{ushort=40962}", &u), S_OK);

    exif::block const &b = mData->mBlock;
    EXPECT_EQ(b.Find(exif::kIfd0, 271)->mType, exif::kAscii);
    EXPECT_EQ(b.Find(exif::kIfd0, 271)->mData, std::string("Maker\0", 6));
    EXPECT_EQ(b.Find(exif::kIfd0, 282)->mType, exif::kRational);
    EXPECT_EQ(b.Find(exif::kIfd1, 514)->mType, exif::kSLong);
    EXPECT_EQ(b.Find(exif::kExifIfd, 40962)->mType, exif::kShort);

    value back;
    ASSERT_EQ(mWriter->GetMetadataByName(u"/app1/{ushort=0}/{ushort=282}", &back.mValue), S_OK);
    EXPECT_EQ(back.mValue.vt, VT_UI8);
    EXPECT_EQ(back.mValue.uhVal, (3ull << 32) | 900);
    value exifValue;
    ASSERT_EQ(mWriter->GetMetadataByName(u"/app1/{ushort=0}/{ushort=34665}/{ushort=40962}", &exifValue.mValue), S_OK);
    EXPECT_EQ(exifValue.mValue.uiVal, 40);
}

TEST_F(Metadata, ThumbnailAndPaddingHaveTheirOwnPaths) {
    unsigned char jpeg[] = {0xff, 0xd8, 0xff, 0xd9};
    PROPVARIANT blob = Of(VT_BLOB, 0);
    blob.blob.cbSize = sizeof jpeg;
    blob.blob.pBlobData = jpeg;
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1/{ushort=1}/{}", &blob), S_OK);
    EXPECT_EQ(mData->mBlock.Thumbnail().size(), 4u);
    PROPVARIANT padding = Of(VT_UI4, 4096);
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1/ifd/PaddingSchema:padding", &padding), S_OK);
    EXPECT_EQ(mWriter->RemoveMetadataByName(u"/app1/ifd/PaddingSchema:padding"), S_OK);
    EXPECT_EQ(mWriter->RemoveMetadataByName(u"/app1/ifd/PaddingSchema:padding"), WINCODEC_ERR_PROPERTYNOTFOUND);
    EXPECT_EQ(mWriter->RemoveMetadataByName(u"/app1/{ushort=0}/{ushort=999}"), WINCODEC_ERR_PROPERTYNOTFOUND);
}

TEST_F(Metadata, DirectoriesAreNestedReaders) {
    PROPVARIANT u = Of(VT_UI2, 2);
    mWriter->SetMetadataByName(u"/app1/{ushort=0}/{ushort=296}", &u);
    value dir;
    ASSERT_EQ(mWriter->GetMetadataByName(u"/app1/{ushort=0}", &dir.mValue), S_OK);
    ASSERT_EQ(dir.mValue.vt, VT_UNKNOWN);
    container::comptr<IWICMetadataQueryReader> ifd0;
    ASSERT_EQ(dir.mValue.punkVal->QueryInterface(IID_IWICMetadataQueryReader, reinterpret_cast<void **>(ifd0.Addr())),
              S_OK);
    value unit;
    EXPECT_EQ(ifd0->GetMetadataByName(u"/{ushort=296}", &unit.mValue), S_OK);
    EXPECT_EQ(unit.mValue.uiVal, 2);
    UINT length = 0;
    char16_t where[64];
    EXPECT_EQ(ifd0->GetLocation(64, where, &length), S_OK);
    EXPECT_EQ(std::u16string(where), u"/app1/{ushort=0}");
    container::comptr<IEnumString> names;
    ASSERT_EQ(ifd0->GetEnumerator(names.Addr()), S_OK);
    char16_t *name = nullptr;
    ULONG got = 0;
    EXPECT_EQ(names->Next(1, &name, &got), S_OK);
    EXPECT_EQ(std::u16string(name), u"/{ushort=296}");
    CoTaskMemFree(name);
    EXPECT_EQ(names->Next(1, &name, &got), S_FALSE);
}

TEST_F(Metadata, PathsThatNameNothing) {
    value v;
    for (char16_t const *path : {u"", u"/xmp/dc", u"/app1/{ushort=2}/{ushort=1}", u"/app1/{ushort=0}/{ushort=70000}",
                                 u"/app1/{ushort=0}/{ushort=271}/more", u"app1", u"/app1/{ushort=0}/{ushort=}"}) {
        EXPECT_FALSE(SUCCEEDED(mWriter->GetMetadataByName(path, &v.mValue)) && v.mValue.vt != VT_UNKNOWN);
        PropVariantClear(&v.mValue);
    }
    PROPVARIANT u = Of(VT_UI2, 1);
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1", &u), WINCODEC_ERR_INVALIDQUERYREQUEST);
    EXPECT_EQ(mWriter->SetMetadataByName(nullptr, &u), WINCODEC_ERR_INVALIDQUERYREQUEST);
    PROPVARIANT odd = Of(VT_BSTR, 0);
    EXPECT_EQ(mWriter->SetMetadataByName(u"/app1/{ushort=0}/{ushort=271}", &odd), E_INVALIDARG);
}
