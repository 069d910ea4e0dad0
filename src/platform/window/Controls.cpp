// The controls: geometry, message dispatch, paint through the retained surface, focus and keys.

#include "platform/window/Controls.h"

#include "platform/services/Services.h"
#include "platform/window/ControlWidget_p.h"

#include <QApplication>
#include <QPainter>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace vl {

namespace {

// A rectangle in Qt's widget pixels covering the device rectangle `R`.
QRect WidgetRectOf(const QRect& R, double Ratio) {
    if (Ratio == 1.0) return R;
    const int left = static_cast<int>(std::floor(R.left() / Ratio));
    const int top = static_cast<int>(std::floor(R.top() / Ratio));
    const int right = static_cast<int>(std::ceil((R.right() + 1) / Ratio));
    const int bottom = static_cast<int>(std::ceil((R.bottom() + 1) / Ratio));
    return QRect(left, top, right - left, bottom - top);
}

// A device rectangle covering the rectangle `R` in Qt's widget pixels.
QRect DeviceOf(const QRect& R, double Ratio) {
    if (Ratio == 1.0) return R;
    const int left = static_cast<int>(std::floor(R.left() * Ratio));
    const int top = static_cast<int>(std::floor(R.top() * Ratio));
    const int right = static_cast<int>(std::ceil((R.right() + 1) * Ratio));
    const int bottom = static_cast<int>(std::ceil((R.bottom() + 1) * Ratio));
    return QRect(left, top, right - left, bottom - top);
}

// The rectangle in Qt's form, its corners held inside +-2^30 so that width and height can't overflow
// for rectangles near the ends of the 32-bit range (an untouched restore rect maps there). Every
// client area lies well inside that bound, so the clamp changes nothing on the surface.
QRect QRectOf(const TRect& R) {
    static constexpr std::int32_t Bound = (1 << 30) - 1;
    const auto c = [](std::int32_t v) { return std::clamp(v, -Bound, Bound); };
    return QRect(c(R.Left), c(R.Top), c(R.Right) - c(R.Left), c(R.Bottom) - c(R.Top));
}

// Frees a device context when the scope ends, whatever happens.
struct TDcGuard {
    HDC DC;
    ~TDcGuard() {
        if (DC) DeleteDC(DC);
    }
};

} // namespace

// ---------------------------------------------------------------------------------------------
// TControl
// ---------------------------------------------------------------------------------------------

TControl::TControl(TComponent* AOwner) : TComponent(AOwner) {}

TControl::~TControl() {
    if (FParent) FParent->RemoveControl(this);
}

void TControl::SetParent(TWinControl* AParent) {
    if (FParent == AParent) return;
    if (AParent == static_cast<TControl*>(this))
        throw EInvalidOperation(QStringLiteral("A control cannot have itself as its parent"));
    if (FParent) FParent->RemoveControl(this);
    if (AParent) AParent->InsertControl(this);
}

void TControl::SetBounds(int ALeft, int ATop, int AWidth, int AHeight) {
    AWidth = std::max(0, AWidth);
    AHeight = std::max(0, AHeight);
    if (ALeft == FLeft && ATop == FTop && AWidth == FWidth && AHeight == FHeight) return;
    FLeft = ALeft;
    FTop = ATop;
    FWidth = AWidth;
    FHeight = AHeight;
    BoundsChanged();
}

void TControl::SetClientWidth(int Value) {
    SetWidth(Value + (FWidth - ClientWidth()));
}

void TControl::SetClientHeight(int Value) {
    SetHeight(Value + (FHeight - ClientHeight()));
}

void TControl::SetVisible(bool Value) {
    FVisible = Value;
}

void TControl::SetEnabled(bool Value) {
    FEnabled = Value;
}

void TControl::SetColor(TColor Value) {
    FColor = Value;
}

void TControl::SetCursor(TCursor Value) {
    FCursor = Value;
}

