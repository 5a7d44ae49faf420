// What is selected into a context: a record kept on the cairo_t itself (its
// user data), so that it goes with the context.
#include <glib.h>
#include <pango/pangocairo.h>

#include <cstring>
#include <mutex>
#include <unordered_map>

#include "qor/tools/platform/handles.h"

namespace qor::tools {

namespace {

enum class kind { font, bitmap };

struct selection {
    HFONT mFont = nullptr;
    HBITMAP mBitmap = nullptr;
};

cairo_user_data_key_t gSelectionKey;

// The kinds of objects selected by type, so that the untyped form (used to
// put back what a typed selection answered) knows where one goes.
std::mutex gKindsLock;
std::unordered_map<void const *, kind> gKinds;

void Remember(void const *object, kind k) {
    if (!object) return;
    std::lock_guard guard(gKindsLock);
    gKinds[object] = k;
}

selection *Record(HDC dc, bool make) {
    if (!dc || cairo_status(dc) != CAIRO_STATUS_SUCCESS) return nullptr;
    auto *record = static_cast<selection *>(cairo_get_user_data(dc, &gSelectionKey));
    if (record || !make) return record;
    record = new selection;
    if (cairo_set_user_data(dc, &gSelectionKey, record, [](void *p) { delete static_cast<selection *>(p); }) !=
        CAIRO_STATUS_SUCCESS) {
        delete record;
        return nullptr;
    }
    return record;
}

template <typename T>
T Swap(HDC dc, T selection::*slot, T object, kind k) {
    selection *record = Record(dc, true);
    if (!record) return nullptr;
    Remember(object, k);
    T previous = record->*slot;
    record->*slot = object;
    return previous;
}

}  // namespace

HFONT SelectObject(HDC dc, HFONT font) { return Swap(dc, &selection::mFont, font, kind::font); }

HBITMAP SelectObject(HDC dc, HBITMAP bitmap) { return Swap(dc, &selection::mBitmap, bitmap, kind::bitmap); }

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    kind k;
    {
        std::lock_guard guard(gKindsLock);
        auto found = gKinds.find(object);
        if (found == gKinds.end()) return nullptr;
        k = found->second;
    }
    if (k == kind::font) return SelectObject(dc, static_cast<HFONT>(object));
    return SelectObject(dc, static_cast<HBITMAP>(object));
}

HFONT GetCurrentFont(HDC dc) {
    selection *record = Record(dc, false);
    return record ? record->mFont : nullptr;
}

int GetObjectA(HFONT object, int size, void *out) {
    LOGFONTW wide;
    if (size < int(sizeof(LOGFONTA)) || !GetObjectW(object, sizeof wide, &wide)) return 0;
    LOGFONTA narrow{};
    std::memcpy(&narrow, &wide, offsetof(LOGFONTA, lfFaceName));
    char const *family = pango_font_description_get_family(object);
    gsize written = 0;
    gchar *local = g_convert_with_fallback(family ? family : "", -1, "", "UTF-8", "?", nullptr, &written, nullptr);
    if (!local) local = g_strdup("");
    g_strlcpy(narrow.lfFaceName, local, sizeof narrow.lfFaceName);
    g_free(local);
    std::memcpy(out, &narrow, sizeof narrow);
    return int(sizeof narrow);
}

}  // namespace qor::tools
