#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

using test::Rows;
using test::TSurface;

TEST(GdiLines, LineToLeavesTheEndPointUndrawn) {
    TSurface s(7, 3);
    MoveToEx(s.Dc(), 1, 1);
    LineTo(s.Dc(), 5, 1);
    EXPECT_EQ(s.Dump(), Rows({".......", ".####..", "......."}));
    TPoint pos;
    GetCurrentPositionEx(s.Dc(), &pos);
    EXPECT_EQ(pos, Point(5, 1));
}

TEST(GdiLines, LineToTheSamePointDrawsNothing) {
    TSurface s(3, 3);
    MoveToEx(s.Dc(), 1, 1);
    LineTo(s.Dc(), 1, 1);
    EXPECT_EQ(s.CountPixels(0), 0);
}

TEST(GdiLines, DiagonalStepsOnePixelPerColumn) {
    TSurface s(5, 5);
    MoveToEx(s.Dc(), 0, 0);
    LineTo(s.Dc(), 4, 4);
    EXPECT_EQ(s.Dump(), Rows({"#....", ".#...", "..#..", "...#.", "....."}));
}

TEST(GdiLines, ShallowLineRoundsTheMinorAxisHalfUp) {
    TSurface s(9, 3);
    MoveToEx(s.Dc(), 0, 0);
    LineTo(s.Dc(), 8, 2);
    // y at step i = floor((2 * i * 2 + 8) / 16): 0 0 1 1 1 1 2 2
    EXPECT_EQ(s.Dump(), Rows({"##.......", "..####...", "......##."}));
}

TEST(GdiLines, SteepLineBackwardsExcludesItsEndPoint) {
    TSurface s(3, 6);
    MoveToEx(s.Dc(), 1, 5);
    LineTo(s.Dc(), 1, 0);
    EXPECT_EQ(s.Dump(), Rows({"...", ".#.", ".#.", ".#.", ".#.", ".#."}));
}

TEST(GdiLines, PolylineDrawsEachJointOnceSoAnInvertingPenLeavesNoDots) {
    TSurface s(8, 8);
    SetROP2(s.Dc(), R2_NOTXORPEN); // black pen on grey: ~(0 ^ grey) is the inverse grey
    const TPoint square[5] = {{1, 1}, {6, 1}, {6, 6}, {1, 6}, {1, 1}};
    Polyline(s.Dc(), square, 5);
    const COLORREF inverted = RGB(0x7F, 0x7F, 0x7F);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            const bool border =
                (x >= 1 && x <= 6 && y >= 1 && y <= 6) && (x == 1 || x == 6 || y == 1 || y == 6);
            EXPECT_EQ(s.Pixel(x, y), border ? inverted : test::Grey) << x << "," << y;
        }
}

TEST(GdiLines, OpenPolylineLeavesItsLastPointUndrawn) {
    TSurface s(6, 4);
    const TPoint points[3] = {{0, 0}, {4, 0}, {4, 3}};
    Polyline(s.Dc(), points, 3);
    EXPECT_EQ(s.Dump(), Rows({"#####.", "....#.", "....#.", "......"}));
}

TEST(GdiLines, LineToSequenceDrawsTheSharedCornerOnce) {
    TSurface s(6, 6);
    SetROP2(s.Dc(), R2_XORPEN);
    HPEN pen = CreatePen(PS_SOLID, 1, RGB(255, 255, 255));
    HGDIOBJ old = SelectObject(s.Dc(), pen);
    MoveToEx(s.Dc(), 1, 1);
    LineTo(s.Dc(), 4, 1);
    LineTo(s.Dc(), 4, 4);
    // XOR with white turns grey into its inverse; a pixel visited twice would be grey again.
    EXPECT_EQ(s.Pixel(4, 1), RGB(0x7F, 0x7F, 0x7F));
    EXPECT_EQ(s.Pixel(4, 4), test::Grey);
    SelectObject(s.Dc(), old);
    DeleteObject(pen);
}

