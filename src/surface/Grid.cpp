// The grid and the shadow settings of the draw box.

#include "surface/Grid.h"

#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

#include <algorithm>
#include <cstdint>

namespace vl {

TvlGrid::TvlGrid(TCustomDrawBox* AOwner) : FPen(std::make_unique<TPen>()), FDrawbox(AOwner) {
    FPen->SetOnChange([this](TObject* Sender) { Changed(Sender); });
}

TvlGrid::~TvlGrid() = default;

void TvlGrid::Changed(TObject*) {
    if (FDrawbox) FDrawbox->Invalidate();
}

void TvlGrid::Assign(TPersistent* Source) {
    auto* grid = dynamic_cast<TvlGrid*>(Source);
    if (!grid) {
        TPersistent::Assign(Source);
        return;
    }
    if (grid == this) return;
    const bool differs = FShowEvery != grid->FShowEvery || FVisible != grid->FVisible ||
                         FCapture != grid->FCapture || FIncHorz != grid->FIncHorz ||
                         FIncVert != grid->FIncVert;
    FShowEvery = grid->FShowEvery;
    FVisible = grid->FVisible;
    FCapture = grid->FCapture;
    FIncHorz = grid->FIncHorz;
    FIncVert = grid->FIncVert;
    // A pen that differs repaints through its own change event.
    FPen->Assign(grid->FPen.get());
    if (differs) Changed(this);
}

void TvlGrid::SetIncHorz(int Value) {
    if (Value == FIncHorz) return;
    FIncHorz = Value;
    Changed(this);
}

void TvlGrid::SetIncVert(int Value) {
    if (Value == FIncVert) return;
    FIncVert = Value;
    Changed(this);
}

void TvlGrid::SetVisible(bool Value) {
    if (Value == FVisible) return;
    FVisible = Value;
    if (Value && FShowEvery < 1) FShowEvery = 1;
    Changed(this);
}

void TvlGrid::SetShowEvery(int Value) {
    if (Value == FShowEvery) return;
    FShowEvery = Value;
    FVisible = Value > 0;
    Changed(this);
}

namespace {

// The multiple of `Inc` (above 0) nearest to `Value`, a tie going to the even multiple. Worked in
// integers, so that a tie is recognised exactly at any magnitude. A multiple that lies beyond the
// 32-bit range is replaced by its neighbour toward zero, the nearest lattice line that exists.
std::int32_t SnapToIncrement(std::int32_t Value, std::int32_t Inc) {
    const std::int64_t v = Value;
    const std::int64_t inc = Inc;
    std::int64_t q = v / inc;       // toward zero
    const std::int64_t r = v % inc; // the sign of `v`
    const std::int64_t twice = 2 * (r < 0 ? -r : r);
    if (twice > inc || (twice == inc && q % 2 != 0)) q += v < 0 ? -1 : 1;
    std::int64_t snapped = q * inc;
    if (snapped > INT32_MAX) snapped -= inc;
    if (snapped < INT32_MIN) snapped += inc;
    return static_cast<std::int32_t>(snapped);
}

} // namespace

void TvlGrid::MatchCoords(TPoint& Point) const {
    if (FIncHorz > 0) Point.x = SnapToIncrement(Point.x, FIncHorz);
    if (FIncVert > 0) Point.y = SnapToIncrement(Point.y, FIncVert);
}

void TvlGrid::Draw(const TLimRec& LimRec) {
    TScaleSetting* scale = ActScaleSet;
    if (!scale || !scale->Canvas()) return;
    TCanvas& canvas = *scale->Canvas();
    const std::int64_t slack = scale->PixToLog(1);
    canvas.SetPen(*FPen);
    // Lines are drawn in 64 bits and clamped, so that a slack at the edge of the logical range
    // cannot overflow.
    auto clamp32 = [](std::int64_t v) {
        return static_cast<int>(std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX));
    };
    const std::int64_t stepH = static_cast<std::int64_t>(FIncHorz) * FShowEvery;
    if (stepH > 0) {
        const std::int64_t q = (LimRec.Xmin - slack) / stepH;
        std::int64_t x = q * stepH;
        if (LimRec.Xmin > x) x = (q + 1) * stepH;
        while (x < LimRec.Xmax + slack) {
            canvas.MoveTo(clamp32(x), clamp32(LimRec.Ymin - slack));
            canvas.LineTo(clamp32(x), clamp32(LimRec.Ymax + slack));
            x += stepH;
        }
    }
    const std::int64_t stepV = static_cast<std::int64_t>(FIncVert) * FShowEvery;
    if (stepV > 0) {
        const std::int64_t q = (LimRec.Ymin - slack) / stepV;
        std::int64_t y = q * stepV;
        if (LimRec.Ymin > y) y = (q + 1) * stepV;
        while (y < LimRec.Ymax + slack) {
            canvas.MoveTo(clamp32(LimRec.Xmin - slack), clamp32(y));
            canvas.LineTo(clamp32(LimRec.Xmax + slack), clamp32(y));
            y += stepV;
        }
    }
}

TShadows::TShadows() : FBrush(std::make_unique<TBrush>()) {
    FBrush->SetColor(0x808080);
    FBrush->SetStyle(bsSolid);
}

TShadows::~TShadows() = default;

void TShadows::Assign(TPersistent* Source) {
    auto* shadows = dynamic_cast<TShadows*>(Source);
    if (!shadows) {
        TPersistent::Assign(Source);
        return;
    }
    FdX = shadows->FdX;
    FdY = shadows->FdY;
    FBrush->Assign(shadows->FBrush.get());
}

} // namespace vl
