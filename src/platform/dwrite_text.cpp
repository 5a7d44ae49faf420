#include "dwrite_text.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "qor/tools/platform/handles.h"
#include "utf8.h"

namespace qor::tools::platform::dwrite {

namespace {

// Pango's objects belong to one thread: each thread gets its own context.
PangoContext *ThreadContext() {
    struct holder {
        PangoContext *mContext = nullptr;
        ~holder() {
            if (mContext) g_object_unref(mContext);
        }
    };
    thread_local holder h;
    if (h.mContext) return h.mContext;
    h.mContext = pango_font_map_create_context(pango_cairo_font_map_get_default());
    cairo_font_options_t *options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    pango_cairo_context_set_font_options(h.mContext, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(h.mContext, FALSE);
    return h.mContext;
}

PangoFontDescription *Describe(format_values const &v) {
    PangoFontDescription *d = pango_font_description_new();
    pango_font_description_set_family(d, detail::ToUtf8(v.mFamily).c_str());
    pango_font_description_set_absolute_size(d, double(v.mSize) * PANGO_SCALE);
    pango_font_description_set_weight(d, PangoWeight(std::clamp<int>(v.mWeight, 100, 1000)));
    pango_font_description_set_style(d, v.mStyle == DWRITE_FONT_STYLE_ITALIC    ? PANGO_STYLE_ITALIC
                                        : v.mStyle == DWRITE_FONT_STYLE_OBLIQUE ? PANGO_STYLE_OBLIQUE
                                                                                : PANGO_STYLE_NORMAL);
    int stretch = v.mStretch == DWRITE_FONT_STRETCH_UNDEFINED ? DWRITE_FONT_STRETCH_NORMAL : v.mStretch;
    pango_font_description_set_stretch(d, PangoStretch(std::clamp(stretch - 1, 0, 8)));
    return d;
}

template <typename Top, typename... Bases>
class format_base : public com_object<Top, Bases...> {
public:
    explicit format_base(format_values values) : mValues(std::move(values)) {}

    HRESULT SetTextAlignment(DWRITE_TEXT_ALIGNMENT a) override {
        if (a > DWRITE_TEXT_ALIGNMENT_JUSTIFIED) return E_INVALIDARG;
        mValues.mAlignment = a;
        _Changed();
        return S_OK;
    }
    HRESULT SetParagraphAlignment(DWRITE_PARAGRAPH_ALIGNMENT a) override {
        if (a > DWRITE_PARAGRAPH_ALIGNMENT_CENTER) return E_INVALIDARG;
        mValues.mParagraph = a;
        return S_OK;
    }
    HRESULT SetWordWrapping(DWRITE_WORD_WRAPPING w) override {
        if (w > DWRITE_WORD_WRAPPING_NO_WRAP) return E_INVALIDARG;
        mValues.mWrapping = w;
        _Changed();
        return S_OK;
    }
    DWRITE_TEXT_ALIGNMENT GetTextAlignment() override { return mValues.mAlignment; }
    DWRITE_PARAGRAPH_ALIGNMENT GetParagraphAlignment() override { return mValues.mParagraph; }
    DWRITE_WORD_WRAPPING GetWordWrapping() override { return mValues.mWrapping; }
    std::uint32_t GetFontFamilyNameLength() override { return std::uint32_t(mValues.mFamily.size()); }
    HRESULT GetFontFamilyName(char16_t *name, std::uint32_t size) override {
        if (!name) return E_INVALIDARG;
        if (size <= mValues.mFamily.size()) {
            if (size) name[0] = 0;
            return E_NOT_SUFFICIENT_BUFFER;
        }
        std::memcpy(name, mValues.mFamily.c_str(), (mValues.mFamily.size() + 1) * sizeof(char16_t));
        return S_OK;
    }
    DWRITE_FONT_WEIGHT GetFontWeight() override { return mValues.mWeight; }
    DWRITE_FONT_STYLE GetFontStyle() override { return mValues.mStyle; }
    DWRITE_FONT_STRETCH GetFontStretch() override { return mValues.mStretch; }
    float GetFontSize() override { return mValues.mSize; }

    format_values const &Values() const noexcept { return mValues; }

protected:
    virtual void _Changed() {}
    format_values mValues;
};

class text_format final : public format_base<IDWriteTextFormat> {
public:
    using format_base::format_base;
};

class text_layout final : public format_base<IDWriteTextLayout, IDWriteTextFormat> {
public:
    text_layout(format_values const &values, std::u16string const &text, float maxWidth, float maxHeight)
        : format_base(values), mLayout(pango_layout_new(ThreadContext())), mMaxWidth(maxWidth), mMaxHeight(maxHeight) {
        std::string utf8 = detail::ToUtf8(text);
        pango_layout_set_text(mLayout, utf8.data(), int(utf8.size()));
        PangoFontDescription *d = Describe(values);
        pango_layout_set_font_description(mLayout, d);
        pango_font_description_free(d);
        _Changed();
    }
    ~text_layout() override { g_object_unref(mLayout); }

    HRESULT SetMaxWidth(float width) override {
        if (!(width >= 0)) return E_INVALIDARG;
        mMaxWidth = width;
        _Changed();
        return S_OK;
    }
    HRESULT SetMaxHeight(float height) override {
        if (!(height >= 0)) return E_INVALIDARG;
        mMaxHeight = height;
        return S_OK;
    }
    float GetMaxWidth() override { return mMaxWidth; }
    float GetMaxHeight() override { return mMaxHeight; }
    HRESULT GetMetrics(DWRITE_TEXT_METRICS *metrics) override;
    PangoLayout *GetPangoLayout() override { return mLayout; }

    void Origin(double &x, double &y);

private:
    void _Changed() override {
        bool wrap = mValues.mWrapping == DWRITE_WORD_WRAPPING_WRAP && std::isfinite(mMaxWidth);
        pango_layout_set_width(mLayout, wrap ? int(double(mMaxWidth) * PANGO_SCALE) : -1);
        pango_layout_set_wrap(mLayout, PANGO_WRAP_WORD_CHAR);
        pango_layout_set_justify(mLayout, mValues.mAlignment == DWRITE_TEXT_ALIGNMENT_JUSTIFIED);
        pango_layout_set_alignment(mLayout, mValues.mAlignment == DWRITE_TEXT_ALIGNMENT_CENTER     ? PANGO_ALIGN_CENTER
                                            : mValues.mAlignment == DWRITE_TEXT_ALIGNMENT_TRAILING ? PANGO_ALIGN_RIGHT
                                                                                                  : PANGO_ALIGN_LEFT);
    }

    PangoLayout *mLayout;
    float mMaxWidth, mMaxHeight;
};

// Without wrapping Pango aligns lines within the widest; the box's width
// places that block.
void text_layout::Origin(double &x, double &y) {
    PangoRectangle logical;
    pango_layout_get_extents(mLayout, nullptr, &logical);
    double width = double(logical.width) / PANGO_SCALE, height = double(logical.height) / PANGO_SCALE;
    double share = mValues.mAlignment == DWRITE_TEXT_ALIGNMENT_CENTER ? 0.5
                   : mValues.mAlignment == DWRITE_TEXT_ALIGNMENT_TRAILING ? 1.0 : 0.0;
    x = pango_layout_get_width(mLayout) < 0 && std::isfinite(mMaxWidth) ? (mMaxWidth - width) * share : 0;
    double along = mValues.mParagraph == DWRITE_PARAGRAPH_ALIGNMENT_CENTER ? 0.5
                   : mValues.mParagraph == DWRITE_PARAGRAPH_ALIGNMENT_FAR   ? 1.0 : 0.0;
    y = std::isfinite(mMaxHeight) ? (mMaxHeight - height) * along : 0;
}

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

HRESULT text_layout::GetMetrics(DWRITE_TEXT_METRICS *m) {
    if (!m) return E_INVALIDARG;
    double x0 = 0, y0 = 0;
    Origin(x0, y0);
    PangoRectangle logical;
    pango_layout_get_extents(mLayout, nullptr, &logical);
    char const *text = pango_layout_get_text(mLayout);
    double left = 1e30, right = -1e30, rightWithSpace = -1e30;
    int depth = 0;
    PangoLayoutIter *iter = pango_layout_get_iter(mLayout);
    do {
        PangoLayoutLine *line = pango_layout_iter_get_line_readonly(iter);
        PangoRectangle box;
        pango_layout_iter_get_line_extents(iter, nullptr, &box);
        double lineX = double(box.x) / PANGO_SCALE;
        left = std::min(left, lineX);
        rightWithSpace = std::max(rightWithSpace, lineX + double(box.width) / PANGO_SCALE);
        int end = line->start_index + line->length;
        while (end > line->start_index && IsSpace(text[end - 1])) --end;
        if (end > line->start_index) {
            int last = int(g_utf8_find_prev_char(text + line->start_index, text + end) - text);
            int trailing = 0;
            pango_layout_line_index_to_x(line, last, TRUE, &trailing);
            right = std::max(right, lineX + double(trailing) / PANGO_SCALE);
        } else {
            right = std::max(right, lineX);
        }
        for (GSList *run = line->runs; run; run = run->next) {
            depth = std::max(depth, int(static_cast<PangoGlyphItem *>(run->data)->item->analysis.level));
        }
    } while (pango_layout_iter_next_line(iter));
    pango_layout_iter_free(iter);
    *m = DWRITE_TEXT_METRICS{};
    m->left = float(x0 + left);
    m->top = float(y0);
    m->width = float(right - left);
    m->widthIncludingTrailingWhitespace = float(rightWithSpace - left);
    m->height = float(double(logical.height) / PANGO_SCALE);
    m->layoutWidth = mMaxWidth;
    m->layoutHeight = mMaxHeight;
    m->maxBidiReorderingDepth = std::uint32_t(depth + 1);
    m->lineCount = std::uint32_t(pango_layout_get_line_count(mLayout));
    return S_OK;
}

class family_names final : public com_object<IDWriteLocalizedStrings> {
public:
    explicit family_names(std::u16string name) : mName(std::move(name)) {}
    std::uint32_t GetCount() override { return 1; }
    HRESULT GetStringLength(std::uint32_t index, std::uint32_t *length) override {
        if (index != 0 || !length) return E_INVALIDARG;
        *length = std::uint32_t(mName.size());
        return S_OK;
    }
    HRESULT GetString(std::uint32_t index, char16_t *text, std::uint32_t size) override {
        if (index != 0 || !text) return E_INVALIDARG;
        if (size <= mName.size()) return E_NOT_SUFFICIENT_BUFFER;
        std::memcpy(text, mName.c_str(), (mName.size() + 1) * sizeof(char16_t));
        return S_OK;
    }

private:
    std::u16string mName;
};

class font_family final : public com_object<IDWriteFontFamily> {
public:
    explicit font_family(std::u16string name) : mName(std::move(name)) {}
    HRESULT GetFamilyNames(IDWriteLocalizedStrings **names) override { return HandOut(new family_names(mName), names); }

private:
    std::u16string mName;
};

class matched_font final : public com_object<IDWriteFont> {
public:
    matched_font(std::u16string family, DWRITE_FONT_WEIGHT weight, DWRITE_FONT_STYLE style)
        : mFamily(std::move(family)), mWeight(weight), mStyle(style) {}
    HRESULT GetFontFamily(IDWriteFontFamily **family) override { return HandOut(new font_family(mFamily), family); }
    DWRITE_FONT_WEIGHT GetWeight() override { return mWeight; }
    DWRITE_FONT_STRETCH GetStretch() override { return DWRITE_FONT_STRETCH_NORMAL; }
    DWRITE_FONT_STYLE GetStyle() override { return mStyle; }

private:
    std::u16string mFamily;
    DWRITE_FONT_WEIGHT mWeight;
    DWRITE_FONT_STYLE mStyle;
};

// Fonts matched by fontconfig: the family of the font it would draw with.
class gdi_interop final : public com_object<IDWriteGdiInterop> {
public:
    HRESULT CreateFontFromLOGFONT(tagLOGFONTW const *lf, IDWriteFont **out) override {
        if (!out) return E_INVALIDARG;
        *out = nullptr;
        if (!lf) return E_INVALIDARG;
        std::u16string_view field(lf->lfFaceName, LF_FACESIZE);
        std::u16string face(field.substr(0, field.find(u'\0')));
        PangoFontDescription *d = pango_font_description_new();
        pango_font_description_set_family(d, face.empty() ? "Sans" : detail::ToUtf8(face).c_str());
        pango_font_description_set_absolute_size(d, 12 * PANGO_SCALE);
        PangoFont *font = pango_font_map_load_font(pango_cairo_font_map_get_default(), ThreadContext(), d);
        pango_font_description_free(d);
        if (!font) return DWRITE_E_NOFONT;
        PangoFontDescription *matched = pango_font_describe(font);
        char const *family = pango_font_description_get_family(matched);
        std::u16string name = detail::ToUtf16(family ? family : "");
        pango_font_description_free(matched);
        g_object_unref(font);
        auto weight = DWRITE_FONT_WEIGHT(lf->lfWeight > 0 ? std::clamp<std::int32_t>(lf->lfWeight, 1, 999) : 400);
        return HandOut(new matched_font(name, weight, lf->lfItalic ? DWRITE_FONT_STYLE_ITALIC : DWRITE_FONT_STYLE_NORMAL), out);
    }
};

class write_factory final : public com_object<IDWriteFactory> {
public:
    HRESULT CreateTextFormat(char16_t const *family, IUnknown *collection, DWRITE_FONT_WEIGHT weight,
                             DWRITE_FONT_STYLE style, DWRITE_FONT_STRETCH stretch, float size, char16_t const *locale,
                             IDWriteTextFormat **format) override {
        if (!format) return E_INVALIDARG;
        *format = nullptr;
        if (!family || !locale || collection || !(size > 0) || style > DWRITE_FONT_STYLE_ITALIC ||
            stretch > DWRITE_FONT_STRETCH_ULTRA_EXPANDED || weight < 1 || weight > 999) {
            return E_INVALIDARG;
        }
        format_values v;
        v.mFamily = family;
        v.mWeight = weight;
        v.mStyle = style;
        v.mStretch = stretch;
        v.mSize = size;
        return HandOut(NewFormat(v), format);
    }
    HRESULT CreateTextLayout(char16_t const *text, std::uint32_t length, IDWriteTextFormat *format, float maxWidth,
                             float maxHeight, IDWriteTextLayout **layout) override {
        if (!layout) return E_INVALIDARG;
        *layout = nullptr;
        format_values const *values = ValuesOf(format);
        if (!text || !values || !(maxWidth >= 0) || !(maxHeight >= 0)) return E_INVALIDARG;
        return HandOut(NewLayout(*values, std::u16string(text, length), maxWidth, maxHeight), layout);
    }
    HRESULT GetGdiInterop(IDWriteGdiInterop **interop) override { return HandOut(new gdi_interop, interop); }
};

}  // namespace

format_values const *ValuesOf(IDWriteTextFormat *format) {
    if (auto *f = dynamic_cast<text_format *>(format)) return &f->Values();
    if (auto *l = dynamic_cast<text_layout *>(format)) return &l->Values();
    return nullptr;
}

IDWriteTextFormat *NewFormat(format_values const &values) { return new text_format(values); }

IDWriteTextLayout *NewLayout(format_values const &values, std::u16string text, float maxWidth, float maxHeight) {
    return new text_layout(values, text, maxWidth, maxHeight);
}

IDWriteFactory *NewFactory() { return new write_factory; }

void Origin(IDWriteTextLayout *layout, double &x, double &y) {
    x = y = 0;
    if (auto *l = dynamic_cast<text_layout *>(layout)) l->Origin(x, y);
}

}  // namespace qor::tools::platform::dwrite
