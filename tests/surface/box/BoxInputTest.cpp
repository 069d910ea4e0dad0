// Mouse and key events through Qt on a shown window: focus, mapping to logical coordinates, and
// dispatch to the host's events and the current tool in their order.

#include "BoxTestSupport.h"
#include "support/InputHelpers.h"

namespace vl::test {
namespace {

class BoxInput : public BoxFixture {
protected:
    void SetUp() override {
        BoxFixture::SetUp();
        Box = MakePixelBox();
        HookHost(Box);
    }
    // A test that presses a button and never releases it ends the gesture here: Qt keeps the held
    // buttons across windows, and the next test's clicks would arrive with that button still down.
    void TearDown() override {
        for (Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
            if (QGuiApplication::mouseButtons().testFlag(button))
                QTest::mouseRelease(Window(), button, {}, InWindow(Box, 15, 15));
        BoxFixture::TearDown();
    }
    TRecordingTool* AddDefaultTool(TvlDrawbox* B) {
        auto* tool = new TRecordingTool(Form.get(), Log);
        tool->FDrawForm = B;
        tool->SetOptions(TToolOptions{toDefaultTool});
        return tool;
    }
    void HookHost(TvlDrawbox* B) {
        B->OnMouseDown = [this](TObject*, TMouseButton, TShiftState S, int X, int Y) {
            Log.push_back({"host.MouseDown", Point(X, Y), S, ActScaleSet});
        };
        B->OnMouseMove = [this](TObject*, TShiftState S, int X, int Y) {
            Log.push_back({"host.MouseMove", Point(X, Y), S, ActScaleSet});
        };
        B->OnMouseUp = [this](TObject*, TMouseButton, TShiftState S, int X, int Y) {
            Log.push_back({"host.MouseUp", Point(X, Y), S, ActScaleSet});
        };
        B->OnKeyDown = [this](TObject*, std::uint16_t& K, TShiftState S) {
            Log.push_back({"host.KeyDown", Point(K, 0), S, ActScaleSet});
        };
        B->OnKeyUp = [this](TObject*, std::uint16_t& K, TShiftState S) {
            Log.push_back({"host.KeyUp", Point(K, 0), S, ActScaleSet});
        };
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> r;
        for (const TCall& c : Log) r.push_back(c.What);
        return r;
    }
    // The calls without the moves that the synthetic pointer makes before a press.
    std::vector<TCall> Presses() const {
        std::vector<TCall> r;
        for (const TCall& c : Log)
            if (c.What != "MouseMove" && c.What != "host.MouseMove") r.push_back(c);
        return r;
    }
    std::vector<std::string> PressNames() const {
        std::vector<std::string> r;
        for (const TCall& c : Presses()) r.push_back(c.What);
        return r;
    }
    std::vector<TCall> Log;
    TvlDrawbox* Box = nullptr;
};

TEST_F(BoxInput, ABoxWithoutToolsPaintsButItsHostMouseEventsDoNotFire) {
    int paints = 0;
    Box->AfterPaint = [&](TObject*) { ++paints; };
    ShowForm();
    LoadForm();
    Box->InvalidateBox();
    Settle();
    EXPECT_GE(paints, 1);
    Drag(Window(), InWindow(Box, 20, 30), InWindow(Box, 25, 35));
    EXPECT_TRUE(Log.empty());
}

TEST_F(BoxInput, PressMapsToLogicalAndRunsHostThenTool) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    ActScaleSet = nullptr;
    QTest::mousePress(Window(), Qt::LeftButton, Qt::ShiftModifier, InWindow(Box, 20, 30));
    const std::vector<TCall> p = Presses();
    ASSERT_EQ(PressNames(), (std::vector<std::string>{"host.MouseDown", "LMouseDown"}));
    EXPECT_EQ(p[0].Pos, Point(20, 30));
    EXPECT_EQ(p[1].Pos, Point(20, 30));
    EXPECT_TRUE(p[1].Shift.Contains(ssShift));
    EXPECT_EQ(p[0].Scale, &Box->ScaleSetting());
    EXPECT_TRUE(Box->Focused());
}

TEST_F(BoxInput, MoveRunsTheToolBeforeTheHostAndReleaseTheHostBeforeTheTool) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    QTest::mousePress(Window(), Qt::LeftButton, {}, InWindow(Box, 20, 30));
    Log.clear();
    QTest::mouseMove(Window(), InWindow(Box, 40, 50));
    QTest::mouseRelease(Window(), Qt::LeftButton, {}, InWindow(Box, 40, 50));
    EXPECT_EQ(Names(), (std::vector<std::string>{"MouseMove", "host.MouseMove", "host.MouseUp", "LMouseUp"}));
}

TEST_F(BoxInput, HostEventsSeeLogicalCoordinatesThatRunAgainstTheDeviceWithABottomOrigin) {
    Box->ScaleSetting().SetOrigin(TOrigin::LeftBottom);
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    const int h = Box->ClientHeight();
    QTest::mousePress(Window(), Qt::LeftButton, {}, InWindow(Box, 10, 20));
    QTest::mouseMove(Window(), InWindow(Box, 10, 60));
    std::vector<TPoint> moves;
    for (const TCall& c : Log)
        if (c.What == "host.MouseMove") moves.push_back(c.Pos);
    ASSERT_FALSE(moves.empty());
    EXPECT_EQ(moves.back(), Point(10, h - 60));
    ASSERT_FALSE(Presses().empty());
    EXPECT_EQ(Presses()[0].Pos, Point(10, h - 20));
    EXPECT_GT(Presses()[0].Pos.y, moves.back().y); // down on the screen is down in value
}

TEST_F(BoxInput, RightDoubleClickReachesTheToolAsASecondRMouseDown) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    QTest::mouseDClick(Window(), Qt::RightButton, {}, InWindow(Box, 15, 15));
    std::vector<TCall> downs;
    for (const TCall& c : Log)
        if (c.What == "RMouseDown" || c.What == "RightDblClk") downs.push_back(c);
    ASSERT_EQ(downs.size(), 2u);
    EXPECT_EQ(downs[0].What, "RMouseDown");
    EXPECT_EQ(downs[1].What, "RMouseDown");
    EXPECT_FALSE(downs[0].Shift.Contains(ssDouble));
    EXPECT_TRUE(downs[1].Shift.Contains(ssDouble));
}

