// The object list: both orders in one array, walks, circular searches, saving.
#include "store/CapList.h"

#include "StoreTestSupport.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Scoped.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <vector>

namespace vl::test {
namespace {

class CapListTest : public StoreFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
    void TearDown() override {
        Owned.clear();
        StoreFixture::TearDown();
    }
    // An object of a tool whose generator has z value `Z`: each z value gets a creator of its own.
    TTestObject* ObjZ(std::int32_t Z, std::uint16_t ID = 0) {
        TTestCreator*& tool = ToolsByZ[Z];
        if (!tool) {
            tool = new TTestCreator(Form.get(),
                                    static_cast<std::int16_t>(-100 - static_cast<int>(ToolsByZ.size())));
            tool->PrepareObject = GiveFixedLimits;
            tool->Generator()->SetZOrder(Z);
        }
        TTestObject* obj = tool->Make(ID);
        Owned.emplace_back(obj);
        return obj;
    }
    // A z-ordering list filled by `Add` with objects of the given z values; IDs count from 1.
    void FillZ(TCapList& List, std::initializer_list<std::int32_t> Zs) {
        std::uint16_t id = 1;
        for (std::int32_t z : Zs) List.Add(ObjZ(z, id++));
    }
    static std::vector<std::int32_t> Zs(const TCapList& List) {
        std::vector<std::int32_t> result;
        for (int i = 0; i < List.Count(); ++i) result.push_back(TCapList::ZValueOf(List[i]));
        return result;
    }
    static std::vector<int> IDs(const TCapList& List) {
        std::vector<int> result;
        for (int i = 0; i < List.Count(); ++i) result.push_back(List[i] ? List[i]->ID() : -1);
        return result;
    }
    // A plain list of `N` objects of z 0 numbered 0 .. N-1.
    void FillPlain(TCapList& List, int N) {
        for (int i = 0; i < N; ++i) List.Add(ObjZ(0, static_cast<std::uint16_t>(i)));
    }

