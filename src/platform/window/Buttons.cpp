// The button controls over Qt buttons.

#include "platform/window/Buttons.h"

#include "platform/services/Services.h"

#include <QAbstractButton>
#include <QPushButton>
#include <QToolButton>

#include <cmath>

namespace vl {

bool TBasicAction::Execute() {
    if (!OnExecute) return false;
    OnExecute(this);
    return true;
}

TCustomButtonControl::TCustomButtonControl(TComponent* AOwner, QAbstractButton* Widget)
    : TControl(AOwner), FWidget(Widget), FOwnsWidget(true) {
    Connect();
}

TCustomButtonControl::~TCustomButtonControl() {
    QObject::disconnect(FClicked);
    if (FOwnsWidget && FWidget) delete FWidget.data();
}

void TCustomButtonControl::Connect() {
    if (!FWidget) return;
    // A click is an entry from Qt: nothing may unwind through it.
    FClicked = QObject::connect(FWidget.data(), &QAbstractButton::clicked, FWidget.data(),
                                [this] { GuardedEntry([this] { Click(); }); });
}

void TCustomButtonControl::Adopt(QAbstractButton* Widget) {
    QObject::disconnect(FClicked);
    if (FOwnsWidget && FWidget) delete FWidget.data();
    FWidget = Widget;
    FOwnsWidget = false;
    Connect();
}

QString TCustomButtonControl::Caption() const {
    return FWidget ? FWidget->text() : QString();
}

void TCustomButtonControl::SetCaption(const QString& Value) {
    if (FWidget) FWidget->setText(Value);
}

void TCustomButtonControl::SetAction(TBasicAction* Value) {
    if (FAction == Value) return;
    if (FAction) FAction->RemoveFreeNotification(this);
    FAction = Value;
    if (FAction) FAction->FreeNotification(this);
}

void TCustomButtonControl::Click() {
    if (OnClick)
        OnClick(this);
    else if (FAction)
        FAction->Execute();
}

void TCustomButtonControl::Notification(TComponent* AComponent, TOperation Operation) {
    TControl::Notification(AComponent, Operation);
    if (Operation == opRemove && AComponent == FAction) FAction = nullptr;
}

void TCustomButtonControl::SetParent(TWinControl* AParent) {
    TControl::SetParent(AParent);
    if (!FWidget || !FOwnsWidget) return;
    FWidget->setParent(AParent ? AParent->Widget() : nullptr);
    ApplyGeometry();
    if (AParent && Visible()) FWidget->show();
}

void TCustomButtonControl::SetVisible(bool Value) {
    TControl::SetVisible(Value);
    if (FWidget && FOwnsWidget && Parent()) FWidget->setVisible(Value);
}

void TCustomButtonControl::SetEnabled(bool Value) {
    TControl::SetEnabled(Value);
    if (FWidget) FWidget->setEnabled(Value);
}

void TCustomButtonControl::BoundsChanged() {
    ApplyGeometry();
}

void TCustomButtonControl::ApplyGeometry() {
    if (!FWidget || !FOwnsWidget) return;
    // Bounds are device pixels of the parent's client area; the widget is placed in Qt's widget pixels.
    const double r = Parent() ? Parent()->DevicePixelRatio() : 1.0;
    const int offset = Parent() ? Parent()->BorderWidth() : 0;
    FWidget->setGeometry(static_cast<int>(std::lround((Left() + offset) / r)),
                         static_cast<int>(std::lround((Top() + offset) / r)),
                         static_cast<int>(std::lround(Width() / r)),
                         static_cast<int>(std::lround(Height() / r)));
}

TButton::TButton(TComponent* AOwner) : TCustomButtonControl(AOwner, new QPushButton) {}

TBitBtn::TBitBtn(TComponent* AOwner) : TCustomButtonControl(AOwner, new QPushButton) {}

TSpeedButton::TSpeedButton(TComponent* AOwner)
    : TCustomButtonControl(AOwner, [] {
          auto* b = new QToolButton;
          b->setAutoRaise(true);
          return b;
      }()) {}

TToolButton::TToolButton(TComponent* AOwner) : TCustomButtonControl(AOwner, new QToolButton) {}

} // namespace vl
