// The creator base: construction and loading, the class choice, IDs, the click that makes an
// object (through the draw box), data, slaves, colours and the scaled font.

#include "ToolTestSupport.h"

#include "platform/gdi/GdiObjects.h"

namespace vl::test {
namespace {

class Creator : public ToolFixture {};

// An object class other than the default, to tell the choice apart: only a class of its own can be
// told apart by `dynamic_cast`.
class TOtherObj : public TTestObject {
public:
    using TTestObject::TTestObject;
};

TEST_F(Creator, ACreatorStartsWithAPlainGeneratorTheCrossCursorAndOwnObjects) {
    auto* c = AddTool<TvlCreator>();
    ASSERT_NE(c->Generator(), nullptr);
    EXPECT_NE(dynamic_cast<TGenerator*>(c->Generator()), nullptr);
    EXPECT_EQ(c->Cursor(), crCross);
    EXPECT_FALSE(c->CreateBoxObjects());
    EXPECT_EQ(c->SetNewObj(Point(1, 1)), nullptr);
}

TEST_F(Creator, LoadingKeepsTheDesignedFontHeightAndEntersTheRotateCursor) {
    auto* c = AddTool<TvlCreator>();
    c->Generator()->Font().SetHeight(-17);
    Screen.SetCursors(CursorRotate, nullptr);
    LoadForm();
    EXPECT_EQ(c->Generator()->FontBackup, -17);
    EXPECT_TRUE(Screen.HasCursor(CursorRotate));
}

TEST_F(Creator, AtDesignTimeLoadingLeavesFontBackupAlone) {
    auto* c = AddTool<TvlCreator>();
    c->Generator()->Font().SetHeight(-17);
    c->SetDesigning(true);
    c->BeginLoading();
    c->Loaded();
    EXPECT_EQ(c->Generator()->FontBackup, 0);
}

// ---------------------------------------------------------------------------------------------
// Identity and class
// ---------------------------------------------------------------------------------------------

TEST_F(Creator, WithoutChangeIDTheIDIsTheComponentIndex) {
    auto* c = AddTool<TSquareCreator>();
    EXPECT_EQ(c->GetID(), c->ComponentIndex());
    EXPECT_EQ(c->ID(), 2); // after the box and the data module
}

TEST_F(Creator, WithoutChangeIDMovingAToolInTheComponentOrderChangesItsID) {
    auto* c = AddTool<TSquareCreator>();
    AddTool<TSquareCreator>();
    const std::int16_t before = c->GetID();
    Form->RemoveComponent(c);
    Form->InsertComponent(c);
    EXPECT_NE(c->GetID(), before);
    EXPECT_EQ(c->GetID(), Form->ComponentCount() - 1);
}

TEST_F(Creator, ChangeIDStartsFromZeroAndItsAnswerIsTheID) {
    auto* c = AddTool<TSquareCreator>();
    TNewID seen = 99;
    c->ChangeID = [&](TObject* Sender, TNewID& NewID) {
        EXPECT_EQ(Sender, c);
        seen = NewID;
        NewID = -7;
    };
    EXPECT_EQ(c->GetID(), -7);
    EXPECT_EQ(seen, 0);
    Form->RemoveComponent(c);
    Form->InsertComponent(c);
    EXPECT_EQ(c->GetID(), -7);
}

TEST_F(Creator, AnObjectsClassNumberIsItsToolsID) {
    auto* c = AddTool<TSquareCreator>();
    std::unique_ptr<TvlObject> o(c->CreateObject());
    EXPECT_EQ(o->ClassNr(), c->GetID());
    c->ChangeID = [](TObject*, TNewID& id) { id = -300; };
    EXPECT_EQ(o->ClassNr(), -300);
    EXPECT_EQ(FindCreatorByID(Form.get(), -300), c);
}

TEST_F(Creator, FindCreatorByIDResolvesIndexesAndHostIDs) {
    auto* a = AddTool<TSquareCreator>();
    auto* b = AddTool<TSquareCreator>();
    b->ChangeID = [](TObject*, TNewID& id) { id = -2; };
    auto* c = AddTool<TSquareCreator>();
    c->ChangeID = [](TObject*, TNewID& id) { id = -2; };
    EXPECT_EQ(FindCreatorByID(Form.get(), a->ComponentIndex()), a);
    EXPECT_EQ(FindCreatorByID(Form.get(), -2), c);      // the last one with that ID
    EXPECT_EQ(FindCreatorByID(Form.get(), 0), nullptr); // the box is no creator
    EXPECT_EQ(FindCreatorByID(Form.get(), 99), nullptr);
    EXPECT_EQ(FindCreatorByID(Form.get(), 65534), nullptr); // an index, and there is none
    EXPECT_EQ(FindCreatorByID(Form.get(), -65538), c);      // compared as 16-bit values: -2
}

TEST_F(Creator, TheBoxCreatesObjectsByToolID) {
    auto* c = AddTool<TSquareCreator>();
    std::unique_ptr<TvlObject> o(static_cast<TvlObject*>(Box->CreateObject(c->GetID())));
    EXPECT_EQ(o->Tool(), c);
    EXPECT_THROW(Box->CreateObject(-5), Exception);
}

TEST_F(Creator, CreateObjectUsesTheDefaultClassAndCountsTheInstance) {
    auto* c = AddTool<TSquareCreator>();
    std::unique_ptr<TvlObject> o(c->CreateObject());
    EXPECT_NE(dynamic_cast<TTestObject*>(o.get()), nullptr);
    EXPECT_EQ(dynamic_cast<TOtherObj*>(o.get()), nullptr);
    EXPECT_EQ(o->Tool(), c);
    EXPECT_EQ(o->ID(), 0); // no number yet
    EXPECT_EQ(c->Generator()->Instance(), 1);
    o.reset();
    EXPECT_EQ(c->Generator()->Instance(), 0);
}

TEST_F(Creator, OnObjectSetClassChoosesTheClass) {
    auto* c = AddTool<TSquareCreator>();
    c->OnObjectSetClass = [](TCapClass& cls) { cls = &NewObjectOf<TOtherObj>; };
    std::unique_ptr<TvlObject> o(c->CreateObject());
    EXPECT_NE(dynamic_cast<TOtherObj*>(o.get()), nullptr);
}

TEST_F(Creator, AClassLeftUnsetByTheEventRaisesAClearError) {
    auto* c = AddTool<TSquareCreator>();
    c->OnObjectSetClass = [](TCapClass&) {};
    EXPECT_THROW(c->CreateObject(), Exception);
}

TEST_F(Creator, ThePlainCreatorMakesObjectsOfTheInstalledDefaultClass) {
    auto* c = AddTool<TvlCreator>();
    std::unique_ptr<TvlObject> o(c->CreateObject());
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o->Tool(), c);
}

// ---------------------------------------------------------------------------------------------
// The click
// ---------------------------------------------------------------------------------------------

TEST_F(Creator, AClickMakesANumberedVisibleObjectInTheGeneratorsLayer) {
    auto* c = AddTool<TSquareCreator>();
    c->SetOptions(TToolOptions{toDefaultTool});
    c->Generator()->SetLayer(3);
    c->Generator()->SetCounter(4);
    ShowForm();
    LoadForm();
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(40, 50));
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(80, 50));
    Settle();
    ASSERT_EQ(DataMod->Objects.size(), 2u);
    EXPECT_EQ(DataMod->Object(0)->GetPos(), Point(40, 50));
    EXPECT_EQ(DataMod->Object(0)->ID(), 1);
    EXPECT_EQ(DataMod->Object(1)->ID(), 2);
    EXPECT_EQ(DataMod->CounterValues[4], 2);
    EXPECT_EQ(DataMod->Layers, (std::vector<std::int32_t>{3, 3}));
    EXPECT_TRUE(DataMod->Object(0)->GetVisible());
}

