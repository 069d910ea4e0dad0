// The widget of a windowed control: Qt events in, window messages out.

#include "platform/window/ControlWidget_p.h"

#include "platform/services/Services.h"

#include <QApplication>
#include <QDropEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QStyleHints>

#include <cmath>

namespace vl {

namespace {

// The marker that ends the dropping of pending mouse moves; it travels through the event loop twice.
class TMarkerEvent final : public QEvent {
public:
    explicit TMarkerEvent(int AStage) : QEvent(TControlWidget::MarkerEventType()), Stage(AStage) {}
    int Stage;
};

std::uint32_t PressMessageOf(Qt::MouseButton Button, bool Double) {
    switch (Button) {
    case Qt::LeftButton: return Double ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN;
    case Qt::RightButton: return WM_RBUTTONDOWN;
    case Qt::MiddleButton: return WM_MBUTTONDOWN;
    default: return 0;
    }
}

std::uint32_t ReleaseMessageOf(Qt::MouseButton Button) {
    switch (Button) {
    case Qt::LeftButton: return WM_LBUTTONUP;
    case Qt::RightButton: return WM_RBUTTONUP;
    case Qt::MiddleButton: return WM_MBUTTONUP;
    default: return 0;
    }
}

} // namespace

QEvent::Type TControlWidget::MarkerEventType() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

TControlWidget::TControlWidget(TWinControl* AControl) : Control(AControl) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAutoFillBackground(false);
    setFocusPolicy(Qt::NoFocus);
    setAcceptDrops(true);
    setMouseTracking(true);
    // The window's activation must not repaint the control: the active and inactive colours agree.
    QPalette palette = this->palette();
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        const auto r = static_cast<QPalette::ColorRole>(role);
        palette.setBrush(QPalette::Inactive, r, palette.brush(QPalette::Active, r));
    }
    setPalette(palette);
}

TControlWidget::~TControlWidget() = default;

bool TControlWidget::event(QEvent* Event) {
    if (Event->type() == MarkerEventType()) {
        auto* marker = static_cast<TMarkerEvent*>(Event);
        if (marker->Stage == 1)
            QCoreApplication::postEvent(this, new TMarkerEvent(2));
        else if (Control)
            Control->MarkerReached();
        return true;
    }
    if (Event->type() == QEvent::KeyPress) {
        // Straight to the key handling: Qt's own use of Tab for focus moves is left out.
        keyPressEvent(static_cast<QKeyEvent*>(Event));
        return true;
    }
    return QWidget::event(Event);
}

bool TControlWidget::eventFilter(QObject* Watched, QEvent* Event) {
    if (Control && Event->type() == QEvent::MouseButtonRelease) {
        auto* bar = qobject_cast<QScrollBar*>(Watched);
        // The release of an arrow or of the page area ends the scroll; the thumb ends it in
        // `sliderReleased`. Qt's handling of this release triggers no action of its own.
        if (bar && !bar->isSliderDown())
            Control->QtBarReleased(bar->orientation() == Qt::Horizontal ? SB_HORZ : SB_VERT);
    }
    return QWidget::eventFilter(Watched, Event);
}

void TControlWidget::PostMarker(QWidget* Widget) {
    QCoreApplication::postEvent(Widget, new TMarkerEvent(1));
}

void TControlWidget::paintEvent(QPaintEvent* Event) {
    if (Control) Control->QtPaint(Event->region());
}

void TControlWidget::resizeEvent(QResizeEvent*) {
    if (Control) GuardedEntry([this] { Control->QtResized(); });
}

void TControlWidget::SendMouse(QMouseEvent* Event, std::uint32_t Msg, TShiftState Extra) {
    if (!Control || Msg == 0) return;
    TMessage message;
    message.Msg = Msg;
    message.Pos = Control->ClientFromWidget(Event->position().x(), Event->position().y());
    message.Shift = ShiftStateOf(Event->modifiers(), Event->buttons()) | Extra;
    message.LParam = (static_cast<std::intptr_t>(message.Pos.y & 0xFFFF) << 16) | (message.Pos.x & 0xFFFF);
    Control->QtEvent(message);
}

void TControlWidget::SendPress(QMouseEvent* Event, bool Double) {
    if (!Control) return;
    TCursorService::NoteMouseTarget(this);
    const bool doubles = Control->ControlStyle().Contains(csDoubleClicks);
    Double = Double && doubles;
    SendMouse(Event, PressMessageOf(Event->button(), Double), Double ? TShiftState(ssDouble) : TShiftState());
}

void TControlWidget::mousePressEvent(QMouseEvent* Event) {
    const quint64 time = Event->timestamp();
    const QPointF pos = Event->position();
    const int distance = QGuiApplication::styleHints()->mouseDoubleClickDistance();
    const bool isDouble =
        !FLastPressWasDouble && Event->button() == FLastPressButton &&
        time - FLastPressTime <=
            static_cast<quint64>(QGuiApplication::styleHints()->mouseDoubleClickInterval()) &&
        std::abs(pos.x() - FLastPressPos.x()) <= distance &&
        std::abs(pos.y() - FLastPressPos.y()) <= distance;
    FLastPressButton = Event->button();
    FLastPressTime = time;
    FLastPressPos = pos;
    FLastPressWasDouble = isDouble;
    FSwallowDblClick = isDouble;
    SendPress(Event, isDouble);
}

