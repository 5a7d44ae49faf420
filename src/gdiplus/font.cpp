#include "qor/tools/gdiplus/font.h"

#include <cstdlib>

namespace qor::tools::gdiplus {

// The family is looked up once for the font and let go after it.
void font::CreateFontW(char16_t const *family, float size, int style) {
    Gdiplus::FontFamily named(family);
    Attach(new Gdiplus::Font(&named, size, style, Gdiplus::UnitPoint), false);
}

void font::CreateFontW(HFONT gdiFont, HDC dc) { Attach(new Gdiplus::Font(dc, gdiFont), false); }

float font::_CalcPoint(int height, HDC dc) {
    return float(std::abs(MulDiv(height, 72, GetDeviceCaps(dc, LOGPIXELSY))));
}

void pen::CreatePen(float width, unsigned long color, Gdiplus::DashStyle style) {
    auto *made = new Gdiplus::Pen(Gdiplus::Color(Gdiplus::ARGB(color)), width);
    if (made) made->SetDashStyle(style);
    Attach(made, false);
}

void brush::CreateSolidBrush(unsigned long color) {
    Attach(new Gdiplus::SolidBrush(Gdiplus::Color(Gdiplus::ARGB(color))), false);
}

}  // namespace qor::tools::gdiplus
