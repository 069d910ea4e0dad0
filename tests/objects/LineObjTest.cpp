// Line objects: the two ends free and on masters, the box with the line tolerance, the direction,
// squaring of the square shapes, turning by the ends, the hit test that gives way to the masters,
// selection and the links of the ends, the sizing handles of the three shape families, sizing and
// moving, the stream form of the second end, and drawing between two masters.
#include "PointObjSupport.h"

#include "geometry/FileHeader.h"
#include "geometry/Vlprocs.h"
#include "objects/LineObj.h"
#include "platform/core/Streams.h"
#include "platform/graphics/Cursors.h"
#include "support/InputHelpers.h"
#include "surface/Grid.h"

#include <cmath>
#include <numbers>

namespace vl::test {
namespace {

constexpr double Pi = std::numbers::pi;

// A creator of line objects: one per call, placed by its two ends.
class TLineTool : public TvlCreator {
public:
    explicit TLineTool(TComponent* AOwner) : TvlCreator(AOwner) {}
    TCapClass DefaultClass() override { return &NewObjectOf<TLineObj>; }
    TvlObject* SetNewObj(const TPoint& CurPos) override { return PlaceNewObject(CurPos); }
    // A new line object from `P1` to `P2`, numbered and held by the data module.
    TLineObj* Place(TPoint P1, TPoint P2) {
        auto* line = static_cast<TLineObj*>(PlaceNewObject(P1));
        line->SetPos2(P2);
        return line;
    }
};

// The point object fixture with a creator of lines, black 1-pixel pen and the point tool's solid
// blue brush, shape `stLine` unless a test sets another.
class LineObj : public PointFixture {
protected:
    void MakeTools() override {
        Lines = new TLineTool(Form.get());
        Lines->SetName(QStringLiteral("Lines"));
        Lines->SetDrawForm(Box);
        LineGen().SetShape(stLine);
        LineGen().Pen().SetColor(clBlack);
        LineGen().Pen().SetWidth(1);
        LineGen().Brush().SetColor(clBlue);
        LineGen().Brush().SetStyle(bsSolid);
    }
    TCustomGenerator& LineGen() { return *Lines->Generator(); }
    void SetLineOptions(std::initializer_list<TGeneratorOption> Options) {
        TGeneratorOptions o;
        for (TGeneratorOption opt : Options) o.Include(opt);
        LineGen().SetOptions(o);
    }
    // Both ends placed anew (the ends must be free).
    static void PutEnds(TLineObj* Line, TPoint P1, TPoint P2) {
        Line->SetPos(P1);
        Line->SetX2(P2.x);
        Line->SetY2(P2.y);
    }
    static void ExpectEnds(TLineObj* Line, TPoint P1, TPoint P2, const char* What) {
        EXPECT_EQ(Line->Pos_Log(), P1) << What;
        EXPECT_EQ(Line->Pos2_Log(), P2) << What;
    }

