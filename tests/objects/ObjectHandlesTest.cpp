// Sizing handles: drawn with the mark at their places, hit by position, and repainted away.
#include "ObjectPaintSupport.h"

namespace vl::test {
namespace {

using ObjectHandles = PaintFixture;

TEST_F(ObjectHandles, HandlesAreDrawnWithTheMarkAtTheCorners) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    MarkObject(o);
    o->SetSizing(true);
    o->Mark();
    ASSERT_EQ(Box->ScaleSetting().GetTempFrame(), 3);
    // Each handle is a filled square in the mark colour reaching three pixels round its corner.
    for (QPoint c : {QPoint(50, 40), QPoint(70, 60), QPoint(50, 60), QPoint(70, 40)}) {
        EXPECT_EQ(SurfacePixel(c.x() - 3, c.y() - 3), Red) << c.x() << "," << c.y();
        EXPECT_EQ(SurfacePixel(c.x() + 3, c.y() + 3), Red) << c.x() << "," << c.y();
        EXPECT_EQ(SurfacePixel(c.x(), c.y()), Red);
    }
    // Just outside each handle, away from the object, the box is untouched.
    for (QPoint p : {QPoint(46, 36), QPoint(74, 64), QPoint(46, 64), QPoint(74, 36)})
        EXPECT_EQ(SurfacePixel(p.x(), p.y()), White) << p.x() << "," << p.y();
    EXPECT_TRUE(Box->Surface().Blit().contains(QPoint(47, 37)));
    Settle();
    EXPECT_EQ(ScreenPixel(47, 37), Red);
    EXPECT_EQ(ScreenPixel(73, 63), Red);
    EXPECT_EQ(ScreenPixel(60, 50), Blue);
}

TEST_F(ObjectHandles, SizingHandleIsFoundByPosition) {
    TTestObject* o = AddObj(Point(50, 40));
    o->SetSizing(true);
    struct Row {
        TPoint Pt;
        TSizingHandle Handle;
    };
    const Row rows[] = {{Point(0, 0), szX1Y1},   {Point(-3, 3), szX1Y1}, {Point(20, 20), szX2Y2},
                        {Point(23, 17), szX2Y2}, {Point(0, 20), szX1Y2}, {Point(20, 0), szX2Y1},
                        {Point(2, 22), szX1Y2},  {Point(17, -3), szX2Y1}};
    for (const Row& r : rows) {
        SizingHandle = szNone;
        EXPECT_TRUE(o->SizingHandles(r.Pt, smCheck)) << r.Pt.x << "," << r.Pt.y;
        EXPECT_EQ(SizingHandle, r.Handle);
    }
    for (TPoint miss : {Point(-4, 0), Point(10, 10), Point(24, 20), Point(20, -4)}) {
        SizingHandle = szX1Y1;
        EXPECT_FALSE(o->SizingHandles(miss, smCheck));
        EXPECT_EQ(SizingHandle, szNone);
    }
}

TEST_F(ObjectHandles, HandlesAreRepaintedAwayWhenSizingEnds) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    MarkObject(o);
    o->SetSizing(true);
    o->Mark();
    Settle();
    EXPECT_EQ(ScreenPixel(47, 37), Red);
    o->SetSizing(false);
    Store->InvalidateRestoreRect();
    Settle();
    EXPECT_EQ(ScreenPixel(47, 37), White);
    EXPECT_EQ(ScreenPixel(50, 50), Red);
    EXPECT_EQ(SurfacePixel(73, 63), White);
}

TEST_F(ObjectHandles, APaintDrawsTheHandlesOfASizingMarkedObject) {
    TTestObject* o = AddObj(Point(50, 40));
    MarkObject(o);
    o->SetSizing(true);
    PaintAll();
    EXPECT_EQ(ScreenPixel(73, 63), Red);
    EXPECT_EQ(ScreenPixel(47, 63), Red);
}

TEST_F(ObjectHandles, BaseObjectHasNoHandles) {
    TvlObject plain(Tool);
    SizingHandle = szRotate;
    EXPECT_FALSE(plain.SizingHandles(Point(0, 0), smCheck));
    EXPECT_EQ(SizingHandle, szRotate);
}

} // namespace
} // namespace vl::test
