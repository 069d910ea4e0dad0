// The paint-engine device: the same mapping and geometry reach Qt's vector engines. Three routes
// verify the output: the PDF's own page content stream (inflated and searched for the rectangle in
// device pixels), the SVG generator's element coordinates, and a picture replayed onto an image,
// whose pixels show where the shapes landed.

#include "platform/gdi/Gdi.h"

#include "GdiTestSupport.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QPicture>
#include <QRegularExpression>
#include <QSvgGenerator>

#include <gtest/gtest.h>

namespace vl {
namespace {

using test::TSurface;

// The inflated content streams of a PDF file.
QByteArray PdfContent(const QByteArray& pdf) {
    QByteArray all;
    qsizetype from = 0;
    while (true) {
        const qsizetype start = pdf.indexOf("stream\n", from);
        if (start < 0) break;
        const qsizetype end = pdf.indexOf("endstream", start);
        if (end < 0) break;
        QByteArray data = pdf.mid(start + 7, end - start - 7);
        QByteArray sized(4, 0);
        const quint32 hint = 1u << 20;
        sized[0] = char(hint >> 24);
        sized[1] = char(hint >> 16);
        sized[2] = char(hint >> 8);
        sized[3] = char(hint);
        const QByteArray inflated = qUncompress(sized + data);
        all += inflated.isEmpty() ? data : inflated;
        from = end + 9;
    }
    return all;
}

void SetScale3(HDC dc) {
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 10, 10);
    SetViewportExtEx(dc, 30, 30);
}

TEST(GdiPdf, PdfWriterAnswersItsRealResolutionAndSize) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(300);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    HDC dc = CreatePaintDeviceDC(&writer);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 300);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSY), 300);
    EXPECT_EQ(GetDeviceCaps(dc, HORZRES), writer.width());
    EXPECT_EQ(GetDeviceCaps(dc, VERTRES), writer.height());
    EXPECT_NEAR(GetDeviceCaps(dc, HORZRES), 2480, 2); // 210 mm at 300 dpi
    EXPECT_EQ(GetDeviceCaps(dc, HORZSIZE), 210);
    EXPECT_EQ(GetDeviceCaps(dc, VERTSIZE), 297);
    EXPECT_EQ(GetDeviceCaps(dc, TECHNOLOGY), DT_RASPRINTER);
    DeleteDC(dc);
}

TEST(GdiPdf, PdfPageHoldsTheRectangleWhereTheMappingPutsIt) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(300);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        HDC dc = CreatePaintDeviceDC(&writer);
        SetScale3(dc);
        Rectangle(dc, 10, 20, 60, 50); // device (30, 60) - (180, 150)
        SelectObject(dc, GetStockObject(NULL_PEN));
        SelectObject(dc, GetStockObject(BLACK_BRUSH));
        Rectangle(dc, 100, 100, 110, 120); // device (300, 300) - (330, 360), one pixel less
        DeleteDC(dc);
    }
    const QByteArray pdf = buffer.data();
    ASSERT_TRUE(pdf.startsWith("%PDF"));
    EXPECT_TRUE(pdf.contains("/MediaBox [0 0 595"));
    const QByteArray content = PdfContent(pdf);
    // Device pixels are 1/300 inch: the page's matrix scales them by 72 / 300.
    EXPECT_TRUE(content.contains("0.240000000 0 0 -0.240000000")) << content.constData();
    // The outline runs through the centres of the border pixels; the fill without pen ends one
    // pixel before the right and bottom edge.
    EXPECT_TRUE(content.contains("30.5000000 60.5000000 149 89 re")) << content.constData();
    EXPECT_TRUE(content.contains("300 300 29 59 re")) << content.constData();
}