TEST_F(Creator, AClickWithTheGridCapturingMakesTheObjectAtTheSnappedPointWhileTheEventKeepsTheClick) {
    auto* c = AddTool<TSquareCreator>();
    c->SetOptions(TToolOptions{toDefaultTool});
    Box->Grid().SetIncHorz(20);
    Box->Grid().SetIncVert(20);
    Box->Grid().SetCapture(true);
    std::vector<TPoint> hostSaw;
    Box->OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int X, int Y) {
        hostSaw.push_back(Point(X, Y));
    };
    ShowForm();
    LoadForm();
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(47, 52));
    Settle();
    ASSERT_EQ(hostSaw.size(), 1u);
    EXPECT_EQ(hostSaw[0], Point(47, 52));
    ASSERT_EQ(c->Given.size(), 1u);
    TPoint snapped = Point(47, 52);
    Box->Grid().MatchCoords(snapped);
    EXPECT_NE(snapped, Point(47, 52));
    EXPECT_EQ(c->Given[0], snapped);
    ASSERT_EQ(DataMod->Objects.size(), 1u);
    EXPECT_EQ(DataMod->Object(0)->GetPos(), snapped);
}

TEST_F(Creator, AClickFlushesTheRestoreRectToTheWindow) {
    auto* c = AddTool<TSquareCreator>();
    c->SetOptions(TToolOptions{toDefaultTool});
    ShowForm();
    LoadForm();
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(40, 50));
    EXPECT_EQ(DataMod->FRestoreRect.Xmin, 0x7FFFFFFF); // emptied by the flush
    ASSERT_EQ(DataMod->Objects.size(), 1u);
    EXPECT_EQ(static_cast<TTestObject*>(DataMod->Object(0))->Invalidations, 1);
}