    TLineTool* Lines = nullptr;
};

// The bytes `Obj` writes in `Mode`.
QByteArray Written(TLineObj& Obj, TPstMode Mode) {
    TMemoryStream s;
    Obj.Persist(&s, Mode);
    return s.Bytes();
}

// --- The ends and their masters ------------------------------------------------------------------

TEST_F(LineObj, ACreatorWithTheLineClassMakesLineObjects) {
    std::unique_ptr<TvlObject> made(Lines->CreateObject());
    EXPECT_NE(dynamic_cast<TLineObj*>(made.get()), nullptr);
}

TEST_F(LineObj, FreeEndsAreThePositionsAsStored) {
    TLineObj* line = Lines->Place(Point(10, 20), Point(-30, 45));
    EXPECT_EQ(line->Pos_Log(), Point(10, 20));
    EXPECT_EQ(line->GetPos2(), Point(-30, 45));
    EXPECT_EQ(line->X2_Log(), -30);
    EXPECT_EQ(line->Y2_Log(), 45);
    EXPECT_EQ(line->Pos2Rec().PosLog(), Point(-30, 45));
    EXPECT_EQ(line->Width(), 40);
    EXPECT_EQ(line->Height(), 25);
    EXPECT_EQ(line->Master(), line);
    EXPECT_EQ(line->Master2(), line);
}

TEST_F(LineObj, SlavedFirstEndStandsAtTheMasterWhateverItsOffsetHolds) {
    TPointObj* master = Tool->Place(Point(100, 60));
    // The second half of the free position becomes the offset half when the end is hung: 7 and 3.
    TLineObj* line = Lines->Place(Point(5, 0x00030007), Point(200, 150));
    line->SetMaster(master);
    ASSERT_TRUE(line->State.Contains(isP1Slave));
    EXPECT_EQ(line->PosRec().RelX(), 7);
    EXPECT_EQ(line->PosRec().RelY(), 3);
    EXPECT_EQ(line->Pos_Log(), Point(100, 60));
    EXPECT_EQ(line->Master(), master);
    master->SetPos(Point(120, 70));
    EXPECT_EQ(line->Pos_Log(), Point(120, 70));
    EXPECT_DOUBLE_EQ(line->X_World(), Box->ScaleSetting().LogToWorld(120));
}

TEST_F(LineObj, FirstEndIgnoresTheWholeObjectSlaveFlag) {
    TLineObj* line = Lines->Place(Point(10, 20), Point(50, 60));
    line->State.Include(isSlave);
    EXPECT_EQ(line->X_Log(), 10);
    EXPECT_EQ(line->Y_Log(), 20);
    line->State.Exclude(isSlave);
}

TEST_F(LineObj, FreeingAnEndLeavesItWhereItStands) {
    TPointObj* a = Tool->Place(Point(100, 100));
    TPointObj* b = Tool->Place(Point(30, 40));
    TLineObj* line = Lines->Place(Point(0, 0), Point(0, 0));
    line->SetMaster(a);
    line->SetMaster2(b);
    a->SetPos(Point(200, 50));
    b->SetPos(Point(-20, 75));
    EXPECT_EQ(line->Master2(), b);
    line->SetMaster(nullptr);
    line->SetMaster2(nullptr);
    EXPECT_FALSE(line->State.Contains(isP1Slave));
    EXPECT_FALSE(line->State.Contains(isP2Slave));
    ExpectEnds(line, Point(200, 50), Point(-20, 75), "freed");
    a->SetPos(Point(0, 0));
    b->SetPos(Point(0, 0));
    ExpectEnds(line, Point(200, 50), Point(-20, 75), "masters moved after");
    EXPECT_EQ(line->Master(), line);
    EXPECT_EQ(line->Master2(), line);
}

TEST_F(LineObj, SlavedEndsRefuseTheirWriters) {
    TPointObj* a = Tool->Place(Point(100, 100));
    TPointObj* b = Tool->Place(Point(30, 40));
    TLineObj* line = Lines->Place(Point(0, 0), Point(0, 0));
    line->SetMaster(a);
    line->SetMaster2(b);
    line->SetX(5);
    line->SetY(6);
    line->SetPos(Point(7, 8));
    line->SetX_World(9);
    line->SetX2(5);
    line->SetY2(6);
    line->SetX2_World(9);
    line->SetY2_World(9);
    line->SetPos2(Point(7, 8));
    ExpectEnds(line, Point(100, 100), Point(30, 40), "slaved");
}

TEST_F(LineObj, SecondEndWorldWritersGoThroughTheScale) {
    TLineObj* line = Lines->Place(Point(0, 0), Point(0, 0));
    const TScaleSetting& scale = Box->ScaleSetting();
    line->SetX2_World(scale.LogToWorld(33));
    line->SetY2_World(scale.LogToWorld(-12));
    EXPECT_EQ(line->Pos2_Log(), Point(33, -12));
    EXPECT_DOUBLE_EQ(line->X2_World(), scale.LogToWorld(33));
    EXPECT_DOUBLE_EQ(line->Y2_World(), scale.LogToWorld(-12));
    line->SetX2_Log(4);
    line->SetY2_Log(5);
    EXPECT_EQ(line->Pos2_Log(), Point(4, 5));
}

TEST_F(LineObj, AssignPosCopiesBothEndsOrOnlyTheOffsetHalfOfASlavedOne) {
    TLineObj* mirror = Lines->Place(Point(1, 2), Point(3, 4));
    TLineObj* free = Lines->Place(Point(0, 0), Point(0, 0));
    free->AssignPos(mirror);
    ExpectEnds(free, Point(1, 2), Point(3, 4), "free");
    TPointObj* master = Tool->Place(Point(100, 100));
    TLineObj* hung = Lines->Place(Point(0, 0), Point(50, 0x00010002));
    hung->SetMaster2(master);
    hung->AssignPos(mirror);
    EXPECT_EQ(hung->Pos_Log(), Point(1, 2));
    EXPECT_EQ(hung->Pos2Rec().ConObj, master);
    EXPECT_EQ(hung->Pos2Rec().y, 4);
    EXPECT_EQ(hung->Pos2_Log(), Point(100, 100));
    // A mirror that is no line gives its first position only.
    TPointObj* point = Tool->Place(Point(11, 12));
    free->AssignPos(point);
    ExpectEnds(free, Point(11, 12), Point(3, 4), "point mirror");
}

// --- The box ---------------------------------------------------------------------------------------

TEST_F(LineObj, VerticalLineHasAFrameOfTheToleranceRoundItsFirstEnd) {
    TLineObj* line = Lines->Place(Point(100, 100), Point(100, 150));
    EXPECT_EQ(line->MinX(), 92);
    EXPECT_EQ(line->MaxX(), 108);
    EXPECT_EQ(line->MinY(), 100);
    EXPECT_EQ(line->MaxY(), 150);
    EXPECT_EQ(line->Width(), 0);
    EXPECT_EQ(line->Height(), 50);
}

TEST_F(LineObj, LimitsFollowTheDirectionOnEachAxis) {
    struct Row {
        std::int32_t D;
        std::int32_t Min;
        std::int32_t Max;
    };
    // From a first end at 100: beyond the tolerance the box is the two ends, within it the
    // tolerance round the first end, both bounds of the tolerance included.
    const Row rows[] = {{9, 100, 109}, {8, 92, 108},  {0, 92, 108},
                        {-8, 92, 108}, {-9, 91, 100}, {-50, 50, 100}};
    for (const Row& r : rows) {
        TLineObj* horz = Lines->Place(Point(100, 100), Point(100 + r.D, 300));
        EXPECT_EQ(horz->MinX(), r.Min) << r.D;
        EXPECT_EQ(horz->MaxX(), r.Max) << r.D;
        TLineObj* vert = Lines->Place(Point(300, 100), Point(0, 100 + r.D));
        EXPECT_EQ(vert->MinY(), r.Min) << r.D;
        EXPECT_EQ(vert->MaxY(), r.Max) << r.D;
        EXPECT_EQ(vert->Limits(), LimRec(0, r.Min, 300, r.Max)) << r.D;
    }
}

TEST_F(LineObj, TheToleranceIsTheGlobalSetting) {
    TScopedValue<std::int32_t> prec(Lin_prec, 3);
    TLineObj* line = Lines->Place(Point(100, 100), Point(104, 103));
    EXPECT_EQ(line->Limits(), LimRec(100, 97, 104, 103));
}

TEST_F(LineObj, ExtremeEndsGiveSizesWithoutOverflow) {
    TLineObj line(Lines);
    line.SetPos(Point(-2147483647 - 1, 0));
    line.SetPos2(Point(2147483647, 10));
    EXPECT_EQ(line.MinX(), -2147483647 - 1);
    EXPECT_EQ(line.MaxX(), 2147483647);
    EXPECT_EQ(line.Width(), -1) << "a distance beyond 32 bits wraps";
    line.SetPos2(Point(-2147483647, 0));
    EXPECT_EQ(line.MinX(), 2147483640) << "the tolerance wraps as the device does";
    EXPECT_EQ(line.Width(), 1);
}

// --- The direction -----------------------------------------------------------------------------------

TEST_F(LineObj, LineGoingStraightUpOrDownIsAQuarterTurn) {
    TLineObj* down = Lines->Place(Point(50, 50), Point(50, 90));
    TLineObj* up = Lines->Place(Point(50, 50), Point(50, 10));
    EXPECT_DOUBLE_EQ(down->GetLineAlpha(), Pi / 2);
    EXPECT_DOUBLE_EQ(up->GetLineAlpha(), Pi / 2);
    TLineObj* point = Lines->Place(Point(50, 50), Point(50, 50));
    EXPECT_DOUBLE_EQ(point->GetLineAlpha(), Pi / 2);
}

TEST_F(LineObj, LineAlphaRunsRoundTheWholeCircle) {
    const struct {
        TPoint End;
        double Alpha;
    } rows[] = {{{10, 0}, 0},
                {{10, 10}, Pi / 4},
                {{-10, 10}, 3 * Pi / 4},
                {{-10, 0}, Pi},
                {{-10, -10}, 5 * Pi / 4},
                {{10, -10}, 7 * Pi / 4},
                {{10, -5}, 2 * Pi + std::atan(-0.5)}};
    for (const auto& r : rows) {
        TLineObj* line = Lines->Place(Point(0, 0), r.End);
        EXPECT_DOUBLE_EQ(line->GetLineAlpha(), r.Alpha) << r.End.x << "," << r.End.y;
        EXPECT_DOUBLE_EQ(line->Alpha(), r.Alpha);
    }
}

TEST_F(LineObj, AlphaOfALineIsItsDirectionAndCantBeSet) {
    SetLineOptions({goRotation});
    TLineObj* line = Lines->Place(Point(0, 0), Point(10, 10));
    line->SetAlpha(1.0);
    EXPECT_EQ(line->GetAlphaPlain(), 1000);
    EXPECT_DOUBLE_EQ(line->GetAlpha(), Pi / 4);
    LineGen().SetShape(stRectangle);
    EXPECT_DOUBLE_EQ(line->GetAlpha(), 1.0) << "a box-shaped line object has the point object's angle";
}

// --- Squaring ----------------------------------------------------------------------------------------

TEST_F(LineObj, SetPos2KeepsTheSquareShapesSquare) {
    LineGen().SetShape(stSquare);
    TLineObj* line = Lines->Place(Point(0, 0), Point(10, 3));
    EXPECT_EQ(line->Pos2_Log(), Point(10, 10));
    const struct {
        TPoint Pt;
        TPoint End;
    } rows[] = {{{3, 10}, {10, 10}},  {{-10, 3}, {-10, 10}},   {{10, 0}, {10, -10}}, {{10, -4}, {10, -10}},
                {{0, 10}, {-10, 10}}, {{-3, -10}, {-10, -10}}, {{7, 7}, {7, 7}}};
    for (TShapetype shape : {stSquare, stCircle, stRoundSquare}) {
        LineGen().SetShape(shape);
        for (const auto& r : rows) {
            line->SetPos2(r.Pt);
            EXPECT_EQ(line->Pos2_Log(), r.End) << int(shape) << ": " << r.Pt.x << "," << r.Pt.y;
        }
    }
    for (TShapetype shape : {stRectangle, stEllipse, stRoundRect, stLine, stRegion}) {
        LineGen().SetShape(shape);
        line->SetPos2(Point(10, 3));
        EXPECT_EQ(line->Pos2_Log(), Point(10, 3)) << int(shape);
    }
}

TEST_F(LineObj, SquaringCountsFromAFirstEndOnItsMaster) {
    LineGen().SetShape(stSquare);
    TPointObj* master = Tool->Place(Point(100, 100));
    TLineObj* line = Lines->Place(Point(0, 0), Point(0, 0));
    line->SetMaster(master);
    line->SetPos2(Point(120, 105));
    EXPECT_EQ(line->Pos2_Log(), Point(120, 120));
}

// --- Turning ---------------------------------------------------------------------------------------

TEST_F(LineObj, RotateTurnsTheFreeEndsAndLeavesTheAngle) {
    SetLineOptions({goRotation});
    TLineObj* line = Lines->Place(Point(100, 0), Point(200, 0));
    line->SetAlphaPlain(123);
    line->Rotate(Point(0, 0), Pi / 2);
    ExpectEnds(line, Point(0, 100), Point(0, 200), "turned");
    EXPECT_EQ(line->GetAlphaPlain(), 123);
}

TEST_F(LineObj, RotateLeavesASlavedEndOnItsMaster) {
    TPointObj* master = Tool->Place(Point(100, 0));
    TLineObj* line = Lines->Place(Point(0, 0), Point(200, 0));
    line->SetMaster(master);
    line->Rotate(Point(0, 0), Pi / 2);
    ExpectEnds(line, Point(100, 0), Point(0, 200), "first end hung");
    EXPECT_EQ(master->Pos_Log(), Point(100, 0));
}

// --- Hit test ----------------------------------------------------------------------------------------

TEST_F(LineObj, LineAwayFromTheOriginIsHitAlongItself) {
    TLineObj* line = Lines->Place(Point(50, 50), Point(150, 100));
    EXPECT_EQ(Store->FindAt(0, 100, 75), line);
    EXPECT_EQ(Store->FindAt(0, 100, 79), line) << "within the widened mouse point";
    EXPECT_EQ(Store->FindAt(0, 100, 82), nullptr);
    EXPECT_EQ(Store->FindAt(0, 140, 60), nullptr);
    EXPECT_TRUE(line->CheckLineShape(LimRec(50, 25, 51, 26)));
    EXPECT_FALSE(line->CheckLineShape(LimRec(100, 75, 101, 76))) << "the rectangle is local";
}

TEST_F(LineObj, MouseOverAPointObjectFindsItRatherThanTheLineEndingOnIt) {
    // The line comes first in the layer, so that it would be found first.
    TLineObj* line = Lines->Place(Point(0, 0), Point(0, 0));
    TPointObj* a = Tool->Place(Point(40, 40));
    TPointObj* b = Tool->Place(Point(200, 120));
    line->SetMaster(a);
    line->SetMaster2(b);
    ASSERT_EQ(Store->IndexOf(line).Index, 0);
    EXPECT_EQ(Store->FindAt(0, 42, 41), a);
    EXPECT_EQ(Store->FindAt(0, 202, 121), b);
    EXPECT_EQ(Store->FindAt(0, 120, 80), line);
    // On the master's frame, beyond its shape, the line still gives way.
    EXPECT_EQ(Store->FindAt(0, 82, 61), nullptr);
    // Freed, the same end takes the mouse.
    line->SetMaster(nullptr);
    EXPECT_EQ(Store->FindAt(0, 42, 41), line);
    EXPECT_EQ(Store->FindAt(0, 82, 61), line);
}

TEST_F(LineObj, HitOnASizingHandleIsAHit) {
    LineGen().SetShape(stLine);
    TLineObj* line = Lines->Place(Point(50, 50), Point(150, 100));
    line->SetSizing(true);
    // Beside the line, within the handle's square round the second end.
    EXPECT_EQ(Store->FindAt(0, 152, 97), line);
    EXPECT_EQ(SizingHandle, szX2Y2);
}

// --- Selection and links --------------------------------------------------------------------------

class LineLinks : public LineObj {
protected:
    void SetUp() override {
        LineObj::SetUp();
        Line = Lines->Place(Point(0, 0), Point(0, 0));
        A = Tool->Place(Point(40, 40));
        B = Tool->Place(Point(200, 120));
        Line->SetMaster(A);
        Line->SetMaster2(B);
    }
    TLineObj* Line = nullptr;
    TPointObj* A = nullptr;
    TPointObj* B = nullptr;
};

TEST_F(LineLinks, SelectingAConnectorTakesBothEndObjects) {
    Line->SelectComplete(smSelect);
    EXPECT_TRUE(Line->Selected());
    EXPECT_TRUE(A->Selected());
    EXPECT_TRUE(B->Selected());
    Line->SelectComplete(smUnselect);
    EXPECT_FALSE(Line->Selected());
    EXPECT_FALSE(A->Selected());
    EXPECT_FALSE(B->Selected());
}

TEST_F(LineLinks, DeletingASelectedPointWithAnUnselectedLineOnItKeepsThePoint) {
    Store->Select(A);
    Store->DeleteObjects();
    EXPECT_EQ(Store->GetCount(), 3);
    EXPECT_GE(Store->IndexOf(A).Index, 0);
    EXPECT_FALSE(A->Selected());
    EXPECT_EQ(Line->Pos_Log(), Point(40, 40));
}

TEST_F(LineLinks, SelectedLineGoesWithTheSelectedPoint) {
    Store->Select(A);
    Store->Select(Line);
    Store->DeleteObjects();
    EXPECT_EQ(Store->GetCount(), 1);
    EXPECT_EQ(Store->ObjectAt(0, 0), B);
}

TEST_F(LineLinks, InvolvedMoveSelectsTheLineOfASelectedMaster) {
    Store->Select(B);
    EXPECT_EQ(Line->Involved(invMove), 0);
    EXPECT_TRUE(Line->Selected());
    EXPECT_FALSE(A->Selected());
    Store->UnSelect(nullptr);
    Line->SetVisible(false);
    Store->Select(A);
    Line->Involved(invMove);
    EXPECT_FALSE(Line->Selected()) << "an invisible line stays";
}

TEST_F(LineLinks, InvolvedDeleteOfASelectedLineChangesNothing) {
    Store->Select(A);
    Store->Select(Line);
    EXPECT_EQ(Line->Involved(invDelete), 0);
    EXPECT_TRUE(A->Selected());
    EXPECT_TRUE(Line->Selected());
}

TEST_F(LineLinks, InvolvedCopyDropsALineWithoutBothEnds) {
    Store->Select(Line);
    Store->Select(A);
    EXPECT_EQ(Line->Involved(invCopy), 0);
    EXPECT_FALSE(Line->Selected());
    Store->Select(Line);
    Store->Select(B);
    Line->Involved(invCopy);
    EXPECT_TRUE(Line->Selected());
    // An unselected line whose masters are selected is not taken along.
    Store->UnSelect(Line);
    Line->Involved(invCopy);
    EXPECT_FALSE(Line->Selected());
}

TEST_F(LineLinks, LineWithSlavedEndsDoesntMoveItselfAndFollowsItsMasters) {
    Line->SetSizing(true);
    for (TSizingHandle h : {szNone, szX1Y1, szX2Y2, szVLine1}) {
        SizingHandle = h;
        Line->MovePos(Point(5, 5));
        ExpectEnds(Line, Point(40, 40), Point(200, 120), "moved");
    }
    Line->SetMaster(nullptr);
    SizingHandle = szNone;
    Line->SetSizing(false);
    Line->MovePos(Point(5, 5));
    ExpectEnds(Line, Point(40, 40), Point(200, 120), "second end still hung");
    B->SetPos(Point(10, 20));
    ExpectEnds(Line, Point(40, 40), Point(10, 20), "follows its master");
}

// --- Sizing handles ----------------------------------------------------------------------------------

class LineHandles : public LineObj {
protected:
    void SetUp() override {
        LineObj::SetUp();
        ASSERT_EQ(Box->ScaleSetting().GetTempFrame(), 3);
    }
    // Checks `Pt` and answers the handle it holds afterwards.
    TSizingHandle HandleAt(TLineObj* Line, TPoint Pt) {
        SizingHandle = szRotate;
        const bool hit = Line->SizingHandles(Pt, smCheck);
        EXPECT_EQ(hit, SizingHandle != szNone) << Pt.x << "," << Pt.y;
        return SizingHandle;
    }
};

TEST_F(LineHandles, BoxShapesHaveCornersAndSides) {
    LineGen().SetShape(stRectangle);
    TLineObj* box = Lines->Place(Point(50, 40), Point(110, 90));
    const struct {
        TPoint Pt;
        TSizingHandle Handle;
        TCursor Cursor;
    } rows[] = {{{0, 0}, szX1Y1, crSizeNWSE},   {{2, -3}, szX1Y1, crSizeNWSE}, {{0, 50}, szX1Y2, crSizeNESW},
                {{-3, 53}, szX1Y2, crSizeNESW}, {{60, 0}, szX2Y1, crSizeNESW}, {{60, 50}, szX2Y2, crSizeNWSE},
                {{63, 47}, szX2Y2, crSizeNWSE}, {{3, 25}, szVLine1, crSizeWE}, {{-3, 25}, szVLine1, crSizeWE},
                {{57, 25}, szVLine2, crSizeWE}, {{30, 3}, szHLine1, crSizeNS}, {{30, 47}, szHLine2, crSizeNS},
                {{30, 53}, szHLine2, crSizeNS}, {{4, 25}, szNone, crArrow},    {{30, 25}, szNone, crArrow}};
    for (const auto& r : rows) {
        Box->SetCursor(crDefault);
        EXPECT_EQ(HandleAt(box, r.Pt), r.Handle) << r.Pt.x << "," << r.Pt.y;
        EXPECT_EQ(Box->Cursor(), r.Cursor) << r.Pt.x << "," << r.Pt.y;
    }
}

TEST_F(LineHandles, EllipsesHaveTheMiddlesOfTheSides) {
    for (TShapetype shape : {stEllipse, stCircle}) {
        LineGen().SetShape(shape);
        // Placed unsquared, so that the circle has the ellipse's box.
        TLineObj* box = Lines->Place(Point(50, 40), Point(50, 40));
        PutEnds(box, Point(50, 40), Point(110, 90));
        const struct {
            TPoint Pt;
            TSizingHandle Handle;
            TCursor Cursor;
        } rows[] = {{{0, 25}, szVLine1, crSizeWE}, {{60, 25}, szVLine2, crSizeWE},
                    {{30, 0}, szHLine1, crSizeNS}, {{33, 53}, szHLine2, crSizeNS},
                    {{0, 0}, szNone, crArrow},     {{0, 29}, szNone, crArrow},
                    {{60, 50}, szNone, crArrow}};
        for (const auto& r : rows) {
            EXPECT_EQ(HandleAt(box, r.Pt), r.Handle) << int(shape) << ": " << r.Pt.x << "," << r.Pt.y;
            EXPECT_EQ(Box->Cursor(), r.Cursor) << int(shape) << ": " << r.Pt.x << "," << r.Pt.y;
        }
    }
}

TEST_F(LineHandles, MiddlesAreTheIntegerHalvesTowardsZero) {
    LineGen().SetShape(stEllipse);
    // (-51 + 0) div 2 is -25, so the middle stands 26 from the left side at -51.
    TLineObj* box = Lines->Place(Point(-51, 0), Point(0, 40));
    EXPECT_EQ(HandleAt(box, Point(29, 0)), szHLine1);
    EXPECT_EQ(HandleAt(box, Point(23, 0)), szHLine1);
    EXPECT_EQ(HandleAt(box, Point(22, 0)), szNone);
}

TEST_F(LineHandles, LinesHaveTheirEndsOnly) {
    TLineObj* line = Lines->Place(Point(50, 40), Point(110, 90));
    EXPECT_EQ(HandleAt(line, Point(0, 0)), szX1Y1);
    EXPECT_EQ(HandleAt(line, Point(60, 50)), szX2Y2);
    EXPECT_EQ(HandleAt(line, Point(0, 50)), szNone);
    EXPECT_EQ(HandleAt(line, Point(60, 0)), szNone);
    EXPECT_EQ(HandleAt(line, Point(0, 25)), szNone);
    // Ends that lie together: the first end answers.
    TLineObj* dot = Lines->Place(Point(10, 10), Point(11, 10));
    EXPECT_EQ(HandleAt(dot, Point(9, 8)), szX1Y1);
}

TEST_F(LineHandles, CornerCursorTakesTheSlopeAsARealQuotient) {
    // 10 / 20 is 0.5: above 0, the falling diagonal.
    TLineObj* line = Lines->Place(Point(0, 0), Point(10, 20));
    EXPECT_EQ(HandleAt(line, Point(10, 20)), szX2Y2);
    EXPECT_EQ(Box->Cursor(), crSizeNWSE);
    TLineObj* rising = Lines->Place(Point(0, 0), Point(-10, 20));
    // The first end is 10 from the left: the box starts at the second end.
    EXPECT_EQ(HandleAt(rising, Point(10, 0)), szX1Y1);
    EXPECT_EQ(Box->Cursor(), crSizeNESW);
}

TEST_F(LineHandles, CornerCursorFollowsTheAxesOfTheScale) {
    const struct {
        TOrigin Origin;
        TCursor Falling;
    } rows[] = {{TOrigin::LeftTop, crSizeNWSE},
                {TOrigin::LeftBottom, crSizeNESW},
                {TOrigin::RightTop, crSizeNESW},
                {TOrigin::RightBottom, crSizeNWSE}};
    TLineObj* line = Lines->Place(Point(0, 0), Point(10, 20));
    LineGen().SetShape(stRectangle);
    TLineObj* box = Lines->Place(Point(0, 0), Point(30, 20));
    for (const auto& r : rows) {
        Box->ScaleSetting().SetOrigin(r.Origin);
        EXPECT_EQ(HandleAt(line, Point(0, 0)), szX1Y1);
        EXPECT_EQ(Box->Cursor(), r.Falling) << int(r.Origin);
        const TCursor other = r.Falling == crSizeNWSE ? crSizeNESW : crSizeNWSE;
        EXPECT_EQ(HandleAt(box, Point(30, 0)), szX2Y1);
        EXPECT_EQ(Box->Cursor(), other) << int(r.Origin);
        EXPECT_EQ(HandleAt(box, Point(0, 20)), szX1Y2);
        EXPECT_EQ(Box->Cursor(), other) << int(r.Origin);
    }
}

TEST_F(LineHandles, FlatBoxHasTheFallingCornerCursor) {
    LineGen().SetShape(stRectangle);
    TLineObj* flat = Lines->Place(Point(50, 40), Point(110, 40));
    // Both ends stand 8 from the top of the box.
    EXPECT_EQ(HandleAt(flat, Point(0, 8)), szX1Y1);
    EXPECT_EQ(Box->Cursor(), crSizeNWSE);
    EXPECT_EQ(HandleAt(flat, Point(60, 8)), szX2Y1);
    EXPECT_EQ(Box->Cursor(), crSizeNESW);
}

TEST_F(LineHandles, MissShowsTheToolsCursorWithFndCursor) {
    SetLineOptions({goFndCursor});
    Lines->SetCursor(crHandPoint);
    TLineObj* line = Lines->Place(Point(50, 40), Point(110, 90));
    EXPECT_EQ(HandleAt(line, Point(30, 10)), szNone);
    EXPECT_EQ(Box->Cursor(), crHandPoint);
}

TEST_F(LineHandles, DrawingTheHandlesHitsNothingAndLetsGoOfTheHeldHandle) {
    LineGen().SetShape(stRectangle);
    TLineObj* box = Lines->Place(Point(50, 40), Point(110, 90));
    SetWindowOrgEx(Canvas().Handle(), -box->MinX(), -box->MinY());
    SizingHandle = szX1Y1;
    Box->SetCursor(crDefault);
    // Even on a side, which answers the check only.
    EXPECT_FALSE(box->SizingHandles(Point(0, 25), smShape));
    EXPECT_EQ(SizingHandle, szNone);
    EXPECT_EQ(Box->Cursor(), crArrow);
}

TEST_F(LineHandles, HandlesOfABoxAreDrawnWithTheMarkAtTheCorners) {
    LineGen().SetShape(stRectangle);
    TLineObj* box = Lines->Place(Point(50, 40), Point(110, 90));
    Store->Mark(box);
    box->SetSizing(true);
    const QImage painted = Painted();
    const TColor mark = Box->clMarkPen();
    // The canvas's own calls, so that each change of pen and brush is selected before it draws.
    const QImage expected = Reference(Point(50, 40), [mark](TCanvas& Canvas, HDC) {
        Canvas.Rectangle(0, 0, 60, 50);
        Canvas.Pen().SetColor(mark);
        Canvas.Brush().SetStyle(bsClear);
        Canvas.Rectangle(0, 0, 60, 50);
        Canvas.Brush().SetStyle(bsSolid);
        Canvas.Brush().SetColor(mark);
        for (TPoint c : {Point(0, 0), Point(0, 50), Point(60, 0), Point(60, 50)})
            Canvas.Rectangle(c.x - 3, c.y - 3, c.x + 3, c.y + 3);
    });
    EXPECT_EQ(DifferingPixels(painted, expected), 0);
    // The square's right and bottom edges are outside the outline.
    EXPECT_EQ(painted.pixel(47, 37) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(painted.pixel(113, 93) & 0xFFFFFF, 0xFFFFFFu);
    EXPECT_EQ(painted.pixel(112, 92) & 0xFFFFFF, 0xFF0000u);
}

// --- Sizing and moving -------------------------------------------------------------------------------

TEST_F(LineObj, SizingMovesTheEndsTheHandleNames) {
    LineGen().SetShape(stRectangle);
    TLineObj* box = Lines->Place(Point(50, 40), Point(110, 90));
    box->SetSizing(true);
    const struct {
        TSizingHandle Handle;
        TPoint P1;
        TPoint P2;
    } rows[] = {
        {szVLine1, {55, 40}, {110, 90}}, {szVLine2, {50, 40}, {115, 90}}, {szHLine1, {50, 33}, {110, 90}},
        {szHLine2, {50, 40}, {110, 83}}, {szX1Y1, {55, 33}, {110, 90}},   {szX2Y2, {50, 40}, {115, 83}},
        {szX1Y2, {55, 40}, {110, 83}},   {szX2Y1, {50, 33}, {115, 90}},   {szRotate, {50, 40}, {110, 90}}};
    for (const auto& r : rows) {
        PutEnds(box, Point(50, 40), Point(110, 90));
        SizingHandle = r.Handle;
        box->MovePos(Point(5, -7));
        ExpectEnds(box, r.P1, r.P2, "sized");
    }
}

TEST_F(LineObj, PlainMoveMovesBothEndsOnTheAllowedAxes) {
    TLineObj* line = Lines->Place(Point(50, 40), Point(110, 90));
    SizingHandle = szX1Y1; // held, but the object is not sizing
    line->MovePos(Point(5, -7));
    ExpectEnds(line, Point(55, 33), Point(115, 83), "moved");
    line->SetSizing(true);
    SizingHandle = szNone;
    line->MovePos(Point(-5, 7));
    ExpectEnds(line, Point(50, 40), Point(110, 90), "sizing without a handle");
    line->State.Include(isCantMove);
    line->MovePos(Point(1, 1));
    ExpectEnds(line, Point(51, 41), Point(111, 91), "held flag not looked at");
    line->State.Exclude(isCantMove);
    SetLineOptions({goNoHorzMove});
    line->MovePos(Point(10, 10));
    ExpectEnds(line, Point(51, 51), Point(111, 101), "no horizontal move");
    SetLineOptions({goNoVertMove});
    line->MovePos(Point(10, 10));
    ExpectEnds(line, Point(61, 51), Point(121, 101), "no vertical move");
}

TEST_F(LineObj, SquareShapesPairTheOtherSide) {
    const struct {
        TSizingHandle Handle;
        TPoint From1;
        TPoint From2;
        TPoint Delta;
        TPoint P1;
        TPoint P2;
    } rows[] = {
        // The sides: the other axis follows the width or height.
        {szVLine1, {0, 0}, {40, 40}, {10, 3}, {10, 0}, {40, 30}},
        {szVLine2, {0, 0}, {40, 40}, {10, 0}, {0, 0}, {50, 50}},
        {szVLine2, {0, 40}, {40, 0}, {10, 0}, {0, 50}, {50, 0}},
        {szHLine1, {0, 0}, {40, 40}, {0, 10}, {0, 10}, {30, 40}},
        {szHLine2, {40, 0}, {0, 40}, {0, -10}, {30, 0}, {0, 30}},
        // The corners: the longer leg of the delta drives, a tie counts as vertical.
        {szX1Y1, {0, 0}, {40, 40}, {3, 10}, {10, 10}, {40, 40}},
        {szX1Y1, {0, 0}, {40, 40}, {5, -5}, {-5, -5}, {40, 40}},
        {szX1Y1, {0, 0}, {40, 40}, {10, -3}, {10, 10}, {40, 40}},
        {szX1Y1, {40, 40}, {0, 0}, {0, 10}, {50, 50}, {0, 0}},
        {szX1Y1, {40, 40}, {0, 0}, {-10, 0}, {30, 30}, {0, 0}},
        {szX2Y2, {0, 0}, {40, 40}, {3, 10}, {0, 0}, {50, 50}},
        {szX2Y2, {0, 0}, {40, 40}, {-10, 3}, {0, 0}, {30, 30}},
        {szX2Y2, {40, 40}, {0, 0}, {0, -10}, {40, 40}, {-10, -10}},
        {szX2Y2, {40, 40}, {0, 0}, {5, 1}, {40, 40}, {5, 5}},
        {szX1Y2, {0, 0}, {40, 40}, {3, 10}, {-10, 0}, {40, 50}},
        {szX1Y2, {0, 0}, {40, 40}, {10, 3}, {10, 0}, {40, 30}},
        {szX1Y2, {40, 40}, {0, 0}, {10, -3}, {50, 40}, {0, -10}},
        {szX2Y1, {0, 0}, {40, 40}, {10, 3}, {0, -10}, {50, 40}},
        {szX2Y1, {0, 0}, {40, 40}, {3, 10}, {0, 10}, {30, 40}},
        {szX2Y1, {0, 0}, {40, 40}, {5, 5}, {0, 5}, {35, 40}},
        {szX2Y1, {40, 40}, {0, 0}, {-10, 3}, {40, 50}, {-10, 0}},
    };
    for (TShapetype shape : {stSquare, stCircle, stRoundSquare}) {
        LineGen().SetShape(shape);
        TLineObj* box = Lines->Place(Point(0, 0), Point(40, 40));
        box->SetSizing(true);
        int i = 0;
        for (const auto& r : rows) {
            PutEnds(box, r.From1, r.From2);
            SizingHandle = r.Handle;
            box->MovePos(r.Delta);
            EXPECT_EQ(box->Pos_Log(), r.P1) << int(shape) << " row " << i;
            EXPECT_EQ(box->Pos2_Log(), r.P2) << int(shape) << " row " << i;
            ++i;
        }
    }
}

// --- Stream form ------------------------------------------------------------------------------------

class LinePersist : public LineObj {
protected:
    void SetUp() override {
        LineObj::SetUp();
        Lines->ChangeID = [](TObject*, TNewID& ID) { ID = -9; };
        Tool->ChangeID = [](TObject*, TNewID& ID) { ID = -7; };
        Obj = std::make_unique<TLineObj>(Lines);
        Obj->State = TIndividualState(isVisible);
        Obj->SetPos(Point(10, 20));
        Obj->SetPos2(Point(0x01020304, -2));
    }
    // The object goes before its tool.
    void TearDown() override {
        Obj.reset();
        LineObj::TearDown();
    }
    // A stream holding `Hex` from its start.
    static void Fill(TMemoryStream& S, const char* Hex) {
        const QByteArray bytes = HexBytes(Hex);
        S.Write(bytes.constData(), bytes.size());
        S.SetPosition(0);
    }
    // `Obj` with its second end on a new point object (`Master`), written in `Write` and read back
    // whole into a new line in `Read`.
    std::unique_ptr<TLineObj> HungAndReadBack(TPstMode Write, TPstMode Read) {
        Master = Tool->Place(Point(100, 100));
        Obj->SetMaster2(Master);
        TMemoryStream s;
        Obj->Persist(&s, Write);
        s.SetPosition(2);
        auto back = std::make_unique<TLineObj>(Lines);
        back->Persist(&s, Read);
        EXPECT_EQ(s.Position(), s.Size());
        return back;
    }
    std::unique_ptr<TLineObj> Obj;
    TPointObj* Master = nullptr;
};

TEST_F(LinePersist, SaveAndCopyWriteTheSecondEndAfterThePointRecord) {
    const QByteArray expected = HexBytes("F7FF 0000 0100 0A000000 14000000 0000 04030201 FEFFFFFF");
    EXPECT_EQ(Written(*Obj, TPstMode::pstSave), expected);
    EXPECT_EQ(Written(*Obj, TPstMode::pstCopy), expected);
}

TEST_F(LinePersist, SlavedSecondEndNamesItsMasterAndKeepsItsSecondHalf) {
    TPointObj* master = Tool->Place(Point(100, 100));
    ASSERT_EQ(master->ID(), 1);
    Obj->SetPos2(Point(0, 0x00050006));
    Obj->SetMaster2(master);
    const QByteArray expected = HexBytes("F7FF 0000 4100 0A000000 14000000 0000 F9FF0100 06000500");
    EXPECT_EQ(Written(*Obj, TPstMode::pstSave), expected);
    EXPECT_EQ(Written(*Obj, TPstMode::pstCopy), expected);
}

TEST_F(LinePersist, BothEndsSlavedNameBothMasters) {
    TPointObj* a = Tool->Place(Point(100, 100));
    TPointObj* b = Tool->Place(Point(5, 5));
    ASSERT_EQ(b->ID(), 2);
    Obj->SetMaster(a);
    Obj->SetMaster2(b);
    EXPECT_EQ(Written(*Obj, TPstMode::pstSave),
              HexBytes("F7FF 0000 6100 F9FF0100 14000000 0000 F9FF0200 FEFFFFFF"));
}

TEST_F(LinePersist, ConnectModesWriteNothing) {
    EXPECT_TRUE(Written(*Obj, TPstMode::pstConnect).isEmpty());
    EXPECT_TRUE(Written(*Obj, TPstMode::pstConnectCopy).isEmpty());
    ExpectEnds(Obj.get(), Point(10, 20), Point(0x01020304, -2), "after connecting");
}

TEST_F(LinePersist, LoadReadsTheSecondEnd) {
    TMemoryStream s;
    Fill(s, "F7FF 0500 0100 0A000000 14000000 DC05 1E000000 28000000 7777");
    s.SetPosition(2);
    TLineObj back(Lines);
    back.LoadFromStream(s);
    EXPECT_EQ(s.Position(), 24);
    EXPECT_EQ(back.ID(), 5);
    EXPECT_EQ(back.GetAlphaPlain(), 1500);
    ExpectEnds(&back, Point(10, 20), Point(30, 40), "loaded");
    EXPECT_FALSE(back.State.Contains(isConnect));
}

TEST_F(LinePersist, LoadOfEitherSlavedEndSetsConnect) {
    for (const char* state : {"2100", "4100"}) {
        TMemoryStream s;
        const QByteArray hex = QByteArray("0500 ") + state + " F9FF0100 00000000 0000 F9FF0200 03000400";
        Fill(s, hex.constData());
        TLineObj back(Lines);
        back.LoadFromStream(s);
        EXPECT_EQ(s.Position(), 22);
        EXPECT_TRUE(back.State.Contains(isConnect)) << state;
        EXPECT_EQ(back.Pos2Rec().ConType(), -7);
        EXPECT_EQ(back.Pos2Rec().ConID(), 2);
        EXPECT_EQ(back.Pos2Rec().RelX(), 3);
        EXPECT_EQ(back.Pos2Rec().RelY(), 4);
        EXPECT_EQ(back.Pos2Rec().ConObj, nullptr);
    }
}

TEST_F(LinePersist, FilesBeforeVersion2000HaveFourMoreBytesAfterEachPosition) {
    // Version 0x1F00: the number in 4 bytes, no angle, and 4 bytes after each position.
    FileHeader.Vellorum = static_cast<std::int16_t>(-0x1F00);
    TMemoryStream s;
    Fill(s, "0500 0000 0100 0A000000 14000000 EEEEEEEE 1E000000 28000000 DDDDDDDD 7777");
    TLineObj back(Lines);
    back.LoadFromStream(s);
    EXPECT_EQ(s.Position(), 30);
    EXPECT_EQ(back.ID(), 5);
    ExpectEnds(&back, Point(10, 20), Point(30, 40), "old file");
    EXPECT_EQ(back.GetAlphaPlain(), 0);
}

TEST_F(LinePersist, Version2000HasNoGapAfterTheSecondEnd) {
    FileHeader.Vellorum = static_cast<std::int16_t>(-0x2000);
    TMemoryStream s;
    Fill(s, "0500 0000 0100 0A000000 14000000 1E000000 28000000 7777");
    TLineObj back(Lines);
    back.LoadFromStream(s);
    EXPECT_EQ(s.Position(), 22);
    ExpectEnds(&back, Point(10, 20), Point(30, 40), "version 0x2000");
}

TEST_F(LinePersist, PasteReadsTheSecondEndAfterTheOldNumber) {
    const std::unique_ptr<TLineObj> back = HungAndReadBack(TPstMode::pstCopy, TPstMode::pstPaste);
    EXPECT_TRUE(back->State.Contains(isP2Slave));
    EXPECT_TRUE(back->State.Contains(isConnect));
    EXPECT_EQ(back->Pos2Rec().ConType(), -7);
    EXPECT_EQ(back->Pos2Rec().ConID(), Master->ID());
    EXPECT_EQ(back->Pos_Log(), Point(10, 20));
}

TEST_F(LinePersist, ConnectResolvesTheSecondMaster) {
    const std::unique_ptr<TLineObj> back = HungAndReadBack(TPstMode::pstSave, TPstMode::pstLoad);
    ASSERT_TRUE(back->State.Contains(isConnect));
    back->Connect(nullptr);
    EXPECT_FALSE(back->State.Contains(isConnect));
    EXPECT_EQ(back->Master2(), Master);
    EXPECT_EQ(back->Pos2_Log(), Point(100, 100));
}

TEST_F(LinePersist, PastedLineWhoseSecondMasterWasntPastedIsDeleted) {
    const std::unique_ptr<TLineObj> back = HungAndReadBack(TPstMode::pstCopy, TPstMode::pstPaste);
    back->Persist(nullptr, TPstMode::pstConnectCopy);
    EXPECT_TRUE(back->State.Contains(isDeleted));
}

TEST_F(LineObj, SaveLoadAndConnectRelinkALineBetweenTwoPoints) {
    TPointObj* a = Tool->Place(Point(40, 40));
    TPointObj* b = Tool->Place(Point(200, 120));
    TLineObj* line = Lines->Place(Point(0, 0), Point(0, 0));
    line->SetMaster(a);
    line->SetMaster2(b);
    TMemoryStream out;
    Store->SaveToStream(out);
    TMemoryStream in(out.Bytes());
    Store->LoadFromStream(in);
    ASSERT_EQ(Store->GetCount(), 3);
    auto* newA = dynamic_cast<TPointObj*>(Store->ObjectAt(0, 0));
    auto* newB = dynamic_cast<TPointObj*>(Store->ObjectAt(1, 0));
    auto* newLine = dynamic_cast<TLineObj*>(Store->ObjectAt(2, 0));
    ASSERT_NE(newA, nullptr);
    ASSERT_NE(newB, nullptr);
    ASSERT_NE(newLine, nullptr);
    EXPECT_NE(newA, a);
    EXPECT_FALSE(newLine->State.Contains(isConnect));
    EXPECT_EQ(newLine->Master(), newA);
    EXPECT_EQ(newLine->Master2(), newB);
    TMemoryStream again;
    Store->SaveToStream(again);
    EXPECT_EQ(again.Bytes(), out.Bytes()) << "the loaded drawing saves byte for byte as it was";
    newB->SetPos(Point(250, 10));
    ExpectEnds(newLine, Point(40, 40), Point(250, 10), "relinked");
}

// --- Drawing -------------------------------------------------------------------------------------

TEST_F(LineObj, LineBetweenTwoPointMastersIsDrawnFromMasterToMaster) {
    // The line first, so the masters are drawn over it; its first half carries an offset of (7, 3)
    // that a line end doesn't use.
    TLineObj* line = Lines->Place(Point(5, 0x00030007), Point(0, 0));
    TPointObj* a = Tool->Place(Point(40, 40));
    TPointObj* b = Tool->Place(Point(200, 120));
    line->SetMaster(a);
    line->SetMaster2(b);
    const QImage painted = Painted();
    const QImage expected = Reference(Point(0, 0), [](TCanvas&, HDC Dc) {
        MoveToEx(Dc, 40, 40, nullptr);
        LineTo(Dc, 200, 120);
        for (TPoint corner : {Point(40, 40), Point(200, 120)}) {
            SetWindowOrgEx(Dc, -corner.x, -corner.y);
            Rectangle(Dc, 0, 0, 40, 20);
        }
    });
    EXPECT_EQ(DifferingPixels(painted, expected), 0);
    // The line itself: black between the masters.
    EXPECT_EQ(painted.pixel(120, 80) & 0xFFFFFF, 0u);
}

TEST_F(LineObj, ShadowOfALineLiesUnderTheLine) {
    // The line reads the window origin that the shadow shifts, and so takes the shift back.
    SetLineOptions({goShadows});
    ASSERT_NE(Box->Shadows().dX(), 0);
    Lines->Place(Point(40, 40), Point(200, 120));
    const QImage expected = Reference(Point(0, 0), [](TCanvas&, HDC Dc) {
        MoveToEx(Dc, 40, 40, nullptr);
        LineTo(Dc, 200, 120);
    });
    EXPECT_EQ(DifferingPixels(Painted(), expected), 0);
}

TEST_F(LineObj, BoxShapesSpanTheTwoEndsInEitherOrder) {
    LineGen().SetShape(stEllipse);
    Lines->Place(Point(150, 100), Point(50, 40));
    const QImage expected = Reference(Point(50, 40), [](TCanvas&, HDC Dc) { Ellipse(Dc, 0, 0, 100, 60); });
    EXPECT_EQ(DifferingPixels(Painted(), expected), 0);
}

TEST_F(LineObj, NarrowBoxIsDrawnFromTheToleranceCorner) {
    // 5 wide: the limits run 8 to either side of the first end, and the shape, drawn from the
    // minimum corner, stands 8 left of its ends.
    LineGen().SetShape(stRectangle);
    TLineObj* narrow = Lines->Place(Point(100, 100), Point(105, 140));
    EXPECT_EQ(narrow->Limits(), LimRec(92, 100, 108, 140));
    const QImage expected = Reference(Point(92, 100), [](TCanvas&, HDC Dc) { Rectangle(Dc, 0, 0, 5, 40); });
    EXPECT_EQ(DifferingPixels(Painted(), expected), 0);
}

} // namespace
} // namespace vl::test
