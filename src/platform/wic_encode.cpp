// Encoding: one frame per encoder, written into the encoder's stream when the
// frame commits; the JPEG frame takes its quality from the options bag and
// its EXIF block from the metadata writer, written before the pixels.
#include <cairo.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "wic_codec.h"
#include "wic_metadata.h"
#include "codec_formats.h"
#include "wic_stream.h"

namespace qor::tools::platform::wic {

namespace {

constexpr char16_t kImageQuality[] = u"ImageQuality";
constexpr float kDefaultQuality = 0.9f;

// The options of a frame: for JPEG the one property "ImageQuality".
class options_bag final : public com_object<IPropertyBag2> {
public:
    explicit options_bag(bool jpeg) : mJpeg(jpeg) {}

    HRESULT Read(ULONG count, PROPBAG2 *bags, IErrorLog *, VARIANT *values, HRESULT *errors) override {
        if (!bags || !values) return E_INVALIDARG;
        HRESULT result = S_OK;
        for (ULONG i = 0; i < count; ++i) {
            VariantInit(&values[i]);
            HRESULT one = IsQuality(bags[i]) ? S_OK : WINCODEC_ERR_PROPERTYNOTFOUND;
            if (one == S_OK) {
                values[i].vt = VT_R4;
                values[i].fltVal = mQuality;
            }
            if (errors) errors[i] = one;
            if (FAILED(one)) result = E_FAIL;
        }
        return result;
    }
    HRESULT Write(ULONG count, PROPBAG2 *bags, VARIANT *values) override {
        if (!bags || !values) return E_INVALIDARG;
        for (ULONG i = 0; i < count; ++i) {
            if (!IsQuality(bags[i])) return WINCODEC_ERR_PROPERTYNOTSUPPORTED;
            if (values[i].vt != VT_R4 || !(values[i].fltVal >= 0 && values[i].fltVal <= 1)) return E_INVALIDARG;
            mQuality = values[i].fltVal;
        }
        return S_OK;
    }
    HRESULT CountProperties(ULONG *count) override {
        if (!count) return E_INVALIDARG;
        *count = mJpeg ? 1 : 0;
        return S_OK;
    }
    HRESULT GetPropertyInfo(ULONG first, ULONG count, PROPBAG2 *infos, ULONG *done) override {
        if (!infos || !done) return E_INVALIDARG;
        *done = 0;
        if (!mJpeg || first != 0 || count == 0) return WINCODEC_ERR_VALUEOUTOFRANGE;
        std::memset(infos, 0, sizeof *infos);
        infos->vt = VT_R4;
        infos->pstrName = static_cast<char16_t *>(CoTaskMemAlloc(sizeof kImageQuality));
        if (infos->pstrName) std::memcpy(infos->pstrName, kImageQuality, sizeof kImageQuality);
        *done = 1;
        return S_OK;
    }
    float Quality() const noexcept { return mQuality; }

private:
    bool IsQuality(PROPBAG2 const &bag) const {
        return mJpeg && bag.pstrName && std::u16string_view(bag.pstrName) == kImageQuality;
    }
    bool mJpeg;
    float mQuality = kDefaultQuality;
};

class encoder;

class frame_encode final : public com_object<IWICBitmapFrameEncode> {
public:
    frame_encode(encoder *owner, codec::format f, options_bag *options);
    ~frame_encode() override;

    HRESULT Initialize(IPropertyBag2 *options) override {
        if (mInitialized) return WINCODEC_ERR_WRONGSTATE;
        if (auto *bag = dynamic_cast<options_bag *>(options)) mQuality = bag->Quality();
        mInitialized = true;
        return S_OK;
    }
    HRESULT SetSize(UINT width, UINT height) override {
        if (!mInitialized || mPixels) return WINCODEC_ERR_WRONGSTATE;
        if (width == 0 || height == 0 || width > UINT(codec::kMaxSide) || height > UINT(codec::kMaxSide)) {
            return E_INVALIDARG;
        }
        mWidth = int(width);
        mHeight = int(height);
        return S_OK;
    }
    HRESULT SetResolution(double dpiX, double dpiY) override {
        return dpiX > 0 && dpiY > 0 ? S_OK : E_INVALIDARG;
    }
    HRESULT SetPixelFormat(WICPixelFormatGUID *format) override {
        if (!format) return E_INVALIDARG;
        if (!mInitialized) return WINCODEC_ERR_WRONGSTATE;
        *format = mFormat == codec::format::jpeg ? GUID_WICPixelFormat24bppBGR : GUID_WICPixelFormat32bppBGRA;
        return S_OK;
    }
    HRESULT WritePixels(UINT lines, UINT stride, UINT bufferSize, BYTE *pixels) override;
    HRESULT WriteSource(IWICBitmapSource *source, WICRect *rect) override;
    HRESULT Commit() override;
    HRESULT GetMetadataQueryWriter(IWICMetadataQueryWriter **writer) override {
        if (!writer) return E_INVALIDARG;
        *writer = nullptr;
        if (mFormat != codec::format::jpeg) return WINCODEC_ERR_UNSUPPORTEDOPERATION;
        return HandOut(NewWriter(mMetadata, GUID_ContainerFormatJpeg), writer);
    }

private:
    HRESULT Take(cairo_surface_t *pixels);

