// TCanvas over the raster device: lazy selection, exact pixels of its operations, graphics drawn on it.
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"

#include <gtest/gtest.h>

#include <QImage>

#include <string>
#include <vector>

namespace vl {
namespace {

// A row of a bitmap as text: '.' white, '#' black, 'r' red, 'g' lime, 'b' blue, '?' anything else.
std::string Row(const TBitmap& bmp, int y) {
    std::string s;
    for (int x = 0; x < bmp.Width(); ++x) {
        const QRgb c = bmp.Image().pixel(x, y) | 0xFF000000u;
        s += c == 0xFFFFFFFFu   ? '.'
             : c == 0xFF000000u ? '#'
             : c == 0xFFFF0000u ? 'r'
             : c == 0xFF00FF00u ? 'g'
             : c == 0xFF0000FFu ? 'b'
                                : '?';
    }
    return s;
}

std::vector<std::string> Rows(const TBitmap& bmp) {
    std::vector<std::string> rows;
    for (int y = 0; y < bmp.Height(); ++y) rows.push_back(Row(bmp, y));
    return rows;
}

using Picture = std::vector<std::string>;

TEST(GfxCanvas, CanvasWithoutContextRaises) {
    TCanvas canvas;
    EXPECT_THROW(canvas.LineTo(1, 1), EInvalidOperation);
    EXPECT_THROW(canvas.Handle(), EInvalidOperation);
}

TEST(GfxCanvas, ReadingHandleSelectsPenBrushFontAndRasterMode) {
    TBitmap bmp(4, 4);
    TCanvas& c = bmp.Canvas();
    c.Pen().SetMode(pmNotXor);
    HDC dc = c.Handle();
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), c.Pen().Handle());
    EXPECT_EQ(GetCurrentObject(dc, OBJ_BRUSH), c.Brush().Handle());
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), c.Font().Handle());
    EXPECT_EQ(GetROP2(dc), R2_NOTXORPEN);
}

TEST(GfxCanvas, PenChangeIsSelectedAtNextUse) {
    TBitmap bmp(6, 3);
    TCanvas& c = bmp.Canvas();
    HDC dc = c.Handle();
    HGDIOBJ before = GetCurrentObject(dc, OBJ_PEN);
    c.Pen().SetColor(clRed);
    // Nothing is selected until the canvas is used.
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), before);
    c.MoveTo(0, 1);
    c.LineTo(3, 1);
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), c.Pen().Handle());
    LOGPEN lp;
    ASSERT_TRUE(GetLogPen(static_cast<HPEN>(GetCurrentObject(dc, OBJ_PEN)), &lp));
    EXPECT_EQ(lp.lopnColor, RGB(255, 0, 0));
    c.Pen().SetColor(clBlue);
    c.LineTo(6, 1);
    EXPECT_EQ(Row(bmp, 1), "rrrbbb");
    c.Brush().SetColor(clLime);
    EXPECT_EQ(GetBkColor(c.Handle()), RGB(0, 255, 0));
}

TEST(GfxCanvas, SetHandleDrawsOnOutsideContextAndGivesItBack) {
    QImage image(5, 2, QImage::Format_RGB32);
    image.fill(0xFFFFFFFFu);
    HDC dc = CreateImageDC(&image);
    {
        TCanvas canvas;
        canvas.SetHandle(dc);
        EXPECT_EQ(canvas.HandleAllocated(), dc);
        canvas.Pen().SetColor(clRed);
        canvas.MoveTo(0, 0);
        canvas.LineTo(5, 0);
        canvas.SetHandle(nullptr);
        // The canvas's pen is no longer in the context.
        EXPECT_NE(GetCurrentObject(dc, OBJ_PEN), canvas.Pen().Handle());
    }
    DeleteDC(dc);
    EXPECT_EQ(image.pixel(0, 0), 0xFFFF0000u);
    EXPECT_EQ(image.pixel(4, 0), 0xFFFF0000u);
    EXPECT_EQ(image.pixel(0, 1), 0xFFFFFFFFu);
}

TEST(GfxCanvas, RectangleExcludesRightAndBottomEdges) {
    TBitmap bmp(7, 6);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clRed);
    c.Rectangle(1, 1, 6, 5);
    EXPECT_EQ(Rows(bmp), (Picture{".......", ".#####.", ".#rrr#.", ".#rrr#.", ".#####.", "......."}));
}

