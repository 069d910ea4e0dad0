// The paint-engine device on any `QPaintDevice` (PDF writer, printer, SVG generator, picture): the
// context's mapping and geometry, drawn by Qt. One-pixel pens are cosmetic lines through pixel centres;
// shapes keep the excluded right and bottom edge of the raster device; regions are drawn as vector
// paths. Pen and brush output is always copied (there are no raster modes for them).
//
// Such a device cannot be read back, so block transfers emulate their raster operation on the source
// alone. Each source pixel is looked at with the destination taken as black and as white:
//  - a result that does not depend on the destination is drawn as it is (exact: SRCCOPY, NOTSRCCOPY,
//    MERGECOPY, and every other operation that ignores the destination);
//  - a result that is the destination in every bit leaves the pixel out (exact: white source pixels of
//    SRCAND, black source pixels of SRCINVERT and SRCPAINT);
//  - any other result is drawn as the result over a black destination, or over a white one when the
//    black one gives black. This is exact where the destination really has that colour: the non-black
//    pixels of SRCINVERT and SRCPAINT over black, the coloured pixels of SRCAND over white.
// The transfer is drawn as an image whose left-out pixels are fully transparent, so what lies beneath
// shows through; it is stored without lossy compression, as the raster device copies pixels exactly. The mask
// sequences of transparent printing are therefore exact: SRCAND of a black-and-white mask, then SRCINVERT (or
// SRCPAINT) of the picture made black where it is transparent. Operations without a source fill black, white
// or the brush; the others without a source (DSTINVERT, PATINVERT) need the destination and draw nothing.

#include "platform/gdi/DeviceBackend.h"

#include <QImage>
#include <QPagedPaintDevice>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace vl::gdi {

TRect DrawTextWithPainter(QPainter& painter, TPoint ref, std::u16string_view text, const LOGFONTW& fontDev,
                          const TDrawAttrs& attrs, bool opaque);

namespace {

QColor ToQColor(COLORREF c) {
    return QColor::fromRgb(ColorToPixel(c));
}

Qt::BrushStyle HatchStyle(int hatch) {
    switch (hatch) {
    case HS_HORIZONTAL: return Qt::HorPattern;
    case HS_VERTICAL: return Qt::VerPattern;
    case HS_FDIAGONAL: return Qt::FDiagPattern;
    case HS_BDIAGONAL: return Qt::BDiagPattern;
    case HS_CROSS: return Qt::CrossPattern;
    default: return Qt::DiagCrossPattern;
    }
}

TRect RectOf(const QRectF& r, int grow) {
    return {std::int32_t(std::floor(r.left())) - grow, std::int32_t(std::floor(r.top())) - grow,
            std::int32_t(std::ceil(r.right())) + grow, std::int32_t(std::ceil(r.bottom())) + grow};
}

TRect Intersect(const TRect& a, const TRect& b) {
    TRect r{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
            std::min(a.Bottom, b.Bottom)};
    if (r.Left >= r.Right || r.Top >= r.Bottom) return {};
    return r;
}

class TPaintDeviceBackend final : public TDeviceBackend {
public:
    explicit TPaintDeviceBackend(QPaintDevice* device) : FDevice(device) {
        if (device->paintingActive() && device->paintEngine() && device->paintEngine()->painter()) {
            FPainter = device->paintEngine()->painter();
        } else {
            FOwnPainter = std::make_unique<QPainter>();
            if (FOwnPainter->begin(device)) FPainter = FOwnPainter.get();
        }
    }
    ~TPaintDeviceBackend() override {
        if (FOwnPainter && FOwnPainter->isActive()) FOwnPainter->end();
    }
    bool IsValid() const { return FPainter != nullptr; }

    TRect BoundsDev() const override {
        const int w = FDevice->width(), h = FDevice->height();
        // A picture has no size of its own; it takes whatever is drawn.
        if (w <= 0 || h <= 0) return {-(1 << 29), -(1 << 29), 1 << 29, 1 << 29};
        return {0, 0, w, h};
    }

