// The scrolling window: scroll bar arithmetic, scrolling with non-scrolling strips, the canvas.

#include "surface/Scl12.h"

#include "platform/core/Scoped.h"

#include "platform/core/Numerics.h"
#include "platform/gdi/Gdi.h"
#include "platform/services/Services.h"

#include <algorithm>
#include <cstdlib>

namespace vl {

// ---------------------------------------------------------------------------------------------
// TvlScrollBar
// ---------------------------------------------------------------------------------------------

TvlScrollBar::TvlScrollBar(TScrollWinControl* AControl, TScrollBarKind AKind)
    : FControl(AControl), FKind(AKind) {}

void TvlScrollBar::Assign(TPersistent* Source) {
    if (auto* bar = dynamic_cast<TvlScrollBar*>(Source)) {
        SetVisible(bar->FVisible);
        SetRange(bar->FRange);
        SetPosition(bar->FPosition);
        FIncrement = bar->FIncrement;
        return;
    }
    TPersistent::Assign(Source);
}

void TvlScrollBar::SetMargin(std::int16_t Value) {
    FMargin = Value;
    if (FVisible) FControl->CalcAutoRange();
}

void TvlScrollBar::SetVisible(bool Value) {
    FVisible = Value;
    FControl->UpdateScrollBars();
}

void TvlScrollBar::SetPosition(int Value) {
    const TComponentState cs = FControl->ComponentState();
    if (cs.Contains(csReading)) {
        FPosition = Value;
    } else {
        Value = std::clamp(Value, 0, std::max(0, FCalcRange));
        if (Value != FPosition) {
            const int oldPos = FPosition;
            FPosition = Value;
            if (FKind == sbHorizontal)
                FControl->ScrollBy(oldPos - Value, 0);
            else
                FControl->ScrollBy(0, oldPos - Value);
        }
        if (FControl->HandleAllocated() && FControl->GetScrollPos(BarCode()) != FPosition) {
            FControl->SetScrollPos(BarCode(), FPosition, true);
        }
    }
    // A range grown by scrolling shrinks back at the low end.
    if (FPosition == 0) FRange = FDataRange;
}

void TvlScrollBar::DoSetRange(int Value) {
    if (Value < 1) {
        FRange = 0;
        FPosition = 0;
    } else {
        FRange = Value;
    }
    FDataRange = FRange;
    FControl->UpdateScrollBars();
}

void TvlScrollBar::SetRange(int Value) {
    FControl->FAutoScroll = false;
    FScaled = true;
    DoSetRange(Value);
}

void TvlScrollBar::NoRange() {
    FRange = 0;
    FPosition = 0;
}

int TvlScrollBar::ControlSize(bool ControlSB, bool AssumeSB) const {
    int result = FKind == sbHorizontal ? FControl->ClientWidth() : FControl->ClientHeight();
    if (ControlSB) return result;
    int barSize = FControl->ScrollBarExtent();
    if (FControl->BorderWidth() > 0) barSize -= 1;
    const int otherBar = FKind == sbHorizontal ? SB_VERT : SB_HORZ;
    const bool otherShown = FControl->ScrollBarVisible(otherBar);
    if (AssumeSB && !otherShown)
        result -= barSize;
    else if (!AssumeSB && otherShown)
        result += barSize;
    return result;
}

bool TvlScrollBar::NeedsScrollBarVisible() const {
    if (FRange < 1) return false;
    return !(ControlSize(false, false) >= FRange && FPosition < 1);
}

void TvlScrollBar::Update(bool ControlSB, bool AssumeSB) {
    const int size = ControlSize(ControlSB, AssumeSB);
    FCalcRange = 0;
    if (FVisible) FCalcRange = std::max(0, FRange - size);
    TScrollInfo info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_TRACKPOS | SIF_DISABLENOSCROLL;
    info.nMin = 0;
    info.nMax = FCalcRange < 1 ? 0 : FRange;
    info.nPage = static_cast<std::uint32_t>(std::max(0, size + 1));
    info.nPos = FPosition;
    info.nTrackPos = FPosition;
    FControl->SetScrollInfo(BarCode(), info, true);
}

void TvlScrollBar::ScrollMessage(const TMessage& Msg) {
    switch (Msg.ScrollCode) {
    case SB_LINEUP: SetPosition(FPosition - FIncrement); break;
    case SB_LINEDOWN: SetPosition(FPosition + FIncrement); break;
    case SB_PAGEUP: SetPosition(FPosition - ControlSize(true, false)); break;
    case SB_PAGEDOWN: SetPosition(FPosition + ControlSize(true, false)); break;
    case SB_THUMBPOSITION: SetPosition(Msg.ScrollPos); break;
    case SB_THUMBTRACK:
        if (FTracking) SetPosition(Msg.ScrollPos);
        break;
    case SB_TOP: SetPosition(0); break;
    case SB_BOTTOM: SetPosition(FCalcRange); break;
    default: break;
    }
}

void TvlScrollBar::CalcAutoRange() {
    if (!FControl->FAutoScroll) return;
    // The extent of the child controls along this bar, plus the margin. The controls of this platform
    // have no alignment, so each child counts by its far edge.
    int extent = 0;
    for (int i = 0; i < FControl->ControlCount(); ++i) {
        const TControl* child = FControl->Controls(i);
        if (!child->Visible()) continue;
        const int farEdge =
            FKind == sbHorizontal ? child->Left() + child->Width() : child->Top() + child->Height();
        extent = std::max(extent, farEdge + ScrollPos());
    }
    DoSetRange(extent > 0 ? extent + FMargin : 0);
}

// ---------------------------------------------------------------------------------------------
// TScrollWinControl
// ---------------------------------------------------------------------------------------------

TScrollWinControl::TScrollWinControl(TComponent* AOwner)
    : TWinControl(AOwner), FHorzScrollBar(std::make_unique<TvlScrollBar>(this, sbHorizontal)),
      FVertScrollBar(std::make_unique<TvlScrollBar>(this, sbVertical)) {
    // A change of size invalidates only the new parts; the scroll box puts the full redraw back.
    SetRedrawOnResize(false);
}

TScrollWinControl::~TScrollWinControl() = default;

void TScrollWinControl::SetAutoRange(bool Value) {
    if (FAutoScroll == Value) return;
    FAutoScroll = Value;
    if (Value) {
        CalcAutoRange();
    } else {
        FHorzScrollBar->DoSetRange(0);
        FVertScrollBar->DoSetRange(0);
    }
}

void TScrollWinControl::ScrollBy(int DeltaX, int DeltaY) {
    TRect r = ClientRect();
    if (!HandleAllocated() || !IsWindowVisible()) return;
    if (DeltaX != 0) {
        State.Include(bsHScrolling);
        if (FNonScrollH) SubtractRect(r, r, *FNonScrollH);
    }
    if (DeltaY != 0) {
        State.Include(bsVScrolling);
        if (FNonScrollV) SubtractRect(r, r, *FNonScrollV);
    }
    // Only the pixels inside the scroll rectangle change: the strips stay where they are.
    ScrollWindow(DeltaX, DeltaY, &r, &r);
}

void TScrollWinControl::SyncScrollbars(TSize Range, TPoint Position) {
    FHorzScrollBar->FRange = Range.cx;
    FHorzScrollBar->FPosition = std::abs(Position.x);
    FVertScrollBar->FRange = Range.cy;
    FVertScrollBar->FPosition = std::abs(Position.y);
    UpdateScrollBars();
}

void TScrollWinControl::CheckScrollRange() {
    UpdateScrollBars();
}

void TScrollWinControl::UpdateScrollBars() {
    if (State.Contains(bsUpdateScrollbars) || !HandleAllocated()) return;
    const TScopedFlag updating(State, bsUpdateScrollbars);
    if (FVertScrollBar->NeedsScrollBarVisible()) {
        FHorzScrollBar->Update(false, true);
        FVertScrollBar->Update(true, false);
    } else if (FHorzScrollBar->NeedsScrollBarVisible()) {
        FVertScrollBar->Update(false, true);
        FHorzScrollBar->Update(true, false);
    } else {
        FVertScrollBar->Update(false, false);
        FHorzScrollBar->Update(true, false);
    }
}

void TScrollWinControl::CalcAutoRange() {
    if (FAutoRangeCount >= 1) return;
    FHorzScrollBar->CalcAutoRange();
    FVertScrollBar->CalcAutoRange();
}

void TScrollWinControl::DisableAutoRange() {
    ++FAutoRangeCount;
}

void TScrollWinControl::EnableAutoRange() {
    if (FAutoRangeCount > 0) {
        --FAutoRangeCount;
        if (FAutoRangeCount == 0) CalcAutoRange();
    }
}

void TScrollWinControl::AutoScrollInView(TControl* AControl) {
    if (AControl && FAutoScroll) ScrollInView(AControl);
}

void TScrollWinControl::ScrollInView(TControl* AControl) {
    if (!AControl || AControl->Parent() != this) return;
    TRect r = AControl->BoundsRect();
    r.Left -= FHorzScrollBar->Margin();
    r.Right += FHorzScrollBar->Margin();
    r.Top -= FVertScrollBar->Margin();
    r.Bottom += FVertScrollBar->Margin();
    const TRect client = ClientRect();
    if (r.Left < client.Left) {
        FHorzScrollBar->SetPosition(FHorzScrollBar->Position() + r.Left);
    } else if (r.Right > client.Right) {
        if (r.Right - r.Left > client.Right) r.Right = r.Left + client.Right;
        FHorzScrollBar->SetPosition(FHorzScrollBar->Position() + r.Right - client.Right);
    }
    if (r.Top < client.Top) {
        FVertScrollBar->SetPosition(FVertScrollBar->Position() + r.Top);
    } else if (r.Bottom > client.Bottom) {
        if (r.Bottom - r.Top > client.Bottom) r.Bottom = r.Top + client.Bottom;
        FVertScrollBar->SetPosition(FVertScrollBar->Position() + r.Bottom - client.Bottom);
    }
}

void TScrollWinControl::ScaleScrollBars(int M, int D) {
    if (M == D) return;
    FHorzScrollBar->SetPosition(0);
    FVertScrollBar->SetPosition(0);
    if (!FAutoScroll) {
        if (FHorzScrollBar->Scaled()) FHorzScrollBar->DoSetRange(MulDiv(FHorzScrollBar->Range(), M, D));
        if (FVertScrollBar->Scaled()) FVertScrollBar->DoSetRange(MulDiv(FVertScrollBar->Range(), M, D));
    }
    FHorzScrollBar->FScaled = false;
    FVertScrollBar->FScaled = false;
}

void TScrollWinControl::ChangeScale(int M, int D) {
    ScaleScrollBars(M, D);
}

void TScrollWinControl::SetNonScrollH(const TRect* R) {
    if (R) {
        if (!FNonScrollH) FNonScrollH = std::make_unique<TRect>();
        *FNonScrollH = *R;
    } else {
        FNonScrollH.reset();
    }
}

void TScrollWinControl::SetNonScrollV(const TRect* R) {
    if (R) {
        if (!FNonScrollV) FNonScrollV = std::make_unique<TRect>();
        *FNonScrollV = *R;
    } else {
        FNonScrollV.reset();
    }
}

void TScrollWinControl::WMSize(TMessage& Message) {
    {
        // The size message must not change the ranges while it is being handled.
        const TScopedValue autoRange(FAutoRangeCount, FAutoRangeCount + 1);
        TWinControl::WMSize(Message);
    }
    if ((FHorzScrollBar->Visible() || FVertScrollBar->Visible()) && !State.Contains(bsUpdateScrollbars)) {
        CheckScrollRange();
    }
}

void TScrollWinControl::WMHScroll(TMessage& Message) {
    // Messages of the window's own bar carry no bar handle (LParam 0).
    if (Message.LParam == 0 && FHorzScrollBar->Visible())
        FHorzScrollBar->ScrollMessage(Message);
    else
        TWinControl::WMHScroll(Message);
}

void TScrollWinControl::WMVScroll(TMessage& Message) {
    if (Message.LParam == 0 && FVertScrollBar->Visible())
        FVertScrollBar->ScrollMessage(Message);
    else
        TWinControl::WMVScroll(Message);
}

// ---------------------------------------------------------------------------------------------
// TScrollBx
// ---------------------------------------------------------------------------------------------

TScrollBx::TScrollBx(TComponent* AOwner) : TScrollWinControl(AOwner) {
    SetControlStyle(TControlStyle{csCaptureMouse, csClickEvents, csDoubleClicks});
    SetBounds(Left(), Top(), 185, 41);
    SetBorderStyle(bsSingle);
    SetRedrawOnResize(true);
}

// ---------------------------------------------------------------------------------------------
// TScrollPaint
// ---------------------------------------------------------------------------------------------

TScrollPaint::TScrollPaint(TComponent* AOwner)
    : TScrollBx(AOwner), FCanvas(std::make_unique<TControlCanvas>(this)) {}

TScrollPaint::~TScrollPaint() {
    FCanvas.reset();
}

void TScrollPaint::PaintWindow(HDC DC) {
    FCanvas->PaintOn(DC, [this] { Paint(); });
}

void TScrollPaint::WMPaint(TMessage& Message) {
    PaintHandler(Message);
}

void TScrollPaint::MouseDown(TMouseButton Button, TShiftState Shift, int XDev, int YDev) {
    RefuseKeyCombination(Shift);
    TScrollBx::MouseDown(Button, Shift, XDev, YDev);
}

void TScrollPaint::RefuseKeyCombination(TShiftState Shift) {
    if (Shift.Contains(ssShift) && Shift.Contains(ssAlt) && Shift.Contains(ssCtrl) &&
        Shift.Contains(ssRight)) {
        MessageDlg(QStringLiteral("Tastenkombination nicht möglich!"), mtError, TMsgDlgButtons{mbOK}, 0);
    }
}

TRect TScrollPaint::StripToLog(const TRect* Strip) {
    if (!Strip) return TRect{};
    TPoint pts[2] = {Strip->TopLeft(), Strip->BottomRight()};
    DPtoLP(FCanvas->Handle(), pts, 2);
    return Rect(pts[0].x, pts[0].y, pts[1].x, pts[1].y);
}

TRect TScrollPaint::StripToDev(const TRect& Log) {
    TPoint pts[2] = {Log.TopLeft(), Log.BottomRight()};
    LPtoDP(FCanvas->Handle(), pts, 2);
    return Rect(pts[0].x, pts[0].y, pts[1].x, pts[1].y);
}

TRect TScrollPaint::NonScrollH_Log() {
    return StripToLog(FNonScrollH.get());
}

void TScrollPaint::SetNonScrollH_Log(const TRect& Value) {
    const TRect dev = StripToDev(Value);
    SetNonScrollH(&dev);
}

TRect TScrollPaint::NonScrollV_Log() {
    return StripToLog(FNonScrollV.get());
}

void TScrollPaint::SetNonScrollV_Log(const TRect& Value) {
    const TRect dev = StripToDev(Value);
    SetNonScrollV(&dev);
}

} // namespace vl