void TControl::Repaint() {
    Invalidate();
    Update();
}

std::intptr_t TControl::Perform(std::uint32_t Msg, std::intptr_t WParam, std::intptr_t LParam) {
    TMessage message;
    message.Msg = Msg;
    message.WParam = WParam;
    message.LParam = LParam;
    WndProc(message);
    return message.Result;
}

void TControl::WndProc(TMessage& Message) {
    Dispatch(Message);
}

void TControl::Dispatch(TMessage& Message) {
    switch (Message.Msg) {
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP:
    case WM_MBUTTONDBLCLK: HandleMouseMessage(Message); break;
    case CM_DRAG: HandleDragMessage(Message); break;
    default: DefaultHandler(Message); break;
    }
}

void TControl::DefaultHandler(TMessage&) {}

void TControl::HandleMouseMessage(TMessage& Message) {
    const bool stdEvents = !FControlStyle.Contains(csNoStdEvents);
    const int x = Message.Pos.x;
    const int y = Message.Pos.y;
    TShiftState shift = Message.Shift;
    switch (Message.Msg) {
    case WM_LBUTTONDOWN:
        if (FControlStyle.Contains(csClickEvents)) FClicked = true;
        if (stdEvents) MouseDown(mbLeft, shift, x, y);
        break;
    case WM_LBUTTONDBLCLK:
        if (FControlStyle.Contains(csClickEvents)) DblClick();
        if (stdEvents) MouseDown(mbLeft, shift.Include(ssDouble), x, y);
        break;
    case WM_RBUTTONDOWN:
        if (stdEvents) MouseDown(mbRight, shift, x, y);
        break;
    case WM_RBUTTONDBLCLK:
        if (stdEvents) MouseDown(mbRight, shift.Include(ssDouble), x, y);
        break;
    case WM_MBUTTONDOWN:
        if (stdEvents) MouseDown(mbMiddle, shift, x, y);
        break;
    case WM_MBUTTONDBLCLK:
        if (stdEvents) MouseDown(mbMiddle, shift.Include(ssDouble), x, y);
        break;
    case WM_LBUTTONUP:
        if (FClicked) {
            FClicked = false;
            if (PtInRect(ClientRect(), Message.Pos)) Click();
        }
        if (stdEvents) MouseUp(mbLeft, shift, x, y);
        break;
    case WM_RBUTTONUP:
        if (stdEvents) MouseUp(mbRight, shift, x, y);
        break;
    case WM_MBUTTONUP:
        if (stdEvents) MouseUp(mbMiddle, shift, x, y);
        break;
    case WM_MOUSEMOVE:
        if (stdEvents) MouseMove(shift, x, y);
        break;
    default: break;
    }
}

void TControl::HandleDragMessage(TMessage& Message) {
    auto* source = static_cast<QObject*>(Message.DragSource);
    switch (Message.DragMessage) {
    case dmDragEnter:
    case dmDragMove:
    case dmDragLeave: {
        bool accept = false;
        const TDragState state = Message.DragMessage == dmDragEnter   ? dsDragEnter
                                 : Message.DragMessage == dmDragLeave ? dsDragLeave
                                                                      : dsDragMove;
        DragOver(source, Message.Pos.x, Message.Pos.y, state, accept);
        Message.Accepted = accept;
        Message.Result = accept ? 1 : 0;
        break;
    }
    case dmDragDrop: DragDrop(source, Message.Pos.x, Message.Pos.y); break;
    default: break;
    }
}

void TControl::MouseDown(TMouseButton Button, TShiftState Shift, int XDev, int YDev) {
    DoMouseDown(Button, Shift, XDev, YDev);
}

void TControl::MouseMove(TShiftState Shift, int XDev, int YDev) {
    DoMouseMove(Shift, XDev, YDev);
}

void TControl::MouseUp(TMouseButton Button, TShiftState Shift, int XDev, int YDev) {
    DoMouseUp(Button, Shift, XDev, YDev);
}

