// The drawing calls of a graphics: lines, arcs, rectangles, ellipses, pies,
// polygons and pictures, stroked with pens and filled with solid brushes.
#include <cmath>

#include "gdip_graphics.h"

namespace qor::tools::Gdiplus {

namespace {

constexpr double kDegree = M_PI / 180.0;

// The parameter of the ellipse point that lies at `degrees` from its centre.
double Parametric(double degrees, double a, double b) {
    double t = degrees * kDegree;
    return std::atan2(a * std::sin(t), b * std::cos(t));
}

bool Finite(std::initializer_list<REAL> values) {
    for (REAL v : values) {
        if (!std::isfinite(v)) return false;
    }
    return true;
}

void AddPolygon(cairo_t *cr, PointF const *points, INT count, bool close) {
    cairo_move_to(cr, points[0].X, points[0].Y);
    for (INT i = 1; i < count; ++i) cairo_line_to(cr, points[i].X, points[i].Y);
    if (close) cairo_close_path(cr);
}

Status Picture(GpGraphics *graphics, GpImage *image, double x, double y, double width, double height) {
    cairo_surface_t *surface = SurfaceOf(image);
    if (!surface) return InvalidParameter;
    double iw = cairo_image_surface_get_width(surface), ih = cairo_image_surface_get_height(surface);
    if (width <= 0 || height <= 0) return Ok;
    drawing d(graphics);
    if (!d.Ready()) return d.Result();
    cairo_t *cr = d.Cr();
    cairo_translate(cr, x, y);
    cairo_scale(cr, width / iw, height / ih);
    cairo_set_source_surface(cr, surface, 0, 0);
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(cairo_get_source(cr), width == iw && height == ih ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
    cairo_rectangle(cr, 0, 0, iw, ih);
    cairo_fill(cr);
    return Ok;
}

}  // namespace

void SetColor(cairo_t *cr, ARGB color) {
    cairo_set_source_rgba(cr, ((color >> 16) & 0xff) / 255.0, ((color >> 8) & 0xff) / 255.0, (color & 0xff) / 255.0,
                          (color >> 24) / 255.0);
}

void UsePen(cairo_t *cr, GpPen const &pen) {
    SetColor(cr, pen.mColor);
    double width = pen.mWidth;
    if (width <= 0 || pen.mUnit == UnitPixel) {
        double ux = width <= 0 ? 1.0 : width, uy = 0;
        cairo_device_to_user_distance(cr, &ux, &uy);
        width = std::hypot(ux, uy);
    }
    cairo_set_line_width(cr, width);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_MITER);
    static constexpr double kDash[] = {3, 1}, kDot[] = {1, 1}, kDashDot[] = {3, 1, 1, 1}, kDashDotDot[] = {3, 1, 1, 1, 1, 1};
    double const *pattern = nullptr;
    int count = 0;
    switch (pen.mDash) {
        case DashStyleDash: pattern = kDash, count = 2; break;
        case DashStyleDot: pattern = kDot, count = 2; break;
        case DashStyleDashDot: pattern = kDashDot, count = 4; break;
        case DashStyleDashDotDot: pattern = kDashDotDot, count = 6; break;
        default: break;
    }
    double dashes[6];
    for (int i = 0; i < count; ++i) dashes[i] = pattern[i] * width;
    cairo_set_dash(cr, dashes, count, 0);
}

void AddArc(cairo_t *cr, REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep, bool pie) {
    double a = width / 2.0, b = height / 2.0;
    double from = Parametric(start, a, b), to;
    if (std::fabs(sweep) >= 360) {
        to = from + (sweep > 0 ? 2 * M_PI : -2 * M_PI);
    } else {
        to = Parametric(double(start) + sweep, a, b);
        while (sweep > 0 && to < from) to += 2 * M_PI;
        while (sweep < 0 && to > from) to -= 2 * M_PI;
    }
    cairo_matrix_t saved;
    cairo_get_matrix(cr, &saved);
    cairo_translate(cr, x + a, y + b);
    cairo_scale(cr, a, b);
    if (pie) cairo_move_to(cr, 0, 0);
    if (sweep >= 0) {
        cairo_arc(cr, 0, 0, 1, from, to);
    } else {
        cairo_arc_negative(cr, 0, 0, 1, from, to);
    }
    if (pie) cairo_close_path(cr);
    cairo_set_matrix(cr, &saved);
}

Status GdipGraphicsClear(GpGraphics *graphics, ARGB color) {
    drawing d(graphics);
    if (!d.Ready()) return d.Result();
    cairo_set_operator(d.Cr(), CAIRO_OPERATOR_SOURCE);
    SetColor(d.Cr(), color);
    cairo_paint(d.Cr());
    return Ok;
}

Status GdipDrawLine(GpGraphics *graphics, GpPen *pen, REAL x1, REAL y1, REAL x2, REAL y2) {
    if (!Finite({x1, y1, x2, y2})) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) {
        cairo_move_to(cr, x1, y1);
        cairo_line_to(cr, x2, y2);
    });
}

