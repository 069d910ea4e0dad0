// FrameRgn keeps a region pixel unframed only when its four diagonal neighbours at the brush's width
// and height lie inside the region; every other region pixel is painted with the brush.

#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

using test::Rows;
using test::TSurface;

HBRUSH Black() {
    return static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
}

// The L of two overlapping squares.
HRGN MakeL(int scale) {
    HRGN a = CreateRectRgn(1 * scale, 1 * scale, 5 * scale, 5 * scale);
    HRGN b = CreateRectRgn(3 * scale, 3 * scale, 7 * scale, 7 * scale);
    HRGN l = CreateRectRgn(0, 0, 0, 0);
    CombineRgn(l, a, b, RGN_OR);
    DeleteObject(a);
    DeleteObject(b);
    return l;
}

TEST(GdiFrameRgn, ConcaveCornersOfAnLBelongToTheFrame) {
    TSurface s(8, 8);
    HRGN l = MakeL(1);
    EXPECT_TRUE(FrameRgn(s.Dc(), l, Black(), 1, 1));
    // (4, 3) and (3, 4) touch the region's outside only diagonally, at the inner corners.
    EXPECT_EQ(s.Dump(), Rows({"........", ".####...", ".#..#...", ".#..###.", ".###..#.", "...#..#.",
                              "...####.", "........"}));
    DeleteObject(l);
}

TEST(GdiFrameRgn, RectangleFrameOfOnePixelIsItsBorder) {
    TSurface s(9, 8);
    HRGN r = CreateRectRgn(1, 1, 8, 7);
    FrameRgn(s.Dc(), r, Black(), 1, 1);
    EXPECT_EQ(s.Dump(), Rows({".........", ".#######.", ".#.....#.", ".#.....#.", ".#.....#.", ".#.....#.",
                              ".#######.", "........."}));
    DeleteObject(r);
}

TEST(GdiFrameRgn, RectangleFrameOfThreePixelsIsThreeDeep) {
    TSurface s(16, 14);
    HRGN r = CreateRectRgn(1, 1, 15, 13);
    FrameRgn(s.Dc(), r, Black(), 3, 3);
    EXPECT_EQ(s.Dump(), Rows({"................", ".##############.", ".##############.", ".##############.",
                              ".###........###.", ".###........###.", ".###........###.", ".###........###.",
                              ".###........###.", ".###........###.", ".##############.", ".##############.",
                              ".##############.", "................"}));
    DeleteObject(r);
}

TEST(GdiFrameRgn, ThreePixelFrameOfAnLFollowsTheDiagonalRule) {
    TSurface s(24, 24);
    HRGN l = MakeL(3); // [3, 15) x [3, 15) and [9, 21) x [9, 21)
    FrameRgn(s.Dc(), l, Black(), 3, 3);
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 24; ++x) {
            const bool in = PtInRegion(l, x, y);
            const bool interior = in && PtInRegion(l, x - 3, y - 3) && PtInRegion(l, x + 3, y - 3) &&
                                  PtInRegion(l, x - 3, y + 3) && PtInRegion(l, x + 3, y + 3);
            const COLORREF expected = in && !interior ? 0u : test::Grey;
            EXPECT_EQ(s.Pixel(x, y), expected) << x << "," << y;
        }
    // The inner corner at (15, 9): the pixels up to three left of it and three below it are framed.
    EXPECT_EQ(s.Pixel(12, 9), 0u);
    EXPECT_EQ(s.Pixel(14, 11), 0u);
    EXPECT_EQ(s.Pixel(11, 11), test::Grey);
    DeleteObject(l);
}

} // namespace
} // namespace vl
