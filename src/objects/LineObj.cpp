// The line object: two ends, each free or hanging on a master; the box they span with the line
// tolerance, the direction, the stream form of the second end, the hit test in local points, the
// sizing handles by shape, and sizing and moving by the ends.
#include "objects/LineObj.h"

#include "geometry/FileHeader.h"
#include "geometry/Vlprocs.h"
#include "objects/Generators.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Streams.h"
#include "platform/graphics/Cursors.h"
#include "platform/graphics/Graphics.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace vl {

namespace {

constexpr double Pi = std::numbers::pi;

// The difference of two coordinates without overflow.
std::int64_t Diff(std::int32_t a, std::int32_t b) {
    return static_cast<std::int64_t>(a) - static_cast<std::int64_t>(b);
}

// The absolute difference, as the 32-bit size it stands for (a distance beyond the 32-bit range
// wraps as the device's arithmetic does).
std::int32_t AbsDiff(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(std::llabs(Diff(a, b)));
}

// The absolute value of a delta; 64 bits, so that the most negative delta has one.
std::int64_t Abs64(std::int32_t v) {
    return std::llabs(static_cast<std::int64_t>(v));
}

bool IsSquareShape(TShapetype Shape) {
    return Shape == stCircle || Shape == stSquare || Shape == stRoundSquare;
}

} // namespace

// --- The ends -----------------------------------------------------------------------------------
//
// A line end has no offset: a slaved end stands at its master's position. A master that is missing
// (a link that found nothing) counts as the origin rather than following a null reference.

std::int32_t TLineObj::GetX() {
    if (!State.Contains(isP1Slave)) return Pos.x;
    return Pos.ConObj ? Pos.ConObj->X_Log() : 0;
}

std::int32_t TLineObj::GetY() {
    if (!State.Contains(isP1Slave)) return Pos.y;
    return Pos.ConObj ? Pos.ConObj->Y_Log() : 0;
}

std::int32_t TLineObj::GetX2() {
    if (!State.Contains(isP2Slave)) return Pos2.x;
    return Pos2.ConObj ? Pos2.ConObj->X_Log() : 0;
}

std::int32_t TLineObj::GetY2() {
    if (!State.Contains(isP2Slave)) return Pos2.y;
    return Pos2.ConObj ? Pos2.ConObj->Y_Log() : 0;
}

double TLineObj::GetX_World() {
    return Scale().LogToWorld(GetX());
}
double TLineObj::GetY_World() {
    return Scale().LogToWorld(GetY());
}
double TLineObj::GetX2_World() {
    return Scale().LogToWorld(GetX2());
}
double TLineObj::GetY2_World() {
    return Scale().LogToWorld(GetY2());
}

void TLineObj::SetX2(std::int32_t Value) {
    if (State.Contains(isP2Slave)) return;
    Pos2.x = Value;
}

void TLineObj::SetY2(std::int32_t Value) {
    if (State.Contains(isP2Slave)) return;
    Pos2.y = Value;
}

void TLineObj::SetX2_World(double Value) {
    if (State.Contains(isP2Slave)) return;
    Pos2.x = Scale().WorldToLog(Value);
}

void TLineObj::SetY2_World(double Value) {
    if (State.Contains(isP2Slave)) return;
    Pos2.y = Scale().WorldToLog(Value);
}

void TLineObj::SetPos2(TPoint Pt) {
    if (State.Contains(isP2Slave)) return;
    TCustomGenerator* gen = Generator();
    if (!gen || !IsSquareShape(gen->Shape())) {
        SetX2(Pt.x);
        SetY2(Pt.y);
        return;
    }
    // The square shapes keep their box square: the longer leg decides, the other end follows on the
    // side where the point lies (a difference below 1 counts as the negative side).
    const std::int32_t x = GetX();
    const std::int32_t y = GetY();
    const std::int32_t dx = WrapSub(Pt.x, x);
    const std::int32_t dy = WrapSub(Pt.y, y);
    const auto adx = static_cast<std::int32_t>(Abs64(dx));
    const auto ady = static_cast<std::int32_t>(Abs64(dy));
    if (Abs64(dx) >= Abs64(dy)) {
        SetX2(Pt.x);
        SetY2(dy < 1 ? WrapSub(y, adx) : WrapAdd(y, adx));
    } else {
        SetY2(Pt.y);
        SetX2(dx < 1 ? WrapSub(x, ady) : WrapAdd(x, ady));
    }
}

