// The draw box's construction, loading, coordinates, invalidation and tool lookup.

#include "BoxTestSupport.h"

#include "surface/AppIdentity.h"

#include <cmath>

namespace vl::test {
namespace {

class BoxCore : public BoxFixture {};

// The device's inverse mapping: logical = (device - origin) × window extent / viewport extent, the
// quotient rounded half away from zero.
std::int32_t LogOf(std::int64_t Dev, std::int64_t Org, std::int64_t WndExt, std::int64_t VPExt) {
    const long double q = static_cast<long double>((Dev - Org) * WndExt) / static_cast<long double>(VPExt);
    return static_cast<std::int32_t>(std::lround(static_cast<double>(q)));
}

TEST_F(BoxCore, ConstructionMakesTheOwnedParts) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    EXPECT_EQ(box->clMarkPen(), 255);
    EXPECT_EQ(box->Tool(), nullptr);
    EXPECT_EQ(box->DataModule(), nullptr);
    EXPECT_EQ(box->MouseFnd(), nullptr);
    EXPECT_EQ(box->ScaleSetting().Canvas(), &box->Canvas());
    EXPECT_EQ(box->ScaleSetting().RawScale(), 0.0);
    EXPECT_EQ(box->ScaleSetting().GetScale(), 1.0);
    EXPECT_FALSE(box->ScaleSetting().State.Contains(scDesigning));
    EXPECT_FALSE(box->Grid().Visible());
    EXPECT_EQ(box->Shadows().dX(), 10);
    EXPECT_EQ(box->Shadows().dY(), 7);
    EXPECT_FALSE(box->Initializing);
}

TEST_F(BoxCore, LoadedComputesTheMappingAt96PixelsPerInch) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    box->ScaleSetting().SetRcp_Scale(100);
    LoadForm();
    const TScaleSetting& ss = box->ScaleSetting();
    EXPECT_DOUBLE_EQ(ss.Scale(), 0.01);
    EXPECT_EQ(ss.PixPerM(), 3750);
    EXPECT_EQ(ss.RefScale().VPExt, ss.VPExt());
    EXPECT_EQ(ss.RefScale().WndExt, ss.WndExt());
    EXPECT_EQ(ActScaleSet, &box->ScaleSetting());
    EXPECT_TRUE(box->Initializing);
}

TEST_F(BoxCore, LoadedPutsTheHomeAtTheRightBottomCorner) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    box->ScaleSetting().SetOrigin(TOrigin::RightBottom);
    LoadForm();
    const TScaleSetting& ss = box->ScaleSetting();
    EXPECT_EQ(ss.VPHome(), Point(box->ClientWidth(), box->ClientHeight()));
    EXPECT_EQ(ss.VPOrg(), ss.VPHome());
}

TEST_F(BoxCore, LoadedLeavesTheHomeAtZeroForLeftTop) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    LoadForm();
    EXPECT_EQ(box->ScaleSetting().VPHome(), Point(0, 0));
    EXPECT_EQ(box->ScaleSetting().VPOrg(), Point(0, 0));
}

TEST_F(BoxCore, LoadedRegistersTheClipboardFormatOfAppOwnerAndName) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Drawbox1"));
    LoadForm();
    // The box's application identity is still being set up at this point, which the global shows
    // as -1: that is the number the name begins with.
    EXPECT_EQ(ThisAppID, -1);
    EXPECT_GE(static_cast<std::uint32_t>(box->ClipboardFmt()), 0xC000u);
    EXPECT_EQ(GetClipboardFormatName(static_cast<std::uint32_t>(box->ClipboardFmt())),
              QStringLiteral("-1Form1_Drawbox1"));
}

