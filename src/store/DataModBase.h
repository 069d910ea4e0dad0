// The abstract object store.
//
// A draw box has exactly one data module: the host's, or one it makes itself (`InstallDataModule`,
// through `DataModuleFactory`). Tools and objects reach it through the box. This class fixes the
// interface that the concrete stores fill in, and implements what does not depend on how they hold
// their objects:
// - the selection (`MarkCase`, a z-ordered list of borrowed references; every member has
//   `isSelected`), with its events;
// - the object number counters, one per generator counter index;
// - the restore rect, which collects in logical coordinates what changed since the last flush;
//   `InvalidateRestoreRect` hands it to the box's `InvalidateChanges` and marks it empty again;
// - the load-time lookup of links (`FindObject`), the layer class, the file version and host stream
//   events, and the glue to undo.
//
// The operations that a concrete store must provide raise `EAbstractError` here, except for the few
// that carry a harmless default.
#pragma once

#include "geometry/FileHeader.h"
#include "geometry/Vltypes.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"
#include "platform/core/WinApi.h"
#include "store/CapList.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace vl {

class TvlDataMod;
class TvlLayer;

// The kinds of undo snapshot, and the operations that take one.
enum class TBackupMode : std::uint8_t { bkEmpty, bkMove, bkCreate, bkDelete, bkUndo, bkPaste };
using enum TBackupMode;
enum class TUndoOption : std::uint8_t { unMove, unCreate, unDelete, unUndo, unPaste };
using enum TUndoOption;
using TUndo = TFlagSet<TUndoOption, std::uint8_t, 0x1F>;

// The place of an object: its index in its layer and the layer's number (1-based in a multi-layer
// store, 0 in the single-layer one).
struct TObjIndex {
    std::int32_t Index = 0;
    std::int32_t LayerNr = 0;
    friend constexpr bool operator==(const TObjIndex&, const TObjIndex&) = default;
};

// The class of the layers that a store makes: a factory of a `TvlLayer` or a descendant, taking the
// layer's name and capacity. An empty function is the null class.
using TLayerClass = std::function<TvlLayer*(const QString& Name, int Capacity)>;

using TBackupEvent = std::function<void(TObject* Sender, TBackupMode BackupMode)>;
using TLayerClassEvent = std::function<void(TLayerClass& NewLayerClass)>;
using TFileVersionEvent = std::function<void(TvlFileHeader& Header, bool& Abort)>;
using TFileStreamEvent = std::function<void(TStream& Stream, bool Loading)>;

using TCounters = std::vector<std::uint16_t>;

// What a data module needs of its undo manager. The manager keeps the snapshots; the module writes
// them.
class TUndoManager {
public:
    virtual ~TUndoManager() = default;
    // Opens a new snapshot of the kind `Mode`, dropping one still open.
    virtual void InitBackup(TBackupMode Mode) = 0;
    // Files the open snapshot.
    virtual void CloseBackup() = 0;
    // The open snapshot, or null.
    virtual TMemoryStream* CurrentBackup() = 0;
    // The kind of the open snapshot.
    virtual TBackupMode CurrentBackupMode() const = 0;
    // Puts the store back one step, or forward again one step.
    virtual void Undo(TvlDataMod& Module) = 0;
    virtual void Redo(TvlDataMod& Module) = 0;
};

// Makes the undo manager of a module with undo from its options and its number of steps. Without a
// factory no module has undo.
using TUndoManagerFactory = std::function<std::unique_ptr<TUndoManager>(TUndo Undo, std::uint8_t Steps)>;
inline TUndoManagerFactory UndoManagerFactory;

// What a store does when a body failed to load: try to bring a class number map in force. True when
// a valid map is now in force and the body is worth another try; `TryStart` is where that try began.
using TLoadRemedy = std::function<bool(TvlDataMod& Module, TStream& Stream, std::int64_t TryStart)>;
inline TLoadRemedy LoadRemedy;
// Frees the class number map in force, if any.
inline std::function<void()> ReleaseMapper;
// Maps a class number read from a stream through the map in force; identity without one.
inline std::function<std::int16_t(std::int16_t ClassNr)> MapClassNr;

class TvlDataMod : public TObjectStore {
public:
    explicit TvlDataMod(TComponent* AOwner);
    ~TvlDataMod() override;

    void Loaded() override;
    // From another data module: the undo options and the selection, deletion, layer class and file
    // version events. `OnBackup` and `OnFileStream` stay.
    void Assign(TPersistent* Source) override;

