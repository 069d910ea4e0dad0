#include "platform/core/Numerics.h"

#include "platform/core/Exceptions.h"

#include <cfenv>
#include <cmath>

namespace vl {

namespace {
// 2^63 as a long double; every value strictly inside (-2^63 - 1, 2^63) converts exactly.
constexpr long double Two63 = 9223372036854775808.0L;

std::int64_t CheckedToInt64(long double r) {
    if (std::isnan(r) || r >= Two63 || r < -Two63) throw EInvalidOp(QString::fromLatin1(msg::InvalidOp));
    return static_cast<std::int64_t>(r);
}
} // namespace

std::int64_t Round(long double x) {
    // The default rounding mode is to nearest with ties to even; `nearbyint` follows it exactly.
    return CheckedToInt64(std::nearbyint(x));
}

std::int64_t Trunc(long double x) {
    return CheckedToInt64(std::trunc(x));
}

std::int32_t MulDiv(std::int32_t a, std::int32_t b, std::int32_t c) {
    if (c == 0) return -1;
    const std::int64_t p = static_cast<std::int64_t>(a) * b;
    const bool negative = (p < 0) != (c < 0);
    // Magnitudes fit in unsigned 64 bits: |p| <= 2^62, |c| <= 2^31.
    const std::uint64_t up = p < 0 ? 0 - static_cast<std::uint64_t>(p) : static_cast<std::uint64_t>(p);
    const std::uint64_t uc =
        c < 0 ? 0 - static_cast<std::uint64_t>(static_cast<std::int64_t>(c)) : static_cast<std::uint64_t>(c);
    std::uint64_t q = up / uc;
    if ((up % uc) * 2 >= uc) ++q; // half away from zero
    if (negative) {
        if (q > 0x80000000ULL) return -1;
        return static_cast<std::int32_t>(-static_cast<std::int64_t>(q));
    }
    if (q > 0x7FFFFFFFULL) return -1;
    return static_cast<std::int32_t>(q);
}

std::int64_t IntDiv(std::int64_t a, std::int64_t b) {
    if (b == 0) throw EDivByZero(QString::fromLatin1(msg::DivByZero));
    if (b == -1) return static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(a));
    return a / b;
}

std::int64_t IntMod(std::int64_t a, std::int64_t b) {
    if (b == 0) throw EDivByZero(QString::fromLatin1(msg::DivByZero));
    if (b == -1) return 0;
    return a % b;
}

long double FloatDiv(long double a, long double b) {
    if (b == 0) throw EZeroDivide(QString::fromLatin1(msg::ZeroDivide));
    return a / b;
}

} // namespace vl
