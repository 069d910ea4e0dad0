// The records that every part of the library passes about: logical and world points and rectangles,
// limits, object messages, outlines, the persistence modes, and the library's global settings.
//
// A `TLimRec` is always in logical space. After `LimRecDirection` it holds `Xmin <= Xmax` and
// `Ymin <= Ymax`, whatever the direction of the axes; a `TRect` keeps screen sense and may be flipped.
// An outline (`pPointArray`) is allocated with `NewPoly` by the routine that fills it and freed by
// the caller with `DeletePoly`.
#pragma once

#include "platform/core/Types.h"

#include <cstdint>

namespace vl {

struct TCoordPnt {
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend constexpr bool operator==(const TCoordPnt&, const TCoordPnt&) = default;
};

struct TCoordRect {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Right = 0;
    std::int32_t Bottom = 0;
    friend constexpr bool operator==(const TCoordRect&, const TCoordRect&) = default;
};

struct TFloatPnt {
    double x = 0.0;
    double y = 0.0;
    friend constexpr bool operator==(const TFloatPnt&, const TFloatPnt&) = default;
};

struct TFloatRect {
    double Left = 0.0;
    double Top = 0.0;
    double Right = 0.0;
    double Bottom = 0.0;
    friend constexpr bool operator==(const TFloatRect&, const TFloatRect&) = default;
};

// Limits in logical space. The record is also seen as two points: `Min` (Xmin, Ymin) and
// `Max` (Xmax, Ymax).
struct TLimRec {
    std::int32_t Xmin = 0;
    std::int32_t Ymin = 0;
    std::int32_t Xmax = 0;
    std::int32_t Ymax = 0;

    constexpr TPoint Min() const { return {Xmin, Ymin}; }
    constexpr TPoint Max() const { return {Xmax, Ymax}; }
    constexpr void SetMin(TPoint P) {
        Xmin = P.x;
        Ymin = P.y;
    }
    constexpr void SetMax(TPoint P) {
        Xmax = P.x;
        Ymax = P.y;
    }
    friend constexpr bool operator==(const TLimRec&, const TLimRec&) = default;
};
using pLimRec = TLimRec*;

// Empty limits: the minima at the largest and the maxima at the smallest value but one, so that
// the first point widened into them becomes both.
inline constexpr std::int32_t EmptyLimMin = 0x7FFFFFFF;
inline constexpr std::int32_t EmptyLimMax = -2147483647; // 0x80000001
inline constexpr TLimRec EmptyLimRec{EmptyLimMin, EmptyLimMin, EmptyLimMax, EmptyLimMax};

enum class TDirection : std::uint8_t { horizontal, vertical, both };

// A message to an object through `ObjectMessage`.
struct TObjMessage {
    std::uint32_t Msg = 0;
    std::int32_t Param1 = 0;
    std::int32_t Param2 = 0;
    std::int32_t Result = 0;
};

// The same message with a scroll direction in the place of `Param1`.
struct TObjScrollMsg {
    std::uint32_t Msg = 0;
    TDirection Direction = TDirection::horizontal;
    std::int32_t Param2 = 0;
    std::int32_t Result = 0;
};
static_assert(sizeof(TObjScrollMsg) == sizeof(TObjMessage));

// `Msg` values sent to objects whose generator holds `roNosy`: one at every paint of the box and one
// at every printing.
inline constexpr std::uint32_t msgObjPaint = 200;
inline constexpr std::uint32_t msgObjPrint = 300;

// An integer from 0 to 127, held in one byte (the parts of a version number).
using T4Bit = std::uint8_t;
inline constexpr T4Bit T4BitMax = 127;

// The longest outline: 1025 points, indices from 0. `pPointArray` points to the first point of an
// outline of at most that many points.
inline constexpr std::int32_t MaxPolyPoints = 1025;
using TPointArray = TPoint[MaxPolyPoints];
using pPointArray = TPoint*;

// The modes of every class's one `Persist(Stream, PstMode)`: writing, reading and linking go
// through the same routine so that they can't drift apart.
enum class TPstMode : std::uint8_t { pstSave, pstLoad, pstConnect, pstCopy, pstPaste, pstConnectCopy };

// A limit record from four integers in this order.
constexpr TLimRec LimRec(std::int32_t Xmin, std::int32_t Ymin, std::int32_t Xmax, std::int32_t Ymax) {
    return {Xmin, Ymin, Xmax, Ymax};
}

// Swaps two integers.
void ExChange(std::int32_t& A, std::int32_t& B);
// Swaps so that `Left <= Right` and `Top <= Bottom`.
void RectDirection(TRect& R);
// Swaps so that `Xmin <= Xmax` and `Ymin <= Ymax`.
void LimRecDirection(TLimRec& L);
// Does nothing; holds the place where an empty procedure is needed.
void Nothing();

// Allocates an outline of `Count` points (0 to `MaxPolyPoints`), zeroed; raises `EListError` for a
// count outside that range. Free it with `DeletePoly`.
pPointArray NewPoly(std::int32_t Count);
// Frees an outline from `NewPoly`; a null pointer is ignored.
void DeletePoly(pPointArray Points);

// Global settings; the host may change them.
inline std::int32_t MaxCoord = 32767;        // largest extent handed to the device mapping
inline std::int32_t Lin_prec = 8;            // tolerance of hit tests on lines
inline std::int32_t FrameRgn_W = 3;          // width of a region's frame, in pixels
inline std::int32_t clShadowPen = 0;         // colour 0x00BBGGRR: black
inline std::int32_t clShadowText = 0x808080; // colour 0x00BBGGRR: grey
inline std::int32_t RoundRectX3 = 2;
inline std::uint16_t AutoScrollTime = 50; // milliseconds between autoscroll steps
inline std::uint16_t FrameSpace = 3;      // pixels of frame around a dragged shape
inline TPoint ZeroPoint{0, 0};
inline std::uint16_t Rot_OutlineDiv = 16; // outline segments to a half circle
inline std::uint16_t ThisVersion = 0x4642;
inline std::int32_t ThisAppID = 0;
inline std::uint32_t ThisAppVersion = 0x01000000;
inline std::int32_t NeedLayers = 1;

} // namespace vl
