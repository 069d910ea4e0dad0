#include "platform/core/Classes.h"

#include "platform/core/Exceptions.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <typeinfo>

namespace vl {

// --- TPersistent ---

TPersistent::~TPersistent() = default;

void TPersistent::Assign(TPersistent* Source) {
    if (Source != nullptr)
        Source->AssignTo(this);
    else
        AssignError(nullptr);
}

void TPersistent::AssignTo(TPersistent* Dest) {
    // The destination could not take this source, and this source does not know the destination.
    Dest->AssignError(this);
}

void TPersistent::AssignError(const TPersistent* Source) const {
    const QString sourceName = Source != nullptr ? Source->ClassName() : QStringLiteral("nil");
    throw EConvertError(QStringLiteral("Cannot assign a %1 to a %2").arg(sourceName, ClassName()));
}

TObject::~TObject() = default;

QString TObject::ClassName() const {
    const char* mangled = typeid(*this).name();
    int status = 0;
    char* demangled = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    QString name = QString::fromLatin1(status == 0 && demangled != nullptr ? demangled : mangled);
    std::free(demangled);
    // Only the class's own name is wanted, not its namespaces.
    const qsizetype colon = name.lastIndexOf(QLatin1String("::"));
    if (colon >= 0) name = name.mid(colon + 2);
    return name;
}

// --- names ---

bool IsValidIdent(const QString& Ident) {
    if (Ident.isEmpty()) return false;
    const QChar first = Ident.front();
    if (!(first.isLetter() || first == QLatin1Char('_'))) return false;
    return std::all_of(Ident.begin() + 1, Ident.end(),
                       [](QChar c) { return c.isLetter() || c.isDigit() || c == QLatin1Char('_'); });
}

// --- TComponent ---

TComponent::TComponent(TComponent* AOwner) {
    if (AOwner != nullptr) AOwner->InsertComponent(this);
}

TComponent::~TComponent() {
    Destroying();
    SendFreeNotifications();
    DestroyComponents();
    if (FOwner != nullptr) FOwner->RemoveComponent(this);
}

TComponent* TComponent::Components(int Index) const {
    if (Index < 0 || Index >= ComponentCount()) throw EListError(msg::ListIndexError(Index));
    return FComponents[static_cast<std::size_t>(Index)].get();
}

int TComponent::ComponentIndex() const {
    if (FOwner == nullptr) return -1;
    const auto& list = FOwner->FComponents;
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i].get() == this) return static_cast<int>(i);
    return -1;
}

void TComponent::InsertComponent(TComponent* AComponent) {
    if (AComponent == nullptr || AComponent->FOwner == this) return;
    if (AComponent == this)
        throw EComponentError(QStringLiteral("A component can't own itself (%1)").arg(ClassName()));
    ValidateRename(AComponent, QString(), AComponent->FName);
    if (AComponent->FOwner != nullptr) AComponent->FOwner->RemoveComponent(AComponent);
    InsertIntoList(AComponent);
    Notification(AComponent, opInsert);
}

void TComponent::RemoveComponent(TComponent* AComponent) {
    if (AComponent == nullptr || AComponent->FOwner != this) return;
    Notification(AComponent, opRemove);
    RemoveFromList(AComponent);
}

void TComponent::InsertIntoList(TComponent* AComponent) {
    FComponents.emplace_back(AComponent);
    AComponent->FOwner = this;
    ++FListVersion;
}

void TComponent::RemoveFromList(TComponent* AComponent) {
    // Ownership passes back to whoever removes the component: release, never delete, here.
    for (auto it = FComponents.begin(); it != FComponents.end(); ++it) {
        if (it->get() == AComponent) {
            (void)it->release();
            FComponents.erase(it);
            ++FListVersion;
            break;
        }
    }
    AComponent->FOwner = nullptr;
}

void TComponent::DestroyComponents() {
    while (!FComponents.empty()) {
        TComponent* instance = FComponents.back().get();
        RemoveComponent(instance);
        delete instance;
    }
}

void TComponent::Destroying() {
    if (FComponentState.Contains(csDestroying)) return;
    FComponentState.Include(csDestroying);
    for (const auto& component : FComponents) component->Destroying();
}

TComponent* TComponent::FindComponent(const QString& AName) const {
    if (AName.isEmpty()) return nullptr;
    for (const auto& component : FComponents)
        if (QString::compare(component->FName, AName, Qt::CaseInsensitive) == 0) return component.get();
    return nullptr;
}

