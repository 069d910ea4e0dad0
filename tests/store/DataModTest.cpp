// The store base: counters, selection and marks, the restore rect, link lookup, layer class, file
// events, undo options and the undo glue.

#include "DataModSupport.h"
#include "platform/core/Scoped.h"

namespace vl::test {
namespace {

class DataMod : public DataModFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
};

TEST_F(DataMod, IncCounterGrowsTheArrayToReachTheIndexAndStartsAtOne) {
    EXPECT_TRUE(Dm->Counters().empty());
    EXPECT_EQ(Dm->IncCounter(5), 1);
    EXPECT_EQ(Dm->Counters(), (TCounters{0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(Dm->IncCounter(5), 2);
    EXPECT_EQ(Dm->IncCounter(2), 1);
    EXPECT_EQ(Dm->Counters(), (TCounters{0, 0, 1, 0, 0, 2}));
}

TEST_F(DataMod, CounterWrapsAtSixtyFiveThousandFiveHundredThirtySix) {
    Dm->IncCounter(0);
    EXPECT_EQ(Dm->DecCounter(0), 0);
    EXPECT_EQ(Dm->DecCounter(0), 65535);
    EXPECT_EQ(Dm->IncCounter(0), 0);
    EXPECT_EQ(Dm->IncCounter(0), 1);
}

TEST_F(DataMod, ClearZeroesTheCountersAndKeepsTheirNumber) {
    Dm->IncCounter(3);
    Dm->IncCounter(1);
    Put(ToolA, 1);
    Dm->Clear();
    EXPECT_EQ(Dm->Counters(), (TCounters{0, 0, 0, 0}));
    EXPECT_TRUE(Dm->Empty());
    EXPECT_EQ(Dm->GetCount(), 0);
}

TEST_F(DataMod, ObjectsNumberedThroughTheirGeneratorCounter) {
    ToolA->Generator()->SetCounter(2);
    auto* a = ToolA->Make(0);
    auto* b = ToolA->Make(0);
    a->Count();
    b->Count();
    EXPECT_EQ(a->ID(), 1);
    EXPECT_EQ(b->ID(), 2);
    EXPECT_EQ(Dm->Counters().size(), 3u);
    delete a;
    delete b;
}

TEST_F(DataMod, SelectOfASelectedObjectFiresNothingAndAddsNothing) {
    TTestObject* a = Put(ToolA, 1);
    std::vector<TvlObject*> fired;
    Dm->OnSelectObject = [&](TvlObject* o) { fired.push_back(o); };
    Dm->Select(a);
    Dm->Select(a);
    EXPECT_EQ(fired, (std::vector<TvlObject*>{a}));
    EXPECT_EQ(Dm->MarkCase().Count(), 1);
    EXPECT_TRUE(a->Selected());
}

TEST_F(DataMod, SelectionKeepsZOrder) {
    ToolA->Generator()->SetZOrder(1);
    ToolB->Generator()->SetZOrder(5);
    TTestObject* front = Put(ToolA, 1);
    TTestObject* back = Put(ToolB, 1);
    Dm->Select(front);
    Dm->Select(back);
    EXPECT_EQ(Dm->Marked(0), back);
    EXPECT_EQ(Dm->Marked(1), front);
}

TEST_F(DataMod, SelectOfNullSetsTheFlagOnEveryMemberWithoutEvent) {
    TTestObject* a = Put(ToolA, 1);
    TTestObject* b = Put(ToolA, 2);
    Dm->Select(a);
    Dm->Select(b);
    a->State.Exclude(isSelected);
    b->State.Exclude(isSelected);
    int fired = 0;
    Dm->OnSelectObject = [&](TvlObject*) { ++fired; };
    Dm->Select(nullptr);
    EXPECT_TRUE(a->Selected());
    EXPECT_TRUE(b->Selected());
    EXPECT_EQ(fired, 0);
}

TEST_F(DataMod, UnSelectOfNullOnAnEmptySelectionFiresWithNullAndStillFlushes) {
    std::vector<TvlObject*> fired;
    Dm->OnUnselectObject = [&](TvlObject* o) { fired.push_back(o); };
    Dm->FRestoreRect = LimRec(1, 2, 3, 4);
    Dm->UnSelect(nullptr);
    EXPECT_EQ(fired, (std::vector<TvlObject*>{nullptr}));
    EXPECT_EQ(Dm->FRestoreRect, EmptyLimRec);
}

TEST_F(DataMod, UnSelectFiresFirstThenTakesTheObjectOut) {
    TTestObject* a = Put(ToolA, 1);
    TTestObject* b = Put(ToolA, 2);
    Dm->Select(a);
    Dm->Select(b);
    bool stillSelectedAtEvent = false;
    Dm->OnUnselectObject = [&](TvlObject* o) { stillSelectedAtEvent = o && o->Selected(); };
    Dm->UnSelect(a);
    EXPECT_TRUE(stillSelectedAtEvent);
    EXPECT_FALSE(a->Selected());
    EXPECT_EQ(Dm->MarkCount(), 1);
    EXPECT_EQ(Dm->Marked(0), b);
    Dm->OnUnselectObject = nullptr;
    Dm->UnmarkAll();
    EXPECT_FALSE(b->Selected());
    EXPECT_EQ(Dm->MarkCount(), 0);
}

TEST_F(DataMod, MarkSelectsFiresAndFlushes) {
    TTestObject* a = Put(ToolA, 1);
    std::vector<std::string> log;
    Dm->OnSelectObject = [&](TvlObject*) { log.push_back("select"); };
    Dm->OnMarkObject = [&](TvlObject* o) { log.push_back(o == a ? "mark a" : "mark null"); };
    Dm->FRestoreRect = LimRec(1, 2, 3, 4);
    Dm->Mark(a);
    EXPECT_EQ(log, (std::vector<std::string>{"select", "mark a"}));
    EXPECT_TRUE(a->Selected());
    EXPECT_TRUE(a->State.Contains(isMarked));
    EXPECT_EQ(Dm->FRestoreRect, EmptyLimRec);
}

TEST_F(DataMod, MarkOfNullMarksEverySelectedObjectAgain) {
    TTestObject* a = Put(ToolA, 1);
    TTestObject* b = Put(ToolA, 2);
    Dm->Select(a);
    Dm->Select(b);
    a->State.Exclude(isSelected);
    std::vector<TvlObject*> fired;
    Dm->OnMarkObject = [&](TvlObject* o) { fired.push_back(o); };
    Dm->Mark(nullptr);
    EXPECT_TRUE(a->Selected());
    EXPECT_TRUE(a->State.Contains(isMarked));
    EXPECT_TRUE(b->State.Contains(isMarked));
    EXPECT_EQ(fired, (std::vector<TvlObject*>{nullptr}));
}

TEST_F(DataMod, EraseRemovesFromStoreAndSelectionAndFrees) {
    TTestObject* a = Put(ToolA, 1);
    TTestObject* b = Put(ToolA, 2);
    Dm->Select(a);
    Dm->Erase(a);
    EXPECT_EQ(Contents(), (std::vector<TvlObject*>{b}));
    EXPECT_EQ(Dm->MarkCount(), 0);
}

TEST_F(DataMod, SettingAnEmptyUndoFunctionSetsUndoStepsToZero) {
    Dm->SetUndoSteps(7);
    Dm->SetUndoFunction(TUndo{unDelete});
    EXPECT_EQ(Dm->UndoSteps(), 7);
    Dm->SetUndoFunction(TUndo{});
    EXPECT_EQ(Dm->UndoSteps(), 0);
    Dm->SetUndoFunction(TUndo{unMove});
    EXPECT_EQ(Dm->UndoSteps(), 1);
}

TEST_F(DataMod, SettingTheSameUndoFunctionChangesNothing) {
    Dm->SetUndoFunction(TUndo{unMove});
    Dm->SetUndoSteps(0);
    Dm->SetUndoFunction(TUndo{unMove});
    EXPECT_EQ(Dm->UndoSteps(), 0);
}

TEST_F(DataMod, LoadedMakesTheUndoManagerFromTheLowByteOfTheSteps) {
    std::vector<std::string> log;
    int steps = -1;
    UndoManagerFactory = [&](TUndo, std::uint8_t Steps) {
        steps = Steps;
        return std::make_unique<TRecordingUndo>(log);
    };
    auto* dm = new TvlDataModule(Form.get());
    dm->Loaded();
    EXPECT_EQ(dm->UndoManager(), nullptr); // no steps, no undo
    dm->SetUndoFunction(TUndo{unDelete});
    dm->SetUndoSteps(0x105);
    dm->Loaded();
    ASSERT_NE(dm->UndoManager(), nullptr);
    EXPECT_EQ(steps, 5);
}

TEST_F(DataMod, BackupWithoutUndoDoesNothing) {
    Put(ToolA, 1);
    int fired = 0;
    Dm->OnBackup = [&](TObject*, TBackupMode) { ++fired; };
    Dm->Backup(bkDelete);
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(Dm->BackupMem(), nullptr);
}

TEST_F(DataMod, BackupWritesTheBodyOrTheSelectedRecordsWithTheRestoreRect) {
    std::vector<std::string> log;
    TRecordingUndo* undo = nullptr;
    UndoManagerFactory = RecordingUndoFactory(undo, &log);
    Dm->SetUndoFunction(TUndo{unDelete, unMove});
    Dm->Loaded();
    ASSERT_NE(undo, nullptr);
    TTestObject* a = Put(ToolA, 1, LimRec(5, 6, 15, 16));
    Put(ToolA, 2);
    std::vector<TBackupMode> fired;
    Dm->OnBackup = [&](TObject* Sender, TBackupMode Mode) {
        EXPECT_EQ(Sender, Dm);
        fired.push_back(Mode);
    };
    Dm->Backup(bkCreate);
    ASSERT_EQ(undo->Filed.size(), 1u);
    EXPECT_EQ(undo->Filed[0], Body());

    Dm->Select(a);
    Dm->FRestoreRect = LimRec(1, 2, 3, 4);
    Dm->Backup(bkMove);
    TMemoryStream expected;
    Dm->MarkCase().SaveToStream(expected);
    for (std::int32_t v : {1, 2, 3, 4}) expected.WriteInt32(v);
    ASSERT_EQ(undo->Filed.size(), 2u);
    EXPECT_EQ(undo->Filed[1], expected.Bytes());
    EXPECT_EQ(fired, (std::vector<TBackupMode>{bkCreate, bkMove}));
    EXPECT_EQ(log, (std::vector<std::string>{"init 2", "close", "init 1", "close"}));
}

TEST_F(DataMod, UndoAndRedoGoToTheManager) {
    std::vector<std::string> log;
    UndoManagerFactory = [&](TUndo, std::uint8_t) { return std::make_unique<TRecordingUndo>(log); };
    Dm->Undo(); // without a manager: nothing
    Dm->SetUndoFunction(TUndo{unDelete});
    Dm->Loaded();
    Dm->Undo();
    Dm->Redo();
    EXPECT_EQ(log, (std::vector<std::string>{"undo", "redo"}));
}

TEST_F(DataMod, RestoreRectStartsEmptyAndInvalidateTakesTheLimits) {
    EXPECT_EQ(Dm->FRestoreRect, LimRec(0x7FFFFFFF, 0x7FFFFFFF, -2147483647, -2147483647));
    Put(ToolA, 1, LimRec(0, 0, 10, 10));
    Dm->FRestoreRect = LimRec(1, 1, 2, 2);
    Dm->Invalidate();
    EXPECT_EQ(Dm->FRestoreRect, EmptyLimRec);
}

TEST_F(DataMod, RangeChangedWhenTheLimitsNoLongerReachTheRestoreRect) {
    Put(ToolA, 1, LimRec(0, 0, 100, 50));
    const TLimRec lim = Dm->GetLimits();
    Dm->FRestoreRect = lim;
    EXPECT_FALSE(Dm->RangeChanged());
    Dm->FRestoreRect.Xmax = lim.Xmax + 1;
    EXPECT_TRUE(Dm->RangeChanged());
    Dm->FRestoreRect = lim;
    Dm->FRestoreRect.Ymin = lim.Ymin - 1;
    EXPECT_TRUE(Dm->RangeChanged());
    EXPECT_TRUE(Dm->CompareLimits(lim));
    EXPECT_FALSE(Dm->CompareLimits(LimRec(0, 0, 1, 1)));
}

TEST_F(DataMod, ExtentIsTheLimitsSpan) {
    Put(ToolA, 1, LimRec(-10, 5, 30, 45));
    const TLimRec l = Dm->GetLimits();
    EXPECT_EQ(Dm->Width(), l.Xmax - l.Xmin);
    EXPECT_EQ(Dm->Height(), l.Ymax - l.Ymin);
    EXPECT_EQ(Dm->Extent().cx, Dm->Width());
    EXPECT_EQ(Dm->Extent().cy, Dm->Height());
    EXPECT_EQ(Dm->MinX(), l.Xmin);
    EXPECT_EQ(Dm->MaxY(), l.Ymax);
}

TEST_F(DataMod, FindObjectLooksUpClassNumberAndNumberAndNeedsAll) {
    Put(ToolA, 1);
    TTestObject* b = Put(ToolB, 1);
    TTestObject* a2 = Put(ToolA, 2);
    EXPECT_EQ(Dm->FindObject(TContype{-6, 1, nullptr}), b);
    EXPECT_EQ(Dm->FindObject(TContype{-5, 2, nullptr}), a2);
    EXPECT_EQ(Dm->FindObject(TContype{-7, 1, nullptr}), nullptr);
    EXPECT_TRUE(Dm->State.Contains(dmNeedAll));
}

TEST_F(DataMod, FindObjectMapsTheClassNumberThroughTheMapInForce) {
    TTestObject* b = Put(ToolB, 3);
    MapClassNr = [](std::int16_t Nr) { return static_cast<std::int16_t>(Nr == 40 ? -6 : Nr); };
    EXPECT_EQ(Dm->FindObject(TContype{40, 3, nullptr}), b);
}

TEST_F(DataMod, CheckLinksAsksEveryObjectWhetherItIsInvolved) {
    TTestObject* master = Put(ToolA, 1);
    TTestObject* slave = PutSlave(ToolB, 1, master);
    Dm->Select(master);
    Dm->CheckLinks(invMove);
    EXPECT_TRUE(slave->Selected());
    EXPECT_TRUE(slave->State.Contains(isCantMove));
}

TEST_F(DataMod, LayerSetClassIsTheLayerWithoutHandler) {
    const TLayerClass cls = Dm->LayerSetClass();
    ASSERT_TRUE(cls);
    std::unique_ptr<TvlLayer> layer(cls(QStringLiteral("L"), 4));
    EXPECT_EQ(layer->Name(), QStringLiteral("L"));
}

TEST_F(DataMod, AHandlerThatSetsNoLayerClassMakesNoLayer) {
    Dm->OnLayerSetClass = [](TLayerClass&) {};
    EXPECT_FALSE(Dm->LayerSetClass());
    EXPECT_THROW(Dm->NewLayer(QString(), 10), Exception);
}

TEST_F(DataMod, AssignCopiesUndoOptionsAndSixEventsButNotBackupOrFileStream) {
    auto* other = new TvlDataModule(Form.get());
    int hits = 0;
    other->SetUndoFunction(TUndo{unPaste});
    other->OnDeleteObjects = [&](TObject*) { ++hits; };
    other->OnSelectObject = [&](TvlObject*) { ++hits; };
    other->OnUnselectObject = [&](TvlObject*) { ++hits; };
    other->OnMarkObject = [&](TvlObject*) { ++hits; };
    other->OnLayerSetClass = [&](TLayerClass&) { ++hits; };
    other->OnCheckFileVersion = [&](TvlFileHeader&, bool&) { ++hits; };
    other->OnBackup = [&](TObject*, TBackupMode) { ++hits; };
    other->OnFileStream = [&](TStream&, bool) { ++hits; };
    other->SetCapacity(7);
    Dm->Assign(other);
    EXPECT_EQ(Dm->UndoFunction(), TUndo{unPaste});
    EXPECT_TRUE(Dm->OnDeleteObjects && Dm->OnSelectObject && Dm->OnUnselectObject && Dm->OnMarkObject &&
                Dm->OnLayerSetClass && Dm->OnCheckFileVersion);
    EXPECT_FALSE(Dm->OnBackup);
    EXPECT_FALSE(Dm->OnFileStream);
    EXPECT_EQ(Dm->Capacity(), 7u);
}

TEST_F(DataMod, WrongFileVersionAsksTheHostAboutTheHeader) {
    EXPECT_FALSE(Dm->WrongFileVersion());
    FileHeader.AppID = 77;
    std::uint32_t seen = 0;
    Dm->OnCheckFileVersion = [&](TvlFileHeader& H, bool& Abort) {
        seen = H.AppID;
        Abort = true;
    };
    EXPECT_TRUE(Dm->WrongFileVersion());
    EXPECT_EQ(seen, 77u);
}

TEST_F(DataMod, FileStreamFiresOnFileStream) {
    TMemoryStream s;
    TStream* got = nullptr;
    bool loading = false;
    Dm->FileStream(s, true); // unassigned: nothing
    Dm->OnFileStream = [&](TStream& S, bool L) {
        got = &S;
        loading = L;
    };
    Dm->FileStream(s, true);
    EXPECT_EQ(got, &s);
    EXPECT_TRUE(loading);
}

TEST_F(DataMod, TheBaseRaisesTheAbstractErrorForWhatAStoreMustProvide) {
    TEmptyDataMod base(nullptr);
    EXPECT_THROW(base.ObjectAt(0, 0), EAbstractError);
    EXPECT_THROW(base.DeleteObjects(), EAbstractError);
    EXPECT_THROW(base.RecalcLimits(), EAbstractError);
    TMemoryStream s;
    EXPECT_THROW(base.SaveToStream(s), EAbstractError);
    EXPECT_THROW(base.LoadFromStream(s), EAbstractError);
    EXPECT_EQ(base.GetMaxX(), 0);
    EXPECT_EQ(base.GetMinY(), 0);
}

TEST_F(DataMod, ConnectObjectsReportsEachObject) {
    RecordInfo();
    TTestObject* a = Put(ToolA, 1);
    TvlDataMod::ConnectObjects(a, nullptr);
    EXPECT_EQ(InfoLog.back(), "count 0");
}

} // namespace
} // namespace vl::test
