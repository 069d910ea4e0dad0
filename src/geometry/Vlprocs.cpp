#include "geometry/Vlprocs.h"

#include "platform/core/Codepage.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Numerics.h"
#include "platform/core/Streams.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace vl {

namespace {

constexpr long double Pi = std::numbers::pi_v<long double>;

// The segment crossing works in 32-bit integers whose products and differences wrap; unsigned
// arithmetic gives that wrap without undefined behaviour, and the conversion back is modular.
constexpr std::uint32_t U(std::int32_t v) {
    return static_cast<std::uint32_t>(v);
}
constexpr std::int32_t S(std::uint32_t v) {
    return static_cast<std::int32_t>(v);
}

std::int32_t Clamp32(std::int64_t v) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

bool StrictlyInside(TPoint P, const TLimRec& R) {
    return R.Xmin < P.x && P.x < R.Xmax && R.Ymin < P.y && P.y < R.Ymax;
}

bool Between(double v, std::int32_t a, std::int32_t b) {
    return std::min(a, b) <= v && v <= std::max(a, b);
}

std::int32_t RoundToInt32(long double v) {
    const std::int64_t r = Round(v);
    if (r < std::numeric_limits<std::int32_t>::min() || r > std::numeric_limits<std::int32_t>::max())
        throw EInvalidOp(QString::fromLatin1(msg::InvalidOp));
    return static_cast<std::int32_t>(r);
}

} // namespace

double GetAngle(std::int32_t dx, std::int32_t dy) {
    if (dx != 0) {
        long double a = std::atan(static_cast<long double>(dy) / dx);
        if (dx < 1) a += Pi;
        return static_cast<double>(a);
    }
    return static_cast<double>(dy < 1 ? -Pi / 2 : Pi / 2);
}

double GetAngle(double dx, double dy) {
    if (std::fabs(dx) < 0.01) return static_cast<double>(dy > 0 ? Pi / 2 : -Pi / 2);
    const long double a = std::atan(static_cast<long double>(dy) / dx);
    if (dx > 0) return static_cast<double>(a);
    return static_cast<double>(a + Pi);
}

double CalculateAngle(TPoint P1, TPoint P2) {
    // The differences are taken in 64 bits, so that far-apart points don't wrap.
    const std::int64_t dx = static_cast<std::int64_t>(P2.x) - P1.x;
    const std::int64_t dy = static_cast<std::int64_t>(P2.y) - P1.y;
    if (dy == 0) return dx < 0 ? static_cast<double>(Pi) : 0.0;
    if (dx != 0) return static_cast<double>(std::atan(static_cast<long double>(dy) / dx));
    return static_cast<double>(dy < 0 ? 3 * Pi / 2 : Pi / 2);
}

TLimRec GetPolygonLimits(const TPoint* Points, std::int32_t Count) {
    TLimRec L = EmptyLimRec;
    for (std::int32_t i = 0; i < Count; ++i) {
        const TPoint& P = Points[i];
        L.Xmin = std::min(L.Xmin, P.x);
        L.Ymin = std::min(L.Ymin, P.y);
        L.Xmax = std::max(L.Xmax, P.x);
        L.Ymax = std::max(L.Ymax, P.y);
    }
    return L;
}

TRect MaxRect(std::span<const TRect> Rects) {
    // There is no last element to start from in an empty array; that is an index error.
    if (Rects.empty()) throw EListError(msg::ListIndexError(-1));
    TRect R = Rects.back();
    for (const TRect& E : Rects) {
        R.Left = std::min(R.Left, E.Left);
        R.Top = std::min(R.Top, E.Top);
        R.Right = std::max(R.Right, E.Right);
        R.Bottom = std::max(R.Bottom, E.Bottom);
    }
    return R;
}

TLimRec MaxLimRec(std::span<const TLimRec> Limits) {
    if (Limits.empty()) throw EListError(msg::ListIndexError(-1));
    TLimRec L = Limits.back();
    for (const TLimRec& E : Limits) {
        L.Xmin = std::min(L.Xmin, E.Xmin);
        L.Ymin = std::min(L.Ymin, E.Ymin);
        L.Xmax = std::max(L.Xmax, E.Xmax);
        L.Ymax = std::max(L.Ymax, E.Ymax);
    }
    return L;
}

bool PtInLimits(TPoint Pt, const TLimRec& L) {
    return L.Xmin <= Pt.x && Pt.x <= L.Xmax && L.Ymin <= Pt.y && Pt.y <= L.Ymax;
}

