// Block transfers onto the paint-engine device, which cannot read its destination: an operation that
// ignores the destination is drawn exactly, pixels whose result is the destination are left out, and
// the others are drawn as their result over black (over white when that is black). A picture records
// the transfers and is replayed onto a grey image, whose pixels are compared with the raster device
// doing the same transfer on the same grey.

#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <QPainter>
#include <QPicture>

#include <gtest/gtest.h>

#include <functional>

namespace vl {
namespace {

using test::Grey;
using test::TSurface;

constexpr COLORREF Green = RGB(0, 160, 0);
constexpr COLORREF Dark = RGB(0x20, 0x40, 0x60);

// One row of five source pixels: black, white, red, green, blue.
QImage SourceRow() {
    QImage image(5, 1, QImage::Format_RGB32);
    const QRgb colours[] = {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(255, 0, 0), qRgb(0, 160, 0),
                            qRgb(0, 0, 255)};
    for (int x = 0; x < 5; ++x) image.setPixel(x, 0, colours[x]);
    return image;
}

// The picture's drawing replayed onto an image of `width` x `height` filled with `background`.
QImage Replayed(const std::function<void(HDC)>& draw, int width, int height, COLORREF background = Grey) {
    QPicture picture;
    HDC dc = CreatePaintDeviceDC(&picture);
    EXPECT_NE(dc, nullptr);
    if (dc) {
        draw(dc);
        DeleteDC(dc);
    }
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor(GetRValue(background), GetGValue(background), GetBValue(background)));
    QPainter painter(&image);
    painter.drawPicture(0, 0, picture);
    painter.end();
    return image;
}

COLORREF At(const QImage& image, int x, int y) {
    const QRgb p = image.pixel(x, y);
    return RGB(std::uint8_t(qRed(p)), std::uint8_t(qGreen(p)), std::uint8_t(qBlue(p)));
}

// Each source pixel stretched to 4 x 4 device pixels at (0, 0), with `rop` and a green brush selected.
void TransferRow(HDC dc, std::uint32_t rop) {
    HBRUSH brush = CreateSolidBrush(Green);
    HGDIOBJ old = SelectObject(dc, brush);
    EXPECT_EQ(StretchDIBitsOf(dc, 0, 0, 20, 4, SourceRow(), rop), 1);
    SelectObject(dc, old);
    DeleteObject(brush);
}

// The colour of each of the five 4 x 4 blocks, read at their centres.
std::vector<COLORREF> Blocks(const QImage& image) {
    std::vector<COLORREF> colours;
    for (int i = 0; i < 5; ++i) colours.push_back(At(image, 4 * i + 2, 2));
    return colours;
}

std::vector<COLORREF> OnRaster(std::uint32_t rop, COLORREF background) {
    TSurface surface(20, 4, background);
    TransferRow(surface.Dc(), rop);
    return Blocks(surface.Image());
}

std::vector<COLORREF> OnPicture(std::uint32_t rop, COLORREF background) {
    return Blocks(Replayed([rop](HDC dc) { TransferRow(dc, rop); }, 20, 4, background));
}

TEST(GdiPaintRop, OperationsThatIgnoreTheDestinationAreExact) {
    for (std::uint32_t rop : {SRCCOPY, NOTSRCCOPY, MERGECOPY}) {
        SCOPED_TRACE(rop);
        EXPECT_EQ(OnPicture(rop, Grey), OnRaster(rop, Grey));
    }
    EXPECT_EQ(OnPicture(NOTSRCCOPY, Grey),
              (std::vector<COLORREF>{RGB(255, 255, 255), RGB(0, 0, 0), RGB(0, 255, 255), RGB(255, 95, 255),
                                     RGB(255, 255, 0)}));
    // The source AND the green brush.
    EXPECT_EQ(OnPicture(MERGECOPY, Grey),
              (std::vector<COLORREF>{RGB(0, 0, 0), Green, RGB(0, 0, 0), Green, RGB(0, 0, 0)}));
}

TEST(GdiPaintRop, AndLeavesTheDestinationUnderWhiteAndIsExactForAMask) {
    // Black and white source pixels: exactly what the raster device gives on any destination.
    const std::vector<COLORREF> picture = OnPicture(SRCAND, Grey);
    const std::vector<COLORREF> raster = OnRaster(SRCAND, Grey);
    EXPECT_EQ(picture[0], RGB(0, 0, 0));
    EXPECT_EQ(picture[1], Grey);
    EXPECT_EQ(picture[0], raster[0]);
    EXPECT_EQ(picture[1], raster[1]);
    // Coloured pixels are drawn as they would come out over white.
    EXPECT_EQ(OnPicture(SRCAND, RGB(255, 255, 255)), OnRaster(SRCAND, RGB(255, 255, 255)));
    EXPECT_EQ(picture[2], RGB(255, 0, 0));
}

TEST(GdiPaintRop, InvertAndPaintLeaveTheDestinationUnderBlackAndAreExactOverBlack) {
    for (std::uint32_t rop : {SRCINVERT, SRCPAINT}) {
        SCOPED_TRACE(rop);
        const std::vector<COLORREF> picture = OnPicture(rop, Dark);
        // Black source pixels keep whatever is beneath.
        EXPECT_EQ(picture[0], Dark);
        EXPECT_EQ(picture[0], OnRaster(rop, Dark)[0]);
        // Over black every pixel is what the raster device makes of it.
        EXPECT_EQ(OnPicture(rop, RGB(0, 0, 0)), OnRaster(rop, RGB(0, 0, 0)));
        EXPECT_EQ(picture[2], RGB(255, 0, 0));
        EXPECT_EQ(picture[4], RGB(0, 0, 255));
    }
}

TEST(GdiPaintRop, MaskSequenceShowsTheDestinationThroughTransparentPixels) {
    // Mask: white (transparent) at blocks 1 and 3; the picture black there.
    QImage mask(5, 1, QImage::Format_RGB32), image = SourceRow();
    for (int x = 0; x < 5; ++x) mask.setPixel(x, 0, x % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    image.setPixel(1, 0, qRgb(0, 0, 0));
    image.setPixel(3, 0, qRgb(0, 0, 0));
    auto sequence = [&](HDC dc) {
        StretchDIBitsOf(dc, 0, 0, 20, 4, mask, SRCAND);
        StretchDIBitsOf(dc, 0, 0, 20, 4, image, SRCINVERT);
    };
    TSurface raster(20, 4, Dark);
    sequence(raster.Dc());
    const QImage replayed = Replayed(sequence, 20, 4, Dark);
    const std::vector<COLORREF> expected{RGB(0, 0, 0), Dark, RGB(255, 0, 0), Dark, RGB(0, 0, 255)};
    EXPECT_EQ(Blocks(raster.Image()), expected);
    EXPECT_EQ(Blocks(replayed), expected);
    // Not only the block centres: every pixel is the raster device's.
    EXPECT_EQ(replayed, raster.Image());
}

TEST(GdiPaintRop, BlockTransfersFromAMemoryContextFollowTheSameRules) {
    QImage source(2, 1, QImage::Format_RGB32);
    source.setPixel(0, 0, qRgb(255, 255, 255));
    source.setPixel(1, 0, qRgb(0, 0, 0));
    HDC memory = CreateImageDC(&source);
    ASSERT_NE(memory, nullptr);
    // AND: the white half leaves the grey, the black half is drawn; INVERT of the same source the
    // other way round. BitBlt at its size and StretchBlt to three times it.
    const QImage replayed = Replayed(
        [memory](HDC dc) {
            BitBlt(dc, 0, 0, 2, 1, memory, 0, 0, SRCAND);
            StretchBlt(dc, 0, 1, 6, 3, memory, 0, 0, 2, 1, SRCINVERT);
        },
        6, 4);
    DeleteDC(memory);
    EXPECT_EQ(At(replayed, 0, 0), Grey);
    EXPECT_EQ(At(replayed, 1, 0), RGB(0, 0, 0));
    for (int y = 1; y < 4; ++y) {
        SCOPED_TRACE(y);
        for (int x = 0; x < 3; ++x) EXPECT_EQ(At(replayed, x, y), RGB(255, 255, 255));
        for (int x = 3; x < 6; ++x) EXPECT_EQ(At(replayed, x, y), Grey);
    }
}

TEST(GdiPaintRop, OperationsWithoutSourceThatNeedTheDestinationDrawNothing) {
    const QImage replayed = Replayed(
        [](HDC dc) {
            EXPECT_TRUE(PatBlt(dc, 0, 0, 4, 4, DSTINVERT));
            EXPECT_TRUE(PatBlt(dc, 4, 0, 4, 4, BLACKNESS));
        },
        8, 4);
    EXPECT_EQ(At(replayed, 1, 1), Grey);
    EXPECT_EQ(At(replayed, 5, 1), RGB(0, 0, 0));
}

} // namespace
} // namespace vl