    std::map<std::int32_t, TTestCreator*> ToolsByZ;
    std::vector<std::unique_ptr<TvlObject>> Owned;
};

TEST_F(CapListTest, NewListHasStartIndexZeroAndEmptyState) {
    TCapList list;
    EXPECT_EQ(list.StartIndex(), 0);
    EXPECT_TRUE(list.State.Empty());
    EXPECT_EQ(list.Count(), 0);
}

TEST_F(CapListTest, ListStateFlagsHaveTheirBitPositions) {
    EXPECT_EQ(TListState(lsZOrder).Bits(), 0x01);
    EXPECT_EQ(TListState(lsModified).Bits(), 0x02);
    EXPECT_EQ(TListState(lsNewLimits).Bits(), 0x04);
    EXPECT_EQ(TListState(lsHidden).Bits(), 0x08);
    EXPECT_EQ(TListState(lsDontSave).Bits(), 0x10);
    EXPECT_EQ(TListState(lsDontRemove).Bits(), 0x20);
    EXPECT_EQ(TListState::FromBits(0xFF).Bits(), 0x3F);
}

TEST_F(CapListTest, ListWithoutZOrderAppendsWhateverTheZValue) {
    TCapList list;
    FillZ(list, {1, 5, 3});
    EXPECT_EQ(Zs(list), (std::vector<std::int32_t>{1, 5, 3}));
}

TEST_F(CapListTest, AddToEmptyListWithNonZeroZAppendsAtZero) {
    TCapList list;
    list.State.Include(lsZOrder);
    EXPECT_EQ(list.Add(ObjZ(7)), 0);
    EXPECT_EQ(list.Count(), 1);
}

TEST_F(CapListTest, AddOfZeroZIntoNegativeZItemsGoesToTheEnd) {
    TCapList list;
    list.State.Include(lsZOrder);
    FillZ(list, {-1, -2, -3});
    EXPECT_EQ(list.Add(ObjZ(0, 9)), 3);
    EXPECT_EQ(list[3]->ID(), 9);
}

TEST_F(CapListTest, EqualZGoesInFrontOfItsEqualsAndBehindTheFirstSmaller) {
    TCapList list;
    list.State.Include(lsZOrder);
    FillZ(list, {5, 3, 3, 1});
    ASSERT_EQ(Zs(list), (std::vector<std::int32_t>{5, 3, 3, 1}));
    EXPECT_EQ(list.Add(ObjZ(3, 9)), 3);
    EXPECT_EQ(IDs(list), (std::vector<int>{1, 2, 3, 9, 4}));
}

TEST_F(CapListTest, LargerZLiesFurtherBack) {
    TCapList list;
    list.State.Include(lsZOrder);
    FillZ(list, {1, 5, 3, 0, 9});
    EXPECT_EQ(Zs(list), (std::vector<std::int32_t>{9, 5, 3, 1, 0}));
}

TEST_F(CapListTest, PositiveZGoesBeforeZeroZAndNegativeZAfterIt) {
    TCapList list;
    list.State.Include(lsZOrder);
    FillZ(list, {0, 0});
    EXPECT_EQ(list.Add(ObjZ(2)), 0);
    EXPECT_EQ(list.Add(ObjZ(-2)), 3);
    EXPECT_EQ(Zs(list), (std::vector<std::int32_t>{2, 0, 0, -2}));
}

TEST_F(CapListTest, FindZIndexAnswersCountWhenNoItemIsSmaller) {
    TCapList list;
    list.State.Include(lsZOrder);
    FillZ(list, {5, 4});
    EXPECT_EQ(list.FindZIndex(3), 2);
    EXPECT_EQ(list.FindZIndex(4), 2);
    EXPECT_EQ(list.FindZIndex(5), 1);
    EXPECT_EQ(list.FindZIndex(6), 0);
}

TEST_F(CapListTest, SetStartIndexAtOrBeyondCountGivesZero) {
    TCapList list;
    FillPlain(list, 5);
    list.SetStartIndex(4);
    EXPECT_EQ(list.StartIndex(), 4);
    list.SetStartIndex(5);
    EXPECT_EQ(list.StartIndex(), 0);
    list.SetStartIndex(99);
    EXPECT_EQ(list.StartIndex(), 0);
}

TEST_F(CapListTest, WalksSkipNullEntriesInBothOrders) {
    TCapList list;
    FillPlain(list, 4);
    list.SetItems(2, nullptr);
    std::vector<int> forward;
    std::vector<int> backward;
    list.AllObjects([&](TvlObject* o, void*) { forward.push_back(o->ID()); }, &noParam);
    list.AllObjectsBack([&](TvlObject* o, void*) { backward.push_back(o->ID()); }, &noParam);
    EXPECT_EQ(forward, (std::vector<int>{0, 1, 3}));
    EXPECT_EQ(backward, (std::vector<int>{3, 1, 0}));
}

TEST_F(CapListTest, WalkReadsTheCountOnceOnEntry) {
    TCapList list;
    FillPlain(list, 2);
    TTestObject* late = ObjZ(0, 7);
    int calls = 0;
    list.AllObjects(
        [&](TvlObject*, void*) {
            ++calls;
            list.Add(late);
        },
        &noParam);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(list.Count(), 4);
}

TEST_F(CapListTest, BackwardWalkMayRemoveTheItemItVisits) {
    TCapList list;
    FillPlain(list, 4);
    std::vector<int> visited;
    list.AllObjectsBack(
        [&](TvlObject* o, void*) {
            visited.push_back(o->ID());
            list.Remove(o);
        },
        &noParam);
    EXPECT_EQ(visited, (std::vector<int>{3, 2, 1, 0}));
    EXPECT_EQ(list.Count(), 0);
}

TEST_F(CapListTest, WalkPassesItsParameterBlockThrough) {
    TCapList list;
    FillPlain(list, 2);
    int sum = 0;
    list.AllObjects([](TvlObject* o, void* p) { *static_cast<int*>(p) += o->ID() + 1; }, &sum);
    EXPECT_EQ(sum, 3);
}

TEST_F(CapListTest, SearchFromStartIndexThreeVisitsThreeFourZeroOneTwo) {
    TCapList list;
    FillPlain(list, 5);
    std::vector<int> visited;
    auto none = [&](TvlObject* o, void*) {
        visited.push_back(o->ID());
        return false;
    };
    list.SetStartIndex(3);
    EXPECT_EQ(list.FirstObjectWith(none, &noParam), nullptr);
    EXPECT_EQ(visited, (std::vector<int>{3, 4, 0, 1, 2}));

    visited.clear();
    list.SetStartIndex(3);
    EXPECT_EQ(list.FirstIndexWith(none, &noParam), -1);
    EXPECT_EQ(visited, (std::vector<int>{3, 4, 0, 1, 2}));
}

TEST_F(CapListTest, LastSearchFromStartIndexThreeVisitsTwoOneZeroFourThree) {
    TCapList list;
    FillPlain(list, 5);
    std::vector<int> visited;
    auto none = [&](TvlObject* o, void*) {
        visited.push_back(o->ID());
        return false;
    };
    list.SetStartIndex(3);
    EXPECT_EQ(list.LastObjectWith(none, &noParam), nullptr);
    EXPECT_EQ(visited, (std::vector<int>{2, 1, 0, 4, 3}));

    visited.clear();
    list.SetStartIndex(3);
    EXPECT_EQ(list.LastIndexWith(none, &noParam), -1);
    EXPECT_EQ(visited, (std::vector<int>{2, 1, 0, 4, 3}));
}

TEST_F(CapListTest, SearchesFromZeroRunOnceOverTheList) {
    TCapList list;
    FillPlain(list, 3);
    std::vector<int> visited;
    auto none = [&](TvlObject* o, void*) {
        visited.push_back(o->ID());
        return false;
    };
    list.FirstIndexWith(none, &noParam);
    EXPECT_EQ(visited, (std::vector<int>{0, 1, 2}));
    visited.clear();
    list.LastIndexWith(none, &noParam);
    EXPECT_EQ(visited, (std::vector<int>{2, 1, 0}));
}

TEST_F(CapListTest, SearchesOnEmptyListFindNothing) {
    TCapList list;
    auto any = [](TvlObject*, void*) { return true; };
    EXPECT_EQ(list.FirstObjectWith(any, &noParam), nullptr);
    EXPECT_EQ(list.LastObjectWith(any, &noParam), nullptr);
    EXPECT_EQ(list.FirstIndexWith(any, &noParam), -1);
    EXPECT_EQ(list.LastIndexWith(any, &noParam), -1);
}

TEST_F(CapListTest, SearchesSkipNullEntries) {
    TCapList list;
    FillPlain(list, 3);
    list.SetItems(0, nullptr);
    int calls = 0;
    auto any = [&](TvlObject*, void*) {
        ++calls;
        return true;
    };
    EXPECT_EQ(list.FirstIndexWith(any, &noParam), 1);
    EXPECT_EQ(calls, 1);
}

TEST_F(CapListTest, SearchFindsFirstAndLastItemThatFits) {
    TCapList list;
    FillPlain(list, 6);
    auto odd = [](TvlObject* o, void*) { return o->ID() % 2 == 1; };
    EXPECT_EQ(list.FirstObjectWith(odd, &noParam)->ID(), 1);
    EXPECT_EQ(list.LastObjectWith(odd, &noParam)->ID(), 5);
    EXPECT_EQ(list.FirstIndexWith(odd, &noParam), 1);
    EXPECT_EQ(list.LastIndexWith(odd, &noParam), 5);
}

TEST_F(CapListTest, SearchConditionReceivesTheParameterBlock) {
    TCapList list;
    FillPlain(list, 6);
    int wanted = 4;
    auto byID = [](TvlObject* o, void* p) { return o->ID() == *static_cast<int*>(p); };
    EXPECT_EQ(list.FirstIndexWith(byID, &wanted), 4);
}

TEST_F(CapListTest, FirstObjectWithAlwaysResetsTheStartIndex) {
    TCapList list;
    FillPlain(list, 5);
    list.SetStartIndex(2);
    auto any = [](TvlObject*, void*) { return true; };
    EXPECT_EQ(list.FirstObjectWith(any, &noParam)->ID(), 2);
    EXPECT_EQ(list.StartIndex(), 0);
}

TEST_F(CapListTest, OtherSearchesKeepTheStartIndexOnAHitInTheFirstPass) {
    TCapList list;
    FillPlain(list, 5);
    auto any = [](TvlObject*, void*) { return true; };
    list.SetStartIndex(2);
    EXPECT_EQ(list.FirstIndexWith(any, &noParam), 2);
    EXPECT_EQ(list.StartIndex(), 2);
    EXPECT_EQ(list.LastIndexWith(any, &noParam), 1);
    EXPECT_EQ(list.StartIndex(), 2);
    EXPECT_EQ(list.LastObjectWith(any, &noParam)->ID(), 1);
    EXPECT_EQ(list.StartIndex(), 2);
}

TEST_F(CapListTest, OtherSearchesResetTheStartIndexAfterTheWrapRound) {
    TCapList list;
    FillPlain(list, 5);
    auto isZero = [](TvlObject* o, void*) { return o->ID() == 0; };
    auto isFour = [](TvlObject* o, void*) { return o->ID() == 4; };
    list.SetStartIndex(2);
    EXPECT_EQ(list.FirstIndexWith(isZero, &noParam), 0);
    EXPECT_EQ(list.StartIndex(), 0);
    list.SetStartIndex(2);
    EXPECT_EQ(list.LastIndexWith(isFour, &noParam), 4);
    EXPECT_EQ(list.StartIndex(), 0);
    list.SetStartIndex(2);
    EXPECT_EQ(list.LastObjectWith(isFour, &noParam)->ID(), 4);
    EXPECT_EQ(list.StartIndex(), 0);
}

TEST_F(CapListTest, BadIndexRaisesListError) {
    TCapList list;
    FillPlain(list, 2);
    EXPECT_THROW(list.Items(2), EListError);
    EXPECT_THROW(list.Items(-1), EListError);
    EXPECT_THROW(list.SetItems(5, nullptr), EListError);
}

TEST_F(CapListTest, ListDoesNotOwnItsObjects) {
    TTestObject* obj = ObjZ(0);
    const auto before = obj->Generator()->Instance();
    {
        TCapList list;
        list.Add(obj);
    }
    EXPECT_EQ(obj->Generator()->Instance(), before);
}

TEST_F(CapListTest, SaveToStreamWritesEachObjectWithoutCountOrEndMark) {
    TCapList list;
    TTestObject* a = ToolA->Make(1, 10, 20);
    TTestObject* b = ToolB->Make(2, -1, 2);
    Owned.emplace_back(a);
    Owned.emplace_back(b);
    list.Add(a);
    list.Add(b);
    TMemoryStream stream;
    list.SaveToStream(stream);
    EXPECT_EQ(stream.Bytes(), HexBytes("FBFF 0100 0100 0A000000 14000000"
                                       "FAFF 0200 0100 FFFFFFFF 02000000"));
}

TEST_F(CapListTest, SaveToStreamLeavesOutObjectsOfDontSaveTools) {
    TCapList list;
    TTestObject* a = ToolA->Make(1);
    TTestObject* b = ToolB->Make(2);
    Owned.emplace_back(a);
    Owned.emplace_back(b);
    list.Add(a);
    list.Add(b);
    ToolA->Generator()->SetRtOptions(TRuntimeOptions{roDontSave});
    TMemoryStream stream;
    list.SaveToStream(stream);
    EXPECT_EQ(stream.Bytes(), HexBytes("FAFF 0200 0100 00000000 00000000"));
}

} // namespace
} // namespace vl::test
