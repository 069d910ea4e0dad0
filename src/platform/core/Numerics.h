// Arithmetic helpers with the framework's exact rules.
//
// To round is to round to the nearest integer with ties going to the even neighbour, computed in the
// widest float precision the target offers (`long double`). Division by zero raises, where the
// library's arithmetic would otherwise produce an infinity or undefined behaviour.
#pragma once

#include <cstdint>

namespace vl {

// Nearest integer, ties to even. Raises `EInvalidOp` for a NaN or a value outside 64 bits.
std::int64_t Round(long double x);
// Truncation toward zero, with the same range check.
std::int64_t Trunc(long double x);

// `a * b / c` in 64 bits, rounded half away from zero; -1 when `c` is 0 or the result does not fit
// 32 bits, as the platform routine answers.
std::int32_t MulDiv(std::int32_t a, std::int32_t b, std::int32_t c);

// Integer quotient and remainder truncated toward zero; raise `EDivByZero` for a zero divisor.
std::int64_t IntDiv(std::int64_t a, std::int64_t b);
std::int64_t IntMod(std::int64_t a, std::int64_t b);
// Floating quotient; raises `EZeroDivide` for a zero divisor.
long double FloatDiv(long double a, long double b);

} // namespace vl
