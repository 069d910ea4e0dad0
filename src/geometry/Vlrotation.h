// Outlines of rotated shapes, built as lists of points.
//
// `TPointList` is a record list of 8-byte points: x then y, each a little-endian signed 32-bit
// integer. The block is therefore also the stream form of the points and, on the little-endian
// hosts the library runs on, a plain array of `TPoint` that a polygon can be drawn from directly.
#pragma once

#include "geometry/Reclist.h"
#include "geometry/Vltypes.h"

#include <cstdint>

namespace vl {

class TStream;

class TPointList : public TRecordList {
public:
    static constexpr std::uint16_t PointRecSize = 8;

    TPointList();
    // Reads a list saved through `Persist`; raises `EReadError` when its records are not points.
    explicit TPointList(TStream& Stream);

    // On load, a stored record size other than 8 raises `EReadError` and leaves an empty list.
    void Persist(TStream& Stream, TPstMode PstMode) override;

    std::int32_t Add(TPoint Value);
    TPoint First();
    TPoint Last();
    // The prefix comparison of the record list: see `TRecordList::IndexOf`.
    std::int32_t IndexOf(TPoint aPoint);
    void Insert(std::int32_t Index, TPoint aPoint);

    TPoint GetPoints(std::int32_t Index);
    void SetPoints(std::int32_t Index, TPoint Value);
    std::int32_t GetPointX(std::int32_t Index);
    void SetPointX(std::int32_t Index, std::int32_t Value);
    std::int32_t GetPointY(std::int32_t Index);
    void SetPointY(std::int32_t Index, std::int32_t Value);

    // The points as an array, for drawing; valid until the list changes. The block is allocated
    // with the alignment of any fundamental type.
    const TPoint* Points() const { return reinterpret_cast<const TPoint*>(List()); }
};

} // namespace vl
