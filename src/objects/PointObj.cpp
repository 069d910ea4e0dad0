// The point object: placement by the hot spot, size from the generator, the stream form with the
// angle, the hit test, and the angle with everything that turns. Painting is in PointPaint.cpp.
#include "objects/PointObj.h"

#include "geometry/FileHeader.h"
#include "geometry/Vlprocs.h"
#include "geometry/Vlrotation.h"
#include "objects/Generators.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Numerics.h"
#include "platform/graphics/Graphics.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace vl {

namespace {

constexpr double Pi = std::numbers::pi;

// An angle whose wrap by repeated subtraction would take too long is wrapped by the remainder,
// which gives the same value for every angle a user can reach.
constexpr double WrapLoopLimit = 1.0e6;

// `v` brought into 0 to `Full` by taking or adding `Full`; exactly `Full` stays.
double WrapAngle(double v, double Full) {
    if (std::abs(v) > WrapLoopLimit * Full) v = std::fmod(v, Full);
    while (v > Full) v -= Full;
    while (v < 0) v += Full;
    return v;
}

// Thousandths of a radian as stored; the wrapped angle is at most 6283.
std::int16_t Thousandths(double Value) {
    return static_cast<std::int16_t>(Round(Value));
}

} // namespace

// --- Placement and size ---------------------------------------------------------------------------

void TPointObj::SetMaster(TvlObject* Value) {
    if (Value) {
        TCustomGenerator* gen = Generator();
        Pos.ConObj = Value;
        Pos.SetRelX(gen ? gen->SlaveX() : 0);
        Pos.SetRelY(gen ? gen->SlaveY() : 0);
        State.Include(isSlave);
        return;
    }
    // Freed where it stands: the absolute position is read while the object still hangs.
    const std::int32_t x = X_Log();
    const std::int32_t y = Y_Log();
    State.Exclude(isSlave);
    Pos.ConObj = nullptr;
    SetX(x);
    SetY(y);
}

std::int32_t TPointObj::GetMinX() {
    return WrapSub(X_Log(), GetHotSpot().x);
}

std::int32_t TPointObj::GetMinY() {
    return WrapSub(Y_Log(), GetHotSpot().y);
}

std::int32_t TPointObj::GetWidth() {
    TCustomGenerator* gen = Generator();
    return gen ? std::abs(gen->Width()) : 0;
}

std::int32_t TPointObj::GetHeight() {
    TCustomGenerator* gen = Generator();
    return gen ? std::abs(gen->Height()) : 0;
}

std::int32_t TPointObj::SmallerSide() {
    const std::int32_t w = GetWidth();
    const std::int32_t h = GetHeight();
    return w < h ? w : h;
}

std::unique_ptr<TPointList> TPointObj::RotatedOutline() {
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    const std::int32_t w = GetWidth();
    const std::int32_t h = GetHeight();
    const TPoint hot = GetHotSpot();
    const double alpha = GetAlpha();
    switch (shape) {
    case stRectangle:
    case stRegion: return RotatedPnts_Rectangle(Rect(0, 0, w, h), hot, alpha);
    case stSquare: return RotatedPnts_Rectangle(Rect(0, 0, w, w), hot, alpha);
    case stEllipse: return RotatedPnts_Ellipse(Rect(0, 0, w, h), hot, alpha);
    case stCircle: return RotatedPnts_Ellipse(Rect(0, 0, w, w), hot, alpha);
    case stRoundRect: {
        const std::int32_t r = SmallerSide() / GetDRoundRect();
        return RotatedPnts_RoundRect(Rect(0, 0, w, h), r, r, hot, alpha);
    }
    case stRoundSquare: {
        // The bounds take the whole box here, where the drawing takes the width as the side.
        const std::int32_t r = w / GetDRoundRect();
        return RotatedPnts_RoundRect(Rect(0, 0, w, h), r, r, hot, alpha);
    }
    case stLine: return nullptr;
    }
    return nullptr;
}

TLimRec TPointObj::GetLimits() {
    if (!Rotated()) return TvlObject::GetLimits();
    const std::unique_ptr<TPointList> outline = RotatedOutline();
    if (!outline || outline->Count() == 0) return LimRec(0, 0, 0, 0);
    return OffsetLimits(GetPolygonLimits(outline->Points(), outline->Count()), GetMinX(), GetMinY());
}

