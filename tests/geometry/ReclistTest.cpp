#include "geometry/Reclist.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <new>
#include <vector>

#if defined(__linux__)
#include <sys/resource.h>
#endif

using namespace vl;

namespace {

using Rec4 = std::array<std::uint8_t, 4>;

Rec4 R4(std::uint8_t a, std::uint8_t b = 0, std::uint8_t c = 0, std::uint8_t d = 0) {
    return {a, b, c, d};
}

// A list of four-byte records holding 1, 2, 3, ... in their first byte.
void Fill(TRecordList& list, int n) {
    for (int i = 1; i <= n; ++i) {
        const Rec4 r = R4(static_cast<std::uint8_t>(i));
        list.Add(r.data());
    }
}

std::vector<int> FirstBytes(TRecordList& list) {
    std::vector<int> out;
    for (std::int32_t i = 0; i < list.Count(); ++i) out.push_back(static_cast<std::uint8_t*>(list.Get(i))[0]);
    return out;
}

template <typename F>
void ExpectListError(F f, const QString& message) {
    try {
        f();
        ADD_FAILURE() << "no exception";
    } catch (const EListError& e) {
        EXPECT_EQ(e.Message(), message);
    }
}

// A list whose error report returns instead of raising.
class TLenientList : public TRecordList {
public:
    using TRecordList::TRecordList;
    int Errors = 0;
    void Error(TListErrorMsg, std::int32_t) override { ++Errors; }
};

// A list that grows one record at a time.
class TOneByOneList : public TRecordList {
public:
    using TRecordList::TRecordList;
    void Grow() override { SetCapacity(Capacity() + 1); }
};

} // namespace

// --- Creation -------------------------------------------------------------------------------------

TEST(RecordList, CreateComputesTheLargestCapacity) {
    TRecordList eight(8);
    EXPECT_EQ(eight.RecSize(), 8);
    EXPECT_EQ(eight.MaxCapacity(), 0x7FFFFFFF / 8);
    EXPECT_EQ(eight.Count(), 0);
    EXPECT_EQ(eight.Capacity(), 0);
    TRecordList three(3);
    EXPECT_EQ(three.MaxCapacity(), 715827882);
    TRecordList one(1);
    EXPECT_EQ(one.MaxCapacity(), 0x7FFFFFFF);
}

TEST(RecordList, CreateWithRecordSizeZeroRaisesDivisionError) {
    EXPECT_THROW(TRecordList(0), EDivByZero);
}

// --- Growth ---------------------------------------------------------------------------------------

TEST(RecordList, GrowStepsWithTheCapacity) {
    const std::array<std::pair<int, int>, 6> steps{
        {{0, 4}, {8, 12}, {9, 25}, {64, 80}, {65, 81}, {100, 125}}};
    for (const auto& [from, to] : steps) {
        TRecordList list(4);
        list.SetCapacity(from);
        list.Grow();
        EXPECT_EQ(list.Capacity(), to) << from;
    }
}

TEST(RecordList, AddGrowsWhenFullAndAnswersTheIndex) {
    TRecordList list(4);
    for (int i = 0; i < 30; ++i) {
        const Rec4 r = R4(static_cast<std::uint8_t>(i));
        EXPECT_EQ(list.Add(r.data()), i);
    }
    EXPECT_EQ(list.Count(), 30);
    EXPECT_EQ(list.Capacity(), 44); // 4, 8, 12, 28, 44
    for (int i = 0; i < 30; ++i) EXPECT_EQ(static_cast<std::uint8_t*>(list.Get(i))[0], i);
}

TEST(RecordList, ExpandGrowsOnlyWhenFull) {
    TRecordList list(4);
    list.Expand();
    EXPECT_EQ(list.Capacity(), 4);
    Fill(list, 2);
    list.Expand();
    EXPECT_EQ(list.Capacity(), 4);
    Fill(list, 2);
    list.Expand();
    EXPECT_EQ(list.Capacity(), 8);
}

TEST(RecordList, DescendantGrowIsUsedByAdd) {
    TOneByOneList list(4);
    Fill(list, 3);
    EXPECT_EQ(list.Capacity(), 3);
}

TEST(RecordList, AddOfARecordFromInsideTheBlockSurvivesTheReallocation) {
    TRecordList list(4);
    Fill(list, 4);
    ASSERT_EQ(list.Capacity(), list.Count());
    list.Add(list.Get(2));
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2, 3, 4, 3}));
}

