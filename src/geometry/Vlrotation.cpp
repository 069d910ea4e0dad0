#include "geometry/Vlrotation.h"

#include "geometry/Vlprocs.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Numerics.h"
#include "platform/core/Streams.h"
#include "platform/graphics/Graphics.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <numbers>

namespace vl {

namespace {

void EncodeInt32(std::uint8_t* p, std::int32_t v) {
    const auto u = static_cast<std::uint32_t>(v);
    p[0] = static_cast<std::uint8_t>(u);
    p[1] = static_cast<std::uint8_t>(u >> 8);
    p[2] = static_cast<std::uint8_t>(u >> 16);
    p[3] = static_cast<std::uint8_t>(u >> 24);
}

std::int32_t DecodeInt32(const std::uint8_t* p) {
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
        (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24));
}

struct TPointRecord {
    std::uint8_t Bytes[TPointList::PointRecSize];
};

TPointRecord Encode(TPoint P) {
    TPointRecord r;
    EncodeInt32(r.Bytes, P.x);
    EncodeInt32(r.Bytes + 4, P.y);
    return r;
}

TPoint Decode(const void* Rec) {
    const auto* p = static_cast<const std::uint8_t*>(Rec);
    return Point(DecodeInt32(p), DecodeInt32(p + 4));
}

} // namespace

TPointList::TPointList() : TRecordList(PointRecSize) {}

TPointList::TPointList(TStream& Stream) : TRecordList(PointRecSize) {
    Persist(Stream, TPstMode::pstLoad);
}

void TPointList::Persist(TStream& Stream, TPstMode PstMode) {
    TRecordList::Persist(Stream, PstMode);
    if (RecSize() != PointRecSize) {
        // Records of another kind can't be read as points.
        SetRecSize(PointRecSize);
        throw EReadError(QString::fromLatin1(msg::ReadError));
    }
}

std::int32_t TPointList::Add(TPoint Value) {
    const TPointRecord r = Encode(Value);
    return TRecordList::Add(r.Bytes);
}

TPoint TPointList::First() {
    TPointRecord r;
    TRecordList::First(r.Bytes);
    return Decode(r.Bytes);
}

TPoint TPointList::Last() {
    TPointRecord r;
    TRecordList::Last(r.Bytes);
    return Decode(r.Bytes);
}

std::int32_t TPointList::IndexOf(TPoint aPoint) {
    const TPointRecord r = Encode(aPoint);
    const void* address = r.Bytes;
    return TRecordList::IndexOf(&address);
}

void TPointList::Insert(std::int32_t Index, TPoint aPoint) {
    const TPointRecord r = Encode(aPoint);
    TRecordList::Insert(Index, r.Bytes);
}

TPoint TPointList::GetPoints(std::int32_t Index) {
    return Decode(Get(Index));
}

void TPointList::SetPoints(std::int32_t Index, TPoint Value) {
    const TPointRecord r = Encode(Value);
    std::memcpy(Get(Index), r.Bytes, PointRecSize);
}

std::int32_t TPointList::GetPointX(std::int32_t Index) {
    return DecodeInt32(static_cast<std::uint8_t*>(Get(Index)));
}

void TPointList::SetPointX(std::int32_t Index, std::int32_t Value) {
    EncodeInt32(static_cast<std::uint8_t*>(Get(Index)), Value);
}

std::int32_t TPointList::GetPointY(std::int32_t Index) {
    return DecodeInt32(static_cast<std::uint8_t*>(Get(Index)) + 4);
}

void TPointList::SetPointY(std::int32_t Index, std::int32_t Value) {
    EncodeInt32(static_cast<std::uint8_t*>(Get(Index)) + 4, Value);
}

// ---------------------------------------------------------------------------------------------
// Rotated outlines
// ---------------------------------------------------------------------------------------------

namespace {

constexpr double Pi = std::numbers::pi;

// A 64-bit coordinate cut to 32 bits, as the device's coordinates wrap.
std::int32_t Wrap32(std::int64_t v) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(v)));
}