TvlObject* TLineObj::GetMaster2() const {
    if (State.Contains(isP2Slave)) return Pos2.ConObj;
    return const_cast<TLineObj*>(this);
}

void TLineObj::SetMaster(TvlObject* Value) {
    if (Value) {
        Pos.ConObj = Value;
        State.Include(isP1Slave);
        return;
    }
    // Freed where it stands: the world position is read while the end still hangs.
    const double x = X_World();
    const double y = Y_World();
    State.Exclude(isP1Slave);
    Pos.ConObj = nullptr;
    SetX_World(x);
    SetY_World(y);
}

void TLineObj::SetMaster2(TvlObject* Value) {
    if (Value) {
        Pos2.ConObj = Value;
        State.Include(isP2Slave);
        return;
    }
    const double x = X2_World();
    const double y = Y2_World();
    State.Exclude(isP2Slave);
    Pos2.ConObj = nullptr;
    SetX2_World(x);
    SetY2_World(y);
}

void TLineObj::AssignPos(TvlObject* MirrorObj) {
    TPointObj::AssignPos(MirrorObj);
    auto* mirror = dynamic_cast<TLineObj*>(MirrorObj);
    if (!mirror) return;
    if (State.Contains(isP2Slave))
        Pos2.SetRelPos(mirror->Pos2.RelPos());
    else
        Pos2 = mirror->Pos2;
}

// --- Bounds -------------------------------------------------------------------------------------
//
// The box of the two ends. On an axis where the ends lie at most `Lin_prec` apart, the box runs
// `Lin_prec` to either side of the first end, so that a nearly vertical or horizontal line still
// has a frame a mouse can hit. A box-shaped line object that narrow gets the same limits, and its
// shape, drawn from the minimum corner, is then shifted by `Lin_prec` against its ends.

std::int32_t TLineObj::GetMinX() {
    const std::int64_t d = Diff(GetX2(), GetX());
    if (d > Lin_prec) return GetX();
    if (d >= -Lin_prec) return WrapSub(GetX(), Lin_prec);
    return GetX2();
}

std::int32_t TLineObj::GetMaxX() {
    const std::int64_t d = Diff(GetX2(), GetX());
    if (d < -Lin_prec) return GetX();
    if (d <= Lin_prec) return WrapAdd(GetX(), Lin_prec);
    return GetX2();
}

std::int32_t TLineObj::GetMinY() {
    const std::int64_t d = Diff(GetY2(), GetY());
    if (d > Lin_prec) return GetY();
    if (d >= -Lin_prec) return WrapSub(GetY(), Lin_prec);
    return GetY2();
}

std::int32_t TLineObj::GetMaxY() {
    const std::int64_t d = Diff(GetY2(), GetY());
    if (d < -Lin_prec) return GetY();
    if (d <= Lin_prec) return WrapAdd(GetY(), Lin_prec);
    return GetY2();
}

std::int32_t TLineObj::GetWidth() {
    return AbsDiff(GetX2(), GetX());
}

std::int32_t TLineObj::GetHeight() {
    return AbsDiff(GetY2(), GetY());
}

// --- The direction --------------------------------------------------------------------------------

double TLineObj::GetLineAlpha() {
    const auto dx = static_cast<double>(Diff(GetX2(), GetX()));
    const auto dy = static_cast<double>(Diff(GetY2(), GetY()));
    // Straight up and straight down are both a quarter turn.
    if (dx == 0) return Pi / 2;
    double a = std::atan(dy / dx);
    if (dx < 0) a += Pi;
    while (a < 0) a += 2 * Pi;
    return a;
}

