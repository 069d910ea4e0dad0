#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>

namespace vl {
namespace {

using test::TSurface;

TEST(GdiRegions, RectangleHoldsLeftAndTopButNotRightAndBottom) {
    HRGN r = CreateRectRgn(1, 1, 5, 5);
    EXPECT_TRUE(PtInRegion(r, 1, 1));
    EXPECT_TRUE(PtInRegion(r, 4, 4));
    EXPECT_FALSE(PtInRegion(r, 5, 4));
    EXPECT_FALSE(PtInRegion(r, 4, 5));
    EXPECT_FALSE(PtInRegion(r, 0, 1));
    TRect box;
    EXPECT_EQ(GetRgnBox(r, &box), SIMPLEREGION);
    EXPECT_EQ(box, (TRect{1, 1, 5, 5}));
    DeleteObject(r);
}

TEST(GdiRegions, ReversedRectangleIsNormalisedAndEmptyOneIsNull) {
    HRGN r = CreateRectRgn(5, 5, 1, 1);
    EXPECT_TRUE(PtInRegion(r, 1, 1));
    HRGN e = CreateRectRgn(3, 3, 3, 9);
    TRect box;
    EXPECT_EQ(GetRgnBox(e, &box), NULLREGION);
    EXPECT_FALSE(PtInRegion(e, 3, 3));
    DeleteObject(r);
    DeleteObject(e);
}

TEST(GdiRegions, EllipseTestsPixelCentres) {
    HRGN r = CreateEllipticRgn(0, 0, 10, 10);
    EXPECT_TRUE(PtInRegion(r, 5, 5));
    EXPECT_TRUE(PtInRegion(r, 0, 5));
    EXPECT_TRUE(PtInRegion(r, 9, 4));
    EXPECT_FALSE(PtInRegion(r, 10, 5));
    EXPECT_FALSE(PtInRegion(r, 0, 0));
    EXPECT_TRUE(PtInRegion(r, 1, 1)); // centre (1.5, 1.5) lies 4.95 from the centre
    TRect box;
    EXPECT_EQ(GetRgnBox(r, &box), COMPLEXREGION);
    EXPECT_EQ(box, (TRect{0, 0, 10, 10}));
    DeleteObject(r);
}

TEST(GdiRegions, EllipsePixelsMatchTheFilledEllipse) {
    // The region and the null-pen fill of one pixel larger box agree pixel for pixel.
    TSurface s(24, 20);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
    Ellipse(s.Dc(), 2, 3, 22, 18);
    HRGN r = CreateEllipticRgn(2, 3, 21, 17);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 24; ++x) EXPECT_EQ(PtInRegion(r, x, y), s.Pixel(x, y) == 0u) << x << "," << y;
    DeleteObject(r);
}

TEST(GdiRegions, HugeEllipseIsTestedAnalytically) {
    const auto start = std::chrono::steady_clock::now();
    HRGN r = CreateEllipticRgn(-100000000, -100000000, 100000000, 100000000);
    EXPECT_TRUE(PtInRegion(r, 0, 0));
    EXPECT_TRUE(PtInRegion(r, 99999999, -1));
    EXPECT_FALSE(PtInRegion(r, 100000000, 0));
    EXPECT_TRUE(PtInRegion(r, 70710000, 70710000));
    EXPECT_FALSE(PtInRegion(r, 70711000, 70711000));
    const TRect corner{90000000, 90000000, 100000000, 100000000};
    EXPECT_FALSE(RectInRegion(r, &corner));
    const TRect edge{99999000, -5, 100000000, 5};
    EXPECT_TRUE(RectInRegion(r, &edge));
    TRect box;
    GetRgnBox(r, &box);
    EXPECT_EQ(box, (TRect{-100000000, -100000000, 100000000, 100000000}));
    HRGN hole = CreateRectRgn(-10, -10, 10, 10);
    HRGN ring = CreateRectRgn(0, 0, 0, 0);
    EXPECT_EQ(CombineRgn(ring, r, hole, RGN_DIFF), COMPLEXREGION);
    EXPECT_FALSE(PtInRegion(ring, 0, 0));
    EXPECT_TRUE(PtInRegion(ring, 50, 0));
    // Analytic tests take microseconds; a bitmap of this size could not even be allocated.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    DeleteObject(r);
    DeleteObject(hole);
    DeleteObject(ring);
}

TEST(GdiRegions, RectInRegionWithOnePixelRectangleIsAPointTest) {
    const TPoint triangle[3] = {{1, 1}, {14, 4}, {4, 13}};
    HRGN shapes[3] = {CreateEllipticRgn(1, 2, 12, 11), CreatePolygonRgn(triangle, 3, ALTERNATE),
                      CreateRoundRectRgn(0, 0, 13, 12, 8, 6)};
    for (HRGN r : shapes) {
        for (int y = -1; y < 15; ++y)
            for (int x = -1; x < 15; ++x) {
                const TRect one{x, y, x + 1, y + 1};
                EXPECT_EQ(RectInRegion(r, &one), PtInRegion(r, x, y)) << x << "," << y;
            }
        DeleteObject(r);
    }
}

TEST(GdiRegions, RectInRegionFindsAnyOverlap) {
    HRGN r = CreateEllipticRgn(0, 0, 10, 10);
    const TRect cornerOutside{0, 0, 3, 1};
    EXPECT_FALSE(RectInRegion(r, &cornerOutside));
    const TRect reachingIn{0, 0, 4, 1};
    EXPECT_TRUE(RectInRegion(r, &reachingIn));
    const TRect reversed{3, 3, 0, 0};
    EXPECT_TRUE(RectInRegion(r, &reversed));
    const TRect beyond{10, 0, 20, 10};
    EXPECT_FALSE(RectInRegion(r, &beyond));
    const TRect empty{5, 5, 5, 5};
    EXPECT_FALSE(RectInRegion(r, &empty));
    DeleteObject(r);
}

TEST(GdiRegions, PolygonRegionSupportsBothFillModes) {
    const TPoint star[5] = {{10, 0}, {16, 20}, {0, 7}, {20, 7}, {4, 20}};
    HRGN alternate = CreatePolygonRgn(star, 5, ALTERNATE);
    HRGN winding = CreatePolygonRgn(star, 5, WINDING);
    EXPECT_FALSE(PtInRegion(alternate, 10, 11));
    EXPECT_TRUE(PtInRegion(winding, 10, 11));
    EXPECT_TRUE(PtInRegion(alternate, 10, 3));
    EXPECT_TRUE(PtInRegion(winding, 10, 3));
    EXPECT_EQ(CreatePolygonRgn(star, 5, 3), nullptr);
    DeleteObject(alternate);
    DeleteObject(winding);
}

TEST(GdiRegions, PolygonRegionExcludesRightAndBottomEdges) {
    const TPoint square[4] = {{1, 1}, {5, 1}, {5, 4}, {1, 4}};
    HRGN r = CreatePolygonRgn(square, 4, WINDING);
    EXPECT_TRUE(PtInRegion(r, 1, 1));
    EXPECT_TRUE(PtInRegion(r, 4, 3));
    EXPECT_FALSE(PtInRegion(r, 5, 3));
    EXPECT_FALSE(PtInRegion(r, 4, 4));
    TRect box;
    EXPECT_EQ(GetRgnBox(r, &box), SIMPLEREGION);
    EXPECT_EQ(box, (TRect{1, 1, 5, 4}));
    DeleteObject(r);
}

TEST(GdiRegions, RoundRectRegionCutsCorners) {
    HRGN r = CreateRoundRectRgn(0, 0, 20, 10, 8, 8);
    EXPECT_FALSE(PtInRegion(r, 0, 0));
    EXPECT_TRUE(PtInRegion(r, 10, 0));
    EXPECT_TRUE(PtInRegion(r, 0, 5));
    EXPECT_FALSE(PtInRegion(r, 19, 9));
    EXPECT_TRUE(PtInRegion(r, 19, 5));
    DeleteObject(r);
}

TEST(GdiRegions, CombineOperationsAndTheirTypes) {
    HRGN a = CreateRectRgn(0, 0, 10, 10);
    HRGN b = CreateRectRgn(5, 0, 15, 10);
    HRGN c = CreateRectRgn(0, 0, 0, 0);
    TRect box;
    EXPECT_EQ(CombineRgn(c, a, b, RGN_AND), SIMPLEREGION);
    GetRgnBox(c, &box);
    EXPECT_EQ(box, (TRect{5, 0, 10, 10}));
    EXPECT_EQ(CombineRgn(c, a, b, RGN_OR), SIMPLEREGION);
    GetRgnBox(c, &box);
    EXPECT_EQ(box, (TRect{0, 0, 15, 10}));
    EXPECT_EQ(CombineRgn(c, a, b, RGN_XOR), COMPLEXREGION);
    EXPECT_TRUE(PtInRegion(c, 2, 2));
    EXPECT_FALSE(PtInRegion(c, 7, 2));
    EXPECT_TRUE(PtInRegion(c, 12, 2));
    EXPECT_EQ(CombineRgn(c, a, b, RGN_DIFF), SIMPLEREGION);
    GetRgnBox(c, &box);
    EXPECT_EQ(box, (TRect{0, 0, 5, 10}));
    EXPECT_EQ(CombineRgn(c, b, a, RGN_COPY), SIMPLEREGION);
    GetRgnBox(c, &box);
    EXPECT_EQ(box, (TRect{5, 0, 15, 10}));
    HRGN far = CreateRectRgn(100, 100, 110, 110);
    EXPECT_EQ(CombineRgn(c, a, far, RGN_AND), NULLREGION);
    EXPECT_EQ(CombineRgn(c, a, b, 9), ERROR);
    // The destination may be one of the sources.
    EXPECT_EQ(CombineRgn(a, a, b, RGN_OR), SIMPLEREGION);
    EXPECT_TRUE(PtInRegion(a, 14, 9));
    for (HRGN r : {a, b, c, far}) DeleteObject(r);
}

TEST(GdiRegions, OffsetAndEquality) {
    HRGN a = CreateEllipticRgn(0, 0, 10, 8);
    HRGN b = CreateEllipticRgn(5, 5, 15, 13);
    EXPECT_FALSE(EqualRgn(a, b));
    EXPECT_EQ(OffsetRgn(a, 5, 5), COMPLEXREGION);
    EXPECT_TRUE(EqualRgn(a, b));
    HRGN rect = CreateRectRgn(0, 0, 3, 3);
    const TPoint square[4] = {{0, 0}, {3, 0}, {3, 3}, {0, 3}};
    HRGN poly = CreatePolygonRgn(square, 4, ALTERNATE);
    EXPECT_TRUE(EqualRgn(rect, poly));
    EXPECT_TRUE(SetRectRgn(a, 1, 1, 2, 2));
    EXPECT_TRUE(PtInRegion(a, 1, 1));
    for (HRGN r : {a, b, rect, poly}) DeleteObject(r);
}

TEST(GdiRegions, FillRgnTakesLogicalUnits) {
    TSurface s(12, 12);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 2, 2);
    HRGN r = CreateRectRgn(1, 1, 3, 4);
    FillRgn(s.Dc(), r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    EXPECT_EQ(s.InkBox(), (TRect{2, 2, 6, 8}));
    EXPECT_EQ(s.CountPixels(0), 24);
    DeleteObject(r);
}

TEST(GdiRegions, FrameRgnDrawsABorderInsideTheRegion) {
    TSurface s(12, 10);
    HRGN r = CreateRectRgn(1, 1, 11, 9);
    FrameRgn(s.Dc(), r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)), 2, 1);
    EXPECT_EQ(s.Dump(),
              test::Rows({"............", ".##########.", ".##......##.", ".##......##.", ".##......##.",
                          ".##......##.", ".##......##.", ".##......##.", ".##########.", "............"}));
    DeleteObject(r);
}