// --- Capacity and count ---------------------------------------------------------------------------

TEST(RecordList, SetCapacityBelowCountRaisesCapacityError) {
    TRecordList list(4);
    Fill(list, 3);
    ExpectListError([&] { list.SetCapacity(2); }, msg::ListCapacityError(2));
    EXPECT_EQ(list.Capacity(), 4);
}

TEST(RecordList, SetCapacityAboveTheLargestRaisesCapacityError) {
    TRecordList list(8);
    ExpectListError([&] { list.SetCapacity(list.MaxCapacity() + 1); },
                    msg::ListCapacityError(0x7FFFFFFF / 8 + 1));
    EXPECT_THROW(list.SetCapacity(-1), EListError);
}

TEST(RecordList, SetCapacityKeepsTheRecords) {
    TRecordList list(4);
    Fill(list, 3);
    list.SetCapacity(100);
    list.SetCapacity(3);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2, 3}));
}

TEST(RecordList, LenientErrorStillReallocates) {
    TLenientList list(4);
    Fill(list, 3);
    list.SetCapacity(1);
    EXPECT_EQ(list.Errors, 1);
    EXPECT_EQ(list.Capacity(), 1);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1}));
}

TEST(RecordList, SetCountShrinks) {
    TRecordList list(4);
    Fill(list, 5);
    list.SetCount(2);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Capacity(), 8);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2}));
}

TEST(RecordList, SetCountCannotGrowTheList) {
    TRecordList list(4);
    Fill(list, 2);
    ExpectListError([&] { list.SetCount(10); }, msg::ListIndexError(2));
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Capacity(), 10); // the capacity was set first
}

TEST(RecordList, SetCountGrowsZeroedOnlyPastALenientIndexCheck) {
    TLenientList list(4);
    Fill(list, 1);
    list.SetCount(3);
    EXPECT_EQ(list.Errors, 1);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 0, 0}));
}

TEST(RecordList, SetCountOutOfRangeRaisesCountError) {
    TRecordList list(8);
    ExpectListError([&] { list.SetCount(-1); }, msg::ListCountError(-1));
    ExpectListError([&] { list.SetCount(list.MaxCapacity() + 1); }, msg::ListCountError(0x7FFFFFFF / 8 + 1));
}

TEST(RecordList, ClearEmptiesCountAndCapacity) {
    TRecordList list(4);
    Fill(list, 7);
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 0);
    EXPECT_EQ(list.List(), nullptr);
}

// --- Access ---------------------------------------------------------------------------------------

TEST(RecordList, GetAtCountRaisesListIndexError) {
    TRecordList list(4);
    Fill(list, 3);
    ExpectListError([&] { list.Get(3); }, msg::ListIndexError(3));
    ExpectListError([&] { list.Get(-1); }, msg::ListIndexError(-1));
    EXPECT_EQ(list.Get(2), list.List() + 8);
}

TEST(RecordList, FirstLastAndGetRecordCopyOut) {
    TRecordList list(4);
    Fill(list, 3);
    Rec4 r{};
    list.First(r.data());
    EXPECT_EQ(r, R4(1));
    list.Last(r.data());
    EXPECT_EQ(r, R4(3));
    list.GetRecord(1, r.data());
    EXPECT_EQ(r, R4(2));
}

TEST(RecordList, FirstAndLastOfAnEmptyListRaise) {
    TRecordList list(4);
    Rec4 r{};
    EXPECT_THROW(list.First(r.data()), EListError);
    EXPECT_THROW(list.Last(r.data()), EListError);
}

// --- Insert ---------------------------------------------------------------------------------------

TEST(RecordList, InsertAtCountRaisesListIndexError) {
    TRecordList list(4);
    Fill(list, 3);
    const Rec4 r = R4(9);
    ExpectListError([&] { list.Insert(3, r.data()); }, msg::ListIndexError(3));
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2, 3}));
}

TEST(RecordList, InsertOneBelowCountRaisesListIndexError) {
    TRecordList list(4);
    Fill(list, 3);
    const Rec4 r = R4(9);
    ExpectListError([&] { list.Insert(2, r.data()); }, msg::ListIndexError(3));
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2, 3}));
}

TEST(RecordList, InsertAtZeroOnAListOfThreeWorks) {
    TRecordList list(4);
    Fill(list, 3);
    const Rec4 r = R4(9);
    list.Insert(0, r.data());
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{9, 1, 2, 3}));
    list.Insert(2, r.data()); // two below the end
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{9, 1, 9, 2, 3}));
}

