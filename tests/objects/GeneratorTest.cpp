// Generators: defaults, option bits, the font rules, the picture, word break and the shared font
// handle.

#include "objects/Generators.h"
#include "platform/gdi/GdiObjects.h"
#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"
#include "surface/ScaleSetting.h"

#include <QImage>

#include <gtest/gtest.h>

#include <string>

namespace vl {
namespace {

// A font service that answers the same width at every height for one face, as a bitmap font does,
// and counts what it measures.
class TBitmapFaceService : public TFontService {
public:
    explicit TBitmapFaceService(int* Measures) : FMeasures(Measures) {}
    TSize TextExtent(const LOGFONTW& fontDev, std::u16string_view text) const override {
        ++*FMeasures;
        if (std::u16string_view(fontDev.lfFaceName) == u"Fixedsys Bitmap")
            return TSize{8 * static_cast<int>(text.size()), 15};
        return TFontService::TextExtent(fontDev, text);
    }

private:
    int* FMeasures;
};

class GeneratorFixture : public ::testing::Test {
protected:
    TMessageServiceDouble Messages;
    TServiceScope<TMessageService> MessageScope{Messages};
};

// ---------------------------------------------------------------------------------------------
// Defaults and bits
// ---------------------------------------------------------------------------------------------

TEST(GeneratorDefaults, PlainGeneratorStartsZeroedWithRectangleAndNoOptions) {
    TGenerator g;
    EXPECT_EQ(g.Shape(), stRectangle);
    EXPECT_TRUE(g.Options().Empty());
    EXPECT_TRUE(g.RtOptions().Empty());
    EXPECT_EQ(g.Instance(), 0);
    EXPECT_EQ(g.Counter(), 0);
    EXPECT_EQ(g.ZOrder(), 0);
    EXPECT_EQ(g.Layer(), 0);
    EXPECT_EQ(g.Width(), 0);
    EXPECT_EQ(g.Height(), 0);
    EXPECT_EQ(g.SlaveX(), 0);
    EXPECT_EQ(g.HotspotX(), 0);
    EXPECT_EQ(g.CurrFontHeight(), 0);
    EXPECT_EQ(g.FontHandle(), nullptr);
    EXPECT_EQ(g.FontIsScalableCache(), 0);
    EXPECT_EQ(g.FontBackup, 0);
}

TEST(GeneratorDefaults, AFreshGeneratorLeavesNeedLayersAlone) {
    const std::int32_t before = NeedLayers;
    TGenerator g;
    EXPECT_EQ(NeedLayers, before);
}

TEST(GeneratorDefaults, PointGeneratorHasSlaveOffsetTenAndSizeTwenty) {
    TPtGenerator g;
    EXPECT_EQ(g.SlaveX(), 10);
    EXPECT_EQ(g.SlaveY(), 10);
    EXPECT_EQ(g.Width(), 20);
    EXPECT_EQ(g.Height(), 20);
    EXPECT_EQ(g.Shape(), stRectangle);
}

TEST(GeneratorDefaults, TextGeneratorIsAnEllipseWithOneUnitOfFrameSpace) {
    TTxtGenerator g;
    EXPECT_EQ(g.Shape(), stEllipse);
    EXPECT_EQ(g.FrameDX(), 1);
    EXPECT_EQ(g.FrameDY(), 1);
    EXPECT_EQ(g.WordBreak(), 0);
    EXPECT_EQ(g.TextAlign().Horz(), haLeft);
    EXPECT_EQ(g.TextAlign().Vert(), vaTop);
}

TEST(GeneratorBits, OptionsSitAtTheirBits) {
    const std::pair<TGeneratorOption, std::uint16_t> cases[] = {
        {goStretchPicture, 0x001}, {goRotation, 0x002},   {goNoSizing, 0x004},
        {goNoHorzMove, 0x008},     {goNoVertMove, 0x010}, {goFndCursor, 0x020},
        {goDontFind, 0x040},       {goMasterFont, 0x080}, {goShadows, 0x100},
    };
    for (const auto& [option, bits] : cases) EXPECT_EQ(TGeneratorOptions(option).Bits(), bits);
    EXPECT_EQ(sizeof(TGeneratorOptions), 2u);
}

TEST(GeneratorBits, RuntimeOptionsSitAtTheirBitsInOneByte) {
    EXPECT_EQ(TRuntimeOptions(roHidden).Bits(), 1);
    EXPECT_EQ(TRuntimeOptions(roDontSave).Bits(), 2);
    EXPECT_EQ(TRuntimeOptions(roNosy).Bits(), 4);
    EXPECT_EQ(sizeof(TRuntimeOptions), 1u);
}

TEST(GeneratorBits, ShapeValuesCountFromZeroInTheirOrder) {
    EXPECT_EQ(static_cast<int>(stRectangle), 0);
    EXPECT_EQ(static_cast<int>(stEllipse), 1);
    EXPECT_EQ(static_cast<int>(stCircle), 2);
    EXPECT_EQ(static_cast<int>(stSquare), 3);
    EXPECT_EQ(static_cast<int>(stRoundRect), 4);
    EXPECT_EQ(static_cast<int>(stRoundSquare), 5);
    EXPECT_EQ(static_cast<int>(stLine), 6);
    EXPECT_EQ(static_cast<int>(stRegion), 7);
}

TEST(GeneratorSetters, PenAndBrushAreCopiedNotShared) {
    TGenerator g;
    TPen pen;
    pen.SetColor(clRed);
    pen.SetWidth(3);
    TBrush brush;
    brush.SetColor(clBlue);
    brush.SetStyle(bsCross);
    g.SetPen(&pen);
    g.SetBrush(&brush);
    pen.SetColor(clGreen);
    EXPECT_EQ(g.Pen().Color(), clRed);
    EXPECT_EQ(g.Pen().Width(), 3);
    EXPECT_EQ(g.Brush().Color(), clBlue);
    EXPECT_EQ(g.Brush().Style(), bsCross);
}

// ---------------------------------------------------------------------------------------------
// Fonts
// ---------------------------------------------------------------------------------------------

TEST_F(GeneratorFixture, CourierBecomesTimesNewRomanInTheGeneratorAndInTheCallersFont) {
    TGenerator g;
    TFont font;
    font.SetName(QStringLiteral("Courier"));
    font.SetHeight(-20);
    g.SetFont(&font);
    EXPECT_EQ(g.Font().Name(), QStringLiteral("Times New Roman"));
    EXPECT_EQ(font.Name(), QStringLiteral("Times New Roman"));
    EXPECT_EQ(g.Font().Height(), -20);
}

TEST_F(GeneratorFixture, FaceReplacementsFollowTheirTable) {
    const std::pair<const char*, const char*> cases[] = {
        {"MS Sans Serif", "Arial"},      {"System", "Arial"},
        {"MS Serif", "Times New Roman"}, {"Courier", "Times New Roman"},
        {"Courier New", "Courier New"},  {"Arial", "Arial"},
    };
    for (const auto& [from, to] : cases) {
        TGenerator g;
        TFont font;
        font.SetName(QString::fromLatin1(from));
        g.SetFont(&font);
        EXPECT_EQ(g.Font().Name(), QString::fromLatin1(to)) << from;
    }
}

TEST_F(GeneratorFixture, FaceNamesAreComparedWithCase) {
    TGenerator g;
    TFont font;
    font.SetName(QStringLiteral("courier"));
    g.SetFont(&font);
    EXPECT_EQ(g.Font().Name(), QStringLiteral("courier"));
    font.SetName(QStringLiteral("SYSTEM"));
    g.SetFont(&font);
    EXPECT_EQ(g.Font().Name(), QStringLiteral("SYSTEM"));
}

TEST_F(GeneratorFixture, EveryFontAssignmentBeepsOnceWithTypeOne) {
    TGenerator g;
    TFont font;
    font.SetName(QStringLiteral("Arial"));
    g.SetFont(&font);
    font.SetName(QStringLiteral("Courier"));
    g.SetFont(&font);
    EXPECT_EQ(Messages.Beeps, (std::vector<std::uint32_t>{1, 1}));
}

TEST_F(GeneratorFixture, BitmapFontIsNotScalableAndTheAnswerIsCachedAsMinusOne) {
    int measures = 0;
    auto previous = SetFontService(std::make_unique<TBitmapFaceService>(&measures));
    TGenerator g;
    g.Font().SetName(QStringLiteral("Fixedsys Bitmap"));
    EXPECT_FALSE(g.FontIsScalable());
    EXPECT_EQ(g.FontIsScalableCache(), -1);
    EXPECT_EQ(measures, 2);
    EXPECT_FALSE(g.FontIsScalable());
    EXPECT_EQ(measures, 2); // answered from the cache
    SetFontService(std::move(previous));
}

TEST_F(GeneratorFixture, OutlineFontIsScalableAndCachedAsOne) {
    TGenerator g;
    g.Font().SetName(QStringLiteral("Arial"));
    g.Font().SetHeight(-12);
    EXPECT_TRUE(g.FontIsScalable());
    EXPECT_EQ(g.FontIsScalableCache(), 1);
}

TEST_F(GeneratorFixture, CacheHoldsEvenWhenTheFontChangesAfterwards) {
    int measures = 0;
    auto previous = SetFontService(std::make_unique<TBitmapFaceService>(&measures));
    TGenerator g;
    g.Font().SetName(QStringLiteral("Arial"));
    EXPECT_TRUE(g.FontIsScalable());
    g.Font().SetName(QStringLiteral("Fixedsys Bitmap"));
    EXPECT_TRUE(g.FontIsScalable());
    EXPECT_FALSE(TCustomGenerator::FontIsScalable(g.Font()));
    SetFontService(std::move(previous));
}

TEST_F(GeneratorFixture, SystemIsNeverScalableWhateverItsCase) {
    TFont font;
    font.SetName(QStringLiteral("sYsTeM"));
    EXPECT_FALSE(TCustomGenerator::FontIsScalable(font));
}

TEST_F(GeneratorFixture, ScalingIsMeasuredOnTheCanvasInForce) {
    int measures = 0;
    auto previous = SetFontService(std::make_unique<TBitmapFaceService>(&measures));
    QImage image(50, 50, QImage::Format_RGB32);
    HDC dc = CreateImageDC(&image);
    TCanvas canvas;
    canvas.SetHandle(dc);
    TScaleSetting scale(&canvas);
    TScaleSetting* kept = ActScaleSet;
    ActScaleSet = &scale;
    HGDIOBJ before = GetCurrentObject(dc, OBJ_FONT);
    TFont font;
    font.SetName(QStringLiteral("Fixedsys Bitmap"));
    EXPECT_FALSE(TCustomGenerator::FontIsScalable(font));
    EXPECT_EQ(measures, 2);
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), before); // the canvas's font is back
    ActScaleSet = kept;
    canvas.SetHandle(nullptr);
    DeleteDC(dc);
    SetFontService(std::move(previous));
}

