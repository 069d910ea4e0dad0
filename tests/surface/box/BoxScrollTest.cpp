// The scrolling window: scroll bar arithmetic, scroll messages, and scrolling with the strips that
// stay put. The draw box's scrolling on top of it: ranges from the limits, steps that grow the range,
// the autoscroll loop of a tool at an edge, scrolling to a point, and the change of scale.

#include "BoxTestSupport.h"
#include "support/InputHelpers.h"

#include "surface/Scl12.h"

#include <algorithm>
#include <functional>

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

// ---------------------------------------------------------------------------------------------
// The draw box's scrolling
// ---------------------------------------------------------------------------------------------

// A tool in a gesture that may scroll: each `Scroll` is noted in the log with the point it got,
// takes the box's step, pumps as a drawing tool does, and then runs `OnScroll`.
class TScrollingTool : public TRecordingTool {
public:
    TScrollingTool(TComponent* AOwner, std::vector<TCall>& Log) : TRecordingTool(AOwner, Log), FLog(Log) {}

    void Scroll(const TScrollProc& ScrollProc, const TPoint& CurPos) override {
        ++Scrolls;
        FLog.push_back({"Scroll", CurPos, TShiftState{}, ActScaleSet});
        ScrollProc();
        Application.ProcessMessages();
        if (OnScroll) OnScroll();
    }

    int Scrolls = 0;
    std::function<void()> OnScroll;

private:
    std::vector<TCall>& FLog;
};

class BoxScrolling : public StoredBoxFixture {
protected:
    // Shows and loads the form; objects come after the load, which would pass over a filled module.
    void Start(bool AutoScroll = true) {
        ShowForm();
        LoadForm();
        Box->SetAutoScroll(AutoScroll);
    }
    TScaleSetting& Ss() { return Box->ScaleSetting(); }
    TvlScrollBar& Horz() { return Box->HorzScrollBar(); }
    TvlScrollBar& Vert() { return Box->VertScrollBar(); }
    void HoldRect(TLimRec R) { Dm->Hold(TTestObject::BareRect("r", R)); }
    // A logical point in client device pixels, in the mapping of this moment.
    TPoint ToDev(TPoint L) {
        HDC dc = Box->Canvas().Handle();
        Ss().SetMap(dc);
        LPtoDP(dc, &L, 1);
        return L;
    }
    TPoint ToLog(TPoint D) {
        HDC dc = Box->Canvas().Handle();
        Ss().SetMap(dc);
        DPtoLP(dc, &D, 1);
        return D;
    }
    // The current tool of the box, in a gesture that may scroll.
    TScrollingTool* StartGesture() {
        auto* tool = new TScrollingTool(Form.get(), Log);
        tool->FDrawForm = Box;
        Box->SetTool(tool);
        tool->ToolState.Include(tsCanScroll);
        return tool;
    }
    // The tool ends its gesture in its `Scroll` of the given count.
    static void StopAfter(TScrollingTool& Tool, int Count) {
        Tool.OnScroll = [&Tool, Count] {
            if (Tool.Scrolls == Count) Tool.ToolState.Exclude(tsCanScroll);
        };
    }
    // A mouse move message to the box at a client point.
    void SendMove(TPoint P) {
        TMessage m;
        m.Msg = WM_MOUSEMOVE;
        m.Pos = P;
        Box->WndProc(m);
    }
    // The cursor double at a client point of the box.
    void CursorAt(TPoint Client) { Cursor.Pos = Box->ClientToScreen(Client); }
    // Sizes the box so that its client area is `W` by `H` pixels.
    void ClientSize(int W, int H) {
        const int extraW = Box->Width() - Box->ClientWidth();
        const int extraH = Box->Height() - Box->ClientHeight();
        Box->SetBoundsRect(Rect(10, 10, 10 + W + extraW, 10 + H + extraH));
    }
    int Scrolls() const {
        return static_cast<int>(
            std::count_if(Log.begin(), Log.end(), [](const TCall& c) { return c.What == "Scroll"; }));
    }

    std::vector<TCall> Log;
};

