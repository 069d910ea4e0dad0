// The platform's 32-bit point, rectangle and size, as every part of the library passes them about.
//
// `TRect` keeps screen sense and may be flipped (`Left > Right`); nothing here normalises it.
#pragma once

#include <cstdint>

namespace vl {

struct TPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend constexpr bool operator==(const TPoint&, const TPoint&) = default;
};

struct TSize {
    std::int32_t cx = 0;
    std::int32_t cy = 0;
    friend constexpr bool operator==(const TSize&, const TSize&) = default;
};

struct TRect {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Right = 0;
    std::int32_t Bottom = 0;

    constexpr TPoint TopLeft() const { return {Left, Top}; }
    constexpr TPoint BottomRight() const { return {Right, Bottom}; }
    constexpr std::int32_t Width() const { return Right - Left; }
    constexpr std::int32_t Height() const { return Bottom - Top; }
    friend constexpr bool operator==(const TRect&, const TRect&) = default;
};

constexpr TPoint Point(std::int32_t x, std::int32_t y) {
    return {x, y};
}
constexpr TRect Rect(std::int32_t Left, std::int32_t Top, std::int32_t Right, std::int32_t Bottom) {
    return {Left, Top, Right, Bottom};
}
constexpr TRect Bounds(std::int32_t Left, std::int32_t Top, std::int32_t Width, std::int32_t Height) {
    return {Left, Top, Left + Width, Top + Height};
}

} // namespace vl
