#include "geometry/Vlprocs.h"

#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

using namespace vl;

namespace {
constexpr double Pi = std::numbers::pi;
}

// --- Angles ---------------------------------------------------------------------------------------

TEST(GetAngleInt, OriginGivesMinusHalfPi) {
    EXPECT_DOUBLE_EQ(GetAngle(0, 0), -Pi / 2);
}

TEST(GetAngleInt, VerticalDirections) {
    EXPECT_DOUBLE_EQ(GetAngle(0, 5), Pi / 2);
    EXPECT_DOUBLE_EQ(GetAngle(0, 1), Pi / 2);
    EXPECT_DOUBLE_EQ(GetAngle(0, -5), -Pi / 2);
}

TEST(GetAngleInt, QuadrantsBetweenMinusHalfPiAndThreeHalvesPi) {
    EXPECT_DOUBLE_EQ(GetAngle(1, 0), 0.0);
    EXPECT_DOUBLE_EQ(GetAngle(1, 1), Pi / 4);
    EXPECT_DOUBLE_EQ(GetAngle(1, -1), -Pi / 4);
    EXPECT_DOUBLE_EQ(GetAngle(-1, 0), Pi);
    EXPECT_DOUBLE_EQ(GetAngle(-1, 1), 3 * Pi / 4);
    EXPECT_DOUBLE_EQ(GetAngle(-1, -1), 5 * Pi / 4);
}

TEST(GetAngleDouble, DeadZoneBelowOneHundredthIsVertical) {
    EXPECT_DOUBLE_EQ(GetAngle(0.005, 1.0), Pi / 2);
    EXPECT_DOUBLE_EQ(GetAngle(-0.009, 1.0), Pi / 2);
    EXPECT_DOUBLE_EQ(GetAngle(0.005, -1.0), -Pi / 2);
    EXPECT_DOUBLE_EQ(GetAngle(0.0, 0.0), -Pi / 2);
}

TEST(GetAngleDouble, OutsideTheDeadZoneFollowsTheQuadrant) {
    EXPECT_DOUBLE_EQ(GetAngle(2.0, 2.0), Pi / 4);
    EXPECT_DOUBLE_EQ(GetAngle(0.01, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(GetAngle(-1.0, -1.0), 5 * Pi / 4);
    EXPECT_DOUBLE_EQ(GetAngle(-1.0, 0.0), Pi);
}

TEST(CalculateAngle, LeftDownIsReportedAsItsOpposite) {
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(0, 0), Point(-1, -1)), Pi / 4);
    EXPECT_DOUBLE_EQ(GetAngle(-1, -1), 5 * Pi / 4);
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(0, 0), Point(-1, 1)), -Pi / 4);
}

TEST(CalculateAngle, AxesGiveFullDirections) {
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(5, 5), Point(2, 5)), Pi);
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(5, 5), Point(9, 5)), 0.0);
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(5, 5), Point(5, 5)), 0.0);
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(5, 5), Point(5, 1)), 3 * Pi / 2);
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(5, 5), Point(5, 8)), Pi / 2);
}

TEST(CalculateAngle, SlopeToTheRight) {
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(0, 0), Point(2, 2)), Pi / 4);
    EXPECT_DOUBLE_EQ(CalculateAngle(Point(0, 0), Point(1, -1)), -Pi / 4);
}

// --- Limits ---------------------------------------------------------------------------------------

TEST(GetPolygonLimits, NoPointsGiveTheInvertedStartingRecord) {
    const TLimRec L = GetPolygonLimits(nullptr, 0);
    EXPECT_EQ(L, LimRec(0x7FFFFFFF, 0x7FFFFFFF, -2147483647, -2147483647));
    EXPECT_GT(L.Xmin, L.Xmax);
    EXPECT_GT(L.Ymin, L.Ymax);
}

TEST(GetPolygonLimits, OnePointGivesMinEqualToMax) {
    const TPoint p = Point(12, -7);
    const TLimRec L = GetPolygonLimits(&p, 1);
    EXPECT_EQ(L.Min(), p);
    EXPECT_EQ(L.Max(), p);
}

TEST(GetPolygonLimits, WidensByEveryPoint) {
    const std::array<TPoint, 4> pts{Point(3, 4), Point(-2, 10), Point(8, -6), Point(0, 0)};
    EXPECT_EQ(GetPolygonLimits(pts.data(), 4), LimRec(-2, -6, 8, 10));
    EXPECT_EQ(GetPolygonLimits(pts.data(), 1), LimRec(3, 4, 3, 4));
}

