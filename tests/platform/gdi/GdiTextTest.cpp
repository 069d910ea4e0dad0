#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <QFont>
#include <QFontInfo>
#include <QFontMetrics>
#include <QString>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vl {
namespace {

using test::TSurface;

constexpr COLORREF White = RGB(255, 255, 255);

LOGFONTW Font(const char16_t* face, int height, int escapement = 0) {
    LOGFONTW lf;
    lf.lfHeight = height;
    lf.lfEscapement = escapement;
    int i = 0;
    for (; face[i]; ++i) lf.lfFaceName[i] = face[i];
    return lf;
}

// Metrics pinned for exact placement: every character 7 pixels wide, ascent 10, descent 3.
class TPinnedMetrics : public TFontService {
public:
    TSize TextExtent(const LOGFONTW&, std::u16string_view text) const override {
        return {std::int32_t(7 * text.size()), 13};
    }
    TEXTMETRICW TextMetrics(const LOGFONTW& font) const override {
        TEXTMETRICW tm = TFontService::TextMetrics(font);
        tm.tmAscent = 10;
        tm.tmDescent = 3;
        tm.tmHeight = 13;
        return tm;
    }
};

class GdiTextPinned : public ::testing::Test {
protected:
    void SetUp() override { FPrevious = SetFontService(std::make_unique<TPinnedMetrics>()); }
    void TearDown() override { SetFontService(std::move(FPrevious)); }
    std::unique_ptr<TFontService> FPrevious;
};

// The red background cell of "abc" drawn with white text on white: its box is the text cell.
TRect CellOf(TSurface& s, int x, int y, int escapement, std::uint32_t align = TA_TOP | TA_LEFT) {
    const LOGFONTW lf = Font(u"Arial", -12, escapement);
    HFONT font = CreateFontIndirectW(&lf);
    HGDIOBJ old = SelectObject(s.Dc(), font);
    SetBkMode(s.Dc(), OPAQUE);
    SetBkColor(s.Dc(), test::Red);
    SetTextColor(s.Dc(), White);
    SetTextAlign(s.Dc(), align);
    TextOutW(s.Dc(), x, y, u"abc", 3);
    SelectObject(s.Dc(), old);
    DeleteObject(font);
    return s.InkBox(White);
}

TEST_F(GdiTextPinned, ExtentComesFromTheServiceInLogicalUnits) {
    TSurface s(10, 10);
    TSize size;
    ASSERT_TRUE(GetTextExtentPoint32W(s.Dc(), u"abc", 3, &size));
    EXPECT_EQ(size, (TSize{21, 13}));
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), 2, -2);
    ASSERT_TRUE(GetTextExtentPoint32W(s.Dc(), u"abc", 3, &size));
    EXPECT_EQ(size, (TSize{11, 7})); // 10.5 and 6.5 rounded away from zero
    TEXTMETRICW tm;
    ASSERT_TRUE(GetTextMetricsW(s.Dc(), &tm));
    EXPECT_EQ(tm.tmAscent, 5);
    EXPECT_EQ(tm.tmHeight, 7);
}

TEST_F(GdiTextPinned, OpaqueCellStartsAtTheTopLeftReferencePoint) {
    TSurface s(80, 60, White);
    EXPECT_EQ(CellOf(s, 10, 20, 0), (TRect{10, 20, 31, 33}));
}

TEST_F(GdiTextPinned, AlignmentMovesTheCellAroundTheReferencePoint) {
    TSurface a(80, 60, White);
    EXPECT_EQ(CellOf(a, 50, 30, 0, TA_RIGHT | TA_BOTTOM), (TRect{29, 17, 50, 30}));
    TSurface b(80, 60, White);
    EXPECT_EQ(CellOf(b, 50, 30, 0, TA_CENTER | TA_BASELINE), (TRect{40, 20, 61, 33}));
}

TEST_F(GdiTextPinned, EscapementRotatesCounterClockwiseAboutTheReferencePoint) {
    TSurface up(80, 80, White);
    EXPECT_EQ(CellOf(up, 40, 40, 900), (TRect{40, 19, 53, 40}));
    TSurface back(80, 80, White);
    EXPECT_EQ(CellOf(back, 40, 40, 1800), (TRect{19, 27, 40, 40}));
    TSurface down(80, 80, White);
    EXPECT_EQ(CellOf(down, 40, 40, 2700), (TRect{27, 40, 40, 61}));
}