void TControlWidget::mouseDoubleClickEvent(QMouseEvent* Event) {
    if (FSwallowDblClick) {
        // The press before it was already delivered as the second press of a double click.
        FSwallowDblClick = false;
        return;
    }
    FLastPressButton = Event->button();
    FLastPressTime = Event->timestamp();
    FLastPressPos = Event->position();
    FLastPressWasDouble = true;
    SendPress(Event, true);
}

void TControlWidget::mouseMoveEvent(QMouseEvent* Event) {
    if (!Control || Control->DropsMouseMove()) return;
    SendMouse(Event, WM_MOUSEMOVE, {});
}

void TControlWidget::mouseReleaseEvent(QMouseEvent* Event) {
    FSwallowDblClick = false;
    SendMouse(Event, ReleaseMessageOf(Event->button()), {});
}

void TControlWidget::keyPressEvent(QKeyEvent* Event) {
    if (!Control) return;
    const bool keypad = Event->modifiers() & Qt::KeypadModifier;
    TShiftState shift = ShiftStateOf(Event->modifiers(), Qt::NoButton);
    if (Event->key() == Qt::Key_Backtab) shift.Include(ssShift);
    TMessage cn;
    cn.Msg = CN_KEYDOWN;
    cn.CharCode = VirtualKeyOf(Event->key(), keypad);
    cn.WParam = cn.CharCode;
    cn.Shift = shift;
    Control->QtEvent(cn);
    if (cn.Result != 0 || !Control) return;
    if (cn.CharCode != 0) {
        TMessage down;
        down.Msg = WM_KEYDOWN;
        down.CharCode = cn.CharCode;
        down.WParam = cn.CharCode;
        down.Shift = shift;
        Control->QtEvent(down);
    }
    const QString text = Event->text();
    for (QChar c : text) {
        if (!Control) return;
        TMessage ch;
        ch.Msg = WM_CHAR;
        ch.CharCode = c.unicode();
        ch.WParam = ch.CharCode;
        ch.Shift = shift;
        Control->QtEvent(ch);
    }
}

void TControlWidget::keyReleaseEvent(QKeyEvent* Event) {
    if (!Control || Event->isAutoRepeat()) return;
    const bool keypad = Event->modifiers() & Qt::KeypadModifier;
    TShiftState shift = ShiftStateOf(Event->modifiers(), Qt::NoButton);
    if (Event->key() == Qt::Key_Backtab) shift.Include(ssShift);
    TMessage cn;
    cn.Msg = CN_KEYUP;
    cn.CharCode = VirtualKeyOf(Event->key(), keypad);
    cn.WParam = cn.CharCode;
    cn.Shift = shift;
    Control->QtEvent(cn);
    if (cn.Result != 0 || cn.CharCode == 0 || !Control) return;
    TMessage up;
    up.Msg = WM_KEYUP;
    up.CharCode = cn.CharCode;
    up.WParam = cn.CharCode;
    up.Shift = shift;
    Control->QtEvent(up);
}

void TControlWidget::focusInEvent(QFocusEvent* Event) {
    QWidget::focusInEvent(Event);
    if (!Control) return;
    TMessage message;
    message.Msg = WM_SETFOCUS;
    Control->QtEvent(message);
}

void TControlWidget::focusOutEvent(QFocusEvent* Event) {
    QWidget::focusOutEvent(Event);
    if (!Control) return;
    TMessage message;
    message.Msg = WM_KILLFOCUS;
    Control->QtEvent(message);
}

bool TControlWidget::SendDrag(QDropEvent* Event, TDragMessage Kind, TDragState) {
    if (!Control) return false;
    TMessage message;
    message.Msg = CM_DRAG;
    message.DragMessage = Kind;
    message.DragSource = Event ? Event->source() : nullptr;
    if (Event) {
        message.Pos = Control->ClientFromWidget(Event->position().x(), Event->position().y());
        FLastDragPos = message.Pos;
    } else {
        message.Pos = FLastDragPos;
    }
    Control->SetDragData(Event ? Event->mimeData() : nullptr);
    Control->QtEvent(message);
    if (Control) Control->SetDragData(nullptr);
    return message.Accepted;
}

void TControlWidget::dragEnterEvent(QDragEnterEvent* Event) {
    if (SendDrag(Event, dmDragEnter, dsDragEnter))
        Event->acceptProposedAction();
    else
        Event->ignore();
}

void TControlWidget::dragMoveEvent(QDragMoveEvent* Event) {
    if (SendDrag(Event, dmDragMove, dsDragMove))
        Event->acceptProposedAction();
    else
        Event->ignore();
}

void TControlWidget::dragLeaveEvent(QDragLeaveEvent*) {
    SendDrag(nullptr, dmDragLeave, dsDragLeave);
}

void TControlWidget::dropEvent(QDropEvent* Event) {
    SendDrag(Event, dmDragDrop, dsDragMove);
    Event->acceptProposedAction();
}

} // namespace vl
