// Text formats and layouts over Pango. A format is a set of values (family,
// size in device-independent pixels, weight, style, stretch, alignments,
// wrapping); a layout is a format with a text and a box, measured by a
// PangoLayout made on a context of the thread's own Cairo font map, with
// hinting of metrics off and fractional glyph positions, so that sizes are
// those of the outlines and not of the screen.
#pragma once

#include <string>

#include "com_object.h"
#include "qor/tools/platform/dwrite.h"

namespace qor::tools::platform::dwrite {

struct format_values {
    std::u16string mFamily;
    DWRITE_FONT_WEIGHT mWeight = DWRITE_FONT_WEIGHT_NORMAL;
    DWRITE_FONT_STYLE mStyle = DWRITE_FONT_STYLE_NORMAL;
    DWRITE_FONT_STRETCH mStretch = DWRITE_FONT_STRETCH_NORMAL;
    float mSize = 0;
    DWRITE_TEXT_ALIGNMENT mAlignment = DWRITE_TEXT_ALIGNMENT_LEADING;
    DWRITE_PARAGRAPH_ALIGNMENT mParagraph = DWRITE_PARAGRAPH_ALIGNMENT_NEAR;
    DWRITE_WORD_WRAPPING mWrapping = DWRITE_WORD_WRAPPING_WRAP;
};

// The values of a format of the library, or null for another one.
format_values const *ValuesOf(IDWriteTextFormat *format);

IDWriteTextFormat *NewFormat(format_values const &values);
IDWriteTextLayout *NewLayout(format_values const &values, std::u16string text, float maxWidth, float maxHeight);
IDWriteFactory *NewFactory();

// Where a layout's first line starts, from the layout box's top left: the
// offsets of the paragraph alignment, and of the text alignment when lines
// do not wrap.
void Origin(IDWriteTextLayout *layout, double &x, double &y);

}  // namespace qor::tools::platform::dwrite
