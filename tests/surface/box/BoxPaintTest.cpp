// One paint of the draw box: its order, the scale setting in force, the flags it consumes.

#include "BoxTestSupport.h"

namespace vl::test {
namespace {

class BoxPaint : public StoredBoxFixture {
protected:
    // Loads the form (a module that holds objects at load time would be passed over, so objects
    // are added after this) and runs the first paint.
    void Start() {
        ShowForm();
        LoadForm();
        Repaint();
    }
};

TEST_F(BoxPaint, DrawsGridBeforePaintRulersObjectsAfterPaintInThisOrder) {
    std::vector<std::string> log;
    auto* creator = new TTestCreator(Form.get());
    creator->FDrawForm = Box;
    Box->Grid().SetIncHorz(50);
    Box->Grid().SetIncVert(50);
    Box->Grid().Pen().SetColor(clBlue);
    Box->Grid().SetVisible(true);
    Box->SetScaleHorz(TTestObject::BareRect("rulerH", LimRec(0, 0, 300, 5), &log));
    Box->SetScaleVert(TTestObject::BareRect("rulerV", LimRec(0, 0, 5, 200), &log));
    Box->BeforePaint = [&](TObject*) {
        // The grid is on the surface already: the line at x = 50 is in the grid's colour.
        log.push_back(SurfacePixel(Box, 50, 120) == 0x0000FF ? "BeforePaint(grid drawn)"
                                                             : "BeforePaint(no grid)");
    };
    Box->AfterPaint = [&](TObject*) { log.push_back("AfterPaint"); };
    Start();
    Dm->Hold(TTestObject::BareRect("first", LimRec(60, 60, 80, 80), &log));
    auto* second = Dm->Hold(TTestObject::BareRect("second", LimRec(70, 70, 90, 90), &log));
    second->Fill = clLime;
    log.clear();
    const int releases = creator->Releases;
    Repaint();
    EXPECT_EQ(log, (std::vector<std::string>{"BeforePaint(grid drawn)", "rulerH.Show", "rulerV.Show",
                                             "first.Show", "second.Show", "AfterPaint"}));
    EXPECT_EQ(creator->Releases, releases + 1);
    // The later object lies on top of the earlier one.
    EXPECT_EQ(SurfacePixel(Box, 75, 75), 0x00FF00u);
    EXPECT_EQ(SurfacePixel(Box, 65, 65), 0xFF0000u);
}

TEST_F(BoxPaint, AnEmptyDataModuleStillRunsBeforePaintRulersAndAfterPaint) {
    std::vector<std::string> log;
    Box->SetScaleHorz(TTestObject::BareRect("ruler", LimRec(0, 0, 300, 5), &log));
    Box->BeforePaint = [&](TObject*) { log.push_back("BeforePaint"); };
    Box->AfterPaint = [&](TObject*) { log.push_back("AfterPaint"); };
    Start();
    Box->State.Include(bsNewRange);
    Box->ScaleSetting().State.Include(scChanged);
    log.clear();
    Repaint();
    EXPECT_EQ(log, (std::vector<std::string>{"BeforePaint", "ruler.Show", "AfterPaint"}));
    EXPECT_TRUE(Box->State.Contains(bsNewRange));
    EXPECT_TRUE(Box->ScaleSetting().State.Contains(scChanged));
}

TEST_F(BoxPaint, PaintEndsTheScrollFlags) {
    Start();
    Box->State.Include(bsHScrolling);
    Box->State.Include(bsVScrolling);
    Repaint();
    EXPECT_FALSE(Box->State.Contains(bsHScrolling));
    EXPECT_FALSE(Box->State.Contains(bsVScrolling));
}

TEST_F(BoxPaint, ObjectsOutsideTheClipAreNotShownButNosyOnesHearOfThePaint) {
    std::vector<std::string> log;
    Start();
    auto* inside = Dm->Hold(TTestObject::BareRect("inside", LimRec(10, 10, 20, 20), &log));
    auto* outside = Dm->Hold(TTestObject::BareRect("outside", LimRec(100, 100, 120, 120), &log));
    auto* hidden = Dm->Hold(TTestObject::BareRect("hidden", LimRec(10, 10, 20, 20), &log));
    outside->IsNosy = true;
    hidden->IsNosy = true;
    hidden->IsVisible = false;
    outside->Messages.clear();
    hidden->Messages.clear();
    Box->UpdateRect(LimRec(0, 0, 50, 50));
    EXPECT_EQ(log, (std::vector<std::string>{"inside.Show"}));
    EXPECT_EQ(outside->Messages, (std::vector<std::uint32_t>{200}));
    EXPECT_EQ(hidden->Messages, (std::vector<std::uint32_t>{200}));
    EXPECT_TRUE(inside->Messages.empty());
}

TEST_F(BoxPaint, AChangedScaleAdaptsCreatorsAndObjectsOnceAndIsConsumed) {
    auto* creator = new TTestCreator(Form.get());
    creator->FDrawForm = Box;
    Start();
    auto* obj = Dm->Hold(TTestObject::BareRect("a", LimRec(10, 10, 20, 20)));
    const int scalings = creator->Scalings;
    const int adjusted = obj->Adjusted;
    Box->ScaleSetting().State.Include(scChanged);
    Box->ScaleSetting().State.Include(scBoundsChanged);
    Box->ScaleSetting().State.Include(scFontChanged);
    const int inits = Dm->LimitInits;
    Repaint();
    EXPECT_EQ(creator->Scalings, scalings + 1);
    EXPECT_EQ(obj->Adjusted, adjusted + 1);
    EXPECT_EQ(Dm->LimitInits, inits + 1);
    EXPECT_FALSE(Box->ScaleSetting().State.Contains(scChanged));
    EXPECT_FALSE(Box->ScaleSetting().State.Contains(scBoundsChanged));
    EXPECT_FALSE(Box->ScaleSetting().State.Contains(scFontChanged));
    Repaint();
    EXPECT_EQ(obj->Adjusted, adjusted + 1);
}

TEST_F(BoxPaint, LimitsThatChangeDuringThePaintAskForNewRanges) {
    Start();
    auto* obj = Dm->Hold(TTestObject::BareRect("a", LimRec(10, 10, 20, 20)));
    Repaint();
    ASSERT_FALSE(Box->State.Contains(bsNewRange));
    // The object moves while the paint runs, as one whose new font changes its size: the limits kept
    // at the start of the paint differ and the range check of the same paint runs and consumes it.
    int rangeChecks = 0;
    obj->OnShow = [&] { obj->MovePos(Point(5, 0)); };
    const int inits = Dm->LimitInits;
    Box->ScaleSetting().State.Include(scMovingObjects); // the range check then only rebuilds limits
    Repaint();
    rangeChecks = Dm->LimitInits - inits;
    EXPECT_EQ(rangeChecks, 1);
    // With objects moving the request stays pending.
    EXPECT_TRUE(Box->State.Contains(bsNewRange));
    Box->ScaleSetting().State.Exclude(scMovingObjects);
    obj->OnShow = nullptr;
    Repaint();
    EXPECT_FALSE(Box->State.Contains(bsNewRange));
}

TEST_F(BoxPaint, NoPaintWhileAPrintJobRuns) {
    int before = 0;
    Box->BeforePaint = [&](TObject*) { ++before; };
    Start();
    before = 0;
    Box->ScaleSetting().State.Include(scPrinting);
    Repaint();
    EXPECT_EQ(before, 0);
    Box->ScaleSetting().State.Exclude(scPrinting);
    Repaint();
    EXPECT_EQ(before, 1);
}

TEST_F(BoxPaint, PaintStoresTheClientRectInLogicalCoordinates) {
    Start();
    Box->ScaleSetting().SetClientRect_Log(TRect{});
    Repaint();
    EXPECT_EQ(Box->ScaleSetting().ClientRect_Log(), Rect(0, 0, Box->ClientWidth(), Box->ClientHeight()));
}

TEST_F(BoxPaint, TwoBoxesEachPaintWithTheirOwnScaleSetting) {
    TvlDrawbox* other = MakeBox(QStringLiteral("Box2"), Rect(320, 10, 620, 210));
    std::vector<TScaleSetting*> seen;
    Box->BeforePaint = [&](TObject*) { seen.push_back(ActScaleSet); };
    other->BeforePaint = [&](TObject*) { seen.push_back(ActScaleSet); };
    Start();
    seen.clear();
    other->InvalidateBox();
    other->Update();
    Box->InvalidateBox();
    Box->Update();
    other->InvalidateBox();
    other->Update();
    EXPECT_EQ(seen, (std::vector<TScaleSetting*>{&other->ScaleSetting(), &Box->ScaleSetting(),
                                                 &other->ScaleSetting()}));
}

TEST_F(BoxPaint, ObjectsAreShownWithTheBoxsScaleSettingInForce) {
    TvlDrawbox* other = MakeBox(QStringLiteral("Box2"), Rect(320, 10, 620, 210));
    Start();
    auto* obj = Dm->Hold(TTestObject::BareRect("a", LimRec(10, 10, 20, 20)));
    ActScaleSet = &other->ScaleSetting();
    Repaint();
    EXPECT_EQ(obj->ShownWith, &Box->ScaleSetting());
    EXPECT_EQ(SurfacePixel(Box, 15, 15), 0xFF0000u);
}

TEST_F(BoxPaint, TheFirstPaintRunsPredefineObjectsOnce) {
    int calls = 0;
    Box->OnPredefineObjects = [&](TObject*) {
        ++calls;
        Dm->Hold(TTestObject::BareRect("predefined", LimRec(0, 0, 4, 4)));
    };
    Start();
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(Box->Initializing);
    Repaint();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(SurfacePixel(Box, 2, 2), 0xFF0000u);
}

TEST_F(BoxPaint, OnPredefineObjectsChangingTheCursorHasNoLastingEffect) {
    Box->SetCursor(crArrow);
    Box->OnPredefineObjects = [&](TObject*) { Box->SetCursor(crHourGlass); };
    Start();
    EXPECT_EQ(Box->Cursor(), crArrow);
}

} // namespace
} // namespace vl::test
