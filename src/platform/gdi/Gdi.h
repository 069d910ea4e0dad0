// The graphics device layer: device contexts, logical-to-device mapping, pens, brushes, fonts,
// regions, bitmaps and the drawing operations, with the platform's names and meanings, over Qt.
//
// A device context (`HDC`) holds the map mode, window and viewport origin and extent, the pen position,
// the selected pen, brush, font (and bitmap for a memory context), the raster mode, background mode and
// colour, text colour and alignment, the clip region and a stack of saved states. All geometry is mapped
// by the context's own integer arithmetic and reaches the device in device pixels; a Qt painter's
// transform is never used for it.
//
// Handles are raw pointers to objects that this layer owns. A handle stays valid until `DeleteObject`
// (or `DeleteDC` for a context). An object that is still selected into a context, or held by a saved
// state, is only marked by `DeleteObject` and goes when its last selection ends. Stock objects are never
// deleted.
//
// Two devices exist:
//  - the raster device on a `QImage` (RGB32), which draws every pixel itself with exact rules
//    (`CreateImageDC`, and memory contexts with a selected `HBITMAP`);
//  - the paint-engine device on any `QPaintDevice` (PDF, SVG, picture), with the same mapping and
//    geometry but Qt's own rendering (`CreatePaintDeviceDC`). Pen raster modes fall back to copy there;
//    block transfers apply their operation to the source alone and leave out the pixels that would keep
//    the destination, which is exact for the mask sequences of transparent pictures
//    (PaintDeviceBackend.cpp lists the rules).
#pragma once

#include "platform/core/Types.h"

#include <QImage>

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

class QPaintDevice;
class QFont;
class QString;

namespace vl {

// ---------------------------------------------------------------------------------------------
// Handles and records
// ---------------------------------------------------------------------------------------------

using COLORREF = std::uint32_t; // 0x00BBGGRR

constexpr COLORREF RGB(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    return COLORREF(r) | (COLORREF(g) << 8) | (COLORREF(b) << 16);
}
constexpr std::uint8_t GetRValue(COLORREF c) {
    return std::uint8_t(c & 0xFF);
}
constexpr std::uint8_t GetGValue(COLORREF c) {
    return std::uint8_t((c >> 8) & 0xFF);
}
constexpr std::uint8_t GetBValue(COLORREF c) {
    return std::uint8_t((c >> 16) & 0xFF);
}
constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

class TDeviceContext;
class TGdiObject;
class TGdiPen;
class TGdiBrush;
class TGdiFont;
class TGdiRegion;
class TGdiBitmap;
namespace gdi {
class TRegionShape;
}

using HDC = TDeviceContext*;
using HGDIOBJ = TGdiObject*;
using HPEN = TGdiPen*;
using HBRUSH = TGdiBrush*;
using HFONT = TGdiFont*;
using HRGN = TGdiRegion*;
using HBITMAP = TGdiBitmap*;

struct LOGPEN {
    std::uint32_t lopnStyle = 0; // PS_*
    TPoint lopnWidth;            // x is the width in logical units; y is unused
    COLORREF lopnColor = 0;
};

struct LOGBRUSH {
    std::uint32_t lbStyle = 0; // BS_*
    COLORREF lbColor = 0;
    std::uintptr_t lbHatch = 0; // HS_* for BS_HATCHED
};

constexpr int LF_FACESIZE = 32;

struct LOGFONTW {
    std::int32_t lfHeight = 0;      // logical units; negative: character (em) height, positive: cell height
    std::int32_t lfWidth = 0;       // average character width, 0: from the height
    std::int32_t lfEscapement = 0;  // tenths of a degree, counter-clockwise on the device
    std::int32_t lfOrientation = 0; // kept, not used: the characters follow the escapement
    std::int32_t lfWeight = 0;      // 0 default (400), 400 normal, 700 bold
    std::uint8_t lfItalic = 0;
    std::uint8_t lfUnderline = 0;
    std::uint8_t lfStrikeOut = 0;
    std::uint8_t lfCharSet = 0;
    std::uint8_t lfOutPrecision = 0;
    std::uint8_t lfClipPrecision = 0;
    std::uint8_t lfQuality = 0;
    std::uint8_t lfPitchAndFamily = 0; // low two bits: DEFAULT_PITCH, FIXED_PITCH, VARIABLE_PITCH
    char16_t lfFaceName[LF_FACESIZE] = {};
};

// Text metrics, in logical units when answered by `GetTextMetricsW`.
struct TEXTMETRICW {
    std::int32_t tmHeight = 0; // ascent + descent
    std::int32_t tmAscent = 0;
    std::int32_t tmDescent = 0;
    std::int32_t tmInternalLeading = 0;
    std::int32_t tmExternalLeading = 0;
    std::int32_t tmAveCharWidth = 0;
    std::int32_t tmMaxCharWidth = 0;
    std::int32_t tmWeight = 0;
    std::uint8_t tmItalic = 0;
    std::uint8_t tmUnderlined = 0;
    std::uint8_t tmStruckOut = 0;
    std::uint8_t tmPitchAndFamily = 0;
    std::uint8_t tmCharSet = 0;
};

struct BITMAPINFOHEADER {
    std::uint32_t biSize = 40;
    std::int32_t biWidth = 0;
    std::int32_t biHeight = 0; // positive: bottom-up rows, negative: top-down
    std::uint16_t biPlanes = 1;
    std::uint16_t biBitCount = 0;    // 1, 4, 8, 24, 32
    std::uint32_t biCompression = 0; // BI_RGB only
    std::uint32_t biSizeImage = 0;
    std::int32_t biXPelsPerMeter = 0;
    std::int32_t biYPelsPerMeter = 0;
    std::uint32_t biClrUsed = 0;
    std::uint32_t biClrImportant = 0;
};

struct RGBQUAD {
    std::uint8_t rgbBlue = 0;
    std::uint8_t rgbGreen = 0;
    std::uint8_t rgbRed = 0;
    std::uint8_t rgbReserved = 0;
};

// A header followed by its colour table. `bmiColors` holds up to 256 entries (for 1, 4 and 8 bits);
// unused for 24 and 32 bits.
struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[256] = {};
};

