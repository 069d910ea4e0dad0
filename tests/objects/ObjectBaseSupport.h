// The fixture of the object base tests: a form, a draw box with the box's scale setting in force, a
// stand-in store that owns its objects and keeps a plain flagged selection, and two test creators.
#pragma once

#include "geometry/FileHeader.h"
#include "objects/TvlObject.h"
#include "platform/core/Streams.h"
#include "platform/window/Controls.h"
#include "store/DataModBase.h"
#include "support/FormFixture.h"
#include "support/InputHelpers.h"
#include "support/ObjectDoubles.h"
#include "support/ServiceBundle.h"
#include "support/StoreDoubles.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <memory>

namespace vl::test {

// A new object of `Tool` numbered `ID`, held by `Store`.
inline TTestObject* AddNumbered(TStandInStore& Store, TvlCreator* Tool, std::uint16_t ID) {
    auto obj = std::make_unique<TTestObject>(Tool);
    obj->SetID(ID);
    return Store.Hold(std::move(obj));
}

// A form with one draw box, a data module and two creators (IDs -5 and -6); the box's scale setting
// is in force and `FileHeader` is in the current form.
class ObjectFixture : public FormFixture, public TServiceBundle {
protected:
    void SetUp() override {
        NewForm();
        Box = NewBox(Rect(0, 0, 300, 200));
        Store = new TStandInStore(Form.get());
        Store->Marking = TStandInMarks::Flagged;
        Store->ReportsLimits = false;
        Box->SetDataModule(Store);
        Store->SetDrawForm(Box);
        ToolA = new TTestCreator(Form.get(), std::int16_t(-5));
        ToolA->SetDrawForm(Box);
        ToolB = new TTestCreator(Form.get(), std::int16_t(-6));
        ToolB->SetDrawForm(Box);
        SavedScale = ActScaleSet;
        Form->BeginLoadingAll();
        Form->LoadedAll();
        ActScaleSet = &Box->ScaleSetting();
        SetFileHeader();
    }
    void TearDown() override {
        Store->Objects.clear();
        ActScaleSet = SavedScale;
        PasteIDList.reset();
        SetFileHeader();
        Form.reset();
        Screen.SetPixelsPerInch(0);
    }

    // The bytes of a memory stream.
    static QByteArray Bytes(TMemoryStream& S) { return S.Bytes(); }

    TvlDrawbox* Box = nullptr;
    TStandInStore* Store = nullptr;
    TTestCreator* ToolA = nullptr;
    TTestCreator* ToolB = nullptr;
    TScaleSetting* SavedScale = nullptr;
};

} // namespace vl::test