TEST_F(BoxScrolling, WithoutAutoScrollNoRangeIsComputedButStepsStillMoveTheViewport) {
    Start(false);
    HoldRect(LimRec(-500, -400, 1000, 800));
    const TPoint home = Ss().VPHome();
    Box->State.Include(bsNewRange);
    Box->CheckScrollRange();
    EXPECT_EQ(Horz().Range(), 0);
    EXPECT_EQ(Vert().Range(), 0);
    EXPECT_EQ(Ss().VPHome(), home);
    EXPECT_FALSE(Box->State.Contains(bsNewRange));

    const TPoint org = Ss().VPOrg();
    Box->LeftScroll();
    EXPECT_EQ(Ss().GetVPOrgX(), org.x + 8);
    Box->RightScroll();
    Box->RightScroll();
    EXPECT_EQ(Ss().GetVPOrgX(), org.x - 8);
    Box->TopScroll();
    EXPECT_EQ(Ss().GetVPOrgY(), org.y + 8);
    Box->BottomScroll();
    Box->BottomScroll();
    EXPECT_EQ(Ss().GetVPOrgY(), org.y - 8);
}

TEST_F(BoxScrolling, RangeSpansTheLimitsAndKeepsTheBarsInStepWithTheViewport) {
    Start();
    HoldRect(LimRec(-500, -400, 1000, 800));
    Box->CheckScrollRange();
    EXPECT_EQ(Horz().Range(), Ss().LogToPix(1000) - Ss().LogToPix(-500));
    EXPECT_EQ(Ss().GetVPHomeX(), -Ss().LogToPix(-500));
    EXPECT_EQ(Horz().Position(), Ss().GetVPHomeX() - Ss().GetVPOrgX());
    EXPECT_EQ(Vert().Position(), Ss().GetVPHomeY() - Ss().GetVPOrgY());
}

TEST_F(BoxScrolling, BlankZoneOfTenAddsItsPixelsAtBothEndsOfEachRange) {
    Start();
    HoldRect(LimRec(-500, -400, 1000, 800));
    Box->CheckScrollRange();
    const int rangeX = Horz().Range();
    const int rangeY = Vert().Range();
    const TPoint home = Ss().VPHome();
    Ss().SetBlankZone(10);
    const int b = Ss().MMToPix(10);
    ASSERT_GT(b, 0);
    Box->CheckScrollRange();
    EXPECT_EQ(Horz().Range(), rangeX + 2 * b);
    EXPECT_EQ(Vert().Range(), rangeY + 2 * b);
    EXPECT_EQ(Ss().VPHome(), Point(home.x + b, home.y + b));
}

TEST_F(BoxScrolling, AnchorOutsideTheLimitsStretchesTheRangeToIt) {
    Start();
    HoldRect(LimRec(0, 0, 100, 100));
    ASSERT_EQ(Ss().Dir_Horizontal(), 1);
    Box->SetScrollAnchor(true);
    Box->SetAnchorPos(TCoordPnt{2000, 50});
    Box->CheckScrollRange();
    EXPECT_EQ(Horz().Range(), Ss().LogToPix(2000));
    EXPECT_EQ(Ss().GetVPHomeX(), 0);

    Box->SetAnchorPos(TCoordPnt{-700, 50});
    Box->CheckScrollRange();
    EXPECT_EQ(Ss().GetVPHomeX(), -Ss().LogToPix(-700));
    EXPECT_EQ(Horz().Position(), Ss().GetVPHomeX() - Ss().GetVPOrgX());
    // Without the anchor, and the window back at logical 0, the range shrinks back to the limits and
    // the window.
    Box->SetScrollAnchor(false);
    Ss().SetVPOrgX(0);
    Box->CheckScrollRange();
    EXPECT_EQ(Ss().GetVPHomeX(), 0);
}

TEST_F(BoxScrolling, LeftStepAtPositionZeroGrowsTheRangeAndMovesTheOriginRight) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    ASSERT_EQ(Horz().Position(), 0);
    const int home = Ss().GetVPHomeX();
    const int range = Horz().Range();
    const TPoint zero = ToDev(Point(0, 0));
    Box->State.Exclude(bsHScrolling);
    Box->LeftScroll();
    EXPECT_EQ(Ss().GetVPHomeX(), home + 8);
    EXPECT_EQ(Ss().GetVPOrgX(), home + 8);
    EXPECT_EQ(Horz().Range(), range + 8);
    EXPECT_EQ(Horz().Position(), 0);
    EXPECT_EQ(ToDev(Point(0, 0)), Point(zero.x + 8, zero.y));
    EXPECT_TRUE(Box->State.Contains(bsHScrolling));
}

