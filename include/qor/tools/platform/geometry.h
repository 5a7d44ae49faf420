// The platform's plain geometry records, with the Windows field order:
// integer points and rectangles (the framework's CPoint/CRect) and the
// published Direct2D float records.
#pragma once

namespace qor::tools {

struct CPoint {
    int x = 0;
    int y = 0;
};

struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
using tagRECT = CRect;

struct D2D_POINT_2F {
    float x = 0;
    float y = 0;
};
using D2D1_POINT_2F = D2D_POINT_2F;

struct D2D_SIZE_F {
    float width = 0;
    float height = 0;
};
using D2D1_SIZE_F = D2D_SIZE_F;

struct D2D1_RECT_F {
    float left = 0;
    float top = 0;
    float right = 0;
    float bottom = 0;
};

}  // namespace qor::tools
