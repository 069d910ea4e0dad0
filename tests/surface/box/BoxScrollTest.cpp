// The scrolling window: scroll bar arithmetic, scroll messages, and scrolling with the strips that
// stay put.

#include "BoxTestSupport.h"
#include "support/InputHelpers.h"

#include "surface/Scl12.h"

namespace vl::test {
namespace {

class BoxScroll : public BoxFixture {
protected:
    TScrollPaint* MakePaint(TRect Bounds = Rect(10, 10, 312, 212)) {
        auto* p = new TScrollPaint(Form.get());
        p->SetParent(Form.get());
        p->SetBoundsRect(Bounds);
        p->SetColor(clWhite);
        return p;
    }
    // Fills the surface with a pattern whose red channel is the column and green the row, and
    // settles the pending paint so that nothing is invalid.
    static void FillPattern(TWinControl* W) {
        W->PaintPending();
        QImage& img = W->Surface().Image();
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x) img.setPixel(x, y, qRgb(x & 0xFF, y & 0xFF, 0));
    }
    static int Column(TWinControl* W, int X, int Y) { return qRed(W->Surface().Image().pixel(X, Y)); }
};

TEST_F(BoxScroll, BarDefaults) {
    TScrollPaint* p = MakePaint();
    const TvlScrollBar& h = p->HorzScrollBar();
    EXPECT_EQ(h.Increment(), 8);
    EXPECT_EQ(h.Position(), 0);
    EXPECT_EQ(h.Range(), 0);
    EXPECT_TRUE(h.Visible());
    EXPECT_FALSE(h.Tracking());
    EXPECT_EQ(h.Margin(), 0);
    EXPECT_EQ(h.Kind(), sbHorizontal);
    EXPECT_EQ(p->VertScrollBar().Kind(), sbVertical);
    EXPECT_TRUE(p->AutoRange());
    EXPECT_FALSE(p->AutoScroll());
    EXPECT_EQ(p->BorderStyle(), bsSingle);
}

TEST_F(BoxScroll, ScrollBoxConstructorSizeIs185By41) {
    auto* b = new TScrollBx(Form.get());
    EXPECT_EQ(b->Width(), 185);
    EXPECT_EQ(b->Height(), 41);
    EXPECT_EQ(b->ControlStyle(), (TControlStyle{csCaptureMouse, csClickEvents, csDoubleClicks}));
}

TEST_F(BoxScroll, PositionBeyondLargestValueIsClampedToCalcRange) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    h.DoSetRange(1000);
    ASSERT_GT(h.CalcRange(), 0);
    EXPECT_EQ(h.CalcRange(), 1000 - h.ControlSize(true, false));
    h.SetPosition(5000);
    EXPECT_EQ(h.Position(), h.CalcRange());
    h.SetPosition(-20);
    EXPECT_EQ(h.Position(), 0);
    EXPECT_EQ(p->GetScrollPos(SB_HORZ), 0);
}

TEST_F(BoxScroll, SetPositionWritesTheSystemBar) {
    TScrollPaint* p = MakePaint();
    p->VertScrollBar().DoSetRange(900);
    p->VertScrollBar().SetPosition(123);
    EXPECT_EQ(p->GetScrollPos(SB_VERT), 123);
}

TEST_F(BoxScroll, PositionZeroBringsBackTheRangeOfDoSetRangeWhileSyncLeavesDataRange) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    h.DoSetRange(800);
    h.SetPosition(100);
    p->SyncScrollbars(TSize{1500, p->VertScrollBar().Range()}, Point(100, 0));
    EXPECT_EQ(h.Range(), 1500);
    EXPECT_EQ(h.DataRange(), 800);
    h.SetPosition(0);
    EXPECT_EQ(h.Range(), 800);
}

