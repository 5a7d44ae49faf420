// The imaging component's interfaces, COM-shaped, with the Windows names,
// ids, constants and results: the factory, bitmaps and their locks, decoders
// and encoders with their frames, streams, the format converter and the
// metadata query reader and writer. The library implements them over Cairo
// image surfaces and its own codecs (JPEG, PNG, TIFF, GIF, BMP, ICO); make
// the factory with CoCreateInstance(CLSID_WICImagingFactory2, ...) after
// CoInitialize on the thread.
//
// Every bitmap's pixels live in a Cairo ARGB32 image surface: bytes blue,
// green, red, alpha, premultiplied (GUID_WICPixelFormat32bppPBGRA), which
// IWICBitmap::GetCairoSurface hands out for anything beyond these calls.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/cairo_fwd.h"
#include "qor/tools/platform/com.h"
#include "qor/tools/platform/propvariant.h"

namespace qor::tools {

using UINT = std::uint32_t;
using BYTE = std::uint8_t;
using BOOL = int;
using WICPixelFormatGUID = GUID;
using REFWICPixelFormatGUID = GUID const &;
using REFGUID = GUID const &;
using WICInProcPointer = BYTE *;

inline constexpr DWORD GENERIC_READ = 0x80000000u;
inline constexpr DWORD GENERIC_WRITE = 0x40000000u;

struct QOR_TOOLS_API WICRect {
    std::int32_t X;
    std::int32_t Y;
    std::int32_t Width;
    std::int32_t Height;
};

enum WICBitmapLockFlags : DWORD { WICBitmapLockRead = 1, WICBitmapLockWrite = 2 };
enum WICBitmapCreateCacheOption : DWORD { WICBitmapNoCache = 0, WICBitmapCacheOnDemand = 1, WICBitmapCacheOnLoad = 2 };
enum WICDecodeOptions : DWORD { WICDecodeMetadataCacheOnDemand = 0, WICDecodeMetadataCacheOnLoad = 1 };
enum WICBitmapEncoderCacheOption : DWORD { WICBitmapEncoderCacheInMemory = 0, WICBitmapEncoderCacheTempFile = 1,
                                            WICBitmapEncoderNoCache = 2 };
enum WICBitmapDitherType : DWORD { WICBitmapDitherTypeNone = 0, WICBitmapDitherTypeSolid = 0 };
enum WICBitmapPaletteType : DWORD { WICBitmapPaletteTypeCustom = 0, WICBitmapPaletteTypeMedianCut = 1 };

// Results of the imaging component.
inline constexpr HRESULT WINCODEC_ERR_WRONGSTATE = static_cast<HRESULT>(0x88982F04u);
inline constexpr HRESULT WINCODEC_ERR_VALUEOUTOFRANGE = static_cast<HRESULT>(0x88982F05u);
inline constexpr HRESULT WINCODEC_ERR_UNKNOWNIMAGEFORMAT = static_cast<HRESULT>(0x88982F07u);
inline constexpr HRESULT WINCODEC_ERR_NOTINITIALIZED = static_cast<HRESULT>(0x88982F0Cu);
inline constexpr HRESULT WINCODEC_ERR_ALREADYLOCKED = static_cast<HRESULT>(0x88982F0Du);
inline constexpr HRESULT WINCODEC_ERR_PROPERTYNOTFOUND = static_cast<HRESULT>(0x88982F40u);
inline constexpr HRESULT WINCODEC_ERR_PROPERTYNOTSUPPORTED = static_cast<HRESULT>(0x88982F41u);
inline constexpr HRESULT WINCODEC_ERR_COMPONENTNOTFOUND = static_cast<HRESULT>(0x88982F50u);
inline constexpr HRESULT WINCODEC_ERR_BADIMAGE = static_cast<HRESULT>(0x88982F60u);
inline constexpr HRESULT WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT = static_cast<HRESULT>(0x88982F80u);
inline constexpr HRESULT WINCODEC_ERR_UNSUPPORTEDOPERATION = static_cast<HRESULT>(0x88982F81u);
inline constexpr HRESULT WINCODEC_ERR_INVALIDQUERYREQUEST = static_cast<HRESULT>(0x88982F90u);
inline constexpr HRESULT STG_E_MEDIUMFULL = static_cast<HRESULT>(0x80030070u);
inline constexpr HRESULT HRESULT_FILE_NOT_FOUND = static_cast<HRESULT>(0x80070002u);  // HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)

// Pixel formats and containers.
inline constexpr GUID GUID_WICPixelFormat32bppPBGRA = {0x6fddc324, 0x4e03, 0x4bfe, {0xb1, 0x85, 0x3d, 0x77, 0x76, 0x8d, 0xc9, 0x10}};
inline constexpr GUID GUID_WICPixelFormat32bppBGRA = {0x6fddc324, 0x4e03, 0x4bfe, {0xb1, 0x85, 0x3d, 0x77, 0x76, 0x8d, 0xc9, 0x0f}};
inline constexpr GUID GUID_WICPixelFormat24bppBGR = {0x6fddc324, 0x4e03, 0x4bfe, {0xb1, 0x85, 0x3d, 0x77, 0x76, 0x8d, 0xc9, 0x0c}};
inline constexpr GUID GUID_ContainerFormatBmp = {0x0af1d87e, 0xfcfe, 0x4188, {0xbd, 0xeb, 0xa7, 0x90, 0x64, 0x71, 0xcb, 0xe3}};
inline constexpr GUID GUID_ContainerFormatPng = {0x1b7cfaf4, 0x713f, 0x473c, {0xbb, 0xcd, 0x61, 0x37, 0x42, 0x5f, 0xae, 0xaf}};
inline constexpr GUID GUID_ContainerFormatIco = {0xa3a860c4, 0x338f, 0x4c17, {0x91, 0x9a, 0xfb, 0xa4, 0xb5, 0x62, 0x8f, 0x21}};
inline constexpr GUID GUID_ContainerFormatJpeg = {0x19e4a5aa, 0x5662, 0x4fc5, {0xa0, 0xc0, 0x17, 0x58, 0x02, 0x8e, 0x10, 0x57}};
inline constexpr GUID GUID_ContainerFormatTiff = {0x163bcc30, 0xe2e9, 0x4f0b, {0x96, 0x1d, 0xa3, 0xe9, 0xfd, 0xb7, 0x88, 0xa3}};
inline constexpr GUID GUID_ContainerFormatGif = {0x1f8a5601, 0x7d4d, 0x4cbd, {0x9c, 0x82, 0x1b, 0xc8, 0xd4, 0xee, 0xb9, 0xa5}};

inline constexpr CLSID CLSID_WICImagingFactory = {0xcacaf262, 0x9370, 0x4615, {0xa1, 0x3b, 0x9f, 0x55, 0x39, 0xda, 0x4c, 0x0a}};
inline constexpr CLSID CLSID_WICImagingFactory2 = {0x317d06e8, 0x5f24, 0x433d, {0xbd, 0xf7, 0x79, 0xce, 0x68, 0xd8, 0xab, 0xc2}};

inline constexpr IID IID_IWICImagingFactory = {0xec5ec8a9, 0xc395, 0x4314, {0x9c, 0x77, 0x54, 0xd7, 0xa9, 0x35, 0xff, 0x70}};
inline constexpr IID IID_IWICBitmapSource = {0x00000120, 0xa8f2, 0x4877, {0xba, 0x0a, 0xfd, 0x2b, 0x66, 0x45, 0xfb, 0x94}};
inline constexpr IID IID_IWICBitmap = {0x00000121, 0xa8f2, 0x4877, {0xba, 0x0a, 0xfd, 0x2b, 0x66, 0x45, 0xfb, 0x94}};
inline constexpr IID IID_IWICBitmapLock = {0x00000123, 0xa8f2, 0x4877, {0xba, 0x0a, 0xfd, 0x2b, 0x66, 0x45, 0xfb, 0x94}};
inline constexpr IID IID_IWICFormatConverter = {0x00000301, 0xa8f2, 0x4877, {0xba, 0x0a, 0xfd, 0x2b, 0x66, 0x45, 0xfb, 0x94}};
inline constexpr IID IID_IWICBitmapEncoder = {0x00000103, 0xa8f2, 0x4877, {0xba, 0x0a, 0xfd, 0x2b, 0x66, 0x45, 0xfb, 0x94}};
inline constexpr IID IID_IWICBitmapFrameEncode = {0x00000105, 0xa8f2, 0x4877, {0xba, 0x0a, 0xfd, 0x2b, 0x66, 0x45, 0xfb, 0x94}};
inline constexpr IID IID_IWICBitmapDecoder = {0x9edde9e7, 0x8dee, 0x47ea, {0x99, 0xdf, 0xe6, 0xfa, 0xf2, 0xed, 0x44, 0xbf}};
inline constexpr IID IID_IWICBitmapFrameDecode = {0x3b16811b, 0x6a43, 0x4ec9, {0xa8, 0x13, 0x3d, 0x93, 0x0c, 0x13, 0xb9, 0x40}};
inline constexpr IID IID_IWICStream = {0x135ff860, 0x22b7, 0x4ddf, {0xb0, 0xf6, 0x21, 0x8f, 0x4f, 0x29, 0x9a, 0x43}};
inline constexpr IID IID_IWICMetadataQueryReader = {0x30989668, 0xe1c9, 0x4597, {0xb3, 0x95, 0x45, 0x8e, 0xed, 0xb8, 0x08, 0xdf}};
inline constexpr IID IID_IWICMetadataQueryWriter = {0xa721791a, 0x0def, 0x4d06, {0xbd, 0x91, 0x21, 0x18, 0xbf, 0x1d, 0xb1, 0x0b}};

struct QOR_TOOLS_API IWICBitmapSource : IUnknown {
    static constexpr IID const &iid = IID_IWICBitmapSource;
    virtual HRESULT GetSize(UINT *width, UINT *height) = 0;
    virtual HRESULT GetPixelFormat(WICPixelFormatGUID *format) = 0;
    virtual HRESULT GetResolution(double *dpiX, double *dpiY) = 0;
    // Copies `rect` (null: all) as 32bppPBGRA rows of `stride` bytes.
    virtual HRESULT CopyPixels(WICRect const *rect, UINT stride, UINT bufferSize, BYTE *buffer) = 0;

protected:
    ~IWICBitmapSource() = default;
};

struct QOR_TOOLS_API IWICBitmapLock : IUnknown {
    static constexpr IID const &iid = IID_IWICBitmapLock;
    virtual HRESULT GetSize(UINT *width, UINT *height) = 0;
    virtual HRESULT GetStride(UINT *stride) = 0;
    virtual HRESULT GetDataPointer(UINT *size, WICInProcPointer *data) = 0;
    virtual HRESULT GetPixelFormat(WICPixelFormatGUID *format) = 0;

protected:
    ~IWICBitmapLock() = default;
};

struct QOR_TOOLS_API IWICBitmap : IWICBitmapSource {
    static constexpr IID const &iid = IID_IWICBitmap;
    // Any number of read locks, or one write lock: a lock that conflicts with
    // an open one fails with WINCODEC_ERR_ALREADYLOCKED.
    virtual HRESULT Lock(WICRect const *rect, DWORD flags, IWICBitmapLock **lock) = 0;
    virtual HRESULT SetResolution(double dpiX, double dpiY) = 0;
    // The surface that holds the pixels (no reference added); flush it before
    // reading it directly and mark it dirty after writing.
    virtual cairo_surface_t *GetCairoSurface() = 0;

protected:
    ~IWICBitmap() = default;
};

struct QOR_TOOLS_API IWICFormatConverter : IWICBitmapSource {
    static constexpr IID const &iid = IID_IWICFormatConverter;
    virtual HRESULT Initialize(IWICBitmapSource *source, REFWICPixelFormatGUID format, WICBitmapDitherType dither,
                               void *palette, double alphaThresholdPercent, WICBitmapPaletteType paletteType) = 0;
    virtual HRESULT CanConvert(REFWICPixelFormatGUID from, REFWICPixelFormatGUID to, BOOL *can) = 0;

protected:
    ~IWICFormatConverter() = default;
};

struct QOR_TOOLS_API IWICMetadataQueryReader : IUnknown {
    static constexpr IID const &iid = IID_IWICMetadataQueryReader;
    virtual HRESULT GetContainerFormat(GUID *format) = 0;
    // The path of this reader from the root ("/app1/{ushort=0}"), as
    // GetLocation of the platform: a null buffer asks for the length.
    virtual HRESULT GetLocation(UINT max, char16_t *location, UINT *length) = 0;
    // A value by its query path, relative to this reader. A directory comes
    // as VT_UNKNOWN holding a reader on it.
    virtual HRESULT GetMetadataByName(char16_t const *name, PROPVARIANT *value) = 0;
    // The names of this level ("/app1", "/{ushort=271}", ...).
    virtual HRESULT GetEnumerator(IEnumString **names) = 0;

protected:
    ~IWICMetadataQueryReader() = default;
};

struct QOR_TOOLS_API IWICMetadataQueryWriter : IWICMetadataQueryReader {
    static constexpr IID const &iid = IID_IWICMetadataQueryWriter;
    virtual HRESULT SetMetadataByName(char16_t const *name, PROPVARIANT const *value) = 0;
    virtual HRESULT RemoveMetadataByName(char16_t const *name) = 0;

protected:
    ~IWICMetadataQueryWriter() = default;
};

struct QOR_TOOLS_API IWICBitmapFrameDecode : IWICBitmapSource {
    static constexpr IID const &iid = IID_IWICBitmapFrameDecode;
    // JPEG, PNG, TIFF and GIF frames have a reader; BMP and ICO answer
    // WINCODEC_ERR_UNSUPPORTEDOPERATION.
    virtual HRESULT GetMetadataQueryReader(IWICMetadataQueryReader **reader) = 0;

protected:
    ~IWICBitmapFrameDecode() = default;
};

struct QOR_TOOLS_API IWICBitmapDecoder : IUnknown {
    static constexpr IID const &iid = IID_IWICBitmapDecoder;
    virtual HRESULT GetContainerFormat(GUID *format) = 0;
    // The library reads only the first frame or page: the count is 1.
    virtual HRESULT GetFrameCount(UINT *count) = 0;
    virtual HRESULT GetFrame(UINT index, IWICBitmapFrameDecode **frame) = 0;

protected:
    ~IWICBitmapDecoder() = default;
};

struct QOR_TOOLS_API IWICStream : IStream {
    static constexpr IID const &iid = IID_IWICStream;
    // GENERIC_WRITE writes a new file beside the named one, which takes its
    // place when the encoder writing into it commits; an encoder that never
    // commits leaves the named file as it was. GENERIC_READ reads the file.
    virtual HRESULT InitializeFromFilename(char16_t const *path, DWORD access) = 0;
    // A fixed block of memory: a write beyond its end fails with STG_E_MEDIUMFULL.
    virtual HRESULT InitializeFromMemory(BYTE *memory, DWORD size) = 0;

protected:
    ~IWICStream() = default;
};

struct QOR_TOOLS_API IWICBitmapFrameEncode : IUnknown {
    static constexpr IID const &iid = IID_IWICBitmapFrameEncode;
    virtual HRESULT Initialize(IPropertyBag2 *options) = 0;
    virtual HRESULT SetSize(UINT width, UINT height) = 0;
    virtual HRESULT SetResolution(double dpiX, double dpiY) = 0;
    // Answers in `format` the pixel format the encoder will write.
    virtual HRESULT SetPixelFormat(WICPixelFormatGUID *format) = 0;
    virtual HRESULT WritePixels(UINT lines, UINT stride, UINT bufferSize, BYTE *pixels) = 0;
    virtual HRESULT WriteSource(IWICBitmapSource *source, WICRect *rect) = 0;
    virtual HRESULT Commit() = 0;
    // JPEG frames only: the EXIF block written before the pixels.
    virtual HRESULT GetMetadataQueryWriter(IWICMetadataQueryWriter **writer) = 0;

protected:
    ~IWICBitmapFrameEncode() = default;
};

struct QOR_TOOLS_API IWICBitmapEncoder : IUnknown {
    static constexpr IID const &iid = IID_IWICBitmapEncoder;
    virtual HRESULT Initialize(IStream *stream, WICBitmapEncoderCacheOption option) = 0;
    virtual HRESULT GetContainerFormat(GUID *format) = 0;
    // One frame: a second one fails with WINCODEC_ERR_WRONGSTATE. The JPEG
    // encoder's options hold "ImageQuality" (VT_R4, 0 to 1, 0.9 by default).
    virtual HRESULT CreateNewFrame(IWICBitmapFrameEncode **frame, IPropertyBag2 **options) = 0;
    virtual HRESULT Commit() = 0;

protected:
    ~IWICBitmapEncoder() = default;
};

struct QOR_TOOLS_API IWICImagingFactory : IUnknown {
    static constexpr IID const &iid = IID_IWICImagingFactory;
    virtual HRESULT CreateDecoderFromFilename(char16_t const *path, GUID const *vendor, DWORD access,
                                              WICDecodeOptions options, IWICBitmapDecoder **decoder) = 0;
    virtual HRESULT CreateDecoderFromStream(IStream *stream, GUID const *vendor, WICDecodeOptions options,
                                            IWICBitmapDecoder **decoder) = 0;
    virtual HRESULT CreateEncoder(REFGUID container, GUID const *vendor, IWICBitmapEncoder **encoder) = 0;
    virtual HRESULT CreateFormatConverter(IWICFormatConverter **converter) = 0;
    virtual HRESULT CreateStream(IWICStream **stream) = 0;
    // Only GUID_WICPixelFormat32bppPBGRA; the pixels start transparent black.
    virtual HRESULT CreateBitmap(UINT width, UINT height, REFWICPixelFormatGUID format,
                                 WICBitmapCreateCacheOption option, IWICBitmap **bitmap) = 0;
    // WICBitmapCacheOnDemand on a decoded frame decodes at the first use of
    // the pixels (a JPEG whose first use is a large reduction at a reduced size).
    virtual HRESULT CreateBitmapFromSource(IWICBitmapSource *source, WICBitmapCreateCacheOption option,
                                           IWICBitmap **bitmap) = 0;
    virtual HRESULT CreateBitmapFromMemory(UINT width, UINT height, REFWICPixelFormatGUID format, UINT stride,
                                           UINT bufferSize, BYTE *buffer, IWICBitmap **bitmap) = 0;

protected:
    ~IWICImagingFactory() = default;
};

}  // namespace qor::tools
