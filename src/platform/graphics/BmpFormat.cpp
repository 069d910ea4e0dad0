// The BMP file format and the DIB images of icon entries.
//
// Headers are read and written field by field, little-endian. Decoding covers the info headers of
// every Windows version (BITMAPCOREHEADER of OS/2 1.x, BITMAPINFOHEADER and its V2 to V5 extensions),
// 1, 4, 8, 16, 24 and 32 bits per pixel, colour tables, bottom-up and top-down rows, BI_RGB,
// BI_BITFIELDS and the run-length encodings RLE8 and RLE4.
#include "platform/graphics/Dib.h"

#include "platform/core/Streams.h"

#include <QHash>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace vl::dib {

namespace {

constexpr std::uint32_t BI_RGB = 0;
constexpr std::uint32_t BI_RLE8 = 1;
constexpr std::uint32_t BI_RLE4 = 2;
constexpr std::uint32_t BI_BITFIELDS = 3;
constexpr std::uint32_t BI_ALPHABITFIELDS = 6;

// The largest image the decoder agrees to allocate, in pixels (1 GiB of RGB32).
constexpr std::int64_t MaxPixels = std::int64_t(1) << 28;

[[noreturn]] void Invalid(const char* what) {
    throw EInvalidGraphic(QStringLiteral("Invalid bitmap: %1").arg(QLatin1String(what)));
}

// Bounds-checked little-endian reads from a block of bytes.
class ByteReader {
public:
    ByteReader(const std::uint8_t* data, std::size_t size) : FData(data), FSize(size) {}
    std::size_t Size() const { return FSize; }
    std::uint8_t U8(std::size_t at) const {
        Need(at, 1);
        return FData[at];
    }
    std::uint16_t U16(std::size_t at) const {
        Need(at, 2);
        return static_cast<std::uint16_t>(FData[at] | (FData[at + 1] << 8));
    }
    std::uint32_t U32(std::size_t at) const {
        Need(at, 4);
        return std::uint32_t(FData[at]) | (std::uint32_t(FData[at + 1]) << 8) |
               (std::uint32_t(FData[at + 2]) << 16) | (std::uint32_t(FData[at + 3]) << 24);
    }
    std::int32_t I32(std::size_t at) const { return static_cast<std::int32_t>(U32(at)); }
    const std::uint8_t* At(std::size_t at, std::size_t count) const {
        Need(at, count);
        return FData + at;
    }

private:
    void Need(std::size_t at, std::size_t count) const {
        if (at > FSize || count > FSize - at) Invalid("data cut short");
    }
    const std::uint8_t* FData;
    std::size_t FSize;
};

// Everything the headers say about the pixels.
struct DibHeader {
    std::uint32_t HeaderSize = 0;
    std::int64_t Width = 0;
    std::int64_t Height = 0; // of the colour rows, positive
    bool TopDown = false;
    int BitCount = 0;
    std::uint32_t Compression = BI_RGB;
    std::uint32_t SizeImage = 0;
    std::uint32_t Masks[4] = {0, 0, 0, 0}; // red, green, blue, alpha
    bool HasMasks = false;
    std::vector<QRgb> Palette;
    std::size_t PaletteEnd = 0; // offset behind header, masks and colour table
};

std::int64_t RowBytes(std::int64_t width, int bitCount) {
    return ((width * bitCount + 31) / 32) * 4;
}

// Parses the info header, masks and colour table that start at `base`.
DibHeader ParseHeader(const ByteReader& r, std::size_t base, bool iconMask) {
    DibHeader h;
    h.HeaderSize = r.U32(base);
    std::size_t at = base + h.HeaderSize;
    int paletteEntrySize = 4;
    std::uint32_t colorsUsed = 0;
    if (h.HeaderSize == 12) {
        h.Width = r.U16(base + 4);
        h.Height = r.U16(base + 6);
        h.BitCount = r.U16(base + 10);
        paletteEntrySize = 3;
    } else if (h.HeaderSize == 40 || h.HeaderSize == 52 || h.HeaderSize == 56 || h.HeaderSize == 64 ||
               h.HeaderSize == 108 || h.HeaderSize == 124) {
        h.Width = r.I32(base + 4);
        const std::int32_t height = r.I32(base + 8);
        if (height == std::numeric_limits<std::int32_t>::min()) Invalid("height out of range");
        h.TopDown = height < 0;
        h.Height = height < 0 ? -std::int64_t(height) : height;
        h.BitCount = r.U16(base + 14);
        h.Compression = r.U32(base + 16);
        h.SizeImage = r.U32(base + 20);
        colorsUsed = r.U32(base + 32);
        if (h.HeaderSize == 64 && h.Compression != BI_RGB) Invalid("unsupported OS/2 compression");
        if (h.Compression == BI_BITFIELDS || h.Compression == BI_ALPHABITFIELDS) {
            h.HasMasks = true;
            const int count = h.Compression == BI_ALPHABITFIELDS ? 4 : 3;
            if (h.HeaderSize >= 52) {
                for (int i = 0; i < 3; ++i) h.Masks[i] = r.U32(base + 40 + 4 * i);
                if (h.HeaderSize >= 56) h.Masks[3] = r.U32(base + 52);
            } else {
                for (int i = 0; i < count; ++i) h.Masks[i] = r.U32(at + 4 * i);
                at += 4 * count;
            }
        } else if (h.HeaderSize >= 56 && h.BitCount == 32) {
            h.Masks[3] = 0; // an alpha mask without BI_BITFIELDS is not used
        }
    } else {
        Invalid("unknown header size");
    }
    if (iconMask) {
        // The header of an icon image counts the colour rows and the AND mask together.
        h.Height /= 2;
    }
    if (h.Width < 0) Invalid("negative width");
    switch (h.BitCount) {
    case 1:
    case 4:
    case 8:
    case 16:
    case 24:
    case 32: break;
    default: Invalid("unsupported bit count");
    }
    switch (h.Compression) {
    case BI_RGB: break;
    case BI_RLE8:
        if (h.BitCount != 8 || h.TopDown) Invalid("bad RLE8 bitmap");
        break;
    case BI_RLE4:
        if (h.BitCount != 4 || h.TopDown) Invalid("bad RLE4 bitmap");
        break;
    case BI_BITFIELDS:
    case BI_ALPHABITFIELDS:
        if (h.BitCount != 16 && h.BitCount != 32) Invalid("bit fields need 16 or 32 bits");
        break;
    default: Invalid("unsupported compression");
    }
    if (h.Width * h.Height > MaxPixels) Invalid("image too large");

    // The colour table: for 8 bits or less the colours used (all by default); larger formats may
    // carry an optional table, which is skipped.
    std::uint32_t paletteCount = colorsUsed;
    if (h.BitCount <= 8) {
        const std::uint32_t full = 1u << h.BitCount;
        if (paletteCount == 0 || paletteCount > full) paletteCount = full;
    }
    if (paletteCount > 0x10000) Invalid("colour table too large");
    const std::size_t paletteBytes = std::size_t(paletteCount) * paletteEntrySize;
    const std::uint8_t* p = r.At(at, paletteBytes);
    if (h.BitCount <= 8) {
        h.Palette.reserve(paletteCount);
        for (std::uint32_t i = 0; i < paletteCount; ++i, p += paletteEntrySize)
            h.Palette.push_back(qRgb(p[2], p[1], p[0]));
    }
    h.PaletteEnd = at + paletteBytes;
    return h;
}

// Bytes of pixel data that the header describes (for RLE: the compressed size the header gives).
std::int64_t PixelBytes(const DibHeader& h) {
    if (h.Compression == BI_RLE8 || h.Compression == BI_RLE4) return h.SizeImage;
    return RowBytes(h.Width, h.BitCount) * h.Height;
}

// One colour channel under a bit mask, scaled to 8 bits.
struct Channel {
    std::uint32_t Mask = 0;
    int Shift = 0;
    std::uint32_t Max = 0;
    explicit Channel(std::uint32_t mask) : Mask(mask) {
        if (mask == 0) return;
        Shift = std::countr_zero(mask);
        Max = mask >> Shift;
    }
    int Get(std::uint32_t px, int absent) const {
        if (Mask == 0) return absent;
        const std::uint64_t v = (px & Mask) >> Shift;
        return static_cast<int>((v * 255 + Max / 2) / Max);
    }
};

TPixelFormat FormatOf(const DibHeader& h, const std::uint32_t masks[3]) {
    switch (h.BitCount) {
    case 1: return TPixelFormat::pf1bit;
    case 4: return TPixelFormat::pf4bit;
    case 8: return TPixelFormat::pf8bit;
    case 16:
        if (masks[0] == 0x7C00 && masks[1] == 0x03E0 && masks[2] == 0x001F) return TPixelFormat::pf15bit;
        if (masks[0] == 0xF800 && masks[1] == 0x07E0 && masks[2] == 0x001F) return TPixelFormat::pf16bit;
        return TPixelFormat::pfCustom;
    case 24: return TPixelFormat::pf24bit;
    default: return TPixelFormat::pf32bit;
    }
}

QRgb PaletteColour(const std::vector<QRgb>& palette, std::size_t index) {
    return index < palette.size() ? palette[index] : qRgb(0, 0, 0);
}

// Expands RLE8/RLE4 data into bottom-up rows of indices.
void DecodeRle(const DibHeader& h, const std::uint8_t* src, std::size_t n, QImage& image) {
    const bool four = h.Compression == BI_RLE4;
    std::int64_t x = 0, y = 0; // y counts from the bottom row
    auto put = [&](int index) {
        if (x < h.Width && y < h.Height)
            image.setPixel(int(x), int(h.Height - 1 - y), PaletteColour(h.Palette, std::size_t(index)));
        ++x;
    };
    std::size_t i = 0;
    while (i + 1 < n) {
        const std::uint8_t count = src[i], value = src[i + 1];
        i += 2;
        if (count > 0) {
            for (int k = 0; k < count; ++k) put(four ? ((k & 1) ? value & 0x0F : value >> 4) : value);
            continue;
        }
        if (value == 0) { // end of line
            x = 0;
            ++y;
        } else if (value == 1) { // end of bitmap
            return;
        } else if (value == 2) { // delta
            if (i + 1 >= n) Invalid("RLE data cut short");
            x += src[i];
            y += src[i + 1];
            i += 2;
        } else { // absolute run of `value` pixels, padded to a 16-bit boundary
            const std::size_t bytes = four ? (value + 1) / 2 : value;
            if (bytes > n - i) Invalid("RLE data cut short");
            for (int k = 0; k < value; ++k) {
                const std::uint8_t b = src[i + (four ? k / 2 : k)];
                put(four ? ((k & 1) ? b & 0x0F : b >> 4) : b);
            }
            i += (bytes + 1) & ~std::size_t(1);
        }
        if (y >= h.Height) return;
    }
}

// Decodes the pixels at `pixelOffset`; with `iconMask` the AND mask follows the colour rows.
TDib DecodePixels(const ByteReader& r, const DibHeader& h, std::size_t pixelOffset, bool iconMask) {
    TDib result;
    std::uint32_t masks[4] = {h.Masks[0], h.Masks[1], h.Masks[2], h.Masks[3]};
    if (!h.HasMasks) {
        if (h.BitCount == 16) {
            masks[0] = 0x7C00, masks[1] = 0x03E0, masks[2] = 0x001F;
        } else if (h.BitCount == 32) {
            masks[0] = 0x00FF0000, masks[1] = 0x0000FF00, masks[2] = 0x000000FF;
            masks[3] = iconMask ? 0xFF000000 : 0; // the fourth byte is alpha only in icons
        }
    }
    result.PixelFormat = FormatOf(h, masks);
    result.Palette = h.Palette;
    if (h.Width == 0 || h.Height == 0) return result;

    const std::int64_t dataBytes = PixelBytes(h);
    const std::uint8_t* bits = r.At(pixelOffset, std::size_t(dataBytes));
    QImage image(int(h.Width), int(h.Height), iconMask ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (image.isNull()) Invalid("out of memory");

    if (h.Compression == BI_RLE8 || h.Compression == BI_RLE4) {
        image.fill(PaletteColour(h.Palette, 0));
        DecodeRle(h, bits, std::size_t(dataBytes), image);
    } else {
        const Channel red(masks[0]), green(masks[1]), blue(masks[2]), alpha(masks[3]);
        const std::int64_t stride = RowBytes(h.Width, h.BitCount);
        bool anyAlpha = false;
        for (std::int64_t row = 0; row < h.Height; ++row) {
            const std::uint8_t* s = bits + row * stride;
            const int y = int(h.TopDown ? row : h.Height - 1 - row);
            auto* d = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (std::int64_t x = 0; x < h.Width; ++x) {
                switch (h.BitCount) {
                case 1: d[x] = PaletteColour(h.Palette, (s[x >> 3] >> (7 - (x & 7))) & 1); break;
                case 4: d[x] = PaletteColour(h.Palette, (x & 1) ? s[x >> 1] & 0x0F : s[x >> 1] >> 4); break;
                case 8: d[x] = PaletteColour(h.Palette, s[x]); break;
                case 24: d[x] = qRgb(s[3 * x + 2], s[3 * x + 1], s[3 * x]); break;
                default: {
                    const std::uint32_t px = h.BitCount == 16 ? std::uint32_t(s[2 * x] | (s[2 * x + 1] << 8))
                                                              : std::uint32_t(s[4 * x]) |
                                                                    (std::uint32_t(s[4 * x + 1]) << 8) |
                                                                    (std::uint32_t(s[4 * x + 2]) << 16) |
                                                                    (std::uint32_t(s[4 * x + 3]) << 24);
                    const int a = iconMask ? alpha.Get(px, 255) : 255;
                    anyAlpha = anyAlpha || (alpha.Mask != 0 && a != 0);
                    d[x] = qRgba(red.Get(px, 0), green.Get(px, 0), blue.Get(px, 0), a);
                }
                }
            }
        }
        if (iconMask && h.BitCount == 32 && !anyAlpha) {
            // A 32-bit icon without any alpha uses its AND mask like the others.
            for (int y = 0; y < image.height(); ++y) {
                auto* d = reinterpret_cast<QRgb*>(image.scanLine(y));
                for (int x = 0; x < image.width(); ++x) d[x] |= 0xFF000000u;
            }
        }
        if (iconMask && (h.BitCount != 32 || !anyAlpha)) {
            const std::int64_t maskStride = RowBytes(h.Width, 1);
            const std::size_t maskOffset = pixelOffset + std::size_t(dataBytes);
            // Some writers leave the mask out; the image is then opaque.
            if (maskOffset + std::size_t(maskStride * h.Height) <= r.Size()) {
                const std::uint8_t* m = r.At(maskOffset, std::size_t(maskStride * h.Height));
                for (std::int64_t row = 0; row < h.Height; ++row) {
                    const std::uint8_t* s = m + row * maskStride;
                    auto* d = reinterpret_cast<QRgb*>(image.scanLine(int(h.Height - 1 - row)));
                    for (std::int64_t x = 0; x < h.Width; ++x)
                        if ((s[x >> 3] >> (7 - (x & 7))) & 1) d[x] &= 0x00FFFFFFu;
                }
            }
        }
    }
    if (!iconMask && image.format() != QImage::Format_RGB32)
        image = image.convertToFormat(QImage::Format_RGB32);
    result.Image = std::move(image);
    return result;
}

void PutU16(QByteArray& b, std::uint16_t v) {
    b.append(char(v & 0xFF));
    b.append(char(v >> 8));
}
void PutU32(QByteArray& b, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) b.append(char((v >> (8 * i)) & 0xFF));
}

} // namespace

