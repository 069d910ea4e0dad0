// The abstract object store as the draw box sees it.
//
// A draw box has exactly one data module: the host's, or one it makes itself
// (`InstallDataModule`, through `DataModuleFactory`). The module holds the restore rect, which
// collects in logical coordinates what changed since the last flush; `InvalidateRestoreRect` hands it
// to the box's `InvalidateChanges` and marks it empty again.
#pragma once

#include "geometry/Vltypes.h"
#include "objects/ObjectBase.h"
#include "platform/WinApi.h"
#include "tools/MouseToolBase.h"

#include <cstdint>
#include <functional>

namespace vl {

enum class TDataModStateFlag : std::uint8_t { dmNeedAll, dmLoading, dmSaving, dmIgnoreZ, dmMovingObjects };
using enum TDataModStateFlag;
using TDataModState = TFlagSet<TDataModStateFlag>;

// The kinds of undo snapshot, and the operations that take one.
enum class TBackupMode : std::uint8_t { bkEmpty, bkMove, bkCreate, bkDelete, bkUndo, bkPaste };
using enum TBackupMode;
enum class TUndoOption : std::uint8_t { unMove, unCreate, unDelete, unUndo, unPaste };
using enum TUndoOption;
using TUndo = TFlagSet<TUndoOption, std::uint8_t, 0x1F>;

class TvlDataMod : public TEnvironment {
public:
    explicit TvlDataMod(TComponent* AOwner);

    virtual TLimRec GetLimits() = 0;
    virtual void AllObjects(const TAllObjectsProc& Action, void* Params) = 0;
    virtual void InitLimits() = 0;
    virtual bool Empty() = 0;
    virtual void LoadFromFile(const QString& FileName) = 0;
    virtual void SaveToFile(const QString& FileName) = 0;
    // The marked objects, in index order.
    virtual int MarkCount() const = 0;
    virtual TvlObject* Marked(int Index) const = 0;
    // Takes `AObject` (every object for null) out of the marks.
    virtual void UnSelect(TvlObject* AObject) = 0;
    // Puts `AObject` into the marks. Nothing in a module that keeps none.
    virtual void Select(TvlObject* AObject) { (void)AObject; }
    // Draws the marks of the mark list (`AObject` null: all of them).
    virtual void Mark(TvlObject* AObject) { (void)AObject; }
    // Condemns the limits that `AObject` touches; `Done` ends a move.
    virtual void CheckLimits(TvlObject* AObject, bool Done) {
        (void)AObject;
        (void)Done;
    }
    // The next number of the counter `Counter`. A module that keeps no counters answers 0.
    virtual std::uint16_t IncCounter(std::uint16_t Counter) {
        (void)Counter;
        return 0;
    }
    // The object that a link names by class number and number, over all layers; null if none.
    virtual TvlObject* FindObject(TContype Link) {
        (void)Link;
        return nullptr;
    }

    // What the creators need of a module (tools helper):
    // The first object for which `Condition` holds, walking `AllObjects`; null if none. Modules with
    // their own search order override it.
    virtual TvlObject* FirstObjectWith(const TFirstObjectFunc& Condition, void* Params);
    // Takes ownership of `AObject` in layer `Layer`. A module that holds no objects raises
    // `Exception` and the caller keeps the object.
    virtual void Add(TvlObject* AObject, std::int32_t Layer);
    // Takes an undo snapshot of the kind `Mode`. Nothing in a module without undo.
    virtual void Backup(TBackupMode Mode) { (void)Mode; }

    // True when all four limit values equal those given.
    bool CompareLimits(const TLimRec& Limits);
    void InitRestoreRect();
    // The box's `InvalidateChanges`, then an empty restore rect.
    void InvalidateRestoreRect();
    // The restore rect becomes all of the limits and is flushed.
    void Invalidate();

    TLimRec FRestoreRect;
    TDataModState State;
    // The operations that take undo snapshots.
    TUndo FUndo;
};

// Makes the data module that a draw box without one installs, with the box's owner as owner. The
// store registers its single-layer module here; without one, an empty module that holds nothing is
// made.
using TDataModuleFactory = std::function<TvlDataMod*(TComponent* AOwner)>;
inline TDataModuleFactory DataModuleFactory;

// The module installed while the store registers none: always empty.
class TEmptyDataMod : public TvlDataMod {
public:
    explicit TEmptyDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}
    TLimRec GetLimits() override { return EmptyLimRec; }
    void AllObjects(const TAllObjectsProc&, void*) override {}
    void InitLimits() override {}
    bool Empty() override { return true; }
    void LoadFromFile(const QString& FileName) override;
    void SaveToFile(const QString& FileName) override;
    int MarkCount() const override { return 0; }
    TvlObject* Marked(int) const override { return nullptr; }
    void UnSelect(TvlObject*) override {}
};

} // namespace vl
