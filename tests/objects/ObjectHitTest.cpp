// The hit test of an object: `Found`, `CheckFrame` in its three modes, shape regions, selection and
// sizing flags.
#include "ObjectPaintSupport.h"

namespace vl::test {
namespace {

using ObjectHit = PaintFixture;

TEST_F(ObjectHit, FoundOnAnInvisibleObjectIsFalseWithoutAskingTheShape) {
    TTestObject* o = AddObj(Point(50, 40));
    o->SetVisible(false);
    EXPECT_FALSE(o->Found(LimRec(55, 45, 57, 47)));
    EXPECT_EQ(o->ShapeChecks, 0);
}

TEST_F(ObjectHit, FoundOnAnObjectOfAHiddenToolIsFalseWithoutAskingTheShape) {
    TTestObject* o = AddObj(Point(50, 40));
    Gen().SetRtOptions(TRuntimeOptions{roHidden});
    EXPECT_FALSE(o->Found(LimRec(55, 45, 57, 47)));
    EXPECT_EQ(o->ShapeChecks, 0);
}

TEST_F(ObjectHit, FoundOutsideTheFrameIsFalseWithoutAskingTheShape) {
    TTestObject* o = AddObj(Point(50, 40));
    // The frame reaches three pen widths beyond the limits: 47 to 73.
    EXPECT_FALSE(o->Found(LimRec(74, 45, 76, 47)));
    EXPECT_EQ(o->ShapeChecks, 0);
    EXPECT_TRUE(o->Found(LimRec(73, 45, 76, 47)));
    EXPECT_EQ(o->ShapeChecks, 1);
    o->ShapeHit = false;
    EXPECT_FALSE(o->Found(LimRec(55, 45, 57, 47)));
    EXPECT_EQ(o->ShapeChecks, 2);
}

TEST_F(ObjectHit, FoundAdjustsToAChangedScaleFirst) {
    TTestObject* o = AddObj(Point(50, 40));
    o->SetVisible(false);
    Box->ScaleSetting().State.Include(scChanged);
    EXPECT_FALSE(o->Found(LimRec(55, 45, 57, 47)));
    EXPECT_EQ(o->Adjusted, 1);
    Box->ScaleSetting().State.Exclude(scChanged);
}

TEST_F(ObjectHit, FoundDoesNotLookAtDontFind) {
    TTestObject* o = AddObj(Point(50, 40));
    Gen().SetOptions(TGeneratorOptions{goDontFind});
    EXPECT_TRUE(o->Found(LimRec(55, 45, 57, 47)));
}

TEST_F(ObjectHit, LastObjectInZOrderIsFoundUnderAPoint) {
    TTestObject* lower = AddObj(Point(50, 40), "lower");
    TTestObject* upper = AddObj(Point(60, 45), "upper");
    auto find = [&](TPoint P) {
        TLimRec lims = LimRec(P.x - 1, P.y - 1, P.x + 1, P.y + 1);
        TvlObject* hit = nullptr;
        Store->AllObjects(
            [&](TvlObject* O, void*) {
                if (O->Found(lims)) hit = O;
            },
            nullptr);
        return hit;
    };
    EXPECT_EQ(find(Point(52, 42)), lower);
    EXPECT_EQ(find(Point(65, 50)), upper);
    EXPECT_EQ(find(Point(200, 150)), nullptr);
}

TEST_F(ObjectHit, CheckFrameWithAPointOnTheEdgeIsTrue) {
    TTestObject* o = AddObj(Point(50, 40));
    const TLimRec l = o->GetMaxLimits();
    ASSERT_EQ(l, LimRec(47, 37, 73, 63));
    for (TPoint p : {Point(47, 37), Point(73, 63), Point(47, 63), Point(73, 37)})
        EXPECT_TRUE(o->CheckFrame(&p, cfPoint));
    for (TPoint p : {Point(46, 40), Point(74, 40), Point(50, 36), Point(50, 64)})
        EXPECT_FALSE(o->CheckFrame(&p, cfPoint));
}

TEST_F(ObjectHit, CheckFrameWithARectangleTouchingTheEdgeIsTrue) {
    TTestObject* o = AddObj(Point(50, 40));
    TRect touchRight = Rect(73, 0, 100, 37);
    EXPECT_TRUE(o->CheckFrame(&touchRight, cfRect));
    TRect beyond = Rect(74, 0, 100, 37);
    EXPECT_FALSE(o->CheckFrame(&beyond, cfRect));
    TLimRec touchLim = LimRec(0, 0, 47, 37);
    EXPECT_TRUE(o->CheckFrame(&touchLim, cfLimRec));
    TLimRec beyondLim = LimRec(0, 0, 46, 37);
    EXPECT_FALSE(o->CheckFrame(&beyondLim, cfLimRec));
}

TEST_F(ObjectHit, CheckFrameOnAFlippedAxisNeedsARectangleThatSpansTheObject) {
    TTestObject* o = AddObj(Point(50, 40));
    Box->ScaleSetting().SetOrigin(TOrigin::RightBottom);
    // Overlap from the right and below is not enough on flipped axes...
    TRect overlap = Rect(100, 100, 60, 50);
    EXPECT_FALSE(o->CheckFrame(&overlap, cfRect));
    // ... the rectangle must span the frame, edges included.
    TRect span = Rect(73, 63, 47, 37);
    EXPECT_TRUE(o->CheckFrame(&span, cfRect));
    Box->ScaleSetting().SetOrigin(TOrigin::LeftTop);
    TRect plain = Rect(60, 50, 100, 100);
    EXPECT_TRUE(o->CheckFrame(&plain, cfRect));
}

TEST_F(ObjectHit, SquareGivesNoLogicalRegionButADeviceRectangle) {
    Gen().SetShape(stSquare);
    TTestObject* o = AddObj(Point(50, 40));
    EXPECT_EQ(o->CreateShapeRgn(rmLog), nullptr);
    SetWindowOrgEx(Canvas().Handle(), -50, -40);
    HRGN rgn = o->CreateShapeRgn(rmDev);
    SetWindowOrgEx(Canvas().Handle(), 0, 0);
    ASSERT_NE(rgn, nullptr);
    TRect box{};
    GetRgnBox(rgn, &box);
    EXPECT_EQ(box, Rect(50, 40, 70, 60));
    DeleteObject(rgn);
}

TEST_F(ObjectHit, ShapeRegionsFollowTheShape) {
    TTestObject* o = AddObj(Point(50, 40), "o", 40, 20);
    Gen().SetShape(stEllipse);
    HRGN ellipse = o->CreateShapeRgn(rmLog);
    ASSERT_NE(ellipse, nullptr);
    EXPECT_TRUE(PtInRegion(ellipse, 20, 10));
    EXPECT_FALSE(PtInRegion(ellipse, 1, 1));
    DeleteObject(ellipse);
    Gen().SetShape(stRectangle);
    HRGN rect = o->CreateShapeRgn(rmLog);
    EXPECT_TRUE(PtInRegion(rect, 1, 1));
    EXPECT_FALSE(PtInRegion(rect, 40, 10));
    DeleteObject(rect);
    Gen().SetShape(stRoundRect);
    HRGN round = o->CreateShapeRgn(rmLog);
    EXPECT_FALSE(PtInRegion(round, 0, 0));
    EXPECT_TRUE(PtInRegion(round, 20, 0));
    DeleteObject(round);
    Gen().SetShape(stLine);
    EXPECT_EQ(o->CreateShapeRgn(rmLog), nullptr);
    EXPECT_EQ(o->CreateShapeRgn(rmDev), nullptr);
}

TEST_F(ObjectHit, ShapeRegionEventReplacesTheShapes) {
    TTestObject* o = AddObj(Point(50, 40));
    HRGN given = CreateRectRgn(0, 0, 3, 3);
    std::vector<TRgnMode> modes;
    Tool->OnObjectShapeRgn = [&](TvlObject* Obj, TRgnMode Mode, HRGN& Rgn) {
        EXPECT_EQ(Obj, o);
        EXPECT_EQ(Rgn, nullptr);
        modes.push_back(Mode);
        Rgn = given;
    };
    Gen().SetShape(stLine);
    EXPECT_EQ(o->CreateShapeRgn(rmDev), given);
    EXPECT_EQ(modes, (std::vector<TRgnMode>{rmDev}));
    DeleteObject(given);
}

TEST_F(ObjectHit, SelectedGoesThroughTheDataModule) {
    TTestObject* o = AddObj(Point(50, 40));
    o->SetSelected(true);
    EXPECT_TRUE(o->Selected());
    EXPECT_EQ(Store->MarkList(), (std::vector<TvlObject*>{o}));
    o->SelectComplete(smUnselect);
    EXPECT_FALSE(o->Selected());
    EXPECT_EQ(Store->MarkCount(), 0);
}

TEST_F(ObjectHit, SizingOnANoSizingObjectStaysOff) {
    Gen().SetOptions(TGeneratorOptions{goNoSizing});
    TTestObject* o = AddObj(Point(50, 40));
    o->SetSizing(true);
    EXPECT_FALSE(o->Sizing());
}

TEST_F(ObjectHit, SizingOffInvalidatesWithTheHandlesMarginFirst) {
    TTestObject* o = AddObj(Point(50, 40));
    o->SetSizing(true);
    EXPECT_TRUE(o->Sizing());
    SizingHandle = szX2Y2;
    const TLimRec withHandles = o->GetMaxLimits();
    Store->InitRestoreRect();
    o->SetSizing(false);
    EXPECT_EQ(Store->FRestoreRect, withHandles);
    EXPECT_FALSE(o->Sizing());
    EXPECT_EQ(SizingHandle, szNone);
}

TEST_F(ObjectHit, LeavingTheMarkListInvalidatesAMarkedObject) {
    TTestObject* o = AddObj(Point(50, 40));
    o->State.Include(isSelected);
    Store->InitRestoreRect();
    o->RemoveSelectFlag();
    EXPECT_EQ(Store->FRestoreRect.Xmin, 0x7FFFFFFF);
    o->State.Include(isSelected);
    o->State.Include(isMarked);
    o->State.Include(isSizing);
    o->RemoveSelectFlag();
    ASSERT_EQ(Box->ScaleSetting().GetTempFrame(), 3);
    EXPECT_EQ(Store->FRestoreRect, LimRec(44, 34, 76, 66));
    EXPECT_FALSE(o->State.Contains(isMarked));
    EXPECT_FALSE(o->State.Contains(isSizing));
    EXPECT_FALSE(o->Selected());
}

} // namespace
} // namespace vl::test