// ---------------------------------------------------------------------------------------------
// The shared font handle
// ---------------------------------------------------------------------------------------------

HFONT MakeFont(int Height) {
    LOGFONTW lf;
    lf.lfHeight = Height;
    return CreateFontIndirectW(&lf);
}

TEST(GeneratorFontHandle, FirstFontIsTaken) {
    TGenerator g;
    HFONT f = MakeFont(-20);
    g.SetFontHandle(f, -20);
    EXPECT_EQ(g.FontHandle(), f);
    EXPECT_EQ(g.CurrFontHeight(), -20);
}

TEST(GeneratorFontHandle, LargerHeightDeletesTheNewFontAndKeepsTheHandle) {
    TGenerator g;
    HFONT small = MakeFont(-10);
    g.SetFontHandle(small, -10);
    HFONT large = MakeFont(-30);
    g.SetFontHandle(large, -30);
    EXPECT_EQ(g.FontHandle(), small);
    EXPECT_EQ(g.CurrFontHeight(), -10);
    EXPECT_FALSE(IsLiveObject(large));
    EXPECT_TRUE(IsLiveObject(small));
}

TEST(GeneratorFontHandle, EqualHeightDeletesTheNewFont) {
    TGenerator g;
    HFONT first = MakeFont(-10);
    g.SetFontHandle(first, -10);
    HFONT second = MakeFont(10);
    g.SetFontHandle(second, 10);
    EXPECT_EQ(g.FontHandle(), first);
    EXPECT_FALSE(IsLiveObject(second));
}

