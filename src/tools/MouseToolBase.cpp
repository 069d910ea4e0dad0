// The tool base: how a tool becomes the current tool of its draw box and what it does by default.

#include "tools/MouseToolBase.h"

#include "platform/Services.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

namespace vl {

void TEnvironment::Notification(TComponent* AComponent, TOperation Operation) {
    TComponent::Notification(AComponent, Operation);
    if (!ComponentState().Contains(csDesigning)) return;
    if (Operation == opRemove && AComponent == FDrawForm) FDrawForm = nullptr;
    if (Operation == opInsert && FDrawForm == nullptr) {
        if (auto* box = dynamic_cast<TCustomDrawBox*>(AComponent)) FDrawForm = box;
    }
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
    if (FDrawForm->FTool) FDrawForm->FTool->Terminate();
    FDrawForm->FTool = this;
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

} // namespace vl
