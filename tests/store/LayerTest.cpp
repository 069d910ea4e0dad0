// The layer: ownership, z order moves, incrementally kept limits, deferred deletion, visibility, name.
#include "store/Layer.h"

#include "StoreTestSupport.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Scoped.h"
#include "platform/window/Menus.h"

#include <QAction>

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace vl::test {
namespace {

class LayerTest : public StoreFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
    // An object of no tool with the given limits: its maximal limits are exactly these.
    static TTestObject* Lim(std::int32_t Xmin, std::int32_t Ymin, std::int32_t Xmax, std::int32_t Ymax) {
        auto* obj = new TTestObject();
        obj->Lims = LimRec(Xmin, Ymin, Xmax, Ymax);
        return obj;
    }
    static std::vector<int> IDs(const TCapList& List) {
        std::vector<int> result;
        for (int i = 0; i < List.Count(); ++i) result.push_back(List[i] ? List[i]->ID() : -1);
        return result;
    }
};

TEST_F(LayerTest, NewLayerHasEmptyLimitsNameCapacityAndZOrder) {
    TvlLayer layer(QStringLiteral("Walls"), 40);
    EXPECT_EQ(layer.MinX(), 0x7FFFFFFF);
    EXPECT_EQ(layer.MinY(), 0x7FFFFFFF);
    EXPECT_EQ(layer.MaxX(), -2147483647);
    EXPECT_EQ(layer.MaxY(), -2147483647);
    EXPECT_EQ(layer.Limits(), EmptyLimRec);
    EXPECT_EQ(layer.GetName(), QStringLiteral("Walls"));
    EXPECT_EQ(layer.Capacity(), 40);
    EXPECT_TRUE(layer.State.Contains(lsZOrder));
    EXPECT_FALSE(layer.State.Contains(lsNewLimits));
    EXPECT_TRUE(layer.Visible());
}

TEST_F(LayerTest, LimitsAreWidenedAsObjectsAreAdded) {
    TvlLayer layer;
    layer.Add(Lim(10, 20, 30, 40));
    EXPECT_EQ(layer.Limits(), LimRec(10, 20, 30, 40));
    layer.Add(Lim(15, 5, 25, 45));
    EXPECT_EQ(layer.Limits(), LimRec(10, 5, 30, 45));
    layer.Add(Lim(-100, 10, 11, 12));
    EXPECT_EQ(layer.Limits(), LimRec(-100, 5, 30, 45));
}

TEST_F(LayerTest, AddIncludesPenWidthsOfTheToolInTheLimits) {
    TvlLayer layer;
    TTestObject* obj = ToolA->Make(1);
    obj->Lims = LimRec(10, 10, 20, 20);
    layer.Add(obj);
    // Three pen widths of the tool's pen (width 1) on every side.
    EXPECT_EQ(layer.Limits(), LimRec(7, 7, 23, 23));
}

TEST_F(LayerTest, WideningTellsTheScaleSettingInForce) {
    TvlLayer layer;
    layer.Add(Lim(0, 0, 10, 10));
    ActScaleSet->State.Exclude(scNewLimits);
    layer.Add(Lim(2, 2, 8, 8));
    EXPECT_FALSE(ActScaleSet->State.Contains(scNewLimits));
    layer.Add(Lim(2, 2, 11, 8));
    EXPECT_TRUE(ActScaleSet->State.Contains(scNewLimits));
}

TEST_F(LayerTest, LayerWithOnlyLimitlessObjectsKeepsItsEmptyLimits) {
    TvlLayer layer;
    layer.Add(Lim(-2147483647, -2147483647, 0x7FFFFFFF, 0x7FFFFFFF));
    layer.Add(Lim(-2147483647 - 1, -2147483647 - 1, 0x7FFFFFFF, 0x7FFFFFFF));
    TTestObject* noHorz = Lim(1, 2, 3, 4);
    noHorz->State = isNoHorzLimit | isNoVertLimit;
    layer.Add(noHorz);
    EXPECT_EQ(layer.MinX(), 0x7FFFFFFF);
    EXPECT_EQ(layer.MaxX(), -2147483647);
    EXPECT_GT(layer.MinX(), layer.MaxX());
    EXPECT_EQ(layer.Limits(), EmptyLimRec);
}

TEST_F(LayerTest, LowestMinimumThatStillCountsIsMinus2147483646) {
    TvlLayer layer;
    layer.Add(Lim(-2147483646, -2147483646, 0x7FFFFFFE, 0x7FFFFFFE));
    EXPECT_EQ(layer.Limits(), LimRec(-2147483646, -2147483646, 0x7FFFFFFE, 0x7FFFFFFE));
}

TEST_F(LayerTest, ObjectWithoutHorizontalLimitWidensOnlyVertically) {
    TvlLayer layer;
    TTestObject* obj = Lim(-50, -60, 50, 60);
    obj->State.Include(isNoHorzLimit);
    layer.Add(obj);
    EXPECT_EQ(layer.Limits(), LimRec(0x7FFFFFFF, -60, -2147483647, 60));
    TTestObject* other = Lim(-5, -6, 5, 6);
    other->State.Include(isNoVertLimit);
    layer.Add(other);
    EXPECT_EQ(layer.Limits(), LimRec(-5, -60, 5, 60));
}

TEST_F(LayerTest, UnconnectedSlaveDoesNotWidenTheLimits) {
    TvlLayer layer;
    layer.Add(Lim(0, 0, 10, 10));
    TTestObject* slave = Lim(-100, -100, 100, 100);
    slave->State.Include(isConnect);
    layer.Add(slave);
    EXPECT_EQ(layer.Limits(), LimRec(0, 0, 10, 10));
    EXPECT_EQ(layer.Count(), 2);
}

TEST_F(LayerTest, DeletionWithoutInitLimitsKeepsTheOldLimits) {
    TvlLayer layer;
    layer.Add(Lim(0, 0, 10, 10));
    TTestObject* big = Lim(-100, -100, 100, 100);
    layer.Add(big);
    big->State.Include(isDeleted);
    layer.DeleteObjects();
    EXPECT_EQ(layer.Count(), 1);
    EXPECT_EQ(layer.Limits(), LimRec(-100, -100, 100, 100));
}

TEST_F(LayerTest, LimitsShrinkWhenRecomputedAfterDeletion) {
    TvlLayer layer;
    layer.Add(Lim(0, 0, 10, 10));
    TTestObject* big = Lim(-100, -100, 100, 100);
    layer.Add(big);
    layer.Add(Lim(5, 5, 20, 8));
    big->State.Include(isDeleted);
    layer.InitLimits();
    layer.DeleteObjects();
    EXPECT_EQ(layer.Count(), 2);
    EXPECT_EQ(layer.Limits(), LimRec(0, 0, 20, 10));
}

TEST_F(LayerTest, DeleteObjectsFreesMarkedObjectsAndPacksOnce) {
    TvlLayer layer;
    std::vector<TTestObject*> objs;
    for (std::uint16_t i = 0; i < 5; ++i) {
        objs.push_back(ToolA->Make(i));
        layer.Add(objs.back());
    }
    const auto before = ToolA->Generator()->Instance();
    objs[1]->State.Include(isDeleted);
    objs[3]->State.Include(isDeleted);
    layer.DeleteObjects();
    EXPECT_EQ(IDs(layer), (std::vector<int>{0, 2, 4}));
    EXPECT_EQ(ToolA->Generator()->Instance(), before - 2);
}

TEST_F(LayerTest, RecalcLimitsRebuildsFromAllObjectsAndEndsTheRebuild) {
    TvlLayer layer;
    TTestObject* a = Lim(0, 0, 10, 10);
    layer.Add(a);
    layer.Add(Lim(20, 20, 30, 30));
    a->Lims = LimRec(12, 12, 14, 14);
    layer.RecalcLimits();
    EXPECT_EQ(layer.Limits(), LimRec(12, 12, 30, 30));
    EXPECT_FALSE(layer.State.Contains(lsNewLimits));
}

TEST_F(LayerTest, InitLimitsEmptiesAndMarksTheRebuild) {
    TvlLayer layer;
    layer.Add(Lim(0, 0, 10, 10));
    layer.InitLimits();
    EXPECT_EQ(layer.Limits(), EmptyLimRec);
    EXPECT_TRUE(layer.State.Contains(lsNewLimits));
}

TEST_F(LayerTest, FirstWalkAfterInitLimitsRebuildsThemAndPacks) {
    TvlLayer layer;
    TTestObject* a = Lim(0, 0, 10, 10);
    layer.Add(a);
    layer.Add(Lim(20, 20, 30, 30));
    layer.Add(Lim(40, 40, 50, 50));
    // The third object leaves without being freed here: its entry is cleared.
    TvlObject* third = layer[2];
    layer.SetItems(2, nullptr);
    delete third;
    a->Lims = LimRec(5, 5, 6, 6);
    layer.InitLimits();
    std::vector<TvlObject*> seen;
    layer.AllObjects([&](TvlObject* o, void*) { seen.push_back(o); }, &noParam);
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_EQ(layer.Limits(), LimRec(5, 5, 30, 30));
    EXPECT_FALSE(layer.State.Contains(lsNewLimits));
    EXPECT_EQ(layer.Count(), 2);
}

TEST_F(LayerTest, WalkWithoutRebuildLeavesLimitsAndNullEntries) {
    TvlLayer layer;
    TTestObject* a = Lim(0, 0, 10, 10);
    layer.Add(a);
    layer.Add(Lim(20, 20, 30, 30));
    TvlObject* second = layer[1];
    layer.SetItems(1, nullptr);
    delete second;
    a->Lims = LimRec(5, 5, 6, 6);
    int calls = 0;
    layer.AllObjects([&](TvlObject*, void*) { ++calls; }, &noParam);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(layer.Limits(), LimRec(0, 0, 30, 30));
    EXPECT_EQ(layer.Count(), 2);
}

TEST_F(LayerTest, BackwardWalkAfterInitLimitsRebuildsWithoutPacking) {
    TvlLayer layer;
    layer.Add(Lim(0, 0, 10, 10));
    layer.Add(Lim(20, 20, 30, 30));
    layer.Add(Lim(40, 40, 50, 50));
    TvlObject* middle = layer[1];
    layer.SetItems(1, nullptr);
    delete middle;
    layer.InitLimits();
    std::vector<TvlObject*> seen;
    layer.AllObjectsBack([&](TvlObject* o, void*) { seen.push_back(o); }, &noParam);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0], layer[2]);
    EXPECT_EQ(seen[1], layer[0]);
    EXPECT_EQ(layer.Limits(), LimRec(0, 0, 50, 50));
    EXPECT_FALSE(layer.State.Contains(lsNewLimits));
    EXPECT_EQ(layer.Count(), 3);
}

