// Point objects with pictures on a shown box: the picture takes the form of the shape, is never
// mirrored whatever corner the origin is in, leaves out its transparent colour with a clear brush,
// and gets the frame over it unless the pen is clear.
#include "PointObjSupport.h"

#include <ostream>
#include <string>

namespace vl::test {
namespace {

constexpr QRgb Red = 0xFF0000;
constexpr QRgb Green = 0x00FF00;
constexpr QRgb Yellow = 0xFFFF00;
constexpr QRgb Cyan = 0x00FFFF;
constexpr QRgb Magenta = 0xFF00FF;

// A bitmap of `W` by `H` pixels filled with `Fill`.
std::unique_ptr<TBitmap> FilledBitmap(int W, int H, QRgb Fill) {
    auto bitmap = std::make_unique<TBitmap>(W, H);
    for (int y = 0; y < H; ++y) {
        QRgb* row = bitmap->ScanLine(y);
        for (int x = 0; x < W; ++x) row[x] = 0xFF000000u | Fill;
    }
    return bitmap;
}

// 8 by 6 pixels, green, with a red top left, a yellow top right and a cyan bottom left corner: any
// mirroring shows.
std::unique_ptr<TBitmap> CornerBitmap() {
    auto bitmap = FilledBitmap(8, 6, Green);
    bitmap->ScanLine(0)[0] = 0xFF000000u | Red;
    bitmap->ScanLine(0)[7] = 0xFF000000u | Yellow;
    bitmap->ScanLine(5)[0] = 0xFF000000u | Cyan;
    return bitmap;
}

// The part of `Image` inside the bounds of its pixels that are not white.
QImage InkedPart(const QImage& Image) {
    int left = Image.width(), top = Image.height(), right = -1, bottom = -1;
    for (int y = 0; y < Image.height(); ++y)
        for (int x = 0; x < Image.width(); ++x)
            if ((Image.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    if (right < 0) return {};
    return Image.copy(left, top, right - left + 1, bottom - top + 1);
}

struct OriginCase {
    const char* Name;
    TOrigin Origin;
    TPoint VPOrg;
};

void PrintTo(const OriginCase& C, std::ostream* Os) {
    *Os << C.Name;
}

class PictureOrigin : public PointFixture, public ::testing::WithParamInterface<OriginCase> {};

TEST_P(PictureOrigin, PictureIsNeverMirrored) {
    const OriginCase c = GetParam();
    Box->ScaleSetting().SetOrigin(c.Origin);
    Box->ScaleSetting().SetVPOrg(c.VPOrg);
    const auto picture = CornerBitmap();
    Gen().SetPicture(picture.get());
    Gen().Pen().SetStyle(psClear);
    Tool->Place(Point(100, 60));
    const QImage inked = InkedPart(Painted());
    ASSERT_EQ(inked.size(), QSize(8, 6));
    EXPECT_EQ(DifferingPixels(inked, picture->Image()), 0);
    EXPECT_EQ(inked.pixel(0, 0) & 0xFFFFFF, Red);
    EXPECT_EQ(inked.pixel(7, 0) & 0xFFFFFF, Yellow);
    EXPECT_EQ(inked.pixel(0, 5) & 0xFFFFFF, Cyan);
}

const OriginCase OriginCases[] = {
    {"LeftTop", TOrigin::LeftTop, {0, 0}},
    {"LeftBottom", TOrigin::LeftBottom, {0, 199}},
    {"RightTop", TOrigin::RightTop, {299, 0}},
    {"RightBottom", TOrigin::RightBottom, {299, 199}},
};

INSTANTIATE_TEST_SUITE_P(EveryCorner, PictureOrigin, ::testing::ValuesIn(OriginCases),
                         [](const ::testing::TestParamInfo<OriginCase>& Info) {
                             return std::string(Info.param.Name);
                         });

using PointPicture = PointFixture;

TEST_F(PointPicture, PictureTakesTheFormOfTheShape) {
    const auto picture = FilledBitmap(40, 20, Green);
    Gen().SetPicture(picture.get());
    Gen().SetShape(stEllipse);
    Gen().Pen().SetStyle(psClear);
    Tool->Place(Point(50, 50));
    const QImage expected = Reference(Point(50, 50), [](TCanvas&, HDC Dc) {
        HRGN rgn = CreateEllipticRgn(0, 0, 40, 20);
        LOGBRUSH lb;
        lb.lbStyle = BS_SOLID;
        lb.lbColor = 0x0000FF00; // green, as a device colour
        HBRUSH brush = CreateBrushIndirect(&lb);
        FillRgn(Dc, rgn, brush);
        DeleteObject(brush);
        DeleteObject(rgn);
    });
    const QImage painted = Painted();
    EXPECT_EQ(DifferingPixels(painted, expected), 0);
    EXPECT_EQ(painted.pixel(50, 50) & 0xFFFFFF, 0xFFFFFFu)
        << "the corner of the box lies outside the ellipse";
    EXPECT_EQ(painted.pixel(70, 60) & 0xFFFFFF, Green);
}

TEST_F(PointPicture, ClearBrushLeavesOutTheColourOfTheTopLeftPixel) {
    auto picture = FilledBitmap(8, 6, Magenta);
    for (int y = 2; y < 4; ++y)
        for (int x = 2; x < 6; ++x) picture->ScanLine(y)[x] = 0xFF000000u | Green;
    Gen().SetPicture(picture.get());
    Gen().Brush().SetStyle(bsClear);
    Gen().Pen().SetStyle(psClear);
    Tool->Place(Point(50, 50));
    const QImage painted = Painted();
    EXPECT_EQ(CountColour(painted, Magenta), 0);
    EXPECT_EQ(CountColour(painted, Green), 8);
    EXPECT_EQ(painted.pixel(50, 50) & 0xFFFFFF, 0xFFFFFFu);
}

TEST_F(PointPicture, SolidBrushDrawsThePictureWhole) {
    const auto picture = FilledBitmap(8, 6, Magenta);
    Gen().SetPicture(picture.get());
    Gen().Pen().SetStyle(psClear);
    Tool->Place(Point(50, 50));
    EXPECT_EQ(CountColour(Painted(), Magenta), 48);
}

TEST_F(PointPicture, FrameIsDrawnOverThePictureUnlessThePenIsClear) {
    const auto picture = FilledBitmap(20, 10, Green);
    Gen().SetPicture(picture.get());
    Tool->Place(Point(50, 50));
    const QImage framed = Painted();
    const QImage expected = Reference(Point(50, 50), [&](TCanvas& Canvas, HDC Dc) {
        Canvas.Draw(0, 0, picture.get());
        Canvas.Brush().SetStyle(bsClear);
        Rectangle(Canvas.Handle(), 0, 0, 20, 10);
        (void)Dc;
    });
    EXPECT_EQ(DifferingPixels(framed, expected), 0);
    EXPECT_EQ(CountColour(framed, 0x000000), 2 * 20 + 2 * 10 - 4);
    Gen().Pen().SetStyle(psClear);
    EXPECT_EQ(CountColour(Painted(), 0x000000), 0);
}

TEST_F(PointPicture, StretchedPictureFillsTheObjectsSize) {
    SetOptions({goStretchPicture});
    const auto picture = FilledBitmap(4, 4, Green);
    Gen().SetPicture(picture.get());
    Gen().SetWidth(40);
    Gen().SetHeight(20);
    Gen().Pen().SetStyle(psClear);
    Tool->Place(Point(50, 50));
    EXPECT_EQ(CountColour(Painted(), Green), 40 * 20);
}

TEST_F(PointPicture, TurnedPictureObjectDrawsItsTurnedOutlineInsteadOfThePixels) {
    SetOptions({goRotation});
    const auto picture = FilledBitmap(40, 20, Green);
    Gen().SetPicture(picture.get());
    TPointObj* obj = Tool->Place(Point(100, 80));
    obj->SetAlpha(0.5);
    const QImage painted = Painted();
    EXPECT_EQ(CountColour(painted, Green), 0) << "a point object turns its outline, not its pixels";
    EXPECT_GT(CountColour(painted, 0x000000), 0);
}

// A picture that the metafile codec claims: the test's stand-in codec takes every bitmap for a
// metafile and records how it is asked to turn it.
class MetafileHook : public PointFixture {
protected:
    void SetUp() override {
        PointFixture::SetUp();
        SetOptions({goRotation});
        Picture = FilledBitmap(40, 20, Green);
        Gen().SetPicture(Picture.get());
        Gen().SetHotspotX(5);
        Gen().SetHotspotY(3);
        Gen().Pen().SetStyle(psClear);
    }
    TScopedValue<TMetafileTest> Test{
        IsMetafileGraphic, [](const TGraphic& G) { return dynamic_cast<const TBitmap*>(&G) != nullptr; }};
    TScopedValue<TRotatedMetafileDrawer> Drawer{RotatedMetafileDrawer,
                                                [this](HDC, TGraphic&, TPoint HotSpot, double Angle) {
                                                    Calls.push_back({HotSpot, Angle});
                                                    if (Throw) throw Exception(QStringLiteral("bad record"));
                                                }};
    struct Call {
        TPoint HotSpot;
        double Angle;
    };
    std::vector<Call> Calls;
    bool Throw = false;
    std::unique_ptr<TBitmap> Picture;
};

TEST_F(MetafileHook, UnturnedMetafileDrawsAsItIs) {
    Tool->Place(Point(100, 60));
    EXPECT_EQ(CountColour(Painted(), Green), 40 * 20);
    EXPECT_TRUE(Calls.empty());
}

TEST_F(MetafileHook, TurnedMetafileGoesToTheCodecWithTheHotSpotInDevicePixels) {
    TPointObj* obj = Tool->Place(Point(100, 60));
    obj->SetAlphaPlain(500);
    Painted();
    ASSERT_FALSE(Calls.empty());
    EXPECT_EQ(Calls.back().HotSpot, Point(100, 60));
    EXPECT_DOUBLE_EQ(Calls.back().Angle, 0.5);
}

TEST_F(MetafileHook, OneFlippedAxisTurnsTheOtherWayWithTheHotSpotLeftLocal) {
    Box->ScaleSetting().SetOrigin(TOrigin::LeftBottom);
    Box->ScaleSetting().SetVPOrg(Point(0, 199));
    TPointObj* obj = Tool->Place(Point(100, 60));
    obj->SetAlphaPlain(500);
    Painted();
    ASSERT_FALSE(Calls.empty());
    EXPECT_EQ(Calls.back().HotSpot, Point(5, 3));
    EXPECT_DOUBLE_EQ(Calls.back().Angle, -0.5);
}

TEST_F(MetafileHook, FailingCodecBeepsAndThePaintGoesOn) {
    Throw = true;
    TPointObj* obj = Tool->Place(Point(100, 60));
    obj->SetAlphaPlain(500);
    Painted();
    ASSERT_FALSE(Calls.empty());
    ASSERT_FALSE(Dialogs.Beeps.empty());
    EXPECT_EQ(Dialogs.Beeps.back(), 1u);
    EXPECT_EQ(Box->ScaleSetting().Canvas()->LockCount(), 0) << "the canvas is unlocked again";
}

} // namespace
} // namespace vl::test