TEST(MaxRect, TakesSmallestFirstFieldsAndLargestLastFields) {
    const std::vector<TRect> rects{Rect(0, 0, 10, 10), Rect(-5, 3, 4, 20), Rect(2, -8, 30, 1)};
    EXPECT_EQ(MaxRect(rects), Rect(-5, -8, 30, 20));
}

TEST(MaxRect, FlippedRectanglesAreNotNormalised) {
    // The fields are taken as they stand: a flipped last element yields its own fields when nothing
    // else is smaller or larger.
    const std::vector<TRect> one{Rect(10, 10, 0, 0)};
    EXPECT_EQ(MaxRect(one), Rect(10, 10, 0, 0));
    const std::vector<TRect> two{Rect(0, 0, 10, 10), Rect(20, 20, 5, 5)};
    EXPECT_EQ(MaxRect(two), Rect(0, 0, 10, 10));
}

TEST(MaxRect, StartsFromTheLastElement) {
    // With a single element nothing but the starting value is involved.
    const std::vector<TRect> rects{Rect(1, 2, 3, 4)};
    EXPECT_EQ(MaxRect(rects), Rect(1, 2, 3, 4));
}

TEST(MaxRect, EmptyArrayRaisesListIndexError) {
    EXPECT_THROW(MaxRect(std::span<const TRect>()), EListError);
    EXPECT_THROW(MaxLimRec(std::span<const TLimRec>()), EListError);
}

TEST(MaxLimRec, CombinesAllLimits) {
    const std::vector<TLimRec> lims{LimRec(0, 0, 1, 1), LimRec(-3, 5, 2, 9), EmptyLimRec};
    EXPECT_EQ(MaxLimRec(lims), LimRec(-3, 0, 2, 9));
}

TEST(PtInLimits, InclusiveOnAllFourSides) {
    const TLimRec L = LimRec(0, 0, 10, 20);
    EXPECT_TRUE(PtInLimits(Point(0, 0), L));
    EXPECT_TRUE(PtInLimits(Point(10, 20), L));
    EXPECT_TRUE(PtInLimits(Point(0, 20), L));
    EXPECT_TRUE(PtInLimits(Point(10, 0), L));
    EXPECT_TRUE(PtInLimits(Point(5, 5), L));
    EXPECT_FALSE(PtInLimits(Point(-1, 5), L));
    EXPECT_FALSE(PtInLimits(Point(11, 5), L));
    EXPECT_FALSE(PtInLimits(Point(5, -1), L));
    EXPECT_FALSE(PtInLimits(Point(5, 21), L));
}

// --- LineInRect -----------------------------------------------------------------------------------

namespace {
const TLimRec Box = LimRec(0, 0, 100, 100);
}

TEST(LineInRect, EndStrictlyInsideIsTrue) {
    EXPECT_TRUE(LineInRect(Point(50, 50), Point(1000, -3000), Box));
    EXPECT_TRUE(LineInRect(Point(-1000, 7), Point(1, 99), Box));
}

TEST(LineInRect, CrossingTheRightEdgeIsTrue) {
    // y at x = 100 is 0.3 * 150 + 20 = 65.
    EXPECT_TRUE(LineInRect(Point(-50, 20), Point(150, 80), Box));
}

TEST(LineInRect, CrossingTheLeftEdgeIsTrue) {
    // Nothing beyond the right edge; at x = 0, y is 90.
    EXPECT_TRUE(LineInRect(Point(-50, 40), Point(50, 140), Box));
}

TEST(LineInRect, SegmentStoppingShortButPointingAtTheRectangleIsTrue) {
    // Both ends beyond the right edge: the test runs on the extension, y = 66.67 at x = 100.
    EXPECT_TRUE(LineInRect(Point(150, 50), Point(120, 60), Box));
    // Both ends beyond the bottom edge, vertical: x = 50 at y = 100.
    EXPECT_TRUE(LineInRect(Point(50, 150), Point(50, 120), Box));
}

TEST(LineInRect, CrossingAHorizontalEdgeIsTrue) {
    EXPECT_TRUE(LineInRect(Point(50, -20), Point(50, -10), Box));
    EXPECT_TRUE(LineInRect(Point(50, -20), Point(60, 200), Box));
}

TEST(LineInRect, HorizontalSegmentMissingIsFalse) {
    EXPECT_FALSE(LineInRect(Point(-10, -5), Point(200, -5), Box));
    EXPECT_FALSE(LineInRect(Point(-10, 100), Point(200, 100), Box)); // along an edge: strict
}

TEST(LineInRect, VerticalSegmentBesideIsFalse) {
    EXPECT_FALSE(LineInRect(Point(150, -20), Point(150, 200), Box));
}