TEST_F(BoxInput, LeftDoubleClickReachesTheToolAsLeftDblClk) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    QTest::mouseDClick(Window(), Qt::LeftButton, {}, InWindow(Box, 15, 15));
    std::vector<std::string> presses;
    for (const TCall& c : Log)
        if (c.What == "LMouseDown" || c.What == "LeftDblClk") presses.push_back(c.What);
    EXPECT_EQ(presses, (std::vector<std::string>{"LMouseDown", "LeftDblClk"}));
}

TEST_F(BoxInput, MiddlePressFiresTheHostOnly) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    QTest::mousePress(Window(), Qt::MiddleButton, {}, InWindow(Box, 15, 15));
    EXPECT_EQ(PressNames(), (std::vector<std::string>{"host.MouseDown"}));
}

TEST_F(BoxInput, APressOnABoxThatCannotTakeTheFocusDoesNothing) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    // Another window is active: the box's window can't give it the focus.
    QWidget other;
    ASSERT_NO_FATAL_FAILURE(ActivateOtherWindow(other));
    ASSERT_FALSE(Box->Focused());
    QTest::mousePress(Window(), Qt::LeftButton, {}, InWindow(Box, 15, 15));
    QTest::mousePress(Window(), Qt::RightButton, {}, InWindow(Box, 15, 15));
    EXPECT_TRUE(std::none_of(Log.begin(), Log.end(), [](const TCall& c) {
        return c.What == "host.MouseDown" || c.What == "LMouseDown" || c.What == "RMouseDown";
    }));
}

TEST_F(BoxInput, PressesAreDroppedWhileAnAutoscrollRunsButReleasesAreNot) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    Box->State.Include(bsToolScroll);
    Drag(Window(), InWindow(Box, 15, 15), InWindow(Box, 18, 18));
    Box->State.Exclude(bsToolScroll);
    EXPECT_EQ(Names(), (std::vector<std::string>{"host.MouseUp", "LMouseUp"}));
}