TEST_F(BoxScroll, SyncScrollbarsTakesAbsolutePositionsWithoutClamping) {
    TScrollPaint* p = MakePaint();
    p->SyncScrollbars(TSize{500, 400}, Point(-900, 30));
    EXPECT_EQ(p->HorzScrollBar().Position(), 900);
    EXPECT_EQ(p->VertScrollBar().Position(), 30);
    EXPECT_EQ(p->HorzScrollBar().Range(), 500);
    EXPECT_EQ(p->VertScrollBar().Range(), 400);
}

TEST_F(BoxScroll, DoSetRangeBelowOneClearsRangeAndPosition) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    h.DoSetRange(1000);
    h.SetPosition(50);
    h.DoSetRange(0);
    EXPECT_EQ(h.Range(), 0);
    EXPECT_EQ(h.Position(), 0);
    EXPECT_EQ(h.DataRange(), 0);
}

TEST_F(BoxScroll, SetRangeTurnsTheAutoRangeOffAndMarksTheBarScaled) {
    TScrollPaint* p = MakePaint();
    p->HorzScrollBar().SetRange(700);
    EXPECT_FALSE(p->AutoRange());
    EXPECT_TRUE(p->HorzScrollBar().Scaled());
    EXPECT_EQ(p->HorzScrollBar().DataRange(), 700);
}

TEST_F(BoxScroll, UpdateWritesRangePageAndPosition) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    h.DoSetRange(1000);
    h.SetPosition(40);
    h.Update(true, false);
    TScrollInfo info;
    info.fMask = SIF_ALL;
    ASSERT_TRUE(p->GetScrollInfo(SB_HORZ, info));
    EXPECT_EQ(info.nMin, 0);
    EXPECT_EQ(info.nMax, 1000);
    EXPECT_EQ(info.nPage, static_cast<std::uint32_t>(p->ClientWidth() + 1));
    EXPECT_EQ(info.nPos, 40);
    EXPECT_EQ(h.CalcRange(), 1000 - p->ClientWidth());
}

TEST_F(BoxScroll, UpdateWithNothingToScrollWritesMaximumZero) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    h.DoSetRange(50);
    h.Update(true, false);
    TScrollInfo info;
    info.fMask = SIF_ALL;
    ASSERT_TRUE(p->GetScrollInfo(SB_HORZ, info));
    EXPECT_EQ(info.nMax, 0);
    EXPECT_EQ(h.CalcRange(), 0);
}

TEST_F(BoxScroll, InvisibleBarHasNoCalcRange) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    h.DoSetRange(1000);
    h.SetVisible(false);
    EXPECT_EQ(h.CalcRange(), 0);
    EXPECT_EQ(h.ScrollPos(), 0);
}

TEST_F(BoxScroll, ControlSizeCorrectsForTheOtherBar) {
    TScrollPaint* p = MakePaint();
    const TvlScrollBar& h = p->HorzScrollBar();
    const int client = p->ClientWidth();
    EXPECT_EQ(h.ControlSize(true, false), client);
    EXPECT_EQ(h.ControlSize(true, true), client);
    // With a border the bar's width counts one pixel less.
    const int barSize = p->ScrollBarExtent() - 1;
    const bool shown = p->ScrollBarVisible(SB_VERT);
    EXPECT_EQ(h.ControlSize(false, true), shown ? client : client - barSize);
    EXPECT_EQ(h.ControlSize(false, false), shown ? client + barSize : client);
}

TEST_F(BoxScroll, NeedsScrollBarVisibleByRangeAndPosition) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    EXPECT_FALSE(h.NeedsScrollBarVisible());
    const int extent = h.ControlSize(false, false);
    p->SyncScrollbars(TSize{extent, 0}, Point(0, 0));
    EXPECT_FALSE(h.NeedsScrollBarVisible());
    p->SyncScrollbars(TSize{extent, 0}, Point(1, 0));
    EXPECT_TRUE(h.NeedsScrollBarVisible());
    p->SyncScrollbars(TSize{extent + 1, 0}, Point(0, 0));
    EXPECT_TRUE(h.NeedsScrollBarVisible());
}

