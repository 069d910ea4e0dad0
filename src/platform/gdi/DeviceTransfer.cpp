// The device context's text output and block transfers: the public operations that place text by
// its reference point and copy or stretch pixels between contexts and from device-independent
// bitmaps, all mapped to the device and handed to the backend.

#include "platform/gdi/DeviceContext.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace vl {

namespace {
bool Live(HDC dc) {
    return TDeviceContext::IsLive(dc);
}
} // namespace
// --- text -------------------------------------------------------------------------------------

bool TextOutW(HDC dc, int x, int y, const char16_t* text, int length) {
    if (!Live(dc) || (!text && length > 0) || length < 0) return false;
    if (length == 0) return true;
    const TPoint ref = dc->LogToDev({x, y});
    dc->Drawn(dc->Backend().Text(ref, std::u16string_view(text, std::size_t(length)), dc->FontDev(),
                                 dc->Attrs(), dc->Clip()));
    return true;
}

bool GetTextExtentPoint32W(HDC dc, const char16_t* text, int length, TSize* size) {
    if (!Live(dc) || !size || (!text && length > 0) || length < 0) return false;
    const TSize dev = FontService().TextExtent(dc->FontDev(), std::u16string_view(text, std::size_t(length)));
    size->cx = std::int32_t(std::min<std::int64_t>(dc->LengthToLogX(dev.cx), INT32_MAX));
    size->cy = std::int32_t(std::min<std::int64_t>(dc->LengthToLogY(dev.cy), INT32_MAX));
    return true;
}

bool GetTextMetricsW(HDC dc, TEXTMETRICW* metrics) {
    if (!Live(dc) || !metrics) return false;
    TEXTMETRICW tm = FontService().TextMetrics(dc->FontDev());
    auto ly = [dc](std::int32_t v) {
        return std::int32_t(std::min<std::int64_t>(dc->LengthToLogY(v), INT32_MAX));
    };
    auto lx = [dc](std::int32_t v) {
        return std::int32_t(std::min<std::int64_t>(dc->LengthToLogX(v), INT32_MAX));
    };
    tm.tmAscent = ly(tm.tmAscent);
    tm.tmDescent = ly(tm.tmDescent);
    tm.tmHeight = ly(tm.tmHeight);
    tm.tmInternalLeading = ly(tm.tmInternalLeading);
    tm.tmExternalLeading = ly(tm.tmExternalLeading);
    tm.tmAveCharWidth = lx(tm.tmAveCharWidth);
    tm.tmMaxCharWidth = lx(tm.tmMaxCharWidth);
    *metrics = tm;
    return true;
}

// --- block transfers --------------------------------------------------------------------------

bool StretchBlt(HDC dest, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                int sourceWidth, int sourceHeight, std::uint32_t rop) {
    if (!Live(dest)) return false;
    const bool useSource = gdi::Rop3UsesSource(rop);
    const TRect destDev = dest->LogToDevRect({x, y, x + width, y + height});
    TRect srcDev{};
    const QImage* image = nullptr;
    if (useSource) {
        if (!Live(source)) return false;
        image = source->Backend().Image();
        if (!image) return false;
        srcDev = source->LogToDevRect({sourceX, sourceY, sourceX + sourceWidth, sourceY + sourceHeight});
    }
    COLORREF pattern = static_cast<const TGdiBrush*>(dest->FState.Brush.Get())->FLogBrush.lbColor;
    dest->Drawn(dest->Backend().Blt(destDev, image, srcDev, rop, pattern, dest->Clip()));
    return true;
}

bool BitBlt(HDC dest, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
            std::uint32_t rop) {
    return StretchBlt(dest, x, y, width, height, source, sourceX, sourceY, width, height, rop);
}

bool PatBlt(HDC dest, int x, int y, int width, int height, std::uint32_t rop) {
    if (gdi::Rop3UsesSource(rop)) return false;
    return StretchBlt(dest, x, y, width, height, nullptr, 0, 0, 0, 0, rop);
}