TEST_F(GdiTextPinned, FlippedAxesMoveTheReferencePointButNeverMirrorTheText) {
    TSurface s(80, 80, White);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 1, 1);
    SetViewportExtEx(s.Dc(), -1, -1);
    SetViewportOrgEx(s.Dc(), 80, 80);
    EXPECT_EQ(CellOf(s, 70, 60, 0), (TRect{10, 20, 31, 33}));
}

TEST(GdiText, GlyphsSitOnTheBaselineBelowTheReferencePoint) {
    TSurface s(100, 60, White);
    const LOGFONTW lf = Font(u"Arial", -24);
    HFONT font = CreateFontIndirectW(&lf);
    SelectObject(s.Dc(), font);
    SetBkMode(s.Dc(), TRANSPARENT);
    TEXTMETRICW tm;
    ASSERT_TRUE(GetTextMetricsW(s.Dc(), &tm));
    EXPECT_GT(tm.tmAscent, 15);
    TextOutW(s.Dc(), 10, 10, u"HH", 2);
    const TRect ink = s.InkBox(White);
    EXPECT_GE(ink.Left, 10);
    EXPECT_LE(ink.Left, 13);
    EXPECT_GT(ink.Top, 10);
    EXPECT_NEAR(ink.Bottom, 10 + tm.tmAscent, 1);
    TSize size;
    GetTextExtentPoint32W(s.Dc(), u"HH", 2, &size);
    EXPECT_LE(ink.Right, 10 + size.cx);
    EXPECT_GT(ink.Right, 10 + size.cx / 2);
    SelectObject(s.Dc(), GetStockObject(SYSTEM_FONT));
    DeleteObject(font);
}

TEST(GdiText, RealGlyphsRotateWithTheEscapement) {
    TSurface s(120, 120, White);
    const LOGFONTW lf = Font(u"Arial", -20, 900);
    HFONT font = CreateFontIndirectW(&lf);
    SelectObject(s.Dc(), font);
    SetBkMode(s.Dc(), TRANSPARENT);
    TextOutW(s.Dc(), 60, 100, u"HHHH", 4);
    TSize size;
    GetTextExtentPoint32W(s.Dc(), u"HHHH", 4, &size);
    const TRect ink = s.InkBox(White);
    EXPECT_GE(ink.Left, 60); // the text's top is at the reference point's side
    EXPECT_LE(ink.Right, 60 + size.cy + 1);
    EXPECT_LE(ink.Bottom, 101); // and it runs upwards
    EXPECT_LT(ink.Top, 100 - size.cx / 2);
    EXPECT_GT(ink.Bottom - ink.Top, 2 * (ink.Right - ink.Left));
    SelectObject(s.Dc(), GetStockObject(SYSTEM_FONT));
    DeleteObject(font);
}

TEST(GdiText, OpaqueModeFillsTheWholeCellWithTheBackgroundColour) {
    TSurface s(100, 40, White);
    SetBkColor(s.Dc(), test::Red);
    TextOutW(s.Dc(), 5, 5, u"Hi x", 4);
    TSize size;
    GetTextExtentPoint32W(s.Dc(), u"Hi x", 4, &size);
    for (int y = 5; y < 5 + size.cy; ++y)
        for (int x = 5; x < 5 + size.cx; ++x) EXPECT_NE(s.Pixel(x, y), White) << x << "," << y;
    EXPECT_EQ(s.Pixel(5 + size.cx, 5), White);
    EXPECT_EQ(s.Pixel(5, 5 + size.cy), White);
}

TEST(GdiText, TransparentModeLeavesTheBackground) {
    TSurface s(100, 40, White);
    SetBkMode(s.Dc(), TRANSPARENT);
    SetBkColor(s.Dc(), test::Red);
    TextOutW(s.Dc(), 5, 5, u"Hi", 2);
    EXPECT_EQ(s.CountPixels(test::Red), 0);
    EXPECT_GT(s.CountPixels(0), 10);
}

TEST(GdiText, TextIsNotAntialiased) {
    TSurface s(100, 40, White);
    SetBkMode(s.Dc(), TRANSPARENT);
    TextOutW(s.Dc(), 5, 5, u"Wavy sOg", 8);
    EXPECT_EQ(s.CountPixels(0) + s.CountPixels(White), 100 * 40);
}

TEST(GdiText, HeightSignChoosesCharacterOrCellHeight) {
    const QFont em = FontService().MakeFont(Font(u"Arial", -40));
    EXPECT_EQ(em.pixelSize(), 40);
    const QFont cell = FontService().MakeFont(Font(u"Arial", 40));
    const QFontMetrics m(cell);
    EXPECT_NEAR(m.ascent() + m.descent(), 40, 1);
    EXPECT_LT(cell.pixelSize(), 40);
}