TEST_F(BoxScroll, UpdateScrollBarsDoesNothingWhileItRuns) {
    TScrollPaint* p = MakePaint();
    p->HorzScrollBar().DoSetRange(1000);
    const int calc = p->HorzScrollBar().CalcRange();
    p->State.Include(bsUpdateScrollbars);
    p->HorzScrollBar().SetVisible(false);
    EXPECT_EQ(p->HorzScrollBar().CalcRange(), calc);
    p->State.Exclude(bsUpdateScrollbars);
    p->UpdateScrollBars();
    EXPECT_EQ(p->HorzScrollBar().CalcRange(), 0);
    EXPECT_FALSE(p->State.Contains(bsUpdateScrollbars));
}

TEST_F(BoxScroll, ScrollMessagesMoveByTheirCode) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& h = p->HorzScrollBar();
    h.DoSetRange(2000);
    auto send = [&](int Code, int Pos = 0) {
        TMessage m;
        m.Msg = WM_HSCROLL;
        m.ScrollCode = Code;
        m.ScrollPos = Pos;
        p->WndProc(m);
    };
    send(SB_LINEDOWN);
    EXPECT_EQ(h.Position(), 8);
    send(SB_PAGEDOWN);
    EXPECT_EQ(h.Position(), 8 + h.ControlSize(true, false));
    send(SB_LINEUP);
    EXPECT_EQ(h.Position(), h.ControlSize(true, false));
    send(SB_PAGEUP);
    EXPECT_EQ(h.Position(), 0);
    send(SB_THUMBPOSITION, 300);
    EXPECT_EQ(h.Position(), 300);
    send(SB_THUMBTRACK, 400);
    EXPECT_EQ(h.Position(), 300);
    h.SetTracking(true);
    send(SB_THUMBTRACK, 400);
    EXPECT_EQ(h.Position(), 400);
    send(SB_BOTTOM);
    EXPECT_EQ(h.Position(), h.CalcRange());
    send(SB_TOP);
    EXPECT_EQ(h.Position(), 0);
}

TEST_F(BoxScroll, ScrollMessageOfAnInvisibleBarIsNotTaken) {
    TScrollPaint* p = MakePaint();
    TvlScrollBar& v = p->VertScrollBar();
    v.DoSetRange(2000);
    v.SetVisible(false);
    TMessage m;
    m.Msg = WM_VSCROLL;
    m.ScrollCode = SB_THUMBPOSITION;
    m.ScrollPos = 50;
    p->WndProc(m);
    EXPECT_EQ(v.Position(), 0);
}

TEST_F(BoxScroll, ScrollByOnAHiddenWindowMovesNothingAndRaisesNoFlag) {
    TScrollPaint* p = MakePaint();
    ASSERT_FALSE(p->IsWindowVisible());
    FillPattern(p);
    const QImage before = p->Surface().Image().copy();
    p->ScrollBy(10, 5);
    EXPECT_FALSE(p->State.Contains(bsHScrolling));
    EXPECT_FALSE(p->State.Contains(bsVScrolling));
    EXPECT_EQ(p->Surface().Image(), before);
    EXPECT_TRUE(p->Surface().Invalid().isEmpty());
}

TEST_F(BoxScroll, ScrollByRaisesTheFlagOfEachAxisMoved) {
    TScrollPaint* p = MakePaint();
    ShowForm();
    p->ScrollBy(0, 4);
    EXPECT_FALSE(p->State.Contains(bsHScrolling));
    EXPECT_TRUE(p->State.Contains(bsVScrolling));
    p->ScrollBy(-4, 0);
    EXPECT_TRUE(p->State.Contains(bsHScrolling));
}