// --- Stream form ------------------------------------------------------------------------------------

void TPointObj::Persist(TStream* Stream, TPstMode PstMode) {
    TvlObject::Persist(Stream, PstMode);
    switch (PstMode) {
    case TPstMode::pstSave:
    case TPstMode::pstCopy: RegisterValue(Stream, FAlpha, PstMode); break;
    case TPstMode::pstLoad:
    case TPstMode::pstPaste:
        // Files before version 0x2004 know no angle.
        if (vlFileVersionSince(0x2004))
            RegisterValue(Stream, FAlpha, PstMode);
        else
            FAlpha = 0;
        break;
    default: break;
    }
}

// --- Hit test -------------------------------------------------------------------------------------

bool TPointObj::CheckShape(const TLimRec& CurLims) {
    // The host's answer starts as True, as the creator's own test does.
    if (FTool && FTool->OnObjectCheckShape) return FTool->ObjectCheckShape(this, CurLims);
    const std::int32_t minX = GetMinX();
    const std::int32_t minY = GetMinY();
    const TLimRec local = OffsetLimits(CurLims, WrapSub(0, minX), WrapSub(0, minY));
    if (GetSizing() && SizingHandles(Point(local.Xmin, local.Ymin), smCheck)) return true;
    bool result = true;
    if (HRGN rgn = CreateShapeRgn(rmLog)) {
        const TRect r = Rect(local.Xmin, local.Ymin, local.Xmax, local.Ymax);
        result = RectInRegion(rgn, &r);
        DeleteObject(rgn);
    } else {
        TCustomGenerator* gen = Generator();
        // Without a region the frame test before this has decided, except for a line.
        if (gen && gen->Shape() == stLine) result = CheckLineShape(local);
    }
    TCustomGenerator* gen = Generator();
    if (result && gen && gen->Options().Contains(goFndCursor))
        if (TCustomDrawBox* box = DrawForm()) box->SetCursor(FTool->FoundCursor());
    return result;
}

TLimRec TPointObj::LineHitRect(const TLimRec& CurLims) {
    TLimRec r = CurLims;
    if (WrapSub(r.Xmax, r.Xmin) == 1 && WrapSub(r.Ymax, r.Ymin) == 1) {
        r.Xmin = WrapSub(r.Xmin, Lin_prec / 2);
        r.Ymin = WrapSub(r.Ymin, Lin_prec / 2);
        r.Xmax = WrapAdd(r.Xmax, Lin_prec / 2);
        r.Ymax = WrapAdd(r.Ymax, Lin_prec / 2);
    }
    return r;
}

bool TPointObj::CheckLineShape(const TLimRec& CurLims) {
    const TLimRec r = LineHitRect(CurLims);
    TCustomGenerator* gen = Generator();
    const bool falling = !gen || (gen->Width() >= 0 && gen->Height() >= 0);
    if (falling) return LineInRect(Point(GetMinX(), GetMinY()), Point(GetMaxX(), GetMaxY()), r);
    return LineInRect(Point(GetMinX(), GetMaxY()), Point(GetMaxX(), GetMinY()), r);
}

// --- The angle ------------------------------------------------------------------------------------

double TPointObj::GetAlpha() {
    TCustomGenerator* gen = Generator();
    if (gen && gen->Options().Contains(goNoSizing) && State.Contains(isSlave) && !State.Contains(isConnect)) {
        // A slave that can't be sized turns with its master; a master that is no point object has
        // no angle, and the slave keeps its own.
        if (auto* master = dynamic_cast<TPointObj*>(Pos.ConObj)) return master->GetAlpha();
    }
    return FAlpha / 1000.0;
}

void TPointObj::SetAlpha(double Value) {
    TCustomGenerator* gen = Generator();
    if (!gen || !gen->Options().Contains(goRotation)) return;
    // An angle that is no number can't be wrapped: it leaves the object as it was.
    if (!std::isfinite(Value)) return;
    FAlpha = Thousandths(WrapAngle(Value, 2 * Pi) * 1000);
}

