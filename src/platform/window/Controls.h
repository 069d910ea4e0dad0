// The component framework's controls on Qt: `TControl`, `TWinControl` with its window, messages,
// input, focus and scroll bars, `TControlCanvas`, `TCustomControl` and the host form `TCustomForm`.
//
// A `TWinControl` owns a Qt widget of its own class that forwards every Qt event to the control. Each
// event is translated into a window message (`TMessage`) that passes the virtual `WndProc` first, so a
// descendant can intercept it, and then the default dispatch, which calls the message handlers
// (`WMPaint`, `WMSize`, `WMHScroll`, `CNKeyDown`, ...) and from them the dynamic handlers (`MouseDown`,
// `KeyDown`, `Resize`, ...) whose base versions fire the host's events. No exception leaves a Qt
// event: the silent abort ends quietly, anything else goes to the error service.
//
// Painting follows the window system although Qt only lets a widget paint inside its paint event:
// the control keeps a retained surface (see "platform/Surface.h") of its client area in device
// pixels. The paint event runs the pending library paint for the invalid area into the surface
// (`WM_PAINT` with a context clipped to it), then copies the surface to the screen. Outside a paint,
// a canvas draws straight onto the surface through a context from `GetDeviceContext`; what it
// changes is shown at the next paint event without a library paint.
//
// Coordinates: the control's bounds and its client area are in device pixels (physical pixels of the
// screen, the widget's logical size times its device-pixel ratio). The client area excludes a border
// and the visible scroll bars; client coordinates start at its top left.
#pragma once

#include "platform/core/Classes.h"
#include "platform/core/Types.h"
#include "platform/core/WinApi.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Cursors.h"
#include "platform/graphics/Graphics.h"
#include "platform/window/Surface.h"

#include <QPointer>
#include <QRegion>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QMimeData;
class QObject;
class QScrollBar;

namespace vl {

class TControl;
class TWinControl;
class TControlCanvas;
class TControlWidget;

// The window handle of the window-system functions: the control itself.
using HWND = TWinControl*;

enum class TControlStyleFlag : std::uint8_t {
    csAcceptsControls,
    csCaptureMouse,
    csDesignInteractive,
    csClickEvents,
    csFramed,
    csSetCaption,
    csOpaque,
    csDoubleClicks,
    csFixedWidth,
    csFixedHeight,
    csNoDesignVisible,
    csReplicatable,
    csNoStdEvents,
    csDisplayDragImage,
    csReflector,
    csActionClient,
    csMenuEvents,
    csNeedsBorderPaint,
    csParentBackground,
    csPannable
};
using enum TControlStyleFlag;
using TControlStyle = TFlagSet<TControlStyleFlag>;

enum class TBorderStyle : std::uint8_t { bsNone, bsSingle };
using enum TBorderStyle;

enum class TDragState : std::uint8_t { dsDragEnter, dsDragLeave, dsDragMove };
using enum TDragState;

using TMouseEvent =
    std::function<void(TObject* Sender, TMouseButton Button, TShiftState Shift, int X, int Y)>;
using TMouseMoveEvent = std::function<void(TObject* Sender, TShiftState Shift, int X, int Y)>;
using TKeyEvent = std::function<void(TObject* Sender, std::uint16_t& Key, TShiftState Shift)>;
using TKeyPressEvent = std::function<void(TObject* Sender, char16_t& Key)>;
using TDragOverEvent =
    std::function<void(TObject* Sender, QObject* Source, int X, int Y, TDragState State, bool& Accept)>;
using TDragDropEvent = std::function<void(TObject* Sender, QObject* Source, int X, int Y)>;

// The shift state of Qt's modifiers and mouse buttons.
TShiftState ShiftStateOf(Qt::KeyboardModifiers Modifiers, Qt::MouseButtons Buttons);
// The virtual-key code of a Qt key (0 for a key without one). Keypad digits and operators take the
// keypad codes when `Keypad` is set.
std::uint16_t VirtualKeyOf(int QtKey, bool Keypad);

// ---------------------------------------------------------------------------------------------
// TControl
// ---------------------------------------------------------------------------------------------

class TControl : public TComponent {
public:
    explicit TControl(TComponent* AOwner);
    ~TControl() override;

