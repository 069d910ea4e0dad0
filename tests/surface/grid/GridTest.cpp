// The grid on its own: its properties and how `Visible` and `ShowEvery` drive each other, snapping
// of points and distances to the lattice, and the lines that `Draw` hands to the canvas of the scale
// setting in force. The shadow settings and their defaults.

#include "surface/Grid.h"

#include "platform/core/Exceptions.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Graphics.h"
#include "surface/ScaleSetting.h"

#include <QImage>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace vl {
namespace {

// --- Properties --------------------------------------------------------------------------------

TEST(GridProperties, ANewGridIsHiddenFreeAndSpacedByAHundredUnits) {
    TvlGrid grid(nullptr);
    EXPECT_EQ(grid.ShowEvery(), 0);
    EXPECT_FALSE(grid.Visible());
    EXPECT_FALSE(grid.Capture());
    EXPECT_FALSE(grid.FCapture);
    EXPECT_EQ(grid.IncHorz(), 100);
    EXPECT_EQ(grid.IncVert(), 100);
    EXPECT_EQ(grid.Pen().Color(), clBlack);
    EXPECT_EQ(grid.Pen().Width(), 1);
    EXPECT_EQ(grid.Pen().Style(), psSolid);
    EXPECT_EQ(grid.Pen().Mode(), pmCopy);
}

TEST(GridProperties, ShowingAGridWithShowEveryZeroSetsShowEveryToOne) {
    TvlGrid grid(nullptr);
    grid.SetVisible(true);
    EXPECT_TRUE(grid.Visible());
    EXPECT_EQ(grid.ShowEvery(), 1);
}

TEST(GridProperties, ShowEveryZeroHidesTheGrid) {
    TvlGrid grid(nullptr);
    grid.SetShowEvery(4);
    ASSERT_TRUE(grid.Visible());
    grid.SetShowEvery(0);
    EXPECT_FALSE(grid.Visible());
    EXPECT_EQ(grid.ShowEvery(), 0);
}

TEST(GridProperties, ShowEveryAboveZeroShowsTheGridAndBelowOneHidesIt) {
    TvlGrid grid(nullptr);
    grid.SetShowEvery(3);
    EXPECT_TRUE(grid.Visible());
    EXPECT_EQ(grid.ShowEvery(), 3);
    grid.SetShowEvery(-2);
    EXPECT_FALSE(grid.Visible());
    EXPECT_EQ(grid.ShowEvery(), -2);
}

TEST(GridProperties, HidingKeepsShowEveryAndShowingAgainUsesIt) {
    TvlGrid grid(nullptr);
    grid.SetShowEvery(5);
    grid.SetVisible(false);
    EXPECT_FALSE(grid.Visible());
    EXPECT_EQ(grid.ShowEvery(), 5);
    grid.SetVisible(true);
    EXPECT_TRUE(grid.Visible());
    EXPECT_EQ(grid.ShowEvery(), 5);
}

TEST(GridProperties, ShowingAGridWithNegativeShowEverySetsOne) {
    TvlGrid grid(nullptr);
    grid.SetShowEvery(-3);
    grid.SetVisible(true);
    EXPECT_EQ(grid.ShowEvery(), 1);
}

TEST(GridProperties, AShowEveryEqualToTheOldOneLeavesAHiddenGridHidden) {
    // `ShowEvery` is only looked at when it changes: a grid hidden with `ShowEvery` 2 stays hidden
    // when the same value is set again.
    TvlGrid grid(nullptr);
    grid.SetShowEvery(2);
    grid.SetVisible(false);
    grid.SetShowEvery(2);
    EXPECT_FALSE(grid.Visible());
}

TEST(GridProperties, IncrementsTakeAnyValue) {
    TvlGrid grid(nullptr);
    grid.SetIncHorz(0);
    grid.SetIncVert(-25);
    EXPECT_EQ(grid.IncHorz(), 0);
    EXPECT_EQ(grid.IncVert(), -25);
    grid.SetIncHorz(7);
    EXPECT_EQ(grid.IncHorz(), 7);
}

TEST(GridProperties, CaptureIsAPlainSwitch) {
    TvlGrid grid(nullptr);
    grid.SetCapture(true);
    EXPECT_TRUE(grid.Capture());
    EXPECT_TRUE(grid.FCapture);
    grid.FCapture = false;
    EXPECT_FALSE(grid.Capture());
}

TEST(GridProperties, AGridWithoutABoxTakesChangesQuietly) {
    TvlGrid grid(nullptr);
    grid.Pen().SetColor(clRed);
    grid.SetIncHorz(20);
    grid.SetVisible(true);
    grid.Changed(&grid);
    EXPECT_EQ(grid.Pen().Color(), clRed);
}

TEST(GridProperties, AssignCopiesEverySettingAndThePen) {
    TvlGrid source(nullptr);
    source.SetIncHorz(25);
    source.SetIncVert(35);
    source.SetShowEvery(4);
    source.SetVisible(false);
    source.SetCapture(true);
    source.Pen().SetColor(clTeal);
    source.Pen().SetStyle(psDot);
    TvlGrid grid(nullptr);
    grid.Assign(&source);
    EXPECT_EQ(grid.IncHorz(), 25);
    EXPECT_EQ(grid.IncVert(), 35);
    EXPECT_EQ(grid.ShowEvery(), 4);
    EXPECT_FALSE(grid.Visible());
    EXPECT_TRUE(grid.Capture());
    EXPECT_EQ(grid.Pen().Color(), clTeal);
    EXPECT_EQ(grid.Pen().Style(), psDot);
    EXPECT_NE(&grid.Pen(), &source.Pen());
}

TEST(GridProperties, AssigningSomethingElseRaisesTheAssignmentError) {
    TvlGrid grid(nullptr);
    TPen pen;
    EXPECT_THROW(grid.Assign(&pen), EConvertError);
    EXPECT_THROW(grid.Assign(nullptr), EConvertError);
    TShadows shadows;
    EXPECT_THROW(grid.Assign(&shadows), EConvertError);
    EXPECT_THROW(shadows.Assign(&grid), EConvertError);
}

// --- Snapping ----------------------------------------------------------------------------------

struct SnapCase {
    std::int32_t Value;
    std::int32_t Inc;
    std::int32_t Expected;
};

void PrintTo(const SnapCase& c, std::ostream* os) {
    *os << c.Value << " by " << c.Inc << " to " << c.Expected;
}

std::string Signed(std::int32_t Value) {
    return Value < 0 ? "Minus" + std::to_string(-static_cast<long long>(Value)) : std::to_string(Value);
}

// "Minus150By100".
std::string SnapCaseName(const ::testing::TestParamInfo<SnapCase>& Info) {
    return Signed(Info.param.Value) + "By" + Signed(Info.param.Inc);
}

class GridMatchAxis : public ::testing::TestWithParam<SnapCase> {};

TEST_P(GridMatchAxis, XSnapsToTheNearestMultipleWithTiesToTheEvenOne) {
    const SnapCase& c = GetParam();
    TvlGrid grid(nullptr);
    grid.SetIncHorz(c.Inc);
    grid.SetIncVert(0);
    TPoint p{c.Value, 12345};
    grid.MatchCoords(p);
    EXPECT_EQ(p.x, c.Expected);
    EXPECT_EQ(p.y, 12345);
}

TEST_P(GridMatchAxis, YSnapsToTheNearestMultipleWithTiesToTheEvenOne) {
    const SnapCase& c = GetParam();
    TvlGrid grid(nullptr);
    grid.SetIncHorz(0);
    grid.SetIncVert(c.Inc);
    TPoint p{-777, c.Value};
    grid.MatchCoords(p);
    EXPECT_EQ(p.x, -777);
    EXPECT_EQ(p.y, c.Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Grid, GridMatchAxis,
    ::testing::Values(
        // Ties: 150 lies between 100 and 200 and goes to 200 (2 is even); 250 goes to 200 as well.
        SnapCase{150, 100, 200}, SnapCase{250, 100, 200}, SnapCase{50, 100, 0}, SnapCase{350, 100, 400},
        SnapCase{450, 100, 400}, SnapCase{-50, 100, 0}, SnapCase{-150, 100, -200}, SnapCase{-250, 100, -200},
        SnapCase{-350, 100, -400},
        // Off the tie: to the nearer multiple, on either side of zero.
        SnapCase{149, 100, 100}, SnapCase{151, 100, 200}, SnapCase{249, 100, 200}, SnapCase{251, 100, 300},
        SnapCase{-149, 100, -100}, SnapCase{-151, 100, -200}, SnapCase{-49, 100, 0}, SnapCase{-51, 100, -100},
        // On the lattice, and the lattice passes through 0.
        SnapCase{0, 100, 0}, SnapCase{300, 100, 300}, SnapCase{-300, 100, -300}, SnapCase{0, 37, 0},
        // Odd increments have no ties.
        SnapCase{4, 3, 3}, SnapCase{5, 3, 6}, SnapCase{-4, 3, -3}, SnapCase{-5, 3, -6}, SnapCase{7, 1, 7},
        // Ties with an even increment of 2: 1 -> 0, 3 -> 4, -1 -> 0, -3 -> -4.
        SnapCase{1, 2, 0}, SnapCase{3, 2, 4}, SnapCase{-1, 2, 0}, SnapCase{-3, 2, -4},
        // Large values are worked exactly: the tie at 1.5 increments is recognised.
        SnapCase{1500000000, 1000000000, 2000000000}, SnapCase{-1500000000, 1000000000, -2000000000},
        SnapCase{1499999999, 1000000000, 1000000000}, SnapCase{2147483647, 100, 2147483600},
        SnapCase{-2147483647 - 1, 100, -2147483600},
        // A multiple beyond the 32-bit range gives way to its neighbour toward zero.
        SnapCase{2147483647, 1431655765, 1431655765}, SnapCase{-2147483647 - 1, 1431655765, -1431655765},
        SnapCase{2147483647, 2147483647, 2147483647}, SnapCase{-2147483647 - 1, 2147483647, -2147483647}),
    SnapCaseName);

TEST(GridMatch, IncHorzZeroLeavesXAloneWhileYStillSnaps) {
    TvlGrid grid(nullptr);
    grid.SetIncHorz(0);
    TPoint p{151, 151};
    grid.MatchCoords(p);
    EXPECT_EQ(p, (TPoint{151, 200}));
}

TEST(GridMatch, NegativeIncrementsLeaveTheirAxesFree) {
    TvlGrid grid(nullptr);
    grid.SetIncHorz(-100);
    grid.SetIncVert(-1);
    TPoint p{151, -151};
    grid.MatchCoords(p);
    EXPECT_EQ(p, (TPoint{151, -151}));
}

TEST(GridMatch, EachAxisSnapsWithItsOwnIncrement) {
    TvlGrid grid(nullptr);
    grid.SetIncHorz(25);
    grid.SetIncVert(40);
    TPoint p{60, 60};
    grid.MatchCoords(p);
    EXPECT_EQ(p, (TPoint{50, 80}));
}

TEST(GridMatch, ADistanceIsRoundedLikeAPoint) {
    // A move by (-150, 50) with an increment of 100 becomes (-200, 0): the distance is snapped, not
    // the position it leads to.
    TvlGrid grid(nullptr);
    TPoint delta{-150, 50};
    grid.MatchCoords(delta);
    EXPECT_EQ(delta, (TPoint{-200, 0}));
    TPoint back{250, -250};
    grid.MatchCoords(back);
    EXPECT_EQ(back, (TPoint{200, -200}));
}

TEST(GridMatch, SnappingDoesNotLookAtCapture) {
    TvlGrid grid(nullptr);
    ASSERT_FALSE(grid.Capture());
    TPoint p{130, 170};
    grid.MatchCoords(p);
    EXPECT_EQ(p, (TPoint{100, 200}));
}

TEST(GridMatch, SnappingIsIdempotent) {
    TvlGrid grid(nullptr);
    grid.SetIncHorz(30);
    grid.SetIncVert(45);
    for (int v = -200; v <= 200; ++v) {
        TPoint p{v, v};
        grid.MatchCoords(p);
        TPoint q = p;
        grid.MatchCoords(q);
        ASSERT_EQ(p, q) << v;
        ASSERT_EQ(p.x % 30, 0) << v;
        ASSERT_EQ(p.y % 45, 0) << v;
        ASSERT_LE(2 * std::abs(p.x - v), 30) << v;
        ASSERT_LE(2 * std::abs(p.y - v), 45) << v;
    }
}

// --- Drawing -----------------------------------------------------------------------------------

struct Segment {
    TPoint From;
    TPoint To;
    bool operator==(const Segment&) const = default;
};

void PrintTo(const Segment& s, std::ostream* os) {
    *os << "(" << s.From.x << "," << s.From.y << ")-(" << s.To.x << "," << s.To.y << ")";
}

// A raster device under a scale setting in pixel units, whose canvas records every line it draws in
// logical coordinates. `ActScaleSet` names this scale setting for the life of the device.
class GridDraw : public ::testing::Test {
protected:
    void SetUp() override {
        Image = QImage(64, 48, QImage::Format_RGB32);
        Image.fill(Qt::white);
        DC = CreateImageDC(&Image);
        Canvas.SetHandle(DC);
        Scale = std::make_unique<TScaleSetting>(&Canvas);
        Scale->SetMinUnit(TLenUnits::Pixel);
        Scale->InitMapping(96);
        Scale->SetMap(DC);
        Canvas.SetOnChanging([this](TObject*) { Start = Canvas.PenPos(); });
        Canvas.SetOnChange([this](TObject*) { Lines.push_back({Start, Canvas.PenPos()}); });
        ActScaleSet = Scale.get();
    }
    void TearDown() override {
        ActScaleSet = nullptr;
        Canvas.SetOnChanging(nullptr);
        Canvas.SetOnChange(nullptr);
        Scale.reset();
        Canvas.SetHandle(nullptr);
        DeleteDC(DC);
    }
    // Ten logical units per device pixel: the slack of the lines is 10.
    void TenUnitsAPixel() {
        Scale->SetScale(0.1);
        Scale->SetMap(DC);
        ASSERT_EQ(Scale->PixToLog(1), 10);
    }
    static Segment V(int x, int y1, int y2) { return {{x, y1}, {x, y2}}; }
    static Segment H(int y, int x1, int x2) { return {{x1, y}, {x2, y}}; }
    std::vector<int> VerticalXs() const {
        std::vector<int> xs;
        for (const Segment& s : Lines)
            if (s.From.x == s.To.x && s.From.y != s.To.y) xs.push_back(s.From.x);
        return xs;
    }

    QImage Image;
    HDC DC = nullptr;
    TCanvas Canvas;
    std::unique_ptr<TScaleSetting> Scale;
    TPoint Start;
    std::vector<Segment> Lines;
    TvlGrid Grid{nullptr};
};

TEST_F(GridDraw, VerticalLinesComeFirstAndEachReachesAPixelBeyondTheRectangle) {
    TenUnitsAPixel();
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 0, 300, 200));
    EXPECT_EQ(Lines,
              (std::vector<Segment>{V(0, -10, 210), V(100, -10, 210), V(200, -10, 210), V(300, -10, 210),
                                    H(0, -10, 310), H(100, -10, 310), H(200, -10, 310)}));
}

