// The window-system functions that take a control as the window, the control canvas, the custom
// control and the host form.

#include "platform/window/Controls.h"

#include "platform/services/Services.h"
#include "platform/window/ControlWidget_p.h"

#include <QApplication>
#include <QWindow>

namespace vl {

// ---------------------------------------------------------------------------------------------
// Window-system functions
// ---------------------------------------------------------------------------------------------

bool InvalidateRect(HWND Wnd, const TRect* R, bool Erase) {
    if (!Wnd) return false;
    Wnd->InvalidateRect(R, Erase);
    return true;
}

bool UpdateWindow(HWND Wnd) {
    if (!Wnd) return false;
    Wnd->Update();
    return true;
}

bool ScrollWindow(HWND Wnd, int DX, int DY, const TRect* ScrollRect, const TRect* ClipRect) {
    if (!Wnd) return false;
    Wnd->ScrollWindow(DX, DY, ScrollRect, ClipRect);
    return true;
}

bool IsWindowVisible(HWND Wnd) {
    return Wnd && Wnd->IsWindowVisible();
}

HWND GetFocus() {
    auto* widget = dynamic_cast<TControlWidget*>(QApplication::focusWidget());
    return widget ? widget->Control : nullptr;
}

HWND SetFocus(HWND Wnd) {
    HWND previous = GetFocus();
    if (Wnd) Wnd->SetFocus();
    return previous;
}

bool ClientToScreen(HWND Wnd, TPoint* P) {
    if (!Wnd || !P) return false;
    *P = Wnd->ClientToScreen(*P);
    return true;
}

bool ScreenToClient(HWND Wnd, TPoint* P) {
    if (!Wnd || !P) return false;
    *P = Wnd->ScreenToClient(*P);
    return true;
}

bool GetClientRect(HWND Wnd, TRect* R) {
    if (!Wnd || !R) return false;
    *R = Wnd->ClientRect();
    return true;
}

bool PeekMessage(TMessage*, HWND Wnd, std::uint32_t FilterMin, std::uint32_t FilterMax,
                 std::uint32_t Remove) {
    if (Wnd && (Remove & PM_REMOVE) && FilterMin <= WM_MOUSEMOVE && FilterMax >= WM_MOUSEMOVE) {
        Wnd->RemovePendingMouseMoves();
    }
    return false;
}

// ---------------------------------------------------------------------------------------------
// TControlCanvas and TCustomControl
// ---------------------------------------------------------------------------------------------

TControlCanvas::~TControlCanvas() {
    SetControl(nullptr);
}

void TControlCanvas::SetControl(TWinControl* AControl) {
    if (FControl == AControl) return;
    FreeHandle();
    if (FControl) FControl->UnregisterCanvas(this);
    FControl = AControl;
    if (FControl) FControl->RegisterCanvas(this);
}

void TControlCanvas::FreeHandle() {
    if (!FDeviceContext) return;
    if (HandleAllocated() == FDeviceContext) SetHandle(nullptr);
    HDC dc = FDeviceContext;
    FDeviceContext = nullptr;
    if (FControl) {
        auto& live = FControl->FLiveContexts;
        const auto it = std::find(live.begin(), live.end(), dc);
        if (it != live.end()) {
            live.erase(it);
            DeleteDC(dc);
        }
    } else {
        DeleteDC(dc);
    }
}

void TControlCanvas::PaintOn(HDC DC, const std::function<void()>& Paint) {
    SetHandle(DC);
    struct TRelease {
        TControlCanvas* Canvas;
        ~TRelease() { Canvas->SetHandle(nullptr); }
    } release{this};
    Paint();
}

void TControlCanvas::CreateHandle() {
    if (!FControl) return;
    if (!FDeviceContext) FDeviceContext = FControl->GetDeviceContext();
    SetHandle(FDeviceContext);
}

TCustomControl::TCustomControl(TComponent* AOwner)
    : TWinControl(AOwner), FCanvas(std::make_unique<TControlCanvas>(this)) {}

TCustomControl::~TCustomControl() {
    FCanvas.reset();
}

void TCustomControl::PaintWindow(HDC DC) {
    FCanvas->PaintOn(DC, [this] { Paint(); });
}

// ---------------------------------------------------------------------------------------------
// TCustomForm
// ---------------------------------------------------------------------------------------------

TCustomForm::TCustomForm(TComponent* AOwner) : TWinControl(AOwner) {
    TControl::SetVisible(false);
    SetBounds(0, 0, 640, 480);
}

TCustomForm::~TCustomForm() {
    // The components go while the form is whole.
    Destroying();
    DestroyComponents();
}

QString TCustomForm::Caption() const {
    return Widget() ? Widget()->windowTitle() : QString();
}

void TCustomForm::SetCaption(const QString& Value) {
    if (Widget()) Widget()->setWindowTitle(Value);
}

void TCustomForm::Show() {
    TControl::SetVisible(true);
    if (Widget()) Widget()->show();
}

void TCustomForm::Hide() {
    TControl::SetVisible(false);
    if (Widget()) Widget()->hide();
}

void TCustomForm::Activate() {
    Show();
    if (QWidget* w = Widget()) {
        w->raise();
        w->activateWindow();
        QApplication::setActiveWindow(w);
    }
}

bool TCustomForm::Active() const {
    return Widget() && Widget()->isActiveWindow();
}

} // namespace vl
