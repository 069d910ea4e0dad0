// Point objects: placement by the hot spot, size, master and slave, the stream form with the angle,
// the hit test through the data module's search, the angle in all its forms, and turning.
#include "PointObjSupport.h"

#include "geometry/Vlprocs.h"
#include "geometry/Vlrotation.h"
#include "platform/core/Streams.h"
#include "support/InputHelpers.h"

#include <cmath>
#include <numbers>

namespace vl::test {
namespace {

constexpr double Pi = std::numbers::pi;

using PointObj = PointFixture;

// The bytes `Obj` writes in `Mode`.
QByteArray Written(TPointObj& Obj, TPstMode Mode) {
    TMemoryStream s;
    Obj.Persist(&s, Mode);
    return s.Bytes();
}

// --- Placement and size ------------------------------------------------------------------------------

TEST_F(PointObj, TheHotSpotStandsAtThePosition) {
    Gen().SetHotspotX(10);
    Gen().SetHotspotY(5);
    TPointObj* obj = Tool->Place(Point(100, 60));
    EXPECT_EQ(obj->MinX(), 90);
    EXPECT_EQ(obj->MinY(), 55);
    EXPECT_EQ(obj->MaxX(), 130);
    EXPECT_EQ(obj->MaxY(), 75);
    EXPECT_EQ(obj->Limits(), LimRec(90, 55, 130, 75));
}

TEST_F(PointObj, NegativeGeneratorSizeCountsByItsAbsoluteValue) {
    Gen().SetWidth(-20);
    Gen().SetHeight(15);
    TPointObj* obj = Tool->Place(Point(0, 0));
    EXPECT_EQ(obj->Width(), 20);
    EXPECT_EQ(obj->Height(), 15);
}

TEST_F(PointObj, DefaultClassOfACreatorIsThePointObject) {
    std::unique_ptr<TvlObject> made(Tool->CreateObject());
    EXPECT_NE(dynamic_cast<TPointObj*>(made.get()), nullptr);
}

TEST_F(PointObj, SetMasterHangsTheObjectAtTheSlaveOffsetAndFreesItWhereItStands) {
    Gen().SetSlaveX(7);
    Gen().SetSlaveY(-3);
    TPointObj* master = Tool->Place(Point(100, 100));
    TPointObj* slave = Tool->Place(Point(0, 0));
    slave->SetMaster(master);
    EXPECT_TRUE(slave->State.Contains(isSlave));
    EXPECT_EQ(slave->GetMaster(), master);
    EXPECT_EQ(slave->Pos_Log(), Point(107, 97));
    master->SetPos(Point(200, 50));
    EXPECT_EQ(slave->Pos_Log(), Point(207, 47));
    slave->SetMaster(nullptr);
    EXPECT_FALSE(slave->State.Contains(isSlave));
    EXPECT_EQ(slave->Pos_Log(), Point(207, 47));
    master->SetPos(Point(0, 0));
    EXPECT_EQ(slave->Pos_Log(), Point(207, 47));
}

TEST_F(PointObj, ObjectsLeaveTheDrawingWithTheirTool) {
    // A tool made after the data module, as a host may add one at run time.
    auto* late = new TPointTool(Form.get());
    late->SetDrawForm(Box);
    Tool->Place(Point(10, 10));
    late->Place(Point(50, 50));
    TvlObject* gone = late->Place(Point(90, 90));
    Box->SetMouseFnd(gone);
    ASSERT_EQ(Store->GetCount(), 3);
    delete late;
    EXPECT_EQ(Store->GetCount(), 1);
    EXPECT_EQ(Box->MouseFnd(), nullptr);
    EXPECT_EQ(Store->ObjectAt(0, 0)->Tool(), Tool);
}

// --- Stream form -------------------------------------------------------------------------------------

class PointPersist : public PointObj {
protected:
    void SetUp() override {
        PointObj::SetUp();
        Tool->ChangeID = [](TObject*, TNewID& ID) { ID = -7; };
        SetOptions({goRotation});
        Obj = std::make_unique<TPointObj>(Tool);
        Obj->State = TIndividualState(isVisible);
        Obj->SetPos(Point(0x01020304, -2));
        Obj->SetAlpha(1.5);
    }
    // The object goes before its tool.
    void TearDown() override {
        Obj.reset();
        PointObj::TearDown();
    }
    std::unique_ptr<TPointObj> Obj;
};

TEST_F(PointPersist, SaveAndCopyWriteTheBaseRecordAndTheAngle) {
    ASSERT_EQ(Obj->GetAlphaPlain(), 1500);
    EXPECT_EQ(Written(*Obj, TPstMode::pstSave), HexBytes("F9FF 0000 0100 04030201 FEFFFFFF DC05"));
    EXPECT_EQ(Written(*Obj, TPstMode::pstCopy), HexBytes("F9FF 0000 0100 04030201 FEFFFFFF DC05"));
}

TEST_F(PointPersist, ConnectModesWriteAndReadNothing) {
    EXPECT_TRUE(Written(*Obj, TPstMode::pstConnect).isEmpty());
    EXPECT_TRUE(Written(*Obj, TPstMode::pstConnectCopy).isEmpty());
    Obj->Persist(nullptr, TPstMode::pstConnect);
    EXPECT_EQ(Obj->GetAlphaPlain(), 1500);
}

TEST_F(PointPersist, LoadReadsTheAngleBack) {
    TMemoryStream s;
    Obj->SaveToStream(s);
    s.SetPosition(2);
    TPointObj back(Tool);
    back.LoadFromStream(s);
    EXPECT_EQ(s.Position(), 16);
    EXPECT_EQ(back.GetAlphaPlain(), 1500);
    EXPECT_EQ(back.Pos_Log(), Point(0x01020304, -2));
    EXPECT_TRUE(back.Rotated());
}

TEST_F(PointPersist, PasteReadsTheAngleAfterTheOldNumber) {
    TMemoryStream s;
    Obj->Persist(&s, TPstMode::pstCopy);
    s.SetPosition(2);
    TPointObj back(Tool);
    back.Persist(&s, TPstMode::pstPaste);
    EXPECT_EQ(s.Position(), 16);
    EXPECT_EQ(back.GetAlphaPlain(), 1500);
}

TEST_F(PointPersist, FilesBeforeTheAngleLeaveItZero) {
    // Version 0x2003: the number in 4 bytes and no angle; what follows belongs to the next record.
    FileHeader.Vellorum = static_cast<std::int16_t>(-0x2003);
    TMemoryStream s;
    s.Write(HexBytes("0500 0000 0100 0A000000 14000000 7777").constData(), 16);
    s.SetPosition(0);
    TPointObj back(Tool);
    back.SetAlphaPlain(900);
    back.LoadFromStream(s);
    EXPECT_EQ(s.Position(), 14);
    EXPECT_EQ(back.GetAlphaPlain(), 0);
    EXPECT_EQ(back.ID(), 5);
    EXPECT_EQ(back.Pos_Log(), Point(10, 20));
}

TEST_F(PointPersist, FilesSinceVersion2004CarryTheAngle) {
    FileHeader.Vellorum = static_cast<std::int16_t>(-0x2004);
    TMemoryStream s;
    s.Write(HexBytes("0500 0000 0100 0A000000 14000000 1B06").constData(), 16);
    s.SetPosition(0);
    TPointObj back(Tool);
    back.LoadFromStream(s);
    EXPECT_EQ(s.Position(), 16);
    EXPECT_EQ(back.GetAlphaPlain(), 0x061B);
}

// --- Hit test through the data module's search ---------------------------------------------------

TEST_F(PointObj, EllipseIsHitInsideAndMissedInTheCornerOfItsBox) {
    Gen().SetShape(stEllipse);
    TPointObj* obj = Tool->Place(Point(100, 100));
    EXPECT_EQ(Store->FindAt(0, 120, 110), obj);
    EXPECT_EQ(Store->FindAt(0, 101, 101), nullptr);
    EXPECT_EQ(Store->FindAt(0, 160, 110), nullptr);
}

TEST_F(PointObj, RotatedRectangleMissesAPointInsideItsUnrotatedBox) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetAlpha(Pi / 4);
    ASSERT_TRUE(obj->Rotated());
    // Inside the unrotated 40 by 20 box and inside the rotated limits, but beside the turned outline.
    EXPECT_EQ(Store->FindAt(0, 120, 105), nullptr);
    EXPECT_EQ(Store->FindAt(0, 105, 120), obj);
    obj->SetAlpha(0);
    EXPECT_EQ(Store->FindAt(0, 120, 105), obj);
}

TEST_F(PointObj, SquareIsFoundAnywhereInItsFrameSinceItHasNoLogicalRegion) {
    Gen().SetShape(stSquare);
    TPointObj* obj = Tool->Place(Point(100, 100));
    EXPECT_EQ(obj->CreateShapeRgn(rmLog), nullptr);
    // The square is 20 by 20; (130, 110) lies beside it but inside the 40 by 20 frame.
    EXPECT_EQ(Store->FindAt(0, 130, 110), obj);
    EXPECT_EQ(Store->FindAt(0, 150, 110), nullptr);
}

TEST_F(PointObj, LineHitTestsTheDiagonalInAbsoluteCoordinatesAgainstALocalRectangle) {
    Gen().SetShape(stLine);
    TPointObj* atOrigin = Tool->Place(Point(0, 0));
    // At the origin the local rectangle is the absolute one: a point on the diagonal hits.
    EXPECT_EQ(Store->FindAt(0, 20, 10), atOrigin);
    EXPECT_EQ(Store->FindAt(0, 20, 19), nullptr);
    // Elsewhere the kept test misses the diagonal on the screen.
    TPointObj* away = Tool->Place(Point(100, 100));
    EXPECT_EQ(Store->FindAt(0, 120, 110), nullptr);
    EXPECT_FALSE(away->CheckShape(LimRec(120, 110, 121, 111)));
}

TEST_F(PointObj, RisingLineIsTestedAlongTheRisingDiagonal) {
    Gen().SetShape(stLine);
    Gen().SetHeight(-20);
    TPointObj* obj = Tool->Place(Point(0, 0));
    EXPECT_EQ(Store->FindAt(0, 2, 19), obj);
    EXPECT_EQ(Store->FindAt(0, 2, 2), nullptr);
}

TEST_F(PointObj, HostCheckShapeAnswersAndStartsFromTrue) {
    TPointObj* obj = Tool->Place(Point(100, 100));
    TRect seen{};
    Tool->OnObjectCheckShape = [&](TvlObject*, const TRect& PosRect, bool&) { seen = PosRect; };
    EXPECT_TRUE(obj->CheckShape(LimRec(1, 2, 3, 4)));
    EXPECT_EQ(seen, Rect(1, 2, 3, 4));
    Tool->OnObjectCheckShape = [](TvlObject*, const TRect&, bool& Found) { Found = false; };
    EXPECT_EQ(Store->FindAt(0, 120, 110), nullptr);
}

TEST_F(PointObj, FoundObjectShowsTheToolsCursorWithFndCursor) {
    Tool->SetCursor(crHandPoint);
    Box->SetCursor(crArrow);
    TPointObj* obj = Tool->Place(Point(100, 100));
    EXPECT_TRUE(obj->CheckShape(LimRec(110, 110, 111, 111)));
    EXPECT_EQ(Box->Cursor(), crArrow);
    SetOptions({goFndCursor});
    EXPECT_TRUE(obj->CheckShape(LimRec(110, 110, 111, 111)));
    EXPECT_EQ(Box->Cursor(), crHandPoint);
}

// --- The angle ------------------------------------------------------------------------------------

TEST_F(PointObj, SetAlphaWithoutRotationChangesNothing) {
    TPointObj* obj = Tool->Place(Point(0, 0));
    obj->SetAlpha(1.0);
    obj->SetAlpha_DEG(45);
    obj->SetAlpha_DEG10(450);
    EXPECT_EQ(obj->GetAlphaPlain(), 0);
    EXPECT_FALSE(obj->Rotated());
    obj->SetAlphaPlain(1000);
    EXPECT_FALSE(obj->Rotated()) << "only a tool with goRotation turns its objects";
}

TEST_F(PointObj, FullCircleInDegreesStaysAndCountsAsRotated) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(0, 0));
    obj->SetAlpha_DEG(360);
    EXPECT_EQ(obj->GetAlphaPlain(), 6283);
    EXPECT_TRUE(obj->Rotated());
    EXPECT_EQ(obj->Alpha_DEG10(), 3600);
    EXPECT_EQ(obj->Quadrant(), 4);
    obj->SetAlpha_DEG(361);
    EXPECT_EQ(obj->GetAlphaPlain(), 17);
    EXPECT_NEAR(obj->Alpha_DEG(), 1.0, 0.03);
}

