#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

using test::Rows;
using test::TSurface;

TEST(GdiShapes, RectangleExcludesItsRightAndBottomEdge) {
    TSurface s(7, 6);
    Rectangle(s.Dc(), 1, 1, 6, 5);
    EXPECT_EQ(s.Dump(), Rows({".......", ".#####.", ".#www#.", ".#www#.", ".#####.", "......."}));
}

TEST(GdiShapes, RectangleWithNullPenFillsOnePixelLess) {
    TSurface s(7, 6);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    Rectangle(s.Dc(), 1, 1, 6, 5);
    EXPECT_EQ(s.Dump(), Rows({".......", ".####..", ".####..", ".####..", ".......", "......."}));
}

TEST(GdiShapes, RectangleWithNullBrushDrawsOnlyTheOutline) {
    TSurface s(6, 5);
    SelectObject(s.Dc(), GetStockObject(NULL_BRUSH));
    Rectangle(s.Dc(), 1, 1, 5, 4);
    EXPECT_EQ(s.Dump(), Rows({"......", ".####.", ".#..#.", ".####.", "......"}));
}

TEST(GdiShapes, RectangleIsNormalisedAfterMapping) {
    TSurface s(8, 12);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 1, -1);
    SetViewportOrgEx(s.Dc(), 0, 10);
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    Rectangle(s.Dc(), 5, 1, 1, 4); // device x 5..1, y 9..6 -> [1, 5) x [6, 9)
    EXPECT_EQ(s.InkBox(), (TRect{1, 6, 5, 9}));
    EXPECT_EQ(s.CountPixels(0), 12);
}

TEST(GdiShapes, EllipseExcludesItsRightAndBottomEdgeAndIsSymmetric) {
    TSurface s(12, 12);
    Ellipse(s.Dc(), 1, 1, 11, 9);
    EXPECT_EQ(s.InkBox(), (TRect{1, 1, 11, 9}));
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x) {
            EXPECT_EQ(s.Pixel(x, y), s.Pixel(11 - x, y)) << x << "," << y;
            EXPECT_EQ(s.Pixel(x, y), s.Pixel(x, 9 - y < 0 ? y : 9 - y)) << x << "," << y;
        }
    // A closed one-pixel outline: the centre is white fill, the ends of the axes are black pen.
    EXPECT_EQ(s.Pixel(5, 4), RGB(255, 255, 255));
    EXPECT_EQ(s.Pixel(1, 4), 0u);
    EXPECT_EQ(s.Pixel(10, 4), 0u);
    EXPECT_EQ(s.Pixel(5, 1), 0u);
    EXPECT_EQ(s.Pixel(5, 8), 0u);
}

TEST(GdiShapes, SmallEllipseHasTheExpectedPixels) {
    TSurface s(8, 8);
    SelectObject(s.Dc(), GetStockObject(NULL_BRUSH));
    Ellipse(s.Dc(), 0, 0, 8, 8);
    EXPECT_EQ(s.Dump(), Rows({"..####..", ".#....#.", "#......#", "#......#", "#......#", "#......#",
                              ".#....#.", "..####.."}));
}

TEST(GdiShapes, EllipseWithNullPenFillsOnePixelLess) {
    TSurface s(10, 10);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    Ellipse(s.Dc(), 0, 0, 8, 8);
    EXPECT_EQ(s.InkBox(), (TRect{0, 0, 7, 7}));
}

TEST(GdiShapes, EllipseOutlineUnderNotXorIsDrawnOncePerPixel) {
    TSurface s(20, 20);
    SelectObject(s.Dc(), GetStockObject(NULL_BRUSH));
    SetROP2(s.Dc(), R2_NOTXORPEN);
    Ellipse(s.Dc(), 2, 3, 17, 15);
    // Every touched pixel was inverted exactly once: nothing is left grey inside the ring's pixels
    // twice; compare with the copy-mode outline.
    TSurface copy(20, 20);
    SelectObject(copy.Dc(), GetStockObject(NULL_BRUSH));
    Ellipse(copy.Dc(), 2, 3, 17, 15);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(s.Pixel(x, y) == RGB(0x7F, 0x7F, 0x7F), copy.Pixel(x, y) == 0u) << x << "," << y;
}

