// The painting interface's values, records and flat calls, with the Windows
// numbers and layouts: statuses, units, dash styles, pixel formats, colours
// (alpha in the top byte), rectangles, the lock record and the encoder table.
// The objects behind the Gp* pointers draw with Cairo and Pango; the classes
// in gdiplus.h are the usual way to call them.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/com.h"
#include "qor/tools/platform/handles.h"

namespace qor::tools::Gdiplus {

using INT = int;
using UINT = unsigned;
using REAL = float;
using BYTE = std::uint8_t;
using ARGB = std::uint32_t;
using WCHAR = char16_t;
using BOOL = int;
using UINT_PTR = std::uintptr_t;
using ULONG_PTR = std::uintptr_t;
using LANGID = std::uint16_t;
using PixelFormat = INT;

enum Status {
    Ok = 0,
    GenericError = 1,
    InvalidParameter = 2,
    OutOfMemory = 3,
    ObjectBusy = 4,
    InsufficientBuffer = 5,
    NotImplemented = 6,
    Win32Error = 7,
    WrongState = 8,
    Aborted = 9,
    FileNotFound = 10,
    ValueOverflow = 11,
    AccessDenied = 12,
    UnknownImageFormat = 13,
    FontFamilyNotFound = 14,
    FontStyleNotFound = 15,
    NotTrueTypeFont = 16,
    UnsupportedGdiplusVersion = 17,
    GdiplusNotInitialized = 18,
    PropertyNotFound = 19,
    PropertyNotSupported = 20,
};
using GpStatus = Status;

enum Unit { UnitWorld = 0, UnitDisplay = 1, UnitPixel = 2, UnitPoint = 3, UnitInch = 4, UnitDocument = 5, UnitMillimeter = 6 };

enum DashStyle {
    DashStyleSolid = 0,
    DashStyleDash = 1,
    DashStyleDot = 2,
    DashStyleDashDot = 3,
    DashStyleDashDotDot = 4,
    DashStyleCustom = 5,
};

enum FontStyle {
    FontStyleRegular = 0,
    FontStyleBold = 1,
    FontStyleItalic = 2,
    FontStyleBoldItalic = 3,
    FontStyleUnderline = 4,
    FontStyleStrikeout = 8,
};

enum ImageLockMode { ImageLockModeRead = 1, ImageLockModeWrite = 2, ImageLockModeUserInputBuf = 4 };

enum SmoothingMode {
    SmoothingModeInvalid = -1,
    SmoothingModeDefault = 0,
    SmoothingModeHighSpeed = 1,
    SmoothingModeHighQuality = 2,
    SmoothingModeNone = 3,
    SmoothingModeAntiAlias = 4,
};

enum FillMode { FillModeAlternate = 0, FillModeWinding = 1 };

enum BrushType { BrushTypeSolidColor = 0 };

enum StringAlignment { StringAlignmentNear = 0, StringAlignmentCenter = 1, StringAlignmentFar = 2 };

enum StringFormatFlags {
    StringFormatFlagsDirectionRightToLeft = 0x0001,
    StringFormatFlagsNoWrap = 0x1000,
    StringFormatFlagsNoClip = 0x4000,
};

// Pixel formats: the ones a bitmap is kept in here. Others are refused.
inline constexpr PixelFormat PixelFormat24bppRGB = 0x00021808;
inline constexpr PixelFormat PixelFormat32bppRGB = 0x00022009;
inline constexpr PixelFormat PixelFormat32bppARGB = 0x0026200A;
inline constexpr PixelFormat PixelFormat32bppPARGB = 0x000E200B;

struct QOR_TOOLS_API Point {
    INT X = 0, Y = 0;
};

struct QOR_TOOLS_API PointF {
    REAL X = 0, Y = 0;
};

struct QOR_TOOLS_API Size {
    Size() = default;
    Size(INT width, INT height) : Width(width), Height(height) {}
    INT Width = 0, Height = 0;
};

struct QOR_TOOLS_API Rect {
    Rect() = default;
    Rect(INT x, INT y, INT width, INT height) : X(x), Y(y), Width(width), Height(height) {}
    INT X = 0, Y = 0, Width = 0, Height = 0;
};

struct QOR_TOOLS_API RectF {
    RectF() = default;
    RectF(REAL x, REAL y, REAL width, REAL height) : X(x), Y(y), Width(width), Height(height) {}
    REAL X = 0, Y = 0, Width = 0, Height = 0;
};

// An alpha-first colour: 0xAARRGGBB. The default is opaque black.
class QOR_TOOLS_API Color {
public:
    Color() = default;
    Color(ARGB argb) : Argb(argb) {}  // NOLINT: a value converts as it stands
    Color(BYTE r, BYTE g, BYTE b) : Argb(MakeARGB(255, r, g, b)) {}
    Color(BYTE a, BYTE r, BYTE g, BYTE b) : Argb(MakeARGB(a, r, g, b)) {}

