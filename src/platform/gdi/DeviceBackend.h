// The device behind a context: primitive operations in DEVICE pixels, after the context has mapped the
// geometry and resolved pens, brushes and fonts to device units.
//
// The context owns its backend. Every drawing primitive answers the device rectangle it touched
// (clipped, right and bottom exclusive, empty when nothing was drawn), from which the context keeps the
// bound of what it drew. A recording device (a list of drawing records replayed on another device) is
// one more implementation of this interface; callers of the public operations never see the backend.
#pragma once

#include "platform/gdi/Gdi.h"
#include "platform/gdi/Region.h"

#include <QRegion>

#include <string_view>
#include <vector>

class QImage;

namespace vl::gdi {

struct TPenDev {
    std::uint32_t Style = PS_SOLID; // PS_NULL draws nothing
    std::int32_t Width = 1;         // device pixels, at least 1
    COLORREF Color = 0;
    bool IsNull() const { return Style == PS_NULL; }
};

struct TBrushDev {
    std::uint32_t Style = BS_SOLID; // BS_NULL fills nothing
    int Hatch = 0;
    COLORREF Color = 0xFFFFFF;
    bool IsNull() const { return Style == BS_NULL; }
};

struct TDrawAttrs {
    TPenDev Pen;
    TBrushDev Brush;
    int Rop2 = R2_COPYPEN;
    int BkMode = OPAQUE;
    COLORREF BkColor = 0xFFFFFF;
    COLORREF TextColor = 0;
    int PolyFillMode = ALTERNATE;
    std::uint32_t TextAlign = TA_TOP | TA_LEFT;
};

// The pixels a drawing may touch, in device pixels: the device bounds, or their intersection with the
// clip region. Rows are precomputed as spans when the clip is not a plain rectangle.
class TDeviceClip {
public:
    // `shape` null: the whole device.
    void Build(const TShapePtr& shape, const TRect& deviceBounds);
    const TRect& Box() const { return FBox; }
    bool IsEmpty() const { return FBox.Left >= FBox.Right || FBox.Top >= FBox.Bottom; }
    bool IsRect() const { return FIsRect; }
    bool Contains(std::int32_t x, std::int32_t y) const;
    // Calls fn(x0, x1) for each visible part of [x0, x1) in row y.
    template <class F>
    void ForEachSpan(std::int32_t y, std::int32_t x0, std::int32_t x1, F&& fn) const {
        if (y < FBox.Top || y >= FBox.Bottom) return;
        if (FIsRect) {
            const std::int32_t a = std::max(x0, FBox.Left), b = std::min(x1, FBox.Right);
            if (a < b) fn(a, b);
            return;
        }
        const std::size_t row = std::size_t(y - FBox.Top);
        for (int i = FRowStart[row]; i < FRowStart[row + 1]; ++i) {
            const std::int32_t a = std::max(x0, FSpans[std::size_t(i)].x0);
            const std::int32_t b = std::min(x1, FSpans[std::size_t(i)].x1);
            if (a < b) fn(a, b);
        }
    }
    QRegion ToQRegion() const;

private:
    TRect FBox;
    bool FIsRect = true;
    std::vector<int> FRowStart;
    std::vector<TSpan> FSpans;
};

enum class TShapeKindDev : std::uint8_t { Rect, Ellipse, RoundRect };

class TDeviceBackend {
public:
    virtual ~TDeviceBackend() = default;

    // (0, 0, width, height) in device pixels.
    virtual TRect BoundsDev() const = 0;
    virtual int DeviceCaps(int index) const = 0;
    virtual bool HasRasterOps() const = 0;
    virtual void SetResolution(int dpiX, int dpiY) = 0;
    // The pixels of a raster device, for block transfers from it; null for other devices.
    virtual QImage* Image() = 0;

