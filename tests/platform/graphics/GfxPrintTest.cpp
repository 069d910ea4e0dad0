// Transparent pictures printed through device-independent transfers with the mask sequences that a
// printer needs (it cannot be trusted with transparent block transfers), on the raster device and on
// the paint-engine device over a picture, an SVG document, a PDF page and a printer writing PDF, each
// rendered back to pixels. A two-coloured background is drawn first; it must show through the
// transparent pixels, and the opaque pixels keep their colours. The icon's bitmaps come from
// `GetIconInfo` on an icon read from an ICO file with an AND mask.

#include "platform/core/Streams.h"
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"
#include "support/PdfRender.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QPicture>
#include <QPrinter>
#include <QSvgGenerator>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace vl {
namespace {

// The page in device pixels and the picture's place on it: each picture pixel becomes a 10 x 10 block.
constexpr int PageWidth = 100;
constexpr int PageHeight = 60;
constexpr int Scale = 10;
constexpr TRect Place{25, 15, 25 + 5 * Scale, 15 + 3 * Scale};

// The background: two colours meeting at x = 50, which runs through the middle of a picture column.
constexpr TColor LeftBack = TColor(RGB(0x30, 0x90, 0x60));
constexpr TColor RightBack = TColor(RGB(0xE0, 0x80, 0x20));

// The picture, 5 x 3: 't' transparent, 'r' red, 'b' blue, 'k' black, 'w' white, 'y' yellow, 'g' green,
// 'c' a colour of no special bits. The bottom-left pixel is transparent, as the bitmap's automatic
// transparent colour wants.
const char* const Picture[] = {"rtbtk", "twtyt", "tgtct"};
constexpr TColor TransparentKey = clFuchsia;

TColor ColourOf(char c) {
    switch (c) {
    case 'r': return clRed;
    case 'b': return clBlue;
    case 'k': return clBlack;
    case 'w': return clWhite;
    case 'y': return clYellow;
    case 'g': return clGreen;
    case 'c': return TColor(RGB(0x5A, 0x3C, 0xA5));
    default: return TransparentKey;
    }
}

QRgb Rgb(TColor c) {
    return qRgb(GetRValue(c), GetGValue(c), GetBValue(c));
}

void MakeBitmap(TBitmap& bitmap) {
    bitmap.SetSize(5, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) bitmap.ScanLine(y)[x] = Rgb(ColourOf(Picture[y][x]));
}

// An ICO file of the picture: one 24-bit entry whose colour rows hold black under the AND mask, and
// the mask set at the transparent pixels.
QByteArray IcoFile() {
    TMemoryStream s;
    const int w = 5, h = 3;
    const std::uint32_t colourStride = ((w * 24 + 31) / 32) * 4, maskStride = ((w + 31) / 32) * 4;
    const std::uint32_t dibSize = 40 + (colourStride + maskStride) * h;
    s.WriteUInt16(0);
    s.WriteUInt16(1); // an icon
    s.WriteUInt16(1); // one entry
    s.WriteUInt8(w);
    s.WriteUInt8(h);
    s.WriteUInt8(0);
    s.WriteUInt8(0);
    s.WriteUInt16(1);
    s.WriteUInt16(24);
    s.WriteUInt32(dibSize);
    s.WriteUInt32(22);
    s.WriteUInt32(40);
    s.WriteUInt32(w);
    s.WriteUInt32(2 * h); // colour rows and mask rows
    s.WriteUInt16(1);
    s.WriteUInt16(24);
    s.WriteUInt32(0);
    s.WriteUInt32((colourStride + maskStride) * h);
    for (int i = 0; i < 4; ++i) s.WriteUInt32(0);
    for (int y = h - 1; y >= 0; --y) {
        for (int x = 0; x < w; ++x) {
            const TColor c = Picture[y][x] == 't' ? clBlack : ColourOf(Picture[y][x]);
            s.WriteUInt8(GetBValue(c));
            s.WriteUInt8(GetGValue(c));
            s.WriteUInt8(GetRValue(c));
        }
        for (std::uint32_t pad = w * 3; pad < colourStride; ++pad) s.WriteUInt8(0);
    }
    for (int y = h - 1; y >= 0; --y) {
        std::uint8_t bits = 0;
        for (int x = 0; x < w; ++x)
            if (Picture[y][x] == 't') bits |= std::uint8_t(0x80u >> x);
        s.WriteUInt8(bits);
        for (std::uint32_t pad = 1; pad < maskStride; ++pad) s.WriteUInt8(0);
    }
    return s.Bytes();
}

void LoadIcon(TIcon& icon) {
    const QByteArray file = IcoFile();
    TMemoryStream s;
    s.WriteBuffer(file.constData(), file.size());
    s.SetPosition(0);
    icon.LoadFromStream(s);
}

// --- the printing sequences -------------------------------------------------------------------

// The transparent picture from its mask (white where transparent) and its colour pixels: the mask
// ANDed onto the page, then the picture made black where transparent (a copy of the mask, the colour
// pixels erased into it) XORed onto the page.
void PrintMasked(HDC dc, const TRect& r, TBitmap& mask, TBitmap& colour) {
    EXPECT_GT(StretchDIBitsOf(dc, r.Left, r.Top, r.Width(), r.Height(), mask.Image(), SRCAND), 0);
    TBitmap picture(mask.Width(), mask.Height());
    EXPECT_TRUE(BitBlt(picture.Canvas().Handle(), 0, 0, mask.Width(), mask.Height(), mask.Canvas().Handle(),
                       0, 0, SRCCOPY));
    EXPECT_TRUE(BitBlt(picture.Canvas().Handle(), 0, 0, mask.Width(), mask.Height(), colour.Canvas().Handle(),
                       0, 0, SRCERASE));
    EXPECT_GT(StretchDIBitsOf(dc, r.Left, r.Top, r.Width(), r.Height(), picture.Image(), SRCINVERT), 0);
}

void PrintBitmap(HDC dc, const TRect& r, TBitmap& bitmap) {
    if (!bitmap.Transparent()) {
        EXPECT_GT(StretchDIBitsOf(dc, r.Left, r.Top, r.Width(), r.Height(), bitmap.Image(), SRCCOPY), 0);
        return;
    }
    TBitmap mask;
    mask.Assign(&bitmap);
    mask.Mask(bitmap.TransparentColor());
    PrintMasked(dc, r, mask, bitmap);
}

void PrintIcon(HDC dc, const TRect& r, const TIcon& icon) {
    TBitmap colour, mask;
    ASSERT_TRUE(GetIconInfo(icon, colour, mask));
    PrintMasked(dc, r, mask, colour);
}

void DrawBackground(HDC dc) {
    HBRUSH left = CreateSolidBrush(COLORREF(LeftBack)), right = CreateSolidBrush(COLORREF(RightBack));
    const TRect l{0, 0, PageWidth / 2, PageHeight}, rr{PageWidth / 2, 0, PageWidth, PageHeight};
    FillRect(dc, &l, left);
    FillRect(dc, &rr, right);
    DeleteObject(left);
    DeleteObject(right);
}

// --- what is drawn ----------------------------------------------------------------------------

enum class TWhat : std::uint8_t { TransparentBitmap, OpaqueBitmap, Icon, CanvasDraw };

const char* NameOf(TWhat what) {
    switch (what) {
    case TWhat::TransparentBitmap: return "TransparentBitmap";
    case TWhat::OpaqueBitmap: return "OpaqueBitmap";
    case TWhat::Icon: return "Icon";
    default: return "CanvasDraw";
    }
}

void DrawPage(HDC dc, TWhat what) {
    DrawBackground(dc);
    switch (what) {
    case TWhat::TransparentBitmap:
    case TWhat::OpaqueBitmap: {
        TBitmap bitmap;
        MakeBitmap(bitmap);
        bitmap.SetTransparent(what == TWhat::TransparentBitmap);
        PrintBitmap(dc, Place, bitmap);
        break;
    }
    case TWhat::Icon: {
        TIcon icon;
        LoadIcon(icon);
        PrintIcon(dc, Place, icon);
        break;
    }
    case TWhat::CanvasDraw: {
        // The canvas's own transparent drawing (mask ANDed, picture ORed) on the same context.
        TBitmap bitmap;
        MakeBitmap(bitmap);
        bitmap.SetTransparent(true);
        TCanvas canvas;
        canvas.SetHandle(dc);
        canvas.StretchDraw(Place, &bitmap);
        canvas.SetHandle(nullptr);
        break;
    }
    }
}

// The page as it must come out.
QImage ExpectedPage(TWhat what) {
    QImage page(PageWidth, PageHeight, QImage::Format_RGB32);
    for (int y = 0; y < PageHeight; ++y)
        for (int x = 0; x < PageWidth; ++x) {
            QRgb c = Rgb(x < PageWidth / 2 ? LeftBack : RightBack);
            if (x >= Place.Left && x < Place.Right && y >= Place.Top && y < Place.Bottom) {
                const char p = Picture[(y - Place.Top) / Scale][(x - Place.Left) / Scale];
                if (p != 't' || what == TWhat::OpaqueBitmap) c = Rgb(ColourOf(p));
            }
            page.setPixel(x, y, c);
        }
    return page;
}

// --- the devices, each rendered back to pixels ------------------------------------------------

using TDraw = std::function<void(HDC)>;

QImage WhitePage() {
    QImage page(PageWidth, PageHeight, QImage::Format_RGB32);
    page.fill(Qt::white);
    return page;
}

void DrawOnDevice(QPaintDevice* device, const TDraw& draw) {
    HDC dc = CreatePaintDeviceDC(device);
    ASSERT_NE(dc, nullptr);
    draw(dc);
    DeleteDC(dc);
}

QImage OnRaster(const TDraw& draw) {
    QImage page = WhitePage();
    HDC dc = CreateImageDC(&page);
    draw(dc);
    DeleteDC(dc);
    return page;
}

QImage OnPicture(const TDraw& draw) {
    QPicture picture;
    DrawOnDevice(&picture, draw);
    QImage page = WhitePage();
    QPainter painter(&page);
    painter.drawPicture(0, 0, picture);
    return page;
}

QImage OnSvg(const TDraw& draw) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setSize(QSize(PageWidth, PageHeight));
        generator.setViewBox(QRect(0, 0, PageWidth, PageHeight));
        DrawOnDevice(&generator, draw);
    }
    QSvgRenderer renderer(buffer.data());
    EXPECT_TRUE(renderer.isValid());
    QImage page = WhitePage();
    QPainter painter(&page);
    renderer.render(&painter, QRectF(0, 0, PageWidth, PageHeight));
    return page;
}

