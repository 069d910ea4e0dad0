#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <random>

namespace vl {
namespace {

using test::TSurface;

// Pen and destination as 24-bit colours; the platform's definitions of the sixteen modes.
struct TRopCase {
    int Mode;
    const char* Name;
    std::function<std::uint32_t(std::uint32_t pen, std::uint32_t dst)> Expected;
};

const COLORREF PenColor = RGB(0x33, 0x66, 0x99);
const COLORREF DstColor = RGB(0xF0, 0x0F, 0x5A);

std::vector<TRopCase> RopCases() {
    return {
        {R2_BLACK, "Black", [](std::uint32_t, std::uint32_t) { return 0u; }},
        {R2_NOTMERGEPEN, "NotMergePen", [](std::uint32_t p, std::uint32_t d) { return ~(p | d); }},
        {R2_MASKNOTPEN, "MaskNotPen", [](std::uint32_t p, std::uint32_t d) { return ~p & d; }},
        {R2_NOTCOPYPEN, "NotCopyPen", [](std::uint32_t p, std::uint32_t) { return ~p; }},
        {R2_MASKPENNOT, "MaskPenNot", [](std::uint32_t p, std::uint32_t d) { return p & ~d; }},
        {R2_NOT, "Not", [](std::uint32_t, std::uint32_t d) { return ~d; }},
        {R2_XORPEN, "XorPen", [](std::uint32_t p, std::uint32_t d) { return p ^ d; }},
        {R2_NOTMASKPEN, "NotMaskPen", [](std::uint32_t p, std::uint32_t d) { return ~(p & d); }},
        {R2_MASKPEN, "MaskPen", [](std::uint32_t p, std::uint32_t d) { return p & d; }},
        {R2_NOTXORPEN, "NotXorPen", [](std::uint32_t p, std::uint32_t d) { return ~(p ^ d); }},
        {R2_NOP, "Nop", [](std::uint32_t, std::uint32_t d) { return d; }},
        {R2_MERGENOTPEN, "MergeNotPen", [](std::uint32_t p, std::uint32_t d) { return ~p | d; }},
        {R2_COPYPEN, "CopyPen", [](std::uint32_t p, std::uint32_t) { return p; }},
        {R2_MERGEPENNOT, "MergePenNot", [](std::uint32_t p, std::uint32_t d) { return p | ~d; }},
        {R2_MERGEPEN, "MergePen", [](std::uint32_t p, std::uint32_t d) { return p | d; }},
        {R2_WHITE, "White", [](std::uint32_t, std::uint32_t) { return 0xFFFFFFu; }},
    };
}

void PrintTo(const TRopCase& c, std::ostream* os) {
    *os << c.Name << " (mode " << c.Mode << ")";
}

class GdiRopModes : public ::testing::TestWithParam<TRopCase> {};

TEST_P(GdiRopModes, AppliesToPenOutput) {
    const TRopCase c = GetParam();
    TSurface s(6, 3, DstColor);
    HPEN pen = CreatePen(PS_SOLID, 1, PenColor);
    SelectObject(s.Dc(), pen);
    EXPECT_NE(SetROP2(s.Dc(), c.Mode), 0);
    EXPECT_EQ(GetROP2(s.Dc()), c.Mode);
    MoveToEx(s.Dc(), 1, 1);
    LineTo(s.Dc(), 5, 1);
    EXPECT_EQ(s.Pixel(2, 1), c.Expected(PenColor, DstColor) & 0xFFFFFFu);
    EXPECT_EQ(s.Pixel(5, 1), DstColor);
    EXPECT_EQ(s.Pixel(2, 0), DstColor);
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

TEST_P(GdiRopModes, AppliesToBrushOutput) {
    const TRopCase c = GetParam();
    TSurface s(6, 6, DstColor);
    HBRUSH brush = CreateSolidBrush(PenColor);
    SelectObject(s.Dc(), brush);
    SelectObject(s.Dc(), GetStockObject(NULL_PEN));
    SetROP2(s.Dc(), c.Mode);
    Rectangle(s.Dc(), 1, 1, 5, 5);
    EXPECT_EQ(s.Pixel(2, 2), c.Expected(PenColor, DstColor) & 0xFFFFFFu);
    EXPECT_EQ(s.Pixel(4, 4), DstColor);
    SelectObject(s.Dc(), GetStockObject(WHITE_BRUSH));
    DeleteObject(brush);
}

TEST_P(GdiRopModes, AppliesToWidePens) {
    const TRopCase c = GetParam();
    TSurface s(12, 12, DstColor);
    HPEN pen = CreatePen(PS_SOLID, 3, PenColor);
    SelectObject(s.Dc(), pen);
    SetROP2(s.Dc(), c.Mode);
    MoveToEx(s.Dc(), 2, 6);
    LineTo(s.Dc(), 10, 6);
    EXPECT_EQ(s.Pixel(6, 6), c.Expected(PenColor, DstColor) & 0xFFFFFFu);
    EXPECT_EQ(s.Pixel(6, 5), c.Expected(PenColor, DstColor) & 0xFFFFFFu);
    EXPECT_EQ(s.Pixel(6, 9), DstColor);
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    DeleteObject(pen);
}

INSTANTIATE_TEST_SUITE_P(Gdi, GdiRopModes, ::testing::ValuesIn(RopCases()),
                         [](const ::testing::TestParamInfo<TRopCase>& info) {
                             return std::string(info.param.Name);
                         });

TEST(GdiRop, InvalidModeIsRefused) {
    TSurface s(2, 2);
    EXPECT_EQ(SetROP2(s.Dc(), 0), 0);
    EXPECT_EQ(SetROP2(s.Dc(), 17), 0);
    EXPECT_EQ(GetROP2(s.Dc()), R2_COPYPEN);
}

void DrawScene(HDC dc) {
    const TPoint star[5] = {{30, 2}, {46, 58}, {2, 20}, {58, 20}, {14, 58}};
    Polygon(dc, star, 5);
    Ellipse(dc, 5, 5, 40, 33);
    RoundRect(dc, 20, 15, 55, 50, 12, 10);
    Rectangle(dc, 3, 40, 28, 59);
    const TPoint zig[6] = {{0, 0}, {59, 10}, {0, 20}, {59, 30}, {0, 40}, {59, 59}};
    Polyline(dc, zig, 6);
    MoveToEx(dc, 59, 0);
    LineTo(dc, 0, 59);
    LineTo(dc, 30, 30);
}

TEST(GdiRop, DrawingTheSameShapesTwiceWithTheNotXorPenRestoresEveryPixel) {
    TSurface s(60, 60);
    std::mt19937 random(7);
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 60; ++x) s.Image().setPixel(x, y, 0xFF000000u | (random() & 0xFFFFFFu));
    const QImage before = s.Image().copy();
    HPEN pen = CreatePen(PS_SOLID, 1, RGB(0x12, 0x34, 0x56));
    HBRUSH brush = CreateSolidBrush(RGB(0xAB, 0xCD, 0xEF));
    SelectObject(s.Dc(), pen);
    SelectObject(s.Dc(), brush);
    SetROP2(s.Dc(), R2_NOTXORPEN);
    DrawScene(s.Dc());
    EXPECT_NE(s.Image(), before);
    DrawScene(s.Dc());
    EXPECT_EQ(s.Image(), before);
    // And with a wide pen and a dotted one.
    HPEN wide = CreatePen(PS_SOLID, 4, RGB(0x40, 0x80, 0xC0));
    SelectObject(s.Dc(), wide);
    DrawScene(s.Dc());
    DrawScene(s.Dc());
    EXPECT_EQ(s.Image(), before);
    HPEN dotted = CreatePen(PS_DOT, 1, 0);
    SelectObject(s.Dc(), dotted);
    DrawScene(s.Dc());
    DrawScene(s.Dc());
    EXPECT_EQ(s.Image(), before);
    SelectObject(s.Dc(), GetStockObject(BLACK_PEN));
    SelectObject(s.Dc(), GetStockObject(WHITE_BRUSH));
    DeleteObject(pen);
    DeleteObject(wide);
    DeleteObject(dotted);
    DeleteObject(brush);
}

TEST(GdiRop, NopDrawsNothing) {
    TSurface s(60, 60);
    SetROP2(s.Dc(), R2_NOP);
    DrawScene(s.Dc());
    EXPECT_EQ(s.CountPixels(test::Grey), 3600);
    EXPECT_EQ(GetDrawnBoundsDev(s.Dc(), false), TRect{});
}

TEST(GdiRop, TextIsNotAffectedByTheRasterMode) {
    TSurface s(60, 30, RGB(255, 255, 255));
    SetROP2(s.Dc(), R2_NOT);
    SetBkMode(s.Dc(), OPAQUE);
    SetBkColor(s.Dc(), RGB(255, 255, 255));
    TextOutW(s.Dc(), 2, 2, u"Hi", 2);
    // Inverting would have turned the white cell black.
    EXPECT_GT(s.CountPixels(RGB(255, 255, 255)), 1200);
    EXPECT_GT(s.CountPixels(0), 10);
}

} // namespace
} // namespace vl