TEST_F(BoxScrolling, LeftStepInsideTheRangeTakesTheBarsLineStep) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    Horz().SetPosition(100);
    Ss().SetVPOrgX(Ss().GetVPHomeX() - 100);
    const int home = Ss().GetVPHomeX();
    Box->LeftScroll();
    EXPECT_EQ(Horz().Position(), 92);
    EXPECT_EQ(Ss().GetVPHomeX(), home);
    EXPECT_EQ(Ss().GetVPOrgX(), home - 92);
}

TEST_F(BoxScrolling, RightStepsGrowTheRangeOnlyBeyondItsEnd) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    const int range = Horz().Range();
    Box->RightScroll();
    EXPECT_EQ(Horz().Position(), 8);
    EXPECT_EQ(Horz().Range(), range);
    Horz().SetIncrement(900);
    Box->RightScroll();
    EXPECT_EQ(Horz().Position(), 908);
    EXPECT_EQ(Horz().Range(), Box->ClientWidth() + 908);
    EXPECT_EQ(Horz().Position(), Ss().GetVPHomeX() - Ss().GetVPOrgX());
    Vert().SetIncrement(1000);
    Box->BottomScroll();
    EXPECT_EQ(Vert().Position(), 1000);
    EXPECT_EQ(Vert().Range(), Box->ClientHeight() + 1000);
}

TEST_F(BoxScrolling, ScaleZeroHidesTheBarsFitsTheDrawingAndRemovesTheMarks) {
    Start();
    auto* obj = Dm->Hold(TTestObject::BareRect("big", LimRec(0, 0, 3000, 2000)));
    Dm->Marks = {obj};
    ASSERT_EQ(Dm->MarkCount(), 1);
    Box->CheckScrollRange();
    ASSERT_GT(Horz().Range(), 0);
    ASSERT_TRUE(Box->ScrollBarVisible(SB_HORZ));
    const double before = Ss().Scale();

    Box->SetScale(0);
    EXPECT_EQ(Horz().Range(), 0);
    EXPECT_EQ(Horz().Position(), 0);
    EXPECT_EQ(Vert().Range(), 0);
    EXPECT_FALSE(Box->ScrollBarVisible(SB_HORZ));
    EXPECT_FALSE(Box->ScrollBarVisible(SB_VERT));
    EXPECT_EQ(Dm->MarkCount(), 0);
    EXPECT_NE(Ss().Scale(), before);
    // The whole drawing lies in the client area now.
    const TRect client = Box->ClientRect();
    const TPoint a = ToDev(Point(0, 0));
    const TPoint b = ToDev(Point(3000, 2000));
    EXPECT_GE(std::min(a.x, b.x), client.Left);
    EXPECT_LE(std::max(a.x, b.x), client.Right);
    EXPECT_GE(std::min(a.y, b.y), client.Top);
    EXPECT_LE(std::max(a.y, b.y), client.Bottom);
    // And fills it along one axis at least.
    EXPECT_TRUE(std::abs(b.x - a.x) >= client.Right - 4 || std::abs(b.y - a.y) >= client.Bottom - 4)
        << a.x << "," << a.y << " " << b.x << "," << b.y;
}

TEST_F(BoxScrolling, PositiveScaleAsksForNewRangesAndRemovesTheMarks) {
    Start();
    auto* obj = Dm->Hold(TTestObject::BareRect("r", LimRec(0, 0, 300, 200)));
    Dm->Marks = {obj};
    ASSERT_EQ(Dm->MarkCount(), 1);
    Box->State.Exclude(bsNewRange);
    Box->SetScale(0.5);
    EXPECT_DOUBLE_EQ(Ss().Scale(), 0.5);
    EXPECT_TRUE(Box->State.Contains(bsNewRange));
    EXPECT_EQ(Dm->MarkCount(), 0);
}

