// The Qt defaults of the window-system services, and the registries that hold the services in force.

#include "platform/services/Services.h"

#include "platform/graphics/Cursors.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <vector>

namespace vl {

namespace {

// Holds the service in force: the installed one, or the default.
template <class S>
struct TSlot {
    S* Installed = nullptr;
    S* Swap(S* Service) {
        S* previous = Installed;
        Installed = Service;
        return previous;
    }
};

double PrimaryRatio() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->devicePixelRatio() : 1.0;
}

// ------------------------------------------------------------------ message dialogs

class TQtMessageService final : public TMessageService {
public:
    TModalResult MessageDlg(const QString& Msg, TMsgDlgType DlgType, TMsgDlgButtons Buttons, int) override {
        QMessageBox box(QApplication::activeWindow());
        box.setText(Msg);
        switch (DlgType) {
        case mtWarning:
            box.setIcon(QMessageBox::Warning);
            box.setWindowTitle(QStringLiteral("Warning"));
            break;
        case mtError:
            box.setIcon(QMessageBox::Critical);
            box.setWindowTitle(QStringLiteral("Error"));
            break;
        case mtInformation:
            box.setIcon(QMessageBox::Information);
            box.setWindowTitle(QStringLiteral("Information"));
            break;
        case mtConfirmation:
            box.setIcon(QMessageBox::Question);
            box.setWindowTitle(QStringLiteral("Confirm"));
            break;
        case mtCustom: box.setWindowTitle(QApplication::applicationName()); break;
        }
        struct Pair {
            TMsgDlgBtn Button;
            QMessageBox::StandardButton Qt;
        };
        static const Pair pairs[] = {
            {mbYes, QMessageBox::Yes},         {mbNo, QMessageBox::No},
            {mbOK, QMessageBox::Ok},           {mbCancel, QMessageBox::Cancel},
            {mbAbort, QMessageBox::Abort},     {mbRetry, QMessageBox::Retry},
            {mbIgnore, QMessageBox::Ignore},   {mbAll, QMessageBox::YesToAll},
            {mbNoToAll, QMessageBox::NoToAll}, {mbYesToAll, QMessageBox::YesToAll},
            {mbHelp, QMessageBox::Help},       {mbClose, QMessageBox::Close},
        };
        std::vector<std::pair<QAbstractButton*, TMsgDlgBtn>> made;
        for (const Pair& pair : pairs) {
            if (!Buttons.Contains(pair.Button)) continue;
            if (pair.Button == mbAll) {
                made.emplace_back(box.addButton(QStringLiteral("&All"), QMessageBox::AcceptRole), mbAll);
            } else {
                made.emplace_back(box.addButton(pair.Qt), pair.Button);
            }
        }
        if (made.empty()) made.emplace_back(box.addButton(QMessageBox::Ok), mbOK);
        box.exec();
        for (const auto& [button, which] : made) {
            if (box.clickedButton() == button) return ModalResultOf(which);
        }
        return mrCancel;
    }

