#include "qor/tools/direct2d/wic.h"

#include "qor/tools/direct2d/factory.h"
#include "qor/tools/exception.h"

namespace qor::tools::direct2d {

namespace {

constexpr UINT kThumbnailBytes = 57600;  // 160 x 120 x 3

IWICImagingFactory *Imaging() {
    factory *f = factory::Instance();
    return f ? f->WICFactory() : nullptr;
}

void Check(HRESULT result) {
    if (FAILED(result)) throw exception(u"direct2d exception");
}

// Frame 0 of a file, or null.
container::comptr<IWICBitmapFrameDecode> FirstFrame(char16_t const *path) {
    container::comptr<IWICBitmapFrameDecode> frame;
    container::comptr<IWICBitmapDecoder> decoder;
    IWICImagingFactory *imaging = Imaging();
    if (!imaging || !path ||
        FAILED(imaging->CreateDecoderFromFilename(path, nullptr, GENERIC_READ, WICDecodeMetadataCacheOnLoad,
                                                  decoder.Addr()))) {
        return frame;
    }
    decoder->GetFrame(0, frame.Addr());
    return frame;
}

struct extension {
    char16_t const *mName;
    GUID const *mContainer;
};
constexpr extension kExtensions[] = {
    {u"bmp", &GUID_ContainerFormatBmp},   {u"jpg", &GUID_ContainerFormatJpeg}, {u"jpeg", &GUID_ContainerFormatJpeg},
    {u"png", &GUID_ContainerFormatPng},   {u"ico", &GUID_ContainerFormatIco},  {u"tiff", &GUID_ContainerFormatTiff},
    {u"tif", &GUID_ContainerFormatTiff},  {u"gif", &GUID_ContainerFormatGif},
};

}  // namespace

IWICBitmap *wic::decoder::Load(char16_t const *path, exif *record) {
    container::comptr<IWICBitmapFrameDecode> frame = FirstFrame(path);
    IWICImagingFactory *imaging = Imaging();
    if (!frame || !imaging) return nullptr;
    container::comptr<IWICFormatConverter> converter;
    if (FAILED(imaging->CreateFormatConverter(converter.Addr())) ||
        FAILED(converter->Initialize(frame, GUID_WICPixelFormat32bppPBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                     WICBitmapPaletteTypeMedianCut))) {
        return nullptr;
    }
    IWICBitmap *bitmap = nullptr;
    if (FAILED(imaging->CreateBitmapFromSource(converter, WICBitmapCacheOnDemand, &bitmap))) return nullptr;
    if (record) _LoadExif(frame, record);
    return bitmap;
}

void wic::decoder::LoadExif(char16_t const *path, exif *record) {
    container::comptr<IWICBitmapFrameDecode> frame = FirstFrame(path);
    if (frame) _LoadExif(frame, record);
}

void wic::decoder::Trace(char16_t const *path) {
    container::comptr<IWICBitmapFrameDecode> frame = FirstFrame(path);
    if (frame) _TraceMetadata(frame);
}

void wic::decoder::TraceProp(PROPVARIANT &) {}

void wic::decoder::_LoadExif(IWICBitmapFrameDecode *frame, exif *record) {
    container::comptr<IWICMetadataQueryReader> reader;
    if (record && SUCCEEDED(frame->GetMetadataQueryReader(reader.Addr()))) record->Load(reader);
}

void wic::decoder::_TraceMetadata(IWICBitmapFrameDecode *frame) {
    container::comptr<IWICMetadataQueryReader> reader;
    if (SUCCEEDED(frame->GetMetadataQueryReader(reader.Addr()))) _TraceMetadata(reader, string());
}

void wic::decoder::_TraceMetadata(IWICMetadataQueryReader *reader, string const &prefix) {
    container::comptr<IEnumString> names;
    if (FAILED(reader->GetEnumerator(names.Addr()))) return;
    names->Reset();
    char16_t *list[256] = {};
    ULONG count = 0;
    names->Next(256, list, &count);
    for (ULONG i = 0; i < count && list[i]; ++i) {
        string full = prefix + list[i];
        PROPVARIANT value;
        PropVariantInit(&value);
        if (SUCCEEDED(reader->GetMetadataByName(list[i], &value))) {
            TraceProp(value);
            container::comptr<IWICMetadataQueryReader> inner;
            if (value.vt == VT_UNKNOWN && value.punkVal &&
                SUCCEEDED(value.punkVal->QueryInterface(IID_IWICMetadataQueryReader,
                                                        reinterpret_cast<void **>(inner.Addr())))) {
                _TraceMetadata(inner, full);
            }
        }
        PropVariantClear(&value);
    }
    for (ULONG i = 0; i < count; ++i) CoTaskMemFree(list[i]);
}

long wic::encoder::Save(IWICBitmap *bitmap, char16_t const *path, exif *record, float quality) {
    long result = E_FAIL;
    try {
        IWICImagingFactory *imaging = Imaging();
        if (!imaging || !bitmap) throw exception(u"direct2d exception");
        container::comptr<IWICStream> stream;
        Check(imaging->CreateStream(stream.Addr()));
        Check(stream->InitializeFromFilename(path, GENERIC_WRITE));
        container::comptr<IWICBitmapEncoder> platformEncoder;
        _SelectEncoder(path, platformEncoder);
        // An extension that names no format writes nothing: the stream's file never takes the target's place.
        if (!platformEncoder) throw exception(u"direct2d exception");
        Check(platformEncoder->Initialize(stream, WICBitmapEncoderNoCache));
        container::comptr<IWICBitmapFrameEncode> frame;
        container::comptr<IPropertyBag2> bag;
        Check(platformEncoder->CreateNewFrame(frame.Addr(), bag.Addr()));
        _EncodeImageQuality(bag, quality);
        Check(frame->Initialize(bag));
        UINT width = 0, height = 0;
        Check(bitmap->GetSize(&width, &height));
        Check(frame->SetSize(width, height));
        if (mContainer == GUID_ContainerFormatJpeg && record) {
            record->mPixelXDimension = static_cast<unsigned short>(width);
            record->mPixelYDimension = static_cast<unsigned short>(height);
            _Thumbnail(bitmap, record);
            container::comptr<IWICMetadataQueryWriter> writer;
            Check(frame->GetMetadataQueryWriter(writer.Addr()));
            record->Save(writer);
        }
        WICPixelFormatGUID format = GUID_NULL;
        Check(bitmap->GetPixelFormat(&format));
        Check(frame->SetPixelFormat(&format));
        Check(frame->WriteSource(bitmap, nullptr));
        Check(frame->Commit());
        Check(platformEncoder->Commit());
        result = 0;
    } catch (exception const &) {
        // The save failed; the result says so.
    } catch (...) {
    }
    return result;
}

void wic::encoder::_SelectEncoder(char16_t const *path, container::comptr<IWICBitmapEncoder> &platformEncoder) {
    mContainer = GUID_NULL;
    string name(path);
    string suffix = name.Right(u'.');
    for (extension const &e : kExtensions) {
        if (suffix.CompareNoCase(e.mName) != 0) continue;
        mContainer = *e.mContainer;
        IWICImagingFactory *imaging = Imaging();
        if (!imaging) throw exception(u"direct2d exception");
        Check(imaging->CreateEncoder(mContainer, nullptr, platformEncoder.Addr()));
        return;
    }
}

void wic::encoder::_EncodeImageQuality(IPropertyBag2 *bag, float quality) {
    if (!(mContainer == GUID_ContainerFormatJpeg)) return;
    if (!bag) throw exception(u"direct2d exception");
    PROPBAG2 option = {};
    option.pstrName = const_cast<char16_t *>(u"ImageQuality");
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_R4;
    value.fltVal = quality;
    Check(bag->Write(1, &option, &value));
}

void wic::encoder::_Thumbnail(IWICBitmap *bitmap, exif *record) {
    wic thumb = wic::Scale(bitmap, 160.0f, 120.0f);
    try {
        IWICImagingFactory *imaging = Imaging();
        if (record->mThumbnail.Size() != int(kThumbnailBytes)) record->mThumbnail.Size(int(kThumbnailBytes));
        container::comptr<IWICStream> stream;
        Check(imaging->CreateStream(stream.Addr()));
        Check(stream->InitializeFromMemory(record->mThumbnail.Offset(0), kThumbnailBytes));
        container::comptr<IWICBitmapEncoder> platformEncoder;
        Check(imaging->CreateEncoder(mContainer, nullptr, platformEncoder.Addr()));
        Check(platformEncoder->Initialize(stream, WICBitmapEncoderNoCache));
        container::comptr<IWICBitmapFrameEncode> frame;
        container::comptr<IPropertyBag2> bag;
        Check(platformEncoder->CreateNewFrame(frame.Addr(), bag.Addr()));
        Check(frame->Initialize(bag));
        UINT width = 0, height = 0;
        Check(thumb->GetSize(&width, &height));
        Check(frame->SetSize(width, height));
        WICPixelFormatGUID format = GUID_NULL;
        Check(thumb->GetPixelFormat(&format));
        Check(frame->SetPixelFormat(&format));
        Check(frame->WriteSource(thumb, nullptr));
        Check(frame->Commit());
        Check(platformEncoder->Commit());
        std::uint64_t position = 0;
        Check(stream->Seek(0, STREAM_SEEK_CUR, &position));
        record->mThumbnailWidth = static_cast<unsigned short>(width);
        record->mThumbnailHeight = static_cast<unsigned short>(height);
        record->mThumbnail.Size(int(position));
    } catch (exception const &) {
        // No new thumbnail: the save goes on with the buffer as it stands.
    } catch (...) {
    }
}

void wic::encoder::_TraceEncodeFramePropertyBag2(IPropertyBag2 *bag) {
    ULONG count = 0;
    if (!bag || FAILED(bag->CountProperties(&count))) return;
    for (ULONG i = 0; i < count; ++i) {
        PROPBAG2 info = {};
        ULONG done = 0;
        if (FAILED(bag->GetPropertyInfo(i, 1, &info, &done)) || done != 1) continue;
        VARIANT value;
        VariantInit(&value);
        HRESULT error = S_OK;
        bag->Read(1, &info, nullptr, &value, &error);
        VariantClear(&value);
        CoTaskMemFree(info.pstrName);
    }
}

}  // namespace qor::tools::direct2d
