// The single-layer store behind a shown draw box: the box installs it, a creator's click stores an
// object that the next paint draws in z-order, and finding, marking, moving and deleting repaint only
// what changed.

#include "platform/window/Controls.h"
#include "store/Vlmm.h"
#include "support/FormFixture.h"
#include "support/InputHelpers.h"
#include "support/ObjectDoubles.h"
#include "support/ServiceBundle.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vl::test {
namespace {

using TDrawLog = std::vector<std::string>;

class DataModuleBox : public FormFixture, public TServiceBundle {
protected:
    void SetUp() override {
        Box = NewPixelBoxForm();
        Red = AddCreator("red", clRed, 1);
        Blue = AddCreator("blue", clBlue, 5);
        Form->BeginLoadingAll();
        Form->LoadedAll();
        Dm = dynamic_cast<TvlDataModule*>(Box->DataModule());
    }
    void TearDown() override {
        Form.reset();
        QApplication::processEvents();
        Screen.SetPixelsPerInch(0);
    }

    // A creator that places one square of 20 units per click, found where it lies and drawn by the
    // creator's `OnObjectDraw` in `Fill`; each draw is logged as "<name>#<number>".
    TTestCreator* AddCreator(const std::string& Name, TColor Fill, std::int32_t Z) {
        auto* c = new TTestCreator(Form.get());
        c->PlacesOnClick = true;
        c->PrepareObject = [](TTestObject& O) {
            O.W = 20;
            O.H = 20;
            O.HitByLimits = true;
        };
        c->OnObjectDraw = [this, Name, Fill](TvlObject* Obj) {
            Draws.push_back(Name + "#" + std::to_string(Obj->ID()));
            TCanvas& canvas = *ActScaleSet->Canvas();
            canvas.Brush().SetColor(Fill);
            canvas.Brush().SetStyle(bsSolid);
            canvas.FillRect(Rect(0, 0, Obj->GetWidth(), Obj->GetHeight()));
        };
        c->SetName(QString::fromStdString(Name));
        c->FDrawForm = Box;
        c->Generator()->SetZOrder(Z);
        return c;
    }
    QPoint InWindow(int X, int Y) const { return ClientInWindow(*Box, X, Y); }
    // A click of the left button with `Tool` current.
    void Click(TMouseTool* Tool, int X, int Y) {
        Tool->Activate(Box);
        test::Click(Window(), InWindow(X, Y));
        Settle();
    }
    QRgb Pixel(int X, int Y) const { return Box->Surface().Image().pixel(X, Y) & 0xFFFFFF; }