int BitCountOf(TPixelFormat Format) {
    switch (Format) {
    case TPixelFormat::pf1bit: return 1;
    case TPixelFormat::pf4bit: return 4;
    case TPixelFormat::pf8bit: return 8;
    case TPixelFormat::pf15bit:
    case TPixelFormat::pf16bit: return 16;
    case TPixelFormat::pf24bit:
    case TPixelFormat::pfCustom: return 24;
    case TPixelFormat::pfDevice:
    case TPixelFormat::pf32bit: return 32;
    }
    return 32;
}

std::vector<QRgb> DefaultPalette(TPixelFormat Format, const QImage& Image) {
    std::vector<QRgb> palette;
    if (Format == TPixelFormat::pf1bit) return {qRgb(0, 0, 0), qRgb(255, 255, 255)};
    if (Format == TPixelFormat::pf4bit) {
        // The sixteen colours of the standard VGA palette, in the order of the system palette.
        return {qRgb(0, 0, 0),       qRgb(128, 0, 0),   qRgb(0, 128, 0),   qRgb(128, 128, 0),
                qRgb(0, 0, 128),     qRgb(128, 0, 128), qRgb(0, 128, 128), qRgb(192, 192, 192),
                qRgb(128, 128, 128), qRgb(255, 0, 0),   qRgb(0, 255, 0),   qRgb(255, 255, 0),
                qRgb(0, 0, 255),     qRgb(255, 0, 255), qRgb(0, 255, 255), qRgb(255, 255, 255)};
    }
    if (Format != TPixelFormat::pf8bit) return palette;
    QHash<QRgb, int> seen;
    for (int y = 0; y < Image.height() && seen.size() <= 256; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(Image.constScanLine(y));
        for (int x = 0; x < Image.width(); ++x) {
            const QRgb c = line[x] | 0xFF000000u;
            if (!seen.contains(c)) {
                seen.insert(c, int(palette.size()));
                palette.push_back(c);
                if (palette.size() > 256) break;
            }
        }
    }
    if (palette.size() <= 256) return palette;
    // A 6x6x6 colour cube and a ramp of 40 greys.
    palette.clear();
    for (int r = 0; r < 6; ++r)
        for (int g = 0; g < 6; ++g)
            for (int b = 0; b < 6; ++b) palette.push_back(qRgb(r * 51, g * 51, b * 51));
    for (int i = 0; i < 40; ++i) palette.push_back(qRgb(i * 255 / 39, i * 255 / 39, i * 255 / 39));
    return palette;
}