TEST(GdiPdf, SvgElementsCarryTheMappedDeviceCoordinates) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(QSize(200, 100));
    generator.setViewBox(QRect(0, 0, 200, 100));
    generator.setResolution(96);
    HDC dc = CreatePaintDeviceDC(&generator);
    EXPECT_EQ(GetDeviceCaps(dc, HORZRES), 200);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 96);
    EXPECT_EQ(GetDeviceCaps(dc, HORZSIZE), 53);
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 10, 10);
    SetViewportExtEx(dc, 20, -20);
    SetViewportOrgEx(dc, 0, 100);
    SelectObject(dc, GetStockObject(NULL_PEN));
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    Rectangle(dc, 10, 10, 30, 20); // device x 20..60, y 80..60
    SelectObject(dc, GetStockObject(BLACK_PEN));
    MoveToEx(dc, 0, 0);
    LineTo(dc, 50, 25); // device (0, 100) - (100, 50)
    DeleteDC(dc);
    const QString svg = QString::fromUtf8(buffer.data());
    EXPECT_TRUE(svg.contains("<rect x=\"20\" y=\"60\" width=\"39\" height=\"19\"/>")) << svg.toStdString();
    EXPECT_TRUE(svg.contains("points=\"0.5,100.5 100.5,50.5 \"")) << svg.toStdString();
}

TEST(GdiPdf, PictureReplayShowsTheShapesWhereTheMappingPutsThem) {
    QPicture picture;
    HDC dc = CreatePaintDeviceDC(&picture);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(GetDeviceCaps(dc, TECHNOLOGY), DT_METAFILE);
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 1, 1);
    SetViewportExtEx(dc, 2, -2);
    SetViewportOrgEx(dc, 0, 40);
    SelectObject(dc, GetStockObject(NULL_PEN));
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    Rectangle(dc, 2, 2, 12, 7); // device x 4..24, y 26..36: filled [4, 23) x [26, 35)
    // Raster modes fall back to copy: an XOR pen draws plainly.
    HPEN pen = CreatePen(PS_SOLID, 1, test::Red);
    SelectObject(dc, pen);
    SetROP2(dc, R2_XORPEN);
    MoveToEx(dc, 15, 10);
    LineTo(dc, 25, 10); // device row 20, x 30..50
    DeleteDC(dc);
    DeleteObject(pen);

    TSurface s(60, 40);
    {
        QPainter painter(&s.Image());
        painter.drawPicture(0, 0, picture);
    }
    EXPECT_EQ(s.Pixel(4, 26), 0u);
    EXPECT_EQ(s.Pixel(22, 34), 0u);
    EXPECT_EQ(s.Pixel(14, 30), 0u);
    EXPECT_EQ(s.Pixel(3, 30), test::Grey);
    EXPECT_EQ(s.Pixel(24, 30), test::Grey);
    EXPECT_EQ(s.Pixel(14, 25), test::Grey);
    EXPECT_EQ(s.Pixel(14, 36), test::Grey);
    EXPECT_EQ(s.Pixel(40, 20), test::Red);
}

TEST(GdiPdf, PaintDeviceContextUsesAnActivePainter) {
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    HDC dc = CreatePaintDeviceDC(&image);
    ASSERT_NE(dc, nullptr);
    SelectObject(dc, GetStockObject(NULL_PEN));
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    Rectangle(dc, 2, 2, 8, 8);
    DeleteDC(dc);
    EXPECT_TRUE(painter.isActive());
    painter.end();
    EXPECT_EQ(image.pixel(2, 2) & 0xFFFFFFu, 0u);
    EXPECT_EQ(image.pixel(6, 6) & 0xFFFFFFu, 0u);
    EXPECT_EQ(image.pixel(7, 7) & 0xFFFFFFu, 0xFFFFFFu);
}

TEST(GdiPdf, ClipAndTextReachThePaintDevice) {
    QPicture picture;
    HDC dc = CreatePaintDeviceDC(&picture);
    IntersectClipRect(dc, 0, 0, 10, 40);
    SelectObject(dc, GetStockObject(NULL_PEN));
    SelectObject(dc, GetStockObject(BLACK_BRUSH));
    Rectangle(dc, 0, 0, 40, 10);
    SetBkColor(dc, test::Red);
    TextOutW(dc, 0, 15, u"MMMM", 4);
    DeleteDC(dc);
    TSurface s(60, 40);
    {
        QPainter painter(&s.Image());
        painter.drawPicture(0, 0, picture);
    }
    EXPECT_EQ(s.Pixel(5, 5), 0u);
    EXPECT_EQ(s.Pixel(15, 5), test::Grey);
    EXPECT_EQ(s.Pixel(1, 16), test::Red);
    EXPECT_EQ(s.InkBox().Right, 10);
}

} // namespace
} // namespace vl
