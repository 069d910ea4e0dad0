#include "platform/gdi/Region.h"

#include "platform/gdi/Gdi.h"

#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vl::gdi {

namespace {

__extension__ typedef __int128 Int128;

// Rows scanned at most to make the bounds of a combination or a polygon exact.
constexpr std::int64_t ExactScanRows = 16384;

std::int32_t Clamp32(std::int64_t v) {
    return std::int32_t(std::clamp<std::int64_t>(v, std::numeric_limits<std::int32_t>::min(),
                                                 std::numeric_limits<std::int32_t>::max()));
}

TRect Normalised(const TRect& r) {
    return {std::min(r.Left, r.Right), std::min(r.Top, r.Bottom), std::max(r.Left, r.Right),
            std::max(r.Top, r.Bottom)};
}

bool RectEmpty(const TRect& r) {
    return r.Left >= r.Right || r.Top >= r.Bottom;
}

TRect IntersectRects(const TRect& a, const TRect& b) {
    TRect r{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
            std::min(a.Bottom, b.Bottom)};
    if (RectEmpty(r)) return {};
    return r;
}

TRect UnionRects(const TRect& a, const TRect& b) {
    if (RectEmpty(a)) return b;
    if (RectEmpty(b)) return a;
    return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right),
            std::max(a.Bottom, b.Bottom)};
}

// Floor of a / b for b > 0.
Int128 FloorDiv(Int128 a, Int128 b) {
    Int128 q = a / b;
    if ((a % b != 0) && (a < 0)) --q;
    return q;
}

// Floor of (a - 1) / 2 for any sign: the row or column whose centre is nearest to a / 2 from below.
std::int64_t HalfFloor(std::int64_t a) {
    std::int64_t v = a - 1;
    return v >= 0 ? v / 2 : -((-v + 1) / 2);
}

void AppendSpan(std::vector<TSpan>& out, std::int64_t x0, std::int64_t x1) {
    if (x0 >= x1) return;
    if (!out.empty() && out.back().x1 >= x0) {
        out.back().x1 = std::max<std::int32_t>(out.back().x1, Clamp32(x1));
        return;
    }
    out.push_back({Clamp32(x0), Clamp32(x1)});
}

// The largest k >= 0 with k^2 b^2 <= a^2 (b^2 - d^2), at most a: the half-width, in doubled units,
// of the ellipse with semi-axes a and b (doubled units too) at the offset d from its centre; -1 when
// |d| > b. A flat ellipse (b = 0) is a segment of half-width a at d = 0.
std::int64_t EllipseHalfWidth(std::int64_t a, std::int64_t b, std::int64_t d) {
    if (d < 0) d = -d;
    if (d > b) return -1;
    if (b == 0) return a;
    if (a <= (std::int64_t(1) << 30) && b <= (std::int64_t(1) << 30)) {
        const Int128 rhs = Int128(a) * a * (Int128(b) * b - Int128(d) * d);
        const Int128 b2 = Int128(b) * b;
        std::int64_t k = std::int64_t(std::floor(double(a) * std::sqrt(double(b * b - d * d)) / double(b)));
        k = std::clamp<std::int64_t>(k, 0, a);
        while (k > 0 && Int128(k) * k * b2 > rhs) --k;
        while (k < a && Int128(k + 1) * (k + 1) * b2 <= rhs) ++k;
        return k;
    }
    const long double bb = (long double)b;
    const std::int64_t k =
        std::int64_t(std::floor((long double)a * std::sqrt(bb * bb - (long double)d * d) / bb));
    return std::clamp<std::int64_t>(k, 0, a);
}

} // namespace

