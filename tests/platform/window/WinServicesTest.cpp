// The window-system services: their test doubles, the clipboard format registry, the screen, the
// error boundary and the file dialog helpers.

#include "platform/graphics/Cursors.h"
#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <stdexcept>

namespace vl {
namespace {

TEST(WinServices, MessageDlgGoesToTheInstalledDoubleAndRecordsTheQuestion) {
    TMessageServiceDouble dialogs;
    dialogs.Answers.push_back(mrCancel);
    TServiceScope scope(static_cast<TMessageService&>(dialogs));
    EXPECT_EQ(MessageDlg("wrong file version - load map file?", mtError, mbYes | mbCancel, 0), mrCancel);
    ASSERT_EQ(dialogs.Questions.size(), 1u);
    EXPECT_EQ(dialogs.Questions[0].Msg, "wrong file version - load map file?");
    EXPECT_EQ(dialogs.Questions[0].DlgType, mtError);
    EXPECT_EQ(dialogs.Questions[0].Buttons, mbYes | mbCancel);
    EXPECT_EQ(dialogs.Questions[0].HelpCtx, 0);
}

TEST(WinServices, MessageDlgDoubleWithoutQueuedAnswerTakesTheFirstButton) {
    TMessageServiceDouble dialogs;
    TServiceScope scope(static_cast<TMessageService&>(dialogs));
    EXPECT_EQ(MessageDlg("Print error", mtError, TMsgDlgButtons(mbOK), 0), mrOk);
    EXPECT_EQ(MessageDlg("?", mtConfirmation, mbYes | mbCancel, 0), mrYes);
    dialogs.DefaultAnswer = mrCancel;
    EXPECT_EQ(MessageDlg("?", mtConfirmation, mbYes | mbCancel, 0), mrCancel);
}

TEST(WinServices, ScopeRestoresThePreviousService) {
    TMessageServiceDouble outer;
    TMessageServiceDouble inner;
    TServiceScope outerScope(static_cast<TMessageService&>(outer));
    {
        TServiceScope innerScope(static_cast<TMessageService&>(inner));
        MessageBeep(1);
    }
    MessageBeep(2);
    EXPECT_EQ(inner.Beeps, std::vector<std::uint32_t>{1});
    EXPECT_EQ(outer.Beeps, std::vector<std::uint32_t>{2});
}

TEST(WinServices, ModalResultsOfTheButtons) {
    EXPECT_EQ(ModalResultOf(mbOK), mrOk);
    EXPECT_EQ(ModalResultOf(mbYes), mrYes);
    EXPECT_EQ(ModalResultOf(mbCancel), mrCancel);
    EXPECT_EQ(ModalResultOf(mbNo), mrNo);
    EXPECT_EQ(mrOk, 1);
    EXPECT_EQ(mrCancel, 2);
    EXPECT_EQ(mrYes, 6);
}

TEST(WinServices, ManualClockAdvancesOnlyWhenTold) {
    TManualClock clock;
    TServiceScope scope(static_cast<TClockService&>(clock));
    clock.Set(1000);
    EXPECT_EQ(GetTickCount(), 1000u);
    EXPECT_EQ(GetTickCount(), 1000u);
    clock.Advance(51);
    EXPECT_EQ(GetTickCount(), 1051u);
    clock.AutoStep = 10;
    EXPECT_EQ(GetTickCount(), 1051u);
    EXPECT_EQ(GetTickCount(), 1061u);
    EXPECT_EQ(clock.Readings, 5);
}

TEST(WinServices, ManualClockWrapsAtThirtyTwoBits) {
    TManualClock clock;
    TServiceScope scope(static_cast<TClockService&>(clock));
    clock.Set(0xFFFFFFF0u);
    clock.Advance(0x20);
    EXPECT_EQ(GetTickCount(), 0x10u);
}

TEST(WinServices, QtClockNeverRunsBackwards) {
    const std::uint32_t first = GetTickCount();
    const std::uint32_t second = GetTickCount();
    EXPECT_LE(first, second);
}

TEST(WinServices, ProcessMessagesGoesThroughThePump) {
    TEventPumpDouble pump;
    int seen = 0;
    pump.OnProcess = [&] { ++seen; };
    TServiceScope scope(static_cast<TEventPump&>(pump));
    Application.ProcessMessages();
    Application.ProcessMessages();
    EXPECT_EQ(pump.Calls, 2);
    EXPECT_EQ(seen, 2);
}

TEST(WinServices, CursorDoubleAnswersTheSetPositionClampedToTheConfinement) {
    TCursorServiceDouble cursor;
    TServiceScope scope(static_cast<TCursorService&>(cursor));
    SetCursorPos(500, 7);
    TPoint p;
    ASSERT_TRUE(GetCursorPos(&p));
    EXPECT_EQ(p, Point(500, 7));
    const TRect cage = Rect(10, 20, 110, 220);
    ClipCursor(&cage);
    GetCursorPos(&p);
    EXPECT_EQ(p, Point(109, 20));
    ClipCursor(nullptr);
    GetCursorPos(&p);
    EXPECT_EQ(p, Point(500, 7));
    ASSERT_EQ(cursor.ClipCalls.size(), 2u);
    EXPECT_EQ(cursor.ClipCalls[0], cage);
    EXPECT_FALSE(cursor.ClipCalls[1].has_value());
}

TEST(WinServices, ClampKeepsPointsInsideAndPinsToLastPixel) {
    TCursorServiceDouble cursor;
    const TRect cage = Rect(0, 0, 300, 200);
    cursor.ClipCursor(&cage);
    EXPECT_EQ(cursor.Clamp(Point(-5, 50)), Point(0, 50));
    EXPECT_EQ(cursor.Clamp(Point(300, 200)), Point(299, 199));
    EXPECT_EQ(cursor.Clamp(Point(150, 100)), Point(150, 100));
}

TEST(WinServices, ErrorServiceReceivesExceptionsAndAbortIsSilent) {
    TErrorServiceDouble errors;
    TServiceScope scope(static_cast<TErrorService&>(errors));
    GuardedEntry([] { throw Exception("Cannot draw picture"); });
    GuardedEntry([] { Abort(); });
    GuardedEntry([] { throw std::runtime_error("plain"); });
    GuardedEntry([] { throw 42; });
    EXPECT_EQ(errors.Messages, (QStringList{"Cannot draw picture", "plain", "Unknown exception"}));
}

TEST(WinServices, DefaultErrorServiceShowsAnErrorDialogWithOk) {
    TMessageServiceDouble dialogs;
    TServiceScope scope(static_cast<TMessageService&>(dialogs));
    GuardedEntry([] { throw Exception("No Action Assigned"); });
    ASSERT_EQ(dialogs.Questions.size(), 1u);
    EXPECT_EQ(dialogs.Questions[0].Msg, "No Action Assigned");
    EXPECT_EQ(dialogs.Questions[0].DlgType, mtError);
    EXPECT_EQ(dialogs.Questions[0].Buttons, TMsgDlgButtons(mbOK));
}

TEST(WinServices, ClipboardFormatIsStableAndCaseInsensitive) {
    const std::uint32_t a = RegisterClipboardFormat("0Form1_vlDrawbox1");
    EXPECT_GE(a, 0xC000u);
    EXPECT_EQ(RegisterClipboardFormat("0Form1_vlDrawbox1"), a);
    EXPECT_EQ(RegisterClipboardFormat("0FORM1_VLDRAWBOX1"), a);
    const std::uint32_t b = RegisterClipboardFormat("0Form1_vlDrawbox2");
    EXPECT_NE(a, b);
    EXPECT_GE(b, 0xC000u);
    EXPECT_EQ(GetClipboardFormatName(a), "0Form1_vlDrawbox1");
    EXPECT_EQ(ClipboardFormatMimeType(a), "application/x-vellorum-0form1_vldrawbox1");
}

TEST(WinServices, ClipboardFormatOfEmptyNameIsZeroAndUnknownNumbersHaveNoName) {
    EXPECT_EQ(RegisterClipboardFormat(""), 0u);
    EXPECT_EQ(GetClipboardFormatName(CF_TEXT), "");
    EXPECT_EQ(ClipboardFormatMimeType(0xFFFF), "");
}

TEST(WinServices, ClipboardMimeTypeEscapesOtherCharacters) {
    const std::uint32_t f = RegisterClipboardFormat("My App/é");
    EXPECT_EQ(ClipboardFormatMimeType(f), "application/x-vellorum-my+0020app+002F+00E9");
}

TEST(WinServices, ScreenPixelsPerInchFollowsTheScreenAndCanBeSet) {
    EXPECT_EQ(Screen.PixelsPerInch(), 96);
    Screen.SetPixelsPerInch(192);
    EXPECT_EQ(Screen.PixelsPerInch(), 192);
    Screen.SetPixelsPerInch(0);
    EXPECT_EQ(Screen.PixelsPerInch(), 96);
}

TEST(WinServices, BusyCursorSetsAndRestoresTheOverrideCursor) {
    ASSERT_EQ(QGuiApplication::overrideCursor(), nullptr);
    Screen.SetCursor(crHourGlass);
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    Screen.SetCursor(crDefault);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(Screen.Cursor(), crDefault);
}

TEST(WinServices, FileDialogDoubleAnswersAndAppendsTheDefaultExtension) {
    TFileDialogServiceDouble files;
    files.Answers.push_back(QString("/tmp/plan"));
    files.Answers.push_back(std::nullopt);
    TServiceScope scope(static_cast<TFileDialogService&>(files));
    TSaveDialog save;
    save.Filter = "Drawings (*.vld)|*.vld|All files|*.*";
    save.DefaultExt = "vld";
    ASSERT_TRUE(save.Execute());
    EXPECT_EQ(save.FileName, "/tmp/plan.vld");
    TOpenDialog open;
    open.FileName = "keep.vld";
    EXPECT_FALSE(open.Execute());
    EXPECT_EQ(open.FileName, "keep.vld");
    ASSERT_EQ(files.Requests.size(), 2u);
    EXPECT_TRUE(files.Requests[0].Save);
    EXPECT_FALSE(files.Requests[1].Save);
    EXPECT_EQ(files.Requests[0].Filter, "Drawings (*.vld)|*.vld|All files|*.*");
}

TEST(WinServices, QtNameFiltersFromTheFrameworkForm) {
    EXPECT_EQ(QtNameFilters("Drawings (*.vld)|*.vld|All files|*.*;*"),
              (QStringList{"Drawings (*.vld)", "All files (*.* *)"}));
    EXPECT_TRUE(QtNameFilters("").isEmpty());
}

TEST(WinServices, DefaultExtensionOnlyWhereNoneIsGiven) {
    EXPECT_EQ(ApplyDefaultExt("a/plan", "vld"), "a/plan.vld");
    EXPECT_EQ(ApplyDefaultExt("a/plan.txt", "vld"), "a/plan.txt");
    EXPECT_EQ(ApplyDefaultExt("a/plan", ""), "a/plan");
    EXPECT_EQ(ApplyDefaultExt("a/plan", ".vld"), "a/plan.vld");
}

} // namespace
} // namespace vl