TEST(GfxCanvas, ClearBrushRectangleDrawsOutlineOnly) {
    TBitmap bmp(5, 4);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clBlue);
    c.FillRect(Rect(0, 0, 5, 4));
    c.Brush().SetStyle(bsClear);
    c.Pen().SetColor(clRed);
    c.Rectangle(0, 0, 4, 3);
    EXPECT_EQ(Rows(bmp), (Picture{"rrrrb", "rbbrb", "rrrrb", "bbbbb"}));
}

TEST(GfxCanvas, FillRectUsesBrushOnly) {
    TBitmap bmp(5, 4);
    TCanvas& c = bmp.Canvas();
    c.Pen().SetColor(clRed);
    c.Brush().SetColor(clLime);
    c.FillRect(Rect(1, 1, 4, 3));
    EXPECT_EQ(Rows(bmp), (Picture{".....", ".ggg.", ".ggg.", "....."}));
}

TEST(GfxCanvas, FrameRectDrawsOnePixelFrameInBrushColour) {
    TBitmap bmp(6, 5);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clBlue);
    c.FrameRect(Rect(1, 1, 5, 5));
    EXPECT_EQ(Rows(bmp), (Picture{"......", ".bbbb.", ".b..b.", ".b..b.", ".bbbb."}));
}

TEST(GfxCanvas, PolylineDrawsJointOnceAndLeavesLastPointOut) {
    TBitmap bmp(6, 4);
    TCanvas& c = bmp.Canvas();
    const TPoint pts[] = {{0, 0}, {4, 0}, {4, 3}};
    c.Polyline(pts);
    EXPECT_EQ(Rows(bmp), (Picture{"#####.", "....#.", "....#.", "......"}));
}

TEST(GfxCanvas, LineToMovesPenPosition) {
    TBitmap bmp(5, 2);
    TCanvas& c = bmp.Canvas();
    c.MoveTo(1, 0);
    EXPECT_EQ(c.PenPos(), Point(1, 0));
    c.LineTo(4, 0);
    EXPECT_EQ(c.PenPos(), Point(4, 0));
    c.SetPenPos(Point(0, 1));
    c.LineTo(2, 1);
    EXPECT_EQ(Rows(bmp), (Picture{".###.", "##..."}));
}

TEST(GfxCanvas, PolygonFillsWithBrushAndOutlinesWithPen) {
    TBitmap bmp(6, 6);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clLime);
    c.Pen().SetStyle(psClear);
    const TPoint pts[] = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
    c.Polygon(pts);
    // Without a pen the polygon's interior in the alternate fill is four by four pixels.
    int green = 0;
    for (int y = 0; y < 6; ++y)
        for (char ch : Row(bmp, y)) green += ch == 'g';
    EXPECT_EQ(green, 16);
}

TEST(GfxCanvas, EllipseIsSymmetricAndExcludesRightAndBottom) {
    TBitmap bmp(9, 9);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clRed);
    c.Ellipse(0, 0, 8, 8);
    const Picture rows = Rows(bmp);
    EXPECT_EQ(rows[8], ".........");
    for (const std::string& row : rows) EXPECT_EQ(row[8], '.');
    EXPECT_EQ(rows[4][4], 'r');
    EXPECT_EQ(rows[0][0], '.');
    EXPECT_EQ(rows[0][4], '#');
    EXPECT_EQ(rows[4][0], '#');
    // Mirror symmetry about the centre of the 8 x 8 box.
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(rows[y][x], rows[y][7 - x]) << x << "," << y;
            EXPECT_EQ(rows[y][x], rows[7 - y][x]) << x << "," << y;
        }
}

TEST(GfxCanvas, RoundRectStaysInsideItsBox) {
    TBitmap bmp(10, 8);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clBlue);
    c.RoundRect(1, 1, 9, 7, 4, 4);
    const Picture rows = Rows(bmp);
    EXPECT_EQ(rows[0], "..........");
    EXPECT_EQ(rows[7], "..........");
    EXPECT_EQ(rows[4][1], '#');
    EXPECT_EQ(rows[4][8], '#');
    EXPECT_EQ(rows[4][4], 'b');
    EXPECT_EQ(rows[1][1], '.'); // the corner is rounded off
}

TEST(GfxCanvas, NotXorPenTwiceRestoresEveryPixel) {
    TBitmap bmp(8, 8);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clLime);
    c.FillRect(Rect(2, 2, 6, 6));
    const QImage before = bmp.Image().copy();
    c.Pen().SetMode(pmNotXor);
    c.Brush().SetStyle(bsClear);
    for (int pass = 0; pass < 2; ++pass) {
        c.MoveTo(0, 0);
        c.LineTo(7, 7);
        c.LineTo(0, 7);
        c.Rectangle(1, 1, 7, 5);
    }
    EXPECT_EQ(bmp.Image(), before);
}