double TPointObj::GetAlpha_DEG() {
    return GetAlpha() * 180 / Pi;
}

void TPointObj::SetAlpha_DEG(double Value) {
    TCustomGenerator* gen = Generator();
    if (!gen || !gen->Options().Contains(goRotation)) return;
    if (!std::isfinite(Value)) return;
    FAlpha = Thousandths(Pi * WrapAngle(Value, 360) / 0.18);
}

std::int32_t TPointObj::GetAlpha_DEG10() {
    return static_cast<std::int32_t>(Round(GetAlpha() * 1800 / Pi));
}

void TPointObj::SetAlpha_DEG10(std::int32_t Value) {
    TCustomGenerator* gen = Generator();
    if (!gen || !gen->Options().Contains(goRotation)) return;
    // Taking or adding 3600 until the value lies in 0 to 3600, exactly 3600 kept.
    std::int64_t v = Value;
    if (v > 3600) {
        v = (v - 1) % 3600 + 1;
    } else if (v < 0) {
        v %= 3600;
        if (v < 0) v += 3600;
    }
    FAlpha = Thousandths(static_cast<double>(v) * Pi / 1.8);
}

std::uint16_t TPointObj::Quadrant() {
    const double a = GetAlpha();
    if (a < Pi / 2) return 1;
    if (a < Pi) return 2;
    if (a < 3 * Pi / 2) return 3;
    return 4;
}

bool TPointObj::GetRotated() {
    TCustomGenerator* gen = Generator();
    return gen && gen->Options().Contains(goRotation) && GetAlpha_DEG10() != 0;
}

// --- Turning --------------------------------------------------------------------------------------

void TPointObj::Rotate(TPoint Origin, double Delta) {
    Invalidate();
    SetAlpha(GetAlpha() + Delta);
    TPoint p = GetPos();
    if (p.x != Origin.x || p.y != Origin.y) {
        RotatePnt(p, Origin, Delta);
        SetPos(p);
        Invalidate();
    }
}

TPoint TPointObj::RotateHandlePos() {
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    const std::int32_t w = GetWidth();
    const std::int32_t h = GetHeight();
    switch (shape) {
    case stEllipse:
    case stCircle: return Point(w, h / 2);
    case stRoundRect:
    case stRoundSquare: {
        // On the rounded corner: the corner's radius is a real share of the smaller side.
        const double s = w >= h ? h : w;
        const auto o = static_cast<std::int32_t>(Round(s / GetDRoundRect() / 2 * (1 - std::cos(Pi / 4))));
        return Point(w - o, h - o);
    }
    default: return Point(w, h);
    }
}

bool TPointObj::SizingRotate(TPoint Pt, TSizeMode Mode) {
    TPoint p = RotateHandlePos();
    RotatePnt(p, Point(WrapSub(X_Log(), GetMinX()), WrapSub(Y_Log(), GetMinY())), GetAlpha());
    const std::int32_t f = Scale().GetTempFrame();
    if (Mode == smShape) {
        // The one handle of a point object is a disc.
        ScaleCanvas().Ellipse(p.x - f, p.y - f, p.x + f, p.y + f);
        return false;
    }
    if (p.x - f <= Pt.x && Pt.x <= p.x + f && p.y - f <= Pt.y && Pt.y <= p.y + f) {
        if (TCustomDrawBox* box = DrawForm()) box->SetCursor(CursorRotate);
        SizingHandle = szRotate;
        return true;
    }
    return false;
}

bool TPointObj::SizingHandles(TPoint Pt, TSizeMode Mode) {
    TCustomGenerator* gen = Generator();
    if (!gen || !gen->Options().Contains(goRotation)) {
        SizingHandle = szNone;
        return false;
    }
    if (SizingRotate(Pt, Mode)) return true;
    // No handle under the point: in both modes the cursor and the held handle are reset, so that a
    // paint of a sizing object lets go of its handle too.
    if (TCustomDrawBox* box = DrawForm())
        box->SetCursor(gen->Options().Contains(goFndCursor) ? FTool->FoundCursor() : crArrow);
    SizingHandle = szNone;
    return false;
}

