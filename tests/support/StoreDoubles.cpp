#include "support/StoreDoubles.h"

#include "objects/TvlObject.h"
#include "platform/core/Exceptions.h"

#include <algorithm>

namespace vl::test {

std::vector<TvlObject*> TStandInStore::MarkList() const {
    std::vector<TvlObject*> list;
    for (int i = 0; i < MarkCount(); ++i) list.push_back(Marked(i));
    return list;
}

TLimRec TStandInStore::GetLimits() {
    if (ThrowOnEmpty) throw Exception(QStringLiteral("broken"));
    TLimRec l = EmptyLimRec;
    if (!ReportsLimits) return l;
    for (const auto& o : Objects) {
        const TLimRec r = o->GetLimits();
        l.Xmin = std::min(l.Xmin, r.Xmin);
        l.Ymin = std::min(l.Ymin, r.Ymin);
        l.Xmax = std::max(l.Xmax, r.Xmax);
        l.Ymax = std::max(l.Ymax, r.Ymax);
    }
    return l;
}

void TStandInStore::AllObjects(const TAllObjectsProc& Action, void* Params) {
    // By index: an action may add objects.
    for (std::size_t i = 0; i < Objects.size(); ++i) Action(Objects[i].get(), Params);
}

void TStandInStore::CheckLinks(TInvolve Code) {
    ++LinkChecks;
    AllObjects(&TvlDataMod::AnyLink, &Code);
}

bool TStandInStore::Empty() {
    if (ThrowOnEmpty) throw Exception(QStringLiteral("broken"));
    return Objects.empty();
}

void TStandInStore::Add(TvlObject* AObject, std::int32_t Layer) {
    if (!TakesAdds) return TvlDataMod::Add(AObject, Layer);
    Objects.emplace_back(AObject);
    Layers.push_back(Layer);
}

void TStandInStore::Backup(TBackupMode Mode) {
    Backups.push_back(Mode);
    TvlDataMod::Backup(Mode);
}

TvlObject* TStandInStore::FindObject(TContype Link) {
    ++Finds;
    for (const auto& o : Objects)
        if (o->ClassNr() == Link.ConType && o->ID() == Link.ConID) return o.get();
    return nullptr;
}

int TStandInStore::MarkCount() const {
    if (Marking == TStandInMarks::OfTheModule) return TvlDataMod::MarkCount();
    return static_cast<int>(Marks.size());
}

TvlObject* TStandInStore::Marked(int I) const {
    if (Marking == TStandInMarks::OfTheModule) return TvlDataMod::Marked(I);
    return Marks.at(static_cast<std::size_t>(I));
}

void TStandInStore::Select(TvlObject* O) {
    if (Marking != TStandInMarks::Flagged) return TvlDataMod::Select(O);
    if (O->State.Contains(isSelected)) return;
    O->State.Include(isSelected);
    Marks.push_back(O);
}

void TStandInStore::UnSelect(TvlObject* O) {
    UnSelects.push_back(O);
    switch (Marking) {
    case TStandInMarks::OfTheModule: TvlDataMod::UnSelect(O); return;
    case TStandInMarks::Flagged:
        if (!O) {
            for (TvlObject* m : Marks) m->RemoveSelectFlag();
            Marks.clear();
            return;
        }
        std::erase(Marks, O);
        O->RemoveSelectFlag();
        return;
    case TStandInMarks::Listed:
        if (!O) Marks.clear();
        return;
    }
}

void TRecordingUndo::InitBackup(TBackupMode Mode) {
    Note("init " + std::to_string(static_cast<int>(Mode)));
    Modes.push_back(Mode);
    OpenMode = Mode;
    Open = std::make_unique<TMemoryStream>();
}

void TRecordingUndo::CloseBackup() {
    Note("close");
    if (Open) Filed.push_back(Open->Bytes());
    Open.reset();
}

TUndoManagerFactory RecordingUndoFactory(TRecordingUndo*& Made, std::vector<std::string>* Log) {
    return [&Made, Log](TUndo, std::uint8_t) {
        auto manager = Log ? std::make_unique<TRecordingUndo>(*Log) : std::make_unique<TRecordingUndo>();
        Made = manager.get();
        return manager;
    };
}

} // namespace vl::test
