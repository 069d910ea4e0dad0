// Scoped replacements of state: the former value comes back on every exit, exceptions included, and
// a flag that was already set stays set.

#include "platform/core/Scoped.h"
#include "platform/core/Sets.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

namespace vl::test {
namespace {

enum class TTestFlag : std::uint8_t { tfA, tfB };
using TTestFlags = TFlagSet<TTestFlag>;

TEST(Scoped, AValueIsReplacedForTheScopeAndPutBackAfterIt) {
    int value = 3;
    {
        const TScopedValue scope(value, 7);
        EXPECT_EQ(value, 7);
        EXPECT_EQ(scope.Former(), 3);
        value = 9; // a change inside the scope is dropped as well
    }
    EXPECT_EQ(value, 3);
}

TEST(Scoped, AValueIsPutBackWhenTheScopeEndsByAnException) {
    int value = 3;
    EXPECT_THROW(
        {
            const TScopedValue scope(value, 7);
            throw std::runtime_error("fails");
        },
        std::runtime_error);
    EXPECT_EQ(value, 3);
}

TEST(Scoped, AFlagIsIncludedForTheScopeAndExcludedAfterItEvenOnAnException) {
    TTestFlags flags;
    EXPECT_THROW(
        {
            const TScopedFlag scope(flags, TTestFlag::tfA);
            EXPECT_TRUE(flags.Contains(TTestFlag::tfA));
            throw std::runtime_error("fails");
        },
        std::runtime_error);
    EXPECT_FALSE(flags.Contains(TTestFlag::tfA));
}

TEST(Scoped, AFlagThatWasSetBeforeStaysSetAndOthersAreLeftAlone) {
    TTestFlags flags;
    flags.Include(TTestFlag::tfA);
    {
        const TScopedFlag scope(flags, TTestFlag::tfA);
        flags.Include(TTestFlag::tfB);
    }
    EXPECT_TRUE(flags.Contains(TTestFlag::tfA));
    EXPECT_TRUE(flags.Contains(TTestFlag::tfB));
}

} // namespace
} // namespace vl::test
