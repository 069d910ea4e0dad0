#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

using test::TSurface;

void ScaleTwoFlipped(HDC dc, int height) {
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 1, 1);
    SetViewportExtEx(dc, 2, -2);
    SetViewportOrgEx(dc, 0, height);
}

void FillAll(HDC dc) {
    const TRect all{-100000, -100000, 100000, 100000};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

TEST(GdiClip, ClipBoxWithoutRegionIsTheDeviceInLogicalUnits) {
    TSurface s(20, 10);
    TRect box;
    EXPECT_EQ(GetClipBox(s.Dc(), &box), SIMPLEREGION);
    EXPECT_EQ(box, (TRect{0, 0, 20, 10}));
    ScaleTwoFlipped(s.Dc(), 10);
    GetClipBox(s.Dc(), &box);
    EXPECT_EQ(box, (TRect{0, 0, 10, 5}));
    SetWindowOrgEx(s.Dc(), 100, 200);
    GetClipBox(s.Dc(), &box);
    EXPECT_EQ(box, (TRect{100, 200, 110, 205}));
}

TEST(GdiClip, SelectClipRgnTakesDeviceUnitsAndClipBoxAnswersLogical) {
    TSurface s(20, 20);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 2, 2);
    HRGN r = CreateRectRgn(2, 4, 6, 10);
    EXPECT_EQ(SelectClipRgn(s.Dc(), r), SIMPLEREGION);
    DeleteObject(r); // the context keeps its own copy
    FillAll(s.Dc());
    EXPECT_EQ(s.InkBox(), (TRect{2, 4, 6, 10}));
    EXPECT_EQ(s.CountPixels(0), 24);
    TRect box;
    EXPECT_EQ(GetClipBox(s.Dc(), &box), SIMPLEREGION);
    EXPECT_EQ(box, (TRect{1, 2, 3, 5}));
}

TEST(GdiClip, IntersectClipRectTakesLogicalUnits) {
    TSurface s(20, 20);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 2, 2);
    EXPECT_EQ(IntersectClipRect(s.Dc(), 1, 1, 3, 4), SIMPLEREGION);
    FillAll(s.Dc());
    EXPECT_EQ(s.InkBox(), (TRect{2, 2, 6, 8}));
    EXPECT_EQ(IntersectClipRect(s.Dc(), 2, 0, 10, 10), SIMPLEREGION);
    TRect box;
    GetClipBox(s.Dc(), &box);
    EXPECT_EQ(box, (TRect{2, 1, 3, 4}));
    EXPECT_EQ(IntersectClipRect(s.Dc(), 50, 50, 60, 60), NULLREGION);
    EXPECT_EQ(GetClipBox(s.Dc(), &box), NULLREGION);
}

TEST(GdiClip, ClipBoxIsNormalisedOnFlippedAxes) {
    TSurface s(20, 20);
    ScaleTwoFlipped(s.Dc(), 20);
    IntersectClipRect(s.Dc(), 1, 1, 3, 4); // device x 2..6, y 18..12
    TRect box;
    GetClipBox(s.Dc(), &box);
    EXPECT_EQ(box, (TRect{1, 1, 3, 4}));
    FillAll(s.Dc());
    EXPECT_EQ(s.InkBox(), (TRect{2, 12, 6, 18}));
}

TEST(GdiClip, ExcludeClipRectCutsAHole) {
    TSurface s(10, 10);
    EXPECT_EQ(ExcludeClipRect(s.Dc(), 2, 2, 5, 5), COMPLEXREGION);
    FillAll(s.Dc());
    EXPECT_EQ(s.CountPixels(test::Grey), 9);
    EXPECT_EQ(s.Pixel(2, 2), test::Grey);
    EXPECT_EQ(s.Pixel(5, 5), 0u);
}

TEST(GdiClip, EllipticClipLetsExactlyTheRegionPixelsThrough) {
    TSurface s(20, 16);
    HRGN r = CreateEllipticRgn(1, 2, 18, 15);
    EXPECT_EQ(SelectClipRgn(s.Dc(), r), COMPLEXREGION);
    FillAll(s.Dc());
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 20; ++x) EXPECT_EQ(s.Pixel(x, y) == 0u, PtInRegion(r, x, y)) << x << "," << y;
    EXPECT_TRUE(PtVisible(s.Dc(), 9, 8));
    EXPECT_FALSE(PtVisible(s.Dc(), 1, 2));
    const TRect corner{0, 0, 2, 2};
    EXPECT_FALSE(RectVisible(s.Dc(), &corner));
    DeleteObject(r);
}

TEST(GdiClip, ClipAppliesToLinesAndText) {
    TSurface s(40, 20, RGB(255, 255, 255));
    IntersectClipRect(s.Dc(), 0, 0, 10, 20);
    MoveToEx(s.Dc(), 0, 5);
    LineTo(s.Dc(), 40, 5);
    SetBkMode(s.Dc(), OPAQUE);
    SetBkColor(s.Dc(), test::Red);
    TextOutW(s.Dc(), 0, 8, u"MMMMMM", 6);
    const TRect ink = s.InkBox(RGB(255, 255, 255));
    EXPECT_EQ(ink.Left, 0);
    EXPECT_EQ(ink.Right, 10);
}

TEST(GdiClip, SelectingNullRemovesTheClip) {
    TSurface s(10, 10);
    IntersectClipRect(s.Dc(), 0, 0, 2, 2);
    HRGN none = nullptr;
    SelectClipRgn(s.Dc(), none);
    FillAll(s.Dc());
    EXPECT_EQ(s.CountPixels(0), 100);
}

TEST(GdiClip, GetClipRgnCopiesTheClipRegion) {
    TSurface s(10, 10);
    HRGN copy = CreateRectRgn(0, 0, 0, 0);
    EXPECT_EQ(GetClipRgn(s.Dc(), copy), 0);
    IntersectClipRect(s.Dc(), 1, 1, 4, 4);
    EXPECT_EQ(GetClipRgn(s.Dc(), copy), 1);
    EXPECT_TRUE(PtInRegion(copy, 3, 3));
    EXPECT_FALSE(PtInRegion(copy, 4, 4));
    DeleteObject(copy);
}

TEST(GdiClip, ExtSelectClipRgnCombinesWithTheCurrentClip) {
    TSurface s(10, 10);
    IntersectClipRect(s.Dc(), 0, 0, 6, 6);
    HRGN r = CreateRectRgn(4, 4, 10, 10);
    EXPECT_EQ(ExtSelectClipRgn(s.Dc(), r, RGN_AND), SIMPLEREGION);
    TRect box;
    GetClipBox(s.Dc(), &box);
    EXPECT_EQ(box, (TRect{4, 4, 6, 6}));
    EXPECT_EQ(ExtSelectClipRgn(s.Dc(), r, RGN_OR), SIMPLEREGION);
    GetClipBox(s.Dc(), &box);
    EXPECT_EQ(box, (TRect{4, 4, 10, 10}));
    DeleteObject(r);
}

TEST(GdiClip, OffsetClipRgnMovesInLogicalUnits) {
    TSurface s(20, 20);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 2, 2);
    IntersectClipRect(s.Dc(), 0, 0, 2, 2);
    OffsetClipRgn(s.Dc(), 3, 1);
    TRect box;
    GetClipBox(s.Dc(), &box);
    EXPECT_EQ(box, (TRect{3, 1, 5, 3}));
}

} // namespace
} // namespace vl