    int DeviceCaps(int index) const override {
        switch (index) {
        case DRIVERVERSION: return 0x4000;
        case TECHNOLOGY:
            if (FDevice->devType() == QInternal::Printer || dynamic_cast<QPagedPaintDevice*>(FDevice))
                return DT_RASPRINTER;
            if (FDevice->devType() == QInternal::Picture) return DT_METAFILE;
            return DT_RASDISPLAY;
        case HORZRES: return FDevice->width();
        case VERTRES: return FDevice->height();
        case HORZSIZE: return FDevice->widthMM();
        case VERTSIZE: return FDevice->heightMM();
        case LOGPIXELSX: return FDevice->logicalDpiX();
        case LOGPIXELSY: return FDevice->logicalDpiY();
        case BITSPIXEL: return FDevice->depth();
        case PLANES: return 1;
        case NUMCOLORS: return -1;
        case RASTERCAPS:
            return RC_BITBLT | RC_DI_BITMAP | RC_DIBTODEV | RC_STRETCHBLT | RC_STRETCHDIB | RC_SCALING;
        case PHYSICALWIDTH: return FDevice->width();
        case PHYSICALHEIGHT: return FDevice->height();
        default: return 0;
        }
    }

    bool HasRasterOps() const override { return false; }
    void SetResolution(int, int) override {}
    QImage* Image() override { return nullptr; }

    // Saves the painter and applies the clip; the painter's transform stays as the device has it.
    class TScope {
    public:
        TScope(TPaintDeviceBackend& backend, const TDeviceClip& clip) : FPainter(*backend.FPainter) {
            FPainter.save();
            FPainter.setRenderHint(QPainter::Antialiasing, false);
            if (!clip.IsRect() || clip.Box() != backend.BoundsDev()) FPainter.setClipRegion(clip.ToQRegion());
        }
        ~TScope() { FPainter.restore(); }

    private:
        QPainter& FPainter;
    };

