// The painting interface's classes: thin owners of the flat calls' objects,
// each keeping the status of its last failed call (GetLastStatus answers it
// and forgets it). They are made with GdipAlloc: a new that finds no memory
// gives null and makes nothing.
//
//   Gdiplus::Bitmap picture(640, 480, Gdiplus::PixelFormat32bppARGB);
//   Gdiplus::Graphics graphics(&picture);
//   Gdiplus::Pen pen(Gdiplus::Color(255, 0, 0, 255), 2.0f);
//   graphics.DrawEllipse(&pen, 10.0f, 10.0f, 200.0f, 100.0f);
#pragma once

#include "qor/tools/platform/gdiplus_flat.h"

namespace qor::tools::Gdiplus {

class GdiplusBase {
public:
    static void *operator new(std::size_t size) noexcept { return GdipAlloc(size); }
    static void *operator new[](std::size_t size) noexcept { return GdipAlloc(size); }
    static void operator delete(void *block) noexcept { GdipFree(block); }
    static void operator delete[](void *block) noexcept { GdipFree(block); }
};

// The last-status bookkeeping every class shares.
class GdiplusStatus : public GdiplusBase {
public:
    Status GetLastStatus() const {
        Status last = lastResult;
        lastResult = Ok;
        return last;
    }

protected:
    Status SetStatus(Status status) const {
        if (status != Ok) lastResult = status;
        return status;
    }
    mutable Status lastResult = Ok;
};

class FontFamily : public GdiplusStatus {
public:
    FontFamily() = default;
    explicit FontFamily(WCHAR const *name, GpFontCollection *collection = nullptr) {
        lastResult = GdipCreateFontFamilyFromName(name, collection, &nativeFamily);
    }
    FontFamily(FontFamily const &) = delete;
    FontFamily &operator=(FontFamily const &) = delete;
    virtual ~FontFamily() { GdipDeleteFontFamily(nativeFamily); }

    Status GetFamilyName(WCHAR name[LF_FACESIZE], LANGID language = 0) const {
        return SetStatus(GdipGetFamilyName(nativeFamily, name, language));
    }
    bool IsAvailable() const { return nativeFamily != nullptr; }

    GpFontFamily *nativeFamily = nullptr;
};

class Font : public GdiplusStatus {
public:
    Font(WCHAR const *family, REAL size, INT style = FontStyleRegular, Unit unit = UnitPoint) {
        FontFamily named(family);
        lastResult = GdipCreateFont(named.nativeFamily, size, style, unit, &nativeFont);
    }
    Font(FontFamily const *family, REAL size, INT style = FontStyleRegular, Unit unit = UnitPoint) {
        lastResult = GdipCreateFont(family ? family->nativeFamily : nullptr, size, style, unit, &nativeFont);
    }
    Font(HDC dc, HFONT font) {
        LOGFONTA logfont;
        if (font && GetObjectA(font, sizeof logfont, &logfont)) {
            lastResult = GdipCreateFontFromLogfontA(dc, &logfont, &nativeFont);
        } else {
            lastResult = GdipCreateFontFromDC(dc, &nativeFont);
        }
    }
    explicit Font(HDC dc) { lastResult = GdipCreateFontFromDC(dc, &nativeFont); }
    Font(Font const &) = delete;
    Font &operator=(Font const &) = delete;
    virtual ~Font() { GdipDeleteFont(nativeFont); }

    REAL GetSize() const {
        REAL size = 0;
        SetStatus(GdipGetFontSize(nativeFont, &size));
        return size;
    }
    INT GetStyle() const {
        INT style = 0;
        SetStatus(GdipGetFontStyle(nativeFont, &style));
        return style;
    }
    Unit GetUnit() const {
        Unit unit = UnitWorld;
        SetStatus(GdipGetFontUnit(nativeFont, &unit));
        return unit;
    }
    Status GetFamily(FontFamily *family) const {
        if (!family) return SetStatus(InvalidParameter);
        GdipDeleteFontFamily(family->nativeFamily);
        family->nativeFamily = nullptr;
        return SetStatus(GdipGetFamily(nativeFont, &family->nativeFamily));
    }
    bool IsAvailable() const { return nativeFont != nullptr; }

