// Positions of objects: the views of `TPos`, logical and world accessors, slaves and their 16-bit
// offsets, chains, and the refusal of a slaved first end.
#include "ObjectBaseSupport.h"
#include "platform/core/Scoped.h"

#include <ostream>
#include <string>

namespace vl::test {
namespace {

class PositionTest : public ObjectFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
};

TEST(PosRecord, ViewsShareTheEightBytes) {
    TPos p;
    p.SetConType(-5);
    p.SetConID(0x1234);
    EXPECT_EQ(static_cast<std::uint32_t>(p.x), 0x1234FFFBu);
    EXPECT_EQ(p.ConType(), -5);
    EXPECT_EQ(p.ConID(), 0x1234);
    p.SetRelX(-2);
    p.SetRelY(3);
    EXPECT_EQ(static_cast<std::uint32_t>(p.y), 0x0003FFFEu);
    EXPECT_EQ(p.RelPos(), 0x0003FFFE);
    EXPECT_EQ(p.RelX(), -2);
    EXPECT_EQ(p.RelY(), 3);
}

TEST(PosRecord, OffsetsKeepOnlySixteenBits) {
    TPos p;
    p.SetRelX(40000);
    EXPECT_EQ(p.RelX(), 40000 - 65536);
    p.SetRelY(-40000);
    EXPECT_EQ(p.RelY(), -40000 + 65536);
    EXPECT_EQ(p.RelX(), 40000 - 65536);
}

TEST(ContypeRecord, RawFormIsClassNumberThenNumber) {
    TContype c;
    c.SetRaw(0x0007FFFA);
    EXPECT_EQ(c.ConType, -6);
    EXPECT_EQ(c.ConID, 7);
    EXPECT_EQ(c.Raw(), 0x0007FFFAu);
    EXPECT_FALSE(c.IsZero());
    EXPECT_TRUE(TContype{}.IsZero());
}

TEST_F(PositionTest, FreeObjectIsItsOwnMaster) {
    TTestObject obj(ToolA);
    EXPECT_EQ(obj.Master(), &obj);
    EXPECT_EQ(obj.GetMaster(), &obj);
}

TEST_F(PositionTest, FreeObjectReadsAndWritesItsPosition) {
    TTestObject obj(ToolA);
    obj.SetX(-70000);
    obj.SetY(123456);
    EXPECT_EQ(obj.X_Log(), -70000);
    EXPECT_EQ(obj.Y_Log(), 123456);
    obj.SetPos(Point(5, 6));
    EXPECT_EQ(obj.Pos_Log(), Point(5, 6));
    EXPECT_EQ(obj.PosRec().x, 5);
    EXPECT_EQ(obj.PosRec().y, 6);
}

TEST_F(PositionTest, SlaveFollowsItsMaster) {
    TTestObject master(ToolA);
    master.SetPos(Point(1000, 2000));
    TTestObject slave(ToolB);
    slave.SetMaster(&master);
    slave.SetX(1010);
    slave.SetY(1990);
    EXPECT_EQ(slave.PosRec().RelX(), 10);
    EXPECT_EQ(slave.PosRec().RelY(), -10);
    EXPECT_EQ(slave.Master(), &master);
    master.SetPos(Point(-500, 70000));
    EXPECT_EQ(slave.Pos_Log(), Point(-490, 69990));
}

TEST_F(PositionTest, SlaveFollowsMasterThroughChain) {
    TTestObject root(ToolA);
    root.SetPos(Point(100, 100));
    std::vector<std::unique_ptr<TTestObject>> chain;
    TvlObject* master = &root;
    for (int i = 0; i < 5; ++i) {
        auto s = std::make_unique<TTestObject>(ToolB);
        s->SetMaster(master);
        s->SetPos(Point(master->X_Log() + 1, master->Y_Log() - 2));
        master = s.get();
        chain.push_back(std::move(s));
    }
    EXPECT_EQ(chain.back()->Pos_Log(), Point(105, 90));
    root.SetPos(Point(0, 0));
    EXPECT_EQ(chain.back()->Pos_Log(), Point(5, -10));
    EXPECT_EQ(chain[2]->Pos_Log(), Point(3, -6));
}

TEST_F(PositionTest, SlaveOffsetBeyondSixteenBitsWraps) {
    TTestObject master(ToolA);
    master.SetPos(Point(0, 0));
    TTestObject slave(ToolB);
    slave.SetMaster(&master);
    slave.SetX(40000);
    EXPECT_NE(slave.X_Log(), 40000);
    EXPECT_EQ(slave.X_Log(), 40000 - 65536);
    slave.SetY(-32769);
    EXPECT_EQ(slave.Y_Log(), 32767);
}

TEST_F(PositionTest, SlavedFirstEndRefusesEveryWriter) {
    TTestObject master(ToolA);
    master.SetPos(Point(50, 60));
    TTestObject line(ToolB);
    line.SetP1Master(&master);
    line.RawPos().SetRelX(7);
    line.RawPos().SetRelY(8);
    const TPos before = line.PosRec();
    line.SetX(999);
    line.SetY(999);
    line.SetPos(Point(-1, -1));
    line.SetX_World(12.5);
    line.SetY_World(-3.0);
    EXPECT_EQ(line.PosRec().x, before.x);
    EXPECT_EQ(line.PosRec().y, before.y);
    EXPECT_EQ(line.PosRec().ConObj, &master);
    EXPECT_EQ(line.Master(), &master);
}

TEST_F(PositionTest, WorldPositionGoesThroughTheScale) {
    TTestObject obj(ToolA);
    obj.SetPos(Point(250, -40));
    EXPECT_DOUBLE_EQ(obj.X_World(), ActScaleSet->LogToWorld(250));
    EXPECT_DOUBLE_EQ(obj.Y_World(), ActScaleSet->LogToWorld(-40));
    const double w = ActScaleSet->LogToWorld(777);
    obj.SetX_World(w);
    EXPECT_EQ(obj.X_Log(), ActScaleSet->WorldToLog(w));
    obj.SetY_World(w);
    EXPECT_EQ(obj.Y_Log(), ActScaleSet->WorldToLog(w));
}

TEST_F(PositionTest, SlaveWorldWriterStoresTheOffset) {
    TTestObject master(ToolA);
    master.SetPos(Point(300, 400));
    TTestObject slave(ToolB);
    slave.SetMaster(&master);
    const double w = ActScaleSet->LogToWorld(1000);
    slave.SetX_World(w);
    EXPECT_EQ(slave.PosRec().RelX(), static_cast<std::int16_t>(ActScaleSet->WorldToLog(w) - 300));
    slave.SetY_World(w);
    EXPECT_EQ(slave.PosRec().RelY(), static_cast<std::int16_t>(ActScaleSet->WorldToLog(w) - 400));
}

TEST_F(PositionTest, AssignPosCopiesOnlyTheOffsetOfASlave) {
    TTestObject m1(ToolA);
    m1.SetPos(Point(10, 10));
    TTestObject m2(ToolA);
    m2.SetPos(Point(500, 500));
    TTestObject s1(ToolB);
    s1.SetMaster(&m1);
    s1.SetPos(Point(13, 14));
    TTestObject s2(ToolB);
    s2.SetMaster(&m2);
    s2.AssignPos(&s1);
    EXPECT_EQ(s2.Master(), &m2);
    EXPECT_EQ(s2.Pos_Log(), Point(503, 504));

    TTestObject free1(ToolA);
    free1.AssignPos(&s1);
    EXPECT_EQ(free1.PosRec().y, s1.PosRec().y);
    EXPECT_EQ(free1.PosRec().ConObj, &m1);
}

TEST_F(PositionTest, BoundsComeFromPositionAndSize) {
    TTestObject obj(ToolA);
    obj.SetPos(Point(100, 200));
    obj.W = 30;
    obj.H = 40;
    EXPECT_EQ(obj.MinX(), 100);
    EXPECT_EQ(obj.MaxX(), 130);
    EXPECT_EQ(obj.MinY(), 200);
    EXPECT_EQ(obj.MaxY(), 240);
    EXPECT_EQ(obj.Limits(), LimRec(100, 200, 130, 240));
    EXPECT_EQ(obj.Extent().cx, 30);
    EXPECT_EQ(obj.Extent().cy, 40);
}

TEST_F(PositionTest, ExtentIsAbsoluteForANegativeSize) {
    TTestObject obj(ToolA);
    obj.SetPos(Point(100, 200));
    obj.W = -30;
    obj.H = -5;
    EXPECT_EQ(obj.Extent().cx, 30);
    EXPECT_EQ(obj.Extent().cy, 5);
}

struct OriginCase {
    TOrigin Origin;
    TRect Lcl;
};

// The origin's name: "LeftTop", "RightBottom", ...
std::string OriginName(TOrigin Origin) {
    switch (Origin) {
    case TOrigin::LeftTop: return "LeftTop";
    case TOrigin::LeftBottom: return "LeftBottom";
    case TOrigin::RightTop: return "RightTop";
    case TOrigin::RightBottom: return "RightBottom";
    case TOrigin::Center: return "Center";
    }
    return "Origin" + std::to_string(static_cast<int>(Origin));
}

// "RightTop: (30, 0, 0, 40)".
void PrintTo(const OriginCase& c, std::ostream* os) {
    *os << OriginName(c.Origin) << ": (" << c.Lcl.Left << ", " << c.Lcl.Top << ", " << c.Lcl.Right << ", "
        << c.Lcl.Bottom << ")";
}

class LocalRectTest : public PositionTest, public ::testing::WithParamInterface<OriginCase> {};

TEST_P(LocalRectTest, LocalRectangleIsFlippedByTheOrigin) {
    ActScaleSet->SetOrigin(GetParam().Origin);
    TTestObject obj(ToolA);
    obj.SetPos(Point(100, 200));
    obj.W = 30;
    obj.H = 40;
    EXPECT_EQ(obj.BoundsRect_Lcl(), GetParam().Lcl);
    const TRect lcl = GetParam().Lcl;
    EXPECT_EQ(obj.BoundsRect(), Rect(lcl.Left + 100, lcl.Top + 200, lcl.Right + 100, lcl.Bottom + 200));
    EXPECT_EQ(obj.Left(), lcl.Left);
    EXPECT_EQ(obj.Top(), lcl.Top);
    EXPECT_EQ(obj.Right(), lcl.Right);
    EXPECT_EQ(obj.Bottom(), lcl.Bottom);
}

INSTANTIATE_TEST_SUITE_P(Origins, LocalRectTest,
                         ::testing::Values(OriginCase{TOrigin::LeftTop, Rect(0, 0, 30, 40)},
                                           OriginCase{TOrigin::LeftBottom, Rect(0, 40, 30, 0)},
                                           OriginCase{TOrigin::RightTop, Rect(30, 0, 0, 40)},
                                           OriginCase{TOrigin::RightBottom, Rect(30, 40, 0, 0)}),
                         [](const ::testing::TestParamInfo<OriginCase>& Info) {
                             return OriginName(Info.param.Origin);
                         });

TEST_F(PositionTest, RoundCornerDivisorIsTheToolsTagOrTwo) {
    TTestObject obj(ToolA);
    EXPECT_EQ(obj.DRoundRect(), 2);
    ToolA->SetTag(5);
    EXPECT_EQ(obj.DRoundRect(), 5);
    ToolA->SetTag(-3);
    EXPECT_EQ(obj.DRoundRect(), 2);
}

TEST_F(PositionTest, MaxLimitsWithoutExtrasAreTheLimits) {
    TTestObject obj(ToolA);
    obj.SetPos(Point(10, 20));
    obj.W = 5;
    obj.H = 6;
    const TLimRec l = obj.GetMaxLimits();
    const std::int32_t pen = obj.Generator() ? 3 * 1 : 0;
    EXPECT_EQ(l, LimRec(10 - pen, 20 - pen, 15 + pen, 26 + pen));
}

TEST_F(PositionTest, SizingWidensMaxLimitsToTheTempFrame) {
    TTestObject obj(ToolA);
    obj.SetPos(Point(10, 20));
    const TLimRec plain = obj.GetMaxLimits();
    obj.State.Include(isSizing);
    const std::int32_t frame = ActScaleSet->GetTempFrame();
    const TLimRec sized = obj.GetMaxLimits();
    EXPECT_EQ(sized.Xmin, plain.Xmin - frame);
    EXPECT_EQ(sized.Xmax, plain.Xmax + frame);
    EXPECT_EQ(sized.Ymin, plain.Ymin - frame);
    EXPECT_EQ(sized.Ymax, plain.Ymax + frame);
}

} // namespace
} // namespace vl::test
