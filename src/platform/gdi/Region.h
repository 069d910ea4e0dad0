// The exact, analytic region shape behind `HRGN` and the clip of a device context.
//
// A shape is a rectangle, an ellipse, a rounded rectangle or a polygon, or a boolean combination of
// two shapes. Shapes are immutable and shared. A pixel (x, y) belongs to a leaf when its centre
// (x + 0.5, y + 0.5) lies inside it (on the left or top border counts as inside, on the right or
// bottom border as outside); an ellipse, alone or as the corner of a rounded rectangle, also takes
// the pixels that make it reach all four sides of its box (see EllipseRowSpan). Nothing is ever
// rasterised as a whole: the only output is the list of spans of one row within an x range,
// computed with exact integer arithmetic, so a shape of any size costs the same memory.
#pragma once

#include "platform/core/Types.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class QPainterPath;

namespace vl::gdi {

// Pixels x0 <= x < x1 of one row.
struct TSpan {
    std::int32_t x0 = 0;
    std::int32_t x1 = 0;
};

class TRegionShape;
using TShapePtr = std::shared_ptr<const TRegionShape>;

class TRegionShape {
public:
    enum class TKind : std::uint8_t { Empty, Rect, Ellipse, RoundRect, Polygon, Combine };

    static TShapePtr MakeEmpty();
    // Rectangles are normalised; an empty one gives the empty shape.
    static TShapePtr MakeRect(const TRect& r);
    static TShapePtr MakeEllipse(const TRect& r);
    static TShapePtr MakeRoundRect(const TRect& r, int cornerWidth, int cornerHeight);
    static TShapePtr MakePolygon(std::vector<TPoint> points, std::vector<int> counts, int fillMode);
    // `op` is one of RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF.
    static TShapePtr Combine(const TShapePtr& a, const TShapePtr& b, int op);

    TKind Kind() const { return FKind; }
    // Exact pixel bounds for leaves; for combinations exact when the rows are few enough to scan,
    // otherwise a superset. Empty shapes answer an empty rectangle.
    const TRect& Bounds() const { return FBounds; }
    bool IsEmpty() const { return FBounds.Left >= FBounds.Right || FBounds.Top >= FBounds.Bottom; }

    // Appends the sorted, disjoint spans of row `y` that lie within [x0, x1).
    void RowSpans(std::int32_t y, std::int32_t x0, std::int32_t x1, std::vector<TSpan>& out) const;
    bool Contains(std::int32_t x, std::int32_t y) const;
    // Whether any pixel of the (normalised) rectangle belongs to the shape.
    bool IntersectsRect(const TRect& r) const;
    // NULLREGION, SIMPLEREGION or COMPLEXREGION.
    int RegionType() const;

    // The same shape with every defining coordinate passed through `mapX` and `mapY` (monotonic per
    // axis, possibly reversing); leaves are normalised again afterwards.
    TShapePtr Mapped(const std::function<std::int32_t(std::int32_t)>& mapX,
                     const std::function<std::int32_t(std::int32_t)>& mapY) const;
    TShapePtr Offset(std::int32_t dx, std::int32_t dy) const;
    // The outline as a painter path in the same units, for devices that draw vectors.
    QPainterPath ToPath() const;

    // Whether two shapes hold the same pixels (compared row by row over their bounds).
    static bool SamePixels(const TRegionShape& a, const TRegionShape& b);

private:
    TRegionShape() = default;
    void ComputeBounds();
    void LeafRowSpan(std::int32_t y, std::int32_t& x0, std::int32_t& x1) const; // convex leaves
    void PolygonRowSpans(std::int32_t y, std::vector<TSpan>& out) const;

    TKind FKind = TKind::Empty;
    TRect FRect;               // defining rectangle of the rectangle, ellipse and rounded rectangle
    std::int32_t FCornerW = 0; // rounded rectangle: corner ellipse size
    std::int32_t FCornerH = 0;
    std::vector<TPoint> FPoints; // polygon
    std::vector<int> FCounts;
    int FFillMode = 1;
    int FOp = 0;
    TShapePtr FA, FB;
    TRect FBounds;
};

// Span helpers shared with the rasteriser.
void IntersectSpans(const std::vector<TSpan>& a, const std::vector<TSpan>& b, std::vector<TSpan>& out);
void CombineSpans(const std::vector<TSpan>& a, const std::vector<TSpan>& b, int op, std::vector<TSpan>& out);

// The one span of row `y` of the ellipse in the box `r`: false when the row is empty. The spans are
// symmetric about the centre of the box, shrink away from its middle row, and together reach every
// row and column of the box.
bool EllipseRowSpan(const TRect& r, std::int32_t y, std::int32_t& x0, std::int32_t& x1);

} // namespace vl::gdi
