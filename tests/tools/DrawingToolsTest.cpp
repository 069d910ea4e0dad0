// The drawing creators driven as a user drives them: Qt mouse events on a shown box whose logical
// units are its client pixels. Points with one click, lines with press, move and press and their
// inverting preview, chains, the ortho mode, the right press, and connectors between point objects.
#include "objects/LineObj.h"
#include "objects/PointObj.h"
#include "platform/core/Scoped.h"
#include "platform/graphics/Images.h"
#include "store/Vlmm.h"
#include "support/FormFixture.h"
#include "support/InputHelpers.h"
#include "support/ServiceBundle.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"
#include "tools/Creators.h"
#include "tools/HostRoutines.h"

#include <QApplication>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vl::test {
namespace {

constexpr QRgb White = 0xFFFFFF;

class DrawingTools : public FormFixture, public TServiceBundle {
protected:
    void SetUp() override {
        SavedScale = ActScaleSet;
        Box = NewPixelBoxForm();
        Pointer = new TSaveTool(Form.get());
        Pointer->SetName(QStringLiteral("Pointer"));
        Pointer->SetDrawForm(Box);
        Pointer->SetOptions(TToolOptions{toDefaultTool});
        Points = new TvlPoints(Form.get());
        Points->SetName(QStringLiteral("Points"));
        Points->SetDrawForm(Box);
        Points->Generator()->SetWidth(10);
        Points->Generator()->SetHeight(10);
        Points->Generator()->SetHotspotX(5);
        Points->Generator()->SetHotspotY(5);
        Points->Generator()->Brush().SetColor(clBlue);
        Lines = new TvlLines(Form.get());
        Lines->SetName(QStringLiteral("Lines"));
        Lines->SetDrawForm(Box);
        Connect = new TLineDepends(Form.get());
        Connect->SetName(QStringLiteral("Connect"));
        Connect->SetDrawForm(Box);
        Connect->SetMasterObject(Points);
        Marks = new TvlPoints(Form.get());
        Marks->SetName(QStringLiteral("Marks"));
        Marks->SetDrawForm(Box);
        LoadForm();
        ShowForm();
        Store = dynamic_cast<TvlDataModule*>(Box->DataModule());
        ASSERT_NE(Store, nullptr);
        ActScaleSet = &Box->ScaleSetting();
    }
    void TearDown() override {
        Form.reset();
        QApplication::processEvents();
        ActScaleSet = SavedScale;
        Screen.SetPixelsPerInch(0);
    }

    QPoint At(int X, int Y) const { return ClientInWindow(*Box, X, Y); }
    void ClickAt(int X, int Y, Qt::MouseButton Button = Qt::LeftButton) {
        Click(Window(), At(X, Y), Button);
        Settle();
    }
    void MoveTo(int X, int Y) {
        QTest::mouseMove(Window(), At(X, Y));
        Settle();
    }
    QImage Surface() const { return Box->Surface().Image().convertToFormat(QImage::Format_RGB32); }
    QImage Repainted() {
        Box->InvalidateBox();
        Box->Update();
        Settle();
        return Surface();
    }
    int Objects() const { return Store->GetCount(); }
    TvlObject* Object(int I) const { return Store->ObjectAt(I, 0); }
    template <class T>
    T* Last() const {
        return dynamic_cast<T*>(Object(Objects() - 1));
    }

