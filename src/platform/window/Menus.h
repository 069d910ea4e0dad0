// Menu items: the framework's `TMenuItem`, a component with a caption, a check mark, an enabled and a
// visible state, a click event and sub-items.
//
// Each item keeps a checkable `QAction` in step with its state, so a host can put the library's
// menus (the layer menus, for one) into its own Qt menus and bars. A trigger of the action calls
// `Click`. Sub-items are borrowed: they belong to their `Owner` as every component does; a sub-item
// that is destroyed takes itself out of its parent's list, and a parent that goes first lets its
// sub-items go.
#pragma once

#include "platform/core/Classes.h"

#include <QString>

#include <memory>
#include <vector>

class QAction;

namespace vl {

class TMenuItem : public TComponent {
public:
    explicit TMenuItem(TComponent* AOwner);
    ~TMenuItem() override;

    const QString& Caption() const { return FCaption; }
    void SetCaption(const QString& Value);
    bool Checked() const { return FChecked; }
    void SetChecked(bool Value);
    bool Enabled() const { return FEnabled; }
    void SetEnabled(bool Value);
    bool Visible() const { return FVisible; }
    void SetVisible(bool Value);

    // Fires `OnClick` with this item as sender, when the item is enabled.
    virtual void Click();

    // Sub-items, in the order they were added.
    void Add(TMenuItem* Item);
    void Remove(TMenuItem* Item);
    void Clear(); // removes and frees every sub-item
    int Count() const { return static_cast<int>(FItems.size()); }
    TMenuItem* Items(int Index) const; // raises the list index error on a bad index
    TMenuItem* Parent() const { return FParent; }

    // The Qt action that shows this item; checkable, and kept in step with the item.
    QAction* Action() const { return FAction.get(); }

    TNotifyEvent OnClick;

private:
    QString FCaption;
    bool FChecked = false;
    bool FEnabled = true;
    bool FVisible = true;
    TMenuItem* FParent = nullptr;     // borrowed
    std::vector<TMenuItem*> FItems;   // borrowed; cleared when they go
    std::unique_ptr<QAction> FAction; // owned
};

} // namespace vl
