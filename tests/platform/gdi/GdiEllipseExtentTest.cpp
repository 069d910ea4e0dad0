// Ellipses, rounded rectangles and elliptic regions reach every side of their box: the leftmost
// column and the top row are drawn, the right and bottom edges stay out as for rectangles.

#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vl {
namespace {

using test::Rows;
using test::TSurface;

// Boxes from one pixel up, flat and tall, small and wide; all lie inside a 72 x 72 surface.
const std::vector<TRect>& Boxes() {
    static const std::vector<TRect> boxes = {
        {0, 0, 40, 4},  {0, 0, 4, 40},  {2, 3, 62, 6},  {5, 1, 8, 60}, {1, 1, 2, 2},   {1, 1, 3, 3},
        {1, 1, 4, 2},   {1, 1, 2, 4},   {3, 3, 5, 4},   {0, 0, 70, 2}, {0, 0, 2, 70},  {0, 0, 70, 3},
        {0, 0, 10, 10}, {1, 1, 12, 12}, {3, 2, 30, 21}, {4, 4, 9, 7},  {0, 0, 71, 71}, {6, 7, 67, 19},
    };
    return boxes;
}

std::string Name(const TRect& r) {
    return "(" + std::to_string(r.Left) + "," + std::to_string(r.Top) + "," + std::to_string(r.Right) + "," +
           std::to_string(r.Bottom) + ")";
}

// Whether the ink of `s` within `box` mirrors left to right and top to bottom.
void ExpectMirrored(const TSurface& s, const TRect& box, const std::string& what) {
    for (int y = box.Top; y < box.Bottom; ++y)
        for (int x = box.Left; x < box.Right; ++x) {
            const int mx = box.Left + box.Right - 1 - x, my = box.Top + box.Bottom - 1 - y;
            EXPECT_EQ(s.Pixel(x, y), s.Pixel(mx, y)) << what << " at " << x << "," << y;
            EXPECT_EQ(s.Pixel(x, y), s.Pixel(x, my)) << what << " at " << x << "," << y;
        }
}

TEST(GdiEllipseExtent, FlatEllipseSpansEveryColumnAndRowOfItsBox) {
    TSurface s(44, 8);
    Ellipse(s.Dc(), 0, 0, 40, 4);
    EXPECT_EQ(s.InkBox(), (TRect{0, 0, 40, 4}));
    EXPECT_EQ(s.Pixel(0, 1), 0u);
    EXPECT_EQ(s.Pixel(0, 2), 0u);
    EXPECT_EQ(s.Pixel(39, 1), 0u);
    EXPECT_EQ(s.Pixel(39, 2), 0u);
    EXPECT_EQ(s.Pixel(40, 1), test::Grey);
}

TEST(GdiEllipseExtent, OutlinedEllipseInkFillsExactlyItsBox) {
    for (const TRect& r : Boxes()) {
        TSurface s(72, 72);
        Ellipse(s.Dc(), r.Left, r.Top, r.Right, r.Bottom);
        EXPECT_EQ(s.InkBox(), r) << Name(r);
        ExpectMirrored(s, r, "outlined " + Name(r));
    }
}

TEST(GdiEllipseExtent, OutlineWithoutBrushFillsExactlyItsBox) {
    for (const TRect& r : Boxes()) {
        TSurface s(72, 72);
        SelectObject(s.Dc(), GetStockObject(NULL_BRUSH));
        Ellipse(s.Dc(), r.Left, r.Top, r.Right, r.Bottom);
        EXPECT_EQ(s.InkBox(), r) << Name(r);
        ExpectMirrored(s, r, "outline " + Name(r));
    }
}

TEST(GdiEllipseExtent, FillWithNullPenReachesTheBoxOnePixelSmaller) {
    for (const TRect& r : Boxes()) {
        TSurface s(72, 72);
        SelectObject(s.Dc(), GetStockObject(NULL_PEN));
        SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
        Ellipse(s.Dc(), r.Left, r.Top, r.Right + 1, r.Bottom + 1);
        EXPECT_EQ(s.InkBox(), r) << Name(r);
        ExpectMirrored(s, r, "fill " + Name(r));
    }
}

TEST(GdiEllipseExtent, EllipticRegionHasTheBoxAndThePixelsOfTheNullPenFill) {
    for (const TRect& r : Boxes()) {
        HRGN region = CreateEllipticRgn(r.Left, r.Top, r.Right, r.Bottom);
        TRect box;
        GetRgnBox(region, &box);
        EXPECT_EQ(box, r) << Name(r);
        TSurface s(72, 72);
        SelectObject(s.Dc(), GetStockObject(NULL_PEN));
        SelectObject(s.Dc(), GetStockObject(BLACK_BRUSH));
        Ellipse(s.Dc(), r.Left, r.Top, r.Right + 1, r.Bottom + 1);
        for (int y = 0; y < 72; ++y)
            for (int x = 0; x < 72; ++x)
                EXPECT_EQ(PtInRegion(region, x, y), s.Pixel(x, y) == 0u)
                    << Name(r) << " at " << x << "," << y;
        DeleteObject(region);
    }
}

TEST(GdiEllipseExtent, TinyEllipsesFillTheirWholeBox) {
    TSurface one(3, 3);
    Ellipse(one.Dc(), 1, 1, 2, 2);
    EXPECT_EQ(one.Dump(), Rows({"...", ".#.", "..."}));
    TSurface two(4, 4);
    Ellipse(two.Dc(), 1, 1, 3, 3);
    EXPECT_EQ(two.Dump(), Rows({"....", ".##.", ".##.", "...."}));
    TSurface wide(5, 3);
    Ellipse(wide.Dc(), 1, 1, 4, 2);
    EXPECT_EQ(wide.Dump(), Rows({".....", ".###.", "....."}));
    TSurface tall(3, 5);
    Ellipse(tall.Dc(), 1, 1, 2, 4);
    EXPECT_EQ(tall.Dump(), Rows({"...", ".#.", ".#.", ".#.", "..."}));
}

TEST(GdiEllipseExtent, TwoPixelHighEllipseIsTwoFullRows) {
    TSurface s(22, 4);
    SelectObject(s.Dc(), GetStockObject(NULL_BRUSH));
    Ellipse(s.Dc(), 1, 1, 21, 3);
    EXPECT_EQ(s.Dump(), Rows({"......................", ".####################.", ".####################.",
                              "......................"}));
}

TEST(GdiEllipseExtent, CircleRowsMirrorItsColumns) {
    for (int size : {2, 3, 5, 8, 13, 20, 33}) {
        TSurface s(40, 40);
        SelectObject(s.Dc(), GetStockObject(NULL_BRUSH));
        Ellipse(s.Dc(), 1, 1, 1 + size, 1 + size);
        EXPECT_EQ(s.InkBox(), (TRect{1, 1, 1 + size, 1 + size})) << size;
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x)
                EXPECT_EQ(s.Pixel(x, y), s.Pixel(y, x)) << size << " at " << x << "," << y;
    }
}

TEST(GdiEllipseExtent, RoundRectWithFlatCornersReachesEverySide) {
    TSurface s(64, 6);
    RoundRect(s.Dc(), 0, 0, 60, 4, 40, 4);
    EXPECT_EQ(s.InkBox(), (TRect{0, 0, 60, 4}));
    ExpectMirrored(s, {0, 0, 60, 4}, "round rect");
    HRGN region = CreateRoundRectRgn(0, 0, 60, 4, 40, 4);
    TRect box;
    GetRgnBox(region, &box);
    EXPECT_EQ(box, (TRect{0, 0, 60, 4}));
    EXPECT_TRUE(PtInRegion(region, 0, 1));
    EXPECT_TRUE(PtInRegion(region, 59, 2));
    DeleteObject(region);
}

} // namespace
} // namespace vl
