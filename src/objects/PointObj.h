// The point object: the drawing object proper, a shape, a picture or both, placed by one point.
//
// Its class adds one 16-bit angle to the object base; size, shape and hot spot come from the
// generator. The hot spot is the point of the object's box that stands at its position, and every
// rotation turns round it. Lines, texts and labels derive from it.
//
// Invariant: `FAlpha` holds the angle in thousandths of a radian; the setters keep it within 0 to
// 6283, `SetAlphaPlain` stores what it is given.
#pragma once

#include "objects/TvlObject.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace vl {

class TBitmap;
class TIcon;

// Draws a metafile picture rotated by `Angle` round `HotSpot`; installed by the metafile codec.
// While none is installed, a rotated metafile picture draws unrotated.
using TRotatedMetafileDrawer = std::function<void(HDC DC, TGraphic& Metafile, TPoint HotSpot, double Angle)>;
inline TRotatedMetafileDrawer RotatedMetafileDrawer;
// Whether a graphic is a metafile, whose pictures draw through `DrawMetafile`; answers False while
// no metafile codec is installed.
using TMetafileTest = std::function<bool(const TGraphic& Graphic)>;
inline TMetafileTest IsMetafileGraphic;

class TPointObj : public TvlObject {
public:
    explicit TPointObj(TObjectCreator* ATool = nullptr) : TvlObject(ATool) {}

    // --- Overrides of the object protocol ---------------------------------------------------------
    // Non-null: hangs the object on `Value` at the generator's slave offset. Null: frees it where it
    // stands.
    void SetMaster(TvlObject* Value) override;
    // The position less the hot spot.
    std::int32_t GetMinX() override;
    std::int32_t GetMinY() override;
    // Rotated: the bounds of the rotated outline.
    TLimRec GetLimits() override;
    // The absolute generator size; the sign only tells a line's direction.
    std::int32_t GetHeight() override;
    std::int32_t GetWidth() override;
    // The rotate handle, with `goRotation`; otherwise none.
    bool SizingHandles(TPoint Pt, TSizeMode Mode) override;
    // Rotated: the rotated outline as a winding region.
    HRGN CreateShapeRgn(TRgnMode Mode) override;
    // The base record, then the angle (2 bytes); files before version 0x2004 have no angle.
    void Persist(TStream* Stream, TPstMode PstMode) override;
    bool CheckShape(const TLimRec& CurLims) override;
    // With the rotate handle held, turns the object; otherwise moves it.
    void MovePos(TPoint DeltaPos) override;
    // Turns the object by `Delta` radians round `Origin`.
    void Rotate(TPoint Origin, double Delta) override;
    void Shape() override;
    void Print() override;
    void Draw() override;
    void DrawShadow() override;

    // --- New virtual operations -------------------------------------------------------------------
    // The diagonal of the box: falling for a generator size that is not negative, else rising.
    virtual void ShapeLine();
    // Whether the diagonal touches `CurLims`; a 1-by-1 rectangle is widened by `Lin_prec / 2`. The
    // diagonal is taken in absolute coordinates while `CheckShape` passes a local rectangle; this is
    // the kept behaviour of point objects (line objects test in local points).
    virtual bool CheckLineShape(const TLimRec& CurLims);
    // Radians; a slave whose tool has `goNoSizing` reads its master's angle.
    virtual double GetAlpha();
    // Wraps into 0 to 2 pi and stores thousandths; only with `goRotation`.
    virtual void SetAlpha(double Value);

    // --- The angle in its forms -------------------------------------------------------------------
    std::int16_t GetAlphaPlain() const { return FAlpha; }
    void SetAlphaPlain(std::int16_t Value) { FAlpha = Value; }
    double Alpha() { return GetAlpha(); }
    // Degrees.
    double GetAlpha_DEG();
    void SetAlpha_DEG(double Value);
    double Alpha_DEG() { return GetAlpha_DEG(); }
    // Tenths of a degree.
    std::int32_t GetAlpha_DEG10();
    void SetAlpha_DEG10(std::int32_t Value);
    std::int32_t Alpha_DEG10() { return GetAlpha_DEG10(); }
    // 1 to 4: the quarter of the circle that the angle lies in.
    std::uint16_t Quadrant();
    // The generator has `goRotation` and the angle is at least a twentieth of a degree.
    bool GetRotated();
    bool Rotated() { return GetRotated(); }

    // --- Rotation ---------------------------------------------------------------------------------
    // Turns the object so that its rotate handle follows the mouse; `DeltaPos` is the mouse's offset
    // from where the handle started.
    void MoveRotate(TPoint DeltaPos);
    // Where the rotate handle stands in the unrotated local box.
    TPoint RotateHandlePos();
    // Draws (`smShape`) or hits (`smCheck`) the rotate handle, a disc at the rotated handle position.
    bool SizingRotate(TPoint Pt, TSizeMode Mode);
    // The rotated outline on the canvas, in local coordinates.
    void RotatedShape();
    // The rotated outline of the hit region in a new array, in local coordinates; answers the count
    // (0 and no array for a line).
    std::int32_t CreatePolyPntsEx(std::unique_ptr<TPoint[]>& Points);
    // Draws a raster picture rotated; the rotated picture objects do this. A plain point object
    // draws its picture unrotated and its rotated frame over it.
    virtual void DrawRotatedBmp(HDC DC, TPoint& Offset);

protected:
    // The picture clipped to the shape, unmirrored, and the frame over it.
    void DrawGraphic();
    // The same for printers: bitmaps and icons go through device-independent transfers.
    void PrintGraphic();
    // A metafile picture; rotated through the metafile codec's drawer.
    void DrawMetafile(HDC DC);
    // Prints `Bitmap` at `Pos`, stretched to `*Size` if given; a transparent bitmap through the mask
    // sequence, so that what lies beneath shows through on every device.
    void PrintBitmap(HDC DC, TBitmap& Bitmap, TPoint Pos, const TSize* Size);
    // The same for an icon's colour and mask images.
    void PrintIcon(HDC DC, TIcon& Icon, TPoint Pos, const TSize* Size);
    // The four sides of a rectangle as four lines, each one unit short of the next corner, so that an
    // inverting pen touches no corner twice.
    void RectOutline(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b);
    // The rectangle of a line hit test: exactly 1 by 1 (a mouse point) it is widened by
    // `Lin_prec / 2` on every side; any other stays as it is.
    static TLimRec LineHitRect(const TLimRec& CurLims);

    std::int16_t FAlpha = 0;

private:
    // Steps 3 to 8 of drawing a picture: clip to the shape, unmirror, transparency, the picture.
    // `ForPrinter` chooses the device-independent transfers and the clip combined with the device's.
    void PaintGraphic(bool ForPrinter);
    // Moves the window origin so that local (0, 0) lies where the object's corner is on the device,
    // with both axes running positive: pictures are never mirrored.
    void Unmirror(HDC DC);
    // The frame of the shape region, `FrameRgn_W` pixels wide in the canvas pen's colour.
    void FrameShapeRgn();
    // The outline in the tool's colours over a drawn picture, unless the tool's pen is clear.
    void FrameOverPicture(bool ForPrinter);
    // The smaller of width and height (the height if equal).
    std::int32_t SmallerSide();
    // The outline of the rotated shape for the limits, null for a line.
    std::unique_ptr<class TPointList> RotatedOutline();
};

} // namespace vl