void TControl::DoMouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) {
    if (OnMouseDown) OnMouseDown(this, Button, Shift, X, Y);
}

void TControl::DoMouseMove(TShiftState Shift, int X, int Y) {
    if (OnMouseMove) OnMouseMove(this, Shift, X, Y);
}

void TControl::DoMouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) {
    if (OnMouseUp) OnMouseUp(this, Button, Shift, X, Y);
}

void TControl::Click() {
    if (OnClick) OnClick(this);
}

void TControl::DblClick() {
    if (OnDblClick) OnDblClick(this);
}

void TControl::Resize() {
    if (OnResize) OnResize(this);
}

void TControl::DragOver(QObject* Source, int XDev, int YDev, TDragState State, bool& Accept) {
    DoDragOver(Source, XDev, YDev, State, Accept);
}

void TControl::DragDrop(QObject* Source, int XDev, int YDev) {
    DoDragDrop(Source, XDev, YDev);
}

void TControl::DoDragOver(QObject* Source, int X, int Y, TDragState State, bool& Accept) {
    Accept = false;
    if (OnDragOver) {
        Accept = true;
        OnDragOver(this, Source, X, Y, State, Accept);
    }
}

void TControl::DoDragDrop(QObject* Source, int X, int Y) {
    if (OnDragDrop) OnDragDrop(this, Source, X, Y);
}

// ---------------------------------------------------------------------------------------------
// TWinControl: window, geometry, children
// ---------------------------------------------------------------------------------------------

TWinControl::TWinControl(TComponent* AOwner)
    : TControl(AOwner), FHorzBar(std::make_unique<TBar>()), FVertBar(std::make_unique<TBar>()) {
    auto* widget = new TControlWidget(this);
    FWidget = widget;
    FHorzBar->Kind = SB_HORZ;
    FVertBar->Kind = SB_VERT;
    for (TBar* bar : {FHorzBar.get(), FVertBar.get()}) {
        bar->Widget = new QScrollBar(bar->Kind == SB_HORZ ? Qt::Horizontal : Qt::Vertical, widget);
        bar->Widget->setFocusPolicy(Qt::NoFocus);
        bar->Widget->setTracking(false);
        bar->Widget->hide();
        const int kind = bar->Kind;
        QObject::connect(bar->Widget, &QAbstractSlider::actionTriggered, widget,
                         [this, kind](int action) { QtScrollAction(kind, action); });
        QObject::connect(bar->Widget, &QAbstractSlider::sliderMoved, widget,
                         [this, kind](int value) { QtSliderMoved(kind, value); });
        QObject::connect(bar->Widget, &QAbstractSlider::sliderReleased, widget,
                         [this, kind] { QtSliderReleased(kind); });
        bar->Widget->installEventFilter(widget);
    }
}

TWinControl::~TWinControl() {
    // Children keep their windows: they leave this parent before its window goes.
    while (!FControls.empty()) FControls.back()->SetParent(nullptr);
    for (TControlCanvas* canvas : std::vector<TControlCanvas*>(FCanvases)) canvas->SetControl(nullptr);
    ReleaseDeviceContexts();
    if (FWidget) {
        static_cast<TControlWidget*>(FWidget.data())->Control = nullptr;
        delete FWidget.data();
    }
}

QWidget* TWinControl::Widget() const {
    return FWidget.data();
}

void TWinControl::InsertControl(TControl* AControl) {
    FControls.push_back(AControl);
    AControl->FParent = this;
    if (auto* win = dynamic_cast<TWinControl*>(AControl); win && win->FWidget) {
        win->FWidget->setParent(FWidget.data());
        win->ApplyWidgetGeometry();
        // The bars stay above the children.
        FHorzBar->Widget->raise();
        FVertBar->Widget->raise();
        win->FWidget->setVisible(win->Visible());
    }
}

