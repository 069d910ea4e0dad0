// Stand-ins of the data module tests: the store fixture with a single-layer data module in place of
// the empty one, an undo manager that records what it is asked, and helpers to fill the store.
#pragma once

#include "StoreTestSupport.h"

#include "store/Layer.h"
#include "store/Vlmm.h"

#include <string>
#include <vector>

namespace vl::test {

// An undo manager that keeps every filed snapshot and logs the calls.
class TRecordingUndo : public TUndoManager {
public:
    explicit TRecordingUndo(std::vector<std::string>& Log) : FLog(Log) {}
    void InitBackup(TBackupMode Mode) override {
        FLog.push_back("init " + std::to_string(static_cast<int>(Mode)));
        FMode = Mode;
        FOpen = std::make_unique<TMemoryStream>();
    }
    void CloseBackup() override {
        FLog.push_back("close");
        if (FOpen) Filed.push_back(FOpen->Bytes());
        FOpen.reset();
    }
    TMemoryStream* CurrentBackup() override { return FOpen.get(); }
    TBackupMode CurrentBackupMode() const override { return FMode; }
    void Undo(TvlDataMod&) override { FLog.push_back("undo"); }
    void Redo(TvlDataMod&) override { FLog.push_back("redo"); }

    std::vector<QByteArray> Filed;

private:
    std::vector<std::string>& FLog;
    TBackupMode FMode = bkEmpty;
    std::unique_ptr<TMemoryStream> FOpen;
};

// An object that hangs on a master as a slave, with no offset.
class TSlaveObj : public TLimObj {
public:
    using TLimObj::TLimObj;
    void Follow(TvlObject* Master) {
        State.Include(isSlave);
        Pos.SetConType(Master->ClassNr());
        Pos.SetConID(Master->ID());
        Pos.ConObj = Master;
        Pos.SetRelPos(0);
    }
};

// The store fixture with a `TvlDataModule` serving the box.
class DataModFixture : public StoreFixture {
protected:
    void SetUp() override {
        StoreFixture::SetUp();
        Dm = new TvlDataModule(Form.get());
        Dm->SetName(QStringLiteral("Data1"));
        Dm->SetDrawForm(Box);
        Box->SetDataModule(Dm);
    }
    void TearDown() override {
        LoadRemedy = nullptr;
        ReleaseMapper = nullptr;
        MapClassNr = nullptr;
        UndoManagerFactory = nullptr;
        StoreFixture::TearDown();
    }

    // A new object of `Tool` numbered `ID` with the limits `Lim`, added to the store.
    TLimObj* Put(TStoreCreator* Tool, std::uint16_t ID, TLimRec Lim = LimRec(0, 0, 10, 10)) {
        TLimObj* obj = Tool->Make(ID, Lim.Xmin, Lim.Ymin);
        obj->Lims = Lim;
        Dm->Add(obj, 0);
        return obj;
    }
    // The body as the store writes it now.
    QByteArray Body() {
        TMemoryStream s;
        Dm->SaveToStream(s);
        return s.Bytes();
    }
    // A visible slave of `Tool` numbered `ID` on `Master`, added to the store.
    TSlaveObj* PutSlave(TStoreCreator* Tool, std::uint16_t ID, TvlObject* Master) {
        auto* obj = new TSlaveObj(Tool);
        obj->SetID(ID);
        obj->State.Include(isVisible);
        obj->Follow(Master);
        obj->Lims = Master->GetLimits();
        Dm->Add(obj, 0);
        return obj;
    }
    std::vector<TvlObject*> Contents() {
        std::vector<TvlObject*> list;
        Dm->AllObjects([&](TvlObject* o, void*) { list.push_back(o); }, nullptr);
        return list;
    }

    TvlDataModule* Dm = nullptr;
};

} // namespace vl::test