    void MessageBeep(std::uint32_t) override { QApplication::beep(); }
};

TQtMessageService& DefaultMessageService() {
    static TQtMessageService service;
    return service;
}
TSlot<TMessageService> MessageSlot;

// ------------------------------------------------------------------ file dialogs

class TQtFileDialogService final : public TFileDialogService {
public:
    bool Execute(TOpenDialog& Dialog) override {
        QFileDialog dialog(QApplication::activeWindow(), Dialog.Title, Dialog.InitialDir);
        const QStringList filters = QtNameFilters(Dialog.Filter);
        if (!filters.isEmpty()) {
            dialog.setNameFilters(filters);
            const int index = std::clamp(Dialog.FilterIndex, 1, int(filters.size())) - 1;
            dialog.selectNameFilter(filters[index]);
        }
        if (!Dialog.FileName.isEmpty()) dialog.selectFile(Dialog.FileName);
        if (Dialog.IsSaveDialog()) {
            dialog.setAcceptMode(QFileDialog::AcceptSave);
            dialog.setFileMode(QFileDialog::AnyFile);
            if (!Dialog.Options.Contains(ofOverwritePrompt))
                dialog.setOption(QFileDialog::DontConfirmOverwrite);
        } else {
            dialog.setAcceptMode(QFileDialog::AcceptOpen);
            dialog.setFileMode(Dialog.Options.Contains(ofFileMustExist) ? QFileDialog::ExistingFile
                                                                        : QFileDialog::AnyFile);
        }
        if (!Dialog.DefaultExt.isEmpty()) dialog.setDefaultSuffix(Dialog.DefaultExt);
        if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
        Dialog.FileName = ApplyDefaultExt(dialog.selectedFiles().first(), Dialog.DefaultExt);
        const int chosen = int(filters.indexOf(dialog.selectedNameFilter()));
        if (chosen >= 0) Dialog.FilterIndex = chosen + 1;
        return true;
    }
};

TQtFileDialogService& DefaultFileDialogService() {
    static TQtFileDialogService service;
    return service;
}
TSlot<TFileDialogService> FileDialogSlot;

// ------------------------------------------------------------------ clock

class TQtClockService final : public TClockService {
public:
    TQtClockService() { FTimer.start(); }
    std::uint32_t GetTickCount() override { return static_cast<std::uint32_t>(FTimer.elapsed()); }

private:
    QElapsedTimer FTimer;
};

TQtClockService& DefaultClockService() {
    static TQtClockService service;
    return service;
}
TSlot<TClockService> ClockSlot;

// ------------------------------------------------------------------ event pump

class TQtEventPump final : public TEventPump {
public:
    void ProcessMessages() override { QCoreApplication::processEvents(QEventLoop::AllEvents); }
};

TQtEventPump& DefaultEventPump() {
    static TQtEventPump service;
    return service;
}
TSlot<TEventPump> PumpSlot;

// ------------------------------------------------------------------ cursor

class TQtCursorService final : public TCursorService {
public:
    TPoint GetCursorPos() override {
        const QPoint pos = QCursor::pos();
        const double ratio = PrimaryRatio();
        return TPoint{static_cast<std::int32_t>(std::floor(pos.x() * ratio)),
                      static_cast<std::int32_t>(std::floor(pos.y() * ratio))};
    }

    void SetCursorPos(TPoint ScreenPos) override {
        const double ratio = PrimaryRatio();
        QCursor::setPos(QPoint(static_cast<int>(ScreenPos.x / ratio), static_cast<int>(ScreenPos.y / ratio)));
    }

    void ClipCursor(const TRect* ScreenRect) override {
        TCursorService::ClipCursor(ScreenRect);
        if (ScreenRect) {
            QWidget* target = QWidget::mouseGrabber();
            if (!target) target = MouseTarget();
            if (target && target != FGrabbed) {
                if (FGrabbed) FGrabbed->releaseMouse();
                target->grabMouse();
                FGrabbed = target;
            }
            const TPoint pos = GetCursorPos();
            const TPoint clamped = Clamp(pos);
            if (!(clamped == pos)) SetCursorPos(clamped);
        } else if (FGrabbed) {
            FGrabbed->releaseMouse();
            FGrabbed = nullptr;
        }
    }

private:
    QPointer<QWidget> FGrabbed;
};

TQtCursorService& DefaultCursorService() {
    static TQtCursorService service;
    return service;
}
TSlot<TCursorService> CursorSlot;

// ------------------------------------------------------------------ errors

class TQtErrorService final : public TErrorService {
public:
    void HandleException(const std::exception& E) override {
        MessageDlg(ExceptionMessage(E), mtError, TMsgDlgButtons(mbOK), 0);
    }
};

TQtErrorService& DefaultErrorService() {
    static TQtErrorService service;
    return service;
}
TSlot<TErrorService> ErrorSlot;

} // namespace

// ------------------------------------------------------------------ message dialogs

TModalResult ModalResultOf(TMsgDlgBtn Button) {
    switch (Button) {
    case mbYes: return mrYes;
    case mbNo: return mrNo;
    case mbOK: return mrOk;
    case mbCancel: return mrCancel;
    case mbAbort: return mrAbort;
    case mbRetry: return mrRetry;
    case mbIgnore: return mrIgnore;
    case mbAll: return mrAll;
    case mbNoToAll: return mrNoToAll;
    case mbYesToAll: return mrYesToAll;
    case mbHelp: return mrHelp;
    case mbClose: return mrClose;
    }
    return mrNone;
}

TMessageService::~TMessageService() = default;

TMessageService& TMessageService::Current() {
    return MessageSlot.Installed ? *MessageSlot.Installed : DefaultMessageService();
}

TMessageService* TMessageService::Install(TMessageService* Service) {
    return MessageSlot.Swap(Service);
}

