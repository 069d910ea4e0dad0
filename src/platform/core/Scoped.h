// Scoped replacements of global state.
//
// A long operation may replace a global for its duration (the scale setting in force while exporting,
// printing or painting another box synchronously) or raise a state flag while it runs (`dmLoading`,
// `bsToolScroll`). These helpers put the former value back on every exit, exceptions included, so that
// no hand-written catch-and-rethrow is needed to restore state.
#pragma once

#include <utility>

namespace vl {

// Replaces `Variable` by `Value` until the end of the scope, then puts the former value back.
template <class T>
class TScopedValue {
public:
    TScopedValue(T& Variable, T Value)
        : FVariable(Variable), FFormer(std::exchange(Variable, std::move(Value))) {}
    ~TScopedValue() { FVariable = std::move(FFormer); }
    TScopedValue(const TScopedValue&) = delete;
    TScopedValue& operator=(const TScopedValue&) = delete;

    const T& Former() const { return FFormer; }

private:
    T& FVariable;
    T FFormer;
};

// Includes `Flag` in the flag set `Set` until the end of the scope, then gives the flag its former
// state (still included if it was before).
template <class TSet, class TFlag>
class TScopedFlag {
public:
    TScopedFlag(TSet& Set, TFlag Flag) : FSet(Set), FFlag(Flag), FWasIn(Set.Contains(Flag)) {
        FSet.Include(FFlag);
    }
    ~TScopedFlag() {
        if (!FWasIn) FSet.Exclude(FFlag);
    }
    TScopedFlag(const TScopedFlag&) = delete;
    TScopedFlag& operator=(const TScopedFlag&) = delete;

private:
    TSet& FSet;
    TFlag FFlag;
    bool FWasIn;
};

} // namespace vl