TEST_F(GridDraw, ALineExactlyOnXminIsDrawn) {
    TenUnitsAPixel();
    Grid.SetVisible(true);
    Grid.Draw(LimRec(100, 0, 250, 50));
    EXPECT_EQ(VerticalXs(), (std::vector<int>{100, 200}));
}

TEST_F(GridDraw, ALineLessThanAPixelLeftOfTheRectangleIsDrawn) {
    TenUnitsAPixel();
    Grid.SetVisible(true);
    Grid.Draw(LimRec(105, 0, 250, 50));
    EXPECT_EQ(VerticalXs(), (std::vector<int>{100, 200}));
    Lines.clear();
    Grid.Draw(LimRec(109, 0, 250, 50));
    EXPECT_EQ(VerticalXs(), (std::vector<int>{100, 200}));
}

TEST_F(GridDraw, ALineAWholePixelLeftOfTheRectangleIsLeftOut) {
    TenUnitsAPixel();
    Grid.SetVisible(true);
    Grid.Draw(LimRec(110, 0, 250, 50));
    EXPECT_EQ(VerticalXs(), (std::vector<int>{200}));
}

TEST_F(GridDraw, ALineUpToAPixelRightOfTheRectangleIsDrawn) {
    TenUnitsAPixel();
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 0, 200, 50)); // on Xmax
    EXPECT_EQ(VerticalXs(), (std::vector<int>{0, 100, 200}));
    Lines.clear();
    Grid.Draw(LimRec(0, 0, 191, 50)); // 9 units, less than a pixel, short of the line
    EXPECT_EQ(VerticalXs(), (std::vector<int>{0, 100, 200}));
    Lines.clear();
    Grid.Draw(LimRec(0, 0, 190, 50)); // a whole pixel short
    EXPECT_EQ(VerticalXs(), (std::vector<int>{0, 100}));
}