double TLineObj::GetAlpha() {
    TCustomGenerator* gen = Generator();
    if (gen && gen->Shape() == stLine) return GetLineAlpha();
    return TPointObj::GetAlpha();
}

void TLineObj::Rotate(TPoint Origin, double Delta) {
    // A line turns by its ends; the angle field is left alone.
    Invalidate();
    if (!State.Contains(isP1Slave)) {
        TPoint p = Pos.PosLog();
        RotatePnt(p, Origin, Delta);
        Pos.x = p.x;
        Pos.y = p.y;
    }
    if (!State.Contains(isP2Slave)) {
        TPoint p = Pos2.PosLog();
        RotatePnt(p, Origin, Delta);
        Pos2.x = p.x;
        Pos2.y = p.y;
    }
    Invalidate();
}

// --- Outline and hit test -------------------------------------------------------------------------

void TLineObj::ShapeLine() {
    // The ends are absolute; the window origin that the caller set makes them local. Any shift of
    // that origin is taken back with it, a shadow's included: a line's shadow lies under the line.
    TCanvas& canvas = ScaleCanvas();
    TPoint o{0, 0};
    GetWindowOrgEx(canvas.Handle(), &o);
    canvas.MoveTo(WrapAdd(GetX(), o.x), WrapAdd(GetY(), o.y));
    canvas.LineTo(WrapAdd(GetX2(), o.x), WrapAdd(GetY2(), o.y));
}

bool TLineObj::CheckLineShape(const TLimRec& CurLims) {
    const std::int32_t minX = GetMinX();
    const std::int32_t minY = GetMinY();
    // `CurLims` is local to this object, while a master tests its frame in absolute coordinates: the
    // top left corner goes back to absolute before it is handed to the master. Where the mouse is on
    // the frame of an end's master, the master has it.
    const TPoint at = Point(WrapAdd(CurLims.Xmin, minX), WrapAdd(CurLims.Ymin, minY));
    if (State.Contains(isP1Slave) && Pos.ConObj && Pos.ConObj->CheckFrame(&at, cfPoint)) return false;
    if (State.Contains(isP2Slave) && Pos2.ConObj && Pos2.ConObj->CheckFrame(&at, cfPoint)) return false;
    return LineInRect(Point(WrapSub(GetX(), minX), WrapSub(GetY(), minY)),
                      Point(WrapSub(GetX2(), minX), WrapSub(GetY2(), minY)), LineHitRect(CurLims));
}

// --- Selection and the links of the ends ------------------------------------------------------------

void TLineObj::SelectComplete(TSelectMode Mode) {
    Select(Mode);
    if (State.Contains(isP1Slave) && Pos.ConObj) Pos.ConObj->Select(Mode);
    if (State.Contains(isP2Slave) && Pos2.ConObj) Pos2.ConObj->Select(Mode);
}

std::int32_t TLineObj::Involved(TInvolve Code) {
    TvlObject* master1 = State.Contains(isP1Slave) ? Pos.ConObj : nullptr;
    TvlObject* master2 = State.Contains(isP2Slave) ? Pos2.ConObj : nullptr;
    const bool selected1 = master1 && master1->Selected();
    const bool selected2 = master2 && master2->Selected();
    switch (Code) {
    case invMove:
        // A line moves along when either of its masters moves.
        if (Visible() && !Selected() && (selected1 || selected2)) Select(smSelect);
        break;
    case invDelete:
        // An object can't go while an unselected line hangs on it.
        if (!Selected()) {
            if (selected1) master1->SelectComplete(smUnselect);
            if (selected2) master2->SelectComplete(smUnselect);
        }
        break;
    case invCopy:
        // A line isn't copied without both its ends.
        if (Selected() && ((master1 && !selected1) || (master2 && !selected2))) Select(smUnselect);
        break;
    }
    return 0;
}

// --- Stream form ------------------------------------------------------------------------------------