TEST_F(Creator, OnObjectSetDataReplacesTheDefaultData) {
    auto* c = AddTool<TSquareCreator>();
    c->SetOptions(TToolOptions{toDefaultTool});
    ShowForm();
    LoadForm();
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(40, 50));
    EXPECT_EQ(c->DefaultData, 1);
    std::vector<TvlObject*> data;
    c->OnObjectSetData = [&](TvlObject* o) { data.push_back(o); };
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(60, 50));
    EXPECT_EQ(c->DefaultData, 1);
    ASSERT_EQ(data.size(), 1u);
    EXPECT_EQ(data[0], DataMod->Object(1));
}

TEST_F(Creator, ActivatingTakesTheCreateBackupOnlyWithTheUndoOption) {
    auto* c = AddTool<TSquareCreator>();
    c->Activate(nullptr);
    EXPECT_TRUE(DataMod->Backups.empty());
    DataMod->FUndo = TUndo{unCreate};
    c->Activate(nullptr);
    EXPECT_EQ(DataMod->Backups, (std::vector<TBackupMode>{bkCreate}));
    EXPECT_EQ(Box->Tool(), c);
}

TEST_F(Creator, TheCreateBackupIsTakenOnActivatingNotPerObject) {
    auto* c = AddTool<TSquareCreator>();
    c->SetOptions(TToolOptions{toDefaultTool});
    DataMod->FUndo = TUndo{unCreate, unMove};
    ShowForm();
    LoadForm();
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(40, 50));
    QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(60, 50));
    EXPECT_EQ(DataMod->Objects.size(), 2u);
    EXPECT_EQ(DataMod->Backups, (std::vector<TBackupMode>{bkCreate}));
}

// ---------------------------------------------------------------------------------------------
// Slaves
// ---------------------------------------------------------------------------------------------

TEST_F(Creator, CreateSlaveMakesANumberedVisibleObjectInTheModuleAndInvalidatesIt) {
    auto* c = AddTool<TSquareCreator>();
    auto* slaves = AddTool<TSquareCreator>();
    slaves->Generator()->SetLayer(2);
    TvlObject* master = c->SetNewObj(Point(10, 10));
    TvlObject* slave = slaves->CreateSlave(master);
    ASSERT_EQ(DataMod->Objects.size(), 2u);
    EXPECT_EQ(DataMod->Object(1), slave);
    EXPECT_EQ(DataMod->Layers[1], 2);
    EXPECT_EQ(slave->ID(), 2); // both generators draw from counter 0
    EXPECT_TRUE(slave->GetVisible());
    EXPECT_EQ(static_cast<TTestObject*>(slave)->Invalidations, 1);
    EXPECT_EQ(slaves->DefaultData, 1);
}

TEST_F(Creator, ASlaveHiddenInOnObjectSetDataIsInTheModuleButNotInvalidated) {
    auto* c = AddTool<TSquareCreator>();
    auto* slaves = AddTool<TSquareCreator>();
    slaves->OnObjectSetData = [](TvlObject* o) { o->SetVisible(false); };
    TvlObject* master = c->SetNewObj(Point(10, 10));
    TvlObject* slave = slaves->CreateSlave(master);
    ASSERT_EQ(DataMod->Objects.size(), 2u);
    EXPECT_EQ(DataMod->Object(1), slave);
    EXPECT_FALSE(slave->GetVisible());
    EXPECT_EQ(static_cast<TTestObject*>(slave)->Invalidations, 0);
}

TEST_F(Creator, CreateSlaveAtPlacesTheSlaveFromTheMastersCorner) {
    auto* c = AddTool<TSquareCreator>();
    auto* slaves = AddTool<TSquareCreator>();
    TvlObject* master = c->SetNewObj(Point(30, 40));
    TvlObject* slave = slaves->CreateSlaveAt(master, 5, -7);
    EXPECT_EQ(slave->GetPos(), Point(master->GetMinX() + 5, master->GetMinY() - 7));
}