bool EllipseRowSpan(const TRect& r, std::int32_t y, std::int32_t& x0, std::int32_t& x1) {
    const std::int64_t l = r.Left, t = r.Top, rr = r.Right, b = r.Bottom;
    const std::int64_t w = rr - l, h = b - t;
    if (w <= 0 || h <= 0) return false;
    // Offsets are doubled to stay in integers: the pixel (x, y) lies dx = 2x + 1 - (l + r) and
    // dy = 2y + 1 - (t + b) from the centre of the box, so the outermost pixels of the box lie at
    // |dx| = w - 1 and |dy| = h - 1.
    const std::int64_t dy = 2 * std::int64_t(y) + 1 - (t + b);
    if (dy > h - 1 || -dy > h - 1) return false;
    // A pixel belongs to the ellipse when either rule takes it:
    // - its centre lies inside the ellipse inscribed in the box (semi-axes w and h, doubled);
    // - stepping along the ellipse through the centres of the outermost pixels (semi-axes w - 1
    //   and h - 1, doubled), row by row or column by column, picks it or a pixel farther out: the
    //   point half a pixel nearer the centre, across or down, lies inside that ellipse. This puts
    //   the outermost column and row of the box into every ellipse, however flat.
    // Each rule takes a run symmetric about the centre that shrinks away from the middle row, so
    // their union does too.
    const std::int64_t byCentre = EllipseHalfWidth(w, h, dy);
    const std::int64_t byColumn = EllipseHalfWidth(w - 1, h - 1, std::max<std::int64_t>(std::abs(dy) - 1, 0));
    std::int64_t byRow = EllipseHalfWidth(w - 1, h - 1, dy);
    if (byRow >= 0) byRow = std::min(byRow + 1, w - 1);
    std::int64_t dmax = std::max({byCentre, byColumn, byRow});
    // dx has the parity of w + 1.
    if ((dmax + w + 1) & 1) --dmax;
    if (dmax < 0) return false;
    const std::int64_t left = (-dmax + l + rr - 1) / 2;
    const std::int64_t right = (dmax + l + rr - 1) / 2 + 1;
    x0 = Clamp32(left);
    x1 = Clamp32(right);
    return x0 < x1;
}

TShapePtr TRegionShape::MakeEmpty() {
    auto s = std::shared_ptr<TRegionShape>(new TRegionShape());
    return s;
}

TShapePtr TRegionShape::MakeRect(const TRect& r) {
    TRect n = Normalised(r);
    if (RectEmpty(n)) return MakeEmpty();
    auto s = std::shared_ptr<TRegionShape>(new TRegionShape());
    s->FKind = TKind::Rect;
    s->FRect = n;
    s->ComputeBounds();
    return s;
}

TShapePtr TRegionShape::MakeEllipse(const TRect& r) {
    TRect n = Normalised(r);
    if (RectEmpty(n)) return MakeEmpty();
    auto s = std::shared_ptr<TRegionShape>(new TRegionShape());
    s->FKind = TKind::Ellipse;
    s->FRect = n;
    s->ComputeBounds();
    return s;
}

TShapePtr TRegionShape::MakeRoundRect(const TRect& r, int cornerWidth, int cornerHeight) {
    TRect n = Normalised(r);
    if (RectEmpty(n)) return MakeEmpty();
    const std::int64_t cw =
        std::min<std::int64_t>(std::abs(std::int64_t(cornerWidth)), std::int64_t(n.Right) - n.Left);
    const std::int64_t ch =
        std::min<std::int64_t>(std::abs(std::int64_t(cornerHeight)), std::int64_t(n.Bottom) - n.Top);
    if (cw <= 1 || ch <= 1) return MakeRect(n);
    auto s = std::shared_ptr<TRegionShape>(new TRegionShape());
    s->FKind = TKind::RoundRect;
    s->FRect = n;
    s->FCornerW = Clamp32(cw);
    s->FCornerH = Clamp32(ch);
    s->ComputeBounds();
    return s;
}

TShapePtr TRegionShape::MakePolygon(std::vector<TPoint> points, std::vector<int> counts, int fillMode) {
    std::size_t total = 0;
    for (int c : counts) total += std::size_t(std::max(c, 0));
    if (total > points.size() || points.empty()) return MakeEmpty();
    auto s = std::shared_ptr<TRegionShape>(new TRegionShape());
    s->FKind = TKind::Polygon;
    s->FPoints = std::move(points);
    s->FCounts = std::move(counts);
    s->FFillMode = fillMode == WINDING ? WINDING : ALTERNATE;
    s->ComputeBounds();
    if (s->IsEmpty()) return MakeEmpty();
    return s;
}

