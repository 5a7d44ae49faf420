// direct2d::font and direct2d::layout: shared handles on a text format and
// on a measured piece of text. A font comes from factory::CreateFontW; its
// CreateLayout measures text in a box, and the layout's Metrics gives the
// width, height and line count.
//
//   direct2d::font label = direct2d::factory::Instance()->CreateFontW(u"IPAGothic", 14.0f);
//   DWRITE_TEXT_METRICS m;
//   label.CreateLayout(direct2d::rectf(0, 0, 200, 100), u"画像の一覧", -1).Metrics(m);
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/sptr.h"
#include "qor/tools/direct2d/float_types.h"
#include "qor/tools/platform/dwrite.h"
#include "qor/tools/platform/handles.h"
#include "qor/tools/string.h"

namespace qor::tools::direct2d {

// A shared handle on a measured text layout (font::Layout makes one).
class QOR_TOOLS_API layout : public container::comptr<IDWriteTextLayout> {
public:
    // Empty or on a layout; copies share it.
    using container::comptr<IDWriteTextLayout>::comptr;
    layout() = default;
    layout(layout const &) = default;
    layout &operator=(layout const &) = default;
    ~layout() override = default;

    // Throws exception "direct2d layout metrics".
    void Metrics(DWRITE_TEXT_METRICS &metrics);
};

class QOR_TOOLS_API font : public container::comptr<IDWriteTextFormat> {
public:
    // Empty or on a text format; copies share it.
    using container::comptr<IDWriteTextFormat>::comptr;
    font() = default;
    font(font const &) = default;
    font &operator=(font const &) = default;
    ~font() override = default;

    // Sets lfFaceName (the family; left empty when it does not fit) and
    // lfHeight (minus the size, truncated); the rest stays as it was.
    void LogFont(tagLOGFONTW &logfont);
    // `text` measured in a box of the rectangle's size; a negative length
    // takes the whole text. Throws exception "direct2d font create layout".
    layout CreateLayout(rectf const &rect, string const &text, int length);
    // A new format of the same family, size, weight, style and stretch, with
    // the default alignments and wrapping.
    font Clone();
};

}  // namespace qor::tools::direct2d
