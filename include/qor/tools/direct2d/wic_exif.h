// direct2d::wic::exif: the EXIF fields a picture carries (maker, model,
// software, an opaque maker note, resolutions, dates, pixel size, shutter
// speed, thumbnail), read from and written to a JPEG's APP1 segment through
// the metadata query reader and writer. Fill it and hand it to wic::Save;
// hand an empty one to wic::Load or wic::LoadExif. Rationals are one 64-bit
// value, numerator in the low half. Saving sets mDateTime to the present time
// ("2024/03/09 17:05:33") and makes the thumbnail.
//
// The copy constructor gives the copy its own maker note and thumbnail;
// operator= shares them with the source.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/buffer.h"
#include "qor/tools/direct2d/wic.h"

namespace qor::tools::direct2d {

// The EXIF fields the library reads and writes, with their thumbnail.
class QOR_TOOLS_API wic::exif {
public:
    // Empty fields; copies copy every field.
    exif() = default;
    exif(exif const &other);
    exif &operator=(exif const &) = default;
    virtual ~exif() = default;

    // Reads every field but the thumbnail's; a failure part way is dropped.
    virtual void Load(IWICMetadataQueryReader *reader);
    // Throws exception "direct2d exception" when a value cannot be written.
    virtual void Save(IWICMetadataQueryWriter *writer);

    string mMake;                       // camera maker (IFD0 Make)
    string mModel;                      // camera model (IFD0 Model)
    string mSoftware;                   // IFD0 Software
    container::buffer mMakerNote;       // EXIF MakerNote, as bytes
    string mDateTime;                   // IFD0 DateTime, "YYYY:MM:DD hh:mm:ss"
    string mDateTimeOriginal;           // EXIF DateTimeOriginal
    string mDateTimeDigitized;          // EXIF DateTimeDigitized
    long long mXResolution = 0;         // IFD0 XResolution, the rational as 8 bytes
    long long mYResolution = 0;         // IFD0 YResolution, likewise
    unsigned short mResolutionUnit = 0; // IFD0 ResolutionUnit
    unsigned short mPixelXDimension = 0;  // EXIF PixelXDimension
    unsigned short mPixelYDimension = 0;  // EXIF PixelYDimension
    long long mShutterSpeed = 0;        // EXIF ShutterSpeedValue, the rational as 8 bytes
    container::buffer mThumbnail;       // the thumbnail, encoded in the picture's own format
    unsigned short mThumbnailWidth = 0;   // its width in pixels
    unsigned short mThumbnailHeight = 0;  // its height in pixels

protected:
    string _LoadExifVT30(IWICMetadataQueryReader *reader, char16_t const *path);
    container::buffer _LoadExifVT65(IWICMetadataQueryReader *reader, char16_t const *path);
    long long _LoadExifVTI8(IWICMetadataQueryReader *reader, char16_t const *path);
    long _LoadExifVTI4(IWICMetadataQueryReader *reader, char16_t const *path);
    unsigned short _LoadExifVTUI2(IWICMetadataQueryReader *reader, char16_t const *path);
    void _SaveExifVT30(IWICMetadataQueryWriter *writer, char16_t const *path, char16_t const *text);
    void _SaveExifVT65(IWICMetadataQueryWriter *writer, char16_t const *path, container::buffer const &data);
    // VT_UI8, whatever the name says.
    void _SaveExifVTI8(IWICMetadataQueryWriter *writer, char16_t const *path, long long value);
    // VT_I4, whatever the name says.
    void _SaveExifVTUI4(IWICMetadataQueryWriter *writer, char16_t const *path, unsigned long value);
    void _SaveExifVTUI2(IWICMetadataQueryWriter *writer, char16_t const *path, unsigned short value);
};

}  // namespace qor::tools::direct2d
