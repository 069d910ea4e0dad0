// Invariant checks: `VL_ASSERT(condition)`.
//
// The headers state the invariants of their classes in prose; `VL_ASSERT` states them in code where
// they must hold. It is active in Debug builds and in the sanitizer build (`VELLORUM_ASSERTS`); a
// failed check names the condition, file and line on standard error and aborts. In other builds the
// condition is not evaluated, so it must have no side effects.
#pragma once

namespace vl {

// Reports a failed invariant and aborts.
[[noreturn]] void AssertFailed(const char* Condition, const char* File, int Line) noexcept;

} // namespace vl

#if defined(VELLORUM_ASSERTS)
#define VL_ASSERT(cond) ((cond) ? static_cast<void>(0) : ::vl::AssertFailed(#cond, __FILE__, __LINE__))
#else
// `sizeof` keeps the condition compiled (names stay checked) without evaluating it.
#define VL_ASSERT(cond) static_cast<void>(sizeof(static_cast<bool>(cond)))
#endif