TEST_F(GridDraw, HorizontalLinesFollowTheSameRulesOnY) {
    TenUnitsAPixel();
    Grid.SetIncHorz(0);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 105, 50, 291));
    EXPECT_EQ(Lines, (std::vector<Segment>{H(100, -10, 60), H(200, -10, 60), H(300, -10, 60)}));
    Lines.clear();
    Grid.Draw(LimRec(0, 110, 50, 290));
    EXPECT_EQ(Lines, (std::vector<Segment>{H(200, -10, 60)}));
}

TEST_F(GridDraw, NegativeCoordinatesStartAtTheMultipleTowardZeroOfTheWidenedEdge) {
    // The first line is found by truncating (Xmin - slack) / step toward zero; on the negative side
    // that is the multiple on the right of Xmin - slack, and a line left of Xmin is passed over even
    // within a pixel.
    TenUnitsAPixel();
    Grid.SetIncVert(0);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(-250, -50, -50, 50));
    EXPECT_EQ(Lines, (std::vector<Segment>{V(-200, -60, 60), V(-100, -60, 60)}));
    Lines.clear();
    Grid.Draw(LimRec(-200, 0, -60, 10)); // Xmin on a line
    EXPECT_EQ(VerticalXs(), (std::vector<int>{-200, -100}));
    Lines.clear();
    Grid.Draw(LimRec(-195, 0, -40, 10)); // the line at -200 lies half a pixel outside
    EXPECT_EQ(VerticalXs(), (std::vector<int>{-100}));
    Lines.clear();
    Grid.Draw(LimRec(-150, 0, 150, 10)); // across the origin
    EXPECT_EQ(VerticalXs(), (std::vector<int>{-100, 0, 100}));
}

