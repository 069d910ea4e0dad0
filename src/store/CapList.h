// The ordered list of drawing objects, and the flags of such a list.
//
// The list order is the paint order: index 0 is painted first and lies at the back, the last index
// lies in front. The list knows two orders in one array: the plain order of insertion, and an order by
// the z value of each object's generator (with `lsZOrder`). A larger z lies further back; an object
// whose generator has z 0 takes no part in z ordering and always lands at the end.
//
// A `TCapList` holds borrowed references (a data module's selection, a polygon's elements); its
// descendant `TvlLayer` owns its objects. An entry may be null for a short time while a deletion is
// under way, so every walk skips null entries unless it says otherwise.
#pragma once

#include "objects/TvlObject.h"
#include "platform/core/Lists.h"
#include "platform/core/Sets.h"

#include <cstdint>

namespace vl {

class TStream;

// The flags of a list, bit 0 first.
enum class TListStateFlag : std::uint8_t {
    lsZOrder,    // `Add` sorts by the generator's z value
    lsModified,  // kept for the host; the library neither sets nor reads it
    lsNewLimits, // a layer's limits are being rebuilt by the next full walk
    lsHidden,    // the layer is invisible
    lsDontSave,  // the layer is left out of saved files
    lsDontRemove // the layer may not be removed
};
using enum TListStateFlag;
using TListState = TFlagSet<TListStateFlag, std::uint8_t, 0x3F>;

constexpr TListState operator|(TListStateFlag a, TListStateFlag b) {
    return TListState(a) | TListState(b);
}

class TCapList : public TList {
public:
    TCapList() = default;
    ~TCapList() override;

    // Puts `Item` in by its z value (with `lsZOrder`, a z other than 0 and a non-empty list), else at
    // the end, and answers the index it went in at. Hides the framework's untyped `Add`.
    int Add(TvlObject* Item);
    // The index at which an item of value `z` goes: before the first item whose z is smaller, else at
    // `Count`. Reads every item's generator up to there, so the list must be non-empty and free of
    // null entries.
    int FindZIndex(std::int32_t z) const;

    TvlObject* Items(int Index) const { return static_cast<TvlObject*>(Get(Index)); }
    void SetItems(int Index, TvlObject* Item) { Put(Index, Item); }
    TvlObject* operator[](int Index) const { return Items(Index); }
    int IndexOf(const TvlObject* Item) const { return TList::IndexOf(Item); }
    int Remove(TvlObject* Item) { return TList::Remove(Item); }

    int StartIndex() const { return FStartIndex; }
    // Where the next search starts; a value not below `Count` is stored as 0.
    void SetStartIndex(int Value);

    // Saves each object by its `Persist` in `pstSave`, leaving out objects whose generator has
    // `roDontSave`. No count and no end mark.
    virtual void SaveToStream(TStream& Stream);
    // Calls `Action` for every non-null entry, index 0 first. `Count` is read once on entry.
    virtual void AllObjects(const TAllObjectsProc& Action, void* Params);
    // The same from the last index down to 0.
    virtual void AllObjectsBack(const TAllObjectsProc& Action, void* Params);

    // Circular searches from `StartIndex`: forward from it to the end and then, if it is above 0, from
    // 0 up to just before it; backward from just before it (from the end when it is 0) down to 0 and
    // then, if it is above 0, from the end down to it. An entry counts when it is not null and
    // `Condition` holds. Nothing found: null or -1, also on an empty list.
    // `FirstObjectWith` always resets the start index to 0; the other three reset it only when they
    // ran the wrap-round pass.
    TvlObject* FirstObjectWith(const TFirstObjectFunc& Condition, void* Params);
    TvlObject* LastObjectWith(const TFirstObjectFunc& Condition, void* Params);
    int FirstIndexWith(const TFirstObjectFunc& Condition, void* Params);
    int LastIndexWith(const TFirstObjectFunc& Condition, void* Params);

    // The z value of an object: its generator's `ZOrder`, 0 for an object without generator.
    static std::int32_t ZValueOf(const TvlObject* Item);

    TListState State;

protected:
    int FStartIndex = 0;

private:
    // The searches, answering the index found (-1 for none) and whether the wrap-round pass ran.
    int SearchForward(const TFirstObjectFunc& Condition, void* Params, bool& Wrapped);
    int SearchBackward(const TFirstObjectFunc& Condition, void* Params, bool& Wrapped);
    bool Fits(int Index, const TFirstObjectFunc& Condition, void* Params) const;
};

} // namespace vl