TEST_F(BoxScrolling, EdgeZonesOfAClientAreaOf300) {
    Start();
    ClientSize(300, 200);
    ASSERT_EQ(Box->ClientWidth(), 300);
    ASSERT_EQ(Box->ClientHeight(), 200);
    EXPECT_TRUE(Box->LeftCondition(Point(1, 100)));
    EXPECT_FALSE(Box->LeftCondition(Point(2, 100)));
    EXPECT_FALSE(Box->RightCondition(Point(297, 100)));
    EXPECT_TRUE(Box->RightCondition(Point(298, 100)));
    EXPECT_TRUE(Box->TopCondition(Point(100, 1)));
    EXPECT_FALSE(Box->TopCondition(Point(100, 2)));
    EXPECT_FALSE(Box->BottomCondition(Point(100, 197)));
    EXPECT_TRUE(Box->BottomCondition(Point(100, 198)));
}

TEST_F(BoxScrolling, GestureHeldAtTheLeftEdgeScrollsLeftEveryAutoScrollTime) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    TScrollingTool* tool = StartGesture();
    Clock.AutoStep = 20;
    const TPoint edge = Point(1, 100);
    CursorAt(edge);
    std::vector<bool> flagDuring;
    std::vector<std::uint32_t> times;
    tool->OnScroll = [&] {
        flagDuring.push_back(Box->State.Contains(bsToolScroll));
        times.push_back(Clock.Now);
    };
    // The pump of the fourth step moves the mouse back into the window.
    Pump.OnProcess = [&] {
        if (tool->Scrolls == 4) CursorAt(Point(100, 100));
    };
    const TPoint org = Ss().VPOrg();
    Box->doToolScroll(edge);
    EXPECT_EQ(tool->Scrolls, 4);
    EXPECT_EQ(Ss().GetVPOrgX(), org.x + 4 * 8);
    EXPECT_EQ(Ss().GetVPOrgY(), org.y);
    EXPECT_EQ(flagDuring, std::vector<bool>(4, true));
    EXPECT_FALSE(Box->State.Contains(bsToolScroll));
    for (std::size_t i = 1; i < times.size(); ++i) EXPECT_GT(times[i] - times[i - 1], AutoScrollTime) << i;
    EXPECT_GE(Pump.Calls, 4);
}

TEST_F(BoxScrolling, ToolsScrollGetsTheLogicalPointOfTheCursor) {
    Start();
    TScrollingTool* tool = StartGesture();
    Clock.AutoStep = 60;
    const TPoint edge = Point(0, 100);
    CursorAt(edge);
    const TPoint expected = ToLog(edge);
    tool->OnScroll = [&] { tool->ToolState.Exclude(tsCanScroll); };
    Box->doToolScroll(edge);
    ASSERT_EQ(Scrolls(), 1);
    EXPECT_EQ(Log[0].Pos, expected);
}

TEST_F(BoxScrolling, LoopEndsWhenTheToolClearsItsScrollFlag) {
    Start();
    TScrollingTool* tool = StartGesture();
    Clock.AutoStep = 30;
    const TPoint edge = Point(Box->ClientWidth() - 1, 100);
    CursorAt(edge);
    StopAfter(*tool, 3);
    const int org = Ss().GetVPOrgX();
    Box->doToolScroll(edge);
    EXPECT_EQ(tool->Scrolls, 3);
    EXPECT_EQ(Ss().GetVPOrgX(), org - 3 * 8);
    EXPECT_FALSE(Box->State.Contains(bsToolScroll));
}

TEST_F(BoxScrolling, CursorAtOneOneScrollsLeftOnly) {
    Start();
    TScrollingTool* tool = StartGesture();
    Clock.AutoStep = 30;
    CursorAt(Point(1, 1));
    StopAfter(*tool, 2);
    const TPoint org = Ss().VPOrg();
    Box->doToolScroll(Point(1, 1));
    EXPECT_EQ(tool->Scrolls, 2);
    EXPECT_EQ(Ss().VPOrg(), Point(org.x + 16, org.y));
}

TEST_F(BoxScrolling, LeavingTheLeftZoneForTheRightOneEndsTheLoop) {
    Start();
    TScrollingTool* tool = StartGesture();
    Clock.AutoStep = 30;
    CursorAt(Point(0, 50));
    Pump.OnProcess = [&] {
        if (tool->Scrolls == 2) CursorAt(Point(Box->ClientWidth() - 1, 50));
    };
    const int org = Ss().GetVPOrgX();
    Box->doToolScroll(Point(0, 50));
    EXPECT_EQ(tool->Scrolls, 2);
    EXPECT_EQ(Ss().GetVPOrgX(), org + 16);
}

