#include "geometry/Vlprocs.h"
#include "geometry/Vlrotation.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Scoped.h"
#include "platform/gdi/GdiTestSupport.h"
#include "platform/graphics/Graphics.h"

#include <QFont>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

namespace vl {
namespace {

using test::TSurface;

constexpr double Pi = std::numbers::pi;
constexpr std::int32_t MinInt = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t MaxInt = std::numeric_limits<std::int32_t>::max();

std::vector<TPoint> PointsOf(const TPointList& List) {
    return std::vector<TPoint>(List.Points(), List.Points() + List.Count());
}

bool SameImage(TSurface& a, TSurface& b) {
    return a.Image() == b.Image();
}

// ---------------------------------------------------------------------------------------------
// Rectangle
// ---------------------------------------------------------------------------------------------

TEST(RotatedPnts, RectangleAtZeroIsItsCornersClockwiseFromTopLeft) {
    const auto List = RotatedPnts_Rectangle(Rect(10, 20, 110, 70), Point(3, 4), 0);
    EXPECT_EQ(PointsOf(*List),
              (std::vector<TPoint>{Point(10, 20), Point(110, 20), Point(110, 70), Point(10, 70)}));
    EXPECT_EQ(List->Capacity(), 4);
}

TEST(RotatedPnts, RectangleQuarterTurnRoundTheCorner) {
    const auto List = RotatedPnts_Rectangle(Rect(0, 0, 100, 50), Point(0, 0), Pi / 2);
    EXPECT_EQ(PointsOf(*List),
              (std::vector<TPoint>{Point(0, 0), Point(0, 100), Point(-50, 100), Point(-50, 0)}));
}

TEST(RotatedPnts, RectangleHalfTurnRoundItsCentreSwapsTheCorners) {
    const auto List = RotatedPnts_Rectangle(Rect(0, 0, 100, 50), Point(50, 25), Pi);
    EXPECT_EQ(PointsOf(*List),
              (std::vector<TPoint>{Point(100, 50), Point(0, 50), Point(0, 0), Point(100, 0)}));
}

TEST(RotatedPnts, ExtremeCornersAtZeroComeBackUnchanged) {
    const auto List = RotatedPnts_Rectangle(Rect(MinInt, MinInt, MaxInt, MaxInt), Point(MaxInt, MinInt), 0);
    EXPECT_EQ(PointsOf(*List), (std::vector<TPoint>{Point(MinInt, MinInt), Point(MaxInt, MinInt),
                                                    Point(MaxInt, MaxInt), Point(MinInt, MaxInt)}));
}

TEST(RotatedPnts, ExtremeCoordinatesRotateWithoutFailing) {
    // Far outside 32 bits once rotated: the points wrap as the device's coordinates do.
    const TRect R = Rect(MinInt, MinInt, MaxInt, MaxInt);
    const TPoint Origin = Point(MaxInt, MinInt);
    EXPECT_EQ(RotatedPnts_Rectangle(R, Origin, 1.0)->Count(), 4);
    EXPECT_EQ(RotatedPnts_Ellipse(R, Origin, 2.5)->Count(), 32);
    EXPECT_EQ(RotatedPnts_RoundRect(R, MaxInt, MinInt, Origin, -1.0)->Count(), 16);
    EXPECT_GE(RotatedPnts_Arc(R, Origin, Point(MinInt, 0), Point(MaxInt, 0), 3.0)->Count(), 1);
    EXPECT_EQ(RotatedPnts_Pie(R, Origin, Point(0, MinInt), Point(0, MinInt), 3.0)->Count(), 2);
}

TEST(RotatedPnts, ANonFiniteAngleRaises) {
    const TRect R = Rect(0, 0, 10, 10);
    EXPECT_THROW(RotatedPnts_Rectangle(R, Point(0, 0), std::numeric_limits<double>::quiet_NaN()), EInvalidOp);
    EXPECT_THROW(RotatedPnts_Ellipse(R, Point(0, 0), std::numeric_limits<double>::infinity()), EInvalidOp);
}

// ---------------------------------------------------------------------------------------------
// Rounding once per point
// ---------------------------------------------------------------------------------------------

TEST(RotatedPnts, EachPointIsRoundedOnlyAfterItsRotation) {
    // The third point of the rounded rectangle is (1.25, 1.25). Turned by 45 degrees round (0, 0) it
    // lies at (0, 1.77), which rounds to (0, 2); rounded first to (1, 1) it would end at (0, 1).
    const auto List = RotatedPnts_RoundRect(Rect(0, 0, 20, 20), 5, 5, Point(0, 0), Pi / 4);
    EXPECT_EQ(List->GetPoints(2), Point(0, 2));
    TPoint RoundedFirst = Point(1, 1);
    RotatePnt(RoundedFirst, Point(0, 0), Pi / 4);
    EXPECT_EQ(RoundedFirst, Point(0, 1));
}

TEST(RotatedPnts, HalvesAreRoundedToTheEvenNeighbour) {
    // Radii 2.5 and 3.5 are kept as halves, not divided down to integers, and a half rounds to even.
    const auto List = RotatedPnts_RoundRect(Rect(1, 1, 101, 51), 5, 7, Point(0, 0), 0);
    EXPECT_EQ(List->GetPoints(0), Point(1, 4));   // T + 3.5 = 4.5
    EXPECT_EQ(List->GetPoints(3), Point(4, 1));   // L + 2.5 = 3.5
    EXPECT_EQ(List->GetPoints(4), Point(98, 1));  // Rt - 2.5 = 98.5
    EXPECT_EQ(List->GetPoints(15), Point(1, 48)); // B - 3.5 = 47.5
}

// ---------------------------------------------------------------------------------------------
// Ellipse
// ---------------------------------------------------------------------------------------------

TEST(RotatedPnts, EllipseHasTwoPointsToEachStepOfTheHalfTurn) {
    const auto List = RotatedPnts_Ellipse(Rect(0, 0, 200, 100), Point(0, 0), 0);
    ASSERT_EQ(List->Count(), 32);
    EXPECT_EQ(List->Capacity(), 32);
    EXPECT_EQ(List->First(), Point(200, 50)); // the right end of the horizontal axis
    EXPECT_EQ(List->GetPoints(8), Point(100, 100));
    EXPECT_EQ(List->GetPoints(16), Point(0, 50));
    EXPECT_EQ(List->GetPoints(24), Point(100, 0));
    // An eighth of a turn on: cos and sin of pi/4 on the half-axes 100 and 50.
    EXPECT_EQ(List->GetPoints(4), Point(171, 85));
    for (const TPoint P : PointsOf(*List)) {
        EXPECT_GE(P.x, 0);
        EXPECT_LE(P.x, 200);
        EXPECT_GE(P.y, 0);
        EXPECT_LE(P.y, 100);
    }
}

TEST(RotatedPnts, EllipseQuarterTurnRoundItsCentre) {
    const auto List = RotatedPnts_Ellipse(Rect(0, 0, 200, 100), Point(100, 50), Pi / 2);
    EXPECT_EQ(List->First(), Point(100, 150));
    EXPECT_EQ(List->GetPoints(8), Point(50, 50));
    EXPECT_EQ(List->GetPoints(16), Point(100, -50));
    EXPECT_EQ(List->GetPoints(24), Point(150, 50));
}

TEST(RotatedPnts, EllipseOfAnOddRectangleKeepsItsHalfCentre) {
    // The centre (1.5, 1.5) and half-axes 1.5 are kept in doubles; the points round once.
    const auto List = RotatedPnts_Ellipse(Rect(0, 0, 3, 3), Point(0, 0), 0);
    EXPECT_EQ(List->First(), Point(3, 2));      // (3, 1.5)
    EXPECT_EQ(List->GetPoints(8), Point(2, 3)); // (1.5, 3)
}

TEST(RotatedPnts, EllipseAnglesAreSummedStepByStep) {
    // Sixteen steps of pi/16 added up come to one unit in the last place above pi, where the sine is
    // negative: the left end of the 3 x 3 ellipse falls just below y = 1.5 and rounds to 1. The angle
    // multiplied out, 16 * (pi/16), is pi itself, whose sine is positive, and would give 2.
    const auto List = RotatedPnts_Ellipse(Rect(0, 0, 3, 3), Point(0, 0), 0);
    EXPECT_EQ(List->GetPoints(16), Point(0, 1));
    const double Summed = [] {
        double t = 0;
        for (int i = 0; i < 16; ++i) t += Pi / 16;
        return t;
    }();
    EXPECT_GT(Summed, Pi);
    EXPECT_LT(std::sin(Summed) * 1.5 + 1.5, 1.5);
    EXPECT_GT(std::sin(16 * (Pi / 16)) * 1.5 + 1.5, 1.5);
}

TEST(RotatedPnts, EllipseOfAnEmptyOrInvertedRectangle) {
    const auto Flat = RotatedPnts_Ellipse(Rect(10, 10, 10, 50), Point(0, 0), 0);
    ASSERT_EQ(Flat->Count(), 32);
    for (const TPoint P : PointsOf(*Flat)) EXPECT_EQ(P.x, 10);
    const auto Inverted = RotatedPnts_Ellipse(Rect(200, 100, 0, 0), Point(0, 0), 0);
    ASSERT_EQ(Inverted->Count(), 32);
    EXPECT_EQ(Inverted->First(), Point(0, 50));
    EXPECT_EQ(Inverted->GetPoints(16), Point(200, 50));
}

// ---------------------------------------------------------------------------------------------
// Rounded rectangle
// ---------------------------------------------------------------------------------------------

TEST(RotatedPnts, RoundRectIsFourPointsToACorner) {
    // Radii 20 and 10: the inner points at 2.68 / 1.34 (1 - cos 30 degrees) and 10 / 5 (a half).
    const auto List = RotatedPnts_RoundRect(Rect(0, 0, 100, 60), 40, 20, Point(7, 9), 0);
    EXPECT_EQ(List->Capacity(), 16);
    EXPECT_EQ(PointsOf(*List),
              (std::vector<TPoint>{Point(0, 10), Point(3, 1), Point(10, 5), Point(20, 0), Point(80, 0),
                                   Point(90, 5), Point(97, 1), Point(100, 10), Point(100, 50), Point(97, 59),
                                   Point(90, 55), Point(80, 60), Point(20, 60), Point(10, 55), Point(3, 59),
                                   Point(0, 50)}));
}

TEST(RotatedPnts, RoundRectInnerPointsLieOnTheCornersDiagonal) {
    // Equal radii of 100: the inner points of the top left corner are at 13.4 and 50 on both axes.
    const auto List = RotatedPnts_RoundRect(Rect(0, 0, 1000, 1000), 200, 200, Point(0, 0), 0);
    EXPECT_EQ(List->GetPoints(1), Point(13, 13));
    EXPECT_EQ(List->GetPoints(2), Point(50, 50));
}

TEST(RotatedPnts, RoundRectQuarterTurn) {
    const auto List = RotatedPnts_RoundRect(Rect(0, 0, 100, 60), 40, 20, Point(0, 0), Pi / 2);
    EXPECT_EQ(List->GetPoints(0), Point(-10, 0));
    EXPECT_EQ(List->GetPoints(4), Point(0, 80));
    EXPECT_EQ(List->GetPoints(8), Point(-50, 100));
}

// ---------------------------------------------------------------------------------------------
// Arc, chord and pie
// ---------------------------------------------------------------------------------------------

TEST(RotatedPnts, ArcWithEqualEndsIsOnePoint) {
    const TRect R = Rect(0, 0, 200, 100);
    const auto OnTheAxis = RotatedPnts_Arc(R, Point(0, 0), Point(200, 50), Point(200, 50), 0);
    EXPECT_EQ(PointsOf(*OnTheAxis), std::vector<TPoint>{Point(200, 50)});
    // A direction, not a point on the ellipse: a far point gives the same.
    const auto Far = RotatedPnts_Arc(R, Point(0, 0), Point(900, 50), Point(900, 50), 0);
    EXPECT_EQ(PointsOf(*Far), std::vector<TPoint>{Point(200, 50)});
}

TEST(RotatedPnts, ArcAnglesAreParametricAnglesOfTheEllipse) {
    // (200, 0) is the top right corner: the diagonal, at parametric angle -pi/4, so the point is
    // (100 + 100 cos, 50 - 50 sin) of 45 degrees.
    const auto List = RotatedPnts_Arc(Rect(0, 0, 200, 100), Point(0, 0), Point(200, 0), Point(200, 0), 0);
    EXPECT_EQ(PointsOf(*List), std::vector<TPoint>{Point(171, 15)});
}

TEST(RotatedPnts, ArcStepsFromTheStartAndEndsAtTheEnd) {
    // From the right end (angle 0) to the left end (pi) through the bottom: 16 steps, then the end.
    const auto List = RotatedPnts_Arc(Rect(0, 0, 200, 100), Point(0, 0), Point(300, 50), Point(-5, 50), 0);
    ASSERT_EQ(List->Count(), 17);
    EXPECT_EQ(List->First(), Point(200, 50));
    EXPECT_EQ(List->GetPoints(8), Point(100, 100));
    EXPECT_EQ(List->Last(), Point(0, 50));
}

TEST(RotatedPnts, ArcWhoseEndLiesBeforeItsStartGoesOnThrough2Pi) {
    const TRect R = Rect(0, 0, 200, 200);
    // Start at angle 0 (right), end straight up, at -pi/2: taken as 3pi/2, three quarters round.
    const auto Long = RotatedPnts_Arc(R, Point(0, 0), Point(200, 100), Point(100, 0), 0);
    ASSERT_EQ(Long->Count(), 25); // 24 steps below 3pi/2, then the end
    EXPECT_EQ(Long->First(), Point(200, 100));
    EXPECT_EQ(Long->GetPoints(8), Point(100, 200)); // bottom
    EXPECT_EQ(Long->GetPoints(16), Point(0, 100));  // left
    EXPECT_EQ(Long->Last(), Point(100, 0));         // top
    // Nothing of the short way round, the upper right quarter.
    for (std::int32_t i = 1; i + 1 < Long->Count(); ++i) {
        const TPoint P = Long->GetPoints(i);
        EXPECT_FALSE(P.x > 100 && P.y < 100) << i;
    }
    // The other way is the short quarter: 8 steps and the end.
    const auto Short = RotatedPnts_Arc(R, Point(0, 0), Point(100, 0), Point(200, 100), 0);
    ASSERT_EQ(Short->Count(), 9);
    EXPECT_EQ(Short->First(), Point(100, 0));
    EXPECT_EQ(Short->Last(), Point(200, 100));
}

TEST(RotatedPnts, ArcIsRotatedPointByPoint) {
    const TRect R = Rect(0, 0, 200, 100);
    const auto Plain = RotatedPnts_Arc(R, Point(0, 0), Point(300, 50), Point(-5, 50), 0);
    const auto Turned = RotatedPnts_Arc(R, Point(100, 50), Point(300, 50), Point(-5, 50), Pi);
    ASSERT_EQ(Turned->Count(), Plain->Count());
    // A half turn round the centre mirrors each point through it.
    for (std::int32_t i = 0; i < Plain->Count(); ++i) {
        EXPECT_EQ(Turned->GetPointX(i), 200 - Plain->GetPointX(i)) << i;
        EXPECT_EQ(Turned->GetPointY(i), 100 - Plain->GetPointY(i)) << i;
    }
}

TEST(RotatedPnts, ArcOfAnEmptyRectangleStaysFinite) {
    // No width: the vertical offsets, scaled by the half-width 0, vanish, and every point lies in the
    // rectangle's column.
    const auto List = RotatedPnts_Arc(Rect(10, 0, 10, 100), Point(0, 0), Point(20, 90), Point(0, 10), 0);
    ASSERT_GE(List->Count(), 1);
    for (const TPoint P : PointsOf(*List)) {
        EXPECT_EQ(P.x, 10);
        EXPECT_GE(P.y, 0);
        EXPECT_LE(P.y, 100);
    }
    const auto Point0 = RotatedPnts_Arc(Rect(5, 5, 5, 5), Point(0, 0), Point(1, 1), Point(9, 9), 1.0);
    for (const TPoint P : PointsOf(*Point0)) EXPECT_EQ(P, Point0->First());
}

TEST(RotatedPnts, ChordIsTheArcsOutline) {
    const TRect R = Rect(-30, 10, 170, 90);
    const auto Arc = RotatedPnts_Arc(R, Point(5, 7), Point(170, 0), Point(-40, 95), 0.7);
    const auto Chord = RotatedPnts_Chord(R, Point(5, 7), Point(170, 0), Point(-40, 95), 0.7);
    EXPECT_EQ(PointsOf(*Chord), PointsOf(*Arc));
}

TEST(RotatedPnts, PieIsTheArcAndThenTheCentre) {
    const TRect R = Rect(0, 0, 200, 100);
    const auto Arc = RotatedPnts_Arc(R, Point(0, 0), Point(300, 50), Point(100, 0), 0);
    const auto Pie = RotatedPnts_Pie(R, Point(0, 0), Point(300, 50), Point(100, 0), 0);
    ASSERT_EQ(Pie->Count(), Arc->Count() + 1);
    EXPECT_EQ(Pie->Last(), Point(100, 50));
    std::vector<TPoint> Prefix = PointsOf(*Pie);
    Prefix.pop_back();
    EXPECT_EQ(Prefix, PointsOf(*Arc));
}

TEST(RotatedPnts, PieCentreIsRotated) {
    const auto Pie =
        RotatedPnts_Pie(Rect(0, 0, 200, 100), Point(0, 0), Point(200, 50), Point(200, 50), Pi / 2);
    EXPECT_EQ(PointsOf(*Pie), (std::vector<TPoint>{Point(-50, 200), Point(-50, 100)}));
}

TEST(RotatedPnts, PieMeasuresItsDirectionsFromTheHalfAxes) {
    // For a rectangle away from (0, 0) the directions are taken from (a, b) = (100, 100), not from the
    // centre (200, 200): (300, 200) is at atan(1/2) from there, while the arc finds it at 0.
    const TRect R = Rect(100, 100, 300, 300);
    const auto Pie = RotatedPnts_Pie(R, Point(0, 0), Point(300, 200), Point(300, 200), 0);
    EXPECT_EQ(PointsOf(*Pie), (std::vector<TPoint>{Point(289, 245), Point(200, 200)}));
    const auto Arc = RotatedPnts_Arc(R, Point(0, 0), Point(300, 200), Point(300, 200), 0);
    EXPECT_EQ(PointsOf(*Arc), std::vector<TPoint>{Point(300, 200)});
}

// ---------------------------------------------------------------------------------------------
// The number of segments
// ---------------------------------------------------------------------------------------------

TEST(RotatedPnts, EllipsesAndArcsFollowTheOutlineDivision) {
    const TRect R = Rect(0, 0, 200, 100);
    {
        TScopedValue<std::uint16_t> Div(Rot_OutlineDiv, 4);
        const auto Ellipse = RotatedPnts_Ellipse(R, Point(0, 0), 0);
        EXPECT_EQ(Ellipse->Count(), 8);
        EXPECT_EQ(Ellipse->Capacity(), 8);
        EXPECT_EQ(Ellipse->GetPoints(2), Point(100, 100));
        EXPECT_EQ(Ellipse->GetPoints(4), Point(0, 50));
        EXPECT_EQ(RotatedPnts_Arc(R, Point(0, 0), Point(300, 50), Point(-5, 50), 0)->Count(), 5);
        EXPECT_EQ(RotatedPnts_Chord(R, Point(0, 0), Point(300, 50), Point(-5, 50), 0)->Count(), 5);
        EXPECT_EQ(RotatedPnts_Pie(R, Point(0, 0), Point(300, 50), Point(-5, 50), 0)->Count(), 6);
        // The fixed forms don't depend on it.
        EXPECT_EQ(RotatedPnts_Rectangle(R, Point(0, 0), 0)->Count(), 4);
        EXPECT_EQ(RotatedPnts_RoundRect(R, 10, 10, Point(0, 0), 0)->Count(), 16);
    }
    {
        TScopedValue<std::uint16_t> Div(Rot_OutlineDiv, 8);
        EXPECT_EQ(RotatedPnts_Ellipse(R, Point(0, 0), 0)->Count(), 16);
        EXPECT_EQ(RotatedPnts_Arc(R, Point(0, 0), Point(300, 50), Point(-5, 50), 0)->Count(), 9);
    }
    EXPECT_EQ(RotatedPnts_Ellipse(R, Point(0, 0), 0)->Count(), 32);
}

TEST(RotatedPnts, NoSegmentsToTheHalfTurnRaisesForCurvesOnly) {
    TScopedValue<std::uint16_t> Div(Rot_OutlineDiv, 0);
    const TRect R = Rect(0, 0, 200, 100);
    EXPECT_THROW(RotatedPnts_Ellipse(R, Point(0, 0), 0), EZeroDivide);
    EXPECT_THROW(RotatedPnts_Arc(R, Point(0, 0), Point(1, 1), Point(2, 2), 0), EZeroDivide);
    EXPECT_THROW(RotatedPnts_Pie(R, Point(0, 0), Point(1, 1), Point(2, 2), 0), EZeroDivide);
    EXPECT_EQ(RotatedPnts_Rectangle(R, Point(0, 0), 0)->Count(), 4);
}

TEST(RotatedPnts, TheLargestDivisionStillEnds) {
    TScopedValue<std::uint16_t> Div(Rot_OutlineDiv, 65535);
    const TRect R = Rect(0, 0, 200, 100);
    EXPECT_EQ(RotatedPnts_Ellipse(R, Point(0, 0), 0)->Count(), 131070);
    const auto Arc = RotatedPnts_Arc(R, Point(0, 0), Point(200, 50), Point(200, 49), 0);
    EXPECT_GT(Arc->Count(), 130000);
    EXPECT_LE(Arc->Count(), 131072);
}

// ---------------------------------------------------------------------------------------------
// Drawing
// ---------------------------------------------------------------------------------------------

// Two surfaces with the same pen and brush: one for the routine, one for the plain device call.
class RotatedDraw : public ::testing::Test {
protected:
    static constexpr int Size = 200;

