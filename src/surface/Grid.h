// The two small helpers of the draw box: the grid (`TvlGrid`), a rectangular lattice in logical units
// that can be drawn under the drawing and that tools snap to, and the shadow settings (`TShadows`).
// Both are created by the box's constructor and freed with the box.
#pragma once

#include "geometry/Vltypes.h"
#include "platform/graphics/Graphics.h"

#include <memory>

namespace vl {

class TCustomDrawBox;

class TvlGrid : public TPersistent {
public:
    explicit TvlGrid(TCustomDrawBox* AOwner);
    ~TvlGrid() override;

    int ShowEvery() const { return FShowEvery; }
    // `ShowEvery` 0 hides the grid; any value above 0 shows it.
    void SetShowEvery(int Value);
    bool Visible() const { return FVisible; }
    // Showing a grid with `ShowEvery` 0 sets it to 1.
    void SetVisible(bool Value);
    int IncHorz() const { return FIncHorz; }
    void SetIncHorz(int Value);
    int IncVert() const { return FIncVert; }
    void SetIncVert(int Value);
    TPen& Pen() { return *FPen; }

    // Whether tools snap; `MatchCoords` itself does not look at it.
    bool FCapture = false;
    bool Capture() const { return FCapture; }
    void SetCapture(bool Value) { FCapture = Value; }

    // Rounds a point, or a distance, to the lattice; ties go to the even multiple. An increment of 0
    // or less leaves that axis free.
    void MatchCoords(TPoint& Point) const;
    // Draws the lines that cross the logical rectangle on the canvas of `ActScaleSet`, vertical
    // lines first, each family reaching one device pixel beyond the rectangle.
    void Draw(const TLimRec& LimRec);

    // Every change of a property repaints the whole box.
    void Changed(TObject* Sender);

    // Copies the settings of another grid (the box stays this grid's own); the box is repainted once
    // if anything differed. Any other source raises the assignment error.
    void Assign(TPersistent* Source) override;

private:
    int FShowEvery = 0;
    bool FVisible = false;
    std::unique_ptr<TPen> FPen;
    int FIncHorz = 100;
    int FIncVert = 100;
    TCustomDrawBox* FDrawbox; // borrowed: the box that owns the grid
};

class TShadows : public TPersistent {
public:
    TShadows();
    ~TShadows() override;

    int dX() const { return FdX; }
    void SetdX(int Value) { FdX = Value; }
    int dY() const { return FdY; }
    void SetdY(int Value) { FdY = Value; }
    TBrush& Brush() { return *FBrush; }

    // Copies the offsets and the brush of other shadow settings. Any other source raises the
    // assignment error.
    void Assign(TPersistent* Source) override;

private:
    int FdX = 10;
    int FdY = 7;
    std::unique_ptr<TBrush> FBrush;
};

} // namespace vl