    TWinControl* Parent() const { return FParent; }
    virtual void SetParent(TWinControl* AParent);

    int Left() const { return FLeft; }
    int Top() const { return FTop; }
    int Width() const { return FWidth; }
    int Height() const { return FHeight; }
    void SetLeft(int Value) { SetBounds(Value, FTop, FWidth, FHeight); }
    void SetTop(int Value) { SetBounds(FLeft, Value, FWidth, FHeight); }
    void SetWidth(int Value) { SetBounds(FLeft, FTop, Value, FHeight); }
    void SetHeight(int Value) { SetBounds(FLeft, FTop, FWidth, Value); }
    TRect BoundsRect() const { return Bounds(FLeft, FTop, FWidth, FHeight); }
    void SetBoundsRect(const TRect& R) { SetBounds(R.Left, R.Top, R.Width(), R.Height()); }
    virtual void SetBounds(int ALeft, int ATop, int AWidth, int AHeight);

    // The client area, in client coordinates: (0, 0, ClientWidth, ClientHeight).
    virtual TRect ClientRect() const { return Rect(0, 0, FWidth, FHeight); }
    int ClientWidth() const { return ClientRect().Right; }
    int ClientHeight() const { return ClientRect().Bottom; }
    void SetClientWidth(int Value);
    void SetClientHeight(int Value);

    bool Visible() const { return FVisible; }
    virtual void SetVisible(bool Value);
    bool Enabled() const { return FEnabled; }
    virtual void SetEnabled(bool Value);
    TColor Color() const { return FColor; }
    virtual void SetColor(TColor Value);
    TCursor Cursor() const { return FCursor; }
    virtual void SetCursor(TCursor Value);

    TControlStyle ControlStyle() const { return FControlStyle; }
    void SetControlStyle(TControlStyle Value) { FControlStyle = Value; }

    // Host events.
    TMouseEvent OnMouseDown;
    TMouseMoveEvent OnMouseMove;
    TMouseEvent OnMouseUp;
    TNotifyEvent OnClick;
    TNotifyEvent OnDblClick;
    TNotifyEvent OnResize;
    TDragOverEvent OnDragOver;
    TDragDropEvent OnDragDrop;

    // Repaint requests; the base control has no window and does nothing.
    virtual void Invalidate() {}
    virtual void Update() {}
    virtual void Repaint();

    // Sends a message through the control's `WndProc` and answers its result.
    std::intptr_t Perform(std::uint32_t Msg, std::intptr_t WParam = 0, std::intptr_t LParam = 0);
    // Every message passes here first; the base hands it to `Dispatch`.
    virtual void WndProc(TMessage& Message);
    // The default handling of the messages the control knows; others go to `DefaultHandler`.
    virtual void Dispatch(TMessage& Message);
    virtual void DefaultHandler(TMessage& Message);

protected:
    // The dynamic handlers, with the position in device pixels of the client area. The base versions
    // fire the host's events with it (`DoMouseDown`, ...); a control that reports its events in other
    // units maps the position first and fires them itself (the draw box reports logical units).
    virtual void MouseDown(TMouseButton Button, TShiftState Shift, int XDev, int YDev);
    virtual void MouseMove(TShiftState Shift, int XDev, int YDev);
    virtual void MouseUp(TMouseButton Button, TShiftState Shift, int XDev, int YDev);
    virtual void Click();
    virtual void DblClick();
    virtual void Resize();
    virtual void DragOver(QObject* Source, int XDev, int YDev, TDragState State, bool& Accept);
    virtual void DragDrop(QObject* Source, int XDev, int YDev);
    // The host's events, with the position in the units the control reports its events in.
    void DoMouseDown(TMouseButton Button, TShiftState Shift, int X, int Y);
    void DoMouseMove(TShiftState Shift, int X, int Y);
    void DoMouseUp(TMouseButton Button, TShiftState Shift, int X, int Y);
    // `Accept` starts false, and true when the host has an `OnDragOver`, which may change it.
    void DoDragOver(QObject* Source, int X, int Y, TDragState State, bool& Accept);
    void DoDragDrop(QObject* Source, int X, int Y);