    RotatedDraw() : FRotated(Size, Size), FPlain(Size, Size) {
        for (TSurface* s : {&FRotated, &FPlain}) {
            SelectObject(s->Dc(), GetStockObject(BLACK_PEN));
            SelectObject(s->Dc(), GetStockObject(WHITE_BRUSH));
        }
    }

    HDC Rotated() { return FRotated.Dc(); }
    HDC Plain() { return FPlain.Dc(); }

    // The routine drew something, and exactly what the plain call drew.
    void ExpectSamePixels() {
        EXPECT_NE(FRotated.InkBox(), TRect{}) << "nothing drawn";
        EXPECT_TRUE(SameImage(FRotated, FPlain));
    }

    // The same with the plain polygon of `List`.
    void ExpectPolygonOf(const TPointList& List) {
        Polygon(Plain(), List.Points(), List.Count());
        ExpectSamePixels();
    }

    TSurface FRotated;
    TSurface FPlain;
};

TEST_F(RotatedDraw, RectangleIsThePolygonOfItsOutline) {
    const TRect R = Rect(40, 60, 160, 120);
    Rotated_Rectangle(Rotated(), R, Point(100, 90), 0.4);
    ExpectPolygonOf(*RotatedPnts_Rectangle(R, Point(100, 90), 0.4));
}

TEST_F(RotatedDraw, RoundRectIsThePolygonOfItsOutline) {
    const TRect R = Rect(30, 50, 170, 150);
    Rotated_RoundRect(Rotated(), R, 40, 30, Point(100, 100), -0.6);
    ExpectPolygonOf(*RotatedPnts_RoundRect(R, 40, 30, Point(100, 100), -0.6));
}

TEST_F(RotatedDraw, EllipseIsThePolygonOfItsOutline) {
    const TRect R = Rect(20, 60, 180, 140);
    Rotated_Ellipse(Rotated(), R, Point(90, 110), 0.5);
    ExpectPolygonOf(*RotatedPnts_Ellipse(R, Point(90, 110), 0.5));
}

TEST_F(RotatedDraw, EllipseOfASquareIsTheDevicesEllipse) {
    // The centre (40, 40) turned a quarter round (100, 100) is (160, 40): the circle moves with it.
    Rotated_Ellipse(Rotated(), Rect(0, 0, 80, 80), Point(100, 100), Pi / 2);
    Ellipse(Plain(), 120, 0, 200, 80);
    ExpectSamePixels();
    const QColor Background(GetRValue(test::Grey), GetGValue(test::Grey), GetBValue(test::Grey));
    FRotated.Image().fill(Background);
    FPlain.Image().fill(Background);

    // A circle of diameter 180: its 32-sided outline strays by most of a pixel from the true circle.
    const TRect Square = Rect(10, 10, 190, 190);
    Rotated_Ellipse(Rotated(), Square, Point(100, 100), 0.3);
    Ellipse(Plain(), 10, 10, 190, 190);
    ExpectSamePixels();

    // Not the polygon of the outline.
    TSurface Outline(Size, Size);
    SelectObject(Outline.Dc(), GetStockObject(BLACK_PEN));
    SelectObject(Outline.Dc(), GetStockObject(WHITE_BRUSH));
    const auto List = RotatedPnts_Ellipse(Square, Point(100, 100), 0.3);
    Polygon(Outline.Dc(), List->Points(), List->Count());
    EXPECT_FALSE(SameImage(FRotated, Outline));
}

TEST_F(RotatedDraw, EllipseOfAnInvertedSquareIsACircleToo) {
    // Width -160 and height 160: the diameter is the (negative) width, the centre (100, 100).
    Rotated_Ellipse(Rotated(), Rect(180, 20, 20, 180), Point(0, 0), 0);
    Ellipse(Plain(), 180, 180, 20, 20);
    ExpectSamePixels();
}

TEST_F(RotatedDraw, CircleMovesItsCentreAndKeepsItsDiameter) {
    // Centre (150, 100) a quarter turn round (100, 100) is (100, 150); the diameter 41 has radius 20.
    Rotated_Circle(Rotated(), Point(150, 100), 41, Point(100, 100), Pi / 2);
    Ellipse(Plain(), 80, 130, 121, 171);
    ExpectSamePixels();
}

TEST_F(RotatedDraw, ChordIsThePolygonOfItsOutline) {
    const TRect R = Rect(20, 40, 180, 160);
    Rotated_Chord(Rotated(), R, Point(100, 100), Point(180, 40), Point(20, 100), 0.25);
    ExpectPolygonOf(*RotatedPnts_Chord(R, Point(100, 100), Point(180, 40), Point(20, 100), 0.25));
}

TEST_F(RotatedDraw, PieIsThePolygonOfItsOutline) {
    const TRect Local = Rect(0, 0, 160, 120);
    Rotated_Pie(Rotated(), Local, Point(20, 20), Point(160, 0), Point(0, 60), -0.3);
    ExpectPolygonOf(*RotatedPnts_Pie(Local, Point(20, 20), Point(160, 0), Point(0, 60), -0.3));
}

TEST_F(RotatedDraw, ArcIsAnOpenPolyline) {
    const TRect R = Rect(20, 40, 180, 160);
    Rotated_Arc(Rotated(), R, Point(100, 100), Point(180, 100), Point(100, 40), 0.2);
    const auto List = RotatedPnts_Arc(R, Point(100, 100), Point(180, 100), Point(100, 40), 0.2);
    Polyline(Plain(), List->Points(), List->Count());
    ExpectSamePixels();
    // Open: nothing is filled, so no white appears.
    EXPECT_EQ(FRotated.CountPixels(RGB(255, 255, 255)), 0);
}

TEST_F(RotatedDraw, DegenerateShapesDrawWithoutFailing) {
    const TRect Flat = Rect(50, 50, 50, 150);
    const TRect Inverted = Rect(150, 150, 50, 60);
    const TRect Huge = Rect(MinInt, MinInt, MaxInt, MaxInt);
    for (const TRect& R : {Flat, Inverted, Huge, Rect(70, 70, 70, 70)}) {
        Rotated_Rectangle(Rotated(), R, Point(100, 100), 0.5);
        Rotated_RoundRect(Rotated(), R, 20, 20, Point(100, 100), 0.5);
        Rotated_Ellipse(Rotated(), R, Point(100, 100), 0.5);
        Rotated_Chord(Rotated(), R, Point(100, 100), Point(0, 0), Point(200, 200), 0.5);
        Rotated_Pie(Rotated(), R, Point(100, 100), Point(0, 0), Point(200, 200), 0.5);
        Rotated_Arc(Rotated(), R, Point(100, 100), Point(0, 0), Point(200, 200), 0.5);
    }
    Rotated_Circle(Rotated(), Point(MaxInt, MinInt), MinInt, Point(MinInt, MaxInt), 2.0);
    Rotated_Circle(Rotated(), Point(100, 100), -30, Point(0, 0), 0);
    // The flat rectangle at least leaves its column's line.
    EXPECT_NE(FRotated.InkBox(), TRect{});
}

// ---------------------------------------------------------------------------------------------
// Rotated text
// ---------------------------------------------------------------------------------------------

// A font service that keeps the logical fonts that reach it.
class TRecordingFonts : public TFontService {
public:
    QFont MakeFont(const LOGFONTW& fontDev) const override {
        Seen.push_back(fontDev);
        return TFontService::MakeFont(fontDev);
    }
    mutable std::vector<LOGFONTW> Seen;
};

class RotatedText : public ::testing::Test {
protected:
    void SetUp() override {
        auto Service = std::make_unique<TRecordingFonts>();
        FFonts = Service.get();
        FPrevious = SetFontService(std::move(Service));
    }
    void TearDown() override { SetFontService(std::move(FPrevious)); }

