// Input through Qt events: mouse with button and shift state, double clicks, keys, focus, the error
// boundary, pending mouse moves and the cursor cage.

#include "WinTestSupport.h"
#include "support/InputHelpers.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>

namespace vl::test {
namespace {

using WinInput = WindowFixture;

TEST_F(WinInput, MouseDownMoveUpCarryButtonShiftAndClientPosition) {
    std::vector<std::tuple<char, TMouseButton, TShiftState, int, int>> seen;
    Control->OnMouseDown = [&](TObject*, TMouseButton b, TShiftState s, int x, int y) {
        seen.emplace_back('d', b, s, x, y);
    };
    Control->OnMouseMove = [&](TObject*, TShiftState s, int x, int y) {
        seen.emplace_back('m', mbLeft, s, x, y);
    };
    Control->OnMouseUp = [&](TObject*, TMouseButton b, TShiftState s, int x, int y) {
        seen.emplace_back('u', b, s, x, y);
    };
    Drag(Window(), InWindow(30, 40), InWindow(35, 45), Qt::LeftButton, Qt::ShiftModifier);
    // Qt may report the arrival of the pointer as a move before the press.
    while (!seen.empty() && std::get<0>(seen.front()) == 'm') seen.erase(seen.begin());
    ASSERT_GE(seen.size(), 3u);
    EXPECT_EQ(seen.front(), std::make_tuple('d', mbLeft, ssShift | ssLeft, 30, 40));
    EXPECT_EQ(std::get<0>(seen[1]), 'm');
    EXPECT_EQ(std::get<3>(seen[1]), 35);
    EXPECT_EQ(std::get<4>(seen[1]), 45);
    EXPECT_TRUE(std::get<2>(seen[1]).Contains(ssLeft));
    EXPECT_EQ(seen.back(), std::make_tuple('u', mbLeft, TShiftState(ssShift), 35, 45));
}

TEST_F(WinInput, RightAndMiddleButtonsWithCtrlAndAlt) {
    QTest::mousePress(Window(), Qt::RightButton, Qt::ControlModifier | Qt::AltModifier, InWindow(5, 6));
    QTest::mouseRelease(Window(), Qt::RightButton, {}, InWindow(5, 6));
    Click(Window(), InWindow(7, 8), Qt::MiddleButton);
    EXPECT_EQ(Control->MouseMessages(),
              (std::vector<std::uint32_t>{WM_RBUTTONDOWN, WM_RBUTTONUP, WM_MBUTTONDOWN, WM_MBUTTONUP}));
    EXPECT_EQ(Control->Of(WM_RBUTTONDOWN)[0].Shift, ssCtrl | ssAlt | ssRight);
    EXPECT_EQ(Control->Of(WM_MBUTTONDOWN)[0].Shift, TShiftState(ssMiddle));
    EXPECT_EQ(Control->Of(WM_MBUTTONDOWN)[0].Pos, Point(7, 8));
}

TEST_F(WinInput, LeftDoubleClickGivesADoubleClickMessageWithSsDouble) {
    std::vector<TShiftState> downs;
    int dbl = 0;
    Control->OnMouseDown = [&](TObject*, TMouseButton b, TShiftState s, int, int) {
        EXPECT_EQ(b, mbLeft);
        downs.push_back(s);
    };
    Control->OnDblClick = [&](TObject*) { ++dbl; };
    QTest::mouseDClick(Window(), Qt::LeftButton, {}, InWindow(50, 50));
    EXPECT_EQ(Control->MouseMessages(),
              (std::vector<std::uint32_t>{WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP}));
    ASSERT_EQ(downs.size(), 2u);
    EXPECT_FALSE(downs[0].Contains(ssDouble));
    EXPECT_TRUE(downs[1].Contains(ssDouble));
    EXPECT_EQ(dbl, 1);
}

TEST_F(WinInput, RightDoubleClickGivesASecondPressWithSsDouble) {
    std::vector<TShiftState> downs;
    Control->OnMouseDown = [&](TObject*, TMouseButton b, TShiftState s, int, int) {
        EXPECT_EQ(b, mbRight);
        downs.push_back(s);
    };
    QTest::mouseDClick(Window(), Qt::RightButton, {}, InWindow(50, 50));
    EXPECT_EQ(Control->MouseMessages(),
              (std::vector<std::uint32_t>{WM_RBUTTONDOWN, WM_RBUTTONUP, WM_RBUTTONDOWN, WM_RBUTTONUP}));
    ASSERT_EQ(downs.size(), 2u);
    EXPECT_FALSE(downs[0].Contains(ssDouble));
    EXPECT_TRUE(downs[1].Contains(ssDouble));
}

TEST_F(WinInput, QtDoubleClickEventAloneIsTheSecondPress) {
    QMouseEvent dbl(QEvent::MouseButtonDblClick, QPointF(12, 13),
                    Control->Widget()->mapToGlobal(QPointF(12, 13)), Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
    QApplication::sendEvent(Control->Widget(), &dbl);
    ASSERT_EQ(Control->MouseMessages(), std::vector<std::uint32_t>{WM_LBUTTONDBLCLK});
    EXPECT_TRUE(Control->Of(WM_LBUTTONDBLCLK)[0].Shift.Contains(ssDouble));
    EXPECT_EQ(Control->Of(WM_LBUTTONDBLCLK)[0].Pos, Point(12, 13));
}

TEST_F(WinInput, WithoutDoubleClickStyleTheSecondPressIsPlain) {
    Control->SetControlStyle(Control->ControlStyle() - TControlStyle(csDoubleClicks));
    QTest::mouseDClick(Window(), Qt::LeftButton, {}, InWindow(50, 50));
    EXPECT_EQ(Control->MouseMessages(),
              (std::vector<std::uint32_t>{WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDOWN, WM_LBUTTONUP}));
    EXPECT_FALSE(Control->Of(WM_LBUTTONDOWN)[1].Shift.Contains(ssDouble));
}

TEST_F(WinInput, ClickFiresOnReleaseInsideTheClientArea) {
    int clicks = 0;
    Control->OnClick = [&](TObject*) { ++clicks; };
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(20, 20));
    EXPECT_EQ(clicks, 1);
}

// The focus rule of a drawing control: a press takes the focus, and is dropped if the control still
// has none.
class TFocusTaking : public TRecordingControl {
public:
    using TRecordingControl::TRecordingControl;
    int Downs = 0;
    void WndProc(TMessage& Message) override {
        if (Message.Msg == WM_LBUTTONDOWN || Message.Msg == WM_LBUTTONDBLCLK ||
            Message.Msg == WM_RBUTTONDOWN) {
            if (!Focused()) SetFocus();
            if (!Focused()) return;
        }
        TRecordingControl::WndProc(Message);
    }

protected:
    void MouseDown(TMouseButton Button, TShiftState Shift, int XDev, int YDev) override {
        ++Downs;
        TRecordingControl::MouseDown(Button, Shift, XDev, YDev);
    }
};

TEST_F(WinInput, PressTakesTheFocus) {
    auto* box = new TFocusTaking(Form.get());
    box->SetBounds(220, 10, 80, 80);
    box->SetParent(Form.get());
    Settle();
    Control->SetFocus();
    ASSERT_TRUE(Control->Focused());
    QTest::mouseClick(Window(), Qt::LeftButton, {}, box->Widget()->mapTo(Form->Widget(), QPoint(5, 5)));
    EXPECT_TRUE(box->Focused());
    EXPECT_FALSE(Control->Focused());
    EXPECT_EQ(box->Downs, 1);
    EXPECT_EQ(GetFocus(), box);
}

TEST_F(WinInput, PressOnAControlThatCannotTakeTheFocusIsDropped) {
    auto* box = new TFocusTaking(Form.get());
    box->SetBounds(220, 10, 80, 80);
    box->SetParent(Form.get());
    Settle();
    // Another window is active: the form's controls cannot get the focus.
    QWidget other;
    ASSERT_NO_FATAL_FAILURE(ActivateOtherWindow(other));
    int hostDowns = 0;
    box->OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { ++hostDowns; };
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(5, 5), box->Widget()->mapToGlobal(QPointF(5, 5)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(box->Widget(), &press);
    EXPECT_FALSE(box->Focused());
    EXPECT_EQ(box->Downs, 0);
    EXPECT_EQ(hostDowns, 0);
}

TEST_F(WinInput, FocusMessagesFireEnterAndExit) {
    int enters = 0;
    int exits = 0;
    Form->SetFocus();
    Control->OnEnter = [&](TObject*) { ++enters; };
    Control->OnExit = [&](TObject*) { ++exits; };
    Control->SetFocus();
    EXPECT_EQ(enters, 1);
    Form->SetFocus();
    EXPECT_EQ(exits, 1);
    EXPECT_TRUE(Control->CanFocus());
    Control->SetEnabled(false);
    EXPECT_FALSE(Control->CanFocus());
}

TEST_F(WinInput, TabAndArrowKeysReachKeyDownWhenTheControlWantsThem) {
    Control->WantKeys = true;
    std::vector<std::pair<std::uint16_t, TShiftState>> keys;
    Control->OnKeyDown = [&](TObject*, std::uint16_t& key, TShiftState shift) {
        // The modifier keys come as keys of their own.
        if (key != VK_SHIFT && key != VK_CONTROL) keys.emplace_back(key, shift);
    };
    Control->SetFocus();
    ASSERT_TRUE(Control->Focused());
    QTest::keyClick(Window(), Qt::Key_Tab);
    QTest::keyClick(Window(), Qt::Key_Backtab, Qt::ShiftModifier);
    QTest::keyClick(Window(), Qt::Key_Left);
    QTest::keyClick(Window(), Qt::Key_Down, Qt::ControlModifier);
    ASSERT_EQ(keys.size(), 4u);
    EXPECT_EQ(keys[0], std::make_pair(VK_TAB, TShiftState()));
    EXPECT_EQ(keys[1], std::make_pair(VK_TAB, TShiftState(ssShift)));
    EXPECT_EQ(keys[2], std::make_pair(VK_LEFT, TShiftState()));
    EXPECT_EQ(keys[3], std::make_pair(VK_DOWN, TShiftState(ssCtrl)));
    EXPECT_TRUE(Control->Focused());
}

TEST_F(WinInput, TabMovesTheFocusOnWhenTheControlLeavesItToTheWindow) {
    auto* second = new TRecordingControl(Form.get());
    second->SetBounds(220, 10, 50, 50);
    second->SetParent(Form.get());
    Settle();
    int keyDowns = 0;
    Control->OnKeyDown = [&](TObject*, std::uint16_t&, TShiftState) { ++keyDowns; };
    Control->SetFocus();
    QTest::keyClick(Window(), Qt::Key_Tab);
    EXPECT_TRUE(second->Focused());
    EXPECT_EQ(keyDowns, 0);
    ASSERT_EQ(Control->Of(CN_KEYDOWN).size(), 1u);
    EXPECT_EQ(Control->Of(WM_KEYDOWN).size(), 0u);
}

TEST_F(WinInput, KeysAreVirtualKeyCodesWithCharactersAndRelease) {
    std::vector<std::uint16_t> downs;
    std::vector<std::uint16_t> ups;
    std::u16string chars;
    Control->OnKeyDown = [&](TObject*, std::uint16_t& key, TShiftState) { downs.push_back(key); };
    Control->OnKeyUp = [&](TObject*, std::uint16_t& key, TShiftState) { ups.push_back(key); };
    Control->OnKeyPress = [&](TObject*, char16_t& key) { chars.push_back(key); };
    Control->SetFocus();
    QTest::keyClick(Window(), Qt::Key_A, Qt::NoModifier);
    QTest::keyClick(Window(), Qt::Key_Escape);
    QTest::keyClick(Window(), Qt::Key_F5);
    QTest::keyClick(Window(), Qt::Key_Delete);
    EXPECT_EQ(downs, (std::vector<std::uint16_t>{'A', VK_ESCAPE, VK_F1 + 4, VK_DELETE}));
    EXPECT_EQ(ups, downs);
    EXPECT_EQ(chars.substr(0, 1), u"a");
}

TEST_F(WinInput, VirtualKeyTable) {
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Left, false), 0x25);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Up, false), 0x26);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Right, false), 0x27);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Down, false), 0x28);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_PageUp, false), VK_PRIOR);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_5, false), '5');
    EXPECT_EQ(VirtualKeyOf(Qt::Key_5, true), VK_NUMPAD0 + 5);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Plus, true), VK_ADD);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Shift, false), VK_SHIFT);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Control, false), VK_CONTROL);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_Alt, false), VK_MENU);
    EXPECT_EQ(VirtualKeyOf(Qt::Key_unknown, false), 0);
}

