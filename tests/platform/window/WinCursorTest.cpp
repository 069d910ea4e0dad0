// Cursor numbers, the library's image cursors and the screen's cursor table.

#include "platform/graphics/Cursors.h"
#include "platform/services/Services.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vl {
namespace {

struct ShapeCase {
    TCursor Number;
    Qt::CursorShape Shape;
};

void PrintTo(const ShapeCase& c, std::ostream* os) {
    *os << "cursor " << c.Number;
}

// "Number0", "NumberMinus2".
std::string ShapeCaseName(const ::testing::TestParamInfo<ShapeCase>& Info) {
    const TCursor n = Info.param.Number;
    return "Number" + (n < 0 ? "Minus" + std::to_string(-n) : std::to_string(n));
}

class WinCursorShapes : public ::testing::TestWithParam<ShapeCase> {};

TEST_P(WinCursorShapes, BuiltinNumberMapsToQtShape) {
    Qt::CursorShape shape = Qt::BitmapCursor;
    ASSERT_TRUE(BuiltinCursorShape(GetParam().Number, shape));
    EXPECT_EQ(shape, GetParam().Shape);
    EXPECT_EQ(Screen.Cursors(GetParam().Number).shape(), GetParam().Shape);
}

INSTANTIATE_TEST_SUITE_P(
    WinCursor, WinCursorShapes,
    ::testing::Values(ShapeCase{crDefault, Qt::ArrowCursor}, ShapeCase{crArrow, Qt::ArrowCursor},
                      ShapeCase{crCross, Qt::CrossCursor}, ShapeCase{crIBeam, Qt::IBeamCursor},
                      ShapeCase{crSizeNESW, Qt::SizeBDiagCursor}, ShapeCase{crSizeNS, Qt::SizeVerCursor},
                      ShapeCase{crSizeNWSE, Qt::SizeFDiagCursor}, ShapeCase{crSizeWE, Qt::SizeHorCursor},
                      ShapeCase{crUpArrow, Qt::UpArrowCursor}, ShapeCase{crHourGlass, Qt::WaitCursor},
                      ShapeCase{crNoDrop, Qt::ForbiddenCursor}, ShapeCase{crHSplit, Qt::SplitHCursor},
                      ShapeCase{crVSplit, Qt::SplitVCursor}, ShapeCase{crNo, Qt::ForbiddenCursor},
                      ShapeCase{crAppStart, Qt::BusyCursor}, ShapeCase{crHelp, Qt::WhatsThisCursor},
                      ShapeCase{crHandPoint, Qt::PointingHandCursor},
                      ShapeCase{crSizeAll, Qt::SizeAllCursor}),
    ShapeCaseName);

TEST(WinCursor, NumbersAreTheFrameworkValues) {
    EXPECT_EQ(crDefault, 0);
    EXPECT_EQ(crArrow, -2);
    EXPECT_EQ(crCross, -3);
    EXPECT_EQ(crHourGlass, -11);
    EXPECT_EQ(crSize, crSizeAll);
    EXPECT_EQ(crSizeAll, -22);
    EXPECT_EQ(CursorRotate, 12);
    EXPECT_EQ(CursorSmallCross, 13);
}

TEST(WinCursor, PositiveNumbersAreNotBuiltIn) {
    Qt::CursorShape shape;
    EXPECT_FALSE(BuiltinCursorShape(13, shape));
    EXPECT_FALSE(BuiltinCursorShape(-23, shape));
}

class WinCursorResources : public ::testing::TestWithParam<const char*> {};

TEST_P(WinCursorResources, ShippedPngMatchesThePictureDrawnInCode) {
    const TCursorImage shipped = ReadCursorResource(GetParam());
    const TCursorImage drawn = RenderCursorImage(GetParam());
    ASSERT_FALSE(shipped.Image.isNull());
    ASSERT_FALSE(drawn.Image.isNull());
    EXPECT_EQ(shipped.HotSpot, drawn.HotSpot);
    EXPECT_EQ(shipped.Image, drawn.Image);
    // Something is drawn, and the hot spot lies on the picture.
    EXPECT_NE(drawn.Image.pixel(drawn.HotSpot), 0u);
}

TEST_P(WinCursorResources, LoadCursorByNameGivesOneSharedCursorWithItsHotSpot) {
    const QCursor* cursor = LoadCursorByName(GetParam());
    ASSERT_NE(cursor, nullptr);
    EXPECT_EQ(cursor->shape(), Qt::BitmapCursor);
    EXPECT_EQ(cursor->hotSpot(), RenderCursorImage(GetParam()).HotSpot);
    EXPECT_EQ(LoadCursorByName(QString(GetParam()).toLower()), cursor);
}

INSTANTIATE_TEST_SUITE_P(WinCursor, WinCursorResources,
                         ::testing::Values("SMALL_CROSS", "ROTATE", "DIMLINEH", "DIMLINEV", "DIMLINEP"),
                         [](const ::testing::TestParamInfo<const char*>& Info) {
                             return std::string(Info.param);
                         });

TEST(WinCursor, UnknownNameLoadsNothing) {
    EXPECT_EQ(LoadCursorByName("NO_SUCH_CURSOR"), nullptr);
}

TEST(WinCursor, ScreenCursorTableRegistersAndRemovesCustomNumbers) {
    EXPECT_FALSE(Screen.HasCursor(CursorSmallCross));
    EXPECT_EQ(Screen.Cursors(CursorSmallCross).shape(), Qt::ArrowCursor);
    Screen.SetCursors(CursorSmallCross, LoadCursorByName("SMALL_CROSS"));
    EXPECT_TRUE(Screen.HasCursor(CursorSmallCross));
    EXPECT_EQ(Screen.Cursors(CursorSmallCross).shape(), Qt::BitmapCursor);
    EXPECT_EQ(Screen.Cursors(CursorSmallCross).hotSpot(), QPoint(15, 15));
    Screen.SetCursors(CursorSmallCross, nullptr);
    EXPECT_FALSE(Screen.HasCursor(CursorSmallCross));
}

} // namespace
} // namespace vl