namespace {

// A device-independent bitmap as a top-down RGB32 image; null for an unsupported or invalid one.
QImage ImageFromDib(const void* bits, const BITMAPINFO* info) {
    const BITMAPINFOHEADER& h = info->bmiHeader;
    const std::int64_t w = h.biWidth, ht = std::abs(std::int64_t(h.biHeight));
    if (w <= 0 || ht <= 0 || w * ht > (std::int64_t(1) << 28) || h.biCompression != BI_RGB) return {};
    const int bpp = h.biBitCount;
    if (bpp != 1 && bpp != 4 && bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32) return {};
    const std::int64_t stride = ((w * bpp + 31) / 32) * 4;
    QImage image(int(w), int(ht), QImage::Format_RGB32);
    if (image.isNull()) return {};
    const auto* data = static_cast<const std::uint8_t*>(bits);
    const bool bottomUp = h.biHeight > 0;
    const std::uint32_t paletteSize =
        bpp <= 8 ? (h.biClrUsed ? std::min<std::uint32_t>(h.biClrUsed, 256u) : (1u << bpp)) : 0;
    auto palette = [&](std::uint32_t index) -> std::uint32_t {
        if (index >= paletteSize) return 0xFF000000u;
        const RGBQUAD& q = info->bmiColors[index];
        return 0xFF000000u | (std::uint32_t(q.rgbRed) << 16) | (std::uint32_t(q.rgbGreen) << 8) | q.rgbBlue;
    };
    for (std::int64_t row = 0; row < ht; ++row) {
        const std::uint8_t* src = data + (bottomUp ? (ht - 1 - row) : row) * stride;
        auto* dst = reinterpret_cast<std::uint32_t*>(image.scanLine(int(row)));
        for (std::int64_t x = 0; x < w; ++x) {
            switch (bpp) {
            case 1: dst[x] = palette((src[x / 8] >> (7 - x % 8)) & 1u); break;
            case 4: dst[x] = palette((src[x / 2] >> (x % 2 ? 0 : 4)) & 0xFu); break;
            case 8: dst[x] = palette(src[x]); break;
            case 16: {
                const std::uint32_t v = std::uint32_t(src[2 * x]) | (std::uint32_t(src[2 * x + 1]) << 8);
                const std::uint32_t r = (v >> 10) & 31, g = (v >> 5) & 31, b = v & 31;
                dst[x] = 0xFF000000u | (((r << 3) | (r >> 2)) << 16) | (((g << 3) | (g >> 2)) << 8) |
                         ((b << 3) | (b >> 2));
                break;
            }
            case 24:
                dst[x] = 0xFF000000u | (std::uint32_t(src[3 * x + 2]) << 16) |
                         (std::uint32_t(src[3 * x + 1]) << 8) | src[3 * x];
                break;
            default:
                dst[x] = 0xFF000000u | (std::uint32_t(src[4 * x + 2]) << 16) |
                         (std::uint32_t(src[4 * x + 1]) << 8) | src[4 * x];
                break;
            }
        }
    }
    return image;
}

} // namespace

int StretchDIBits(HDC dest, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                  int sourceHeight, const void* bits, const BITMAPINFO* info, std::uint32_t usage,
                  std::uint32_t rop) {
    if (!Live(dest) || !bits || !info || usage != DIB_RGB_COLORS) return 0;
    const QImage image = ImageFromDib(bits, info);
    if (image.isNull()) return 0;
    // The source rectangle of a bottom-up bitmap counts its rows from the bottom.
    TRect src{sourceX, sourceY, sourceX + sourceWidth, sourceY + sourceHeight};
    if (info->bmiHeader.biHeight > 0) {
        const int h = image.height();
        src.Top = h - (sourceY + sourceHeight);
        src.Bottom = h - sourceY;
        if (sourceHeight < 0) std::swap(src.Top, src.Bottom);
    }
    const TRect destDev = dest->LogToDevRect({x, y, x + width, y + height});
    COLORREF pattern = static_cast<const TGdiBrush*>(dest->FState.Brush.Get())->FLogBrush.lbColor;
    dest->Drawn(dest->Backend().Blt(destDev, &image, src, rop, pattern, dest->Clip()));
    return image.height();
}

BITMAPINFO DibInfoOf(const QImage& image) {
    BITMAPINFO info;
    info.bmiHeader.biWidth = image.width();
    info.bmiHeader.biHeight = -image.height();
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    info.bmiHeader.biSizeImage = std::uint32_t(std::int64_t(image.width()) * image.height() * 4);
    return info;
}

int StretchDIBitsOf(HDC dest, int x, int y, int width, int height, const QImage& image, std::uint32_t rop) {
    if (image.isNull()) return 0;
    // A 32-bit bitmap's fourth byte is not read, so the colours of an ARGB32 image pass unchanged, also
    // where it is transparent; other formats are brought to that layout first.
    const bool direct = image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32;
    const QImage pixels = direct ? image : image.convertToFormat(QImage::Format_ARGB32);
    const BITMAPINFO info = DibInfoOf(pixels);
    return StretchDIBits(dest, x, y, width, height, 0, 0, pixels.width(), pixels.height(), pixels.constBits(),
                         &info, DIB_RGB_COLORS, rop);
}

} // namespace vl