    TvlDrawbox* Box = nullptr;
    TvlDataModule* Store = nullptr;
    TSaveTool* Pointer = nullptr;
    TvlPoints* Points = nullptr;
    TvlLines* Lines = nullptr;
    TLineDepends* Connect = nullptr;
    TvlPoints* Marks = nullptr;
    TScaleSetting* SavedScale = nullptr;
};

// The number of pixels in which two images differ, and their bounds.
struct Diff {
    int Count = 0;
    QRect Bounds;
};
Diff Compare(const QImage& A, const QImage& B) {
    Diff d;
    for (int y = 0; y < A.height(); ++y)
        for (int x = 0; x < A.width(); ++x)
            if ((A.pixel(x, y) & 0xFFFFFF) != (B.pixel(x, y) & 0xFFFFFF)) {
                ++d.Count;
                d.Bounds |= QRect(x, y, 1, 1);
            }
    return d;
}

// --- Points ---------------------------------------------------------------------------------------

TEST_F(DrawingTools, ClickMakesAPointAtTheSnappedPosition) {
    Box->Grid().SetIncHorz(10);
    Box->Grid().SetIncVert(10);
    Box->Grid().SetCapture(true);
    Points->Activate(nullptr);
    ClickAt(43, 67);
    ASSERT_EQ(Objects(), 1);
    auto* obj = Last<TPointObj>();
    ASSERT_NE(obj, nullptr);
    EXPECT_EQ(obj->Pos_Log(), Point(40, 70));
    EXPECT_TRUE(obj->GetVisible());
    EXPECT_EQ(obj->ID(), 1);
    EXPECT_EQ(Surface().pixel(40, 70) & 0xFFFFFF, 0x0000FFu) << "painted after the click";
}

TEST_F(DrawingTools, PointsWithObjectFoundMakeSlavesOnlyOnObjects) {
    Points->Activate(nullptr);
    ClickAt(100, 100);
    TvlObject* master = Last<TvlObject>();
    bool asked = false;
    Marks->OnObjectFound = [&](TvlObject*, bool& Accept) {
        asked = true;
        Accept = true;
    };
    Marks->Generator()->SetSlaveX(3);
    Marks->Generator()->SetSlaveY(4);
    Marks->Activate(nullptr);
    MoveTo(200, 150);
    ClickAt(200, 150);
    EXPECT_EQ(Objects(), 1) << "free paper makes nothing";
    MoveTo(101, 101);
    EXPECT_TRUE(asked);
    ClickAt(101, 101);
    ASSERT_EQ(Objects(), 2);
    TvlObject* slave = Last<TvlObject>();
    EXPECT_TRUE(slave->State.Contains(isSlave));
    EXPECT_EQ(slave->GetMaster(), master);
    EXPECT_EQ(slave->Pos_Log(), Point(101, 101));
}

TEST_F(DrawingTools, PointsWithoutTheEventDoNotSearch) {
    Points->Activate(nullptr);
    ClickAt(100, 100);
    Box->SetMouseFnd(nullptr);
    MoveTo(100, 100);
    EXPECT_EQ(Box->MouseFnd(), nullptr);
}

TEST_F(DrawingTools, SlaveToolGivesEveryNewObjectASlave) {
    Points->SetSlaveObject(Marks);
    Points->Activate(nullptr);
    ClickAt(50, 50);
    ClickAt(150, 50);
    ASSERT_EQ(Objects(), 4);
    EXPECT_EQ(Object(1)->GetMaster(), Object(0));
    EXPECT_EQ(Object(3)->GetMaster(), Object(2));
}

TEST_F(DrawingTools, PointToolWithALineClassMakesALineOfTheGeneratorsSize) {
    Points->OnObjectSetClass = [](TCapClass& Class) { Class = &NewObjectOf<TLineObj>; };
    Points->Generator()->SetWidth(30);
    Points->Generator()->SetHeight(-20);
    Points->Activate(nullptr);
    ClickAt(50, 60);
    auto* line = Last<TLineObj>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->Pos_Log(), Point(50, 60));
    EXPECT_EQ(line->Pos2_Log(), Point(80, 40));
}

TEST_F(DrawingTools, TurnableRasterPictureTakesTheRotatedPictureClassOnceInstalled) {
    TBitmap picture(4, 4);
    Points->Generator()->SetPicture(&picture);
    std::unique_ptr<TvlObject> plain(Points->CreateObject());
    EXPECT_NE(dynamic_cast<TPointObj*>(plain.get()), nullptr);
    int made = 0;
    TScopedValue<TCapClass> rotated(RotatedPicClass, [&made](TvlCreator* Tool) -> TvlObject* {
        ++made;
        return new TPointObj(Tool);
    });
    std::unique_ptr<TvlObject> unturnable(Points->CreateObject());
    EXPECT_EQ(made, 0) << "without goRotation the point object stays";
    Points->Generator()->SetOptions(TGeneratorOptions{goRotation});
    std::unique_ptr<TvlObject> turnable(Points->CreateObject());
    EXPECT_EQ(made, 1);
    Points->Generator()->SetPicture(nullptr);
    std::unique_ptr<TvlObject> noPicture(Points->CreateObject());
    EXPECT_EQ(made, 1) << "without a raster picture the point object stays";
}

