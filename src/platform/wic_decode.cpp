// Decoding: a decoder holds the encoded bytes and one frame; the converter
// stands between a frame and the bitmap made from it, as the platform wants,
// and converts nothing, every frame being premultiplied BGRA already.
#include <cairo.h>

#include "wic_codec.h"
#include "wic_metadata.h"

namespace qor::tools::platform::wic {

namespace {

class frame final : public com_object<IWICBitmapFrameDecode, IWICBitmapSource> {
public:
    frame(std::shared_ptr<encoded const> picture, codec::surface pixels, int width, int height,
          std::shared_ptr<metadata const> data, GUID const &container)
        : mPicture(std::move(picture)), mPixels(std::move(pixels)), mWidth(width), mHeight(height),
          mMetadata(std::move(data)), mContainer(container) {}

    HRESULT GetSize(UINT *width, UINT *height) override {
        if (!width || !height) return E_INVALIDARG;
        *width = UINT(mWidth);
        *height = UINT(mHeight);
        return S_OK;
    }
    HRESULT GetPixelFormat(WICPixelFormatGUID *format) override {
        if (!format) return E_INVALIDARG;
        *format = GUID_WICPixelFormat32bppPBGRA;
        return S_OK;
    }
    HRESULT GetResolution(double *dpiX, double *dpiY) override {
        if (!dpiX || !dpiY) return E_INVALIDARG;
        *dpiX = *dpiY = 96;
        return S_OK;
    }
    HRESULT CopyPixels(WICRect const *rect, UINT stride, UINT bufferSize, BYTE *buffer) override {
        if (!mPixels) mPixels = codec::Decode(mPicture->Bytes(), mPicture->mSize);
        return CopySurface(mPixels.get(), rect, stride, bufferSize, buffer);
    }
    HRESULT GetMetadataQueryReader(IWICMetadataQueryReader **reader) override {
        if (!reader) return E_INVALIDARG;
        *reader = nullptr;
        if (!mMetadata) return WINCODEC_ERR_UNSUPPORTEDOPERATION;
        return HandOut(NewReader(mMetadata, mContainer), reader);
    }

    // The first bitmap takes the decoded pixels over; later ones decode again.
    IWICBitmap *MakeBitmap(WICBitmapCreateCacheOption option) {
        if (mPixels) return new bitmap(std::move(mPixels));
        if (option == WICBitmapCacheOnDemand) return new bitmap(mPicture, mWidth, mHeight);
        codec::surface pixels = codec::Decode(mPicture->Bytes(), mPicture->mSize);
        if (!pixels) pixels = codec::NewSurface(mWidth, mHeight);
        return pixels ? new bitmap(std::move(pixels)) : nullptr;
    }

private:
    std::shared_ptr<encoded const> mPicture;
    codec::surface mPixels;
    int mWidth, mHeight;
    std::shared_ptr<metadata const> mMetadata;  // null: the format has none
    GUID mContainer;
};

class decoder final : public com_object<IWICBitmapDecoder> {
public:
    decoder(frame *first, GUID const &container) : mFrame(first), mContainer(container) {}
    ~decoder() override { mFrame->Release(); }

