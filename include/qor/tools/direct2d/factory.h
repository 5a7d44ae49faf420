// direct2d::factory: the one entry to the platform's drawing, text and
// imaging factories, and the stock of named pictures and fonts an
// application loads once and takes private copies of. The application makes one, calls Initialize (after
// CoInitialize on the thread), and ends with Terminate; everything in
// direct2d reaches the factories through factory::Instance().
//
//   new direct2d::factory;
//   direct2d::factory::Instance()->Initialize(D2D1_FACTORY_TYPE_SINGLE_THREADED);
//   ...
//   direct2d::factory::Instance()->Terminate();
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/algorithm/singleton.h"
#include "qor/tools/container/btree.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/direct2d/font.h"
#include "qor/tools/direct2d/path.h"
#include "qor/tools/direct2d/target.h"
#include "qor/tools/direct2d/wic.h"
#include "qor/tools/platform/d2d1.h"
#include "qor/tools/platform/dwrite.h"
#include "qor/tools/platform/wincodec.h"

namespace qor::tools::direct2d {

class factory;

}  // namespace qor::tools::direct2d

namespace qor::tools::algorithm {
extern template class QOR_TOOLS_API singleton<direct2d::factory>;
}  // namespace qor::tools::algorithm

namespace qor::tools::direct2d {

class QOR_TOOLS_API factory : public algorithm::singleton<factory> {
public:
    // Made empty (Initialize makes the factories); copies share them.
    factory() = default;
    factory(factory const &) = default;
    factory &operator=(factory const &) = default;
    ~factory() override = default;

    // Makes the three factories; throws exception "direct2d factory initialize".
    void Initialize(D2D1_FACTORY_TYPE type);
    // A text format of an installed family (size in device-independent
    // pixels); throws "direct2d factory create font".
    font CreateFontW(char16_t const *family, float size, DWRITE_FONT_WEIGHT weight = DWRITE_FONT_WEIGHT_NORMAL,
                     DWRITE_FONT_STYLE style = DWRITE_FONT_STYLE_NORMAL,
                     DWRITE_FONT_STRETCH stretch = DWRITE_FONT_STRETCH_NORMAL);
    // A format matching a GDI font on a context: the installed family
    // fontconfig matches, the weight and style, and the height turned into
    // device-independent pixels at the context's resolution. An empty font
    // for a null context or font; throws "direct2d factory create font".
    font CreateFontW(HDC dc, HFONT gdiFont);
    // A target drawing into `dc` over `rect`; throws "direct2d factory create dc target".
    target<ID2D1DCRenderTarget> CreateRenderTarget(HDC dc, CRect const &rect);
    // A target drawing into a GTK widget. The window and size of the first
    // call in the process are kept and used by every later call, whatever
    // it asks for. Throws "direct2d factory create window target".
    target<ID2D1HwndRenderTarget> CreateRenderTarget(HWND window, int width, int height);
    // Throws "direct2d factory create path geometry".
    path CreatePathGeometry();
    // A bitmap of `target` from a picture file (one reference, the caller's), or null.
    ID2D1Bitmap *LoadBitmapFromFile(ID2D1RenderTarget *target, char16_t const *path);
    // Loads a picture into the stock under `name` (an older one of that name
    // goes); a file that cannot be loaded changes nothing, silently.
    void StockImage(char16_t const *name, char16_t const *path);
    // A private copy of the stocked picture (empty for a name never stocked).
    wic StockImage(char16_t const *name);
    // A regular, normal-width font into the stock; a failure changes nothing, silently.
    void StockFont(char16_t const *name, char16_t const *family, float size, DWRITE_FONT_WEIGHT weight);
    // A new format like the stocked one (empty for a name never stocked).
    font StockFont(char16_t const *name);
    ID2D1Factory *Factory() const noexcept { return mD2dFactory; }
    IDWriteFactory *WriteFactory() const noexcept { return mWriteFactory; }
    IWICImagingFactory *WICFactory() const noexcept { return mWicFactory; }

protected:
    container::comptr<ID2D1Factory> mD2dFactory;
    container::comptr<IDWriteFactory> mWriteFactory;
    container::comptr<IWICImagingFactory> mWicFactory;
    // Declared after the factories, so destroyed before them.
    container::hash<string, wic, container::pif::object, 2> mStockImages;
    container::hash<string, font, container::pif::object, 2> mStockFonts;
};

}  // namespace qor::tools::direct2d