TEST_F(BoxCore, LoadedInstallsADataModuleOfItsOwnWhenThereIsNone) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    LoadForm();
    ASSERT_NE(box->DataModule(), nullptr);
    EXPECT_TRUE(box->State.Contains(bsOwnDataMod));
    EXPECT_FALSE(box->DefDataMod());
    EXPECT_EQ(box->DataModule()->Owner(), Form.get());
    EXPECT_EQ(box->DataModule()->FDrawForm, box);
    EXPECT_TRUE(box->DataModule()->Empty());
}

TEST_F(BoxCore, LoadedUsesTheFactoryOfTheStore) {
    DataModuleFactory = [](TComponent* Owner) { return NewListedStore(Owner); };
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    LoadForm();
    DataModuleFactory = nullptr;
    EXPECT_NE(dynamic_cast<TStandInStore*>(box->DataModule()), nullptr);
}

TEST_F(BoxCore, LoadedKeepsAnEmptyHostDataModule) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    auto* dm = NewListedStore(Form.get());
    dm->FDrawForm = box;
    box->SetDataModule(dm);
    LoadForm();
    EXPECT_EQ(box->DataModule(), dm);
    EXPECT_TRUE(box->DefDataMod());
}

TEST_F(BoxCore, LoadedPassesOverAHostDataModuleThatHoldsObjects) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    auto* dm = NewListedStore(Form.get());
    dm->Hold(TTestObject::BareRect("a", LimRec(0, 0, 10, 10)));
    box->SetDataModule(dm);
    LoadForm();
    EXPECT_NE(box->DataModule(), dm);
    EXPECT_TRUE(box->State.Contains(bsOwnDataMod));
}

TEST_F(BoxCore, LoadedReplacesADataModuleWhoseTestFails) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    auto* dm = NewListedStore(Form.get());
    dm->ThrowOnEmpty = true;
    box->SetDataModule(dm);
    LoadForm();
    EXPECT_NE(box->DataModule(), dm);
    EXPECT_TRUE(box->State.Contains(bsOwnDataMod));
}

TEST_F(BoxCore, TheOwnDataModuleGoesWithTheBox) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    LoadForm();
    const int count = Form->ComponentCount();
    delete box;
    EXPECT_EQ(Form->ComponentCount(), count - 2);
}

TEST_F(BoxCore, AHostDataModuleThatGoesIsForgotten) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    auto* dm = NewListedStore(Form.get());
    box->SetDataModule(dm);
    LoadForm();
    delete dm;
    EXPECT_EQ(box->DataModule(), nullptr);
}

TEST_F(BoxCore, DestroyingTheBoxClearsItsScaleSettingInForce) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    LoadForm();
    ASSERT_EQ(ActScaleSet, &box->ScaleSetting());
    delete box;
    EXPECT_EQ(ActScaleSet, nullptr);
    ASSERT_FALSE(Cursor.ClipCalls.empty());
    EXPECT_FALSE(Cursor.ClipCalls.back().has_value());
}

TEST_F(BoxCore, LoadedInitialisesToolsAndTheDefaultToolOfThisBoxBecomesCurrent) {
    std::vector<TCall> log;
    TvlDrawbox* box1 = MakeBox(QStringLiteral("Box1"));
    TvlDrawbox* box2 = MakeBox(QStringLiteral("Box2"), Rect(320, 10, 620, 210));
    auto* plain = new TRecordingTool(Form.get(), log);
    plain->FDrawForm = box1;
    auto* def1 = new TRecordingTool(Form.get(), log);
    def1->FDrawForm = box1;
    def1->SetOptions(TToolOptions{toDefaultTool});
    def1->SetCursor(crCross);
    auto* def2 = new TRecordingTool(Form.get(), log);
    def2->FDrawForm = box2;
    def2->SetOptions(TToolOptions{toDefaultTool});
    LoadForm();
    EXPECT_EQ(box1->Tool(), def1);
    EXPECT_EQ(box1->Cursor(), crCross);
    EXPECT_EQ(box2->Tool(), def2);
}