QImage RenderPdf(const QString& pdf) {
    return test::RenderPdf(pdf, PageWidth, PageHeight);
}

QPageSize PageSize() {
    return QPageSize(QSizeF(PageWidth, PageHeight), QPageSize::Point, QString(), QPageSize::ExactMatch);
}

QImage OnPdfWriter(const TDraw& draw) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("page.pdf"));
    {
        QPdfWriter writer(path);
        writer.setResolution(72);
        writer.setPageSize(PageSize());
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        EXPECT_EQ(writer.width(), PageWidth);
        EXPECT_EQ(writer.height(), PageHeight);
        DrawOnDevice(&writer, draw);
    }
    return RenderPdf(path);
}

QImage OnPrinter(const TDraw& draw) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("printed.pdf"));
    {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(path);
        printer.setResolution(72);
        printer.setPageSize(PageSize());
        printer.setFullPage(true);
        printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
        EXPECT_EQ(printer.width(), PageWidth);
        EXPECT_EQ(printer.height(), PageHeight);
        DrawOnDevice(&printer, draw);
    }
    return RenderPdf(path);
}

struct TDevice {
    const char* Name;
    QImage (*Render)(const TDraw&);
};

void PrintTo(const TDevice& device, std::ostream* os) {
    *os << device.Name;
}

