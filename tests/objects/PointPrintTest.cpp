// Point objects printed: a picture goes through device-independent transfers, a transparent one
// through the mask sequences, so that what lies beneath shows through its transparent part on every
// device. The page is printed on the raster device, on a picture and on a PDF page (rendered back
// to pixels), over a background of two colours, and the three must agree pixel for pixel.
#include "PointObjSupport.h"

#include "support/PdfRender.h"

#include <QPainter>
#include <QPdfWriter>
#include <QPicture>
#include <QTemporaryDir>

#include <functional>
#include <ostream>

namespace vl::test {
namespace {

constexpr int PageWidth = 120;
constexpr int PageHeight = 80;
constexpr TColor LeftBack = TColor(RGB(0x30, 0x90, 0x60));
constexpr TColor RightBack = TColor(RGB(0xE0, 0x80, 0x20));
constexpr QRgb Red = 0xFF0000;
constexpr QRgb Blue = 0x0000FF;
constexpr QRgb Fuchsia = 0xFF00FF;

// 5 by 3 pixels: fuchsia (the top-left colour, left out with a clear brush) with a red and a blue
// pixel.
std::unique_ptr<TBitmap> KeyedBitmap() {
    auto bitmap = std::make_unique<TBitmap>(5, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) bitmap->ScanLine(y)[x] = 0xFF000000u | Fuchsia;
    bitmap->ScanLine(1)[1] = 0xFF000000u | Red;
    bitmap->ScanLine(1)[3] = 0xFF000000u | Blue;
    return bitmap;
}

using TPrintPage = std::function<void(HDC Dc)>;

class PointPrint : public PointFixture {
protected:
    void SetUp() override {
        PointFixture::SetUp();
        // Each picture pixel is printed as a block of 10 by 10 page pixels, its corner at (30, 20).
        SetOptions({goStretchPicture});
        Picture = KeyedBitmap();
        Gen().SetPicture(Picture.get());
        Gen().SetWidth(50);
        Gen().SetHeight(30);
        Gen().Pen().SetStyle(psClear);
        Obj = Tool->Place(Point(30, 20));
    }

    // The background, then the object printed through a scale setting like the box's on `Dc`.
    void PrintPage(HDC Dc) {
        TCanvas canvas;
        canvas.SetHandle(Dc);
        canvas.Brush().SetStyle(bsSolid);
        canvas.Brush().SetColor(LeftBack);
        canvas.FillRect(Rect(0, 0, PageWidth / 2, PageHeight));
        canvas.Brush().SetColor(RightBack);
        canvas.FillRect(Rect(PageWidth / 2, 0, PageWidth, PageHeight));
        TScaleSetting printing(&canvas);
        printing.Assign(&Box->ScaleSetting());
        printing.SetCanvas(&canvas);
        printing.SetMap(Dc);
        {
            TScopedValue<TScaleSetting*> scale(ActScaleSet, &printing);
            Obj->Print();
        }
        canvas.SetHandle(nullptr);
    }

    QImage OnRaster() {
        QImage page(PageWidth, PageHeight, QImage::Format_RGB32);
        page.fill(Qt::white);
        HDC dc = CreateImageDC(&page);
        PrintPage(dc);
        DeleteDC(dc);
        return page;
    }
    QImage OnPicture() {
        QPicture picture;
        HDC dc = CreatePaintDeviceDC(&picture);
        PrintPage(dc);
        DeleteDC(dc);
        QImage page(PageWidth, PageHeight, QImage::Format_RGB32);
        page.fill(Qt::white);
        QPainter painter(&page);
        painter.drawPicture(0, 0, picture);
        return page;
    }
    QImage OnPdf() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("printed.pdf"));
        {
            QPdfWriter writer(path);
            writer.setResolution(72);
            writer.setPageSize(
                QPageSize(QSizeF(PageWidth, PageHeight), QPageSize::Point, QString(), QPageSize::ExactMatch));
            writer.setPageMargins(QMarginsF(0, 0, 0, 0));
            HDC dc = CreatePaintDeviceDC(&writer);
            PrintPage(dc);
            DeleteDC(dc);
        }
        return RenderPdf(path, PageWidth, PageHeight);
    }

    // Checks what every device must show: the background through the transparent part, the opaque
    // pixels in their colours.
    static void ExpectTransparentPrint(const QImage& Page) {
        ASSERT_EQ(Page.size(), QSize(PageWidth, PageHeight));
        EXPECT_EQ(Page.pixel(35, 25) & 0xFFFFFF, ColorToRGBValue(LeftBack)) << "transparent, over the left";
        EXPECT_EQ(Page.pixel(75, 25) & 0xFFFFFF, ColorToRGBValue(RightBack)) << "transparent, over the right";
        EXPECT_EQ(Page.pixel(45, 35) & 0xFFFFFF, Red);
        EXPECT_EQ(Page.pixel(65, 35) & 0xFFFFFF, Blue);
        EXPECT_EQ(CountColour(Page, Fuchsia), 0);
    }
    // 0xRRGGBB of a colour given as 0x00BBGGRR.
    static QRgb ColorToRGBValue(TColor C) {
        const auto v = static_cast<std::uint32_t>(C);
        return ((v & 0xFF) << 16) | (v & 0xFF00) | ((v >> 16) & 0xFF);
    }