    GpFont *nativeFont = nullptr;
};

class Brush : public GdiplusStatus {
public:
    Brush(Brush const &) = delete;
    Brush &operator=(Brush const &) = delete;
    virtual ~Brush() { GdipDeleteBrush(nativeBrush); }

    BrushType GetType() const {
        BrushType type = BrushTypeSolidColor;
        SetStatus(GdipGetBrushType(nativeBrush, &type));
        return type;
    }

    GpBrush *nativeBrush = nullptr;

protected:
    Brush() = default;
};

class SolidBrush : public Brush {
public:
    explicit SolidBrush(Color const &color) {
        GpSolidFill *fill = nullptr;
        lastResult = GdipCreateSolidFill(color.GetValue(), &fill);
        nativeBrush = reinterpret_cast<GpBrush *>(fill);
    }
    Status GetColor(Color *color) const {
        ARGB argb = 0;
        Status status = SetStatus(GdipGetSolidFillColor(reinterpret_cast<GpSolidFill *>(nativeBrush), &argb));
        if (color && status == Ok) color->SetValue(argb);
        return status;
    }
};

class Pen : public GdiplusStatus {
public:
    Pen(Color const &color, REAL width = 1.0f) {
        lastResult = GdipCreatePen1(color.GetValue(), width, UnitWorld, &nativePen);
    }
    Pen(Pen const &) = delete;
    Pen &operator=(Pen const &) = delete;
    virtual ~Pen() { GdipDeletePen(nativePen); }

    Status SetDashStyle(DashStyle style) { return SetStatus(GdipSetPenDashStyle(nativePen, style)); }
    DashStyle GetDashStyle() const {
        DashStyle style = DashStyleSolid;
        SetStatus(GdipGetPenDashStyle(nativePen, &style));
        return style;
    }
    Status GetColor(Color *color) const {
        ARGB argb = 0;
        Status status = SetStatus(GdipGetPenColor(nativePen, &argb));
        if (color && status == Ok) color->SetValue(argb);
        return status;
    }
    REAL GetWidth() const {
        REAL width = 0;
        SetStatus(GdipGetPenWidth(nativePen, &width));
        return width;
    }

    GpPen *nativePen = nullptr;
};

class StringFormat : public GdiplusStatus {
public:
    explicit StringFormat(INT flags = 0, LANGID language = 0) {
        lastResult = GdipCreateStringFormat(flags, language, &nativeFormat);
    }
    StringFormat(StringFormat const &) = delete;
    StringFormat &operator=(StringFormat const &) = delete;
    virtual ~StringFormat() { GdipDeleteStringFormat(nativeFormat); }

    Status SetAlignment(StringAlignment align) { return SetStatus(GdipSetStringFormatAlign(nativeFormat, align)); }
    Status SetLineAlignment(StringAlignment align) {
        return SetStatus(GdipSetStringFormatLineAlign(nativeFormat, align));
    }
    Status SetFormatFlags(INT flags) { return SetStatus(GdipSetStringFormatFlags(nativeFormat, flags)); }

    GpStringFormat *nativeFormat = nullptr;
};

class GraphicsPath : public GdiplusStatus {
public:
    explicit GraphicsPath(FillMode mode = FillModeAlternate) { lastResult = GdipCreatePath(mode, &nativePath); }
    GraphicsPath(GraphicsPath const &) = delete;
    GraphicsPath &operator=(GraphicsPath const &) = delete;
    virtual ~GraphicsPath() { GdipDeletePath(nativePath); }

    Status StartFigure() { return SetStatus(GdipStartPathFigure(nativePath)); }
    Status CloseFigure() { return SetStatus(GdipClosePathFigure(nativePath)); }
    Status AddLine(REAL x1, REAL y1, REAL x2, REAL y2) { return SetStatus(GdipAddPathLine(nativePath, x1, y1, x2, y2)); }
    Status AddBezier(REAL x1, REAL y1, REAL x2, REAL y2, REAL x3, REAL y3, REAL x4, REAL y4) {
        return SetStatus(GdipAddPathBezier(nativePath, x1, y1, x2, y2, x3, y3, x4, y4));
    }
    Status AddArc(REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep) {
        return SetStatus(GdipAddPathArc(nativePath, x, y, width, height, start, sweep));
    }
    Status AddRectangle(RectF const &r) { return SetStatus(GdipAddPathRectangle(nativePath, r.X, r.Y, r.Width, r.Height)); }
    Status AddEllipse(RectF const &r) { return SetStatus(GdipAddPathEllipse(nativePath, r.X, r.Y, r.Width, r.Height)); }

