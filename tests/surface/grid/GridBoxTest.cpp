// The grid of a shown draw box: the pixels it paints under the drawing, and the whole-box repaint
// that any change of its properties, its pen included, asks for.

#include "../box/BoxTestSupport.h"

namespace vl::test {
namespace {

constexpr QRgb White = 0xFFFFFF;
constexpr QRgb Blue = 0x0000FF; // clBlue as it reaches the surface
constexpr QRgb Red = 0xFF0000;  // clRed

class GridBox : public StoredBoxFixture {
protected:
    void Start() {
        ShowForm();
        LoadForm();
        Repaint();
        ASSERT_TRUE(Box->Surface().Invalid().isEmpty());
    }
    // Checks every pixel of the surface against `Expected(x, y)`.
    template <class F>
    void ExpectSurface(F Expected) {
        const QImage& img = Box->Surface().Image();
        ASSERT_FALSE(img.isNull());
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                ASSERT_EQ(img.pixel(x, y) & 0xFFFFFF, Expected(x, y)) << "pixel " << x << "," << y;
    }
    bool WholeBoxInvalid() const { return Box->Surface().Invalid() == QRegion(Box->Surface().Bounds()); }
    TvlGrid& Grid() { return Box->Grid(); }
};

// --- Pixels ------------------------------------------------------------------------------------

TEST_F(GridBox, ABoxShowsNoGridByDefault) {
    Start();
    ExpectSurface([](int, int) { return White; });
}

TEST_F(GridBox, TheGridIsDrawnAsFullOnePixelLinesWithItsPen) {
    Grid().SetIncHorz(50);
    Grid().SetIncVert(40);
    Grid().Pen().SetColor(clBlue);
    Grid().SetVisible(true);
    Start();
    ExpectSurface([](int x, int y) { return x % 50 == 0 || y % 40 == 0 ? Blue : White; });
}

TEST_F(GridBox, ShowEveryDrawsEveryNthLine) {
    Grid().SetIncHorz(20);
    Grid().SetIncVert(30);
    Grid().Pen().SetColor(clBlue);
    Grid().SetShowEvery(3);
    Start();
    ExpectSurface([](int x, int y) { return x % 60 == 0 || y % 90 == 0 ? Blue : White; });
}

TEST_F(GridBox, IncHorzZeroPaintsOnlyHorizontalLines) {
    Grid().SetIncHorz(0);
    Grid().SetIncVert(25);
    Grid().Pen().SetColor(clBlue);
    Grid().SetVisible(true);
    Start();
    ExpectSurface([](int, int y) { return y % 25 == 0 ? Blue : White; });
}

TEST_F(GridBox, AHiddenGridIsNotPaintedThoughShowEveryIsKept) {
    Grid().SetIncHorz(50);
    Grid().Pen().SetColor(clBlue);
    Grid().SetShowEvery(2);
    Grid().SetVisible(false);
    Start();
    EXPECT_EQ(Grid().ShowEvery(), 2);
    ExpectSurface([](int, int) { return White; });
}

TEST_F(GridBox, TheGridFollowsTheScale) {
    // At half scale 100 logical units are 50 pixels: the increments are logical units.
    Box->ScaleSetting().SetScale(0.5);
    Grid().SetIncHorz(100);
    Grid().SetIncVert(60);
    Grid().Pen().SetColor(clBlue);
    Grid().SetVisible(true);
    Start();
    ExpectSurface([](int x, int y) { return x % 50 == 0 || y % 30 == 0 ? Blue : White; });
}

TEST_F(GridBox, TheLatticePassesThroughTheLogicalOriginWhereverItLies) {
    // With the origin at the bottom left, logical y grows upward from the viewport origin: the
    // horizontal lines are counted from there, not from the top of the box.
    Box->ScaleSetting().SetOrigin(TOrigin::LeftBottom);
    Grid().SetIncHorz(50);
    Grid().SetIncVert(40);
    Grid().Pen().SetColor(clBlue);
    Grid().SetVisible(true);
    Start();
    const TPoint org = Box->ScaleSetting().VPOrg();
    ASSERT_GT(org.y, 0);
    ASSERT_NE(org.y % 40, 0) << "the check needs an origin off the top row's lattice";
    ExpectSurface([org](int x, int y) {
        const int logX = x - org.x;
        const int logY = org.y - y;
        return logX % 50 == 0 || logY % 40 == 0 ? Blue : White;
    });
}

TEST_F(GridBox, ObjectsLieOnTopOfTheGrid) {
    Grid().SetIncHorz(50);
    Grid().SetIncVert(50);
    Grid().Pen().SetColor(clBlue);
    Grid().SetVisible(true);
    Start();
    Dm->Hold(TTestObject::BareRect("a", LimRec(40, 40, 70, 70)));
    Repaint();
    ExpectSurface([](int x, int y) {
        if (x >= 40 && x < 70 && y >= 40 && y < 70) return Red;
        return x % 50 == 0 || y % 50 == 0 ? Blue : White;
    });
}

TEST_F(GridBox, APartialRepaintDrawsTheLinesCrossingTheClipOnly) {
    Grid().SetIncHorz(50);
    Grid().SetIncVert(50);
    Grid().Pen().SetColor(clBlue);
    Grid().SetVisible(true);
    Start();
    // Paint the surface white by hand, then repaint a strip whose left edge lies on a line.
    Box->Surface().Image().fill(Qt::white);
    Box->UpdateRect(LimRec(100, 20, 160, 80));
    ExpectSurface([](int x, int y) {
        const bool inClip = x >= 100 && x < 160 && y >= 20 && y < 80;
        return inClip && (x % 50 == 0 || y % 50 == 0) ? Blue : White;
    });
}

// --- Repaints ----------------------------------------------------------------------------------

TEST_F(GridBox, APenChangedByTheHostRepaintsTheWholeBoxAtOnce) {
    Grid().SetIncHorz(50);
    Grid().SetIncVert(50);
    Grid().Pen().SetColor(clBlue);
    Grid().SetVisible(true);
    Start();
    Grid().Pen().SetColor(clRed);
    EXPECT_TRUE(WholeBoxInvalid());
    EXPECT_EQ(Box->Surface().Erase(), Box->Surface().Invalid());
    Box->Update();
    ExpectSurface([](int x, int y) { return x % 50 == 0 || y % 50 == 0 ? Red : White; });
}

TEST_F(GridBox, EachPenAttributeRepaints) {
    Grid().SetVisible(true);
    Start();
    const std::vector<std::function<void(TPen&)>> changes = {
        [](TPen& p) { p.SetColor(clGreen); }, [](TPen& p) { p.SetWidth(3); },
        [](TPen& p) { p.SetStyle(psDash); }, [](TPen& p) { p.SetMode(pmXor); }};
    for (std::size_t i = 0; i < changes.size(); ++i) {
        changes[i](Grid().Pen());
        EXPECT_TRUE(WholeBoxInvalid()) << i;
        Box->Update();
        ASSERT_TRUE(Box->Surface().Invalid().isEmpty());
    }
}

TEST_F(GridBox, APenSetToItsOwnValuesDoesNotRepaint) {
    Start();
    Grid().Pen().SetColor(Grid().Pen().Color());
    Grid().Pen().SetWidth(Grid().Pen().Width());
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
}

TEST_F(GridBox, AssigningAnotherPenRepaints) {
    Start();
    TPen other;
    other.SetColor(clMaroon);
    Grid().Pen().Assign(&other);
    EXPECT_TRUE(WholeBoxInvalid());
}

TEST_F(GridBox, ChangedPropertiesRepaintTheWholeBox) {
    Start();
    const std::vector<std::function<void(TvlGrid&)>> changes = {
        [](TvlGrid& g) { g.SetIncHorz(30); },    [](TvlGrid& g) { g.SetIncVert(30); },
        [](TvlGrid& g) { g.SetVisible(true); },  [](TvlGrid& g) { g.SetShowEvery(4); },
        [](TvlGrid& g) { g.SetVisible(false); }, [](TvlGrid& g) { g.SetShowEvery(0); }};
    for (std::size_t i = 0; i < changes.size(); ++i) {
        changes[i](Grid());
        EXPECT_TRUE(WholeBoxInvalid()) << i;
        Box->Update();
        ASSERT_TRUE(Box->Surface().Invalid().isEmpty());
    }
}

TEST_F(GridBox, UnchangedValuesDoNotRepaint) {
    Grid().SetShowEvery(2);
    Start();
    Grid().SetIncHorz(100);
    Grid().SetIncVert(100);
    Grid().SetShowEvery(2);
    Grid().SetVisible(true);
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
}

TEST_F(GridBox, CaptureIsAPlainFieldAndDoesNotRepaint) {
    Start();
    Grid().SetCapture(true);
    Grid().FCapture = false;
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
}

TEST_F(GridBox, ChangedRepaintsWholeBoxAfterAPartialInvalidation) {
    Start();
    Box->UpdateRect(LimRec(0, 0, 5, 5));
    Grid().Changed(nullptr);
    EXPECT_TRUE(WholeBoxInvalid());
}

TEST_F(GridBox, AssigningAnEqualGridDoesNotRepaintAndADifferentOneDoes) {
    Start();
    TvlGrid same(nullptr);
    Grid().Assign(&same);
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
    TvlGrid other(nullptr);
    other.SetIncVert(20);
    Grid().Assign(&other);
    EXPECT_TRUE(WholeBoxInvalid());
    Box->Update();
    TvlGrid otherPen(nullptr);
    otherPen.SetIncVert(20);
    otherPen.Pen().SetColor(clRed);
    Grid().Assign(&otherPen);
    EXPECT_TRUE(WholeBoxInvalid());
}

// --- The box's own grid and shadows -------------------------------------------------------------

TEST_F(GridBox, TheBoxMakesAGridAndShadowsWithTheirDefaults) {
    EXPECT_FALSE(Grid().Visible());
    EXPECT_EQ(Grid().ShowEvery(), 0);
    EXPECT_EQ(Grid().IncHorz(), 100);
    EXPECT_EQ(Grid().IncVert(), 100);
    EXPECT_FALSE(Grid().Capture());
    EXPECT_EQ(Box->Shadows().dX(), 10);
    EXPECT_EQ(Box->Shadows().dY(), 7);
    EXPECT_EQ(Box->Shadows().Brush().Color(), 0x808080);
    EXPECT_EQ(Box->Shadows().Brush().Style(), bsSolid);
}

TEST_F(GridBox, MoveObjectsSnapsTheDistanceWhenTheGridCaptures) {
    Start();
    auto* obj = Dm->Hold(TTestObject::BareRect("a", LimRec(10, 10, 20, 20)));
    Dm->Marks.push_back(obj);
    Grid().SetCapture(true);
    Box->MoveObjects(Point(150, 49));
    EXPECT_EQ(obj->Lims->Xmin, 210);
    EXPECT_EQ(obj->Lims->Ymin, 10);
}

} // namespace
} // namespace vl::test