TEST(GeneratorFontHandle, SmallerHeightReplacesAndDeletesTheOldFont) {
    TGenerator g;
    HFONT large = MakeFont(-30);
    g.SetFontHandle(large, -30);
    HFONT small = MakeFont(12);
    g.SetFontHandle(small, 12);
    EXPECT_EQ(g.FontHandle(), small);
    EXPECT_EQ(g.CurrFontHeight(), 12);
    EXPECT_FALSE(IsLiveObject(large));
}

TEST(GeneratorFontHandle, OldFontSelectedIntoTheCanvasInForceGivesWayToTheStockFontFirst) {
    QImage image(20, 20, QImage::Format_RGB32);
    HDC dc = CreateImageDC(&image);
    TCanvas canvas;
    canvas.SetHandle(dc);
    TScaleSetting scale(&canvas);
    TScaleSetting* kept = ActScaleSet;
    ActScaleSet = &scale;
    TGenerator g;
    HFONT large = MakeFont(-30);
    g.SetFontHandle(large, -30);
    SelectObject(dc, large);
    g.SetFontHandle(MakeFont(-12), -12);
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), GetStockObject(ANSI_VAR_FONT));
    EXPECT_FALSE(IsLiveObject(large));
    ActScaleSet = kept;
    canvas.SetHandle(nullptr);
    DeleteDC(dc);
}