// --- Lines ----------------------------------------------------------------------------------------

TEST_F(DrawingTools, PressMovePressMakesALineWithExactEnds) {
    int starts = 0, ends = 0;
    std::vector<QPoint> extents;
    Lines->OnDynaShapeStart = [&](TObject*) { ++starts; };
    Lines->OnDynaShapeEnd = [&](TObject*) { ++ends; };
    Lines->OnDynaShapeMove = [&](TObject*, TShiftState, int X, int Y) { extents.emplace_back(X, Y); };
    Lines->Activate(nullptr);
    ClickAt(20, 30);
    EXPECT_EQ(Objects(), 0);
    EXPECT_TRUE(Lines->ToolState.Contains(tsWorking));
    EXPECT_TRUE(Lines->ToolState.Contains(tsCanScroll));
    ASSERT_FALSE(Cursor.ClipCalls.empty());
    EXPECT_TRUE(Cursor.ClipCalls.back().has_value()) << "the cursor is kept in the box";
    MoveTo(120, 80);
    ASSERT_FALSE(extents.empty());
    EXPECT_EQ(extents.back(), QPoint(100, 50));
    ClickAt(120, 80);
    ASSERT_EQ(Objects(), 1);
    auto* line = Last<TLineObj>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->Pos_Log(), Point(20, 30));
    EXPECT_EQ(line->Pos2_Log(), Point(120, 80));
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(ends, 1);
    EXPECT_FALSE(Lines->ToolState.Contains(tsWorking));
    EXPECT_FALSE(Cursor.ClipCalls.back().has_value()) << "the cursor is free again";
}

TEST_F(DrawingTools, PreviewLeavesNoResidue) {
    Lines->Activate(nullptr);
    const QImage before = Repainted();
    ClickAt(20, 30);
    MoveTo(100, 60);
    MoveTo(140, 90);
    const QImage mid = Surface();
    const Diff d = Compare(mid, before);
    EXPECT_GT(d.Count, 0) << "the preview shows";
    EXPECT_TRUE(QRect(19, 29, 123, 63).contains(d.Bounds)) << "only along the preview";
    ClickAt(140, 90);
    const QImage after = Surface();
    EXPECT_EQ(Compare(after, Repainted()).Count, 0) << "after the gesture the surface is a fresh paint";
    // A gesture broken by the right press.
    ClickAt(30, 150);
    MoveTo(200, 170);
    ClickAt(200, 170, Qt::RightButton);
    EXPECT_EQ(Objects(), 1);
    const QImage broken = Surface();
    EXPECT_EQ(Compare(broken, Repainted()).Count, 0);
}

TEST_F(DrawingTools, PreviewStaysInPlaceWhenAMarkMovedTheCanvasOrigin) {
    Points->Activate(nullptr);
    ClickAt(200, 150);
    TvlObject* point = Last<TvlObject>();
    Lines->Activate(nullptr);
    const QImage before = Repainted();
    ClickAt(20, 30);
    MoveTo(60, 30);
    // A mark between the clicks leaves the canvas's window origin at the object's corner.
    MarkObject(point);
    Settle();
    MoveTo(60, 70);
    ClickAt(60, 70);
    UnMarkObject(point);
    Settle();
    EXPECT_EQ(Compare(Surface(), Repainted()).Count, 0);
    EXPECT_EQ(Compare(Repainted(), before).Count > 0, true);
    EXPECT_EQ(Last<TLineObj>()->Pos2_Log(), Point(60, 70));
}

