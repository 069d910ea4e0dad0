// What fitting the whole drawing into a window sees of a data module and of a window, as stand-ins:
// fixed limits and counts of what was asked, and a fixed client rectangle.
#pragma once

#include "surface/ScaleSetting.h"

#include <functional>

namespace vl::test {

// A data module as fitting sees it: the limits `Limits`, and counters of the calls; `OnAdjust` runs at
// each `AdjustAllToScale`.
struct TFitSourceDouble : TScaleFitSource {
    TLimRec Limits;
    int GetLimitsCalls = 0;
    int InitLimitsCalls = 0;
    int AdjustCalls = 0;
    std::function<void()> OnAdjust;

    TLimRec GetLimits() override {
        ++GetLimitsCalls;
        return Limits;
    }
    void InitLimits() override { ++InitLimitsCalls; }
    void AdjustAllToScale() override {
        ++AdjustCalls;
        if (OnAdjust) OnAdjust();
    }
};

// A window as fitting sees it: its client rectangle.
struct TClientAreaDouble : TClientAreaSource {
    TRect Client;
    TRect GetClientRect() const override { return Client; }
};

} // namespace vl::test