constexpr std::uint32_t BI_RGB = 0;
constexpr std::uint32_t DIB_RGB_COLORS = 0;

// ---------------------------------------------------------------------------------------------
// Constants (the platform's numeric values)
// ---------------------------------------------------------------------------------------------

// Map modes.
constexpr int MM_TEXT = 1;
constexpr int MM_LOMETRIC = 2;
constexpr int MM_HIMETRIC = 3;
constexpr int MM_LOENGLISH = 4;
constexpr int MM_HIENGLISH = 5;
constexpr int MM_TWIPS = 6;
constexpr int MM_ISOTROPIC = 7;
constexpr int MM_ANISOTROPIC = 8;

// Pen styles.
constexpr std::uint32_t PS_SOLID = 0;
constexpr std::uint32_t PS_DASH = 1;
constexpr std::uint32_t PS_DOT = 2;
constexpr std::uint32_t PS_DASHDOT = 3;
constexpr std::uint32_t PS_DASHDOTDOT = 4;
constexpr std::uint32_t PS_NULL = 5;
constexpr std::uint32_t PS_INSIDEFRAME = 6;

// Brush styles and hatches.
constexpr std::uint32_t BS_SOLID = 0;
constexpr std::uint32_t BS_NULL = 1;
constexpr std::uint32_t BS_HOLLOW = BS_NULL;
constexpr std::uint32_t BS_HATCHED = 2;
constexpr int HS_HORIZONTAL = 0;
constexpr int HS_VERTICAL = 1;
constexpr int HS_FDIAGONAL = 2;
constexpr int HS_BDIAGONAL = 3;
constexpr int HS_CROSS = 4;
constexpr int HS_DIAGCROSS = 5;

// Raster (ROP2) modes.
constexpr int R2_BLACK = 1;
constexpr int R2_NOTMERGEPEN = 2;
constexpr int R2_MASKNOTPEN = 3;
constexpr int R2_NOTCOPYPEN = 4;
constexpr int R2_MASKPENNOT = 5;
constexpr int R2_NOT = 6;
constexpr int R2_XORPEN = 7;
constexpr int R2_NOTMASKPEN = 8;
constexpr int R2_MASKPEN = 9;
constexpr int R2_NOTXORPEN = 10;
constexpr int R2_NOP = 11;
constexpr int R2_MERGENOTPEN = 12;
constexpr int R2_COPYPEN = 13;
constexpr int R2_MERGEPENNOT = 14;
constexpr int R2_MERGEPEN = 15;
constexpr int R2_WHITE = 16;

// Background modes.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