TEST_F(DrawingTools, ChainGoesOnFromEachEndUntilTheRightPress) {
    Lines->SetPolyShape(true);
    Lines->Activate(nullptr);
    ClickAt(10, 10);
    ClickAt(60, 10);
    ClickAt(60, 60);
    EXPECT_TRUE(Lines->ToolState.Contains(tsWorking));
    ClickAt(100, 100, Qt::RightButton);
    ASSERT_EQ(Objects(), 2);
    auto* first = dynamic_cast<TLineObj*>(Object(0));
    auto* second = dynamic_cast<TLineObj*>(Object(1));
    EXPECT_EQ(first->Pos2_Log(), Point(60, 10));
    EXPECT_EQ(second->Pos_Log(), Point(60, 10));
    EXPECT_EQ(second->Pos2_Log(), Point(60, 60));
    EXPECT_EQ(Box->Tool(), Lines) << "the first right press ends the chain, the tool stays";
    ClickAt(100, 100, Qt::RightButton);
    EXPECT_EQ(Box->Tool(), Pointer) << "the next one gives the box back to the default tool";
}

TEST_F(DrawingTools, RightPressDuringTheFirstLineMakesNothing) {
    Lines->Activate(nullptr);
    ClickAt(10, 10);
    MoveTo(50, 50);
    ClickAt(50, 50, Qt::RightButton);
    EXPECT_EQ(Objects(), 0);
    EXPECT_EQ(Box->Tool(), Lines);
    EXPECT_FALSE(Lines->ToolState.Contains(tsWorking));
}

TEST_F(DrawingTools, OrthoModeLeavesTheFirstClickAndStraightensTheSecond) {
    Lines->SetOrthoMode(true);
    Lines->Activate(nullptr);
    ClickAt(23, 37);
    EXPECT_EQ(Lines->PosP1(), Point(23, 37));
    MoveTo(90, 60);
    EXPECT_EQ(Lines->PosP2(), Point(90, 37));
    ClickAt(90, 60);
    EXPECT_EQ(Last<TLineObj>()->Pos2_Log(), Point(90, 37));
    ClickAt(100, 100);
    ClickAt(110, 150);
    EXPECT_EQ(Last<TLineObj>()->Pos2_Log(), Point(100, 150)) << "steeper than 45 degrees: vertical";
    ClickAt(100, 100);
    ClickAt(130, 130);
    EXPECT_EQ(Last<TLineObj>()->Pos2_Log(), Point(130, 100)) << "a tie is horizontal";
}

TEST_F(DrawingTools, GridBeatsTheOrthoMode) {
    Box->Grid().SetIncHorz(10);
    Box->Grid().SetIncVert(10);
    Box->Grid().SetCapture(true);
    Lines->SetOrthoMode(true);
    Lines->Activate(nullptr);
    ClickAt(21, 19);
    MoveTo(78, 52);
    EXPECT_EQ(Lines->PosP2(), Point(80, 50));
    ClickAt(78, 52);
    auto* line = Last<TLineObj>();
    EXPECT_EQ(line->Pos_Log(), Point(20, 20));
    EXPECT_EQ(line->Pos2_Log(), Point(80, 50));
}

TEST_F(DrawingTools, DontScrollLeavesTheCursorFree) {
    Lines->SetOptions(TToolOptions{toDontScroll});
    Lines->Activate(nullptr);
    const std::size_t clips = Cursor.ClipCalls.size();
    ClickAt(10, 10);
    EXPECT_TRUE(Lines->ToolState.Contains(tsWorking));
    EXPECT_FALSE(Lines->ToolState.Contains(tsCanScroll));
    EXPECT_EQ(Cursor.ClipCalls.size(), clips);
    MoveTo(40, 40);
    EXPECT_FALSE(Lines->ToolState.Contains(tsCanScroll));
}

TEST_F(DrawingTools, BoxShapedLineToolPreviewsARectangle) {
    Lines->Generator()->SetShape(stRectangle);
    Lines->Activate(nullptr);
    const QImage before = Repainted();
    ClickAt(20, 20);
    MoveTo(80, 60);
    const Diff d = Compare(Surface(), before);
    // Four sides of 60 and 40 with each corner inverted once: 2 * 60 + 2 * 40 pixels.
    EXPECT_EQ(d.Count, 200);
    ClickAt(80, 60);
    EXPECT_EQ(Compare(Surface(), Repainted()).Count, 0);
}