TEST_F(PointObj, AngleWrapsInEveryForm) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(0, 0));
    obj->SetAlpha(-Pi / 2);
    EXPECT_EQ(obj->GetAlphaPlain(), 4712);
    obj->SetAlpha(2 * Pi);
    EXPECT_EQ(obj->GetAlphaPlain(), 6283);
    obj->SetAlpha(2 * Pi + 1);
    EXPECT_EQ(obj->GetAlphaPlain(), 1000);
    obj->SetAlpha_DEG(-90);
    EXPECT_EQ(obj->GetAlphaPlain(), 4712);
    obj->SetAlpha_DEG10(-900);
    EXPECT_EQ(obj->GetAlphaPlain(), 4712);
    obj->SetAlpha_DEG10(3600);
    EXPECT_EQ(obj->GetAlphaPlain(), 6283);
    obj->SetAlpha_DEG10(7200);
    EXPECT_EQ(obj->GetAlphaPlain(), 6283);
    obj->SetAlpha_DEG10(4500);
    EXPECT_EQ(obj->GetAlphaPlain(), 1571);
    obj->SetAlpha(1e30);
    EXPECT_GE(obj->GetAlphaPlain(), 0);
    EXPECT_LE(obj->GetAlphaPlain(), 6283);
    obj->SetAlphaPlain(300);
    obj->SetAlpha(std::nan(""));
    EXPECT_EQ(obj->GetAlphaPlain(), 300) << "an angle that is no number leaves the object alone";
}