// Polygon fill modes.
constexpr int ALTERNATE = 1;
constexpr int WINDING = 2;

// Text alignment. Horizontal: left, right, centre; vertical: top, bottom, baseline.
constexpr std::uint32_t TA_NOUPDATECP = 0;
constexpr std::uint32_t TA_UPDATECP = 1;
constexpr std::uint32_t TA_LEFT = 0;
constexpr std::uint32_t TA_RIGHT = 2;
constexpr std::uint32_t TA_CENTER = 6;
constexpr std::uint32_t TA_TOP = 0;
constexpr std::uint32_t TA_BOTTOM = 8;
constexpr std::uint32_t TA_BASELINE = 24;

// Stock objects.
constexpr int WHITE_BRUSH = 0;
constexpr int LTGRAY_BRUSH = 1;
constexpr int GRAY_BRUSH = 2;
constexpr int DKGRAY_BRUSH = 3;
constexpr int BLACK_BRUSH = 4;
constexpr int NULL_BRUSH = 5;
constexpr int HOLLOW_BRUSH = NULL_BRUSH;
constexpr int WHITE_PEN = 6;
constexpr int BLACK_PEN = 7;
constexpr int NULL_PEN = 8;
constexpr int OEM_FIXED_FONT = 10;
constexpr int ANSI_FIXED_FONT = 11;
constexpr int ANSI_VAR_FONT = 12;
constexpr int SYSTEM_FONT = 13;
constexpr int DEVICE_DEFAULT_FONT = 14;
constexpr int SYSTEM_FIXED_FONT = 16;
constexpr int DEFAULT_GUI_FONT = 17;

// Object types (`GetObjectType`, `GetCurrentObject`).
constexpr int OBJ_PEN = 1;
constexpr int OBJ_BRUSH = 2;
constexpr int OBJ_DC = 3;
constexpr int OBJ_FONT = 6;
constexpr int OBJ_BITMAP = 7;
constexpr int OBJ_REGION = 8;
constexpr int OBJ_MEMDC = 10;

// Ternary raster operations for the block transfers.
constexpr std::uint32_t SRCCOPY = 0x00CC0020;
constexpr std::uint32_t SRCPAINT = 0x00EE0086;
constexpr std::uint32_t SRCAND = 0x008800C6;
constexpr std::uint32_t SRCINVERT = 0x00660046;
constexpr std::uint32_t SRCERASE = 0x00440328;
constexpr std::uint32_t NOTSRCCOPY = 0x00330008;
constexpr std::uint32_t NOTSRCERASE = 0x001100A6;
constexpr std::uint32_t MERGECOPY = 0x00C000CA;
constexpr std::uint32_t MERGEPAINT = 0x00BB0226;
constexpr std::uint32_t PATCOPY = 0x00F00021;
constexpr std::uint32_t PATPAINT = 0x00FB0A09;
constexpr std::uint32_t PATINVERT = 0x005A0049;
constexpr std::uint32_t DSTINVERT = 0x00550009;
constexpr std::uint32_t BLACKNESS = 0x00000042;
constexpr std::uint32_t WHITENESS = 0x00FF0062;

// Device capabilities.
constexpr int DRIVERVERSION = 0;
constexpr int TECHNOLOGY = 2;
constexpr int HORZSIZE = 4;
constexpr int VERTSIZE = 6;
constexpr int HORZRES = 8;
constexpr int VERTRES = 10;
constexpr int BITSPIXEL = 12;
constexpr int PLANES = 14;
constexpr int NUMCOLORS = 24;
constexpr int RASTERCAPS = 38;
constexpr int LOGPIXELSX = 88;
constexpr int LOGPIXELSY = 90;
constexpr int PHYSICALWIDTH = 110;
constexpr int PHYSICALHEIGHT = 111;
constexpr int PHYSICALOFFSETX = 112;
constexpr int PHYSICALOFFSETY = 113;
// TECHNOLOGY answers.
constexpr int DT_PLOTTER = 0;
constexpr int DT_RASDISPLAY = 1;
constexpr int DT_RASPRINTER = 2;
constexpr int DT_METAFILE = 5;
// RASTERCAPS bits.
constexpr int RC_BITBLT = 1;
constexpr int RC_BANDING = 2;
constexpr int RC_SCALING = 4;
constexpr int RC_BITMAP64 = 8;
constexpr int RC_DI_BITMAP = 0x0080;
constexpr int RC_DIBTODEV = 0x0200;
constexpr int RC_STRETCHBLT = 0x0800;
constexpr int RC_STRETCHDIB = 0x2000;

