// The face that a drawing object shows to the draw box.
//
// The box draws, adapts and moves objects only through these operations; the object classes fill
// them in. The box never owns an object of the data module: objects belong to their list. The two
// ruler objects of the box are the exception, owned by the box.
#pragma once

#include "geometry/Vltypes.h"
#include "platform/Classes.h"

#include <cstdint>
#include <functional>

namespace vl {

class TvlObject;

// The tests of `CheckFrame`: a point, a rectangle, or limits (`TLimRec`) given in `Params`.
enum class TCheckFrame : std::uint8_t { cfPoint, cfRect, cfLimRec };
using enum TCheckFrame;

// Walks over objects take a callback and a parameter block passed through untouched.
using TAllObjectsProc = std::function<void(TvlObject* AnyObject, void* Params)>;
using TFirstObjectFunc = std::function<bool(TvlObject* FndObject, void* Params)>;

class TvlObject : public TPersistent {
public:
    // Whether the object is shown at all.
    virtual bool Visible() const = 0;
    // True when the object's full limits meet the area of `Params`, read as `Mode` says.
    virtual bool CheckFrame(const void* Params, TCheckFrame Mode) = 0;
    // Draws the object on the canvas of `ActScaleSet`: shadow, shape and mark.
    virtual void Show() = 0;
    // Whether the generator of the object's tool holds `roNosy`: such an object hears of every paint.
    virtual bool Nosy() const = 0;
    virtual void ObjectMessage(TObjMessage& Msg) = 0;
    // Adapts scaled resources to the scale of `ActScaleSet`.
    virtual void AdjustToScale() = 0;
    // Grows the data module's restore rect by the object's limits.
    virtual void Invalidate() = 0;
    virtual void MovePos(TPoint DeltaPos) = 0;
};

} // namespace vl
