// The scale setting's units, conversions, scale and extents, placement and fitting.

#include "surface/ScaleSetting.h"
#include "support/ScaleFitDoubles.h"

#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <vector>

namespace vl {
namespace {

// A setting as the draw box's load leaves it on a 96 pixels-per-inch screen.
struct LoadedSetting {
    explicit LoadedSetting(TLenUnits unit = TLenUnits::mm_10, std::int32_t rcp = 1,
                           TOrigin origin = TOrigin::LeftTop)
        : S(nullptr) {
        S.SetMinUnit(unit);
        S.SetRcp_Scale(rcp);
        S.SetOrigin(origin);
        S.InitMapping(96);
    }
    TScaleSetting S;
};

// --- Types -------------------------------------------------------------------------------------------

TEST(ScaleSettingTypes, EnumerationsKeepTheirOrderInOneByte) {
    static_assert(sizeof(TLenUnits) == 1 && sizeof(TOrigin) == 1 && sizeof(TScaleStateFlag) == 1);
    EXPECT_EQ(0, int(TLenUnits::Meter));
    EXPECT_EQ(1, int(TLenUnits::dm));
    EXPECT_EQ(2, int(TLenUnits::cm));
    EXPECT_EQ(3, int(TLenUnits::mm));
    EXPECT_EQ(4, int(TLenUnits::mm_10));
    EXPECT_EQ(5, int(TLenUnits::Pixel));
    EXPECT_EQ(0, int(TOrigin::LeftTop));
    EXPECT_EQ(1, int(TOrigin::LeftBottom));
    EXPECT_EQ(2, int(TOrigin::RightTop));
    EXPECT_EQ(3, int(TOrigin::RightBottom));
    EXPECT_EQ(4, int(TOrigin::Center));
}

TEST(ScaleSettingTypes, StateFlagsSitAtTheirBitPositions) {
    const TScaleStateFlag flags[] = {scChanged,  scFontChanged,   scMMScaled,      scRefScale,
                                     scPrinting, scNewLimits,     scBoundsChanged, scCenterH,
                                     scCenterV,  scMovingObjects, scDesigning};
    for (unsigned i = 0; i < std::size(flags); ++i) {
        EXPECT_EQ(i, unsigned(flags[i]));
        EXPECT_EQ(1u << i, TScaleState(flags[i]).Bits());
    }
    TScaleState s;
    EXPECT_TRUE(s.Empty());
    s.Include(scCenterV);
    s.Include(scChanged);
    EXPECT_EQ(0x101u, s.Bits());
    EXPECT_TRUE(s.Contains(scCenterV));
    EXPECT_FALSE(s.Contains(scCenterH));
    s.Exclude(scCenterV);
    EXPECT_EQ(TScaleState(scChanged), s);
    EXPECT_EQ((scChanged | scDesigning).Bits(), 0x401u);
}

// --- Construction and defaults ---------------------------------------------------------------------------

TEST(ScaleSetting, ConstructionGivesTheDocumentedDefaults) {
    TScaleSetting s(nullptr);
    EXPECT_EQ(nullptr, s.Canvas());
    EXPECT_EQ(TLenUnits::mm_10, s.MinUnit());
    EXPECT_EQ(TLenUnits::Meter, s.Measure());
    EXPECT_EQ(TOrigin::LeftTop, s.Origin());
    EXPECT_EQ(1, s.Rcp_Scale());
    EXPECT_EQ(0.0, s.RawScale());
    EXPECT_EQ(1.0, s.GetScale());
    EXPECT_EQ(0.0, s.MaxScale());
    EXPECT_EQ(0, s.Rcp_Limit());
    EXPECT_EQ(0, s.PixPerM());
    EXPECT_EQ(0, s.BlankZone());
    EXPECT_EQ(TPoint{}, s.VPHome());
    EXPECT_EQ(TPoint{}, s.VPOrg());
    EXPECT_TRUE(s.State.Empty());
    EXPECT_FALSE(s.OnScaleChange());
}

TEST(ScaleSetting, ActScaleSetStartsEmptyAndIsClearedByItsSettingsDestruction) {
    EXPECT_EQ(nullptr, ActScaleSet);
    {
        TScaleSetting s(nullptr);
        ActScaleSet = &s;
    }
    EXPECT_EQ(nullptr, ActScaleSet);
    TScaleSetting kept(nullptr);
    ActScaleSet = &kept;
    { TScaleSetting other(nullptr); }
    EXPECT_EQ(&kept, ActScaleSet);
    ActScaleSet = nullptr;
}

// --- Units -------------------------------------------------------------------------------------------

TEST(ScaleSetting, UnitTablesGiveMinLenAndMeasureFact) {
    const double minLen[] = {1.0, 0.1, 0.01, 0.001, 0.0001, 1.0};
    const double fact[] = {1, 10, 100, 1000, 10000, 1};
    TScaleSetting s(nullptr);
    for (int u = 0; u < 6; ++u) {
        s.SetMinUnit(TLenUnits(u));
        s.SetMeasure(TLenUnits(u));
        EXPECT_EQ(minLen[u], s.MinLen()) << u;
        EXPECT_EQ(fact[u], s.MeasureFact()) << u;
    }
}

TEST(ScaleSetting, DirectionAndOriginFollowTheOriginCorner) {
    struct Row {
        TOrigin o;
        int h, v;
        bool right, bottom;
    };
    const Row rows[] = {{TOrigin::LeftTop, 1, 1, false, false},
                        {TOrigin::LeftBottom, 1, -1, false, true},
                        {TOrigin::RightTop, -1, 1, true, false},
                        {TOrigin::RightBottom, -1, -1, true, true},
                        {TOrigin::Center, 1, 1, false, false}};
    TScaleSetting s(nullptr);
    for (const Row& r : rows) {
        s.SetOrigin(r.o);
        EXPECT_EQ(r.h, s.Dir_Horizontal()) << int(r.o);
        EXPECT_EQ(r.v, s.Dir_Vertical()) << int(r.o);
        EXPECT_EQ(r.right, s.RightOrigin()) << int(r.o);
        EXPECT_EQ(r.bottom, s.BottomOrigin()) << int(r.o);
    }
}

TEST(ScaleSetting, CenterOriginMapsLikeLeftTop) {
    TScaleSetting s(nullptr);
    s.SetOrigin(TOrigin::Center);
    EXPECT_EQ(1, s.Dir_Horizontal());
    EXPECT_EQ(1, s.Dir_Vertical());
}

// --- Load-time mapping and extents -----------------------------------------------------------------

TEST(ScaleSetting, NinetySixPixelsPerInchGiveTheExpectedExtents) {
    LoadedSetting l;
    EXPECT_EQ(3750, l.S.PixPerM());
    EXPECT_EQ(32767, l.S.WndExt());
    EXPECT_EQ(12288, l.S.VPExt());
    EXPECT_EQ(1.0, l.S.GetScale());
    EXPECT_EQ((TRefScale{12288, 32767}), l.S.RefScale());
}

TEST(ScaleSetting, ReciprocalScaleOfOneHundredGivesScaleOneHundredthAfterLoad) {
    TScaleSetting s(nullptr);
    s.SetRcp_Scale(100);
    s.InitMapping(96);
    EXPECT_EQ(0.01, s.RawScale());
    EXPECT_EQ(100, s.Rcp_Scale());
}

TEST(ScaleSetting, ExtentsForEveryUnitAtScaleOne) {
    struct Row {
        TLenUnits unit;
        std::int32_t vp, wnd;
    };
    // K = MinLen * 3750: below one pixel per unit the window extent is MaxCoord, above it the
    // viewport extent is.
    const Row rows[] = {{TLenUnits::Meter, 32767, 9},     {TLenUnits::dm, 32767, 87},
                        {TLenUnits::cm, 32767, 874},      {TLenUnits::mm, 32767, 8738},
                        {TLenUnits::mm_10, 12288, 32767}, {TLenUnits::Pixel, 32767, 32767}};
    for (const Row& r : rows) {
        LoadedSetting l(r.unit);
        EXPECT_EQ(r.vp, l.S.VPExt()) << int(r.unit);
        EXPECT_EQ(r.wnd, l.S.WndExt()) << int(r.unit);
    }
}

TEST(ScaleSetting, PixelUnitAboveScaleOneHasAViewportExtentBeyondMaxCoord) {
    LoadedSetting l(TLenUnits::Pixel);
    l.S.SetScale(2);
    EXPECT_EQ(65534, l.S.VPExt());
    EXPECT_EQ(32767, l.S.WndExt());
}

TEST(ScaleSetting, PixelUnitAtAScaleWhoseQuotientIsInexactStillGetsItsExtents) {
    // 32767 * (1/19) / 32767 is not exactly 1/19 in extended precision; the scale is nonetheless
    // representable and its extents are set.
    LoadedSetting l(TLenUnits::Pixel);
    int calls = 0;
    l.S.SetOnScaleChange([&](TObject*) { ++calls; });
    l.S.SetScale(1.0 / 19);
    EXPECT_EQ(1.0 / 19, l.S.RawScale());
    EXPECT_EQ(1725, l.S.VPExt());
    EXPECT_EQ(32767, l.S.WndExt());
    EXPECT_EQ(1, calls);
}

TEST(ScaleSetting, PixelScaleTooSmallIsRaisedToTheSmallestRepresentable) {
    LoadedSetting l(TLenUnits::Pixel);
    int calls = 0;
    l.S.SetOnScaleChange([&](TObject*) { ++calls; });
    l.S.SetScale(1e-6);
    // E = 0.032767 is raised twice by ten to 3.2767, so the scale becomes 3.2767 / 32767.
    EXPECT_DOUBLE_EQ(1e-4, l.S.RawScale());
    EXPECT_EQ(3, l.S.VPExt());
    EXPECT_EQ(32767, l.S.WndExt());
    EXPECT_EQ(10000, l.S.Rcp_Scale());
    // The raised scale notifies, and so does the tail of the first call.
    EXPECT_EQ(2, calls);
}

TEST(ScaleSetting, MetricScaleTooSmallIsRaisedToTheSmallestRepresentable) {
    LoadedSetting l(TLenUnits::Meter);
    l.S.SetScale(1e-9);
    // K = 3750; K * 32767e-9 rounds to 0, ten times that rounds to 1.
    EXPECT_DOUBLE_EQ(1e-8, l.S.RawScale());
    EXPECT_EQ(1, l.S.VPExt());
    EXPECT_EQ(32767, l.S.WndExt());
}

// --- SetScale ----------------------------------------------------------------------------------------

TEST(ScaleSetting, ZeroAndNegativeScalesGiveScaleOne) {
    LoadedSetting l;
    l.S.SetScale(0.25);
    l.S.SetScale(0);
    EXPECT_EQ(1.0, l.S.RawScale());
    l.S.SetScale(0.25);
    l.S.SetScale(-1);
    EXPECT_EQ(1.0, l.S.RawScale());
    EXPECT_EQ(1, l.S.Rcp_Scale());
}

TEST(ScaleSetting, SetScaleUpdatesReciprocalExtentsAndState) {
    LoadedSetting l;
    l.S.SetScale(0.01);
    EXPECT_EQ(100, l.S.Rcp_Scale());
    EXPECT_TRUE(l.S.State.Contains(scChanged));
    // K = 0.375 < 1 / 0.01: E = 327.67, viewport round(0.375 * 327.67), window round(327.67 / 0.01).
    EXPECT_EQ(123, l.S.VPExt());
    EXPECT_EQ(32767, l.S.WndExt());
}

TEST(ScaleSetting, ReciprocalOfALargeScaleIsNotCorrected) {
    LoadedSetting l;
    l.S.SetScale(3);
    EXPECT_EQ(0, l.S.Rcp_Scale());
    l.S.SetScale(1.5);
    EXPECT_EQ(1, l.S.Rcp_Scale());
}

TEST(ScaleSetting, ClampedSetScaleNotifiesTwiceAndTheSameValueNotAtAll) {
    LoadedSetting l;
    l.S.Setrcp_Limit(2);
    int calls = 0;
    std::vector<double> seen;
    l.S.SetOnScaleChange([&](TObject* sender) {
        EXPECT_EQ(&l.S, sender);
        ++calls;
        seen.push_back(l.S.RawScale());
    });
    l.S.SetScale(4);
    EXPECT_EQ(0.5, l.S.RawScale());
    EXPECT_EQ(2, l.S.Rcp_Scale());
    EXPECT_EQ(2, calls);
    EXPECT_EQ((std::vector<double>{0.5, 0.5}), seen);
    calls = 0;
    l.S.SetScale(0.5);
    EXPECT_EQ(0, calls);
    // Clamped again while already at the limit: the inner call stops at once, the tail runs once.
    l.S.SetScale(4);
    EXPECT_EQ(1, calls);
}

TEST(ScaleSetting, SettingTheSameScaleChangesNothing) {
    LoadedSetting l;
    l.S.SetScale(0.5);
    l.S.State = TScaleState();
    int calls = 0;
    l.S.SetOnScaleChange([&](TObject*) { ++calls; });
    l.S.SetScale(0.5);
    EXPECT_EQ(0, calls);
    EXPECT_FALSE(l.S.State.Contains(scChanged));
}

TEST(ScaleSetting, SetRcp_ScaleStoresWithoutExtentsOrNotification) {
    LoadedSetting l;
    int calls = 0;
    l.S.SetOnScaleChange([&](TObject*) { ++calls; });
    l.S.SetRcp_Scale(50);
    EXPECT_EQ(0.02, l.S.RawScale());
    EXPECT_EQ(50, l.S.Rcp_Scale());
    EXPECT_EQ(12288, l.S.VPExt());
    EXPECT_EQ(32767, l.S.WndExt());
    EXPECT_EQ(0, calls);
    EXPECT_FALSE(l.S.State.Contains(scChanged));
}

TEST(ScaleSetting, NegativeReciprocalGivesANegativeScaleReadAsOne) {
    TScaleSetting s(nullptr);
    s.SetRcp_Scale(-5);
    EXPECT_EQ(1, s.Rcp_Scale());
    EXPECT_EQ(-0.2, s.RawScale());
    EXPECT_EQ(1.0, s.GetScale());
}

TEST(ScaleSetting, ZeroReciprocalDividesByZero) {
    TScaleSetting s(nullptr);
    s.SetRcp_Scale(4);
    EXPECT_THROW(s.SetRcp_Scale(0), EZeroDivide);
    // The reciprocal is stored before the division fails.
    EXPECT_EQ(1, s.Rcp_Scale());
    EXPECT_EQ(0.25, s.RawScale());
}

TEST(ScaleSetting, ReciprocalLimitIsTheInverseOfMaxScale) {
    TScaleSetting s(nullptr);
    s.Setrcp_Limit(100);
    EXPECT_EQ(0.01, s.MaxScale());
    EXPECT_EQ(100, s.Rcp_Limit());
    s.Setrcp_Limit(0);
    EXPECT_EQ(0.0, s.MaxScale());
    EXPECT_EQ(0, s.Rcp_Limit());
    s.Setrcp_Limit(-3);
    EXPECT_EQ(0.0, s.MaxScale());
    s.SetMaxScale(0.4);
    EXPECT_EQ(2, s.Rcp_Limit()); // 1 / 0.4 is a hair below 2.5
}

// --- Units at design time, maximal world ----------------------------------------------------------

TEST(ScaleSetting, MinUnitOutsideTheDesignerIsOnlyStored) {
    LoadedSetting l;
    l.S.SetScale(0.5);
    l.S.SetMinUnit(TLenUnits::Meter);
    EXPECT_EQ(TLenUnits::Meter, l.S.MinUnit());
    EXPECT_EQ(0.0, l.S.MaxScale());
    EXPECT_EQ(0.5, l.S.RawScale());
    // The extents are those of the former unit until the next change of scale.
    EXPECT_EQ(6144, l.S.VPExt());
    l.S.SetMinUnit(TLenUnits::Pixel);
    EXPECT_EQ(TLenUnits::Meter, l.S.Measure());
}

TEST(ScaleSetting, ChangingTheScaleBeforeTheResolutionIsKnownRaises) {
    // Without pixels per metre no extent can be found: the search runs out of range.
    TScaleSetting s(nullptr);
    EXPECT_THROW(s.SetScale(0.5), EInvalidOp);
}

TEST(ScaleSetting, MinUnitAtDesignTimeLimitsTheScale) {
    TScaleSetting s(nullptr);
    s.State.Include(scDesigning);
    s.SetMinUnit(TLenUnits::mm);
    EXPECT_DOUBLE_EQ(0.1, s.MaxScale());
    // The scale (0, read as 1) is not above the limit in its raw form; a larger one is cut down.
    EXPECT_EQ(0.0, s.RawScale());
    s.SetRcp_Scale(1);
    s.SetMinUnit(TLenUnits::Meter);
    EXPECT_DOUBLE_EQ(0.0001, s.MaxScale());
    EXPECT_EQ(10000, s.Rcp_Scale());
    EXPECT_EQ(0.0001, s.RawScale());
    s.SetMinUnit(TLenUnits::Pixel);
    EXPECT_EQ(TLenUnits::Pixel, s.Measure());
}

TEST(ScaleSetting, MaxWorldCoarsensTheUnitUntilItCovers) {
    TScaleSetting s(nullptr);
    EXPECT_DOUBLE_EQ(3.2767, s.MaxWorld());
    s.SetMaxWorld(100); // 100 m needs 100 / 32767 m per unit: a centimetre
    EXPECT_EQ(TLenUnits::cm, s.MinUnit());
    EXPECT_DOUBLE_EQ(327.67, s.MaxWorld());
    s.SetMaxWorld(1e9);
    EXPECT_EQ(TLenUnits::Meter, s.MinUnit());
    s.SetMeasure(TLenUnits::mm);
    EXPECT_DOUBLE_EQ(32767000.0, s.MaxWorld());
}

TEST(ScaleSetting, MaxWorldIsIgnoredForPixels) {
    TScaleSetting s(nullptr);
    s.SetMinUnit(TLenUnits::Pixel);
    EXPECT_EQ(32767.0, s.MaxWorld());
    s.SetMaxWorld(1e9);
    EXPECT_EQ(TLenUnits::Pixel, s.MinUnit());
}

TEST(ScaleSetting, ExplicitPixelsPerMetreChooseNewExtents) {
    LoadedSetting l;
    l.S.SetPixPerM(10000); // K = 1: the scale-one branch with E = 32767
    EXPECT_EQ(10000, l.S.PixPerM());
    EXPECT_EQ(32767, l.S.VPExt());
    EXPECT_EQ(32767, l.S.WndExt());
}

// --- Conversions -------------------------------------------------------------------------------------

TEST(ScaleSetting, LogToPixOfZeroIsZeroAtAnyScale) {
    for (double scale : {1e-8, 0.001, 0.5, 1.0, 7.0}) {
        LoadedSetting l;
        l.S.SetScale(scale);
        EXPECT_EQ(0, l.S.LogToPix(0)) << scale;
        EXPECT_EQ(0, l.S.PixToLog(0)) << scale;
    }
}

TEST(ScaleSetting, OnePixelAtAVerySmallScaleIsManyLogicalUnits) {
    LoadedSetting l;
    l.S.SetScale(1e-3);
    // 1 / (0.0001 * 3750 * 0.001) = 2666.67
    EXPECT_EQ(2667, l.S.PixToLog(1));
    EXPECT_EQ(8000, l.S.GetTempFrame());
    // 1e-5 is below what the extents represent and becomes 1e-4.
    l.S.SetScale(1e-5);
    EXPECT_DOUBLE_EQ(1e-4, l.S.RawScale());
    EXPECT_EQ(26667, l.S.PixToLog(1));
}

TEST(ScaleSetting, LogToPixAndPixToLogInTheMetricUnits) {
    LoadedSetting l;
    EXPECT_EQ(375, l.S.LogToPix(1000));
    EXPECT_EQ(-375, l.S.LogToPix(-1000));
    EXPECT_EQ(1000, l.S.PixToLog(375));
    EXPECT_EQ(8, l.S.TempFrame()); // 3 / 0.375
    l.S.SetScale(0.01);
    EXPECT_EQ(4, l.S.LogToPix(1000)); // 3.75
    EXPECT_EQ(267, l.S.PixToLog(1));
}

TEST(ScaleSetting, PixelUnitConversionsRoundTiesToEven) {
    LoadedSetting l(TLenUnits::Pixel);
    l.S.SetScale(0.5);
    EXPECT_EQ(0, l.S.LogToPix(1));   // 0.5
    EXPECT_EQ(2, l.S.LogToPix(3));   // 1.5
    EXPECT_EQ(2, l.S.LogToPix(5));   // 2.5
    EXPECT_EQ(-2, l.S.LogToPix(-5)); // -2.5
    EXPECT_EQ(4, l.S.PixToLog(2));
    l.S.SetScale(4);
    EXPECT_EQ(0, l.S.PixToLog(2)); // 0.5
    EXPECT_EQ(2, l.S.PixToLog(6)); // 1.5
}

TEST(ScaleSetting, PaperLengthsIgnoreTheScaleAndRoundTiesToEven) {
    LoadedSetting l;
    l.S.SetScale(0.01);
    EXPECT_EQ(0, l.S.MMToPix(0));
    EXPECT_EQ(8, l.S.MMToPix(2));   // 7.5
    EXPECT_EQ(22, l.S.MMToPix(6));  // 22.5
    EXPECT_EQ(38, l.S.MMToPix(10)); // 37.5
    EXPECT_EQ(0.0, l.S.PixToMM(0));
    EXPECT_DOUBLE_EQ(100.0, l.S.PixToMM(375));
}

TEST(ScaleSetting, MMToLogMeasuresOnThePaper) {
    LoadedSetting l;
    l.S.SetScale(0.01);
    EXPECT_EQ(0, l.S.MMToLog(0));
    EXPECT_EQ(1000, l.S.MMToLog(1)); // 1 mm on paper at 1:100 is 10 cm: 1000 tenths of a mm
    LoadedSetting p(TLenUnits::Pixel);
    EXPECT_EQ(375, p.S.MMToLog(100)); // 100 mm of paper in pixels
    p.S.SetScale(0.5);
    EXPECT_EQ(750, p.S.MMToLog(100));
}

TEST(ScaleSetting, WorldConversionsUseUnitAndMeasure) {
    TScaleSetting s(nullptr);
    EXPECT_DOUBLE_EQ(1.2345, s.LogToWorld(12345));
    EXPECT_EQ(12345, s.WorldToLog(1.2345));
    s.SetMeasure(TLenUnits::mm);
    EXPECT_DOUBLE_EQ(1234.5, s.LogToWorld(12345));
    EXPECT_EQ(12345, s.WorldToLog(1234.5));
    EXPECT_EQ((TPoint{100, -200}), s.WldToLogPnt(10.0, -20.0));
    s.SetMinUnit(TLenUnits::Pixel);
    EXPECT_EQ(12345.0, s.LogToWorld(12345));
    EXPECT_EQ(12, s.WorldToLog(12.5)); // ties to even
    EXPECT_EQ(14, s.WorldToLog(13.5));
}

TEST(ScaleSetting, WorldConversionsRoundTrip) {
    TScaleSetting s(nullptr);
    for (int unit = 0; unit < 5; ++unit) {
        for (int measure = 0; measure < 5; ++measure) {
            s.SetMinUnit(TLenUnits(unit));
            s.SetMeasure(TLenUnits(measure));
            for (std::int32_t x = -2000000; x <= 2000000; x += 9973)
                ASSERT_EQ(x, s.WorldToLog(s.LogToWorld(x))) << unit << " " << measure;
        }
    }
}

TEST(ScaleSetting, WorldDecimalsCountTheDecimalsOfOneUnit) {
    struct Row {
        TLenUnits unit, measure;
        int decimals;
    };
    const Row rows[] = {{TLenUnits::mm_10, TLenUnits::Meter, 4}, {TLenUnits::mm_10, TLenUnits::mm, 1},
                        {TLenUnits::mm, TLenUnits::mm, 0},       {TLenUnits::cm, TLenUnits::Meter, 2},
                        {TLenUnits::Meter, TLenUnits::Meter, 0}, {TLenUnits::Pixel, TLenUnits::Meter, 0},
                        {TLenUnits::dm, TLenUnits::Meter, 1}};
    TScaleSetting s(nullptr);
    for (const Row& r : rows) {
        s.SetMinUnit(r.unit);
        s.SetMeasure(r.measure);
        EXPECT_EQ(r.decimals, s.WorldDcls()) << int(r.unit) << " " << int(r.measure);
    }
}

TEST(ScaleSetting, MissingPixelsPerMetreDivideByZero) {
    TScaleSetting s(nullptr);
    EXPECT_THROW(s.PixToLog(1), EZeroDivide);
    EXPECT_THROW(s.PixToMM(1), EZeroDivide);
    EXPECT_THROW(s.ScaleToFit(Rect(0, 0, 100, 100), LimRec(0, 0, 10, 10)), EZeroDivide);
    // Products with a zero resolution are plain zeros.
    EXPECT_EQ(0, s.LogToPix(100));
    EXPECT_EQ(0, s.MMToPix(10));
}

// --- Corners and the viewport -----------------------------------------------------------------------

TEST(ScaleSetting, CornerHelpersReturnTheCornersAsSeenOnTheScreen) {
    const TLimRec lim = LimRec(1, 2, 30, 40);
    struct Row {
        TOrigin o;
        TPoint tl, tr, bl, br;
    };
    const Row rows[] = {
        {TOrigin::LeftTop, {1, 2}, {30, 2}, {1, 40}, {30, 40}},
        {TOrigin::LeftBottom, {1, 40}, {30, 40}, {1, 2}, {30, 2}},
        {TOrigin::RightTop, {30, 2}, {1, 2}, {30, 40}, {1, 40}},
        {TOrigin::RightBottom, {30, 40}, {1, 40}, {30, 2}, {1, 2}},
        {TOrigin::Center, {1, 2}, {30, 2}, {1, 40}, {30, 40}},
    };
    TScaleSetting s(nullptr);
    for (const Row& r : rows) {
        s.SetOrigin(r.o);
        EXPECT_EQ(r.tl, s.TopLeft(lim)) << int(r.o);
        EXPECT_EQ(r.tr, s.TopRight(lim)) << int(r.o);
        EXPECT_EQ(r.bl, s.BottomLeft(lim)) << int(r.o);
        EXPECT_EQ(r.br, s.BottomRight(lim)) << int(r.o);
    }
}

TEST(ScaleSetting, TopLeftLogIsTheLogicalPointAtTheDeviceCorner) {
    LoadedSetting l;
    l.S.SetVPOrg({-375, -750});
    EXPECT_EQ((TPoint{1000, 2000}), l.S.TopLeft_Log());
    l.S.SetOrigin(TOrigin::RightBottom);
    l.S.SetVPOrg({375, 750});
    EXPECT_EQ((TPoint{1000, 2000}), l.S.TopLeft_Log());
    l.S.SetTopLeft_Log({-2000, 4000});
    EXPECT_EQ((TPoint{-750, 1500}), l.S.VPOrg());
    l.S.SetOrigin(TOrigin::LeftTop);
    l.S.SetTopLeft_Log({-2000, 4000});
    EXPECT_EQ((TPoint{750, -1500}), l.S.VPOrg());
}

TEST(ScaleSetting, ViewportAccessorsHaveNoFurtherEffect) {
    LoadedSetting l;
    l.S.SetVPOrgX(5);
    l.S.SetVPOrgY(6);
    l.S.SetVPHomeX(7);
    l.S.SetVPHomeY(8);
    EXPECT_EQ((TPoint{5, 6}), l.S.VPOrg());
    EXPECT_EQ((TPoint{7, 8}), l.S.VPHome());
    EXPECT_EQ(5, l.S.GetVPOrgX());
    EXPECT_EQ(8, l.S.GetVPHomeY());
    EXPECT_EQ(6, l.S.VPOrgY());
    EXPECT_EQ(7, l.S.VPHomeX());
    EXPECT_TRUE(l.S.State.Empty());
}

TEST(ScaleSetting, ClientMinAndMaxNormaliseTheClientRectangle) {
    TScaleSetting s(nullptr);
    s.SetClientRect_Log(Rect(300, 200, -10, -20));
    EXPECT_EQ((TPoint{-10, -20}), s.ClientMin_Log());
    EXPECT_EQ((TPoint{300, 200}), s.ClientMax_Log());
    EXPECT_EQ(Rect(300, 200, -10, -20), s.ClientRect_Log());
}

TEST(ScaleSetting, CalcVPHomePlacesTheLimitsByOrigin) {
    LoadedSetting l;
    const TRect rect = Rect(10, 20, 310, 220);
    const TLimRec lim = LimRec(-1000, 2000, 1000, 4000); // -375..375, 750..1500 pixels
    l.S.CalcVPHome(rect, lim);
    EXPECT_EQ((TPoint{10 + 375, 20 - 750}), l.S.VPHome());
    l.S.SetOrigin(TOrigin::RightBottom);
    l.S.CalcVPHome(rect, lim);
    EXPECT_EQ((TPoint{10 + 375, 20 + 1500}), l.S.VPHome());
    EXPECT_EQ(TPoint{}, l.S.VPOrg());
}

TEST(ScaleSetting, CalcVPHomeCentresHalvingTowardZero) {
    LoadedSetting l;
    l.S.State.Include(scCenterH);
    l.S.State.Include(scCenterV);
    // Width 375 pixels in a rectangle of 300: (300 - 375) / 2 = -37; height 75 in 200: 62.
    l.S.CalcVPHome(Rect(10, 20, 310, 220), LimRec(0, 0, 1000, 200));
    EXPECT_EQ((TPoint{10 - 37, 20 + 62}), l.S.VPHome());
}

TEST(ScaleSetting, ScaleToFitTakesTheSmallerAxis) {
    LoadedSetting p(TLenUnits::Pixel);
    p.S.ScaleToFit(Rect(0, 0, 200, 100), LimRec(0, 0, 400, 100));
    EXPECT_EQ(0.5, p.S.RawScale());
    p.S.ScaleToFit(Rect(0, 0, 200, 100), LimRec(0, 0, 100, 400));
    EXPECT_EQ(0.25, p.S.RawScale());
    LoadedSetting l;
    l.S.ScaleToFit(Rect(0, 0, 750, 3750), LimRec(0, 0, 10000, 20000));
    // x: 750 / (0.0001 * 10000 * 3750) = 0.2; y: 3750 / 7500 = 0.5.
    EXPECT_DOUBLE_EQ(0.2, l.S.RawScale());
}

TEST(ScaleSetting, ScaleToFitLeavesTheScaleAloneWithoutWidthOrHeight) {
    LoadedSetting l;
    l.S.SetScale(0.5);
    l.S.State = TScaleState();
    l.S.ScaleToFit(Rect(0, 0, 100, 100), LimRec(5, 0, 5, 100));
    l.S.ScaleToFit(Rect(0, 0, 100, 100), LimRec(0, 7, 100, 7));
    EXPECT_EQ(0.5, l.S.RawScale());
    EXPECT_TRUE(l.S.State.Empty());
}

// --- Fitting the whole drawing -------------------------------------------------------------------------

TEST(ScaleSetting, FullScreenOnAnEmptyDrawingWithoutWidthStillPlacesTheViewport) {
    LoadedSetting l;
    l.S.SetScale(0.5);
    l.S.State = TScaleState();
    l.S.SetVPOrg({99, 99});
    test::TFitSourceDouble dm;
    dm.Limits = LimRec(0, 0, 0, 0);
    test::TClientAreaDouble w;
    w.Client = Rect(0, 0, 200, 100);
    l.S.SetFullScreen(dm, w);
    EXPECT_EQ(0.5, l.S.RawScale());
    EXPECT_EQ(0, dm.AdjustCalls);
    EXPECT_EQ(2, dm.GetLimitsCalls);
    // Centred: half the client area on each axis.
    EXPECT_EQ((TPoint{100, 50}), l.S.VPHome());
    EXPECT_EQ(l.S.VPHome(), l.S.VPOrg());
    EXPECT_FALSE(l.S.State.Contains(scCenterH));
    EXPECT_FALSE(l.S.State.Contains(scCenterV));
}

TEST(ScaleSetting, FullScreenIntoARectangleCentresOnlyOnRequest) {
    LoadedSetting l;
    l.S.SetScale(0.5);
    l.S.State = TScaleState();
    test::TFitSourceDouble dm;
    dm.Limits = LimRec(0, 0, 0, 0);
    l.S.SetFullScreen(dm, Rect(10, 20, 210, 120));
    EXPECT_EQ((TPoint{10, 20}), l.S.VPHome());
    l.S.State.Include(scCenterH);
    l.S.SetFullScreen(dm, Rect(10, 20, 210, 120));
    EXPECT_EQ((TPoint{110, 20}), l.S.VPHome());
    EXPECT_FALSE(l.S.State.Contains(scCenterH));
}

TEST(ScaleSetting, FullScreenShrinksTheTargetByTheBlankZone) {
    LoadedSetting l;
    l.S.SetScale(0.5);
    l.S.State = TScaleState();
    l.S.SetBlankZone(10); // 37.5 pixels, 38 by ties to even
    test::TFitSourceDouble dm;
    dm.Limits = LimRec(0, 0, 0, 0);
    l.S.SetFullScreen(dm, Rect(0, 0, 400, 300));
    EXPECT_EQ((TPoint{38, 38}), l.S.VPHome());
}

} // namespace
} // namespace vl
