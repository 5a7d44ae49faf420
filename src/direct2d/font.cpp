#include "qor/tools/direct2d/font.h"

#include "qor/tools/direct2d/factory.h"
#include "qor/tools/exception.h"

namespace qor::tools::direct2d {

void layout::Metrics(DWRITE_TEXT_METRICS &metrics) {
    if (IsEmpty() || FAILED(Get()->GetMetrics(&metrics))) throw exception(u"direct2d layout metrics");
}

// The family is asked for with the face name's own capacity, not 64: a
// longer name would be written past the record.
void font::LogFont(tagLOGFONTW &logfont) {
    Get()->GetFontFamilyName(logfont.lfFaceName, LF_FACESIZE);
    logfont.lfHeight = -static_cast<std::int32_t>(Get()->GetFontSize());
}

// A length beyond the text is cut to the text: nothing is read past its end.
layout font::CreateLayout(rectf const &rect, string const &text, int length) {
    int size = int(text.View().size());
    if (length < 0 || length > size) length = size;
    layout made;
    IDWriteFactory *write = factory::Instance() ? factory::Instance()->WriteFactory() : nullptr;
    if (!write || FAILED(write->CreateTextLayout(text.Safe(), std::uint32_t(length), Get(), rect.right - rect.left,
                                                 rect.bottom - rect.top, made.Addr()))) {
        throw exception(u"direct2d font create layout");
    }
    return made;
}

font font::Clone() {
    char16_t family[256] = {};
    Get()->GetFontFamilyName(family, 256);
    return factory::Instance()->CreateFontW(family, Get()->GetFontSize(), Get()->GetFontWeight(),
                                            Get()->GetFontStyle(), Get()->GetFontStretch());
}

}  // namespace qor::tools::direct2d