TEST_F(GridDraw, AtOneUnitAPixelTheSlackIsOneUnit) {
    ASSERT_EQ(Scale->PixToLog(1), 1);
    Grid.SetIncHorz(10);
    Grid.SetIncVert(20);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(10, 5, 30, 40));
    EXPECT_EQ(Lines,
              (std::vector<Segment>{V(10, 4, 41), V(20, 4, 41), V(30, 4, 41), H(20, 9, 31), H(40, 9, 31)}));
}

TEST_F(GridDraw, ShowEveryMultipliesTheSpacingOfBothFamilies) {
    TenUnitsAPixel();
    Grid.SetIncHorz(50);
    Grid.SetIncVert(40);
    Grid.SetShowEvery(3);
    Grid.Draw(LimRec(0, 0, 400, 300));
    EXPECT_EQ(Lines, (std::vector<Segment>{V(0, -10, 310), V(150, -10, 310), V(300, -10, 310), H(0, -10, 410),
                                           H(120, -10, 410), H(240, -10, 410)}));
}

TEST_F(GridDraw, IncHorzZeroDrawsNoVerticalLines) {
    TenUnitsAPixel();
    Grid.SetIncHorz(0);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 0, 200, 100));
    EXPECT_EQ(Lines, (std::vector<Segment>{H(0, -10, 210), H(100, -10, 210)}));
}