// Region results and combinations.
constexpr int ERROR = 0;
constexpr int RGN_ERROR = ERROR;
constexpr int NULLREGION = 1;
constexpr int SIMPLEREGION = 2;
constexpr int COMPLEXREGION = 3;
constexpr int RGN_AND = 1;
constexpr int RGN_OR = 2;
constexpr int RGN_XOR = 3;
constexpr int RGN_DIFF = 4;
constexpr int RGN_COPY = 5;

// Font weights, character sets, pitch.
constexpr int FW_DONTCARE = 0;
constexpr int FW_NORMAL = 400;
constexpr int FW_BOLD = 700;
constexpr std::uint8_t ANSI_CHARSET = 0;
constexpr std::uint8_t DEFAULT_CHARSET = 1;
constexpr std::uint8_t SYMBOL_CHARSET = 2;
constexpr std::uint8_t OEM_CHARSET = 255;
constexpr std::uint8_t DEFAULT_PITCH = 0;
constexpr std::uint8_t FIXED_PITCH = 1;
constexpr std::uint8_t VARIABLE_PITCH = 2;

// ---------------------------------------------------------------------------------------------
// The objects behind the handles: pens, brushes, fonts, regions and bitmaps.
//
// Each object counts its selections (into contexts and their saved states). `DeleteObject` of a
// selected object only marks it; it goes when the last selection ends. Stock objects live for the
// whole process. Callers use the handles and the functions below, not these members.
// ---------------------------------------------------------------------------------------------

class TGdiObject {
public:
    virtual ~TGdiObject() = default;
    virtual int ObjectType() const = 0;

    bool IsStock() const { return FStock; }
    void MarkStock() { FStock = true; }
    void AddRef() { ++FRefs; }
    // Ends one selection; deletes the object when it was marked for deletion and nothing holds it.
    void Release();
    // Deletes now, or marks for deletion while selected. Stock objects stay.
    void Delete();

protected:
    TGdiObject();

private:
    int FRefs = 0;
    bool FStock = false;
    bool FDeletePending = false;
};

class TGdiPen final : public TGdiObject {
public:
    explicit TGdiPen(const LOGPEN& pen) : FLogPen(pen) {}
    int ObjectType() const override { return OBJ_PEN; }
    LOGPEN FLogPen;
};

class TGdiBrush final : public TGdiObject {
public:
    explicit TGdiBrush(const LOGBRUSH& brush) : FLogBrush(brush) {}
    int ObjectType() const override { return OBJ_BRUSH; }
    LOGBRUSH FLogBrush;
};

class TGdiFont final : public TGdiObject {
public:
    explicit TGdiFont(const LOGFONTW& font) : FLogFont(font) {}
    int ObjectType() const override { return OBJ_FONT; }
    LOGFONTW FLogFont;
};

class TGdiRegion final : public TGdiObject {
public:
    explicit TGdiRegion(std::shared_ptr<const gdi::TRegionShape> shape) : FShape(std::move(shape)) {}
    int ObjectType() const override { return OBJ_REGION; }
    std::shared_ptr<const gdi::TRegionShape> FShape;
};

class TGdiBitmap final : public TGdiObject {
public:
    explicit TGdiBitmap(QImage image) : FImage(std::move(image)) {}
    int ObjectType() const override { return OBJ_BITMAP; }
    QImage FImage; // RGB32
};

// ---------------------------------------------------------------------------------------------
// Devices
// ---------------------------------------------------------------------------------------------

// A raster context drawing into `image` (converted to RGB32 if it is not). The caller keeps the image
// alive for the life of the context. Resolution: the image's dots per metre when set, else 96 dpi.
HDC CreateImageDC(QImage* image);
// A paint-engine context on any paint device (PDF writer, printer, SVG generator, picture, image).
// The caller keeps the device alive. A painter is opened on the device for the life of the context, or
// the context uses the device's active painter if one exists.
HDC CreatePaintDeviceDC(QPaintDevice* device);
// A memory context compatible with `dc` (which may be null): a raster context with a 1 x 1 white bitmap
// selected until `SelectObject` selects a bitmap.
HDC CreateCompatibleDC(HDC dc);
bool DeleteDC(HDC dc);

