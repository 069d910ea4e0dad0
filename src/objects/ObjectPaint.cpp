// Painting steps of the object base on the canvas of `ActScaleSet`. Drawing happens in local
// coordinates: the canvas origin is moved to the object's corner (`MinX`, `MinY`) first.
#include "objects/TvlObject.h"

#include "objects/Generators.h"
#include "platform/Exceptions.h"
#include "platform/Graphics.h"
#include "platform/Images.h"
#include "store/DataModBase.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

namespace vl {

namespace {

TCanvas& CanvasOf(TScaleSetting& Scale) {
    if (!Scale.Canvas()) throw Exception(QStringLiteral("No canvas in the scale setting"));
    return *Scale.Canvas();
}

} // namespace

void TvlObject::Show() {
    TCanvas& canvas = CanvasOf(Scale());
    canvas.Pen().SetMode(pmCopy);
    SetWindowOrgEx(canvas.Handle(), -GetMinX(), -GetMinY());
    Draw();
    if (State.Contains(isMarked)) Drawmark();
    SetVisible(true);
}

void TvlObject::Hide() {
    SetVisible(false);
    if (FTool && FTool->FDrawForm) FTool->FDrawForm->UpdateRect(GetMaxLimits());
    Select(smUnselect);
}

void TvlObject::Print() {
    if (!Visible()) return;
    SetWindowOrgEx(CanvasOf(Scale()).Handle(), -GetMinX(), -GetMinY());
    Draw();
}

void TvlObject::Draw() {
    TPicture* picture = GetPicture();
    if (picture && picture->Graphic()) throw Exception(QStringLiteral("Cannot draw picture"));
    Shape();
}

void TvlObject::Drawmark() {
    TCanvas& canvas = CanvasOf(Scale());
    TCustomGenerator* gen = Generator();
    const TColor markColor = (FTool && FTool->FDrawForm) ? FTool->FDrawForm->clMarkPen() : TColor(255);
    canvas.Pen().SetWidth(gen ? gen->Pen().Width() : 1);
    canvas.Pen().SetStyle(psSolid);
    canvas.Pen().SetColor(markColor);
    canvas.Pen().SetMode(pmCopy);
    canvas.Brush().SetStyle(bsClear);
    ShapeMark();
    if (GetSizing()) {
        canvas.Brush().SetStyle(bsSolid);
        canvas.Brush().SetColor(markColor);
        SizingHandles(TPoint{0, 0}, smShape);
    }
}

void TvlObject::Mark() {
    if (!Selected()) {
        SelectComplete(smSelect);
        if (TvlDataMod* dm = GetDataModule()) dm->Mark(nullptr);
        return;
    }
    SetWindowOrgEx(CanvasOf(Scale()).Handle(), -GetMinX(), -GetMinY());
    State.Include(isMarked);
    Drawmark();
}

void TvlObject::DrawShadow() {
    SetWindowOrgEx(CanvasOf(Scale()).Handle(), -GetMinX(), -GetMinY());
    Shape();
}

} // namespace vl
