// The 2D drawing interfaces, COM-shaped, with the Windows names, ids,
// constants, records and results: the factory, render targets, bitmaps,
// brushes and stroke styles, and the D2D1 helper functions for building the
// records. The library draws with Cairo: a render target wraps a cairo_t
// (GetCairoContext) for anything beyond the common drawing set below.
//
//   ID2D1Factory *factory = nullptr;
//   D2D1CreateFactory(D2D1_FACTORY_TYPE_SINGLE_THREADED, IID_ID2D1Factory, nullptr, (void **)&factory);
//   factory->CreateWicBitmapRenderTarget(bitmap, D2D1::RenderTargetProperties(), &target);
//   target->BeginDraw();
//   target->CreateSolidColorBrush(D2D1::ColorF(1, 0, 0), &red);
//   target->FillEllipse(D2D1::Ellipse(D2D1::Point2F(50, 50), 40, 30), red);
//   target->EndDraw();
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/cairo_fwd.h"
#include "qor/tools/platform/com.h"
#include "qor/tools/platform/dwrite.h"
#include "qor/tools/platform/geometry.h"
#include "qor/tools/platform/handles.h"
#include "qor/tools/platform/wincodec.h"

namespace qor::tools {

using D2D1_TAG = std::uint64_t;

enum D2D1_FACTORY_TYPE : DWORD { D2D1_FACTORY_TYPE_SINGLE_THREADED = 0, D2D1_FACTORY_TYPE_MULTI_THREADED = 1 };
enum D2D1_RENDER_TARGET_TYPE : DWORD { D2D1_RENDER_TARGET_TYPE_DEFAULT = 0, D2D1_RENDER_TARGET_TYPE_SOFTWARE = 1,
                                       D2D1_RENDER_TARGET_TYPE_HARDWARE = 2 };
enum DXGI_FORMAT : DWORD { DXGI_FORMAT_UNKNOWN = 0, DXGI_FORMAT_B8G8R8A8_UNORM = 87 };
enum D2D1_ALPHA_MODE : DWORD { D2D1_ALPHA_MODE_UNKNOWN = 0, D2D1_ALPHA_MODE_PREMULTIPLIED = 1,
                               D2D1_ALPHA_MODE_STRAIGHT = 2, D2D1_ALPHA_MODE_IGNORE = 3 };
enum D2D1_RENDER_TARGET_USAGE : DWORD { D2D1_RENDER_TARGET_USAGE_NONE = 0 };
enum D2D1_FEATURE_LEVEL : DWORD { D2D1_FEATURE_LEVEL_DEFAULT = 0 };
enum D2D1_BITMAP_INTERPOLATION_MODE : DWORD { D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR = 0,
                                              D2D1_BITMAP_INTERPOLATION_MODE_LINEAR = 1 };
enum D2D1_ANTIALIAS_MODE : DWORD { D2D1_ANTIALIAS_MODE_PER_PRIMITIVE = 0, D2D1_ANTIALIAS_MODE_ALIASED = 1 };
enum D2D1_CAP_STYLE : DWORD { D2D1_CAP_STYLE_FLAT = 0, D2D1_CAP_STYLE_SQUARE = 1, D2D1_CAP_STYLE_ROUND = 2,
                              D2D1_CAP_STYLE_TRIANGLE = 3 };
enum D2D1_LINE_JOIN : DWORD { D2D1_LINE_JOIN_MITER = 0, D2D1_LINE_JOIN_BEVEL = 1, D2D1_LINE_JOIN_ROUND = 2,
                              D2D1_LINE_JOIN_MITER_OR_BEVEL = 3 };
enum D2D1_DASH_STYLE : DWORD { D2D1_DASH_STYLE_SOLID = 0, D2D1_DASH_STYLE_DASH = 1, D2D1_DASH_STYLE_DOT = 2,
                               D2D1_DASH_STYLE_DASH_DOT = 3, D2D1_DASH_STYLE_DASH_DOT_DOT = 4,
                               D2D1_DASH_STYLE_CUSTOM = 5 };

enum D2D1_FIGURE_BEGIN : DWORD { D2D1_FIGURE_BEGIN_FILLED = 0, D2D1_FIGURE_BEGIN_HOLLOW = 1 };
enum D2D1_FIGURE_END : DWORD { D2D1_FIGURE_END_OPEN = 0, D2D1_FIGURE_END_CLOSED = 1 };
enum D2D1_FILL_MODE : DWORD { D2D1_FILL_MODE_ALTERNATE = 0, D2D1_FILL_MODE_WINDING = 1 };
enum D2D1_PATH_SEGMENT : DWORD { D2D1_PATH_SEGMENT_NONE = 0, D2D1_PATH_SEGMENT_FORCE_UNSTROKED = 1,
                                 D2D1_PATH_SEGMENT_FORCE_ROUND_LINE_JOIN = 2 };
enum D2D1_SWEEP_DIRECTION : DWORD { D2D1_SWEEP_DIRECTION_COUNTER_CLOCKWISE = 0, D2D1_SWEEP_DIRECTION_CLOCKWISE = 1 };
enum D2D1_ARC_SIZE : DWORD { D2D1_ARC_SIZE_SMALL = 0, D2D1_ARC_SIZE_LARGE = 1 };

enum D2D1_PRESENT_OPTIONS : DWORD { D2D1_PRESENT_OPTIONS_NONE = 0, D2D1_PRESENT_OPTIONS_RETAIN_CONTENTS = 1,
                                    D2D1_PRESENT_OPTIONS_IMMEDIATELY = 2 };
enum D2D1_WINDOW_STATE : DWORD { D2D1_WINDOW_STATE_NONE = 0, D2D1_WINDOW_STATE_OCCLUDED = 1 };

inline constexpr DWORD D2D1_DRAW_TEXT_OPTIONS_NONE = 0;
inline constexpr DWORD D2D1_DRAW_TEXT_OPTIONS_CLIP = 2;

inline constexpr HRESULT D2DERR_WRONG_STATE = static_cast<HRESULT>(0x88990001u);
inline constexpr HRESULT D2DERR_NOT_INITIALIZED = static_cast<HRESULT>(0x88990002u);
inline constexpr HRESULT D2DERR_UNSUPPORTED_OPERATION = static_cast<HRESULT>(0x88990003u);
inline constexpr HRESULT D2DERR_BAD_NUMBER = static_cast<HRESULT>(0x88990011u);
inline constexpr HRESULT D2DERR_UNSUPPORTED_PIXEL_FORMAT = WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;

struct QOR_TOOLS_API D2D1_SIZE_U {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};
struct QOR_TOOLS_API D2D1_COLOR_F {
    float r = 0, g = 0, b = 0, a = 0;
};
struct QOR_TOOLS_API D2D1_MATRIX_3X2_F {
    float _11 = 1, _12 = 0, _21 = 0, _22 = 1, _31 = 0, _32 = 0;
};
struct QOR_TOOLS_API D2D1_ELLIPSE {
    D2D1_POINT_2F point;
    float radiusX = 0, radiusY = 0;
};
struct QOR_TOOLS_API D2D1_ROUNDED_RECT {
    D2D1_RECT_F rect;
    float radiusX = 0, radiusY = 0;
};
struct QOR_TOOLS_API D2D1_PIXEL_FORMAT {
    DXGI_FORMAT format = DXGI_FORMAT_UNKNOWN;
    D2D1_ALPHA_MODE alphaMode = D2D1_ALPHA_MODE_UNKNOWN;
};
struct QOR_TOOLS_API D2D1_BITMAP_PROPERTIES {
    D2D1_PIXEL_FORMAT pixelFormat;
    float dpiX = 0, dpiY = 0;
};
struct QOR_TOOLS_API D2D1_BRUSH_PROPERTIES {
    float opacity = 1;
    D2D1_MATRIX_3X2_F transform;
};
struct QOR_TOOLS_API D2D1_RENDER_TARGET_PROPERTIES {
    D2D1_RENDER_TARGET_TYPE type = D2D1_RENDER_TARGET_TYPE_DEFAULT;
    D2D1_PIXEL_FORMAT pixelFormat;
    float dpiX = 0, dpiY = 0;
    D2D1_RENDER_TARGET_USAGE usage = D2D1_RENDER_TARGET_USAGE_NONE;
    D2D1_FEATURE_LEVEL minLevel = D2D1_FEATURE_LEVEL_DEFAULT;
};
struct QOR_TOOLS_API D2D1_STROKE_STYLE_PROPERTIES {
    D2D1_CAP_STYLE startCap = D2D1_CAP_STYLE_FLAT;
    D2D1_CAP_STYLE endCap = D2D1_CAP_STYLE_FLAT;
    D2D1_CAP_STYLE dashCap = D2D1_CAP_STYLE_FLAT;
    D2D1_LINE_JOIN lineJoin = D2D1_LINE_JOIN_MITER;
    float miterLimit = 10;
    D2D1_DASH_STYLE dashStyle = D2D1_DASH_STYLE_SOLID;
    float dashOffset = 0;
};
struct QOR_TOOLS_API D2D1_BEZIER_SEGMENT {
    D2D1_POINT_2F point1, point2, point3;
};
struct QOR_TOOLS_API D2D1_QUADRATIC_BEZIER_SEGMENT {
    D2D1_POINT_2F point1, point2;
};
struct QOR_TOOLS_API D2D1_ARC_SEGMENT {
    D2D1_POINT_2F point;
    D2D1_SIZE_F size;
    float rotationAngle = 0;
    D2D1_SWEEP_DIRECTION sweepDirection = D2D1_SWEEP_DIRECTION_COUNTER_CLOCKWISE;
    D2D1_ARC_SIZE arcSize = D2D1_ARC_SIZE_SMALL;
};
struct QOR_TOOLS_API D2D1_HWND_RENDER_TARGET_PROPERTIES {
    HWND hwnd = nullptr;
    D2D1_SIZE_U pixelSize;
    D2D1_PRESENT_OPTIONS presentOptions = D2D1_PRESENT_OPTIONS_NONE;
};
struct QOR_TOOLS_API D2D1_FACTORY_OPTIONS {
    DWORD debugLevel = 0;
};

inline constexpr IID IID_ID2D1Factory = {0x06152247, 0x6f50, 0x465a, {0x92, 0x45, 0x11, 0x8b, 0xfd, 0x3b, 0x60, 0x07}};
inline constexpr IID IID_ID2D1Resource = {0x2cd90691, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1RenderTarget = {0x2cd90694, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1Brush = {0x2cd906a8, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1SolidColorBrush = {0x2cd906a9, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1StrokeStyle = {0x2cd9069d, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1Geometry = {0x2cd906a1, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1PathGeometry = {0x2cd906a5, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1SimplifiedGeometrySink = {0x2cd9069e, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1GeometrySink = {0x2cd9069f, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1DCRenderTarget = {0x1c51bc64, 0xde61, 0x46fd, {0x98, 0x99, 0x63, 0xa5, 0xd8, 0xf0, 0x39, 0x50}};
inline constexpr IID IID_ID2D1HwndRenderTarget = {0x2cd90698, 0x12e2, 0x11dc, {0x9f, 0xed, 0x00, 0x11, 0x43, 0xa0, 0x55, 0xf9}};
inline constexpr IID IID_ID2D1Bitmap = {0xa2296057, 0xea42, 0x4099, {0x98, 0x3b, 0x53, 0x9f, 0xb6, 0x50, 0x54, 0x26}};

struct ID2D1Factory;

struct QOR_TOOLS_API ID2D1Resource : IUnknown {
    static constexpr IID const &iid = IID_ID2D1Resource;
    virtual void GetFactory(ID2D1Factory **factory) const = 0;

protected:
    ~ID2D1Resource() = default;
};

struct QOR_TOOLS_API ID2D1Brush : ID2D1Resource {
    static constexpr IID const &iid = IID_ID2D1Brush;
    virtual void SetOpacity(float opacity) = 0;
    virtual void SetTransform(D2D1_MATRIX_3X2_F const &transform) = 0;
    virtual float GetOpacity() const = 0;
    virtual void GetTransform(D2D1_MATRIX_3X2_F *transform) const = 0;

protected:
    ~ID2D1Brush() = default;
};

struct QOR_TOOLS_API ID2D1SolidColorBrush : ID2D1Brush {
    static constexpr IID const &iid = IID_ID2D1SolidColorBrush;
    virtual void SetColor(D2D1_COLOR_F const &color) = 0;
    virtual D2D1_COLOR_F GetColor() const = 0;

protected:
    ~ID2D1SolidColorBrush() = default;
};

struct QOR_TOOLS_API ID2D1StrokeStyle : ID2D1Resource {
    static constexpr IID const &iid = IID_ID2D1StrokeStyle;
    virtual D2D1_CAP_STYLE GetStartCap() const = 0;
    virtual D2D1_CAP_STYLE GetEndCap() const = 0;
    virtual D2D1_CAP_STYLE GetDashCap() const = 0;
    virtual float GetMiterLimit() const = 0;
    virtual D2D1_LINE_JOIN GetLineJoin() const = 0;
    virtual float GetDashOffset() const = 0;
    virtual D2D1_DASH_STYLE GetDashStyle() const = 0;
    virtual std::uint32_t GetDashesCount() const = 0;
    virtual void GetDashes(float *dashes, std::uint32_t count) const = 0;

protected:
    ~ID2D1StrokeStyle() = default;
};

struct QOR_TOOLS_API ID2D1Bitmap : ID2D1Resource {
    static constexpr IID const &iid = IID_ID2D1Bitmap;
    virtual D2D1_SIZE_F GetSize() const = 0;
    virtual D2D1_SIZE_U GetPixelSize() const = 0;
    virtual D2D1_PIXEL_FORMAT GetPixelFormat() const = 0;
    virtual void GetDpi(float *dpiX, float *dpiY) const = 0;

protected:
    ~ID2D1Bitmap() = default;
};

struct QOR_TOOLS_API ID2D1SimplifiedGeometrySink : IUnknown {
    static constexpr IID const &iid = IID_ID2D1SimplifiedGeometrySink;
    virtual void SetFillMode(D2D1_FILL_MODE mode) = 0;
    virtual void SetSegmentFlags(D2D1_PATH_SEGMENT flags) = 0;
    virtual void BeginFigure(D2D1_POINT_2F start, D2D1_FIGURE_BEGIN begin) = 0;
    virtual void AddLines(D2D1_POINT_2F const *points, std::uint32_t count) = 0;
    virtual void AddBeziers(D2D1_BEZIER_SEGMENT const *beziers, std::uint32_t count) = 0;
    virtual void EndFigure(D2D1_FIGURE_END end) = 0;
    // S_OK, or D2DERR_WRONG_STATE for a sink closed already or a figure left open.
    virtual HRESULT Close() = 0;

protected:
    ~ID2D1SimplifiedGeometrySink() = default;
};

struct QOR_TOOLS_API ID2D1GeometrySink : ID2D1SimplifiedGeometrySink {
    static constexpr IID const &iid = IID_ID2D1GeometrySink;
    virtual void AddLine(D2D1_POINT_2F point) = 0;
    virtual void AddBezier(D2D1_BEZIER_SEGMENT const &bezier) = 0;
    virtual void AddQuadraticBezier(D2D1_QUADRATIC_BEZIER_SEGMENT const &bezier) = 0;
    virtual void AddQuadraticBeziers(D2D1_QUADRATIC_BEZIER_SEGMENT const *beziers, std::uint32_t count) = 0;
    virtual void AddArc(D2D1_ARC_SEGMENT const &arc) = 0;

protected:
    ~ID2D1GeometrySink() = default;
};

struct QOR_TOOLS_API ID2D1Geometry : ID2D1Resource {
    static constexpr IID const &iid = IID_ID2D1Geometry;
    // The bounds of the filled area, transformed by `transform` if given.
    virtual HRESULT GetBounds(D2D1_MATRIX_3X2_F const *transform, D2D1_RECT_F *bounds) const = 0;
    virtual HRESULT FillContainsPoint(D2D1_POINT_2F point, D2D1_MATRIX_3X2_F const *transform, float tolerance,
                                      BOOL *contains) const = 0;

protected:
    ~ID2D1Geometry() = default;
};

struct QOR_TOOLS_API ID2D1PathGeometry : ID2D1Geometry {
    static constexpr IID const &iid = IID_ID2D1PathGeometry;
    // The sink that writes the geometry; a geometry opens once (D2DERR_WRONG_STATE after).
    virtual HRESULT Open(ID2D1GeometrySink **sink) = 0;
    // Writes the closed geometry's figures into `sink`, as they were given.
    virtual HRESULT Stream(ID2D1GeometrySink *sink) const = 0;
    virtual HRESULT GetSegmentCount(std::uint32_t *count) const = 0;
    virtual HRESULT GetFigureCount(std::uint32_t *count) const = 0;

protected:
    ~ID2D1PathGeometry() = default;
};

struct QOR_TOOLS_API ID2D1RenderTarget : ID2D1Resource {
    static constexpr IID const &iid = IID_ID2D1RenderTarget;
    // A bitmap of premultiplied BGRA rows (`source` may be null: transparent).
    virtual HRESULT CreateBitmap(D2D1_SIZE_U size, void const *source, std::uint32_t pitch,
                                 D2D1_BITMAP_PROPERTIES const &properties, ID2D1Bitmap **bitmap) = 0;
    virtual HRESULT CreateBitmapFromWicBitmap(IWICBitmapSource *source, D2D1_BITMAP_PROPERTIES const *properties,
                                              ID2D1Bitmap **bitmap) = 0;
    virtual HRESULT CreateSolidColorBrush(D2D1_COLOR_F const &color, D2D1_BRUSH_PROPERTIES const *properties,
                                          ID2D1SolidColorBrush **brush) = 0;
    HRESULT CreateSolidColorBrush(D2D1_COLOR_F const &color, ID2D1SolidColorBrush **brush) {
        return CreateSolidColorBrush(color, nullptr, brush);
    }
    virtual void DrawLine(D2D1_POINT_2F from, D2D1_POINT_2F to, ID2D1Brush *brush, float width = 1.0f,
                          ID2D1StrokeStyle *style = nullptr) = 0;
    virtual void DrawRectangle(D2D1_RECT_F const &rect, ID2D1Brush *brush, float width = 1.0f,
                               ID2D1StrokeStyle *style = nullptr) = 0;
    virtual void FillRectangle(D2D1_RECT_F const &rect, ID2D1Brush *brush) = 0;
    virtual void DrawRoundedRectangle(D2D1_ROUNDED_RECT const &rect, ID2D1Brush *brush, float width = 1.0f,
                                      ID2D1StrokeStyle *style = nullptr) = 0;
    virtual void FillRoundedRectangle(D2D1_ROUNDED_RECT const &rect, ID2D1Brush *brush) = 0;
    virtual void DrawEllipse(D2D1_ELLIPSE const &ellipse, ID2D1Brush *brush, float width = 1.0f,
                             ID2D1StrokeStyle *style = nullptr) = 0;
    virtual void FillEllipse(D2D1_ELLIPSE const &ellipse, ID2D1Brush *brush) = 0;
    // Null rectangles: the whole target, the whole bitmap.
    virtual void DrawBitmap(ID2D1Bitmap *bitmap, D2D1_RECT_F const *destination = nullptr, float opacity = 1.0f,
                            D2D1_BITMAP_INTERPOLATION_MODE mode = D2D1_BITMAP_INTERPOLATION_MODE_LINEAR,
                            D2D1_RECT_F const *source = nullptr) = 0;
    virtual void DrawGeometry(ID2D1Geometry *geometry, ID2D1Brush *brush, float width = 1.0f,
                              ID2D1StrokeStyle *style = nullptr) = 0;
    // `opacityBrush` is not supported: with one, nothing is filled.
    virtual void FillGeometry(ID2D1Geometry *geometry, ID2D1Brush *brush, ID2D1Brush *opacityBrush = nullptr) = 0;
    // Text laid out in `rect` with `format` (only the clip option, 2, is looked at).
    virtual void DrawText(char16_t const *text, std::uint32_t length, IDWriteTextFormat *format,
                          D2D1_RECT_F const &rect, ID2D1Brush *brush, DWORD options = 0, DWORD measuring = 0) = 0;
    virtual void DrawTextLayout(D2D1_POINT_2F origin, IDWriteTextLayout *layout, ID2D1Brush *brush,
                                DWORD options = 0) = 0;
    virtual void SetTransform(D2D1_MATRIX_3X2_F const &transform) = 0;
    virtual void GetTransform(D2D1_MATRIX_3X2_F *transform) const = 0;
    virtual void SetAntialiasMode(D2D1_ANTIALIAS_MODE mode) = 0;
    virtual D2D1_ANTIALIAS_MODE GetAntialiasMode() const = 0;
    virtual void PushAxisAlignedClip(D2D1_RECT_F const &clip, D2D1_ANTIALIAS_MODE mode) = 0;
    virtual void PopAxisAlignedClip() = 0;
    // Inside the clip, every pixel becomes `color` (null: transparent black).
    virtual void Clear(D2D1_COLOR_F const *color = nullptr) = 0;
    void Clear(D2D1_COLOR_F const &color) { Clear(&color); }
    virtual void BeginDraw() = 0;
    // S_OK, or the first failure since BeginDraw (D2DERR_WRONG_STATE without one).
    virtual HRESULT EndDraw(D2D1_TAG *tag1 = nullptr, D2D1_TAG *tag2 = nullptr) = 0;
    virtual HRESULT Flush(D2D1_TAG *tag1 = nullptr, D2D1_TAG *tag2 = nullptr) = 0;
    virtual D2D1_PIXEL_FORMAT GetPixelFormat() const = 0;
    virtual void SetDpi(float dpiX, float dpiY) = 0;
    virtual void GetDpi(float *dpiX, float *dpiY) const = 0;
    virtual D2D1_SIZE_F GetSize() const = 0;
    virtual D2D1_SIZE_U GetPixelSize() const = 0;
    // The Cairo context the target draws with (no reference added).
    virtual cairo_t *GetCairoContext() = 0;

protected:
    ~ID2D1RenderTarget() = default;
};

// A target that draws into a device context (a cairo_t): BindDC chooses the
// context and the rectangle; the drawing is kept off screen and laid over
// the rectangle of the context at EndDraw.
struct QOR_TOOLS_API ID2D1DCRenderTarget : ID2D1RenderTarget {
    static constexpr IID const &iid = IID_ID2D1DCRenderTarget;
    virtual HRESULT BindDC(HDC dc, RECT const *rect) = 0;

protected:
    ~ID2D1DCRenderTarget() = default;
};

// A target that draws into a GTK widget's window: the drawing is kept off
// screen at the pixel size (the widget's size for 0 by 0) and shown at
// EndDraw, and again whenever GTK redraws the widget.
struct QOR_TOOLS_API ID2D1HwndRenderTarget : ID2D1RenderTarget {
    static constexpr IID const &iid = IID_ID2D1HwndRenderTarget;
    virtual D2D1_WINDOW_STATE CheckWindowState() = 0;
    virtual HRESULT Resize(D2D1_SIZE_U const *size) = 0;
    virtual HWND GetHwnd() const = 0;

protected:
    ~ID2D1HwndRenderTarget() = default;
};

struct QOR_TOOLS_API ID2D1Factory : IUnknown {
    static constexpr IID const &iid = IID_ID2D1Factory;
    virtual HRESULT ReloadSystemMetrics() = 0;
    // The screen's resolution: 96 by 96 without a display.
    virtual void GetDesktopDpi(float *dpiX, float *dpiY) = 0;
    virtual HRESULT CreateStrokeStyle(D2D1_STROKE_STYLE_PROPERTIES const &properties, float const *dashes,
                                      std::uint32_t count, ID2D1StrokeStyle **style) = 0;
    virtual HRESULT CreatePathGeometry(ID2D1PathGeometry **geometry) = 0;
    // A target that draws into the bitmap's own pixels.
    virtual HRESULT CreateWicBitmapRenderTarget(IWICBitmap *bitmap, D2D1_RENDER_TARGET_PROPERTIES const &properties,
                                                ID2D1RenderTarget **target) = 0;

    virtual HRESULT CreateHwndRenderTarget(D2D1_RENDER_TARGET_PROPERTIES const &properties,
                                           D2D1_HWND_RENDER_TARGET_PROPERTIES const &window,
                                           ID2D1HwndRenderTarget **target) = 0;
    virtual HRESULT CreateDCRenderTarget(D2D1_RENDER_TARGET_PROPERTIES const &properties,
                                         ID2D1DCRenderTarget **target) = 0;

protected:
    ~ID2D1Factory() = default;
};

QOR_TOOLS_API HRESULT D2D1CreateFactory(D2D1_FACTORY_TYPE type, REFIID iid, D2D1_FACTORY_OPTIONS const *options,
                                        void **factory);

}  // namespace qor::tools

// The helper functions of the Windows headers for building the records.
namespace D2D1 {

using namespace qor::tools;

inline D2D1_POINT_2F Point2F(float x = 0, float y = 0) { return {x, y}; }
inline D2D1_SIZE_F SizeF(float width = 0, float height = 0) { return {width, height}; }
inline D2D1_SIZE_U SizeU(std::uint32_t width = 0, std::uint32_t height = 0) { return {width, height}; }
inline D2D1_RECT_F RectF(float left = 0, float top = 0, float right = 0, float bottom = 0) {
    return {left, top, right, bottom};
}
inline D2D1_ELLIPSE Ellipse(D2D1_POINT_2F center, float radiusX, float radiusY) { return {center, radiusX, radiusY}; }
inline D2D1_ROUNDED_RECT RoundedRect(D2D1_RECT_F const &rect, float radiusX, float radiusY) {
    return {rect, radiusX, radiusY};
}
inline D2D1_MATRIX_3X2_F IdentityMatrix() { return {}; }
inline D2D1_PIXEL_FORMAT PixelFormat(DXGI_FORMAT format = DXGI_FORMAT_UNKNOWN,
                                     D2D1_ALPHA_MODE alpha = D2D1_ALPHA_MODE_UNKNOWN) {
    return {format, alpha};
}
inline D2D1_RENDER_TARGET_PROPERTIES RenderTargetProperties(
    D2D1_RENDER_TARGET_TYPE type = D2D1_RENDER_TARGET_TYPE_DEFAULT, D2D1_PIXEL_FORMAT format = PixelFormat(),
    float dpiX = 0, float dpiY = 0, D2D1_RENDER_TARGET_USAGE usage = D2D1_RENDER_TARGET_USAGE_NONE,
    D2D1_FEATURE_LEVEL level = D2D1_FEATURE_LEVEL_DEFAULT) {
    return {type, format, dpiX, dpiY, usage, level};
}
inline D2D1_HWND_RENDER_TARGET_PROPERTIES HwndRenderTargetProperties(
    HWND hwnd, D2D1_SIZE_U size = SizeU(), D2D1_PRESENT_OPTIONS options = D2D1_PRESENT_OPTIONS_NONE) {
    return {hwnd, size, options};
}
inline D2D1_STROKE_STYLE_PROPERTIES StrokeStyleProperties(
    D2D1_CAP_STYLE startCap = D2D1_CAP_STYLE_FLAT, D2D1_CAP_STYLE endCap = D2D1_CAP_STYLE_FLAT,
    D2D1_CAP_STYLE dashCap = D2D1_CAP_STYLE_FLAT, D2D1_LINE_JOIN join = D2D1_LINE_JOIN_MITER,
    float miterLimit = 10, D2D1_DASH_STYLE dash = D2D1_DASH_STYLE_SOLID, float dashOffset = 0) {
    return {startCap, endCap, dashCap, join, miterLimit, dash, dashOffset};
}

// A colour from components (0 to 1) or from a 0xRRGGBB value.
struct ColorF : D2D1_COLOR_F {
    ColorF(float red, float green, float blue, float alpha = 1) : D2D1_COLOR_F{red, green, blue, alpha} {}
    explicit ColorF(std::uint32_t rgb, float alpha = 1)
        : D2D1_COLOR_F{float((rgb >> 16) & 0xff) / 255.0f, float((rgb >> 8) & 0xff) / 255.0f,
                       float(rgb & 0xff) / 255.0f, alpha} {}
};

}  // namespace D2D1
