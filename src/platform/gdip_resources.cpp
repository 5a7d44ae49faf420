// The painting interface's start-up, memory, fonts, pens, brushes, string
// formats and paths: records of what to draw with, read by the drawing calls.
#include <glib.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "gdip_objects.h"
#include "utf8.h"

namespace qor::tools::Gdiplus {

namespace {

std::atomic<ULONG_PTR> gTokens{0};

template <typename T, typename... A>
Status Make(T **out, A &&...args) {
    if (!out) return InvalidParameter;
    *out = new (std::nothrow) T{std::forward<A>(args)...};
    return *out ? Ok : OutOfMemory;
}

// The family as the font map spells it, or empty when it is not installed.
std::string InstalledFamily(std::string const &name) {
    PangoFontFamily **families = nullptr;
    int count = 0;
    pango_font_map_list_families(pango_cairo_font_map_get_default(), &families, &count);
    std::string found;
    for (int i = 0; i < count && found.empty(); ++i) {
        char const *candidate = pango_font_family_get_name(families[i]);
        if (g_ascii_strcasecmp(candidate, name.c_str()) == 0) found = candidate;
    }
    g_free(families);
    return found;
}

Status FontOfLogfont(tagLOGFONTA const &logfont, GpFont **font) {
    gchar *family = g_locale_to_utf8(logfont.lfFaceName, -1, nullptr, nullptr, nullptr);
    std::string name = family ? family : "";
    g_free(family);
    REAL size = logfont.lfHeight == 0 ? 16.0f : REAL(std::abs(logfont.lfHeight));
    INT style = (logfont.lfWeight >= 600 ? FontStyleBold : 0) | (logfont.lfItalic ? FontStyleItalic : 0) |
                (logfont.lfUnderline ? FontStyleUnderline : 0) | (logfont.lfStrikeOut ? FontStyleStrikeout : 0);
    return Make(font, name, size, style, UnitPixel);
}

}  // namespace

Status GdiplusStartup(ULONG_PTR *token, GdiplusStartupInput const *input, GdiplusStartupOutput *output) {
    if (!token || !input) return InvalidParameter;
    if (input->GdiplusVersion < 1 || input->GdiplusVersion > 3) return UnsupportedGdiplusVersion;
    if (output) *output = GdiplusStartupOutput{};
    *token = ++gTokens;
    return Ok;
}

void GdiplusShutdown(ULONG_PTR) {}

void *GdipAlloc(std::size_t size) noexcept { return std::malloc(size ? size : 1); }

void GdipFree(void *block) noexcept { std::free(block); }

Status GdipCreateFontFamilyFromName(WCHAR const *name, GpFontCollection *, GpFontFamily **family) {
    if (!name || !family) return InvalidParameter;
    *family = nullptr;
    std::string installed = InstalledFamily(detail::ToUtf8(name));
    if (installed.empty()) return FontFamilyNotFound;
    return Make(family, installed);
}

Status GdipDeleteFontFamily(GpFontFamily *family) {
    if (!family) return InvalidParameter;
    delete family;
    return Ok;
}

Status GdipGetFamilyName(GpFontFamily const *family, WCHAR name[LF_FACESIZE], LANGID) {
    if (!family || !name) return InvalidParameter;
    std::u16string text = detail::ToUtf16(family->mName);
    text.resize(std::min<std::size_t>(text.size(), LF_FACESIZE - 1));
    std::memcpy(name, text.c_str(), (text.size() + 1) * sizeof(char16_t));
    return Ok;
}

Status GdipCreateFont(GpFontFamily const *family, REAL size, INT style, INT unit, GpFont **font) {
    if (!font) return InvalidParameter;
    *font = nullptr;
    if (!family || !(size > 0) || unit < UnitWorld || unit > UnitMillimeter || unit == UnitDisplay) {
        return InvalidParameter;
    }
    return Make(font, family->mName, size, style, Unit(unit));
}

Status GdipCreateFontFromLogfontA(HDC, tagLOGFONTA const *logfont, GpFont **font) {
    if (!logfont || !font) return InvalidParameter;
    *font = nullptr;
    return FontOfLogfont(*logfont, font);
}

// A context with no font selected has the platform's old bitmap font, which
// is refused here as it is there.
Status GdipCreateFontFromDC(HDC dc, GpFont **font) {
    if (!dc || !font) return InvalidParameter;
    *font = nullptr;
    tagLOGFONTA logfont;
    HFONT selected = GetCurrentFont(dc);
    if (!selected || !GetObjectA(selected, sizeof logfont, &logfont)) return NotTrueTypeFont;
    return FontOfLogfont(logfont, font);
}

Status GdipCloneFont(GpFont *font, GpFont **clone) { return font ? Make(clone, *font) : InvalidParameter; }

Status GdipDeleteFont(GpFont *font) {
    if (!font) return InvalidParameter;
    delete font;
    return Ok;
}

Status GdipGetFontSize(GpFont *font, REAL *size) {
    if (!font || !size) return InvalidParameter;
    *size = font->mSize;
    return Ok;
}

Status GdipGetFontStyle(GpFont *font, INT *style) {
    if (!font || !style) return InvalidParameter;
    *style = font->mStyle;
    return Ok;
}

Status GdipGetFontUnit(GpFont *font, Unit *unit) {
    if (!font || !unit) return InvalidParameter;
    *unit = font->mUnit;
    return Ok;
}

Status GdipGetFamily(GpFont *font, GpFontFamily **family) {
    return font ? Make(family, font->mFamily) : InvalidParameter;
}

Status GdipCreatePen1(ARGB color, REAL width, Unit unit, GpPen **pen) {
    if (!(width >= 0)) return InvalidParameter;
    return Make(pen, color, width, unit, DashStyleSolid);
}

Status GdipClonePen(GpPen *pen, GpPen **clone) { return pen ? Make(clone, *pen) : InvalidParameter; }

Status GdipDeletePen(GpPen *pen) {
    if (!pen) return InvalidParameter;
    delete pen;
    return Ok;
}

Status GdipSetPenDashStyle(GpPen *pen, DashStyle style) {
    if (!pen || style < DashStyleSolid || style > DashStyleCustom) return InvalidParameter;
    pen->mDash = style;
    return Ok;
}

Status GdipGetPenDashStyle(GpPen *pen, DashStyle *style) {
    if (!pen || !style) return InvalidParameter;
    *style = pen->mDash;
    return Ok;
}

Status GdipGetPenColor(GpPen *pen, ARGB *color) {
    if (!pen || !color) return InvalidParameter;
    *color = pen->mColor;
    return Ok;
}

Status GdipGetPenWidth(GpPen *pen, REAL *width) {
    if (!pen || !width) return InvalidParameter;
    *width = pen->mWidth;
    return Ok;
}

Status GdipCreateSolidFill(ARGB color, GpSolidFill **brush) {
    if (!brush) return InvalidParameter;
    *brush = new (std::nothrow) GpSolidFill;
    if (!*brush) return OutOfMemory;
    (*brush)->mColor = color;
    return Ok;
}

Status GdipCloneBrush(GpBrush *brush, GpBrush **clone) {
    if (!brush || !clone) return InvalidParameter;
    GpSolidFill *copy = nullptr;
    Status status = GdipCreateSolidFill(brush->mColor, &copy);
    *clone = copy;
    return status;
}

Status GdipDeleteBrush(GpBrush *brush) {
    if (!brush) return InvalidParameter;
    delete static_cast<GpSolidFill *>(brush);
    return Ok;
}

Status GdipGetSolidFillColor(GpSolidFill *brush, ARGB *color) {
    if (!brush || !color) return InvalidParameter;
    *color = brush->mColor;
    return Ok;
}

Status GdipGetBrushType(GpBrush *brush, BrushType *type) {
    if (!brush || !type) return InvalidParameter;
    *type = BrushTypeSolidColor;
    return Ok;
}

Status GdipCreateStringFormat(INT flags, LANGID, GpStringFormat **format) { return Make(format, flags); }

Status GdipDeleteStringFormat(GpStringFormat *format) {
    if (!format) return InvalidParameter;
    delete format;
    return Ok;
}

Status GdipSetStringFormatAlign(GpStringFormat *format, StringAlignment align) {
    if (!format || align < StringAlignmentNear || align > StringAlignmentFar) return InvalidParameter;
    format->mAlign = align;
    return Ok;
}

Status GdipSetStringFormatLineAlign(GpStringFormat *format, StringAlignment align) {
    if (!format || align < StringAlignmentNear || align > StringAlignmentFar) return InvalidParameter;
    format->mLineAlign = align;
    return Ok;
}

Status GdipSetStringFormatFlags(GpStringFormat *format, INT flags) {
    if (!format) return InvalidParameter;
    format->mFlags = flags;
    return Ok;
}

}  // namespace qor::tools::Gdiplus