TEST_F(DrawingTools, ScrollRedrawsThePreviewOnlyWhileTheGestureRuns) {
    Lines->Activate(nullptr);
    ClickAt(20, 20);
    MoveTo(60, 60);
    int scrolled = 0;
    Lines->Scroll([&] { ++scrolled; }, Point(90, 70));
    EXPECT_EQ(scrolled, 1);
    EXPECT_EQ(Lines->PosP2(), Point(90, 70));
    EXPECT_GE(Pump.Calls, 1);
    // A right press delivered during the pump ends the gesture: nothing is drawn again.
    Pump.OnProcess = [&] { Lines->RMouseDown(TShiftState{}, Point(0, 0)); };
    Lines->Scroll([] {}, Point(120, 90));
    Pump.OnProcess = nullptr;
    EXPECT_EQ(Lines->PosP2(), Point(90, 70));
    EXPECT_EQ(Compare(Surface(), Repainted()).Count, 0);
}

TEST_F(DrawingTools, PolyObjMakesAChainFromPointsWithoutGridOrOrtho) {
    Box->Grid().SetIncHorz(10);
    Box->Grid().SetCapture(true);
    Lines->Activate(nullptr);
    const TPoint pts[] = {{11, 12}, {55, 13}, {57, 81}};
    TvlObject* last = Lines->SetPolyObjA(pts);
    ASSERT_EQ(Objects(), 2);
    EXPECT_EQ(last, Object(1));
    EXPECT_EQ(dynamic_cast<TLineObj*>(Object(0))->Pos_Log(), Point(11, 12));
    EXPECT_EQ(dynamic_cast<TLineObj*>(Object(1))->Pos2_Log(), Point(57, 81));
    EXPECT_FALSE(Lines->PolyShape()) << "the chain mode is put back";
    EXPECT_FALSE(Lines->ToolState.Contains(tsWorking));
    const TPoint one[] = {{5, 5}};
    EXPECT_EQ(Lines->SetPolyObjA(one), nullptr);
    EXPECT_EQ(Lines->SetPolyObj(nullptr, 0), nullptr);
    EXPECT_EQ(Objects(), 2);
}

TEST_F(DrawingTools, SlaveToolGivesEachLineOfAChainItsOwnSlave) {
    Lines->SetSlaveObject(Marks);
    const TPoint pts[] = {{10, 10}, {50, 10}, {50, 50}};
    Lines->SetPolyObjA(pts);
    ASSERT_EQ(Objects(), 4);
    EXPECT_EQ(Object(1)->GetMaster(), Object(0));
    EXPECT_EQ(Object(3)->GetMaster(), Object(2));
}

// --- Connectors -----------------------------------------------------------------------------------

TEST_F(DrawingTools, ConnectorWithoutAMasterToolRefuses) {
    Connect->SetMasterObject(nullptr);
    Connect->Activate(nullptr);
    ASSERT_EQ(Dialogs.Questions.size(), 1u);
    EXPECT_EQ(Dialogs.Questions.back().Msg, QStringLiteral("MasterObject property undefined"));
    EXPECT_EQ(Dialogs.Questions.back().DlgType, mtError);
    EXPECT_NE(Box->Tool(), Connect);
    EXPECT_EQ(Connect->SetNewObj(Point(10, 10)), nullptr);
    EXPECT_EQ(Dialogs.Questions.size(), 2u);
}

TEST_F(DrawingTools, ConnectorJoinsPointsAndMakesNewOnesOnFreePaper) {
    Points->Activate(nullptr);
    ClickAt(40, 40);
    TvlObject* a = Last<TvlObject>();
    Connect->Activate(nullptr);
    MoveTo(42, 41);
    EXPECT_EQ(Box->MouseFnd(), a);
    EXPECT_EQ(Box->Cursor(), Points->Cursor()) << "the master tool's cursor shows over its objects";
    ClickAt(42, 41);
    EXPECT_EQ(Objects(), 1) << "the gesture starts at the point";
    MoveTo(150, 100);
    ClickAt(150, 100);
    ASSERT_EQ(Objects(), 3) << "a new point on free paper and the line";
    TvlObject* b = Object(1);
    auto* line = Last<TLineObj>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->GetMaster(), a);
    EXPECT_EQ(line->GetMaster2(), b);
    EXPECT_EQ(line->Pos_Log(), Point(40, 40)) << "the end sits on the object's position";
    EXPECT_EQ(line->Pos2_Log(), Point(150, 100));
}

