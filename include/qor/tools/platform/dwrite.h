// The text component, COM-shaped with the Windows names, ids, enumerations
// and records; the library lays text out with Pango (fontconfig chooses the
// fonts, falling back per character, so Japanese finds a Japanese font).
// Sizes are in device-independent pixels (1/96 inch). A layout belongs to
// the thread that made it. IDWriteTextLayout::GetPangoLayout gives the
// PangoLayout for anything beyond these calls.
//
//   IDWriteTextFormat *format;
//   write->CreateTextFormat(u"DejaVu Sans", nullptr, DWRITE_FONT_WEIGHT_NORMAL, DWRITE_FONT_STYLE_NORMAL,
//                           DWRITE_FONT_STRETCH_NORMAL, 16.0f, u"", &format);
//   IDWriteTextLayout *layout;
//   write->CreateTextLayout(u"日本語のテキスト", 8, format, 200, 100, &layout);
//   DWRITE_TEXT_METRICS m;
//   layout->GetMetrics(&m);
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/com.h"

extern "C" {
typedef struct _PangoLayout PangoLayout;
}

namespace qor::tools {

enum DWRITE_FACTORY_TYPE : DWORD { DWRITE_FACTORY_TYPE_SHARED = 0, DWRITE_FACTORY_TYPE_ISOLATED = 1 };
enum DWRITE_FONT_WEIGHT : DWORD {
    DWRITE_FONT_WEIGHT_THIN = 100, DWRITE_FONT_WEIGHT_EXTRA_LIGHT = 200, DWRITE_FONT_WEIGHT_LIGHT = 300,
    DWRITE_FONT_WEIGHT_NORMAL = 400, DWRITE_FONT_WEIGHT_MEDIUM = 500, DWRITE_FONT_WEIGHT_SEMI_BOLD = 600,
    DWRITE_FONT_WEIGHT_BOLD = 700, DWRITE_FONT_WEIGHT_EXTRA_BOLD = 800, DWRITE_FONT_WEIGHT_BLACK = 900,
    DWRITE_FONT_WEIGHT_EXTRA_BLACK = 950
};
enum DWRITE_FONT_STYLE : DWORD { DWRITE_FONT_STYLE_NORMAL = 0, DWRITE_FONT_STYLE_OBLIQUE = 1, DWRITE_FONT_STYLE_ITALIC = 2 };
enum DWRITE_FONT_STRETCH : DWORD {
    DWRITE_FONT_STRETCH_UNDEFINED = 0, DWRITE_FONT_STRETCH_ULTRA_CONDENSED = 1, DWRITE_FONT_STRETCH_EXTRA_CONDENSED = 2,
    DWRITE_FONT_STRETCH_CONDENSED = 3, DWRITE_FONT_STRETCH_SEMI_CONDENSED = 4, DWRITE_FONT_STRETCH_NORMAL = 5,
    DWRITE_FONT_STRETCH_SEMI_EXPANDED = 6, DWRITE_FONT_STRETCH_EXPANDED = 7, DWRITE_FONT_STRETCH_EXTRA_EXPANDED = 8,
    DWRITE_FONT_STRETCH_ULTRA_EXPANDED = 9
};
enum DWRITE_TEXT_ALIGNMENT : DWORD { DWRITE_TEXT_ALIGNMENT_LEADING = 0, DWRITE_TEXT_ALIGNMENT_TRAILING = 1,
                                     DWRITE_TEXT_ALIGNMENT_CENTER = 2, DWRITE_TEXT_ALIGNMENT_JUSTIFIED = 3 };
enum DWRITE_PARAGRAPH_ALIGNMENT : DWORD { DWRITE_PARAGRAPH_ALIGNMENT_NEAR = 0, DWRITE_PARAGRAPH_ALIGNMENT_FAR = 1,
                                          DWRITE_PARAGRAPH_ALIGNMENT_CENTER = 2 };
enum DWRITE_WORD_WRAPPING : DWORD { DWRITE_WORD_WRAPPING_WRAP = 0, DWRITE_WORD_WRAPPING_NO_WRAP = 1 };

struct QOR_TOOLS_API DWRITE_TEXT_METRICS {
    float left;
    float top;
    float width;
    float widthIncludingTrailingWhitespace;
    float height;
    float layoutWidth;
    float layoutHeight;
    std::uint32_t maxBidiReorderingDepth;
    std::uint32_t lineCount;
};

inline constexpr IID IID_IDWriteFactory = {0xb859ee5a, 0xd838, 0x4b5b, {0xa2, 0xe8, 0x1a, 0xdc, 0x7d, 0x93, 0xdb, 0x48}};
inline constexpr IID IID_IDWriteTextFormat = {0x9c906818, 0x31d7, 0x4fd3, {0xa1, 0x51, 0x7c, 0x5e, 0x22, 0x5d, 0xb5, 0x5a}};
inline constexpr IID IID_IDWriteTextLayout = {0x53737037, 0x6d14, 0x410b, {0x9b, 0xfe, 0x0b, 0x18, 0x2b, 0xb7, 0x09, 0x61}};

struct QOR_TOOLS_API IDWriteTextFormat : IUnknown {
    static constexpr IID const &iid = IID_IDWriteTextFormat;
    virtual HRESULT SetTextAlignment(DWRITE_TEXT_ALIGNMENT alignment) = 0;
    virtual HRESULT SetParagraphAlignment(DWRITE_PARAGRAPH_ALIGNMENT alignment) = 0;
    virtual HRESULT SetWordWrapping(DWRITE_WORD_WRAPPING wrapping) = 0;
    virtual DWRITE_TEXT_ALIGNMENT GetTextAlignment() = 0;
    virtual DWRITE_PARAGRAPH_ALIGNMENT GetParagraphAlignment() = 0;
    virtual DWRITE_WORD_WRAPPING GetWordWrapping() = 0;
    virtual std::uint32_t GetFontFamilyNameLength() = 0;
    // The family name and its terminator; E_NOT_SUFFICIENT_BUFFER when `size` cannot hold both.
    virtual HRESULT GetFontFamilyName(char16_t *name, std::uint32_t size) = 0;
    virtual DWRITE_FONT_WEIGHT GetFontWeight() = 0;
    virtual DWRITE_FONT_STYLE GetFontStyle() = 0;
    virtual DWRITE_FONT_STRETCH GetFontStretch() = 0;
    virtual float GetFontSize() = 0;

protected:
    ~IDWriteTextFormat() = default;
};

struct QOR_TOOLS_API IDWriteTextLayout : IDWriteTextFormat {
    static constexpr IID const &iid = IID_IDWriteTextLayout;
    virtual HRESULT SetMaxWidth(float width) = 0;
    virtual HRESULT SetMaxHeight(float height) = 0;
    virtual float GetMaxWidth() = 0;
    virtual float GetMaxHeight() = 0;
    virtual HRESULT GetMetrics(DWRITE_TEXT_METRICS *metrics) = 0;
    // The layout Pango measured (no reference added).
    virtual PangoLayout *GetPangoLayout() = 0;

protected:
    ~IDWriteTextLayout() = default;
};

inline constexpr IID IID_IDWriteLocalizedStrings = {0x08256209, 0x099a, 0x4b34, {0xb8, 0x6d, 0xc2, 0x2b, 0x11, 0x0e, 0x77, 0x71}};
inline constexpr IID IID_IDWriteFontFamily = {0xda20d8ef, 0x812a, 0x4c43, {0x98, 0x02, 0x62, 0xec, 0x4a, 0xbd, 0x7a, 0xdd}};
inline constexpr IID IID_IDWriteFont = {0xacd16696, 0x8c14, 0x4f5d, {0x87, 0x7e, 0xfe, 0x3f, 0xc1, 0xd3, 0x27, 0x37}};
inline constexpr IID IID_IDWriteGdiInterop = {0x1edd9491, 0x9853, 0x4299, {0x89, 0x8f, 0x64, 0x32, 0x98, 0x3b, 0x6f, 0x3a}};
inline constexpr HRESULT DWRITE_E_NOFONT = static_cast<HRESULT>(0x88985002u);

struct QOR_TOOLS_API IDWriteLocalizedStrings : IUnknown {
    static constexpr IID const &iid = IID_IDWriteLocalizedStrings;
    virtual std::uint32_t GetCount() = 0;
    virtual HRESULT GetStringLength(std::uint32_t index, std::uint32_t *length) = 0;
    // The string and its terminator; E_NOT_SUFFICIENT_BUFFER when `size` cannot hold both.
    virtual HRESULT GetString(std::uint32_t index, char16_t *text, std::uint32_t size) = 0;

protected:
    ~IDWriteLocalizedStrings() = default;
};

struct QOR_TOOLS_API IDWriteFontFamily : IUnknown {
    static constexpr IID const &iid = IID_IDWriteFontFamily;
    virtual HRESULT GetFamilyNames(IDWriteLocalizedStrings **names) = 0;

protected:
    ~IDWriteFontFamily() = default;
};

struct QOR_TOOLS_API IDWriteFont : IUnknown {
    static constexpr IID const &iid = IID_IDWriteFont;
    virtual HRESULT GetFontFamily(IDWriteFontFamily **family) = 0;
    virtual DWRITE_FONT_WEIGHT GetWeight() = 0;
    virtual DWRITE_FONT_STRETCH GetStretch() = 0;
    virtual DWRITE_FONT_STYLE GetStyle() = 0;

protected:
    ~IDWriteFont() = default;
};

struct tagLOGFONTW;

struct QOR_TOOLS_API IDWriteGdiInterop : IUnknown {
    static constexpr IID const &iid = IID_IDWriteGdiInterop;
    // The installed font that fontconfig matches to the description: its
    // family, the weight, italic as the italic style.
    virtual HRESULT CreateFontFromLOGFONT(tagLOGFONTW const *logfont, IDWriteFont **font) = 0;

protected:
    ~IDWriteGdiInterop() = default;
};

struct QOR_TOOLS_API IDWriteFactory : IUnknown {
    static constexpr IID const &iid = IID_IDWriteFactory;
    // `collection` must be null (the system's fonts); `locale` is kept for the record.
    virtual HRESULT CreateTextFormat(char16_t const *family, IUnknown *collection, DWRITE_FONT_WEIGHT weight,
                                     DWRITE_FONT_STYLE style, DWRITE_FONT_STRETCH stretch, float size,
                                     char16_t const *locale, IDWriteTextFormat **format) = 0;
    virtual HRESULT CreateTextLayout(char16_t const *text, std::uint32_t length, IDWriteTextFormat *format,
                                     float maxWidth, float maxHeight, IDWriteTextLayout **layout) = 0;
    virtual HRESULT GetGdiInterop(IDWriteGdiInterop **interop) = 0;

protected:
    ~IDWriteFactory() = default;
};

QOR_TOOLS_API HRESULT DWriteCreateFactory(DWRITE_FACTORY_TYPE type, REFIID iid, IUnknown **factory);

}  // namespace qor::tools