Status GdipDrawLines(GpGraphics *graphics, GpPen *pen, PointF const *points, INT count) {
    if (!points || count < 2) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) { AddPolygon(cr, points, count, false); });
}

Status GdipDrawArc(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep) {
    if (!Finite({x, y, width, height, start, sweep}) || width <= 0 || height <= 0) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) { AddArc(cr, x, y, width, height, start, sweep, false); });
}

Status GdipDrawBezier(GpGraphics *graphics, GpPen *pen, REAL x1, REAL y1, REAL x2, REAL y2, REAL x3, REAL y3, REAL x4,
                      REAL y4) {
    if (!Finite({x1, y1, x2, y2, x3, y3, x4, y4})) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) {
        cairo_move_to(cr, x1, y1);
        cairo_curve_to(cr, x2, y2, x3, y3, x4, y4);
    });
}

Status GdipDrawRectangle(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height) {
    if (!Finite({x, y, width, height})) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) { cairo_rectangle(cr, x, y, width, height); });
}

Status GdipFillRectangle(GpGraphics *graphics, GpBrush *brush, REAL x, REAL y, REAL width, REAL height) {
    if (!Finite({x, y, width, height})) return InvalidParameter;
    return FillShape(graphics, brush, [&](cairo_t *cr) { cairo_rectangle(cr, x, y, width, height); });
}

Status GdipDrawEllipse(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height) {
    if (!Finite({x, y, width, height}) || width <= 0 || height <= 0) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) {
        AddArc(cr, x, y, width, height, 0, 360, false);
        cairo_close_path(cr);
    });
}

Status GdipFillEllipse(GpGraphics *graphics, GpBrush *brush, REAL x, REAL y, REAL width, REAL height) {
    if (!Finite({x, y, width, height}) || width <= 0 || height <= 0) return InvalidParameter;
    return FillShape(graphics, brush, [&](cairo_t *cr) { AddArc(cr, x, y, width, height, 0, 360, false); });
}

Status GdipDrawPie(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep) {
    if (!Finite({x, y, width, height, start, sweep}) || width <= 0 || height <= 0) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) { AddArc(cr, x, y, width, height, start, sweep, true); });
}

Status GdipFillPie(GpGraphics *graphics, GpBrush *brush, REAL x, REAL y, REAL width, REAL height, REAL start,
                   REAL sweep) {
    if (!Finite({x, y, width, height, start, sweep}) || width <= 0 || height <= 0) return InvalidParameter;
    return FillShape(graphics, brush, [&](cairo_t *cr) { AddArc(cr, x, y, width, height, start, sweep, true); });
}

Status GdipDrawPolygon(GpGraphics *graphics, GpPen *pen, PointF const *points, INT count) {
    if (!points || count < 2) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) { AddPolygon(cr, points, count, true); });
}

Status GdipFillPolygon(GpGraphics *graphics, GpBrush *brush, PointF const *points, INT count, FillMode mode) {
    if (!points || count < 3) return InvalidParameter;
    return FillShape(graphics, brush, [&](cairo_t *cr) { AddPolygon(cr, points, count, true); },
                mode == FillModeWinding ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
}

Status GdipDrawImageI(GpGraphics *graphics, GpImage *image, INT x, INT y) {
    cairo_surface_t *surface = SurfaceOf(image);
    if (!surface) return InvalidParameter;
    return Picture(graphics, image, x, y, cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface));
}

Status GdipDrawImageRect(GpGraphics *graphics, GpImage *image, REAL x, REAL y, REAL width, REAL height) {
    if (!Finite({x, y, width, height})) return InvalidParameter;
    return Picture(graphics, image, x, y, width, height);
}

}  // namespace qor::tools::Gdiplus