    TvlDrawbox* Box = nullptr;
    TvlDataModule* Dm = nullptr;
    TTestCreator* Red = nullptr;
    TTestCreator* Blue = nullptr;
    TDrawLog Draws;
};

constexpr QRgb kWhite = 0xFFFFFF;
constexpr QRgb kRed = 0xFF0000;
constexpr QRgb kBlue = 0x0000FF;

TEST_F(DataModuleBox, LoadedInstallsASingleLayerStoreOfItsOwn) {
    ASSERT_NE(Dm, nullptr);
    EXPECT_TRUE(Box->State.Contains(bsOwnDataMod));
    EXPECT_EQ(Dm->FDrawForm, Box);
    EXPECT_EQ(Dm->Owner(), Form.get());
    EXPECT_TRUE(Dm->Empty());
}

TEST_F(DataModuleBox, AClickStoresAnObjectThatTheNextPaintDraws) {
    ShowForm();
    ASSERT_NE(Dm, nullptr);
    Draws.clear();
    Click(Red, 40, 30);
    ASSERT_EQ(Dm->GetCount(), 1);
    TvlObject* obj = Dm->ObjectAt(0, 0);
    EXPECT_EQ(obj->ID(), 1);
    EXPECT_EQ(obj->GetPos(), Point(40, 30));
    EXPECT_EQ(Draws, (TDrawLog{"red#1"}));
    EXPECT_EQ(Pixel(45, 35), kRed);
    EXPECT_EQ(Pixel(30, 35), kWhite);
    EXPECT_EQ(Dm->FRestoreRect, EmptyLimRec);
}

TEST_F(DataModuleBox, ObjectsPaintInZOrderAndTheFrontOneCoversTheBackOne) {
    ShowForm();
    Blue->Generator()->SetCounter(1);
    Click(Red, 40, 30);
    Click(Blue, 50, 40); // larger z: further back, although it came later
    EXPECT_EQ(Dm->ObjectAt(0, 0)->Tool(), Blue);
    Draws.clear();
    Box->InvalidateBox();
    Settle();
    EXPECT_EQ(Draws, (TDrawLog{"blue#1", "red#1"}));
    EXPECT_EQ(Pixel(55, 45), kRed);  // overlap: the front one
    EXPECT_EQ(Pixel(65, 55), kBlue); // the rest of the back one
}

TEST_F(DataModuleBox, ARepaintAfterAClickIsConfinedToTheNewObject) {
    ShowForm();
    Click(Red, 10, 10);
    Draws.clear();
    Click(Red, 200, 120);
    EXPECT_EQ(Draws, (TDrawLog{"red#2"}));
}

TEST_F(DataModuleBox, AStoredObjectIsFoundUnderTheMouse) {
    ShowForm();
    Click(Red, 40, 30);
    Click(Red, 100, 30);
    TvlObject* second = Dm->ObjectAt(1, 0);
    EXPECT_EQ(Dm->FindAt(0, 105, 35), second);
    TLimRec at = LimRec(45, 35, 46, 36);
    EXPECT_EQ(
        Dm->FirstObjectWith([](TvlObject* o, void* p) { return o->Found(*static_cast<TLimRec*>(p)); }, &at),
        Dm->ObjectAt(0, 0));
}

TEST_F(DataModuleBox, MarkSelectsAndDeleteObjectsRemovesAndRepaints) {
    ShowForm();
    Click(Red, 40, 30);
    Click(Red, 150, 30);
    TvlObject* first = Dm->ObjectAt(0, 0);
    int marked = 0;
    Dm->OnMarkObject = [&](TvlObject* o) { marked += o == first; };
    Dm->Mark(first);
    Settle();
    EXPECT_EQ(marked, 1);
    EXPECT_TRUE(first->Selected());
    EXPECT_EQ(Dm->MarkCount(), 1);
    Draws.clear();
    Dm->DeleteObjects();
    Settle();
    EXPECT_EQ(Dm->GetCount(), 1);
    EXPECT_EQ(Dm->ObjectAt(0, 0)->GetPos(), Point(150, 30));
    EXPECT_EQ(Pixel(45, 35), kWhite);
    EXPECT_EQ(Pixel(155, 35), kRed);
    EXPECT_EQ(Draws, TDrawLog{}); // the survivor lies outside the repainted area
}

TEST_F(DataModuleBox, MoveObjectsMovesTheMarkedObjectsAndFlushes) {
    ShowForm();
    Click(Red, 40, 30);
    Click(Red, 40, 120);
    TvlObject* first = Dm->ObjectAt(0, 0);
    Dm->Select(first);
    Draws.clear();
    Box->MoveObjects(Point(100, 0));
    Settle();
    EXPECT_EQ(first->GetPos(), Point(140, 30));
    EXPECT_EQ(Dm->ObjectAt(1, 0)->GetPos(), Point(40, 120));
    EXPECT_EQ(Dm->MarkCount(), 0);
    EXPECT_FALSE(first->Selected());
    EXPECT_EQ(Pixel(45, 35), kWhite);
    EXPECT_EQ(Pixel(145, 35), kRed);
    EXPECT_EQ(Draws, (TDrawLog{"red#1"}));
    EXPECT_EQ(Dm->FRestoreRect, EmptyLimRec);
}

TEST_F(DataModuleBox, ScrollLimitsFollowTheDrawing) {
    Box->SetAutoScroll(true);
    ShowForm();
    const int before = Box->HorzScrollBar().Range();
    Click(Red, 250, 20);
    TvlObject* obj = Dm->ObjectAt(0, 0);
    Dm->Select(obj);
    Box->MoveObjects(Point(600, 0));
    // As a tool does after a move: the limits are condemned, and the next paint rebuilds them.
    Dm->CheckLimits(obj, false);
    EXPECT_TRUE(Dm->Objects()->State.Contains(lsNewLimits));
    Settle();
    EXPECT_EQ(Dm->GetMaxX(), obj->GetMaxLimits().Xmax);
    EXPECT_FALSE(Box->State.Contains(bsNewRange));
    EXPECT_GT(Box->HorzScrollBar().Range(), before);
    EXPECT_GE(Box->HorzScrollBar().Range(), 870);
}

TEST_F(DataModuleBox, AScaleChangeAdaptsTheObjectsAtTheNextPaint) {
    ShowForm();
    Click(Red, 40, 30);
    Box->State.Exclude(bsNewRange);
    Box->ScaleSetting().SetScale(2.0);
    EXPECT_TRUE(Box->State.Contains(bsNewRange));
    Box->InvalidateBox();
    Settle();
    EXPECT_FALSE(Box->State.Contains(bsNewRange));
    EXPECT_FALSE(Box->ScaleSetting().State.Contains(scChanged));
}

TEST_F(DataModuleBox, ClearErasesTheDrawing) {
    ShowForm();
    Click(Red, 40, 30);
    Dm->Clear();
    Settle();
    EXPECT_TRUE(Dm->Empty());
    EXPECT_EQ(Pixel(45, 35), kWhite);
}

// A tool that keeps the box's object under the mouse up to date, as the pointer tools do.
class TTrackingTool : public TSaveTool {
public:
    explicit TTrackingTool(TComponent* AOwner) : TSaveTool(AOwner) {}
    void MouseMove(TShiftState, const TPoint& CurPos) override { FindMouseObject(CurPos); }
};

TEST_F(DataModuleBox, ErasingTheObjectUnderTheMouseForgetsItBeforeTheNextMove) {
    ShowForm();
    Click(Red, 40, 30);
    auto* tracker = new TTrackingTool(Form.get());
    tracker->FDrawForm = Box;
    tracker->Activate(Box);
    QWindow* w = Form->Widget()->windowHandle();
    QTest::mouseMove(w, InWindow(45, 35));
    Settle();
    TvlObject* obj = Dm->ObjectAt(0, 0);
    ASSERT_EQ(Box->MouseFnd(), obj);

    Dm->Erase(obj);
    EXPECT_EQ(Box->MouseFnd(), nullptr);
    // The next move searches afresh instead of asking the freed object (the sanitizer build would
    // report the use of freed memory).
    QTest::mouseMove(w, InWindow(50, 40));
    Settle();
    EXPECT_EQ(Box->MouseFnd(), nullptr);
    // A new object in the same place is found by the next move.
    Click(Red, 40, 30);
    tracker->Activate(Box);
    QTest::mouseMove(w, InWindow(47, 37));
    Settle();
    EXPECT_EQ(Box->MouseFnd(), Dm->ObjectAt(0, 0));
}

TEST_F(DataModuleBox, ErasingAnotherObjectKeepsTheObjectUnderTheMouse) {
    ShowForm();
    Click(Red, 40, 30);
    Click(Red, 100, 30);
    auto* tracker = new TTrackingTool(Form.get());
    tracker->FDrawForm = Box;
    tracker->Activate(Box);
    QTest::mouseMove(Form->Widget()->windowHandle(), InWindow(45, 35));
    Settle();
    TvlObject* first = Dm->ObjectAt(0, 0);
    ASSERT_EQ(Box->MouseFnd(), first);
    Dm->Mark(Dm->ObjectAt(1, 0));
    Dm->Erase(Dm->ObjectAt(1, 0));
    EXPECT_EQ(Box->MouseFnd(), first);
    EXPECT_EQ(Dm->MarkCount(), 0);
}

} // namespace
} // namespace vl::test
