// The raster device on an RGB32 `QImage`: every pen and brush pixel is written here, with the raster
// mode applied per pixel, so that the platform's exact rules hold (excluded end points and edges,
// joints drawn once, invertible pens). Wide pens are shaped by a Qt painter into a private coverage
// mask (round caps and joins, no antialiasing), whose pixels then go through the same raster mode.
// Text is drawn by a Qt painter without antialiasing and without raster mode.

#include "platform/gdi/DeviceBackend.h"
#include "platform/gdi/Rasterizer.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace vl::gdi {

namespace {

TRect UnionRect(const TRect& a, const TRect& b) {
    if (a.Left >= a.Right || a.Top >= a.Bottom) return b;
    if (b.Left >= b.Right || b.Top >= b.Bottom) return a;
    return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right),
            std::max(a.Bottom, b.Bottom)};
}

TRect IntersectRect(const TRect& a, const TRect& b) {
    TRect r{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
            std::min(a.Bottom, b.Bottom)};
    if (r.Left >= r.Right || r.Top >= r.Bottom) return {};
    return r;
}

// Dash patterns of one-pixel pens, in pixels: on, off, on, off ...
struct TDashPattern {
    const int* Runs;
    int Count;
    int Length;
};

const int DashRuns[] = {18, 6};
const int DotRuns[] = {3, 3};
const int DashDotRuns[] = {9, 6, 3, 6};
const int DashDotDotRuns[] = {9, 3, 3, 3, 3, 3};

TDashPattern PatternFor(std::uint32_t style) {
    switch (style) {
    case PS_DASH: return {DashRuns, 2, 24};
    case PS_DOT: return {DotRuns, 2, 6};
    case PS_DASHDOT: return {DashDotRuns, 4, 24};
    case PS_DASHDOTDOT: return {DashDotDotRuns, 6, 24};
    default: return {nullptr, 0, 0};
    }
}

bool PatternOn(const TDashPattern& p, std::int64_t position) {
    int pos = int(position % p.Length);
    if (pos < 0) pos += p.Length;
    for (int i = 0; i < p.Count; ++i) {
        if (pos < p.Runs[i]) return (i % 2) == 0;
        pos -= p.Runs[i];
    }
    return false;
}

bool HatchOn(int hatch, std::int32_t x, std::int32_t y) {
    const int hx = x & 7, hy = y & 7;
    switch (hatch) {
    case HS_HORIZONTAL: return hy == 0;
    case HS_VERTICAL: return hx == 0;
    case HS_FDIAGONAL: return ((hx - hy) & 7) == 0;
    case HS_BDIAGONAL: return ((hx + hy) & 7) == 7;
    case HS_CROSS: return hx == 0 || hy == 0;
    case HS_DIAGCROSS: return ((hx - hy) & 7) == 0 || ((hx + hy) & 7) == 7;
    default: return false;
    }
}

// What a span is painted with.
struct TPaint {
    int Rop = R2_COPYPEN;
    std::uint32_t Color = 0; // RGB32 pixel
    bool Hatched = false;
    int Hatch = 0;
    bool Opaque = false; // hatch gaps in the background colour
    std::uint32_t Bk = 0;
};

class TRasterBackend final : public TDeviceBackend {
public:
    explicit TRasterBackend(QImage* image) : FImage(image) {
        if (FImage->format() != QImage::Format_RGB32) *FImage = FImage->convertToFormat(QImage::Format_RGB32);
        const int dpmX = FImage->dotsPerMeterX(), dpmY = FImage->dotsPerMeterY();
        // A resolution of 96 dpi is 3780 dots per metre; images carry that unless told otherwise.
        FDpiX = dpmX > 0 ? int(std::lround(dpmX * 0.0254)) : 96;
        FDpiY = dpmY > 0 ? int(std::lround(dpmY * 0.0254)) : 96;
    }

    TRect BoundsDev() const override { return {0, 0, FImage->width(), FImage->height()}; }

