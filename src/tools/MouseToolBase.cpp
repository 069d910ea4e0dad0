// The tool base: how a tool becomes the current tool of its draw box, its button link, and the
// object-under-the-mouse protocol.

#include "tools/MouseToolBase.h"

#include "objects/TvlObject.h"
#include "platform/services/Services.h"
#include "platform/window/Buttons.h"
#include "store/DataModBase.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

namespace vl {

// ---------------------------------------------------------------------------------------------
// TMouseTool
// ---------------------------------------------------------------------------------------------

namespace {

// The button classes a tool links to, tested in this order.
bool IsLinkableButton(TControl* Control) {
    return dynamic_cast<TButton*>(Control) || dynamic_cast<TBitBtn*>(Control) ||
           dynamic_cast<TSpeedButton*>(Control) || dynamic_cast<TToolButton*>(Control);
}

} // namespace

TMouseTool::~TMouseTool() {
    // A tool that goes while current leaves its box without a current tool.
    if (FDrawForm && FDrawForm->Tool() == this) FDrawForm->SetTool(nullptr);
}

void TMouseTool::Notification(TComponent* AComponent, TOperation Operation) {
    TEnvironment::Notification(AComponent, Operation);
    if (Operation == opRemove && AComponent == FButton) FButton = nullptr;
}

void TMouseTool::SetButton(TControl* Value) {
    if (Value == FButton) return;
    if (FButton && IsLinkableButton(FButton)) {
        FButton->OnClick = nullptr;
        static_cast<TCustomButtonControl*>(FButton)->SetAction(nullptr);
    }
    if (FButton) FButton->RemoveFreeNotification(this);
    FButton = Value;
    if (FButton) FButton->FreeNotification(this);
    if (Value && IsLinkableButton(Value)) Value->OnClick = [this](TObject* Sender) { Activate(Sender); };
}

TColor TMouseTool::GetclNeutral() const {
    return FDrawForm ? FDrawForm->Color() : clWhite;
}

void TMouseTool::Init() {
    if (FOptions.Contains(toDefaultTool)) Activate(this);
}

void TMouseTool::Terminate() {
    ClipCursor(nullptr);
    if (OnTerminate) OnTerminate(this);
}

void TMouseTool::Activate(TObject*) {
    if (!FDrawForm) return;
    if (TBoxTool* former = FDrawForm->Tool()) former->Terminate();
    FDrawForm->SetTool(this);
    FDrawForm->SetCursor(FCursor);
    ActScaleSet = &FDrawForm->ScaleSetting();
    if (OnActivate) OnActivate(this);
}

void TMouseTool::LMouseDown(TShiftState, const TPoint&) {}
void TMouseTool::LMouseUp(TShiftState, const TPoint&) {}
void TMouseTool::MouseMove(TShiftState, const TPoint&) {}
void TMouseTool::LeftDblClk(TShiftState, const TPoint&) {}

void TMouseTool::RMouseDown(TShiftState, const TPoint&) {
    SetDefaultTool();
}

void TMouseTool::RMouseUp(TShiftState, const TPoint&) {}
void TMouseTool::RightDblClk(TShiftState, const TPoint&) {}

bool TMouseTool::KeyDown(std::uint16_t&, TShiftState) {
    return false;
}

bool TMouseTool::KeyUp(std::uint16_t&, TShiftState) {
    return false;
}

void TMouseTool::Scroll(const TScrollProc&, const TPoint&) {}

void TMouseTool::SetDefaultTool() {
    if (!FOptions.Contains(toDefaultTool) && FDrawForm) FDrawForm->SetDefaultTool();
}

// ---------------------------------------------------------------------------------------------
// TSaveTool
// ---------------------------------------------------------------------------------------------

TvlDataMod* TSaveTool::GetDataModule() const {
    return FDrawForm ? dynamic_cast<TvlDataMod*>(FDrawForm->DataModule()) : nullptr;
}

TLimRec* TSaveTool::GetRestoreRect() const {
    TvlDataMod* dm = GetDataModule();
    return dm ? &dm->FRestoreRect : nullptr;
}

TCapList* TSaveTool::GetMarkSave() const {
    TvlDataMod* dm = GetDataModule();
    return dm ? &dm->MarkCase() : nullptr;
}

TvlObject* TSaveTool::GetMouseFnd() const {
    return FDrawForm ? dynamic_cast<TvlObject*>(FDrawForm->MouseFnd()) : nullptr;
}

void TSaveTool::SetMouseFnd(TvlObject* Value) {
    if (FDrawForm) FDrawForm->SetMouseFnd(Value);
}

bool TSaveTool::ObjectFound(TvlObject* CurrentObject) {
    bool accept = true;
    if (OnObjectFound) OnObjectFound(CurrentObject, accept);
    return accept;
}

void TSaveTool::ObjectRelease(TvlObject* CurrentObject) {
    if (OnObjectRelease)
        OnObjectRelease(CurrentObject);
    else if (FDrawForm)
        FDrawForm->SetCursor(FCursor);
}

void TSaveTool::FindMouseObject(const TPoint& CurPos) {
    TLimRec r = LimRec(CurPos.x, CurPos.y, CurPos.x + 1, CurPos.y + 1);
    TvlObject* old = GetMouseFnd();
    if (old && old->Found(r)) return;
    TvlDataMod* dm = GetDataModule();
    TvlObject* found = dm ? dm->FirstObjectWith(
                                [this](TvlObject* Obj, void* Params) {
                                    return Obj->Found(*static_cast<TLimRec*>(Params)) && ObjectFound(Obj);
                                },
                                &r)
                          : nullptr;
    SetMouseFnd(found);
    if (old && old != found) ObjectRelease(old);
}

} // namespace vl
