// What the draw box sees of the components and objects that work with it.
//
// The box is the one entry of paint, mouse and key events, yet everything it dispatches to lives in
// folders above it: drawing objects, data modules, tools and creators. It reaches them through the
// narrow faces declared here, which those classes implement:
// - `TEnvironment`: a non-visual component that belongs to a box (`FDrawForm`, borrowed);
// - `TBoxObject`: a drawing object as the box paints it and moves it;
// - `TBoxTool`: the box's current tool, which takes the mapped mouse and key events;
// - `TBoxStore`: the box's data module, which lists the objects to paint and collects what changed in
//   its restore rect;
// - `TBoxCreator`: a tool that makes objects, found by its ID (`FindCreatorByID`).
// Each face holds only what the box needs; the classes above add the rest.
#pragma once

#include "geometry/Vltypes.h"
#include "platform/core/Classes.h"
#include "platform/core/Sets.h"
#include "platform/core/WinApi.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace vl {

class TCustomDrawBox;

// The link of a non-visual component to its draw box.
class TEnvironment : public TComponent {
public:
    explicit TEnvironment(TComponent* AOwner) : TComponent(AOwner) {}

    TCustomDrawBox* DrawForm() const { return FDrawForm; }
    void SetDrawForm(TCustomDrawBox* Value) { FDrawForm = Value; }

    // Forgets a removed draw box; at design time takes an inserted one while it has none.
    void Notification(TComponent* AComponent, TOperation Operation) override;

    TCustomDrawBox* FDrawForm = nullptr; // borrowed: the draw box served
};

// --- Objects ------------------------------------------------------------------------------------

// The tests of `CheckFrame`: a `TPoint`, a `TRect` or a `TLimRec` given by address.
enum class TCheckFrame : std::uint8_t { cfPoint, cfRect, cfLimRec };
using enum TCheckFrame;

// A drawing object as the box paints and moves it. Every drawing object is one.
class TBoxObject : public TObject {
public:
    // The generator holds `roNosy`: the object hears of every paint and every printing.
    virtual bool Nosy() const = 0;
    virtual void ObjectMessage(TObjMessage& aMessage) = 0;
    virtual bool Visible() const = 0;
    // Quick test of the area at `Koord` (a `TPoint`, `TRect` or `TLimRec` in logical units, as `Code`
    // says) against the object's outermost limits.
    virtual bool CheckFrame(const void* Koord, TCheckFrame Code) = 0;
    // Shadow, shape and mark on the canvas in force.
    virtual void Show() = 0;
    // The scale setting changed: recompute what depends on it.
    virtual void AdjustToScale() = 0;
    // Adds the object's place to the data module's restore rect.
    virtual void Invalidate() = 0;
    // Moves the object by a distance in logical units.
    virtual void MovePos(TPoint DeltaPos) = 0;
};

// The box's walks over objects: a callback and a parameter block passed through untouched.
using TBoxObjectProc = std::function<void(TBoxObject* AnyObject, void* Params)>;
using TBoxObjectFunc = std::function<bool(TBoxObject* FndObject, void* Params)>;

// --- Tools --------------------------------------------------------------------------------------

// The state of a tool's gesture, one byte. `tsWaiting` is never set; it keeps the other bits at
// their places.
enum class TToolStateFlag : std::uint8_t { tsWaiting, tsWorking, tsMoving, tsCanScroll };
using enum TToolStateFlag;
using TToolState = TFlagSet<TToolStateFlag, std::uint8_t, 0x0F>;

enum class TToolOption : std::uint8_t { toDefaultTool, toDontScroll };
using enum TToolOption;
using TToolOptions = TFlagSet<TToolOption, std::uint8_t, 0x03>;

// One of the box's scroll steps, handed to a tool's `Scroll`.
using TScrollProc = std::function<void()>;

// The box's current tool. Positions handed to it are logical: the box has mapped them.
class TBoxTool : public TEnvironment {
public:
    explicit TBoxTool(TComponent* AOwner) : TEnvironment(AOwner) {}

    TToolOptions Options() const { return FOptions; }
    void SetOptions(TToolOptions Value) { FOptions = Value; }