void TWinControl::RemoveControl(TControl* AControl) {
    FControls.erase(std::remove(FControls.begin(), FControls.end(), AControl), FControls.end());
    AControl->FParent = nullptr;
    if (auto* win = dynamic_cast<TWinControl*>(AControl); win && win->FWidget) {
        win->FWidget->hide();
        win->FWidget->setParent(nullptr);
    }
}

void TWinControl::SetParent(TWinControl* AParent) {
    TControl::SetParent(AParent);
}

double TWinControl::DevicePixelRatio() const {
    if (FRatioOverride > 0) return FRatioOverride;
    return FWidget ? FWidget->devicePixelRatioF() : 1.0;
}

void TWinControl::SetDevicePixelRatio(double Value) {
    FRatioOverride = Value;
    ApplyWidgetGeometry();
    UpdateLayout(false);
}

void TWinControl::ApplyWidgetGeometry() {
    if (!FWidget) return;
    const double r = DevicePixelRatio();
    int offset = 0;
    if (Parent()) offset = Parent()->BorderWidth();
    const QRect widgetPx(static_cast<int>(std::lround((Left() + offset) / r)),
                         static_cast<int>(std::lround((Top() + offset) / r)),
                         static_cast<int>(std::lround(Width() / r)),
                         static_cast<int>(std::lround(Height() / r)));
    if (FWidget->isWindow())
        FWidget->resize(widgetPx.size());
    else
        FWidget->setGeometry(widgetPx);
}

void TWinControl::BoundsChanged() {
    FInLayout = true;
    ApplyWidgetGeometry();
    FInLayout = false;
    UpdateLayout(false);
}

void TWinControl::QtResized() {
    if (FInLayout || !FWidget) return;
    const double r = DevicePixelRatio();
    // Adopt a size that Qt set (a user resizing a window); sizes set through the control stay exact.
    if (FWidget->width() != static_cast<int>(std::lround(Width() / r)) ||
        FWidget->height() != static_cast<int>(std::lround(Height() / r))) {
        FWidth = static_cast<int>(std::lround(FWidget->width() * r));
        FHeight = static_cast<int>(std::lround(FWidget->height() * r));
    }
    UpdateLayout(false);
}

TRect TWinControl::ClientRect() const {
    const int b = BorderWidth();
    const int sb = ScrollBarExtent();
    const int w = Width() - 2 * b - (FVertBar->Shown ? sb : 0);
    const int h = Height() - 2 * b - (FHorzBar->Shown ? sb : 0);
    return Rect(0, 0, std::max(0, w), std::max(0, h));
}

void TWinControl::SetBorderStyle(TBorderStyle Value) {
    if (Value == FBorderStyle) return;
    FBorderStyle = Value;
    for (TControl* child : FControls) {
        if (auto* win = dynamic_cast<TWinControl*>(child)) win->ApplyWidgetGeometry();
    }
    UpdateLayout(false);
}

void TWinControl::UpdateLayout(bool ForceSize) {
    if (!FWidget) return;
    const double r = DevicePixelRatio();
    const int b = BorderWidth();
    const int sb = ScrollBarExtent();
    const TRect client = ClientRect();
    auto widgetPx = [r](int v) { return static_cast<int>(std::lround(v / r)); };
    if (FVertBar->Shown) {
        FVertBar->Widget->setGeometry(widgetPx(Width() - b - sb), widgetPx(b), widgetPx(sb),
                                      widgetPx(std::max(0, Height() - 2 * b - (FHorzBar->Shown ? sb : 0))));
    }
    if (FHorzBar->Shown) {
        FHorzBar->Widget->setGeometry(widgetPx(b), widgetPx(Height() - b - sb),
                                      widgetPx(std::max(0, Width() - 2 * b - (FVertBar->Shown ? sb : 0))),
                                      widgetPx(sb));
    }
    FVertBar->Widget->setVisible(FVertBar->Shown);
    FHorzBar->Widget->setVisible(FHorzBar->Shown);
    const bool changed = client.Right != FClientW || client.Bottom != FClientH;
    if (changed) {
        ReleaseDeviceContexts();
        FSurface.Resize(client.Right, client.Bottom, FRedrawOnResize || FClientW < 0);
        FClientW = client.Right;
        FClientH = client.Bottom;
        FWidget->update();
    }
    if (changed || ForceSize) {
        TMessage message;
        message.Msg = WM_SIZE;
        message.WParam = SIZE_RESTORED;
        message.LParam = (static_cast<std::intptr_t>(client.Bottom & 0xFFFF) << 16) | (client.Right & 0xFFFF);
        QtEvent(message);
    }
}