TEST(GdiText, HeightIsLogical) {
    TSurface s(10, 10);
    SetMapMode(s.Dc(), MM_ANISOTROPIC);
    SetWindowExtEx(s.Dc(), 10, 10);
    SetViewportExtEx(s.Dc(), 1, 1);
    const LOGFONTW lf = Font(u"Arial", -200);
    HFONT font = CreateFontIndirectW(&lf);
    SelectObject(s.Dc(), font);
    TSize logical;
    GetTextExtentPoint32W(s.Dc(), u"HHHH", 4, &logical);
    const TSize device = FontService().TextExtent(Font(u"Arial", -20), u"HHHH");
    EXPECT_NEAR(logical.cx, device.cx * 10, 5);
    EXPECT_NEAR(logical.cy, device.cy * 10, 5);
    SelectObject(s.Dc(), GetStockObject(SYSTEM_FONT));
    DeleteObject(font);
}

TEST(GdiText, StyleFieldsReachTheQtFont) {
    LOGFONTW lf = Font(u"Times New Roman", -16);
    lf.lfWeight = FW_BOLD;
    lf.lfItalic = 1;
    lf.lfUnderline = 1;
    lf.lfStrikeOut = 1;
    const QFont f = FontService().MakeFont(lf);
    EXPECT_EQ(f.weight(), QFont::Bold);
    EXPECT_TRUE(f.italic());
    EXPECT_TRUE(f.underline());
    EXPECT_TRUE(f.strikeOut());
    EXPECT_FALSE(f.kerning());
    EXPECT_EQ(QFontInfo(f).family(), QString("Liberation Serif"));
}

struct TFaceCase {
    const char16_t* Name;
    const char* Installed;
};

void PrintTo(const TFaceCase& c, std::ostream* os) {
    *os << "\"" << QString::fromUtf16(c.Name).toStdString() << "\" to " << c.Installed;
}

// The face name without its spaces; "NoName" for the empty name.
std::string FaceCaseName(const ::testing::TestParamInfo<TFaceCase>& Info) {
    std::string name = QString::fromUtf16(Info.param.Name).remove(QLatin1Char(' ')).toStdString();
    return name.empty() ? std::string("NoName") : name;
}

class GdiTextFaces : public ::testing::TestWithParam<TFaceCase> {};

TEST_P(GdiTextFaces, ClassicFacesResolveToMetricCompatibleInstalledOnes) {
    const TFaceCase c = GetParam();
    EXPECT_EQ(FontService().ResolveFace(c.Name), QString(c.Installed));
    const QFont font = FontService().MakeFont(Font(c.Name, -12));
    EXPECT_EQ(QFontInfo(font).family(), QString(c.Installed));
}

INSTANTIATE_TEST_SUITE_P(
    Gdi, GdiTextFaces,
    ::testing::Values(TFaceCase{u"Arial", "Liberation Sans"},
                      TFaceCase{u"Times New Roman", "Liberation Serif"},
                      TFaceCase{u"MS Sans Serif", "Liberation Sans"},
                      TFaceCase{u"Courier", "Liberation Mono"}, TFaceCase{u"Courier New", "Liberation Mono"},
                      TFaceCase{u"System", "Liberation Sans"}, TFaceCase{u"Default", "Liberation Sans"},
                      TFaceCase{u"", "Liberation Sans"}, TFaceCase{u"DejaVu Serif", "DejaVu Serif"},
                      TFaceCase{u"No Such Face", "Liberation Sans"}),
    FaceCaseName);

TEST(GdiText, SetFontServiceNullRestoresTheDefault) {
    auto previous = SetFontService(std::make_unique<TPinnedMetrics>());
    auto pinned = SetFontService(nullptr);
    EXPECT_NE(dynamic_cast<TPinnedMetrics*>(pinned.get()), nullptr);
    EXPECT_EQ(dynamic_cast<TPinnedMetrics*>(&FontService()), nullptr);
    SetFontService(std::move(previous));
}

TEST(GdiText, EmptyAndInvalidTextIsHandled) {
    TSurface s(10, 10);
    EXPECT_TRUE(TextOutW(s.Dc(), 0, 0, u"", 0));
    EXPECT_FALSE(TextOutW(s.Dc(), 0, 0, nullptr, 3));
    EXPECT_FALSE(TextOutW(s.Dc(), 0, 0, u"a", -1));
    TSize size{5, 5};
    EXPECT_TRUE(GetTextExtentPoint32W(s.Dc(), u"", 0, &size));
    EXPECT_EQ(size.cx, 0);
}

} // namespace
} // namespace vl