void TLineObj::Persist(TStream* Stream, TPstMode PstMode) {
    TPointObj::Persist(Stream, PstMode);
    switch (PstMode) {
    case TPstMode::pstSave:
    case TPstMode::pstCopy: {
        TPos named = Pos2;
        // A slaved second end names its master by class number and number, followed by the second
        // half as it stands; a master that is not there leaves the pair as it was read.
        if (State.Contains(isP2Slave) && Pos2.ConObj) {
            named.SetConType(Pos2.ConObj->ClassNr());
            named.SetConID(Pos2.ConObj->ID());
        }
        Stream->WriteInt32(named.x);
        Stream->WriteInt32(named.y);
        break;
    }
    case TPstMode::pstLoad:
    case TPstMode::pstPaste:
        Pos2.x = Stream->ReadInt32();
        Pos2.y = Stream->ReadInt32();
        Pos2.ConObj = nullptr;
        if (vlFileVersionBefore(0x2000)) Stream->SetPosition(Stream->Position() + 4);
        if (State.Contains(isP1Slave) || State.Contains(isP2Slave)) State.Include(isConnect);
        break;
    case TPstMode::pstConnect:
    case TPstMode::pstConnectCopy:
        if (State.Contains(isP2Slave)) {
            TContype link = Pos2.Contype();
            RegisterLink(Stream, link, PstMode);
            Pos2.SetContype(link);
        }
        break;
    }
}

// --- Sizing handles ---------------------------------------------------------------------------------

TCursor TLineObj::CornerCursor(bool Reversed) {
    // The direction of the box's diagonal on the screen: the axes' signs turn the logical slope.
    TCursor c = crSizeNWSE;
    const std::int64_t dy = Diff(GetY2(), GetY());
    if (dy != 0) {
        TScaleSetting& scale = Scale();
        const double q =
            static_cast<double>(Diff(GetX2(), GetX()) * scale.GetDirHorz()) / static_cast<double>(dy);
        c = scale.GetDirVert() * q > 0 ? crSizeNWSE : crSizeNESW;
    }
    if (Reversed) c = c == crSizeNWSE ? crSizeNESW : crSizeNWSE;
    return c;
}

TLineObj::TLocalEnds TLineObj::LocalEnds() {
    const std::int32_t minX = GetMinX();
    const std::int32_t minY = GetMinY();
    TLocalEnds e;
    e.X1 = WrapSub(GetX(), minX);
    e.Y1 = WrapSub(GetY(), minY);
    e.X2 = WrapSub(GetX2(), minX);
    e.Y2 = WrapSub(GetY2(), minY);
    // The middles as the integer halves of the absolute sums, made local after.
    e.Xm = WrapSub(static_cast<std::int32_t>((static_cast<std::int64_t>(GetX()) + GetX2()) / 2), minX);
    e.Ym = WrapSub(static_cast<std::int32_t>((static_cast<std::int64_t>(GetY()) + GetY2()) / 2), minY);
    return e;
}

bool TLineObj::PointHandle(TPoint Pt, TSizeMode Mode, TPoint Center, TSizingHandle Handle, TCursor Cursor) {
    if (Mode == smShape) {
        // The square of `f` round the centre as the outline gives it; the hit test takes the same
        // square with its edges.
        const TRect r = HandleRect(Center);
        ScaleCanvas().Rectangle(r.Left, r.Top, r.Right, r.Bottom);
        return false;
    }
    if (!OnHandle(Pt, Center)) return false;
    if (TCustomDrawBox* box = DrawForm()) box->SetCursor(Cursor);
    SizingHandle = Handle;
    return true;
}

bool TLineObj::LineHandle(std::int32_t PtCoord, TSizeMode Mode, std::int32_t LineCoord, TSizingHandle Handle,
                          TCursor Cursor) {
    // A side of the box is never drawn; it answers when the point lies within `f` of it.
    if (Mode == smShape) return false;
    if (std::llabs(Diff(PtCoord, LineCoord)) > Scale().GetTempFrame()) return false;
    if (TCustomDrawBox* box = DrawForm()) box->SetCursor(Cursor);
    SizingHandle = Handle;
    return true;
}

bool TLineObj::SizingX1Y1(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.X1, e.Y1), szX1Y1,
                       Mode == smCheck ? CornerCursor(false) : crDefault);
}