TEST(GfxCanvas, PixelsReadAndWrite) {
    TBitmap bmp(3, 3);
    TCanvas& c = bmp.Canvas();
    c.SetPixels(1, 2, clRed);
    c.SetPixels(0, 0, clBtnShadow);
    EXPECT_EQ(c.Pixels(1, 2), clRed);
    EXPECT_EQ(c.Pixels(0, 0), TColor(0x808080));
    EXPECT_EQ(c.Pixels(2, 2), clWhite);
    EXPECT_EQ(bmp.Image().pixel(1, 2), 0xFFFF0000u);
}

TEST(GfxCanvas, ClipRectIsInLogicalUnitsUnderMapping) {
    TBitmap bmp(20, 10);
    TCanvas& c = bmp.Canvas();
    EXPECT_EQ(c.ClipRect(), Rect(0, 0, 20, 10));
    HDC dc = c.Handle();
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 10, 10);
    SetViewportExtEx(dc, 1, 1);
    EXPECT_EQ(c.ClipRect(), Rect(0, 0, 200, 100));
    SetWindowOrgEx(dc, 50, -30);
    EXPECT_EQ(c.ClipRect(), Rect(50, -30, 250, 70));
}

TEST(GfxCanvas, CoordinatesAreLogicalUnits) {
    TBitmap bmp(6, 3);
    TCanvas& c = bmp.Canvas();
    HDC dc = c.Handle();
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 10, 10);
    SetViewportExtEx(dc, 1, 1);
    c.Brush().SetColor(clRed);
    c.FillRect(Rect(10, 10, 40, 20));
    EXPECT_EQ(Rows(bmp), (Picture{"......", ".rrr..", "......"}));
}

TEST(GfxCanvas, TextOutMovesPenToRightEndAndMeasures) {
    TBitmap bmp(80, 20);
    TCanvas& c = bmp.Canvas();
    c.Font().SetColor(clBlack);
    const TSize extent = c.TextExtent(QStringLiteral("Hello"));
    EXPECT_GT(extent.cx, 0);
    EXPECT_GT(extent.cy, 0);
    EXPECT_EQ(c.TextWidth(QStringLiteral("Hello")), extent.cx);
    EXPECT_EQ(c.TextHeight(QStringLiteral("Hello")), extent.cy);
    TSize direct;
    GetTextExtentPoint32W(c.Handle(), u"Hello", 5, &direct);
    EXPECT_EQ(direct, extent);
    c.Brush().SetStyle(bsClear);
    c.TextOut(2, 1, QStringLiteral("Hello"));
    EXPECT_EQ(c.PenPos(), Point(2 + extent.cx, 1));
    int dark = 0;
    for (int y = 0; y < bmp.Height(); ++y)
        for (int x = 0; x < bmp.Width(); ++x) dark += qGray(bmp.Image().pixel(x, y)) < 128;
    EXPECT_GT(dark, 5);
    // Nothing lies left of or above the reference point.
    for (int y = 0; y < bmp.Height(); ++y) EXPECT_EQ(bmp.Image().pixel(0, y), 0xFFFFFFFFu);
    for (int x = 0; x < bmp.Width(); ++x) EXPECT_EQ(bmp.Image().pixel(x, 0), 0xFFFFFFFFu);
}

TEST(GfxCanvas, TextRectFillsAndClipsToRect) {
    TBitmap bmp(60, 20);
    TCanvas& c = bmp.Canvas();
    c.Brush().SetColor(clLime);
    c.TextRect(Rect(10, 2, 20, 12), 10, 2, QStringLiteral("WWWWWW"));
    EXPECT_EQ(bmp.Image().pixel(9, 5), 0xFFFFFFFFu);
    EXPECT_EQ(bmp.Image().pixel(25, 5), 0xFFFFFFFFu);
    EXPECT_EQ(bmp.Image().pixel(19, 11) | 0xFF000000u, 0xFF00FF00u);
}

// A bitmap of one row "r g b".
void RgbBitmap(TBitmap& bmp) {
    bmp.SetSize(3, 1);
    bmp.ScanLine(0)[0] = 0xFFFF0000u;
    bmp.ScanLine(0)[1] = 0xFF00FF00u;
    bmp.ScanLine(0)[2] = 0xFF0000FFu;
}