    // Mouse message handling of the framework: capture, click tracking, then the dynamic handlers.
    void HandleMouseMessage(TMessage& Message);
    void HandleDragMessage(TMessage& Message);

    // Called when the bounds changed; the windowed control moves its widget.
    virtual void BoundsChanged() {}

    TControlStyle FControlStyle{csCaptureMouse, csClickEvents, csDoubleClicks};

private:
    TWinControl* FParent = nullptr;
    int FLeft = 0;
    int FTop = 0;
    int FWidth = 0;
    int FHeight = 0;
    bool FVisible = true;
    bool FEnabled = true;
    bool FClicked = false;
    TColor FColor = clBtnFace;
    TCursor FCursor = crDefault;

    friend class TWinControl;
};

// ---------------------------------------------------------------------------------------------
// TWinControl
// ---------------------------------------------------------------------------------------------

class TWinControl : public TControl {
public:
    explicit TWinControl(TComponent* AOwner);
    ~TWinControl() override;

    // The window handle, which is the control itself; the window exists from construction.
    HWND Handle() { return this; }
    bool HandleAllocated() const { return FWidget != nullptr; }
    // The Qt widget of the control.
    QWidget* Widget() const;

    void SetParent(TWinControl* AParent) override;
    void SetVisible(bool Value) override;
    void SetEnabled(bool Value) override;
    void SetCursor(TCursor Value) override;
    void SetColor(TColor Value) override;
    TRect ClientRect() const override;

    // The child controls, in the order they got this parent.
    int ControlCount() const { return static_cast<int>(FControls.size()); }
    TControl* Controls(int Index) const { return FControls.at(static_cast<std::size_t>(Index)); }

    // A border round the client area (one device pixel for `bsSingle`).
    TBorderStyle BorderStyle() const { return FBorderStyle; }
    void SetBorderStyle(TBorderStyle Value);
    int BorderWidth() const { return FBorderStyle == bsSingle ? 1 : 0; }
    // Whether a change of size invalidates the whole client area (true) or only the new parts.
    bool RedrawOnResize() const { return FRedrawOnResize; }
    void SetRedrawOnResize(bool Value) { FRedrawOnResize = Value; }

    // Device pixels per logical pixel of the widget; a value set by `SetDevicePixelRatio` (above 0)
    // takes the place of the widget's, as tests of a high-resolution screen need.
    double DevicePixelRatio() const;
    void SetDevicePixelRatio(double Value);

    // Focus.
    bool TabStop() const { return FTabStop; }
    void SetTabStop(bool Value);
    // True when the control, its parents and its window are visible and enabled.
    virtual bool CanFocus() const;
    bool Focused() const;
    // Gives the control the keyboard focus if its window is active; raises nothing.
    virtual void SetFocus();

    TNotifyEvent OnEnter;
    TNotifyEvent OnExit;
    TKeyEvent OnKeyDown;
    TKeyEvent OnKeyUp;
    TKeyPressEvent OnKeyPress;

    // Repaint.
    void Invalidate() override;
    void Update() override;
    // The client rectangle `R` (all of it for null) becomes invalid; with `Erase` it is filled with
    // `Color` before the next paint.
    void InvalidateRect(const TRect* R, bool Erase);
    void InvalidateRgn(const QRegion& RegionDev, bool Erase);
    // Moves the pixels inside `ScrollRect` (the client area for null) by (DX, DY), changing only
    // pixels inside `ClipRect` (the client area for null); the uncovered part becomes invalid with
    // erase, and invalid area inside the scroll rectangle moves with the pixels.
    void ScrollWindow(int DX, int DY, const TRect* ScrollRect, const TRect* ClipRect);
    // True when the window and all its parents are shown.
    bool IsWindowVisible() const;
    TPoint ClientToScreen(TPoint P) const;
    TPoint ScreenToClient(TPoint P) const;

    // The retained surface of the client area.
    TRetainedSurface& Surface() { return FSurface; }
    // True while the library paint of this control runs.
    bool Painting() const { return FPainting; }
    // Runs the pending library paint now, if anything is invalid.
    void PaintPending();