// What a context drew: after each drawing operation the touched device rectangle (clipped, normalised,
// right and bottom exclusive) is added to an accumulated bound and passed to the event, if assigned.
using TDrawnEvent = std::function<void(const TRect& drawnDev)>;
void SetDrawnEvent(HDC dc, TDrawnEvent event);
// Answers the accumulated bound in device pixels (empty rectangle when nothing was drawn) and, with
// `reset`, starts a new one.
TRect GetDrawnBoundsDev(HDC dc, bool reset);

// The device's resolution and size. HORZRES/VERTRES pixels, HORZSIZE/VERTSIZE millimetres
// (round(pixels * 25.4 / dpi)), LOGPIXELSX/Y, TECHNOLOGY, RASTERCAPS, BITSPIXEL, PLANES.
int GetDeviceCaps(HDC dc, int index);
// Sets the pixels per inch of a raster context (tests and bitmaps that carry their own resolution).
bool SetDeviceResolution(HDC dc, int dpiX, int dpiY);

// ---------------------------------------------------------------------------------------------
// Mapping
//
// device = viewport origin + (logical - window origin) * viewport extent / window extent, per axis,
// in 64 bits, with the quotient rounded half away from zero. DPtoLP is the inverse with the same rule.
// Zero extents are refused and leave the old value. In MM_TEXT the extents are 1:1 and the extent
// setters are ignored (they answer true).
// ---------------------------------------------------------------------------------------------

int SetMapMode(HDC dc, int mode); // answers the previous mode, 0 on failure
int GetMapMode(HDC dc);
bool SetWindowExtEx(HDC dc, int x, int y, TSize* previous = nullptr);
bool SetViewportExtEx(HDC dc, int x, int y, TSize* previous = nullptr);
bool SetWindowOrgEx(HDC dc, int x, int y, TPoint* previous = nullptr);
bool SetViewportOrgEx(HDC dc, int x, int y, TPoint* previous = nullptr);
bool OffsetWindowOrgEx(HDC dc, int dx, int dy, TPoint* previous = nullptr);
bool OffsetViewportOrgEx(HDC dc, int dx, int dy, TPoint* previous = nullptr);
bool GetWindowOrgEx(HDC dc, TPoint* origin);
bool GetWindowExtEx(HDC dc, TSize* extent);
bool GetViewportOrgEx(HDC dc, TPoint* origin);
bool GetViewportExtEx(HDC dc, TSize* extent);
bool LPtoDP(HDC dc, TPoint* points, int count);
bool DPtoLP(HDC dc, TPoint* points, int count);

// ---------------------------------------------------------------------------------------------
// Attributes
// ---------------------------------------------------------------------------------------------

COLORREF SetTextColor(HDC dc, COLORREF color); // answer the previous value
COLORREF GetTextColor(HDC dc);
COLORREF SetBkColor(HDC dc, COLORREF color);
COLORREF GetBkColor(HDC dc);
int SetBkMode(HDC dc, int mode);
int GetBkMode(HDC dc);
int SetROP2(HDC dc, int mode); // answers the previous mode, 0 for an invalid one
int GetROP2(HDC dc);
int SetPolyFillMode(HDC dc, int mode);
int GetPolyFillMode(HDC dc);
std::uint32_t SetTextAlign(HDC dc, std::uint32_t align);
std::uint32_t GetTextAlign(HDC dc);

// Saves the whole state (mapping, selected objects, colours, modes, clip, pen position). Answers the
// new save level (1 for the first), 0 on failure.
int SaveDC(HDC dc);
// A positive level restores that level and drops the ones above; a negative value is relative to the
// latest (-1 the latest). False for a level that does not exist.
bool RestoreDC(HDC dc, int saved);

// ---------------------------------------------------------------------------------------------
// Objects
// ---------------------------------------------------------------------------------------------

