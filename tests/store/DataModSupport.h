// The fixture of the data module tests: the store fixture with a single-layer data module in place of
// the empty one, and helpers to fill the store.
#pragma once

#include "StoreTestSupport.h"

#include "store/Layer.h"
#include "store/Vlmm.h"

#include <string>
#include <vector>

namespace vl::test {

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
    TTestObject* Put(TTestCreator* Tool, std::uint16_t ID, TLimRec Lim = LimRec(0, 0, 10, 10)) {
        TTestObject* obj = Tool->Make(ID, Lim.Xmin, Lim.Ymin);
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
    TTestObject* PutSlave(TTestCreator* Tool, std::uint16_t ID, TvlObject* Master) {
        auto* obj = new TTestObject(Tool);
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