    // --- What a concrete store provides -----------------------------------------------------------
    virtual std::int32_t GetMaxX() { return 0; }
    virtual std::int32_t GetMinX() { return 0; }
    virtual std::int32_t GetMaxY() { return 0; }
    virtual std::int32_t GetMinY() { return 0; }
    TLimRec GetLimits() override = 0;
    virtual std::int32_t GetCount();
    // Sets every counter to 0 and keeps their number.
    virtual void Clear();
    virtual void CheckLinks(TInvolve Code);
    // Condemns the limits when `AnyObj` may have left them; the next walk rebuilds them.
    void CheckLimits(TvlObject* AnyObj, bool inclBorder) override {
        (void)AnyObj;
        (void)inclBorder;
    }
    virtual TvlObject* ObjectAt(std::int32_t Index, std::int32_t LayerNr);
    virtual TObjIndex IndexOf(TvlObject* AObject);
    virtual void AllObjects(const TAllObjectsProc& Action, void* Params) = 0;
    // The box's walk: `AllObjects`.
    void AllBoxObjects(const TBoxObjectProc& Action, void* Params) override;
    virtual void AllObjectsBack(const TAllObjectsProc& Action, void* Params);
    // The first object for which `Condition` holds. The base walks `AllObjects`; stores search from
    // `StartIndex`.
    virtual TvlObject* FirstObjectWith(const TFirstObjectFunc& Condition, void* Params);
    virtual TvlObject* LastObjectWith(const TFirstObjectFunc& Condition, void* Params);
    virtual TObjIndex FirstIndexWith(const TFirstObjectFunc& Condition, void* Params);
    virtual TObjIndex LastIndexWith(const TFirstObjectFunc& Condition, void* Params);
    void InitLimits() override = 0;
    virtual void RecalcLimits();
    // `Item` is a plain object so that a host can pass an event's sender; a non-object gives -1.
    virtual std::int32_t BringToFront(TObject* Item, bool ZOrder);
    virtual std::int32_t SendToBack(TObject* Item, bool ZOrder);
    // Takes ownership of `AObject` in layer `LayNr`. The base holds nothing and raises `Exception`;
    // the caller then keeps the object.
    virtual void Add(TvlObject* AObject, std::int32_t LayNr);
    // Takes `Item` out of the store without freeing it.
    virtual void Remove(TvlObject* Item);
    // Deletes the selected objects.
    virtual void DeleteObjects();
    bool Empty() override = 0;
    virtual void SaveToStream(TStream& Stream);
    virtual void LoadFromStream(TStream& Stream);
    // The drawing file: header, creator map, body and host data.
    void LoadFromFile(const QString& FileName) override;
    void SaveToFile(const QString& FileName) override;

    // --- Selection --------------------------------------------------------------------------------
    TCapList& MarkCase() const { return *FMarkCase; }
    // The selected objects, in the order of `MarkCase`.
    int MarkCount() const override { return FMarkCase->Count(); }
    TvlObject* Marked(int Index) const override { return FMarkCase->Items(Index); }
    // Null: every member of `MarkCase` gets `isSelected` again, without event. Otherwise an object
    // not selected yet joins `MarkCase` and `OnSelectObject` fires.
    void Select(TvlObject* AnyObj) override;
    // Fires `OnUnselectObject` (also for null), takes `AnyObj` (null: every object) out of the
    // selection and repaints what changed.
    void UnSelect(TvlObject* AnyObj) override;
    // Selects `AnyObj` and draws its mark (null: marks every selected object anew), fires
    // `OnMarkObject` and repaints what changed.
    void Mark(TvlObject* AnyObj) override;
    void UnmarkAll() override { UnSelect(nullptr); }
    // Takes `Item` out of the store and the selection and frees it.
    void Erase(TvlObject* Item);
    // Clears every borrowed reference to `Gone`, which is leaving the drawing: the box's object under
    // the mouse and the selection (null: to every object, for a store that empties or deletes its
    // selection). Every path by which objects leave the drawing calls it before they are freed:
    // `Erase`, `DeleteObjects`, `Clear` and a load that replaces the content. The paste table holds numbers,
    // not objects, and needs nothing.
    void Purge(TvlObject* Gone);
    // The common tail of a deletion: the undo snapshot, `OnDeleteObjects`, an empty selection. The
    // objects are still there, marked `isDeleted`.
    void DoDeleteObjects();

    // --- Counters ---------------------------------------------------------------------------------
    // The next number of counter `CounterIdx`: the array grows (zeroed) to reach it, the entry is
    // incremented (wrapping at 65536) and returned.
    std::uint16_t IncCounter(std::uint16_t CounterIdx) override;
    std::uint16_t DecCounter(std::uint16_t CounterIdx);
    const TCounters& Counters() const { return FCounters; }

