// The component core: `TPersistent` and `TComponent`, with ownership, names, state and notification.
//
// A component belongs to at most one owner. The owner keeps its components in an ordered list, in the
// exact order of their creation (or insertion); nothing ever reorders it, since a tool's identity in a
// drawing file is its index in this list. Removing a component shifts the indexes of the later ones
// down by one.
//
// Ownership is plain C++ and independent of Qt's object tree. An owner frees what it owns: its
// destructor destroys the owned components last to first, telling the remaining components of each
// removal. A component deleted directly with `delete` takes itself out of its owner's list, with
// notification, before it is gone. References between components are raw, borrowed pointers that
// the holder clears in `Notification` when the referenced component is removed.
//
// Note on destruction: `~TComponent` runs after the destructors of derived classes. A derived class
// whose owned components use its own members while they go should call `Destroying()` and
// `DestroyComponents()` at the start of its destructor.
#pragma once

#include "platform/core/Sets.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace vl {

// The framework's root class: anything that can be the sender of an event, or be named in a message
// by its class name. Objects of the library are not copyable; they are referred to by pointer.
class TObject {
public:
    TObject() = default;
    TObject(const TObject&) = delete;
    TObject& operator=(const TObject&) = delete;
    virtual ~TObject();

    // The class name for messages, without namespace ("TComponent"). The default derives it from the
    // run-time type, so derived classes need not override it.
    virtual QString ClassName() const;
};

// A notification event: one assignee, called with the object that sends it. Callers test that it
// is assigned before each call.
using TNotifyEvent = std::function<void(TObject* Sender)>;

// The framework's persistent base: things that can copy their content from one another by `Assign`.
class TPersistent : public TObject {
public:
    TPersistent() = default;
    ~TPersistent() override;

    // Copies the content of `Source`. The base asks the source to do it (`Source->AssignTo(this)`),
    // and raises `EConvertError` "Cannot assign a <source class> to a <own class>" when `Source` is
    // null ("nil") or no side knows how. Overrides handle the sources they know and call the base
    // for the others.
    virtual void Assign(TPersistent* Source);

protected:
    // Copies this object's content into `Dest`. The base raises the assignment error; classes that
    // know how to fill a foreign destination override it.
    virtual void AssignTo(TPersistent* Dest);

    // Raises `EConvertError` "Cannot assign a %1 to a %2" with the class of `Source` ("nil" for null)
    // and this object's class.
    [[noreturn]] void AssignError(const TPersistent* Source) const;
};

enum class TOperation : std::uint8_t { opInsert, opRemove };
using enum TOperation;

// The flags of a component's state, at the framework's bit positions.
enum class TComponentStateFlag : std::uint8_t {
    csLoading = 0,          // properties are being set by the form's loading; `Loaded` follows
    csReading = 1,          // properties are being read right now
    csWriting = 2,          // properties are being written
    csDestroying = 3,       // the component is being destroyed
    csDesigning = 4,        // the component is in a form designer
    csFreeNotification = 8, // the component has free-notification partners
};
using enum TComponentStateFlag;

// A set of `TComponentStateFlag`s, 16 bits wide.
using TComponentState = TFlagSet<TComponentStateFlag, std::uint16_t>;

constexpr TComponentState operator|(TComponentStateFlag a, TComponentStateFlag b) {
    return TComponentState(a) | TComponentState(b);
}

class TComponent : public TPersistent {
public:
    // Creates the component and, with an owner, appends it to the end of the owner's list, which
    // then takes ownership; the owner's `Notification(this, opInsert)` follows.
    explicit TComponent(TComponent* AOwner);
    ~TComponent() override;

    TComponent* Owner() const { return FOwner; }
    // The owned component at `Index`; a bad index raises `EListError`.
    TComponent* Components(int Index) const;
    int ComponentCount() const { return static_cast<int>(FComponents.size()); }
    // The index in the owner's list, -1 without an owner.
    int ComponentIndex() const;

