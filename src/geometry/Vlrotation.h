// Outlines of rotated shapes, built as lists of points.
//
// `TPointList` is a record list of 8-byte points: x then y, each a little-endian signed 32-bit
// integer. The block is therefore also the stream form of the points and, on the little-endian
// hosts the library runs on, a plain array of `TPoint` that a polygon can be drawn from directly.
//
// The device can't draw a rotated rectangle or ellipse, so each shape is turned into an outline whose
// points are rotated round `Origin` by `Alpha` (radians) and drawn as a polygon. `RotatedPnts_*`
// build the outline and hand it to the caller; `Rotated_*` build it, draw it on a device context
// and free it. Both work in whatever coordinates the caller passes.
//
// Each point of an outline is computed in doubles and rotated before it is rounded, so that it
// rounds only once: `x' = round((x - ox) * c - (y - oy) * s) + ox` and
// `y' = round((x - ox) * s + (y - oy) * c) + oy`, with `c`, `s` the cosine and sine of `Alpha`
// taken once per call. The sums wrap to 32 bits as the coordinates do. A non-finite `Alpha` raises
// `EInvalidOp`.
//
// Ellipses and arcs have `2 * Rot_OutlineDiv` segments to the full turn (`Rot_OutlineDiv`, a global
// setting of `Vltypes`, is 16 unless the host changes it); a `Rot_OutlineDiv` of 0 raises
// `EZeroDivide`.
#pragma once

#include "geometry/Reclist.h"
#include "geometry/Vltypes.h"
#include "platform/gdi/Gdi.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace vl {

class TFont;
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

// The corners (Left, Top), (Right, Top), (Right, Bottom), (Left, Bottom): 4 points.
std::unique_ptr<TPointList> RotatedPnts_Rectangle(const TRect& R, TPoint Origin, double Alpha);
// The ellipse inscribed in `R`: `2 * Rot_OutlineDiv` points, the first at (Right, centre y), the
// others at parametric angles that grow by `pi / Rot_OutlineDiv` (towards growing y first).
std::unique_ptr<TPointList> RotatedPnts_Ellipse(const TRect& R, TPoint Origin, double Alpha);
// A rectangle with corners rounded by `X3` / 2 across and `Y3` / 2 down: 16 points, four to a
// corner. The two inner points of a corner lie on its diagonal, at 0.134 and 0.5 of the radius, and
// not on the corner's arc.
std::unique_ptr<TPointList> RotatedPnts_RoundRect(const TRect& R, std::int32_t X3, std::int32_t Y3,
                                                  TPoint Origin, double Alpha);
// The arc of the ellipse in `R` from the direction of `P1` to that of `P2`, seen from the centre, in
// the direction of growing angle: a point every `pi / Rot_OutlineDiv` of parametric angle from the
// start, and the end point last. An end before the start goes on through 2pi; `P1 == P2` gives the
// one point.
std::unique_ptr<TPointList> RotatedPnts_Arc(const TRect& R, TPoint Origin, TPoint P1, TPoint P2,
                                            double Alpha);
// The arc's points; a polygon of them closes the chord.
std::unique_ptr<TPointList> RotatedPnts_Chord(const TRect& R, TPoint Origin, TPoint P1, TPoint P2,
                                              double Alpha);
// The arc's points and the centre last, so that a polygon of them closes through the centre. The
// directions of `P1` and `P2` are taken from (half width, half height) rather than from the centre:
// the two agree for an `R` with its corner at (0, 0), the local rectangle of an object.
std::unique_ptr<TPointList> RotatedPnts_Pie(const TRect& R, TPoint Origin, TPoint P1, TPoint P2,
                                            double Alpha);

// The outline of the matching `RotatedPnts_*` drawn with `Polygon` in the context's pen and brush.
void Rotated_Rectangle(HDC DC, const TRect& R, TPoint Origin, double Alpha);
void Rotated_RoundRect(HDC DC, const TRect& R, std::int32_t X3, std::int32_t Y3, TPoint Origin, double Alpha);
// An `R` whose width and height are equal in size is drawn by `Rotated_Circle`, a true circle at any
// angle; any other by `Polygon` of the ellipse's outline.
void Rotated_Ellipse(HDC DC, const TRect& R, TPoint Origin, double Alpha);
// The device's ellipse of `Diameter` round `Center` rotated round `Origin`.
void Rotated_Circle(HDC DC, TPoint Center, std::int32_t Diameter, TPoint Origin, double Alpha);
void Rotated_Chord(HDC DC, const TRect& R, TPoint Origin, TPoint P1, TPoint P2, double Alpha);
void Rotated_Pie(HDC DC, const TRect& R, TPoint Origin, TPoint P1, TPoint P2, double Alpha);
// The arc's outline drawn with `Polyline`, open.
void Rotated_Arc(HDC DC, const TRect& R, TPoint Origin, TPoint P1, TPoint P2, double Alpha);
// `Text` in `Font` and its colour, with its reference point at `Pos` rotated round `Origin`, and its
// baseline turned by `Alpha` through the escapement of a font made for the call. The text colour of
// `DC` is left at the font's colour; the font selected before is selected again.
void Rotated_TextOut(HDC DC, const QString& Text, TFont& Font, TPoint Pos, TPoint Origin, double Alpha);

} // namespace vl