TEST(GdiShapes, RoundRectCutsItsCornersAndExcludesTheEdges) {
    TSurface s(12, 12);
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    RoundRect(s.Dc(), 0, 0, 10, 10, 6, 6);
    EXPECT_EQ(s.InkBox(), (TRect{0, 0, 10, 10}));
    EXPECT_EQ(s.Pixel(0, 0), test::Grey);
    EXPECT_EQ(s.Pixel(9, 9), test::Grey);
    EXPECT_EQ(s.Pixel(5, 0), 0u);
    EXPECT_EQ(s.Pixel(0, 5), 0u);
    EXPECT_EQ(s.Pixel(9, 5), 0u);
}

TEST(GdiShapes, PolygonFillsInAlternateModeByDefault) {
    TSurface s(21, 21);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    // A five-pointed star drawn in one stroke: its centre is covered twice.
    const TPoint star[5] = {{10, 0}, {16, 20}, {0, 7}, {20, 7}, {4, 20}};
    Polygon(s.Dc(), star, 5);
    EXPECT_EQ(s.Pixel(10, 11), test::Grey);
    EXPECT_EQ(s.Pixel(10, 3), 0u);
    TSurface w(21, 21);
    SelectObject(w.Dc(), GetStockObject(NULL_PEN));
    SelectObject(w.Dc(), GetStockObject(BLACK_BRUSH));
    EXPECT_EQ(SetPolyFillMode(w.Dc(), WINDING), ALTERNATE);
    Polygon(w.Dc(), star, 5);
    EXPECT_EQ(w.Pixel(10, 11), 0u);
}

TEST(GdiShapes, PolygonOutlineIsClosedAndFillExcludesRightAndBottom) {
    TSurface s(7, 6);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    const TPoint square[4] = {{1, 1}, {5, 1}, {5, 4}, {1, 4}};
    Polygon(s.Dc(), square, 4);
    EXPECT_EQ(s.Dump(), Rows({".......", ".####..", ".####..", ".####..", ".......", "......."}));
    TSurface o(7, 6);
    SelectObject(o.Dc(), GetStockObject(NULL_BRUSH));
    Polygon(o.Dc(), square, 4);
    EXPECT_EQ(o.Dump(), Rows({".......", ".#####.", ".#...#.", ".#...#.", ".#####.", "......."}));
}