int NearestIndex(const std::vector<QRgb>& Palette, QRgb Colour) {
    int best = 0;
    long bestDistance = std::numeric_limits<long>::max();
    for (std::size_t i = 0; i < Palette.size(); ++i) {
        const long dr = qRed(Palette[i]) - qRed(Colour), dg = qGreen(Palette[i]) - qGreen(Colour),
                   db = qBlue(Palette[i]) - qBlue(Colour);
        const long d = dr * dr + dg * dg + db * db;
        if (d < bestDistance) {
            bestDistance = d;
            best = int(i);
            if (d == 0) break;
        }
    }
    return best;
}

void WriteBmpFile(TStream& Stream, const QImage& Image, TPixelFormat Format,
                  const std::vector<QRgb>& Palette) {
    const int bitCount = BitCountOf(Format);
    const int width = Image.isNull() ? 0 : Image.width();
    const int height = Image.isNull() ? 0 : Image.height();
    std::vector<QRgb> palette;
    if (bitCount <= 8) {
        palette = Palette.empty() ? DefaultPalette(Format, Image) : Palette;
        if (palette.size() > (std::size_t(1) << bitCount)) palette.resize(std::size_t(1) << bitCount);
    }
    const bool bitFields = Format == TPixelFormat::pf16bit;
    const std::uint32_t stride = std::uint32_t(RowBytes(width, bitCount));
    const std::uint32_t imageSize = stride * std::uint32_t(height);
    const std::uint32_t offBits =
        FileHeaderSize + InfoHeaderSize + (bitFields ? 12 : 0) + 4 * std::uint32_t(palette.size());

    // BITMAPFILEHEADER
    Stream.WriteUInt16(BitmapFileType);
    Stream.WriteUInt32(offBits + imageSize);
    Stream.WriteUInt16(0);
    Stream.WriteUInt16(0);
    Stream.WriteUInt32(offBits);
    // BITMAPINFOHEADER
    Stream.WriteUInt32(InfoHeaderSize);
    Stream.WriteInt32(width);
    Stream.WriteInt32(height);
    Stream.WriteUInt16(1);
    Stream.WriteUInt16(std::uint16_t(bitCount));
    Stream.WriteUInt32(bitFields ? BI_BITFIELDS : BI_RGB);
    Stream.WriteUInt32(imageSize);
    Stream.WriteInt32(0);
    Stream.WriteInt32(0);
    Stream.WriteUInt32(std::uint32_t(palette.size()));
    Stream.WriteUInt32(0);
    if (bitFields) {
        Stream.WriteUInt32(0xF800);
        Stream.WriteUInt32(0x07E0);
        Stream.WriteUInt32(0x001F);
    }
    for (const QRgb c : palette) {
        Stream.WriteUInt8(std::uint8_t(qBlue(c)));
        Stream.WriteUInt8(std::uint8_t(qGreen(c)));
        Stream.WriteUInt8(std::uint8_t(qRed(c)));
        Stream.WriteUInt8(0);
    }

    QHash<QRgb, int> indexOf;
    for (std::size_t i = 0; i < palette.size(); ++i)
        if (!indexOf.contains(palette[i] | 0xFF000000u)) indexOf.insert(palette[i] | 0xFF000000u, int(i));
    auto index = [&](QRgb c) {
        c |= 0xFF000000u;
        auto it = indexOf.constFind(c);
        if (it != indexOf.constEnd()) return *it;
        const int i = NearestIndex(palette, c);
        indexOf.insert(c, i);
        return i;
    };

    std::vector<std::uint8_t> row(stride);
    for (int y = height - 1; y >= 0; --y) {
        std::fill(row.begin(), row.end(), std::uint8_t(0));
        const auto* s = reinterpret_cast<const QRgb*>(Image.constScanLine(y));
        for (int x = 0; x < width; ++x) {
            const QRgb c = s[x];
            switch (bitCount) {
            case 1: row[x >> 3] |= std::uint8_t((index(c) & 1) << (7 - (x & 7))); break;
            case 4: row[x >> 1] |= std::uint8_t((index(c) & 0x0F) << ((x & 1) ? 0 : 4)); break;
            case 8: row[x] = std::uint8_t(index(c)); break;
            case 16: {
                const std::uint16_t v =
                    bitFields
                        ? std::uint16_t(((qRed(c) >> 3) << 11) | ((qGreen(c) >> 2) << 5) | (qBlue(c) >> 3))
                        : std::uint16_t(((qRed(c) >> 3) << 10) | ((qGreen(c) >> 3) << 5) | (qBlue(c) >> 3));
                row[2 * x] = std::uint8_t(v & 0xFF);
                row[2 * x + 1] = std::uint8_t(v >> 8);
                break;
            }
            case 24:
                row[3 * x] = std::uint8_t(qBlue(c));
                row[3 * x + 1] = std::uint8_t(qGreen(c));
                row[3 * x + 2] = std::uint8_t(qRed(c));
                break;
            default:
                row[4 * x] = std::uint8_t(qBlue(c));
                row[4 * x + 1] = std::uint8_t(qGreen(c));
                row[4 * x + 2] = std::uint8_t(qRed(c));
                row[4 * x + 3] = 0;
            }
        }
        Stream.WriteBuffer(row.data(), stride);
    }
}

