// TJPEGImage and the measuring of JPEG data.
//
// A JPEG stream has no length field of its own: it runs from the start-of-image marker (FF D8) to the
// end-of-image marker (FF D9). In between come marker segments with a 16-bit big-endian length, the
// stand-alone markers RST0-RST7 and TEM, and after each start-of-scan segment the entropy-coded data,
// in which FF 00 is a stuffed data byte and FF D0-D7 a restart marker. Walking this structure finds
// the end without decoding, so that the bytes behind the image stay untouched.
#include "platform/graphics/Images.h"

#include "platform/core/Streams.h"

#include <QBuffer>

namespace vl {

namespace {

// Answers of the walk besides a length.
constexpr std::int64_t JpegIncomplete = -1;
constexpr std::int64_t JpegInvalid = -2;

std::int64_t WalkJpeg(const std::uint8_t* d, std::int64_t n) {
    if (n < 2) return JpegIncomplete;
    if (d[0] != 0xFF || d[1] != 0xD8) return JpegInvalid;
    std::int64_t i = 2;
    for (;;) {
        if (i >= n) return JpegIncomplete;
        if (d[i] != 0xFF) return JpegInvalid;
        while (i < n && d[i] == 0xFF) ++i; // fill bytes before a marker
        if (i >= n) return JpegIncomplete;
        const std::uint8_t marker = d[i++];
        if (marker == 0xD9) return i;
        if (marker == 0x00 || marker == 0xD8) return JpegInvalid;
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) continue;
        if (i + 2 > n) return JpegIncomplete;
        const int length = (d[i] << 8) | d[i + 1];
        if (length < 2) return JpegInvalid;
        i += length;
        if (marker != 0xDA) continue;
        // Entropy-coded data up to the next marker that is neither a stuffed byte nor a restart.
        for (;;) {
            if (i >= n) return JpegIncomplete;
            if (d[i] != 0xFF) {
                ++i;
                continue;
            }
            if (i + 1 >= n) return JpegIncomplete;
            const std::uint8_t next = d[i + 1];
            if (next == 0x00 || (next >= 0xD0 && next <= 0xD7)) {
                i += 2;
                continue;
            }
            if (next == 0xFF) {
                ++i;
                continue;
            }
            break;
        }
    }
}

[[noreturn]] void InvalidJpeg(const char* what) {
    throw EInvalidGraphic(QStringLiteral("JPEG error: %1").arg(QLatin1String(what)));
}

} // namespace

std::int64_t TJPEGImage::MeasureJpeg(const std::uint8_t* Data, std::int64_t Size) {
    const std::int64_t n = WalkJpeg(Data, Size);
    return n < 0 ? -1 : n;
}

void TJPEGImage::Compress() {
    FData.clear();
    if (FImage.isNull()) return;
    QBuffer buffer(&FData);
    buffer.open(QIODevice::WriteOnly);
    if (!FImage.save(&buffer, "JPG", FCompressionQuality)) InvalidJpeg("cannot compress");
    // What is shown is what the bytes give back.
    QImage decoded;
    if (decoded.loadFromData(FData, "JPG")) FImage = decoded.convertToFormat(QImage::Format_RGB32);
}

void TJPEGImage::Draw(TCanvas& ACanvas, const TRect& Rect) {
    gfx::DrawImage(ACanvas, Rect, FImage);
}

void TJPEGImage::LoadFromStream(TStream& Stream) {
    const std::int64_t start = Stream.Position();
    const std::int64_t available = Stream.Remaining();
    QByteArray bytes;
    std::int64_t length = JpegIncomplete;
    // Read in growing chunks until the walk finds the end; only the bytes read past the image are
    // given back, by moving the position.
    std::int64_t chunk = 0x10000;
    while (length == JpegIncomplete && bytes.size() < available) {
        const std::int64_t take = std::min<std::int64_t>(chunk, available - bytes.size());
        const qsizetype have = bytes.size();
        bytes.resize(have + qsizetype(take));
        Stream.ReadBuffer(bytes.data() + have, take);
        length = WalkJpeg(reinterpret_cast<const std::uint8_t*>(bytes.constData()), bytes.size());
        chunk *= 2;
    }
    if (length < 0) {
        Stream.SetPosition(start);
        InvalidJpeg(length == JpegInvalid ? "not a JPEG image" : "data cut short");
    }
    bytes.truncate(qsizetype(length));
    QImage image;
    if (!image.loadFromData(bytes, "JPG") || image.isNull()) {
        Stream.SetPosition(start);
        InvalidJpeg("cannot decode the image");
    }
    Stream.SetPosition(start + length);
    FData = std::move(bytes);
    FImage = image.convertToFormat(QImage::Format_RGB32);
    Changed();
}

void TJPEGImage::SaveToStream(TStream& Stream) {
    if (FData.isEmpty() && !FImage.isNull()) Compress();
    if (!FData.isEmpty()) Stream.WriteBuffer(FData.constData(), FData.size());
}

void TJPEGImage::Assign(TPersistent* Source) {
    if (!Source) {
        FData.clear();
        FImage = QImage();
        Changed();
        return;
    }
    if (auto* jpeg = dynamic_cast<TJPEGImage*>(Source)) {
        if (jpeg == this) return;
        FData = jpeg->FData;
        FImage = jpeg->FImage;
        FCompressionQuality = jpeg->FCompressionQuality;
        Changed();
        return;
    }
    if (auto* bitmap = dynamic_cast<TBitmap*>(Source)) {
        FImage = bitmap->Image().copy();
        Compress();
        Changed();
        return;
    }
    TPersistent::Assign(Source);
}

} // namespace vl
