#include "qor/tools/direct2d/wic.h"

#include <cstring>

#include "qor/tools/exception.h"
#include "qor/tools/string_converter.h"

namespace qor::tools::direct2d {

namespace {

// The query paths of the fields, in the order they are written.
constexpr char16_t kMake[] = u"/app1/{ushort=0}/{ushort=271}";
constexpr char16_t kModel[] = u"/app1/{ushort=0}/{ushort=272}";
constexpr char16_t kSoftware[] = u"/app1/{ushort=0}/{ushort=305}";
constexpr char16_t kMakerNote[] = u"/app1/{ushort=0}/{ushort=34665}/{ushort=37500}";
constexpr char16_t kXResolution[] = u"/app1/{ushort=0}/{ushort=282}";
constexpr char16_t kYResolution[] = u"/app1/{ushort=0}/{ushort=283}";
constexpr char16_t kResolutionUnit[] = u"/app1/{ushort=0}/{ushort=296}";
constexpr char16_t kShutterSpeed[] = u"/app1/{ushort=0}/{ushort=34665}/{ushort=37377}";
constexpr char16_t kDateTime[] = u"/app1/{ushort=0}/{ushort=306}";
constexpr char16_t kDateTimeOriginal[] = u"/app1/{ushort=0}/{ushort=34665}/{ushort=36867}";
constexpr char16_t kDateTimeDigitized[] = u"/app1/{ushort=0}/{ushort=34665}/{ushort=36868}";
constexpr char16_t kPixelXDimension[] = u"/app1/{ushort=0}/{ushort=34665}/{ushort=40962}";
constexpr char16_t kPixelYDimension[] = u"/app1/{ushort=0}/{ushort=34665}/{ushort=40963}";
constexpr char16_t kOrientation[] = u"/app1/{ushort=0}/{ushort=274}";
constexpr char16_t kYCbCrPositioning[] = u"/app1/{ushort=0}/{ushort=531}";
constexpr char16_t kThumbnail[] = u"/app1/{ushort=1}/{}";
constexpr char16_t kThumbnailLength[] = u"/app1/{ushort=1}/{ushort=514}";
constexpr char16_t kCompression[] = u"/app1/{ushort=1}/{ushort=259}";
constexpr char16_t kThumbnailWidth[] = u"/app1/{ushort=1}/{ushort=256}";
constexpr char16_t kThumbnailHeight[] = u"/app1/{ushort=1}/{ushort=257}";
constexpr char16_t const *kPadding[] = {u"/app1/ifd/PaddingSchema:padding", u"/app1/ifd/exif/PaddingSchema:padding",
                                        u"/app1/thumb/PaddingSchema:padding"};

// A value read by name, cleared when it goes.
struct read_value {
    PROPVARIANT mValue;
    read_value() { PropVariantInit(&mValue); }
    ~read_value() { PropVariantClear(&mValue); }
    bool Read(IWICMetadataQueryReader *reader, char16_t const *path) {
        return reader && SUCCEEDED(reader->GetMetadataByName(path, &mValue));
    }
};

void Write(IWICMetadataQueryWriter *writer, char16_t const *path, PROPVARIANT const &value) {
    if (!writer || FAILED(writer->SetMetadataByName(path, &value))) throw exception(u"direct2d exception");
}

PROPVARIANT Value(VARTYPE type) {
    PROPVARIANT value;
    PropVariantInit(&value);
    value.vt = type;
    return value;
}

}  // namespace

wic::exif::exif(exif const &other)
    : mMake(other.mMake), mModel(other.mModel), mSoftware(other.mSoftware), mDateTime(other.mDateTime),
      mDateTimeOriginal(other.mDateTimeOriginal), mDateTimeDigitized(other.mDateTimeDigitized),
      mXResolution(other.mXResolution), mYResolution(other.mYResolution), mResolutionUnit(other.mResolutionUnit),
      mPixelXDimension(other.mPixelXDimension), mPixelYDimension(other.mPixelYDimension),
      mShutterSpeed(other.mShutterSpeed), mThumbnailWidth(other.mThumbnailWidth),
      mThumbnailHeight(other.mThumbnailHeight) {
    mMakerNote.Copy(other.mMakerNote);
    mThumbnail.Copy(other.mThumbnail);
}

void wic::exif::Load(IWICMetadataQueryReader *reader) {
    try {
        mMake = _LoadExifVT30(reader, kMake);
        mModel = _LoadExifVT30(reader, kModel);
        mSoftware = _LoadExifVT30(reader, kSoftware);
        mMakerNote = _LoadExifVT65(reader, kMakerNote);
        mXResolution = _LoadExifVTI8(reader, kXResolution);
        mYResolution = _LoadExifVTI8(reader, kYResolution);
        mResolutionUnit = _LoadExifVTUI2(reader, kResolutionUnit);
        mShutterSpeed = _LoadExifVTI8(reader, kShutterSpeed);
        mDateTime = _LoadExifVT30(reader, kDateTime);
        mDateTimeOriginal = _LoadExifVT30(reader, kDateTimeOriginal);
        mDateTimeDigitized = _LoadExifVT30(reader, kDateTimeDigitized);
        mPixelXDimension = _LoadExifVTUI2(reader, kPixelXDimension);
        mPixelYDimension = _LoadExifVTUI2(reader, kPixelYDimension);
    } catch (...) {
        // What was read stays; the rest is left as it was.
    }
}

void wic::exif::Save(IWICMetadataQueryWriter *writer) {
    for (char16_t const *padding : kPadding) {
        PROPVARIANT room = Value(VT_UI4);
        room.ulVal = 4096;
        Write(writer, padding, room);
    }
    mDateTime.DateTime(u'/');
    _SaveExifVT30(writer, kMake, mMake);
    _SaveExifVT30(writer, kModel, mModel);
    _SaveExifVT30(writer, kSoftware, mSoftware);
    _SaveExifVT65(writer, kMakerNote, mMakerNote);
    _SaveExifVTI8(writer, kXResolution, mXResolution);
    _SaveExifVTI8(writer, kYResolution, mYResolution);
    _SaveExifVTUI2(writer, kResolutionUnit, mResolutionUnit);
    _SaveExifVTI8(writer, kShutterSpeed, mShutterSpeed);
    _SaveExifVT30(writer, kDateTime, mDateTime);
    _SaveExifVT30(writer, kDateTimeOriginal, mDateTimeOriginal);
    _SaveExifVT30(writer, kDateTimeDigitized, mDateTimeDigitized);
    _SaveExifVTUI2(writer, kPixelXDimension, mPixelXDimension);
    _SaveExifVTUI2(writer, kPixelYDimension, mPixelYDimension);
    _SaveExifVTUI2(writer, kOrientation, 1);
    _SaveExifVTUI2(writer, kYCbCrPositioning, 1);
    _SaveExifVT65(writer, kThumbnail, mThumbnail);
    _SaveExifVTUI4(writer, kThumbnailLength, static_cast<unsigned long>(mThumbnail.Size()));
    _SaveExifVTUI2(writer, kCompression, 6);
    _SaveExifVTUI2(writer, kThumbnailWidth, mThumbnailWidth);
    _SaveExifVTUI2(writer, kThumbnailHeight, mThumbnailHeight);
    for (char16_t const *padding : kPadding) {
        if (!writer || FAILED(writer->RemoveMetadataByName(padding))) throw exception(u"direct2d exception");
    }
}

string wic::exif::_LoadExifVT30(IWICMetadataQueryReader *reader, char16_t const *path) {
    read_value v;
    if (!v.Read(reader, path) || v.mValue.vt != VT_LPSTR || !v.mValue.pszVal) return string();
    string::converter converter;
    return string(converter.Unicode(v.mValue.pszVal));
}

container::buffer wic::exif::_LoadExifVT65(IWICMetadataQueryReader *reader, char16_t const *path) {
    container::buffer data;
    read_value v;
    if (!v.Read(reader, path)) return data;
    if (v.mValue.blob.pBlobData) data.Copy(v.mValue.blob.pBlobData, int(v.mValue.blob.cbSize));
    return data;
}

long long wic::exif::_LoadExifVTI8(IWICMetadataQueryReader *reader, char16_t const *path) {
    read_value v;
    return v.Read(reader, path) ? static_cast<long long>(v.mValue.hVal) : 0;
}

long wic::exif::_LoadExifVTI4(IWICMetadataQueryReader *reader, char16_t const *path) {
    read_value v;
    return v.Read(reader, path) ? long(v.mValue.lVal) : 0;
}

unsigned short wic::exif::_LoadExifVTUI2(IWICMetadataQueryReader *reader, char16_t const *path) {
    read_value v;
    return v.Read(reader, path) ? v.mValue.uiVal : 0;
}

void wic::exif::_SaveExifVT30(IWICMetadataQueryWriter *writer, char16_t const *path, char16_t const *text) {
    string::converter converter;
    char const *bytes = text && *text ? converter.Mbcs(text) : "";
    PROPVARIANT value = Value(VT_LPSTR);
    value.pszVal = const_cast<char *>(bytes ? bytes : "");
    Write(writer, path, value);
}

void wic::exif::_SaveExifVT65(IWICMetadataQueryWriter *writer, char16_t const *path, container::buffer const &data) {
    if (data.IsEmpty()) return;
    PROPVARIANT value = Value(VT_BLOB);
    value.blob.cbSize = ULONG(data.Size());
    value.blob.pBlobData = data.Offset(0);
    Write(writer, path, value);
}

void wic::exif::_SaveExifVTI8(IWICMetadataQueryWriter *writer, char16_t const *path, long long value) {
    PROPVARIANT v = Value(VT_UI8);
    v.uhVal = static_cast<std::uint64_t>(value);
    Write(writer, path, v);
}

void wic::exif::_SaveExifVTUI4(IWICMetadataQueryWriter *writer, char16_t const *path, unsigned long value) {
    PROPVARIANT v = Value(VT_I4);
    v.lVal = static_cast<std::int32_t>(value);
    Write(writer, path, v);
}

void wic::exif::_SaveExifVTUI2(IWICMetadataQueryWriter *writer, char16_t const *path, unsigned short value) {
    PROPVARIANT v = Value(VT_UI2);
    v.uiVal = value;
    Write(writer, path, v);
}

}  // namespace qor::tools::direct2d
