// The window scroll bars of a control: the window system's numbers (range, page, position) shown by
// Qt bars, and the scroll messages that the user's actions on them send.
//
// A bar is needed when its range holds more than a page: maximum - minimum >= max(page, 1). A bar
// that is not needed is hidden, or only disabled when the caller asks for it (SIF_DISABLENOSCROLL).
// The position lies between the minimum and maximum - page + 1. Values set from code send no
// message; only the user's actions do, through `WndProc` as `WM_HSCROLL` or `WM_VSCROLL`.

#include "platform/window/ControlWidget_p.h"

#include <QApplication>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace vl {

namespace {

int MaxPosition(const TScrollInfo& Info) {
    const long long page = std::max<long long>(static_cast<long long>(Info.nPage) - 1, 0);
    const long long top = static_cast<long long>(Info.nMax) - page;
    return static_cast<int>(std::max<long long>(Info.nMin, top));
}

int Clamped(const TScrollInfo& Info, int Pos) {
    return std::clamp(Pos, Info.nMin, MaxPosition(Info));
}

bool Needed(const TScrollInfo& Info) {
    return static_cast<long long>(Info.nMax) - Info.nMin >= std::max<long long>(Info.nPage, 1);
}

} // namespace

TWinControl::TBar& TWinControl::BarOf(int Bar) {
    return Bar == SB_VERT ? *FVertBar : *FHorzBar;
}

const TWinControl::TBar& TWinControl::BarOf(int Bar) const {
    return Bar == SB_VERT ? *FVertBar : *FHorzBar;
}

int TWinControl::ScrollBarExtent() const {
    const QStyle* style = FWidget ? FWidget->style() : QApplication::style();
    const int widgetPx = style ? style->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, FWidget.data()) : 16;
    return static_cast<int>(std::lround(widgetPx * DevicePixelRatio()));
}

void TWinControl::ApplyBar(TBar& B) {
    QScrollBar* bar = B.Widget;
    B.Updating = true;
    bar->setRange(B.Info.nMin, MaxPosition(B.Info));
    bar->setPageStep(std::max(1, static_cast<int>(B.Info.nPage)));
    bar->setSingleStep(1);
    bar->setValue(B.Info.nPos);
    bar->setSliderPosition(B.Info.nPos);
    bar->setEnabled(B.Enabled);
    B.Updating = false;
}

int TWinControl::SetScrollInfo(int Bar, const TScrollInfo& Info, bool) {
    if (Bar != SB_HORZ && Bar != SB_VERT) return 0;
    TBar& b = BarOf(Bar);
    const bool wasShown = b.Shown;
    if (Info.fMask & SIF_RANGE) {
        b.Info.nMin = Info.nMin;
        b.Info.nMax = Info.nMax;
    }
    if (Info.fMask & SIF_PAGE) {
        // The page is at most the whole range.
        const long long span = static_cast<long long>(b.Info.nMax) - b.Info.nMin + 1;
        b.Info.nPage =
            static_cast<std::uint32_t>(std::clamp<long long>(Info.nPage, 0, std::max<long long>(span, 0)));
    }
    if (Info.fMask & SIF_POS) b.Info.nPos = Info.nPos;
    b.Info.nPos = Clamped(b.Info, b.Info.nPos);
    b.Info.nTrackPos = b.Info.nPos;
    if (Info.fMask & (SIF_RANGE | SIF_PAGE)) {
        if (Needed(b.Info)) {
            b.Shown = true;
            b.Enabled = true;
        } else if (Info.fMask & SIF_DISABLENOSCROLL) {
            b.Shown = true;
            b.Enabled = false;
        } else {
            b.Shown = false;
        }
    }
    ApplyBar(b);
    if (b.Shown != wasShown) UpdateLayout(false);
    return b.Info.nPos;
}

bool TWinControl::GetScrollInfo(int Bar, TScrollInfo& Info) const {
    if (Bar != SB_HORZ && Bar != SB_VERT) return false;
    const TBar& b = BarOf(Bar);
    const std::uint32_t mask = Info.fMask;
    if (mask & SIF_RANGE) {
        Info.nMin = b.Info.nMin;
        Info.nMax = b.Info.nMax;
    }
    if (mask & SIF_PAGE) Info.nPage = b.Info.nPage;
    if (mask & SIF_POS) Info.nPos = b.Info.nPos;
    if (mask & SIF_TRACKPOS) Info.nTrackPos = b.Info.nTrackPos;
    return true;
}

int TWinControl::GetScrollPos(int Bar) const {
    if (Bar != SB_HORZ && Bar != SB_VERT) return 0;
    return BarOf(Bar).Info.nPos;
}

int TWinControl::SetScrollPos(int Bar, int Pos, bool) {
    if (Bar != SB_HORZ && Bar != SB_VERT) return 0;
    TBar& b = BarOf(Bar);
    const int previous = b.Info.nPos;
    b.Info.nPos = Clamped(b.Info, Pos);
    b.Info.nTrackPos = b.Info.nPos;
    ApplyBar(b);
    return previous;
}

