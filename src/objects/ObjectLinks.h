// What a drawing object sees of the tool that made it and of the data module that holds it.
//
// Objects live below the store and the tools, yet every object reads its attributes through its
// creator and reports its changes to its data module. It reaches both through the faces declared
// here, which the creator base (`TvlCreator`) and the data module base (`TvlDataMod`) implement:
// - `TObjectCreator`: the creator as its objects need it: identity, generator, colours and the
//   events that draw objects and place their reference points;
// - `TObjectStore`: the data module as its objects need it: counters, link lookup, selection and
//   the limits kept lazily.
#pragma once

#include "objects/TvlObject.h"
#include "platform/graphics/Cursors.h"
#include "surface/BoxLinks.h"

#include <cstdint>
#include <functional>

namespace vl {

using TObjectEvent = std::function<void(TvlObject* CurrentObject)>;
using TObjectRefPointEvent = std::function<void(TvlObject* CurrentObject, TPoint& RefPoint)>;
using TObjectShapeRgnEvent = std::function<void(TvlObject* CurrentObject, TRgnMode Mode, HRGN& Rgn)>;
using TObjectCheckEvent = std::function<void(TvlObject* CurrentObject, const TRect& PosRect, bool& found)>;

// The tool that made an object, as the object sees it. A mix-in of the creator base, which is also a
// `TBoxTool`.
class TObjectCreator : public TBoxCreator {
public:
    // The creator itself, as the host knows it.
    virtual TvlCreator* Creator() = 0;
    // The creator as a component of a box: its `FDrawForm` and `Tag`.
    virtual TEnvironment* Environment() = 0;
    // A new object of the tool's class: in no list, not drawn, without number.
    TvlObject* CreateObject() override = 0;
    // The attribute set that all objects of the tool share; owned by the tool.
    virtual TCustomGenerator* Generator() const = 0;
    // Pen, brush and font of the canvas in force for `CurObject`.
    virtual void ObjectColors(TvlObject* CurObject) = 0;

    // The host's drawing of an object, in place of the class's own.
    TObjectEvent OnObjectDraw;
    // The reference point of an object, in place of its corner.
    TObjectRefPointEvent OnCalcRefPoint;
    // The host's region of an object's shape.
    TObjectShapeRgnEvent OnObjectShapeRgn;
    // The host's outline of an object, in place of the class's own.
    TObjectEvent OnObjectShape;
    // The host's hit test of an object against the rectangle under the mouse.
    TObjectCheckEvent OnObjectCheckShape;

    // `OnObjectShape` if assigned.
    void ObjectShape(TvlObject* CurObject) {
        if (OnObjectShape) OnObjectShape(CurObject);
    }
    // True unless `OnObjectCheckShape` refuses. The handler's answer starts as True, so a handler
    // that leaves it alone accepts the hit.
    bool ObjectCheckShape(TvlObject* CurObject, const TLimRec& Rect) {
        bool found = true;
        if (OnObjectCheckShape)
            OnObjectCheckShape(CurObject, vl::Rect(Rect.Xmin, Rect.Ymin, Rect.Xmax, Rect.Ymax), found);
        return found;
    }
    // The cursor that an object found under the mouse shows when its generator has `goFndCursor`.
    virtual TCursor FoundCursor() const = 0;
};

// The data module that holds an object, as the object sees it.
class TObjectStore : public TBoxStore {
public:
    explicit TObjectStore(TComponent* AOwner) : TBoxStore(AOwner) {}

    TvlObject* Marked(int Index) const override = 0;
    // Condemns the limits when `AnyObj` may have left them; the next walk rebuilds them.
    virtual void CheckLimits(TvlObject* AnyObj, bool inclBorder) = 0;
    // The object that a stored link names by class number and number; null if none.
    virtual TvlObject* FindObject(TContype ConObj) = 0;
    // The next number of counter `CounterIdx`.
    virtual std::uint16_t IncCounter(std::uint16_t CounterIdx) = 0;
    virtual void Select(TvlObject* AnyObj) = 0;
    virtual void UnSelect(TvlObject* AnyObj) = 0;
    virtual void Mark(TvlObject* AnyObj) = 0;
};

} // namespace vl
