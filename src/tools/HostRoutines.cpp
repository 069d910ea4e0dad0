#include "tools/HostRoutines.h"

#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

namespace vl {

namespace {

// Runs `Work`, dropping every exception: the host is never disturbed by these routines.
template <class F>
void Silently(F&& Work) {
    try {
        Work();
    } catch (...) {}
}

// The box of the object's tool; raises when a link of the chain is missing.
TCustomDrawBox& BoxOf(TvlObject* Obj) {
    TCustomDrawBox* box = Obj ? Obj->DrawForm() : nullptr;
    if (!box) throw Exception(QStringLiteral("Object without a box"));
    return *box;
}

TvlDataMod& DataModOf(TvlObject* Obj) {
    auto* dm = dynamic_cast<TvlDataMod*>(Obj->GetDataModule());
    if (!dm) throw Exception(QStringLiteral("Object without a data module"));
    return *dm;
}

// Makes the object's box the one in force.
TCustomDrawBox& MakeCurrent(TvlObject* Obj) {
    TCustomDrawBox& box = BoxOf(Obj);
    ActScaleSet = &box.ScaleSetting();
    return box;
}

void ChangeVisibility(TvlObject* Obj, bool Value) {
    if (!Obj) return;
    Obj->SetVisible(Value);
    Obj->Invalidate();
    DataModOf(Obj).InvalidateRestoreRect();
}

} // namespace

void MoveObject(TvlObject* Obj, TPoint Delta) {
    Silently([&] {
        TCustomDrawBox& box = MakeCurrent(Obj);
        TvlDataMod& dm = DataModOf(Obj);
        dm.UnSelect(nullptr);
        Obj->SelectComplete(smSelect);
        dm.CheckLinks(invMove);
        dm.InitBackup(bkMove);
        if (box.Grid().Capture()) box.Grid().MatchCoords(Delta);
        TStream* backup = dm.GetBackupMem();
        for (int i = 0; i < dm.MarkCount(); ++i) {
            TvlObject* moved = dm.Marked(i);
            if (backup) moved->Persist(backup, TPstMode::pstSave);
            moved->StartMove();
            moved->MovePos(Delta);
            moved->EndMove();
        }
        dm.CloseBackup();
        dm.UnSelect(nullptr);
        dm.InvalidateRestoreRect();
    });
}

void MoveObjectTo(TvlObject* Obj, TPoint Pt) {
    Silently([&] {
        if (!Obj) return;
        MakeCurrent(Obj);
        MoveObject(Obj, Point(Pt.x - Obj->X_Log(), Pt.y - Obj->Y_Log()));
    });
}

void MarkObject(TvlObject* Obj) {
    Silently([&] {
        MakeCurrent(Obj);
        Obj->SelectComplete(smSelect);
        DataModOf(Obj).Mark(nullptr);
    });
}

void UnMarkObject(TvlObject* Obj) {
    Silently([&] {
        MakeCurrent(Obj);
        Obj->SelectComplete(smUnselect);
    });
}

void HideObject(TvlObject* Obj) {
    Silently([&] { ChangeVisibility(Obj, false); });
}

void ShowObject(TvlObject* Obj) {
    Silently([&] { ChangeVisibility(Obj, true); });
}

} // namespace vl
