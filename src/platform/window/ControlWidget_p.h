// Internals of the controls: the Qt widget that forwards events to its control, and the state of a
// window scroll bar. Only the controls' sources include this header.
#pragma once

#include "platform/window/Controls.h"

#include <QEvent>
#include <QPointF>
#include <QScrollBar>
#include <QWidget>

namespace vl {

// The widget of a `TWinControl`. It translates each Qt event into a message for its control and
// never lets an exception out.
class TControlWidget final : public QWidget {
public:
    // The event that marks the end of one pass of the event loop for dropping pending mouse moves.
    static QEvent::Type MarkerEventType();
    // Posts the marker's first stage to `Widget`.
    static void PostMarker(QWidget* Widget);

    explicit TControlWidget(TWinControl* AControl);
    ~TControlWidget() override;

    // Cleared by the control when it goes; events after that are ignored.
    TWinControl* Control = nullptr;

protected:
    bool event(QEvent* Event) override;
    bool eventFilter(QObject* Watched, QEvent* Event) override;
    void paintEvent(QPaintEvent* Event) override;
    void resizeEvent(QResizeEvent* Event) override;
    void mousePressEvent(QMouseEvent* Event) override;
    void mouseDoubleClickEvent(QMouseEvent* Event) override;
    void mouseMoveEvent(QMouseEvent* Event) override;
    void mouseReleaseEvent(QMouseEvent* Event) override;
    void keyPressEvent(QKeyEvent* Event) override;
    void keyReleaseEvent(QKeyEvent* Event) override;
    void focusInEvent(QFocusEvent* Event) override;
    void focusOutEvent(QFocusEvent* Event) override;
    void dragEnterEvent(QDragEnterEvent* Event) override;
    void dragMoveEvent(QDragMoveEvent* Event) override;
    void dragLeaveEvent(QDragLeaveEvent* Event) override;
    void dropEvent(QDropEvent* Event) override;
    // Focus moves between controls only where a control's key handling asks for it.
    bool focusNextPrevChild(bool) override { return false; }

private:
    void SendPress(QMouseEvent* Event, bool Double);
    void SendMouse(QMouseEvent* Event, std::uint32_t Msg, TShiftState Extra);
    bool SendDrag(QDropEvent* Event, TDragMessage Kind, TDragState State);

    // Double clicks are recognised here, by the window system's rule: a second press of the same
    // button within the double-click time and distance of the first. Qt's own double-click event
    // then only confirms what was already delivered.
    Qt::MouseButton FLastPressButton = Qt::NoButton;
    quint64 FLastPressTime = 0;
    QPointF FLastPressPos;
    bool FLastPressWasDouble = false;
    bool FSwallowDblClick = false;
    TPoint FLastDragPos;
};

// One window scroll bar: the numbers the window system keeps, and the Qt bar that shows them.
struct TWinControl::TBar {
    int Kind = SB_HORZ;
    QScrollBar* Widget = nullptr; // a child of the control's widget
    TScrollInfo Info;
    bool Shown = false;
    bool Enabled = true;
    bool Updating = false; // set while the Qt bar is written from code
};

// Moves the keyboard focus to the next (or previous) widget in the tab chain of `From`'s window that
// accepts focus by tab.
void NavigateFocus(QWidget* From, bool Next);

} // namespace vl
