// The creators that draw: points with one click, lines with two clicks and a live preview, chains of
// lines, and connectors whose ends hang on other objects.
//
// - `TCustomPoints` makes an object with one click; with `OnObjectFound` only on an accepted object,
//   as its slave. `SlaveObject`, another creator, gives each new object a slave at once.
// - `TCustomLines` makes a line with two clicks, previewed between them with an invertible pen
//   (`DynaLine`, `pmNotXor`), so that drawing the preview twice leaves the screen as it was; with
//   `PolyShape` each line starts where the last one ended, and `OrthoMode` keeps lines horizontal or
//   vertical.
// - `TCustomLineDepends` makes lines whose ends are objects: an object of its `MasterObject` tool
//   under the mouse, or a new one that the tool makes there. The lines follow their ends.
//
// `TvlPoints`, `TvlLines` and `TLineDepends` are the published forms; they add nothing.
//
// References to other components (`SlaveObject`, `MasterObject`) and to objects of a gesture in
// progress (`P1`, `P2`) are borrowed; a removed component is forgotten through `Notification`, and
// the objects of a gesture are forgotten when it ends.
#pragma once

#include "objects/LineObj.h"
#include "objects/PointObj.h"
#include "platform/window/Controls.h"
#include "tools/CreatorBase.h"

#include <cstdint>
#include <memory>
#include <span>

namespace vl {

// The class of the rotated picture objects, installed by their module; while none is installed, a
// point tool with a turnable raster picture makes point objects, which turn their outline only.
inline TCapClass RotatedPicClass;

class TCustomPoints : public TvlCreator {
public:
    // Makes a point generator.
    explicit TCustomPoints(TComponent* AOwner);

    // A point generator: slaves 10 units off, objects 20 by 20.
    void CreateGenerator() override;
    // The rotated picture class for a turnable raster picture, else the point object.
    TCapClass DefaultClass() override;
    // One object at `CurPos`; with `OnObjectFound` only on the object under the mouse, as its slave
    // (null on free paper). A line class gets its second end at the generator's size.
    TvlObject* SetNewObj(const TPoint& CurPos) override;
    // Only with `OnObjectFound`: the search of the object under the mouse.
    void MouseMove(TShiftState Shift, const TPoint& CurPos) override;
    // Forgets a removed slave tool.
    void Notification(TComponent* AComponent, TOperation Operation) override;

    // Finishes a new object: numbered, given its data, added to the data module, invalidated, made
    // visible, and given a slave by `SlaveObject`; answers it. A tool that makes box objects
    // (`CreateBoxObjects`) neither numbers nor adds it: the answered object then belongs to the caller,
    // who hands it to the box.
    TvlObject* RegisterNewObj(std::unique_ptr<TvlObject> CurObject);
    // The search of objects under the mouse: `Params` is the rectangle (`TLimRec`) searched.
    bool MouseFind(TvlObject* FndObject, void* Params);

    TvlCreator* SlaveObject() const { return FSlaveObject; }
    void SetSlaveObject(TvlCreator* Value);

protected:
    TvlCreator* FSlaveObject = nullptr; // borrowed
};

// The extent of the shape in progress, from its first point to the mouse.
using TDynaMoveEvent = TMouseMoveEvent;

class TCustomLines : public TCustomPoints {
public:
    // Makes a line generator and the preview pen (`pmNotXor`).
    explicit TCustomLines(TComponent* AOwner);
    ~TCustomLines() override;

    // A plain generator whose shape is `stLine`.
    void CreateGenerator() override;
    // The line object.
    TCapClass DefaultClass() override;
    // First click: starts the gesture and its preview, null. Next click: the line from the first
    // point to `CurPos`; a chain goes on from there.
    TvlObject* SetNewObj(const TPoint& CurPos) override;
    // During a gesture in ortho mode (and without the grid's capture) the click is made ortho first.
    void LMouseDown(TShiftState Shift, const TPoint& CurPos) override;
    // During a gesture: the snapped position moves the preview. No object search.
    void MouseMove(TShiftState Shift, const TPoint& CurPos) override;
    // During a gesture: erases the preview and ends the gesture; otherwise the default tool takes
    // over.
    void RMouseDown(TShiftState Shift, const TPoint& CurPos) override;
    // The box scrolls under the preview: erased, scrolled, painted, drawn again at `CurPos` if the
    // gesture still runs.
    void Scroll(const TScrollProc& ScrollProc, const TPoint& CurPos) override;