    GpPath *nativePath = nullptr;
};

class Image : public GdiplusStatus {
public:
    explicit Image(WCHAR const *path) {
        GpBitmap *bitmap = nullptr;
        lastResult = GdipCreateBitmapFromFile(path, &bitmap);
        nativeImage = reinterpret_cast<GpImage *>(bitmap);
    }
    Image(Image const &) = delete;
    Image &operator=(Image const &) = delete;
    virtual ~Image() { GdipDisposeImage(nativeImage); }

    UINT GetWidth() const {
        UINT width = 0;
        SetStatus(GdipGetImageWidth(nativeImage, &width));
        return width;
    }
    UINT GetHeight() const {
        UINT height = 0;
        SetStatus(GdipGetImageHeight(nativeImage, &height));
        return height;
    }
    PixelFormat GetPixelFormat() const {
        PixelFormat format = 0;
        SetStatus(GdipGetImagePixelFormat(nativeImage, &format));
        return format;
    }
    Status Save(WCHAR const *path, CLSID const *encoder, EncoderParameters const *parameters = nullptr) {
        return SetStatus(GdipSaveImageToFile(nativeImage, path, encoder, parameters));
    }

    GpImage *nativeImage = nullptr;

protected:
    Image() = default;
};

class Bitmap : public Image {
public:
    explicit Bitmap(WCHAR const *path, BOOL = 0) : Image(path) {}
    Bitmap(INT width, INT height, PixelFormat format = PixelFormat32bppARGB) {
        Take(GdipCreateBitmapFromScan0(width, height, 0, format, nullptr, &mBitmap));
    }
    // Copies the pixels at `scan0` (rows `stride` bytes apart).
    Bitmap(INT width, INT height, INT stride, PixelFormat format, BYTE *scan0) {
        Take(GdipCreateBitmapFromScan0(width, height, stride, format, scan0, &mBitmap));
    }
    Bitmap(HBITMAP source, HPALETTE palette) { Take(GdipCreateBitmapFromHBITMAP(source, palette, &mBitmap)); }

    Status LockBits(Rect const *rect, UINT flags, PixelFormat format, BitmapData *data) {
        return SetStatus(GdipBitmapLockBits(Native(), rect, flags, format, data));
    }
    Status UnlockBits(BitmapData *data) { return SetStatus(GdipBitmapUnlockBits(Native(), data)); }
    Status GetPixel(INT x, INT y, Color *color) {
        ARGB argb = 0;
        Status status = SetStatus(GdipBitmapGetPixel(Native(), x, y, &argb));
        if (color && status == Ok) color->SetValue(argb);
        return status;
    }
    Status SetPixel(INT x, INT y, Color const &color) {
        return SetStatus(GdipBitmapSetPixel(Native(), x, y, color.GetValue()));
    }

private:
    GpBitmap *Native() const { return reinterpret_cast<GpBitmap *>(nativeImage); }
    void Take(Status status) {
        lastResult = status;
        nativeImage = reinterpret_cast<GpImage *>(mBitmap);
    }
    GpBitmap *mBitmap = nullptr;
};

class Graphics : public GdiplusStatus {
public:
    explicit Graphics(HDC dc) { lastResult = GdipCreateFromHDC(dc, &nativeGraphics); }
    explicit Graphics(HWND window, BOOL = 0) { lastResult = GdipCreateFromHWND(window, &nativeGraphics); }
    explicit Graphics(Image *image) {
        if (image) lastResult = GdipGetImageGraphicsContext(image->nativeImage, &nativeGraphics);
    }
    Graphics(Graphics const &) = delete;
    Graphics &operator=(Graphics const &) = delete;
    virtual ~Graphics() { GdipDeleteGraphics(nativeGraphics); }

    static Graphics *FromHDC(HDC dc) { return new Graphics(dc); }
    static Graphics *FromHWND(HWND window, BOOL icm = 0) { return new Graphics(window, icm); }
    static Graphics *FromImage(Image *image) { return new Graphics(image); }