bool TLineObj::SizingX2Y2(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.X2, e.Y2), szX2Y2,
                       Mode == smCheck ? CornerCursor(false) : crDefault);
}

bool TLineObj::SizingX1Y2(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.X1, e.Y2), szX1Y2, Mode == smCheck ? CornerCursor(true) : crDefault);
}

bool TLineObj::SizingX2Y1(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.X2, e.Y1), szX2Y1, Mode == smCheck ? CornerCursor(true) : crDefault);
}

bool TLineObj::SizingVert1(TPoint Pt, TSizeMode Mode) {
    return LineHandle(Pt.x, Mode, LocalEnds().X1, szVLine1, crSizeWE);
}

bool TLineObj::SizingVert2(TPoint Pt, TSizeMode Mode) {
    return LineHandle(Pt.x, Mode, LocalEnds().X2, szVLine2, crSizeWE);
}

bool TLineObj::SizingHorz1(TPoint Pt, TSizeMode Mode) {
    return LineHandle(Pt.y, Mode, LocalEnds().Y1, szHLine1, crSizeNS);
}

bool TLineObj::SizingHorz2(TPoint Pt, TSizeMode Mode) {
    return LineHandle(Pt.y, Mode, LocalEnds().Y2, szHLine2, crSizeNS);
}

bool TLineObj::SizingHorzM1(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.Xm, e.Y1), szHLine1, crSizeNS);
}

bool TLineObj::SizingHorzM2(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.Xm, e.Y2), szHLine2, crSizeNS);
}

bool TLineObj::SizingVertM1(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.X1, e.Ym), szVLine1, crSizeWE);
}

bool TLineObj::SizingVertM2(TPoint Pt, TSizeMode Mode) {
    const TLocalEnds e = LocalEnds();
    return PointHandle(Pt, Mode, Point(e.X2, e.Ym), szVLine2, crSizeWE);
}

bool TLineObj::SizingHandles(TPoint Pt, TSizeMode Mode) {
    TCustomGenerator* gen = Generator();
    const TShapetype shape = gen ? gen->Shape() : stRectangle;
    bool hit = false;
    switch (shape) {
    case stEllipse:
    case stCircle:
        hit = SizingVertM1(Pt, Mode) || SizingVertM2(Pt, Mode) || SizingHorzM1(Pt, Mode) ||
              SizingHorzM2(Pt, Mode);
        break;
    case stLine: hit = SizingX1Y1(Pt, Mode) || SizingX2Y2(Pt, Mode); break;
    default:
        hit = SizingX1Y1(Pt, Mode) || SizingX1Y2(Pt, Mode) || SizingX2Y1(Pt, Mode) || SizingX2Y2(Pt, Mode) ||
              SizingVert1(Pt, Mode) || SizingVert2(Pt, Mode) || SizingHorz1(Pt, Mode) ||
              SizingHorz2(Pt, Mode);
        break;
    }
    if (hit) return true;
    // No handle under the point: in both modes the cursor and the held handle are reset, so that a
    // paint of a sizing object lets go of its handle too.
    if (TCustomDrawBox* box = DrawForm())
        box->SetCursor(gen && gen->Options().Contains(goFndCursor) ? FTool->FoundCursor() : crArrow);
    SizingHandle = szNone;
    return false;
}

// --- Moving and sizing ------------------------------------------------------------------------------

void TLineObj::AddX(std::int32_t d) {
    SetX(WrapAdd(GetX(), d));
}
void TLineObj::AddY(std::int32_t d) {
    SetY(WrapAdd(GetY(), d));
}
void TLineObj::AddX2(std::int32_t d) {
    SetX2(WrapAdd(GetX2(), d));
}
void TLineObj::AddY2(std::int32_t d) {
    SetY2(WrapAdd(GetY2(), d));
}

