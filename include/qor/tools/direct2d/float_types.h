// direct2d::pointf, sizef and rectf: the single-precision values the geometry
// and the drawing classes exchange. Each is its published Direct2D record
// (same fields, same order), so it can be handed on as it stands.
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/geometry.h"

namespace qor::tools::direct2d {

// A point of floats, made from its coordinates or the platform's record.
struct QOR_TOOLS_API pointf : D2D_POINT_2F {
    // The origin, a point at (px, py), or the record's point.
    constexpr pointf() noexcept = default;
    constexpr pointf(float px, float py) noexcept : D2D_POINT_2F{px, py} {}
    constexpr pointf(D2D_POINT_2F const &p) noexcept : D2D_POINT_2F(p) {}
};

// A size of floats, made from width and height or the platform's record.
struct QOR_TOOLS_API sizef : D2D_SIZE_F {
    // Zero, w by h, or the record's size.
    constexpr sizef() noexcept = default;
    constexpr sizef(float w, float h) noexcept : D2D_SIZE_F{w, h} {}
    constexpr sizef(D2D_SIZE_F const &s) noexcept : D2D_SIZE_F(s) {}
};

// A rectangle of floats by its edges, or the platform's record.
struct QOR_TOOLS_API rectf : D2D1_RECT_F {
    // Empty, from left, top, right and bottom, or the record's rectangle.
    constexpr rectf() noexcept = default;
    constexpr rectf(float l, float t, float r, float b) noexcept : D2D1_RECT_F{l, t, r, b} {}
    constexpr rectf(D2D1_RECT_F const &r) noexcept : D2D1_RECT_F(r) {}
};

}  // namespace qor::tools::direct2d