TEST(RecordList, InsertAtZeroOnAListOfOneRaises) {
    TRecordList list(4);
    Fill(list, 1);
    const Rec4 r = R4(9);
    EXPECT_THROW(list.Insert(0, r.data()), EListError);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1}));
}

TEST(RecordList, InsertIntoAnEmptyListRaises) {
    TRecordList list(4);
    const Rec4 r = R4(9);
    EXPECT_THROW(list.Insert(0, r.data()), EListError);
    EXPECT_EQ(list.Count(), 0);
}

TEST(RecordList, InsertOutsideTheListRaises) {
    TRecordList list(4);
    Fill(list, 3);
    const Rec4 r = R4(9);
    ExpectListError([&] { list.Insert(-1, r.data()); }, msg::ListIndexError(-1));
    ExpectListError([&] { list.Insert(4, r.data()); }, msg::ListIndexError(4));
}

// --- Delete, Exchange, Move ------------------------------------------------------------------------

TEST(RecordList, DeleteMovesTheTailDown) {
    TRecordList list(4);
    Fill(list, 4);
    list.Delete(1);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 3, 4}));
}

TEST(RecordList, DeleteOfTheLastRecordMovesNothing) {
    TRecordList list(4);
    Fill(list, 3);
    const std::uint8_t* block = list.List();
    list.Delete(2);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.List(), block);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2}));
    // The deleted record's bytes are still in the block beyond the count.
    EXPECT_EQ(block[8], 3);
}

TEST(RecordList, DeleteOfABadIndexRaises) {
    TRecordList list(4);
    Fill(list, 2);
    ExpectListError([&] { list.Delete(2); }, msg::ListIndexError(2));
    EXPECT_EQ(list.Count(), 2);
}

TEST(RecordList, ExchangeSwapsTwoRecords) {
    TRecordList list(4);
    Fill(list, 3);
    list.Exchange(0, 2);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{3, 2, 1}));
    list.Exchange(1, 1);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{3, 2, 1}));
}

TEST(RecordList, ExchangeChecksBothIndexes) {
    TRecordList list(4);
    Fill(list, 3);
    ExpectListError([&] { list.Exchange(3, 0); }, msg::ListIndexError(3));
    ExpectListError([&] { list.Exchange(0, -1); }, msg::ListIndexError(-1));
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2, 3}));
}

TEST(RecordList, MoveToTheSameIndexChecksNothing) {
    TRecordList list(4);
    EXPECT_NO_THROW(list.Move(5, 5));
    EXPECT_NO_THROW(list.Move(-3, -3));
}

TEST(RecordList, MoveTowardsTheFrontWorks) {
    TRecordList list(4);
    Fill(list, 4);
    list.Move(3, 0);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{4, 1, 2, 3}));
}

TEST(RecordList, MoveNearTheEndRaisesAndLosesNothing) {
    TRecordList list(4);
    Fill(list, 3);
    ExpectListError([&] { list.Move(0, 2); }, msg::ListIndexError(2));
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2, 3}));
}

TEST(RecordList, MoveChecksTheNewIndex) {
    TRecordList list(4);
    Fill(list, 3);
    ExpectListError([&] { list.Move(0, 3); }, msg::ListIndexError(3));
    ExpectListError([&] { list.Move(5, 0); }, msg::ListIndexError(5));
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2, 3}));
}

// --- IndexOf and Find -----------------------------------------------------------------------------

TEST(RecordList, IndexOfTakesTheAddressOfAPointerToTheSoughtBytes) {
    TRecordList list(4);
    const Rec4 a = R4('A', 0, 'B', 0);
    const Rec4 b = R4('A', 0, 'C', 0);
    list.Add(a.data());
    list.Add(b.data());
    const void* sought = b.data();
    EXPECT_EQ(list.IndexOf(&sought), 1);
    const Rec4 none = R4('A', 0, 'D', 0);
    sought = none.data();
    EXPECT_EQ(list.IndexOf(&sought), -1);
}

TEST(RecordList, IndexOfIsAPrefixTestUpToTheFirstNulCharacter) {
    TRecordList list(6);
    const std::array<std::uint8_t, 6> stored{'A', 0, 0, 0, 0x99, 0x99};
    const std::array<std::uint8_t, 6> other{'A', 0, 0, 0, 0x11, 0x22};
    list.Add(stored.data());
    const void* sought = other.data();
    EXPECT_EQ(list.IndexOf(&sought), 0);
}

