// The object list with its two orders, its walks and its circular searches.
#include "store/CapList.h"

#include "objects/Generators.h"
#include "platform/core/Streams.h"

#include <algorithm>

namespace vl {

TCapList::~TCapList() = default;

std::int32_t TCapList::ZValueOf(const TvlObject* Item) {
    const TCustomGenerator* gen = Item->Generator();
    return gen ? gen->ZOrder() : 0;
}

int TCapList::Add(TvlObject* Item) {
    const std::int32_t z = ZValueOf(Item);
    if (State.Contains(lsZOrder) && z != 0 && Count() > 0) {
        const int index = FindZIndex(z);
        Insert(index, Item);
        return index;
    }
    const int index = Count();
    Insert(index, Item);
    return index;
}

int TCapList::FindZIndex(std::int32_t z) const {
    // The first item of a smaller z (signed) gives the place: the new item goes in front of the
    // items of equal or greater z before it and behind all later ones. Items of z 0 compare as 0
    // here, so a positive z goes before them (further back) and a negative z after them.
    const int count = Count();
    for (int i = 0; i < count; ++i)
        if (ZValueOf(Items(i)) < z) return i;
    return count;
}

void TCapList::SetStartIndex(int Value) {
    FStartIndex = Value < Count() ? Value : 0;
}

void TCapList::SaveToStream(TStream& Stream) {
    AllObjects(
        [](TvlObject* AnyObject, void* Params) {
            const TCustomGenerator* gen = AnyObject->Generator();
            if (gen && gen->RtOptions().Contains(roDontSave)) return;
            AnyObject->Persist(static_cast<TStream*>(Params), TPstMode::pstSave);
        },
        &Stream);
}

void TCapList::AllObjects(const TAllObjectsProc& Action, void* Params) {
    const int count = Count();
    for (int i = 0; i < count; ++i)
        if (TvlObject* item = Items(i)) Action(item, Params);
}

void TCapList::AllObjectsBack(const TAllObjectsProc& Action, void* Params) {
    for (int i = Count() - 1; i >= 0; --i)
        if (TvlObject* item = Items(i)) Action(item, Params);
}

bool TCapList::Fits(int Index, const TFirstObjectFunc& Condition, void* Params) const {
    TvlObject* item = Items(Index);
    return item && Condition(item, Params);
}

int TCapList::SearchForward(const TFirstObjectFunc& Condition, void* Params, bool& Wrapped) {
    Wrapped = false;
    const int start = FStartIndex;
    for (int i = start; i < Count(); ++i)
        if (Fits(i, Condition, Params)) return i;
    if (start >= 1) {
        Wrapped = true;
        for (int i = 0; i < start && i < Count(); ++i)
            if (Fits(i, Condition, Params)) return i;
    }
    return -1;
}

int TCapList::SearchBackward(const TFirstObjectFunc& Condition, void* Params, bool& Wrapped) {
    Wrapped = false;
    const int start = FStartIndex;
    const int s = start >= 1 ? std::min(start, Count()) : Count();
    for (int i = s - 1; i >= 0; --i)
        if (Fits(i, Condition, Params)) return i;
    if (start >= 1) {
        Wrapped = true;
        for (int i = Count() - 1; i >= start; --i)
            if (Fits(i, Condition, Params)) return i;
    }
    return -1;
}

TvlObject* TCapList::FirstObjectWith(const TFirstObjectFunc& Condition, void* Params) {
    bool wrapped = false;
    const int index = SearchForward(Condition, Params, wrapped);
    SetStartIndex(0);
    return index >= 0 ? Items(index) : nullptr;
}

int TCapList::FirstIndexWith(const TFirstObjectFunc& Condition, void* Params) {
    bool wrapped = false;
    const int index = SearchForward(Condition, Params, wrapped);
    if (wrapped) SetStartIndex(0);
    return index;
}

TvlObject* TCapList::LastObjectWith(const TFirstObjectFunc& Condition, void* Params) {
    bool wrapped = false;
    const int index = SearchBackward(Condition, Params, wrapped);
    if (wrapped) SetStartIndex(0);
    return index >= 0 ? Items(index) : nullptr;
}

int TCapList::LastIndexWith(const TFirstObjectFunc& Condition, void* Params) {
    bool wrapped = false;
    const int index = SearchBackward(Condition, Params, wrapped);
    if (wrapped) SetStartIndex(0);
    return index;
}

} // namespace vl
