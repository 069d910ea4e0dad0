// A layer: an ordered list of drawing objects that it owns, with their bounding limits, a name,
// visibility and its stream form.
//
// The limits are kept incrementally: adding an object only widens them. To let them shrink (after a
// deletion or a move) they are condemned with `InitLimits`, and the next full walk (`AllObjects`,
// usually a paint) or `RecalcLimits` rebuilds them. Objects without a limit on one side (0x7FFFFFFF
// or below -2147483646), objects marked `isNoHorzLimit`/`isNoVertLimit` on that axis and slaves not
// yet connected after a load never reach the limits.
//
// Deletion is deferred: `DeleteObjects` frees the objects marked `isDeleted`, puts null in their
// entries and packs the list once.
//
// Stream form: name length (4 bytes, signed, characters without the terminator, 0 for no name), the
// name in UTF-16 with its terminating NUL, the objects as their `Persist` writes them (each beginning
// with its 2-byte class number), and the end mark 0x8001.
#pragma once

#include "store/CapList.h"

#include <QString>

#include <cstdint>

namespace vl {

class TComponent;

// The class number that ends the objects of a layer in a stream. No tool can have it.
inline constexpr std::uint16_t LayerEndMark = 0x8001;

class TvlLayer : public TCapList {
public:
    // Empty limits, the name, the list's capacity, and `lsZOrder` set.
    explicit TvlLayer(const QString& aName = QString(), int aCapacity = 0);
    // Frees every object, then the list.
    ~TvlLayer() override;

    // Frees every object. The entries are left null for the caller to clear.
    void FreeAll();
    // The list's `Add`, then, if the object went in, its limits.
    int Add(TvlObject* Item);

    // Takes `Item` out and puts it in again: by its z value with `ZOrder`, else at the very end (and
    // `lsZOrder` is set afterwards in either case). The object is invalidated. Answers the new index,
    // -1 (and nothing else happens) when `Item` is not in the layer.
    int BringToFront(TvlObject* Item, bool ZOrder);
    // Takes `Item` out and puts it in again: at 0 without `ZOrder`; with it, just in front of the
    // last item (from the end) of a greater z, else at 0. The object is invalidated. Answers the new
    // index, or -1 when `Item` is not in the layer.
    int SendToBack(TvlObject* Item, bool ZOrder);

    // Frees the objects marked `isDeleted` and widens the limits by the others, then packs.
    void DeleteObjects();
    // Condemns the limits: empty values and `lsNewLimits`, so that the next walk rebuilds them.
    void InitLimits();
    // Rebuilds the limits from all objects now.
    void RecalcLimits();
    // Widens the limits by the object's maximal limits, telling the scale setting in force.
    void CheckLimits(TvlObject* Item);
    // True when the object reaches beyond a bound, or (without `inclBorder`) also touches one.
    bool IsOutsideLimits(TvlObject* Item, bool inclBorder);

    // With `lsNewLimits` the walk also rebuilds the limits and packs the list afterwards.
    void AllObjects(const TAllObjectsProc& Action, void* Params) override;
    void AllObjectsBack(const TAllObjectsProc& Action, void* Params) override;

    // A non-empty layer repaints its limits through the data module of its first object's tool.
    void Invalidate();

    bool Visible() const { return !State.Contains(lsHidden); }
    bool GetVisible() const { return Visible(); }
    // Shows or hides the layer, packs it and repaints it.
    void SetVisible(bool Value);
    // Inverts `Visible`; it has the shape of a notification so that a layer's menu item can call it.
    void Switch(TObject* Sender);

    const QString& Name() const { return FName; }
    QString GetName() const { return FName; }
    // The name is kept up to its first NUL character, as its stream form ends there.
    void SetName(const QString& Value);

    std::int32_t MaxX() const { return FmaxX; }
    std::int32_t MinX() const { return FminX; }
    std::int32_t MaxY() const { return FmaxY; }
    std::int32_t MinY() const { return FminY; }
    void SetMaxX(std::int32_t Value) { FmaxX = Value; }
    void SetMinX(std::int32_t Value) { FminX = Value; }
    void SetMaxY(std::int32_t Value) { FmaxY = Value; }
    void SetMinY(std::int32_t Value) { FminY = Value; }
    TLimRec Limits() const { return LimRec(FminX, FminY, FmaxX, FmaxY); }

    // Writes the name, the objects (but those of generators with `roDontSave`) and the end mark,
    // reporting progress to the info box; stops taking objects when `Userbreak` is set, and still ends
    // with the end mark.
    void SaveToStream(TStream& Stream) override;
    // Reads the stream form, making each object through the tool of its class number among the
    // components of `AOwner`. The objects are appended in file order, without z ordering and without
    // limits. Everything is read aside first: on failure the layer is as it was. An unknown class
    // number and a stream that ends before the end mark raise the silent `Abort`; a stream that ends
    // inside an object raises what the object's reading raises.
    virtual void LoadFromStream(TStream& Stream, TComponent* AOwner);

protected:
    std::int32_t FminX = EmptyLimMin;
    std::int32_t FminY = EmptyLimMin;
    std::int32_t FmaxX = EmptyLimMax;
    std::int32_t FmaxY = EmptyLimMax;
    QString FName;
};

} // namespace vl
