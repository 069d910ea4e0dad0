// One-pixel line stepping shared by the devices.
//
// A line from (x0, y0) to (x1, y1) covers max(|dx|, |dy|) pixels, step i = 0 .. n - 1 along the major
// axis; the end point itself is not drawn. The minor coordinate at step i is the exact one rounded half
// up in the direction of travel: minor0 + s * floor((2 i |dminor| + |dmajor|) / (2 |dmajor|)). A line
// drawn backwards may thus differ at ties, as on the platform. Steps outside `box` on the major axis
// are skipped arithmetically, so a line of any length costs only the pixels inside the box.
#pragma once

#include "platform/core/Types.h"

#include <algorithm>
#include <cstdint>

namespace vl::gdi {

template <class Plot>
void WalkLine(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1, const TRect& box,
              Plot&& plot) {
    __extension__ typedef __int128 Int128;
    const std::int64_t dx = x1 - x0, dy = y1 - y0;
    const std::int64_t adx = dx < 0 ? -dx : dx, ady = dy < 0 ? -dy : dy;
    const std::int64_t n = std::max(adx, ady);
    if (n == 0) return;
    const bool xMajor = adx >= ady;
    const std::int64_t major0 = xMajor ? x0 : y0, minor0 = xMajor ? y0 : x0;
    const std::int64_t smaj = (xMajor ? dx : dy) < 0 ? -1 : 1;
    const std::int64_t smin = (xMajor ? dy : dx) < 0 ? -1 : 1;
    const std::int64_t amaj = xMajor ? adx : ady, amin = xMajor ? ady : adx;
    const std::int64_t lo = xMajor ? box.Left : box.Top, hi = xMajor ? box.Right : box.Bottom;
    const std::int64_t minLo = xMajor ? box.Top : box.Left, minHi = xMajor ? box.Bottom : box.Right;
    // Steps whose major coordinate lies in [lo, hi).
    std::int64_t i0, i1;
    if (smaj > 0) {
        i0 = lo - major0;
        i1 = hi - major0;
    } else {
        i0 = major0 - hi + 1;
        i1 = major0 - lo + 1;
    }
    i0 = std::max<std::int64_t>(i0, 0);
    i1 = std::min<std::int64_t>(i1, n);
    if (i0 >= i1) return;
    const Int128 twoMaj = Int128(2) * amaj;
    const Int128 start = Int128(2) * i0 * amin + amaj;
    std::int64_t minor = minor0 + smin * std::int64_t(start / twoMaj);
    std::int64_t err = std::int64_t(start % twoMaj);
    const std::int64_t twoMaj64 = 2 * amaj, twoMin64 = 2 * amin;
    std::int64_t major = major0 + smaj * i0;
    for (std::int64_t i = i0; i < i1; ++i) {
        if (minor >= minLo && minor < minHi) {
            if (xMajor)
                plot(std::int32_t(major), std::int32_t(minor), i);
            else
                plot(std::int32_t(minor), std::int32_t(major), i);
        } else if ((smin > 0 && minor >= minHi) || (smin < 0 && minor < minLo)) {
            break; // left the box for good
        }
        major += smaj;
        err += twoMin64;
        if (err >= twoMaj64) {
            err -= twoMaj64;
            minor += smin;
        }
    }
}

} // namespace vl::gdi