    int DeviceCaps(int index) const override {
        switch (index) {
        case DRIVERVERSION: return 0x4000;
        case TECHNOLOGY: return DT_RASDISPLAY;
        case HORZRES: return FImage->width();
        case VERTRES: return FImage->height();
        case HORZSIZE: return int(std::lround(FImage->width() * 25.4 / FDpiX));
        case VERTSIZE: return int(std::lround(FImage->height() * 25.4 / FDpiY));
        case LOGPIXELSX: return FDpiX;
        case LOGPIXELSY: return FDpiY;
        case BITSPIXEL: return 32;
        case PLANES: return 1;
        case NUMCOLORS: return -1;
        case RASTERCAPS:
            return RC_BITBLT | RC_BITMAP64 | RC_DI_BITMAP | RC_DIBTODEV | RC_STRETCHBLT | RC_STRETCHDIB;
        case PHYSICALWIDTH: return FImage->width();
        case PHYSICALHEIGHT: return FImage->height();
        default: return 0;
        }
    }

    bool HasRasterOps() const override { return true; }
    void SetResolution(int dpiX, int dpiY) override {
        if (dpiX > 0) FDpiX = dpiX;
        if (dpiY > 0) FDpiY = dpiY;
    }
    QImage* Image() override { return FImage; }

    // --- pixels -----------------------------------------------------------------------------

    std::uint32_t* Row(std::int32_t y) {
        return reinterpret_cast<std::uint32_t*>(FBits + std::ptrdiff_t(y) * FStride);
    }
    void Begin() {
        FBits = FImage->bits();
        FStride = FImage->bytesPerLine();
        FTouched = {};
    }
    void Touch(const TRect& r) { FTouched = UnionRect(FTouched, r); }

    // Paints [x0, x1) of row y, already clipped.
    void PaintSpan(std::int32_t y, std::int32_t x0, std::int32_t x1, const TPaint& paint) {
        if (x0 >= x1) return;
        std::uint32_t* row = Row(y);
        Touch({x0, y, x1, y + 1});
        if (paint.Hatched) {
            for (std::int32_t x = x0; x < x1; ++x) {
                if (HatchOn(paint.Hatch, x, y))
                    row[x] = 0xFF000000u | ApplyRop2(paint.Rop, paint.Color, row[x]);
                else if (paint.Opaque)
                    row[x] = 0xFF000000u | ApplyRop2(paint.Rop, paint.Bk, row[x]);
            }
            return;
        }
        const std::uint32_t c = paint.Color;
        switch (paint.Rop) {
        case R2_COPYPEN: std::fill(row + x0, row + x1, 0xFF000000u | c); return;
        case R2_NOP: return;
        case R2_XORPEN:
            for (std::int32_t x = x0; x < x1; ++x) row[x] = 0xFF000000u | (row[x] ^ c);
            return;
        case R2_NOTXORPEN:
            for (std::int32_t x = x0; x < x1; ++x) row[x] = 0xFF000000u | ~(row[x] ^ c);
            return;
        case R2_NOT:
            for (std::int32_t x = x0; x < x1; ++x) row[x] = 0xFF000000u | ~row[x];
            return;
        default:
            for (std::int32_t x = x0; x < x1; ++x) row[x] = 0xFF000000u | ApplyRop2(paint.Rop, c, row[x]);
            return;
        }
    }

    void PaintSpanClipped(std::int32_t y, std::int32_t x0, std::int32_t x1, const TPaint& paint,
                          const TDeviceClip& clip) {
        clip.ForEachSpan(y, x0, x1, [&](std::int32_t a, std::int32_t b) { PaintSpan(y, a, b, paint); });
    }

    void PlotPixel(std::int32_t x, std::int32_t y, std::uint32_t color, int rop) {
        std::uint32_t& p = Row(y)[x];
        p = 0xFF000000u | ApplyRop2(rop, color, p);
    }

