// Colours, pens, brushes and fonts of the framework's drawing classes.
#include "platform/graphics/Graphics.h"

#include <gtest/gtest.h>

#include <QColor>

#include <cstdint>
#include <iomanip>
#include <ios>
#include <ostream>
#include <string>

namespace vl {
namespace {

TEST(GfxColor, BasicColoursAreBlueGreenRed) {
    EXPECT_EQ(clRed, 0x0000FF);
    EXPECT_EQ(clLime, 0x00FF00);
    EXPECT_EQ(clBlue, 0xFF0000);
    EXPECT_EQ(clMaroon, 0x000080);
    EXPECT_EQ(clNavy, 0x800000);
    EXPECT_EQ(clOlive, 0x008080);
    EXPECT_EQ(clTeal, 0x808000);
    EXPECT_EQ(clSilver, 0xC0C0C0);
    EXPECT_EQ(clFuchsia, 0xFF00FF);
    EXPECT_EQ(clAqua, 0xFFFF00);
    EXPECT_EQ(clNone, 0x1FFFFFFF);
    EXPECT_EQ(clDefault, 0x20000000);
    EXPECT_EQ(static_cast<std::uint32_t>(clBtnFace), 0xFF00000Fu);
    EXPECT_EQ(static_cast<std::uint32_t>(clWindow), 0xFF000005u);
    EXPECT_EQ(static_cast<std::uint32_t>(clWindowText), 0xFF000008u);
    EXPECT_EQ(static_cast<std::uint32_t>(clInfoBk), 0xFF000018u);
    EXPECT_EQ(static_cast<std::uint32_t>(clMenuBar), 0xFF00001Eu);
}

struct SysColourCase {
    TColor Color;
    COLORREF Expected;
};

// "system colour 15 is 0xC0C0C0".
void PrintTo(const SysColourCase& c, std::ostream* os) {
    *os << "system colour " << (static_cast<std::uint32_t>(c.Color) & 0xFFFFFF) << " is 0x" << std::hex
        << std::uppercase << std::setw(6) << std::setfill('0') << c.Expected << std::dec;
}

// "SystemColour15".
std::string SysColourCaseName(const ::testing::TestParamInfo<SysColourCase>& Info) {
    return "SystemColour" + std::to_string(static_cast<std::uint32_t>(Info.param.Color) & 0xFFFFFF);
}

class GfxColorTable : public ::testing::TestWithParam<SysColourCase> {};

TEST_P(GfxColorTable, SystemColourResolvesThroughFixedClassicTable) {
    EXPECT_EQ(ColorToRGB(GetParam().Color), GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Classic, GfxColorTable,
    ::testing::Values(
        SysColourCase{clBtnFace, RGB(192, 192, 192)}, SysColourCase{clWindow, RGB(255, 255, 255)},
        SysColourCase{clWindowText, RGB(0, 0, 0)}, SysColourCase{clHighlight, RGB(0, 0, 128)},
        SysColourCase{clHighlightText, RGB(255, 255, 255)}, SysColourCase{clBtnShadow, RGB(128, 128, 128)},
        SysColourCase{clGrayText, RGB(128, 128, 128)}, SysColourCase{clBtnText, RGB(0, 0, 0)},
        SysColourCase{clBtnHighlight, RGB(255, 255, 255)}, SysColourCase{clInfoBk, RGB(255, 255, 225)},
        SysColourCase{clInfoText, RGB(0, 0, 0)}, SysColourCase{clActiveCaption, RGB(0, 0, 128)},
        SysColourCase{clBackground, RGB(0, 128, 128)}, SysColourCase{clScrollBar, RGB(192, 192, 192)},
        SysColourCase{clAppWorkSpace, RGB(128, 128, 128)}),
    SysColourCaseName);

TEST(GfxColor, PlainColourPassesUnchanged) {
    EXPECT_EQ(ColorToRGB(0x123456), 0x123456u);
    EXPECT_EQ(ColorToRGB(clNone), 0x1FFFFFFFu);
}

TEST(GfxColor, SystemIndexOutsideTableIsBlack) {
    EXPECT_EQ(ColorToRGB(static_cast<TColor>(0xFF000040u)), 0u);
    EXPECT_EQ(GetSysColor(31), 0u);
    EXPECT_EQ(GetSysColor(-1), 0u);
}

TEST(GfxColor, QColorConversionKeepsChannels) {
    EXPECT_EQ(ColorToQColor(clRed), QColor(255, 0, 0));
    EXPECT_EQ(ColorToQColor(clBtnFace), QColor(192, 192, 192));
    EXPECT_EQ(QColorToColor(QColor(1, 2, 3)), 0x030201);
}

TEST(GfxColor, PenModesMapToRasterCodes) {
    EXPECT_EQ(PenModeToROP2(pmBlack), R2_BLACK);
    EXPECT_EQ(PenModeToROP2(pmWhite), R2_WHITE);
    EXPECT_EQ(PenModeToROP2(pmNop), R2_NOP);
    EXPECT_EQ(PenModeToROP2(pmNot), R2_NOT);
    EXPECT_EQ(PenModeToROP2(pmCopy), R2_COPYPEN);
    EXPECT_EQ(PenModeToROP2(pmNotCopy), R2_NOTCOPYPEN);
    EXPECT_EQ(PenModeToROP2(pmMergePenNot), R2_MERGEPENNOT);
    EXPECT_EQ(PenModeToROP2(pmMaskPenNot), R2_MASKPENNOT);
    EXPECT_EQ(PenModeToROP2(pmMergeNotPen), R2_MERGENOTPEN);
    EXPECT_EQ(PenModeToROP2(pmMaskNotPen), R2_MASKNOTPEN);
    EXPECT_EQ(PenModeToROP2(pmMerge), R2_MERGEPEN);
    EXPECT_EQ(PenModeToROP2(pmNotMerge), R2_NOTMERGEPEN);
    EXPECT_EQ(PenModeToROP2(pmMask), R2_MASKPEN);
    EXPECT_EQ(PenModeToROP2(pmNotMask), R2_NOTMASKPEN);
    EXPECT_EQ(PenModeToROP2(pmXor), R2_XORPEN);
    EXPECT_EQ(PenModeToROP2(pmNotXor), R2_NOTXORPEN);
}

TEST(GfxColor, EnumerationsCarryFileValues) {
    EXPECT_EQ(static_cast<int>(psSolid), 0);
    EXPECT_EQ(static_cast<int>(psClear), 5);
    EXPECT_EQ(static_cast<int>(psInsideFrame), 6);
    EXPECT_EQ(static_cast<int>(pmCopy), 4);
    EXPECT_EQ(static_cast<int>(pmNotXor), 15);
    EXPECT_EQ(static_cast<int>(bsClear), 1);
    EXPECT_EQ(static_cast<int>(bsDiagCross), 7);
    EXPECT_EQ(static_cast<int>(fpFixed), 2);
    EXPECT_EQ((fsBold | fsStrikeOut).Bits(), 0x09);
    EXPECT_EQ(TFontStyles::FromBits(0xFF).Bits(), 0x0F);
    EXPECT_EQ(sizeof(TPenStyle), 1u);
    EXPECT_EQ(sizeof(TPenMode), 1u);
    EXPECT_EQ(sizeof(TBrushStyle), 1u);
    EXPECT_EQ(sizeof(TFontPitch), 1u);
}

// ---------------------------------------------------------------------------------------------

TEST(GfxPen, DefaultsAreBlackSolidCopyWidthOne) {
    TPen pen;
    EXPECT_EQ(pen.Color(), clBlack);
    EXPECT_EQ(pen.Width(), 1);
    EXPECT_EQ(pen.Style(), psSolid);
    EXPECT_EQ(pen.Mode(), pmCopy);
}

TEST(GfxPen, OnChangeFiresOncePerRealChange) {
    TPen pen;
    int changes = 0;
    TObject* sender = nullptr;
    pen.SetOnChange([&](TObject* s) {
        ++changes;
        sender = s;
    });
    pen.SetColor(clRed);
    pen.SetColor(clRed);
    pen.SetWidth(3);
    pen.SetWidth(3);
    pen.SetStyle(psDot);
    pen.SetMode(pmNotXor);
    pen.SetMode(pmNotXor);
    EXPECT_EQ(changes, 4);
    EXPECT_EQ(sender, &pen);
}

TEST(GfxPen, WidthBelowOneIsOne) {
    TPen pen;
    pen.SetWidth(0);
    EXPECT_EQ(pen.Width(), 1);
    pen.SetWidth(-4);
    EXPECT_EQ(pen.Width(), 1);
}

TEST(GfxPen, AssignCopiesAllAttributesWithOneChange) {
    TPen source;
    source.SetColor(clBlue);
    source.SetWidth(5);
    source.SetStyle(psDashDot);
    source.SetMode(pmXor);
    TPen pen;
    int changes = 0;
    pen.SetOnChange([&](TObject*) { ++changes; });
    pen.Assign(&source);
    EXPECT_EQ(pen.Color(), clBlue);
    EXPECT_EQ(pen.Width(), 5);
    EXPECT_EQ(pen.Style(), psDashDot);
    EXPECT_EQ(pen.Mode(), pmXor);
    EXPECT_EQ(changes, 1);
    pen.Assign(&source);
    EXPECT_EQ(changes, 1);
}

TEST(GfxPen, AssignFromOtherClassRaisesConvertError) {
    TPen pen;
    TBrush brush;
    EXPECT_THROW(pen.Assign(&brush), EConvertError);
    EXPECT_THROW(pen.Assign(nullptr), EConvertError);
}

TEST(GfxPen, HandleIsRecreatedAfterChange) {
    TPen pen;
    pen.SetColor(clRed);
    pen.SetWidth(2);
    HPEN first = pen.Handle();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(pen.Handle(), first);
    LOGPEN lp;
    ASSERT_TRUE(GetLogPen(first, &lp));
    EXPECT_EQ(lp.lopnColor, RGB(255, 0, 0));
    EXPECT_EQ(lp.lopnWidth.x, 2);
    pen.SetStyle(psDash);
    HPEN second = pen.Handle();
    ASSERT_TRUE(GetLogPen(second, &lp));
    EXPECT_EQ(lp.lopnStyle, PS_DASH);
    EXPECT_EQ(lp.lopnColor, RGB(255, 0, 0));
}

TEST(GfxPen, SystemColourReachesDeviceResolved) {
    TPen pen;
    pen.SetColor(clBtnShadow);
    LOGPEN lp;
    ASSERT_TRUE(GetLogPen(pen.Handle(), &lp));
    EXPECT_EQ(lp.lopnColor, RGB(128, 128, 128));
}

// ---------------------------------------------------------------------------------------------

TEST(GfxBrush, DefaultsAreWhiteSolid) {
    TBrush brush;
    EXPECT_EQ(brush.Color(), clWhite);
    EXPECT_EQ(brush.Style(), bsSolid);
}

TEST(GfxBrush, OnChangeAndAssign) {
    TBrush brush;
    int changes = 0;
    brush.SetOnChange([&](TObject*) { ++changes; });
    brush.SetColor(clGray);
    brush.SetColor(clGray);
    brush.SetStyle(bsClear);
    EXPECT_EQ(changes, 2);
    TBrush other;
    other.SetStyle(bsCross);
    other.SetColor(clRed);
    brush.Assign(&other);
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(brush.Color(), clRed);
    EXPECT_EQ(brush.Style(), bsCross);
    TFont font;
    EXPECT_THROW(brush.Assign(&font), EConvertError);
}

TEST(GfxBrush, StylesBecomeDeviceBrushes) {
    TBrush brush;
    brush.SetColor(clLime);
    LOGBRUSH lb;
    ASSERT_TRUE(GetLogBrush(brush.Handle(), &lb));
    EXPECT_EQ(lb.lbStyle, BS_SOLID);
    EXPECT_EQ(lb.lbColor, RGB(0, 255, 0));
    brush.SetStyle(bsClear);
    ASSERT_TRUE(GetLogBrush(brush.Handle(), &lb));
    EXPECT_EQ(lb.lbStyle, BS_NULL);
    brush.SetStyle(bsBDiagonal);
    ASSERT_TRUE(GetLogBrush(brush.Handle(), &lb));
    EXPECT_EQ(lb.lbStyle, BS_HATCHED);
    EXPECT_EQ(lb.lbHatch, std::uintptr_t(HS_BDIAGONAL));
    brush.SetStyle(bsDiagCross);
    ASSERT_TRUE(GetLogBrush(brush.Handle(), &lb));
    EXPECT_EQ(lb.lbHatch, std::uintptr_t(HS_DIAGCROSS));
}

// ---------------------------------------------------------------------------------------------

TEST(GfxFont, DefaultsAreTahomaEightPoints) {
    TFont font;
    EXPECT_EQ(font.Name(), QStringLiteral("Tahoma"));
    EXPECT_EQ(font.Height(), -11);
    EXPECT_EQ(font.Size(), 8);
    EXPECT_EQ(font.PixelsPerInch(), 96);
    EXPECT_EQ(font.Color(), clWindowText);
    EXPECT_TRUE(font.Style().Empty());
    EXPECT_EQ(font.Pitch(), fpDefault);
    EXPECT_EQ(font.Charset(), DEFAULT_CHARSET);
}

struct SizeCase {
    int PixelsPerInch;
    int Size;
    int Height;
};

// "10 pt at 96 dpi is height -13".
void PrintTo(const SizeCase& c, std::ostream* os) {
    *os << c.Size << " pt at " << c.PixelsPerInch << " dpi is height " << c.Height;
}

// "Size10At96Dpi".
std::string SizeCaseName(const ::testing::TestParamInfo<SizeCase>& Info) {
    return "Size" + std::to_string(Info.param.Size) + "At" + std::to_string(Info.param.PixelsPerInch) + "Dpi";
}

class GfxFontSize : public ::testing::TestWithParam<SizeCase> {};

TEST_P(GfxFontSize, SizeAndHeightConvertWithMulDiv) {
    TFont font;
    font.SetPixelsPerInch(GetParam().PixelsPerInch);
    font.SetSize(GetParam().Size);
    EXPECT_EQ(font.Height(), GetParam().Height);
    font.SetHeight(GetParam().Height);
    EXPECT_EQ(font.Size(), GetParam().Size);
}

INSTANTIATE_TEST_SUITE_P(Resolutions, GfxFontSize,
                         ::testing::Values(SizeCase{96, 8, -11}, SizeCase{96, 10, -13}, SizeCase{96, 12, -16},
                                           SizeCase{120, 8, -13}, SizeCase{72, 10, -10},
                                           SizeCase{600, 10, -83}),
                         SizeCaseName);

TEST(GfxFont, PositiveHeightGivesNegativeSize) {
    TFont font;
    font.SetHeight(16);
    EXPECT_EQ(font.Size(), -12);
}

TEST(GfxFont, PixelsPerInchKeepsHeightAndFiresNothing) {
    TFont font;
    int changes = 0;
    font.SetOnChange([&](TObject*) { ++changes; });
    font.SetPixelsPerInch(120);
    EXPECT_EQ(font.Height(), -11);
    EXPECT_EQ(font.Size(), 7);
    EXPECT_EQ(changes, 0);
}

TEST(GfxFont, OnChangeOncePerRealChange) {
    TFont font;
    int changes = 0;
    font.SetOnChange([&](TObject*) { ++changes; });
    font.SetName(QStringLiteral("Arial"));
    font.SetName(QStringLiteral("Arial"));
    font.SetHeight(-20);
    font.SetSize(15); // the same height again
    font.SetColor(clRed);
    font.SetStyle(fsBold | fsItalic);
    font.SetStyle(fsBold | fsItalic);
    font.SetPitch(fpFixed);
    font.SetCharset(ANSI_CHARSET);
    EXPECT_EQ(changes, 6);
}

TEST(GfxFont, AssignCopiesAndKeepsPointSizeAcrossResolutions) {
    TFont source;
    source.SetName(QStringLiteral("Courier"));
    source.SetSize(12);
    source.SetColor(clNavy);
    source.SetStyle(fsUnderline);
    source.SetPitch(fpVariable);
    source.SetCharset(SYMBOL_CHARSET);
    TFont sameDpi;
    int changes = 0;
    sameDpi.SetOnChange([&](TObject*) { ++changes; });
    sameDpi.Assign(&source);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(sameDpi.Name(), QStringLiteral("Courier"));
    EXPECT_EQ(sameDpi.Height(), -16);
    EXPECT_EQ(sameDpi.Color(), clNavy);
    EXPECT_EQ(sameDpi.Style(), TFontStyles(fsUnderline));
    EXPECT_EQ(sameDpi.Pitch(), fpVariable);
    EXPECT_EQ(sameDpi.Charset(), SYMBOL_CHARSET);

    TFont printer;
    printer.SetPixelsPerInch(600);
    printer.Assign(&source);
    EXPECT_EQ(printer.PixelsPerInch(), 600);
    EXPECT_EQ(printer.Size(), 12);
    EXPECT_EQ(printer.Height(), -100);

    TPen pen;
    EXPECT_THROW(printer.Assign(&pen), EConvertError);
}

TEST(GfxFont, LogFontCarriesStylesPitchAndFace) {
    TFont font;
    font.SetName(QStringLiteral("Arial"));
    font.SetHeight(-20);
    font.SetStyle(fsBold | fsItalic | fsUnderline | fsStrikeOut);
    font.SetPitch(fpVariable);
    font.SetCharset(ANSI_CHARSET);
    const LOGFONTW lf = font.LogFont();
    EXPECT_EQ(lf.lfHeight, -20);
    EXPECT_EQ(lf.lfWeight, FW_BOLD);
    EXPECT_EQ(lf.lfItalic, 1);
    EXPECT_EQ(lf.lfUnderline, 1);
    EXPECT_EQ(lf.lfStrikeOut, 1);
    EXPECT_EQ(lf.lfCharSet, ANSI_CHARSET);
    EXPECT_EQ(lf.lfPitchAndFamily, VARIABLE_PITCH);
    EXPECT_EQ(std::u16string(lf.lfFaceName), u"Arial");
    font.SetStyle(TFontStyles());
    font.SetPitch(fpFixed);
    EXPECT_EQ(font.LogFont().lfWeight, FW_NORMAL);
    EXPECT_EQ(font.LogFont().lfPitchAndFamily, FIXED_PITCH);
    LOGFONTW fromHandle;
    ASSERT_TRUE(GetLogFont(font.Handle(), &fromHandle));
    EXPECT_EQ(fromHandle.lfHeight, -20);
}

TEST(GfxFont, FaceNameIsCutToTheFieldAndTerminated) {
    LOGFONTW lf;
    SetLogFontFace(lf, u"Liberation Sans Narrow Condensed Extra Wide");
    EXPECT_EQ(std::u16string(lf.lfFaceName), u"Liberation Sans Narrow Condense"); // 31 code units
    // A shorter name leaves nothing of the longer one behind.
    SetLogFontFace(lf, u"Arial");
    EXPECT_EQ(std::u16string(lf.lfFaceName), u"Arial");
    for (int i = 5; i < LF_FACESIZE; ++i) EXPECT_EQ(lf.lfFaceName[i], 0) << i;
}

TEST(GfxFont, ANewFontHasTheDefaultFace) {
    EXPECT_EQ(TFont().Name(), QString::fromUtf16(DefFontName));
    EXPECT_EQ(std::u16string(TFont().LogFont().lfFaceName), DefFontName);
}

} // namespace
} // namespace vl