TEST_F(BoxScroll, FullHeightStripAtTheLeftStaysPutInAHorizontalScroll) {
    TScrollPaint* p = MakePaint();
    ShowForm();
    const int h = p->ClientHeight();
    const TRect strip = Rect(0, 0, 30, h);
    p->SetNonScrollH(&strip);
    FillPattern(p);
    p->ScrollBy(10, 0);
    // The strip keeps its own pixels.
    for (int x = 0; x < 30; ++x) EXPECT_EQ(Column(p, x, 5), x) << x;
    // The rest moved right by 10; its uncovered left part is invalid.
    for (int x = 40; x < 100; ++x) EXPECT_EQ(Column(p, x, 5), x - 10) << x;
    EXPECT_EQ(p->Surface().Invalid(), QRegion(QRect(30, 0, 10, h)));
}

TEST_F(BoxScroll, StripInTheMiddleCutsNothingOff) {
    TScrollPaint* p = MakePaint();
    ShowForm();
    const int h = p->ClientHeight();
    const TRect strip = Rect(100, 0, 120, h);
    p->SetNonScrollH(&strip);
    FillPattern(p);
    p->ScrollBy(10, 0);
    for (int x = 10; x < 200; ++x) EXPECT_EQ(Column(p, x, 5), (x - 10) & 0xFF) << x;
    EXPECT_EQ(p->Surface().Invalid(), QRegion(QRect(0, 0, 10, h)));
}

TEST_F(BoxScroll, HorizontalStripGuardsOnlyVerticalScrolling) {
    TScrollPaint* p = MakePaint();
    ShowForm();
    const int w = p->ClientWidth();
    const TRect strip = Rect(0, 0, w, 20);
    p->SetNonScrollV(&strip);
    FillPattern(p);
    p->ScrollBy(0, 6);
    for (int y = 0; y < 20; ++y) EXPECT_EQ(qGreen(p->Surface().Image().pixel(50, y)), y) << y;
    EXPECT_EQ(qGreen(p->Surface().Image().pixel(50, 40)), 34);
    EXPECT_EQ(p->Surface().Invalid(), QRegion(QRect(0, 20, w, 6)));
}

TEST_F(BoxScroll, NonScrollStripsInLogicalCoordinatesRoundTrip) {
    TScrollPaint* p = MakePaint();
    EXPECT_EQ(p->NonScrollH_Log(), TRect{});
    p->SetNonScrollH_Log(Rect(0, 0, 25, 100));
    ASSERT_NE(p->NonScrollH(), nullptr);
    EXPECT_EQ(*p->NonScrollH(), Rect(0, 0, 25, 100));
    EXPECT_EQ(p->NonScrollH_Log(), Rect(0, 0, 25, 100));
}

TEST_F(BoxScroll, ShiftAltCtrlRightPressShowsTheErrorDialog) {
    TScrollPaint* p = MakePaint();
    ShowForm();
    int hostDowns = 0;
    p->OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { ++hostDowns; };
    Click(Window(), InWindow(p, 20, 20), Qt::RightButton,
          Qt::ShiftModifier | Qt::AltModifier | Qt::ControlModifier);
    ASSERT_EQ(Dialogs.Questions.size(), 1u);
    EXPECT_EQ(Dialogs.Questions[0].Msg, QStringLiteral("Tastenkombination nicht möglich!"));
    EXPECT_EQ(Dialogs.Questions[0].DlgType, mtError);
    EXPECT_EQ(Dialogs.Questions[0].Buttons, TMsgDlgButtons{mbOK});
    EXPECT_EQ(hostDowns, 1); // the inherited handling still runs
}

TEST_F(BoxScroll, ThreeModifiersWithTheLeftButtonShowNoDialog) {
    TScrollPaint* p = MakePaint();
    ShowForm();
    Click(Window(), InWindow(p, 20, 20), Qt::LeftButton,
          Qt::ShiftModifier | Qt::AltModifier | Qt::ControlModifier);
    QTest::mousePress(Window(), Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier,
                      InWindow(p, 20, 20));
    EXPECT_TRUE(Dialogs.Questions.empty());
    // Ends the gesture, so that the next test's clicks do not arrive with the right button held.
    QTest::mouseRelease(Window(), Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier,
                        InWindow(p, 20, 20));
}

} // namespace
} // namespace vl::test
