// The framework's button classes over Qt buttons, and the action a control can be linked to.
//
// A button control wraps one Qt button (`QAbstractButton`): one it makes itself and owns, or a button
// of the host's own user interface that it adopts and only borrows. A click of the Qt button runs the
// control's `Click`, which fires `OnClick` (with the control as sender) or, without a handler, the
// linked action. Four classes exist, as the framework has them: `TButton`, `TBitBtn` (push buttons),
// `TSpeedButton`, `TToolButton` (tool buttons). Each keeps its `OnClick` where every control does, in
// `TControl`, so one assignment serves them all.
#pragma once

#include "platform/window/Controls.h"

#include <QAbstractButton>
#include <QMetaObject>
#include <QPointer>
#include <QString>

namespace vl {

// An action: a command that controls may be linked to. `Execute` fires `OnExecute`.
class TBasicAction : public TComponent {
public:
    explicit TBasicAction(TComponent* AOwner) : TComponent(AOwner) {}
    // True when `OnExecute` is assigned and ran.
    virtual bool Execute();
    TNotifyEvent OnExecute;
};

class TCustomButtonControl : public TControl {
public:
    ~TCustomButtonControl() override;

    // The Qt button behind the control.
    QAbstractButton* ButtonWidget() const { return FWidget.data(); }
    // Wraps a button of the host instead of the control's own, which is dropped. The host keeps
    // ownership of `Widget`; the control forgets it when Qt deletes it.
    void Adopt(QAbstractButton* Widget);

    QString Caption() const;
    void SetCaption(const QString& Value);

    // The linked action, borrowed; cleared when the action goes.
    TBasicAction* Action() const { return FAction; }
    void SetAction(TBasicAction* Value);

    // What a click does: `OnClick` if assigned, else the action's `Execute`.
    void Click() override;

    void SetParent(TWinControl* AParent) override;
    void SetVisible(bool Value) override;
    void SetEnabled(bool Value) override;
    void Notification(TComponent* AComponent, TOperation Operation) override;

protected:
    // `Widget` becomes the control's own button.
    TCustomButtonControl(TComponent* AOwner, QAbstractButton* Widget);
    void BoundsChanged() override;

private:
    void Connect();
    void ApplyGeometry();

    QPointer<QAbstractButton> FWidget;
    bool FOwnsWidget = false;
    QMetaObject::Connection FClicked;
    TBasicAction* FAction = nullptr;
};

// A push button.
class TButton : public TCustomButtonControl {
public:
    explicit TButton(TComponent* AOwner);
};

// A push button with a glyph.
class TBitBtn : public TCustomButtonControl {
public:
    explicit TBitBtn(TComponent* AOwner);
};

// A flat tool button, as on a tool palette.
class TSpeedButton : public TCustomButtonControl {
public:
    explicit TSpeedButton(TComponent* AOwner);
};

// A button of a tool bar.
class TToolButton : public TCustomButtonControl {
public:
    explicit TToolButton(TComponent* AOwner);
};

} // namespace vl
