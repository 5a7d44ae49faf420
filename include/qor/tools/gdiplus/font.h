// gdiplus::font, gdiplus::pen and gdiplus::brush: shared handles on the
// painting interface's font, pen and solid brush, each made in one line.
// Copies share one platform object; making one again on a copy moves only
// that copy on. Nothing is reported: a font whose family is not installed
// is an object with a bad status, found out when drawing with it.
//
//   gdiplus::font label(u"DejaVu Sans", 10.0f, Gdiplus::FontStyleBold);   // points
//   gdiplus::pen outline(2.0f, 0xFF000000ul);                              // alpha first
//   gdiplus::brush fill(0x80FF0000ul);                                     // half-transparent red
//   graphics->DrawRectangle(outline, 0.0f, 0.0f, 10.0f, 10.0f);
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/sptr.h"
#include "qor/tools/platform/gdiplus.h"

namespace qor::tools::gdiplus {

class QOR_TOOLS_API font : public container::sptr<Gdiplus::Font> {
public:
    // Empty, or made as by CreateFontW; copies share the font.
    font() = default;
    font(char16_t const *family, float size, int style) { CreateFontW(family, size, style); }
    font(HFONT gdiFont, HDC dc) { CreateFontW(gdiFont, dc); }
    font(font const &) = default;
    font &operator=(font const &) = default;
    ~font() override = default;

    // `size` in points, `style` a Gdiplus::FontStyle mask.
    void CreateFontW(char16_t const *family, float size, int style);
    // The GDI font's description, or the font selected in `dc` when it is null.
    void CreateFontW(HFONT gdiFont, HDC dc);

protected:
    // A GDI height (pixels; negative for a character height) in points.
    float _CalcPoint(int height, HDC dc);
};

// A shared pen: a width and a color (0xAARRGGBB), solid or dashed.
class QOR_TOOLS_API pen : public container::sptr<Gdiplus::Pen> {
public:
    // Empty, or made as by CreatePen (solid unless a style is given);
    // copies share the pen.
    pen() = default;
    pen(float width, int color) { CreatePen(width, static_cast<unsigned long>(static_cast<unsigned>(color)), Gdiplus::DashStyleSolid); }
    pen(float width, unsigned color) { CreatePen(width, color, Gdiplus::DashStyleSolid); }
    pen(float width, unsigned long color) { CreatePen(width, color, Gdiplus::DashStyleSolid); }
    pen(float width, unsigned long color, Gdiplus::DashStyle style) { CreatePen(width, color, style); }
    pen(pen const &) = default;
    pen &operator=(pen const &) = default;
    ~pen() override = default;

    // `width` in world units; `color` 0xAARRGGBB.
    void CreatePen(float width, unsigned long color, Gdiplus::DashStyle style);
};

// A shared solid brush of one color.
class QOR_TOOLS_API brush : public container::sptr<Gdiplus::Brush> {
public:
    // Empty, or of `color` (0xAARRGGBB); copies share the brush.
    brush() = default;
    explicit brush(Gdiplus::Color color) { CreateSolidBrush(color.GetValue()); }
    explicit brush(unsigned long color) { CreateSolidBrush(color); }
    brush(brush const &) = default;
    brush &operator=(brush const &) = default;
    ~brush() override = default;

    // A new solid brush of `color` (0xAARRGGBB).
    void CreateSolidBrush(unsigned long color);
};

}  // namespace qor::tools::gdiplus