TEST_F(BoxCore, GetClientRectLogWithARightBottomOriginIsNotNormalised) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    box->ScaleSetting().SetOrigin(TOrigin::RightBottom);
    LoadForm();
    const TScaleSetting& ss = box->ScaleSetting();
    const int w = box->ClientWidth();
    const int h = box->ClientHeight();
    const TRect r = box->GetClientRect_Log();
    EXPECT_GT(r.Left, r.Right);
    EXPECT_GT(r.Top, r.Bottom);
    EXPECT_EQ(r.Right, 0);
    EXPECT_EQ(r.Bottom, 0);
    EXPECT_EQ(r.Left, LogOf(0, w, ss.WndExt(), -ss.VPExt()));
    EXPECT_EQ(r.Top, LogOf(0, h, ss.WndExt(), -ss.VPExt()));
}

TEST_F(BoxCore, GetClientRectLogWithALeftTopOrigin) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    box->ScaleSetting().SetMinUnit(TLenUnits::Pixel);
    LoadForm();
    EXPECT_EQ(box->GetClientRect_Log(), Rect(0, 0, box->ClientWidth(), box->ClientHeight()));
}

TEST_F(BoxCore, LogToScreenMapsAndThenGoesToTheScreen) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    box->ScaleSetting().SetMinUnit(TLenUnits::Pixel);
    ShowForm();
    LoadForm();
    EXPECT_EQ(box->LogToScreen(Point(12, 34)), box->ClientToScreen(Point(12, 34)));
}

TEST_F(BoxCore, SetClippingConfinesTheCursorOnePixelInAtRightAndBottom) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    ShowForm();
    LoadForm();
    box->SetClipping();
    ASSERT_FALSE(Cursor.ClipCalls.empty());
    const TPoint tl = box->ClientToScreen(Point(0, 0));
    EXPECT_EQ(Cursor.ClipCalls.back(), std::optional<TRect>(Rect(tl.x, tl.y, tl.x + box->ClientWidth() - 1,
                                                                 tl.y + box->ClientHeight() - 1)));
}

TEST_F(BoxCore, ResizeRenewsTheCursorCageForAScrollingTool) {
    std::vector<TCall> log;
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    auto* tool = new TRecordingTool(Form.get(), log);
    tool->FDrawForm = box;
    tool->SetOptions(TToolOptions{toDefaultTool});
    ShowForm();
    LoadForm();
    Cursor.ClipCalls.clear();
    box->SetBounds(10, 10, 250, 150);
    EXPECT_TRUE(Cursor.ClipCalls.empty());
    tool->ToolState.Include(tsCanScroll);
    box->SetBounds(10, 10, 260, 160);
    ASSERT_FALSE(Cursor.ClipCalls.empty());
    ASSERT_TRUE(Cursor.ClipCalls.back().has_value());
    EXPECT_EQ(Cursor.ClipCalls.back()->Width(), box->ClientWidth() - 1);
}

// --- Invalidation ------------------------------------------------------------------------------

class BoxInvalidate : public StoredBoxFixture {
protected:
    void SetUp() override {
        StoredBoxFixture::SetUp();
        ShowForm();
        LoadForm();
        Box->Update();
        ASSERT_TRUE(Box->Surface().Invalid().isEmpty());
    }
};

TEST_F(BoxInvalidate, ARestoreRectIsInvalidatedInDevicePixelsWithErase) {
    Dm->FRestoreRect = LimRec(30, 40, 10, 20);
    Box->InvalidateChanges();
    EXPECT_EQ(Box->Surface().Invalid(), QRegion(QRect(10, 20, 20, 20)));
    EXPECT_EQ(Box->Surface().Erase(), Box->Surface().Invalid());
}

TEST_F(BoxInvalidate, AnUntouchedRestoreRectPassesTheGuard) {
    Dm->InitRestoreRect();
    Box->InvalidateChanges();
    // Its corners map far outside the window on both sides: the whole client area is invalid.
    EXPECT_EQ(Box->Surface().Invalid(), QRegion(Box->Surface().Bounds()));
}

