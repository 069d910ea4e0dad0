// The services of the window system that the library calls outside its controls: message dialogs and
// the beep, file dialogs, the tick count, the event pump, the cursor position and its confinement, the
// error service at the boundary to Qt, the screen, and the registry of private clipboard formats.
//
// Each service is an interface with a Qt default that is in force from the start. A replacement is
// installed with `Install` (borrowed; null puts the default back), usually by a `TServiceScope` for
// the life of a test; the test doubles are in "platform/ServiceDoubles.h".
#pragma once

#include "platform/core/Classes.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Types.h"
#include "platform/core/WinApi.h"

#include <QCursor>
#include <QString>

class QWidget;

#include <cstdint>
#include <exception>
#include <map>
#include <optional>

namespace vl {

// Installs a service for the life of the scope and puts the former one back afterwards.
template <class S>
class TServiceScope {
public:
    explicit TServiceScope(S& Service) : FPrevious(S::Install(&Service)) {}
    ~TServiceScope() { S::Install(FPrevious); }
    TServiceScope(const TServiceScope&) = delete;
    TServiceScope& operator=(const TServiceScope&) = delete;

private:
    S* FPrevious;
};

// ---------------------------------------------------------------------------------------------
// Message dialogs and the beep
// ---------------------------------------------------------------------------------------------

enum class TMsgDlgType : std::uint8_t { mtWarning, mtError, mtInformation, mtConfirmation, mtCustom };
using enum TMsgDlgType;

enum class TMsgDlgBtn : std::uint8_t {
    mbYes,
    mbNo,
    mbOK,
    mbCancel,
    mbAbort,
    mbRetry,
    mbIgnore,
    mbAll,
    mbNoToAll,
    mbYesToAll,
    mbHelp,
    mbClose
};
using enum TMsgDlgBtn;
using TMsgDlgButtons = TFlagSet<TMsgDlgBtn>;

constexpr TMsgDlgButtons operator|(TMsgDlgBtn a, TMsgDlgBtn b) {
    return TMsgDlgButtons(a) | TMsgDlgButtons(b);
}

// The answers of a modal dialog.
using TModalResult = int;
constexpr TModalResult mrNone = 0;
constexpr TModalResult mrOk = 1;
constexpr TModalResult mrCancel = 2;
constexpr TModalResult mrAbort = 3;
constexpr TModalResult mrRetry = 4;
constexpr TModalResult mrIgnore = 5;
constexpr TModalResult mrYes = 6;
constexpr TModalResult mrNo = 7;
constexpr TModalResult mrClose = 8;
constexpr TModalResult mrHelp = 9;
constexpr TModalResult mrAll = 12;
constexpr TModalResult mrNoToAll = 13;
constexpr TModalResult mrYesToAll = 14;

// The modal result a button answers.
TModalResult ModalResultOf(TMsgDlgBtn Button);

class TMessageService {
public:
    virtual ~TMessageService();
    // Shows `Msg` and answers the modal result of the button chosen; closing the box without a button
    // answers `mrCancel`.
    virtual TModalResult MessageDlg(const QString& Msg, TMsgDlgType DlgType, TMsgDlgButtons Buttons,
                                    int HelpCtx) = 0;
    virtual void MessageBeep(std::uint32_t Type) = 0;

    static TMessageService& Current();
    static TMessageService* Install(TMessageService* Service);
};

// The calls of the library.
TModalResult MessageDlg(const QString& Msg, TMsgDlgType DlgType, TMsgDlgButtons Buttons, int HelpCtx);
void MessageBeep(std::uint32_t Type);

// ---------------------------------------------------------------------------------------------
// File dialogs
// ---------------------------------------------------------------------------------------------

enum class TOpenOption : std::uint8_t {
    ofReadOnly,
    ofOverwritePrompt,
    ofHideReadOnly,
    ofNoChangeDir,
    ofShowHelp,
    ofNoValidate,
    ofAllowMultiSelect,
    ofExtensionDifferent,
    ofPathMustExist,
    ofFileMustExist,
    ofCreatePrompt,
    ofShareAware,
    ofNoReadOnlyReturn,
    ofNoTestFileCreate,
    ofNoNetworkButton,
    ofNoLongNames,
    ofOldStyleDialog,
    ofNoDereferenceLinks,
    ofEnableIncludeNotify,
    ofEnableSizing,
    ofDontAddToRecent,
    ofForceShowHidden
};
using enum TOpenOption;
using TOpenOptions = TFlagSet<TOpenOption>;

// The open-file dialog. `Filter` is the framework's form: pairs of description and pattern list,
// separated by '|', patterns separated by ';' ("Drawings (*.vld)|*.vld|All files|*.*").
class TOpenDialog : public TComponent {
public:
    explicit TOpenDialog(TComponent* AOwner = nullptr);

