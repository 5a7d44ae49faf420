// The platform's window and drawing handles as the library stands them in:
// a device context (HDC) is a cairo_t * and a window (HWND) a GtkWidget *.
#pragma once

#include <cstdint>

#include "qor/tools/platform/cairo_fwd.h"
#include "qor/tools/platform/geometry.h"

extern "C" {
typedef struct _GtkWidget GtkWidget;
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

}  // namespace qor::tools
