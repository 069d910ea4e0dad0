// The retained surface: paint of the invalid area, live drawing between paints, scrolling, update
// and the device-pixel ratio.

#include "WinTestSupport.h"
#include "support/InputHelpers.h"

#include "platform/window/Surface.h"

namespace vl::test {
namespace {

constexpr QRgb White = 0xFFFFFF;
constexpr QRgb Black = 0x000000;

using WinSurface = WindowFixture;

TEST_F(WinSurface, FirstPaintErasesWithColourAndCoversTheClientArea) {
    EXPECT_EQ(Control->Paints, 1);
    ASSERT_EQ(Control->PaintClips.size(), 1u);
    EXPECT_EQ(Control->PaintClips[0], Rect(0, 0, 200, 150));
    EXPECT_EQ(Control->Surface().Image().size(), QSize(200, 150));
    EXPECT_EQ(SurfacePixel(0, 0), White);
    EXPECT_EQ(ScreenPixel(199, 149), White);
    EXPECT_TRUE(Control->Surface().Invalid().isEmpty());
    EXPECT_TRUE(Control->Surface().Blit().isEmpty());
}

TEST_F(WinSurface, LiveInvertingDrawingReachesTheScreenWithoutAPaint) {
    TCanvas& canvas = Control->Canvas();
    canvas.Pen().SetMode(pmNot);
    canvas.MoveTo(20, 40);
    canvas.LineTo(120, 40);
    EXPECT_EQ(SurfacePixel(50, 40), Black);
    EXPECT_TRUE(Control->Surface().Blit().contains(QPoint(50, 40)));
    Settle();
    EXPECT_EQ(Control->Paints, 1);
    EXPECT_EQ(ScreenPixel(50, 40), Black);
    EXPECT_EQ(ScreenPixel(50, 41), White);
    EXPECT_TRUE(Control->Surface().Blit().isEmpty());
    // Drawing the same line again restores the picture.
    canvas.MoveTo(20, 40);
    canvas.LineTo(120, 40);
    Settle();
    EXPECT_EQ(ScreenPixel(50, 40), White);
    EXPECT_EQ(Control->Paints, 1);
}

TEST_F(WinSurface, PaintClippedToAnInvalidRectangleRepaintsOnlyThatRectangle) {
    TCanvas& canvas = Control->Canvas();
    canvas.Pen().SetMode(pmNot);
    canvas.MoveTo(20, 40);
    canvas.LineTo(120, 40);
    Settle();
    const TRect r = Rect(30, 30, 60, 50);
    Control->InvalidateRect(&r, true);
    Settle();
    EXPECT_EQ(Control->Paints, 2);
    EXPECT_EQ(Control->PaintClips.back(), r);
    // Inside the rectangle the erase removed the inverted line; outside it stays.
    EXPECT_EQ(ScreenPixel(40, 40), White);
    EXPECT_EQ(ScreenPixel(29, 40), Black);
    EXPECT_EQ(ScreenPixel(60, 40), Black);
    EXPECT_EQ(ScreenPixel(100, 40), Black);
}

TEST_F(WinSurface, InvalidateRectNearTheEndsOfTheIntegerRangeCoversTheClientArea) {
    const TRect huge = Rect(-2147483647, -2147483647, 2147483647, 2147483647);
    Control->InvalidateRect(&huge, true);
    Settle();
    EXPECT_EQ(Control->Paints, 2);
    EXPECT_EQ(Control->PaintClips.back(), Rect(0, 0, 200, 150));
}

TEST_F(WinSurface, InvalidateWithoutEraseKeepsTheOldPixelsUnderThePaint) {
    TCanvas& canvas = Control->Canvas();
    canvas.Pen().SetMode(pmNot);
    canvas.MoveTo(20, 40);
    canvas.LineTo(120, 40);
    const TRect r = Rect(30, 30, 60, 50);
    Control->InvalidateRect(&r, false);
    Settle();
    EXPECT_EQ(Control->Paints, 2);
    EXPECT_EQ(ScreenPixel(40, 40), Black);
}

TEST_F(WinSurface, PaintsDrawThroughTheClippedPaintContext) {
    Control->OnPaint = [](TCanvas& canvas) {
        canvas.Brush().SetColor(clRed);
        canvas.FillRect(Rect(0, 0, 200, 150));
    };
    const TRect r = Rect(10, 10, 20, 20);
    Control->InvalidateRect(&r, false);
    Settle();
    EXPECT_EQ(ScreenPixel(15, 15), 0xFF0000u);
    EXPECT_EQ(ScreenPixel(9, 15), White);
    EXPECT_EQ(ScreenPixel(20, 15), White);
}

TEST_F(WinSurface, UpdatePaintsSynchronously) {
    const TRect r = Rect(0, 0, 10, 10);
    Control->InvalidateRect(&r, true);
    EXPECT_EQ(Control->Paints, 1);
    Control->Update();
    EXPECT_EQ(Control->Paints, 2);
    EXPECT_EQ(Control->PaintClips.back(), r);
    EXPECT_TRUE(Control->Surface().Invalid().isEmpty());
    // Nothing is left to paint: a second update paints nothing.
    Control->Update();
    EXPECT_EQ(Control->Paints, 2);
    Settle();
    EXPECT_EQ(Control->Paints, 2);
}

TEST_F(WinSurface, RepaintInvalidatesAllAndPaintsAtOnce) {
    Control->Repaint();
    EXPECT_EQ(Control->Paints, 2);
    EXPECT_EQ(Control->PaintClips.back(), Rect(0, 0, 200, 150));
}

TEST_F(WinSurface, ExposeOfAnUntouchedAreaIsPaintedLikeAnInvalidArea) {
    Control->Widget()->update(QRect(5, 6, 7, 8));
    Settle();
    EXPECT_EQ(Control->Paints, 2);
    EXPECT_EQ(Control->PaintClips.back(), Rect(5, 6, 12, 14));
}

TEST_F(WinSurface, CanvasGetsOneContextUntilTheEndOfTheNextPaint) {
    TCanvas& canvas = Control->Canvas();
    canvas.MoveTo(1, 1);
    canvas.LineTo(5, 5);
    canvas.LineTo(9, 5);
    EXPECT_EQ(Control->DeviceContexts, 1);
    Control->Repaint();
    canvas.LineTo(20, 20);
    EXPECT_EQ(Control->DeviceContexts, 2);
}

TEST_F(WinSurface, ContextsOfTheCanvasCarryTheMappingSetAtCreation) {
    // A descendant sets a mapping on each new context; drawing between paints uses it.
    class TMapped : public TRecordingControl {
    public:
        using TRecordingControl::TRecordingControl;
        HDC GetDeviceContext() override {
            HDC dc = TRecordingControl::GetDeviceContext();
            SetViewportOrgEx(dc, 100, 0);
            return dc;
        }
    };
    auto* mapped = new TMapped(Form.get());
    mapped->SetBounds(0, 0, 150, 100);
    mapped->SetParent(Form.get());
    Settle();
    mapped->Canvas().Pixels(0, 0);
    mapped->Canvas().SetPixels(5, 5, clBlack);
    EXPECT_EQ(mapped->Surface().Image().pixel(105, 5) & 0xFFFFFF, Black);
}

TEST_F(WinSurface, ScrollWindowMovesPixelsAndInvalidatesExactlyTheUncoveredStrip) {
    Control->Canvas().SetPixels(50, 60, clBlack);
    Settle();
    Control->ScrollWindow(10, 0, nullptr, nullptr);
    EXPECT_EQ(SurfacePixel(60, 60), Black);
    EXPECT_EQ(SurfacePixel(50, 60), White);
    EXPECT_EQ(Control->Surface().Invalid(), QRegion(0, 0, 10, 150));
    Settle();
    EXPECT_EQ(Control->Paints, 2);
    EXPECT_EQ(Control->PaintClips.back(), Rect(0, 0, 10, 150));
    EXPECT_EQ(ScreenPixel(60, 60), Black);
    EXPECT_EQ(ScreenPixel(50, 60), White);
}

TEST_F(WinSurface, ScrollWindowUpwardsUncoversTheBottomStrip) {
    Control->Canvas().SetPixels(50, 60, clBlack);
    Control->ScrollWindow(0, -20, nullptr, nullptr);
    EXPECT_EQ(SurfacePixel(50, 40), Black);
    EXPECT_EQ(Control->Surface().Invalid(), QRegion(0, 130, 200, 20));
}

TEST_F(WinSurface, ScrollWindowLeavesTheStripOutsideTheScrollRectangle) {
    // A strip of full height at the left is kept out of the scroll, as rulers are.
    Control->Canvas().SetPixels(5, 60, clBlack);
    Control->Canvas().SetPixels(40, 60, clBlack);
    const TRect r = Rect(20, 0, 200, 150);
    Control->ScrollWindow(-10, 0, &r, &r);
    EXPECT_EQ(SurfacePixel(5, 60), Black);
    EXPECT_EQ(SurfacePixel(30, 60), Black);
    EXPECT_EQ(SurfacePixel(40, 60), White);
    EXPECT_EQ(Control->Surface().Invalid(), QRegion(190, 0, 10, 150));
}

TEST_F(WinSurface, ScrollWindowMovesPendingInvalidAreaWithThePixels) {
    const TRect pending = Rect(50, 50, 60, 60);
    Control->InvalidateRect(&pending, true);
    Control->ScrollWindow(5, 0, nullptr, nullptr);
    EXPECT_EQ(Control->Surface().Invalid(), QRegion(55, 50, 10, 10) + QRegion(0, 0, 5, 150));
    EXPECT_EQ(Control->Surface().Erase(), Control->Surface().Invalid());
}

TEST_F(WinSurface, ScrollWindowByMoreThanTheWindowInvalidatesEverything) {
    Control->ScrollWindow(500, 0, nullptr, nullptr);
    EXPECT_EQ(Control->Surface().Invalid(), QRegion(0, 0, 200, 150));
}

TEST_F(WinSurface, ResizeGrowsTheSurfaceAndPaintsAnew) {
    Control->SetBounds(10, 10, 250, 160);
    EXPECT_EQ(Control->Surface().Image().size(), QSize(250, 160));
    Settle();
    EXPECT_EQ(Control->PaintClips.back(), Rect(0, 0, 250, 160));
}

TEST_F(WinSurface, ResizeSendsSizeMessageAndResizeEvent) {
    int resized = 0;
    Control->OnResize = [&](TObject* sender) {
        EXPECT_EQ(sender, Control);
        ++resized;
    };
    Control->Messages.clear();
    Control->SetBounds(10, 10, 220, 150);
    const auto sizes = Control->Of(WM_SIZE);
    ASSERT_EQ(sizes.size(), 1u);
    EXPECT_EQ(sizes[0].LParam & 0xFFFF, 220);
    EXPECT_EQ((sizes[0].LParam >> 16) & 0xFFFF, 150);
    EXPECT_EQ(resized, 1);
}

TEST_F(WinSurface, HiddenControlIsNotWindowVisible) {
    EXPECT_TRUE(Control->IsWindowVisible());
    EXPECT_TRUE(IsWindowVisible(Control->Handle()));
    Control->SetVisible(false);
    EXPECT_FALSE(Control->IsWindowVisible());
    Form->Hide();
    Control->SetVisible(true);
    EXPECT_FALSE(Control->IsWindowVisible());
}

TEST_F(WinSurface, ExceptionInPaintGoesToTheErrorServiceAndThePaintEnds) {
    Control->OnPaint = [](TCanvas&) { throw Exception("Cannot draw picture"); };
    Control->Repaint();
    EXPECT_EQ(Errors.Messages, QStringList{"Cannot draw picture"});
    EXPECT_FALSE(Control->Painting());
    EXPECT_TRUE(Control->Surface().Invalid().isEmpty());
}

TEST_F(WinSurface, ClientToScreenAndBack) {
    const TPoint screen = Control->ClientToScreen(Point(3, 4));
    const QPoint global = Control->Widget()->mapToGlobal(QPoint(3, 4));
    EXPECT_EQ(screen, Point(global.x(), global.y()));
    EXPECT_EQ(Control->ScreenToClient(screen), Point(3, 4));
    TPoint p = Point(3, 4);
    ASSERT_TRUE(ClientToScreen(Control->Handle(), &p));
    ASSERT_TRUE(ScreenToClient(Control->Handle(), &p));
    EXPECT_EQ(p, Point(3, 4));
}

TEST_F(WinSurface, BorderIsOutsideTheClientArea) {
    Control->SetBorderStyle(bsSingle);
    EXPECT_EQ(Control->ClientRect(), Rect(0, 0, 198, 148));
    EXPECT_EQ(Control->Surface().Image().size(), QSize(198, 148));
    EXPECT_EQ(Control->ClientToScreen(Point(0, 0)).x, Control->ClientToScreen(Point(0, 0)).x);
    const QPoint global = Control->Widget()->mapToGlobal(QPoint(1, 1));
    EXPECT_EQ(Control->ClientToScreen(Point(0, 0)), Point(global.x(), global.y()));
}

TEST_F(WinSurface, AtRatioTwoTheSurfaceHasPhysicalPixelsAndMouseIsConverted) {
    Control->SetDevicePixelRatio(2.0);
    Control->SetBounds(10, 10, 200, 150);
    EXPECT_EQ(Control->Widget()->size(), QSize(100, 75));
    EXPECT_EQ(Control->Surface().Image().size(), QSize(200, 150));
    Settle();
    EXPECT_EQ(Control->PaintClips.back(), Rect(0, 0, 200, 150));
    // A one-pixel line of the surface is half a logical pixel: crisp on the device.
    Control->Canvas().SetPixels(21, 30, clBlack);
    EXPECT_TRUE(Control->Surface().Blit().contains(QPoint(21, 30)));
    Control->Messages.clear();
    Click(Window(), InWindow(10, 15));
    const auto presses = Control->Of(WM_LBUTTONDOWN);
    ASSERT_EQ(presses.size(), 1u);
    EXPECT_EQ(presses[0].Pos, Point(20, 30));
    // The screen's resolution is given in device pixels as well.
    Screen.SetPixelsPerInch(192);
    EXPECT_EQ(Screen.PixelsPerInch(), 192);
    Screen.SetPixelsPerInch(0);
}

// The bookkeeping alone, without a window.
TEST(WinSurfaceRegions, ResizeKeepsCommonPixelsWhenAskedAndInvalidatesOnlyNewParts) {
    TRetainedSurface s;
    s.Resize(10, 10, true);
    QRegion inv;
    QRegion erase;
    s.TakeInvalid(inv, erase);
    EXPECT_EQ(inv, QRegion(0, 0, 10, 10));
    s.Image().setPixel(3, 3, 0xFF123456u);
    s.Resize(20, 10, false);
    EXPECT_EQ(s.Image().pixel(3, 3), 0xFF123456u);
    EXPECT_EQ(s.Invalid(), QRegion(10, 0, 10, 10));
    EXPECT_EQ(s.Erase(), s.Invalid());
}

TEST(WinSurfaceRegions, RegionsAreCutToTheSurface) {
    TRetainedSurface s;
    s.Resize(10, 10, false);
    s.AddBlit(QRegion(5, 5, 100, 100));
    EXPECT_EQ(s.Blit(), QRegion(5, 5, 5, 5));
    s.Invalidate(QRegion(-5, -5, 8, 8), false);
    EXPECT_EQ(s.Invalid(), QRegion(0, 0, 10, 10));
}

TEST(WinSurfaceRegions, ScrollWithClipChangesOnlyPixelsInsideTheClip) {
    TRetainedSurface s;
    s.Resize(10, 1, true);
    QRegion inv;
    QRegion erase;
    s.TakeInvalid(inv, erase);
    for (int x = 0; x < 10; ++x) s.Image().setPixel(x, 0, qRgb(x, x, x));
    s.Scroll(3, 0, QRect(0, 0, 10, 1), QRect(0, 0, 6, 1));
    EXPECT_EQ(qRed(s.Image().pixel(5, 0)), 2);
    EXPECT_EQ(qRed(s.Image().pixel(3, 0)), 0);
    EXPECT_EQ(qRed(s.Image().pixel(6, 0)), 6);
    EXPECT_EQ(s.Invalid(), QRegion(0, 0, 3, 1));
}

} // namespace
} // namespace vl::test