    TPaint BrushPaint(const TBrushDev& brush, int rop, const TDrawAttrs& attrs) const {
        TPaint p;
        p.Rop = rop;
        p.Color = ColorToPixel(brush.Color) & 0xFFFFFFu;
        p.Hatched = brush.Style == BS_HATCHED;
        p.Hatch = brush.Hatch;
        p.Opaque = attrs.BkMode == OPAQUE;
        p.Bk = ColorToPixel(attrs.BkColor) & 0xFFFFFFu;
        return p;
    }

    TPaint PenPaint(const TDrawAttrs& attrs) const {
        TPaint p;
        p.Rop = attrs.Rop2;
        p.Color = ColorToPixel(attrs.Pen.Color) & 0xFFFFFFu;
        return p;
    }

    // --- lines ------------------------------------------------------------------------------

    void ThinSegment(TPoint a, TPoint b, const TDrawAttrs& attrs, const TDeviceClip& clip,
                     std::int64_t& styleOffset) {
        const std::uint32_t pen = ColorToPixel(attrs.Pen.Color) & 0xFFFFFFu;
        const std::uint32_t bk = ColorToPixel(attrs.BkColor) & 0xFFFFFFu;
        const int rop = attrs.Rop2;
        const TDashPattern pattern = PatternFor(attrs.Pen.Style);
        const bool opaqueGaps = attrs.BkMode == OPAQUE;
        const std::int64_t offset = styleOffset;
        TRect touched = FTouched;
        std::int32_t minX = INT32_MAX, minY = INT32_MAX, maxX = INT32_MIN, maxY = INT32_MIN;
        auto plot = [&](std::int32_t x, std::int32_t y, std::int64_t i) {
            if (!clip.IsRect() && !clip.Contains(x, y)) return;
            std::uint32_t color = pen;
            if (pattern.Runs && !PatternOn(pattern, offset + i)) {
                if (!opaqueGaps) return;
                color = bk;
            }
            PlotPixel(x, y, color, rop);
            minX = std::min(minX, x);
            maxX = std::max(maxX, x);
            minY = std::min(minY, y);
            maxY = std::max(maxY, y);
        };
        WalkLine(a.x, a.y, b.x, b.y, clip.Box(), plot);
        styleOffset += std::max(std::abs(std::int64_t(b.x) - a.x), std::abs(std::int64_t(b.y) - a.y));
        if (minX <= maxX) FTouched = UnionRect(touched, {minX, minY, maxX + 1, maxY + 1});
    }

    // Paints the pixels that a Qt painter covers when stroking/filling with `draw`, restricted to `area`.
    template <class Draw>
    void PaintCoverage(const TRect& areaIn, const TPaint& paint, const TDeviceClip& clip, Draw&& draw) {
        const TRect area = IntersectRect(areaIn, clip.Box());
        if (area.Left >= area.Right) return;
        QImage mask(area.Right - area.Left, area.Bottom - area.Top, QImage::Format_Alpha8);
        mask.fill(0);
        {
            QPainter p(&mask);
            p.setRenderHint(QPainter::Antialiasing, false);
            p.translate(-area.Left, -area.Top);
            draw(p);
        }
        for (int my = 0; my < mask.height(); ++my) {
            const uchar* m = mask.constScanLine(my);
            const std::int32_t y = area.Top + my;
            int x = 0;
            while (x < mask.width()) {
                while (x < mask.width() && m[x] < 128) ++x;
                const int start = x;
                while (x < mask.width() && m[x] >= 128) ++x;
                if (start < x) PaintSpanClipped(y, area.Left + start, area.Left + x, paint, clip);
            }
        }
    }

