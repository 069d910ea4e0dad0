// Point objects on a shown box, pixel for pixel against the same primitives drawn by plain
// device-context calls on a memory bitmap: every shape, unrotated and turned (a turned shape is the
// polygon of its outline), pictures clipped, unmirrored, transparent and framed, and the moving
// outline.
#include "PointObjSupport.h"

#include "geometry/Vlprocs.h"
#include "geometry/Vlrotation.h"

#include <algorithm>
#include <numbers>
#include <ostream>
#include <string>

namespace vl::test {
namespace {

struct ShapeCase {
    const char* Name;
    TShapetype Shape;
    bool Turned;
};

void PrintTo(const ShapeCase& C, std::ostream* Os) {
    *Os << C.Name << (C.Turned ? " turned" : "");
}

constexpr TPoint Hot{5, 3};
constexpr std::int16_t TurnPlain = 500; // thousandths of a radian
constexpr double Turn = 0.5;

// The primitive calls that draw `Shape` of `W` by `H` in local coordinates, unturned or turned by
// `Turn` round `Hot`, with the selected pen and brush.
void DrawPrimitive(HDC Dc, TShapetype Shape, bool Turned, std::int32_t W, std::int32_t H) {
    const std::int32_t d = std::min(W, H);
    const auto polygon = [Dc](const std::unique_ptr<TPointList>& List) {
        Polygon(Dc, List->Points(), List->Count());
    };
    const auto frame = [Dc](HRGN Rgn) {
        LOGBRUSH lb;
        lb.lbStyle = BS_SOLID;
        lb.lbColor = 0; // the pen's black
        HBRUSH brush = CreateBrushIndirect(&lb);
        FrameRgn(Dc, Rgn, brush, FrameRgn_W, FrameRgn_W);
        DeleteObject(brush);
        DeleteObject(Rgn);
    };
    if (!Turned) {
        switch (Shape) {
        case stRectangle: Rectangle(Dc, 0, 0, W, H); break;
        case stEllipse: Ellipse(Dc, 0, 0, W, H); break;
        case stCircle: Ellipse(Dc, 0, 0, d, d); break;
        case stSquare: Rectangle(Dc, 0, 0, d, d); break;
        case stRoundRect: RoundRect(Dc, 0, 0, W, H, d / 2, d / 2); break;
        case stRoundSquare: RoundRect(Dc, 0, 0, d, d, d / 2, d / 2); break;
        case stLine:
            MoveToEx(Dc, 0, 0, nullptr);
            LineTo(Dc, W, H);
            break;
        case stRegion: frame(CreateRectRgn(0, 0, W, H)); break;
        }
        return;
    }
    switch (Shape) {
    case stRectangle: polygon(RotatedPnts_Rectangle(Rect(0, 0, W, H), Hot, Turn)); break;
    case stEllipse: polygon(RotatedPnts_Ellipse(Rect(0, 0, W, H), Hot, Turn)); break;
    case stCircle: {
        // A turned circle stays the platform's circle, of the width, round its turned centre.
        TPoint centre{W / 2, W / 2};
        RotatePnt(centre, Hot, Turn);
        Ellipse(Dc, centre.x - W / 2, centre.y - W / 2, centre.x - W / 2 + W, centre.y - W / 2 + W);
        break;
    }
    case stSquare: polygon(RotatedPnts_Rectangle(Rect(0, 0, W, W), Hot, Turn)); break;
    case stRoundRect: polygon(RotatedPnts_RoundRect(Rect(0, 0, W, H), d / 2, d / 2, Hot, Turn)); break;
    case stRoundSquare: polygon(RotatedPnts_RoundRect(Rect(0, 0, W, W), W / 2, W / 2, Hot, Turn)); break;
    case stLine: break; // a turned line draws nothing
    case stRegion: {
        const auto outline = RotatedPnts_Rectangle(Rect(0, 0, W, H), Hot, Turn);
        frame(CreatePolygonRgn(outline->Points(), outline->Count(), WINDING));
        break;
    }
    }
}

class ShapePixels : public PointFixture, public ::testing::WithParamInterface<ShapeCase> {};

TEST_P(ShapePixels, ObjectDrawsWhatThePrimitivesDraw) {
    const ShapeCase c = GetParam();
    Gen().SetShape(c.Shape);
    Gen().SetHotspotX(Hot.x);
    Gen().SetHotspotY(Hot.y);
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(100, 60));
    if (c.Turned) obj->SetAlphaPlain(TurnPlain);
    ASSERT_EQ(obj->Rotated(), c.Turned);
    const QImage painted = Painted();
    const QImage expected =
        Reference(Point(95, 57), [&](TCanvas&, HDC Dc) { DrawPrimitive(Dc, c.Shape, c.Turned, 40, 20); });
    EXPECT_EQ(DifferingPixels(painted, expected), 0);
    if (c.Shape == stLine && c.Turned) {
        EXPECT_EQ(CountColour(painted, 0xFFFFFF), painted.width() * painted.height())
            << "a turned line draws nothing";
    } else {
        EXPECT_GT(CountColour(painted, 0x000000), 0) << "something was drawn";
    }
}

const ShapeCase ShapeCases[] = {
    {"Rectangle", stRectangle, false},
    {"Rectangle", stRectangle, true},
    {"Ellipse", stEllipse, false},
    {"Ellipse", stEllipse, true},
    {"Circle", stCircle, false},
    {"Circle", stCircle, true},
    {"Square", stSquare, false},
    {"Square", stSquare, true},
    {"RoundRect", stRoundRect, false},
    {"RoundRect", stRoundRect, true},
    {"RoundSquare", stRoundSquare, false},
    {"RoundSquare", stRoundSquare, true},
    {"Line", stLine, false},
    {"Line", stLine, true},
    {"Region", stRegion, false},
    {"Region", stRegion, true},
};

INSTANTIATE_TEST_SUITE_P(EveryShape, ShapePixels, ::testing::ValuesIn(ShapeCases),
                         [](const ::testing::TestParamInfo<ShapeCase>& Info) {
                             return std::string(Info.param.Name) + (Info.param.Turned ? "Turned" : "Plain");
                         });

using PointPaint = PointFixture;

TEST_F(PointPaint, CircleOfThirtyByTwentyIsACircleOfTwenty) {
    Gen().SetShape(stCircle);
    Gen().SetWidth(30);
    Gen().SetHeight(20);
    Tool->Place(Point(50, 50));
    const QImage expected = Reference(Point(50, 50), [](TCanvas&, HDC Dc) { Ellipse(Dc, 0, 0, 20, 20); });
    EXPECT_EQ(DifferingPixels(Painted(), expected), 0);
}

TEST_F(PointPaint, RoundedCornersFollowTheToolsTag) {
    Gen().SetShape(stRoundRect);
    Gen().SetWidth(60);
    Gen().SetHeight(40);
    Tool->Place(Point(50, 50));
    const QImage byTwo = Painted();
    EXPECT_EQ(
        DifferingPixels(
            byTwo, Reference(Point(50, 50), [](TCanvas&, HDC Dc) { RoundRect(Dc, 0, 0, 60, 40, 20, 20); })),
        0);
    Tool->SetTag(5);
    const QImage byFive = Painted();
    EXPECT_EQ(DifferingPixels(byFive, Reference(Point(50, 50),
                                                [](TCanvas&, HDC Dc) { RoundRect(Dc, 0, 0, 60, 40, 8, 8); })),
              0);
    EXPECT_GT(DifferingPixels(byTwo, byFive), 0);
}

TEST_F(PointPaint, NegativeWidthMakesTheLineRise) {
    Gen().SetShape(stLine);
    Gen().SetWidth(-20);
    Gen().SetHeight(15);
    Tool->Place(Point(50, 50));
    const QImage expected = Reference(Point(50, 50), [](TCanvas&, HDC Dc) {
        MoveToEx(Dc, 0, 15, nullptr);
        LineTo(Dc, 20, 0);
    });
    EXPECT_EQ(DifferingPixels(Painted(), expected), 0);
}

TEST_F(PointPaint, RotationOptionWithAngleZeroDrawsTheUnrotatedShape) {
    SetOptions({goRotation});
    Gen().SetShape(stRoundRect);
    TPointObj* obj = Tool->Place(Point(50, 50));
    obj->SetAlphaPlain(0);
    const QImage expected =
        Reference(Point(50, 50), [](TCanvas&, HDC Dc) { RoundRect(Dc, 0, 0, 40, 20, 10, 10); });
    EXPECT_EQ(DifferingPixels(Painted(), expected), 0);
}

TEST_F(PointPaint, HostShapeReplacesTheClassShape) {
    int shapes = 0;
    Tool->OnObjectShape = [&](TvlObject*) {
        ++shapes;
        Canvas().Rectangle(0, 0, 5, 5);
    };
    Tool->Place(Point(50, 50));
    const QImage expected = Reference(Point(50, 50), [](TCanvas&, HDC Dc) { Rectangle(Dc, 0, 0, 5, 5); });
    EXPECT_EQ(DifferingPixels(Painted(), expected), 0);
    EXPECT_GE(shapes, 1);
}

TEST_F(PointPaint, RotatedCircleKeepsItsSizeAtEveryAngle) {
    SetOptions({goRotation});
    Gen().SetShape(stCircle);
    Gen().SetWidth(30);
    Gen().SetHeight(40);
    TPointObj* obj = Tool->Place(Point(100, 80));
    obj->SetAlpha(1.0);
    const QImage painted = Painted();
    int top = painted.height(), bottom = -1;
    for (int y = 0; y < painted.height(); ++y)
        for (int x = 0; x < painted.width(); ++x)
            if ((painted.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    EXPECT_EQ(bottom - top + 1, 30) << "the rotated circle takes the width as its diameter";
}

// --- The moving outline ---------------------------------------------------------------------------

class PointShadow : public PointFixture {
protected:
    // Draws the object's shadow with an inverting pen on the box's canvas, outside a paint, and
    // answers the window's surface after it.
    void DrawShadowOf(TPointObj& Obj) {
        TCanvas& canvas = Canvas();
        canvas.Pen().SetMode(pmNot);
        canvas.Pen().SetWidth(1);
        canvas.Pen().SetStyle(psSolid);
        canvas.Brush().SetStyle(bsClear);
        Obj.DrawShadow();
    }
    QImage Surface() const { return Box->Surface().Image().convertToFormat(QImage::Format_RGB32); }
};

TEST_F(PointShadow, RectangleShadowIsFourLinesThatLeaveNoCornerTwice) {
    TPointObj* obj = Tool->Place(Point(50, 50));
    obj->SetVisible(false);
    const QImage blank = Painted();
    int shapes = 0;
    Tool->OnObjectShape = [&](TvlObject*) { ++shapes; };
    DrawShadowOf(*obj);
    const QImage once = Surface();
    EXPECT_EQ(shapes, 0) << "an unturned rectangle draws its outline itself";
    // Each side runs from its corner to one unit before the next corner, the last point left out as
    // lines leave it: 39 + 19 + 39 + 19 pixels, every corner inverted exactly once. At one unit to
    // the pixel the unit left out beside each next corner shows as a gap.
    EXPECT_EQ(CountColour(once, 0x000000), 116);
    for (const QPoint corner : {QPoint(50, 50), QPoint(90, 50), QPoint(90, 70), QPoint(50, 70)})
        EXPECT_EQ(once.pixel(corner) & 0xFFFFFF, 0x000000u) << corner.x() << "," << corner.y();
    EXPECT_EQ(once.pixel(89, 50) & 0xFFFFFF, 0xFFFFFFu);
    DrawShadowOf(*obj);
    EXPECT_EQ(DifferingPixels(Surface(), blank), 0) << "a second shadow takes the first away";
}

TEST_F(PointShadow, TurnedRectangleShadowGoesThroughTheShape) {
    SetOptions({goRotation});
    TPointObj* obj = Tool->Place(Point(50, 50));
    obj->SetAlpha(0.4);
    int shapes = 0;
    Tool->OnObjectShape = [&](TvlObject*) { ++shapes; };
    DrawShadowOf(*obj);
    EXPECT_EQ(shapes, 1);
}

TEST_F(PointShadow, SquareShadowOutlinesTheSmallerSide) {
    Gen().SetShape(stSquare);
    TPointObj* obj = Tool->Place(Point(50, 50));
    obj->SetVisible(false);
    Painted();
    DrawShadowOf(*obj);
    EXPECT_EQ(CountColour(Surface(), 0x000000), 4 * 19);
}

TEST_F(PointShadow, HeldRotateHandleAddsTheTurnedCrossAtTheHotSpot) {
    SetOptions({goRotation});
    Gen().SetShape(stEllipse);
    Gen().SetHotspotX(20);
    Gen().SetHotspotY(10);
    TPointObj* obj = Tool->Place(Point(100, 100));
    obj->SetVisible(false);
    Painted();
    SizingHandle = szRotate;
    DrawShadowOf(*obj);
    const QImage with = Surface();
    // Unturned, the cross's arms run 10 units each way from the hot spot (100, 100).
    EXPECT_EQ(with.pixel(100, 91) & 0xFFFFFF, 0x000000u);
    EXPECT_EQ(with.pixel(91, 100) & 0xFFFFFF, 0x000000u);
    Painted();
    obj->SetAlpha(std::numbers::pi / 4);
    DrawShadowOf(*obj);
    const QImage turned = Surface();
    EXPECT_EQ(turned.pixel(100, 91) & 0xFFFFFF, 0xFFFFFFu);
    TPoint arm{100, 92};
    RotatePnt(arm, Point(100, 100), obj->Alpha());
    EXPECT_EQ(turned.pixel(arm.x, arm.y) & 0xFFFFFF, 0x000000u);
}

} // namespace
} // namespace vl::test
