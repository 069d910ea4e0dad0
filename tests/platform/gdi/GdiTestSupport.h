// A small raster surface for the device-layer tests: an RGB32 image, a context on it, and a text dump
// of its pixels ('.' background grey, 'w' white, '#' black, 'r' red, 'b' blue, '?' anything else).
#pragma once

#include "platform/gdi/Gdi.h"

#include <QImage>

#include <string>

namespace vl::test {

constexpr COLORREF Grey = RGB(0x80, 0x80, 0x80);
constexpr COLORREF Red = RGB(255, 0, 0);
constexpr COLORREF Blue = RGB(0, 0, 255);

class TSurface {
public:
    TSurface(int width, int height, COLORREF background = Grey)
        : FImage(width, height, QImage::Format_RGB32) {
        FImage.fill(QColor(GetRValue(background), GetGValue(background), GetBValue(background)));
        FDc = CreateImageDC(&FImage);
    }
    ~TSurface() { DeleteDC(FDc); }
    TSurface(const TSurface&) = delete;
    TSurface& operator=(const TSurface&) = delete;

    HDC Dc() const { return FDc; }
    QImage& Image() { return FImage; }

    COLORREF Pixel(int x, int y) const {
        const QRgb p = FImage.pixel(x, y);
        return RGB(std::uint8_t(qRed(p)), std::uint8_t(qGreen(p)), std::uint8_t(qBlue(p)));
    }

    static char CharOf(COLORREF c) {
        switch (c) {
        case Grey: return '.';
        case RGB(255, 255, 255): return 'w';
        case RGB(0, 0, 0): return '#';
        case Red: return 'r';
        case Blue: return 'b';
        default: return '?';
        }
    }

    // Rows joined by '\n', each row `width` characters, for the rectangle [0, w) x [0, h).
    std::string Dump(int w = -1, int h = -1) const {
        if (w < 0) w = FImage.width();
        if (h < 0) h = FImage.height();
        std::string s;
        for (int y = 0; y < h; ++y) {
            if (y) s += '\n';
            for (int x = 0; x < w; ++x) s += CharOf(Pixel(x, y));
        }
        return s;
    }

    // The bounding box of pixels that differ from `background` (right and bottom exclusive).
    TRect InkBox(COLORREF background = Grey) const {
        TRect r{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
        for (int y = 0; y < FImage.height(); ++y)
            for (int x = 0; x < FImage.width(); ++x)
                if (Pixel(x, y) != background) {
                    r.Left = std::min(r.Left, x);
                    r.Top = std::min(r.Top, y);
                    r.Right = std::max(r.Right, x + 1);
                    r.Bottom = std::max(r.Bottom, y + 1);
                }
        if (r.Left > r.Right) return {};
        return r;
    }

    int CountPixels(COLORREF color) const {
        int n = 0;
        for (int y = 0; y < FImage.height(); ++y)
            for (int x = 0; x < FImage.width(); ++x)
                if (Pixel(x, y) == color) ++n;
        return n;
    }

private:
    QImage FImage;
    HDC FDc = nullptr;
};

inline std::string Rows(std::initializer_list<const char*> rows) {
    std::string s;
    bool first = true;
    for (const char* r : rows) {
        if (!first) s += '\n';
        s += r;
        first = false;
    }
    return s;
}

} // namespace vl::test