TEST_F(BoxScrolling, PointOutsideEveryZoneReturnsAtOnce) {
    Start();
    TScrollingTool* tool = StartGesture();
    const int readings = Clock.Readings;
    Box->doToolScroll(Point(100, 100));
    EXPECT_EQ(tool->Scrolls, 0);
    EXPECT_EQ(Clock.Readings, readings);
    EXPECT_FALSE(Box->State.Contains(bsToolScroll));
}

TEST_F(BoxScrolling, MouseMoveAtTheEdgeScrollsFirstThenReachesTheTool) {
    Start();
    TScrollingTool* tool = StartGesture();
    Clock.AutoStep = 30;
    CursorAt(Point(50, 1));
    StopAfter(*tool, 2);
    const int org = Ss().GetVPOrgY();
    SendMove(Point(50, 1));
    EXPECT_EQ(Ss().GetVPOrgY(), org + 16);
    ASSERT_EQ(Log.size(), 3u);
    EXPECT_EQ(Log[0].What, "Scroll");
    EXPECT_EQ(Log[1].What, "Scroll");
    EXPECT_EQ(Log[2].What, "MouseMove");
}

TEST_F(BoxScrolling, MouseMoveWithoutAutoScrollDoesNotScroll) {
    Start(false);
    TScrollingTool* tool = StartGesture();
    Clock.AutoStep = 30;
    CursorAt(Point(50, 1));
    const TPoint org = Ss().VPOrg();
    SendMove(Point(50, 1));
    EXPECT_EQ(tool->Scrolls, 0);
    EXPECT_EQ(Ss().VPOrg(), org);
    ASSERT_EQ(Log.size(), 1u);
    EXPECT_EQ(Log[0].What, "MouseMove");
}

TEST_F(BoxScrolling, ScrollToAPointAlreadyAtTheReferenceCallsNoStep) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    const TRect c = Box->ClientRect();
    const std::pair<TOrigin, TPoint> cases[] = {
        {TOrigin::LeftTop, Point(c.Left, c.Top)},
        {TOrigin::LeftBottom, Point(c.Left, c.Bottom)},
        {TOrigin::RightTop, Point(c.Right, c.Top)},
        {TOrigin::RightBottom, Point(c.Right, c.Bottom)},
        {TOrigin::Center, Point((c.Left + c.Right) / 2, (c.Top + c.Bottom) / 2)},
    };
    for (const auto& [origin, at] : cases) {
        const TPoint home = Ss().VPHome();
        const TPoint org = Ss().VPOrg();
        const int rangeX = Horz().Range();
        const int rangeY = Vert().Range();
        Box->State.Exclude(bsHScrolling);
        Box->State.Exclude(bsVScrolling);
        Box->ScrollTo(at, origin);
        EXPECT_EQ(Ss().VPHome(), home);
        EXPECT_EQ(Ss().VPOrg(), org);
        EXPECT_EQ(Horz().Range(), rangeX);
        EXPECT_EQ(Vert().Range(), rangeY);
        EXPECT_FALSE(Box->State.Contains(bsHScrolling));
        EXPECT_FALSE(Box->State.Contains(bsVScrolling));
    }
    EXPECT_EQ(Horz().Increment(), 8);
    EXPECT_EQ(Vert().Increment(), 8);
}

TEST_F(BoxScrolling, ScrollToBringsADevicePointToTheTopLeftInOneStep) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    const TPoint l = ToLog(Point(100, 50));
    Box->ScrollTo(Point(100, 50), TOrigin::LeftTop);
    EXPECT_EQ(ToDev(l), Point(0, 0));
    EXPECT_EQ(Horz().Position(), 100);
    EXPECT_EQ(Vert().Position(), 50);
    EXPECT_EQ(Horz().Increment(), 8);
    EXPECT_EQ(Vert().Increment(), 8);
}