bool LineInRect(TPoint P1, TPoint P2, const TLimRec& R) {
    // 1. An end strictly inside.
    if (StrictlyInside(P1, R) || StrictlyInside(P2, R)) return true;

    // 2. Crossing of a vertical edge beyond which at least one end lies. The slope and the crossing
    //    are stored as doubles before the strict comparison.
    if (P1.x != P2.x) {
        const double m =
            static_cast<double>(static_cast<long double>(static_cast<std::int64_t>(P2.y) - P1.y) /
                                (static_cast<std::int64_t>(P2.x) - P1.x));
        if (P1.x > R.Xmax || P2.x > R.Xmax) {
            const double y = static_cast<double>(
                static_cast<long double>(m) * (static_cast<std::int64_t>(R.Xmax) - P1.x) + P1.y);
            if (R.Ymin < y && y < R.Ymax) return true;
        }
        if (P1.x < R.Xmin || P2.x < R.Xmin) {
            const double y = static_cast<double>(
                static_cast<long double>(m) * (static_cast<std::int64_t>(R.Xmin) - P1.x) + P1.y);
            if (R.Ymin < y && y < R.Ymax) return true;
        }
    }

    // 3. A horizontal segment has no horizontal edge to cross.
    if (P1.y == P2.y) return false;

    // 4. Crossing of a horizontal edge beyond which at least one end lies.
    const double n = static_cast<double>(static_cast<long double>(static_cast<std::int64_t>(P2.x) - P1.x) /
                                         (static_cast<std::int64_t>(P2.y) - P1.y));
    if (P1.y > R.Ymax || P2.y > R.Ymax) {
        const double x = static_cast<double>(
            static_cast<long double>(n) * (static_cast<std::int64_t>(R.Ymax) - P1.y) + P1.x);
        if (R.Xmin < x && x < R.Xmax) return true;
    }
    if (P1.y < R.Ymin || P2.y < R.Ymin) {
        const double x = static_cast<double>(
            static_cast<long double>(n) * (static_cast<std::int64_t>(R.Ymin) - P1.y) + P1.x);
        if (R.Xmin < x && x < R.Xmax) return true;
    }

    // 5.
    return false;
}

bool IntersectPoint(TPoint P1, TPoint P2, TPoint P3, TPoint P4, TPoint& Pt) {
    // The line equations a*x + b*y + c = 0 in 32-bit integers; for coordinates beyond about 2^15 the
    // products wrap as 32-bit arithmetic does.
    const std::uint32_t a1 = U(P2.y) - U(P1.y);
    const std::uint32_t b1 = U(P1.x) - U(P2.x);
    const std::uint32_t c1 = 0u - a1 * U(P1.x) - b1 * U(P1.y);
    const std::uint32_t a2 = U(P4.y) - U(P3.y);
    const std::uint32_t b2 = U(P3.x) - U(P4.x);
    const std::uint32_t c2 = 0u - a2 * U(P3.x) - b2 * U(P3.y);

    const std::int32_t det = S(a1 * b2 - a2 * b1);
    if (det == 0) return false; // parallel or collinear

    const double x = static_cast<double>(static_cast<long double>(S(b1 * c2 - b2 * c1)) / det);
    const double y = static_cast<double>(static_cast<long double>(S(c1 * a2 - c2 * a1)) / det);

    if (!Between(x, P1.x, P2.x) || !Between(x, P3.x, P4.x)) return false;
    if (!Between(y, P1.y, P2.y) || !Between(y, P3.y, P4.y)) return false;

    Pt = Point(static_cast<std::int32_t>(Round(x)), static_cast<std::int32_t>(Round(y)));
    return true;
}

bool PtOnLine(TPoint Pt, TPoint P1, TPoint P2, std::uint16_t Dist) {
    if (P1.x == P2.x || P1.y == P2.y) {
        // Along an axis: the span of the ends widened by `Dist`. The widening saturates at the ends
        // of the 32-bit range, which gives the same answer as unbounded arithmetic.
        const TLimRec L = LimRec(Clamp32(static_cast<std::int64_t>(std::min(P1.x, P2.x)) - Dist),
                                 Clamp32(static_cast<std::int64_t>(std::min(P1.y, P2.y)) - Dist),
                                 Clamp32(static_cast<std::int64_t>(std::max(P1.x, P2.x)) + Dist),
                                 Clamp32(static_cast<std::int64_t>(std::max(P1.y, P2.y)) + Dist));
        return PtInLimits(Pt, L);
    }

    // `A` is the end with the larger x; on equal x (not reached here) it would be `P1`.
    const TPoint A = P2.x <= P1.x ? P1 : P2;
    const TPoint B = P2.x <= P1.x ? P2 : P1;
    const double m = static_cast<double>(static_cast<long double>(static_cast<std::int64_t>(B.y) - A.y) /
                                         (static_cast<std::int64_t>(A.x) - B.x));

    if (std::fabs(m) > 1) {
        // Steep: measure across in x.
        const std::int64_t qx =
            Round(static_cast<long double>(static_cast<std::int64_t>(B.y) - Pt.y) / m) + B.x;
        return std::llabs(qx - Pt.x) < Dist;
    }
    // Flat: measure across in y.
    const std::int64_t qy = B.y - Round(static_cast<long double>(static_cast<std::int64_t>(Pt.x) - B.x) * m);
    return std::llabs(qy - Pt.y) < Dist;
}

