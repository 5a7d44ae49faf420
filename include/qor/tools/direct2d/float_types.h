// direct2d::pointf, sizef and rectf: the single-precision values the geometry
// and the drawing classes exchange. Each is its published Direct2D record
// (same fields, same order), so it can be handed on as it stands.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/geometry.h"

namespace qor::tools::direct2d {

struct QOR_TOOLS_API pointf : D2D_POINT_2F {
    constexpr pointf() noexcept = default;
    constexpr pointf(float px, float py) noexcept : D2D_POINT_2F{px, py} {}
    constexpr pointf(D2D_POINT_2F const &p) noexcept : D2D_POINT_2F(p) {}
};

struct QOR_TOOLS_API sizef : D2D_SIZE_F {
    constexpr sizef() noexcept = default;
    constexpr sizef(float w, float h) noexcept : D2D_SIZE_F{w, h} {}
    constexpr sizef(D2D_SIZE_F const &s) noexcept : D2D_SIZE_F(s) {}
};

struct QOR_TOOLS_API rectf : D2D1_RECT_F {
    constexpr rectf() noexcept = default;
    constexpr rectf(float l, float t, float r, float b) noexcept : D2D1_RECT_F{l, t, r, b} {}
    constexpr rectf(D2D1_RECT_F const &r) noexcept : D2D1_RECT_F(r) {}
};

}  // namespace qor::tools::direct2d