TEST(GdiLines, DottedPenDrawsThreeOnThreeOffWithOpaqueGaps) {
    TSurface s(14, 1);
    HPEN pen = CreatePen(PS_DOT, 1, 0);
    SelectObject(s.Dc(), pen);
    SetBkColor(s.Dc(), test::Red);
    MoveToEx(s.Dc(), 0, 0);
    LineTo(s.Dc(), 13, 0);
    EXPECT_EQ(s.Dump(), "###rrr###rrr#.");
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

TEST(GdiLines, DashedPenLeavesTransparentGaps) {
    TSurface s(30, 1);
    HPEN pen = CreatePen(PS_DASH, 0, 0);
    SelectObject(s.Dc(), pen);
    SetBkMode(s.Dc(), TRANSPARENT);
    MoveToEx(s.Dc(), 0, 0);
    LineTo(s.Dc(), 30, 0);
    EXPECT_EQ(s.Dump(), "##################......######");
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

TEST(GdiLines, PenWidthIsLogicalAndRoundsHalfAwayFromZero) {
    TSurface s(20, 20);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 2, 2);
    SetViewportExtEx(s.Dc(), 3, 3);
    HPEN pen = CreatePen(PS_SOLID, 3, 0); // 3 * 3 / 2 = 4.5 -> 5 pixels
    SelectObject(s.Dc(), pen);
    MoveToEx(s.Dc(), 2, 6); // device (3, 9)
    LineTo(s.Dc(), 10, 6);  // device (15, 9)
    int thickness = 0;
    for (int y = 0; y < 20; ++y)
        if (s.Pixel(9, y) == 0) ++thickness;
    EXPECT_EQ(thickness, 5);
    EXPECT_EQ(s.Pixel(9, 7), 0u);
    EXPECT_EQ(s.Pixel(9, 11), 0u);
    EXPECT_EQ(s.Pixel(9, 6), test::Grey);
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

TEST(GdiLines, WidthZeroAndTinyWidthsDrawOnePixel) {
    for (int width : {0, 1}) {
        TSurface s(10, 5);
        SetMapMode(s.Dc(), MM_ANISOTROPIC);
        SetWindowExtEx(s.Dc(), 10, 10);
        SetViewportExtEx(s.Dc(), 1, 1);
        HPEN pen = CreatePen(PS_SOLID, width, 0);
        SelectObject(s.Dc(), pen);
        MoveToEx(s.Dc(), 10, 20);
        LineTo(s.Dc(), 80, 20);
        EXPECT_EQ(s.InkBox(), (TRect{1, 2, 8, 3})) << width;
        SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
        DeleteObject(pen);
    }
}

TEST(GdiLines, NegativePenWidthDrawsWithItsAbsoluteWidth) {
    // A line, a polygon outline and an ellipse, drawn once with each pen.
    auto draw = [](TSurface& s, int width) {
        HPEN pen = CreatePen(PS_SOLID, width, test::Red);
        SelectObject(s.Dc(), pen);
        MoveToEx(s.Dc(), 3, 10);
        LineTo(s.Dc(), 40, 10);
        const TPoint triangle[3] = {{5, 20}, {35, 24}, {12, 34}};
        Polygon(s.Dc(), triangle, 3);
        Ellipse(s.Dc(), 8, 38, 38, 56);
        SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
        DeleteObject(pen);
    };
    TSurface negative(48, 60), positive(48, 60);
    draw(negative, -5);
    draw(positive, 5);
    int thickness = 0;
    for (int y = 0; y < 18; ++y)
        if (negative.Pixel(20, y) == test::Red) ++thickness;
    EXPECT_EQ(thickness, 5);
    EXPECT_EQ(negative.Dump(), positive.Dump());
}

TEST(GdiLines, StyledPenWiderThanOnePixelDrawsSolid) {
    TSurface s(40, 7);
    HPEN pen = CreatePen(PS_DASH, 3, 0);
    SelectObject(s.Dc(), pen);
    MoveToEx(s.Dc(), 3, 3);
    LineTo(s.Dc(), 36, 3);
    for (int x = 3; x <= 36; ++x) EXPECT_EQ(s.Pixel(x, 3), 0u) << x;
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

TEST(GdiLines, NullPenDrawsNothing) {
    TSurface s(5, 5);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    MoveToEx(s.Dc(), 0, 0);
    LineTo(s.Dc(), 4, 4);
    EXPECT_EQ(s.CountPixels(test::Grey), 25);
}

TEST(GdiLines, HugeLineIsClippedToTheDevice) {
    TSurface s(10, 10);
    MoveToEx(s.Dc(), -1000000000, 5);
    LineTo(s.Dc(), 1000000000, 5);
    MoveToEx(s.Dc(), -2000000000, -2000000000);
    LineTo(s.Dc(), 2000000000, 2000000000);
    EXPECT_EQ(s.InkBox(), (TRect{0, 0, 10, 10}));
    for (int x = 0; x < 10; ++x) {
        EXPECT_EQ(s.Pixel(x, 5), 0u);
        EXPECT_EQ(s.Pixel(x, x), 0u);
    }
    EXPECT_EQ(s.CountPixels(0), 19);
}

TEST(GdiLines, DrawnBoundsReportTheTouchedDevicePixels) {
    TSurface s(20, 20);
    std::vector<TRect> reported;
    SetDrawnEvent(s.Dc(), [&](const TRect& r) { reported.push_back(r); });
    MoveToEx(s.Dc(), 2, 3);
    LineTo(s.Dc(), 8, 3);
    Rectangle(s.Dc(), 10, 10, 15, 12);
    ASSERT_EQ(reported.size(), 2u);
    EXPECT_EQ(reported[0], (TRect{2, 3, 8, 4}));
    EXPECT_EQ(reported[1], (TRect{10, 10, 15, 12}));
    EXPECT_EQ(GetDrawnBoundsDev(s.Dc(), true), (TRect{2, 3, 15, 12}));
    EXPECT_EQ(GetDrawnBoundsDev(s.Dc(), false), TRect{});
}

} // namespace
} // namespace vl
