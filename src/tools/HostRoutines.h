// Routines with which a host application moves, marks, hides and shows single objects from code,
// outside any tool.
//
// Each runs its work in a block that catches every exception and drops it: a host call never fails
// visibly. `MoveObject`, `MoveObjectTo`, `MarkObject` and `UnMarkObject` first make the object's box
// current (its scale setting becomes `ActScaleSet`); `HideObject` and `ShowObject` leave
// `ActScaleSet` as it stands.
#pragma once

#include "objects/TvlObject.h"
#include "store/DataModBase.h"

namespace vl {

// Moves `Obj`, and everything that moves with it, by `Delta` logical units (snapped to the grid when
// the grid captures), with an undo snapshot of the moved objects; repaints the old and new places.
void MoveObject(TvlObject* Obj, TPoint Delta);
// Moves `Obj` so that its position becomes `Pt`.
void MoveObjectTo(TvlObject* Obj, TPoint Pt);
// Selects `Obj` (with what its selection takes along) and draws the marks of the mark list.
void MarkObject(TvlObject* Obj);
// Takes `Obj` (with what its selection takes along) out of the mark list.
void UnMarkObject(TvlObject* Obj);
// Makes `Obj` invisible and repaints its place.
void HideObject(TvlObject* Obj);
// Makes `Obj` visible and repaints its place.
void ShowObject(TvlObject* Obj);

} // namespace vl