bool TWinControl::SetScrollRange(int Bar, int Min, int Max, bool Redraw) {
    TScrollInfo info;
    info.fMask = SIF_RANGE;
    info.nMin = Min;
    info.nMax = Max;
    SetScrollInfo(Bar, info, Redraw);
    return true;
}

bool TWinControl::ShowScrollBar(int Bar, bool Show) {
    if (Bar != SB_HORZ && Bar != SB_VERT && Bar != SB_BOTH) return false;
    bool changed = false;
    for (int kind : {SB_HORZ, SB_VERT}) {
        if (Bar != SB_BOTH && Bar != kind) continue;
        TBar& b = BarOf(kind);
        if (b.Shown != Show) {
            b.Shown = Show;
            changed = true;
        }
    }
    if (changed) UpdateLayout(false);
    return true;
}

bool TWinControl::ScrollBarVisible(int Bar) const {
    return (Bar == SB_HORZ || Bar == SB_VERT) && BarOf(Bar).Shown;
}

bool TWinControl::ScrollBarEnabled(int Bar) const {
    return (Bar == SB_HORZ || Bar == SB_VERT) && BarOf(Bar).Shown && BarOf(Bar).Enabled;
}

QScrollBar* TWinControl::ScrollBarWidget(int Bar) const {
    return (Bar == SB_HORZ || Bar == SB_VERT) ? BarOf(Bar).Widget : nullptr;
}

void TWinControl::SendScrollMessage(int Bar, int Code, int Pos) {
    TMessage message;
    message.Msg = Bar == SB_VERT ? WM_VSCROLL : WM_HSCROLL;
    message.ScrollCode = Code;
    message.ScrollPos = Pos;
    message.WParam = (static_cast<std::intptr_t>(Pos & 0xFFFF) << 16) | (Code & 0xFFFF);
    message.LParam = 0; // the window's own bar, not a scroll bar control
    QtEvent(message);
}

void TWinControl::QtScrollAction(int Bar, int Action) {
    TBar& b = BarOf(Bar);
    if (b.Updating) return;
    int code = -1;
    switch (Action) {
    case QAbstractSlider::SliderSingleStepAdd: code = SB_LINEDOWN; break;
    case QAbstractSlider::SliderSingleStepSub: code = SB_LINEUP; break;
    case QAbstractSlider::SliderPageStepAdd: code = SB_PAGEDOWN; break;
    case QAbstractSlider::SliderPageStepSub: code = SB_PAGEUP; break;
    case QAbstractSlider::SliderToMinimum: code = SB_TOP; break;
    case QAbstractSlider::SliderToMaximum: code = SB_BOTTOM; break;
    default: break;
    }
    // The bar does not move by itself: it shows the position the window sets, if any.
    b.Updating = true;
    b.Widget->setSliderPosition(b.Info.nPos);
    b.Updating = false;
    if (code >= 0) SendScrollMessage(Bar, code, b.Info.nPos);
}

void TWinControl::QtSliderMoved(int Bar, int Value) {
    TBar& b = BarOf(Bar);
    if (b.Updating) return;
    b.Info.nTrackPos = Value;
    SendScrollMessage(Bar, SB_THUMBTRACK, Value);
}

void TWinControl::QtSliderReleased(int Bar) {
    TBar& b = BarOf(Bar);
    if (b.Updating) return;
    const int value = b.Widget->sliderPosition();
    b.Info.nTrackPos = value;
    SendScrollMessage(Bar, SB_THUMBPOSITION, value);
    SendScrollMessage(Bar, SB_ENDSCROLL, BarOf(Bar).Info.nPos);
    // Unless the window took the position, the thumb returns to where the window has it.
    TBar& after = BarOf(Bar);
    after.Updating = true;
    after.Widget->setSliderPosition(after.Info.nPos);
    after.Updating = false;
}

void TWinControl::QtBarReleased(int Bar) {
    if (BarOf(Bar).Updating) return;
    SendScrollMessage(Bar, SB_ENDSCROLL, BarOf(Bar).Info.nPos);
}

// ---------------------------------------------------------------------------------------------
// Window-system functions
// ---------------------------------------------------------------------------------------------

int SetScrollInfo(HWND Wnd, int Bar, const TScrollInfo* Info, bool Redraw) {
    return Wnd && Info ? Wnd->SetScrollInfo(Bar, *Info, Redraw) : 0;
}

bool GetScrollInfo(HWND Wnd, int Bar, TScrollInfo* Info) {
    return Wnd && Info && Wnd->GetScrollInfo(Bar, *Info);
}

int GetScrollPos(HWND Wnd, int Bar) {
    return Wnd ? Wnd->GetScrollPos(Bar) : 0;
}

int SetScrollPos(HWND Wnd, int Bar, int Pos, bool Redraw) {
    return Wnd ? Wnd->SetScrollPos(Bar, Pos, Redraw) : 0;
}

bool ShowScrollBar(HWND Wnd, int Bar, bool Show) {
    return Wnd && Wnd->ShowScrollBar(Bar, Show);
}

} // namespace vl
