// Invariant checks: active in Debug and sanitizer builds, where a failed check aborts with its
// condition named; in other builds the condition is not even evaluated.

#include "platform/core/Assert.h"

#include <gtest/gtest.h>

namespace vl::test {
namespace {

bool CountedTrue(int& Calls) {
    ++Calls;
    return true;
}

TEST(Assert, AHoldingConditionPassesQuietly) {
    int calls = 0;
    VL_ASSERT(CountedTrue(calls));
#if defined(VELLORUM_ASSERTS)
    EXPECT_EQ(calls, 1);
#else
    EXPECT_EQ(calls, 0);
#endif
}

#if defined(VELLORUM_ASSERTS)
TEST(AssertDeathTest, AFailedConditionAbortsNamingItself) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const int count = 3;
    const int capacity = 2;
    EXPECT_DEATH(VL_ASSERT(count <= capacity), "invariant failed: count <= capacity");
}
#else
TEST(Assert, AFailedConditionIsNotCheckedInReleaseBuilds) {
    int calls = 0;
    VL_ASSERT(!CountedTrue(calls));
    EXPECT_EQ(calls, 0);
}
#endif

} // namespace
} // namespace vl::test