// The rotation of outline points round one origin by one angle. The cosine and sine are taken once
// for the whole outline; each point is given in doubles and rounded once, after its rotation, so an
// outline point carries no rounding error of its own into the rotation.
class TOutlineRotation {
public:
    TOutlineRotation(TPoint Origin, double Alpha)
        : FOrigin(Origin), FCos(std::cos(Alpha)), FSin(std::sin(Alpha)) {}

    TPoint operator()(double x, double y) const {
        const long double dx = static_cast<long double>(x) - FOrigin.x;
        const long double dy = static_cast<long double>(y) - FOrigin.y;
        return Point(Wrap32(Round(dx * FCos - dy * FSin) + FOrigin.x),
                     Wrap32(Round(dx * FSin + dy * FCos) + FOrigin.y));
    }

private:
    TPoint FOrigin;
    double FCos;
    double FSin;
};

// The half-axes and the centre of the ellipse inscribed in a rectangle, in doubles, so that a
// rectangle of any extent (or of none, or turned inside out) gives finite values.
struct TEllipseAxes {
    double a;
    double b;
    double cx;
    double cy;
};

TEllipseAxes AxesOf(const TRect& R) {
    const double a = (static_cast<double>(R.Right) - R.Left) / 2;
    const double b = (static_cast<double>(R.Bottom) - R.Top) / 2;
    return {a, b, R.Left + a, R.Top + b};
}

// The parametric angle between two outline points: `Rot_OutlineDiv` steps to the half turn.
double OutlineStep() {
    return static_cast<double>(FloatDiv(Pi, Rot_OutlineDiv));
}

// The outline of an arc of the ellipse `E`, from the direction of `P1` to that of `P2` as seen
// from `From`: a point every step from the start angle while below the end angle, then the point at
// the end angle, and with `WithCentre` the centre last. An end below the start goes on through 2pi.
std::unique_ptr<TPointList> ArcOutline(const TEllipseAxes& E, TPoint Origin, TPoint P1, TPoint P2,
                                       double Alpha, double FromX, double FromY, bool WithCentre) {
    const TOutlineRotation Rotate(Origin, Alpha);
    const double Step = OutlineStep();
    // Each offset is scaled by the other half-axis, which makes the angle of the direction the
    // parametric angle of the ellipse's point in that direction.
    const double t1 = GetAngle((P1.x - FromX) * E.b, (P1.y - FromY) * E.a);
    double t2 = GetAngle((P2.x - FromX) * E.b, (P2.y - FromY) * E.a);
    if (t2 < t1) t2 += 2 * Pi;
    auto List = std::make_unique<TPointList>();
    // The angles lie within 2pi of each other, so the count stays near 2 * Rot_OutlineDiv.
    List->SetCapacity(static_cast<std::int32_t>((t2 - t1) / Step) + (WithCentre ? 3 : 2));
    for (double t = t1; t < t2; t += Step)
        List->Add(Rotate(std::cos(t) * E.a + E.cx, std::sin(t) * E.b + E.cy));
    List->Add(Rotate(std::cos(t2) * E.a + E.cx, std::sin(t2) * E.b + E.cy));
    if (WithCentre) List->Add(Rotate(E.cx, E.cy));
    return List;
}

void DrawPolygon(HDC DC, const TPointList& List) {
    Polygon(DC, List.Points(), List.Count());
}

} // namespace

std::unique_ptr<TPointList> RotatedPnts_Rectangle(const TRect& R, TPoint Origin, double Alpha) {
    const TOutlineRotation Rotate(Origin, Alpha);
    auto List = std::make_unique<TPointList>();
    List->SetCapacity(4);
    List->Add(Rotate(R.Left, R.Top));
    List->Add(Rotate(R.Right, R.Top));
    List->Add(Rotate(R.Right, R.Bottom));
    List->Add(Rotate(R.Left, R.Bottom));
    return List;
}