TEST(GfxCanvas, DrawPlacesBitmapAtItsSize) {
    TBitmap src;
    RgbBitmap(src);
    TBitmap dst(6, 2);
    dst.Canvas().Draw(2, 1, &src);
    EXPECT_EQ(Rows(dst), (Picture{"......", "..rgb."}));
}

TEST(GfxCanvas, StretchDrawScalesIntoRect) {
    TBitmap src;
    RgbBitmap(src);
    TBitmap dst(7, 2);
    dst.Canvas().StretchDraw(Rect(0, 0, 6, 2), &src);
    EXPECT_EQ(Rows(dst), (Picture{"rrggbb.", "rrggbb."}));
}

TEST(GfxCanvas, StretchDrawMirrorsReversedRect) {
    TBitmap src;
    RgbBitmap(src);
    TBitmap dst(5, 1);
    dst.Canvas().StretchDraw(Rect(4, 0, 1, 1), &src);
    EXPECT_EQ(Row(dst, 0), ".bgr.");
}

TEST(GfxCanvas, StretchDrawMirrorsUnderFlippedMapping) {
    TBitmap src;
    RgbBitmap(src);
    TBitmap dst(5, 1);
    TCanvas& c = dst.Canvas();
    HDC dc = c.Handle();
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, 1, 1);
    SetViewportExtEx(dc, -1, 1);
    SetViewportOrgEx(dc, 4, 0);
    // Logical 0..3 is device 4..1: the device rectangle is reversed.
    c.StretchDraw(Rect(0, 0, 3, 1), &src);
    EXPECT_EQ(Row(dst, 0), ".bgr.");
}

TEST(GfxCanvas, TransparentDrawLeavesTransparentPixelsOfDestination) {
    TBitmap src(3, 2);
    src.Canvas().Brush().SetColor(clRed);
    src.Canvas().FillRect(Rect(0, 0, 3, 2));
    src.Canvas().SetPixels(0, 1, clLime); // bottom left: the transparent colour
    src.Canvas().SetPixels(2, 0, clLime);
    src.SetTransparent(true);
    TBitmap dst(4, 2);
    dst.Canvas().Brush().SetColor(clBlue);
    dst.Canvas().FillRect(Rect(0, 0, 4, 2));
    dst.Canvas().Draw(1, 0, &src);
    EXPECT_EQ(Rows(dst), (Picture{"brrb", "bbrr"}));
    src.SetTransparent(false);
    dst.Canvas().Draw(1, 0, &src);
    EXPECT_EQ(Rows(dst), (Picture{"brrg", "bgrr"}));
}

TEST(GfxCanvas, TransparentIconDrawLeavesMaskedPixels) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(255, 0, 0, 255));
    image.setPixel(1, 0, qRgba(0, 255, 0, 0));
    TIcon icon;
    icon.SetImage(image);
    TBitmap dst(6, 2);
    dst.Canvas().Brush().SetColor(clBlue);
    dst.Canvas().FillRect(Rect(0, 0, 6, 2));
    dst.Canvas().Draw(0, 0, &icon);
    // Stretched to three times its width, the masked half still keeps the destination.
    dst.Canvas().StretchDraw(Rect(0, 1, 6, 2), &icon);
    EXPECT_EQ(Rows(dst), (Picture{"rbbbbb", "rrrbbb"}));
}

TEST(GfxCanvas, StretchDrawOfTransparentBitmapLeavesTransparentPixelsAtAnyScale) {
    // Red with lime on the right; the bottom-left pixel is red, so lime is set as a fixed colour.
    TBitmap src(2, 1);
    src.ScanLine(0)[0] = 0xFFFF0000u;
    src.ScanLine(0)[1] = 0xFF00FF00u;
    src.SetTransparentColor(clLime);
    src.SetTransparent(true);
    TBitmap dst(7, 2);
    TCanvas& c = dst.Canvas();
    c.Brush().SetColor(clBlue);
    c.FillRect(Rect(0, 0, 7, 2));
    c.StretchDraw(Rect(0, 0, 4, 2), &src);
    // Mirrored by a reversed rectangle: the red half lands on the right.
    c.StretchDraw(Rect(7, 0, 5, 1), &src);
    EXPECT_EQ(Rows(dst), (Picture{"rrbbbbr", "rrbbbbb"}));
    EXPECT_EQ(c.Pixels(2, 1), clBlue);
    EXPECT_EQ(c.Pixels(1, 1), clRed);
    // The mask of the same bitmap, drawn opaque, is white where lime was.
    TBitmap mask;
    mask.Assign(&src);
    mask.Mask(src.TransparentColor());
    mask.SetTransparent(false);
    c.Draw(0, 1, &mask);
    EXPECT_EQ(Row(dst, 1), "#.bbbbb");
}