TDib ReadBmpFile(TStream& Stream) {
    const std::int64_t start = Stream.Position();
    try {
        const std::int64_t available = Stream.Remaining();
        // The file header and the size field of the info header come first; they tell how much follows.
        std::uint8_t head[FileHeaderSize + 4];
        if (available < std::int64_t(sizeof head)) Invalid("data cut short");
        Stream.ReadBuffer(head, sizeof head);
        const ByteReader hr(head, sizeof head);
        if (hr.U16(0) != BitmapFileType) Invalid("not a bitmap file");
        const std::uint32_t fileSize = hr.U32(2);
        const std::uint32_t offBits = hr.U32(10);
        const std::uint32_t headerSize = hr.U32(14);
        if (headerSize < 12 || headerSize > 124) Invalid("unknown header size");

        // Read the info header, then the masks and the colour table, to learn where the pixels are and
        // how many bytes they take.
        const std::int64_t headerEnd = FileHeaderSize + std::int64_t(headerSize);
        if (available < headerEnd) Invalid("data cut short");
        QByteArray bytes(qsizetype(headerEnd), Qt::Uninitialized);
        std::memcpy(bytes.data(), head, sizeof head);
        Stream.ReadBuffer(bytes.data() + sizeof head, headerEnd - std::int64_t(sizeof head));
        std::uint32_t colorsUsed = 0;
        if (headerSize >= 40)
            colorsUsed =
                ByteReader(reinterpret_cast<const std::uint8_t*>(bytes.constData()), std::size_t(headerEnd))
                    .U32(FileHeaderSize + 32);
        const std::int64_t tableBytes =
            16 + 4 * std::int64_t(std::clamp<std::uint32_t>(colorsUsed, 256, 0x10000));
        const std::int64_t probe = std::min<std::int64_t>(available, headerEnd + tableBytes);
        bytes.resize(qsizetype(probe));
        Stream.ReadBuffer(bytes.data() + headerEnd, probe - headerEnd);
        DibHeader h = ParseHeader(
            ByteReader(reinterpret_cast<const std::uint8_t*>(bytes.constData()), std::size_t(bytes.size())),
            FileHeaderSize, false);

        std::int64_t pixelOffset = offBits;
        if (pixelOffset < std::int64_t(h.PaletteEnd)) pixelOffset = std::int64_t(h.PaletteEnd);
        const std::int64_t needed = pixelOffset + PixelBytes(h);
        // The file's own size wins when it covers the pixels and the data is there; writers that leave
        // it 0 or too small are read by the size of their headers.
        std::int64_t length = needed;
        if (fileSize >= needed && fileSize <= available) length = fileSize;
        if (length > available) Invalid("data cut short");

        const std::int64_t have = bytes.size();
        if (length > have) {
            bytes.resize(qsizetype(length));
            Stream.ReadBuffer(bytes.data() + have, length - have);
        } else {
            Stream.SetPosition(start + length);
        }
        const ByteReader r(reinterpret_cast<const std::uint8_t*>(bytes.constData()), std::size_t(length));
        return DecodePixels(r, h, std::size_t(pixelOffset), false);
    } catch (...) {
        Stream.SetPosition(start);
        throw;
    }
}