TEST(GdiRegions, FrameRgnWidthIsLogical) {
    TSurface s(30, 30);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 3, 3);
    HRGN r = CreateEllipticRgn(0, 0, 10, 10);
    FrameRgn(s.Dc(), r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)), 1, 1);
    // Three device pixels across at the middle row on each side.
    EXPECT_EQ(s.Pixel(0, 15), 0u);
    EXPECT_EQ(s.Pixel(2, 15), 0u);
    EXPECT_EQ(s.Pixel(3, 15), test::Grey);
    EXPECT_EQ(s.Pixel(27, 15), 0u);
    EXPECT_EQ(s.Pixel(26, 15), test::Grey);
    EXPECT_EQ(s.Pixel(15, 15), test::Grey);
    DeleteObject(r);
}

TEST(GdiRegions, InvalidHandlesAreRefused) {
    TRect box;
    EXPECT_FALSE(PtInRegion(nullptr, 0, 0));
    EXPECT_EQ(GetRgnBox(nullptr, &box), ERROR);
    EXPECT_EQ(CombineRgn(nullptr, nullptr, nullptr, RGN_OR), ERROR);
    EXPECT_FALSE(DeleteObject(nullptr));
}

} // namespace
} // namespace vl

namespace vl {
namespace {

TEST(GdiRegions, PolyPolygonRegionWithWindingFillsNestedOutlinesOfTheSameDirection) {
    const TPoint points[8] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {3, 3}, {7, 3}, {7, 7}, {3, 7}};
    const int counts[2] = {4, 4};
    HRGN winding = CreatePolyPolygonRgn(points, counts, 2, WINDING);
    HRGN alternate = CreatePolyPolygonRgn(points, counts, 2, ALTERNATE);
    EXPECT_TRUE(PtInRegion(winding, 5, 5));
    EXPECT_FALSE(PtInRegion(alternate, 5, 5));
    EXPECT_TRUE(PtInRegion(alternate, 1, 5));
    DeleteObject(winding);
    DeleteObject(alternate);
}

TEST(GdiRegions, RegionsInLogicalUnitsCanBeTestedAgainstLogicalRectangles) {
    // A shape made in logical units of a 0.1 mm drawing, tested against a frame in the same units.
    HRGN r = CreateRoundRectRgn(100000, 200000, 600000, 500000, 50000, 50000);
    const TRect inside{300000, 300000, 300010, 300010};
    const TRect cornerGap{100000, 200000, 100100, 200100};
    const TRect beside{600000, 200000, 700000, 500000};
    EXPECT_TRUE(RectInRegion(r, &inside));
    EXPECT_FALSE(RectInRegion(r, &cornerGap));
    EXPECT_FALSE(RectInRegion(r, &beside));
    DeleteObject(r);
}

} // namespace
} // namespace vl
