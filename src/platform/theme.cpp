// Theme drawing over GTK 3: a style context per node of the part's path,
// each the child of the one before, the part's state on the last, drawn with
// GTK's renderers onto the context's cairo_t.
#include <gtk/gtk.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "qor/tools/platform/uxtheme.h"
#include "theme_table.h"
#include "utf8.h"

namespace qor::tools {

namespace {

using platform::theme::part;
using platform::theme::theme_class;

// Handles are numbers looked up here, never pointers: a handle closed twice,
// or used after it was closed, finds nothing.
std::mutex gThemesLock;
std::unordered_map<std::uintptr_t, theme_class const *> gThemes;
std::uintptr_t gLastTheme = 0;

theme_class const *ClassOf(HTHEME theme) {
    std::lock_guard guard(gThemesLock);
    auto found = gThemes.find(reinterpret_cast<std::uintptr_t>(theme));
    return found == gThemes.end() ? nullptr : found->second;
}

HTHEME NewHandle(theme_class const *entry) {
    std::lock_guard guard(gThemesLock);
    gThemes.emplace(++gLastTheme, entry);
    return reinterpret_cast<HTHEME>(gLastTheme);
}

// The chain of contexts for one part in one state; the last is the part's.
class part_style {
public:
    part_style(part const &p, GtkStateFlags state) {
        for (char const *node : p.mNodes) {
            if (!node) break;
            Append(node, state);
        }
    }
    part_style(part_style const &) = delete;
    part_style &operator=(part_style const &) = delete;
    ~part_style() {
        for (auto it = mChain.rbegin(); it != mChain.rend(); ++it) g_object_unref(*it);
    }
    GtkStyleContext *Context() const { return mChain.back(); }
    GtkStateFlags State() const { return gtk_style_context_get_state(Context()); }

    // A node below the part's, such as its label.
    void Append(char const *node, GtkStateFlags state) {
        GtkStyleContext *parent = mChain.empty() ? nullptr : mChain.back();
        GtkWidgetPath *path = parent ? gtk_widget_path_copy(gtk_style_context_get_path(parent)) : gtk_widget_path_new();
        gchar **pieces = g_strsplit(node, ".", -1);
        gtk_widget_path_append_type(path, GTK_TYPE_WIDGET);
        gtk_widget_path_iter_set_object_name(path, -1, pieces[0]);
        for (int i = 1; pieces[i]; ++i) gtk_widget_path_iter_add_class(path, -1, pieces[i]);
        g_strfreev(pieces);
        gtk_widget_path_iter_set_state(path, -1, state);
        GtkStyleContext *context = gtk_style_context_new();
        gtk_style_context_set_path(context, path);
        gtk_style_context_set_parent(context, parent);
        gtk_style_context_set_state(context, state);
        gtk_widget_path_unref(path);
        mChain.push_back(context);
    }

private:
    std::vector<GtkStyleContext *> mChain;
};

// The part of an open theme, when the context and rectangle can be drawn on.
part const *Usable(HTHEME theme, int id, HDC dc, tagRECT const *rect) {
    if (!dc || !rect || cairo_status(dc) != CAIRO_STATUS_SUCCESS) return nullptr;
    theme_class const *entry = ClassOf(theme);
    return entry ? platform::theme::FindPart(*entry, id) : nullptr;
}

GtkStateFlags StateOf(HTHEME theme, int part, int state) {
    theme_class const *entry = ClassOf(theme);
    return entry ? entry->mState(part, state) : GTK_STATE_FLAG_NORMAL;
}

// The part's box inside `rect`: its CSS margin taken off.
GdkRectangle Inner(GtkStyleContext *context, tagRECT const &rect) {
    GtkBorder margin;
    gtk_style_context_get_margin(context, gtk_style_context_get_state(context), &margin);
    int width = rect.right - rect.left - margin.left - margin.right;
    int height = rect.bottom - rect.top - margin.top - margin.bottom;
    return {rect.left + margin.left, rect.top + margin.top, width > 0 ? width : 0, height > 0 ? height : 0};
}

// The text without its mnemonic marks ('&&' is one '&'), and the byte range
// of the character the mark stood before, to underline.
std::string Unprefixed(std::string const &text, int &underlineFrom, int &underlineTo) {
    std::string out;
    underlineFrom = underlineTo = -1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '&' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        ++i;
        if (text[i] != '&' && underlineFrom < 0) {
            underlineFrom = int(out.size());
            underlineTo = int(out.size() + g_utf8_skip[static_cast<unsigned char>(text[i])]);
        }
        out += text[i];
    }
    return out;
}

// A layout of the text in the part's label font, placed in `rect` as the
// DrawText flags say; x and y are where to show it.
PangoLayout *LayoutIn(cairo_t *cr, GtkStyleContext *context, char16_t const *text, int length, DWORD flags,
                      tagRECT const &rect, double &x, double &y) {
    std::u16string units = length < 0 ? std::u16string(text) : std::u16string(text, std::size_t(length));
    std::string utf8 = detail::ToUtf8(units);
    int from = -1, to = -1;
    if (!(flags & DT_NOPREFIX)) utf8 = Unprefixed(utf8, from, to);
    PangoLayout *layout = pango_cairo_create_layout(cr);
    PangoFontDescription *font = nullptr;
    gtk_style_context_get(context, gtk_style_context_get_state(context), GTK_STYLE_PROPERTY_FONT, &font, nullptr);
    pango_layout_set_font_description(layout, font);
    pango_font_description_free(font);
    pango_layout_set_text(layout, utf8.data(), int(utf8.size()));
    if (from >= 0) {
        PangoAttrList *attributes = pango_attr_list_new();
        PangoAttribute *underline = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
        underline->start_index = guint(from);
        underline->end_index = guint(to);
        pango_attr_list_insert(attributes, underline);
        pango_layout_set_attributes(layout, attributes);
        pango_attr_list_unref(attributes);
    }
    int width = rect.right - rect.left, height = rect.bottom - rect.top;
    if ((flags & DT_WORDBREAK) && !(flags & DT_SINGLELINE)) {
        pango_layout_set_width(layout, width * PANGO_SCALE);
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    } else if (flags & DT_END_ELLIPSIS) {
        pango_layout_set_width(layout, width * PANGO_SCALE);
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    }
    PangoAlignment align = flags & DT_CENTER ? PANGO_ALIGN_CENTER : flags & DT_RIGHT ? PANGO_ALIGN_RIGHT : PANGO_ALIGN_LEFT;
    pango_layout_set_alignment(layout, align);
    int w = 0, h = 0;
    pango_layout_get_pixel_size(layout, &w, &h);
    x = rect.left;
    if (pango_layout_get_width(layout) < 0) {
        if (flags & DT_CENTER) x += (width - w) / 2.0;
        if (flags & DT_RIGHT) x += width - w;
    }
    y = rect.top;
    if (flags & DT_VCENTER) y += (height - h) / 2.0;
    if (flags & DT_BOTTOM) y += height - h;
    return layout;
}

}  // namespace