    QString FileName;
    QString Filter;
    int FilterIndex = 1;
    QString DefaultExt; // without the dot; appended to a chosen name that has no extension
    QString InitialDir;
    QString Title;
    TOpenOptions Options = TOpenOptions{ofHideReadOnly, ofEnableSizing};

    // Shows the dialog; true when the user chose a file, whose name is then in `FileName`.
    virtual bool Execute();
    virtual bool IsSaveDialog() const { return false; }
};

class TSaveDialog : public TOpenDialog {
public:
    explicit TSaveDialog(TComponent* AOwner = nullptr);
    bool IsSaveDialog() const override { return true; }
};

// The Qt name filters of a framework filter: each description with its patterns in parentheses
// ("All files|*.*" -> "All files (*.*)"); a description that already shows parentheses is kept as it
// stands ("Drawings (*.vld)|*.vld" -> "Drawings (*.vld)").
QStringList QtNameFilters(const QString& Filter);
// `FileName` with ".<DefaultExt>" appended when it has no extension and `DefaultExt` is not empty.
QString ApplyDefaultExt(const QString& FileName, const QString& DefaultExt);

class TFileDialogService {
public:
    virtual ~TFileDialogService();
    // Runs the dialog. On a choice, sets `Dialog.FileName` (and `FilterIndex`) and answers true.
    virtual bool Execute(TOpenDialog& Dialog) = 0;

    static TFileDialogService& Current();
    static TFileDialogService* Install(TFileDialogService* Service);
};

// ---------------------------------------------------------------------------------------------
// The tick count
// ---------------------------------------------------------------------------------------------

class TClockService {
public:
    virtual ~TClockService();
    // Milliseconds since an arbitrary start, wrapping at 2^32.
    virtual std::uint32_t GetTickCount() = 0;

    static TClockService& Current();
    static TClockService* Install(TClockService* Service);
};

std::uint32_t GetTickCount();

// ---------------------------------------------------------------------------------------------
// The event pump
// ---------------------------------------------------------------------------------------------

class TEventPump {
public:
    virtual ~TEventPump();
    // Delivers the pending events (paint, input, timers) and returns.
    virtual void ProcessMessages() = 0;

    static TEventPump& Current();
    static TEventPump* Install(TEventPump* Service);
};

// ---------------------------------------------------------------------------------------------
// The cursor: its position on the screen and its confinement
// ---------------------------------------------------------------------------------------------

// Screen coordinates are device pixels of the screen. The confinement rectangle is kept here; the
// controls clamp every mouse position they deliver to it while it is set. The Qt default also grabs
// the mouse for the control that received the last press and moves the pointer into the rectangle.
class TCursorService {
public:
    virtual ~TCursorService();
    virtual TPoint GetCursorPos() = 0;
    virtual void SetCursorPos(TPoint ScreenPos) = 0;
    // Confines the cursor to `ScreenRect` (right and bottom excluded); null releases it.
    virtual void ClipCursor(const TRect* ScreenRect);
    // The rectangle in force, if any.
    std::optional<TRect> ClipRect() const { return FClip; }
    // `ScreenPos` moved into the confinement rectangle, if one is in force.
    TPoint Clamp(TPoint ScreenPos) const;

    static TCursorService& Current();
    static TCursorService* Install(TCursorService* Service);