TEST(GfxCanvas, TransparentDrawWithAutomaticColourFollowsTheBottomLeftPixel) {
    TBitmap src(2, 2);
    src.ScanLine(0)[0] = 0xFFFF0000u;
    src.ScanLine(0)[1] = 0xFF0000FFu;
    src.ScanLine(1)[0] = 0xFF0000FFu; // bottom left: blue is left out
    src.ScanLine(1)[1] = 0xFFFF0000u;
    src.SetTransparent(true);
    TBitmap dst(2, 2);
    dst.Canvas().Brush().SetColor(clLime);
    dst.Canvas().FillRect(Rect(0, 0, 2, 2));
    dst.Canvas().Draw(0, 0, &src);
    EXPECT_EQ(Rows(dst), (Picture{"rg", "gr"}));
}

TEST(GfxCanvas, LockAndUnlockOnlyCountNesting) {
    TBitmap bmp(2, 2);
    TCanvas& c = bmp.Canvas();
    EXPECT_EQ(c.LockCount(), 0);
    c.Lock();
    c.Lock();
    EXPECT_EQ(c.LockCount(), 2);
    // Drawing while locked is drawing as ever.
    c.SetPixels(0, 0, clRed);
    EXPECT_EQ(c.Pixels(0, 0), clRed);
    c.Unlock();
    EXPECT_EQ(c.LockCount(), 1);
    c.Unlock();
    EXPECT_EQ(c.LockCount(), 0);
}

#if defined(VELLORUM_ASSERTS)
TEST(GfxCanvasDeathTest, UnlockWithoutLockIsAnInvariantViolation) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TCanvas canvas;
    EXPECT_DEATH(canvas.Unlock(), "invariant failed: FLockCount > 0");
}
#else
TEST(GfxCanvas, UnlockWithoutLockLeavesTheCountAtZero) {
    TCanvas canvas;
    canvas.Unlock();
    EXPECT_EQ(canvas.LockCount(), 0);
    canvas.Lock();
    EXPECT_EQ(canvas.LockCount(), 1);
}
#endif

TEST(GfxCanvas, CopyRectCopiesWithCopyMode) {
    TBitmap src;
    RgbBitmap(src);
    TBitmap dst(4, 1);
    dst.Canvas().CopyRect(Rect(1, 0, 4, 1), src.Canvas(), Rect(0, 0, 3, 1));
    EXPECT_EQ(Row(dst, 0), ".rgb");
    dst.Canvas().SetCopyMode(cmDstInvert);
    dst.Canvas().CopyRect(Rect(0, 0, 2, 1), src.Canvas(), Rect(0, 0, 2, 1));
    EXPECT_EQ(dst.Image().pixel(0, 0) | 0xFF000000u, 0xFF000000u);
    EXPECT_EQ(dst.Image().pixel(1, 0) | 0xFF000000u, 0xFF00FFFFu);
}

TEST(GfxCanvas, BitmapCanvasFollowsResize) {
    TBitmap bmp(2, 2);
    bmp.Canvas().Brush().SetColor(clRed);
    bmp.Canvas().FillRect(Rect(0, 0, 2, 2));
    bmp.SetSize(4, 2);
    bmp.Canvas().FillRect(Rect(3, 0, 4, 2));
    EXPECT_EQ(Rows(bmp), (Picture{"rr.r", "rr.r"}));
    int changes = 0;
    bmp.SetOnChange([&](TObject*) { ++changes; });
    bmp.Canvas().SetPixels(2, 0, clBlue);
    EXPECT_EQ(changes, 1);
}

TEST(GfxCanvas, EmptyBitmapCanvasDrawsNothingWithoutError) {
    TBitmap bmp;
    EXPECT_NO_THROW(bmp.Canvas().Rectangle(0, 0, 5, 5));
    EXPECT_TRUE(bmp.Empty());
}

TEST(GfxCanvas, CanvasOnChangeAroundDrawing) {
    TBitmap bmp(3, 3);
    TCanvas& c = bmp.Canvas();
    std::string order;
    c.SetOnChanging([&](TObject*) { order += '<'; });
    c.SetOnChange([&](TObject*) { order += '>'; });
    c.Rectangle(0, 0, 2, 2);
    c.LineTo(1, 1);
    EXPECT_EQ(order, "<><>");
}

} // namespace
} // namespace vl