TShapePtr TRegionShape::Combine(const TShapePtr& a, const TShapePtr& b, int op) {
    if (!a || !b) return MakeEmpty();
    // Short cuts that keep trees small.
    switch (op) {
    case RGN_AND:
        if (a->IsEmpty() || b->IsEmpty() || RectEmpty(IntersectRects(a->Bounds(), b->Bounds())))
            return MakeEmpty();
        if (a->Kind() == TKind::Rect && b->Kind() == TKind::Rect)
            return MakeRect(IntersectRects(a->FRect, b->FRect));
        break;
    case RGN_OR:
    case RGN_XOR:
        if (a->IsEmpty()) return b;
        if (b->IsEmpty()) return a;
        break;
    case RGN_DIFF:
        if (a->IsEmpty()) return MakeEmpty();
        if (b->IsEmpty() || RectEmpty(IntersectRects(a->Bounds(), b->Bounds()))) return a;
        break;
    default: return MakeEmpty();
    }
    auto s = std::shared_ptr<TRegionShape>(new TRegionShape());
    s->FKind = TKind::Combine;
    s->FOp = op;
    s->FA = a;
    s->FB = b;
    s->ComputeBounds();
    if (s->IsEmpty()) return MakeEmpty();
    return s;
}

void TRegionShape::LeafRowSpan(std::int32_t y, std::int32_t& x0, std::int32_t& x1) const {
    x0 = x1 = 0;
    switch (FKind) {
    case TKind::Rect:
        if (y >= FRect.Top && y < FRect.Bottom) {
            x0 = FRect.Left;
            x1 = FRect.Right;
        }
        return;
    case TKind::Ellipse:
        if (!EllipseRowSpan(FRect, y, x0, x1)) x0 = x1 = 0;
        return;
    case TKind::RoundRect: {
        if (y < FRect.Top || y >= FRect.Bottom) return;
        const std::int64_t yc2 = 2 * std::int64_t(y) + 1;
        const std::int32_t l = FRect.Left, t = FRect.Top, r = FRect.Right, b = FRect.Bottom;
        std::int32_t a0, a1, b0, b1;
        if (yc2 < 2 * std::int64_t(t) + FCornerH) {
            if (!EllipseRowSpan({l, t, l + FCornerW, t + FCornerH}, y, a0, a1)) return;
            if (!EllipseRowSpan({r - FCornerW, t, r, t + FCornerH}, y, b0, b1)) return;
            x0 = a0;
            x1 = b1;
        } else if (yc2 > 2 * std::int64_t(b) - FCornerH) {
            if (!EllipseRowSpan({l, b - FCornerH, l + FCornerW, b}, y, a0, a1)) return;
            if (!EllipseRowSpan({r - FCornerW, b - FCornerH, r, b}, y, b0, b1)) return;
            x0 = a0;
            x1 = b1;
        } else {
            x0 = l;
            x1 = r;
        }
        return;
    }
    default: return;
    }
}

void TRegionShape::PolygonRowSpans(std::int32_t y, std::vector<TSpan>& out) const {
    struct TCrossing {
        std::int64_t x;
        int dir;
    };
    std::vector<TCrossing> crossings;
    const std::int64_t yc2 = 2 * std::int64_t(y) + 1;
    std::size_t start = 0;
    for (int count : FCounts) {
        if (count < 2) {
            start += std::size_t(std::max(count, 0));
            continue;
        }
        for (int i = 0; i < count; ++i) {
            const TPoint& p = FPoints[start + std::size_t(i)];
            const TPoint& q = FPoints[start + std::size_t((i + 1) % count)];
            if (p.y == q.y) continue;
            const std::int64_t lo = 2 * std::int64_t(std::min(p.y, q.y));
            const std::int64_t hi = 2 * std::int64_t(std::max(p.y, q.y));
            if (yc2 < lo || yc2 >= hi) continue;
            // The first pixel whose centre lies at or right of the crossing: ceil(xc - 0.5) with
            // xc - 0.5 = (x1 * 2dy + (2y + 1 - 2y1) * dx - dy) / (2dy).
            const Int128 dx = Int128(q.x) - p.x;
            const Int128 dy = Int128(q.y) - p.y;
            Int128 num = Int128(p.x) * 2 * dy + (Int128(yc2) - 2 * Int128(p.y)) * dx - dy;
            Int128 den = 2 * dy;
            if (den < 0) {
                num = -num;
                den = -den;
            }
            const Int128 c = -FloorDiv(-num, den);
            crossings.push_back({std::int64_t(c), q.y > p.y ? 1 : -1});
        }
        start += std::size_t(count);
    }
    std::sort(crossings.begin(), crossings.end(),
              [](const TCrossing& a, const TCrossing& b) { return a.x < b.x; });
    if (FFillMode == WINDING) {
        int winding = 0;
        std::int64_t spanStart = 0;
        for (const TCrossing& c : crossings) {
            const int before = winding;
            winding += c.dir;
            if (before == 0 && winding != 0)
                spanStart = c.x;
            else if (before != 0 && winding == 0)
                AppendSpan(out, spanStart, c.x);
        }
    } else {
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
            AppendSpan(out, crossings[i].x, crossings[i + 1].x);
    }
}

