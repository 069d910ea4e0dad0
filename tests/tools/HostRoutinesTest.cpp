// The routines with which a host moves, marks, hides and shows objects from code.
#include "objects/ObjectPaintSupport.h"

namespace vl::test {
namespace {

class ObjectHostRoutines : public PaintFixture {
protected:
    void SetUp() override {
        Undo = nullptr;
        UndoManagerFactory = RecordingUndoFactory(Undo);
        PaintFixture::SetUp();
    }
    void TearDown() override {
        PaintFixture::TearDown();
        UndoManagerFactory = nullptr;
    }
    // Gives the module an undo manager, as loading a module with undo steps does.
    void WithUndo() {
        Store->SetUndoFunction(TUndo{unMove});
        Store->SetUndoSteps(5);
        Store->Loaded();
        ASSERT_NE(Undo, nullptr);
    }
    TRecordingUndo* Undo = nullptr;
};

TEST_F(ObjectHostRoutines, MoveObjectMovesWithItsSlavesAndRepaints) {
    WithUndo();
    TTestObject* master = AddObj(Point(50, 40), "master");
    TTestObject* slave = AddObj(Point(0, 0), "slave", 10, 10);
    slave->SetMaster(master);
    slave->SetPos(Point(80, 40));
    TTestObject* other = AddObj(Point(200, 150), "other", 10, 10);
    PaintAll();
    MarkObject(other);
    ActScaleSet = nullptr;
    MoveObject(master, Point(100, 60));
    EXPECT_EQ(ActScaleSet, &Box->ScaleSetting());
    EXPECT_EQ(master->GetPos(), Point(150, 100));
    EXPECT_EQ(slave->GetPos(), Point(180, 100));
    EXPECT_EQ(slave->PosRec().RelX(), 30);
    EXPECT_EQ(other->GetPos(), Point(200, 150));
    EXPECT_EQ(Store->LinkChecks, 1);
    EXPECT_EQ(Store->MarkCount(), 0);
    EXPECT_FALSE(slave->State.Contains(isCantMove));
    EXPECT_FALSE(Box->ScaleSetting().State.Contains(scMovingObjects));
    // One move snapshot with both records before the move and the restore rect.
    ASSERT_EQ(Undo->Modes, (std::vector<TBackupMode>{bkMove}));
    ASSERT_EQ(Undo->Filed.size(), 1u);
    EXPECT_EQ(Undo->Filed[0].size(), 14 + 14 + 16);
    EXPECT_EQ(Undo->Filed[0].mid(6, 8), QByteArray::fromHex("3200000028000000"));
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), White);
    EXPECT_EQ(ScreenPixel(85, 45), White);
    EXPECT_EQ(ScreenPixel(160, 110), Blue);
    EXPECT_EQ(ScreenPixel(185, 105), Blue);
}

TEST_F(ObjectHostRoutines, MoveObjectSnapsTheDistanceWhenTheGridCaptures) {
    TTestObject* o = AddObj(Point(50, 40));
    Box->Grid().SetCapture(true);
    Box->Grid().SetIncHorz(10);
    Box->Grid().SetIncVert(10);
    MoveObject(o, Point(14, 25));
    EXPECT_EQ(o->GetPos(), Point(60, 60));
    Box->Grid().SetCapture(false);
    MoveObject(o, Point(14, 25));
    EXPECT_EQ(o->GetPos(), Point(74, 85));
}

TEST_F(ObjectHostRoutines, MoveObjectToPlacesTheObject) {
    TTestObject* o = AddObj(Point(50, 40));
    MoveObjectTo(o, Point(120, 30));
    EXPECT_EQ(o->GetPos(), Point(120, 30));
    Settle();
    EXPECT_EQ(ScreenPixel(130, 40), Blue);
}

TEST_F(ObjectHostRoutines, MoveObjectDropsEveryException) {
    TTestObject* o = AddObj(Point(50, 40));
    o->ThrowOnMove = true;
    EXPECT_NO_THROW(MoveObject(o, Point(5, 5)));
    EXPECT_EQ(o->GetPos(), Point(50, 40));
    EXPECT_NO_THROW(MoveObject(nullptr, Point(5, 5)));
    EXPECT_NO_THROW(MoveObjectTo(nullptr, Point(5, 5)));
    EXPECT_NO_THROW(MarkObject(nullptr));
    EXPECT_NO_THROW(UnMarkObject(nullptr));
    EXPECT_NO_THROW(HideObject(nullptr));
    EXPECT_NO_THROW(ShowObject(nullptr));
    TvlObject orphan;
    EXPECT_NO_THROW(MarkObject(&orphan));
    EXPECT_NO_THROW(HideObject(&orphan));
}

TEST_F(ObjectHostRoutines, MarkObjectMarksAndUnMarkObjectTakesTheMarkAway) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    ActScaleSet = nullptr;
    MarkObject(o);
    EXPECT_EQ(ActScaleSet, &Box->ScaleSetting());
    EXPECT_TRUE(o->Selected());
    EXPECT_TRUE(o->State.Contains(isMarked));
    Settle();
    EXPECT_EQ(ScreenPixel(50, 50), Red);
    ActScaleSet = nullptr;
    UnMarkObject(o);
    EXPECT_EQ(ActScaleSet, &Box->ScaleSetting());
    EXPECT_FALSE(o->Selected());
    Settle();
    EXPECT_EQ(ScreenPixel(50, 50), Black);
}

TEST_F(ObjectHostRoutines, HideAndShowObjectRepaintWithoutTouchingTheScaleInForce) {
    TTestObject* o = AddObj(Point(50, 40));
    PaintAll();
    HideObject(o);
    EXPECT_FALSE(o->State.Contains(isVisible));
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), White);
    ShowObject(o);
    EXPECT_TRUE(o->State.Contains(isVisible));
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), Blue);
    TScaleSetting other(nullptr);
    ActScaleSet = &other;
    HideObject(o);
    EXPECT_EQ(ActScaleSet, &other);
    ActScaleSet = &Box->ScaleSetting();
}

} // namespace
} // namespace vl::test
