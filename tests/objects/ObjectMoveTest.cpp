// Moving an object: the bracket of `StartMove` and `EndMove`, `MovePos` with its refusals, and the
// repaint of the old and the new place.
#include "ObjectPaintSupport.h"

namespace vl::test {
namespace {

using ObjectMove = PaintFixture;

TEST_F(ObjectMove, CantMoveObjectStaysAndEndMoveClearsTheFlag) {
    TTestObject* o = AddObj(Point(50, 40));
    o->State.Include(isCantMove);
    o->StartMove();
    o->MovePos(Point(10, 10));
    EXPECT_EQ(o->GetPos(), Point(50, 40));
    o->EndMove();
    EXPECT_FALSE(o->State.Contains(isCantMove));
    o->MovePos(Point(10, 10));
    EXPECT_EQ(o->GetPos(), Point(60, 50));
}

TEST_F(ObjectMove, MoveIsBracketedInTheScaleStateAndTheLimits) {
    TTestObject* o = AddObj(Point(50, 40));
    Store->InitRestoreRect();
    o->StartMove();
    EXPECT_TRUE(Box->ScaleSetting().State.Contains(scMovingObjects));
    EXPECT_EQ(Store->FRestoreRect, LimRec(47, 37, 73, 63));
    o->MovePos(Point(100, 0));
    o->EndMove();
    EXPECT_FALSE(Box->ScaleSetting().State.Contains(scMovingObjects));
    EXPECT_EQ(Store->FRestoreRect, LimRec(47, 37, 173, 63));
    ASSERT_EQ(Store->LimitChecks.size(), 2u);
    EXPECT_EQ(Store->LimitChecks[0], (std::pair<TvlObject*, bool>{o, false}));
    EXPECT_EQ(Store->LimitChecks[1], (std::pair<TvlObject*, bool>{o, true}));
}

TEST_F(ObjectMove, MoveOptionsHoldAnAxis) {
    TTestObject* o = AddObj(Point(50, 40));
    Gen().SetOptions(TGeneratorOptions{goNoHorzMove});
    o->MovePos(Point(5, 7));
    EXPECT_EQ(o->GetPos(), Point(50, 47));
    Gen().SetOptions(TGeneratorOptions{goNoVertMove});
    o->MovePos(Point(5, 7));
    EXPECT_EQ(o->GetPos(), Point(55, 47));
}

TEST_F(ObjectMove, SlaveMoveChangesItsOffset) {
    TTestObject* master = AddObj(Point(50, 40), "master");
    TTestObject* slave = AddObj(Point(0, 0), "slave", 5, 5);
    slave->SetMaster(master);
    slave->SetPos(Point(80, 40));
    slave->MovePos(Point(3, -2));
    EXPECT_EQ(slave->PosRec().RelX(), 33);
    EXPECT_EQ(slave->PosRec().RelY(), -2);
    EXPECT_EQ(slave->GetPos(), Point(83, 38));
}

TEST_F(ObjectMove, MovedObjectIsRepaintedAtItsNewPlaceWithItsSlave) {
    TTestObject* master = AddObj(Point(50, 40), "master");
    TTestObject* slave = AddObj(Point(0, 0), "slave", 10, 10);
    slave->SetMaster(master);
    slave->SetPos(Point(80, 40));
    PaintAll();
    EXPECT_EQ(ScreenPixel(60, 50), Blue);
    EXPECT_EQ(ScreenPixel(85, 45), Blue);
    master->StartMove();
    slave->StartMove();
    master->MovePos(Point(100, 60));
    slave->State.Include(isCantMove);
    slave->MovePos(Point(100, 60));
    master->EndMove();
    slave->EndMove();
    Store->InvalidateRestoreRect();
    Settle();
    EXPECT_EQ(ScreenPixel(60, 50), White);
    EXPECT_EQ(ScreenPixel(85, 45), White);
    EXPECT_EQ(ScreenPixel(160, 110), Blue);
    EXPECT_EQ(ScreenPixel(185, 105), Blue);
}

} // namespace
} // namespace vl::test
