#include "platform/core/Numerics.h"
#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <ostream>
#include <sstream>
#include <string>

using namespace vl;

struct RoundCase {
    long double x;
    std::int64_t expected;
};

// "Round(0.5) = 0".
static void PrintTo(const RoundCase& c, std::ostream* os) {
    *os << "Round(" << std::setprecision(18) << c.x << ") = " << c.expected;
}

// A number in a test name: "Minus" for the sign and "p" for the decimal point ("Minus1p5").
static std::string NumberName(std::string Text) {
    std::string name;
    for (char c : Text) {
        if (c == '-')
            name += "Minus";
        else if (c == '.')
            name += "p";
        else
            name += c;
    }
    return name;
}

static std::string RoundCaseName(const ::testing::TestParamInfo<RoundCase>& Info) {
    std::ostringstream s;
    s << std::setprecision(18) << Info.param.x;
    return "Round" + NumberName(s.str());
}

class RoundTiesToEven : public ::testing::TestWithParam<RoundCase> {};

TEST_P(RoundTiesToEven, RoundsToNearestWithTiesToTheEvenNeighbour) {
    EXPECT_EQ(Round(GetParam().x), GetParam().expected) << static_cast<double>(GetParam().x);
}

INSTANTIATE_TEST_SUITE_P(Numerics, RoundTiesToEven,
                         ::testing::Values(RoundCase{0.5L, 0}, RoundCase{1.5L, 2}, RoundCase{2.5L, 2},
                                           RoundCase{3.5L, 4}, RoundCase{-0.5L, 0}, RoundCase{-1.5L, -2},
                                           RoundCase{-2.5L, -2}, RoundCase{0.49L, 0}, RoundCase{0.51L, 1},
                                           RoundCase{-0.51L, -1}, RoundCase{1e15L + 0.5L, 1000000000000000},
                                           RoundCase{0.0L, 0}, RoundCase{-0.0L, 0},
                                           RoundCase{2147483647.5L, 2147483648LL},
                                           RoundCase{-2147483648.5L, -2147483648LL}),
                         RoundCaseName);

TEST(Numerics, RoundWorksInLongDoublePrecision) {
    // As a long double literal, 2.4999999999999999 stays below 2.5 and rounds down; as a double it
    // is 2.5 exactly and goes to the even neighbour 2 as well. 3.4999999999999999L stays below 3.5,
    // while the double 3.5 goes to 4.
    EXPECT_EQ(Round(2.4999999999999999L), 2);
    EXPECT_EQ(Round(static_cast<long double>(2.4999999999999999)), 2);
    if (LDBL_MANT_DIG > DBL_MANT_DIG) {
        EXPECT_LT(3.4999999999999999L, 3.5L);
        EXPECT_EQ(Round(3.4999999999999999L), 3);
    }
    EXPECT_EQ(Round(static_cast<long double>(3.4999999999999999)), 4);
}

TEST(Numerics, RoundOfNaNRaisesInvalidOp) {
    EXPECT_THROW(Round(std::numeric_limits<long double>::quiet_NaN()), EInvalidOp);
}

TEST(Numerics, RoundOfHugeValuesRaisesInvalidOp) {
    EXPECT_THROW(Round(1e19L), EInvalidOp);
    EXPECT_THROW(Round(-1e19L), EInvalidOp);
    EXPECT_THROW(Round(std::numeric_limits<long double>::infinity()), EInvalidOp);
    EXPECT_THROW(Round(9223372036854775808.0L), EInvalidOp);
    try {
        Round(1e300L);
        FAIL();
    } catch (const EInvalidOp& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Invalid floating point operation"));
    }
}

TEST(Numerics, RoundAtTheEdgesOf64Bits) {
    EXPECT_EQ(Round(-9223372036854775808.0L), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Round(9223372036854774784.0L), 9223372036854774784LL);
}

TEST(Numerics, TruncGoesTowardZero) {
    EXPECT_EQ(Trunc(2.9L), 2);
    EXPECT_EQ(Trunc(-2.9L), -2);
    EXPECT_THROW(Trunc(std::numeric_limits<long double>::quiet_NaN()), EInvalidOp);
    EXPECT_THROW(Trunc(1e20L), EInvalidOp);
}