    // --- Links ------------------------------------------------------------------------------------
    // The object that a stored link names by class number (through the class number map in force)
    // and number, over all layers; null if none.
    TvlObject* FindObject(TContype ConObj) override;
    static bool ObjectFromID(TvlObject* AnyObject, void* Params);
    // The action of `CheckLinks`: the object's `Involved` with the `TInvolve` at `Params`.
    static void AnyLink(TvlObject* AnyObject, void* Params);
    // The action of the connect pass after a load.
    static void ConnectObjects(TvlObject* AnyObject, void* Params);

    // --- Restore rect -----------------------------------------------------------------------------
    // The restore rect becomes all of the limits and is flushed.
    void Invalidate();
    // True when the limits no longer reach the restore rect on some side.
    bool RangeChanged();

    // --- Extent -----------------------------------------------------------------------------------
    std::int32_t MaxX() { return GetMaxX(); }
    std::int32_t MinX() { return GetMinX(); }
    std::int32_t MaxY() { return GetMaxY(); }
    std::int32_t MinY() { return GetMinY(); }
    TLimRec Limits() { return GetLimits(); }
    std::int32_t Count() { return GetCount(); }
    std::int32_t GetWidth() { return GetMaxX() - GetMinX(); }
    std::int32_t GetHeight() { return GetMaxY() - GetMinY(); }
    std::int32_t Width() { return GetWidth(); }
    std::int32_t Height() { return GetHeight(); }
    TSize GetExtent() { return TSize{GetWidth(), GetHeight()}; }
    TSize Extent() { return GetExtent(); }

    // --- Searches ---------------------------------------------------------------------------------
    const TObjIndex& StartIndex() const { return FStartIndex; }
    void SetStartIndex(const TObjIndex& Value) { FStartIndex = Value; }
    void InitStartIndex() { FStartIndex = TObjIndex{}; }

    // --- Layers and files -------------------------------------------------------------------------
    // The layer class that `OnLayerSetClass` chooses (null if it sets none), else `TvlLayer`.
    TLayerClass LayerSetClass();
    // A new layer of the class from `LayerSetClass`; raises `Exception` for the null class.
    TvlLayer* NewLayer(const QString& Name, int Capacity);
    // Asks `OnCheckFileVersion` about the global `FileHeader`; true when the host refuses the file.
    bool WrongFileVersion();
    // Fires `OnFileStream`.
    void FileStream(TStream& Stream, bool Loading);

    // --- Undo -------------------------------------------------------------------------------------
    TUndo UndoFunction() const { return FUndo; }
    // An empty set forces `UndoSteps` to 0, a set with `UndoSteps` 0 forces it to 1.
    void SetUndoFunction(TUndo Value);
    std::int32_t UndoSteps() const { return FUndoSteps; }
    void SetUndoSteps(std::int32_t Value) { FUndoSteps = Value; }
    TUndoManager* UndoManager() const { return FUndoManager.get(); }
    // The open snapshot; null without undo.
    TMemoryStream* GetBackupMem() const;
    TMemoryStream* BackupMem() const { return GetBackupMem(); }
    void InitBackup(TBackupMode BkMode);
    void CloseBackup();
    // Takes an undo snapshot of the kind `BkMode`: the selected objects for a move, else the body.
    // Nothing without undo.
    virtual void Backup(TBackupMode BkMode);
    void Undo();
    void Redo();

    // --- Events -----------------------------------------------------------------------------------
    TBackupEvent OnBackup;
    TNotifyEvent OnDeleteObjects;
    TObjectEvent OnSelectObject;
    TObjectEvent OnUnselectObject;
    TObjectEvent OnMarkObject;
    TLayerClassEvent OnLayerSetClass;
    TFileVersionEvent OnCheckFileVersion;
    TFileStreamEvent OnFileStream;

    // The operations that take undo snapshots.
    TUndo FUndo;

protected:
    std::unique_ptr<TCapList> FMarkCase;
    TObjIndex FStartIndex;
    std::int32_t FUndoSteps = 0;
    std::unique_ptr<TUndoManager> FUndoManager;
    TCounters FCounters;
};

// A module that holds nothing and always stays empty; adding to it raises.
class TEmptyDataMod : public TvlDataMod {
public:
    explicit TEmptyDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}
    TLimRec GetLimits() override { return EmptyLimRec; }
    std::int32_t GetCount() override { return 0; }
    void AllObjects(const TAllObjectsProc&, void*) override {}
    void InitLimits() override {}
    bool Empty() override { return true; }
    void LoadFromFile(const QString& FileName) override;
    void SaveToFile(const QString& FileName) override;
};

} // namespace vl