    HDC GetHDC() {
        HDC dc = nullptr;
        SetStatus(GdipGetDC(nativeGraphics, &dc));
        return dc;
    }
    void ReleaseHDC(HDC dc) { SetStatus(GdipReleaseDC(nativeGraphics, dc)); }
    void Flush(INT intention = 0) { GdipFlush(nativeGraphics, intention); }
    REAL GetDpiX() const {
        REAL dpi = 0;
        SetStatus(GdipGetDpiX(nativeGraphics, &dpi));
        return dpi;
    }
    REAL GetDpiY() const {
        REAL dpi = 0;
        SetStatus(GdipGetDpiY(nativeGraphics, &dpi));
        return dpi;
    }
    Status SetSmoothingMode(SmoothingMode mode) { return SetStatus(GdipSetSmoothingMode(nativeGraphics, mode)); }
    SmoothingMode GetSmoothingMode() const {
        SmoothingMode mode = SmoothingModeInvalid;
        SetStatus(GdipGetSmoothingMode(nativeGraphics, &mode));
        return mode;
    }
    Status TranslateTransform(REAL dx, REAL dy) { return SetStatus(GdipTranslateWorldTransform(nativeGraphics, dx, dy, 0)); }
    Status ScaleTransform(REAL sx, REAL sy) { return SetStatus(GdipScaleWorldTransform(nativeGraphics, sx, sy, 0)); }
    Status RotateTransform(REAL angle) { return SetStatus(GdipRotateWorldTransform(nativeGraphics, angle, 0)); }
    Status ResetTransform() { return SetStatus(GdipResetWorldTransform(nativeGraphics)); }
    Status SetClip(RectF const &r) { return SetStatus(GdipSetClipRect(nativeGraphics, r.X, r.Y, r.Width, r.Height, 0)); }
    Status SetClip(Rect const &r) {
        return SetStatus(GdipSetClipRect(nativeGraphics, REAL(r.X), REAL(r.Y), REAL(r.Width), REAL(r.Height), 0));
    }
    Status ResetClip() { return SetStatus(GdipResetClip(nativeGraphics)); }