TEST_F(GridDraw, IncVertAtOrBelowZeroDrawsNoHorizontalLines) {
    TenUnitsAPixel();
    Grid.SetIncVert(-100);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 0, 200, 100));
    EXPECT_EQ(Lines, (std::vector<Segment>{V(0, -10, 110), V(100, -10, 110), V(200, -10, 110)}));
}

TEST_F(GridDraw, WithoutShowEveryNothingIsDrawn) {
    TenUnitsAPixel();
    Grid.Draw(LimRec(0, 0, 200, 100));
    EXPECT_TRUE(Lines.empty());
}

TEST_F(GridDraw, TheScaleDoesNotThinOutTheLines) {
    // One unit apart at ten units a pixel: every unit gets its line, from one slack left of Xmin
    // (exclusive) to one slack right of Xmax (exclusive).
    TenUnitsAPixel();
    Grid.SetIncHorz(1);
    Grid.SetIncVert(0);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 0, 50, 0));
    const std::vector<int> xs = VerticalXs();
    ASSERT_EQ(xs.size(), 69u);
    EXPECT_EQ(xs.front(), -9);
    EXPECT_EQ(xs.back(), 59);
}

TEST_F(GridDraw, TheGridsPenIsSelectedIntoTheCanvas) {
    Grid.Pen().SetColor(clFuchsia);
    Grid.Pen().SetWidth(2);
    Grid.Pen().SetStyle(psDot);
    Grid.Pen().SetMode(pmXor);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 0, 10, 10));
    EXPECT_EQ(Canvas.Pen().Color(), clFuchsia);
    EXPECT_EQ(Canvas.Pen().Width(), 2);
    EXPECT_EQ(Canvas.Pen().Style(), psDot);
    EXPECT_EQ(Canvas.Pen().Mode(), pmXor);
}

