// Progress reporting: the info box, its label and bar, and the module routines that reach it.
#include "platform/services/Infobox.h"

#include <QObject>
#include <QProgressDialog>

#include <algorithm>

namespace vl {

TInfoLabel::~TInfoLabel() = default;
TProgressBar::~TProgressBar() = default;

void TProgressBar::SetMax(std::int32_t Value) {
    FMax = std::max(Value, FMin);
    FPosition = std::clamp(FPosition, FMin, FMax);
    Changed();
}

void TProgressBar::SetMin(std::int32_t Value) {
    FMin = std::min(Value, FMax);
    FPosition = std::clamp(FPosition, FMin, FMax);
    Changed();
}

void TProgressBar::SetPosition(std::int32_t Value) {
    FPosition = std::clamp(Value, FMin, FMax);
    Changed();
}

void TProgressBar::StepIt() {
    // In 64 bits, so that a step near the ends of the integer range does not overflow.
    std::int64_t pos = static_cast<std::int64_t>(FPosition) + FStep;
    const std::int64_t range = static_cast<std::int64_t>(FMax) - FMin;
    if (pos > FMax) pos = range > 0 ? FMin + (pos - FMin) % range : FMin;
    if (pos < FMin) pos = FMin;
    FPosition = static_cast<std::int32_t>(pos);
    Changed();
}

TInfobox::TInfobox(TInfoLabel* ALabel, TProgressBar* AProgbar) : FLabel(ALabel), FProgbar(AProgbar) {}

TInfobox::~TInfobox() {
    if (Infobox == this) Infobox = nullptr;
    Userbreak = false;
}

void TInfobox::ShowText(const QString& Text) {
    if (!FLabel) return;
    FLabel->SetCaption(Text);
    FLabel->Update();
}

void TInfobox::BoxMessage(std::int32_t Msg, const TInfoParam& Param) {
    const auto* number = std::get_if<std::int32_t>(&Param);
    const auto* text = std::get_if<QString>(&Param);
    switch (Msg) {
    case 0:
        // The bar is reset together with the label: a box with a bar alone keeps its position.
        if (FLabel) {
            ShowText(QString());
            if (FProgbar) FProgbar->SetPosition(0);
        }
        break;
    case 10:
        if (text) ShowText(*text);
        break;
    case 100:
        ShowText(QStringLiteral("Loading..."));
        if (FProgbar && number) FProgbar->SetMax(*number);
        break;
    case 200: ShowText(QStringLiteral("Saving...")); break;
    case 210:
        if (FProgbar && number) FProgbar->SetMax(*number);
        break;
    case 220:
        if (text) ShowText(QStringLiteral("Saving ") + *text);
        break;
    case 300:
        ShowText(QStringLiteral("Printing..."));
        if (FProgbar && number) FProgbar->SetMax(*number);
        break;
    default: break;
    }
}

void TInfobox::Count(std::int32_t Value) {
    if (!FProgbar) return;
    if (Value > 0)
        FProgbar->SetPosition(Value);
    else
        FProgbar->StepIt();
}

// --- The library's progress dialog ---------------------------------------------------------------

class TInfoDialog::TDialogLabel : public TInfoLabel {
public:
    explicit TDialogLabel(QProgressDialog& Dialog) : FDialog(Dialog) {}
    void SetCaption(const QString& Value) override {
        TInfoLabel::SetCaption(Value);
        FDialog.setLabelText(Value);
    }
    // Paints the dialog at once: the operation's loop lets no paint event through.
    void Update() override { FDialog.repaint(); }

private:
    QProgressDialog& FDialog;
};

class TInfoDialog::TDialogBar : public TProgressBar {
public:
    explicit TDialogBar(QProgressDialog& Dialog) : FDialog(Dialog) { Changed(); }

protected:
    void Changed() override {
        FDialog.setRange(Min(), Max());
        FDialog.setValue(Position());
    }

private:
    QProgressDialog& FDialog;
};

TInfoDialog::TInfoDialog(const QString& Title) : TInfobox(nullptr, nullptr) {
    FDialog = std::make_unique<QProgressDialog>();
    FDialog->setWindowModality(Qt::NonModal);
    // The dialog stays as it is until the box closes: no reset or closing when the bar is full, and it
    // shows at once rather than after Qt's usual delay.
    FDialog->setAutoReset(false);
    FDialog->setAutoClose(false);
    FDialog->setMinimumDuration(0);
    FDialog->setCancelButtonText(QStringLiteral("Cancel"));
    if (!Title.isEmpty()) FDialog->setWindowTitle(Title);
    QObject::connect(FDialog.get(), &QProgressDialog::canceled, [] { Userbreak = true; });
    FDialogLabel = std::make_unique<TDialogLabel>(*FDialog);
    FDialogBar = std::make_unique<TDialogBar>(*FDialog);
    FLabel = FDialogLabel.get();
    FProgbar = FDialogBar.get();
    FDialog->show();
}

TInfoDialog::~TInfoDialog() {
    // The dialog goes first: its `canceled` signal must not fire into a half-destroyed box.
    FDialog->disconnect();
    FDialog->hide();
    FLabel = nullptr;
    FProgbar = nullptr;
    FDialog.reset();
}

// --- Module routines ---------------------------------------------------------------------------

void InfoOpen(TInfoLabel* ALabel, TProgressBar* AProgbar) {
    if (Infobox) return;
    Infobox = InfoboxFactory ? InfoboxFactory(ALabel, AProgbar) : new TInfobox(ALabel, AProgbar);
}

void InfoOpenDialog(const QString& Title) {
    if (Infobox) return;
    Infobox = new TInfoDialog(Title);
}

void InfoCount(std::int32_t Value) {
    if (Infobox) Infobox->Count(Value);
}

void InfoMessage(std::int32_t Msg, const TInfoParam& Param) {
    if (Infobox) Infobox->BoxMessage(Msg, Param);
}

void InfoClose() {
    if (!Infobox) return;
    Infobox->BoxMessage(0, noParam);
    delete Infobox; // the destructor clears `Infobox` and `Userbreak`
    Infobox = nullptr;
}

} // namespace vl