TModalResult MessageDlg(const QString& Msg, TMsgDlgType DlgType, TMsgDlgButtons Buttons, int HelpCtx) {
    return TMessageService::Current().MessageDlg(Msg, DlgType, Buttons, HelpCtx);
}

void MessageBeep(std::uint32_t Type) {
    TMessageService::Current().MessageBeep(Type);
}

// ------------------------------------------------------------------ file dialogs

TOpenDialog::TOpenDialog(TComponent* AOwner) : TComponent(AOwner) {}

bool TOpenDialog::Execute() {
    return TFileDialogService::Current().Execute(*this);
}

TSaveDialog::TSaveDialog(TComponent* AOwner) : TOpenDialog(AOwner) {}

QStringList QtNameFilters(const QString& Filter) {
    QStringList result;
    const QStringList parts = Filter.split(QLatin1Char('|'));
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts[i].trimmed();
        if (description.contains(QLatin1Char('('))) {
            result << description;
        } else {
            QStringList patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
            for (QString& pattern : patterns) pattern = pattern.trimmed();
            result << QStringLiteral("%1 (%2)").arg(description, patterns.join(QLatin1Char(' ')));
        }
    }
    return result;
}

QString ApplyDefaultExt(const QString& FileName, const QString& DefaultExt) {
    if (DefaultExt.isEmpty() || FileName.isEmpty()) return FileName;
    if (!QFileInfo(FileName).suffix().isEmpty()) return FileName;
    QString ext = DefaultExt;
    if (ext.startsWith(QLatin1Char('.'))) ext.remove(0, 1);
    return FileName + QLatin1Char('.') + ext;
}

TFileDialogService::~TFileDialogService() = default;

TFileDialogService& TFileDialogService::Current() {
    return FileDialogSlot.Installed ? *FileDialogSlot.Installed : DefaultFileDialogService();
}

TFileDialogService* TFileDialogService::Install(TFileDialogService* Service) {
    return FileDialogSlot.Swap(Service);
}

// ------------------------------------------------------------------ clock

TClockService::~TClockService() = default;

TClockService& TClockService::Current() {
    return ClockSlot.Installed ? *ClockSlot.Installed : DefaultClockService();
}

TClockService* TClockService::Install(TClockService* Service) {
    return ClockSlot.Swap(Service);
}

std::uint32_t GetTickCount() {
    return TClockService::Current().GetTickCount();
}

// ------------------------------------------------------------------ event pump

TEventPump::~TEventPump() = default;

TEventPump& TEventPump::Current() {
    return PumpSlot.Installed ? *PumpSlot.Installed : DefaultEventPump();
}

TEventPump* TEventPump::Install(TEventPump* Service) {
    return PumpSlot.Swap(Service);
}

// ------------------------------------------------------------------ cursor

TCursorService::~TCursorService() = default;

namespace {
QPointer<QWidget>& MouseTargetSlot() {
    static QPointer<QWidget> target;
    return target;
}
} // namespace

void TCursorService::NoteMouseTarget(QWidget* Widget) {
    MouseTargetSlot() = Widget;
}

QWidget* TCursorService::MouseTarget() {
    return MouseTargetSlot().data();
}

void TCursorService::ClipCursor(const TRect* ScreenRect) {
    if (ScreenRect) {
        TRect r = *ScreenRect;
        // A rectangle given the wrong way round confines to the same area.
        if (r.Left > r.Right) std::swap(r.Left, r.Right);
        if (r.Top > r.Bottom) std::swap(r.Top, r.Bottom);
        FClip = r;
    } else {
        FClip.reset();
    }
}

TPoint TCursorService::Clamp(TPoint ScreenPos) const {
    if (!FClip) return ScreenPos;
    const TRect& r = *FClip;
    // Right and bottom are outside the rectangle; an empty one pins the cursor to its corner.
    ScreenPos.x = std::clamp(ScreenPos.x, r.Left, std::max(r.Left, r.Right - 1));
    ScreenPos.y = std::clamp(ScreenPos.y, r.Top, std::max(r.Top, r.Bottom - 1));
    return ScreenPos;
}

TCursorService& TCursorService::Current() {
    return CursorSlot.Installed ? *CursorSlot.Installed : DefaultCursorService();
}

TCursorService* TCursorService::Install(TCursorService* Service) {
    return CursorSlot.Swap(Service);
}

bool GetCursorPos(TPoint* Pos) {
    if (!Pos) return false;
    *Pos = TCursorService::Current().GetCursorPos();
    return true;
}

