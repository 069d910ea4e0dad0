// Built-in cursor shapes and the library's image cursors.

#include "platform/graphics/Cursors.h"

#include <QFile>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <map>
#include <memory>
#include <mutex>

// The resources of a static library are registered by hand; the call must be made outside any
// namespace.
static void InitCursorResources() {
    Q_INIT_RESOURCE(cursors);
}

namespace vl {

bool BuiltinCursorShape(TCursor Number, Qt::CursorShape& Shape) {
    switch (Number) {
    case crDefault: Shape = Qt::ArrowCursor; return true;
    case crNone: Shape = Qt::BlankCursor; return true;
    case crArrow: Shape = Qt::ArrowCursor; return true;
    case crCross: Shape = Qt::CrossCursor; return true;
    case crIBeam: Shape = Qt::IBeamCursor; return true;
    case crSizeNESW: Shape = Qt::SizeBDiagCursor; return true;
    case crSizeNS: Shape = Qt::SizeVerCursor; return true;
    case crSizeNWSE: Shape = Qt::SizeFDiagCursor; return true;
    case crSizeWE: Shape = Qt::SizeHorCursor; return true;
    case crUpArrow: Shape = Qt::UpArrowCursor; return true;
    case crHourGlass: Shape = Qt::WaitCursor; return true;
    case crDrag: Shape = Qt::DragMoveCursor; return true;
    case crNoDrop: Shape = Qt::ForbiddenCursor; return true;
    case crHSplit: Shape = Qt::SplitHCursor; return true;
    case crVSplit: Shape = Qt::SplitVCursor; return true;
    case crMultiDrag: Shape = Qt::DragCopyCursor; return true;
    case crSQLWait: Shape = Qt::BusyCursor; return true;
    case crNo: Shape = Qt::ForbiddenCursor; return true;
    case crAppStart: Shape = Qt::BusyCursor; return true;
    case crHelp: Shape = Qt::WhatsThisCursor; return true;
    case crHandPoint: Shape = Qt::PointingHandCursor; return true;
    case crSizeAll: Shape = Qt::SizeAllCursor; return true;
    default: return false;
    }
}

namespace {

constexpr int CursorSize = 32;

QImage NewCursorCanvas() {
    QImage image(CursorSize, CursorSize, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return image;
}

// A crosshair of one-pixel black lines with a white halo, centred on `c`, `arm` pixels each way.
void DrawCrosshair(QPainter& p, QPoint c, int arm) {
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawRect(c.x() - arm - 1, c.y() - 1, 2 * arm + 3, 3);
    p.drawRect(c.x() - 1, c.y() - arm - 1, 3, 2 * arm + 3);
    p.setBrush(Qt::black);
    p.drawRect(c.x() - arm, c.y(), 2 * arm + 1, 1);
    p.drawRect(c.x(), c.y() - arm, 1, 2 * arm + 1);
}

// A filled arrowhead with its tip at `tip`, pointing along `dir` (a unit vector).
void DrawArrowHead(QPainter& p, QPointF tip, QPointF dir, double length, double halfWidth) {
    const QPointF normal(-dir.y(), dir.x());
    const QPointF base = tip - dir * length;
    p.drawPolygon(QPolygonF({tip, base + normal * halfWidth, base - normal * halfWidth}));
}

// A dimension sign: a line between two extension ticks with arrowheads at both ends, drawn from
// `a` to `b` (pixel centres), ticks across it.
void DrawDimensionSign(QPainter& p, QPointF a, QPointF b) {
    QPointF d = b - a;
    const double len = std::sqrt(d.x() * d.x() + d.y() * d.y());
    d /= len;
    const QPointF n(-d.y(), d.x());
    QPen pen(Qt::black, 1.0);
    pen.setCapStyle(Qt::FlatCap);
    p.setPen(pen);
    p.setBrush(Qt::black);
    p.drawLine(a, b);
    p.drawLine(a - n * 4, a + n * 4);
    p.drawLine(b - n * 4, b + n * 4);
    p.setPen(Qt::NoPen);
    DrawArrowHead(p, a, -d, 4, 2);
    DrawArrowHead(p, b, d, 4, 2);
}

TCursorImage RenderSmallCross() {
    QImage image = NewCursorCanvas();
    QPainter p(&image);
    DrawCrosshair(p, QPoint(15, 15), 5);
    return {image, QPoint(15, 15)};
}

TCursorImage RenderRotate() {
    QImage image = NewCursorCanvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    // Three quarters of a circle round the hot spot, ending in an arrowhead.
    const QRectF arc(6.5, 6.5, 18, 18);
    for (int pass = 0; pass < 2; ++pass) {
        QPen pen(pass == 0 ? Qt::white : Qt::black, pass == 0 ? 4.0 : 2.0);
        pen.setCapStyle(Qt::FlatCap);
        p.setPen(pen);
        p.setBrush(Qt::NoBrush);
        p.drawArc(arc, 90 * 16, 270 * 16);
    }
    p.setPen(QPen(Qt::white, 1.0));
    p.setBrush(Qt::black);
    // The arc ends at angle 0 (the right-hand point), going counter-clockwise towards the top.
    DrawArrowHead(p, QPointF(24.5, 10.0), QPointF(0, -1), 6, 4);
    p.setRenderHint(QPainter::Antialiasing, false);
    DrawCrosshair(p, QPoint(15, 15), 2);
    return {image, QPoint(15, 15)};
}

TCursorImage RenderDimension(char kind) {
    QImage image = NewCursorCanvas();
    QPainter p(&image);
    DrawCrosshair(p, QPoint(7, 7), 6);
    p.setRenderHint(QPainter::Antialiasing, kind == 'P');
    switch (kind) {
    case 'H': DrawDimensionSign(p, QPointF(14.5, 22.5), QPointF(30.5, 22.5)); break;
    case 'V': DrawDimensionSign(p, QPointF(22.5, 14.5), QPointF(22.5, 30.5)); break;
    default: DrawDimensionSign(p, QPointF(15.5, 29.5), QPointF(29.5, 15.5)); break;
    }
    return {image, QPoint(7, 7)};
}

} // namespace

TCursorImage RenderCursorImage(const QString& Name) {
    const QString name = Name.toUpper();
    if (name == QLatin1String("SMALL_CROSS")) return RenderSmallCross();
    if (name == QLatin1String("ROTATE")) return RenderRotate();
    if (name == QLatin1String("DIMLINEH")) return RenderDimension('H');
    if (name == QLatin1String("DIMLINEV")) return RenderDimension('V');
    if (name == QLatin1String("DIMLINEP")) return RenderDimension('P');
    return {};
}

TCursorImage ReadCursorResource(const QString& Name) {
    static std::once_flag once;
    std::call_once(once, [] { InitCursorResources(); });
    const QString path = QStringLiteral(":/vellorum/cursors/%1.png").arg(Name.toUpper());
    if (!QFile::exists(path)) return {};
    QImage image(path);
    if (image.isNull()) return {};
    QPoint hotSpot(image.width() / 2, image.height() / 2);
    const QStringList parts = image.text(QStringLiteral("HotSpot")).split(QLatin1Char(','));
    if (parts.size() == 2) {
        bool okX = false;
        bool okY = false;
        const int x = parts[0].trimmed().toInt(&okX);
        const int y = parts[1].trimmed().toInt(&okY);
        if (okX && okY) hotSpot = QPoint(x, y);
    }
    return {image.convertToFormat(QImage::Format_ARGB32), hotSpot};
}

const QCursor* LoadCursorByName(const QString& Name) {
    static std::map<QString, std::unique_ptr<QCursor>> loaded;
    const QString key = Name.toUpper();
    auto it = loaded.find(key);
    if (it != loaded.end()) return it->second.get();
    TCursorImage image = ReadCursorResource(key);
    if (image.Image.isNull()) image = RenderCursorImage(key);
    if (image.Image.isNull()) return nullptr;
    auto cursor =
        std::make_unique<QCursor>(QPixmap::fromImage(image.Image), image.HotSpot.x(), image.HotSpot.y());
    return loaded.emplace(key, std::move(cursor)).first->second.get();
}

} // namespace vl
