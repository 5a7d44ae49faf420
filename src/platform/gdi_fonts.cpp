// The GDI calls the drawing layers make on contexts and fonts.
#include <gdk/gdk.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "qor/tools/platform/handles.h"
#include "utf8.h"

namespace qor::tools {

// A context on a screen (an X surface) has the screen's resolution; any
// other context 96 per inch. Either is multiplied by the surface's scale.
int GetDeviceCaps(HDC dc, int index) {
    if (index != LOGPIXELSX && index != LOGPIXELSY) return 0;
    if (!dc || cairo_status(dc) != CAIRO_STATUS_SUCCESS) return 96;
    cairo_surface_t *target = cairo_get_target(dc);
    double sx = 1, sy = 1, dpi = 96;
    cairo_surface_get_device_scale(target, &sx, &sy);
    GdkScreen *screen = gdk_screen_get_default();
    if (screen && cairo_surface_get_type(target) == CAIRO_SURFACE_TYPE_XLIB && gdk_screen_get_resolution(screen) > 0) {
        dpi = gdk_screen_get_resolution(screen);
    }
    return int(std::lround(dpi * (index == LOGPIXELSX ? sx : sy)));
}

int GetObjectW(HFONT object, int size, void *out) {
    if (!object || !out || size < int(sizeof(LOGFONTW))) return 0;
    LOGFONTW lf{};
    double pixels = double(pango_font_description_get_size(object)) / PANGO_SCALE;
    if (!pango_font_description_get_size_is_absolute(object)) pixels = pixels * 96 / 72;
    lf.lfHeight = -std::int32_t(std::lround(pixels));
    lf.lfWeight = pango_font_description_get_weight(object);
    lf.lfItalic = pango_font_description_get_style(object) != PANGO_STYLE_NORMAL;
    char const *family = pango_font_description_get_family(object);
    std::u16string name = detail::ToUtf16(family ? family : "");
    name.resize(std::min<std::size_t>(name.size(), LF_FACESIZE - 1));
    std::memcpy(lf.lfFaceName, name.c_str(), (name.size() + 1) * sizeof(char16_t));
    std::memcpy(out, &lf, sizeof lf);
    return int(sizeof lf);
}

int MulDiv(int a, int b, int c) {
    if (c == 0) return -1;
    std::int64_t product = std::int64_t(a) * b;
    bool negative = (product < 0) != (c < 0);
    std::int64_t magnitude = (std::llabs(product) + std::llabs(std::int64_t(c)) / 2) / std::llabs(std::int64_t(c));
    std::int64_t result = negative ? -magnitude : magnitude;
    return result > INT32_MAX || result < INT32_MIN ? -1 : int(result);
}

}  // namespace qor::tools
