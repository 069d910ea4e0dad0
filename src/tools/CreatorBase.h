// The creator: the tool that stands behind a family of drawing objects.
//
// A creator does three jobs that stay apart: as a mouse tool it makes a new object when the user
// clicks; as the owner of a generator it holds the attributes all its objects share (objects keep only
// a reference to their creator); as a class factory and file identity it re-creates its objects when a
// drawing is loaded or pasted, since every object in a file names its creator by `ID`.
//
// The creator owns its generator for its whole life. Its objects refer to it, so it must outlive
// them. A class of object is a factory (`TCapClass`): `OnObjectSetClass` or `DefaultClass` chooses
// it, and an object's class number (`ClassNr`) is the `ID` of the tool that made it.
#pragma once

#include "objects/Generators.h"
#include "objects/PointObj.h"
#include "objects/TvlObject.h"
#include "tools/MouseToolBase.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace vl {

// The host's IDs: -32766 to -1, so that they never meet a component index.
using TNewID = std::int16_t;
constexpr TNewID MinNewID = -32766;
constexpr TNewID MaxNewID = -1;

using TObjectClassEvent = std::function<void(TCapClass& NewObjectClass)>;
using TChangeIDEvent = std::function<void(TObject* Sender, TNewID& NewID)>;

// The class a creator makes while no other is chosen: the point object.
inline TCapClass DefaultObjectClass = &NewObjectOf<TPointObj>;

class TvlCreator : public TSaveTool, public TObjectCreator {
public:
    // Makes the generator (`CreateGenerator`) and sets the cursor to the cross.
    explicit TvlCreator(TComponent* AOwner);
    ~TvlCreator() override;

    // Keeps the designed font height in the generator's `FontBackup` and enters the rotate cursor
    // as cursor 12 (outside design time).
    void Loaded() override;
    // Takes the undo snapshot for creating when the data module asks for one, then activates.
    void Activate(TObject* Sender) override;
    // Snaps the point when the grid captures, makes the object (`SetNewObj`) and flushes the data
    // module's restore rect to the window.
    void LMouseDown(TShiftState Shift, const TPoint& CurPos) override;

    // --- The virtual operations of creators, in their order ----------------------------------------
    // Makes the generator: a `TGenerator` here. A descendant with another generator class overrides
    // it and calls it again from its own constructor, since a constructor's virtual call reaches only
    // its own class.
    virtual void CreateGenerator();
    // Drops the generator's scaled font height, so that it is recomputed at the next use.
    void CheckScaling() override;
    // Gives back the generator's font handle after a paint.
    void ReleaseResources() override;
    // `OnObjectSetData` if assigned, else `SetDefaultData`: the event switches the default off.
    virtual void ObjectSetData(TvlObject* CurObject);
    virtual void SetDefaultData(TvlObject* CurObject);
    // The class of new objects when `OnObjectSetClass` is not assigned.
    virtual TCapClass DefaultClass();
    // Makes, numbers and registers an object for a click at `CurPos`; null when the click made none.
    virtual TvlObject* SetNewObj(const TPoint& CurPos);
    // Sets the font of the canvas in force to the object's font.
    virtual void ObjectFont(TvlObject* CurObject);

    // --- Identity and objects -----------------------------------------------------------------------
    // `ChangeID`'s answer if assigned (starting from 0), else the index among the owner's components.
    std::int16_t GetID() override;
    std::int16_t ID() { return GetID(); }
    // A new object of `GetObjectClass` for this tool: in no list, not drawn, without number. Raises
    // `Exception` when no class was chosen.
    TvlObject* CreateObject() override;
    TCapClass GetObjectClass();
    // A slave of `AMaster`: made, linked, numbered, shown, given its data, added to the data module
    // and invalidated unless its data hid it.
    TvlObject* CreateSlave(TvlObject* AMaster);
    // The same, placed at (`RelX`, `RelY`) from the master's corner.
    TvlObject* CreateSlaveAt(TvlObject* AMaster, std::int32_t RelX, std::int32_t RelY);
    // Pen, brush and font of the canvas in force for `CurObject`; `OnObjectSetColors` has the last word.
    void ObjectColors(TvlObject* CurObject) override;
    // The tool's cursor (`FCursor`).
    TCursor FoundCursor() const override { return FCursor; }

    TCustomGenerator* Generator() const override { return FGenerator.get(); }
    TvlCreator* Creator() override { return this; }
    TEnvironment* Environment() override { return this; }
    bool CreateBoxObjects() const { return FCreateBoxObjects; }
    void SetCreateBoxObjects(bool Value) { FCreateBoxObjects = Value; }

    // `OnObjectDraw`, `OnCalcRefPoint`, `OnObjectShapeRgn`, `OnObjectShape` and
    // `OnObjectCheckShape` are the object-facing events of `TObjectCreator`.
    TObjectClassEvent OnObjectSetClass;
    TObjectEvent OnObjectSetColors;
    TObjectEvent OnObjectSetData;
    TChangeIDEvent ChangeID;

protected:
    // The steps of a creator that places one object per click: a new object at `CurPos`, numbered,
    // given its data, added to the data module, invalidated and made visible.
    TvlObject* PlaceNewObject(const TPoint& CurPos);
    // Hands `AObject` to the data module in the generator's layer and answers it, now owned by the
    // module; the object is freed when the module refuses it.
    TvlObject* AddToDataModule(std::unique_ptr<TvlObject> AObject);

    bool FCreateBoxObjects = false;
    std::unique_ptr<TCustomGenerator> FGenerator;
};

} // namespace vl
