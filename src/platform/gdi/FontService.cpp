// The font service: face substitution, the Qt font made from a logical font, and text measuring.
//
// Fonts are made without antialiasing and without kerning, so that a text's extent is the sum of its
// advances, as the platform measures it, and its pixels are exact. A negative height is the em height
// (Qt's pixel size); a positive height is the cell height (ascent + descent), reached by scaling the
// pixel size by the face's own ratio.

#include "platform/gdi/DeviceBackend.h"
#include "platform/gdi/Gdi.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QPainter>
#include <QString>

#include <cmath>

namespace vl {

namespace {

// The face used for "Default", an empty name and names that are neither substituted nor installed.
const char16_t DefaultFace[] = u"Liberation Sans";

struct TSubstitution {
    const char16_t* Name;
    const char16_t* Face;
};

// The platform's classic faces and their installed metric-compatible equivalents.
const TSubstitution Substitutions[] = {
    {u"default", u"Liberation Sans"},
    {u"arial", u"Liberation Sans"},
    {u"helvetica", u"Liberation Sans"},
    {u"ms sans serif", u"Liberation Sans"},
    {u"microsoft sans serif", u"Liberation Sans"},
    {u"ms shell dlg", u"Liberation Sans"},
    {u"ms shell dlg 2", u"Liberation Sans"},
    {u"tahoma", u"DejaVu Sans"},
    {u"verdana", u"DejaVu Sans"},
    {u"segoe ui", u"Liberation Sans"},
    {u"system", u"Liberation Sans"},
    {u"small fonts", u"Liberation Sans"},
    {u"times new roman", u"Liberation Serif"},
    {u"times", u"Liberation Serif"},
    {u"ms serif", u"Liberation Serif"},
    {u"courier new", u"Liberation Mono"},
    {u"courier", u"Liberation Mono"},
    {u"lucida console", u"DejaVu Sans Mono"},
    {u"fixedsys", u"Liberation Mono"},
    {u"terminal", u"Liberation Mono"},
    {u"symbol", u"DejaVu Sans"},
};

QString FaceOf(const LOGFONTW& font) {
    int n = 0;
    while (n < LF_FACESIZE && font.lfFaceName[n]) ++n;
    return QString::fromUtf16(font.lfFaceName, n);
}

std::unique_ptr<TFontService>& ServiceSlot() {
    static std::unique_ptr<TFontService> service = std::make_unique<TFontService>();
    return service;
}

} // namespace

TFontService::~TFontService() = default;

QString TFontService::ResolveFace(std::u16string_view faceName) const {
    const QString name = QString::fromUtf16(faceName.data(), qsizetype(faceName.size())).trimmed();
    if (name.isEmpty()) return QString::fromUtf16(DefaultFace);
    const QString lower = name.toLower();
    for (const TSubstitution& s : Substitutions)
        if (lower == QString::fromUtf16(s.Name)) return QString::fromUtf16(s.Face);
    if (QFontDatabase::hasFamily(name)) return name;
    return QString::fromUtf16(DefaultFace);
}

QFont TFontService::MakeFont(const LOGFONTW& fontDev) const {
    const QString face = FaceOf(fontDev);
    QFont font(ResolveFace(
        std::u16string_view(reinterpret_cast<const char16_t*>(face.utf16()), std::size_t(face.size()))));
    font.setStyleStrategy(QFont::StyleStrategy(QFont::NoAntialias | QFont::PreferMatch));
    font.setHintingPreference(QFont::PreferFullHinting);
    font.setKerning(false);
    const int weight = fontDev.lfWeight <= 0 ? 400 : std::clamp(int(fontDev.lfWeight), 1, 1000);
    font.setWeight(QFont::Weight(weight));
    font.setItalic(fontDev.lfItalic != 0);
    font.setUnderline(fontDev.lfUnderline != 0);
    font.setStrikeOut(fontDev.lfStrikeOut != 0);
    if ((fontDev.lfPitchAndFamily & 3) == FIXED_PITCH) {
        font.setFixedPitch(true);
        font.setStyleHint(QFont::TypeWriter);
    }
    int height = fontDev.lfHeight;
    if (height == 0) height = -13; // the platform's default character height at 96 dpi
    if (height < 0) {
        font.setPixelSize(std::max(1, -height));
    } else {
        // Cell height: scale a trial size by the face's cell-to-em ratio.
        const int trial = 1000;
        font.setPixelSize(trial);
        const QFontMetricsF m(font);
        const double cell = m.ascent() + m.descent();
        const int px = cell > 0 ? int(std::lround(height * trial / cell)) : height;
        font.setPixelSize(std::max(1, px));
    }
    if (fontDev.lfWidth > 0) {
        const QFontMetricsF m(font);
        const double average = m.averageCharWidth();
        if (average > 0)
            font.setStretch(std::clamp(int(std::lround(100.0 * fontDev.lfWidth / average)), 1, 4000));
    }
    return font;
}

TSize TFontService::TextExtent(const LOGFONTW& fontDev, std::u16string_view text) const {
    const QFont font = MakeFont(fontDev);
    const QFontMetrics m(font);
    const QString s = QString::fromUtf16(text.data(), qsizetype(text.size()));
    return {std::int32_t(m.horizontalAdvance(s)), std::int32_t(m.ascent() + m.descent())};
}

TEXTMETRICW TFontService::TextMetrics(const LOGFONTW& fontDev) const {
    const QFont font = MakeFont(fontDev);
    const QFontMetrics m(font);
    TEXTMETRICW tm;
    tm.tmAscent = m.ascent();
    tm.tmDescent = m.descent();
    tm.tmHeight = tm.tmAscent + tm.tmDescent;
    tm.tmInternalLeading = std::max(0, tm.tmHeight - font.pixelSize());
    tm.tmExternalLeading = std::max(0, m.leading());
    tm.tmAveCharWidth = m.averageCharWidth();
    tm.tmMaxCharWidth = m.maxWidth();
    tm.tmWeight = font.weight();
    tm.tmItalic = font.italic() ? 1 : 0;
    tm.tmUnderlined = font.underline() ? 1 : 0;
    tm.tmStruckOut = font.strikeOut() ? 1 : 0;
    tm.tmPitchAndFamily = std::uint8_t(font.fixedPitch() ? 0 : 1); // the platform's bit 0: variable pitch
    tm.tmCharSet = fontDev.lfCharSet;
    return tm;
}

TFontService& FontService() {
    return *ServiceSlot();
}

std::unique_ptr<TFontService> SetFontService(std::unique_ptr<TFontService> service) {
    std::unique_ptr<TFontService> previous = std::move(ServiceSlot());
    ServiceSlot() = service ? std::move(service) : std::make_unique<TFontService>();
    return previous;
}

namespace gdi {

TRect DrawTextWithPainter(QPainter& painter, TPoint ref, std::u16string_view text, const LOGFONTW& fontDev,
                          const TDrawAttrs& attrs, bool opaque) {
    TFontService& service = FontService();
    const QFont font = service.MakeFont(fontDev);
    const TSize extent = service.TextExtent(fontDev, text);
    const TEXTMETRICW tm = service.TextMetrics(fontDev);
    // The cell's top-left in the unrotated frame of the reference point.
    double ox = 0, oy = 0;
    const std::uint32_t h = attrs.TextAlign & TA_CENTER;
    if (h == TA_CENTER)
        ox = -extent.cx / 2;
    else if (h == TA_RIGHT)
        ox = -extent.cx;
    const std::uint32_t v = attrs.TextAlign & TA_BASELINE;
    if (v == TA_BASELINE)
        oy = -tm.tmAscent;
    else if (v == TA_BOTTOM)
        oy = -extent.cy;
    const double angle = fontDev.lfEscapement / 10.0;
    painter.save();
    painter.translate(ref.x, ref.y);
    if (fontDev.lfEscapement % 3600 != 0) painter.rotate(-angle);
    if (opaque)
        painter.fillRect(QRectF(ox, oy, extent.cx, extent.cy), QColor::fromRgb(ColorToPixel(attrs.BkColor)));
    painter.setFont(font);
    painter.setPen(QColor::fromRgb(ColorToPixel(attrs.TextColor)));
    painter.drawText(QPointF(ox, oy + tm.tmAscent), QString::fromUtf16(text.data(), qsizetype(text.size())));
    // The touched area: the cell, grown for italic overhang, rotated.
    const QRectF cell(ox - extent.cy / 2.0, oy, extent.cx + extent.cy, extent.cy);
    const QRectF box = painter.transform().mapRect(cell);
    painter.restore();
    return {std::int32_t(std::floor(box.left())) - 1, std::int32_t(std::floor(box.top())) - 1,
            std::int32_t(std::ceil(box.right())) + 1, std::int32_t(std::ceil(box.bottom())) + 1};
}

} // namespace gdi

} // namespace vl
