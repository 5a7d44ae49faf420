// Paths of the painting interface: the steps that build one, kept until it
// is drawn, and replayed onto the context then.
#include <cmath>
#include <new>

#include "gdip_graphics.h"

namespace qor::tools::Gdiplus {

namespace {

Status Add(GpPath *path, GpPath::step step, std::initializer_list<REAL> args) {
    if (!path) return InvalidParameter;
    GpPath::item item{step, {}};
    int i = 0;
    for (REAL a : args) {
        if (!std::isfinite(a)) return InvalidParameter;
        item.mArgs[i++] = a;
    }
    try {
        path->mItems.push_back(item);
    } catch (std::bad_alloc const &) {
        return OutOfMemory;
    }
    return Ok;
}

// Joins a figure's pieces as the platform does: each piece continues from
// where the figure stands, with a line to its start.
void Continue(cairo_t *cr, double x, double y) {
    if (cairo_has_current_point(cr)) {
        cairo_line_to(cr, x, y);
    } else {
        cairo_move_to(cr, x, y);
    }
}

}  // namespace

void AddPath(cairo_t *cr, GpPath const &path) {
    for (GpPath::item const &item : path.mItems) {
        REAL const *a = item.mArgs;
        switch (item.mStep) {
            case GpPath::step::line:
                Continue(cr, a[0], a[1]);
                cairo_line_to(cr, a[2], a[3]);
                break;
            case GpPath::step::bezier:
                Continue(cr, a[0], a[1]);
                cairo_curve_to(cr, a[2], a[3], a[4], a[5], a[6], a[7]);
                break;
            case GpPath::step::arc: AddArc(cr, a[0], a[1], a[2], a[3], a[4], a[5], false); break;
            case GpPath::step::close: cairo_close_path(cr); [[fallthrough]];
            case GpPath::step::start: cairo_new_sub_path(cr); break;
        }
    }
}

Status GdipCreatePath(FillMode mode, GpPath **path) {
    if (!path) return InvalidParameter;
    *path = new (std::nothrow) GpPath;
    if (!*path) return OutOfMemory;
    (*path)->mFill = mode;
    return Ok;
}

Status GdipDeletePath(GpPath *path) {
    if (!path) return InvalidParameter;
    delete path;
    return Ok;
}

Status GdipStartPathFigure(GpPath *path) { return Add(path, GpPath::step::start, {}); }

Status GdipClosePathFigure(GpPath *path) { return Add(path, GpPath::step::close, {}); }

Status GdipAddPathLine(GpPath *path, REAL x1, REAL y1, REAL x2, REAL y2) {
    return Add(path, GpPath::step::line, {x1, y1, x2, y2});
}

Status GdipAddPathBezier(GpPath *path, REAL x1, REAL y1, REAL x2, REAL y2, REAL x3, REAL y3, REAL x4, REAL y4) {
    return Add(path, GpPath::step::bezier, {x1, y1, x2, y2, x3, y3, x4, y4});
}

Status GdipAddPathArc(GpPath *path, REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep) {
    if (!(width > 0) || !(height > 0)) return InvalidParameter;
    return Add(path, GpPath::step::arc, {x, y, width, height, start, sweep});
}

Status GdipAddPathRectangle(GpPath *path, REAL x, REAL y, REAL width, REAL height) {
    Status status = GdipStartPathFigure(path);
    if (status == Ok) status = Add(path, GpPath::step::line, {x, y, x + width, y});
    if (status == Ok) status = Add(path, GpPath::step::line, {x + width, y, x + width, y + height});
    if (status == Ok) status = Add(path, GpPath::step::line, {x + width, y + height, x, y + height});
    return status == Ok ? GdipClosePathFigure(path) : status;
}

Status GdipAddPathEllipse(GpPath *path, REAL x, REAL y, REAL width, REAL height) {
    Status status = GdipStartPathFigure(path);
    if (status == Ok) status = GdipAddPathArc(path, x, y, width, height, 0, 360);
    return status == Ok ? GdipClosePathFigure(path) : status;
}

Status GdipDrawPath(GpGraphics *graphics, GpPen *pen, GpPath *path) {
    if (!path) return InvalidParameter;
    return StrokeShape(graphics, pen, [&](cairo_t *cr) { AddPath(cr, *path); });
}

Status GdipFillPath(GpGraphics *graphics, GpBrush *brush, GpPath *path) {
    if (!path) return InvalidParameter;
    return FillShape(graphics, brush, [&](cairo_t *cr) { AddPath(cr, *path); },
                     path->mFill == FillModeWinding ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
}

}  // namespace qor::tools::Gdiplus