TEST(LineInRect, EndOnAnEdgeIsNotTrueByItself) {
    // One end on the left edge, the other outside along that edge: no step finds the inside.
    EXPECT_FALSE(LineInRect(Point(0, 50), Point(0, 200), Box));
    // One end on a corner, the other outside on the diagonal away from the box.
    EXPECT_FALSE(LineInRect(Point(0, 0), Point(-5, -5), Box));
    // A single point on the edge.
    EXPECT_FALSE(LineInRect(Point(0, 50), Point(0, 50), Box));
}

TEST(LineInRect, SegmentThroughACornerOnlyIsFalse) {
    EXPECT_FALSE(LineInRect(Point(-50, 50), Point(50, 150), Box));
}

TEST(LineInRect, EndOnAnEdgeWithTheOtherOutsideIsTrueThroughTheEdgeCrossing) {
    // Not through the first step: the crossing of the left edge lies at y = 5.
    EXPECT_TRUE(LineInRect(Point(0, 5), Point(-5, 5), Box));
}

// --- IntersectPoint -------------------------------------------------------------------------------

TEST(IntersectPoint, CrossingSegmentsGiveTheirCrossing) {
    TPoint pt = Point(-1, -1);
    EXPECT_TRUE(IntersectPoint(Point(0, 0), Point(10, 10), Point(0, 10), Point(10, 0), pt));
    EXPECT_EQ(pt, Point(5, 5));
}

TEST(IntersectPoint, SegmentsMeetingInAnEndPointCross) {
    TPoint pt;
    EXPECT_TRUE(IntersectPoint(Point(0, 0), Point(10, 10), Point(10, 10), Point(20, 0), pt));
    EXPECT_EQ(pt, Point(10, 10));
    EXPECT_TRUE(IntersectPoint(Point(0, 0), Point(10, 0), Point(10, 0), Point(10, 10), pt));
    EXPECT_EQ(pt, Point(10, 0));
}

TEST(IntersectPoint, CollinearSegmentsDoNotCross) {
    TPoint pt = Point(7, 7);
    EXPECT_FALSE(IntersectPoint(Point(0, 0), Point(10, 0), Point(5, 0), Point(15, 0), pt));
    EXPECT_EQ(pt, Point(7, 7));
}

TEST(IntersectPoint, ParallelSegmentsDoNotCross) {
    TPoint pt = Point(7, 7);
    EXPECT_FALSE(IntersectPoint(Point(0, 0), Point(10, 10), Point(0, 1), Point(10, 11), pt));
    EXPECT_EQ(pt, Point(7, 7));
}

TEST(IntersectPoint, LinesCrossingOutsideTheSegmentsAnswerFalseAndKeepPt) {
    TPoint pt = Point(3, 4);
    EXPECT_FALSE(IntersectPoint(Point(0, 0), Point(4, 4), Point(0, 10), Point(4, 6), pt));
    EXPECT_EQ(pt, Point(3, 4));
}

TEST(IntersectPoint, CrossingRoundsTiesToEven) {
    // The crossing lies at (1.5, 0.5).
    TPoint pt;
    EXPECT_TRUE(IntersectPoint(Point(0, 0), Point(3, 1), Point(0, 1), Point(3, 0), pt));
    EXPECT_EQ(pt, Point(2, 0));
}

TEST(IntersectPoint, LargeCoordinatesWrapAsThirtyTwoBitArithmetic) {
    // The numerators -30000 * 900000000 wrap to -1835577344 in 32 bits; det is -1800000000, so the
    // crossing comes out at (1.0197, 1.0197) instead of (15000, 15000).
    TPoint pt;
    EXPECT_TRUE(IntersectPoint(Point(0, 0), Point(30000, 30000), Point(0, 30000), Point(30000, 0), pt));
    EXPECT_EQ(pt, Point(1, 1));
}

// --- PtOnLine -------------------------------------------------------------------------------------

TEST(PtOnLine, AxisParallelLineWithZeroDistanceHitsPointsOnTheLine) {
    EXPECT_TRUE(PtOnLine(Point(50, 0), Point(0, 0), Point(100, 0), 0));
    EXPECT_TRUE(PtOnLine(Point(0, 0), Point(0, 0), Point(100, 0), 0));
    EXPECT_TRUE(PtOnLine(Point(100, 0), Point(100, 0), Point(0, 0), 0));
    EXPECT_FALSE(PtOnLine(Point(50, 1), Point(0, 0), Point(100, 0), 0));
    EXPECT_FALSE(PtOnLine(Point(101, 0), Point(0, 0), Point(100, 0), 0));
    EXPECT_TRUE(PtOnLine(Point(3, 40), Point(3, 90), Point(3, 10), 0));
}

