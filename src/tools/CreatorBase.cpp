// The creator base: the road from a click to an object, the class choice, IDs and slaves.

#include "tools/CreatorBase.h"

#include "platform/core/Exceptions.h"
#include "platform/services/Services.h"
#include "store/DataModBase.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"

#include <vector>

namespace vl {

TvlCreator::TvlCreator(TComponent* AOwner) : TSaveTool(AOwner) {
    TvlCreator::CreateGenerator();
    FCursor = crCross;
}

TvlCreator::~TvlCreator() {
    // Objects read everything through their tool: those left in the drawing when the tool goes
    // would refer to nothing, so they leave the drawing with it. A box or data module that went
    // first has cleared its reference, and then there is nothing to do.
    if (TvlDataMod* dm = GetDataModule()) {
        std::vector<TvlObject*> mine;
        dm->AllObjects(
            [this, &mine](TvlObject* Obj, void*) {
                if (Obj->Tool() == this) mine.push_back(Obj);
            },
            nullptr);
        for (TvlObject* obj : mine) dm->Erase(obj);
    }
    FGenerator.reset();
}

void TvlCreator::Loaded() {
    TSaveTool::Loaded();
    if (ComponentState().Contains(csDesigning)) return;
    FGenerator->FontBackup = FGenerator->Font().Height();
    Screen.SetCursors(CursorRotate, LoadCursorByName(QStringLiteral("ROTATE")));
}

void TvlCreator::Activate(TObject* Sender) {
    TvlDataMod* dm = GetDataModule();
    if (dm && dm->FUndo.Contains(unCreate)) dm->Backup(bkCreate);
    TSaveTool::Activate(Sender);
}

void TvlCreator::LMouseDown(TShiftState, const TPoint& CurPos) {
    TPoint p = CurPos;
    if (FDrawForm && FDrawForm->Grid().Capture()) FDrawForm->Grid().MatchCoords(p);
    SetNewObj(p);
    if (TvlDataMod* dm = GetDataModule()) dm->InvalidateRestoreRect();
}

void TvlCreator::CreateGenerator() {
    FGenerator = std::make_unique<TGenerator>();
}

void TvlCreator::CheckScaling() {
    FGenerator->FCurrFontHeight = 0;
}

void TvlCreator::ReleaseResources() {
    if (!FGenerator->FFontHandle) return;
    // A font must not be deleted while it is selected: a stock font takes its place first.
    if (ActScaleSet && ActScaleSet->Canvas())
        if (HDC dc = ActScaleSet->Canvas()->HandleAllocated())
            SelectObject(dc, GetStockObject(ANSI_VAR_FONT));
    DeleteObject(FGenerator->FFontHandle);
    FGenerator->FFontHandle = nullptr;
}

void TvlCreator::ObjectSetData(TvlObject* CurObject) {
    if (OnObjectSetData)
        OnObjectSetData(CurObject);
    else
        SetDefaultData(CurObject);
}

void TvlCreator::SetDefaultData(TvlObject*) {}

TCapClass TvlCreator::DefaultClass() {
    return DefaultObjectClass;
}

TvlObject* TvlCreator::SetNewObj(const TPoint&) {
    return nullptr;
}

void TvlCreator::ObjectFont(TvlObject* CurObject) {
    if (!ActScaleSet || !ActScaleSet->Canvas()) return;
    if (TFont* font = CurObject->GetFont()) ActScaleSet->Canvas()->SetFont(*font);
}

std::int16_t TvlCreator::GetID() {
    if (ChangeID) {
        TNewID id = 0;
        ChangeID(this, id);
        return id;
    }
    return static_cast<std::int16_t>(ComponentIndex());
}

TCapClass TvlCreator::GetObjectClass() {
    if (OnObjectSetClass) {
        TCapClass newClass;
        OnObjectSetClass(newClass);
        return newClass;
    }
    return DefaultClass();
}

TvlObject* TvlCreator::CreateObject() {
    TCapClass objectClass = GetObjectClass();
    if (!objectClass) throw Exception(QStringLiteral("No object class chosen for the tool %1").arg(Name()));
    return objectClass(this);
}

TvlObject* TvlCreator::AddToDataModule(std::unique_ptr<TvlObject> AObject) {
    TvlDataMod* dm = GetDataModule();
    if (!dm) throw Exception(QStringLiteral("The tool %1 has no data module").arg(Name()));
    dm->Add(AObject.get(), FGenerator->Layer());
    // The module took the object; had `Add` raised, `AObject` would have freed it.
    return AObject.release();
}

TvlObject* TvlCreator::PlaceNewObject(const TPoint& CurPos) {
    std::unique_ptr<TvlObject> made(CreateObject());
    made->SetPos(CurPos);
    made->Count();
    ObjectSetData(made.get());
    TvlObject* obj = AddToDataModule(std::move(made));
    obj->Invalidate();
    obj->SetVisible(true);
    return obj;
}

namespace {

// The steps of a slave after its position: number, shown, data, added, and invalidated unless the
// data hid it.
void FinishSlave(TvlCreator& Tool, TvlObject* Slave) {
    Slave->Count();
    Slave->SetVisible(true);
    Tool.ObjectSetData(Slave);
}

} // namespace

TvlObject* TvlCreator::CreateSlave(TvlObject* AMaster) {
    std::unique_ptr<TvlObject> made(CreateObject());
    made->SetMaster(AMaster);
    FinishSlave(*this, made.get());
    TvlObject* slave = AddToDataModule(std::move(made));
    if (slave->GetVisible()) slave->Invalidate();
    return slave;
}

TvlObject* TvlCreator::CreateSlaveAt(TvlObject* AMaster, std::int32_t RelX, std::int32_t RelY) {
    std::unique_ptr<TvlObject> made(CreateObject());
    made->SetMaster(AMaster);
    made->SetX(AMaster->GetMinX() + RelX);
    made->SetY(AMaster->GetMinY() + RelY);
    FinishSlave(*this, made.get());
    TvlObject* slave = AddToDataModule(std::move(made));
    if (slave->GetVisible()) slave->Invalidate();
    return slave;
}

void TvlCreator::ObjectColors(TvlObject* CurObject) {
    if (ActScaleSet && ActScaleSet->Canvas()) {
        TCanvas& canvas = *ActScaleSet->Canvas();
        canvas.SetPen(FGenerator->Pen());
        canvas.SetBrush(FGenerator->Brush());
    }
    ObjectFont(CurObject);
    if (OnObjectSetColors) OnObjectSetColors(CurObject);
}

} // namespace vl