    static QString FaceOf(const LOGFONTW& lf) {
        int n = 0;
        while (n < LF_FACESIZE && lf.lfFaceName[n]) ++n;
        return QString::fromUtf16(lf.lfFaceName, n);
    }

    // The logical font that `Rotated_TextOut` of "x" in `Font` at `Alpha` made.
    LOGFONTW FontMadeFor(TFont& Font, double Alpha) {
        TSurface s(100, 100);
        FFonts->Seen.clear();
        Rotated_TextOut(s.Dc(), QStringLiteral("x"), Font, Point(20, 20), Point(0, 0), Alpha);
        EXPECT_FALSE(FFonts->Seen.empty());
        return FFonts->Seen.empty() ? LOGFONTW{} : FFonts->Seen.front();
    }

    TRecordingFonts* FFonts = nullptr;
    std::unique_ptr<TFontService> FPrevious;
};

TEST_F(RotatedText, TheLogicalFontFollowsTheFontAndTheAngle) {
    TFont Font;
    Font.SetName(QStringLiteral("Courier New"));
    Font.SetHeight(-14);
    Font.SetStyle(fsBold | fsItalic);
    Font.SetPitch(fpFixed);
    Font.SetCharset(2);
    const LOGFONTW lf = FontMadeFor(Font, Pi / 6);
    EXPECT_EQ(lf.lfHeight, -14);
    EXPECT_EQ(lf.lfWidth, 0);
    EXPECT_EQ(lf.lfEscapement, -300); // 30 degrees clockwise, in tenths
    EXPECT_EQ(lf.lfOrientation, 0);
    EXPECT_EQ(lf.lfWeight, 700);
    EXPECT_EQ(lf.lfItalic, 1);
    EXPECT_EQ(lf.lfUnderline, 0);
    EXPECT_EQ(lf.lfStrikeOut, 0);
    EXPECT_EQ(lf.lfCharSet, 2);
    EXPECT_EQ(lf.lfOutPrecision, 0);
    EXPECT_EQ(lf.lfClipPrecision, 0);
    EXPECT_EQ(lf.lfQuality, 0);
    EXPECT_EQ(lf.lfPitchAndFamily, 1);
    EXPECT_EQ(FaceOf(lf), QStringLiteral("Courier New"));
}

TEST_F(RotatedText, OtherStylesAndPitches) {
    TFont Font;
    Font.SetStyle(fsUnderline | fsStrikeOut);
    Font.SetPitch(fpVariable);
    const LOGFONTW Variable = FontMadeFor(Font, -Pi / 2);
    EXPECT_EQ(Variable.lfEscapement, 900);
    EXPECT_EQ(Variable.lfWeight, 400);
    EXPECT_EQ(Variable.lfItalic, 0);
    EXPECT_EQ(Variable.lfUnderline, 1);
    EXPECT_EQ(Variable.lfStrikeOut, 1);
    EXPECT_EQ(Variable.lfPitchAndFamily, 2);

    Font.SetPitch(fpDefault);
    // A thousandth of a radian is 0.57 tenths of a degree: -round(0.57) = -1.
    const LOGFONTW Default = FontMadeFor(Font, 0.001);
    EXPECT_EQ(Default.lfPitchAndFamily, 0);
    EXPECT_EQ(Default.lfEscapement, -1);
}

TEST_F(RotatedText, TheNameDefaultStandsForTheDefaultFace) {
    TFont Font;
    Font.SetName(QStringLiteral("Default"));
    EXPECT_EQ(FaceOf(FontMadeFor(Font, 0)), QString::fromUtf16(DefFontName));
    EXPECT_EQ(QString::fromUtf16(DefFontName), TFont().Name());
    // Face names are matched without regard to case, as the font service matches them.
    Font.SetName(QStringLiteral("DEFAULT"));
    EXPECT_EQ(FaceOf(FontMadeFor(Font, 0)), QString::fromUtf16(DefFontName));
}

TEST_F(RotatedText, AtZeroItIsThePlainTextOfTheFont) {
    TSurface Rotated(120, 60, RGB(255, 255, 255));
    TSurface Plain(120, 60, RGB(255, 255, 255));
    TFont Font;
    Font.SetHeight(-20);
    Font.SetColor(clRed);
    Rotated_TextOut(Rotated.Dc(), QStringLiteral("Vellorum"), Font, Point(10, 15), Point(300, -40), 0);

    SelectObject(Plain.Dc(), Font.Handle());
    SetTextColor(Plain.Dc(), RGB(255, 0, 0));
    TextOutW(Plain.Dc(), 10, 15, u"Vellorum", 8);
    SelectObject(Plain.Dc(), GetStockObject(SYSTEM_FONT));

    EXPECT_GT(Rotated.CountPixels(test::Red), 20);
    EXPECT_TRUE(Rotated.Image() == Plain.Image());
}

TEST_F(RotatedText, ItDrawsAtTheRotatedPositionInTheFontsColour) {
    TSurface s(200, 200);
    SetBkMode(s.Dc(), TRANSPARENT);
    TFont Font;
    Font.SetHeight(-20);
    Font.SetColor(clBlue);
    // (150, 100) a quarter turn round (100, 100) is (100, 150); the text runs down from there, its
    // cell to the left of the point.
    Rotated_TextOut(s.Dc(), QStringLiteral("WWWW"), Font, Point(150, 100), Point(100, 100), Pi / 2);
    const TRect Ink = s.InkBox();
    ASSERT_NE(Ink, TRect{});
    EXPECT_EQ(s.CountPixels(test::Blue), 200 * 200 - s.CountPixels(test::Grey)); // only the font's colour
    EXPECT_GE(Ink.Left, 100 - 30);
    EXPECT_LE(Ink.Right, 100 + 2);
    EXPECT_GE(Ink.Top, 150 - 2);
    EXPECT_GT(Ink.Bottom, 150 + 30); // four wide letters, downwards
    EXPECT_GT(Ink.Bottom - Ink.Top, Ink.Right - Ink.Left);
}

TEST_F(RotatedText, TheFormerFontIsSelectedAgainAndTheColourStays) {
    TSurface s(100, 100);
    TFont Former;
    SelectObject(s.Dc(), Former.Handle());
    TFont Font;
    Font.SetColor(clBlue);
    Rotated_TextOut(s.Dc(), QStringLiteral("x"), Font, Point(20, 20), Point(0, 0), 1.0);
    EXPECT_EQ(GetCurrentObject(s.Dc(), OBJ_FONT), static_cast<HGDIOBJ>(Former.Handle()));
    EXPECT_EQ(GetTextColor(s.Dc()), test::Blue);
    SelectObject(s.Dc(), GetStockObject(SYSTEM_FONT));
}

TEST_F(RotatedText, ASystemColourIsResolved) {
    TSurface s(100, 100);
    TFont Font; // clWindowText
    Rotated_TextOut(s.Dc(), QStringLiteral("x"), Font, Point(20, 20), Point(0, 0), 0);
    EXPECT_EQ(GetTextColor(s.Dc()), ColorToRGB(clWindowText));
}

TEST_F(RotatedText, ANonFiniteAngleRaisesAndDrawsNothing) {
    TSurface s(100, 100);
    TFont Font;
    EXPECT_THROW(Rotated_TextOut(s.Dc(), QStringLiteral("x"), Font, Point(20, 20), Point(0, 0),
                                 std::numeric_limits<double>::quiet_NaN()),
                 EInvalidOp);
    EXPECT_EQ(s.InkBox(), TRect{});
}

TEST_F(RotatedText, EmptyTextDrawsNothing) {
    TSurface s(100, 100);
    TFont Font;
    Rotated_TextOut(s.Dc(), QString(), Font, Point(20, 20), Point(0, 0), 0.5);
    EXPECT_EQ(s.InkBox(), TRect{});
}

} // namespace
} // namespace vl
