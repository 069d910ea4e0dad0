// Progress reporting of long operations: loading, saving, printing, pasting.
//
// A long operation reports through the module routines `InfoOpen`, `InfoCount`, `InfoMessage` and
// `InfoClose` without knowing whether anybody listens: with no box open every call does nothing. The
// host opens a box, either on a label and a progress bar of its own or, with `InfoOpenDialog`, on a
// progress dialog of the library whose Cancel button sets `Userbreak`. The one open box lives in the
// global `Infobox`, which owns it until `InfoClose` frees it.
//
// `Userbreak` is the host's way to stop an operation. It is set by the host (or by the dialog's Cancel
// button) and cleared only when the box goes, so until then every further long operation also stops at
// once. A host that never opens a box but sets the flag must clear it itself.
#pragma once

#include "platform/core/Classes.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <variant>

class QProgressDialog;

namespace vl {

// The empty parameter block, for messages and walks that need none.
struct TNoParam {
    friend constexpr bool operator==(TNoParam, TNoParam) = default;
};
inline TNoParam noParam;

// What a message carries: nothing, a number, or a text. Each message number takes one kind; a
// message given another kind leaves the part that needs the value alone.
using TInfoParam = std::variant<TNoParam, std::int32_t, QString>;

// The text part of an info box: a caption that a long loop shows at once through `Update`.
class TInfoLabel {
public:
    virtual ~TInfoLabel();
    const QString& Caption() const { return FCaption; }
    virtual void SetCaption(const QString& Value) { FCaption = Value; }
    // Shows the caption now, inside a loop that pumps no messages. The bare label has nothing to show.
    virtual void Update() {}

private:
    QString FCaption;
};

// The progress part of an info box, with the behaviour of the platform's progress bar: the position
// stays within `Min`..`Max`, and `StepIt` that runs past `Max` starts over from `Min`.
class TProgressBar {
public:
    virtual ~TProgressBar();
    std::int32_t Min() const { return FMin; }
    std::int32_t Max() const { return FMax; }
    std::int32_t Position() const { return FPosition; }
    std::int32_t Step() const { return FStep; }
    // A maximum below `Min` is taken as `Min`; the position is kept within the new range.
    void SetMax(std::int32_t Value);
    void SetMin(std::int32_t Value);
    // Clamped to `Min`..`Max`.
    void SetPosition(std::int32_t Value);
    void SetStep(std::int32_t Value) { FStep = Value; }
    // Advances the position by `Step`; beyond `Max` it wraps round to the start of the range.
    void StepIt();

protected:
    // Told after every change of range or position, for a bar that shows them.
    virtual void Changed() {}

private:
    std::int32_t FMin = 0;
    std::int32_t FMax = 100;
    std::int32_t FPosition = 0;
    std::int32_t FStep = 10;
};

// The open info box. Neither the label nor the progress bar is owned; either may be null.
class TInfobox : public TObject {
public:
    TInfobox(TInfoLabel* ALabel, TProgressBar* AProgbar);
    // Sets `Infobox` to null (if it is this box) and `Userbreak` to false.
    ~TInfobox() override;

    // The messages of long operations:
    //   0   end of an operation: the label is emptied and then the bar set to 0;
    //   10  a text: the label shows it;
    //   100 loading, with the file size: "Loading...", the bar's `Max`;
    //   200 saving: "Saving...";
    //   210 saving a layer, with its object count: the bar's `Max`;
    //   220 saving a named layer: "Saving " and the name;
    //   300 printing, with the page count: "Printing...", the bar's `Max`.
    // The label gets `Update` after each change of its text. Unknown numbers are ignored.
    // Message 0 resets the bar only when the box has a label: a box with a bar alone keeps its
    // position.
    virtual void BoxMessage(std::int32_t Msg, const TInfoParam& Param);
    // A value above 0 becomes the bar's position; 0 or less steps the bar. Nothing without a bar.
    virtual void Count(std::int32_t Value);

    TInfoLabel* Label() const { return FLabel; }
    TProgressBar* Progbar() const { return FProgbar; }

protected:
    void ShowText(const QString& Text);

    TInfoLabel* FLabel = nullptr;     // borrowed, may be null
    TProgressBar* FProgbar = nullptr; // borrowed, may be null
};

// The box that `InfoOpenDialog` opens: a modeless Qt progress dialog, owned by the box, whose label
// and bar stand for the box's label and progress bar. Its Cancel button sets `Userbreak`; the
// dialog pumps no messages itself, so the button works where the host's loop lets events through.
class TInfoDialog : public TInfobox {
public:
    explicit TInfoDialog(const QString& Title = QString());
    ~TInfoDialog() override;

    QProgressDialog* Dialog() const { return FDialog.get(); }

private:
    class TDialogLabel;
    class TDialogBar;
    std::unique_ptr<QProgressDialog> FDialog;
    std::unique_ptr<TDialogLabel> FDialogLabel;
    std::unique_ptr<TDialogBar> FDialogBar;
};

// The one open box, or null. It owns itself through this global: `InfoClose` frees it, and its
// destructor clears the global.
inline TInfobox* Infobox = nullptr;
// The host has asked to stop the running long operation.
inline bool Userbreak = false;

// Makes the box that `InfoOpen` opens. Tests install their own box here; empty means `TInfobox`.
using TInfoboxFactory = std::function<TInfobox*(TInfoLabel* ALabel, TProgressBar* AProgbar)>;
inline TInfoboxFactory InfoboxFactory;

// Opens a box on the host's label and bar, unless one is open already: then nothing happens and the
// open one stays, whatever controls are given.
void InfoOpen(TInfoLabel* ALabel, TProgressBar* AProgbar);
// Opens the library's progress dialog, unless a box is open already.
void InfoOpenDialog(const QString& Title = QString());
// The open box's `Count`, if there is one.
void InfoCount(std::int32_t Value);
// The open box's `BoxMessage`, if there is one.
void InfoMessage(std::int32_t Msg, const TInfoParam& Param = noParam);
// If a box is open: message 0, then the box is freed (which clears `Infobox` and `Userbreak`).
void InfoClose();

} // namespace vl