void TComponent::SetName(const QString& NewName) {
    if (FName == NewName) return;
    if (!NewName.isEmpty() && !IsValidIdent(NewName))
        throw EComponentError(QStringLiteral("'%1' is not a valid component name").arg(NewName));
    if (FOwner != nullptr)
        FOwner->ValidateRename(this, FName, NewName);
    else
        ValidateRename(nullptr, FName, NewName);
    FName = NewName;
}

void TComponent::ValidateRename(TComponent* AComponent, const QString& CurName, const QString& NewName) {
    if (AComponent == nullptr || NewName.isEmpty()) return;
    // A change of case alone keeps the component's own name.
    if (QString::compare(CurName, NewName, Qt::CaseInsensitive) == 0) return;
    if (FindComponent(NewName) != nullptr)
        throw EComponentError(QStringLiteral("A component named %1 already exists").arg(NewName));
}

void TComponent::SetDesigning(bool Value, bool SetChildren) {
    if (Value)
        FComponentState.Include(csDesigning);
    else
        FComponentState.Exclude(csDesigning);
    if (SetChildren)
        for (const auto& component : FComponents) component->SetDesigning(Value, true);
}

void TComponent::BeginLoading() {
    FComponentState |= csLoading | csReading;
}

void TComponent::EndReading() {
    FComponentState.Exclude(csReading);
}

void TComponent::Loaded() {
    FComponentState.Exclude(csLoading);
}

void TComponent::BeginLoadingAll() {
    BeginLoading();
    for (const auto& component : FComponents) component->BeginLoading();
}

void TComponent::LoadedAll() {
    EndReading();
    for (const auto& component : FComponents) component->EndReading();
    if (FComponentState.Contains(csLoading)) Loaded();
    // `Loaded` may create components; walk by index so that the list may grow meanwhile.
    for (int i = 0; i < ComponentCount(); ++i) {
        TComponent* component = FComponents[static_cast<std::size_t>(i)].get();
        if (component->FComponentState.Contains(csLoading)) component->Loaded();
    }
}

void TComponent::Notification(TComponent* AComponent, TOperation Operation) {
    if (Operation == opRemove && AComponent != nullptr) RemoveFreeNotification(AComponent);
    // Last to first, over the components owned when the notice came. A notified component may delete
    // others, or itself, so after the list has changed each one is looked up again before it is told:
    // nobody is told twice, and nobody who has gone is touched.
    if (FComponents.empty()) return;
    std::vector<TComponent*> snapshot;
    snapshot.reserve(FComponents.size());
    for (const auto& component : FComponents) snapshot.push_back(component.get());
    const std::uint64_t version = FListVersion;
    for (auto it = snapshot.rbegin(); it != snapshot.rend(); ++it) {
        if (FListVersion != version &&
            std::none_of(FComponents.begin(), FComponents.end(),
                         [target = *it](const std::unique_ptr<TComponent>& c) { return c.get() == target; }))
            continue;
        (*it)->Notification(AComponent, Operation);
    }
}

void TComponent::FreeNotification(TComponent* AComponent) {
    if (AComponent == nullptr || AComponent == this) return;
    if (FOwner == nullptr || AComponent->FOwner != FOwner) {
        if (std::find(FFreeNotifies.begin(), FFreeNotifies.end(), AComponent) == FFreeNotifies.end()) {
            FFreeNotifies.push_back(AComponent);
            AComponent->FreeNotification(this);
        }
    }
    FComponentState.Include(csFreeNotification);
}

void TComponent::RemoveFreeNotification(TComponent* AComponent) {
    if (AComponent == nullptr) return;
    RemoveNotification(AComponent);
    AComponent->RemoveNotification(this);
}

void TComponent::RemoveNotification(TComponent* AComponent) {
    const auto it = std::find(FFreeNotifies.begin(), FFreeNotifies.end(), AComponent);
    if (it == FFreeNotifies.end()) return;
    FFreeNotifies.erase(it);
    if (FFreeNotifies.empty()) FComponentState.Exclude(csFreeNotification);
}

void TComponent::SendFreeNotifications() {
    // Each partner is taken off both lists before it is told, so that it is told once, and so that
    // no list keeps this component's address even when an override does not call the base.
    while (!FFreeNotifies.empty()) {
        TComponent* partner = FFreeNotifies.back();
        FFreeNotifies.pop_back();
        partner->RemoveNotification(this);
        partner->Notification(this, opRemove);
    }
    FComponentState.Exclude(csFreeNotification);
}

} // namespace vl