TDib DecodeDib(const std::uint8_t* Data, std::size_t Size, bool IconMask) {
    const ByteReader r(Data, Size);
    const DibHeader h = ParseHeader(r, 0, IconMask);
    return DecodePixels(r, h, h.PaletteEnd, IconMask);
}

QByteArray EncodeIconDib(const QImage& Image) {
    const QImage image = Image.convertToFormat(QImage::Format_ARGB32);
    const int width = image.width(), height = image.height();
    const std::uint32_t stride = std::uint32_t(width) * 4;
    const std::uint32_t maskStride = std::uint32_t(RowBytes(width, 1));
    QByteArray b;
    PutU32(b, InfoHeaderSize);
    PutU32(b, std::uint32_t(width));
    PutU32(b, std::uint32_t(height * 2));
    PutU16(b, 1);
    PutU16(b, 32);
    PutU32(b, BI_RGB);
    PutU32(b, (stride + maskStride) * std::uint32_t(height));
    PutU32(b, 0);
    PutU32(b, 0);
    PutU32(b, 0);
    PutU32(b, 0);
    for (int y = height - 1; y >= 0; --y) {
        const auto* s = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < width; ++x) PutU32(b, s[x]);
    }
    for (int y = height - 1; y >= 0; --y) {
        const auto* s = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QByteArray row(qsizetype(maskStride), '\0');
        for (int x = 0; x < width; ++x)
            if (qAlpha(s[x]) < 128) row[x >> 3] = char(row[x >> 3] | (1 << (7 - (x & 7))));
        b.append(row);
    }
    return b;
}

} // namespace vl::dib