// ---------------------------------------------------------------------------------------------
// Picture, word break
// ---------------------------------------------------------------------------------------------

TEST(GeneratorPicture, WithoutStretchTheSizeFollowsThePicture) {
    TPtGenerator g;
    g.SetShape(stEllipse);
    TBitmap bitmap(33, 17);
    g.SetPicture(&bitmap);
    EXPECT_EQ(g.Width(), 33);
    EXPECT_EQ(g.Height(), 17);
    EXPECT_EQ(g.Shape(), stRectangle);
    EXPECT_EQ(g.Picture().Width(), 33);
}

TEST(GeneratorPicture, WithStretchTheSizeStays) {
    TPtGenerator g;
    g.SetShape(stCircle);
    g.SetOptions(TGeneratorOptions{goStretchPicture});
    TPicture picture;
    TBitmap bitmap(33, 17);
    picture.Assign(&bitmap);
    g.SetPicture(&picture);
    EXPECT_EQ(g.Width(), 20);
    EXPECT_EQ(g.Height(), 20);
    EXPECT_EQ(g.Shape(), stRectangle);
    EXPECT_EQ(g.Picture().Height(), 17);
}

TEST(GeneratorPicture, AnEmptyPictureWithoutStretchGivesSizeZero) {
    TPtGenerator g;
    g.SetPicture(nullptr);
    EXPECT_EQ(g.Width(), 0);
    EXPECT_EQ(g.Height(), 0);
    EXPECT_EQ(g.Picture().Graphic(), nullptr);
}

