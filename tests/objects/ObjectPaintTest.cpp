// Painting an object: shadow, shape and mark in local coordinates, live marks between paints, hiding,
// updating, the restore rect and printing through a scale setting of its own.
#include "ObjectPaintSupport.h"

#include "platform/core/Exceptions.h"
#include "platform/graphics/Images.h"

namespace vl::test {
namespace {

using ObjectPaint = PaintFixture;

TEST_F(ObjectPaint, ShowDrawsShadowShapeAndMarkInThatOrderInLocalCoordinates) {
    Gen().SetOptions(TGeneratorOptions{goShadows});
    TTestObject* o = AddObj(Point(50, 40));
    o->State.Include(isMarked);
    PaintAll();
    ASSERT_EQ(Shapes.size(), 3u);
    // The shadow: the object's corner moved by the shadow's offset (10, 7), in the shadow's brush.
    EXPECT_EQ(Shapes[0].WindowOrg, Point(-60, -47));
    EXPECT_EQ(Shapes[0].BrushColor, TColor(0x808080));
    EXPECT_EQ(Shapes[0].PenColor, TColor(0x808080));
    // The shape at the object's corner, in the generator's colours.
    EXPECT_EQ(Shapes[1].WindowOrg, Point(-50, -40));
    EXPECT_EQ(Shapes[1].PenColor, clBlack);
    EXPECT_EQ(Shapes[1].BrushColor, clBlue);
    EXPECT_EQ(Shapes[1].PenMode, pmCopy);
    // The mark after it, at the same origin, in the mark colour with a clear brush.
    EXPECT_EQ(Shapes[2].WindowOrg, Point(-50, -40));
    EXPECT_EQ(Shapes[2].PenColor, TColor(255));
    EXPECT_EQ(Shapes[2].BrushStyle, bsClear);
    // Pixels: the shadow shows beside and below the object, the mark lies on its outline.
    EXPECT_EQ(SurfacePixel(75, 62), Grey);
    EXPECT_EQ(SurfacePixel(60, 50), Blue);
    EXPECT_EQ(SurfacePixel(50, 50), Red);
    EXPECT_EQ(SurfacePixel(69, 45), Red);
    EXPECT_EQ(SurfacePixel(49, 50), White);
    EXPECT_EQ(ScreenPixel(75, 62), Grey);
    EXPECT_EQ(ScreenPixel(50, 50), Red);
    EXPECT_EQ(ScreenPixel(60, 50), Blue);
}

TEST_F(ObjectPaint, ShowOfAnUnmarkedObjectDrawsNoMarkAndMakesItVisible) {
    TTestObject* o = AddObj(Point(50, 40));
    o->Show();
    EXPECT_TRUE(o->State.Contains(isVisible));
    ASSERT_EQ(Shapes.size(), 1u);
    EXPECT_EQ(Shapes[0].PenColor, clBlack);
    EXPECT_EQ(SurfacePixel(50, 50), Black);
    EXPECT_EQ(SurfacePixel(60, 50), Blue);
}

TEST_F(ObjectPaint, HollowObjectKeepsItsBrushStyleInTheShadowColour) {
    Gen().SetOptions(TGeneratorOptions{goShadows});
    Gen().Brush().SetStyle(bsClear);
    AddObj(Point(50, 40));
    PaintAll();
    ASSERT_EQ(Shapes.size(), 2u);
    EXPECT_EQ(Shapes[0].BrushStyle, bsClear);
    EXPECT_EQ(Shapes[0].BrushColor, TColor(0x808080));
    EXPECT_EQ(Shapes[0].PenColor, TColor(0x808080));
    // The hollow shadow's outline shows, its inside doesn't.
    EXPECT_EQ(SurfacePixel(79, 62), Grey);
    EXPECT_EQ(SurfacePixel(75, 62), White);
}

TEST_F(ObjectPaint, SolidObjectTakesTheShadowBrushWhole) {
    Gen().SetOptions(TGeneratorOptions{goShadows});
    Box->Shadows().Brush().SetColor(clGreen);
    AddObj(Point(50, 40));
    PaintAll();
    ASSERT_EQ(Shapes.size(), 2u);
    EXPECT_EQ(Shapes[0].BrushStyle, bsSolid);
    EXPECT_EQ(Shapes[0].BrushColor, clGreen);
    EXPECT_EQ(Shapes[0].PenColor, clGreen);
    EXPECT_EQ(SurfacePixel(75, 62), Green);
}

TEST_F(ObjectPaint, PictureOnAnObjectRaisesAfterTheShade) {
    Gen().SetOptions(TGeneratorOptions{goShadows});
    TBitmap bmp(4, 4);
    Gen().Picture().SetGraphic(&bmp);
    TTestObject* o = AddObj(Point(50, 40));
    try {
        o->Draw();
        FAIL() << "no exception";
    } catch (const Exception& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Cannot draw picture"));
    }
    ASSERT_EQ(Shapes.size(), 1u);
    EXPECT_EQ(Shapes[0].WindowOrg, Point(-60, -47));
}

TEST_F(ObjectPaint, DrawEventReplacesTheShapeAfterTheColours) {
    std::vector<std::string> calls;
    Tool->OnObjectSetColors = [&](TvlObject*) { calls.push_back("colours"); };
    Tool->OnObjectDraw = [&](TvlObject* Obj) {
        calls.push_back("draw");
        TPoint org{};
        GetWindowOrgEx(Canvas().Handle(), &org);
        EXPECT_EQ(org, Point(-Obj->MinX(), -Obj->MinY()));
        Canvas().Brush().SetColor(clGreen);
        Canvas().FillRect(Rect(0, 0, 5, 5));
    };
    AddObj(Point(50, 40));
    PaintAll();
    EXPECT_EQ(calls, (std::vector<std::string>{"colours", "draw"}));
    EXPECT_TRUE(Shapes.empty());
    EXPECT_EQ(SurfacePixel(52, 42), Green);
    EXPECT_EQ(SurfacePixel(60, 50), White);
}

TEST_F(ObjectPaint, MarkDrawnLiveReachesTheScreenThroughTheBlitPath) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    const int paints = Paints;
    EXPECT_EQ(ScreenPixel(50, 50), Black);
    Store->Select(o);
    o->Mark();
    EXPECT_TRUE(o->State.Contains(isMarked));
    EXPECT_EQ(SurfacePixel(50, 50), Red);
    EXPECT_TRUE(Box->Surface().Blit().contains(QPoint(50, 50)));
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
    Settle();
    EXPECT_EQ(Paints, paints);
    EXPECT_EQ(ScreenPixel(50, 50), Red);
    EXPECT_EQ(ScreenPixel(60, 50), Blue);
    EXPECT_TRUE(Box->Surface().Blit().isEmpty());
}

TEST_F(ObjectPaint, LaterPaintCoversALiveMarkInZOrder) {
    TTestObject* lower = AddObj(Point(50, 40), "lower");
    AddObj(Point(60, 45), "upper");
    PaintAll();
    Store->Select(lower);
    lower->Mark();
    // Live, the mark lies over the upper object too.
    EXPECT_EQ(SurfacePixel(69, 50), Red);
    Settle();
    EXPECT_EQ(ScreenPixel(69, 50), Red);
    PaintAll();
    // The paint draws the mark with the lower object, and the upper object covers it.
    EXPECT_EQ(SurfacePixel(69, 50), Blue);
    EXPECT_EQ(ScreenPixel(69, 50), Blue);
    EXPECT_EQ(ScreenPixel(50, 50), Red);
}

TEST_F(ObjectPaint, UnselectingRepaintsTheMarkAway) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    MarkObject(o);
    Settle();
    EXPECT_EQ(ScreenPixel(50, 50), Red);
    Store->UnSelect(o);
    Settle();
    EXPECT_FALSE(o->State.Contains(isMarked));
    EXPECT_EQ(ScreenPixel(50, 50), Black);
    EXPECT_EQ(SurfacePixel(50, 50), Black);
}