TEST(RecordList, IndexOfComparesTwoByteCharacters) {
    // Bytes that differ only in the high half of a character still differ.
    TRecordList list(4);
    const Rec4 stored = R4('A', 1, 0, 0);
    list.Add(stored.data());
    const Rec4 other = R4('A', 2, 0, 0);
    const void* sought = other.data();
    EXPECT_EQ(list.IndexOf(&sought), -1);
}

TEST(RecordList, IndexOfOfAnOddRecordSizeComparesTheLastByte) {
    TRecordList list(3);
    const std::array<std::uint8_t, 3> stored{1, 0, 5};
    list.Add(stored.data());
    const std::array<std::uint8_t, 3> differs{1, 0, 7};
    const void* sought = differs.data();
    EXPECT_EQ(list.IndexOf(&sought), -1);
    sought = stored.data();
    EXPECT_EQ(list.IndexOf(&sought), 0);
}

TEST(RecordList, IndexOfTakesTheHighByteOfAStraddlingCharacterFromTheNextRecord) {
    // Records of 3 bytes compare as 3 characters, that is 6 bytes: the character at bytes 2 and 3
    // of the first record is its last byte with the next record's first byte above it, 0x0705. The
    // sought bytes beyond their 3 read as zero, so that character is 0x0005 there and they differ.
    TRecordList list(3);
    const std::array<std::uint8_t, 3> first{1, 1, 5}, second{7, 0, 0};
    list.Add(first.data());
    list.Add(second.data());
    const void* sought = first.data();
    EXPECT_EQ(list.IndexOf(&sought), -1);
    // The second record is followed by zeroed bytes of the block: its compare ends at a NUL.
    sought = second.data();
    EXPECT_EQ(list.IndexOf(&sought), 1);
}

TEST(RecordList, IndexOfWithoutANulCharacterInTheBlockMatchesOnlyTheLastRecord) {
    // Four records of two non-zero characters each fill the block (capacity 4). Each compare runs
    // over 4 characters: a record's own two, then two from the next record against the sought
    // side's zeros beyond its record, so every record but the last differs. The last record's run
    // goes beyond the end of the block, which compares as zero, and ends at a NUL there.
    TRecordList list(4);
    const std::array<Rec4, 4> records{R4(1, 1, 2, 2), R4(3, 3, 4, 4), R4(5, 5, 6, 6), R4(7, 7, 8, 8)};
    for (const Rec4& r : records) list.Add(r.data());
    ASSERT_EQ(list.Count(), list.Capacity());
    for (std::size_t i = 0; i < records.size(); ++i) {
        const void* sought = records[i].data();
        EXPECT_EQ(list.IndexOf(&sought), i + 1 == records.size() ? 3 : -1) << i;
    }
}

TEST(RecordList, IndexOfRunsOnIntoTheBytesOfADeletedRecord) {
    // Deleting the last record leaves its bytes in the block beyond the count, and the compare of
    // the record before it runs into them: 0x0303 against the sought side's zero.
    TRecordList list(4);
    const Rec4 kept = R4(1, 1, 2, 2), deleted = R4(3, 3, 4, 4);
    list.Add(kept.data());
    list.Add(deleted.data());
    list.Delete(1);
    const void* sought = kept.data();
    EXPECT_EQ(list.IndexOf(&sought), -1);
    // Once the following record starts with a NUL character, the compare ends there.
    const Rec4 nul = R4(0, 0, 9, 9);
    list.Add(nul.data());
    EXPECT_EQ(list.IndexOf(&sought), 0);
}

TEST(RecordList, IndexOfOfAnEmptyListIsMinusOne) {
    TRecordList list(4);
    const Rec4 r = R4(1);
    const void* sought = r.data();
    EXPECT_EQ(list.IndexOf(&sought), -1);
}

TEST(RecordList, FindOnAnEmptyListReturnsMinusOneWithoutCallingFunc) {
    TRecordList list(4);
    int calls = 0;
    const Rec4 item = R4(1);
    EXPECT_EQ(list.Find(
                  [&](const void*, const void*) {
                      ++calls;
                      return true;
                  },
                  item.data()),
              -1);
    EXPECT_EQ(calls, 0);
}