std::unique_ptr<TPointList> RotatedPnts_Ellipse(const TRect& R, TPoint Origin, double Alpha) {
    const TOutlineRotation Rotate(Origin, Alpha);
    const TEllipseAxes E = AxesOf(R);
    const double Step = OutlineStep();
    const std::int32_t Count = 2 * static_cast<std::int32_t>(Rot_OutlineDiv);
    auto List = std::make_unique<TPointList>();
    List->SetCapacity(Count);
    List->Add(Rotate(R.Right, E.cy));
    // The angle grows by the step rather than being multiplied out, point by point.
    double t = 0;
    for (std::int32_t i = 1; i < Count; ++i) {
        t += Step;
        List->Add(Rotate(std::cos(t) * E.a + E.cx, std::sin(t) * E.b + E.cy));
    }
    return List;
}

std::unique_ptr<TPointList> RotatedPnts_RoundRect(const TRect& R, std::int32_t X3, std::int32_t Y3,
                                                  TPoint Origin, double Alpha) {
    const TOutlineRotation Rotate(Origin, Alpha);
    const double rx = X3 / 2.0;
    const double ry = Y3 / 2.0;
    // The two inner points of a corner, on its diagonal: at 1 - cos(30 degrees) and at half of the
    // radius from the rectangle's sides.
    const double e = (1 - std::cos(Pi / 6)) * rx;
    const double f = (1 - std::cos(Pi / 3)) * rx;
    const double g = (1 - std::sin(Pi / 6)) * ry;
    const double h = (1 - std::sin(Pi / 3)) * ry;
    const double L = R.Left;
    const double T = R.Top;
    const double Rt = R.Right;
    const double B = R.Bottom;
    auto List = std::make_unique<TPointList>();
    List->SetCapacity(16);
    // Top left, top right, bottom right, bottom left, each corner from its vertical side round to its
    // horizontal one in the order of the outline.
    List->Add(Rotate(L, T + ry));
    List->Add(Rotate(L + e, T + h));
    List->Add(Rotate(L + f, T + g));
    List->Add(Rotate(L + rx, T));
    List->Add(Rotate(Rt - rx, T));
    List->Add(Rotate(Rt - f, T + g));
    List->Add(Rotate(Rt - e, T + h));
    List->Add(Rotate(Rt, T + ry));
    List->Add(Rotate(Rt, B - ry));
    List->Add(Rotate(Rt - e, B - h));
    List->Add(Rotate(Rt - f, B - g));
    List->Add(Rotate(Rt - rx, B));
    List->Add(Rotate(L + rx, B));
    List->Add(Rotate(L + f, B - g));
    List->Add(Rotate(L + e, B - h));
    List->Add(Rotate(L, B - ry));
    return List;
}

std::unique_ptr<TPointList> RotatedPnts_Arc(const TRect& R, TPoint Origin, TPoint P1, TPoint P2,
                                            double Alpha) {
    const TEllipseAxes E = AxesOf(R);
    return ArcOutline(E, Origin, P1, P2, Alpha, E.cx, E.cy, false);
}

std::unique_ptr<TPointList> RotatedPnts_Chord(const TRect& R, TPoint Origin, TPoint P1, TPoint P2,
                                              double Alpha) {
    return RotatedPnts_Arc(R, Origin, P1, P2, Alpha);
}

std::unique_ptr<TPointList> RotatedPnts_Pie(const TRect& R, TPoint Origin, TPoint P1, TPoint P2,
                                            double Alpha) {
    const TEllipseAxes E = AxesOf(R);
    // The directions are measured from (a, b), the centre of a rectangle whose corner is (0, 0): the
    // local rectangle that objects pass. For a rectangle elsewhere they are those from that point.
    return ArcOutline(E, Origin, P1, P2, Alpha, E.a, E.b, true);
}

void Rotated_Rectangle(HDC DC, const TRect& R, TPoint Origin, double Alpha) {
    DrawPolygon(DC, *RotatedPnts_Rectangle(R, Origin, Alpha));
}

