// The parts of the abstract object store that do not depend on how objects are held: selection,
// counters, the restore rect, link lookup, layer class, file events and undo glue.

#include "store/DataModBase.h"

#include "platform/core/Assert.h"
#include "platform/services/Infobox.h"
#include "store/Layer.h"
#include "surface/Drawbox.h"

namespace vl {

namespace {

[[noreturn]] void AbstractCall() {
    throw EAbstractError(QString::fromLatin1(msg::AbstractError));
}

} // namespace

TvlDataMod::TvlDataMod(TComponent* AOwner) : TObjectStore(AOwner) {
    FMarkCase = std::make_unique<TCapList>();
    FMarkCase->State.Include(lsZOrder);
    InitRestoreRect();
}

TvlDataMod::~TvlDataMod() {
    FMarkCase.reset();
    FUndoManager.reset();
}

void TvlDataMod::Loaded() {
    TEnvironment::Loaded();
    // Undo exists only for a module read from a form; later changes of the steps have no effect.
    if (!ComponentState().Contains(csDesigning) && FUndoSteps > 0 && UndoManagerFactory)
        FUndoManager = UndoManagerFactory(FUndo, static_cast<std::uint8_t>(FUndoSteps & 0xFF));
}

void TvlDataMod::Assign(TPersistent* Source) {
    auto* other = dynamic_cast<TvlDataMod*>(Source);
    if (!other) {
        TEnvironment::Assign(Source);
        return;
    }
    FUndo = other->FUndo;
    OnDeleteObjects = other->OnDeleteObjects;
    OnSelectObject = other->OnSelectObject;
    OnUnselectObject = other->OnUnselectObject;
    OnMarkObject = other->OnMarkObject;
    OnLayerSetClass = other->OnLayerSetClass;
    OnCheckFileVersion = other->OnCheckFileVersion;
}

// ---------------------------------------------------------------------------------------------
// What a concrete store provides
// ---------------------------------------------------------------------------------------------

std::int32_t TvlDataMod::GetCount() {
    AbstractCall();
}

void TvlDataMod::Clear() {
    std::fill(FCounters.begin(), FCounters.end(), std::uint16_t{0});
}

void TvlDataMod::CheckLinks(TInvolve) {
    AbstractCall();
}

TvlObject* TvlDataMod::ObjectAt(std::int32_t, std::int32_t) {
    AbstractCall();
}

TObjIndex TvlDataMod::IndexOf(TvlObject*) {
    AbstractCall();
}

void TvlDataMod::AllObjectsBack(const TAllObjectsProc&, void*) {
    AbstractCall();
}

TvlObject* TvlDataMod::FirstObjectWith(const TFirstObjectFunc& Condition, void* Params) {
    TvlObject* found = nullptr;
    AllObjects(
        [&](TvlObject* Obj, void* P) {
            if (!found && Condition(Obj, P)) found = Obj;
        },
        Params);
    return found;
}

TvlObject* TvlDataMod::LastObjectWith(const TFirstObjectFunc&, void*) {
    AbstractCall();
}

TObjIndex TvlDataMod::FirstIndexWith(const TFirstObjectFunc&, void*) {
    AbstractCall();
}

TObjIndex TvlDataMod::LastIndexWith(const TFirstObjectFunc&, void*) {
    AbstractCall();
}

void TvlDataMod::RecalcLimits() {
    AbstractCall();
}

std::int32_t TvlDataMod::BringToFront(TObject*, bool) {
    AbstractCall();
}

std::int32_t TvlDataMod::SendToBack(TObject*, bool) {
    AbstractCall();
}

void TvlDataMod::Add(TvlObject*, std::int32_t) {
    throw Exception(QStringLiteral("This data module cannot hold objects"));
}

void TvlDataMod::Remove(TvlObject*) {
    AbstractCall();
}

void TvlDataMod::DeleteObjects() {
    AbstractCall();
}

void TvlDataMod::SaveToStream(TStream&) {
    AbstractCall();
}

void TvlDataMod::LoadFromStream(TStream&) {
    AbstractCall();
}

void TvlDataMod::LoadFromFile(const QString& FileName) {
    throw Exception(QStringLiteral("Drawing files cannot be read by this data module: \"%1\"").arg(FileName));
}

void TvlDataMod::SaveToFile(const QString& FileName) {
    throw Exception(
        QStringLiteral("Drawing files cannot be written by this data module: \"%1\"").arg(FileName));
}

// ---------------------------------------------------------------------------------------------
// Selection
// ---------------------------------------------------------------------------------------------

void TvlDataMod::Select(TvlObject* AnyObj) {
    if (!AnyObj) {
        for (int i = 0; i < FMarkCase->Count(); ++i)
            if (TvlObject* obj = FMarkCase->Items(i)) obj->State.Include(isSelected);
        return;
    }
    if (AnyObj->State.Contains(isSelected)) return;
    FMarkCase->Add(AnyObj);
    AnyObj->State.Include(isSelected);
    if (OnSelectObject) OnSelectObject(AnyObj);
}

void TvlDataMod::UnSelect(TvlObject* AnyObj) {
    if (OnUnselectObject) OnUnselectObject(AnyObj);
    if (AnyObj) {
        AnyObj->RemoveSelectFlag();
        FMarkCase->Remove(AnyObj);
    } else {
        for (int i = 0; i < FMarkCase->Count(); ++i)
            if (TvlObject* obj = FMarkCase->Items(i)) obj->RemoveSelectFlag();
        FMarkCase->Clear();
    }
    InvalidateRestoreRect();
}

void TvlDataMod::Mark(TvlObject* AnyObj) {
    if (AnyObj) {
        Select(AnyObj);
        AnyObj->Mark();
    } else {
        for (int i = 0; i < FMarkCase->Count(); ++i) {
            TvlObject* obj = FMarkCase->Items(i);
            if (!obj) continue;
            obj->SetSizing(false);
            obj->State.Include(isSelected);
            obj->Mark();
        }
    }
    if (OnMarkObject) OnMarkObject(AnyObj);
    InvalidateRestoreRect();
}

void TvlDataMod::Erase(TvlObject* Item) {
    Remove(Item);
    Purge(Item);
    delete Item;
}

void TvlDataMod::Purge(TvlObject* Gone) {
    if (FDrawForm) FDrawForm->ForgetObject(Gone);
    if (!Gone) {
        FMarkCase->Clear();
        return;
    }
    FMarkCase->Remove(Gone);
    VL_ASSERT(FMarkCase->IndexOf(Gone) < 0);
    VL_ASSERT(!FDrawForm || FDrawForm->MouseFnd() != Gone);
}

void TvlDataMod::DoDeleteObjects() {
    if (FUndo.Contains(unDelete)) Backup(bkDelete);
    if (OnDeleteObjects) OnDeleteObjects(this);
    FMarkCase->Clear();
}

// ---------------------------------------------------------------------------------------------
// Counters
// ---------------------------------------------------------------------------------------------

std::uint16_t TvlDataMod::IncCounter(std::uint16_t CounterIdx) {
    if (CounterIdx >= FCounters.size()) FCounters.resize(static_cast<std::size_t>(CounterIdx) + 1, 0);
    return ++FCounters[CounterIdx];
}

std::uint16_t TvlDataMod::DecCounter(std::uint16_t CounterIdx) {
    return --FCounters.at(CounterIdx);
}

// ---------------------------------------------------------------------------------------------
// Links
// ---------------------------------------------------------------------------------------------

TvlObject* TvlDataMod::FindObject(TContype ConObj) {
    if (MapClassNr) ConObj.ConType = MapClassNr(ConObj.ConType);
    State.Include(dmNeedAll);
    return FirstObjectWith(&TvlDataMod::ObjectFromID, &ConObj);
}

bool TvlDataMod::ObjectFromID(TvlObject* AnyObject, void* Params) {
    const auto& link = *static_cast<const TContype*>(Params);
    return AnyObject->ClassNr() == link.ConType && AnyObject->ID() == link.ConID;
}

void TvlDataMod::AnyLink(TvlObject* AnyObject, void* Params) {
    AnyObject->Involved(*static_cast<const TInvolve*>(Params));
}

void TvlDataMod::ConnectObjects(TvlObject* AnyObject, void*) {
    if (AnyObject->State.Contains(isConnect)) AnyObject->Persist(nullptr, TPstMode::pstConnect);
    InfoCount(0);
}

// ---------------------------------------------------------------------------------------------
// Restore rect and extent
// ---------------------------------------------------------------------------------------------

void TvlDataMod::AllBoxObjects(const TBoxObjectProc& Action, void* Params) {
    AllObjects([&Action](TvlObject* AnyObject, void* P) { Action(AnyObject, P); }, Params);
}

void TvlDataMod::Invalidate() {
    FRestoreRect = GetLimits();
    InvalidateRestoreRect();
}

bool TvlDataMod::RangeChanged() {
    return GetMinX() > FRestoreRect.Xmin || GetMaxX() < FRestoreRect.Xmax || GetMinY() > FRestoreRect.Ymin ||
           GetMaxY() < FRestoreRect.Ymax;
}

// ---------------------------------------------------------------------------------------------
// Layers and files
// ---------------------------------------------------------------------------------------------

TLayerClass TvlDataMod::LayerSetClass() {
    if (OnLayerSetClass) {
        TLayerClass chosen;
        OnLayerSetClass(chosen);
        return chosen;
    }
    return [](const QString& Name, int Capacity) { return new TvlLayer(Name, Capacity); };
}

TvlLayer* TvlDataMod::NewLayer(const QString& Name, int Capacity) {
    const TLayerClass layerClass = LayerSetClass();
    if (!layerClass) throw Exception(QStringLiteral("No layer class is set for the data module"));
    return layerClass(Name, Capacity);
}

bool TvlDataMod::WrongFileVersion() {
    bool abort = false;
    if (OnCheckFileVersion) OnCheckFileVersion(FileHeader, abort);
    return abort;
}

void TvlDataMod::FileStream(TStream& Stream, bool Loading) {
    if (OnFileStream) OnFileStream(Stream, Loading);
}

// ---------------------------------------------------------------------------------------------
// Undo
// ---------------------------------------------------------------------------------------------

void TvlDataMod::SetUndoFunction(TUndo Value) {
    if (Value == FUndo) return;
    FUndo = Value;
    if (Value.Empty())
        FUndoSteps = 0;
    else if (FUndoSteps == 0)
        FUndoSteps = 1;
}

TMemoryStream* TvlDataMod::GetBackupMem() const {
    return FUndoManager ? FUndoManager->CurrentBackup() : nullptr;
}

void TvlDataMod::InitBackup(TBackupMode BkMode) {
    if (!FUndoManager) return;
    if (OnBackup) OnBackup(this, BkMode);
    FUndoManager->InitBackup(BkMode);
    SetFileHeader();
}

void TvlDataMod::CloseBackup() {
    if (!FUndoManager) return;
    // A move snapshot ends with the area that the moved objects covered.
    TMemoryStream* mem = FUndoManager->CurrentBackup();
    if (mem && FUndoManager->CurrentBackupMode() == bkMove) {
        mem->WriteInt32(FRestoreRect.Xmin);
        mem->WriteInt32(FRestoreRect.Ymin);
        mem->WriteInt32(FRestoreRect.Xmax);
        mem->WriteInt32(FRestoreRect.Ymax);
    }
    FUndoManager->CloseBackup();
}

void TvlDataMod::Backup(TBackupMode BkMode) {
    if (!FUndoManager) return;
    InitBackup(BkMode);
    if (TMemoryStream* mem = GetBackupMem()) {
        if (BkMode == bkMove) {
            if (FMarkCase->Count() > 0) FMarkCase->SaveToStream(*mem);
        } else if (BkMode != bkEmpty) {
            SaveToStream(*mem);
        }
    }
    CloseBackup();
}

void TvlDataMod::Undo() {
    if (FUndoManager) FUndoManager->Undo(*this);
}

void TvlDataMod::Redo() {
    if (FUndoManager) FUndoManager->Redo(*this);
}

// ---------------------------------------------------------------------------------------------
// The empty module
// ---------------------------------------------------------------------------------------------

void TEmptyDataMod::LoadFromFile(const QString& FileName) {
    throw Exception(QStringLiteral("No data store is installed to load \"%1\"").arg(FileName));
}

void TEmptyDataMod::SaveToFile(const QString& FileName) {
    throw Exception(QStringLiteral("No data store is installed to save \"%1\"").arg(FileName));
}

} // namespace vl