TEST(RecordList, FindAnswersTheFirstMatchExactly) {
    TRecordList list(4);
    const Rec4 a = R4('A', 0, 1, 0), b = R4('A', 0, 2, 0), c = R4('A', 0, 2, 0);
    list.Add(a.data());
    list.Add(b.data());
    list.Add(c.data());
    const auto same = [](const void* rec, const void* item) { return std::memcmp(rec, item, 4) == 0; };
    EXPECT_EQ(list.Find(same, c.data()), 1);
    EXPECT_EQ(list.Find(same, a.data()), 0);
    const Rec4 none = R4('A', 0, 3, 0);
    EXPECT_EQ(list.Find(same, none.data()), -1);
}

// --- Stream form ----------------------------------------------------------------------------------

TEST(RecordListStream, SavedEmptyListIsFourBytes) {
    TRecordList list(8);
    TMemoryStream stream;
    list.SaveToStream(stream);
    EXPECT_EQ(stream.Bytes(), QByteArray::fromHex("00000000"));
}

TEST(RecordListStream, PersistedEmptyListIsSixBytes) {
    TRecordList list(8);
    TMemoryStream stream;
    list.Persist(stream, TPstMode::pstSave);
    EXPECT_EQ(stream.Bytes(), QByteArray::fromHex("0800"
                                                  "00000000"));
}

TEST(RecordListStream, NonEmptyListWritesCountCapacityAndRecords) {
    TRecordList list(2);
    const std::array<std::uint8_t, 2> a{0x11, 0x22}, b{0x33, 0x44};
    list.Add(a.data());
    list.Add(b.data());
    TMemoryStream stream;
    list.SaveToStream(stream);
    EXPECT_EQ(stream.Bytes(), QByteArray::fromHex("02000000"
                                                  "04000000"
                                                  "11223344"));
    TMemoryStream persisted;
    list.Persist(persisted, TPstMode::pstCopy);
    EXPECT_EQ(persisted.Bytes(), QByteArray::fromHex("0200"
                                                     "02000000"
                                                     "04000000"
                                                     "11223344"));
}

TEST(RecordListStream, OtherModesWriteAndReadNothing) {
    TRecordList list(2);
    TMemoryStream stream;
    list.Persist(stream, TPstMode::pstConnect);
    list.Persist(stream, TPstMode::pstConnectCopy);
    EXPECT_EQ(stream.Size(), 0);
    TMemoryStream source(QByteArray::fromHex("0200"
                                             "00000000"));
    list.Persist(source, TPstMode::pstConnect);
    EXPECT_EQ(source.Position(), 0);
}

TEST(RecordListStream, RoundTripThroughPersist) {
    TRecordList list(4);
    Fill(list, 10);
    TMemoryStream stream;
    list.Persist(stream, TPstMode::pstSave);
    stream.SetPosition(0);
    TRecordList copy(stream);
    EXPECT_EQ(copy.RecSize(), 4);
    EXPECT_EQ(copy.MaxCapacity(), 0x7FFFFFFF / 4);
    EXPECT_EQ(copy.Count(), 10);
    EXPECT_EQ(copy.Capacity(), list.Capacity());
    EXPECT_EQ(std::memcmp(copy.List(), list.List(), 40), 0);
    EXPECT_EQ(stream.Position(), stream.Size());
}

TEST(RecordListStream, PasteReadsWhatCopyWrote) {
    TRecordList list(4);
    Fill(list, 3);
    TMemoryStream stream;
    list.Persist(stream, TPstMode::pstCopy);
    stream.SetPosition(0);
    TRecordList target(4);
    target.Persist(stream, TPstMode::pstPaste);
    EXPECT_EQ(FirstBytes(target), (std::vector<int>{1, 2, 3}));
}

TEST(RecordListStream, PersistReadsItsOwnRecordSize) {
    TMemoryStream stream(QByteArray::fromHex("0200"
                                             "01000000"
                                             "01000000"
                                             "abcd"));
    TRecordList list(8);
    list.Persist(stream, TPstMode::pstLoad);
    EXPECT_EQ(list.RecSize(), 2);
    EXPECT_EQ(list.MaxCapacity(), 0x7FFFFFFF / 2);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.List()[0], 0xAB);
    EXPECT_EQ(list.List()[1], 0xCD);
}

