// The platform's window and drawing handles as the library stands them in:
// a device context (HDC) is a cairo_t *, a window (HWND) a GtkWidget * and
// a font (HFONT) a PangoFontDescription *; and the few GDI calls on them that
// the drawing layers make.
#pragma once

#include <cstdint>

#include "qor/tools/export.h"
#include "qor/tools/platform/cairo_fwd.h"
#include "qor/tools/platform/geometry.h"

extern "C" {
typedef struct _GtkWidget GtkWidget;
typedef struct _PangoFontDescription PangoFontDescription;
}

namespace qor::tools {

using HDC = cairo_t *;
using HWND = GtkWidget *;
using RECT = CRect;

inline constexpr int LF_FACESIZE = 32;

// A GDI font's description, in the Windows layout.
struct tagLOGFONTW {
    std::int32_t lfHeight;
    std::int32_t lfWidth;
    std::int32_t lfEscapement;
    std::int32_t lfOrientation;
    std::int32_t lfWeight;
    std::uint8_t lfItalic;
    std::uint8_t lfUnderline;
    std::uint8_t lfStrikeOut;
    std::uint8_t lfCharSet;
    std::uint8_t lfOutPrecision;
    std::uint8_t lfClipPrecision;
    std::uint8_t lfQuality;
    std::uint8_t lfPitchAndFamily;
    char16_t lfFaceName[LF_FACESIZE];
};
using LOGFONTW = tagLOGFONTW;

// The same in 8-bit characters: the face name in the locale's encoding.
struct tagLOGFONTA {
    std::int32_t lfHeight;
    std::int32_t lfWidth;
    std::int32_t lfEscapement;
    std::int32_t lfOrientation;
    std::int32_t lfWeight;
    std::uint8_t lfItalic;
    std::uint8_t lfUnderline;
    std::uint8_t lfStrikeOut;
    std::uint8_t lfCharSet;
    std::uint8_t lfOutPrecision;
    std::uint8_t lfClipPrecision;
    std::uint8_t lfQuality;
    std::uint8_t lfPitchAndFamily;
    char lfFaceName[LF_FACESIZE];
};
using LOGFONTA = tagLOGFONTA;

using HFONT = PangoFontDescription *;
using HBITMAP = cairo_surface_t *;
using HGDIOBJ = void *;

// The framework's wrapper of a GDI handle: only the handle is read.
struct QOR_TOOLS_API CGdiObject {
    HGDIOBJ m_hObject = nullptr;
    HGDIOBJ GetSafeHandle() const { return m_hObject; }
};

inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;

// LOGPIXELSX and LOGPIXELSY: the screen's resolution for a context on a
// window, 96 per inch for any other, times the device scale of the context's
// surface (a surface of scale 1.25 is 120 per inch); 0 for other indexes.
QOR_TOOLS_API int GetDeviceCaps(HDC dc, int index);
// Fills a LOGFONTW from a font: the family, the height in pixels (negative,
// a character height; points at 96 per inch), the weight and italic. Answers
// the bytes written, 0 when `size` is too small or `object` is null.
QOR_TOOLS_API int GetObjectW(HFONT object, int size, void *out);
// As GetObjectW, with the face name in the locale's 8-bit encoding (a name
// it cannot hold comes out as question marks).
QOR_TOOLS_API int GetObjectA(HFONT object, int size, void *out);

// Selection into a context: each context keeps a record of its selected font
// and bitmap, and selecting answers what was selected before (null when
// nothing was). The untyped form knows the objects that were once selected
// by type; for any other it selects nothing and answers null.
QOR_TOOLS_API HFONT SelectObject(HDC dc, HFONT font);
QOR_TOOLS_API HBITMAP SelectObject(HDC dc, HBITMAP bitmap);
QOR_TOOLS_API HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
// The font selected in a context, null when none is.
QOR_TOOLS_API HFONT GetCurrentFont(HDC dc);

// a * b / c rounded half away from zero; -1 when c is 0 or the result overflows.
QOR_TOOLS_API int MulDiv(int a, int b, int c);

}  // namespace qor::tools