TEST(GeneratorWordBreak, WordBreakRemovesRotation) {
    TTxtGenerator g;
    g.SetTxtOptions(TGeneratorOptions{goRotation, goShadows});
    g.SetWordBreak(100);
    EXPECT_FALSE(g.Options().Contains(goRotation));
    EXPECT_TRUE(g.Options().Contains(goShadows));
    EXPECT_EQ(g.WordBreak(), 100);
}

TEST(GeneratorWordBreak, RotationInTheOptionsClearsWordBreak) {
    TTxtGenerator g;
    g.SetWordBreak(100);
    g.SetOptions(TGeneratorOptions{goRotation});
    EXPECT_EQ(g.WordBreak(), 0);
    EXPECT_TRUE(g.Options().Contains(goRotation));
}

TEST(GeneratorWordBreak, ZeroOrNegativeWordBreakKeepsRotation) {
    TTxtGenerator g;
    g.SetOptions(TGeneratorOptions{goRotation});
    g.SetWordBreak(0);
    EXPECT_TRUE(g.Options().Contains(goRotation));
    g.SetWordBreak(-5);
    EXPECT_TRUE(g.Options().Contains(goRotation));
    EXPECT_EQ(g.WordBreak(), -5);
}

TEST(GeneratorWordBreak, OptionsWithoutRotationKeepWordBreak) {
    TTxtGenerator g;
    g.SetWordBreak(80);
    g.SetOptions(TGeneratorOptions{goShadows});
    EXPECT_EQ(g.WordBreak(), 80);
}

// ---------------------------------------------------------------------------------------------
// Text alignment
// ---------------------------------------------------------------------------------------------

TEST(GeneratorTextAlign, SaveWritesTwoBytesHorzFirst) {
    TTextAlign a;
    a.SetHorz(haRight);
    a.SetVert(vaCenter);
    TMemoryStream s;
    a.Persist(&s, TPstMode::pstSave);
    ASSERT_EQ(s.Size(), 2);
    s.SetPosition(0);
    EXPECT_EQ(s.ReadUInt8(), 2);
    EXPECT_EQ(s.ReadUInt8(), 1);
}

TEST(GeneratorTextAlign, LoadReadsWhatSaveWrote) {
    TTextAlign a;
    a.SetHorz(haCenter);
    a.SetVert(vaBottom);
    TMemoryStream s;
    a.Persist(&s, TPstMode::pstSave);
    s.SetPosition(0);
    TTextAlign b;
    b.Persist(&s, TPstMode::pstLoad);
    EXPECT_EQ(b.Horz(), haCenter);
    EXPECT_EQ(b.Vert(), vaBottom);
}

TEST(GeneratorTextAlign, OtherModesLeaveTheStreamAlone) {
    TTextAlign a;
    a.SetHorz(haRight);
    for (TPstMode mode :
         {TPstMode::pstConnect, TPstMode::pstCopy, TPstMode::pstPaste, TPstMode::pstConnectCopy}) {
        TMemoryStream s;
        a.Persist(&s, mode);
        EXPECT_EQ(s.Size(), 0);
        EXPECT_EQ(a.Horz(), haRight);
    }
}

TEST(GeneratorTextAlign, LoadOfAnOutOfRangeValueRaisesAndKeepsTheAlignment) {
    TMemoryStream s;
    s.WriteUInt8(7);
    s.WriteUInt8(0);
    s.SetPosition(0);
    TTextAlign a;
    a.SetHorz(haCenter);
    EXPECT_THROW(a.Persist(&s, TPstMode::pstLoad), EReadError);
    EXPECT_EQ(a.Horz(), haCenter);
}

TEST(GeneratorTextAlign, LoadOfATruncatedStreamRaises) {
    TMemoryStream s;
    s.WriteUInt8(1);
    s.SetPosition(0);
    TTextAlign a;
    EXPECT_THROW(a.Persist(&s, TPstMode::pstLoad), EReadError);
}

} // namespace
} // namespace vl