TEST(PtOnLine, AxisParallelLineIsWidenedInclusivelyOnEverySide) {
    EXPECT_TRUE(PtOnLine(Point(102, 2), Point(0, 0), Point(100, 0), 2));
    EXPECT_TRUE(PtOnLine(Point(-2, -2), Point(0, 0), Point(100, 0), 2));
    EXPECT_FALSE(PtOnLine(Point(103, 0), Point(0, 0), Point(100, 0), 2));
    EXPECT_FALSE(PtOnLine(Point(50, 3), Point(0, 0), Point(100, 0), 2));
}

TEST(PtOnLine, AxisParallelLineAtTheEndOfTheRangeDoesNotOverflow) {
    const std::int32_t big = std::numeric_limits<std::int32_t>::max();
    EXPECT_TRUE(PtOnLine(Point(big, 0), Point(big - 1, 0), Point(big, 0), 10));
    EXPECT_TRUE(PtOnLine(Point(-big - 1, 5), Point(-big - 1, 0), Point(-big - 1, 10), 10));
}

TEST(PtOnLine, SlantedLineWithZeroDistanceIsAlwaysFalse) {
    EXPECT_FALSE(PtOnLine(Point(50, 50), Point(0, 0), Point(100, 100), 0));
    EXPECT_FALSE(PtOnLine(Point(0, 0), Point(0, 0), Point(100, 100), 0));
    EXPECT_FALSE(PtOnLine(Point(40, 20), Point(0, 0), Point(100, 50), 0));
}

TEST(PtOnLine, FlatLineMeasuresAcrossInY) {
    // Slope 0.5: qy is round(0.5 * x).
    EXPECT_TRUE(PtOnLine(Point(40, 20), Point(0, 0), Point(100, 50), 1));
    EXPECT_FALSE(PtOnLine(Point(40, 21), Point(0, 0), Point(100, 50), 1));
    EXPECT_TRUE(PtOnLine(Point(40, 21), Point(0, 0), Point(100, 50), 2));
    EXPECT_TRUE(PtOnLine(Point(40, 19), Point(0, 0), Point(100, 50), 2));
    // round(-1.5) is -2: qy at x = 3 is 2.
    EXPECT_TRUE(PtOnLine(Point(3, 2), Point(0, 0), Point(100, 50), 1));
    EXPECT_FALSE(PtOnLine(Point(3, 1), Point(0, 0), Point(100, 50), 1));
}

TEST(PtOnLine, SteepLineMeasuresAcrossInX) {
    // Slope 10: qx is round(y / 10).
    EXPECT_TRUE(PtOnLine(Point(5, 50), Point(0, 0), Point(10, 100), 1));
    EXPECT_FALSE(PtOnLine(Point(7, 50), Point(0, 0), Point(10, 100), 2));
    EXPECT_TRUE(PtOnLine(Point(7, 50), Point(0, 0), Point(10, 100), 3));
    EXPECT_FALSE(PtOnLine(Point(5, 51), Point(0, 0), Point(10, 100), 0));
}

TEST(PtOnLine, EndOrderDoesNotMatter) {
    for (const TPoint& pt : {Point(40, 20), Point(40, 21), Point(3, 1), Point(-30, -15), Point(7, 50)}) {
        for (std::uint16_t d : {1, 2, 5}) {
            EXPECT_EQ(PtOnLine(pt, Point(0, 0), Point(100, 50), d),
                      PtOnLine(pt, Point(100, 50), Point(0, 0), d));
            EXPECT_EQ(PtOnLine(pt, Point(0, 0), Point(10, 100), d),
                      PtOnLine(pt, Point(10, 100), Point(0, 0), d));
        }
    }
}

TEST(PtOnLine, SlantedLineIsNotLimitedToTheSegment) {
    EXPECT_TRUE(PtOnLine(Point(400, 200), Point(0, 0), Point(100, 50), 1));
    EXPECT_TRUE(PtOnLine(Point(-400, -200), Point(0, 0), Point(100, 50), 1));
}

TEST(PtOnLine, FallingLine) {
    // From (0, 100) to (100, 0): slope -1 is flat by the test, qy = 100 - x.
    EXPECT_TRUE(PtOnLine(Point(30, 70), Point(0, 100), Point(100, 0), 1));
    EXPECT_FALSE(PtOnLine(Point(30, 72), Point(0, 100), Point(100, 0), 2));
}

// --- Rotation -------------------------------------------------------------------------------------