TEST_F(DrawingTools, ConnectorChainStartsEachLineAtThePreviousEnd) {
    Connect->SetPolyShape(true);
    Connect->Activate(nullptr);
    ClickAt(20, 20);
    ClickAt(80, 20);
    ClickAt(80, 90);
    ClickAt(0, 0, Qt::RightButton);
    ASSERT_EQ(Objects(), 5);
    auto* first = dynamic_cast<TLineObj*>(Object(2));
    auto* second = dynamic_cast<TLineObj*>(Object(4));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(second->GetMaster(), first->GetMaster2());
}

TEST_F(DrawingTools, ClickOnTheGesturesOwnStartMakesANewPoint) {
    Points->Activate(nullptr);
    ClickAt(40, 40);
    TvlObject* a = Last<TvlObject>();
    Connect->Activate(nullptr);
    // The mouse still rests where the point was made; a move brings the search to it.
    MoveTo(39, 39);
    ClickAt(40, 40);
    MoveTo(41, 41);
    ClickAt(41, 41);
    ASSERT_EQ(Objects(), 3);
    auto* line = Last<TLineObj>();
    EXPECT_EQ(line->GetMaster(), a);
    EXPECT_NE(line->GetMaster2(), a) << "not a zero-length link";
    EXPECT_EQ(line->Pos2_Log(), Point(41, 41));
}

TEST_F(DrawingTools, LinkFromCodeTakesTheTopmostObject) {
    Points->Activate(nullptr);
    ClickAt(40, 40);
    ClickAt(42, 42);
    TvlObject* top = Object(1);
    EXPECT_EQ(Connect->LinkNewObj(Point(41, 41)), nullptr);
    TvlObject* far = Points->SetNewObj(Point(150, 120));
    auto* line = dynamic_cast<TLineObj*>(Connect->LinkNewObjTo(far));
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->GetMaster(), top);
    EXPECT_EQ(line->GetMaster2(), far);
    EXPECT_EQ(Box->MouseFnd(), nullptr);
}

TEST_F(DrawingTools, WrongClassKeepsTheGestureOpen) {
    Connect->OnObjectSetClass = [](TCapClass& Class) { Class = &NewObjectOf<TPointObj>; };
    Connect->Activate(nullptr);
    ClickAt(20, 20);
    ClickAt(80, 20);
    ASSERT_FALSE(Dialogs.Questions.empty());
    EXPECT_EQ(Dialogs.Questions.back().Msg, QStringLiteral("wrong class definition"));
    EXPECT_TRUE(Connect->ToolState.Contains(tsWorking));
}

TEST_F(DrawingTools, ConnectorFollowsItsMasterWhenItMoves) {
    Connect->Activate(nullptr);
    ClickAt(40, 40);
    ClickAt(140, 40);
    auto* line = Last<TLineObj>();
    TvlObject* b = Object(1);
    Repainted();
    MoveObject(b, Point(0, 80));
    Settle();
    EXPECT_EQ(line->Pos2_Log(), Point(140, 120));
    const QImage now = Surface();
    EXPECT_EQ(Compare(now, Repainted()).Count, 0) << "old pixels gone, new ones drawn";
    EXPECT_EQ(now.pixel(90, 40) & 0xFFFFFF, White) << "the old line is gone";
    EXPECT_NE(now.pixel(90, 80) & 0xFFFFFF, White) << "the new line runs through the middle";
}

TEST_F(DrawingTools, StartObjectErasedDuringTheGestureLeavesTheEndFree) {
    Points->Activate(nullptr);
    ClickAt(40, 40);
    TvlObject* a = Last<TvlObject>();
    Connect->Activate(nullptr);
    // The mouse still rests where the point was made; a move brings the search to it.
    MoveTo(39, 39);
    ClickAt(40, 40);
    Store->Erase(a);
    ClickAt(120, 60);
    auto* line = Last<TLineObj>();
    ASSERT_NE(line, nullptr);
    EXPECT_FALSE(line->State.Contains(isP1Slave));
    EXPECT_EQ(line->Pos_Log(), Point(40, 40));
}

} // namespace
} // namespace vl::test
