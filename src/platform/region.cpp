#include "qor/tools/platform/region.h"

#include <cairo.h>

#include <cstring>
#include <vector>

namespace qor::tools {

HRGN ExtCreateRegion(XFORM const *transform, DWORD size, RGNDATA const *data) {
    if (transform || !data || size < sizeof(RGNDATAHEADER)) return nullptr;
    RGNDATAHEADER const &header = data->rdh;
    if (header.dwSize != sizeof(RGNDATAHEADER) || header.iType != RDH_RECTANGLES ||
        header.nCount > (size - sizeof(RGNDATAHEADER)) / sizeof(RECTL)) {
        return nullptr;
    }
    std::vector<cairo_rectangle_int_t> rects;
    rects.reserve(header.nCount);
    for (DWORD i = 0; i < header.nCount; ++i) {
        RECTL r;
        std::memcpy(&r, data->Buffer + i * sizeof(RECTL), sizeof r);
        if (r.right > r.left && r.bottom > r.top) rects.push_back({r.left, r.top, r.right - r.left, r.bottom - r.top});
    }
    cairo_region_t *region = cairo_region_create_rectangles(rects.data(), int(rects.size()));
    if (cairo_region_status(region) == CAIRO_STATUS_SUCCESS) return region;
    cairo_region_destroy(region);
    return nullptr;
}

bool DeleteObject(HRGN region) {
    if (!region) return false;
    cairo_region_destroy(region);
    return true;
}

}  // namespace qor::tools