    QPen CoveragePen(int width) const {
        QPen pen(QColor(0, 0, 0, 255));
        pen.setWidth(width);
        pen.setCapStyle(Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        return pen;
    }

    static TRect PointsBox(const TPoint* points, int count, int grow) {
        std::int64_t l = INT32_MAX, t = INT32_MAX, r = INT32_MIN, b = INT32_MIN;
        for (int i = 0; i < count; ++i) {
            l = std::min<std::int64_t>(l, points[i].x);
            r = std::max<std::int64_t>(r, points[i].x);
            t = std::min<std::int64_t>(t, points[i].y);
            b = std::max<std::int64_t>(b, points[i].y);
        }
        auto c = [](std::int64_t v) {
            return std::int32_t(std::clamp<std::int64_t>(v, INT32_MIN / 2, INT32_MAX / 2));
        };
        return {c(l - grow), c(t - grow), c(r + grow + 1), c(b + grow + 1)};
    }

    void ThickPolyline(const TPoint* points, int count, bool closed, const TDrawAttrs& attrs,
                       const TDeviceClip& clip) {
        const int w = attrs.Pen.Width;
        PaintCoverage(PointsBox(points, count, w), PenPaint(attrs), clip, [&](QPainter& p) {
            QPainterPath path;
            path.moveTo(points[0].x + 0.5, points[0].y + 0.5);
            for (int i = 1; i < count; ++i) path.lineTo(points[i].x + 0.5, points[i].y + 0.5);
            if (closed) path.closeSubpath();
            p.strokePath(path, CoveragePen(w));
        });
    }

    TRect Polyline(const TPoint* points, int count, const TDrawAttrs& attrs, const TDeviceClip& clip,
                   int& styleOffset) override {
        Begin();
        if (count < 2 || attrs.Pen.IsNull() || attrs.Rop2 == R2_NOP || clip.IsEmpty()) return {};
        if (attrs.Pen.Width <= 1) {
            std::int64_t offset = styleOffset;
            for (int i = 0; i + 1 < count; ++i) ThinSegment(points[i], points[i + 1], attrs, clip, offset);
            styleOffset = int(offset % 1000000);
        } else {
            ThickPolyline(points, count, false, attrs, clip);
        }
        return FTouched;
    }

    // --- filled shapes ----------------------------------------------------------------------

    TRect Polygons(const TPoint* points, const int* counts, int polygons, const TDrawAttrs& attrs,
                   const TDeviceClip& clip) override {
        Begin();
        if (clip.IsEmpty() || attrs.Rop2 == R2_NOP) return {};
        std::vector<TPoint> all;
        std::vector<int> cnt;
        int total = 0;
        for (int i = 0; i < polygons; ++i) {
            cnt.push_back(counts[i]);
            total += counts[i];
        }
        all.assign(points, points + total);
        if (!attrs.Brush.IsNull()) {
            const TShapePtr shape = TRegionShape::MakePolygon(all, cnt, attrs.PolyFillMode);
            FillShapeRows(*shape, BrushPaint(attrs.Brush, attrs.Rop2, attrs), clip);
        }
        if (!attrs.Pen.IsNull()) {
            int start = 0;
            for (int i = 0; i < polygons; ++i) {
                const int n = counts[i];
                if (n >= 2) {
                    if (attrs.Pen.Width <= 1) {
                        std::int64_t offset = 0;
                        for (int k = 0; k < n; ++k)
                            ThinSegment(points[start + k], points[start + (k + 1) % n], attrs, clip, offset);
                    } else {
                        ThickPolyline(points + start, n, true, attrs, clip);
                    }
                }
                start += n;
            }
        }
        return FTouched;
    }

    void FillShapeRows(const TRegionShape& shape, const TPaint& paint, const TDeviceClip& clip) {
        const TRect area = IntersectRect(shape.Bounds(), clip.Box());
        std::vector<TSpan> spans;
        for (std::int32_t y = area.Top; y < area.Bottom; ++y) {
            spans.clear();
            shape.RowSpans(y, area.Left, area.Right, spans);
            for (const TSpan& s : spans) PaintSpanClipped(y, s.x0, s.x1, paint, clip);
        }
    }

    static TShapePtr MakeLeaf(TShapeKindDev kind, const TRect& r, int cw, int ch) {
        switch (kind) {
        case TShapeKindDev::Ellipse: return TRegionShape::MakeEllipse(r);
        case TShapeKindDev::RoundRect: return TRegionShape::MakeRoundRect(r, cw, ch);
        default: return TRegionShape::MakeRect(r);
        }
    }

    TRect Shape(TShapeKindDev kind, const TRect& r, int cw, int ch, const TDrawAttrs& attrs,
                const TDeviceClip& clip) override {
        Begin();
        if (clip.IsEmpty() || attrs.Rop2 == R2_NOP || r.Left >= r.Right || r.Top >= r.Bottom) return {};
        const TPaint brush = BrushPaint(attrs.Brush, attrs.Rop2, attrs);
        if (attrs.Pen.IsNull()) {
            if (attrs.Brush.IsNull()) return {};
            const TShapePtr shape = MakeLeaf(kind, {r.Left, r.Top, r.Right - 1, r.Bottom - 1}, cw, ch);
            FillShapeRows(*shape, brush, clip);
            return FTouched;
        }
        const TShapePtr shape = MakeLeaf(kind, r, cw, ch);
        const bool thin = attrs.Pen.Width <= 1;
        const bool styledRect = thin && kind == TShapeKindDev::Rect && PatternFor(attrs.Pen.Style).Runs &&
                                r.Right - r.Left >= 2 && r.Bottom - r.Top >= 2;
        const TPaint pen = PenPaint(attrs);
        const TRect area = IntersectRect(shape->Bounds(), clip.Box());
        if (kind == TShapeKindDev::Rect && thin && !styledRect) {
            // The common case without span arithmetic: border rows, then border columns and interior.
            for (std::int32_t y = area.Top; y < area.Bottom; ++y) {
                if (y == r.Top || y == r.Bottom - 1 || r.Right - r.Left <= 2) {
                    PaintSpanClipped(y, r.Left, r.Right, pen, clip);
                    continue;
                }
                PaintSpanClipped(y, r.Left, r.Left + 1, pen, clip);
                if (!attrs.Brush.IsNull()) PaintSpanClipped(y, r.Left + 1, r.Right - 1, brush, clip);
                PaintSpanClipped(y, r.Right - 1, r.Right, pen, clip);
            }
            return FTouched;
        }
        // Per row: the shape's span, split into the border (pixels with a 4-neighbour outside) and
        // the interior.
        std::vector<TSpan> cur, up, down;
        for (std::int32_t y = area.Top; y < area.Bottom; ++y) {
            cur.clear();
            up.clear();
            down.clear();
            shape->RowSpans(y, INT32_MIN, INT32_MAX, cur);
            if (cur.empty()) continue;
            shape->RowSpans(y - 1, INT32_MIN, INT32_MAX, up);
            shape->RowSpans(y + 1, INT32_MIN, INT32_MAX, down);
            const std::int32_t a = cur[0].x0, b = cur[0].x1;
            std::int32_t i0 = a + 1, i1 = b - 1;
            if (up.empty() || down.empty()) {
                i0 = b;
                i1 = b;
            } else {
                i0 = std::max({i0, up[0].x0, down[0].x0});
                i1 = std::min({i1, up[0].x1, down[0].x1});
                if (i0 >= i1) i0 = i1 = b;
            }
            if (!attrs.Brush.IsNull() && i0 < i1) PaintSpanClipped(y, i0, i1, brush, clip);
            if (thin && !styledRect) {
                PaintSpanClipped(y, a, std::min(i0, b), pen, clip);
                if (i1 < b && i0 < i1) PaintSpanClipped(y, i1, b, pen, clip);
            }
        }
        if (styledRect) {
            const TPoint outline[5] = {{r.Left, r.Top},
                                       {r.Right - 1, r.Top},
                                       {r.Right - 1, r.Bottom - 1},
                                       {r.Left, r.Bottom - 1},
                                       {r.Left, r.Top}};
            std::int64_t offset = 0;
            for (int i = 0; i < 4; ++i) ThinSegment(outline[i], outline[i + 1], attrs, clip, offset);
        } else if (!thin) {
            const int w = attrs.Pen.Width;
            const bool inside = attrs.Pen.Style == PS_INSIDEFRAME;
            const double inset = inside ? w / 2.0 : 0.5;
            const QRectF rf(r.Left + inset, r.Top + inset, (r.Right - r.Left) - 2 * inset,
                            (r.Bottom - r.Top) - 2 * inset);
            auto grow = [](std::int64_t v) {
                return std::int32_t(std::clamp<std::int64_t>(v, INT32_MIN / 2, INT32_MAX / 2));
            };
            const TRect box{grow(std::int64_t(r.Left) - w), grow(std::int64_t(r.Top) - w),
                            grow(std::int64_t(r.Right) + w), grow(std::int64_t(r.Bottom) + w)};
            PaintCoverage(box, pen, clip, [&](QPainter& p) {
                QPainterPath path;
                switch (kind) {
                case TShapeKindDev::Ellipse: path.addEllipse(rf); break;
                case TShapeKindDev::RoundRect: path.addRoundedRect(rf, cw / 2.0, ch / 2.0); break;
                default: path.addRect(rf); break;
                }
                QPen qp = CoveragePen(w);
                qp.setJoinStyle(Qt::MiterJoin);
                p.strokePath(path, qp);
            });
        }
        return FTouched;
    }

    TRect FillRegion(const TRegionShape& shape, const TBrushDev& brush, int rop2, const TDrawAttrs& attrs,
                     const TDeviceClip& clip) override {
        Begin();
        if (clip.IsEmpty() || brush.IsNull() || rop2 == R2_NOP) return {};
        FillShapeRows(shape, BrushPaint(brush, rop2, attrs), clip);
        return FTouched;
    }

    // --- text -------------------------------------------------------------------------------

    TRect Text(TPoint ref, std::u16string_view text, const LOGFONTW& fontDev, const TDrawAttrs& attrs,
               const TDeviceClip& clip) override;

    // --- block transfers --------------------------------------------------------------------

    TRect Blt(const TRect& dest, const QImage* source, const TRect& src, std::uint32_t rop, COLORREF pattern,
              const TDeviceClip& clip) override {
        Begin();
        const bool useSource = Rop3UsesSource(rop);
        if (useSource && (!source || source->isNull())) return {};
        const std::int64_t dw = std::int64_t(dest.Right) - dest.Left,
                           dh = std::int64_t(dest.Bottom) - dest.Top;
        const std::int64_t sw = std::int64_t(src.Right) - src.Left, sh = std::int64_t(src.Bottom) - src.Top;
        if (dw == 0 || dh == 0 || (useSource && (sw == 0 || sh == 0))) return {};
        const TRect nd{std::min(dest.Left, dest.Right), std::min(dest.Top, dest.Bottom),
                       std::max(dest.Left, dest.Right), std::max(dest.Top, dest.Bottom)};
        const TRect area = IntersectRect(nd, clip.Box());
        if (area.Left >= area.Right) return {};
        // A source that is our own image is read from a copy, so overlapping moves stay exact.
        QImage own;
        const QImage* srcImage = source;
        if (useSource && source == FImage) {
            own = FImage->copy();
            srcImage = &own;
        }
        QImage converted;
        if (useSource && srcImage->format() != QImage::Format_RGB32 &&
            srcImage->format() != QImage::Format_ARGB32) {
            converted = srcImage->convertToFormat(QImage::Format_RGB32);
            srcImage = &converted;
        }
        Begin();
        const std::uint32_t pat = ColorToPixel(pattern) & 0xFFFFFFu;
        const bool mirrorX = (dw < 0) != (sw < 0), mirrorY = (dh < 0) != (sh < 0);
        const std::int64_t adw = std::abs(dw), adh = std::abs(dh), asw = std::abs(sw), ash = std::abs(sh);
        const std::int64_t sx0 = std::min(src.Left, src.Right), sy0 = std::min(src.Top, src.Bottom);
        for (std::int32_t y = area.Top; y < area.Bottom; ++y) {
            std::int64_t sy = 0;
            const std::uint32_t* srow = nullptr;
            if (useSource) {
                std::int64_t iy = y - nd.Top;
                if (mirrorY) iy = adh - 1 - iy;
                sy = sy0 + (2 * iy + 1) * ash / (2 * adh);
                if (sy < 0 || sy >= srcImage->height()) continue;
                srow = reinterpret_cast<const std::uint32_t*>(srcImage->constScanLine(int(sy)));
            }
            std::uint32_t* drow = Row(y);
            clip.ForEachSpan(y, area.Left, area.Right, [&](std::int32_t a, std::int32_t b) {
                std::int32_t first = INT32_MAX, last = INT32_MIN;
                for (std::int32_t x = a; x < b; ++x) {
                    std::uint32_t s = 0;
                    if (useSource) {
                        std::int64_t ix = x - nd.Left;
                        if (mirrorX) ix = adw - 1 - ix;
                        const std::int64_t sx = sx0 + (2 * ix + 1) * asw / (2 * adw);
                        if (sx < 0 || sx >= srcImage->width()) continue;
                        s = srow[sx] & 0xFFFFFFu;
                    }
                    drow[x] = 0xFF000000u | ApplyRop3(rop, pat, s, drow[x] & 0xFFFFFFu);
                    first = std::min(first, x);
                    last = x;
                }
                if (first <= last) Touch({first, y, last + 1, y + 1});
            });
        }
        return FTouched;
    }

    COLORREF GetPixel(std::int32_t x, std::int32_t y) override {
        if (x < 0 || y < 0 || x >= FImage->width() || y >= FImage->height()) return CLR_INVALID;
        return PixelToColor(reinterpret_cast<const std::uint32_t*>(FImage->constScanLine(y))[x]);
    }

    TRect SetPixel(std::int32_t x, std::int32_t y, COLORREF color, const TDeviceClip& clip) override {
        Begin();
        if (!clip.Contains(x, y)) return {};
        Row(y)[x] = ColorToPixel(color);
        return {x, y, x + 1, y + 1};
    }

private:
    QImage* FImage;
    uchar* FBits = nullptr;
    qsizetype FStride = 0;
    TRect FTouched;
    int FDpiX = 96;
    int FDpiY = 96;
};

} // namespace

// Text: the cell is laid out in an unrotated frame whose origin is the reference point, then rotated
// counter-clockwise on the device by the escapement. The painter's rotation is the only transform used,
// and only for text, whose glyphs can't be placed otherwise.
TRect DrawTextWithPainter(QPainter& painter, TPoint ref, std::u16string_view text, const LOGFONTW& fontDev,
                          const TDrawAttrs& attrs, bool opaque);

TRect TRasterBackend::Text(TPoint ref, std::u16string_view text, const LOGFONTW& fontDev,
                           const TDrawAttrs& attrs, const TDeviceClip& clip) {
    Begin();
    if (clip.IsEmpty() || text.empty()) return {};
    QPainter painter(FImage);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    if (!clip.IsRect() || clip.Box() != BoundsDev()) painter.setClipRegion(clip.ToQRegion());
    const TRect drawn = DrawTextWithPainter(painter, ref, text, fontDev, attrs, attrs.BkMode == OPAQUE);
    return IntersectRect(drawn, clip.Box());
}

std::unique_ptr<TDeviceBackend> MakeRasterBackend(QImage* image) {
    return std::make_unique<TRasterBackend>(image);
}

} // namespace vl::gdi
