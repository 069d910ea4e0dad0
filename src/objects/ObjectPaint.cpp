// Painting steps of the object base on the canvas of `ActScaleSet`. Drawing happens in local
// coordinates: the canvas origin is moved to the object's corner (`MinX`, `MinY`) first.
#include "objects/TvlObject.h"

#include "objects/Generators.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Exceptions.h"
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"

#include <algorithm>

namespace vl {

void TvlObject::Show() {
    TCanvas& canvas = ScaleCanvas();
    canvas.Pen().SetMode(pmCopy);
    SetWindowOrgEx(canvas.Handle(), -GetMinX(), -GetMinY());
    Draw();
    if (State.Contains(isMarked)) Drawmark();
    SetVisible(true);
}

void TvlObject::Hide() {
    SetVisible(false);
    if (TCustomDrawBox* box = DrawForm()) box->UpdateRect(GetMaxLimits());
    Select(smUnselect);
}

void TvlObject::Print() {
    if (!Visible()) return;
    SetWindowOrgEx(ScaleCanvas().Handle(), -GetMinX(), -GetMinY());
    Draw();
}

void TvlObject::Draw() {
    TCustomGenerator* gen = Generator();
    if (gen && gen->Options().Contains(goShadows)) DrawShade();
    TPicture* picture = GetPicture();
    if (picture && picture->Graphic()) throw Exception(QStringLiteral("Cannot draw picture"));
    if (!FTool) {
        Shape();
        return;
    }
    FTool->ObjectColors(this);
    if (FTool->OnObjectDraw)
        FTool->OnObjectDraw(this);
    else
        Shape();
}

void TvlObject::DrawShade() {
    TCustomDrawBox* box = DrawForm();
    if (!box) return;
    TCanvas& canvas = ScaleCanvas();
    TShadows& shadows = box->Shadows();
    TPoint oldOrigin{0, 0};
    SetWindowOrgEx(canvas.Handle(), -(GetMinX() + shadows.dX()), -(GetMinY() + shadows.dY()), &oldOrigin);
    TCustomGenerator* gen = Generator();
    if (gen && gen->Brush().Style() != bsSolid) {
        // A hollow object keeps its brush pattern, in the shadow's colour.
        FTool->ObjectColors(this);
        canvas.Brush().SetColor(shadows.Brush().Color());
        canvas.Pen().SetColor(shadows.Brush().Color());
    } else {
        canvas.Brush().Assign(&shadows.Brush());
        canvas.Pen().SetColor(shadows.Brush().Color());
    }
    Shape();
    SetWindowOrgEx(canvas.Handle(), oldOrigin.x, oldOrigin.y);
}

HRGN TvlObject::CreateShapeRgn(TRgnMode Mode) {
    if (FTool && FTool->OnObjectShapeRgn) {
        HRGN rgn = nullptr;
        FTool->OnObjectShapeRgn(this, Mode, rgn);
        return rgn;
    }
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    if (Mode == rmDev) {
        TRect r = GetRect_Lcl();
        TPoint corners[2] = {{r.Left, r.Top}, {r.Right, r.Bottom}};
        LPtoDP(ScaleCanvas().Handle(), corners, 2);
        r = Rect(corners[0].x, corners[0].y, corners[1].x, corners[1].y);
        RectDirection(r);
        switch (shape) {
        case stRectangle:
        case stSquare:
        case stRegion: return CreateRectRgn(r.Left, r.Top, r.Right, r.Bottom);
        case stEllipse:
        case stCircle: return CreateEllipticRgn(r.Left, r.Top, r.Right, r.Bottom);
        case stRoundRect:
        case stRoundSquare: {
            const int w = r.Right - r.Left;
            const int h = r.Bottom - r.Top;
            const int d = std::min(w, h) / GetDRoundRect();
            return CreateRoundRectRgn(r.Left, r.Top, r.Right, r.Bottom, d, d);
        }
        case stLine: return nullptr;
        }
        return nullptr;
    }
    const int left = GetLeft();
    const int top = GetTop();
    const int right = GetRight();
    const int bottom = GetBottom();
    switch (shape) {
    case stRectangle:
    case stRegion: return CreateRectRgn(left, top, right, bottom);
    case stEllipse:
    case stCircle: return CreateEllipticRgn(left, top, right, bottom);
    case stRoundRect: {
        const int d = GetHeight() / GetDRoundRect();
        return CreateRoundRectRgn(left, top, right, bottom, d, d);
    }
    case stRoundSquare: {
        const int d = GetWidth() / GetDRoundRect();
        return CreateRoundRectRgn(left, top, right, bottom, d, d);
    }
    case stSquare:
    case stLine: return nullptr;
    }
    return nullptr;
}

void TvlObject::Drawmark() {
    TCanvas& canvas = ScaleCanvas();
    TCustomGenerator* gen = Generator();
    TCustomDrawBox* box = DrawForm();
    const TColor markColor = box ? box->clMarkPen() : TColor(255);
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
        if (TObjectStore* dm = GetDataModule()) dm->Mark(nullptr);
        return;
    }
    SetWindowOrgEx(ScaleCanvas().Handle(), -GetMinX(), -GetMinY());
    State.Include(isMarked);
    Drawmark();
}

TRect TvlObject::HandleRect(TPoint Center) const {
    const std::int32_t f = Scale().GetTempFrame();
    return Rect(Center.x - f, Center.y - f, Center.x + f, Center.y + f);
}

void TvlObject::DrawHandle(TPoint Center) {
    const TRect r = HandleRect(Center);
    // The outline of a rectangle leaves out its right and bottom edges; one unit more brings them in.
    ScaleCanvas().Rectangle(r.Left, r.Top, r.Right + 1, r.Bottom + 1);
}

bool TvlObject::OnHandle(TPoint Pt, TPoint Center) const {
    const TRect r = HandleRect(Center);
    return r.Left <= Pt.x && Pt.x <= r.Right && r.Top <= Pt.y && Pt.y <= r.Bottom;
}

void TvlObject::DrawShadow() {
    SetWindowOrgEx(ScaleCanvas().Handle(), -GetMinX(), -GetMinY());
    Shape();
}

} // namespace vl