// Every route gives the page exactly: the fills and the pictures land on whole device pixels, and the
// PDF keeps the pictures' pixels without loss.
const TDevice Devices[] = {{"Raster", OnRaster},
                           {"Picture", OnPicture},
                           {"Svg", OnSvg},
                           {"PdfWriter", OnPdfWriter},
                           {"Printer", OnPrinter}};

// The pixels that differ from `expected`, the first few described.
std::string Differences(const QImage& actual, const QImage& expected) {
    if (actual.size() != expected.size())
        return "size " + std::to_string(actual.width()) + "x" + std::to_string(actual.height());
    int count = 0;
    std::string first;
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x) {
            const QRgb a = actual.pixel(x, y), e = expected.pixel(x, y);
            if ((a & 0xFFFFFFu) == (e & 0xFFFFFFu)) continue;
            if (++count <= 5)
                first += " (" + std::to_string(x) + "," + std::to_string(y) + ") " +
                         QColor(a).name().toStdString() + " for " + QColor(e).name().toStdString();
        }
    return count == 0 ? std::string() : std::to_string(count) + " pixels differ:" + first;
}

class GfxPrint : public ::testing::TestWithParam<std::tuple<TDevice, TWhat>> {};

TEST_P(GfxPrint, BackgroundShowsThroughTransparentPixelsAndOpaquePixelsKeepTheirColour) {
    const auto& [device, what] = GetParam();
    const QImage page = device.Render([what](HDC dc) { DrawPage(dc, what); });
    ASSERT_FALSE(page.isNull());
    EXPECT_EQ(Differences(page, ExpectedPage(what)), "");
}

