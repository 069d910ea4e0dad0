#include "geometry/Vltypes.h"

#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace vl;

TEST(Vltypes, LimRecTakesItsFieldsInOrder) {
    const TLimRec L = LimRec(1, 2, 3, 4);
    EXPECT_EQ(L.Xmin, 1);
    EXPECT_EQ(L.Ymin, 2);
    EXPECT_EQ(L.Xmax, 3);
    EXPECT_EQ(L.Ymax, 4);
}

TEST(Vltypes, LimRecIsAlsoTwoPointsMinAndMax) {
    TLimRec L = LimRec(-5, 7, 10, 20);
    EXPECT_EQ(L.Min(), Point(-5, 7));
    EXPECT_EQ(L.Max(), Point(10, 20));
    L.SetMin(Point(1, 2));
    L.SetMax(Point(3, 4));
    EXPECT_EQ(L, LimRec(1, 2, 3, 4));
}

TEST(Vltypes, EmptyLimitsAreLargestMinimaAndSmallestMaxima) {
    EXPECT_EQ(EmptyLimMin, 0x7FFFFFFF);
    EXPECT_EQ(static_cast<std::uint32_t>(EmptyLimMax), 0x80000001u);
    EXPECT_EQ(EmptyLimRec, LimRec(0x7FFFFFFF, 0x7FFFFFFF, -2147483647, -2147483647));
    EXPECT_GT(EmptyLimRec.Xmin, EmptyLimRec.Xmax);
}

TEST(Vltypes, RectDirectionOrdersBothAxes) {
    TRect R = Rect(10, 20, 0, 5);
    RectDirection(R);
    EXPECT_EQ(R, Rect(0, 5, 10, 20));
    TRect ordered = Rect(-3, -4, 3, 4);
    RectDirection(ordered);
    EXPECT_EQ(ordered, Rect(-3, -4, 3, 4));
    TRect oneAxis = Rect(0, 9, 5, 1);
    RectDirection(oneAxis);
    EXPECT_EQ(oneAxis, Rect(0, 1, 5, 9));
}

TEST(Vltypes, LimRecDirectionOrdersMinimaAndMaxima) {
    TLimRec L = LimRec(100, -1, -100, -50);
    LimRecDirection(L);
    EXPECT_EQ(L, LimRec(-100, -50, 100, -1));
    TLimRec same = LimRec(1, 1, 1, 1);
    LimRecDirection(same);
    EXPECT_EQ(same, LimRec(1, 1, 1, 1));
}

TEST(Vltypes, ExChangeSwapsTwoIntegers) {
    std::int32_t a = 3, b = -9;
    ExChange(a, b);
    EXPECT_EQ(a, -9);
    EXPECT_EQ(b, 3);
}

TEST(Vltypes, NothingDoesNothing) {
    const TPoint before = ZeroPoint;
    Nothing();
    EXPECT_EQ(ZeroPoint, before);
}

TEST(Vltypes, NewPolyAllocatesZeroedOutlineUpToTheLongest) {
    pPointArray p = NewPoly(MaxPolyPoints);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p[0], Point(0, 0));
    EXPECT_EQ(p[1024], Point(0, 0));
    p[1024] = Point(7, 8);
    EXPECT_EQ(p[1024], Point(7, 8));
    DeletePoly(p);
    EXPECT_EQ(MaxPolyPoints, 1025);
    EXPECT_EQ(sizeof(TPointArray), 1025 * sizeof(TPoint));
}

TEST(Vltypes, NewPolyRefusesCountsBeyondTheLongestOutline) {
    EXPECT_THROW(NewPoly(1026), EListError);
    EXPECT_THROW(NewPoly(-1), EListError);
    pPointArray empty = NewPoly(0);
    DeletePoly(empty);
    DeletePoly(nullptr);
}

TEST(Vltypes, PstModesKeepTheirOrderInOneByte) {
    static_assert(sizeof(TPstMode) == 1);
    EXPECT_EQ(static_cast<int>(TPstMode::pstSave), 0);
    EXPECT_EQ(static_cast<int>(TPstMode::pstLoad), 1);
    EXPECT_EQ(static_cast<int>(TPstMode::pstConnect), 2);
    EXPECT_EQ(static_cast<int>(TPstMode::pstCopy), 3);
    EXPECT_EQ(static_cast<int>(TPstMode::pstPaste), 4);
    EXPECT_EQ(static_cast<int>(TPstMode::pstConnectCopy), 5);
}

TEST(Vltypes, DirectionsKeepTheirOrder) {
    EXPECT_EQ(static_cast<int>(TDirection::horizontal), 0);
    EXPECT_EQ(static_cast<int>(TDirection::vertical), 1);
    EXPECT_EQ(static_cast<int>(TDirection::both), 2);
}

TEST(Vltypes, ObjectMessagesHaveTheSameSize) {
    EXPECT_EQ(sizeof(TObjMessage), 16u);
    EXPECT_EQ(sizeof(TObjScrollMsg), sizeof(TObjMessage));
    EXPECT_EQ(msgObjPaint, 200u);
    EXPECT_EQ(msgObjPrint, 300u);
    static_assert(std::is_same_v<decltype(TObjMessage::Msg), std::uint32_t>);
    static_assert(std::is_same_v<decltype(TObjMessage::Result), std::int32_t>);
}

TEST(Vltypes, FourBitVersionPartIsOneByteUpTo127) {
    static_assert(sizeof(T4Bit) == 1);
    EXPECT_EQ(T4BitMax, 127);
}

TEST(Vltypes, GlobalSettingsStartWithTheirInitialValues) {
    EXPECT_EQ(MaxCoord, 32767);
    EXPECT_EQ(Lin_prec, 8);
    EXPECT_EQ(FrameRgn_W, 3);
    EXPECT_EQ(clShadowPen, 0);
    EXPECT_EQ(clShadowText, 0x808080);
    EXPECT_EQ(RoundRectX3, 2);
    EXPECT_EQ(AutoScrollTime, 50);
    EXPECT_EQ(FrameSpace, 3);
    EXPECT_EQ(ZeroPoint, Point(0, 0));
    EXPECT_EQ(Rot_OutlineDiv, 16);
    EXPECT_EQ(ThisVersion, 0x4642);
    EXPECT_EQ(ThisAppID, 0);
    EXPECT_EQ(ThisAppVersion, 0x01000000u);
    EXPECT_EQ(NeedLayers, 1);
}

TEST(Vltypes, RecordsCompareByValue) {
    EXPECT_EQ((TCoordPnt{1, 2}), (TCoordPnt{1, 2}));
    EXPECT_NE((TCoordRect{1, 2, 3, 4}), (TCoordRect{1, 2, 3, 5}));
    EXPECT_EQ((TFloatPnt{0.5, -1.5}), (TFloatPnt{0.5, -1.5}));
    EXPECT_NE((TFloatRect{0, 0, 1, 1}), (TFloatRect{0, 0, 1, 2}));
}
