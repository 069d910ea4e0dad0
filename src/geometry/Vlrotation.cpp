#include "geometry/Vlrotation.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"

#include <cstring>

namespace vl {

namespace {

void EncodeInt32(std::uint8_t* p, std::int32_t v) {
    const auto u = static_cast<std::uint32_t>(v);
    p[0] = static_cast<std::uint8_t>(u);
    p[1] = static_cast<std::uint8_t>(u >> 8);
    p[2] = static_cast<std::uint8_t>(u >> 16);
    p[3] = static_cast<std::uint8_t>(u >> 24);
}

std::int32_t DecodeInt32(const std::uint8_t* p) {
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
        (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24));
}

struct TPointRecord {
    std::uint8_t Bytes[TPointList::PointRecSize];
};

TPointRecord Encode(TPoint P) {
    TPointRecord r;
    EncodeInt32(r.Bytes, P.x);
    EncodeInt32(r.Bytes + 4, P.y);
    return r;
}

TPoint Decode(const void* Rec) {
    const auto* p = static_cast<const std::uint8_t*>(Rec);
    return Point(DecodeInt32(p), DecodeInt32(p + 4));
}

} // namespace

TPointList::TPointList() : TRecordList(PointRecSize) {}

TPointList::TPointList(TStream& Stream) : TRecordList(PointRecSize) {
    Persist(Stream, TPstMode::pstLoad);
}

void TPointList::Persist(TStream& Stream, TPstMode PstMode) {
    TRecordList::Persist(Stream, PstMode);
    if (RecSize() != PointRecSize) {
        // Records of another kind can't be read as points.
        SetRecSize(PointRecSize);
        throw EReadError(QString::fromLatin1(msg::ReadError));
    }
}

std::int32_t TPointList::Add(TPoint Value) {
    const TPointRecord r = Encode(Value);
    return TRecordList::Add(r.Bytes);
}

TPoint TPointList::First() {
    TPointRecord r;
    TRecordList::First(r.Bytes);
    return Decode(r.Bytes);
}

TPoint TPointList::Last() {
    TPointRecord r;
    TRecordList::Last(r.Bytes);
    return Decode(r.Bytes);
}

std::int32_t TPointList::IndexOf(TPoint aPoint) {
    const TPointRecord r = Encode(aPoint);
    const void* address = r.Bytes;
    return TRecordList::IndexOf(&address);
}

void TPointList::Insert(std::int32_t Index, TPoint aPoint) {
    const TPointRecord r = Encode(aPoint);
    TRecordList::Insert(Index, r.Bytes);
}

TPoint TPointList::GetPoints(std::int32_t Index) {
    return Decode(Get(Index));
}

void TPointList::SetPoints(std::int32_t Index, TPoint Value) {
    const TPointRecord r = Encode(Value);
    std::memcpy(Get(Index), r.Bytes, PointRecSize);
}

std::int32_t TPointList::GetPointX(std::int32_t Index) {
    return DecodeInt32(static_cast<std::uint8_t*>(Get(Index)));
}

void TPointList::SetPointX(std::int32_t Index, std::int32_t Value) {
    EncodeInt32(static_cast<std::uint8_t*>(Get(Index)), Value);
}

std::int32_t TPointList::GetPointY(std::int32_t Index) {
    return DecodeInt32(static_cast<std::uint8_t*>(Get(Index)) + 4);
}

void TPointList::SetPointY(std::int32_t Index, std::int32_t Value) {
    EncodeInt32(static_cast<std::uint8_t*>(Get(Index)) + 4, Value);
}

} // namespace vl