TEST(RecordListStream, LoadingAnEmptyListKeepsTheCapacity) {
    TRecordList list(4);
    Fill(list, 3);
    list.SetCapacity(10);
    TMemoryStream stream(QByteArray::fromHex("00000000"));
    list.LoadFromStream(stream);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 10);
}

TEST(RecordListStream, RecordSizeZeroInAStreamRaisesDivisionError) {
    TMemoryStream stream(QByteArray::fromHex("0000"
                                             "00000000"));
    EXPECT_THROW(TRecordList{stream}, EDivByZero);
}

TEST(RecordListStream, CountBeyondTheBytesThatFollowRaisesReadError) {
    TRecordList list(8);
    TMemoryStream shortRecords(QByteArray::fromHex("02000000"
                                                   "04000000"
                                                   "0102030405060708"));
    EXPECT_THROW(list.LoadFromStream(shortRecords), EReadError);
    TMemoryStream huge(QByteArray::fromHex("ffffff7f"
                                           "ffffff0f"));
    EXPECT_THROW(list.LoadFromStream(huge), EReadError);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 0);
}

TEST(RecordListStream, NegativeCountRaisesReadError) {
    TRecordList list(4);
    TMemoryStream stream(QByteArray::fromHex("ffffffff"));
    EXPECT_THROW(list.LoadFromStream(stream), EReadError);
    EXPECT_EQ(list.Count(), 0);
}

TEST(RecordListStream, StoredCapacityBelowCountRaisesCapacityError) {
    TRecordList list(1);
    TMemoryStream stream(QByteArray::fromHex("03000000"
                                             "02000000"
                                             "010203"));
    ExpectListError([&] { list.LoadFromStream(stream); }, msg::ListCapacityError(2));
    EXPECT_EQ(list.Count(), 0);
}

TEST(RecordListStream, StoredCapacityAboveTheLargestRaisesCapacityError) {
    TRecordList list(8);
    TMemoryStream stream(QByteArray::fromHex("01000000"
                                             "ffffff7f"
                                             "0102030405060708"));
    EXPECT_THROW(list.LoadFromStream(stream), EListError);
    EXPECT_EQ(list.Count(), 0);
}

TEST(RecordListStream, ModestReserveIsKept) {
    TRecordList list(1);
    TMemoryStream stream(QByteArray::fromHex("01000000"
                                             "04000000"
                                             "2a"));
    list.LoadFromStream(stream);
    EXPECT_EQ(list.Capacity(), 4);
}

namespace {

// A list that grew to 118 records through `Add` and then shrank to 5 through `SetCount`: 4, 8, 12,
// 28, 44, 60, 76, 95, 118.
void FillGrownThenShrunk(TRecordList& list) {
    Fill(list, 100);
    ASSERT_EQ(list.Capacity(), 118);
    list.SetCount(5);
}

} // namespace

TEST(RecordListStream, StoredCapacityIsKeptSoThatLoadAndSaveGiveTheSameBytes) {
    TRecordList list(4);
    FillGrownThenShrunk(list);
    TMemoryStream saved;
    list.Persist(saved, TPstMode::pstSave);
    EXPECT_EQ(saved.Bytes(), QByteArray::fromHex("0400"
                                                 "05000000"
                                                 "76000000"
                                                 "01000000"
                                                 "02000000"
                                                 "03000000"
                                                 "04000000"
                                                 "05000000"));
    saved.SetPosition(0);
    TRecordList loaded(saved);
    EXPECT_EQ(loaded.Count(), 5);
    EXPECT_EQ(loaded.Capacity(), 118);
    TMemoryStream again;
    loaded.Persist(again, TPstMode::pstSave);
    EXPECT_EQ(again.Bytes(), saved.Bytes());
}

TEST(RecordListStream, ListLoadedWithAReserveGrowsIntoIt) {
    TRecordList list(4);
    TMemoryStream stream(QByteArray::fromHex("03000000"
                                             "64000000"
                                             "010000000200000003000000"));
    list.LoadFromStream(stream);
    EXPECT_EQ(list.Capacity(), 100);
    const Rec4 nine = R4(9);
    list.Insert(0, nine.data());
    for (int i = 4; i < 100; ++i) {
        const Rec4 r = R4(static_cast<std::uint8_t>(i));
        list.Add(r.data());
    }
    EXPECT_EQ(list.Count(), 100);
    EXPECT_EQ(list.Capacity(), 100); // no growth step while the stored reserve lasts
    std::vector<int> expected{9, 1, 2, 3};
    for (int i = 4; i < 100; ++i) expected.push_back(i);
    EXPECT_EQ(FirstBytes(list), expected);
    list.Add(nine.data());
    EXPECT_EQ(list.Capacity(), 125);
}