void TLineObj::SizeBox(TSizingHandle Handle, std::int32_t dx, std::int32_t dy) {
    switch (Handle) {
    case szVLine1: AddX(dx); break;
    case szVLine2: AddX2(dx); break;
    case szHLine1: AddY(dy); break;
    case szHLine2: AddY2(dy); break;
    case szX1Y1:
        AddX(dx);
        AddY(dy);
        break;
    case szX2Y2:
        AddX2(dx);
        AddY2(dy);
        break;
    case szX1Y2:
        AddX(dx);
        AddY2(dy);
        break;
    case szX2Y1:
        AddX2(dx);
        AddY(dy);
        break;
    case szNone:
    case szRotate: break;
    }
}

// The pairings of the square shapes: one end on an axis is put at the other's coordinate plus or
// minus the size, on the side where it lies.
void TLineObj::PairX1() {
    const std::int32_t h = GetHeight();
    SetX(GetX() <= GetX2() ? WrapSub(GetX2(), h) : WrapAdd(GetX2(), h));
}
void TLineObj::PairY1() {
    const std::int32_t w = GetWidth();
    SetY(GetY() <= GetY2() ? WrapSub(GetY2(), w) : WrapAdd(GetY2(), w));
}
void TLineObj::PairX2() {
    const std::int32_t h = GetHeight();
    SetX2(GetX2() <= GetX() ? WrapSub(GetX(), h) : WrapAdd(GetX(), h));
}
void TLineObj::PairY2() {
    const std::int32_t w = GetWidth();
    SetY2(GetY2() <= GetY() ? WrapSub(GetY(), w) : WrapAdd(GetY(), w));
}

void TLineObj::SizeSquare(TSizingHandle Handle, std::int32_t dx, std::int32_t dy) {
    // The longer leg of the delta decides which axis the mouse drives; the other follows.
    const bool vertical = Abs64(dx) <= Abs64(dy);
    switch (Handle) {
    case szVLine1:
    case szVLine2: {
        if (Handle == szVLine1)
            AddX(dx);
        else
            AddX2(dx);
        const std::int32_t w = GetWidth();
        if (GetY2() <= GetY())
            SetY(WrapAdd(GetY2(), w));
        else
            SetY2(WrapAdd(GetY(), w));
        break;
    }
    case szHLine1:
    case szHLine2: {
        if (Handle == szHLine1)
            AddY(dy);
        else
            AddY2(dy);
        const std::int32_t h = GetHeight();
        if (GetX2() <= GetX())
            SetX(WrapAdd(GetX2(), h));
        else
            SetX2(WrapAdd(GetX(), h));
        break;
    }
    case szX1Y1:
        if (vertical) {
            AddY(dy);
            PairX1();
        } else {
            AddX(dx);
            PairY1();
        }
        break;
    case szX2Y2:
        if (vertical) {
            AddY2(dy);
            PairX2();
        } else {
            AddX2(dx);
            PairY2();
        }
        break;
    case szX1Y2:
        if (vertical) {
            AddY2(dy);
            PairX1();
        } else {
            AddX(dx);
            PairY2();
        }
        break;
    case szX2Y1:
        if (!vertical) {
            AddX2(dx);
            PairY1();
        } else {
            AddY(dy);
            PairX2();
        }
        break;
    case szNone:
    case szRotate: break;
    }
}

void TLineObj::MovePos(TPoint DeltaPos) {
    // A line with a slaved end follows its masters and neither moves nor sizes itself; a held
    // object (`isCantMove`) is not looked at here.
    if (State.Contains(isP1Slave) || State.Contains(isP2Slave)) return;
    TCustomGenerator* gen = Generator();
    if (GetSizing() && SizingHandle != szNone) {
        if (gen && IsSquareShape(gen->Shape()))
            SizeSquare(SizingHandle, DeltaPos.x, DeltaPos.y);
        else
            SizeBox(SizingHandle, DeltaPos.x, DeltaPos.y);
        return;
    }
    if (!(gen && gen->Options().Contains(goNoHorzMove))) {
        AddX(DeltaPos.x);
        AddX2(DeltaPos.x);
    }
    if (!(gen && gen->Options().Contains(goNoVertMove))) {
        AddY(DeltaPos.y);
        AddY2(DeltaPos.y);
    }
}

} // namespace vl
