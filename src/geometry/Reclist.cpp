#include "geometry/Reclist.h"

#include "platform/core/Assert.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Numerics.h"
#include "platform/core/Streams.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

namespace vl {

namespace {

constexpr std::int32_t MaxListBytes = 0x7FFFFFFF;

// The growth step for a list of `Capacity` records.
std::int64_t GrowthDelta(std::int64_t Capacity) {
    if (Capacity < 9) return 4;
    if (Capacity < 65) return 16;
    return Capacity / 4;
}

// The little-endian 2-byte character at byte `Offset` of `Size` bytes; bytes at or beyond `Size`
// read as zero.
unsigned CharacterAt(const std::uint8_t* Bytes, std::size_t Size, std::size_t Offset) {
    const unsigned low = Offset < Size ? Bytes[Offset] : 0u;
    const unsigned high = Offset + 1 < Size ? Bytes[Offset + 1] : 0u;
    return low | high << 8;
}

// The string compare of `Characters` 2-byte characters that stops at the first NUL character, of
// `a` (`aSize` bytes readable) with `b` (`bSize` bytes readable); bytes beyond either size compare
// as zero. Equal when the two agree up to a NUL character or over all the characters.
bool SameCharacters(const std::uint8_t* a, std::size_t aSize, const std::uint8_t* b, std::size_t bSize,
                    std::size_t Characters) {
    for (std::size_t i = 0; i < Characters; ++i) {
        const unsigned ca = CharacterAt(a, aSize, 2 * i);
        if (ca != CharacterAt(b, bSize, 2 * i)) return false;
        if (ca == 0) return true;
    }
    return true;
}

} // namespace

TRecordList::TRecordList(std::uint16_t RecSize) {
    SetRecSize(RecSize);
}

TRecordList::TRecordList(TStream& Stream) {
    // In a constructor the call reaches this class's `Persist`; a descendant with its own stream
    // form reads itself in its own constructor.
    Persist(Stream, TPstMode::pstLoad);
}

TRecordList::~TRecordList() {
    Clear();
}

void TRecordList::SetRecSize(std::uint16_t RecSize) {
    const auto maxCapacity = static_cast<std::int32_t>(IntDiv(MaxListBytes, RecSize)); // raises for 0
    if (RecSize == FRecSize) return;
    // Records of another size: the old contents lose their meaning, so the block is dropped before
    // it can be read with the new size.
    FCount = 0;
    FCapacity = 0;
    FList.reset();
    FAllocated = 0;
    FRecSize = RecSize;
    FMaxCapacity = maxCapacity;
}

void TRecordList::Grow() {
    const std::int64_t value = FCapacity + GrowthDelta(FCapacity);
    if (value > std::numeric_limits<std::int32_t>::max()) {
        Error(msg::ListCapacityError, std::numeric_limits<std::int32_t>::max());
        return;
    }
    SetCapacity(static_cast<std::int32_t>(value));
}

void TRecordList::Error(TListErrorMsg Msg, std::int32_t Data) {
    throw EListError(Msg(Data));
}

void TRecordList::SetCapacity(std::int32_t Value) {
    ChangeCapacity(Value, true);
}

void TRecordList::ChangeCapacity(std::int32_t Value, bool AllocateAll) {
    if (Value < FCount || Value > FMaxCapacity) Error(msg::ListCapacityError, Value);
    // When a descendant's `Error` returns, the reallocation still takes place; a capacity below the
    // count then cuts the list, and a negative one empties it.
    const std::int32_t capacity = std::max(Value, 0);
    const std::int32_t count = std::min(FCount, capacity);
    if (AllocateAll) {
        if (capacity == FCapacity) return;
        Reallocate(capacity);
    } else {
        Reallocate(count);
    }
    FCapacity = capacity;
    FCount = count;
}

void TRecordList::Reallocate(std::int32_t Records) {
    if (Records == FAllocated) return;
    const std::size_t bytes = static_cast<std::size_t>(Records) * FRecSize;
    std::unique_ptr<std::uint8_t[]> block;
    if (bytes != 0) {
        block = std::make_unique<std::uint8_t[]>(bytes); // zeroed
        if (FList)
            std::memcpy(block.get(), FList.get(),
                        std::min(bytes, static_cast<std::size_t>(FAllocated) * FRecSize));
    }
    FList = std::move(block);
    FAllocated = Records;
}

void TRecordList::Reserve(std::int32_t Records) {
    if (Records <= FAllocated) return;
    const std::int64_t stepped = FAllocated + GrowthDelta(FAllocated);
    Reallocate(static_cast<std::int32_t>(
        std::min<std::int64_t>(FCapacity, std::max<std::int64_t>(Records, stepped))));
}

void TRecordList::SetCount(std::int32_t Value) {
    if (Value < 0 || Value > FMaxCapacity) {
        Error(msg::ListCountError, Value);
        if (Value < 0) return;
    }
    if (Value > FCapacity) SetCapacity(Value);
    if (Value > FCount) {
        // `Get(FCount)` checks an index that is not yet in use and raises: a list shrinks through
        // `Count` but doesn't grow. Only a descendant whose `Error` returns gets past it.
        Get(FCount);
        if (Value > FCapacity) return;
        Reserve(Value);
        std::memset(RecordAt(FCount), 0, static_cast<std::size_t>(Value - FCount) * FRecSize);
    }
    FCount = Value;
}

void* TRecordList::Get(std::int32_t Index) {
    if (!IndexValid(Index)) {
        Error(msg::ListIndexError, Index);
        // A descendant's `Error` may return; a place outside the capacity is never handed out, and
        // one inside it is allocated first.
        if (Index < 0 || Index >= FCapacity) throw EListError(msg::ListIndexError(Index));
        Reserve(Index + 1);
    }
    return RecordAt(Index);
}

const std::uint8_t* TRecordList::RoomForOneMore(const void* Rec, std::vector<std::uint8_t>& Copy) {
    // A record from inside the block would move with a reallocation: take a copy first.
    const auto* src = static_cast<const std::uint8_t*>(Rec);
    if (FList && src >= FList.get() && src < FList.get() + AllocatedBytes()) {
        Copy.assign(src, src + FRecSize);
        src = Copy.data();
    }
    if (FCount == FCapacity) Grow();
    if (FCount >= FCapacity) {
        Error(msg::ListCapacityError, FCapacity);
        return nullptr;
    }
    Reserve(FCount + 1);
    return src;
}

std::int32_t TRecordList::Add(const void* Rec) {
    std::vector<std::uint8_t> copy;
    const std::uint8_t* src = RoomForOneMore(Rec, copy);
    if (!src) return -1;
    std::memcpy(RecordAt(FCount), src, FRecSize);
    VL_ASSERT(FCount < FAllocated && FAllocated <= FCapacity);
    return FCount++;
}

void TRecordList::Clear() {
    SetCount(0);
    SetCapacity(0);
}

void TRecordList::Delete(std::int32_t Index) {
    if (!IndexValid(Index)) {
        Error(msg::ListIndexError, Index);
        return;
    }
    --FCount;
    // The last record moves nothing: its bytes stay in the block beyond the count.
    if (Index < FCount)
        std::memmove(RecordAt(Index), RecordAt(Index + 1),
                     static_cast<std::size_t>(FCount - Index) * FRecSize);
}

void TRecordList::Exchange(std::int32_t Index1, std::int32_t Index2) {
    if (!IndexValid(Index1)) {
        Error(msg::ListIndexError, Index1);
        return;
    }
    if (!IndexValid(Index2)) {
        Error(msg::ListIndexError, Index2);
        return;
    }
    std::vector<std::uint8_t> temp(RecordAt(Index1), RecordAt(Index1) + FRecSize);
    std::memmove(RecordAt(Index1), RecordAt(Index2), FRecSize);
    std::memcpy(RecordAt(Index2), temp.data(), FRecSize);
}

void TRecordList::Expand() {
    if (FCount == FCapacity) Grow();
}

void TRecordList::First(void* Rec) {
    std::memcpy(Rec, Get(0), FRecSize);
}

void TRecordList::Last(void* Rec) {
    std::memcpy(Rec, Get(FCount - 1), FRecSize);
}

void TRecordList::GetRecord(std::int32_t Index, void* Rec) {
    std::memcpy(Rec, Get(Index), FRecSize);
}

void TRecordList::Insert(std::int32_t Index, const void* Rec) {
    if (Index < 0 || Index > FCount) {
        Error(msg::ListIndexError, Index);
        return;
    }
    std::vector<std::uint8_t> copy;
    const std::uint8_t* src = RoomForOneMore(Rec, copy);
    if (!src) return;
    if (Index < FCount) {
        // Both places go through `Get` and its check against the old count: at `Count - 1` the
        // second one raises.
        void* from = Get(Index);
        void* to = Get(Index + 1);
        std::memmove(to, from, static_cast<std::size_t>(FCount - Index) * FRecSize);
    }
    // At `Count` this raises as well.
    std::memcpy(Get(Index), src, FRecSize);
    ++FCount;
    VL_ASSERT(FCount <= FAllocated && FAllocated <= FCapacity);
}

void TRecordList::Move(std::int32_t CurIndex, std::int32_t NewIndex) {
    if (CurIndex == NewIndex) return;
    if (NewIndex < 0 || NewIndex >= FCount) {
        Error(msg::ListIndexError, NewIndex);
        return;
    }
    std::vector<std::uint8_t> temp(FRecSize);
    GetRecord(CurIndex, temp.data());
    if (!IndexValid(CurIndex)) return;
    Delete(CurIndex);
    try {
        Insert(NewIndex, temp.data());
    } catch (...) {
        // `Insert` refuses places near the end. The record goes back where it was, so that a failed
        // move loses nothing; the deletion has left room for it.
        std::memmove(RecordAt(CurIndex + 1), RecordAt(CurIndex),
                     static_cast<std::size_t>(FCount - CurIndex) * FRecSize);
        std::memcpy(RecordAt(CurIndex), temp.data(), FRecSize);
        ++FCount;
        throw;
    }
}

std::int32_t TRecordList::IndexOf(const void* Rec) {
    // `Rec` holds the address of a variable that holds the address of the sought bytes. The
    // comparison is a string comparison of `RecSize` 2-byte characters, twice the record's bytes,
    // that stops at a NUL character. On the list's side a record without a NUL character is
    // followed into the next records of the block, including those beyond the count; beyond the
    // end of the block the bytes compare as zero. The caller passes one record, so the sought
    // bytes beyond `RecSize` compare as zero too: a record without a NUL character matches only
    // where the bytes after it in the block start with a NUL character.
    const auto* sought = *static_cast<const std::uint8_t* const*>(Rec);
    const std::size_t blockBytes = AllocatedBytes();
    for (std::int32_t i = 0; i < FCount; ++i) {
        const std::size_t start = static_cast<std::size_t>(i) * FRecSize;
        if (SameCharacters(RecordAt(i), blockBytes - start, sought, FRecSize, FRecSize)) return i;
    }
    return -1;
}

std::int32_t TRecordList::Find(const TFindFunc& Func, const void* Item) {
    for (std::int32_t i = 0; i < FCount; ++i)
        if (Func(RecordAt(i), Item)) return i;
    return -1;
}

void TRecordList::SaveToStream(TStream& Stream) {
    Stream.WriteInt32(FCount);
    if (FCount == 0) return;
    Stream.WriteInt32(FCapacity);
    Stream.WriteBuffer(FList.get(), static_cast<std::int64_t>(FCount) * FRecSize);
}

void TRecordList::LoadFromStream(TStream& Stream) {
    const std::int32_t count = Stream.ReadInt32();
    if (count == 0) {
        FCount = 0;
        return;
    }
    if (count < 0) throw EReadError(QString::fromLatin1(msg::ReadError));
    const std::int32_t capacity = Stream.ReadInt32();
    const std::int64_t bytes = static_cast<std::int64_t>(count) * FRecSize;
    if (bytes > Stream.Remaining()) throw EReadError(QString::fromLatin1(msg::ReadError));
    // The stored capacity becomes the list's, so that the list saves the same bytes again, but only
    // the stored records, which the stream has been seen to hold, are allocated: the reserve is
    // allocated as the list grows into it.
    const std::int32_t oldCount = FCount;
    FCount = count;
    try {
        ChangeCapacity(capacity, false);
    } catch (...) {
        FCount = std::min(oldCount, FCapacity);
        throw;
    }
    if (FCapacity < count) {
        FCount = FCapacity;
        throw EReadError(QString::fromLatin1(msg::ReadError));
    }
    Stream.ReadBuffer(FList.get(), bytes);
}

void TRecordList::Persist(TStream& Stream, TPstMode PstMode) {
    switch (PstMode) {
    case TPstMode::pstSave:
    case TPstMode::pstCopy:
        Stream.WriteUInt16(FRecSize);
        SaveToStream(Stream);
        break;
    case TPstMode::pstLoad:
    case TPstMode::pstPaste:
        SetRecSize(Stream.ReadUInt16());
        LoadFromStream(Stream);
        break;
    default: break;
    }
}

} // namespace vl
