// Free routines on the shared records: angles, limits, the hit test of a line, the crossing of two
// segments, rotation of points, the decimal logarithm, the pixels per metre of a device, and the
// string forms of the drawing stream.
//
// To round is `vl::Round`: to the nearest integer, ties to the even neighbour, in long double.
// Angles are radians. Coordinates are signed 32-bit logical units.
#pragma once

#include "geometry/Vltypes.h"

#include <QString>

#include <cstdint>
#include <span>

namespace vl {

class TStream;

// The angle of the direction (dx, dy), between -pi/2 and 3pi/2; (0, 0) gives -pi/2.
double GetAngle(std::int32_t dx, std::int32_t dy);
// As the integer form, with a dead zone: a `dx` below 0.01 in magnitude counts as vertical.
double GetAngle(double dx, double dy);
// The angle of the direction from `P1` to `P2` as the slope's angle: pi and 0 on the x axis, 3pi/2
// and pi/2 on the y axis, and otherwise `arctan(dy / dx)` with no quadrant correction, so that a
// direction to the left is reported as its opposite.
double CalculateAngle(TPoint P1, TPoint P2);

// The limits of `Count` points; with no points the starting record (0x7FFFFFFF minima,
// -2147483647 maxima), which is inverted.
TLimRec GetPolygonLimits(const TPoint* Points, std::int32_t Count);
// The smallest first and second and largest third and fourth fields over all elements. Both raise
// `EListError` for an empty array.
TRect MaxRect(std::span<const TRect> Rects);
TLimRec MaxLimRec(std::span<const TLimRec> Limits);
// Whether `Pt` lies in `L`, all four sides included.
bool PtInLimits(TPoint Pt, const TLimRec& L);

// Whether the segment `P1`-`P2` enters `R`: the hit test of every line. Edge tests are strict, and
// an edge counts as soon as one end lies beyond it, so a segment pointing at the rectangle from
// beyond one edge answers true even when it stops short.
bool LineInRect(TPoint P1, TPoint P2, const TLimRec& R);
// The crossing of the segments `P1`-`P2` and `P3`-`P4`, ends included. On true `Pt` is the rounded
// crossing; on false it is left as it was. Parallel and collinear segments answer false.
bool IntersectPoint(TPoint P1, TPoint P2, TPoint P3, TPoint P4, TPoint& Pt);
// Whether `Pt` lies within `Dist` of the line through `P1` and `P2`: inside the widened span for an
// axis-parallel line, otherwise strictly below `Dist` along the axis across the line's steeper
// direction, with no limit to the segment.
bool PtOnLine(TPoint Pt, TPoint P1, TPoint P2, std::uint16_t Dist);

// Rotates `P` round `Origin` by `Angle`.
void RotatePnt(TPoint& P, TPoint Origin, double Angle);
// Rotates `Count` points round `Origin` by `Angle`, with the cosine and sine taken once.
void RotatePoints(TPoint* Points, std::int32_t Count, TPoint Origin, double Angle);

// Decimal logarithm; 0 for a non-positive or NaN argument, without an exception.
double lg(double x);

// The library's inches per metre in every conversion that uses it: deliberately 39.0625.
inline constexpr double InchPerMeter = 39.0625;

// What a drawing device answers about its size: the resolution in pixels and the physical size in
// millimetres.
struct TDeviceResolution {
    std::int32_t HorzRes = 0;
    std::int32_t VertRes = 0;
    std::int32_t HorzSize = 0;
    std::int32_t VertSize = 0;
};
// The device's pixels per metre, `round(res / size * 1000)` on each axis. Raises `EZeroDivide` for a
// zero size and `EInvalidOp` for a result outside 32 bits.
TPoint CalcPixPerM(const TDeviceResolution& Device);

// String forms of the drawing stream. Lengths are little-endian signed 32 bits.
//
// `SaveString` writes the length in UTF-16 code units and then the code units, little-endian, with
// no terminator; the empty string is four zero bytes.
void SaveString(TStream& Stream, const QString& S);
// Reads the form of `SaveString`. A length below 1 gives the empty string and nothing more is read.
// Raises `EReadError` when fewer bytes follow than the length asks for.
QString LoadString_w(TStream& Stream);
// Reads a length and that many bytes of code page 1252 text (files of the time of 8-bit strings).
// A length below 1 gives the empty string; too few bytes raise `EReadError`.
QString LoadStringAnsi(TStream& Stream);
// Reads `Len + 1` bytes of a terminated code page 1252 string, converts them up to the first zero
// byte and copies the text with a terminating zero to `Dest`, which holds `Len + 1` characters.
// A negative `Len` or too few bytes raise `EReadError`.
void StreamReadAnsiString(TStream& Stream, char16_t* Dest, std::int32_t Len);
// The same, answering the text.
QString StreamReadAnsiString(TStream& Stream, std::int32_t Len);

} // namespace vl