struct MulDivCase {
    std::int32_t a, b, c, expected;
};

// "MulDiv(5, 1, -2) = -3".
static void PrintTo(const MulDivCase& c, std::ostream* os) {
    *os << "MulDiv(" << c.a << ", " << c.b << ", " << c.c << ") = " << c.expected;
}

// "5Times1ByMinus2".
static std::string MulDivCaseName(const ::testing::TestParamInfo<MulDivCase>& Info) {
    const MulDivCase& c = Info.param;
    return NumberName(std::to_string(c.a) + "Times" + std::to_string(c.b) + "By" + std::to_string(c.c));
}

class MulDivRounding : public ::testing::TestWithParam<MulDivCase> {};

TEST_P(MulDivRounding, RoundsHalfAwayFromZero) {
    const auto& p = GetParam();
    EXPECT_EQ(MulDiv(p.a, p.b, p.c), p.expected) << p.a << "*" << p.b << "/" << p.c;
}

INSTANTIATE_TEST_SUITE_P(
    Numerics, MulDivRounding,
    ::testing::Values(MulDivCase{1, 1, 2, 1}, MulDivCase{-1, 1, 2, -1}, MulDivCase{3, 1, 2, 2},
                      MulDivCase{5, 1, -2, -3}, MulDivCase{-5, 1, -2, 3}, MulDivCase{1, 1, 3, 0},
                      MulDivCase{2, 1, 3, 1}, MulDivCase{-2, 1, 3, -1}, MulDivCase{10, 10, 10, 10},
                      MulDivCase{0, 5, 7, 0}, MulDivCase{100000, 100000, 100000, 100000},
                      MulDivCase{2147483647, 2, 2, 2147483647},
                      MulDivCase{-2147483647 - 1, 1, 1, -2147483647 - 1}, MulDivCase{65536, 65536, 2, -1}),
    MulDivCaseName);

TEST(Numerics, MulDivByZeroAnswersMinusOne) {
    EXPECT_EQ(MulDiv(5, 3, 0), -1);
    EXPECT_EQ(MulDiv(0, 0, 0), -1);
}

TEST(Numerics, MulDivOverflowAnswersMinusOne) {
    EXPECT_EQ(MulDiv(2147483647, 2, 1), -1);
    EXPECT_EQ(MulDiv(-2147483647 - 1, -1, 1), -1);
    EXPECT_EQ(MulDiv(-2147483647 - 1, 2, 1), -1);
    EXPECT_EQ(MulDiv(65536, 65536, 1), -1);
}

TEST(Numerics, IntDivAndIntModByZeroRaiseDivByZero) {
    EXPECT_THROW(IntDiv(1, 0), EDivByZero);
    EXPECT_THROW(IntMod(1, 0), EDivByZero);
    try {
        IntDiv(0, 0);
        FAIL();
    } catch (const EDivByZero& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Division by zero"));
    }
}

TEST(Numerics, IntDivAndIntModTruncateTowardZero) {
    EXPECT_EQ(IntDiv(7, 2), 3);
    EXPECT_EQ(IntDiv(-7, 2), -3);
    EXPECT_EQ(IntMod(-7, 2), -1);
    EXPECT_EQ(IntMod(7, -2), 1);
    // The one quotient that does not fit wraps instead of trapping.
    EXPECT_EQ(IntDiv(std::numeric_limits<std::int64_t>::min(), -1), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(IntMod(std::numeric_limits<std::int64_t>::min(), -1), 0);
}

TEST(Numerics, FloatDivByZeroRaisesZeroDivide) {
    EXPECT_THROW(FloatDiv(1.0L, 0.0L), EZeroDivide);
    EXPECT_THROW(FloatDiv(0.0L, -0.0L), EZeroDivide);
    EXPECT_EQ(FloatDiv(1.0L, 4.0L), 0.25L);
    try {
        FloatDiv(1.0L, 0.0L);
        FAIL();
    } catch (const EZeroDivide& e) {
        EXPECT_EQ(e.Message(), QStringLiteral("Floating point division by zero"));
    }
}