TEST_F(BoxScrolling, ScrollToTheCentreFromTheLowEndGrowsTheRange) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    const TRect c = Box->ClientRect();
    const int rangeX = Horz().Range();
    const TPoint l = ToLog(Point(10, 20));
    Box->ScrollTo(Point(10, 20), TOrigin::Center);
    const TPoint centre = Point((c.Left + c.Right) / 2, (c.Top + c.Bottom) / 2);
    EXPECT_EQ(ToDev(l), centre);
    EXPECT_EQ(Horz().Range(), rangeX + centre.x - 10);
    EXPECT_EQ(Horz().Position(), 0);
}

TEST_F(BoxScrolling, ScrollToLogBringsALogicalPointToTheBottomRight) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    const TRect c = Box->ClientRect();
    const TPoint l = Point(600, 500);
    ASSERT_GT(ToDev(l).x, c.Right);
    Box->ScrollTo_Log(l, TOrigin::RightBottom);
    EXPECT_EQ(ToDev(l), Point(c.Right, c.Bottom));
}

TEST_F(BoxScrolling, ScrollToCutsADistanceToSixteenBits) {
    Start(false);
    const int org = Ss().GetVPOrgX();
    Box->ScrollTo(Point(65536 + 5, 0), TOrigin::LeftTop);
    EXPECT_EQ(Ss().GetVPOrgX(), org - 5);
    EXPECT_EQ(Horz().Increment(), 8);
}

TEST_F(BoxScrolling, GetSpaceOpensRoomOnEachSide) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    Box->State.Exclude(bsNewRange);
    Horz().SetPosition(40);
    const int homeX = Ss().GetVPHomeX();
    Box->GetSpace(50, dirLeft);
    EXPECT_EQ(Horz().Position(), 0);
    EXPECT_EQ(Ss().GetVPHomeX(), homeX + 50);
    EXPECT_TRUE(Box->State.Contains(bsNewRange));

    Box->State.Exclude(bsNewRange);
    const int homeY = Ss().GetVPHomeY();
    Box->GetSpace(30, dirTop);
    EXPECT_EQ(Vert().Position(), 0);
    EXPECT_EQ(Ss().GetVPHomeY(), homeY + 30);
    EXPECT_TRUE(Box->State.Contains(bsNewRange));

    const int rangeX = Horz().Range();
    Box->GetSpace(200, dirRight);
    EXPECT_EQ(Horz().Range(), rangeX + 200);
    // The position is capped at the largest valid one: the window shows the end of the range.
    EXPECT_EQ(Horz().Position(), Horz().CalcRange());
    EXPECT_EQ(Ss().GetVPOrgX(), Ss().GetVPHomeX() - Horz().Position());

    const int rangeY = Vert().Range();
    Box->GetSpace(100, dirBottom);
    EXPECT_EQ(Vert().Range(), rangeY + 100);
    EXPECT_EQ(Vert().Position(), Vert().CalcRange());
    EXPECT_EQ(Ss().GetVPOrgY(), Ss().GetVPHomeY() - Vert().Position());
}

TEST_F(BoxScrolling, ScrollMessageKeepsTheViewportInStepWithTheBar) {
    Start();
    HoldRect(LimRec(0, 0, 1000, 800));
    Box->CheckScrollRange();
    TMessage m;
    m.Msg = WM_HSCROLL;
    m.ScrollCode = SB_THUMBPOSITION;
    m.ScrollPos = 120;
    Box->WndProc(m);
    EXPECT_EQ(Horz().Position(), 120);
    EXPECT_EQ(Ss().GetVPOrgX(), Ss().GetVPHomeX() - 120);
    m.Msg = WM_VSCROLL;
    m.ScrollPos = 70;
    Box->WndProc(m);
    EXPECT_EQ(Ss().GetVPOrgY(), Ss().GetVPHomeY() - 70);
}

TEST_F(BoxScrolling, ScaleChangeOfTheSettingAsksForNewRangesAndTellsTheHost) {
    Start();
    int told = 0;
    Box->OnScaleChange = [&](TObject* Sender) {
        EXPECT_EQ(Sender, Box);
        ++told;
    };
    Box->State.Exclude(bsNewRange);
    Box->ScaleChanged(&Ss());
    EXPECT_TRUE(Box->State.Contains(bsNewRange));
    EXPECT_EQ(told, 1);
}

} // namespace
} // namespace vl::test