TEST_F(ObjectPaint, MarkOfAnUnselectedObjectSelectsAndMarksTheList) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    int marks = 0;
    Store->OnMarkObject = [&](TvlObject* Obj) {
        EXPECT_EQ(Obj, nullptr);
        ++marks;
    };
    o->Mark();
    EXPECT_TRUE(o->Selected());
    EXPECT_TRUE(o->State.Contains(isMarked));
    EXPECT_EQ(Store->MarkList(), (std::vector<TvlObject*>{o}));
    EXPECT_EQ(marks, 1);
    Settle();
    EXPECT_EQ(ScreenPixel(50, 50), Red);
}

TEST_F(ObjectPaint, MarkUsesTheBoxsMarkColourAndThePenWidth) {
    Box->SetclMarkPen(clGreen);
    Gen().Pen().SetWidth(3);
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    Store->Select(o);
    o->Mark();
    EXPECT_EQ(Canvas().Pen().Width(), 3);
    EXPECT_EQ(Canvas().Pen().Color(), clGreen);
    EXPECT_EQ(SurfacePixel(50, 50), Green);
}

TEST_F(ObjectPaint, HideRepaintsWithoutTheObjectAtOnceAndUnselects) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    MarkObject(o);
    ASSERT_TRUE(o->Selected());
    const int paints = Paints;
    o->Hide();
    // The repaint ran before `Hide` returned.
    EXPECT_EQ(Paints, paints + 1);
    EXPECT_EQ(SurfacePixel(60, 50), White);
    EXPECT_EQ(SurfacePixel(50, 50), White);
    EXPECT_FALSE(o->State.Contains(isVisible));
    EXPECT_FALSE(o->Selected());
    EXPECT_FALSE(o->State.Contains(isMarked));
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), White);
}

