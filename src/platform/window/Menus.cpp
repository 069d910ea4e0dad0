#include "platform/window/Menus.h"

#include "platform/core/Exceptions.h"
#include "platform/services/Services.h"

#include <QAction>

#include <algorithm>

namespace vl {

TMenuItem::TMenuItem(TComponent* AOwner) : TComponent(AOwner), FAction(std::make_unique<QAction>()) {
    FAction->setCheckable(true);
    QObject::connect(FAction.get(), &QAction::triggered, [this](bool) {
        // The action toggles its own check mark; the item's state is the one that counts.
        FAction->setChecked(FChecked);
        GuardedEntry([this] { Click(); });
    });
}

TMenuItem::~TMenuItem() {
    if (FParent) FParent->Remove(this);
    for (TMenuItem* item : FItems) item->FParent = nullptr;
    FItems.clear();
}

void TMenuItem::SetCaption(const QString& Value) {
    FCaption = Value;
    FAction->setText(Value);
}

void TMenuItem::SetChecked(bool Value) {
    FChecked = Value;
    FAction->setChecked(Value);
}

void TMenuItem::SetEnabled(bool Value) {
    FEnabled = Value;
    FAction->setEnabled(Value);
}

void TMenuItem::SetVisible(bool Value) {
    FVisible = Value;
    FAction->setVisible(Value);
}

void TMenuItem::Click() {
    if (FEnabled && OnClick) OnClick(this);
}

void TMenuItem::Add(TMenuItem* Item) {
    if (!Item || Item == this || Item->FParent == this) return;
    if (Item->FParent) Item->FParent->Remove(Item);
    Item->FParent = this;
    FItems.push_back(Item);
}

void TMenuItem::Remove(TMenuItem* Item) {
    const auto it = std::find(FItems.begin(), FItems.end(), Item);
    if (it == FItems.end()) return;
    FItems.erase(it);
    Item->FParent = nullptr;
}

void TMenuItem::Clear() {
    while (!FItems.empty()) delete FItems.back(); // each item takes itself out of the list
}

TMenuItem* TMenuItem::Items(int Index) const {
    if (Index < 0 || Index >= Count()) throw EListError(msg::ListIndexError(Index));
    return FItems[static_cast<std::size_t>(Index)];
}

} // namespace vl