void RotatePnt(TPoint& P, TPoint Origin, double Angle) {
    const long double c = std::cos(static_cast<long double>(Angle));
    const long double s = std::sin(static_cast<long double>(Angle));
    const std::int64_t dx = static_cast<std::int64_t>(P.x) - Origin.x;
    const std::int64_t dy = static_cast<std::int64_t>(P.y) - Origin.y;
    // Both from the old point, then stored; the sum wraps to 32 bits as the coordinate does.
    const std::int64_t x = Round(c * dx - s * dy) + Origin.x;
    const std::int64_t y = Round(s * dx + c * dy) + Origin.y;
    P = Point(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
}

void RotatePoints(TPoint* Points, std::int32_t Count, TPoint Origin, double Angle) {
    const double c = std::cos(Angle);
    const double s = std::sin(Angle);
    for (std::int32_t i = 0; i < Count; ++i) {
        TPoint& P = Points[i];
        const std::int64_t dx = static_cast<std::int64_t>(P.x) - Origin.x;
        const std::int64_t dy = static_cast<std::int64_t>(P.y) - Origin.y;
        const std::int64_t x =
            Round(static_cast<long double>(c) * dx - static_cast<long double>(s) * dy) + Origin.x;
        const std::int64_t y =
            Round(static_cast<long double>(s) * dx + static_cast<long double>(c) * dy) + Origin.y;
        P = Point(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
    }
}

double lg(double x) {
    // A math error (non-positive or NaN argument) answers 0 and raises nothing.
    if (!(x > 0)) return 0.0;
    return static_cast<double>(std::log(static_cast<long double>(x)) / std::log(10.0L));
}

TPoint CalcPixPerM(const TDeviceResolution& Device) {
    const double qx = static_cast<double>(FloatDiv(Device.HorzRes, Device.HorzSize));
    const double qy = static_cast<double>(FloatDiv(Device.VertRes, Device.VertSize));
    return Point(RoundToInt32(static_cast<long double>(qx) * 1000),
                 RoundToInt32(static_cast<long double>(qy) * 1000));
}

void SaveString(TStream& Stream, const QString& S) {
    if (S.size() > std::numeric_limits<std::int32_t>::max() / 2)
        throw EWriteError(QString::fromLatin1(msg::WriteError));
    const auto length = static_cast<std::int32_t>(S.size());
    Stream.WriteInt32(length);
    if (length == 0) return;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length) * 2);
    for (std::int32_t i = 0; i < length; ++i) {
        const char16_t u = S.at(i).unicode();
        bytes[2 * i] = static_cast<std::uint8_t>(u & 0xFF);
        bytes[2 * i + 1] = static_cast<std::uint8_t>(u >> 8);
    }
    Stream.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
}

QString LoadString_w(TStream& Stream) {
    const std::int32_t length = Stream.ReadInt32();
    if (length < 1) return QString();
    const std::int64_t byteCount = static_cast<std::int64_t>(length) * 2;
    // The length comes from the stream: it may not drive an allocation beyond what can follow.
    if (byteCount > Stream.Remaining()) throw EReadError(QString::fromLatin1(msg::ReadError));
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(byteCount));
    Stream.ReadBuffer(bytes.data(), byteCount);
    QString result(length, Qt::Uninitialized);
    char16_t* out = reinterpret_cast<char16_t*>(result.data());
    for (std::int32_t i = 0; i < length; ++i)
        out[i] = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
    return result;
}

QString LoadStringAnsi(TStream& Stream) {
    const std::int32_t length = Stream.ReadInt32();
    if (length < 1) return QString();
    if (length > Stream.Remaining()) throw EReadError(QString::fromLatin1(msg::ReadError));
    QByteArray bytes(length, Qt::Uninitialized);
    Stream.ReadBuffer(bytes.data(), length);
    return DecodeWindows1252(bytes.constData(), bytes.size());
}

QString StreamReadAnsiString(TStream& Stream, std::int32_t Len) {
    if (Len < 0 || static_cast<std::int64_t>(Len) + 1 > Stream.Remaining())
        throw EReadError(QString::fromLatin1(msg::ReadError));
    QByteArray bytes(static_cast<qsizetype>(Len) + 1, Qt::Uninitialized);
    Stream.ReadBuffer(bytes.data(), bytes.size());
    // Up to the first zero byte. The last byte read is the terminator: when it is not zero, the
    // text still ends before it.
    qsizetype end = bytes.indexOf('\0');
    if (end < 0) end = Len;
    return DecodeWindows1252(bytes.constData(), end);
}

void StreamReadAnsiString(TStream& Stream, char16_t* Dest, std::int32_t Len) {
    const QString text = StreamReadAnsiString(Stream, Len);
    // Code page 1252 maps each byte to one code unit, so the text has at most `Len` characters and
    // the terminator fits.
    std::copy_n(reinterpret_cast<const char16_t*>(text.constData()), text.size(), Dest);
    Dest[text.size()] = u'\0';
}

} // namespace vl