HTHEME OpenThemeData(HWND, char16_t const *classList) {
    if (!classList || !gdk_display_get_default()) return nullptr;
    std::string list = detail::ToUtf8(classList);
    std::size_t start = 0;
    while (start <= list.size()) {
        std::size_t end = list.find(';', start);
        if (end == std::string::npos) end = list.size();
        std::size_t first = list.find_first_not_of(' ', start), last = end;
        while (last > start && list[last - 1] == ' ') --last;
        if (first < last) {
            auto const *entry = platform::theme::FindClass(list.data() + first, last - first);
            if (entry) return NewHandle(entry);
        }
        start = end + 1;
    }
    return nullptr;
}

HRESULT CloseThemeData(HTHEME theme) {
    std::lock_guard guard(gThemesLock);
    return gThemes.erase(reinterpret_cast<std::uintptr_t>(theme)) ? S_OK : E_HANDLE;
}

HRESULT DrawThemeBackground(HTHEME theme, HDC dc, int partId, int state, tagRECT const *rect, tagRECT const *clip) {
    part const *p = Usable(theme, partId, dc, rect);
    if (!p) return E_INVALIDARG;
    part_style style(*p, StateOf(theme, partId, state));
    GdkRectangle box = Inner(style.Context(), *rect);
    cairo_save(dc);
    if (clip) {
        cairo_rectangle(dc, clip->left, clip->top, clip->right - clip->left, clip->bottom - clip->top);
        cairo_clip(dc);
    }
    GtkStyleContext *context = style.Context();
    switch (p->mShape) {
        case part::shape::check: gtk_render_check(context, dc, box.x, box.y, box.width, box.height); break;
        case part::shape::radio: gtk_render_option(context, dc, box.x, box.y, box.width, box.height); break;
        case part::shape::box:
            gtk_render_background(context, dc, box.x, box.y, box.width, box.height);
            gtk_render_frame(context, dc, box.x, box.y, box.width, box.height);
            break;
    }
    cairo_restore(dc);
    return S_OK;
}

HRESULT DrawThemeText(HTHEME theme, HDC dc, int partId, int state, char16_t const *text, int length, DWORD flags,
                      DWORD, tagRECT const *rect) {
    part const *p = Usable(theme, partId, dc, rect);
    if (!p || (!text && length != 0)) return E_INVALIDARG;
    if (!text) return S_OK;
    part_style style(*p, StateOf(theme, partId, state));
    style.Append("label", style.State());
    double x = 0, y = 0;
    cairo_save(dc);
    if (!(flags & DT_NOCLIP)) {
        cairo_rectangle(dc, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top);
        cairo_clip(dc);
    }
    PangoLayout *layout = LayoutIn(dc, style.Context(), text, length, flags, *rect, x, y);
    gtk_render_layout(style.Context(), dc, x, y, layout);
    g_object_unref(layout);
    cairo_restore(dc);
    return S_OK;
}

HRESULT GetThemeTextExtent(HTHEME theme, HDC dc, int partId, int state, char16_t const *text, int length, DWORD flags,
                           tagRECT const *bounds, tagRECT *extent) {
    part const *p = Usable(theme, partId, dc, bounds);
    if (!p || !extent || (!text && length != 0)) return E_INVALIDARG;
    part_style style(*p, StateOf(theme, partId, state));
    style.Append("label", style.State());
    double x = 0, y = 0;
    PangoLayout *layout = LayoutIn(dc, style.Context(), text ? text : u"", length, flags, *bounds, x, y);
    int w = 0, h = 0;
    pango_layout_get_pixel_size(layout, &w, &h);
    g_object_unref(layout);
    *extent = {bounds->left, bounds->top, bounds->left + w, bounds->top + h};
    return S_OK;
}

HRESULT GetThemeBackgroundRegion(HTHEME theme, HDC, int partId, int state, tagRECT const *rect, HRGN *region) {
    if (!region) return E_POINTER;
    *region = nullptr;
    theme_class const *entry = ClassOf(theme);
    part const *p = entry && rect ? platform::theme::FindPart(*entry, partId) : nullptr;
    if (!p) return E_INVALIDARG;
    part_style style(*p, StateOf(theme, partId, state));
    GdkRectangle box = Inner(style.Context(), *rect);
    cairo_rectangle_int_t area{box.x, box.y, box.width, box.height};
    *region = cairo_region_create_rectangle(&area);
    return S_OK;
}

}  // namespace qor::tools
