#include "platform/core/Assert.h"

#include <cstdio>
#include <cstdlib>

namespace vl {

void AssertFailed(const char* Condition, const char* File, int Line) noexcept {
    std::fprintf(stderr, "Vellorum invariant failed: %s (%s:%d)\n", Condition, File, Line);
    std::fflush(stderr);
    std::abort();
}

} // namespace vl