    Status Clear(Color const &color) { return SetStatus(GdipGraphicsClear(nativeGraphics, color.GetValue())); }
    Status DrawLine(Pen const *pen, REAL x1, REAL y1, REAL x2, REAL y2) {
        return SetStatus(GdipDrawLine(nativeGraphics, P(pen), x1, y1, x2, y2));
    }
    Status DrawLine(Pen const *pen, INT x1, INT y1, INT x2, INT y2) {
        return DrawLine(pen, REAL(x1), REAL(y1), REAL(x2), REAL(y2));
    }
    Status DrawLines(Pen const *pen, PointF const *points, INT count) {
        return SetStatus(GdipDrawLines(nativeGraphics, P(pen), points, count));
    }
    Status DrawArc(Pen const *pen, REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep) {
        return SetStatus(GdipDrawArc(nativeGraphics, P(pen), x, y, width, height, start, sweep));
    }
    Status DrawArc(Pen const *pen, RectF const &r, REAL start, REAL sweep) {
        return DrawArc(pen, r.X, r.Y, r.Width, r.Height, start, sweep);
    }
    Status DrawBezier(Pen const *pen, PointF const &a, PointF const &b, PointF const &c, PointF const &d) {
        return SetStatus(GdipDrawBezier(nativeGraphics, P(pen), a.X, a.Y, b.X, b.Y, c.X, c.Y, d.X, d.Y));
    }
    Status DrawRectangle(Pen const *pen, REAL x, REAL y, REAL width, REAL height) {
        return SetStatus(GdipDrawRectangle(nativeGraphics, P(pen), x, y, width, height));
    }
    Status DrawRectangle(Pen const *pen, RectF const &r) { return DrawRectangle(pen, r.X, r.Y, r.Width, r.Height); }
    Status DrawRectangle(Pen const *pen, Rect const &r) {
        return DrawRectangle(pen, REAL(r.X), REAL(r.Y), REAL(r.Width), REAL(r.Height));
    }
    Status FillRectangle(Brush const *brush, REAL x, REAL y, REAL width, REAL height) {
        return SetStatus(GdipFillRectangle(nativeGraphics, B(brush), x, y, width, height));
    }
    Status FillRectangle(Brush const *brush, RectF const &r) { return FillRectangle(brush, r.X, r.Y, r.Width, r.Height); }
    Status FillRectangle(Brush const *brush, Rect const &r) {
        return FillRectangle(brush, REAL(r.X), REAL(r.Y), REAL(r.Width), REAL(r.Height));
    }
    Status DrawEllipse(Pen const *pen, REAL x, REAL y, REAL width, REAL height) {
        return SetStatus(GdipDrawEllipse(nativeGraphics, P(pen), x, y, width, height));
    }
    Status DrawEllipse(Pen const *pen, RectF const &r) { return DrawEllipse(pen, r.X, r.Y, r.Width, r.Height); }
    Status FillEllipse(Brush const *brush, REAL x, REAL y, REAL width, REAL height) {
        return SetStatus(GdipFillEllipse(nativeGraphics, B(brush), x, y, width, height));
    }
    Status FillEllipse(Brush const *brush, RectF const &r) { return FillEllipse(brush, r.X, r.Y, r.Width, r.Height); }
    Status DrawPie(Pen const *pen, RectF const &r, REAL start, REAL sweep) {
        return SetStatus(GdipDrawPie(nativeGraphics, P(pen), r.X, r.Y, r.Width, r.Height, start, sweep));
    }
    Status FillPie(Brush const *brush, RectF const &r, REAL start, REAL sweep) {
        return SetStatus(GdipFillPie(nativeGraphics, B(brush), r.X, r.Y, r.Width, r.Height, start, sweep));
    }
    Status DrawPolygon(Pen const *pen, PointF const *points, INT count) {
        return SetStatus(GdipDrawPolygon(nativeGraphics, P(pen), points, count));
    }
    Status FillPolygon(Brush const *brush, PointF const *points, INT count, FillMode mode = FillModeAlternate) {
        return SetStatus(GdipFillPolygon(nativeGraphics, B(brush), points, count, mode));
    }
    Status DrawPath(Pen const *pen, GraphicsPath const *path) {
        return SetStatus(GdipDrawPath(nativeGraphics, P(pen), path ? path->nativePath : nullptr));
    }
    Status FillPath(Brush const *brush, GraphicsPath const *path) {
        return SetStatus(GdipFillPath(nativeGraphics, B(brush), path ? path->nativePath : nullptr));
    }
    Status DrawImage(Image *image, INT x, INT y) {
        return SetStatus(GdipDrawImageI(nativeGraphics, image ? image->nativeImage : nullptr, x, y));
    }
    Status DrawImage(Image *image, RectF const &r) {
        return SetStatus(GdipDrawImageRect(nativeGraphics, image ? image->nativeImage : nullptr, r.X, r.Y, r.Width, r.Height));
    }
    Status DrawString(WCHAR const *text, INT length, Font const *font, RectF const &layout,
                      StringFormat const *format, Brush const *brush) {
        return SetStatus(GdipDrawString(nativeGraphics, text, length, font ? font->nativeFont : nullptr, &layout,
                                        format ? format->nativeFormat : nullptr, B(brush)));
    }
    Status DrawString(WCHAR const *text, INT length, Font const *font, PointF const &origin, Brush const *brush) {
        RectF layout(origin.X, origin.Y, 0, 0);
        return DrawString(text, length, font, layout, nullptr, brush);
    }
    Status MeasureString(WCHAR const *text, INT length, Font const *font, RectF const &layout,
                         StringFormat const *format, RectF *bounds, INT *fitted = nullptr, INT *lines = nullptr) const {
        return SetStatus(GdipMeasureString(nativeGraphics, text, length, font ? font->nativeFont : nullptr, &layout,
                                           format ? format->nativeFormat : nullptr, bounds, fitted, lines));
    }

    GpGraphics *nativeGraphics = nullptr;

private:
    static GpPen *P(Pen const *pen) { return pen ? pen->nativePen : nullptr; }
    static GpBrush *B(Brush const *brush) { return brush ? brush->nativeBrush : nullptr; }
};

}  // namespace qor::tools::Gdiplus