HPEN CreatePen(int style, int width, COLORREF color);
HPEN CreatePenIndirect(const LOGPEN* pen);
HBRUSH CreateSolidBrush(COLORREF color);
HBRUSH CreateHatchBrush(int hatch, COLORREF color);
HBRUSH CreateBrushIndirect(const LOGBRUSH* brush);
HFONT CreateFontIndirectW(const LOGFONTW* font);
// A bitmap of the given size in RGB32, white.
HBITMAP CreateCompatibleBitmap(HDC dc, int width, int height);
HBITMAP CreateBitmapFromImage(const QImage& image);
HGDIOBJ GetStockObject(int index);
// Selects a pen, brush, font or (into a memory context) bitmap and answers the previous one of that
// kind; a region is selected as the clip region (a copy) and the answer is null. Null on failure.
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
// False for a null handle. Stock objects are kept. A selected object is deleted when deselected.
bool DeleteObject(HGDIOBJ object);
int GetObjectType(HGDIOBJ object);
HGDIOBJ GetCurrentObject(HDC dc, int objectType);
bool GetLogPen(HPEN pen, LOGPEN* out);
bool GetLogBrush(HBRUSH brush, LOGBRUSH* out);
bool GetLogFont(HFONT font, LOGFONTW* out);
// The image behind a bitmap handle (null for a null handle). Drawing through a context that has the
// bitmap selected changes it.
QImage* GetBitmapImage(HBITMAP bitmap);
bool GetBitmapSize(HBITMAP bitmap, TSize* size);

// ---------------------------------------------------------------------------------------------
// Drawing (logical units)
//
// On the raster device: one-pixel lines step one pixel per major-axis unit, the minor coordinate
// rounded half up in the direction of travel; the end point of a line and the last point of a
// polyline are not drawn, so joints are drawn once. Dashed and dotted one-pixel pens use the patterns
// 18-6, 3-3, 9-6-3-6 and 9-3-3-3-3-3 pixels, continued along a run of LineTo calls and restarted by
// MoveToEx and each Polyline; their gaps take the background colour in OPAQUE mode. Pens wider than a
// pixel are solid with round caps and joins (mitred on rectangles); PS_INSIDEFRAME keeps them inside
// the shape. Rectangle, Ellipse and RoundRect cover the pixels of the same-named region of their
// normalised device rectangle: the border pixels (with a neighbour outside) take the one-pixel pen,
// the rest the brush; without a pen the brush fills the region one pixel smaller at the right and
// bottom. Text is drawn without antialiasing and without the raster mode.
// ---------------------------------------------------------------------------------------------

bool MoveToEx(HDC dc, int x, int y, TPoint* previous = nullptr);
bool GetCurrentPositionEx(HDC dc, TPoint* position);
bool LineTo(HDC dc, int x, int y);
bool Polyline(HDC dc, const TPoint* points, int count);
bool PolyPolyline(HDC dc, const TPoint* points, const std::uint32_t* counts, int polylines);
bool Polygon(HDC dc, const TPoint* points, int count);
bool PolyPolygon(HDC dc, const TPoint* points, const int* counts, int polygons);
bool Rectangle(HDC dc, int left, int top, int right, int bottom);
bool Ellipse(HDC dc, int left, int top, int right, int bottom);
bool RoundRect(HDC dc, int left, int top, int right, int bottom, int width, int height);
// Fills with the brush, without pen and without the raster mode, right and bottom excluded.
int FillRect(HDC dc, const TRect* rect, HBRUSH brush);
// A one-device-pixel frame in the brush, right and bottom excluded.
int FrameRect(HDC dc, const TRect* rect, HBRUSH brush);
bool InvertRect(HDC dc, const TRect* rect);
COLORREF SetPixel(HDC dc, int x, int y, COLORREF color); // answers the colour set, CLR_INVALID if not
COLORREF GetPixel(HDC dc, int x, int y);                 // CLR_INVALID outside the device or clip

bool TextOutW(HDC dc, int x, int y, const char16_t* text, int length);
bool GetTextExtentPoint32W(HDC dc, const char16_t* text, int length, TSize* size);
bool GetTextMetricsW(HDC dc, TEXTMETRICW* metrics);

// Block transfers; rectangles in the logical units of their contexts. The source may be null for
// operations without source (DSTINVERT, PATCOPY, BLACKNESS, ...).
bool BitBlt(HDC dest, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
            std::uint32_t rop);
bool StretchBlt(HDC dest, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                int sourceWidth, int sourceHeight, std::uint32_t rop);
bool PatBlt(HDC dest, int x, int y, int width, int height, std::uint32_t rop);
// A device-independent bitmap (1, 4, 8, 24 or 32 bits, bottom-up or top-down) stretched onto the
// destination rectangle; a negative destination extent mirrors. Answers the number of scan lines, 0 on
// failure.
int StretchDIBits(HDC dest, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                  int sourceHeight, const void* bits, const BITMAPINFO* info, std::uint32_t usage,
                  std::uint32_t rop);