TEST_F(BoxInput, KeysRunTheHostThenTheToolAndTabReachesTheBox) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    Click(Window(), InWindow(Box, 15, 15));
    ASSERT_TRUE(Box->Focused());
    Log.clear();
    QTest::keyClick(Window(), Qt::Key_Tab);
    EXPECT_EQ(Names(), (std::vector<std::string>{"host.KeyDown", "KeyDown", "host.KeyUp", "KeyUp"}));
    ASSERT_FALSE(Log.empty());
    EXPECT_EQ(Log[0].Pos.x, VK_TAB);
    EXPECT_TRUE(Box->Focused());
}

TEST_F(BoxInput, KeysWithoutAToolStillReachTheHost) {
    ShowForm();
    LoadForm();
    Box->SetFocus();
    ASSERT_TRUE(Box->Focused());
    QTest::keyClick(Window(), Qt::Key_Left);
    EXPECT_EQ(Names(), (std::vector<std::string>{"host.KeyDown", "host.KeyUp"}));
}

TEST_F(BoxInput, TwoBoxesEachMakeTheirScaleSettingCurrentAtEachEvent) {
    TvlDrawbox* other = MakeBox(QStringLiteral("Box2"), Rect(320, 10, 620, 210));
    other->ScaleSetting().SetMinUnit(TLenUnits::Pixel);
    HookHost(other);
    AddDefaultTool(Box);
    AddDefaultTool(other);
    ShowForm();
    LoadForm();
    Click(Window(), InWindow(Box, 15, 15));
    Click(Window(), InWindow(other, 15, 15));
    QTest::mousePress(Window(), Qt::LeftButton, {}, InWindow(Box, 16, 16));
    std::vector<TScaleSetting*> seen;
    for (const TCall& c : Log)
        if (c.What == "LMouseDown") seen.push_back(c.Scale);
    EXPECT_EQ(seen, (std::vector<TScaleSetting*>{&Box->ScaleSetting(), &other->ScaleSetting(),
                                                 &Box->ScaleSetting()}));
    EXPECT_EQ(ActScaleSet, &Box->ScaleSetting());
}

TEST_F(BoxInput, ShiftAltCtrlRightPressOnTheBoxShowsTheErrorDialog) {
    AddDefaultTool(Box);
    ShowForm();
    LoadForm();
    QTest::mousePress(Window(), Qt::RightButton, Qt::ShiftModifier | Qt::AltModifier | Qt::ControlModifier,
                      InWindow(Box, 15, 15));
    ASSERT_EQ(Dialogs.Questions.size(), 1u);
    EXPECT_EQ(Dialogs.Questions[0].Msg, QStringLiteral("Tastenkombination nicht möglich!"));
    EXPECT_EQ(Dialogs.Questions[0].DlgType, mtError);
}

TEST_F(BoxInput, TheDefaultToolsRightPressDoesNotReplaceItself) {
    auto* def = new TMouseTool(Form.get());
    def->FDrawForm = Box;
    def->SetOptions(TToolOptions{toDefaultTool});
    auto* other = new TMouseTool(Form.get());
    other->FDrawForm = Box;
    int terminations = 0;
    def->OnTerminate = [&](TObject*) { ++terminations; };
    ShowForm();
    LoadForm();
    ASSERT_EQ(Box->Tool(), def);
    QTest::mousePress(Window(), Qt::RightButton, {}, InWindow(Box, 15, 15));
    EXPECT_EQ(terminations, 0);
    other->Activate(nullptr);
    EXPECT_EQ(Box->Tool(), other);
    EXPECT_EQ(terminations, 1);
    QTest::mouseRelease(Window(), Qt::RightButton, {}, InWindow(Box, 15, 15));
    QTest::mousePress(Window(), Qt::RightButton, {}, InWindow(Box, 30, 15));
    EXPECT_EQ(Box->Tool(), def); // the other tool's right press returns to the default tool
}

} // namespace
} // namespace vl::test