TEST_F(PointObj, AnglesBelowATwentiethOfADegreeAreNotRotated) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(0, 0));
    obj->SetAlphaPlain(0);
    EXPECT_FALSE(obj->Rotated());
    obj->SetAlphaPlain(1); // 0.057 degrees
    EXPECT_TRUE(obj->Rotated());
    obj->SetAlphaPlain(6283);
    EXPECT_TRUE(obj->Rotated());
}

TEST_F(PointObj, QuadrantFollowsTheAngle) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(0, 0));
    const std::pair<double, int> cases[] = {{0, 1},   {1.5, 1}, {1.6, 2}, {3.1, 2},
                                            {3.2, 3}, {4.7, 3}, {4.8, 4}};
    for (const auto& [alpha, quadrant] : cases) {
        obj->SetAlpha(alpha);
        EXPECT_EQ(obj->Quadrant(), quadrant) << alpha;
    }
}

TEST_F(PointObj, NoSizingSlaveTurnsWithItsMaster) {
    SetOptions({goRotation});
    TPointTool* slaves = Slaves;
    TGeneratorOptions options{goNoSizing};
    options.Include(goRotation);
    slaves->Generator()->SetOptions(options);
    TPointObj* master = Tool->Place(Point(100, 100));
    TPointObj* slave = slaves->Place(Point(0, 0));
    slave->SetMaster(master);
    slave->SetAlphaPlain(3000);
    master->SetAlpha(0.5);
    EXPECT_DOUBLE_EQ(slave->GetAlpha(), 0.5);
    EXPECT_EQ(slave->GetAlphaPlain(), 3000);
    slave->SetMaster(nullptr);
    EXPECT_DOUBLE_EQ(slave->GetAlpha(), 3.0);
}