void TRegionShape::RowSpans(std::int32_t y, std::int32_t x0, std::int32_t x1, std::vector<TSpan>& out) const {
    if (x0 >= x1 || IsEmpty() || y < FBounds.Top || y >= FBounds.Bottom) return;
    switch (FKind) {
    case TKind::Empty: return;
    case TKind::Rect:
    case TKind::Ellipse:
    case TKind::RoundRect: {
        std::int32_t a, b;
        LeafRowSpan(y, a, b);
        a = std::max(a, x0);
        b = std::min(b, x1);
        if (a < b) AppendSpan(out, a, b);
        return;
    }
    case TKind::Polygon: {
        std::vector<TSpan> all;
        PolygonRowSpans(y, all);
        for (const TSpan& s : all) AppendSpan(out, std::max(s.x0, x0), std::min(s.x1, x1));
        return;
    }
    case TKind::Combine: {
        std::vector<TSpan> a, b, r;
        FA->RowSpans(y, x0, x1, a);
        FB->RowSpans(y, x0, x1, b);
        CombineSpans(a, b, FOp, r);
        for (const TSpan& s : r) AppendSpan(out, s.x0, s.x1);
        return;
    }
    }
}

void CombineSpans(const std::vector<TSpan>& a, const std::vector<TSpan>& b, int op, std::vector<TSpan>& out) {
    std::vector<std::int32_t> edges;
    edges.reserve(2 * (a.size() + b.size()));
    for (const TSpan& s : a) {
        edges.push_back(s.x0);
        edges.push_back(s.x1);
    }
    for (const TSpan& s : b) {
        edges.push_back(s.x0);
        edges.push_back(s.x1);
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    std::size_t ia = 0, ib = 0;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        const std::int32_t e0 = edges[i], e1 = edges[i + 1];
        while (ia < a.size() && a[ia].x1 <= e0) ++ia;
        while (ib < b.size() && b[ib].x1 <= e0) ++ib;
        const bool inA = ia < a.size() && a[ia].x0 <= e0;
        const bool inB = ib < b.size() && b[ib].x0 <= e0;
        bool in = false;
        switch (op) {
        case RGN_AND: in = inA && inB; break;
        case RGN_OR: in = inA || inB; break;
        case RGN_XOR: in = inA != inB; break;
        case RGN_DIFF: in = inA && !inB; break;
        default: in = inA; break;
        }
        if (in) AppendSpan(out, e0, e1);
    }
}

void IntersectSpans(const std::vector<TSpan>& a, const std::vector<TSpan>& b, std::vector<TSpan>& out) {
    CombineSpans(a, b, RGN_AND, out);
}