TEST(RotatePnt, ZeroAngleLeavesThePoint) {
    TPoint p = Point(123, -456);
    RotatePnt(p, Point(7, 9), 0.0);
    EXPECT_EQ(p, Point(123, -456));
}

TEST(RotatePnt, OriginAtThePointLeavesItForEveryAngle) {
    for (double a : {0.1, 0.5, 1.0, Pi / 2, Pi, 4.0, -2.5, 100.0}) {
        TPoint p = Point(31, -17);
        RotatePnt(p, Point(31, -17), a);
        EXPECT_EQ(p, Point(31, -17)) << a;
    }
}

TEST(RotatePnt, QuarterTurnIsExact) {
    TPoint p = Point(10, 0);
    RotatePnt(p, Point(0, 0), Pi / 2);
    EXPECT_EQ(p, Point(0, 10));
    TPoint q = Point(3, 4);
    RotatePnt(q, Point(1, 1), Pi / 2);
    EXPECT_EQ(q, Point(-2, 3));
}

TEST(RotatePnt, HalfTurnMirrorsThroughTheOrigin) {
    TPoint p = Point(10, 5);
    RotatePnt(p, Point(0, 0), Pi);
    EXPECT_EQ(p, Point(-10, -5));
}

TEST(RotatePnt, BothCoordinatesComeFromTheOldPoint) {
    // 45 degrees: (10, 0) goes to (7.07, 7.07), rounded (7, 7).
    TPoint p = Point(10, 0);
    RotatePnt(p, Point(0, 0), Pi / 4);
    EXPECT_EQ(p, Point(7, 7));
}

TEST(RotatePoints, EqualsRotatePntPerPoint) {
    std::vector<TPoint> pts;
    for (int x = -40; x <= 40; x += 7)
        for (int y = -30; y <= 50; y += 9) pts.push_back(Point(x * 13, y * 11));
    for (double a : {0.7, -1.3, Pi / 3, 2.0}) {
        std::vector<TPoint> batch = pts;
        RotatePoints(batch.data(), static_cast<std::int32_t>(batch.size()), Point(13, -7), a);
        for (std::size_t i = 0; i < pts.size(); ++i) {
            TPoint single = pts[i];
            RotatePnt(single, Point(13, -7), a);
            EXPECT_EQ(batch[i], single) << i << " at " << a;
        }
    }
}

TEST(RotatePoints, ZeroCountTouchesNothing) {
    TPoint p = Point(1, 2);
    RotatePoints(&p, 0, Point(0, 0), Pi);
    EXPECT_EQ(p, Point(1, 2));
}

// --- lg, InchPerMeter, CalcPixPerM ----------------------------------------------------------------

TEST(Lg, DecimalLogarithm) {
    EXPECT_EQ(lg(100.0), 2.0);
    EXPECT_EQ(lg(10.0), 1.0);
    EXPECT_EQ(lg(1.0), 0.0);
    EXPECT_DOUBLE_EQ(lg(1000.0), 3.0);
    EXPECT_DOUBLE_EQ(lg(0.01), -2.0);
}

TEST(Lg, MathErrorGivesZeroWithoutException) {
    EXPECT_EQ(lg(0.0), 0.0);
    EXPECT_EQ(lg(-1.0), 0.0);
    EXPECT_EQ(lg(std::numeric_limits<double>::quiet_NaN()), 0.0);
}

TEST(InchPerMeter, IsTheLibrarysFigure) {
    EXPECT_EQ(InchPerMeter, 39.0625);
}

TEST(CalcPixPerM, PixelsPerMetreFromResolutionAndSize) {
    EXPECT_EQ(CalcPixPerM({1024, 768, 320, 240}), Point(3200, 3200));
    // 1920 / 508 * 1000 = 3779.53; 1080 / 286 * 1000 = 3776.22.
    EXPECT_EQ(CalcPixPerM({1920, 1080, 508, 286}), Point(3780, 3776));
}

TEST(CalcPixPerM, RoundsToNearest) {
    EXPECT_EQ(CalcPixPerM({1, 2, 3, 3}), Point(333, 667));
}

TEST(CalcPixPerM, ZeroSizeRaises) {
    EXPECT_THROW(CalcPixPerM({100, 100, 0, 10}), EZeroDivide);
    EXPECT_THROW(CalcPixPerM({100, 100, 10, 0}), EZeroDivide);
}

TEST(CalcPixPerM, ResultBeyondThirtyTwoBitsRaises) {
    EXPECT_THROW(CalcPixPerM({0x7FFFFFFF, 1, 1, 1}), EInvalidOp);
}