TEST(RecordListStream, CapacityOperationsWorkOnTheStoredReserve) {
    TMemoryStream stream(QByteArray::fromHex("02000000"
                                             "0a000000"
                                             "0100000002000000"));
    TRecordList list(4);
    list.LoadFromStream(stream);
    list.Grow();
    EXPECT_EQ(list.Capacity(), 26);
    ExpectListError([&] { list.SetCount(20); }, msg::ListIndexError(2));
    EXPECT_EQ(list.Count(), 2);
    list.SetCapacity(2);
    EXPECT_EQ(list.Capacity(), 2);
    EXPECT_EQ(FirstBytes(list), (std::vector<int>{1, 2}));
    list.Clear();
    EXPECT_EQ(list.Capacity(), 0);
    EXPECT_EQ(list.List(), nullptr);
}

TEST(RecordListStream, LenientCountGrowthIntoTheStoredReserveIsZeroed) {
    TMemoryStream stream(QByteArray::fromHex("01000000"
                                             "32000000"
                                             "07070707"));
    TLenientList list(4);
    list.LoadFromStream(stream);
    list.SetCount(40);
    EXPECT_EQ(list.Errors, 1);
    EXPECT_EQ(list.Count(), 40);
    EXPECT_EQ(list.Capacity(), 50);
    std::vector<int> expected(40, 0);
    expected[0] = 7;
    EXPECT_EQ(FirstBytes(list), expected);
}

namespace {

// The peak resident memory of this process in bytes, or 0 where it can't be asked.
long long PeakResidentBytes() {
#if defined(__linux__)
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<long long>(usage.ru_maxrss) * 1024;
#else
    return 0;
#endif
}

} // namespace

TEST(RecordListStream, HugeStoredCapacityIsKeptWithoutAllocatingIt) {
    // One record with the largest capacity for 8-byte records: 2 GiB that the stream can't back.
    TRecordList list(8);
    TMemoryStream stream(QByteArray::fromHex("01000000"
                                             "ffffff0f"
                                             "0102030405060708"));
    const long long peakBefore = PeakResidentBytes();
    try {
        list.LoadFromStream(stream);
    } catch (const std::bad_alloc&) {
        FAIL() << "the stored capacity was allocated";
    }
    EXPECT_LT(PeakResidentBytes() - peakBefore, 64LL << 20);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Capacity(), 0x0FFFFFFF);
    EXPECT_EQ(list.Capacity(), list.MaxCapacity());
    const std::array<std::uint8_t, 8> next{9, 10, 11, 12, 13, 14, 15, 16};
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(list.Add(next.data()), i + 1);
    EXPECT_EQ(list.Count(), 1001);
    EXPECT_EQ(list.Capacity(), 0x0FFFFFFF);
    EXPECT_EQ(static_cast<std::uint8_t*>(list.Get(0))[7], 8);
    EXPECT_EQ(static_cast<std::uint8_t*>(list.Get(1000))[7], 16);
    EXPECT_LT(PeakResidentBytes() - peakBefore, 64LL << 20);
    TMemoryStream saved;
    list.SaveToStream(saved);
    EXPECT_EQ(saved.Bytes().left(8), QByteArray::fromHex("e9030000"
                                                         "ffffff0f"));
    EXPECT_EQ(saved.Size(), 8 + 1001 * 8);
}

TEST(RecordListStream, LenientStoredCapacityAboveTheLargestIsKeptWithoutAllocatingIt) {
    // A descendant's `Error` returns, so the stored capacity is taken although it is one above the
    // largest for 2-byte records.
    TLenientList list(2);
    TMemoryStream stream(QByteArray::fromHex("01000000"
                                             "00000040"
                                             "0102"));
    const long long peakBefore = PeakResidentBytes();
    try {
        list.LoadFromStream(stream);
    } catch (const std::bad_alloc&) {
        FAIL() << "the stored capacity was allocated";
    }
    EXPECT_LT(PeakResidentBytes() - peakBefore, 64LL << 20);
    EXPECT_EQ(list.Errors, 1);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Capacity(), 0x40000000);
    EXPECT_EQ(list.List()[1], 2);
}