void TWinControl::SetVisible(bool Value) {
    TControl::SetVisible(Value);
    if (!FWidget) return;
    if (FWidget->isWindow() && !Parent()) {
        // A control without a parent shows no window of its own; forms override this.
        return;
    }
    FWidget->setVisible(Value);
}

void TWinControl::SetEnabled(bool Value) {
    TControl::SetEnabled(Value);
    if (FWidget) FWidget->setEnabled(Value);
}

void TWinControl::SetCursor(TCursor Value) {
    TControl::SetCursor(Value);
    if (FWidget) FWidget->setCursor(Screen.Cursors(Value));
}

void TWinControl::SetColor(TColor Value) {
    if (Value == Color()) return;
    TControl::SetColor(Value);
    InvalidateRect(nullptr, true);
}

// ---------------------------------------------------------------------------------------------
// TWinControl: focus
// ---------------------------------------------------------------------------------------------

void TWinControl::SetTabStop(bool Value) {
    FTabStop = Value;
    if (FWidget) FWidget->setFocusPolicy(Value ? Qt::TabFocus : Qt::NoFocus);
}

bool TWinControl::CanFocus() const {
    if (!FWidget || !FWidget->isVisible()) return false;
    for (const TControl* c = this; c; c = c->Parent()) {
        if (!c->Visible() || !c->Enabled()) return false;
    }
    return FWidget->isEnabled();
}

bool TWinControl::Focused() const {
    return FWidget && FWidget->hasFocus();
}

void TWinControl::SetFocus() {
    if (FWidget && FWidget->isEnabled() && FWidget->isVisible()) FWidget->setFocus(Qt::OtherFocusReason);
}

