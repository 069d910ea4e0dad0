// The tool base: becoming current, the default tool, right presses, the button link, the cursor and
// the object under the mouse, driven through the draw box where a gesture is involved.

#include "ToolTestSupport.h"

#include <QPushButton>
#include <QWheelEvent>

namespace vl::test {
namespace {

using Strings = std::vector<std::string>;

class ToolBase : public ToolFixture {};

// ---------------------------------------------------------------------------------------------
// Activation and the default tool
// ---------------------------------------------------------------------------------------------

TEST_F(ToolBase, ToolStateAndOptionsSitAtTheirBits) {
    EXPECT_EQ(TToolState(tsWaiting).Bits(), 1);
    EXPECT_EQ(TToolState(tsWorking).Bits(), 2);
    EXPECT_EQ(TToolState(tsMoving).Bits(), 4);
    EXPECT_EQ(TToolState(tsCanScroll).Bits(), 8);
    EXPECT_EQ(TToolOptions(toDefaultTool).Bits(), 1);
    EXPECT_EQ(TToolOptions(toDontScroll).Bits(), 2);
    EXPECT_EQ(sizeof(TToolState), 1u);
}

TEST_F(ToolBase, APlainToolStartsEmptyWithTheDefaultCursor) {
    TLogTool* t = AddLogTool("a");
    EXPECT_TRUE(t->Options().Empty());
    EXPECT_TRUE(t->ToolState.Empty());
    EXPECT_EQ(t->Cursor(), crDefault);
    EXPECT_EQ(t->Button(), nullptr);
}

TEST_F(ToolBase, TheDefaultToolBecomesCurrentWhenTheBoxHasLoaded) {
    AddLogTool("a");
    TLogTool* b = AddLogTool("b", true);
    b->SetCursor(crHandPoint);
    LoadForm();
    EXPECT_EQ(Box->Tool(), b);
    EXPECT_EQ(Box->Cursor(), crHandPoint);
    EXPECT_EQ(ActScaleSet, &Box->ScaleSetting());
    EXPECT_EQ(Log, (Strings{"b.OnActivate"}));
    EXPECT_EQ(b->LastSender, b);
}

TEST_F(ToolBase, WithSeveralDefaultToolsTheLastIsCurrentAfterLoadingButTheFirstIsReturnedTo) {
    TLogTool* a = AddLogTool("a", true);
    TLogTool* b = AddLogTool("b", true);
    TLogTool* c = AddLogTool("c");
    LoadForm();
    EXPECT_EQ(Box->Tool(), b);
    EXPECT_EQ(Log, (Strings{"a.OnActivate", "a.OnTerminate", "b.OnActivate"}));
    c->Activate(nullptr);
    c->SetDefaultTool();
    EXPECT_EQ(Box->Tool(), a);
    EXPECT_EQ(a->LastSender, Box); // the box activates its default tool as sender
}

TEST_F(ToolBase, ActivatingTheCurrentToolTerminatesAndReactivatesIt) {
    TLogTool* a = AddLogTool("a", true);
    LoadForm();
    Log.clear();
    a->Activate(nullptr);
    EXPECT_EQ(Log, (Strings{"a.OnTerminate", "a.OnActivate"}));
    EXPECT_EQ(Box->Tool(), a);
}

TEST_F(ToolBase, ActivatingAnotherToolTerminatesThePreviousAndFreesTheCursor) {
    TLogTool* a = AddLogTool("a", true);
    TLogTool* b = AddLogTool("b");
    LoadForm();
    Log.clear();
    Cursor.ClipCalls.clear();
    b->Activate(a);
    EXPECT_EQ(Log, (Strings{"a.OnTerminate", "b.OnActivate"}));
    ASSERT_EQ(Cursor.ClipCalls.size(), 1u);
    EXPECT_FALSE(Cursor.ClipCalls[0].has_value());
    EXPECT_EQ(Box->Tool(), b);
    EXPECT_EQ(b->LastSender, a);
}

TEST_F(ToolBase, ATerminatedToolKeepsItsState) {
    TLogTool* a = AddLogTool("a", true);
    TLogTool* b = AddLogTool("b");
    LoadForm();
    a->ToolState.Include(tsWorking);
    b->Activate(nullptr);
    EXPECT_TRUE(a->ToolState.Contains(tsWorking));
}

TEST_F(ToolBase, AToolWithoutDrawBoxIgnoresActivateAndInit) {
    TLogTool* a = AddLogTool("a", true);
    a->FDrawForm = nullptr;
    a->Init();
    a->Activate(nullptr);
    EXPECT_TRUE(Log.empty());
    EXPECT_EQ(Box->Tool(), nullptr);
}

TEST_F(ToolBase, EachBoxOfAFormHasItsOwnDefaultTool) {
    auto* box2 = new TvlDrawbox(Form.get());
    box2->SetName(QStringLiteral("Box2"));
    box2->SetParent(Form.get());
    box2->SetBoundsRect(Rect(10, 220, 110, 290));
    TLogTool* a = AddLogTool("a", true);
    TLogTool* b = AddLogTool("b", true);
    b->FDrawForm = box2;
    LoadForm();
    EXPECT_EQ(Box->Tool(), a);
    EXPECT_EQ(box2->Tool(), b);
}

TEST_F(ToolBase, RightPressInTheDefaultToolChangesNothing) {
    TLogTool* a = AddLogTool("a", true);
    AddLogTool("b");
    ShowForm();
    LoadForm();
    Log.clear();
    Press(Qt::RightButton, 50, 50);
    EXPECT_EQ(Log, (Strings{"a.RMouseDown", "a.RMouseUp"}));
    EXPECT_EQ(Box->Tool(), a);
}

TEST_F(ToolBase, RightPressInAnotherToolReturnsToTheDefaultTool) {
    TLogTool* a = AddLogTool("a", true);
    TLogTool* b = AddLogTool("b");
    ShowForm();
    LoadForm();
    b->Activate(nullptr);
    Log.clear();
    Press(Qt::RightButton, 50, 50);
    EXPECT_EQ(Log, (Strings{"b.RMouseDown", "b.OnTerminate", "a.OnActivate", "a.RMouseUp"}));
    EXPECT_EQ(Box->Tool(), a);
    EXPECT_EQ(a->LastSender, Box);
}

TEST_F(ToolBase, WithoutADefaultToolARightPressLeavesTheToolCurrent) {
    TLogTool* b = AddLogTool("b");
    ShowForm();
    LoadForm();
    EXPECT_EQ(Box->Tool(), nullptr);
    b->Activate(nullptr);
    Log.clear();
    Press(Qt::RightButton, 50, 50);
    EXPECT_EQ(Log, (Strings{"b.RMouseDown", "b.RMouseUp"}));
    EXPECT_EQ(Box->Tool(), b);
}

TEST_F(ToolBase, LeftPressReachesOnlyTheCurrentTool) {
    AddLogTool("a", true);
    TLogTool* b = AddLogTool("b");
    ShowForm();
    LoadForm();
    b->Activate(nullptr);
    Log.clear();
    Press(Qt::LeftButton, 50, 50);
    EXPECT_EQ(Log, (Strings{"b.LMouseDown", "b.LMouseUp"}));
}

TEST_F(ToolBase, MiddleButtonAndWheelNeverReachATool) {
    TLogTool* a = AddLogTool("a", true);
    ShowForm();
    LoadForm();
    Log.clear();
    Press(Qt::MiddleButton, 50, 50);
    const QPoint at = InWindow(50, 50);
    QWheelEvent wheel(QPointF(at), QPointF(Form->Widget()->mapToGlobal(at)), QPoint(), QPoint(0, 120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(Box->Widget(), &wheel);
    Settle();
    EXPECT_TRUE(Log.empty());
    (void)a;
}

TEST_F(ToolBase, ScrollDoesNotCallTheScrollStepAndKeysAreNotTaken) {
    TLogTool* a = AddLogTool("a");
    int steps = 0;
    a->Scroll([&] { ++steps; }, Point(0, 0));
    EXPECT_EQ(steps, 0);
    std::uint16_t key = 65;
    EXPECT_FALSE(a->TSaveTool::KeyDown(key, {}));
    EXPECT_FALSE(a->TSaveTool::KeyUp(key, {}));
}

TEST_F(ToolBase, ClNeutralIsTheColourOfTheBox) {
    TLogTool* a = AddLogTool("a");
    Box->SetColor(clYellow);
    EXPECT_EQ(a->ClNeutral(), clYellow);
}

// ---------------------------------------------------------------------------------------------
// Cursor
// ---------------------------------------------------------------------------------------------

TEST_F(ToolBase, CursorSetWhileCurrentTakesEffectAtTheNextActivate) {
    TLogTool* a = AddLogTool("a", true);
    a->SetCursor(crArrow);
    LoadForm();
    EXPECT_EQ(Box->Cursor(), crArrow);
    a->SetCursor(crHandPoint);
    EXPECT_EQ(Box->Cursor(), crArrow);
    a->Activate(nullptr);
    EXPECT_EQ(Box->Cursor(), crHandPoint);
}

TEST_F(ToolBase, CursorSetWhileCurrentTakesEffectAtTheNextObjectRelease) {
    TLogTool* a = AddLogTool("a", true);
    LoadForm();
    a->SetCursor(crSizeAll);
    EXPECT_EQ(Box->Cursor(), crDefault);
    TTestObject obj;
    MakeSquare(obj);
    a->ObjectRelease(&obj);
    EXPECT_EQ(Box->Cursor(), crSizeAll);
}

TEST_F(ToolBase, AnAssignedReleaseEventTakesOverTheCursor) {
    TLogTool* a = AddLogTool("a", true);
    LoadForm();
    Box->SetCursor(crHourGlass);
    TvlObject* released = nullptr;
    a->OnObjectRelease = [&](TvlObject* o) { released = o; };
    TTestObject obj;
    MakeSquare(obj);
    a->ObjectRelease(&obj);
    EXPECT_EQ(released, &obj);
    EXPECT_EQ(Box->Cursor(), crHourGlass);
}

// ---------------------------------------------------------------------------------------------
// The button link
// ---------------------------------------------------------------------------------------------

TEST_F(ToolBase, AClickOnTheButtonActivatesTheToolWithTheButtonAsSender) {
    AddLogTool("a", true);
    TLogTool* b = AddLogTool("b");
    auto* button = new TSpeedButton(Form.get());
    button->SetParent(Form.get());
    button->SetBounds(320, 10, 60, 24);
    b->SetButton(button);
    ShowForm();
    LoadForm();
    Log.clear();
    QTest::mouseClick(button->ButtonWidget(), Qt::LeftButton);
    Settle();
    EXPECT_EQ(Box->Tool(), b);
    EXPECT_EQ(b->LastSender, button);
    EXPECT_EQ(Log, (Strings{"a.OnTerminate", "b.OnActivate"}));
}

TEST_F(ToolBase, EveryButtonClassIsLinked) {
    TLogTool* a = AddLogTool("a");
    TLogTool* other = AddLogTool("other");
    TControl* buttons[] = {new TButton(Form.get()), new TBitBtn(Form.get()), new TSpeedButton(Form.get()),
                           new TToolButton(Form.get())};
    for (TControl* b : buttons) {
        a->SetButton(b);
        ASSERT_TRUE(b->OnClick) << b->ClassName().toStdString();
        other->Activate(nullptr);
        static_cast<TCustomButtonControl*>(b)->Click();
        EXPECT_EQ(Box->Tool(), a);
        EXPECT_EQ(a->LastSender, b);
    }
}

TEST_F(ToolBase, AHostQtButtonIsLinkedThroughTheWrapper) {
    TLogTool* a = AddLogTool("a");
    QPushButton host(QStringLiteral("Lines"));
    auto* wrapper = new TButton(Form.get());
    wrapper->Adopt(&host);
    a->SetButton(wrapper);
    host.click();
    EXPECT_EQ(Box->Tool(), a);
    EXPECT_EQ(wrapper->Caption(), QStringLiteral("Lines"));
}

TEST_F(ToolBase, AButtonAssignedToASecondToolActivatesOnlyThatOneAndTheFirstStillPointsToIt) {
    TLogTool* a = AddLogTool("a");
    TLogTool* b = AddLogTool("b");
    auto* button = new TButton(Form.get());
    a->SetButton(button);
    b->SetButton(button);
    button->Click();
    EXPECT_EQ(Box->Tool(), b);
    EXPECT_EQ(a->Button(), button);
    EXPECT_EQ(Log, (Strings{"b.OnActivate"}));
}

TEST_F(ToolBase, ChangingTheButtonClearsTheOldHandlerAndActionAndSetsNoActionOnTheNew) {
    TLogTool* a = AddLogTool("a");
    auto* first = new TButton(Form.get());
    auto* second = new TToolButton(Form.get());
    auto* action = new TBasicAction(Form.get());
    first->SetAction(action);
    a->SetButton(first);
    a->SetButton(second);
    EXPECT_FALSE(first->OnClick);
    EXPECT_EQ(first->Action(), nullptr);
    EXPECT_EQ(second->Action(), nullptr);
    EXPECT_TRUE(second->OnClick);
    EXPECT_EQ(a->Button(), second);
}

TEST_F(ToolBase, SettingTheSameButtonAgainChangesNothing) {
    TLogTool* a = AddLogTool("a");
    auto* button = new TButton(Form.get());
    auto* action = new TBasicAction(Form.get());
    a->SetButton(button);
    button->SetAction(action);
    a->SetButton(button);
    EXPECT_EQ(button->Action(), action);
    EXPECT_TRUE(button->OnClick);
}

TEST_F(ToolBase, AnotherControlIsStoredButNotLinked) {
    TLogTool* a = AddLogTool("a");
    auto* box2 = new TvlDrawbox(Form.get());
    a->SetButton(box2);
    EXPECT_EQ(a->Button(), box2);
    EXPECT_FALSE(box2->OnClick);
}

TEST_F(ToolBase, ARemovedButtonIsForgotten) {
    TLogTool* a = AddLogTool("a");
    auto* button = new TButton(Form.get());
    a->SetButton(button);
    delete button;
    EXPECT_EQ(a->Button(), nullptr);
}

TEST_F(ToolBase, AButtonWithoutHandlerRunsItsAction) {
    auto* button = new TButton(Form.get());
    auto* action = new TBasicAction(Form.get());
    int runs = 0;
    action->OnExecute = [&](TObject* s) {
        ++runs;
        EXPECT_EQ(s, action);
    };
    button->SetAction(action);
    button->Click();
    EXPECT_EQ(runs, 1);
}

// ---------------------------------------------------------------------------------------------
// The object under the mouse
// ---------------------------------------------------------------------------------------------

class ToolMouseFnd : public ToolFixture {
protected:
    TTestObject* AddSquare(const std::string& Name, int X, int Y) {
        auto* o = new TTestObject();
        MakeSquare(*o);
        o->Name = Name;
        o->HitLog = &Log;
        o->SetPos(Point(X, Y));
        o->SetVisible(true);
        DataMod->Add(o, 0);
        return o;
    }
};

TEST_F(ToolMouseFnd, TheFirstAcceptedObjectUnderTheMouseIsFound) {
    TLogTool* a = AddLogTool("a");
    TTestObject* p = AddSquare("p", 0, 0);
    TTestObject* q = AddSquare("q", 100, 100);
    a->FindMouseObject(Point(105, 105));
    EXPECT_EQ(a->MouseFnd(), q);
    a->FindMouseObject(Point(3, 3));
    EXPECT_EQ(a->MouseFnd(), p);
    a->FindMouseObject(Point(50, 50));
    EXPECT_EQ(a->MouseFnd(), nullptr);
}

TEST_F(ToolMouseFnd, TheToolStaysOnTheOldObjectWithoutANewSearch) {
    TLogTool* a = AddLogTool("a");
    TTestObject* p = AddSquare("p", 0, 0);
    AddSquare("q", 5, 5); // overlaps p at (5..9, 5..9)
    int found = 0;
    a->OnObjectFound = [&](TvlObject*, bool&) { ++found; };
    a->FindMouseObject(Point(2, 2));
    ASSERT_EQ(a->MouseFnd(), p);
    Log.clear();
    found = 0;
    a->FindMouseObject(Point(7, 7));
    EXPECT_EQ(a->MouseFnd(), p);
    EXPECT_EQ(Log, (Strings{"p.Found"}));
    EXPECT_EQ(found, 0);
}

TEST_F(ToolMouseFnd, ARefusedObjectIsPassedOver) {
    TLogTool* a = AddLogTool("a");
    TTestObject* p = AddSquare("p", 0, 0);
    TTestObject* q = AddSquare("q", 0, 0);
    a->OnObjectFound = [&](TvlObject* o, bool& accept) { accept = o != p; };
    a->FindMouseObject(Point(1, 1));
    EXPECT_EQ(a->MouseFnd(), q);
}

TEST_F(ToolMouseFnd, TheNewObjectIsAcceptedBeforeTheOldIsReleased) {
    TLogTool* a = AddLogTool("a");
    TTestObject* p = AddSquare("p", 0, 0);
    TTestObject* q = AddSquare("q", 100, 0);
    a->OnObjectFound = [&](TvlObject* o, bool&) { Log.push_back(o == p ? "found p" : "found q"); };
    a->OnObjectRelease = [&](TvlObject* o) { Log.push_back(o == p ? "release p" : "release q"); };
    a->FindMouseObject(Point(1, 1));
    Log.clear();
    a->FindMouseObject(Point(101, 1));
    EXPECT_EQ(a->MouseFnd(), q);
    EXPECT_EQ(Log, (Strings{"p.Found", "p.Found", "q.Found", "found q", "release p"}));
}

TEST_F(ToolMouseFnd, LeavingAnObjectForEmptySpaceReleasesIt) {
    TLogTool* a = AddLogTool("a");
    TTestObject* p = AddSquare("p", 0, 0);
    std::vector<TvlObject*> released;
    a->OnObjectRelease = [&](TvlObject* o) { released.push_back(o); };
    a->FindMouseObject(Point(1, 1));
    a->FindMouseObject(Point(60, 60));
    EXPECT_EQ(a->MouseFnd(), nullptr);
    EXPECT_EQ(released, (std::vector<TvlObject*>{p}));
}

TEST_F(ToolMouseFnd, MouseFndSetByOneToolIsStillThereWhenTheNextIsActivated) {
    TLogTool* a = AddLogTool("a", true);
    TLogTool* b = AddLogTool("b");
    LoadForm();
    TTestObject* p = AddSquare("p", 0, 0);
    a->FindMouseObject(Point(1, 1));
    b->Activate(nullptr);
    EXPECT_EQ(b->MouseFnd(), p);
    EXPECT_EQ(Box->MouseFnd(), p);
}

TEST_F(ToolMouseFnd, ObjectFoundAcceptsWithoutAnEvent) {
    TLogTool* a = AddLogTool("a");
    TTestObject obj;
    MakeSquare(obj);
    EXPECT_TRUE(a->ObjectFound(&obj));
    a->OnObjectFound = [](TvlObject*, bool& accept) { accept = false; };
    EXPECT_FALSE(a->ObjectFound(&obj));
}

TEST_F(ToolMouseFnd, DataModuleAndRestoreRectAreTheBoxsModulesReadAnew) {
    TLogTool* a = AddLogTool("a");
    EXPECT_EQ(a->DataModule(), DataMod);
    EXPECT_EQ(a->RestoreRect(), &DataMod->FRestoreRect);
    EXPECT_EQ(a->MarkCase(), &DataMod->MarkCase());
    auto* other = new TStandInStore(Form.get());
    other->Marking = TStandInMarks::Listed;
    other->TakesAdds = true;
    Box->SetDataModule(other);
    EXPECT_EQ(a->DataModule(), other);
    EXPECT_EQ(a->MarkCase(), &other->MarkCase());
}

} // namespace
} // namespace vl::test