void TPointObj::MovePos(TPoint DeltaPos) {
    if (GetSizing() && SizingHandle == szRotate)
        MoveRotate(DeltaPos);
    else
        TvlObject::MovePos(DeltaPos);
}

void TPointObj::MoveRotate(TPoint DeltaPos) {
    // Only the handle's x counts: it is the length of the arm from the hot spot.
    const double a = RotateHandlePos().x - GetHotSpot().x;
    const double alpha = GetAlpha();
    const double dx = DeltaPos.x + a * std::cos(alpha);
    const double dy = DeltaPos.y + a * std::sin(alpha);
    if (std::abs(dx) < 0.1)
        SetAlpha(dy > 0 ? Pi / 2 : -Pi / 2);
    else if (dx > 0)
        SetAlpha(std::atan(dy / dx));
    else
        SetAlpha(Pi + std::atan(dy / dx));
}

std::int32_t TPointObj::CreatePolyPntsEx(std::unique_ptr<TPoint[]>& Points) {
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    const std::int32_t w0 = GetWidth();
    const std::int32_t h0 = GetHeight();
    double w = w0;
    double h = h0;
    double radius = 0;
    enum { Rect4, Ellipse, Round16 } form = Rect4;
    switch (shape) {
    case stRectangle:
    case stRegion: break;
    case stSquare: h = w0; break;
    case stEllipse: form = Ellipse; break;
    case stCircle:
        h = w0;
        form = Ellipse;
        break;
    case stRoundRect:
        radius = SmallerSide() / GetDRoundRect();
        form = Round16;
        break;
    case stRoundSquare:
        h = w0;
        radius = w0 / GetDRoundRect();
        form = Round16;
        break;
    case stLine: Points.reset(); return 0;
    }

    std::vector<std::pair<double, double>> local;
    switch (form) {
    case Rect4: local = {{0, 0}, {w, 0}, {w, h}, {0, h}}; break;
    case Ellipse: {
        const int n = 2 * Rot_OutlineDiv;
        local.reserve(std::size_t(n));
        local.emplace_back(w, h / 2);
        for (int i = 1; i < n; ++i) {
            const double t = i * Pi / Rot_OutlineDiv;
            local.emplace_back(std::cos(t) * w / 2 + w / 2, std::sin(t) * h / 2 + h / 2);
        }
        break;
    }
    case Round16: {
        // On the corner's arc, every 30 degrees.
        const double q = radius / 2;
        const double e = (1 - std::cos(Pi / 6)) * q;
        const double f = (1 - std::cos(Pi / 3)) * q;
        local = {{0, q},     {e, f},     {f, e},     {q, 0},         {w - q, 0},     {w - f, e},
                 {w - e, f}, {w, q},     {w, h - q}, {w - e, h - f}, {w - f, h - e}, {w - q, h},
                 {q, h},     {f, h - e}, {e, h - f}, {0, h - q}};
        break;
    }
    }

    const TPoint hot = GetHotSpot();
    const double alpha = GetAlpha();
    const double s = std::sin(alpha);
    const double c = std::cos(alpha);
    Points = std::make_unique<TPoint[]>(local.size());
    for (std::size_t i = 0; i < local.size(); ++i) {
        const double x = local[i].first - hot.x;
        const double y = local[i].second - hot.y;
        Points[i] = Point(static_cast<std::int32_t>(Round(x * c - y * s)) + hot.x,
                          static_cast<std::int32_t>(Round(x * s + y * c)) + hot.y);
    }
    return static_cast<std::int32_t>(local.size());
}

HRGN TPointObj::CreateShapeRgn(TRgnMode Mode) {
    // The host's region and the unrotated regions are the base class's.
    if ((FTool && FTool->OnObjectShapeRgn) || !Rotated()) return TvlObject::CreateShapeRgn(Mode);
    std::unique_ptr<TPoint[]> points;
    const std::int32_t count = CreatePolyPntsEx(points);
    if (count == 0) return nullptr;
    if (Mode == rmDev) LPtoDP(ScaleCanvas().Handle(), points.get(), count);
    return CreatePolygonRgn(points.get(), count, WINDING);
}

} // namespace vl
