// The tools that make objects: what the draw box needs of them.
#pragma once

#include "tools/MouseToolBase.h"

#include <cstdint>

namespace vl {

class TvlObject;

class TvlCreator : public TSaveTool {
public:
    explicit TvlCreator(TComponent* AOwner) : TSaveTool(AOwner) {}

    // The class number of the tool's objects: its index among its owner's components.
    virtual std::int16_t GetID() { return static_cast<std::int16_t>(ComponentIndex()); }
    // A new object of the tool's class, in no list yet.
    virtual TvlObject* CreateObject() = 0;
    // Adapts the generator's scaled resources after a change of scale.
    virtual void CheckScaling() {}
    // Gives back the resources kept during a paint.
    virtual void ReleaseResources() {}
};

} // namespace vl
