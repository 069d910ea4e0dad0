// Test doubles of the window-system services: they answer without a window and record what they were
// asked. A test installs them with `TServiceScope` (see "platform/Services.h").
#pragma once

#include "platform/services/Services.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace vl {

// Answers message dialogs from a queue and records each question and each beep.
class TMessageServiceDouble : public TMessageService {
public:
    struct TQuestion {
        QString Msg;
        TMsgDlgType DlgType = mtCustom;
        TMsgDlgButtons Buttons;
        int HelpCtx = 0;
    };

    // Answers given in turn; when none is queued the dialog answers `DefaultAnswer`, and with
    // `mrNone` there the modal result of the first button offered (Yes, No, OK, Cancel, ... order).
    std::deque<TModalResult> Answers;
    TModalResult DefaultAnswer = mrNone;
    std::vector<TQuestion> Questions;
    std::vector<std::uint32_t> Beeps;

    TModalResult MessageDlg(const QString& Msg, TMsgDlgType DlgType, TMsgDlgButtons Buttons,
                            int HelpCtx) override;
    void MessageBeep(std::uint32_t Type) override { Beeps.push_back(Type); }
};

// Answers file dialogs from a queue: a file name chooses it, an empty optional cancels. With nothing
// queued the dialog is cancelled.
class TFileDialogServiceDouble : public TFileDialogService {
public:
    struct TRequest {
        bool Save = false;
        QString FileName;
        QString Filter;
        QString DefaultExt;
        QString Title;
        TOpenOptions Options;
    };

    std::deque<std::optional<QString>> Answers;
    std::vector<TRequest> Requests;

    bool Execute(TOpenDialog& Dialog) override;
};

// A clock that moves only when told: `Advance` or `Set`, and by `AutoStep` after each reading (so that
// a loop that waits on the tick count comes to an end).
class TManualClock : public TClockService {
public:
    std::uint32_t Now = 0;
    std::uint32_t AutoStep = 0;
    int Readings = 0;

    void Advance(std::uint32_t Milliseconds) { Now += Milliseconds; }
    void Set(std::uint32_t Value) { Now = Value; }
    std::uint32_t GetTickCount() override {
        ++Readings;
        const std::uint32_t value = Now;
        Now += AutoStep;
        return value;
    }
};

// Counts the pumps and runs `OnProcess` at each; with `DeliverEvents` Qt's pending events are
// delivered too.
class TEventPumpDouble : public TEventPump {
public:
    int Calls = 0;
    bool DeliverEvents = false;
    std::function<void()> OnProcess;

    void ProcessMessages() override;
};

// A cursor whose position the test sets; confinements are kept (so the controls clamp to them) and
// recorded, without grabbing the mouse.
class TCursorServiceDouble : public TCursorService {
public:
    TPoint Pos;
    std::vector<std::optional<TRect>> ClipCalls;

    TPoint GetCursorPos() override { return Clamp(Pos); }
    void SetCursorPos(TPoint ScreenPos) override { Pos = ScreenPos; }
    void ClipCursor(const TRect* ScreenRect) override {
        TCursorService::ClipCursor(ScreenRect);
        ClipCalls.push_back(ScreenRect ? std::optional<TRect>(*ScreenRect) : std::nullopt);
    }
};

// Records the messages of the exceptions that reach the boundary to Qt.
class TErrorServiceDouble : public TErrorService {
public:
    QStringList Messages;
    void HandleException(const std::exception& E) override { Messages << ExceptionMessage(E); }
};

} // namespace vl