    // The preview of the shape from `PosP1` to `PosP2` on the box's canvas, in the canvas's pen.
    virtual void DynShape();

    // Ends the gesture without a new line; leaves the preview to the caller.
    void BreakPolyline();
    // Draws (or, drawn twice, erases) the preview.
    void DrawDynLin();
    // Moves the preview's second point to `CurPos` and fires `OnDynaShapeMove`.
    void MoveDynLin(TShiftState Shift, const TPoint& CurPos);
    void DynaShapeStart();
    void DynaShapeEnd();
    // Keeps `CurPos` on the horizontal or vertical through `PosP1`, whichever is nearer; a tie is
    // horizontal.
    void OrthoCoords(TPoint& CurPos) const;
    // A chain through `Points`, made as clicks without grid or ortho mode; answers the last line. With
    // no points nothing is made and null is answered.
    TvlObject* SetPolyObj(const TPoint* Points, std::int32_t NPnts);
    TvlObject* SetPolyObjA(std::span<const TPoint> Points) {
        return SetPolyObj(Points.data(), static_cast<std::int32_t>(Points.size()));
    }

    TPoint GetPosP1() const { return FPosP1; }
    TPoint PosP1() const { return FPosP1; }
    TPoint GetPosP2() const { return FPosP2; }
    TPoint PosP2() const { return FPosP2; }
    bool PolyShape() const { return FPolyShape; }
    void SetPolyShape(bool Value) { FPolyShape = Value; }
    bool OrthoMode() const { return FOrthoMode; }
    void SetOrthoMode(bool Value) { FOrthoMode = Value; }
    TPen& DynaLine() { return *FDynaLine; }
    void SetDynaLine(TPen* Value) { FDynaLine->Assign(Value); }

    TNotifyEvent OnDynaShapeStart;
    TDynaMoveEvent OnDynaShapeMove;
    TNotifyEvent OnDynaShapeEnd;

protected:
    // The box's canvas with the preview pen, a clear brush and the window origin at 0.
    TCanvas* PreviewCanvas();
    // Starts the gesture's state: working, and unless `toDontScroll` scrolling with the cursor kept
    // in the box.
    void EnterGesture();
    // Leaves the gesture's state and frees the cursor.
    void LeaveGesture();
    // A position of the mouse during a gesture: on the grid when it captures, else ortho in ortho mode.
    void SnapMove(TPoint& CurPos) const;

    TPoint FPosP1{0, 0};
    TPoint FPosP2{0, 0};
    bool FPolyShape = false;
    bool FOrthoMode = false;
    std::unique_ptr<TPen> FDynaLine;
};

class TCustomLineDepends : public TCustomLines {
public:
    explicit TCustomLineDepends(TComponent* AOwner) : TCustomLines(AOwner) {}

    // Refuses with a message while neither `MasterObject` nor `OnObjectFound` is set.
    void Activate(TObject* Sender) override;
    // `OnObjectFound` if assigned; else the objects of `MasterObject`, shown with its cursor.
    bool ObjectFound(TvlObject* CurrentObject) override;
    // The line tool's move, then the search of the object under the mouse at every move.
    void MouseMove(TShiftState Shift, const TPoint& CurPos) override;
    // A step of a connector at the object under the mouse, or at a new point made there.
    TvlObject* SetNewObj(const TPoint& CurPos) override;
    // Forgets a removed master tool.
    void Notification(TComponent* AComponent, TOperation Operation) override;
    // Forgets an end object of the open gesture that leaves the drawing.
    void ObjectGone(TBoxObject* Gone) override;

    // One step at `CurPos` found by program: the topmost accepted object there is the end.
    TvlObject* LinkNewObj(const TPoint& CurPos);
    // One step at `aObject`.
    TvlObject* LinkNewObjTo(TvlObject* aObject);

    TCustomPoints* MasterObject() const { return FPointTool; }
    void SetMasterObject(TCustomPoints* Value);

protected:
    TCustomPoints* FPointTool = nullptr; // borrowed
    TvlObject* P1 = nullptr;             // borrowed: the object at the first end of the open gesture
    TvlObject* P2 = nullptr;             // borrowed: the object at the second end of the last line

private:
    void ForgetEnds();
};

// The published forms.
class TvlPoints : public TCustomPoints {
public:
    using TCustomPoints::TCustomPoints;
};
class TvlLines : public TCustomLines {
public:
    using TCustomLines::TCustomLines;
};
class TLineDepends : public TCustomLineDepends {
public:
    using TCustomLineDepends::TCustomLineDepends;
};

} // namespace vl
