// The grid and the shadow settings of the draw box.

#include "surface/Grid.h"

#include "platform/Numerics.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

namespace vl {

TvlGrid::TvlGrid(TCustomDrawBox* AOwner) : FPen(std::make_unique<TPen>()), FDrawbox(AOwner) {
    FPen->SetOnChange([this](TObject* Sender) { Changed(Sender); });
}

TvlGrid::~TvlGrid() = default;

void TvlGrid::Changed(TObject*) {
    if (FDrawbox) FDrawbox->Invalidate();
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

void TvlGrid::MatchCoords(TPoint& Point) const {
    if (FIncHorz > 0)
        Point.x = static_cast<std::int32_t>(Round(static_cast<long double>(Point.x) / FIncHorz) * FIncHorz);
    if (FIncVert > 0)
        Point.y = static_cast<std::int32_t>(Round(static_cast<long double>(Point.y) / FIncVert) * FIncVert);
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

} // namespace vl