TEST(GdiShapes, ThickPenIsCentredOnTheOutline) {
    TSurface s(16, 16);
    HPEN pen = CreatePen(PS_SOLID, 3, 0);
    SelectObject(s.Dc(), pen);
    Rectangle(s.Dc(), 3, 3, 13, 13);
    // The one-pixel outline would be columns 3 and 12; three pixels wide it covers 2..4 and 11..13.
    EXPECT_EQ(s.Pixel(1, 8), test::Grey);
    EXPECT_EQ(s.Pixel(2, 8), 0u);
    EXPECT_EQ(s.Pixel(4, 8), 0u);
    EXPECT_EQ(s.Pixel(5, 8), RGB(255, 255, 255));
    EXPECT_EQ(s.Pixel(10, 8), RGB(255, 255, 255));
    EXPECT_EQ(s.Pixel(11, 8), 0u);
    EXPECT_EQ(s.Pixel(13, 8), 0u);
    EXPECT_EQ(s.Pixel(14, 8), test::Grey);
    EXPECT_EQ(s.InkBox(), (TRect{2, 2, 14, 14}));
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

TEST(GdiShapes, InsideFramePenStaysInsideTheRectangle) {
    TSurface s(16, 16);
    HPEN pen = CreatePen(PS_INSIDEFRAME, 3, 0);
    SelectObject(s.Dc(), pen);
    Rectangle(s.Dc(), 3, 3, 13, 13);
    EXPECT_EQ(s.InkBox(), (TRect{3, 3, 13, 13}));
    EXPECT_EQ(s.Pixel(5, 8), 0u);
    EXPECT_EQ(s.Pixel(6, 8), RGB(255, 255, 255));
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

TEST(GdiShapes, HatchedBrushUsesTheBackgroundModeForItsGaps) {
    TSurface s(9, 9);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    HBRUSH brush = CreateHatchBrush(HS_HORIZONTAL, 0);
    SelectObject(s.Dc(), brush);
    SetBkMode(s.Dc(), TRANSPARENT);
    Rectangle(s.Dc(), 0, 0, 10, 10);
    EXPECT_EQ(s.Pixel(3, 0), 0u);
    EXPECT_EQ(s.Pixel(3, 8), 0u);
    EXPECT_EQ(s.Pixel(3, 4), test::Grey);
    SetBkMode(s.Dc(), OPAQUE);
    SetBkColor(s.Dc(), test::Red);
    Rectangle(s.Dc(), 0, 0, 10, 10);
    EXPECT_EQ(s.Pixel(3, 4), test::Red);
    SelectObject(s.Dc(), GetStockObject(WHITE_BRUSH));
    DeleteObject(brush);
}

TEST(GdiShapes, FillRectIgnoresThePenAndTheRasterMode) {
    TSurface s(6, 4);
    SetROP2(s.Dc(), R2_XORPEN);
    HBRUSH brush = CreateSolidBrush(test::Blue);
    const TRect r{1, 1, 4, 3};
    EXPECT_EQ(FillRect(s.Dc(), &r, brush), 1);
    EXPECT_EQ(s.Dump(), Rows({"......", ".bbb..", ".bbb..", "......"}));
    DeleteObject(brush);
}

TEST(GdiShapes, FrameRectDrawsOnePixelBorder) {
    TSurface s(6, 5);
    const TRect r{1, 1, 5, 4};
    FrameRect(s.Dc(), &r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    EXPECT_EQ(s.Dump(), Rows({"......", ".####.", ".#..#.", ".####.", "......"}));
}

TEST(GdiShapes, SetPixelAndGetPixelUseLogicalCoordinates) {
    TSurface s(10, 10);
    SetWindowOrgEx(s.Dc(), -2, -3);
    EXPECT_EQ(SetPixel(s.Dc(), 1, 1, test::Red), test::Red);
    EXPECT_EQ(s.Pixel(3, 4), test::Red);
    EXPECT_EQ(GetPixel(s.Dc(), 1, 1), test::Red);
    EXPECT_EQ(GetPixel(s.Dc(), 100, 100), CLR_INVALID);
}

} // namespace
} // namespace vl

namespace vl {
namespace {

TEST(GdiShapes, HugeEllipseIsDrawnRowByRowInsideTheDevice) {
    test::TSurface s(20, 20);
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    // The device sees only the middle of an ellipse a hundred million pixels wide: all fill, no pen.
    Ellipse(s.Dc(), -100000000, -100000000, 100000000, 100000000);
    EXPECT_EQ(s.CountPixels(0), 400);
    test::TSurface edge(20, 20);
    SelectObject(edge.Dc(), GetStockObject(NULL_BRUSH));
    Ellipse(edge.Dc(), -100000000, 5, 100000000, 100000000);
    // Only the top of the outline crosses the device, on row 5.
    EXPECT_EQ(edge.InkBox(), (TRect{0, 5, 20, 6}));
}

TEST(GdiShapes, PolyPolygonFillsEachOutlineWithTheFillRule) {
    test::TSurface s(12, 12);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    const TPoint points[8] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {3, 3}, {7, 3}, {7, 7}, {3, 7}};
    const int counts[2] = {4, 4};
    PolyPolygon(s.Dc(), points, counts, 2);
    EXPECT_EQ(s.Pixel(5, 5), test::Grey); // the inner square is a hole in alternate mode
    EXPECT_EQ(s.Pixel(1, 1), 0u);
    EXPECT_EQ(s.CountPixels(0), 100 - 16);
}

TEST(GdiShapes, PolyPolylineDrawsSeparateLines) {
    test::TSurface s(6, 4);
    const TPoint points[4] = {{0, 0}, {3, 0}, {0, 2}, {5, 2}};
    const std::uint32_t counts[2] = {2, 2};
    EXPECT_TRUE(PolyPolyline(s.Dc(), points, counts, 2));
    EXPECT_EQ(s.Dump(), test::Rows({"###...", "......", "#####.", "......"}));
}

TEST(GdiShapes, DrawnBoundsAreClipped) {
    test::TSurface s(20, 20);
    IntersectClipRect(s.Dc(), 5, 5, 10, 10);
    Rectangle(s.Dc(), 0, 0, 20, 20);
    EXPECT_EQ(GetDrawnBoundsDev(s.Dc(), false), (TRect{5, 5, 10, 10}));
}

} // namespace
} // namespace vl