void Rotated_RoundRect(HDC DC, const TRect& R, std::int32_t X3, std::int32_t Y3, TPoint Origin,
                       double Alpha) {
    DrawPolygon(DC, *RotatedPnts_RoundRect(R, X3, Y3, Origin, Alpha));
}

void Rotated_Ellipse(HDC DC, const TRect& R, TPoint Origin, double Alpha) {
    // Width and height as the device's 32-bit arithmetic has them.
    const std::int32_t Width = Wrap32(static_cast<std::int64_t>(R.Right) - R.Left);
    const std::int32_t Height = Wrap32(static_cast<std::int64_t>(R.Bottom) - R.Top);
    if (std::llabs(Width) == std::llabs(Height)) {
        // A circle turns into itself: the device draws it truly and at less cost than an outline.
        const TPoint Center =
            Point(static_cast<std::int32_t>((static_cast<std::int64_t>(R.Left) + R.Right) / 2),
                  static_cast<std::int32_t>((static_cast<std::int64_t>(R.Top) + R.Bottom) / 2));
        Rotated_Circle(DC, Center, Width, Origin, Alpha);
        return;
    }
    DrawPolygon(DC, *RotatedPnts_Ellipse(R, Origin, Alpha));
}

void Rotated_Circle(HDC DC, TPoint Center, std::int32_t Diameter, TPoint Origin, double Alpha) {
    RotatePnt(Center, Origin, Alpha);
    const std::int32_t r = Diameter / 2;
    const std::int64_t Left = static_cast<std::int64_t>(Center.x) - r;
    const std::int64_t Top = static_cast<std::int64_t>(Center.y) - r;
    Ellipse(DC, Wrap32(Left), Wrap32(Top), Wrap32(Left + Diameter), Wrap32(Top + Diameter));
}

void Rotated_Chord(HDC DC, const TRect& R, TPoint Origin, TPoint P1, TPoint P2, double Alpha) {
    DrawPolygon(DC, *RotatedPnts_Chord(R, Origin, P1, P2, Alpha));
}

void Rotated_Pie(HDC DC, const TRect& R, TPoint Origin, TPoint P1, TPoint P2, double Alpha) {
    DrawPolygon(DC, *RotatedPnts_Pie(R, Origin, P1, P2, Alpha));
}

void Rotated_Arc(HDC DC, const TRect& R, TPoint Origin, TPoint P1, TPoint P2, double Alpha) {
    const std::unique_ptr<TPointList> List = RotatedPnts_Arc(R, Origin, P1, P2, Alpha);
    Polyline(DC, List->Points(), List->Count());
}

void Rotated_TextOut(HDC DC, const QString& Text, TFont& Font, TPoint Pos, TPoint Origin, double Alpha) {
    // The font's own logical font (height, weight, italic, underline, strike-out, character set,
    // pitch, no width, orientation, precisions or quality), turned by the escapement: tenths of a
    // degree, counter-clockwise on the device, hence the sign.
    LOGFONTW lf = Font.LogFont();
    const std::int64_t Tenths =
        Round(static_cast<long double>(Alpha) * 1800 / std::numbers::pi_v<long double>);
    lf.lfEscapement =
        static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(static_cast<std::uint64_t>(Tenths)));
    if (Font.Name().compare(QStringLiteral("Default"), Qt::CaseInsensitive) == 0)
        SetLogFontFace(lf, DefFontName);
    // The position first: a non-finite angle raises before any device object is made.
    RotatePnt(Pos, Origin, Alpha);

    HFONT NewFont = CreateFontIndirectW(&lf);
    HGDIOBJ OldFont = SelectObject(DC, NewFont);
    SetTextColor(DC, ColorToRGB(Font.Color()));
    const auto Length = static_cast<int>(std::min<qsizetype>(Text.size(), std::numeric_limits<int>::max()));
    TextOutW(DC, Pos.x, Pos.y, reinterpret_cast<const char16_t*>(Text.utf16()), Length);
    SelectObject(DC, OldFont);
    DeleteObject(NewFont);
}

} // namespace vl