    HRESULT GetContainerFormat(GUID *format) override {
        if (!format) return E_INVALIDARG;
        *format = mContainer;
        return S_OK;
    }
    HRESULT GetFrameCount(UINT *count) override {
        if (!count) return E_INVALIDARG;
        *count = 1;
        return S_OK;
    }
    HRESULT GetFrame(UINT index, IWICBitmapFrameDecode **out) override {
        if (!out) return E_INVALIDARG;
        *out = nullptr;
        if (index != 0) return WINCODEC_ERR_VALUEOUTOFRANGE;
        mFrame->AddRef();
        *out = mFrame;
        return S_OK;
    }

private:
    frame *mFrame;
    GUID mContainer;
};

class converter final : public com_object<IWICFormatConverter, IWICBitmapSource> {
public:
    ~converter() override {
        if (mSource) mSource->Release();
    }
    HRESULT Initialize(IWICBitmapSource *source, REFWICPixelFormatGUID format, WICBitmapDitherType, void *, double,
                       WICBitmapPaletteType) override {
        if (!source) return E_INVALIDARG;
        if (mSource) return WINCODEC_ERR_WRONGSTATE;
        if (!(format == GUID_WICPixelFormat32bppPBGRA)) return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
        source->AddRef();
        mSource = source;
        return S_OK;
    }
    HRESULT CanConvert(REFWICPixelFormatGUID, REFWICPixelFormatGUID to, BOOL *can) override {
        if (!can) return E_INVALIDARG;
        *can = to == GUID_WICPixelFormat32bppPBGRA;
        return S_OK;
    }
    HRESULT GetSize(UINT *width, UINT *height) override {
        return mSource ? mSource->GetSize(width, height) : WINCODEC_ERR_NOTINITIALIZED;
    }
    HRESULT GetPixelFormat(WICPixelFormatGUID *format) override {
        if (!format) return E_INVALIDARG;
        *format = GUID_WICPixelFormat32bppPBGRA;
        return mSource ? S_OK : WINCODEC_ERR_NOTINITIALIZED;
    }
    HRESULT GetResolution(double *dpiX, double *dpiY) override {
        return mSource ? mSource->GetResolution(dpiX, dpiY) : WINCODEC_ERR_NOTINITIALIZED;
    }
    HRESULT CopyPixels(WICRect const *rect, UINT stride, UINT bufferSize, BYTE *buffer) override {
        return mSource ? mSource->CopyPixels(rect, stride, bufferSize, buffer) : WINCODEC_ERR_NOTINITIALIZED;
    }
    IWICBitmapSource *Source() const noexcept { return mSource; }

private:
    IWICBitmapSource *mSource = nullptr;
};

std::shared_ptr<metadata const> MetadataOf(encoded const &picture, codec::format f) {
    if (f == codec::format::bmp || f == codec::format::ico) return nullptr;
    auto data = std::make_shared<metadata>();
    if (f != codec::format::jpeg) return data;
    std::string_view app1 = exif::FindInJpeg(picture.Bytes(), picture.mSize);
    data->mBlock.Parse(reinterpret_cast<unsigned char const *>(app1.data()), app1.size());
    return data;
}

}  // namespace

codec::format FormatOf(GUID const &c) {
    if (c == GUID_ContainerFormatBmp) return codec::format::bmp;
    if (c == GUID_ContainerFormatJpeg) return codec::format::jpeg;
    if (c == GUID_ContainerFormatPng) return codec::format::png;
    if (c == GUID_ContainerFormatIco) return codec::format::ico;
    if (c == GUID_ContainerFormatTiff) return codec::format::tiff;
    if (c == GUID_ContainerFormatGif) return codec::format::gif;
    return codec::format::unknown;
}

GUID ContainerOf(codec::format f) {
    switch (f) {
    case codec::format::bmp: return GUID_ContainerFormatBmp;
    case codec::format::jpeg: return GUID_ContainerFormatJpeg;
    case codec::format::png: return GUID_ContainerFormatPng;
    case codec::format::ico: return GUID_ContainerFormatIco;
    case codec::format::tiff: return GUID_ContainerFormatTiff;
    case codec::format::gif: return GUID_ContainerFormatGif;
    case codec::format::unknown: break;
    }
    return GUID_NULL;
}

HRESULT NewDecoder(std::shared_ptr<encoded const> picture, IWICBitmapDecoder **out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    codec::format f = codec::Sniff(picture->Bytes(), picture->mSize);
    if (f == codec::format::unknown) return WINCODEC_ERR_COMPONENTNOTFOUND;
    int width = 0, height = 0;
    codec::surface pixels;
    if (!(f == codec::format::jpeg && codec::MeasureJpeg(picture->Bytes(), picture->mSize, width, height))) {
        pixels = codec::Decode(picture->Bytes(), picture->mSize);
        if (!pixels) return WINCODEC_ERR_BADIMAGE;
        width = cairo_image_surface_get_width(pixels.get());
        height = cairo_image_surface_get_height(pixels.get());
    }
    auto data = MetadataOf(*picture, f);
    auto *first = new frame(std::move(picture), std::move(pixels), width, height, std::move(data), ContainerOf(f));
    return HandOut(new decoder(first, ContainerOf(f)), out);
}

IWICFormatConverter *NewConverter() { return new converter; }

HRESULT BitmapFromSource(IWICBitmapSource *source, WICBitmapCreateCacheOption option, IWICBitmap **out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (!source) return E_INVALIDARG;
    if (auto *c = dynamic_cast<converter *>(source); c && c->Source()) source = c->Source();
    if (auto *f = dynamic_cast<frame *>(source)) return HandOut(f->MakeBitmap(option), out);
    codec::surface pixels = SurfaceOf(source);
    return pixels ? HandOut(new bitmap(std::move(pixels)), out) : E_OUTOFMEMORY;
}

}  // namespace qor::tools::platform::wic