    // An open polyline; the last point is not drawn. `styleOffset` carries the position in the pen's
    // dash pattern from one call to the next.
    virtual TRect Polyline(const TPoint* points, int count, const TDrawAttrs& attrs, const TDeviceClip& clip,
                           int& styleOffset) = 0;
    // Filled and outlined polygons, fill rule from `attrs.PolyFillMode`.
    virtual TRect Polygons(const TPoint* points, const int* counts, int polygons, const TDrawAttrs& attrs,
                           const TDeviceClip& clip) = 0;
    // Rectangle, ellipse or rounded rectangle in a normalised device rectangle, right and bottom
    // excluded; with the null pen the fill is one pixel smaller at the right and bottom.
    virtual TRect Shape(TShapeKindDev kind, const TRect& rectDev, int cornerW, int cornerH,
                        const TDrawAttrs& attrs, const TDeviceClip& clip) = 0;
    // Fills a region shape (device units) with a brush and raster mode.
    virtual TRect FillRegion(const TRegionShape& shapeDev, const TBrushDev& brush, int rop2,
                             const TDrawAttrs& attrs, const TDeviceClip& clip) = 0;
    // Text with its reference point at `refDev`, aligned by `attrs.TextAlign`, rotated counter-clockwise
    // by the font's escapement about the reference point.
    virtual TRect Text(TPoint refDev, std::u16string_view text, const LOGFONTW& fontDev,
                       const TDrawAttrs& attrs, const TDeviceClip& clip) = 0;
    // Block transfer: `source` (may be null for operations without a source) sampled from `sourceRect`
    // onto `destRect`; a reversed rectangle on one side mirrors.
    virtual TRect Blt(const TRect& destRect, const QImage* source, const TRect& sourceRect, std::uint32_t rop,
                      COLORREF pattern, const TDeviceClip& clip) = 0;
    virtual COLORREF GetPixel(std::int32_t x, std::int32_t y) = 0;
    virtual TRect SetPixel(std::int32_t x, std::int32_t y, COLORREF color, const TDeviceClip& clip) = 0;
};

std::unique_ptr<TDeviceBackend> MakeRasterBackend(QImage* image);
std::unique_ptr<TDeviceBackend> MakePaintDeviceBackend(QPaintDevice* device);

// COLORREF (0x00BBGGRR) to and from an RGB32 pixel (0xFFRRGGBB).
inline std::uint32_t ColorToPixel(COLORREF c) {
    return 0xFF000000u | ((c & 0xFFu) << 16) | (c & 0xFF00u) | ((c >> 16) & 0xFFu);
}
inline COLORREF PixelToColor(std::uint32_t p) {
    return ((p >> 16) & 0xFFu) | (p & 0xFF00u) | ((p & 0xFFu) << 16);
}

// The sixteen raster modes on 24-bit colours.
inline std::uint32_t ApplyRop2(int rop2, std::uint32_t pen, std::uint32_t dst) {
    switch (rop2) {
    case R2_BLACK: return 0;
    case R2_NOTMERGEPEN: return ~(pen | dst);
    case R2_MASKNOTPEN: return ~pen & dst;
    case R2_NOTCOPYPEN: return ~pen;
    case R2_MASKPENNOT: return pen & ~dst;
    case R2_NOT: return ~dst;
    case R2_XORPEN: return pen ^ dst;
    case R2_NOTMASKPEN: return ~(pen & dst);
    case R2_MASKPEN: return pen & dst;
    case R2_NOTXORPEN: return ~(pen ^ dst);
    case R2_NOP: return dst;
    case R2_MERGENOTPEN: return ~pen | dst;
    case R2_MERGEPENNOT: return pen | ~dst;
    case R2_MERGEPEN: return pen | dst;
    case R2_WHITE: return 0xFFFFFFu;
    default: return pen; // R2_COPYPEN
    }
}

// A ternary raster operation (pattern, source, destination), from the truth table in bits 16..23.
inline std::uint32_t ApplyRop3(std::uint32_t rop, std::uint32_t pat, std::uint32_t src, std::uint32_t dst) {
    const std::uint32_t table = (rop >> 16) & 0xFFu;
    switch (table) {
    case 0xCC: return src;
    case 0x88: return src & dst;
    case 0xEE: return src | dst;
    case 0x66: return src ^ dst;
    case 0x44: return src & ~dst;
    case 0x33: return ~src;
    case 0xBB: return ~src | dst;
    case 0x55: return ~dst;
    case 0xF0: return pat;
    case 0x00: return 0;
    case 0xFF: return 0xFFFFFFFFu;
    default: break;
    }
    std::uint32_t result = 0;
    for (int i = 0; i < 8; ++i) {
        if (!((table >> i) & 1u)) continue;
        const std::uint32_t p = (i & 4) ? pat : ~pat;
        const std::uint32_t s = (i & 2) ? src : ~src;
        const std::uint32_t d = (i & 1) ? dst : ~dst;
        result |= p & s & d;
    }
    return result;
}

// Whether a ternary operation reads the source.
inline bool Rop3UsesSource(std::uint32_t rop) {
    const std::uint32_t t = (rop >> 16) & 0xFFu;
    return ((t >> 2) & 0x33u) != (t & 0x33u);
}

} // namespace vl::gdi
