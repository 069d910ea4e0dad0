// The link of a non-visual component to its draw box (`TEnvironment`), and the tool surface through
// which the draw box hands mouse and key events to its current tool (`TMouseTool`, `TSaveTool`).
//
// A tool belongs to the box named in `FDrawForm` (borrowed). Exactly one tool of a box is current,
// or none: the box holds it in `FTool`, written by `Activate`. Positions given to a tool are logical;
// the box has mapped them.
#pragma once

#include "platform/Classes.h"
#include "platform/Controls.h"
#include "platform/Cursors.h"
#include "platform/WinApi.h"

#include <cstdint>
#include <functional>

namespace vl {

class TCustomDrawBox;

class TEnvironment : public TComponent {
public:
    explicit TEnvironment(TComponent* AOwner) : TComponent(AOwner) {}

    TCustomDrawBox* DrawForm() const { return FDrawForm; }
    void SetDrawForm(TCustomDrawBox* Value) { FDrawForm = Value; }

    // At design time: forgets a removed draw box, and takes an inserted one while it has none.
    void Notification(TComponent* AComponent, TOperation Operation) override;

    TCustomDrawBox* FDrawForm = nullptr; // borrowed: the draw box served
};

enum class TToolStateFlag : std::uint8_t { tsWaiting, tsWorking, tsMoving, tsCanScroll };
using enum TToolStateFlag;
using TToolState = TFlagSet<TToolStateFlag>;

enum class TToolOption : std::uint8_t { toDefaultTool, toDontScroll };
using enum TToolOption;
using TToolOptions = TFlagSet<TToolOption>;

// One of the box's scroll steps, handed to a tool's `Scroll`.
using TScrollProc = std::function<void()>;

class TMouseTool : public TEnvironment {
public:
    explicit TMouseTool(TComponent* AOwner) : TEnvironment(AOwner) {}

    TToolOptions Options() const { return FOptions; }
    void SetOptions(TToolOptions Value) { FOptions = Value; }
    TCursor Cursor() const { return FCursor; }
    void SetCursor(TCursor Value) { FCursor = Value; }

    // Activates the tool if it is the default tool.
    virtual void Init();
    // Frees the cursor and fires `OnTerminate`.
    virtual void Terminate();
    // Makes the tool the box's current tool: the previous one terminates, the box takes the tool's
    // cursor, `ActScaleSet` becomes the box's, `OnActivate` fires. Nothing without a draw box.
    virtual void Activate(TObject* Sender);
    virtual void LMouseDown(TShiftState Shift, const TPoint& CurPos);
    virtual void LMouseUp(TShiftState Shift, const TPoint& CurPos);
    virtual void MouseMove(TShiftState Shift, const TPoint& CurPos);
    virtual void LeftDblClk(TShiftState Shift, const TPoint& CurPos);
    // Returns to the default tool.
    virtual void RMouseDown(TShiftState Shift, const TPoint& CurPos);
    virtual void RMouseUp(TShiftState Shift, const TPoint& CurPos);
    virtual void RightDblClk(TShiftState Shift, const TPoint& CurPos);
    virtual bool KeyDown(std::uint16_t& aKey, TShiftState aShift);
    virtual bool KeyUp(std::uint16_t& aKey, TShiftState aShift);
    // Does nothing; a tool that wants the window to move calls `ScrollProc`.
    virtual void Scroll(const TScrollProc& ScrollProc, const TPoint& CurPos);

    // Unless this is the default tool, asks the box to activate its default tool.
    void SetDefaultTool();

    TNotifyEvent OnActivate;
    TNotifyEvent OnTerminate;
    TToolState ToolState;

protected:
    TToolOptions FOptions;
    TCursor FCursor = crDefault;
};

// The tool with a link to the data module and the object under the mouse.
class TSaveTool : public TMouseTool {
public:
    explicit TSaveTool(TComponent* AOwner) : TMouseTool(AOwner) {}
};

} // namespace vl