TEST_F(Creator, ASlaveRefusedByTheModuleIsFreedAndTheErrorRaised) {
    auto* slaves = AddTool<TSquareCreator>();
    auto* plain = new TEmptyDataMod(Form.get());
    Box->SetDataModule(plain);
    TTestObject master;
    MakeSquare(master);
    EXPECT_THROW(slaves->CreateSlave(&master), Exception);
    EXPECT_EQ(slaves->Generator()->Instance(), 0);
}

// ---------------------------------------------------------------------------------------------
// Colours, shapes, the scaled font
// ---------------------------------------------------------------------------------------------

TEST_F(Creator, ObjectColorsSetsPenBrushAndFontAndTheHostHasTheLastWord) {
    auto* c = AddTool<TSquareCreator>();
    LoadForm();
    c->Generator()->Pen().SetColor(clRed);
    c->Generator()->Brush().SetColor(clLime);
    c->Generator()->Font().SetHeight(-23);
    std::unique_ptr<TvlObject> o(c->CreateObject());
    TCanvas& canvas = *ActScaleSet->Canvas();
    c->ObjectColors(o.get());
    EXPECT_EQ(canvas.Pen().Color(), clRed);
    EXPECT_EQ(canvas.Brush().Color(), clLime);
    EXPECT_EQ(canvas.Font().Height(), -23);
    c->OnObjectSetColors = [&](TvlObject*) { canvas.Pen().SetColor(clBlue); };
    c->ObjectColors(o.get());
    EXPECT_EQ(canvas.Pen().Color(), clBlue);
}

TEST_F(Creator, ObjectCheckShapeIsTrueUnlessTheEventRefuses) {
    auto* c = AddTool<TSquareCreator>();
    std::unique_ptr<TvlObject> o(c->CreateObject());
    EXPECT_TRUE(c->ObjectCheckShape(o.get(), LimRec(1, 2, 3, 4)));
    TRect seen;
    c->OnObjectCheckShape = [&](TvlObject*, const TRect& r, bool& found) {
        seen = r;
        found = false;
    };
    EXPECT_FALSE(c->ObjectCheckShape(o.get(), LimRec(1, 2, 3, 4)));
    EXPECT_EQ(seen, Rect(1, 2, 3, 4));
    int shapes = 0;
    c->OnObjectShape = [&](TvlObject*) { ++shapes; };
    c->ObjectShape(o.get());
    EXPECT_EQ(shapes, 1);
}

TEST_F(Creator, CheckScalingDropsTheScaledFontHeight) {
    auto* c = AddTool<TSquareCreator>();
    c->Generator()->SetCurrFontHeight(-40);
    c->CheckScaling();
    EXPECT_EQ(c->Generator()->CurrFontHeight(), 0);
}

TEST_F(Creator, ReleaseResourcesWithoutAFontHandleDoesNothing) {
    auto* c = AddTool<TSquareCreator>();
    LoadForm();
    HDC dc = Box->Canvas().Handle();
    HGDIOBJ before = GetCurrentObject(dc, OBJ_FONT);
    c->ReleaseResources();
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), before);
    EXPECT_EQ(c->Generator()->FontHandle(), nullptr);
}

TEST_F(Creator, ReleaseResourcesSelectsTheStockFontBeforeDeletingTheHandle) {
    auto* c = AddTool<TSquareCreator>();
    LoadForm();
    LOGFONTW lf;
    lf.lfHeight = -15;
    HFONT font = CreateFontIndirectW(&lf);
    c->Generator()->SetFontHandle(font, -15);
    HDC dc = Box->Canvas().Handle();
    SelectObject(dc, font);
    c->ReleaseResources();
    EXPECT_EQ(c->Generator()->FontHandle(), nullptr);
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), GetStockObject(ANSI_VAR_FONT));
    EXPECT_FALSE(IsLiveObject(font));
}

TEST_F(Creator, ThePaintOfTheBoxReleasesTheCreatorsFontHandle) {
    auto* c = AddTool<TSquareCreator>();
    ShowForm();
    LoadForm();
    LOGFONTW lf;
    lf.lfHeight = -15;
    c->Generator()->SetFontHandle(CreateFontIndirectW(&lf), -15);
    Box->InvalidateBox();
    Box->Update();
    Settle();
    EXPECT_EQ(c->Generator()->FontHandle(), nullptr);
}

} // namespace
} // namespace vl::test
