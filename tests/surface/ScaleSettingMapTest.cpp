// The scale setting on a real raster device: the mapping it hands to a device context, the paper
// mapping, the resolution read from the device, fitting with a canvas, and assignment.

#include "support/ScaleFitDoubles.h"
#include "surface/ScaleSetting.h"

#include "platform/core/Exceptions.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Graphics.h"

#include <QImage>
#include <gtest/gtest.h>

#include <functional>

namespace vl {
namespace {

// A small raster device with a canvas on it.
struct Device {
    explicit Device(int width = 64, int height = 48) : Image(width, height, QImage::Format_RGB32) {
        Image.fill(Qt::white);
        DC = CreateImageDC(&Image);
        Canvas.SetHandle(DC);
    }
    ~Device() {
        Canvas.SetHandle(nullptr);
        DeleteDC(DC);
    }
    QImage Image;
    HDC DC = nullptr;
    TCanvas Canvas;
};

TScaleSetting& Load(TScaleSetting& s, TLenUnits unit, TOrigin origin) {
    s.SetMinUnit(unit);
    s.SetOrigin(origin);
    s.InitMapping(96);
    return s;
}

TPoint ToDevice(HDC dc, TPoint p) {
    LPtoDP(dc, &p, 1);
    return p;
}

struct UnitRow {
    TLenUnits Unit;
    std::int32_t VPExt, WndExt;
    TPoint Dev; // device position of logical (10, 20) from a top-left origin at (0, 0)
};

// 10 * VPExt / WndExt and 20 * VPExt / WndExt, rounded half away from zero by the device.
const UnitRow UnitRows[] = {
    {TLenUnits::Meter, 32767, 9, {36408, 72816}}, {TLenUnits::dm, 32767, 87, {3766, 7533}},
    {TLenUnits::cm, 32767, 874, {375, 750}},      {TLenUnits::mm, 32767, 8738, {37, 75}},
    {TLenUnits::mm_10, 12288, 32767, {4, 8}},     {TLenUnits::Pixel, 32767, 32767, {10, 20}},
};

const TOrigin Origins[] = {TOrigin::LeftTop, TOrigin::LeftBottom, TOrigin::RightTop, TOrigin::RightBottom,
                           TOrigin::Center};

TEST(ScaleSettingMap, EveryUnitAndOriginMapsLogicalPointsOntoTheDevice) {
    for (const UnitRow& u : UnitRows) {
        for (TOrigin o : Origins) {
            Device d;
            TScaleSetting s(nullptr);
            Load(s, u.Unit, o);
            s.SetVPOrg({50, 40});
            s.SetMap(d.DC);
            const int h = s.Dir_Horizontal();
            const int v = s.Dir_Vertical();
            SCOPED_TRACE(testing::Message() << "unit " << int(u.Unit) << " origin " << int(o));
            EXPECT_EQ(MM_ANISOTROPIC, GetMapMode(d.DC));
            TSize ext;
            GetWindowExtEx(d.DC, &ext);
            EXPECT_EQ((TSize{u.WndExt, u.WndExt}), ext);
            GetViewportExtEx(d.DC, &ext);
            EXPECT_EQ((TSize{h * u.VPExt, v * u.VPExt}), ext);
            TPoint org;
            GetViewportOrgEx(d.DC, &org);
            EXPECT_EQ((TPoint{50, 40}), org);
            GetWindowOrgEx(d.DC, &org);
            EXPECT_EQ(TPoint{}, org);
            EXPECT_EQ((TPoint{50, 40}), ToDevice(d.DC, {0, 0}));
            EXPECT_EQ((TPoint{50 + h * u.Dev.x, 40 + v * u.Dev.y}), ToDevice(d.DC, {10, 20}));
            EXPECT_EQ((TPoint{50 - h * u.Dev.x, 40 - v * u.Dev.y}), ToDevice(d.DC, {-10, -20}));
        }
    }
}

TEST(ScaleSettingMap, DeviceAndLogToPixAgreeUpToTheRatioOfExtents) {
    Device d;
    TScaleSetting s(nullptr);
    Load(s, TLenUnits::mm_10, TOrigin::LeftTop);
    s.SetMap(d.DC);
    // 1000 tenths of a millimetre: 375 pixels by LogToPix, 375.01 by the device's integer ratio.
    EXPECT_EQ(s.LogToPix(1000), ToDevice(d.DC, {1000, 0}).x);
    // A hundred metres: 375000 pixels by LogToPix, 375011.4 by the device.
    EXPECT_EQ(375000, s.LogToPix(1000000));
    EXPECT_EQ(375011, ToDevice(d.DC, {1000000, 0}).x);
}

TEST(ScaleSettingMap, DeviceToLogicalInvertsTheMapping) {
    for (TOrigin o : Origins) {
        Device d;
        TScaleSetting s(nullptr);
        Load(s, TLenUnits::Pixel, o);
        s.SetScale(0.5);
        s.SetVPOrg({32, 24});
        s.SetMap(d.DC);
        for (TPoint p : {TPoint{0, 0}, TPoint{10, -6}, TPoint{-40, 30}}) {
            TPoint q = ToDevice(d.DC, p);
            DPtoLP(d.DC, &q, 1);
            EXPECT_EQ(p, q) << int(o);
        }
    }
}

TEST(ScaleSettingMap, DrawingGoesWhereTheOriginSaysOnTheImage) {
    Device d;
    TScaleSetting s(nullptr);
    Load(s, TLenUnits::Pixel, TOrigin::RightBottom);
    s.SetVPOrg({20, 30});
    s.SetMap(d.DC);
    SetPixel(d.DC, 3, 4, RGB(255, 0, 0));
    EXPECT_EQ(qRgb(255, 0, 0), d.Image.pixel(17, 26));
    EXPECT_EQ(qRgb(255, 255, 255), d.Image.pixel(23, 34));
}

TEST(ScaleSettingMap, ReferenceScaleMapsWithoutDirectionAndEndsThePaperMapping) {
    Device d;
    TScaleSetting s(nullptr);
    Load(s, TLenUnits::mm_10, TOrigin::RightBottom);
    s.SetScale(0.5); // the present extents differ from the load-time ones
    s.SetVPOrg({5, 6});
    s.State.Include(scRefScale);
    s.State.Include(scMMScaled);
    s.SetMap(d.DC);
    TSize ext;
    GetWindowExtEx(d.DC, &ext);
    EXPECT_EQ((TSize{32767, 32767}), ext);
    GetViewportExtEx(d.DC, &ext);
    EXPECT_EQ((TSize{12288, 12288}), ext);
    EXPECT_EQ((TPoint{5 + 375, 6 + 750}), ToDevice(d.DC, {1000, 2000}));
    EXPECT_FALSE(s.State.Contains(scMMScaled));
    EXPECT_TRUE(s.State.Contains(scRefScale));
}

TEST(ScaleSettingMap, SetupScaleMapsTheCanvasHandle) {
    Device d;
    TScaleSetting s(&d.Canvas);
    Load(s, TLenUnits::mm_10, TOrigin::LeftBottom);
    s.SetVPOrg({10, 40});
    s.SetupScale();
    EXPECT_EQ((TPoint{10 + 375, 40 - 750}), ToDevice(d.DC, {1000, 2000}));
}

TEST(ScaleSettingMap, PaperMappingMakesOneUnitATenthOfAMillimetreAtAnyScale) {
    Device d;
    TScaleSetting s(&d.Canvas);
    Load(s, TLenUnits::Meter, TOrigin::LeftTop);
    s.SetScale(0.001);
    s.SetVPOrg({7, 9});
    s.SetupScale();
    s.ScaleToMM();
    EXPECT_TRUE(s.State.Contains(scMMScaled));
    EXPECT_EQ(MM_ANISOTROPIC, GetMapMode(d.DC));
    TSize ext;
    GetWindowExtEx(d.DC, &ext);
    EXPECT_EQ((TSize{10000, 10000}), ext);
    GetViewportExtEx(d.DC, &ext);
    EXPECT_EQ((TSize{3750, 3750}), ext);
    // 100 mm and 200 mm of paper; the viewport origin stays.
    EXPECT_EQ((TPoint{7 + 375, 9 + 750}), ToDevice(d.DC, {1000, 2000}));
    s.SetupScale();
    EXPECT_FALSE(s.State.Contains(scMMScaled));
}

TEST(ScaleSettingMap, CanvasOperationsWithoutACanvasRaise) {
    TScaleSetting s(nullptr);
    EXPECT_THROW(s.SetupScale(), Exception);
    EXPECT_THROW(s.ScaleToMM(), Exception);
    s.SetPixPerM(1000);
    EXPECT_THROW(s.SetPixPerM(0), Exception);
}

TEST(ScaleSettingMap, ZeroPixelsPerMetreAreReadFromTheDevice) {
    // 960 pixels at 96 pixels per inch are 254 mm: 3779.5 pixels per metre.
    Device d(960, 480);
    TScaleSetting s(&d.Canvas);
    Load(s, TLenUnits::mm_10, TOrigin::LeftTop);
    s.SetPixPerM(0);
    EXPECT_EQ(3780, s.PixPerM());
    EXPECT_EQ(12386, s.VPExt()); // round(0.378 * 32767)
    EXPECT_EQ(32767, s.WndExt());
}

// --- Assignment --------------------------------------------------------------------------------------

TEST(ScaleSettingMap, AssignCopiesTheBlockAndStateAndMarksAChange) {
    Device d;
    TScaleSetting a(&d.Canvas);
    Load(a, TLenUnits::mm, TOrigin::RightBottom);
    a.SetScale(0.02);
    a.Setrcp_Limit(10);
    a.SetMeasure(TLenUnits::cm);
    a.SetBlankZone(7);
    a.SetVPOrg({1, 2});
    a.SetVPHome({3, 4});
    a.State = TScaleState(scCenterH);
    a.SetClientRect_Log(Rect(1, 2, 3, 4));

    TScaleSetting b(nullptr);
    b.Assign(&a);
    EXPECT_EQ(a.ScaleRec(), b.ScaleRec());
    EXPECT_EQ(&d.Canvas, b.Canvas());
    EXPECT_EQ(scCenterH | scChanged, b.State);
    // What lies outside the block stays.
    EXPECT_EQ(1, b.Rcp_Scale());
    EXPECT_EQ(TRefScale{}, b.RefScale());
    EXPECT_EQ(TRect{}, b.ClientRect_Log());
    // The copy maps exactly like the original.
    Device e;
    a.SetMap(d.DC);
    b.SetMap(e.DC);
    EXPECT_EQ(ToDevice(d.DC, {1234, -567}), ToDevice(e.DC, {1234, -567}));
}

TEST(ScaleSettingMap, AssignKeepsAnOwnCanvas) {
    Device d;
    Device e;
    TScaleSetting a(&d.Canvas);
    TScaleSetting b(&e.Canvas);
    b.Assign(&a);
    EXPECT_EQ(&e.Canvas, b.Canvas());
}

TEST(ScaleSettingMap, AssignFromAnythingElseRaisesAConversionError) {
    TScaleSetting s(nullptr);
    TCanvas canvas;
    EXPECT_THROW(s.Assign(&canvas), EConvertError);
    EXPECT_THROW(s.Assign(nullptr), EConvertError);
}

// --- Fitting with a canvas ---------------------------------------------------------------------------

TEST(ScaleSettingMap, FullScreenFitsCentresAndMapsTheCanvas) {
    Device d;
    TScaleSetting s(&d.Canvas);
    Load(s, TLenUnits::Pixel, TOrigin::LeftBottom);
    test::TFitSourceDouble dm;
    dm.Limits = LimRec(0, 0, 1000, 250);
    test::TClientAreaDouble w;
    w.Client = Rect(0, 0, 200, 100);
    s.SetFullScreen(dm, w);
    EXPECT_EQ(0.2, s.RawScale());
    EXPECT_EQ(1, dm.AdjustCalls);
    EXPECT_EQ(1, dm.InitLimitsCalls);
    EXPECT_FALSE(s.State.Contains(scChanged));
    // 1000 x 250 units are 200 x 50 pixels: centred vertically, with the bottom origin at the limits'
    // top (250 units, 50 pixels) plus half the free 50 pixels.
    EXPECT_EQ((TPoint{0, 50 + 25}), s.VPHome());
    EXPECT_EQ(s.VPHome(), s.VPOrg());
    EXPECT_EQ(MM_ANISOTROPIC, GetMapMode(d.DC));
}

// A control as the framework has it, answering its client rectangle.
struct Control {
    TRect ClientRect() const { return Rect(0, 0, 200, 100); }
};

TEST(ScaleSettingMap, FullScreenTakesTheClientRectangleOfAControlAndCentres) {
    Device d;
    TScaleSetting s(&d.Canvas);
    Load(s, TLenUnits::Pixel, TOrigin::LeftTop);
    test::TFitSourceDouble dm;
    dm.Limits = LimRec(0, 0, 500, 100);
    dm.OnAdjust = [&] { s.State.Include(scBoundsChanged); };
    s.SetFullScreen(dm, Control{});
    EXPECT_EQ(0.4, s.RawScale());
    EXPECT_EQ((TPoint{0, 30}), s.VPHome()); // 40 pixels high in 100
    EXPECT_EQ(1 + 4, dm.AdjustCalls);
}

TEST(ScaleSettingMap, FullScreenInAWindowReadaptsObjectsInFourRoundsAtMost) {
    Device d;
    TScaleSetting s(&d.Canvas);
    Load(s, TLenUnits::Pixel, TOrigin::LeftTop);
    test::TFitSourceDouble dm;
    dm.Limits = LimRec(0, 0, 1000, 250);
    dm.OnAdjust = [&] { s.State.Include(scBoundsChanged); };
    test::TClientAreaDouble w;
    w.Client = Rect(0, 0, 200, 100);
    s.SetFullScreen(dm, w);
    EXPECT_EQ(1 + 4, dm.AdjustCalls);
    EXPECT_EQ(1 + 4, dm.InitLimitsCalls);
    EXPECT_EQ(1 + 5 + 1, dm.GetLimitsCalls);
    EXPECT_FALSE(s.State.Contains(scChanged));
    EXPECT_FALSE(s.State.Contains(scBoundsChanged));
}

TEST(ScaleSettingMap, FullScreenIntoARectangleReadaptsUntilTheBoundsHoldStill) {
    Device d;
    TScaleSetting s(&d.Canvas);
    Load(s, TLenUnits::Pixel, TOrigin::LeftTop);
    test::TFitSourceDouble dm;
    dm.Limits = LimRec(0, 0, 1000, 250);
    int changes = 7;
    dm.OnAdjust = [&] {
        if (changes-- > 0) s.State.Include(scBoundsChanged);
    };
    s.SetFullScreen(dm, Rect(0, 0, 200, 100));
    EXPECT_EQ(1 + 7, dm.AdjustCalls);
    EXPECT_EQ(1 + 7, dm.InitLimitsCalls);
    EXPECT_FALSE(s.State.Contains(scChanged));
    // Not centred: the limits' top left is at the rectangle's.
    EXPECT_EQ(TPoint{}, s.VPHome());
}

} // namespace
} // namespace vl
