// Test doubles of the window-system services.

#include "platform/services/ServiceDoubles.h"

#include <QCoreApplication>

namespace vl {

TModalResult TMessageServiceDouble::MessageDlg(const QString& Msg, TMsgDlgType DlgType,
                                               TMsgDlgButtons Buttons, int HelpCtx) {
    Questions.push_back({Msg, DlgType, Buttons, HelpCtx});
    if (!Answers.empty()) {
        const TModalResult answer = Answers.front();
        Answers.pop_front();
        return answer;
    }
    if (DefaultAnswer != mrNone) return DefaultAnswer;
    for (int b = static_cast<int>(mbYes); b <= static_cast<int>(mbClose); ++b) {
        const auto button = static_cast<TMsgDlgBtn>(b);
        if (Buttons.Contains(button)) return ModalResultOf(button);
    }
    return mrOk;
}

bool TFileDialogServiceDouble::Execute(TOpenDialog& Dialog) {
    Requests.push_back({Dialog.IsSaveDialog(), Dialog.FileName, Dialog.Filter, Dialog.DefaultExt,
                        Dialog.Title, Dialog.Options});
    if (Answers.empty()) return false;
    const std::optional<QString> answer = Answers.front();
    Answers.pop_front();
    if (!answer) return false;
    Dialog.FileName = ApplyDefaultExt(*answer, Dialog.DefaultExt);
    return true;
}

void TEventPumpDouble::ProcessMessages() {
    ++Calls;
    if (OnProcess) OnProcess();
    if (DeliverEvents) QCoreApplication::processEvents();
}

} // namespace vl
