// The tool base: the tool surface through which the draw box hands mouse and key events to its current
// tool (`TMouseTool`, `TSaveTool`). The box sees a tool only as its `TBoxTool`.
//
// A tool belongs to the box named in `FDrawForm` (borrowed). Exactly one tool of a box is current,
// or none: the box holds it in `FTool`, set by `Activate` through the box's `SetTool`. Positions given to a
// tool are logical; the box has mapped them. A tool may be linked to a button control (`Button`, borrowed)
// whose click activates it. The object under the mouse (`MouseFnd`) is kept by the box, not by the tool, so
// all tools of a box share it and it survives a change of tool.
#pragma once

#include "geometry/Vltypes.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Classes.h"
#include "platform/core/Sets.h"
#include "platform/core/WinApi.h"
#include "platform/graphics/Cursors.h"
#include "platform/graphics/Graphics.h"
#include "platform/window/Controls.h"

#include <cstdint>
#include <functional>

namespace vl {

class TCustomDrawBox;
class TvlDataMod;
class TvlObject;

// The events of the object-under-the-mouse protocol.
using TObjectFoundEvent = std::function<void(TvlObject* CurrentObject, bool& Accept)>;

class TMouseTool : public TBoxTool {
public:
    explicit TMouseTool(TComponent* AOwner) : TBoxTool(AOwner) {}
    ~TMouseTool() override;

    // The cursor of the box while the tool is current. A change takes effect at the next `Activate`
    // (or `ObjectRelease`), not at once.
    TCursor Cursor() const { return FCursor; }
    void SetCursor(TCursor Value) { FCursor = Value; }
    // The control whose click activates this tool.
    TControl* Button() const { return FButton; }
    // Unlinks the previous button (its click handler and its action are cleared) and, for a button
    // of the framework's button classes, sets its click handler to this tool's `Activate`. A
    // control of another class is kept but not linked.
    void SetButton(TControl* Value);
    // The colour of the draw box: the neutral background of shadows.
    TColor GetclNeutral() const;
    TColor ClNeutral() const { return GetclNeutral(); }

    // Forgets a removed button, then the base.
    void Notification(TComponent* AComponent, TOperation Operation) override;

    // Activates the tool if it is the default tool.
    void Init() override;
    // Frees the cursor and fires `OnTerminate`. The tool state stays as it is.
    void Terminate() override;
    // Makes the tool the box's current tool: the previous one (this one too) terminates, the box
    // takes the tool's cursor, `ActScaleSet` becomes the box's, `OnActivate` fires with the tool as
    // sender. Nothing at all without a draw box.
    void Activate(TObject* Sender) override;
    void LMouseDown(TShiftState Shift, const TPoint& CurPos) override;
    void LMouseUp(TShiftState Shift, const TPoint& CurPos) override;
    void MouseMove(TShiftState Shift, const TPoint& CurPos) override;
    void LeftDblClk(TShiftState Shift, const TPoint& CurPos) override;
    // Returns to the default tool.
    void RMouseDown(TShiftState Shift, const TPoint& CurPos) override;
    void RMouseUp(TShiftState Shift, const TPoint& CurPos) override;
    // The box never calls it; a descendant may.
    virtual void RightDblClk(TShiftState Shift, const TPoint& CurPos);
    bool KeyDown(std::uint16_t& aKey, TShiftState aShift) override;
    bool KeyUp(std::uint16_t& aKey, TShiftState aShift) override;
    // Does nothing, and in particular does not call `ScrollProc`; a tool that wants the window to
    // move calls it.
    void Scroll(const TScrollProc& ScrollProc, const TPoint& CurPos) override;

    // Unless this is the default tool, asks the box to activate its default tool.
    void SetDefaultTool();

    TNotifyEvent OnActivate;
    TNotifyEvent OnTerminate;

protected:
    TControl* FButton = nullptr; // borrowed
    TCursor FCursor = crDefault;
};

// The tool with a link to the data module and the object under the mouse.
class TCapList;

class TSaveTool : public TMouseTool {
public:
    explicit TSaveTool(TComponent* AOwner) : TMouseTool(AOwner) {}

    // The data module of the draw box, read anew at each call.
    TvlDataMod* GetDataModule() const;
    TvlDataMod* DataModule() const { return GetDataModule(); }
    // The address of the data module's restore rect.
    TLimRec* GetRestoreRect() const;
    TLimRec* RestoreRect() const { return GetRestoreRect(); }
    // The marked objects of the data module (its `MarkCase`), read anew at each call; null without a
    // data module.
    TCapList* GetMarkSave() const;
    TCapList* MarkCase() const { return GetMarkSave(); }
    // The object under the mouse, kept by the draw box.
    TvlObject* GetMouseFnd() const;
    void SetMouseFnd(TvlObject* Value);
    TvlObject* MouseFnd() const { return GetMouseFnd(); }

    // Whether the tool accepts `CurrentObject` as the object under the mouse: `OnObjectFound` may
    // refuse it; without the event every object is accepted.
    virtual bool ObjectFound(TvlObject* CurrentObject);
    // The mouse left `CurrentObject`: `OnObjectRelease` if assigned, else the box's cursor goes back
    // to the tool's.
    void ObjectRelease(TvlObject* CurrentObject);

    // The search of the object under the mouse at `CurPos`: the object found before stays while its
    // `Found` still accepts the point; otherwise the data module's first object whose `Found` accepts
    // it and that `ObjectFound` accepts becomes `MouseFnd`, and a different former one is released
    // (after the new one was accepted).
    void FindMouseObject(const TPoint& CurPos);

    TObjectFoundEvent OnObjectFound;
    TObjectEvent OnObjectRelease;
};

} // namespace vl