TEST_F(LayerTest, WalksRunInBothOrders) {
    TvlLayer layer;
    for (std::uint16_t i = 0; i < 4; ++i) layer.Add(ToolA->Make(i));
    std::vector<int> forward;
    std::vector<int> backward;
    layer.AllObjects([&](TvlObject* o, void*) { forward.push_back(o->ID()); }, &noParam);
    layer.AllObjectsBack([&](TvlObject* o, void*) { backward.push_back(o->ID()); }, &noParam);
    EXPECT_EQ(forward, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(backward, (std::vector<int>{3, 2, 1, 0}));
}

struct TOutsideCase {
    const char* Name;
    TLimRec Object;
    bool InclBorder;
    bool Outside;
};

// "(10, 10, 100, 90) with border: inside".
void PrintTo(const TOutsideCase& c, std::ostream* os) {
    *os << "(" << c.Object.Xmin << ", " << c.Object.Ymin << ", " << c.Object.Xmax << ", " << c.Object.Ymax
        << ") " << (c.InclBorder ? "with" : "without") << " border: " << (c.Outside ? "outside" : "inside");
}

class LayerOutsideTest : public LayerTest, public ::testing::WithParamInterface<TOutsideCase> {};

TEST_P(LayerOutsideTest, IsOutsideLimits) {
    const TOutsideCase& c = GetParam();
    TvlLayer layer;
    layer.Add(Lim(0, 0, 100, 100));
    TTestObject probe;
    probe.Lims = c.Object;
    EXPECT_EQ(layer.IsOutsideLimits(&probe, c.InclBorder), c.Outside);
}

INSTANTIATE_TEST_SUITE_P(
    Layer, LayerOutsideTest,
    ::testing::Values(TOutsideCase{"InsideWithBorder", LimRec(10, 10, 90, 90), true, false},
                      TOutsideCase{"InsideNoBorder", LimRec(10, 10, 90, 90), false, false},
                      TOutsideCase{"TouchesRightWithBorder", LimRec(10, 10, 100, 90), true, false},
                      TOutsideCase{"TouchesRightNoBorder", LimRec(10, 10, 100, 90), false, true},
                      TOutsideCase{"TouchesLeftNoBorder", LimRec(0, 10, 90, 90), false, true},
                      TOutsideCase{"TouchesTopNoBorder", LimRec(10, 0, 90, 90), false, true},
                      TOutsideCase{"TouchesBottomNoBorder", LimRec(10, 10, 90, 100), false, true},
                      TOutsideCase{"BeyondRightWithBorder", LimRec(10, 10, 101, 90), true, true},
                      TOutsideCase{"BeyondLeftWithBorder", LimRec(-1, 10, 90, 90), true, true},
                      TOutsideCase{"BeyondTopWithBorder", LimRec(10, -1, 90, 90), true, true},
                      TOutsideCase{"BeyondBottomWithBorder", LimRec(10, 10, 90, 101), true, true}),
    [](const ::testing::TestParamInfo<TOutsideCase>& Info) { return std::string(Info.param.Name); });

// --- z order moves ---------------------------------------------------------------------------------

class LayerZTest : public LayerTest {
protected:
    TTestObject* ObjZ(std::int32_t Z, std::uint16_t ID) {
        TTestCreator*& tool = ToolsByZ[Z];
        if (!tool) {
            tool = new TTestCreator(Form.get(),
                                    static_cast<std::int16_t>(-100 - static_cast<int>(ToolsByZ.size())));
            tool->SetDrawForm(Box);
            tool->Generator()->SetZOrder(Z);
        }
        return tool->Make(ID);
    }
    std::map<std::int32_t, TTestCreator*> ToolsByZ;
};

TEST_F(LayerZTest, AddSortsByZ) {
    TvlLayer layer;
    layer.Add(ObjZ(1, 1));
    layer.Add(ObjZ(5, 2));
    layer.Add(ObjZ(0, 3));
    layer.Add(ObjZ(3, 4));
    EXPECT_EQ(IDs(layer), (std::vector<int>{2, 4, 1, 3}));
}

TEST_F(LayerZTest, SendToBackWithZIntoFiveThreeOneLandsAtOne) {
    TvlLayer layer;
    layer.Add(ObjZ(5, 1));
    layer.Add(ObjZ(3, 2));
    layer.Add(ObjZ(1, 3));
    TTestObject* item = ObjZ(3, 9);
    layer.Insert(3, item);
    EXPECT_EQ(layer.SendToBack(item, true), 1);
    EXPECT_EQ(IDs(layer), (std::vector<int>{1, 9, 2, 3}));
}

TEST_F(LayerZTest, SendToBackWithGreaterZAtIndexZeroGivesOne) {
    TvlLayer layer;
    layer.Add(ObjZ(5, 1));
    layer.Add(ObjZ(0, 2));
    TTestObject* item = ObjZ(0, 9);
    layer.Add(item);
    EXPECT_EQ(layer.SendToBack(item, true), 1);
    EXPECT_EQ(IDs(layer), (std::vector<int>{1, 9, 2}));
}

TEST_F(LayerZTest, SendToBackWithoutGreaterZGoesToZero) {
    TvlLayer layer;
    layer.Add(ObjZ(1, 1));
    layer.Add(ObjZ(2, 2));
    TTestObject* item = ObjZ(7, 9);
    layer.Insert(2, item);
    EXPECT_EQ(layer.SendToBack(item, true), 0);
    EXPECT_EQ(IDs(layer), (std::vector<int>{9, 2, 1}));
}

TEST_F(LayerZTest, SendToBackWithoutZGoesToZero) {
    TvlLayer layer;
    layer.Add(ObjZ(5, 1));
    TTestObject* item = ObjZ(1, 9);
    layer.Add(item);
    EXPECT_EQ(layer.SendToBack(item, false), 0);
    EXPECT_EQ(IDs(layer), (std::vector<int>{9, 1}));
}

TEST_F(LayerZTest, BringToFrontWithZGoesAsFarForwardAsItsZAllows) {
    TvlLayer layer;
    TTestObject* item = ObjZ(3, 9);
    layer.Add(ObjZ(5, 1));
    layer.Add(ObjZ(3, 2));
    layer.Add(item);
    layer.Add(ObjZ(1, 3));
    layer.Add(ObjZ(0, 4));
    layer.SendToBack(item, false);
    ASSERT_EQ(IDs(layer), (std::vector<int>{9, 1, 2, 3, 4}));
    EXPECT_EQ(layer.BringToFront(item, true), 2);
    EXPECT_EQ(IDs(layer), (std::vector<int>{1, 2, 9, 3, 4}));
}

TEST_F(LayerZTest, BringToFrontWithoutZGoesToTheEndAndLeavesZOrderSet) {
    TvlLayer layer;
    TTestObject* item = ObjZ(5, 9);
    layer.Add(item);
    layer.Add(ObjZ(1, 1));
    layer.Add(ObjZ(0, 2));
    EXPECT_EQ(layer.BringToFront(item, false), 2);
    EXPECT_EQ(IDs(layer), (std::vector<int>{1, 2, 9}));
    EXPECT_TRUE(layer.State.Contains(lsZOrder));
    EXPECT_EQ(item->Invalidations, 1);
}

TEST_F(LayerZTest, BringToFrontWithoutZSetsZOrderAlsoWhenItWasClear) {
    TvlLayer layer;
    TTestObject* item = ObjZ(5, 9);
    layer.Add(item);
    layer.State.Exclude(lsZOrder);
    layer.BringToFront(item, false);
    EXPECT_TRUE(layer.State.Contains(lsZOrder));
}

TEST_F(LayerZTest, BringToFrontOfAStrangerAnswersMinusOneWithoutInvalidating) {
    TvlLayer layer;
    layer.Add(ObjZ(1, 1));
    TTestObject stranger(ToolA);
    GiveFixedLimits(stranger);
    EXPECT_EQ(layer.BringToFront(&stranger, true), -1);
    EXPECT_EQ(layer.BringToFront(&stranger, false), -1);
    EXPECT_EQ(layer.SendToBack(&stranger, true), -1);
    EXPECT_EQ(stranger.Invalidations, 0);
    EXPECT_EQ(layer.Count(), 1);
}

TEST_F(LayerZTest, MovesDoNotWidenTheLimits) {
    TvlLayer layer;
    TTestObject* item = ObjZ(1, 1);
    item->Lims = LimRec(0, 0, 1, 1);
    layer.Add(item);
    const TLimRec before = layer.Limits();
    item->Lims = LimRec(-500, -500, 500, 500);
    layer.BringToFront(item, true);
    layer.SendToBack(item, true);
    EXPECT_EQ(layer.Limits(), before);
}

// --- ownership, visibility, name -------------------------------------------------------------------

TEST_F(LayerTest, DestroyingTheLayerFreesItsObjects) {
    const auto before = ToolA->Generator()->Instance();
    {
        TvlLayer layer;
        layer.Add(ToolA->Make(1));
        layer.Add(ToolA->Make(2));
        EXPECT_EQ(ToolA->Generator()->Instance(), before + 2);
    }
    EXPECT_EQ(ToolA->Generator()->Instance(), before);
}

TEST_F(LayerTest, FreeAllFreesObjectsAndLeavesEntriesForTheCaller) {
    TvlLayer layer;
    layer.Add(ToolA->Make(1));
    layer.Add(ToolA->Make(2));
    const auto before = ToolA->Generator()->Instance();
    layer.FreeAll();
    EXPECT_EQ(ToolA->Generator()->Instance(), before - 2);
    EXPECT_EQ(layer.Count(), 2);
    EXPECT_EQ(layer[0], nullptr);
    layer.Clear();
    EXPECT_EQ(layer.Count(), 0);
}

TEST_F(LayerTest, HidingSetsTheHiddenFlagAndPacks) {
    TvlLayer layer;
    layer.Add(ToolA->Make(1));
    layer.Add(ToolA->Make(2));
    TvlObject* first = layer[0];
    layer.SetItems(0, nullptr);
    delete first;
    layer.SetVisible(false);
    EXPECT_TRUE(layer.State.Contains(lsHidden));
    EXPECT_FALSE(layer.Visible());
    EXPECT_EQ(layer.Count(), 1);
    layer.SetVisible(true);
    EXPECT_FALSE(layer.State.Contains(lsHidden));
    EXPECT_TRUE(layer.GetVisible());
}

TEST_F(LayerTest, SwitchInvertsVisibility) {
    TvlLayer layer;
    layer.Switch(nullptr);
    EXPECT_FALSE(layer.Visible());
    layer.Switch(Form.get());
    EXPECT_TRUE(layer.Visible());
}

TEST_F(LayerTest, SwitchFromAMenuItemSetsItsCheckMarkToTheNewVisibility) {
    TvlLayer layer;
    TMenuItem item(nullptr);
    item.SetChecked(true);
    item.OnClick = [&layer](TObject* Sender) { layer.Switch(Sender); };
    item.Click();
    EXPECT_FALSE(layer.Visible());
    EXPECT_FALSE(item.Checked());
    item.Action()->trigger();
    EXPECT_TRUE(layer.Visible());
    EXPECT_TRUE(item.Checked());
}

TEST_F(LayerTest, InvalidateOfAnEmptyLayerDoesNothing) {
    TvlLayer layer;
    Store->FRestoreRect = LimRec(1, 2, 3, 4);
    layer.Invalidate();
    EXPECT_EQ(Store->FRestoreRect, LimRec(1, 2, 3, 4));
}

TEST_F(LayerTest, InvalidateFlushesTheLayerThroughTheDataModuleOfItsFirstObject) {
    TvlLayer layer;
    TTestObject* obj = ToolA->Make(1);
    obj->Lims = LimRec(10, 10, 20, 20);
    layer.Add(obj);
    Store->FRestoreRect = LimRec(1, 2, 3, 4);
    layer.Invalidate();
    // The restore rect was handed to the box and is empty again.
    EXPECT_EQ(Store->FRestoreRect, EmptyLimRec);
}

TEST_F(LayerTest, InvalidateWithoutDataModuleDoesNothing) {
    TvlLayer layer;
    layer.Add(Lim(0, 0, 5, 5));
    Store->FRestoreRect = LimRec(1, 2, 3, 4);
    layer.Invalidate();
    EXPECT_EQ(Store->FRestoreRect, LimRec(1, 2, 3, 4));
}

TEST_F(LayerTest, NameIsAPrivateCopyAndEmptyMeansNone) {
    TvlLayer layer;
    EXPECT_EQ(layer.GetName(), QString());
    QString name = QStringLiteral("Roof");
    layer.SetName(name);
    name[0] = QChar(u'G');
    EXPECT_EQ(layer.GetName(), QStringLiteral("Roof"));
    layer.SetName(QString());
    EXPECT_TRUE(layer.GetName().isEmpty());
}

TEST_F(LayerTest, NameEndsAtItsFirstNulCharacter) {
    TvlLayer layer;
    layer.SetName(QString::fromUtf16(u"ab\0cd", 5));
    EXPECT_EQ(layer.GetName(), QStringLiteral("ab"));
}

} // namespace
} // namespace vl::test