bool SetCursorPos(int X, int Y) {
    TCursorService::Current().SetCursorPos(TPoint{X, Y});
    return true;
}

bool ClipCursor(const TRect* ScreenRect) {
    TCursorService::Current().ClipCursor(ScreenRect);
    return true;
}

// ------------------------------------------------------------------ errors and the application

TErrorService::~TErrorService() = default;

TErrorService& TErrorService::Current() {
    return ErrorSlot.Installed ? *ErrorSlot.Installed : DefaultErrorService();
}

TErrorService* TErrorService::Install(TErrorService* Service) {
    return ErrorSlot.Swap(Service);
}

QString ExceptionMessage(const std::exception& E) {
    if (const auto* e = dynamic_cast<const Exception*>(&E)) return e->Message();
    return QString::fromUtf8(E.what());
}

TApplication Application;

void TApplication::ProcessMessages() {
    TEventPump::Current().ProcessMessages();
}

void TApplication::HandleException(const std::exception& E) {
    if (dynamic_cast<const EAbort*>(&E)) return;
    TErrorService::Current().HandleException(E);
}

// ------------------------------------------------------------------ screen

TScreen Screen;

int TScreen::PixelsPerInch() const {
    if (FPixelsPerInchOverride > 0) return FPixelsPerInchOverride;
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) return 96;
    return static_cast<int>(std::lround(screen->logicalDotsPerInch() * screen->devicePixelRatio()));
}

void TScreen::SetCursor(int Value) {
    if (Value == FCursor) return;
    FCursor = Value;
    if (!qApp) return;
    if (Value == crDefault) {
        if (FOverrideActive) QGuiApplication::restoreOverrideCursor();
        FOverrideActive = false;
    } else if (FOverrideActive) {
        QGuiApplication::changeOverrideCursor(Cursors(Value));
    } else {
        QGuiApplication::setOverrideCursor(Cursors(Value));
        FOverrideActive = true;
    }
}

QCursor TScreen::Cursors(int Index) const {
    auto it = FCursors.find(Index);
    if (it != FCursors.end()) return it->second;
    Qt::CursorShape shape = Qt::ArrowCursor;
    BuiltinCursorShape(Index, shape);
    return QCursor(shape);
}

void TScreen::SetCursors(int Index, HCURSOR Cursor) {
    if (Cursor)
        FCursors[Index] = *Cursor;
    else
        FCursors.erase(Index);
}

bool TScreen::HasCursor(int Index) const {
    Qt::CursorShape shape;
    return FCursors.count(Index) != 0 || BuiltinCursorShape(Index, shape);
}

// ------------------------------------------------------------------ clipboard formats

namespace {

struct TRegisteredFormat {
    QString Name;
    QString Key; // the name in lower case
};

std::vector<TRegisteredFormat>& RegisteredFormats() {
    static std::vector<TRegisteredFormat> formats;
    return formats;
}

constexpr std::uint32_t FirstPrivateFormat = 0xC000;

} // namespace

std::uint32_t RegisterClipboardFormat(const QString& Name) {
    if (Name.isEmpty()) return 0;
    const QString key = Name.toLower();
    auto& formats = RegisteredFormats();
    for (std::size_t i = 0; i < formats.size(); ++i) {
        if (formats[i].Key == key) return FirstPrivateFormat + static_cast<std::uint32_t>(i);
    }
    formats.push_back({Name, key});
    return FirstPrivateFormat + static_cast<std::uint32_t>(formats.size() - 1);
}

QString GetClipboardFormatName(std::uint32_t Format) {
    const auto& formats = RegisteredFormats();
    if (Format < FirstPrivateFormat || Format - FirstPrivateFormat >= formats.size()) return {};
    return formats[Format - FirstPrivateFormat].Name;
}

QString ClipboardFormatMimeType(std::uint32_t Format) {
    const auto& formats = RegisteredFormats();
    if (Format < FirstPrivateFormat || Format - FirstPrivateFormat >= formats.size()) return {};
    QString mime = QStringLiteral("application/x-vellorum-");
    for (QChar c : formats[Format - FirstPrivateFormat].Key) {
        const char16_t u = c.unicode();
        const bool plain =
            (u >= u'a' && u <= u'z') || (u >= u'0' && u <= u'9') || u == u'.' || u == u'-' || u == u'_';
        if (plain)
            mime += c;
        else
            mime += QStringLiteral("+%1").arg(unsigned(u), 4, 16, QLatin1Char('0')).toUpper();
    }
    return mime;
}

} // namespace vl