void TRegionShape::ComputeBounds() {
    switch (FKind) {
    case TKind::Empty: FBounds = {}; return;
    case TKind::Rect: FBounds = FRect; return;
    case TKind::Ellipse:
    case TKind::RoundRect: {
        // Rows of a convex symmetric leaf: the row nearest the centre is the widest, and the filled
        // rows form one run symmetric about the centre; find its top by bisection.
        FBounds = FRect; // so that LeafRowSpan's callers see the rows
        const std::int64_t t = FRect.Top, b = FRect.Bottom;
        const std::int32_t mid = std::int32_t(HalfFloor(t + b));
        std::int32_t mx0, mx1;
        LeafRowSpan(mid, mx0, mx1);
        if (mx0 >= mx1) {
            FBounds = {};
            return;
        }
        std::int32_t lo = FRect.Top, hi = mid; // hi is filled
        while (lo < hi) {
            const std::int32_t m = std::int32_t(lo + (std::int64_t(hi) - lo) / 2);
            std::int32_t a0, a1;
            LeafRowSpan(m, a0, a1);
            if (a0 < a1)
                hi = m;
            else
                lo = m + 1;
        }
        const std::int64_t bottom = t + b - 1 - hi + 1;
        FBounds = {mx0, hi, mx1, Clamp32(bottom)};
        return;
    }
    case TKind::Polygon: {
        std::int64_t minX = std::numeric_limits<std::int64_t>::max(), minY = minX;
        std::int64_t maxX = std::numeric_limits<std::int64_t>::min(), maxY = maxX;
        std::size_t total = 0;
        for (int c : FCounts) total += std::size_t(std::max(c, 0));
        for (std::size_t i = 0; i < total; ++i) {
            minX = std::min<std::int64_t>(minX, FPoints[i].x);
            maxX = std::max<std::int64_t>(maxX, FPoints[i].x);
            minY = std::min<std::int64_t>(minY, FPoints[i].y);
            maxY = std::max<std::int64_t>(maxY, FPoints[i].y);
        }
        if (total == 0) {
            FBounds = {};
            return;
        }
        FBounds = {Clamp32(minX), Clamp32(minY), Clamp32(maxX), Clamp32(maxY)};
        break;
    }
    case TKind::Combine:
        switch (FOp) {
        case RGN_AND: FBounds = IntersectRects(FA->Bounds(), FB->Bounds()); break;
        case RGN_DIFF: FBounds = FA->Bounds(); break;
        default: FBounds = UnionRects(FA->Bounds(), FB->Bounds()); break;
        }
        break;
    }
    if (RectEmpty(FBounds)) {
        FBounds = {};
        return;
    }
    // Make the superset exact when the rows are few enough.
    if (std::int64_t(FBounds.Bottom) - FBounds.Top > ExactScanRows) return;
    TRect exact{};
    std::vector<TSpan> spans;
    for (std::int32_t y = FBounds.Top; y < FBounds.Bottom; ++y) {
        spans.clear();
        RowSpans(y, FBounds.Left, FBounds.Right, spans);
        if (spans.empty()) continue;
        exact = UnionRects(exact, TRect{spans.front().x0, y, spans.back().x1, y + 1});
    }
    FBounds = exact;
}

bool TRegionShape::Contains(std::int32_t x, std::int32_t y) const {
    if (x < FBounds.Left || x >= FBounds.Right || y < FBounds.Top || y >= FBounds.Bottom) return false;
    std::vector<TSpan> spans;
    RowSpans(y, x, x + 1, spans);
    return !spans.empty();
}

bool TRegionShape::IntersectsRect(const TRect& rect) const {
    const TRect r = IntersectRects(Normalised(rect), FBounds);
    if (RectEmpty(r)) return false;
    switch (FKind) {
    case TKind::Empty: return false;
    case TKind::Rect: return true;
    case TKind::Ellipse:
    case TKind::RoundRect: {
        // Rows nearer the centre hold every span of the rows farther away.
        const std::int64_t mid = HalfFloor(std::int64_t(FRect.Top) + FRect.Bottom);
        const std::int32_t y = std::int32_t(std::clamp<std::int64_t>(mid, r.Top, r.Bottom - 1));
        std::int32_t a0, a1;
        LeafRowSpan(y, a0, a1);
        return std::max(a0, r.Left) < std::min(a1, r.Right);
    }
    default: {
        std::vector<TSpan> spans;
        for (std::int32_t y = r.Top; y < r.Bottom; ++y) {
            RowSpans(y, r.Left, r.Right, spans);
            if (!spans.empty()) return true;
        }
        return false;
    }
    }
}

int TRegionShape::RegionType() const {
    if (IsEmpty()) return NULLREGION;
    if (FKind == TKind::Rect) return SIMPLEREGION;
    if (std::int64_t(FBounds.Bottom) - FBounds.Top > ExactScanRows) return COMPLEXREGION;
    std::vector<TSpan> spans;
    for (std::int32_t y = FBounds.Top; y < FBounds.Bottom; ++y) {
        spans.clear();
        RowSpans(y, FBounds.Left, FBounds.Right, spans);
        if (spans.size() != 1 || spans[0].x0 != FBounds.Left || spans[0].x1 != FBounds.Right)
            return COMPLEXREGION;
    }
    return SIMPLEREGION;
}

