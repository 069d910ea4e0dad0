// Identity of objects, attributes read through the tool's generator, the reference point event,
// visibility, the screen margin of shadows and handles, and the reactions to operations on masters.
#include "ObjectBaseSupport.h"

#include "objects/Generators.h"
#include "platform/core/Scoped.h"
#include "platform/graphics/Graphics.h"
#include "surface/Grid.h"

namespace vl::test {
namespace {

class ObjectBaseTest : public ObjectFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
};

TEST_F(ObjectBaseTest, ConstructionCountsTheToolsLivingObjects) {
    TCustomGenerator& gen = *ToolA->Generator();
    const std::uint16_t before = gen.Instance();
    {
        TTestObject a(ToolA);
        auto b = std::make_unique<TTestObject>(ToolA);
        EXPECT_EQ(gen.Instance(), before + 2);
        b.reset();
        EXPECT_EQ(gen.Instance(), before + 1);
    }
    EXPECT_EQ(gen.Instance(), before);
}

TEST_F(ObjectBaseTest, NewObjectStartsZeroed) {
    TTestObject obj(ToolA);
    EXPECT_EQ(obj.Tool(), ToolA);
    EXPECT_EQ(obj.ID(), 0);
    EXPECT_TRUE(obj.State.Empty());
    EXPECT_EQ(obj.PosRec().x, 0);
    EXPECT_EQ(obj.PosRec().y, 0);
    EXPECT_EQ(obj.PosRec().ConObj, nullptr);
}

TEST_F(ObjectBaseTest, StateFlagsSitAtTheirBits) {
    const std::pair<TIndividualStateFlag, std::uint16_t> bits[] = {
        {isVisible, 0x0001},     {isMarked, 0x0002},      {isDeleted, 0x0004},  {isCantMove, 0x0008},
        {isSlave, 0x0010},       {isP1Slave, 0x0020},     {isP2Slave, 0x0040},  {isConnect, 0x0080},
        {isNoHorzLimit, 0x0100}, {isNoVertLimit, 0x0200}, {isSelected, 0x0400}, {isSizing, 0x0800},
        {isCorrect, 0x1000},     {isUserMark, 0x2000}};
    for (const auto& [flag, bit] : bits) EXPECT_EQ(TIndividualState(flag).Bits(), bit);
    EXPECT_EQ(SavedStateMask, 0xF3F9);
    EXPECT_EQ(sizeof(TIndividualState), 2u);
}

TEST_F(ObjectBaseTest, EnumerationsKeepTheirOrder) {
    EXPECT_EQ(static_cast<int>(invCopy), 2);
    EXPECT_EQ(static_cast<int>(smUnselect), 1);
    EXPECT_EQ(static_cast<int>(cfLimRec), 2);
    EXPECT_EQ(static_cast<int>(rmLog), 1);
    EXPECT_EQ(static_cast<int>(smCheck), 1);
    EXPECT_EQ(static_cast<int>(szRotate), 9);
    EXPECT_EQ(SizingHandle, szNone);
}

TEST_F(ObjectBaseTest, ClassNumberIsTheToolsID) {
    TTestObject a(ToolA);
    EXPECT_EQ(a.ClassNr(), -5);
    auto* indexed = new TTestCreator(Form.get());
    TTestObject b(indexed);
    EXPECT_EQ(b.ClassNr(), indexed->ComponentIndex());
}

TEST_F(ObjectBaseTest, CountNumbersFromTheGeneratorsCounter) {
    ToolA->Generator()->SetCounter(2);
    ToolB->Generator()->SetCounter(2);
    Store->CounterValues[2] = 40;
    TTestObject a(ToolA);
    TTestObject b(ToolB);
    TTestObject c(ToolA);
    a.Count();
    b.Count();
    c.Count();
    // Tools that share a counter share a number range.
    EXPECT_EQ(a.ID(), 41);
    EXPECT_EQ(b.ID(), 42);
    EXPECT_EQ(c.ID(), 43);
    ToolB->Generator()->SetCounter(3);
    b.Count();
    EXPECT_EQ(b.ID(), 1);
}

TEST_F(ObjectBaseTest, DataModuleIsTheToolsBoxModule) {
    TTestObject a(ToolA);
    EXPECT_EQ(a.GetDataModule(), Store);
    ToolB->SetDrawForm(nullptr);
    TTestObject b(ToolB);
    EXPECT_EQ(b.GetDataModule(), nullptr);
    EXPECT_EQ(b.FindObject(TContype{-5, 1, nullptr}), nullptr);
}

TEST_F(ObjectBaseTest, BaseDefaultsAreEmpty) {
    TTestObject obj(ToolA);
    obj.SetText(QStringLiteral("x"));
    EXPECT_EQ(obj.Text(), QString());
    TvlObject plain(ToolA);
    EXPECT_EQ(plain.Height(), 0);
    EXPECT_EQ(plain.Width(), 0);
    plain.SetWidth(50);
    EXPECT_EQ(plain.Width(), 0);
    EXPECT_TRUE(plain.CheckShape(LimRec(0, 0, 1, 1)));
    EXPECT_FALSE(plain.SizingHandles(Point(0, 0), smCheck));
    plain.SetMaster(&obj);
    EXPECT_EQ(plain.Master(), &plain);
    EXPECT_EQ(plain.Picture(), &ToolA->Generator()->Picture());
}

TEST_F(ObjectBaseTest, FontIsTheGeneratorsUnlessMasterFontAppliesToASlave) {
    ToolA->Generator()->Font().SetName(QStringLiteral("Arial"));
    ToolA->Generator()->FontBackup = -20;
    ToolB->Generator()->Font().SetName(QStringLiteral("Courier New"));
    ToolB->Generator()->FontBackup = -30;
    TTestObject master(ToolA);
    TTestObject slave(ToolB);
    slave.SetMaster(&master);
    EXPECT_EQ(slave.Font(), &ToolB->Generator()->Font());
    EXPECT_EQ(slave.FontHeightBk(), -30);
    ToolB->Generator()->SetOptions(TGeneratorOptions(goMasterFont));
    EXPECT_EQ(slave.Font(), &ToolA->Generator()->Font());
    EXPECT_EQ(slave.FontHeightBk(), -20);
    // A free object of the same tool keeps its own font.
    TTestObject free1(ToolB);
    EXPECT_EQ(free1.Font(), &ToolB->Generator()->Font());
    EXPECT_EQ(free1.FontHeightBk(), -30);
}

TEST_F(ObjectBaseTest, MasterFontFollowsAChain) {
    ToolB->Generator()->SetOptions(TGeneratorOptions(goMasterFont));
    TTestObject root(ToolA);
    TTestObject mid(ToolB);
    mid.SetMaster(&root);
    TTestObject leaf(ToolB);
    leaf.SetMaster(&mid);
    EXPECT_EQ(leaf.Font(), &ToolA->Generator()->Font());
}

TEST_F(ObjectBaseTest, HotSpotIsTheGenerators) {
    ToolA->Generator()->SetHotspotX(4);
    ToolA->Generator()->SetHotspotY(-7);
    TTestObject obj(ToolA);
    EXPECT_EQ(obj.HotSpot(), Point(4, -7));
}

TEST_F(ObjectBaseTest, ReferencePointEventPlacesASlave) {
    TTestObject master(ToolB);
    master.SetPos(Point(1000, 1000));
    TTestObject slave(ToolA);
    slave.SetMaster(&master);
    std::vector<TvlObject*> asked;
    ToolA->OnCalcRefPoint = [&asked](TvlObject* Obj, TPoint& Ref) {
        asked.push_back(Obj);
        Ref = Point(50, 60);
    };
    slave.SetX(55);
    slave.SetY(58);
    EXPECT_EQ(slave.PosRec().RelX(), 5);
    EXPECT_EQ(slave.PosRec().RelY(), -2);
    EXPECT_EQ(slave.Pos_Log(), Point(55, 58));
    EXPECT_EQ(asked.size(), 4u);
    EXPECT_EQ(asked.front(), &slave);

    // `SetPos` measures from the master's position and leaves the event out.
    asked.clear();
    slave.SetPos(Point(1003, 1004));
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(slave.PosRec().RelX(), 3);
    EXPECT_EQ(slave.PosRec().RelY(), 4);
    EXPECT_EQ(slave.X_Log(), 53);

    // So does the world writer.
    asked.clear();
    slave.SetX_World(ActScaleSet->LogToWorld(1010));
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(slave.PosRec().RelX(),
              static_cast<std::int16_t>(ActScaleSet->WorldToLog(ActScaleSet->LogToWorld(1010)) - 1000));
}

TEST_F(ObjectBaseTest, ReferencePointEventLeavesFreeObjectsAlone) {
    bool asked = false;
    ToolA->OnCalcRefPoint = [&asked](TvlObject*, TPoint&) { asked = true; };
    TTestObject obj(ToolA);
    obj.SetX(9);
    EXPECT_EQ(obj.X_Log(), 9);
    EXPECT_FALSE(asked);
}

TEST_F(ObjectBaseTest, VisibilityNeedsTheFlagAndNoHiddenTool) {
    TTestObject obj(ToolA);
    EXPECT_FALSE(obj.Visible());
    obj.SetVisible(true);
    EXPECT_TRUE(obj.Visible());
    EXPECT_TRUE(obj.State.Contains(isVisible));
    ToolA->Generator()->SetRtOptions(TRuntimeOptions(roHidden));
    EXPECT_FALSE(obj.Visible());
    EXPECT_TRUE(obj.State.Contains(isVisible));
    ToolA->Generator()->SetRtOptions(TRuntimeOptions());
    obj.SetVisible(false);
    EXPECT_FALSE(obj.GetVisible());
}

TEST_F(ObjectBaseTest, NosyObjectsAreThoseOfANosyTool) {
    TTestObject obj(ToolA);
    EXPECT_FALSE(obj.Nosy());
    ToolA->Generator()->SetRtOptions(TRuntimeOptions(roNosy));
    EXPECT_TRUE(obj.Nosy());
}

TEST_F(ObjectBaseTest, ShadowWidensMaxLimitsByItsOffsetAndThreePenWidths) {
    Box->Shadows().SetdX(10);
    Box->Shadows().SetdY(7);
    ToolA->Generator()->Pen().SetWidth(2);
    TTestObject obj(ToolA);
    obj.SetPos(Point(100, 200));
    obj.W = 20;
    obj.H = 30;
    EXPECT_EQ(obj.GetMaxLimits(), LimRec(94, 194, 126, 236));
    ToolA->Generator()->SetOptions(TGeneratorOptions(goShadows));
    EXPECT_EQ(obj.GetMaxLimits(), LimRec(84, 187, 136, 243));
}

TEST_F(ObjectBaseTest, SizingRaisesOnlyTheSmallerMargin) {
    const std::int32_t frame = ActScaleSet->GetTempFrame();
    ASSERT_GT(frame, 0);
    Box->Shadows().SetdX(frame + 5);
    Box->Shadows().SetdY(0);
    ToolA->Generator()->SetOptions(TGeneratorOptions(goShadows));
    TTestObject obj(ToolA);
    obj.State.Include(isSizing);
    const TLimRec l = obj.GetMaxLimits();
    EXPECT_EQ(l.Xmax, frame + 5 + 3);
    EXPECT_EQ(l.Ymax, frame + 3);
}

TEST_F(ObjectBaseTest, CheckFrameIsInclusive) {
    TTestObject obj(ToolA);
    obj.SetPos(Point(10, 10));
    obj.W = 10;
    obj.H = 10; // max limits 7..23 with one pen width
    const TPoint edge = Point(23, 7);
    EXPECT_TRUE(obj.CheckFrame(&edge, cfPoint));
    const TPoint out = Point(24, 7);
    EXPECT_FALSE(obj.CheckFrame(&out, cfPoint));
    const TLimRec touch = LimRec(23, 23, 40, 40);
    EXPECT_TRUE(obj.CheckFrame(&touch, cfLimRec));
    const TRect r = Rect(-5, -5, 7, 7);
    EXPECT_TRUE(obj.CheckFrame(&r, cfRect));
}

// --- Reactions to operations on the master ------------------------------------------------------

struct Pair {
    TTestObject* Master;
    TTestObject* Slave;
};

Pair MakePair(TStandInStore& Store, TvlCreator* MasterTool, TvlCreator* SlaveTool) {
    auto* m = AddNumbered(Store, MasterTool, 1);
    auto* s = AddNumbered(Store, SlaveTool, 2);
    s->SetMaster(m);
    m->SetVisible(true);
    s->SetVisible(true);
    return {m, s};
}

TEST_F(ObjectBaseTest, InvolvedInMoveSelectsAndHoldsAVisibleSlave) {
    auto [m, s] = MakePair(*Store, ToolB, ToolA);
    EXPECT_EQ(s->Involved(invMove), 0);
    EXPECT_FALSE(s->Selected());
    Store->Select(m);
    EXPECT_EQ(s->Involved(invMove), 0);
    EXPECT_TRUE(s->Selected());
    EXPECT_TRUE(s->State.Contains(isCantMove));
}

TEST_F(ObjectBaseTest, InvolvedInMoveLeavesAnInvisibleSlave) {
    auto [m, s] = MakePair(*Store, ToolB, ToolA);
    s->SetVisible(false);
    Store->Select(m);
    s->Involved(invMove);
    EXPECT_FALSE(s->Selected());
    EXPECT_FALSE(s->State.Contains(isCantMove));
}

TEST_F(ObjectBaseTest, InvolvedInDeleteSelectsTheSlaveOfASelectedMaster) {
    auto [m, s] = MakePair(*Store, ToolB, ToolA);
    s->SetVisible(false);
    s->Involved(invDelete);
    EXPECT_FALSE(s->Selected());
    Store->Select(m);
    s->Involved(invDelete);
    EXPECT_TRUE(s->Selected());
    EXPECT_FALSE(s->State.Contains(isCantMove));
}

TEST_F(ObjectBaseTest, InvolvedInCopyMakesTheSlaveFollowItsMastersSelection) {
    auto [m, s] = MakePair(*Store, ToolB, ToolA);
    Store->Select(s);
    s->Involved(invCopy);
    EXPECT_FALSE(s->Selected());
    Store->Select(m);
    s->Involved(invCopy);
    EXPECT_TRUE(s->Selected());
    s->Involved(invCopy);
    EXPECT_TRUE(s->Selected());
}

TEST_F(ObjectBaseTest, InvolvedLeavesFreeObjectsAlone) {
    auto* obj = AddNumbered(*Store, ToolA, 1);
    obj->SetVisible(true);
    Store->Select(obj);
    for (TInvolve code : {invMove, invDelete, invCopy}) EXPECT_EQ(obj->Involved(code), 0);
    EXPECT_TRUE(obj->Selected());
    EXPECT_FALSE(obj->State.Contains(isCantMove));
}

TEST_F(ObjectBaseTest, SlaveOfAnUnselectedMasterCannotBeDeleted) {
    auto [m, s] = MakePair(*Store, ToolB, ToolA);
    Store->Select(s);
    s->CanDelete();
    EXPECT_FALSE(s->State.Contains(isDeleted));
    EXPECT_FALSE(s->Selected());
    Store->Select(m);
    s->CanDelete();
    EXPECT_TRUE(s->State.Contains(isDeleted));
}

TEST_F(ObjectBaseTest, DeletableObjectIsMarkedAndInvalidated) {
    auto* obj = AddNumbered(*Store, ToolA, 1);
    obj->SetPos(Point(100, 50));
    obj->W = 10;
    obj->H = 10;
    Store->InitRestoreRect();
    obj->CanDelete();
    EXPECT_TRUE(obj->State.Contains(isDeleted));
    EXPECT_EQ(Store->FRestoreRect, obj->GetMaxLimits());
}

TEST_F(ObjectBaseTest, MoveOfASlaveChangesItsOffset) {
    auto [m, s] = MakePair(*Store, ToolB, ToolA);
    m->SetPos(Point(10, 10));
    s->SetPos(Point(12, 12));
    s->MovePos(Point(3, -4));
    EXPECT_EQ(s->Pos_Log(), Point(15, 8));
    EXPECT_EQ(m->Pos_Log(), Point(10, 10));
    s->State.Include(isCantMove);
    s->MovePos(Point(100, 100));
    EXPECT_EQ(s->Pos_Log(), Point(15, 8));
    s->EndMove();
    EXPECT_FALSE(s->State.Contains(isCantMove));
}

} // namespace
} // namespace vl::test
