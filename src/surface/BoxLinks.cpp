// The faces through which the draw box reaches the components and objects above it.

#include "surface/BoxLinks.h"

#include "surface/Drawbox.h"

namespace vl {

void TEnvironment::Notification(TComponent* AComponent, TOperation Operation) {
    TComponent::Notification(AComponent, Operation);
    // A borrowed reference never outlives what it points to, at run time as at design time.
    if (Operation == opRemove && AComponent == FDrawForm) FDrawForm = nullptr;
    if (!ComponentState().Contains(csDesigning)) return;
    if (Operation == opInsert && FDrawForm == nullptr) {
        if (auto* box = dynamic_cast<TCustomDrawBox*>(AComponent)) FDrawForm = box;
    }
}

TBoxCreator* FindCreatorByID(TComponent* Owner, std::int32_t ID) {
    if (!Owner) return nullptr;
    if (ID < 0) {
        for (int i = Owner->ComponentCount() - 1; i >= 0; --i) {
            auto* creator = dynamic_cast<TBoxCreator*>(Owner->Components(i));
            if (creator && static_cast<std::int16_t>(creator->GetID()) == static_cast<std::int16_t>(ID))
                return creator;
        }
        return nullptr;
    }
    if (ID < Owner->ComponentCount()) return dynamic_cast<TBoxCreator*>(Owner->Components(ID));
    return nullptr;
}

bool TBoxStore::CompareLimits(const TLimRec& Limits) {
    return GetLimits() == Limits;
}

void TBoxStore::InvalidateRestoreRect() {
    if (FDrawForm) FDrawForm->InvalidateChanges();
    InitRestoreRect();
}

} // namespace vl