    // The widget that received the last mouse press, which a confinement grabs the mouse for. The
    // controls note it at each press.
    static void NoteMouseTarget(QWidget* Widget);
    static QWidget* MouseTarget();

protected:
    std::optional<TRect> FClip;
};

bool GetCursorPos(TPoint* Pos);
bool SetCursorPos(int X, int Y);
bool ClipCursor(const TRect* ScreenRect);

// ---------------------------------------------------------------------------------------------
// The error service and the application
// ---------------------------------------------------------------------------------------------

class TErrorService {
public:
    virtual ~TErrorService();
    // Reports an exception that reached the boundary to Qt. The default shows the message with
    // `MessageDlg` as an error with an OK button. Never called for the silent abort.
    virtual void HandleException(const std::exception& E) = 0;

    static TErrorService& Current();
    static TErrorService* Install(TErrorService* Service);
};

// The message of an exception as the user sees it: `Exception::Message`, else `what()`.
QString ExceptionMessage(const std::exception& E);

class TApplication {
public:
    void ProcessMessages();
    void HandleException(const std::exception& E);
};

extern TApplication Application;

// Runs `Action` as an entry from Qt: the silent abort ends it quietly, every other exception goes to
// the error service. Nothing leaves.
template <class F>
void GuardedEntry(F&& Action) noexcept {
    try {
        Action();
    } catch (const EAbort&) {
    } catch (const std::exception& e) {
        try {
            Application.HandleException(e);
        } catch (...) {}
    } catch (...) {
        try {
            Application.HandleException(Exception(QStringLiteral("Unknown exception")));
        } catch (...) {}
    }
}

// ---------------------------------------------------------------------------------------------
// The screen
// ---------------------------------------------------------------------------------------------

using HCURSOR = const QCursor*;

class TScreen {
public:
    // The screen's pixels per inch in device pixels: the logical resolution times the device-pixel
    // ratio of the primary screen, unless a value is set by `SetPixelsPerInch` (0 returns to that).
    int PixelsPerInch() const;
    void SetPixelsPerInch(int Value) { FPixelsPerInchOverride = Value; }

    // The application-wide cursor: `crDefault` lets each control show its own; any other number
    // overrides every control's cursor (the busy cursor `crHourGlass` while the program works).
    int Cursor() const { return FCursor; }
    void SetCursor(int Value);

    // The cursor table: built-in numbers answer the platform's cursors, positive numbers what the
    // program registered. An unknown number answers the arrow.
    QCursor Cursors(int Index) const;
    // Registers or replaces a cursor; a null handle removes the entry.
    void SetCursors(int Index, HCURSOR Cursor);
    // True when the number has a cursor, built-in or registered.
    bool HasCursor(int Index) const;

private:
    int FPixelsPerInchOverride = 0;
    int FCursor = 0;
    bool FOverrideActive = false;
    std::map<int, QCursor> FCursors;
};

extern TScreen Screen;

// ---------------------------------------------------------------------------------------------
// Private clipboard formats
// ---------------------------------------------------------------------------------------------

constexpr std::uint32_t CF_TEXT = 1;
constexpr std::uint32_t CF_BITMAP = 2;
constexpr std::uint32_t CF_METAFILEPICT = 3;
constexpr std::uint32_t CF_DIB = 8;
constexpr std::uint32_t CF_UNICODETEXT = 13;
constexpr std::uint32_t CF_ENHMETAFILE = 14;

// A private format for a name: the same name, compared without regard to case, always answers the
// same number, 0xC000 or above. An empty name answers 0.
std::uint32_t RegisterClipboardFormat(const QString& Name);
// The name a private format was registered under (as first spelled), empty for an unknown number.
QString GetClipboardFormatName(std::uint32_t Format);
// The MIME type that carries a private format on the Qt clipboard: "application/x-vellorum-" and the
// name in lower case, characters other than letters, digits, '.', '-' and '_' written as "+XXXX"
// (hexadecimal UTF-16 code unit). Empty for an unknown number.
QString ClipboardFormatMimeType(std::uint32_t Format);

} // namespace vl