INSTANTIATE_TEST_SUITE_P(Devices, GfxPrint,
                         ::testing::Combine(::testing::ValuesIn(Devices),
                                            ::testing::Values(TWhat::TransparentBitmap, TWhat::OpaqueBitmap,
                                                              TWhat::Icon, TWhat::CanvasDraw)),
                         [](const ::testing::TestParamInfo<std::tuple<TDevice, TWhat>>& info) {
                             return std::string(std::get<0>(info.param).Name) + "_" +
                                    NameOf(std::get<1>(info.param));
                         });

// --- the icon's bitmaps -----------------------------------------------------------------------

TEST(GfxIconInfo, GivesTheColourPixelsAndTheMaskOfAnIconFile) {
    TIcon icon;
    LoadIcon(icon);
    ASSERT_EQ(icon.Width(), 5);
    ASSERT_EQ(icon.Height(), 3);
    TBitmap colour, mask;
    int colourChanges = 0, maskChanges = 0;
    colour.SetOnChange([&](TObject*) { ++colourChanges; });
    mask.SetOnChange([&](TObject*) { ++maskChanges; });
    ASSERT_TRUE(GetIconInfo(icon, colour, mask));
    EXPECT_EQ(colourChanges, 1);
    EXPECT_EQ(maskChanges, 1);
    ASSERT_EQ(colour.Width(), 5);
    ASSERT_EQ(colour.Height(), 3);
    ASSERT_EQ(mask.Width(), 5);
    ASSERT_EQ(mask.Height(), 3);
    EXPECT_EQ(colour.PixelFormat(), pfDevice);
    EXPECT_EQ(mask.PixelFormat(), pf1bit);
    EXPECT_EQ(mask.Palette(), (std::vector<QRgb>{qRgb(0, 0, 0), qRgb(255, 255, 255)}));
    EXPECT_FALSE(colour.Transparent());
    EXPECT_FALSE(mask.Transparent());
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) {
            SCOPED_TRACE(std::to_string(x) + "," + std::to_string(y));
            const bool transparent = Picture[y][x] == 't';
            EXPECT_EQ(mask.Image().pixel(x, y), transparent ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
            // The colour rows as the file holds them: black under the mask.
            EXPECT_EQ(colour.Image().pixel(x, y), transparent ? qRgb(0, 0, 0) : Rgb(ColourOf(Picture[y][x])));
        }
}

TEST(GfxIconInfo, KeepsColoursUnderTheMaskAndReplacesWhatTheBitmapsHeld) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(10, 20, 30, 0)); // transparent, its colour kept
    image.setPixel(1, 0, qRgba(200, 100, 50, 255));
    TIcon icon;
    icon.SetImage(image);
    TBitmap colour(7, 7), mask(7, 7);
    colour.SetPixelFormat(pf8bit);
    colour.SetTransparent(true);
    mask.SetTransparentColor(clRed);
    ASSERT_TRUE(GetIconInfo(icon, colour, mask));
    EXPECT_EQ(colour.Width(), 2);
    EXPECT_EQ(colour.PixelFormat(), pfDevice);
    EXPECT_TRUE(colour.Palette().empty());
    EXPECT_FALSE(colour.Transparent());
    EXPECT_EQ(mask.TransparentMode(), tmAuto);
    EXPECT_EQ(colour.Image().pixel(0, 0), qRgb(10, 20, 30));
    EXPECT_EQ(colour.Image().pixel(1, 0), qRgb(200, 100, 50));
    EXPECT_EQ(mask.Image().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(mask.Image().pixel(1, 0), qRgb(0, 0, 0));
}

TEST(GfxIconInfo, EmptyIconEmptiesBothBitmaps) {
    TIcon icon;
    TBitmap colour(3, 3), mask(3, 3);
    EXPECT_FALSE(GetIconInfo(icon, colour, mask));
    EXPECT_TRUE(colour.Empty());
    EXPECT_TRUE(mask.Empty());
}

} // namespace
} // namespace vl