    std::unique_ptr<TBitmap> Picture;
    TPointObj* Obj = nullptr;
};

TEST_F(PointPrint, TransparentBitmapShowsTheBackgroundOnTheRasterDevice) {
    Gen().Brush().SetStyle(bsClear);
    ExpectTransparentPrint(OnRaster());
}

TEST_F(PointPrint, TransparentBitmapShowsTheBackgroundInAPicture) {
    Gen().Brush().SetStyle(bsClear);
    const QImage raster = OnRaster();
    const QImage picture = OnPicture();
    ExpectTransparentPrint(picture);
    EXPECT_EQ(DifferingPixels(picture, raster), 0);
}

TEST_F(PointPrint, TransparentBitmapShowsTheBackgroundOnAPdfPage) {
    Gen().Brush().SetStyle(bsClear);
    const QImage raster = OnRaster();
    const QImage pdf = OnPdf();
    ExpectTransparentPrint(pdf);
    EXPECT_EQ(DifferingPixels(pdf, raster), 0);
}

TEST_F(PointPrint, OpaqueBitmapCoversTheBackground) {
    const QImage raster = OnRaster();
    EXPECT_EQ(raster.pixel(35, 25) & 0xFFFFFF, Fuchsia);
    EXPECT_EQ(CountColour(raster, Fuchsia), 50 * 30 - 2 * 100);
    EXPECT_EQ(DifferingPixels(OnPdf(), raster), 0);
}

TEST_F(PointPrint, FrameIsPrintedOverThePicture) {
    Gen().Brush().SetStyle(bsClear);
    Gen().Pen().SetStyle(psSolid);
    Gen().Pen().SetColor(clBlack);
    const QImage raster = OnRaster();
    EXPECT_EQ(raster.pixel(30, 20) & 0xFFFFFF, 0x000000u);
    EXPECT_EQ(raster.pixel(79, 49) & 0xFFFFFF, 0x000000u);
    EXPECT_EQ(raster.pixel(35, 25) & 0xFFFFFF, ColorToRGBValue(LeftBack));
    EXPECT_EQ(DifferingPixels(OnPdf(), raster), 0);
}

// The same picture as an icon: fully transparent where the bitmap is fuchsia.
void UseIconPicture(TCustomGenerator& Gen) {
    QImage image(5, 3, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    image.setPixel(1, 1, 0xFF000000u | Red);
    image.setPixel(3, 1, 0xFF000000u | Blue);
    TIcon icon;
    icon.SetImage(image);
    Gen.SetPicture(&icon);
    Gen.SetWidth(50);
    Gen.SetHeight(30);
}

TEST_F(PointPrint, TransparentIconShowsTheBackgroundOnEveryDevice) {
    UseIconPicture(Gen());
    Gen().Brush().SetStyle(bsClear);
    const QImage raster = OnRaster();
    ExpectTransparentPrint(raster);
    EXPECT_EQ(DifferingPixels(OnPicture(), raster), 0);
    EXPECT_EQ(DifferingPixels(OnPdf(), raster), 0);
}

TEST_F(PointPrint, IconWithASolidBrushPrintsItsColourBitmap) {
    UseIconPicture(Gen());
    const QImage raster = OnRaster();
    // The colour bitmap holds black under the transparent part.
    EXPECT_EQ(raster.pixel(35, 25) & 0xFFFFFF, 0x000000u);
    EXPECT_EQ(raster.pixel(45, 35) & 0xFFFFFF, Red);
    EXPECT_EQ(DifferingPixels(OnPdf(), raster), 0);
}

TEST_F(PointPrint, HostDrawingReplacesThePrintedPicture) {
    Gen().Pen().SetStyle(psSolid);
    Gen().Pen().SetColor(clBlack);
    int drawn = 0;
    Tool->OnObjectDraw = [&](TvlObject*) {
        ++drawn;
        ActScaleSet->Canvas()->Rectangle(0, 0, 10, 10);
    };
    const QImage raster = OnRaster();
    EXPECT_EQ(drawn, 1);
    EXPECT_EQ(CountColour(raster, Red), 0) << "the picture is not printed";
    EXPECT_EQ(raster.pixel(30, 20) & 0xFFFFFF, 0x000000u) << "the host's frame in the tool's pen";
}

TEST_F(PointPrint, InvisibleObjectPrintsNothing) {
    Obj->SetVisible(false);
    const QImage raster = OnRaster();
    EXPECT_EQ(raster.pixel(45, 35) & 0xFFFFFF, ColorToRGBValue(LeftBack));
}

} // namespace
} // namespace vl::test
