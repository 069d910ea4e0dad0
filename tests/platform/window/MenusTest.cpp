#include "platform/window/Menus.h"
#include "platform/core/Exceptions.h"
#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"

#include <QAction>
#include <gtest/gtest.h>

#include <memory>

using namespace vl;

namespace {

TEST(MenuItem, StateIsMirroredOnItsAction) {
    TMenuItem item(nullptr);
    item.SetCaption(QStringLiteral("Layer 1"));
    item.SetChecked(true);
    item.SetEnabled(false);
    item.SetVisible(false);
    EXPECT_EQ(item.Action()->text(), QStringLiteral("Layer 1"));
    EXPECT_TRUE(item.Action()->isCheckable());
    EXPECT_TRUE(item.Action()->isChecked());
    EXPECT_FALSE(item.Action()->isEnabled());
    EXPECT_FALSE(item.Action()->isVisible());
}

TEST(MenuItem, ClickFiresOnClickWithTheItemAsSenderOnlyWhenEnabled) {
    TMenuItem item(nullptr);
    TObject* sender = nullptr;
    int clicks = 0;
    item.OnClick = [&](TObject* s) {
        sender = s;
        ++clicks;
    };
    item.Click();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(sender, &item);
    item.SetEnabled(false);
    item.Click();
    EXPECT_EQ(clicks, 1);
}

TEST(MenuItem, TriggeringTheActionClicksAndLeavesTheCheckMarkToTheItem) {
    TMenuItem item(nullptr);
    int clicks = 0;
    item.OnClick = [&](TObject*) { ++clicks; };
    item.Action()->trigger();
    EXPECT_EQ(clicks, 1);
    EXPECT_FALSE(item.Checked());
    EXPECT_FALSE(item.Action()->isChecked());
}

TEST(MenuItem, AnExceptionOfAClickGoesToTheErrorServiceAndTheSilentAbortNowhere) {
    TErrorServiceDouble errors;
    TServiceScope<TErrorService> scope(errors);
    TMenuItem item(nullptr);
    item.OnClick = [](TObject*) { throw Exception(QStringLiteral("Menu failed")); };
    EXPECT_NO_THROW(item.Action()->trigger());
    EXPECT_EQ(errors.Messages, QStringList{QStringLiteral("Menu failed")});
    item.OnClick = [](TObject*) { Abort(); };
    EXPECT_NO_THROW(item.Action()->trigger());
    EXPECT_EQ(errors.Messages.size(), 1);
}

TEST(MenuItem, SubItemsKeepTheirOrderAndLeaveWhenDestroyed) {
    TComponent owner(nullptr);
    auto* menu = new TMenuItem(&owner);
    auto* a = new TMenuItem(&owner);
    auto* b = new TMenuItem(&owner);
    menu->Add(a);
    menu->Add(b);
    ASSERT_EQ(menu->Count(), 2);
    EXPECT_EQ(menu->Items(0), a);
    EXPECT_EQ(menu->Items(1), b);
    EXPECT_EQ(b->Parent(), menu);
    delete a;
    ASSERT_EQ(menu->Count(), 1);
    EXPECT_EQ(menu->Items(0), b);
    EXPECT_THROW(menu->Items(1), EListError);
}

TEST(MenuItem, ClearFreesTheSubItems) {
    TComponent owner(nullptr);
    auto* menu = new TMenuItem(&owner);
    menu->Add(new TMenuItem(&owner));
    menu->Add(new TMenuItem(&owner));
    EXPECT_EQ(owner.ComponentCount(), 3);
    menu->Clear();
    EXPECT_EQ(menu->Count(), 0);
    EXPECT_EQ(owner.ComponentCount(), 1);
}

TEST(MenuItem, ParentGoingFirstLetsItsSubItemsGo) {
    TComponent owner(nullptr);
    auto* menu = new TMenuItem(&owner);
    auto* a = new TMenuItem(&owner);
    menu->Add(a);
    delete menu;
    EXPECT_EQ(a->Parent(), nullptr);
}

} // namespace
