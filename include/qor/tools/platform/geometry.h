// The platform's plain geometry records, with the Windows field order:
// integer points and rectangles (the framework's CPoint/CRect) and the
// published Direct2D float records.
#pragma once

#include "qor/tools/export.h"

namespace qor::tools {

struct QOR_TOOLS_API CPoint {
    int x = 0;
    int y = 0;
};

struct QOR_TOOLS_API CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
using tagRECT = CRect;

struct QOR_TOOLS_API D2D_POINT_2F {
    float x = 0;
    float y = 0;
};
using D2D1_POINT_2F = D2D_POINT_2F;

struct QOR_TOOLS_API D2D_SIZE_F {
    float width = 0;
    float height = 0;
};
using D2D1_SIZE_F = D2D_SIZE_F;

struct QOR_TOOLS_API D2D1_RECT_F {
    float left = 0;
    float top = 0;
    float right = 0;
    float bottom = 0;
};

}  // namespace qor::tools