TEST_F(BoxInvalidate, OnlyTheOppositeValuesAreSkipped) {
    Dm->FRestoreRect = LimRec(-2147483647, 0, 2147483647, 10);
    Box->InvalidateChanges();
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
}

TEST_F(BoxInvalidate, AnInvisibleBoxInvalidatesNothing) {
    Box->SetVisible(false);
    Dm->FRestoreRect = LimRec(0, 0, 50, 50);
    Box->InvalidateChanges();
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
}

TEST_F(BoxInvalidate, TheDataModuleFlushesAndEmptiesItsRestoreRect) {
    Dm->FRestoreRect = LimRec(0, 0, 5, 5);
    Dm->InvalidateRestoreRect();
    EXPECT_EQ(Box->Surface().Invalid(), QRegion(QRect(0, 0, 5, 5)));
    EXPECT_EQ(Dm->FRestoreRect, LimRec(0x7FFFFFFF, 0x7FFFFFFF, -2147483647, -2147483647));
}

TEST_F(BoxInvalidate, UpdateRectPaintsBeforeItReturns) {
    std::vector<TRect> clips;
    Box->BeforePaint = [&](TObject*) { clips.push_back(Box->Canvas().ClipRect()); };
    Box->UpdateRect(LimRec(20, 10, 60, 30));
    ASSERT_EQ(clips.size(), 1u);
    EXPECT_EQ(clips[0], Rect(20, 10, 60, 30));
    EXPECT_TRUE(Box->Surface().Invalid().isEmpty());
}

TEST_F(BoxInvalidate, InvalidateBoxInvalidatesTheWholeClientArea) {
    Box->InvalidateBox();
    EXPECT_EQ(Box->Surface().Invalid(), QRegion(Box->Surface().Bounds()));
    EXPECT_EQ(Box->Surface().Erase(), QRegion(Box->Surface().Bounds()));
}

TEST_F(BoxInvalidate, MoveObjectsMovesTheMarkedWithInvalidationAndUnselects) {
    std::vector<std::string> log;
    auto* a = Dm->Hold(TTestObject::BareRect("a", LimRec(0, 0, 10, 10), &log));
    auto* b = Dm->Hold(TTestObject::BareRect("b", LimRec(0, 0, 10, 10), &log));
    Dm->Marks = {b, a};
    Box->Grid().SetIncHorz(10);
    Box->Grid().SetIncVert(10);
    Box->Grid().SetCapture(true);
    ActScaleSet = nullptr;
    Box->MoveObjects(Point(14, 26));
    EXPECT_EQ(ActScaleSet, &Box->ScaleSetting());
    EXPECT_EQ(log, (std::vector<std::string>{"b.Invalidate", "b.MovePos", "b.Invalidate", "a.Invalidate",
                                             "a.MovePos", "a.Invalidate"}));
    EXPECT_EQ(*a->Lims, LimRec(10, 30, 20, 40));
    ASSERT_EQ(Dm->UnSelects.size(), 1u);
    EXPECT_EQ(Dm->UnSelects[0], nullptr);
}

TEST_F(BoxInvalidate, FilesGoThroughTheDataModule) {
    Box->SaveToFile(QStringLiteral("a.vld"));
    Box->LoadFromFile(QStringLiteral("b.vld"));
    EXPECT_EQ(Dm->Saves, QStringList{QStringLiteral("a.vld")});
    EXPECT_EQ(Dm->Loads, QStringList{QStringLiteral("b.vld")});
    EXPECT_EQ(Box->Surface().Invalid(), QRegion(Box->Surface().Bounds()));
}

TEST_F(BoxInvalidate, CanCloseUnlessTheModuleLoadsOrSaves) {
    EXPECT_TRUE(Box->CanClose());
    Dm->State.Include(dmLoading);
    EXPECT_FALSE(Box->CanClose());
    Dm->State = TDataModState{dmSaving};
    EXPECT_FALSE(Box->CanClose());
}

