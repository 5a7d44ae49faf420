#include "d2d_target.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "box_reduce.h"
#include "codec_formats.h"
#include "d2d_path.h"
#include "d2d_resources.h"
#include "dwrite_text.h"
#include "qor/tools/container/sptr.h"
#include "wic_bitmap.h"

namespace qor::tools::platform::d2d {

namespace {

constexpr double kPi = 3.14159265358979323846;

bool Finite(std::initializer_list<float> values) {
    return std::all_of(values.begin(), values.end(), [](float v) { return std::isfinite(v); });
}

bool Finite(D2D1_RECT_F const &r) { return Finite({r.left, r.top, r.right, r.bottom}); }

cairo_matrix_t Matrix(D2D1_MATRIX_3X2_F const &m) {
    cairo_matrix_t c;
    cairo_matrix_init(&c, m._11, m._12, m._21, m._22, m._31, m._32);
    return c;
}

cairo_line_cap_t Cap(D2D1_CAP_STYLE cap) {
    switch (cap) {
    case D2D1_CAP_STYLE_SQUARE: return CAIRO_LINE_CAP_SQUARE;
    case D2D1_CAP_STYLE_ROUND:
    case D2D1_CAP_STYLE_TRIANGLE: return CAIRO_LINE_CAP_ROUND;
    case D2D1_CAP_STYLE_FLAT: break;
    }
    return CAIRO_LINE_CAP_BUTT;
}

cairo_line_join_t Join(D2D1_LINE_JOIN join) {
    switch (join) {
    case D2D1_LINE_JOIN_BEVEL: return CAIRO_LINE_JOIN_BEVEL;
    case D2D1_LINE_JOIN_ROUND: return CAIRO_LINE_JOIN_ROUND;
    default: break;
    }
    return CAIRO_LINE_JOIN_MITER;
}

void RoundedRectPath(cairo_t *cr, D2D1_ROUNDED_RECT const &r) {
    double left = std::min(r.rect.left, r.rect.right), right = std::max(r.rect.left, r.rect.right);
    double top = std::min(r.rect.top, r.rect.bottom), bottom = std::max(r.rect.top, r.rect.bottom);
    double rx = std::clamp<double>(r.radiusX, 0, (right - left) / 2), ry = std::clamp<double>(r.radiusY, 0, (bottom - top) / 2);
    if (rx <= 0 || ry <= 0) {
        cairo_rectangle(cr, left, top, right - left, bottom - top);
        return;
    }
    cairo_new_sub_path(cr);
    auto corner = [&](double cx, double cy, double from) {
        cairo_save(cr);
        cairo_translate(cr, cx, cy);
        cairo_scale(cr, rx, ry);
        cairo_arc(cr, 0, 0, 1, from, from + kPi / 2);
        cairo_restore(cr);
    };
    corner(right - rx, top + ry, -kPi / 2);
    corner(right - rx, bottom - ry, 0);
    corner(left + rx, bottom - ry, kPi / 2);
    corner(left + rx, top + ry, kPi);
    cairo_close_path(cr);
}

bool EllipsePath(cairo_t *cr, D2D1_ELLIPSE const &e) {
    if (!Finite({e.point.x, e.point.y, e.radiusX, e.radiusY}) || e.radiusX == 0 || e.radiusY == 0) return false;
    cairo_new_sub_path(cr);
    cairo_save(cr);
    cairo_translate(cr, e.point.x, e.point.y);
    cairo_scale(cr, std::fabs(e.radiusX), std::fabs(e.radiusY));
    cairo_arc(cr, 0, 0, 1, 0, 2 * kPi);
    cairo_restore(cr);
    cairo_close_path(cr);
    return true;
}

}  // namespace

template <typename Top>
target_base<Top>::target_base(ID2D1Factory *factory, cairo_surface_t *surface, IUnknown *owner, float dpiX,
                             float dpiY)
    : mFactory(factory), mOwner(owner), mSurface(cairo_surface_reference(surface)), mCairo(cairo_create(surface)),
      mDpiX(dpiX > 0 ? dpiX : 96), mDpiY(dpiY > 0 ? dpiY : 96) {
    if (mFactory) mFactory->AddRef();
    if (mOwner) mOwner->AddRef();
}

template <typename Top>
target_base<Top>::~target_base() {
    cairo_destroy(mCairo);
    cairo_surface_flush(mSurface);
    cairo_surface_destroy(mSurface);
    if (mOwner) mOwner->Release();
    if (mFactory) mFactory->Release();
}

template <typename Top>
void target_base<Top>::_Bind(cairo_surface_t *surface) {
    while (mClips) PopAxisAlignedClip();
    cairo_destroy(mCairo);
    cairo_surface_destroy(mSurface);
    mSurface = cairo_surface_reference(surface);
    mCairo = cairo_create(surface);
}

template <typename Top>
void target_base<Top>::GetFactory(ID2D1Factory **factory) const {
    if (!factory) return;
    *factory = mFactory;
    if (mFactory) mFactory->AddRef();
}

template <typename Top>
HRESULT target_base<Top>::CreateBitmap(D2D1_SIZE_U size, void const *source, std::uint32_t pitch,
                                    D2D1_BITMAP_PROPERTIES const &properties, ID2D1Bitmap **out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    D2D1_PIXEL_FORMAT f = properties.pixelFormat;
    if ((f.format != DXGI_FORMAT_UNKNOWN && f.format != DXGI_FORMAT_B8G8R8A8_UNORM) ||
        f.alphaMode == D2D1_ALPHA_MODE_STRAIGHT) {
        return D2DERR_UNSUPPORTED_PIXEL_FORMAT;
    }
    if (size.width > std::uint32_t(codec::kMaxSide) || size.height > std::uint32_t(codec::kMaxSide)) return E_INVALIDARG;
    if (source && pitch < size.width * 4) return E_INVALIDARG;
    codec::surface pixels = codec::NewSurface(int(std::max(1u, size.width)), int(std::max(1u, size.height)));
    if (!pixels) return E_OUTOFMEMORY;
    for (std::uint32_t y = 0; source && y < size.height; ++y) {
        std::memcpy(codec::Row(pixels.get(), int(y)), static_cast<unsigned char const *>(source) + std::size_t(y) * pitch,
                    std::size_t(size.width) * 4);
    }
    cairo_surface_mark_dirty(pixels.get());
    return HandOut(new bitmap(mFactory, std::move(pixels)), out);
}

template <typename Top>
HRESULT target_base<Top>::CreateBitmapFromWicBitmap(IWICBitmapSource *source, D2D1_BITMAP_PROPERTIES const *,
                                                 ID2D1Bitmap **out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (!source) return E_INVALIDARG;
    if (auto *own = dynamic_cast<wic::bitmap *>(source)) return HandOut(new bitmap(mFactory, own), out);
    codec::surface pixels = wic::SurfaceOf(source);
    return pixels ? HandOut(new bitmap(mFactory, std::move(pixels)), out) : E_FAIL;
}

template <typename Top>
HRESULT target_base<Top>::CreateSolidColorBrush(D2D1_COLOR_F const &color, D2D1_BRUSH_PROPERTIES const *properties,
                                             ID2D1SolidColorBrush **brush) {
    return HandOut(new solid_brush(mFactory, color, properties), brush);
}

template <typename Top>
bool target_base<Top>::_Begin() {
    if (!mDrawing || cairo_status(mCairo) != CAIRO_STATUS_SUCCESS) return false;
    cairo_matrix_t transform = Matrix(mTransform), scale, total;
    cairo_matrix_init_scale(&scale, mDpiX / 96.0, mDpiY / 96.0);
    cairo_matrix_multiply(&total, &transform, &scale);
    cairo_matrix_t check = total;
    if (cairo_matrix_invert(&check) != CAIRO_STATUS_SUCCESS) return false;  // singular: nothing shows
    cairo_new_path(mCairo);
    cairo_set_matrix(mCairo, &total);
    cairo_set_operator(mCairo, CAIRO_OPERATOR_OVER);
    cairo_set_antialias(mCairo, mAntialias == D2D1_ANTIALIAS_MODE_ALIASED ? CAIRO_ANTIALIAS_NONE
                                                                          : CAIRO_ANTIALIAS_DEFAULT);
    return true;
}

template <typename Top>
void target_base<Top>::_Fill(ID2D1Brush *brush) {
    auto *solid = dynamic_cast<solid_brush *>(brush);
    if (!solid) {
        cairo_new_path(mCairo);
        return;
    }
    D2D1_COLOR_F c = solid->GetColor();
    cairo_set_source_rgba(mCairo, c.r, c.g, c.b, c.a * solid->GetOpacity());
    cairo_fill(mCairo);
}

template <typename Top>
void target_base<Top>::_Stroke(ID2D1Brush *brush, float width, ID2D1StrokeStyle *style) {
    auto *solid = dynamic_cast<solid_brush *>(brush);
    if (!solid || !std::isfinite(width) || width <= 0) {
        cairo_new_path(mCairo);
        return;
    }
    D2D1_COLOR_F c = solid->GetColor();
    cairo_set_source_rgba(mCairo, c.r, c.g, c.b, c.a * solid->GetOpacity());
    cairo_set_line_width(mCairo, width);
    auto *s = dynamic_cast<stroke_style *>(style);
    cairo_set_line_cap(mCairo, s ? Cap(s->GetStartCap()) : CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(mCairo, s ? Join(s->GetLineJoin()) : CAIRO_LINE_JOIN_MITER);
    cairo_set_miter_limit(mCairo, s ? std::max(1.0f, s->GetMiterLimit()) : 10.0);
    std::vector<double> dashes = s ? s->Pattern() : std::vector<double>();
    for (double &d : dashes) d *= width;
    bool visible = std::any_of(dashes.begin(), dashes.end(), [](double d) { return d > 0; });
    if (!dashes.empty() && visible && s->GetDashCap() != D2D1_CAP_STYLE_FLAT) cairo_set_line_cap(mCairo, Cap(s->GetDashCap()));
    cairo_set_dash(mCairo, visible ? dashes.data() : nullptr, visible ? int(dashes.size()) : 0,
                   s ? s->GetDashOffset() * width : 0);
    cairo_stroke(mCairo);
}

template <typename Top>
void target_base<Top>::DrawLine(D2D1_POINT_2F from, D2D1_POINT_2F to, ID2D1Brush *brush, float width,
                             ID2D1StrokeStyle *style) {
    if (!Finite({from.x, from.y, to.x, to.y}) || !_Begin()) return;
    cairo_move_to(mCairo, from.x, from.y);
    cairo_line_to(mCairo, to.x, to.y);
    _Stroke(brush, width, style);
}

template <typename Top>
void target_base<Top>::DrawRectangle(D2D1_RECT_F const &r, ID2D1Brush *brush, float width, ID2D1StrokeStyle *style) {
    if (!Finite(r) || !_Begin()) return;
    cairo_rectangle(mCairo, r.left, r.top, r.right - r.left, r.bottom - r.top);
    _Stroke(brush, width, style);
}

template <typename Top>
void target_base<Top>::FillRectangle(D2D1_RECT_F const &r, ID2D1Brush *brush) {
    if (!Finite(r) || !_Begin()) return;
    cairo_rectangle(mCairo, r.left, r.top, r.right - r.left, r.bottom - r.top);
    _Fill(brush);
}

template <typename Top>
void target_base<Top>::DrawRoundedRectangle(D2D1_ROUNDED_RECT const &r, ID2D1Brush *brush, float width,
                                         ID2D1StrokeStyle *style) {
    if (!Finite(r.rect) || !Finite({r.radiusX, r.radiusY}) || !_Begin()) return;
    RoundedRectPath(mCairo, r);
    _Stroke(brush, width, style);
}

template <typename Top>
void target_base<Top>::FillRoundedRectangle(D2D1_ROUNDED_RECT const &r, ID2D1Brush *brush) {
    if (!Finite(r.rect) || !Finite({r.radiusX, r.radiusY}) || !_Begin()) return;
    RoundedRectPath(mCairo, r);
    _Fill(brush);
}

template <typename Top>
void target_base<Top>::DrawEllipse(D2D1_ELLIPSE const &e, ID2D1Brush *brush, float width, ID2D1StrokeStyle *style) {
    if (!_Begin() || !EllipsePath(mCairo, e)) return;
    _Stroke(brush, width, style);
}

template <typename Top>
void target_base<Top>::FillEllipse(D2D1_ELLIPSE const &e, ID2D1Brush *brush) {
    if (!_Begin() || !EllipsePath(mCairo, e)) return;
    _Fill(brush);
}

template <typename Top>
void target_base<Top>::DrawBitmap(ID2D1Bitmap *image, D2D1_RECT_F const *destination, float opacity,
                               D2D1_BITMAP_INTERPOLATION_MODE mode, D2D1_RECT_F const *source) {
    auto *b = dynamic_cast<bitmap *>(image);
    if (!b || !std::isfinite(opacity)) return;
    D2D1_SIZE_F whole = b->GetSize();
    D2D1_RECT_F from = source ? *source : D2D1_RECT_F{0, 0, whole.width, whole.height};
    D2D1_RECT_F to = destination ? *destination : D2D1_RECT_F{0, 0, whole.width, whole.height};
    double fromWidth = from.right - from.left, fromHeight = from.bottom - from.top;
    if (!Finite(from) || !Finite(to) || fromWidth <= 0 || fromHeight <= 0 || !_Begin()) return;
    // The size the whole bitmap would have on the device, for a picture that may come reduced.
    cairo_matrix_t device;
    cairo_get_matrix(mCairo, &device);
    double sx = std::hypot(device.xx, device.yx), sy = std::hypot(device.xy, device.yy);
    double boxWidth = std::fabs(to.right - to.left) * sx * whole.width / fromWidth;
    double boxHeight = std::fabs(to.bottom - to.top) * sy * whole.height / fromHeight;
    cairo_surface_t *pixels = b->Pixels(int(std::ceil(boxWidth)), int(std::ceil(boxHeight)));
    if (!pixels) return;
    double reduction = cairo_image_surface_get_width(pixels) / double(whole.width);
    double reductionY = cairo_image_surface_get_height(pixels) / double(whole.height);
    // A whole picture shrunk to a fraction of its size is first reduced by whole
    // factors, so that the smooth scaler below reads few pixels.
    bool upright = device.yx == 0 && device.xy == 0;
    int kx = std::min(64, int(cairo_image_surface_get_width(pixels) / std::max(boxWidth, 1.0)));
    int ky = std::min(64, int(cairo_image_surface_get_height(pixels) / std::max(boxHeight, 1.0)));
    if (!source && upright && mode == D2D1_BITMAP_INTERPOLATION_MODE_LINEAR && kx >= 2 && ky >= 2) {
        if (codec::surface reduced = BoxReduce(pixels, kx, ky)) {
            cairo_surface_destroy(pixels);
            pixels = reduced.release();
            reduction /= kx;
            reductionY /= ky;
        }
    }
    cairo_save(mCairo);
    cairo_rectangle(mCairo, to.left, to.top, to.right - to.left, to.bottom - to.top);
    cairo_clip(mCairo);
    cairo_translate(mCairo, to.left, to.top);
    cairo_scale(mCairo, (to.right - to.left) / (fromWidth * reduction), (to.bottom - to.top) / (fromHeight * reductionY));
    cairo_set_source_surface(mCairo, pixels, -from.left * reduction, -from.top * reductionY);
    cairo_pattern_t *pattern = cairo_get_source(mCairo);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(pattern, mode == D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR ? CAIRO_FILTER_NEAREST
                                                                                              : CAIRO_FILTER_GOOD);
    cairo_paint_with_alpha(mCairo, std::clamp(opacity, 0.0f, 1.0f));
    cairo_restore(mCairo);
    cairo_surface_destroy(pixels);
}

template <typename Top>
void target_base<Top>::DrawGeometry(ID2D1Geometry *geometry, ID2D1Brush *brush, float width, ID2D1StrokeStyle *style) {
    auto *path = dynamic_cast<path_geometry *>(geometry);
    if (!path || path->mState != path_geometry::state::closed || !_Begin()) return;
    path->Trace(mCairo, false);
    _Stroke(brush, width, style);
}

template <typename Top>
void target_base<Top>::FillGeometry(ID2D1Geometry *geometry, ID2D1Brush *brush, ID2D1Brush *opacityBrush) {
    auto *path = dynamic_cast<path_geometry *>(geometry);
    if (!path || opacityBrush || path->mState != path_geometry::state::closed || !_Begin()) return;
    path->Trace(mCairo, true);
    cairo_set_fill_rule(mCairo, path->FillRule());
    _Fill(brush);
    cairo_set_fill_rule(mCairo, CAIRO_FILL_RULE_WINDING);
}

template <typename Top>
void target_base<Top>::DrawText(char16_t const *text, std::uint32_t length, IDWriteTextFormat *format,
                                D2D1_RECT_F const &rect, ID2D1Brush *brush, DWORD options, DWORD) {
    dwrite::format_values const *values = dwrite::ValuesOf(format);
    if (!text || !values || !Finite(rect)) return;
    float width = std::max(0.0f, rect.right - rect.left), height = std::max(0.0f, rect.bottom - rect.top);
    container::comptr<IDWriteTextLayout> layout(dwrite::NewLayout(*values, std::u16string(text, length), width, height));
    bool clip = options & D2D1_DRAW_TEXT_OPTIONS_CLIP;
    if (clip) PushAxisAlignedClip(rect, D2D1_ANTIALIAS_MODE_PER_PRIMITIVE);
    DrawTextLayout(D2D1::Point2F(rect.left, rect.top), layout, brush, 0);
    if (clip) PopAxisAlignedClip();
}

template <typename Top>
void target_base<Top>::DrawTextLayout(D2D1_POINT_2F origin, IDWriteTextLayout *layout, ID2D1Brush *brush, DWORD) {
    auto *solid = dynamic_cast<solid_brush *>(brush);
    if (!layout || !solid || !Finite({origin.x, origin.y}) || !_Begin()) return;
    double x = 0, y = 0;
    dwrite::Origin(layout, x, y);
    D2D1_COLOR_F c = solid->GetColor();
    cairo_set_source_rgba(mCairo, c.r, c.g, c.b, c.a * solid->GetOpacity());
    cairo_move_to(mCairo, origin.x + x, origin.y + y);
    pango_cairo_show_layout(mCairo, layout->GetPangoLayout());
    cairo_new_path(mCairo);
}

template <typename Top>
void target_base<Top>::SetTransform(D2D1_MATRIX_3X2_F const &transform) { mTransform = transform; }

template <typename Top>
void target_base<Top>::GetTransform(D2D1_MATRIX_3X2_F *transform) const {
    if (transform) *transform = mTransform;
}

template <typename Top>
void target_base<Top>::PushAxisAlignedClip(D2D1_RECT_F const &clip, D2D1_ANTIALIAS_MODE) {
    if (!mDrawing) return;
    cairo_save(mCairo);
    ++mClips;
    if (!Finite(clip) || !_Begin()) return;
    cairo_rectangle(mCairo, clip.left, clip.top, clip.right - clip.left, clip.bottom - clip.top);
    cairo_clip(mCairo);
}

template <typename Top>
void target_base<Top>::PopAxisAlignedClip() {
    if (mClips == 0) return;
    cairo_restore(mCairo);
    --mClips;
}

template <typename Top>
void target_base<Top>::Clear(D2D1_COLOR_F const *color) {
    if (!mDrawing || cairo_status(mCairo) != CAIRO_STATUS_SUCCESS) return;
    D2D1_COLOR_F c = color ? *color : D2D1_COLOR_F{};
    cairo_save(mCairo);
    cairo_set_operator(mCairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(mCairo, c.r, c.g, c.b, c.a);
    cairo_paint(mCairo);
    cairo_restore(mCairo);
}

template <typename Top>
void target_base<Top>::BeginDraw() {
    mDrawing = true;
    mError = S_OK;
}

template <typename Top>
HRESULT target_base<Top>::EndDraw(D2D1_TAG *tag1, D2D1_TAG *tag2) {
    if (tag1) *tag1 = 0;
    if (tag2) *tag2 = 0;
    if (!mDrawing) return D2DERR_WRONG_STATE;
    while (mClips) PopAxisAlignedClip();
    mDrawing = false;
    cairo_surface_flush(mSurface);
    if (cairo_status(mCairo) != CAIRO_STATUS_SUCCESS) return E_FAIL;
    return mError;
}

template <typename Top>
HRESULT target_base<Top>::Flush(D2D1_TAG *tag1, D2D1_TAG *tag2) {
    if (tag1) *tag1 = 0;
    if (tag2) *tag2 = 0;
    cairo_surface_flush(mSurface);
    return cairo_status(mCairo) == CAIRO_STATUS_SUCCESS ? mError : E_FAIL;
}

template <typename Top>
D2D1_PIXEL_FORMAT target_base<Top>::GetPixelFormat() const {
    return {DXGI_FORMAT_B8G8R8A8_UNORM, D2D1_ALPHA_MODE_PREMULTIPLIED};
}

template <typename Top>
void target_base<Top>::SetDpi(float dpiX, float dpiY) {
    if (dpiX == 0 && dpiY == 0) dpiX = dpiY = 96;
    if (!(dpiX > 0) || !(dpiY > 0)) return;
    mDpiX = dpiX;
    mDpiY = dpiY;
}

template <typename Top>
void target_base<Top>::GetDpi(float *dpiX, float *dpiY) const {
    if (dpiX) *dpiX = mDpiX;
    if (dpiY) *dpiY = mDpiY;
}

template <typename Top>
D2D1_SIZE_F target_base<Top>::GetSize() const {
    D2D1_SIZE_U pixels = GetPixelSize();
    return {float(pixels.width * 96.0 / mDpiX), float(pixels.height * 96.0 / mDpiY)};
}

template <typename Top>
D2D1_SIZE_U target_base<Top>::GetPixelSize() const {
    return {std::uint32_t(cairo_image_surface_get_width(mSurface)), std::uint32_t(cairo_image_surface_get_height(mSurface))};
}

template class target_base<ID2D1RenderTarget>;
template class target_base<ID2D1DCRenderTarget>;
template class target_base<ID2D1HwndRenderTarget>;

dc_target::dc_target(ID2D1Factory *factory, float dpiX, float dpiY)
    : target_base(factory, codec::NewSurface(1, 1).get(), nullptr, dpiX, dpiY) {}

dc_target::~dc_target() {
    if (mDc) cairo_destroy(mDc);
}

// A new size makes a new surface; the same size keeps what was drawn.
HRESULT dc_target::BindDC(HDC dc, RECT const *rect) {
    if (!dc || !rect) return E_INVALIDARG;
    int width = rect->right - rect->left, height = rect->bottom - rect->top;
    if (width <= 0 || height <= 0 || cairo_status(dc) != CAIRO_STATUS_SUCCESS) return E_INVALIDARG;
    if (width != cairo_image_surface_get_width(mSurface) || height != cairo_image_surface_get_height(mSurface)) {
        codec::surface pixels = codec::NewSurface(width, height);
        if (!pixels) return E_OUTOFMEMORY;
        _Bind(pixels.get());
    }
    if (mDc) cairo_destroy(mDc);
    mDc = cairo_reference(dc);
    mRect = *rect;
    return S_OK;
}

HRESULT dc_target::EndDraw(D2D1_TAG *tag1, D2D1_TAG *tag2) {
    HRESULT result = target_base::EndDraw(tag1, tag2);
    if (FAILED(result) || !mDc) return FAILED(result) ? result : D2DERR_WRONG_STATE;
    cairo_save(mDc);
    cairo_identity_matrix(mDc);
    cairo_set_operator(mDc, CAIRO_OPERATOR_OVER);
    cairo_set_source_surface(mDc, mSurface, mRect.left, mRect.top);
    cairo_rectangle(mDc, mRect.left, mRect.top, mRect.right - mRect.left, mRect.bottom - mRect.top);
    cairo_fill(mDc);
    cairo_restore(mDc);
    return cairo_status(mDc) == CAIRO_STATUS_SUCCESS ? S_OK : E_FAIL;
}

ID2D1StrokeStyle *NewStrokeStyle(ID2D1Factory *factory, D2D1_STROKE_STYLE_PROPERTIES const &properties,
                                 float const *dashes, std::uint32_t count) {
    return new stroke_style(factory, properties, dashes, count);
}

}  // namespace qor::tools::platform::d2d