void NavigateFocus(QWidget* From, bool Next) {
    if (!From) return;
    QWidget* window = From->window();
    QWidget* w = From;
    for (int guard = 0; guard < 10000; ++guard) {
        w = Next ? w->nextInFocusChain() : w->previousInFocusChain();
        if (!w || w == From) return;
        if (w->window() == window && w->isVisible() && w->isEnabled() && (w->focusPolicy() & Qt::TabFocus)) {
            w->setFocus(Next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return;
        }
    }
}

// ---------------------------------------------------------------------------------------------
// TWinControl: messages
// ---------------------------------------------------------------------------------------------

void TWinControl::QtEvent(TMessage& Message) {
    GuardedEntry([&] { WndProc(Message); });
}

void TWinControl::Dispatch(TMessage& Message) {
    switch (Message.Msg) {
    case WM_PAINT: WMPaint(Message); break;
    case WM_ERASEBKGND: WMEraseBkgnd(Message); break;
    case WM_SIZE: WMSize(Message); break;
    case WM_HSCROLL: WMHScroll(Message); break;
    case WM_VSCROLL: WMVScroll(Message); break;
    case WM_SETFOCUS: WMSetFocus(Message); break;
    case WM_KILLFOCUS: WMKillFocus(Message); break;
    case CN_KEYDOWN: CNKeyDown(Message); break;
    case CN_KEYUP: CNKeyUp(Message); break;
    case CN_CHAR: CNChar(Message); break;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN: {
        std::uint16_t key = Message.CharCode;
        KeyDown(key, Message.Shift);
        Message.CharCode = key;
        break;
    }
    case WM_KEYUP:
    case WM_SYSKEYUP: {
        std::uint16_t key = Message.CharCode;
        KeyUp(key, Message.Shift);
        Message.CharCode = key;
        break;
    }
    case WM_CHAR: {
        char16_t key = static_cast<char16_t>(Message.CharCode);
        KeyPress(key);
        Message.CharCode = key;
        break;
    }
    default: TControl::Dispatch(Message); break;
    }
}

void TWinControl::WMPaint(TMessage& Message) {
    PaintHandler(Message);
}

void TWinControl::PaintHandler(TMessage& Message) {
    PaintWindow(Message.DC);
}

void TWinControl::PaintWindow(HDC) {}

void TWinControl::WMEraseBkgnd(TMessage& Message) {
    // The erase part of the invalid area is filled with the control's colour.
    if (!Message.DC) return;
    HBRUSH brush = CreateSolidBrush(ColorToRGB(Color()));
    for (const QRect& r : FPaintErase) {
        const TRect rect = Rect(r.left(), r.top(), r.right() + 1, r.bottom() + 1);
        FillRect(Message.DC, &rect, brush);
    }
    DeleteObject(brush);
    Message.Result = 1;
}

void TWinControl::WMSize(TMessage&) {
    if (!ComponentState().Contains(csLoading)) Resize();
}

void TWinControl::WMHScroll(TMessage& Message) {
    DefaultHandler(Message);
}

void TWinControl::WMVScroll(TMessage& Message) {
    DefaultHandler(Message);
}

void TWinControl::WMSetFocus(TMessage&) {
    DoEnter();
}

void TWinControl::WMKillFocus(TMessage&) {
    DoExit();
}

void TWinControl::CNKeyDown(TMessage& Message) {
    // Tab moves the focus on in the window, as the dialog keys of the window system do; the key
    // then never reaches `KeyDown`. A control that wants it sets the result to 0 here.
    if (Message.CharCode == VK_TAB && !Message.Shift.Contains(ssCtrl) && !Message.Shift.Contains(ssAlt)) {
        NavigateFocus(FWidget.data(), !Message.Shift.Contains(ssShift));
        Message.Result = 1;
        return;
    }
    Message.Result = 0;
}

void TWinControl::CNKeyUp(TMessage& Message) {
    Message.Result = 0;
}

void TWinControl::CNChar(TMessage& Message) {
    Message.Result = 0;
}

void TWinControl::KeyDown(std::uint16_t& Key, TShiftState Shift) {
    if (OnKeyDown) OnKeyDown(this, Key, Shift);
}

void TWinControl::KeyUp(std::uint16_t& Key, TShiftState Shift) {
    if (OnKeyUp) OnKeyUp(this, Key, Shift);
}

void TWinControl::KeyPress(char16_t& Key) {
    if (OnKeyPress) OnKeyPress(this, Key);
}

void TWinControl::DoEnter() {
    if (OnEnter) OnEnter(this);
}

void TWinControl::DoExit() {
    if (OnExit) OnExit(this);
}

// ---------------------------------------------------------------------------------------------
// TWinControl: paint and the surface
// ---------------------------------------------------------------------------------------------

void TWinControl::Invalidate() {
    InvalidateRect(nullptr, !FControlStyle.Contains(csOpaque));
}

void TWinControl::InvalidateRect(const TRect* R, bool Erase) {
    if (R)
        InvalidateRgn(QRegion(QRectOf(*R).normalized()), Erase);
    else
        InvalidateRgn(QRegion(FSurface.Bounds()), Erase);
}

void TWinControl::InvalidateRgn(const QRegion& RegionDev, bool Erase) {
    const QRegion area = RegionDev & FSurface.Bounds();
    if (area.isEmpty()) return;
    FSurface.Invalidate(area, Erase);
    if (!FWidget) return;
    const double r = DevicePixelRatio();
    const int b = BorderWidth();
    for (const QRect& rect : area) FWidget->update(WidgetRectOf(rect.translated(b, b), r));
}

void TWinControl::Update() {
    GuardedEntry([this] { PaintPending(); });
}

void TWinControl::PaintPending() {
    if (FPainting || FSurface.Invalid().isEmpty()) return;
    QRegion invalid;
    QRegion erase;
    FSurface.TakeInvalid(invalid, erase);
    if (FSurface.Image().isNull()) return;
    FPainting = true;
    FPaintErase = erase;
    struct TPaintEnd {
        TWinControl* Self;
        QRegion Area;
        ~TPaintEnd() {
            Self->FPainting = false;
            Self->FPaintErase = QRegion();
            // The context of the canvas outside paints lives until the end of a paint.
            Self->ReleaseDeviceContexts();
            // Outside a paint event of Qt the new pixels still have to reach the screen; inside one,
            // the copy to the screen follows at once.
            if (Self->FInQtPaint) return;
            Self->FSurface.AddBlit(Area);
            if (Self->FWidget) {
                const double r = Self->DevicePixelRatio();
                const int b = Self->BorderWidth();
                for (const QRect& rect : Area) Self->FWidget->update(WidgetRectOf(rect.translated(b, b), r));
            }
        }
    } paintEnd{this, invalid};
    TDcGuard dc{CreateImageDC(&FSurface.Image())};
    HRGN clip = nullptr;
    for (const QRect& r : invalid) {
        HRGN piece = CreateRectRgn(r.left(), r.top(), r.right() + 1, r.bottom() + 1);
        if (!clip) {
            clip = piece;
        } else {
            CombineRgn(clip, clip, piece, RGN_OR);
            DeleteObject(piece);
        }
    }
    SelectClipRgn(dc.DC, clip);
    DeleteObject(clip);
    if (!erase.isEmpty() && !FControlStyle.Contains(csOpaque)) {
        TMessage eraseMessage;
        eraseMessage.Msg = WM_ERASEBKGND;
        eraseMessage.DC = dc.DC;
        WndProc(eraseMessage);
    }
    TMessage paint;
    paint.Msg = WM_PAINT;
    paint.DC = dc.DC;
    WndProc(paint);
}

void TWinControl::QtPaint(const QRegion& ExposedWidgetPx) {
    if (!FWidget) return;
    const double r = DevicePixelRatio();
    const int b = BorderWidth();
    QRegion exposedDev;
    for (const QRect& rect : ExposedWidgetPx) exposedDev += DeviceOf(rect, r).translated(-b, -b);
    exposedDev &= FSurface.Bounds();
    // An expose of pixels that need no work is a loss of the screen's content: it is painted anew.
    // (A rendering of the widget into a pixmap, as `QWidget::grab` does, is such an expose too.)
    const QRegion lost = exposedDev - FSurface.Invalid() - FSurface.Blit();
    if (!lost.isEmpty()) FSurface.Invalidate(lost, true);
    FInQtPaint = true;
    GuardedEntry([this] { PaintPending(); });
    FInQtPaint = false;

    QPainter painter(FWidget.data());
    painter.setClipRegion(ExposedWidgetPx);
    const QRectF target(b / r, b / r, FSurface.Image().width() / r, FSurface.Image().height() / r);
    if (!FSurface.Image().isNull()) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(target, FSurface.Image());
    }
    const QColor face = FWidget->palette().color(QPalette::Window);
    if (FVertBar->Shown && FHorzBar->Shown) {
        const int sb = ScrollBarExtent();
        painter.fillRect(QRectF((Width() - b - sb) / r, (Height() - b - sb) / r, sb / r, sb / r), face);
    }
    if (b > 0) {
        painter.setPen(QPen(FWidget->palette().color(QPalette::Dark), 0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(0.5 / r, 0.5 / r, (Width() - 1) / r, (Height() - 1) / r));
    }
    FSurface.ClearBlit(exposedDev);
}

HDC TWinControl::GetDeviceContext() {
    if (FSurface.Image().isNull()) {
        // A control of no size draws into nothing that is ever shown.
        static QImage nothing(1, 1, QImage::Format_RGB32);
        HDC dc = CreateImageDC(&nothing);
        FLiveContexts.push_back(dc);
        return dc;
    }
    HDC dc = CreateImageDC(&FSurface.Image());
    SetDrawnEvent(dc, [this](const TRect& drawnDev) {
        const QRect area = QRectOf(drawnDev) & FSurface.Bounds();
        if (area.isEmpty()) return;
        FSurface.AddBlit(area);
        if (FWidget)
            FWidget->update(WidgetRectOf(area.translated(BorderWidth(), BorderWidth()), DevicePixelRatio()));
    });
    FLiveContexts.push_back(dc);
    return dc;
}

void TWinControl::ReleaseDeviceContexts() {
    for (TControlCanvas* canvas : FCanvases) canvas->FreeHandle();
    for (HDC dc : FLiveContexts) DeleteDC(dc);
    FLiveContexts.clear();
}

void TWinControl::RegisterCanvas(TControlCanvas* Canvas) {
    FCanvases.push_back(Canvas);
}

void TWinControl::UnregisterCanvas(TControlCanvas* Canvas) {
    FCanvases.erase(std::remove(FCanvases.begin(), FCanvases.end(), Canvas), FCanvases.end());
}

void TWinControl::ScrollWindow(int DX, int DY, const TRect* ScrollRect, const TRect* ClipRect) {
    const QRect bounds = FSurface.Bounds();
    const QRect scroll = ScrollRect ? QRectOf(*ScrollRect).normalized() : bounds;
    const QRect clip = ClipRect ? QRectOf(*ClipRect).normalized() : bounds;
    const QRegion changed = FSurface.Scroll(DX, DY, scroll, clip);
    if (!FWidget) return;
    const double r = DevicePixelRatio();
    const int b = BorderWidth();
    for (const QRect& rect : changed + FSurface.Invalid())
        FWidget->update(WidgetRectOf(rect.translated(b, b), r));
}

bool TWinControl::IsWindowVisible() const {
    return FWidget && FWidget->isVisible();
}

TPoint TWinControl::ClientToScreen(TPoint P) const {
    if (!FWidget) return P;
    const double r = DevicePixelRatio();
    const QPoint origin = FWidget->mapToGlobal(QPoint(0, 0));
    const int b = BorderWidth();
    return Point(static_cast<int>(std::lround(origin.x() * r)) + b + P.x,
                 static_cast<int>(std::lround(origin.y() * r)) + b + P.y);
}

TPoint TWinControl::ScreenToClient(TPoint P) const {
    const TPoint origin = ClientToScreen(Point(0, 0));
    return Point(P.x - origin.x, P.y - origin.y);
}

TPoint TWinControl::ClientFromWidget(double X, double Y) const {
    const double r = DevicePixelRatio();
    const int b = BorderWidth();
    TPoint p = Point(static_cast<int>(std::floor(X * r)) - b, static_cast<int>(std::floor(Y * r)) - b);
    const TCursorService& cursor = TCursorService::Current();
    if (cursor.ClipRect()) p = ScreenToClient(cursor.Clamp(ClientToScreen(p)));
    return p;
}

void TWinControl::RemovePendingMouseMoves() {
    if (!FWidget) return;
    // Moves queued now are delivered before the event loop finishes its present pass; a marker
    // posted twice outlasts that pass, and the moves are dropped until it arrives.
    ++FDropMoves;
    TControlWidget::PostMarker(FWidget.data());
}

void TWinControl::MarkerReached() {
    if (FDropMoves > 0) --FDropMoves;
}

} // namespace vl