// --- Tools and creators ------------------------------------------------------------------------

TEST_F(BoxCore, FindCreatorByIdTakesTheLastCreatorOfANegativeId) {
    new TTestCreator(Form.get(), -5);
    auto* second = new TTestCreator(Form.get(), -5);
    new TTestCreator(Form.get(), -6);
    EXPECT_EQ(FindCreatorByID(Form.get(), -5), second);
    EXPECT_EQ(FindCreatorByID(Form.get(), -7), nullptr);
}

TEST_F(BoxCore, FindCreatorByIdComparesNegativeIdsAsSixteenBits) {
    auto* c = new TTestCreator(Form.get(), -1);
    EXPECT_EQ(FindCreatorByID(Form.get(), -65537), c);
}

TEST_F(BoxCore, FindCreatorByIdTakesAnIndexOfZeroOrMore) {
    std::vector<TCall> log;
    auto* c0 = new TTestCreator(Form.get(), -3);
    auto* t1 = new TRecordingTool(Form.get(), log);
    EXPECT_EQ(FindCreatorByID(Form.get(), 0), c0);
    EXPECT_EQ(FindCreatorByID(Form.get(), 1), nullptr); // a tool, not a creator
    EXPECT_EQ(FindCreatorByID(Form.get(), 2), nullptr); // no such component
    EXPECT_EQ(FindCreatorByID(Form.get(), 65535), nullptr);
    EXPECT_EQ(FindCreatorByID(nullptr, 0), nullptr);
    (void)t1;
}

TEST_F(BoxCore, CreateObjectAsksTheCreatorOfTheId) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    new TTestCreator(Form.get(), -9);
    std::unique_ptr<TBoxObject> obj(box->CreateObject(-9));
    EXPECT_NE(dynamic_cast<TTestObject*>(obj.get()), nullptr);
    EXPECT_THROW(box->CreateObject(-10), Exception);
}

TEST_F(BoxCore, WithToolsDoWalksTheBoxsToolsUntilTheFlagIsSet) {
    std::vector<TCall> log;
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    TvlDrawbox* other = MakeBox(QStringLiteral("Box2"), Rect(320, 10, 620, 210));
    auto* c1 = new TTestCreator(Form.get());
    c1->FDrawForm = box;
    auto* t = new TRecordingTool(Form.get(), log);
    t->FDrawForm = box;
    auto* c2 = new TTestCreator(Form.get());
    c2->FDrawForm = other;
    auto* c3 = new TTestCreator(Form.get());
    c3->FDrawForm = box;
    auto* c4 = new TTestCreator(Form.get());
    c4->FDrawForm = box;
    std::vector<TComponent*> seen;
    box->WithToolsDo(&TCustomDrawBox::Creators, [&](TComponent* c, bool& done) {
        seen.push_back(c);
        done = c == c3;
    });
    EXPECT_EQ(seen, (std::vector<TComponent*>{c1, c3}));
}

// --- Identity ----------------------------------------------------------------------------------

TEST_F(BoxCore, TheFirstPaintTakesOverTheApplicationIdentity) {
    TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
    box->App().SetAppID(42);
    box->App().SetVersionMinor(3);
    EXPECT_EQ(ThisAppID, -1);
    ShowForm();
    LoadForm();
    box->InvalidateBox();
    box->Update();
    EXPECT_EQ(ThisAppID, 42);
    EXPECT_EQ(ThisAppVersion, 0x01030000u);
}

TEST_F(BoxCore, AnOldVersionIsExpandedNibbleByNibble) {
    TvlApplication app;
    app.SetAppVersion(0x1234);
    EXPECT_EQ(app.AppVersion(), 0x01020304u);
}

} // namespace
} // namespace vl::test
