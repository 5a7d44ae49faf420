#include "wic_factory.h"

#include <cairo.h>

#include <cstring>

#include "codec_formats.h"
#include "file_io.h"
#include "wic_codec.h"
#include "wic_stream.h"

namespace qor::tools::platform::wic {

namespace {

class factory final : public com_object<IWICImagingFactory> {
public:
    HRESULT CreateDecoderFromFilename(char16_t const *path, GUID const *, DWORD access, WICDecodeOptions,
                                      IWICBitmapDecoder **decoder) override {
        if (!decoder) return E_INVALIDARG;
        *decoder = nullptr;
        if (!path || (access & GENERIC_WRITE)) return E_INVALIDARG;
        auto picture = std::make_shared<encoded>();
        if (!ReadWhole(path, picture->mData, picture->mSize)) return HRESULT_FILE_NOT_FOUND;
        return NewDecoder(std::move(picture), decoder);
    }
    HRESULT CreateDecoderFromStream(IStream *source, GUID const *, WICDecodeOptions,
                                    IWICBitmapDecoder **decoder) override {
        if (!decoder) return E_INVALIDARG;
        *decoder = nullptr;
        if (!source) return E_INVALIDARG;
        std::string bytes;
        char chunk[65536];
        ULONG done = 0;
        do {
            if (FAILED(source->Read(chunk, sizeof chunk, &done))) return E_FAIL;
            bytes.append(chunk, done);
        } while (done == sizeof chunk);
        auto picture = std::make_shared<encoded>();
        picture->mData = std::make_unique<char[]>(bytes.size());
        std::memcpy(picture->mData.get(), bytes.data(), bytes.size());
        picture->mSize = bytes.size();
        return NewDecoder(std::move(picture), decoder);
    }
    HRESULT CreateEncoder(REFGUID container, GUID const *, IWICBitmapEncoder **encoder) override {
        return NewEncoder(container, encoder);
    }
    HRESULT CreateFormatConverter(IWICFormatConverter **converter) override {
        return HandOut(NewConverter(), converter);
    }
    HRESULT CreateStream(IWICStream **out) override { return HandOut(new stream, out); }
    HRESULT CreateBitmap(UINT width, UINT height, REFWICPixelFormatGUID format, WICBitmapCreateCacheOption,
                         IWICBitmap **out) override {
        if (!out) return E_INVALIDARG;
        *out = nullptr;
        if (!(format == GUID_WICPixelFormat32bppPBGRA)) return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
        if (width == 0 || height == 0 || width > UINT(codec::kMaxSide) || height > UINT(codec::kMaxSide)) {
            return E_INVALIDARG;
        }
        codec::surface pixels = codec::NewSurface(int(width), int(height));
        return pixels ? HandOut(new bitmap(std::move(pixels)), out) : E_OUTOFMEMORY;
    }
    HRESULT CreateBitmapFromSource(IWICBitmapSource *source, WICBitmapCreateCacheOption option,
                                   IWICBitmap **out) override {
        return BitmapFromSource(source, option, out);
    }
    HRESULT CreateBitmapFromMemory(UINT width, UINT height, REFWICPixelFormatGUID format, UINT stride,
                                   UINT bufferSize, BYTE *buffer, IWICBitmap **out) override {
        if (!out) return E_INVALIDARG;
        *out = nullptr;
        if (!buffer || stride < width * 4 || (height && std::size_t(stride) * (height - 1) + width * 4 > bufferSize)) {
            return E_INVALIDARG;
        }
        IWICBitmap *made = nullptr;
        HRESULT result = CreateBitmap(width, height, format, WICBitmapCacheOnLoad, &made);
        if (FAILED(result)) return result;
        cairo_surface_t *pixels = made->GetCairoSurface();
        for (UINT y = 0; y < height; ++y) {
            std::memcpy(codec::Row(pixels, int(y)), buffer + std::size_t(y) * stride, std::size_t(width) * 4);
        }
        cairo_surface_mark_dirty(pixels);
        *out = made;
        return S_OK;
    }
};

}  // namespace

IWICImagingFactory *NewFactory() { return new factory; }

}  // namespace qor::tools::platform::wic
