#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <ios>
#include <ostream>

namespace vl {
namespace {

using test::TSurface;

const COLORREF Src = RGB(0x33, 0x66, 0x99);
const COLORREF Dst = RGB(0xF0, 0x0F, 0x5A);

struct TBltCase {
    std::uint32_t Rop;
    const char* Name;
    std::function<std::uint32_t(std::uint32_t s, std::uint32_t d)> Expected;
};

void PrintTo(const TBltCase& c, std::ostream* os) {
    *os << c.Name << " (code 0x" << std::hex << std::uppercase << c.Rop << std::dec << ")";
}

class GdiBltCodes : public ::testing::TestWithParam<TBltCase> {};

TEST_P(GdiBltCodes, CombineSourceAndDestination) {
    const TBltCase c = GetParam();
    TSurface source(4, 4, Src);
    TSurface dest(6, 6, Dst);
    SetROP2(dest.Dc(), R2_NOT); // the pen's raster mode plays no part in block transfers
    ASSERT_TRUE(BitBlt(dest.Dc(), 1, 1, 3, 3, source.Dc(), 0, 0, c.Rop));
    EXPECT_EQ(dest.Pixel(1, 1), c.Expected(Src, Dst) & 0xFFFFFFu);
    EXPECT_EQ(dest.Pixel(3, 3), c.Expected(Src, Dst) & 0xFFFFFFu);
    EXPECT_EQ(dest.Pixel(4, 4), Dst);
    EXPECT_EQ(dest.Pixel(0, 0), Dst);
    EXPECT_EQ(GetDrawnBoundsDev(dest.Dc(), false), (TRect{1, 1, 4, 4}));
}

INSTANTIATE_TEST_SUITE_P(
    Gdi, GdiBltCodes,
    ::testing::Values(
        TBltCase{SRCCOPY, "SrcCopy", [](std::uint32_t s, std::uint32_t) { return s; }},
        TBltCase{SRCAND, "SrcAnd", [](std::uint32_t s, std::uint32_t d) { return s & d; }},
        TBltCase{SRCINVERT, "SrcInvert", [](std::uint32_t s, std::uint32_t d) { return s ^ d; }},
        TBltCase{SRCPAINT, "SrcPaint", [](std::uint32_t s, std::uint32_t d) { return s | d; }},
        TBltCase{NOTSRCCOPY, "NotSrcCopy", [](std::uint32_t s, std::uint32_t) { return ~s; }},
        TBltCase{SRCERASE, "SrcErase", [](std::uint32_t s, std::uint32_t d) { return s & ~d; }},
        TBltCase{MERGEPAINT, "MergePaint", [](std::uint32_t s, std::uint32_t d) { return ~s | d; }},
        TBltCase{DSTINVERT, "DstInvert", [](std::uint32_t, std::uint32_t d) { return ~d; }},
        TBltCase{NOTSRCERASE, "NotSrcErase", [](std::uint32_t s, std::uint32_t d) { return ~(s | d); }},
        TBltCase{BLACKNESS, "Blackness", [](std::uint32_t, std::uint32_t) { return 0u; }},
        TBltCase{WHITENESS, "Whiteness", [](std::uint32_t, std::uint32_t) { return 0xFFFFFFu; }}),
    [](const ::testing::TestParamInfo<TBltCase>& info) { return std::string(info.param.Name); });

TEST(GdiBlt, RectanglesAreInTheLogicalUnitsOfEachContext) {
    TSurface source(10, 10, RGB(255, 255, 255));
    SetPixel(source.Dc(), 3, 4, test::Red);
    SetWindowOrgEx(source.Dc(), -2, -2); // logical (1, 2) is device (3, 4)
    TSurface dest(10, 10);
    SetViewportOrgEx(dest.Dc(), 4, 0); // logical (0, 0) is device (4, 0)
    BitBlt(dest.Dc(), 0, 0, 3, 3, source.Dc(), 0, 1, SRCCOPY);
    EXPECT_EQ(dest.Pixel(5, 1), test::Red);
    EXPECT_EQ(dest.InkBox(), (TRect{4, 0, 7, 3}));
}

TEST(GdiBlt, TransparentPrintingSequenceKeepsTheBackgroundWhereTheMaskIsWhite) {
    // The mask (white where transparent) ANDed in, then the source with black at the transparent
    // pixels XORed in: the destination shows through exactly there.
    TSurface dest(2, 1, test::Blue);
    TSurface mask(2, 1, RGB(0, 0, 0));
    SetPixel(mask.Dc(), 1, 0, RGB(255, 255, 255));
    TSurface image(2, 1, test::Red);
    TSurface work(2, 1);
    BitBlt(work.Dc(), 0, 0, 2, 1, mask.Dc(), 0, 0, SRCCOPY);
    BitBlt(work.Dc(), 0, 0, 2, 1, image.Dc(), 0, 0, SRCERASE); // image & ~mask
    BitBlt(dest.Dc(), 0, 0, 2, 1, mask.Dc(), 0, 0, SRCAND);
    BitBlt(dest.Dc(), 0, 0, 2, 1, work.Dc(), 0, 0, SRCINVERT);
    EXPECT_EQ(dest.Pixel(0, 0), test::Red);
    EXPECT_EQ(dest.Pixel(1, 0), test::Blue);
}

TEST(GdiBlt, OverlappingCopyWithinOneContextIsExact) {
    TSurface s(6, 1, RGB(255, 255, 255));
    for (int x = 0; x < 6; ++x) SetPixel(s.Dc(), x, 0, RGB(std::uint8_t(x * 10), 0, 0));
    BitBlt(s.Dc(), 1, 0, 5, 1, s.Dc(), 0, 0, SRCCOPY);
    for (int x = 1; x < 6; ++x) EXPECT_EQ(s.Pixel(x, 0), RGB(std::uint8_t((x - 1) * 10), 0, 0)) << x;
}

TEST(GdiBlt, StretchBltScalesAndMirrors) {
    TSurface source(2, 1, RGB(255, 255, 255));
    SetPixel(source.Dc(), 0, 0, test::Red);
    SetPixel(source.Dc(), 1, 0, test::Blue);
    TSurface dest(4, 2);
    StretchBlt(dest.Dc(), 0, 0, 4, 2, source.Dc(), 0, 0, 2, 1, SRCCOPY);
    EXPECT_EQ(dest.Dump(), test::Rows({"rrbb", "rrbb"}));
    StretchBlt(dest.Dc(), 4, 0, -4, 1, source.Dc(), 0, 0, 2, 1, SRCCOPY);
    EXPECT_EQ(dest.Dump(), test::Rows({"bbrr", "rrbb"}));
}

TEST(GdiBlt, BltIsClipped) {
    TSurface source(4, 4, test::Red);
    TSurface dest(4, 4);
    IntersectClipRect(dest.Dc(), 0, 0, 2, 4);
    BitBlt(dest.Dc(), 0, 0, 4, 4, source.Dc(), 0, 0, SRCCOPY);
    EXPECT_EQ(dest.InkBox(), (TRect{0, 0, 2, 4}));
}

TEST(GdiBlt, PatBltFillsWithTheBrush) {
    TSurface s(4, 4);
    HBRUSH brush = CreateSolidBrush(test::Blue);
    SelectObject(s.Dc(), brush);
    EXPECT_TRUE(PatBlt(s.Dc(), 1, 1, 2, 2, PATCOPY));
    EXPECT_EQ(s.Dump(), test::Rows({"....", ".bb.", ".bb.", "...."}));
    EXPECT_FALSE(PatBlt(s.Dc(), 0, 0, 1, 1, SRCCOPY));
    SelectObject(s.Dc(), GetStockObject(WHITE_BRUSH));
    DeleteObject(brush);
}

TEST(GdiBlt, MissingSourceIsRefused) {
    TSurface dest(4, 4);
    EXPECT_FALSE(BitBlt(dest.Dc(), 0, 0, 2, 2, nullptr, 0, 0, SRCCOPY));
    EXPECT_TRUE(BitBlt(dest.Dc(), 0, 0, 2, 2, nullptr, 0, 0, DSTINVERT));
    EXPECT_EQ(dest.Pixel(0, 0), RGB(0x7F, 0x7F, 0x7F));
}

// --- device-independent bitmaps ----------------------------------------------------------------

BITMAPINFO Info(int width, int height, int bits) {
    BITMAPINFO info;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biBitCount = std::uint16_t(bits);
    return info;
}

TEST(GdiBlt, StretchDibitsReadsBottomUpTwentyFourBitRows) {
    // 2 x 2, rows padded to 8 bytes; the first row in memory is the bottom one.
    const std::uint8_t bits[16] = {0, 0, 255, 255, 0,   0,   0, 0,  // bottom: red, blue
                                   0, 0, 0,   255, 255, 255, 0, 0}; // top: black, white
    const BITMAPINFO info = Info(2, 2, 24);
    TSurface s(2, 2);
    EXPECT_EQ(StretchDIBits(s.Dc(), 0, 0, 2, 2, 0, 0, 2, 2, bits, &info, DIB_RGB_COLORS, SRCCOPY), 2);
    EXPECT_EQ(s.Dump(), test::Rows({"#w", "rb"}));
}

TEST(GdiBlt, StretchDibitsReadsTopDownThirtyTwoBitRows) {
    const std::uint8_t bits[16] = {0, 0, 255, 0, 255, 0,   0,   0,  // top: red, blue
                                   0, 0, 0,   0, 255, 255, 255, 0}; // bottom: black, white
    const BITMAPINFO info = Info(2, -2, 32);
    TSurface s(2, 2);
    StretchDIBits(s.Dc(), 0, 0, 2, 2, 0, 0, 2, 2, bits, &info, DIB_RGB_COLORS, SRCCOPY);
    EXPECT_EQ(s.Dump(), test::Rows({"rb", "#w"}));
}

TEST(GdiBlt, StretchDibitsReadsPalettedBitmaps) {
    BITMAPINFO info = Info(3, -1, 8);
    info.bmiHeader.biClrUsed = 2;
    info.bmiColors[0] = {0, 0, 255, 0}; // red
    info.bmiColors[1] = {255, 0, 0, 0}; // blue
    const std::uint8_t bits8[4] = {1, 0, 1, 0};
    TSurface s(3, 1);
    StretchDIBits(s.Dc(), 0, 0, 3, 1, 0, 0, 3, 1, bits8, &info, DIB_RGB_COLORS, SRCCOPY);
    EXPECT_EQ(s.Dump(), "brb");
    BITMAPINFO mono = Info(3, 1, 1);
    mono.bmiColors[0] = {0, 0, 0, 0};
    mono.bmiColors[1] = {255, 255, 255, 0};
    const std::uint8_t bits1[4] = {0xA0, 0, 0, 0}; // 1 0 1
    StretchDIBits(s.Dc(), 0, 0, 3, 1, 0, 0, 3, 1, bits1, &mono, DIB_RGB_COLORS, SRCCOPY);
    EXPECT_EQ(s.Dump(), "w#w");
    BITMAPINFO four = Info(3, 1, 4);
    four.bmiHeader.biClrUsed = 3;
    four.bmiColors[2] = {255, 0, 0, 0};
    four.bmiColors[1] = {0, 0, 255, 0};
    const std::uint8_t bits4[4] = {0x21, 0x20, 0, 0}; // 2 1 2
    StretchDIBits(s.Dc(), 0, 0, 3, 1, 0, 0, 3, 1, bits4, &four, DIB_RGB_COLORS, SRCCOPY);
    EXPECT_EQ(s.Dump(), "brb");
}

TEST(GdiBlt, StretchDibitsMirrorsOnANegativeDestinationExtentAndScales) {
    const std::uint8_t bits[8] = {0, 0, 255, 255, 0, 0, 0, 0}; // red, blue
    const BITMAPINFO info = Info(2, 1, 24);
    TSurface s(4, 2);
    StretchDIBits(s.Dc(), 4, 0, -4, 2, 0, 0, 2, 1, bits, &info, DIB_RGB_COLORS, SRCCOPY);
    EXPECT_EQ(s.Dump(), test::Rows({"bbrr", "bbrr"}));
}

TEST(GdiBlt, StretchDibitsMirrorsThroughAFlippedMapping) {
    const std::uint8_t bits[8] = {0, 0, 255, 255, 0, 0, 0, 0}; // red, blue
    const BITMAPINFO info = Info(2, 1, 24);
    TSurface s(2, 1);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetViewportExtEx(s.Dc(), -1, 1);
    SetViewportOrgEx(s.Dc(), 2, 0);
    StretchDIBits(s.Dc(), 0, 0, 2, 1, 0, 0, 2, 1, bits, &info, DIB_RGB_COLORS, SRCCOPY);
    EXPECT_EQ(s.Dump(), "br");
}

TEST(GdiBlt, StretchDibitsAppliesItsRasterCode) {
    const std::uint8_t bits[4] = {0xFF, 0x00, 0x00, 0}; // one blue pixel
    const BITMAPINFO info = Info(1, 1, 24);
    TSurface s(1, 1, test::Red);
    StretchDIBits(s.Dc(), 0, 0, 1, 1, 0, 0, 1, 1, bits, &info, DIB_RGB_COLORS, SRCPAINT);
    EXPECT_EQ(s.Pixel(0, 0), RGB(255, 0, 255));
}

TEST(GdiBlt, StretchDibitsRefusesBadInput) {
    const std::uint8_t bits[4] = {};
    TSurface s(1, 1);
    BITMAPINFO bad = Info(0, 1, 24);
    EXPECT_EQ(StretchDIBits(s.Dc(), 0, 0, 1, 1, 0, 0, 1, 1, bits, &bad, DIB_RGB_COLORS, SRCCOPY), 0);
    BITMAPINFO odd = Info(1, 1, 7);
    EXPECT_EQ(StretchDIBits(s.Dc(), 0, 0, 1, 1, 0, 0, 1, 1, bits, &odd, DIB_RGB_COLORS, SRCCOPY), 0);
    BITMAPINFO rle = Info(1, 1, 8);
    rle.bmiHeader.biCompression = 1;
    EXPECT_EQ(StretchDIBits(s.Dc(), 0, 0, 1, 1, 0, 0, 1, 1, bits, &rle, DIB_RGB_COLORS, SRCCOPY), 0);
    EXPECT_EQ(StretchDIBits(s.Dc(), 0, 0, 1, 1, 0, 0, 1, 1, nullptr, &odd, DIB_RGB_COLORS, SRCCOPY), 0);
}

TEST(GdiBlt, DibInfoOfDescribesTheImageAsATopDownThirtyTwoBitBitmap) {
    const QImage image(5, 3, QImage::Format_RGB32);
    const BITMAPINFO info = DibInfoOf(image);
    EXPECT_EQ(info.bmiHeader.biSize, 40u);
    EXPECT_EQ(info.bmiHeader.biWidth, 5);
    EXPECT_EQ(info.bmiHeader.biHeight, -3);
    EXPECT_EQ(info.bmiHeader.biBitCount, 32);
    EXPECT_EQ(info.bmiHeader.biCompression, BI_RGB);
    EXPECT_EQ(info.bmiHeader.biSizeImage, 5u * 3u * 4u);
}

TEST(GdiBlt, StretchDibitsOfAnImageCopiesItsColoursWhateverItsFormat) {
    // ARGB32 with a fully transparent pixel: its colour is copied all the same.
    QImage argb(2, 1, QImage::Format_ARGB32);
    argb.setPixel(0, 0, qRgba(255, 0, 0, 0));
    argb.setPixel(1, 0, qRgba(0, 0, 255, 255));
    TSurface s(6, 2);
    EXPECT_EQ(StretchDIBitsOf(s.Dc(), 0, 0, 4, 1, argb, SRCCOPY), 1);
    // A paletted image, converted first; its raster code applies (white AND keeps the destination).
    QImage indexed(2, 1, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    indexed.setPixel(0, 0, 1);
    indexed.setPixel(1, 0, 0);
    EXPECT_EQ(StretchDIBitsOf(s.Dc(), 0, 1, 2, 1, indexed, SRCAND), 1);
    EXPECT_EQ(s.Dump(), test::Rows({"rrbb..", ".#...."}));
    EXPECT_EQ(StretchDIBitsOf(s.Dc(), 0, 0, 2, 1, QImage(), SRCCOPY), 0);
}

} // namespace
} // namespace vl