    // Activates the tool if it is the default tool.
    virtual void Init() = 0;
    // The tool stops being current.
    virtual void Terminate() = 0;
    // Makes the tool the box's current tool.
    virtual void Activate(TObject* Sender) = 0;
    virtual void LMouseDown(TShiftState Shift, const TPoint& CurPos) = 0;
    virtual void LMouseUp(TShiftState Shift, const TPoint& CurPos) = 0;
    virtual void MouseMove(TShiftState Shift, const TPoint& CurPos) = 0;
    virtual void LeftDblClk(TShiftState Shift, const TPoint& CurPos) = 0;
    virtual void RMouseDown(TShiftState Shift, const TPoint& CurPos) = 0;
    virtual void RMouseUp(TShiftState Shift, const TPoint& CurPos) = 0;
    virtual bool KeyDown(std::uint16_t& aKey, TShiftState aShift) = 0;
    virtual bool KeyUp(std::uint16_t& aKey, TShiftState aShift) = 0;
    virtual void Scroll(const TScrollProc& ScrollProc, const TPoint& CurPos) = 0;
    // An object leaves the drawing (null: all of them): a tool that holds it forgets it.
    virtual void ObjectGone(TBoxObject* Gone) { (void)Gone; }

    TToolState ToolState;

protected:
    TToolOptions FOptions;
};

// A tool that makes drawing objects. A mix-in: the tool itself is a `TBoxTool`.
class TBoxCreator {
public:
    virtual ~TBoxCreator() = default;
    // The tool's ID, which every object of it carries as its class number.
    virtual std::int16_t GetID() = 0;
    // A new object of the tool: in no list, not drawn, without number.
    virtual TBoxObject* CreateObject() = 0;
    // Drops what the tool computed for the former scale.
    virtual void CheckScaling() = 0;
    // Gives back what the tool borrowed from the device for a paint.
    virtual void ReleaseResources() = 0;
};

// The creator of `Owner` for a class number: for a negative `ID` the last creator whose `GetID`
// equals it (compared as 16-bit values); for 0 or more the component of that index if it is a
// creator. Null otherwise.
TBoxCreator* FindCreatorByID(TComponent* Owner, std::int32_t ID);

// --- Data modules ---------------------------------------------------------------------------------

enum class TDataModStateFlag : std::uint8_t { dmNeedAll, dmLoading, dmSaving, dmIgnoreZ, dmMovingObjects };
using enum TDataModStateFlag;
using TDataModState = TFlagSet<TDataModStateFlag>;

// The box's data module: what the box paints, and what changed since the last flush.
class TBoxStore : public TEnvironment {
public:
    explicit TBoxStore(TComponent* AOwner) : TEnvironment(AOwner) {}

    virtual bool Empty() = 0;
    virtual TLimRec GetLimits() = 0;
    // Condemns the limits; the next walk rebuilds them.
    virtual void InitLimits() = 0;
    // Every object in z-order, first to last.
    virtual void AllBoxObjects(const TBoxObjectProc& Action, void* Params) = 0;
    // The selected objects, in the order of the selection.
    virtual int MarkCount() const = 0;
    virtual TBoxObject* Marked(int Index) const = 0;
    // Takes every object out of the selection and repaints what changed.
    virtual void UnmarkAll() = 0;
    virtual void LoadFromFile(const QString& FileName) = 0;
    virtual void SaveToFile(const QString& FileName) = 0;

    // True when all four limit values equal those given.
    bool CompareLimits(const TLimRec& Limits);

    // The restore rect collects, in logical coordinates, what changed since the last flush.
    const TLimRec& RestoreRect() const { return FRestoreRect; }
    void InitRestoreRect() { FRestoreRect = EmptyLimRec; }
    // The box's `InvalidateChanges`, then an empty restore rect.
    void InvalidateRestoreRect();

    TLimRec FRestoreRect = EmptyLimRec;
    TDataModState State;
};

// Makes the data module that a draw box without one installs, with the box's owner as owner. When it
// is not set, the box makes the single-layer store (`NewDefaultDataModule`).
using TDataModuleFactory = std::function<TBoxStore*(TComponent* AOwner)>;
inline TDataModuleFactory DataModuleFactory;
// A new single-layer store owned by `AOwner`. Declared here for the box, defined by the store.
TBoxStore* NewDefaultDataModule(TComponent* AOwner);

} // namespace vl