TEST_F(GridDraw, LinesLandOnTheDeviceAtTheirScaledPlaces) {
    TenUnitsAPixel();
    Grid.Pen().SetColor(clBlue);
    Grid.SetIncHorz(100);
    Grid.SetIncVert(150);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(0, 0, 630, 470));
    for (int y = 0; y < Image.height(); ++y)
        for (int x = 0; x < Image.width(); ++x) {
            const QRgb expected = (x % 10 == 0 || y % 15 == 0) ? qRgb(0, 0, 255) : qRgb(255, 255, 255);
            ASSERT_EQ(Image.pixel(x, y), expected) << x << "," << y;
        }
}

TEST_F(GridDraw, ExtremeRectanglesDrawNoWrappedLines) {
    Grid.SetIncHorz(1000000000);
    Grid.SetIncVert(1000000000);
    Grid.SetVisible(true);
    Grid.Draw(LimRec(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX));
    ASSERT_FALSE(Lines.empty());
    for (const Segment& s : Lines) {
        EXPECT_LE(s.From.x, s.To.x);
        EXPECT_LE(s.From.y, s.To.y);
    }
}

TEST(GridDrawWithoutCanvas, NothingHappensWhenNoScaleSettingIsInForce) {
    ASSERT_EQ(ActScaleSet, nullptr);
    TvlGrid grid(nullptr);
    grid.SetVisible(true);
    EXPECT_NO_THROW(grid.Draw(LimRec(0, 0, 100, 100)));
}

// --- Shadows -----------------------------------------------------------------------------------

TEST(Shadows, DefaultsAreTenAndSevenUnitsWithASolidGreyBrush) {
    TShadows shadows;
    EXPECT_EQ(shadows.dX(), 10);
    EXPECT_EQ(shadows.dY(), 7);
    EXPECT_EQ(shadows.Brush().Color(), 0x808080);
    EXPECT_EQ(shadows.Brush().Style(), bsSolid);
}

TEST(Shadows, OffsetsTakeAnyValue) {
    TShadows shadows;
    shadows.SetdX(-4);
    shadows.SetdY(0);
    EXPECT_EQ(shadows.dX(), -4);
    EXPECT_EQ(shadows.dY(), 0);
}

TEST(Shadows, TheBrushIsOwnedAndChangeable) {
    TShadows shadows;
    shadows.Brush().SetColor(clNavy);
    shadows.Brush().SetStyle(bsCross);
    EXPECT_EQ(shadows.Brush().Color(), clNavy);
    EXPECT_EQ(shadows.Brush().Style(), bsCross);
    EXPECT_NE(shadows.Brush().Handle(), nullptr);
}

TEST(Shadows, AssignCopiesOffsetsAndBrush) {
    TShadows source;
    source.SetdX(-3);
    source.SetdY(12);
    source.Brush().SetColor(clOlive);
    source.Brush().SetStyle(bsFDiagonal);
    TShadows shadows;
    shadows.Assign(&source);
    EXPECT_EQ(shadows.dX(), -3);
    EXPECT_EQ(shadows.dY(), 12);
    EXPECT_EQ(shadows.Brush().Color(), clOlive);
    EXPECT_EQ(shadows.Brush().Style(), bsFDiagonal);
    EXPECT_NE(&shadows.Brush(), &source.Brush());
}

} // namespace
} // namespace vl
