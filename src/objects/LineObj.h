// The line object: an object placed by two points.
//
// With the shape `stLine` it is a line; with any other shape the two points span the box of a
// rectangle, ellipse and so on, so that the object has its own size where a point object takes its
// size from the generator. Each end can hang on a master, which makes connectors: a line between two
// point objects follows them both. Labels and dimension lines derive from it.
//
// Invariants: the first end is the object's position (`Pos`, through the base class), the second is
// `Pos2`, seen in the same three ways: free, `Pos2.x`, `Pos2.y`; with `isP2Slave` and `isConnect`
// clear, `Pos2.ConObj` is the second master (a line end has no offset); with `isConnect` set,
// `Pos2.x` holds the second master's class number and number.
#pragma once

#include "objects/PointObj.h"
#include "platform/graphics/Cursors.h"

#include <cstdint>

namespace vl {

class TLineObj : public TPointObj {
public:
    explicit TLineObj(TObjectCreator* ATool = nullptr) : TPointObj(ATool) {}

    // --- Overrides of the object protocol ---------------------------------------------------------
    // Non-null: the first end hangs on `Value`. Null: the end is freed where it stands.
    void SetMaster(TvlObject* Value) override;
    double GetX_World() override;
    double GetY_World() override;
    // The first end: the master's position itself with `isP1Slave`, else `Pos`.
    std::int32_t GetX() override;
    std::int32_t GetY() override;
    // The box of the two ends; an extent of at most `Lin_prec` is widened to `Lin_prec` on each side
    // of the first end.
    std::int32_t GetMaxX() override;
    std::int32_t GetMinX() override;
    std::int32_t GetMaxY() override;
    std::int32_t GetMinY() override;
    // The absolute distances of the ends.
    std::int32_t GetHeight() override;
    std::int32_t GetWidth() override;
    // The handles of the shape's family: ends, corners, sides or side middles.
    bool SizingHandles(TPoint Pt, TSizeMode Mode) override;
    void AssignPos(TvlObject* MirrorObj) override;
    std::int32_t Involved(TInvolve Code) override;
    // The point object's record, then `Pos2` (8 bytes); the second link is connected afterwards.
    void Persist(TStream* Stream, TPstMode PstMode) override;
    // Sizes by the held handle, or moves both ends; a line with a slaved end doesn't move itself.
    void MovePos(TPoint DeltaPos) override;
    // Turns the free ends round `Origin`; the angle field is not touched.
    void Rotate(TPoint Origin, double Delta) override;
    // Selects the line together with the masters of its slaved ends.
    void SelectComplete(TSelectMode Mode) override;
    // From the first end to the second, in local coordinates.
    void ShapeLine() override;
    // Refuses where the mouse is on an end's master; otherwise tests the line in local points.
    bool CheckLineShape(const TLimRec& CurLims) override;
    // `stLine`: the direction of the line (`GetLineAlpha`); other shapes the point object's angle.
    double GetAlpha() override;

    // --- New virtual operations -------------------------------------------------------------------
    virtual std::int32_t GetX2();
    virtual std::int32_t GetY2();
    // The same for the second end, `Pos2` and `isP2Slave`.
    virtual void SetMaster2(TvlObject* Value);

    // --- The second end ---------------------------------------------------------------------------
    TPoint GetPos2() { return Point(GetX2(), GetY2()); }
    TPoint Pos2_Log() { return GetPos2(); }
    std::int32_t X2_Log() { return GetX2(); }
    std::int32_t Y2_Log() { return GetY2(); }
    double GetX2_World();
    double GetY2_World();
    double X2_World() { return GetX2_World(); }
    double Y2_World() { return GetY2_World(); }
    // Writers; refused while the second end hangs on a master.
    void SetX2(std::int32_t Value);
    void SetY2(std::int32_t Value);
    void SetX2_World(double Value);
    void SetY2_World(double Value);
    void SetX2_Log(std::int32_t Value) { SetX2(Value); }
    void SetY2_Log(std::int32_t Value) { SetY2(Value); }
    // Stores the second end; the square shapes keep their box square.
    void SetPos2(TPoint Pt);
    void SetPos2_Log(TPoint Pt) { SetPos2(Pt); }
    // `Pos2.ConObj` with `isP2Slave`, else the object itself.
    TvlObject* GetMaster2() const;
    TvlObject* Master2() const { return GetMaster2(); }
    // The raw second position record.
    const TPos& Pos2Rec() const { return Pos2; }
    // The direction from the first end to the second, 0 to 2 pi; straight up or down is pi / 2.
    double GetLineAlpha();

protected:
    TPos Pos2;

private:
    // The ends and the middles of the box in local coordinates (less `MinX`, `MinY`).
    struct TLocalEnds {
        std::int32_t X1 = 0, Y1 = 0, X2 = 0, Y2 = 0, Xm = 0, Ym = 0;
    };
    TLocalEnds LocalEnds();
    // The resize cursor along the box's diagonal on the screen; `Reversed` for the other diagonal.
    TCursor CornerCursor(bool Reversed);
    // A drawn handle at `Center`: drawn in `smShape`; in `smCheck` hit by a point in its square,
    // which holds `Handle` and shows `Cursor`.
    bool PointHandle(TPoint Pt, TSizeMode Mode, TPoint Center, TSizingHandle Handle, TCursor Cursor);
    // A side of the box at `LineCoord`: never drawn; in `smCheck` hit within the frame width.
    bool LineHandle(std::int32_t PtCoord, TSizeMode Mode, std::int32_t LineCoord, TSizingHandle Handle,
                    TCursor Cursor);
    // The handles: the ends and the other corners, the sides, and the middles of the sides.
    bool SizingX1Y1(TPoint Pt, TSizeMode Mode);
    bool SizingX2Y2(TPoint Pt, TSizeMode Mode);
    bool SizingX1Y2(TPoint Pt, TSizeMode Mode);
    bool SizingX2Y1(TPoint Pt, TSizeMode Mode);
    bool SizingVert1(TPoint Pt, TSizeMode Mode);
    bool SizingVert2(TPoint Pt, TSizeMode Mode);
    bool SizingHorz1(TPoint Pt, TSizeMode Mode);
    bool SizingHorz2(TPoint Pt, TSizeMode Mode);
    bool SizingHorzM1(TPoint Pt, TSizeMode Mode);
    bool SizingHorzM2(TPoint Pt, TSizeMode Mode);
    bool SizingVertM1(TPoint Pt, TSizeMode Mode);
    bool SizingVertM2(TPoint Pt, TSizeMode Mode);
    // Sizing by the held handle: the ends that the handle names move by the delta; the square shapes
    // bring the other side after (`PairX1` puts `X` at `X2` less or plus the height, and so on).
    // An end's coordinate moved by `d` through its writer.
    void AddX(std::int32_t d);
    void AddY(std::int32_t d);
    void AddX2(std::int32_t d);
    void AddY2(std::int32_t d);
    void SizeBox(TSizingHandle Handle, std::int32_t dx, std::int32_t dy);
    void SizeSquare(TSizingHandle Handle, std::int32_t dx, std::int32_t dy);
    void PairX1();
    void PairY1();
    void PairX2();
    void PairY2();
};

} // namespace vl