TEST_F(PointObj, NoSizingSlaveOfAnObjectWithoutAngleKeepsItsOwn) {
    TPointTool* slaves = Slaves;
    slaves->Generator()->SetOptions(TGeneratorOptions{goNoSizing});
    TvlObject plain(Tool);
    TPointObj* slave = slaves->Place(Point(0, 0));
    slave->SetMaster(&plain);
    slave->SetAlphaPlain(1200);
    EXPECT_DOUBLE_EQ(slave->GetAlpha(), 1.2);
    slave->SetMaster(nullptr);
}

// --- Turning --------------------------------------------------------------------------------------

TEST_F(PointObj, RotateAboutItsOwnPositionChangesOnlyTheAngle) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->Rotate(Point(100, 100), 0.5);
    EXPECT_EQ(obj->Pos_Log(), Point(100, 100));
    EXPECT_EQ(obj->GetAlphaPlain(), 500);
}

TEST_F(PointObj, RotateAboutAnotherPointMovesThePositionRound) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->Rotate(Point(0, 0), Pi / 2);
    EXPECT_EQ(obj->Pos_Log(), Point(-100, 100));
    EXPECT_EQ(obj->GetAlphaPlain(), 1571);
}

TEST_F(PointObj, RotatedLineHasZeroLimitsAndNoRegion) {
    SetOptions({goRotation});
    Gen().SetShape(stLine);
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetAlpha(1.0);
    EXPECT_EQ(obj->Limits(), LimRec(0, 0, 0, 0));
    EXPECT_EQ(obj->CreateShapeRgn(rmLog), nullptr);
    std::unique_ptr<TPoint[]> points;
    EXPECT_EQ(obj->CreatePolyPntsEx(points), 0);
}

