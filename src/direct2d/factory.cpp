#include "qor/tools/direct2d/factory.h"

#include <cstdlib>

#include "qor/tools/exception.h"
#include "platform/d2d_target.h"
#include "direct2d/target_properties.h"

template class qor::tools::algorithm::singleton<qor::tools::direct2d::factory>;

namespace qor::tools::direct2d {

// Each factory is emptied before it is made again; those made before a
// failure stay.
void factory::Initialize(D2D1_FACTORY_TYPE type) {
    if (FAILED(D2D1CreateFactory(type, IID_ID2D1Factory, nullptr, reinterpret_cast<void **>(mD2dFactory.Addr())))) {
        throw exception(u"direct2d factory initialize");
    }
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory2, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                reinterpret_cast<void **>(mWicFactory.Addr())))) {
        throw exception(u"direct2d factory initialize");
    }
    if (FAILED(DWriteCreateFactory(DWRITE_FACTORY_TYPE_SHARED, IID_IDWriteFactory,
                                   reinterpret_cast<IUnknown **>(mWriteFactory.Addr())))) {
        throw exception(u"direct2d factory initialize");
    }
}

font factory::CreateFontW(char16_t const *family, float size, DWRITE_FONT_WEIGHT weight, DWRITE_FONT_STYLE style,
                          DWRITE_FONT_STRETCH stretch) {
    font made;
    if (!mWriteFactory ||
        FAILED(mWriteFactory->CreateTextFormat(family, nullptr, weight, style, stretch, size, u"", made.Addr()))) {
        throw exception(u"direct2d factory create font");
    }
    return made;
}

void factory::StockImage(char16_t const *name, char16_t const *path) {
    try {
        mStockImages.Set(string(name), new wic(path));
    } catch (...) {
        // Not stocked; an older picture of the name stays.
    }
}

wic factory::StockImage(char16_t const *name) {
    wic copy;
    if (wic *stocked = mStockImages.Find(string(name))) copy.Clone(*stocked);
    return copy;
}

void factory::StockFont(char16_t const *name, char16_t const *family, float size, DWRITE_FONT_WEIGHT weight) {
    try {
        mStockFonts.Set(string(name),
                        new font(CreateFontW(family, size, weight, DWRITE_FONT_STYLE_NORMAL, DWRITE_FONT_STRETCH_NORMAL)));
    } catch (...) {
        // Not stocked.
    }
}

font factory::StockFont(char16_t const *name) {
    font *stocked = mStockFonts.Find(string(name));
    return stocked ? stocked->Clone() : font();
}

font factory::CreateFontW(HDC dc, HFONT gdiFont) {
    if (!dc || !gdiFont) return font();
    auto check = [](HRESULT result) {
        if (FAILED(result)) throw exception(u"direct2d factory create font");
    };
    if (!mWriteFactory) throw exception(u"direct2d factory create font");
    container::comptr<IDWriteGdiInterop> interop;
    check(mWriteFactory->GetGdiInterop(interop.Addr()));
    LOGFONTW logfont{};
    GetObjectW(gdiFont, sizeof logfont, &logfont);
    container::comptr<IDWriteFont> matched;
    check(interop->CreateFontFromLOGFONT(&logfont, matched.Addr()));
    container::comptr<IDWriteFontFamily> family;
    check(matched->GetFontFamily(family.Addr()));
    container::comptr<IDWriteLocalizedStrings> names;
    check(family->GetFamilyNames(names.Addr()));
    char16_t name[128] = {};
    check(names->GetString(0, name, 128));
    float size = float(std::abs(MulDiv(logfont.lfHeight, 96, GetDeviceCaps(dc, LOGPIXELSY))));
    font made;
    check(mWriteFactory->CreateTextFormat(name, nullptr, matched->GetWeight(), matched->GetStyle(),
                                          matched->GetStretch(), size, u"", made.Addr()));
    return made;
}

target<ID2D1DCRenderTarget> factory::CreateRenderTarget(HDC dc, CRect const &rect) {
    target<ID2D1DCRenderTarget> t;
    if (!mD2dFactory || FAILED(mD2dFactory->CreateDCRenderTarget(TargetProperties(), t.Addr())) ||
        FAILED(t->BindDC(dc, &rect))) {
        throw exception(u"direct2d factory create dc target");
    }
    return t;
}

// The window's properties are filled on the first call only: one window a
// process. Once that window is destroyed, later calls fail.
target<ID2D1HwndRenderTarget> factory::CreateRenderTarget(HWND window, int width, int height) {
    static D2D1_HWND_RENDER_TARGET_PROPERTIES properties = [&] {
        D2D1_HWND_RENDER_TARGET_PROPERTIES first = D2D1::HwndRenderTargetProperties(
            window, D2D1::SizeU(std::uint32_t(width), std::uint32_t(height)), D2D1_PRESENT_OPTIONS_NONE);
        return first;
    }();
    static bool watched = (platform::d2d::ForgetWhenDestroyed(properties.hwnd), true);
    (void)watched;
    target<ID2D1HwndRenderTarget> t;
    if (!mD2dFactory || FAILED(mD2dFactory->CreateHwndRenderTarget(TargetProperties(), properties, t.Addr()))) {
        throw exception(u"direct2d factory create window target");
    }
    return t;
}

path factory::CreatePathGeometry() {
    path geometry;
    if (!mD2dFactory || FAILED(mD2dFactory->CreatePathGeometry(geometry.Addr()))) {
        throw exception(u"direct2d factory create path geometry");
    }
    return geometry;
}

ID2D1Bitmap *factory::LoadBitmapFromFile(ID2D1RenderTarget *target, char16_t const *file) {
    container::comptr<IWICBitmapDecoder> decoder;
    container::comptr<IWICBitmapFrameDecode> frame;
    container::comptr<IWICFormatConverter> converter;
    ID2D1Bitmap *bitmap = nullptr;
    if (!mWicFactory || !target ||
        FAILED(mWicFactory->CreateDecoderFromFilename(file, nullptr, GENERIC_READ, WICDecodeMetadataCacheOnLoad,
                                                      decoder.Addr())) ||
        FAILED(decoder->GetFrame(0, frame.Addr())) || FAILED(mWicFactory->CreateFormatConverter(converter.Addr())) ||
        FAILED(converter->Initialize(frame, GUID_WICPixelFormat32bppPBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                     WICBitmapPaletteTypeMedianCut)) ||
        FAILED(target->CreateBitmapFromWicBitmap(converter, nullptr, &bitmap))) {
        return nullptr;
    }
    return bitmap;
}

}  // namespace qor::tools::direct2d
