// Regions of the platform's drawing interface: an HRGN is a cairo_region_t *
// (destroy it with DeleteObject or cairo_region_destroy), made from a list of
// rectangles in the Windows RGNDATA layout.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/cairo_fwd.h"
#include "qor/tools/platform/types.h"

namespace qor::tools {

using HRGN = cairo_region_t *;

inline constexpr DWORD RDH_RECTANGLES = 1;

struct QOR_TOOLS_API RECTL {
    std::int32_t left, top, right, bottom;
};

struct QOR_TOOLS_API RGNDATAHEADER {
    DWORD dwSize;
    DWORD iType;
    DWORD nCount;
    DWORD nRgnSize;
    RECTL rcBound;
};

struct QOR_TOOLS_API RGNDATA {
    RGNDATAHEADER rdh;
    char Buffer[1];  // nCount RECTL follow the header
};

struct XFORM;

// A region of the union of the data's rectangles; empty and inverted ones add
// nothing. Null when the data is malformed or the transform is not null.
QOR_TOOLS_API HRGN ExtCreateRegion(XFORM const *transform, DWORD size, RGNDATA const *data);
QOR_TOOLS_API bool DeleteObject(HRGN region);

}  // namespace qor::tools