    // Appends `AComponent` to this owner's list and takes ownership of it, then notifies
    // (`opInsert`). A component that has another owner leaves it first. Raises `EComponentError` when
    // its name is already taken here; nothing changes then.
    void InsertComponent(TComponent* AComponent);
    // Notifies the removal (`opRemove`, broadcast to all owned components) and then takes
    // `AComponent` out of the list; the indexes of later components shift down. The component is
    // left without an owner and the caller becomes responsible for deleting it.
    void RemoveComponent(TComponent* AComponent);
    // Destroys all owned components, last to first, each removal notified.
    void DestroyComponents();
    // Sets `csDestroying` on this component and on everything it owns, recursively.
    void Destroying();

    // The owned component of the given name, compared without regard to case; nullptr when there is
    // none or `AName` is empty.
    TComponent* FindComponent(const QString& AName) const;

    const QString& Name() const { return FName; }
    // Renames the component. The name must be empty or a valid identifier (letters, digits and
    // underscores, not starting with a digit), else `EComponentError` "'%1' is not a valid component
    // name". Among the components of one owner a non-empty name is unique without regard to case,
    // else `EComponentError` "A component named %1 already exists".
    void SetName(const QString& NewName);

    std::intptr_t Tag() const { return FTag; }
    void SetTag(std::intptr_t Value) { FTag = Value; }

    TComponentState ComponentState() const { return FComponentState; }
    // Sets or clears `csDesigning`, with `SetChildren` also on all owned components, recursively.
    void SetDesigning(bool Value, bool SetChildren = true);

    // The loading protocol of a host form (the stand-in for reading a form from its resource):
    // `BeginLoading` sets `csLoading` and `csReading`; the host sets the properties; `EndReading`
    // clears `csReading`; `Loaded` clears `csLoading` and lets the component finish its set-up.
    void BeginLoading();
    void EndReading();
    virtual void Loaded();

    // Runs the whole protocol for a host and its components. `BeginLoadingAll` enters the loading
    // state on this component and each component it owns directly. `LoadedAll` clears `csReading` on
    // all of them and calls `Loaded` first on this component, then on each owned component in the order
    // of creation (index 0 first). Components that were not in the loading state are skipped.
    void BeginLoadingAll();
    void LoadedAll();

    // Is told of every component inserted into or removed from this component's owner tree, and of
    // the destruction of free-notification partners. The base forgets a removed component as
    // free-notification partner and passes the notice on to every owned component, last to first,
    // recursively. The walk stays valid when the list changes under it: components that leave during
    // the walk are skipped, components that arrive are not told, nobody is told twice. Overrides clear
    // their references to a removed component and call the base.
    virtual void Notification(TComponent* AComponent, TOperation Operation);

    // Asks to be told (`AComponent->Notification(this, opRemove)`) when this component goes, and tells
    // this component when `AComponent` goes: both sides are partners. Needed only for components of
    // different owners; within one owner the broadcast does it, so nothing is registered then.
    void FreeNotification(TComponent* AComponent);
    // Ends a partnership made by `FreeNotification`, on both sides.
    void RemoveFreeNotification(TComponent* AComponent);

protected:
    // Raises when `AComponent`, a component of this owner, may not change its name from `CurName`
    // to `NewName`. The base checks uniqueness among the owned components.
    virtual void ValidateRename(TComponent* AComponent, const QString& CurName, const QString& NewName);

private:
    void InsertIntoList(TComponent* AComponent);
    void RemoveFromList(TComponent* AComponent);
    void RemoveNotification(TComponent* AComponent);
    void SendFreeNotifications();

    TComponent* FOwner = nullptr;
    std::vector<std::unique_ptr<TComponent>> FComponents; // owned, in creation order, destroyed last to first
    std::uint64_t FListVersion = 0;                       // counts changes of FComponents
    std::vector<TComponent*> FFreeNotifies;               // borrowed partners, told when this one goes
    QString FName;
    std::intptr_t FTag = 0;
    TComponentState FComponentState;
};

// True when `Ident` is a valid component name: a letter or underscore, then letters, digits and
// underscores.
bool IsValidIdent(const QString& Ident);

} // namespace vl
