// The guard on the library's globals: its comparison of snapshots, and that a snapshot sees a change
// of each kind of global (pointer, record, hook, plain function, setting, installed service). Every
// test puts back what it changed before it ends, so the guard itself has nothing to report on them.
#include "support/GlobalsGuard.h"

#include "geometry/FileHeader.h"
#include "geometry/Vltypes.h"
#include "platform/core/Scoped.h"
#include "platform/graphics/Graphics.h"
#include "platform/services/Infobox.h"
#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"
#include "store/DataModBase.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vl::test {
namespace {

// The lines of `ChangedGlobals` between now and the state after `Change` ran; the change is undone by
// `Change`'s own scope before the second snapshot is compared, so only the snapshot taken inside it
// sees the change.
template <class F>
std::vector<std::string> ChangesMadeBy(F Change) {
    const TGlobalsSnapshot before = SnapshotGlobals();
    TGlobalsSnapshot during;
    Change(during);
    EXPECT_TRUE(ChangedGlobals(before, SnapshotGlobals()).empty()) << "the change was not undone";
    return ChangedGlobals(before, during);
}

TEST(GlobalsGuard, SnapshotsOfAnUnchangedStateAreEqual) {
    const TGlobalsSnapshot first = SnapshotGlobals();
    EXPECT_FALSE(first.empty());
    EXPECT_TRUE(ChangedGlobals(first, SnapshotGlobals()).empty());
}

TEST(GlobalsGuard, ComparisonNamesEachDifferingGlobalWithBothStates) {
    const TGlobalsSnapshot before{{"A", "1"}, {"B", "empty"}, {"C", "x"}};
    const TGlobalsSnapshot after{{"A", "1"}, {"B", "assigned f"}, {"C", "y"}};
    EXPECT_EQ(ChangedGlobals(before, after),
              (std::vector<std::string>{"B: was empty, now assigned f", "C: was x, now y"}));
}

TEST(GlobalsGuard, ComparisonReportsAGlobalMissingFromEitherSide) {
    const TGlobalsSnapshot before{{"A", "1"}, {"B", "2"}};
    const TGlobalsSnapshot after{{"B", "2"}, {"C", "3"}};
    EXPECT_EQ(ChangedGlobals(before, after),
              (std::vector<std::string>{"A: was 1, now missing", "C: was missing, now 3"}));
}

// True when one of `Lines` starts with "Name: ".
bool Names(const std::vector<std::string>& Lines, const std::string& Name) {
    for (const std::string& line : Lines)
        if (line.rfind(Name + ": ", 0) == 0) return true;
    return false;
}

TEST(GlobalsGuard, SeesAPointerMoved) {
    TCanvas canvas;
    TScaleSetting scale(&canvas);
    const auto changed = ChangesMadeBy([&](TGlobalsSnapshot& During) {
        TScopedValue<TScaleSetting*> keep(ActScaleSet, &scale);
        During = SnapshotGlobals();
    });
    EXPECT_EQ(changed.size(), 1u);
    EXPECT_TRUE(Names(changed, "ActScaleSet"));
}

TEST(GlobalsGuard, SeesOneFieldOfARecordChanged) {
    TvlFileHeader changedHeader = FileHeader;
    changedHeader.Delphi = 0x08000000;
    const auto changed = ChangesMadeBy([&](TGlobalsSnapshot& During) {
        TScopedValue<TvlFileHeader> keep(FileHeader, changedHeader);
        During = SnapshotGlobals();
    });
    EXPECT_EQ(changed.size(), 1u);
    EXPECT_TRUE(Names(changed, "FileHeader"));
}

TEST(GlobalsGuard, SeesAHookAssigned) {
    const auto changed = ChangesMadeBy([&](TGlobalsSnapshot& During) {
        TScopedValue<std::function<void()>> keep(ReleaseMapper, [] {});
        During = SnapshotGlobals();
    });
    EXPECT_EQ(changed.size(), 1u);
    EXPECT_TRUE(Names(changed, "ReleaseMapper"));
}

TEST(GlobalsGuard, SeesAPlainFunctionReplacedByAnotherOfTheSameType) {
    struct TOtherObject : TvlObject {
        using TvlObject::TvlObject;
    };
    const auto changed = ChangesMadeBy([&](TGlobalsSnapshot& During) {
        TScopedValue<TCapClass> keep(DefaultObjectClass, &NewObjectOf<TOtherObject>);
        During = SnapshotGlobals();
    });
    EXPECT_EQ(changed.size(), 1u);
    EXPECT_TRUE(Names(changed, "DefaultObjectClass"));
}

TEST(GlobalsGuard, SeesASettingAndAFlagChanged) {
    const auto changed = ChangesMadeBy([&](TGlobalsSnapshot& During) {
        TScopedValue<std::int32_t> keepCoord(MaxCoord, MaxCoord + 1);
        TScopedValue<bool> keepBreak(Userbreak, !Userbreak);
        During = SnapshotGlobals();
    });
    EXPECT_EQ(changed.size(), 2u);
    EXPECT_TRUE(Names(changed, "MaxCoord"));
    EXPECT_TRUE(Names(changed, "Userbreak"));
}

TEST(GlobalsGuard, SeesAServiceInstalled) {
    TMessageServiceDouble messages;
    const auto changed = ChangesMadeBy([&](TGlobalsSnapshot& During) {
        TServiceScope<TMessageService> scope(messages);
        During = SnapshotGlobals();
    });
    EXPECT_EQ(changed.size(), 1u);
    EXPECT_TRUE(Names(changed, "MessageService"));
}

} // namespace
} // namespace vl::test