TShapePtr TRegionShape::Mapped(const std::function<std::int32_t(std::int32_t)>& mapX,
                               const std::function<std::int32_t(std::int32_t)>& mapY) const {
    const TRect mr{mapX(FRect.Left), mapY(FRect.Top), mapX(FRect.Right), mapY(FRect.Bottom)};
    switch (FKind) {
    case TKind::Empty: return MakeEmpty();
    case TKind::Rect: return MakeRect(mr);
    case TKind::Ellipse: return MakeEllipse(mr);
    case TKind::RoundRect: {
        const std::int64_t cw = std::abs(std::int64_t(mapX(FRect.Left + FCornerW)) - mapX(FRect.Left));
        const std::int64_t ch = std::abs(std::int64_t(mapY(FRect.Top + FCornerH)) - mapY(FRect.Top));
        return MakeRoundRect(mr, Clamp32(cw), Clamp32(ch));
    }
    case TKind::Polygon: {
        std::vector<TPoint> pts(FPoints.size());
        for (std::size_t i = 0; i < pts.size(); ++i) pts[i] = {mapX(FPoints[i].x), mapY(FPoints[i].y)};
        return MakePolygon(std::move(pts), FCounts, FFillMode);
    }
    case TKind::Combine: return Combine(FA->Mapped(mapX, mapY), FB->Mapped(mapX, mapY), FOp);
    }
    return MakeEmpty();
}

TShapePtr TRegionShape::Offset(std::int32_t dx, std::int32_t dy) const {
    return Mapped([dx](std::int32_t x) { return Clamp32(std::int64_t(x) + dx); },
                  [dy](std::int32_t y) { return Clamp32(std::int64_t(y) + dy); });
}

QPainterPath TRegionShape::ToPath() const {
    QPainterPath path;
    const QRectF r(FRect.Left, FRect.Top, double(FRect.Right) - FRect.Left, double(FRect.Bottom) - FRect.Top);
    switch (FKind) {
    case TKind::Empty: break;
    case TKind::Rect: path.addRect(r); break;
    case TKind::Ellipse: path.addEllipse(r); break;
    case TKind::RoundRect: path.addRoundedRect(r, FCornerW / 2.0, FCornerH / 2.0); break;
    case TKind::Polygon: {
        path.setFillRule(FFillMode == WINDING ? Qt::WindingFill : Qt::OddEvenFill);
        std::size_t start = 0;
        for (int count : FCounts) {
            QPolygonF polygon;
            for (int i = 0; i < count; ++i)
                polygon << QPointF(FPoints[start + std::size_t(i)].x, FPoints[start + std::size_t(i)].y);
            if (count > 0) path.addPolygon(polygon);
            path.closeSubpath();
            start += std::size_t(std::max(count, 0));
        }
        break;
    }
    case TKind::Combine: {
        const QPainterPath a = FA->ToPath(), b = FB->ToPath();
        switch (FOp) {
        case RGN_AND: path = a.intersected(b); break;
        case RGN_OR: path = a.united(b); break;
        case RGN_DIFF: path = a.subtracted(b); break;
        default: path = a.united(b).subtracted(a.intersected(b)); break;
        }
        break;
    }
    }
    return path;
}

bool TRegionShape::SamePixels(const TRegionShape& a, const TRegionShape& b) {
    if (a.IsEmpty() && b.IsEmpty()) return true;
    const TRect box = UnionRects(a.Bounds(), b.Bounds());
    std::vector<TSpan> sa, sb;
    for (std::int32_t y = box.Top; y < box.Bottom; ++y) {
        sa.clear();
        sb.clear();
        a.RowSpans(y, box.Left, box.Right, sa);
        b.RowSpans(y, box.Left, box.Right, sb);
        if (sa.size() != sb.size()) return false;
        for (std::size_t i = 0; i < sa.size(); ++i)
            if (sa[i].x0 != sb[i].x0 || sa[i].x1 != sb[i].x1) return false;
    }
    return true;
}

} // namespace vl::gdi
