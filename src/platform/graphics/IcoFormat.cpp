// TIcon and the ICO file format.
//
// An ICO file is a directory (ICONDIR: reserved 0, type 1, count; then 16-byte entries: width, height,
// colour count, reserved, planes, bits per pixel, byte count, offset) followed by the images, each a
// PNG file or a DIB with its AND mask. The file ends with the last byte of the image that ends last, so
// the directory alone tells the length.
#include "platform/graphics/Images.h"

#include "platform/core/Streams.h"

#include <QBuffer>

#include <cstdlib>

namespace vl {

namespace {

constexpr int IconDirSize = 6;
constexpr int IconEntrySize = 16;

[[noreturn]] void InvalidIcon(const char* what) {
    throw EInvalidGraphic(QStringLiteral("Invalid icon: %1").arg(QLatin1String(what)));
}

std::uint32_t U32(const QByteArray& b, qsizetype at) {
    const auto* p = reinterpret_cast<const std::uint8_t*>(b.constData()) + at;
    return std::uint32_t(p[0]) | (std::uint32_t(p[1]) << 8) | (std::uint32_t(p[2]) << 16) |
           (std::uint32_t(p[3]) << 24);
}
std::uint16_t U16(const QByteArray& b, qsizetype at) {
    const auto* p = reinterpret_cast<const std::uint8_t*>(b.constData()) + at;
    return std::uint16_t(p[0] | (p[1] << 8));
}

struct IconEntry {
    int Width = 0, Height = 0, BitCount = 0;
    std::uint32_t Size = 0, Offset = 0;
};

bool IsPng(const std::uint8_t* p, std::size_t n) {
    static constexpr std::uint8_t signature[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    return n >= 8 && std::equal(signature, signature + 8, p);
}

QImage DecodeEntry(const QByteArray& file, const IconEntry& e) {
    const auto* p = reinterpret_cast<const std::uint8_t*>(file.constData()) + e.Offset;
    QImage image;
    if (IsPng(p, e.Size)) {
        if (!image.loadFromData(p, qsizetype(e.Size), "PNG")) InvalidIcon("bad PNG image");
    } else {
        image = dib::DecodeDib(p, e.Size, true).Image;
    }
    if (image.isNull()) InvalidIcon("empty image");
    return image.convertToFormat(QImage::Format_ARGB32);
}

// The ICO file of one image: a 32-bit DIB with its mask, or PNG for images above 256 pixels.
QByteArray EncodeIcon(const QImage& image) {
    const bool png = image.width() > 256 || image.height() > 256;
    QByteArray body;
    if (png) {
        QBuffer buffer(&body);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
    } else {
        body = dib::EncodeIconDib(image);
    }
    TMemoryStream s;
    s.WriteUInt16(0);
    s.WriteUInt16(1);
    s.WriteUInt16(1);
    s.WriteUInt8(std::uint8_t(image.width() >= 256 ? 0 : image.width()));
    s.WriteUInt8(std::uint8_t(image.height() >= 256 ? 0 : image.height()));
    s.WriteUInt8(0);
    s.WriteUInt8(0);
    s.WriteUInt16(1);
    s.WriteUInt16(32);
    s.WriteUInt32(std::uint32_t(body.size()));
    s.WriteUInt32(IconDirSize + IconEntrySize);
    s.WriteBuffer(body.constData(), body.size());
    return s.Bytes();
}

} // namespace

TIcon::TIcon() {
    TGraphic::SetTransparent(true);
}

void TIcon::SetImage(const QImage& Value) {
    if (Value.isNull()) {
        FImage = QImage();
        FData.clear();
    } else {
        FImage = Value.convertToFormat(QImage::Format_ARGB32);
        FData = EncodeIcon(FImage);
    }
    Changed();
}

QImage TIcon::ColorImage() const {
    if (FImage.isNull()) return {};
    QImage colour(FImage.size(), QImage::Format_RGB32);
    for (int y = 0; y < FImage.height(); ++y) {
        const auto* s = reinterpret_cast<const QRgb*>(FImage.constScanLine(y));
        auto* d = reinterpret_cast<QRgb*>(colour.scanLine(y));
        for (int x = 0; x < FImage.width(); ++x) d[x] = s[x] | 0xFF000000u;
    }
    return colour;
}

QImage TIcon::MaskImage() const {
    if (FImage.isNull()) return {};
    QImage mask(FImage.size(), QImage::Format_RGB32);
    for (int y = 0; y < FImage.height(); ++y) {
        const auto* s = reinterpret_cast<const QRgb*>(FImage.constScanLine(y));
        auto* d = reinterpret_cast<QRgb*>(mask.scanLine(y));
        for (int x = 0; x < FImage.width(); ++x) d[x] = qAlpha(s[x]) < 128 ? 0xFFFFFFFFu : 0xFF000000u;
    }
    return mask;
}

bool GetIconInfo(const TIcon& Icon, TBitmap& Color, TBitmap& Mask) {
    if (Icon.Empty()) {
        Color.Assign(nullptr);
        Mask.Assign(nullptr);
        return false;
    }
    // Built aside and assigned, so that each bitmap changes once and takes the pixel format, colour
    // table and transparency of the new one whatever it held before.
    TBitmap colour;
    colour.SetImage(Icon.ColorImage());
    TBitmap mask;
    mask.SetImage(Icon.MaskImage());
    mask.SetPixelFormat(pf1bit);
    Color.Assign(&colour);
    Mask.Assign(&mask);
    return true;
}

void TIcon::Draw(TCanvas& ACanvas, const TRect& Rect) {
    if (FImage.isNull()) return;
    if (Transparent())
        gfx::DrawImageMasked(ACanvas, Rect, ColorImage(), MaskImage());
    else
        gfx::DrawImage(ACanvas, Rect, ColorImage());
}

void TIcon::LoadFromStream(TStream& Stream) {
    const std::int64_t start = Stream.Position();
    try {
        const std::int64_t available = Stream.Remaining();
        if (available < IconDirSize) InvalidIcon("data cut short");
        QByteArray file(IconDirSize, Qt::Uninitialized);
        Stream.ReadBuffer(file.data(), IconDirSize);
        if (U16(file, 0) != 0 || U16(file, 2) != 1) InvalidIcon("not an icon file");
        const int count = U16(file, 4);
        if (count == 0) {
            // The file of an empty icon: a directory without entries.
            FData.clear();
            FImage = QImage();
            Changed();
            return;
        }
        const std::int64_t directoryEnd = IconDirSize + std::int64_t(count) * IconEntrySize;
        if (available < directoryEnd) InvalidIcon("data cut short");
        file.resize(qsizetype(directoryEnd));
        Stream.ReadBuffer(file.data() + IconDirSize, directoryEnd - IconDirSize);

        std::vector<IconEntry> entries;
        std::int64_t length = directoryEnd;
        for (int i = 0; i < count; ++i) {
            const qsizetype at = IconDirSize + qsizetype(i) * IconEntrySize;
            IconEntry e;
            const auto* p = reinterpret_cast<const std::uint8_t*>(file.constData()) + at;
            e.Width = p[0] == 0 ? 256 : p[0];
            e.Height = p[1] == 0 ? 256 : p[1];
            e.BitCount = U16(file, at + 6);
            e.Size = U32(file, at + 8);
            e.Offset = U32(file, at + 12);
            if (e.Offset < directoryEnd || e.Size == 0) InvalidIcon("bad directory entry");
            const std::int64_t end = std::int64_t(e.Offset) + e.Size;
            if (end > available) InvalidIcon("data cut short");
            length = std::max(length, end);
            entries.push_back(e);
        }
        file.resize(qsizetype(length));
        Stream.ReadBuffer(file.data() + directoryEnd, length - directoryEnd);

        // The entry nearest to 32 x 32 pixels, of the most bits per pixel, the first of equals.
        std::size_t best = 0;
        auto distance = [](const IconEntry& e) { return std::abs(e.Width - 32) + std::abs(e.Height - 32); };
        for (std::size_t i = 1; i < entries.size(); ++i) {
            const int d = distance(entries[i]), bestD = distance(entries[best]);
            if (d < bestD || (d == bestD && entries[i].BitCount > entries[best].BitCount)) best = i;
        }
        QImage image = DecodeEntry(file, entries[best]);
        FData = std::move(file);
        FImage = std::move(image);
    } catch (const EInvalidGraphic&) {
        Stream.SetPosition(start);
        throw;
    } catch (const EReadError&) {
        Stream.SetPosition(start);
        InvalidIcon("data cut short");
    }
    Changed();
}

void TIcon::SaveToStream(TStream& Stream) {
    if (FData.isEmpty()) {
        Stream.WriteUInt16(0);
        Stream.WriteUInt16(1);
        Stream.WriteUInt16(0);
        return;
    }
    Stream.WriteBuffer(FData.constData(), FData.size());
}

void TIcon::Assign(TPersistent* Source) {
    if (!Source) {
        SetImage(QImage());
        return;
    }
    if (auto* icon = dynamic_cast<TIcon*>(Source)) {
        if (icon == this) return;
        FData = icon->FData;
        FImage = icon->FImage;
        StoreTransparent(icon->Transparent());
        Changed();
        return;
    }
    TPersistent::Assign(Source);
}

} // namespace vl
