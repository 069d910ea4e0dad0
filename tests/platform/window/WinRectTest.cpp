// The rectangle rules of the window system.

#include "platform/core/WinApi.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vl {
namespace {

struct SubtractCase {
    const char* Name;
    TRect Src1;
    TRect Src2;
    TRect Expected;
    bool Result;
};

void PrintRect(const TRect& r, std::ostream* os) {
    *os << "(" << r.Left << ", " << r.Top << ", " << r.Right << ", " << r.Bottom << ")";
}

// "(0, 0, 300, 200) minus (0, 0, 20, 200) is (20, 0, 300, 200)".
void PrintTo(const SubtractCase& c, std::ostream* os) {
    PrintRect(c.Src1, os);
    *os << " minus ";
    PrintRect(c.Src2, os);
    *os << " is ";
    PrintRect(c.Expected, os);
    if (!c.Result) *os << ", false";
}

class WinRectSubtract : public ::testing::TestWithParam<SubtractCase> {};

TEST_P(WinRectSubtract, FollowsTheWindowSystemRule) {
    const SubtractCase& c = GetParam();
    TRect dst = Rect(99, 99, 99, 99);
    EXPECT_EQ(SubtractRect(dst, c.Src1, c.Src2), c.Result);
    EXPECT_EQ(dst, c.Expected);
}

INSTANTIATE_TEST_SUITE_P(WinRect, WinRectSubtract,
                         ::testing::Values(SubtractCase{"FullHeightStripAtLeftIsCut", Rect(0, 0, 300, 200),
                                                        Rect(0, 0, 20, 200), Rect(20, 0, 300, 200), true},
                                           SubtractCase{"FullHeightStripAtRightIsCut", Rect(0, 0, 300, 200),
                                                        Rect(280, -5, 310, 205), Rect(0, 0, 280, 200), true},
                                           SubtractCase{"FullWidthStripAtTopIsCut", Rect(0, 0, 300, 200),
                                                        Rect(0, 0, 300, 15), Rect(0, 15, 300, 200), true},
                                           SubtractCase{"FullWidthStripAtBottomIsCut", Rect(0, 0, 300, 200),
                                                        Rect(-1, 190, 301, 260), Rect(0, 0, 300, 190), true},
                                           SubtractCase{"StripInTheMiddleCutsNothing", Rect(0, 0, 300, 200),
                                                        Rect(100, 0, 120, 200), Rect(0, 0, 300, 200), true},
                                           SubtractCase{"PartialHeightStripCutsNothing", Rect(0, 0, 300, 200),
                                                        Rect(0, 0, 20, 100), Rect(0, 0, 300, 200), true},
                                           SubtractCase{"DisjointCutsNothing", Rect(0, 0, 300, 200),
                                                        Rect(400, 0, 500, 200), Rect(0, 0, 300, 200), true},
                                           SubtractCase{"CoveredCompletelyIsEmpty", Rect(10, 10, 20, 20),
                                                        Rect(0, 0, 30, 30), Rect(0, 0, 0, 0), false},
                                           SubtractCase{"EmptySourceIsEmpty", Rect(10, 10, 10, 20),
                                                        Rect(0, 0, 1, 1), Rect(0, 0, 0, 0), false}),
                         [](const ::testing::TestParamInfo<SubtractCase>& info) {
                             return std::string(info.param.Name);
                         });

TEST(WinRect, IntersectRectOfOverlappingRectangles) {
    TRect dst;
    EXPECT_TRUE(IntersectRect(dst, Rect(0, 0, 100, 50), Rect(40, 20, 200, 80)));
    EXPECT_EQ(dst, Rect(40, 20, 100, 50));
}

TEST(WinRect, IntersectRectOfTouchingRectanglesIsEmpty) {
    TRect dst = Rect(1, 2, 3, 4);
    EXPECT_FALSE(IntersectRect(dst, Rect(0, 0, 100, 50), Rect(100, 0, 200, 50)));
    EXPECT_EQ(dst, Rect(0, 0, 0, 0));
}

TEST(WinRect, IntersectRectWithAnEmptyOrFlippedOperandIsEmpty) {
    TRect dst;
    EXPECT_FALSE(IntersectRect(dst, Rect(0, 0, 100, 50), Rect(50, 40, 10, 45)));
    EXPECT_EQ(dst, Rect(0, 0, 0, 0));
    EXPECT_FALSE(IntersectRect(&dst, &dst, &dst));
}

TEST(WinRect, UnionRectLeavesEmptyOperandsOut) {
    TRect dst;
    EXPECT_TRUE(UnionRect(dst, Rect(0, 0, 10, 10), Rect(5, 5, 5, 50)));
    EXPECT_EQ(dst, Rect(0, 0, 10, 10));
    EXPECT_TRUE(UnionRect(dst, Rect(0, 0, 10, 10), Rect(20, -5, 30, 5)));
    EXPECT_EQ(dst, Rect(0, -5, 30, 10));
}

TEST(WinRect, PointInRectExcludesRightAndBottom) {
    EXPECT_TRUE(PtInRect(Rect(0, 0, 10, 10), Point(0, 9)));
    EXPECT_FALSE(PtInRect(Rect(0, 0, 10, 10), Point(10, 5)));
    EXPECT_FALSE(PtInRect(Rect(0, 0, 10, 10), Point(5, 10)));
}

TEST(WinRect, ShiftStateBitsAtTheFrameworkPositions) {
    EXPECT_EQ(TShiftState(ssShift).Bits(), 1u);
    EXPECT_EQ(TShiftState(ssAlt).Bits(), 2u);
    EXPECT_EQ(TShiftState(ssCtrl).Bits(), 4u);
    EXPECT_EQ(TShiftState(ssLeft).Bits(), 8u);
    EXPECT_EQ(TShiftState(ssRight).Bits(), 16u);
    EXPECT_EQ(TShiftState(ssMiddle).Bits(), 32u);
    EXPECT_EQ(TShiftState(ssDouble).Bits(), 64u);
    EXPECT_TRUE((ssShift | ssDouble).Contains(ssDouble));
}

TEST(WinRect, ScrollBarExtentComesFromTheStyle) {
    EXPECT_GT(GetSystemMetrics(SM_CXVSCROLL), 0);
    EXPECT_EQ(GetSystemMetrics(SM_CXVSCROLL), GetSystemMetrics(SM_CYHSCROLL));
}

} // namespace
} // namespace vl