TEST_F(PointObj, RotatedLimitsAreTheBoundsOfTheTurnedOutline) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetAlpha(Pi / 2); // 1571 thousandths
    const auto outline = RotatedPnts_Rectangle(Rect(0, 0, 40, 20), Point(0, 0), 1.571);
    TLimRec expected = GetPolygonLimits(outline->Points(), outline->Count());
    expected.Xmin += 100;
    expected.Xmax += 100;
    expected.Ymin += 100;
    expected.Ymax += 100;
    EXPECT_EQ(obj->Limits(), expected);
    EXPECT_EQ(obj->Limits(), LimRec(80, 100, 100, 140));
}

TEST_F(PointObj, HitOutlineOfARotatedEllipseFollowsTheOutlineDivision) {
    SetOptions({goRotation});
    Gen().SetShape(stEllipse);
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetAlpha(0.3);
    std::unique_ptr<TPoint[]> points;
    EXPECT_EQ(obj->CreatePolyPntsEx(points), 32);
    const TLimRec with16 = obj->Limits();
    {
        TScopedValue<std::uint16_t> div(Rot_OutlineDiv, std::uint16_t(4));
        EXPECT_EQ(obj->CreatePolyPntsEx(points), 8);
        const auto outline = RotatedPnts_Ellipse(Rect(0, 0, 40, 20), Point(0, 0), 0.3);
        EXPECT_EQ(outline->Count(), 8);
        EXPECT_NE(obj->Limits(), with16);
    }
    EXPECT_EQ(obj->Limits(), with16);
}

TEST_F(PointObj, HitOutlinePointsTurnRoundTheHotSpotWithOneRounding) {
    SetOptions({goRotation});
    Gen().SetHotspotX(10);
    Gen().SetHotspotY(10);
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetAlpha(Pi / 2);
    std::unique_ptr<TPoint[]> points;
    ASSERT_EQ(obj->CreatePolyPntsEx(points), 4);
    const double s = std::sin(1.571);
    const double c = std::cos(1.571);
    const TPoint box[4] = {{0, 0}, {40, 0}, {40, 20}, {0, 20}};
    for (int i = 0; i < 4; ++i) {
        const double x = box[i].x - 10;
        const double y = box[i].y - 10;
        EXPECT_EQ(points[i], Point(std::int32_t(std::lround(x * c - y * s)) + 10,
                                   std::int32_t(std::lround(x * s + y * c)) + 10))
            << i;
    }
    EXPECT_EQ(points[1], Point(20, 40));
}

TEST_F(PointObj, RoundedHitOutlineHasSixteenPointsOnTheCornerArcs) {
    SetOptions({goRotation});
    Gen().SetShape(stRoundRect);
    Gen().SetWidth(80);
    Gen().SetHeight(40);
    TPointObj* obj = Tool->Place(Point(0, 0));
    obj->SetAlphaPlain(1); // nearly unturned: the points are the local ones
    std::unique_ptr<TPoint[]> points;
    ASSERT_EQ(obj->CreatePolyPntsEx(points), 16);
    // R = 40 / 2 = 20, q = 10: the second point lies at (e, f) = (1.34, 5).
    EXPECT_EQ(points[0], Point(0, 10));
    EXPECT_EQ(points[1], Point(1, 5));
    EXPECT_EQ(points[3], Point(10, 0));
    EXPECT_EQ(points[4], Point(70, 0));
    EXPECT_EQ(points[8], Point(80, 30));
    EXPECT_EQ(points[15], Point(0, 30));
}