TEST_F(WinInput, WndProcSeesEveryTranslatedMessageFirstAndCanDropIt) {
    Control->Intercept = [](TMessage& m) {
        if (m.Msg == WM_LBUTTONDOWN) m.Msg = WM_NULL;
    };
    int downs = 0;
    Control->OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { ++downs; };
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(20, 20));
    EXPECT_EQ(downs, 0);
    EXPECT_EQ(Control->Of(WM_LBUTTONDOWN).size(), 1u);
}

TEST_F(WinInput, ExceptionInAHandlerGoesToTheErrorServiceAndAbortIsSilent) {
    Control->OnMouseDown = [](TObject*, TMouseButton, TShiftState, int, int) {
        throw Exception("Tastenkombination nicht möglich!");
    };
    Control->OnMouseUp = [](TObject*, TMouseButton, TShiftState, int, int) { Abort(); };
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(20, 20));
    EXPECT_EQ(Errors.Messages, QStringList{"Tastenkombination nicht möglich!"});
}

TEST_F(WinInput, DefaultErrorServiceShowsTheMessageAsAnError) {
    TErrorService::Install(nullptr);
    Control->OnMouseDown = [](TObject*, TMouseButton, TShiftState, int, int) { throw Exception("boom"); };
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(20, 20));
    TErrorService::Install(&Errors);
    ASSERT_EQ(Dialogs.Questions.size(), 1u);
    EXPECT_EQ(Dialogs.Questions[0].Msg, "boom");
    EXPECT_EQ(Dialogs.Questions[0].DlgType, mtError);
}