TEST_F(ObjectPaint, UpdateRepaintsTheObjectAtOnce) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    Gen().Brush().SetColor(clGreen);
    const int paints = Paints;
    o->Update();
    EXPECT_EQ(Paints, paints + 1);
    EXPECT_EQ(SurfacePixel(60, 50), Green);
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), Green);
}

TEST_F(ObjectPaint, InvalidateGrowsTheRestoreRectByTheMaximumLimits) {
    Gen().SetOptions(TGeneratorOptions{goShadows});
    TTestObject* a = AddObj(Point(50, 40));
    TTestObject* b = AddObj(Point(100, 20), "b", 5, 5);
    Store->InitRestoreRect();
    a->Invalidate();
    const TLimRec la = a->GetMaxLimits();
    EXPECT_EQ(la, LimRec(50 - 13, 40 - 10, 70 + 13, 60 + 10));
    EXPECT_EQ(Store->FRestoreRect, la);
    b->Invalidate();
    EXPECT_EQ(Store->FRestoreRect, LimRec(37, 20 - 10, 105 + 13, 70));
    // Nothing was painted: the repaint waits for the flush.
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
    const int paints = Paints;
    Store->InvalidateRestoreRect();
    Settle();
    EXPECT_EQ(Paints, paints + 1);
}

TEST_F(ObjectPaint, InvalidateAdjustsToAChangedScaleFirst) {
    TTestObject* o = AddObj(Point(50, 40));
    Box->ScaleSetting().State.Include(scChanged);
    o->Invalidate();
    EXPECT_EQ(o->Adjusted, 1);
    Box->ScaleSetting().State.Exclude(scChanged);
    o->Invalidate();
    EXPECT_EQ(o->Adjusted, 1);
}

TEST_F(ObjectPaint, InvalidatedObjectIsRepaintedAtTheFlushOnly) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    Gen().Brush().SetColor(clGreen);
    o->Invalidate();
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), Blue);
    Store->InvalidateRestoreRect();
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), Green);
}

TEST_F(ObjectPaint, ShadowDrawnTwiceWithAnInvertingPenIsErased) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    Canvas().Pen().SetMode(pmNot);
    Canvas().Brush().SetStyle(bsClear);
    o->DrawShadow();
    EXPECT_EQ(SurfacePixel(50, 50), White);
    EXPECT_EQ(SurfacePixel(60, 40), White);
    Settle();
    EXPECT_EQ(ScreenPixel(60, 40), White);
    o->HideShadow();
    EXPECT_EQ(SurfacePixel(50, 50), Black);
    Settle();
    EXPECT_EQ(ScreenPixel(50, 50), Black);
}

// A raster device with a canvas and a scale setting of its own, as printing and export use.
struct TOwnDevice {
    TOwnDevice() : Image(200, 150, QImage::Format_RGB32), Scale(&Canvas) {
        Image.fill(Qt::white);
        DC = CreateImageDC(&Image);
        Canvas.SetHandle(DC);
        Scale.SetMinUnit(TLenUnits::Pixel);
        Scale.InitMapping(96);
        Scale.SetVPOrg(Point(5, 5));
        Scale.SetupScale();
    }
    ~TOwnDevice() {
        Canvas.SetHandle(nullptr);
        DeleteDC(DC);
    }
    QRgb Pixel(int X, int Y) const { return Image.pixel(X, Y) & 0xFFFFFF; }
    QImage Image;
    HDC DC = nullptr;
    TCanvas Canvas;
    TScaleSetting Scale;
};

TEST_F(ObjectPaint, PrintDrawsOnTheCanvasOfTheScaleSettingInForce) {
    TTestObject* o = AddObj(Point(50, 40));
    o->State.Include(isMarked);
    PaintAll();
    TOwnDevice device;
    ActScaleSet = &device.Scale;
    Shapes.clear();
    o->Print();
    ActScaleSet = &Box->ScaleSetting();
    // Printed at the device's own mapping, without the mark.
    ASSERT_EQ(Shapes.size(), 1u);
    EXPECT_EQ(device.Pixel(65, 55), Blue);
    EXPECT_EQ(device.Pixel(55, 55), Black);
    EXPECT_EQ(device.Pixel(54, 55), White);
    // The box is left alone.
    EXPECT_TRUE(Box->Surface().Blit().isEmpty());
    EXPECT_EQ(SurfacePixel(50, 50), Red);
}

TEST_F(ObjectPaint, PrintLeavesAnInvisibleObjectOut) {
    TTestObject* o = AddObj(Point(50, 40));
    o->SetVisible(false);
    TOwnDevice device;
    ActScaleSet = &device.Scale;
    o->Print();
    Gen().SetRtOptions(TRuntimeOptions{roHidden});
    o->SetVisible(true);
    o->Print();
    ActScaleSet = &Box->ScaleSetting();
    EXPECT_TRUE(Shapes.empty());
    EXPECT_EQ(device.Pixel(65, 55), White);
}

} // namespace
} // namespace vl::test