// The header of a top-down 32-bit device-independent bitmap whose bits are those of an RGB32 or ARGB32
// image (`image.constBits()`; the fourth byte of each pixel is not read).
BITMAPINFO DibInfoOf(const QImage& image);
// The whole of `image` (any format; alpha is ignored, the colours stay) stretched onto the destination
// rectangle through `StretchDIBits` with `rop`. Answers what `StretchDIBits` answers (0 for a null image).
int StretchDIBitsOf(HDC dest, int x, int y, int width, int height, const QImage& image, std::uint32_t rop);

// ---------------------------------------------------------------------------------------------
// Regions
//
// A region is exact and analytic: rectangles, ellipses, rounded rectangles and polygons combined by
// boolean operations, in whatever units the caller creates it. A pixel (x, y) belongs to a shape when
// its centre (x + 0.5, y + 0.5) lies inside; a rectangle (l, t, r, b) thus holds l <= x < r,
// t <= y < b. `SelectClipRgn` reads the region in device units; `FillRgn` and `FrameRgn` in logical
// units.
// ---------------------------------------------------------------------------------------------

HRGN CreateRectRgn(int left, int top, int right, int bottom);
HRGN CreateRectRgnIndirect(const TRect* rect);
HRGN CreateEllipticRgn(int left, int top, int right, int bottom);
HRGN CreateEllipticRgnIndirect(const TRect* rect);
HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int width, int height);
HRGN CreatePolygonRgn(const TPoint* points, int count, int fillMode);
HRGN CreatePolyPolygonRgn(const TPoint* points, const int* counts, int polygons, int fillMode);
int CombineRgn(HRGN dest, HRGN source1, HRGN source2, int mode);
int OffsetRgn(HRGN region, int dx, int dy);
bool SetRectRgn(HRGN region, int left, int top, int right, int bottom);
bool PtInRegion(HRGN region, int x, int y);
bool RectInRegion(HRGN region, const TRect* rect);
bool EqualRgn(HRGN a, HRGN b);
int GetRgnBox(HRGN region, TRect* box);
bool FillRgn(HDC dc, HRGN region, HBRUSH brush);
bool PaintRgn(HDC dc, HRGN region);
bool InvertRgn(HDC dc, HRGN region);
// The region's border, `width` wide horizontally and `height` vertically (logical units), inside the
// region, in the brush.
bool FrameRgn(HDC dc, HRGN region, HBRUSH brush, int width, int height);

// Clipping. The clip region is kept in device units.
int SelectClipRgn(HDC dc, HRGN region); // a copy; null removes the clip. Answers the region type.
int ExtSelectClipRgn(HDC dc, HRGN region, int mode);
int GetClipBox(HDC dc, TRect* box);  // logical units, normalised; device bounds when nothing clips
int GetClipRgn(HDC dc, HRGN region); // 1 with a clip region (copied), 0 without, -1 on error
int IntersectClipRect(HDC dc, int left, int top, int right, int bottom); // logical units
int ExcludeClipRect(HDC dc, int left, int top, int right, int bottom);   // logical units
int OffsetClipRgn(HDC dc, int dx, int dy);                               // logical units
bool PtVisible(HDC dc, int x, int y);
bool RectVisible(HDC dc, const TRect* rect);

// ---------------------------------------------------------------------------------------------
// Fonts
//
// All measuring, and the Qt font made from a logical font, go through one replaceable service. The
// service receives the logical font with `lfHeight` already in device pixels (same sign convention)
// and answers device pixels.
// ---------------------------------------------------------------------------------------------

class TFontService {
public:
    virtual ~TFontService();
    // The installed face for a face name: "Default" and "" give the default face; the names of the
    // platform's classic faces go to metric-compatible installed ones.
    virtual QString ResolveFace(std::u16string_view faceName) const;
    // The Qt font for a logical font whose height is in device pixels.
    virtual QFont MakeFont(const LOGFONTW& fontDev) const;
    // Unrotated extent of a text in device pixels: advance width and cell height.
    virtual TSize TextExtent(const LOGFONTW& fontDev, std::u16string_view text) const;
    virtual TEXTMETRICW TextMetrics(const LOGFONTW& fontDev) const;
};

// The service in force (never null; a default one exists).
TFontService& FontService();
// Replaces the service; null restores the default. Answers the previous one (the caller owns it).
std::unique_ptr<TFontService> SetFontService(std::unique_ptr<TFontService> service);

} // namespace vl