TEST_F(PointObj, RotateHandleStandsOnTheShape) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(0, 0));
    EXPECT_EQ(obj->RotateHandlePos(), Point(40, 20));
    Gen().SetShape(stEllipse);
    EXPECT_EQ(obj->RotateHandlePos(), Point(40, 10));
    Gen().SetShape(stRoundRect);
    // s = 20 (the height), o = round(20 / 2 / 2 * (1 - cos 45)) = round(1.46) = 1.
    EXPECT_EQ(obj->RotateHandlePos(), Point(39, 19));
    Gen().SetHeight(200);
    Gen().SetWidth(100);
    // s = 100 (the width), o = round(100 / 2 / 2 * 0.2929) = round(7.3) = 7.
    EXPECT_EQ(obj->RotateHandlePos(), Point(93, 193));
}

TEST_F(PointObj, RotateHandleIsHitAroundItsTurnedPosition) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetSizing(true);
    const std::int32_t f = Box->ScaleSetting().GetTempFrame();
    EXPECT_TRUE(obj->SizingHandles(Point(40 + f, 20 - f), smCheck));
    EXPECT_EQ(SizingHandle, szRotate);
    EXPECT_EQ(Box->Cursor(), CursorRotate);
    obj->SetAlpha(Pi / 2);
    EXPECT_FALSE(obj->SizingHandles(Point(40, 20), smCheck));
    EXPECT_EQ(SizingHandle, szNone);
    EXPECT_EQ(Box->Cursor(), crArrow);
    // Turned a quarter round the hot spot (0, 0), the handle (40, 20) stands at (-20, 40).
    EXPECT_TRUE(obj->SizingHandles(Point(-20, 40), smCheck));
    EXPECT_TRUE(obj->CheckShape(LimRec(80, 140, 81, 141))) << "a hit on the handle is a hit";
}

TEST_F(PointObj, WithoutRotationThereIsNoHandle) {
    TPointObj* obj = Tool->Place(Point(0, 0));
    SizingHandle = szRotate;
    EXPECT_FALSE(obj->SizingHandles(Point(40, 20), smCheck));
    EXPECT_EQ(SizingHandle, szNone);
}

TEST_F(PointObj, PaintingTheHandlesLetsGoOfTheHeldHandle) {
    SetOptions({goRotation, goFndCursor});
    Tool->SetCursor(crHandPoint);
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetSizing(true);
    ASSERT_TRUE(obj->SizingHandles(Point(40, 20), smCheck));
    ASSERT_EQ(SizingHandle, szRotate);
    // Drawing the handle (the paint of a marked, sizing object) resets what the check had set.
    SetWindowOrgEx(Canvas().Handle(), -obj->MinX(), -obj->MinY());
    EXPECT_FALSE(obj->SizingHandles(Point(0, 0), smShape));
    EXPECT_EQ(SizingHandle, szNone);
    EXPECT_EQ(Box->Cursor(), crHandPoint);
}

TEST_F(PointObj, MovingTheRotateHandleTurnsTheObjectAfterTheMouse) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetSizing(true);
    SizingHandle = szRotate;
    // The arm is 40 long; a mouse 40 down from the handle makes 45 degrees.
    obj->MovePos(Point(0, 40));
    EXPECT_EQ(obj->GetAlphaPlain(), 785);
    EXPECT_EQ(obj->Pos_Log(), Point(100, 100));
    obj->SetAlphaPlain(0);
    obj->MovePos(Point(-40, 10));
    EXPECT_EQ(obj->GetAlphaPlain(), 1571);
    obj->SetAlphaPlain(0);
    obj->MovePos(Point(-40, -10));
    EXPECT_EQ(obj->GetAlphaPlain(), 4712);
    obj->SetAlphaPlain(0);
    obj->MovePos(Point(-80, 0));
    EXPECT_EQ(obj->GetAlphaPlain(), 3142);
    obj->SetAlphaPlain(0);
    obj->MovePos(Point(-60, -20));
    EXPECT_EQ(obj->GetAlphaPlain(), 3927); // pi + 45 degrees
}

TEST_F(PointObj, WithoutTheRotateHandleAMoveMoves) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 100));
    SizingHandle = szRotate; // held, but the object is not sizing
    obj->MovePos(Point(5, -5));
    EXPECT_EQ(obj->Pos_Log(), Point(105, 95));
    EXPECT_EQ(obj->GetAlphaPlain(), 0);
}

} // namespace
} // namespace vl::test