    encoder *mOwner;
    codec::format mFormat;
    bool mInitialized = false;
    bool mCommitted = false;
    float mQuality = kDefaultQuality;
    int mWidth = 0, mHeight = 0;
    int mLines = 0;  // rows given by WritePixels
    codec::surface mPixels;
    std::shared_ptr<metadata> mMetadata = std::make_shared<metadata>();
};

class encoder final : public com_object<IWICBitmapEncoder> {
public:
    explicit encoder(codec::format f) : mFormat(f) {}
    ~encoder() override {
        if (mStream) mStream->Release();
    }

    HRESULT Initialize(IStream *target, WICBitmapEncoderCacheOption) override {
        if (!target) return E_INVALIDARG;
        if (mStream) return WINCODEC_ERR_WRONGSTATE;
        target->AddRef();
        mStream = target;
        return S_OK;
    }
    HRESULT GetContainerFormat(GUID *format) override {
        if (!format) return E_INVALIDARG;
        *format = ContainerOf(mFormat);
        return S_OK;
    }
    HRESULT CreateNewFrame(IWICBitmapFrameEncode **frame, IPropertyBag2 **options) override {
        if (!frame) return E_INVALIDARG;
        *frame = nullptr;
        if (!mStream || mFrameMade) return WINCODEC_ERR_WRONGSTATE;
        auto *bag = new options_bag(mFormat == codec::format::jpeg);
        mFrameMade = true;
        *frame = new frame_encode(this, mFormat, bag);
        if (options) *options = bag;
        else bag->Release();
        return S_OK;
    }
    HRESULT Commit() override {
        if (!mFrameWritten || mCommitted) return WINCODEC_ERR_WRONGSTATE;
        mCommitted = true;
        auto *file = dynamic_cast<stream *>(mStream);
        return !file || file->Finish() ? S_OK : E_FAIL;
    }

    HRESULT _WriteFrame(std::string const &bytes) {
        ULONG done = 0;
        HRESULT result = mStream->Write(bytes.data(), ULONG(bytes.size()), &done);
        if (SUCCEEDED(result)) mFrameWritten = true;
        return result;
    }

private:
    codec::format mFormat;
    IStream *mStream = nullptr;
    bool mFrameMade = false;
    bool mFrameWritten = false;
    bool mCommitted = false;
};

frame_encode::frame_encode(encoder *owner, codec::format f, options_bag *options)
    : mOwner(owner), mFormat(f), mQuality(options->Quality()) {
    mOwner->AddRef();
}

frame_encode::~frame_encode() { mOwner->Release(); }

HRESULT frame_encode::WritePixels(UINT lines, UINT stride, UINT bufferSize, BYTE *pixels) {
    if (!pixels) return E_INVALIDARG;
    if (!mWidth || mCommitted) return WINCODEC_ERR_WRONGSTATE;
    std::size_t row = std::size_t(mWidth) * 4;
    if (lines > UINT(mHeight - mLines) || stride < row || (lines && std::size_t(stride) * (lines - 1) + row > bufferSize)) {
        return E_INVALIDARG;
    }
    if (!mPixels) mPixels = codec::NewSurface(mWidth, mHeight);
    if (!mPixels) return E_OUTOFMEMORY;
    for (UINT y = 0; y < lines; ++y, ++mLines) {
        std::memcpy(codec::Row(mPixels.get(), mLines), pixels + std::size_t(y) * stride, row);
    }
    cairo_surface_mark_dirty(mPixels.get());
    return S_OK;
}

HRESULT frame_encode::WriteSource(IWICBitmapSource *source, WICRect *rect) {
    if (!source) return E_INVALIDARG;
    if (!mWidth || mCommitted || mPixels) return WINCODEC_ERR_WRONGSTATE;
    UINT width = 0, height = 0;
    if (FAILED(source->GetSize(&width, &height))) return E_INVALIDARG;
    WICRect area = rect ? *rect : WICRect{0, 0, int(width), int(height)};
    if (area.Width != mWidth || area.Height != mHeight) return E_INVALIDARG;
    // A bitmap of the library's own is encoded from its surface as it stands.
    auto *own = dynamic_cast<bitmap *>(source);
    if (own && !rect) {
        cairo_surface_t *pixels = own->GetCairoSurface();
        if (!pixels) return E_OUTOFMEMORY;
        mPixels.reset(cairo_surface_reference(pixels));
    } else {
        mPixels = codec::NewSurface(mWidth, mHeight);
        if (!mPixels) return E_OUTOFMEMORY;
        UINT stride = UINT(cairo_image_surface_get_stride(mPixels.get()));
        HRESULT copied = source->CopyPixels(&area, stride, stride * UINT(mHeight),
                                            cairo_image_surface_get_data(mPixels.get()));
        if (FAILED(copied)) return copied;
        cairo_surface_mark_dirty(mPixels.get());
    }
    mLines = mHeight;
    return S_OK;
}

HRESULT frame_encode::Commit() {
    if (mCommitted || !mPixels || mLines != mHeight) return WINCODEC_ERR_WRONGSTATE;
    codec::options o;
    o.mQuality = mQuality;
    if (mFormat == codec::format::jpeg && !mMetadata->mBlock.IsEmpty()) o.mApp1 = mMetadata->mBlock.Build();
    std::string bytes;
    if (!codec::Encode(mFormat, mPixels.get(), o, bytes)) return E_FAIL;
    mPixels.reset();
    mCommitted = true;
    return mOwner->_WriteFrame(bytes);
}

}  // namespace

HRESULT NewEncoder(GUID const &container, IWICBitmapEncoder **out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    codec::format f = FormatOf(container);
    if (f == codec::format::unknown) return WINCODEC_ERR_COMPONENTNOTFOUND;
    return HandOut(new encoder(f), out);
}

}  // namespace qor::tools::platform::wic
