// Text of the painting interface: a Pango layout of the string in the font's
// size at the graphics' resolution, wrapped in the layout box and aligned in
// it as the string format says, clipped to the box unless told not to.
#include <pango/pangocairo.h>

#include <string>

#include "gdip_graphics.h"
#include "utf8.h"

namespace qor::tools::Gdiplus {

namespace {

double Pixels(GpFont const &font, double dpi) {
    switch (font.mUnit) {
        case UnitPoint: return font.mSize * dpi / 72.0;
        case UnitInch: return font.mSize * dpi;
        case UnitDocument: return font.mSize * dpi / 300.0;
        case UnitMillimeter: return font.mSize * dpi / 25.4;
        default: return font.mSize;
    }
}

struct placed_text {
    PangoLayout *mLayout = nullptr;
    double mX = 0, mY = 0, mWidth = 0, mHeight = 0;
    ~placed_text() {
        if (mLayout) g_object_unref(mLayout);
    }
};

void Describe(PangoLayout *layout, GpFont const &font, double dpi) {
    PangoFontDescription *description = pango_font_description_new();
    pango_font_description_set_family(description, font.mFamily.c_str());
    pango_font_description_set_absolute_size(description, Pixels(font, dpi) * PANGO_SCALE);
    pango_font_description_set_weight(description, font.mStyle & FontStyleBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(description, font.mStyle & FontStyleItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);
    if (!(font.mStyle & (FontStyleUnderline | FontStyleStrikeout))) return;
    PangoAttrList *attributes = pango_attr_list_new();
    if (font.mStyle & FontStyleUnderline) pango_attr_list_insert(attributes, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    if (font.mStyle & FontStyleStrikeout) pango_attr_list_insert(attributes, pango_attr_strikethrough_new(TRUE));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
}

double Offset(StringAlignment align, double room, double used) {
    if (room <= 0) return 0;
    if (align == StringAlignmentCenter) return (room - used) / 2;
    return align == StringAlignmentFar ? room - used : 0;
}

// Lays the text out on the context as it stands (transform set).
void Place(cairo_t *cr, double dpi, WCHAR const *text, INT length, GpFont const &font, RectF const &box,
           GpStringFormat const &format, placed_text &out) {
    std::u16string units = length < 0 ? std::u16string(text) : std::u16string(text, std::size_t(length));
    std::string utf8 = detail::ToUtf8(units);
    out.mLayout = pango_cairo_create_layout(cr);
    Describe(out.mLayout, font, dpi);
    pango_layout_set_text(out.mLayout, utf8.data(), int(utf8.size()));
    bool wrap = box.Width > 0 && !(format.mFlags & StringFormatFlagsNoWrap);
    if (wrap) {
        pango_layout_set_width(out.mLayout, int(box.Width * PANGO_SCALE));
        pango_layout_set_wrap(out.mLayout, PANGO_WRAP_WORD_CHAR);
        static constexpr PangoAlignment kAlign[] = {PANGO_ALIGN_LEFT, PANGO_ALIGN_CENTER, PANGO_ALIGN_RIGHT};
        pango_layout_set_alignment(out.mLayout, kAlign[format.mAlign]);
    }
    PangoRectangle ink, logical;
    pango_layout_get_extents(out.mLayout, &ink, &logical);
    out.mWidth = double(logical.width) / PANGO_SCALE;
    out.mHeight = double(logical.height) / PANGO_SCALE;
    out.mX = box.X + (wrap ? double(logical.x) / PANGO_SCALE : Offset(format.mAlign, box.Width, out.mWidth));
    out.mY = box.Y + Offset(format.mLineAlign, box.Height, out.mHeight);
}

Status Check(WCHAR const *text, GpFont const *font, RectF const *box) {
    return text && font && box ? Ok : InvalidParameter;
}

}  // namespace

Status GdipDrawString(GpGraphics *graphics, WCHAR const *text, INT length, GpFont const *font, RectF const *box,
                      GpStringFormat const *format, GpBrush const *brush) {
    if (Check(text, font, box) != Ok || !brush) return InvalidParameter;
    drawing d(graphics);
    if (!d.Ready()) return d.Result();
    GpStringFormat plain;
    GpStringFormat const &f = format ? *format : plain;
    cairo_t *cr = d.Cr();
    if (box->Width > 0 && box->Height > 0 && !(f.mFlags & StringFormatFlagsNoClip)) {
        cairo_rectangle(cr, box->X, box->Y, box->Width, box->Height);
        cairo_clip(cr);
    }
    placed_text placed;
    Place(cr, d.Graphics().mDpiY, text, length, *font, *box, f, placed);
    double shift = pango_layout_get_width(placed.mLayout) > 0 ? box->X : placed.mX;
    cairo_move_to(cr, shift, placed.mY);
    SetColor(cr, brush->mColor);
    pango_cairo_update_layout(cr, placed.mLayout);
    pango_cairo_show_layout(cr, placed.mLayout);
    return Ok;
}

Status GdipMeasureString(GpGraphics *graphics, WCHAR const *text, INT length, GpFont const *font, RectF const *box,
                         GpStringFormat const *format, RectF *bounds, INT *fitted, INT *lines) {
    if (Check(text, font, box) != Ok || !bounds) return InvalidParameter;
    drawing d(graphics, false);
    if (!d.Ready()) return d.Result();
    GpStringFormat plain;
    placed_text placed;
    Place(d.Cr(), d.Graphics().mDpiY, text, length, *font, *box, format ? *format : plain, placed);
    *bounds = RectF(REAL(placed.mX), REAL(placed.mY), REAL(placed.mWidth), REAL(placed.mHeight));
    if (fitted) *fitted = length < 0 ? INT(std::char_traits<char16_t>::length(text)) : length;
    if (lines) *lines = pango_layout_get_line_count(placed.mLayout);
    return Ok;
}

}  // namespace qor::tools::Gdiplus