    QPen MakePen(const TDrawAttrs& attrs) const {
        if (attrs.Pen.IsNull()) return QPen(Qt::NoPen);
        QPen pen(ToQColor(attrs.Pen.Color));
        pen.setWidth(attrs.Pen.Width <= 1 ? 0 : attrs.Pen.Width);
        switch (attrs.Pen.Style) {
        case PS_DASH: pen.setStyle(Qt::DashLine); break;
        case PS_DOT: pen.setStyle(Qt::DotLine); break;
        case PS_DASHDOT: pen.setStyle(Qt::DashDotLine); break;
        case PS_DASHDOTDOT: pen.setStyle(Qt::DashDotDotLine); break;
        default: pen.setStyle(Qt::SolidLine); break;
        }
        pen.setCapStyle(attrs.Pen.Width <= 1 ? Qt::FlatCap : Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        return pen;
    }

    QBrush MakeBrush(const TBrushDev& brush) const {
        if (brush.IsNull()) return QBrush(Qt::NoBrush);
        if (brush.Style == BS_HATCHED) return QBrush(ToQColor(brush.Color), HatchStyle(brush.Hatch));
        return QBrush(ToQColor(brush.Color));
    }

    void ApplyBackground(const TDrawAttrs& attrs) {
        FPainter->setBackgroundMode(attrs.BkMode == OPAQUE ? Qt::OpaqueMode : Qt::TransparentMode);
        FPainter->setBackground(ToQColor(attrs.BkColor));
    }

    TRect Polyline(const TPoint* points, int count, const TDrawAttrs& attrs, const TDeviceClip& clip,
                   int&) override {
        if (count < 2 || attrs.Pen.IsNull() || clip.IsEmpty()) return {};
        TScope scope(*this, clip);
        ApplyBackground(attrs);
        QPolygonF polygon;
        for (int i = 0; i < count; ++i) polygon << QPointF(points[i].x + 0.5, points[i].y + 0.5);
        FPainter->setPen(MakePen(attrs));
        FPainter->setBrush(Qt::NoBrush);
        FPainter->drawPolyline(polygon);
        return Intersect(RectOf(polygon.boundingRect(), attrs.Pen.Width), clip.Box());
    }

    TRect Polygons(const TPoint* points, const int* counts, int polygons, const TDrawAttrs& attrs,
                   const TDeviceClip& clip) override {
        if (clip.IsEmpty()) return {};
        TScope scope(*this, clip);
        ApplyBackground(attrs);
        QPainterPath fill, outline;
        fill.setFillRule(attrs.PolyFillMode == WINDING ? Qt::WindingFill : Qt::OddEvenFill);
        int start = 0;
        for (int i = 0; i < polygons; ++i) {
            QPolygonF f, o;
            for (int k = 0; k < counts[i]; ++k) {
                f << QPointF(points[start + k].x, points[start + k].y);
                o << QPointF(points[start + k].x + 0.5, points[start + k].y + 0.5);
            }
            fill.addPolygon(f);
            fill.closeSubpath();
            outline.addPolygon(o);
            outline.closeSubpath();
            start += counts[i];
        }
        if (!attrs.Brush.IsNull()) FPainter->fillPath(fill, MakeBrush(attrs.Brush));
        if (!attrs.Pen.IsNull()) FPainter->strokePath(outline, MakePen(attrs));
        return Intersect(RectOf(outline.boundingRect(), attrs.Pen.Width + 1), clip.Box());
    }

    TRect Shape(TShapeKindDev kind, const TRect& r, int cw, int ch, const TDrawAttrs& attrs,
                const TDeviceClip& clip) override {
        if (clip.IsEmpty() || (attrs.Pen.IsNull() && attrs.Brush.IsNull())) return {};
        TScope scope(*this, clip);
        ApplyBackground(attrs);
        const double w = double(r.Right) - r.Left, h = double(r.Bottom) - r.Top;
        // The outline runs through the centres of the border pixels; without a pen the filled area
        // ends one pixel before the right and bottom edge.
        QRectF rf;
        if (attrs.Pen.IsNull())
            rf = QRectF(r.Left, r.Top, w - 1, h - 1);
        else if (attrs.Pen.Style == PS_INSIDEFRAME && attrs.Pen.Width > 1)
            rf = QRectF(r.Left + attrs.Pen.Width / 2.0, r.Top + attrs.Pen.Width / 2.0, w - attrs.Pen.Width,
                        h - attrs.Pen.Width);
        else
            rf = QRectF(r.Left + 0.5, r.Top + 0.5, w - 1, h - 1);
        FPainter->setPen(MakePen(attrs));
        FPainter->setBrush(MakeBrush(attrs.Brush));
        switch (kind) {
        case TShapeKindDev::Ellipse: FPainter->drawEllipse(rf); break;
        case TShapeKindDev::RoundRect: FPainter->drawRoundedRect(rf, cw / 2.0, ch / 2.0); break;
        default: FPainter->drawRect(rf); break;
        }
        return Intersect(RectOf(rf, attrs.Pen.Width + 1), clip.Box());
    }

    TRect FillRegion(const TRegionShape& shape, const TBrushDev& brush, int, const TDrawAttrs& attrs,
                     const TDeviceClip& clip) override {
        if (clip.IsEmpty() || brush.IsNull() || shape.IsEmpty()) return {};
        TScope scope(*this, clip);
        ApplyBackground(attrs);
        FPainter->fillPath(shape.ToPath(), MakeBrush(brush));
        return Intersect(shape.Bounds(), clip.Box());
    }

    TRect Text(TPoint ref, std::u16string_view text, const LOGFONTW& fontDev, const TDrawAttrs& attrs,
               const TDeviceClip& clip) override {
        if (clip.IsEmpty() || text.empty()) return {};
        TScope scope(*this, clip);
        FPainter->setRenderHint(QPainter::TextAntialiasing, false);
        return Intersect(DrawTextWithPainter(*FPainter, ref, text, fontDev, attrs, attrs.BkMode == OPAQUE),
                         clip.Box());
    }

    TRect Blt(const TRect& dest, const QImage* source, const TRect& src, std::uint32_t rop, COLORREF pattern,
              const TDeviceClip& clip) override {
        if (clip.IsEmpty()) return {};
        const QRectF target(std::min(dest.Left, dest.Right), std::min(dest.Top, dest.Bottom),
                            std::abs(double(dest.Right) - dest.Left),
                            std::abs(double(dest.Bottom) - dest.Top));
        if (target.isEmpty()) return {};
        TScope scope(*this, clip);
        if (!Rop3UsesSource(rop) || !source) {
            QColor color = ToQColor(pattern);
            if (rop == BLACKNESS)
                color = Qt::black;
            else if (rop == WHITENESS)
                color = Qt::white;
            else if (rop != PATCOPY)
                return {};
            FPainter->fillRect(target, color);
            return Intersect(RectOf(target, 0), clip.Box());
        }
        const QRect from(std::min(src.Left, src.Right), std::min(src.Top, src.Bottom),
                         std::abs(src.Right - src.Left), std::abs(src.Bottom - src.Top));
        if (from.isEmpty()) return {};
        const bool mirrorX = (dest.Right < dest.Left) != (src.Right < src.Left);
        const bool mirrorY = (dest.Bottom < dest.Top) != (src.Bottom < src.Top);
        QImage part = source->copy(from).convertToFormat(QImage::Format_RGB32);
        if (mirrorX || mirrorY) part = part.mirrored(mirrorX, mirrorY);
        if (rop != SRCCOPY) part = EmulateRop(part, rop, ColorToPixel(pattern) & 0xFFFFFFu);
        // The pixels go into a PDF as they are: its lossy compression would blur the edges of the
        // left-out pixels and shift colours that the raster device copies exactly.
        FPainter->setRenderHint(QPainter::LosslessImageRendering, true);
        FPainter->drawImage(target, part);
        return Intersect(RectOf(target, 0), clip.Box());
    }

    // The source after the raster operation, as far as it can be known without the destination: an
    // ARGB32 image whose pixels that would keep the destination are fully transparent (see the top of
    // this file).
    static QImage EmulateRop(const QImage& source, std::uint32_t rop, std::uint32_t pat) {
        QImage out(source.size(), QImage::Format_ARGB32);
        for (int y = 0; y < source.height(); ++y) {
            const auto* s = reinterpret_cast<const std::uint32_t*>(source.constScanLine(y));
            auto* d = reinterpret_cast<std::uint32_t*>(out.scanLine(y));
            for (int x = 0; x < source.width(); ++x) {
                const std::uint32_t p = s[x] & 0xFFFFFFu;
                const std::uint32_t overBlack = ApplyRop3(rop, pat, p, 0) & 0xFFFFFFu;
                const std::uint32_t overWhite = ApplyRop3(rop, pat, p, 0xFFFFFFu) & 0xFFFFFFu;
                if (overBlack == 0 && overWhite == 0xFFFFFFu)
                    d[x] = 0; // the destination itself
                else
                    d[x] = 0xFF000000u | (overBlack != 0 ? overBlack : overWhite);
            }
        }
        return out;
    }

    COLORREF GetPixel(std::int32_t, std::int32_t) override { return CLR_INVALID; }

    TRect SetPixel(std::int32_t x, std::int32_t y, COLORREF color, const TDeviceClip& clip) override {
        if (!clip.Contains(x, y)) return {};
        TScope scope(*this, clip);
        FPainter->fillRect(QRect(x, y, 1, 1), ToQColor(color));
        return {x, y, x + 1, y + 1};
    }

private:
    QPaintDevice* FDevice;
    std::unique_ptr<QPainter> FOwnPainter;
    QPainter* FPainter = nullptr;
};

} // namespace

std::unique_ptr<TDeviceBackend> MakePaintDeviceBackend(QPaintDevice* device) {
    auto backend = std::make_unique<TPaintDeviceBackend>(device);
    if (!backend->IsValid()) return nullptr;
    return backend;
}

} // namespace vl::gdi
