// The single-layer data module: forwarding to its layer, deletion of the selected objects, and the
// body's stream form with its failure path.

#include "store/Vlmm.h"

#include "platform/core/Scoped.h"

#include "geometry/FileHeader.h"
#include "store/Layer.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

#include <limits>

namespace vl {

TBoxStore* NewDefaultDataModule(TComponent* AOwner) {
    return new TvlDataModule(AOwner);
}

TvlDataModule::TvlDataModule(TComponent* AOwner) : TvlDataMod(AOwner) {
    FCapacity = 100;
    FObjCase.reset(NewLayer(QString(), static_cast<int>(FCapacity)));
}

TvlDataModule::~TvlDataModule() {
    // The selection refers to objects of the layer: it forgets them before they go.
    FMarkCase->Clear();
    FObjCase.reset();
}

void TvlDataModule::Assign(TPersistent* Source) {
    TvlDataMod::Assign(Source);
    if (auto* other = dynamic_cast<TvlDataModule*>(Source)) FCapacity = other->FCapacity;
}

void TvlDataModule::SetObjects(std::unique_ptr<TvlLayer> Value) {
    FObjCase = std::move(Value);
}

// ---------------------------------------------------------------------------------------------
// Forwarding to the layer
// ---------------------------------------------------------------------------------------------

std::int32_t TvlDataModule::GetMaxX() {
    return FObjCase->MaxX();
}

std::int32_t TvlDataModule::GetMinX() {
    return FObjCase->MinX();
}

std::int32_t TvlDataModule::GetMaxY() {
    return FObjCase->MaxY();
}

std::int32_t TvlDataModule::GetMinY() {
    return FObjCase->MinY();
}

TLimRec TvlDataModule::GetLimits() {
    return FObjCase->Limits();
}

std::int32_t TvlDataModule::GetCount() {
    return FObjCase->Count();
}

void TvlDataModule::Clear() {
    TvlDataMod::Clear();
    FRestoreRect = GetLimits();
    Purge(nullptr);
    FObjCase->FreeAll();
    FObjCase->Clear();
    FObjCase->InitLimits();
    InvalidateRestoreRect();
}

void TvlDataModule::CheckLinks(TInvolve Code) {
    FObjCase->AllObjects(&TvlDataMod::AnyLink, &Code);
}

void TvlDataModule::CheckLimits(TvlObject* AnyObj, bool noBorder) {
    if (!FObjCase->State.Contains(lsNewLimits) && FObjCase->IsOutsideLimits(AnyObj, noBorder))
        FObjCase->InitLimits();
}

TvlObject* TvlDataModule::ObjectAt(std::int32_t Index, std::int32_t) {
    if (Index >= FObjCase->Count()) return nullptr;
    return FObjCase->Items(Index);
}

TObjIndex TvlDataModule::IndexOf(TvlObject* AObject) {
    return TObjIndex{FObjCase->IndexOf(AObject), 0};
}

void TvlDataModule::AllObjects(const TAllObjectsProc& Action, void* Params) {
    FObjCase->AllObjects(Action, Params);
}

void TvlDataModule::AllObjectsBack(const TAllObjectsProc& Action, void* Params) {
    FObjCase->AllObjectsBack(Action, Params);
}

TvlObject* TvlDataModule::FirstObjectWith(const TFirstObjectFunc& Condition, void* Params) {
    FObjCase->SetStartIndex(FStartIndex.Index);
    TvlObject* result = FObjCase->FirstObjectWith(Condition, Params);
    InitStartIndex();
    return result;
}

TvlObject* TvlDataModule::LastObjectWith(const TFirstObjectFunc& Condition, void* Params) {
    FObjCase->SetStartIndex(FStartIndex.Index);
    TvlObject* result = FObjCase->LastObjectWith(Condition, Params);
    InitStartIndex();
    return result;
}

TObjIndex TvlDataModule::FirstIndexWith(const TFirstObjectFunc& Condition, void* Params) {
    TObjIndex result{0, FStartIndex.LayerNr};
    FObjCase->SetStartIndex(FStartIndex.Index);
    result.Index = FObjCase->FirstIndexWith(Condition, Params);
    InitStartIndex();
    return result;
}

TObjIndex TvlDataModule::LastIndexWith(const TFirstObjectFunc& Condition, void* Params) {
    TObjIndex result{0, FStartIndex.LayerNr};
    FObjCase->SetStartIndex(FStartIndex.Index);
    result.Index = FObjCase->LastIndexWith(Condition, Params);
    InitStartIndex();
    return result;
}

void TvlDataModule::InitLimits() {
    FObjCase->InitLimits();
}

void TvlDataModule::RecalcLimits() {
    FObjCase->RecalcLimits();
}

std::int32_t TvlDataModule::BringToFront(TObject* Item, bool ZOrder) {
    auto* obj = dynamic_cast<TvlObject*>(Item);
    if (!obj) return -1;
    return FObjCase->BringToFront(obj, ZOrder);
}

std::int32_t TvlDataModule::SendToBack(TObject* Item, bool ZOrder) {
    auto* obj = dynamic_cast<TvlObject*>(Item);
    if (!obj) return -1;
    return FObjCase->SendToBack(obj, ZOrder);
}

void TvlDataModule::Add(TvlObject* AObject, std::int32_t) {
    FObjCase->Add(AObject);
}

void TvlDataModule::Remove(TvlObject* Item) {
    FObjCase->Remove(Item);
}

bool TvlDataModule::Empty() {
    return !FObjCase || FObjCase->Count() == 0;
}

TvlObject* TvlDataModule::FindAt(std::int32_t, std::int32_t x, std::int32_t y) {
    const TLimRec r = LimRec(x, y, x + 1, y + 1);
    // The first entry is read before the count is compared: an empty layer raises the list error.
    int i = 0;
    do {
        TvlObject* obj = FObjCase->Items(i);
        if (obj && obj->Found(r)) return obj;
        ++i;
    } while (i < FObjCase->Count());
    return nullptr;
}

// ---------------------------------------------------------------------------------------------
// Deletion
// ---------------------------------------------------------------------------------------------

void TvlDataModule::DeleteObjects() {
    if (!FMarkCase || FMarkCase->Count() == 0) return;
    CheckLinks(invDelete);
    // From back to front: an unselected slave leaves the selection during this pass.
    FMarkCase->AllObjectsBack([](TvlObject* AnyObject, void*) { AnyObject->CanDelete(); }, nullptr);
    if (FMarkCase->Count() == 0) return;
    DoDeleteObjects();
    // The deleted objects were the selection, which `DoDeleteObjects` has emptied; the object under
    // the mouse is forgotten on every deletion, whether it goes or not. That is the purge of all.
    Purge(nullptr);
    FObjCase->DeleteObjects();
    InvalidateRestoreRect();
}

// ---------------------------------------------------------------------------------------------
// The body
// ---------------------------------------------------------------------------------------------

void TvlDataModule::SaveToStream(TStream& Stream) {
    const TScopedFlag saving(State, dmSaving);
    if (FCounters.size() > std::numeric_limits<std::uint16_t>::max())
        throw EWriteError(QString::fromLatin1(msg::WriteError));
    Stream.WriteUInt16(static_cast<std::uint16_t>(FCounters.size()));
    for (const std::uint16_t counter : FCounters) Stream.WriteUInt16(counter);
    FObjCase->SaveToStream(Stream);
}

void TvlDataModule::LoadBody(TStream& Stream) {
    std::int64_t count = 6;
    if (!vlFileVersionBefore(0x3040)) count = Stream.ReadUInt16();
    // The count comes from the stream: the counters must fit in what follows before they are made.
    if (count * 2 > Stream.Remaining()) throw EReadError(QString::fromLatin1(msg::ReadError));
    TCounters counters(static_cast<std::size_t>(count));
    for (auto& counter : counters) counter = Stream.ReadUInt16();
    FCounters = std::move(counters);

    FObjCase.reset(NewLayer(QString(), static_cast<int>(FCapacity)));
    FObjCase->LoadFromStream(Stream, Owner());
    FObjCase->AllObjects(&TvlDataMod::ConnectObjects, nullptr);
    RecalcLimits();
    FRestoreRect = GetLimits();
    InvalidateRestoreRect();
}

void TvlDataModule::LoadFromStream(TStream& Stream) {
    const TScopedFlag loading(State, dmLoading);
    if (FDrawForm) ActScaleSet = &FDrawForm->ScaleSetting();

    const TCounters keptCounters = FCounters;
    FRestoreRect = GetLimits();
    InvalidateRestoreRect();

    std::unique_ptr<TvlLayer> old = std::move(FObjCase);
    int tries = 2;
    while (tries > 0) {
        const std::int64_t tryStart = Stream.Position();
        try {
            LoadBody(Stream);
            if (FDrawForm) FDrawForm->State.Include(bsNewRange);
            Purge(nullptr);
            old.reset();
            tries = 0;
        } catch (...) {
            if (ReleaseMapper) ReleaseMapper();
            FObjCase = std::move(old);
            FCounters = keptCounters;
            bool retry = false;
            try {
                retry = LoadRemedy && LoadRemedy(*this, Stream, tryStart);
            } catch (...) {
                retry = false;
            }
            if (retry) {
                --tries;
                // The next try needs the old layer kept aside again.
                if (tries > 0) old = std::move(FObjCase);
            } else {
                tries = 0;
            }
        }
    }
    if (ReleaseMapper) ReleaseMapper();
}

} // namespace vl