TEST_F(WinInput, PendingMouseMovesAreDroppedUntilTheLoopPassEnds) {
    int moves = 0;
    Control->OnMouseMove = [&](TObject*, TShiftState, int, int) { ++moves; };
    auto sendMove = [&](int x) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, 10), Control->Widget()->mapToGlobal(QPointF(x, 10)),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(Control->Widget(), &move);
    };
    TMessage unused;
    PeekMessage(&unused, Control->Handle(), WM_MOUSEMOVE, WM_MOUSEMOVE, PM_REMOVE);
    sendMove(11);
    sendMove(12);
    EXPECT_EQ(moves, 0);
    Settle();
    sendMove(13);
    EXPECT_EQ(moves, 1);
}

TEST_F(WinInput, ClipCursorClampsDeliveredPositionsToTheCage) {
    TCursorServiceDouble cursor;
    TServiceScope<TCursorService> scope(cursor);
    const TPoint origin = Control->ClientToScreen(Point(0, 0));
    const TRect cage = Rect(origin.x + 10, origin.y + 10, origin.x + 100, origin.y + 80);
    ClipCursor(&cage);
    QMouseEvent move(QEvent::MouseMove, QPointF(150, 5), Control->Widget()->mapToGlobal(QPointF(150, 5)),
                     Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(Control->Widget(), &move);
    ClipCursor(nullptr);
    QApplication::sendEvent(Control->Widget(), &move);
    const auto moves = Control->Of(WM_MOUSEMOVE);
    ASSERT_GE(moves.size(), 2u);
    EXPECT_EQ(moves[moves.size() - 2].Pos, Point(99, 10));
    EXPECT_EQ(moves.back().Pos, Point(150, 5));
}

TEST_F(WinInput, QtClipCursorGrabsTheMouseForThePressedControlAndReleases) {
    QTest::mousePress(Window(), Qt::LeftButton, {}, InWindow(20, 20));
    const TRect cage = Rect(0, 0, 5000, 5000);
    ClipCursor(&cage);
    EXPECT_EQ(QWidget::mouseGrabber(), Control->Widget());
    ClipCursor(nullptr);
    QTest::mouseRelease(Window(), Qt::LeftButton, {}, InWindow(20, 20));
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
}

TEST_F(WinInput, DragOverAndDropGiveClientPositions) {
    std::vector<std::tuple<int, int, TDragState>> overs;
    std::vector<std::pair<int, int>> drops;
    Control->OnDragOver = [&](TObject*, QObject*, int x, int y, TDragState state, bool& accept) {
        overs.emplace_back(x, y, state);
        accept = true;
    };
    Control->OnDragDrop = [&](TObject*, QObject*, int x, int y) { drops.emplace_back(x, y); };
    QMimeData data;
    data.setText("x");
    QDragEnterEvent enter(QPoint(10, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Control->Widget(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDragMoveEvent move(QPoint(15, 25), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Control->Widget(), &move);
    QDropEvent drop(QPointF(16, 26), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Control->Widget(), &drop);
    ASSERT_EQ(overs.size(), 2u);
    EXPECT_EQ(overs[0], std::make_tuple(10, 20, dsDragEnter));
    EXPECT_EQ(overs[1], std::make_tuple(15, 25, dsDragMove));
    EXPECT_EQ(drops, (std::vector<std::pair<int, int>>{{16, 26}}));
}

TEST_F(WinInput, DragIsRefusedWithoutAHostEvent) {
    QMimeData data;
    QDragEnterEvent enter(QPoint(10, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Control->Widget(), &enter);
    EXPECT_FALSE(enter.isAccepted());
}

} // namespace
} // namespace vl::test