    // A fresh context on the surface for drawing outside a paint; the control keeps it until the end
    // of the next paint or a change of size, when `ReleaseDeviceContexts` frees it. Overrides may set a
    // mapping on it.
    virtual HDC GetDeviceContext();
    // Frees the contexts handed out by `GetDeviceContext`: the canvases drop them first.
    void ReleaseDeviceContexts();

    // Scroll bars of the window (SB_HORZ, SB_VERT). See "ScrollBars.cpp".
    int SetScrollInfo(int Bar, const TScrollInfo& Info, bool Redraw);
    bool GetScrollInfo(int Bar, TScrollInfo& Info) const;
    int GetScrollPos(int Bar) const;
    int SetScrollPos(int Bar, int Pos, bool Redraw);
    bool SetScrollRange(int Bar, int Min, int Max, bool Redraw);
    bool ShowScrollBar(int Bar, bool Show);
    bool ScrollBarVisible(int Bar) const;
    bool ScrollBarEnabled(int Bar) const;
    // The Qt bar of a window scroll bar (for tests and styling).
    QScrollBar* ScrollBarWidget(int Bar) const;
    // The width of a vertical bar (height of a horizontal one) in device pixels, from the Qt style.
    int ScrollBarExtent() const;

    // Drops the mouse moves that are pending now: moves delivered before the event loop has finished
    // the pass it is in. What `PeekMessage` with `WM_MOUSEMOVE` and `PM_REMOVE` does to a queue.
    void RemovePendingMouseMoves();

    // The data of the drag being delivered, valid during `DragOver` and `DragDrop`.
    const QMimeData* DragData() const { return FDragData; }

    // Called by the widget; public for it only.
    void QtPaint(const QRegion& ExposedWidgetPx);
    void QtResized();
    void QtEvent(TMessage& Message);
    void QtScrollAction(int Bar, int Action);
    void QtSliderMoved(int Bar, int Value);
    void QtSliderReleased(int Bar);
    bool DropsMouseMove() const { return FDropMoves > 0; }
    void QtBarReleased(int Bar);
    void MarkerReached();
    void SetDragData(const QMimeData* Data) { FDragData = Data; }
    TPoint ClientFromWidget(double X, double Y) const;

protected:
    void Dispatch(TMessage& Message) override;

    // Message handlers.
    virtual void WMPaint(TMessage& Message);
    virtual void WMEraseBkgnd(TMessage& Message);
    virtual void WMSize(TMessage& Message);
    virtual void WMHScroll(TMessage& Message);
    virtual void WMVScroll(TMessage& Message);
    virtual void WMSetFocus(TMessage& Message);
    virtual void WMKillFocus(TMessage& Message);
    virtual void CNKeyDown(TMessage& Message);
    virtual void CNKeyUp(TMessage& Message);
    virtual void CNChar(TMessage& Message);

    // Calls `PaintWindow` with the message's context.
    void PaintHandler(TMessage& Message);
    // Paints the window into `DC`; the base paints nothing.
    virtual void PaintWindow(HDC DC);

    virtual void KeyDown(std::uint16_t& Key, TShiftState Shift);
    virtual void KeyUp(std::uint16_t& Key, TShiftState Shift);
    virtual void KeyPress(char16_t& Key);
    virtual void DoEnter();
    virtual void DoExit();

    void BoundsChanged() override;

    // Lays out the scroll bars and the surface after a change of size or bar visibility, and sends
    // `WM_SIZE` when the client size changed.
    void UpdateLayout(bool ForceSize);

private:
    struct TBar;
    friend class TControl;
    friend class TControlCanvas;

    void InsertControl(TControl* AControl);
    void RemoveControl(TControl* AControl);
    void ApplyWidgetGeometry();
    TBar& BarOf(int Bar);
    const TBar& BarOf(int Bar) const;
    void ApplyBar(TBar& B);
    void SendScrollMessage(int Bar, int Code, int Pos);
    void RegisterCanvas(TControlCanvas* Canvas);
    void UnregisterCanvas(TControlCanvas* Canvas);

