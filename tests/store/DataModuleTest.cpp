// The single-layer store: forwarding to its layer, deletion of the selected objects, and the body
// with its failure path.

#include "DataModSupport.h"
#include "platform/core/Scoped.h"

namespace vl::test {
namespace {

class DataModule : public DataModFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
};

TEST_F(DataModule, StartsWithOneEmptyLayerOfCapacityAHundred) {
    auto* dm = new TvlDataModule(Form.get());
    EXPECT_EQ(dm->Capacity(), 100u);
    ASSERT_NE(dm->Objects(), nullptr);
    EXPECT_GE(dm->Objects()->Capacity(), 100);
    EXPECT_TRUE(dm->Empty());
    EXPECT_TRUE(dm->MarkCase().State.Contains(lsZOrder));
}

TEST_F(DataModule, AddWithAnyLayerNumberGoesToTheOnlyLayer) {
    TTestObject* a = ToolA->Make(1);
    TTestObject* b = ToolA->Make(2);
    Dm->Add(a, 0);
    Dm->Add(b, 17);
    EXPECT_EQ(Dm->Objects()->Count(), 2);
    EXPECT_EQ(Dm->IndexOf(b), (TObjIndex{1, 0}));
    EXPECT_EQ(Dm->GetCount(), 2);
}

TEST_F(DataModule, HiddenObjectsCount) {
    TTestObject* a = Put(ToolA, 1);
    a->State.Exclude(isVisible);
    EXPECT_EQ(Dm->GetCount(), 1);
    EXPECT_FALSE(Dm->Empty());
}

TEST_F(DataModule, BringToFrontOfANonObjectAnswersMinusOne) {
    Put(ToolA, 1);
    EXPECT_EQ(Dm->BringToFront(Box, false), -1);
    EXPECT_EQ(Dm->SendToBack(Box, true), -1);
    EXPECT_EQ(Dm->BringToFront(nullptr, false), -1);
}

TEST_F(DataModule, BringToFrontAndSendToBackGoToTheLayer) {
    TTestObject* a = Put(ToolA, 1);
    TTestObject* b = Put(ToolA, 2);
    EXPECT_EQ(Dm->BringToFront(a, false), 1);
    EXPECT_EQ(Contents(), (std::vector<TvlObject*>{b, a}));
    EXPECT_EQ(Dm->SendToBack(a, false), 0);
    EXPECT_EQ(Contents(), (std::vector<TvlObject*>{a, b}));
}

TEST_F(DataModule, ObjectAtTheCountIsNullAndANegativeIndexRaises) {
    TTestObject* a = Put(ToolA, 1);
    EXPECT_EQ(Dm->ObjectAt(0, 5), a);
    EXPECT_EQ(Dm->ObjectAt(Dm->GetCount(), 0), nullptr);
    EXPECT_THROW(Dm->ObjectAt(-1, 0), EListError);
}

TEST_F(DataModule, SearchesStartAtStartIndexAndResetIt) {
    Put(ToolA, 1);
    TTestObject* b = Put(ToolB, 1);
    TTestObject* c = Put(ToolB, 2);
    auto ofB = [](TvlObject* o, void*) { return o->ClassNr() == -6; };
    Dm->SetStartIndex(TObjIndex{2, 0});
    EXPECT_EQ(Dm->FirstObjectWith(ofB, nullptr), c);
    EXPECT_EQ(Dm->StartIndex(), TObjIndex{});
    EXPECT_EQ(Dm->FirstObjectWith(ofB, nullptr), b);
    EXPECT_EQ(Dm->LastObjectWith(ofB, nullptr), c);
    EXPECT_EQ(Dm->FirstIndexWith(ofB, nullptr).Index, 1);
    EXPECT_EQ(Dm->LastIndexWith(ofB, nullptr).Index, 2);
    EXPECT_EQ(Dm->FirstIndexWith([](TvlObject*, void*) { return false; }, nullptr).Index, -1);
}

TEST_F(DataModule, AllObjectsBackWalksFromTheFront) {
    TTestObject* a = Put(ToolA, 1);
    TTestObject* b = Put(ToolA, 2);
    std::vector<TvlObject*> seen;
    Dm->AllObjectsBack([&](TvlObject* o, void*) { seen.push_back(o); }, nullptr);
    EXPECT_EQ(seen, (std::vector<TvlObject*>{b, a}));
}

TEST_F(DataModule, FindAtFindsTheRearmostObjectUnderThePoint) {
    TTestObject* back = Put(ToolA, 1, LimRec(0, 0, 20, 20));
    Put(ToolA, 2, LimRec(10, 10, 30, 30));
    EXPECT_EQ(Dm->FindAt(0, 15, 15), back);
    EXPECT_EQ(Dm->FindAt(0, 500, 500), nullptr);
}

TEST_F(DataModule, FindAtOnAnEmptyLayerRaisesTheListError) {
    EXPECT_THROW(Dm->FindAt(0, 1, 1), EListError);
}

TEST_F(DataModule, CheckLimitsOnlyCondemnsLimitsThatAnObjectLeft) {
    Put(ToolA, 1, LimRec(0, 0, 100, 100));
    TTestObject* inner = Put(ToolA, 2, LimRec(10, 10, 20, 20));
    Dm->RecalcLimits();
    const TLimRec kept = Dm->GetLimits();
    Dm->CheckLimits(inner, false);
    EXPECT_EQ(Dm->GetLimits(), kept);
    inner->Lims = LimRec(10, 10, 500, 20);
    Dm->CheckLimits(inner, false);
    EXPECT_TRUE(Dm->Objects()->State.Contains(lsNewLimits));
    EXPECT_EQ(Dm->GetLimits(), EmptyLimRec);
    Dm->RecalcLimits();
    EXPECT_GE(Dm->MaxX(), 500);
}

TEST_F(DataModule, ClearFreesTheDrawingAndForgetsTheObjectUnderTheMouse) {
    TTestObject* a = Put(ToolA, 1);
    Dm->Select(a);
    Box->SetMouseFnd(a);
    Dm->Clear();
    EXPECT_TRUE(Dm->Empty());
    EXPECT_EQ(Dm->MarkCount(), 0);
    EXPECT_EQ(Box->MouseFnd(), nullptr);
    EXPECT_EQ(Dm->GetLimits(), EmptyLimRec);
    EXPECT_EQ(Dm->FRestoreRect, EmptyLimRec);
}

TEST_F(DataModule, DeleteObjectsWithAnEmptySelectionFiresNeither) {
    std::vector<std::string> log;
    UndoManagerFactory = [&](TUndo, std::uint8_t) { return std::make_unique<TRecordingUndo>(log); };
    Dm->SetUndoFunction(TUndo{unDelete});
    Dm->Loaded();
    Put(ToolA, 1);
    int deletes = 0;
    Dm->OnDeleteObjects = [&](TObject*) { ++deletes; };
    Dm->DeleteObjects();
    EXPECT_EQ(deletes, 0);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(Dm->GetCount(), 1);
}

TEST_F(DataModule, DeleteObjectsSnapshotsAndFiresWhileTheObjectsAreStillThere) {
    std::vector<std::string> log;
    TRecordingUndo* undo = nullptr;
    UndoManagerFactory = RecordingUndoFactory(undo, &log);
    Dm->SetUndoFunction(TUndo{unDelete});
    Dm->Loaded();
    TTestObject* a = Put(ToolA, 1);
    TTestObject* b = Put(ToolA, 2);
    Dm->Select(a);
    Box->SetMouseFnd(b);
    int deletes = 0;
    Dm->OnDeleteObjects = [&](TObject* Sender) {
        ++deletes;
        EXPECT_EQ(Sender, Dm);
        EXPECT_EQ(Dm->GetCount(), 2);
        EXPECT_TRUE(a->State.Contains(isDeleted));
    };
    const QByteArray before = Body();
    Dm->DeleteObjects();
    EXPECT_EQ(deletes, 1);
    ASSERT_EQ(undo->Filed.size(), 1u);
    EXPECT_EQ(undo->Filed[0], before); // the deleted flag is not part of a record
    EXPECT_EQ(Contents(), (std::vector<TvlObject*>{b}));
    EXPECT_EQ(Dm->MarkCount(), 0);
    EXPECT_EQ(Box->MouseFnd(), nullptr);
}

TEST_F(DataModule, AMarkedSlaveWhoseMasterIsNotMarkedSurvivesAndNothingFires) {
    TTestObject* master = Put(ToolA, 1);
    TTestObject* slave = PutSlave(ToolB, 1, master);
    Dm->Select(slave);
    int deletes = 0;
    Dm->OnDeleteObjects = [&](TObject*) { ++deletes; };
    Dm->DeleteObjects();
    EXPECT_EQ(deletes, 0);
    EXPECT_EQ(Contents(), (std::vector<TvlObject*>{master, slave}));
    EXPECT_FALSE(slave->Selected());
}

TEST_F(DataModule, ASlaveWhoseMasterIsMarkedGoesWithIt) {
    TTestObject* master = Put(ToolA, 1);
    PutSlave(ToolB, 1, master);
    TTestObject* other = Put(ToolC, 1);
    Dm->Select(master);
    int deletes = 0;
    Dm->OnDeleteObjects = [&](TObject*) { ++deletes; };
    Dm->DeleteObjects();
    EXPECT_EQ(deletes, 1);
    EXPECT_EQ(Contents(), (std::vector<TvlObject*>{other}));
}

TEST_F(DataModule, AMarkedSlaveAmongOthersSurvivesTheOthersGo) {
    TTestObject* master = Put(ToolA, 1);
    TTestObject* slave = PutSlave(ToolB, 1, master);
    TTestObject* other = Put(ToolC, 1);
    Dm->Select(slave);
    Dm->Select(other);
    int deletes = 0;
    Dm->OnDeleteObjects = [&](TObject*) { ++deletes; };
    Dm->DeleteObjects();
    EXPECT_EQ(deletes, 1);
    EXPECT_EQ(Contents(), (std::vector<TvlObject*>{master, slave}));
}

// --- The body ----------------------------------------------------------------------------------

TEST_F(DataModule, TheBodyIsTheCountersThenTheLayer) {
    Dm->IncCounter(1);
    Dm->IncCounter(1);
    const QByteArray body = Body();
    EXPECT_EQ(body, HexBytes("0200 0000 0200 00000000 0180"));
    EXPECT_FALSE(Dm->State.Contains(dmSaving));
}

TEST_F(DataModule, SaveSetsSavingOnlyWhileItRuns) {
    bool during = false;
    Put(ToolA, 1);
    TMemoryStream s;
    // The layer reports its name while saving: the flag is set then.
    class TWatch : public TInfobox {
    public:
        TWatch(TvlDataMod* D, bool& F) : TInfobox(nullptr, nullptr), Dm(D), Flag(F) {}
        void BoxMessage(std::int32_t, const TInfoParam&) override {
            Flag = Flag || Dm->State.Contains(dmSaving);
        }
        TvlDataMod* Dm;
        bool& Flag;
    };
    InfoboxFactory = [&](TInfoLabel*, TProgressBar*) { return new TWatch(Dm, during); };
    InfoOpen(nullptr, nullptr);
    Dm->SaveToStream(s);
    InfoClose(); // the watch refers to this test's flag
    EXPECT_TRUE(during);
    EXPECT_FALSE(Dm->State.Contains(dmSaving));
}

TEST_F(DataModule, SaveLoadSaveGivesTheSameBytes) {
    ToolA->Generator()->SetCounter(0);
    ToolB->Generator()->SetCounter(1);
    TTestObject* a1 = Put(ToolA, Dm->IncCounter(0), LimRec(10, 20, 30, 40));
    Put(ToolB, Dm->IncCounter(1), LimRec(-5, 7, 3, 9));
    Put(ToolA, Dm->IncCounter(0), LimRec(100, 200, 300, 400));
    PutSlave(ToolC, Dm->IncCounter(2), a1);
    const QByteArray first = Body();

    TMemoryStream in(first);
    Dm->LoadFromStream(in);
    EXPECT_EQ(Dm->GetCount(), 4);
    EXPECT_EQ(Dm->Counters(), (TCounters{2, 1, 1}));
    EXPECT_EQ(Body(), first);
    EXPECT_EQ(in.Position(), in.Size());
    EXPECT_FALSE(Dm->State.Contains(dmLoading));
}

TEST_F(DataModule, LoadingConnectsSlavesToTheirMasters) {
    TTestObject* master = Put(ToolA, 4);
    PutSlave(ToolB, 9, master);
    TMemoryStream in(Body());
    Dm->LoadFromStream(in);
    ASSERT_EQ(Dm->GetCount(), 2);
    TvlObject* newMaster = Dm->ObjectAt(0, 0);
    TvlObject* newSlave = Dm->ObjectAt(1, 0);
    EXPECT_FALSE(newSlave->State.Contains(isConnect));
    EXPECT_EQ(newSlave->Master(), newMaster);
}

TEST_F(DataModule, ALoadReplacesTheDrawingAndResetsSelectionAndRange) {
    Put(ToolA, 1);
    const QByteArray body = Body();
    Dm->Clear();
    TTestObject* old = Put(ToolB, 5);
    Dm->Select(old);
    Box->SetMouseFnd(old);
    Box->State.Exclude(bsNewRange);
    TMemoryStream in(body);
    Dm->LoadFromStream(in);
    EXPECT_EQ(Dm->GetCount(), 1);
    EXPECT_EQ(Dm->ObjectAt(0, 0)->ClassNr(), -5);
    EXPECT_EQ(Dm->MarkCount(), 0);
    EXPECT_EQ(Box->MouseFnd(), nullptr);
    EXPECT_TRUE(Box->State.Contains(bsNewRange));
    EXPECT_EQ(ActScaleSet, &Box->ScaleSetting());
}

TEST_F(DataModule, LoadingAFileOlderThan3040LeavesSixCounters) {
    TMemoryStream out;
    for (std::uint16_t v : {1, 2, 3, 4, 5, 6}) out.WriteUInt16(v);
    out.WriteInt32(0); // no layer name
    out.WriteUInt16(LayerEndMark);
    FileHeader.Vellorum = -0x3000;
    TMemoryStream in(out.Bytes());
    Dm->LoadFromStream(in);
    EXPECT_EQ(Dm->Counters(), (TCounters{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(in.Position(), in.Size());
}

// A drawing of two objects and some counters, with its body.
class DataModuleFailure : public DataModFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
    void SetUp() override {
        DataModFixture::SetUp();
        A = Put(ToolA, 1, LimRec(0, 0, 10, 10));
        B = Put(ToolB, 1, LimRec(20, 20, 40, 40));
        Dm->IncCounter(0);
        Dm->IncCounter(3);
        Dm->Select(B);
        Before = Body();
        Objects = Contents();
        CountersBefore = Dm->Counters();
    }
    void ExpectUnchanged() {
        EXPECT_EQ(Contents(), Objects);
        EXPECT_EQ(Dm->Counters(), CountersBefore);
        EXPECT_EQ(Body(), Before);
        EXPECT_EQ(Dm->MarkCount(), 1);
        EXPECT_FALSE(Dm->State.Contains(dmLoading));
    }
    // A body of other objects: counters (5) and one object of ToolC.
    QByteArray OtherBody() {
        auto* other = new TvlDataModule(Form.get());
        other->SetDrawForm(Box);
        other->IncCounter(0);
        TTestObject* c = ToolC->Make(7);
        other->Add(c, 0);
        TMemoryStream s;
        other->SaveToStream(s);
        delete other;
        return s.Bytes();
    }

    TTestObject* A = nullptr;
    TTestObject* B = nullptr;
    QByteArray Before;
    std::vector<TvlObject*> Objects;
    TCounters CountersBefore;
};

TEST_F(DataModuleFailure, ABodyCutShortLeavesTheFormerDrawing) {
    const QByteArray other = OtherBody();
    for (int cut : {0, 1, 3, static_cast<int>(other.size()) - 1, static_cast<int>(other.size()) - 2}) {
        TMemoryStream in(other.left(cut));
        EXPECT_NO_THROW(Dm->LoadFromStream(in)) << cut;
        ExpectUnchanged();
    }
}

TEST_F(DataModuleFailure, AnUnknownClassNumberLeavesTheFormerDrawing) {
    QByteArray other = OtherBody();
    // The class number of the one object follows the counters (4 bytes) and the empty name (4).
    ASSERT_EQ(static_cast<std::uint8_t>(other[8]), 0xF9); // -7
    other[8] = static_cast<char>(0xF0);
    TMemoryStream in(other);
    EXPECT_NO_THROW(Dm->LoadFromStream(in));
    ExpectUnchanged();
}

TEST_F(DataModuleFailure, ACounterCountBeyondTheStreamLeavesTheFormerDrawing) {
    TMemoryStream out;
    out.WriteUInt16(0xFFFF);
    out.WriteUInt16(1);
    TMemoryStream in(out.Bytes());
    Dm->LoadFromStream(in);
    ExpectUnchanged();
}

TEST_F(DataModuleFailure, AFailedLoadFreesTheClassNumberMap) {
    int released = 0;
    ReleaseMapper = [&] { ++released; };
    TMemoryStream in(QByteArray("\x01"));
    Dm->LoadFromStream(in);
    EXPECT_EQ(released, 2); // after the failed try, and at the end
    ExpectUnchanged();
}

TEST_F(DataModuleFailure, ALoadThatFailsTwiceWithAValidMapGivesUpAfterTheSecondTry) {
    std::vector<std::int64_t> starts;
    LoadRemedy = [&](TvlDataMod& M, TStream& S, std::int64_t TryStart) {
        EXPECT_EQ(&M, Dm);
        starts.push_back(TryStart);
        S.SetPosition(TryStart);
        return true;
    };
    QByteArray bad = OtherBody();
    bad[8] = static_cast<char>(0xF0);
    TMemoryStream in(bad);
    Dm->LoadFromStream(in);
    EXPECT_EQ(starts, (std::vector<std::int64_t>{0, 0}));
    ExpectUnchanged();
}

TEST_F(DataModuleFailure, ARemedyThatBringsAMapLetsTheSecondTrySucceed) {
    QByteArray bad = OtherBody();
    bad[8] = static_cast<char>(0x40); // class number 0xFF40 = -192: no such tool
    int remedies = 0;
    LoadRemedy = [&](TvlDataMod&, TStream& S, std::int64_t TryStart) {
        ++remedies;
        // The map tells that class number -192 is now ToolC: the body is read again as such.
        QByteArray fixed = bad;
        fixed[8] = static_cast<char>(0xF9);
        S.SetPosition(0);
        S.WriteBuffer(fixed.constData(), fixed.size());
        S.SetPosition(TryStart);
        return true;
    };
    TMemoryStream in(bad);
    Dm->LoadFromStream(in);
    EXPECT_EQ(remedies, 1);
    ASSERT_EQ(Dm->GetCount(), 1);
    EXPECT_EQ(Dm->ObjectAt(0, 0)->ClassNr(), -7);
    EXPECT_EQ(Dm->Counters(), (TCounters{1}));
}

TEST_F(DataModuleFailure, AHandlerThatSetsNoLayerClassFailsTheLoad) {
    Dm->OnLayerSetClass = [](TLayerClass&) {};
    TMemoryStream in(OtherBody());
    EXPECT_NO_THROW(Dm->LoadFromStream(in));
    ExpectUnchanged();
}

TEST_F(DataModuleFailure, TheLayerClassOfTheHandlerIsUsedForTheLoad) {
    int made = 0;
    Dm->OnLayerSetClass = [&](TLayerClass& Cls) {
        Cls = [&](const QString& Name, int Capacity) {
            ++made;
            return new TvlLayer(Name, Capacity);
        };
    };
    TMemoryStream in(OtherBody());
    Dm->LoadFromStream(in);
    EXPECT_EQ(made, 1);
    EXPECT_EQ(Dm->GetCount(), 1);
}

} // namespace
} // namespace vl::test