    ARGB GetValue() const { return Argb; }
    void SetValue(ARGB argb) { Argb = argb; }
    BYTE GetA() const { return BYTE(Argb >> 24); }
    BYTE GetR() const { return BYTE(Argb >> 16); }
    BYTE GetG() const { return BYTE(Argb >> 8); }
    BYTE GetB() const { return BYTE(Argb); }
    static ARGB MakeARGB(BYTE a, BYTE r, BYTE g, BYTE b) {
        return ARGB(a) << 24 | ARGB(r) << 16 | ARGB(g) << 8 | ARGB(b);
    }

    static constexpr ARGB Black = 0xFF000000;
    static constexpr ARGB White = 0xFFFFFFFF;
    static constexpr ARGB Red = 0xFFFF0000;
    static constexpr ARGB Green = 0xFF008000;
    static constexpr ARGB Blue = 0xFF0000FF;
    static constexpr ARGB Transparent = 0x00FFFFFF;

protected:
    ARGB Argb = Black;
};

// A lock's view of pixels.
struct QOR_TOOLS_API BitmapData {
    UINT Width;
    UINT Height;
    INT Stride;
    INT PixelFormat;  // a pixel format value
    void *Scan0;
    UINT_PTR Reserved;
};

// One entry of the encoder table; the strings live in the table's block.
struct QOR_TOOLS_API ImageCodecInfo {
    CLSID Clsid;
    GUID FormatID;
    WCHAR const *CodecName;
    WCHAR const *DllName;
    WCHAR const *FormatDescription;
    WCHAR const *FilenameExtension;
    WCHAR const *MimeType;
    DWORD Flags;
    DWORD Version;
    DWORD SigCount;
    DWORD SigSize;
    BYTE const *SigPattern;
    BYTE const *SigMask;
};

struct EncoderParameters;  // accepted and not read: each encoder has one setting

struct QOR_TOOLS_API GdiplusStartupInput {
    std::uint32_t GdiplusVersion = 1;
    void *DebugEventCallback = nullptr;
    BOOL SuppressBackgroundThread = 0;
    BOOL SuppressExternalCodecs = 0;
};
struct QOR_TOOLS_API GdiplusStartupOutput {
    void *NotificationHook = nullptr;
    void *NotificationUnhook = nullptr;
};

// The platform objects behind the classes.
struct GpGraphics;
struct GpPen;
struct GpBrush;
struct GpSolidFill;
struct GpFont;
struct GpFontFamily;
struct GpFontCollection;
struct GpImage;
struct GpBitmap;
struct GpStringFormat;
struct GpPath;
using HPALETTE = void *;

QOR_TOOLS_API Status GdiplusStartup(ULONG_PTR *token, GdiplusStartupInput const *input, GdiplusStartupOutput *output);
QOR_TOOLS_API void GdiplusShutdown(ULONG_PTR token);
// Memory of the class objects: null when none is left.
QOR_TOOLS_API void *GdipAlloc(std::size_t size) noexcept;
QOR_TOOLS_API void GdipFree(void *block) noexcept;

// Fonts: by family name (sizes in the unit given), from a LOGFONTA, or the
// font selected in a context.
QOR_TOOLS_API Status GdipCreateFontFamilyFromName(WCHAR const *name, GpFontCollection *collection, GpFontFamily **family);
QOR_TOOLS_API Status GdipDeleteFontFamily(GpFontFamily *family);
QOR_TOOLS_API Status GdipGetFamilyName(GpFontFamily const *family, WCHAR name[LF_FACESIZE], LANGID language);
QOR_TOOLS_API Status GdipCreateFont(GpFontFamily const *family, REAL size, INT style, INT unit, GpFont **font);
QOR_TOOLS_API Status GdipCreateFontFromLogfontA(HDC dc, tagLOGFONTA const *logfont, GpFont **font);
QOR_TOOLS_API Status GdipCreateFontFromDC(HDC dc, GpFont **font);
QOR_TOOLS_API Status GdipCloneFont(GpFont *font, GpFont **clone);
QOR_TOOLS_API Status GdipDeleteFont(GpFont *font);
QOR_TOOLS_API Status GdipGetFontSize(GpFont *font, REAL *size);
QOR_TOOLS_API Status GdipGetFontStyle(GpFont *font, INT *style);
QOR_TOOLS_API Status GdipGetFontUnit(GpFont *font, Unit *unit);
QOR_TOOLS_API Status GdipGetFamily(GpFont *font, GpFontFamily **family);

// Pens and solid brushes.
QOR_TOOLS_API Status GdipCreatePen1(ARGB color, REAL width, Unit unit, GpPen **pen);
QOR_TOOLS_API Status GdipClonePen(GpPen *pen, GpPen **clone);
QOR_TOOLS_API Status GdipDeletePen(GpPen *pen);
QOR_TOOLS_API Status GdipSetPenDashStyle(GpPen *pen, DashStyle style);
QOR_TOOLS_API Status GdipGetPenDashStyle(GpPen *pen, DashStyle *style);
QOR_TOOLS_API Status GdipGetPenColor(GpPen *pen, ARGB *color);
QOR_TOOLS_API Status GdipGetPenWidth(GpPen *pen, REAL *width);
QOR_TOOLS_API Status GdipCreateSolidFill(ARGB color, GpSolidFill **brush);
QOR_TOOLS_API Status GdipCloneBrush(GpBrush *brush, GpBrush **clone);
QOR_TOOLS_API Status GdipDeleteBrush(GpBrush *brush);
QOR_TOOLS_API Status GdipGetSolidFillColor(GpSolidFill *brush, ARGB *color);
QOR_TOOLS_API Status GdipGetBrushType(GpBrush *brush, BrushType *type);

// Text layout of DrawString: alignment along and across the lines, wrapping.
QOR_TOOLS_API Status GdipCreateStringFormat(INT flags, LANGID language, GpStringFormat **format);
QOR_TOOLS_API Status GdipDeleteStringFormat(GpStringFormat *format);
QOR_TOOLS_API Status GdipSetStringFormatAlign(GpStringFormat *format, StringAlignment align);
QOR_TOOLS_API Status GdipSetStringFormatLineAlign(GpStringFormat *format, StringAlignment align);
QOR_TOOLS_API Status GdipSetStringFormatFlags(GpStringFormat *format, INT flags);

// Bitmaps. A lock is always a copy in the format asked for, written back on
// unlocking a write lock; a null bitmap in GdipBitmapUnlockBits stands for the
// bitmap the lock was taken on, which may have been disposed of meanwhile.
QOR_TOOLS_API Status GdipCreateBitmapFromScan0(INT width, INT height, INT stride, PixelFormat format, BYTE *scan0,
                                               GpBitmap **bitmap);
QOR_TOOLS_API Status GdipCreateBitmapFromFile(WCHAR const *path, GpBitmap **bitmap);
QOR_TOOLS_API Status GdipCreateBitmapFromHBITMAP(HBITMAP source, HPALETTE palette, GpBitmap **bitmap);
QOR_TOOLS_API Status GdipCloneImage(GpImage *image, GpImage **clone);
QOR_TOOLS_API Status GdipDisposeImage(GpImage *image);
QOR_TOOLS_API Status GdipGetImageWidth(GpImage *image, UINT *width);
QOR_TOOLS_API Status GdipGetImageHeight(GpImage *image, UINT *height);
QOR_TOOLS_API Status GdipGetImagePixelFormat(GpImage *image, PixelFormat *format);
QOR_TOOLS_API Status GdipBitmapLockBits(GpBitmap *bitmap, Rect const *rect, UINT flags, PixelFormat format,
                                        BitmapData *data);
QOR_TOOLS_API Status GdipBitmapUnlockBits(GpBitmap *bitmap, BitmapData *data);
QOR_TOOLS_API Status GdipBitmapGetPixel(GpBitmap *bitmap, INT x, INT y, ARGB *color);
QOR_TOOLS_API Status GdipBitmapSetPixel(GpBitmap *bitmap, INT x, INT y, ARGB color);
QOR_TOOLS_API Status GdipGetImageEncodersSize(UINT *count, UINT *size);
QOR_TOOLS_API Status GdipGetImageEncoders(UINT count, UINT size, ImageCodecInfo *encoders);
// Writes the file whole or not at all (a replaced file stays as it was on failure).
QOR_TOOLS_API Status GdipSaveImageToFile(GpImage *image, WCHAR const *path, CLSID const *encoder,
                                         EncoderParameters const *parameters);

// Graphics on a window (drawn off screen, shown by Flush and at the end), a
// context (its cairo_t, referenced) or a bitmap.
QOR_TOOLS_API Status GdipCreateFromHWND(HWND window, GpGraphics **graphics);
QOR_TOOLS_API Status GdipCreateFromHDC(HDC dc, GpGraphics **graphics);
QOR_TOOLS_API Status GdipGetImageGraphicsContext(GpImage *image, GpGraphics **graphics);
QOR_TOOLS_API Status GdipDeleteGraphics(GpGraphics *graphics);
QOR_TOOLS_API Status GdipFlush(GpGraphics *graphics, INT intention);
QOR_TOOLS_API Status GdipGetDC(GpGraphics *graphics, HDC *dc);
QOR_TOOLS_API Status GdipReleaseDC(GpGraphics *graphics, HDC dc);
QOR_TOOLS_API Status GdipGetDpiX(GpGraphics *graphics, REAL *dpi);
QOR_TOOLS_API Status GdipGetDpiY(GpGraphics *graphics, REAL *dpi);
QOR_TOOLS_API Status GdipSetSmoothingMode(GpGraphics *graphics, SmoothingMode mode);
QOR_TOOLS_API Status GdipGetSmoothingMode(GpGraphics *graphics, SmoothingMode *mode);
QOR_TOOLS_API Status GdipTranslateWorldTransform(GpGraphics *graphics, REAL dx, REAL dy, INT order);
QOR_TOOLS_API Status GdipScaleWorldTransform(GpGraphics *graphics, REAL sx, REAL sy, INT order);
QOR_TOOLS_API Status GdipRotateWorldTransform(GpGraphics *graphics, REAL angle, INT order);
QOR_TOOLS_API Status GdipResetWorldTransform(GpGraphics *graphics);
QOR_TOOLS_API Status GdipSetClipRect(GpGraphics *graphics, REAL x, REAL y, REAL width, REAL height, INT combine);
QOR_TOOLS_API Status GdipResetClip(GpGraphics *graphics);

// Drawing. Angles are in degrees, clockwise from the x axis.
QOR_TOOLS_API Status GdipGraphicsClear(GpGraphics *graphics, ARGB color);
QOR_TOOLS_API Status GdipDrawLine(GpGraphics *graphics, GpPen *pen, REAL x1, REAL y1, REAL x2, REAL y2);
QOR_TOOLS_API Status GdipDrawLines(GpGraphics *graphics, GpPen *pen, PointF const *points, INT count);
QOR_TOOLS_API Status GdipDrawArc(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height,
                                 REAL start, REAL sweep);
QOR_TOOLS_API Status GdipDrawBezier(GpGraphics *graphics, GpPen *pen, REAL x1, REAL y1, REAL x2, REAL y2, REAL x3,
                                    REAL y3, REAL x4, REAL y4);
QOR_TOOLS_API Status GdipDrawRectangle(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height);
QOR_TOOLS_API Status GdipFillRectangle(GpGraphics *graphics, GpBrush *brush, REAL x, REAL y, REAL width, REAL height);
QOR_TOOLS_API Status GdipDrawEllipse(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height);
QOR_TOOLS_API Status GdipFillEllipse(GpGraphics *graphics, GpBrush *brush, REAL x, REAL y, REAL width, REAL height);
QOR_TOOLS_API Status GdipDrawPie(GpGraphics *graphics, GpPen *pen, REAL x, REAL y, REAL width, REAL height,
                                 REAL start, REAL sweep);
QOR_TOOLS_API Status GdipFillPie(GpGraphics *graphics, GpBrush *brush, REAL x, REAL y, REAL width, REAL height,
                                 REAL start, REAL sweep);
QOR_TOOLS_API Status GdipDrawPolygon(GpGraphics *graphics, GpPen *pen, PointF const *points, INT count);
QOR_TOOLS_API Status GdipFillPolygon(GpGraphics *graphics, GpBrush *brush, PointF const *points, INT count,
                                     FillMode mode);
QOR_TOOLS_API Status GdipDrawImageI(GpGraphics *graphics, GpImage *image, INT x, INT y);
QOR_TOOLS_API Status GdipDrawImageRect(GpGraphics *graphics, GpImage *image, REAL x, REAL y, REAL width, REAL height);
QOR_TOOLS_API Status GdipDrawString(GpGraphics *graphics, WCHAR const *text, INT length, GpFont const *font,
                                    RectF const *layout, GpStringFormat const *format, GpBrush const *brush);
QOR_TOOLS_API Status GdipMeasureString(GpGraphics *graphics, WCHAR const *text, INT length, GpFont const *font,
                                       RectF const *layout, GpStringFormat const *format, RectF *bounds,
                                       INT *fitted, INT *lines);

// Paths: figures of lines, Béziers, arcs, rectangles and ellipses.
QOR_TOOLS_API Status GdipCreatePath(FillMode mode, GpPath **path);
QOR_TOOLS_API Status GdipDeletePath(GpPath *path);
QOR_TOOLS_API Status GdipStartPathFigure(GpPath *path);
QOR_TOOLS_API Status GdipClosePathFigure(GpPath *path);
QOR_TOOLS_API Status GdipAddPathLine(GpPath *path, REAL x1, REAL y1, REAL x2, REAL y2);
QOR_TOOLS_API Status GdipAddPathBezier(GpPath *path, REAL x1, REAL y1, REAL x2, REAL y2, REAL x3, REAL y3, REAL x4,
                                       REAL y4);
QOR_TOOLS_API Status GdipAddPathArc(GpPath *path, REAL x, REAL y, REAL width, REAL height, REAL start, REAL sweep);
QOR_TOOLS_API Status GdipAddPathRectangle(GpPath *path, REAL x, REAL y, REAL width, REAL height);
QOR_TOOLS_API Status GdipAddPathEllipse(GpPath *path, REAL x, REAL y, REAL width, REAL height);
QOR_TOOLS_API Status GdipDrawPath(GpGraphics *graphics, GpPen *pen, GpPath *path);
QOR_TOOLS_API Status GdipFillPath(GpGraphics *graphics, GpBrush *brush, GpPath *path);

// The class ids of the encoders.
inline constexpr CLSID CLSID_EncoderBMP = {0x557cf400, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr CLSID CLSID_EncoderJPEG = {0x557cf401, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr CLSID CLSID_EncoderGIF = {0x557cf402, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr CLSID CLSID_EncoderTIFF = {0x557cf405, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr CLSID CLSID_EncoderPNG = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

}  // namespace qor::tools::Gdiplus