    QPointer<QWidget> FWidget;        // owned; its children are the scroll bars and the children's widgets
    std::vector<TControl*> FControls; // borrowed children
    TRetainedSurface FSurface;
    std::vector<HDC> FLiveContexts;
    std::vector<TControlCanvas*> FCanvases; // borrowed canvases on this control
    std::unique_ptr<TBar> FHorzBar;
    std::unique_ptr<TBar> FVertBar;
    TBorderStyle FBorderStyle = bsNone;
    bool FRedrawOnResize = true;
    bool FTabStop = false;
    bool FPainting = false;
    bool FInQtPaint = false;
    bool FInLayout = false;
    int FDropMoves = 0;
    double FRatioOverride = 0;
    int FClientW = -1;
    int FClientH = -1;
    const QMimeData* FDragData = nullptr;
    QRegion FPaintErase; // the part of the area being painted that the erase fills
};

// Window-system functions on a window handle.
bool InvalidateRect(HWND Wnd, const TRect* R, bool Erase);
bool UpdateWindow(HWND Wnd);
bool ScrollWindow(HWND Wnd, int DX, int DY, const TRect* ScrollRect, const TRect* ClipRect);
bool IsWindowVisible(HWND Wnd);
HWND SetFocus(HWND Wnd);
HWND GetFocus();
bool ClientToScreen(HWND Wnd, TPoint* P);
bool ScreenToClient(HWND Wnd, TPoint* P);
bool GetClientRect(HWND Wnd, TRect* R);
int SetScrollInfo(HWND Wnd, int Bar, const TScrollInfo* Info, bool Redraw);
bool GetScrollInfo(HWND Wnd, int Bar, TScrollInfo* Info);
int GetScrollPos(HWND Wnd, int Bar);
int SetScrollPos(HWND Wnd, int Bar, int Pos, bool Redraw);
bool ShowScrollBar(HWND Wnd, int Bar, bool Show);
// Only `WM_MOUSEMOVE` with `PM_REMOVE` does something: the pending moves of the window are dropped
// (see `TWinControl::RemovePendingMouseMoves`). Answers false: no message is handed out.
bool PeekMessage(TMessage* Msg, HWND Wnd, std::uint32_t FilterMin, std::uint32_t FilterMax,
                 std::uint32_t Remove);

// ---------------------------------------------------------------------------------------------
// TControlCanvas and TCustomControl
// ---------------------------------------------------------------------------------------------

// A canvas on a control. Outside a paint it asks the control for a context at first use
// (`GetDeviceContext`) and keeps it until the control frees it at the end of the next paint.
class TControlCanvas : public TCanvas {
public:
    TControlCanvas() = default;
    explicit TControlCanvas(TWinControl* AControl) { SetControl(AControl); }
    ~TControlCanvas() override;

    TWinControl* Control() const { return FControl; }
    void SetControl(TWinControl* AControl);
    // Drops the context that the control gave, if any.
    void FreeHandle();
    // Runs `Paint` with the canvas on the paint context `DC`, and takes the context away again
    // afterwards, also when `Paint` raises.
    void PaintOn(HDC DC, const std::function<void()>& Paint);

protected:
    void CreateHandle() override;

private:
    TWinControl* FControl = nullptr;
    HDC FDeviceContext = nullptr;
};

// A windowed control with a canvas and a `Paint` to override.
class TCustomControl : public TWinControl {
public:
    explicit TCustomControl(TComponent* AOwner);
    ~TCustomControl() override;

    TCanvas& Canvas() { return *FCanvas; }

protected:
    virtual void Paint() {}
    void PaintWindow(HDC DC) override;

private:
    std::unique_ptr<TControlCanvas> FCanvas;
};

// ---------------------------------------------------------------------------------------------
// TCustomForm
// ---------------------------------------------------------------------------------------------

// The host form: a top-level window that owns the components placed on it. Host code creates the
// components with the form as owner, sets their properties and calls `LoadedAll` once (the stand-in
// for reading the form); controls are placed with `SetParent(form)`.
class TCustomForm : public TWinControl {
public:
    explicit TCustomForm(TComponent* AOwner = nullptr);
    ~TCustomForm() override;

    QString Caption() const;
    void SetCaption(const QString& Value);

    // Shows the window.
    void Show();
    void Hide();
    // Shows the window and makes it the active window, so that its controls can take the focus.
    void Activate();
    bool Active() const;
};

using TForm = TCustomForm;

} // namespace vl
