// A growable array of fixed-size records held by value in one block of memory.
//
// Where `TList` holds pointers, `TRecordList` holds the bytes themselves and writes itself to a
// stream in one piece, with its record size in front when it goes through `Persist`. The list owns
// its block. Invariants: `0 <= Count <= allocated records <= Capacity <= MaxCapacity`. The block
// holds the whole capacity except after a load: a stored reserve beyond the stored records is kept
// as the capacity, so that the list saves the same bytes again, but it is allocated only as the
// list grows into it.
//
// Some behaviour is settled and relied upon by callers:
// - `SetCount` can shrink a list but not grow it: zeroing the new records starts at `Get(Count)`,
//   whose index check raises the list index error.
// - `Insert` checks both of its block positions through `Get` against the old count, so an insert
//   at `Count` or `Count - 1` raises the list index error; lists grow at their end with `Add`.
// - `IndexOf` compares records as strings of `RecSize` 2-byte characters, twice the record's
//   bytes, up to the first NUL character: a prefix test that runs on into the following records of
//   the block when a record holds no NUL character. `Find` is the exact search.
// - `Move(i, i)` does nothing and checks nothing. A move that `Insert` refuses raises and leaves the
//   record where it was.
//
// `Error` is virtual. When a descendant's `Error` returns instead of raising, `SetCapacity` still
// reallocates (cutting the count to the new capacity), `SetCount` grows with zeroed records, and
// any other operation with a bad index leaves the list unchanged; no place outside the block is
// ever handed out or written.
//
// The stream form is the count, and when it is not 0 the capacity and the records. A load checks
// that the records can follow before it allocates (`EReadError` otherwise, also for a negative
// count), applies `SetCapacity`'s checks to the stored capacity and takes it as the capacity, but
// allocates no more than the stored records.
#pragma once

#include "geometry/Vltypes.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace vl {

class TStream;

// Tells whether a list record (first argument) is the sought item (second argument).
using TFindFunc = std::function<bool(const void* Record, const void* Item)>;

// A framework list message with the offending value (`msg::ListIndexError` and its kin).
using TListErrorMsg = QString (*)(long long);

class TRecordList {
public:
    // Raises `EDivByZero` for a record size of 0.
    explicit TRecordList(std::uint16_t RecSize);
    // Reads the list through `Persist(Stream, pstLoad)` of this class.
    explicit TRecordList(TStream& Stream);
    virtual ~TRecordList();

    TRecordList(const TRecordList&) = delete;
    TRecordList& operator=(const TRecordList&) = delete;

    // Overridable in this order: growth policy, stream form, error report.
    virtual void Grow();
    virtual void Persist(TStream& Stream, TPstMode PstMode);
    // Raises `EListError` with `Msg` formatted with `Data`. A descendant may return instead.
    virtual void Error(TListErrorMsg Msg, std::int32_t Data);

    // Copies `RecSize` bytes from `Rec` to the end, growing first when full; answers the index.
    std::int32_t Add(const void* Rec);
    void Clear();
    void Delete(std::int32_t Index);
    void Exchange(std::int32_t Index1, std::int32_t Index2);
    void Expand();
    void First(void* Rec);
    void Last(void* Rec);
    void GetRecord(std::int32_t Index, void* Rec);
    // The record's place inside the block, after the index check.
    void* Get(std::int32_t Index);
    void Insert(std::int32_t Index, const void* Rec);
    void Move(std::int32_t CurIndex, std::int32_t NewIndex);
    // `Rec` points to a variable that holds the address of the sought bytes: `RecSize` of them.
    std::int32_t IndexOf(const void* Rec);
    // The first index for which `Func(record, Item)` is true; -1 if none or the list is empty.
    std::int32_t Find(const TFindFunc& Func, const void* Item);

    void SaveToStream(TStream& Stream);
    void LoadFromStream(TStream& Stream);

    std::uint8_t* List() const { return FList.get(); }
    std::int32_t Count() const { return FCount; }
    void SetCount(std::int32_t Value);
    std::int32_t Capacity() const { return FCapacity; }
    void SetCapacity(std::int32_t Value);
    std::uint16_t RecSize() const { return FRecSize; }
    std::int32_t MaxCapacity() const { return FMaxCapacity; }

protected:
    // Sets the record size and the largest capacity that it allows.
    void SetRecSize(std::uint16_t RecSize);
    // The record's place without the index check, for indexes below the allocated records (at least
    // those below `Count`).
    std::uint8_t* RecordAt(std::int32_t Index) const {
        return FList.get() + static_cast<std::size_t>(Index) * FRecSize;
    }

    std::unique_ptr<std::uint8_t[]> FList;
    std::uint16_t FRecSize = 0;
    std::int32_t FCount = 0;
    std::int32_t FCapacity = 0;
    std::int32_t FMaxCapacity = 0;

private:
    // Records allocated in `FList`: from `FCount` up to `FCapacity`.
    std::int32_t FAllocated = 0;
    bool IndexValid(std::int32_t Index) const { return Index >= 0 && Index < FCount; }
    std::size_t AllocatedBytes() const { return static_cast<std::size_t>(FAllocated) * FRecSize; }
    // Makes room for one more record (growing the list when it is full) and answers the bytes of
    // `Rec` to store, copied into `Copy` when they lie in the block; null when the list is full and a
    // lenient `Error` returned.
    const std::uint8_t* RoomForOneMore(const void* Rec, std::vector<std::uint8_t>& Copy);
    // Takes `Value` as the capacity after `SetCapacity`'s checks. `AllocateAll` allocates all of it
    // when it differs from the capacity; otherwise the block is cut to the records in use.
    void ChangeCapacity(std::int32_t Value, bool AllocateAll);
    // Makes the block hold exactly `Records` records, keeping those that both sizes hold.
    void Reallocate(std::int32_t Records);
    // Allocates at least `Records` records (at most `Capacity`) in steps like `Grow`'s, so that
    // filling a stored reserve one record at a time costs amortised constant time.
    void Reserve(std::int32_t Records);
};

} // namespace vl
