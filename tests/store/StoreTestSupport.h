// The fixture of the list and layer tests: a form, a draw box in force, a stand-in store that holds
// nothing, three test creators whose objects have limits set by the test, and an info box that
// records what it is told.
#pragma once

#include "geometry/FileHeader.h"
#include "objects/Generators.h"
#include "objects/TvlObject.h"
#include "platform/core/Streams.h"
#include "platform/services/Infobox.h"
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
#include <string>
#include <vector>

namespace vl::test {

// Makes `O` an object whose limits are set by the test (at first a point at the origin).
inline void GiveFixedLimits(TTestObject& O) {
    O.Lims = LimRec(0, 0, 0, 0);
}

// An info box that records every call as text: "msg 220 Saving", "count 3".
class TRecordingInfobox : public TInfobox {
public:
    explicit TRecordingInfobox(std::vector<std::string>& Log) : TInfobox(nullptr, nullptr), FLog(Log) {}
    void BoxMessage(std::int32_t Msg, const TInfoParam& Param) override {
        std::string text = "msg " + std::to_string(Msg);
        if (const auto* n = std::get_if<std::int32_t>(&Param)) text += " " + std::to_string(*n);
        if (const auto* s = std::get_if<QString>(&Param)) text += " '" + s->toStdString() + "'";
        FLog.push_back(text);
    }
    void Count(std::int32_t Value) override { FLog.push_back("count " + std::to_string(Value)); }

private:
    std::vector<std::string>& FLog;
};

// A form with one draw box whose scale setting is in force, a data module and three creators: ToolA
// (ID -5), ToolB (ID -6) and ToolC (ID -7). `FileHeader` is in the current form.
class StoreFixture : public FormFixture, public TServiceBundle {
protected:
    void SetUp() override {
        NewForm();
        Box = NewBox(Rect(0, 0, 300, 200));
        Store = new TStandInStore(Form.get());
        Store->Marking = TStandInMarks::Listed;
        Box->SetDataModule(Store);
        Store->SetDrawForm(Box);
        ToolA = AddTool(-5);
        ToolB = AddTool(-6);
        ToolC = AddTool(-7);
        SavedScale = ActScaleSet;
        Form->BeginLoadingAll();
        Form->LoadedAll();
        ActScaleSet = &Box->ScaleSetting();
        SetFileHeader();
        Userbreak = false;
    }
    void TearDown() override {
        InfoClose();
        InfoboxFactory = nullptr;
        Userbreak = false;
        ActScaleSet = SavedScale;
        SetFileHeader();
        Form.reset();
        Screen.SetPixelsPerInch(0);
    }

    TTestCreator* AddTool(std::int16_t ID) {
        auto* tool = new TTestCreator(Form.get(), ID);
        tool->PrepareObject = GiveFixedLimits;
        tool->SetName(QStringLiteral("Tool%1").arg(-ID));
        tool->SetDrawForm(Box);
        return tool;
    }
    // Opens a recording info box that writes into `InfoLog`.
    void RecordInfo() {
        InfoboxFactory = [this](TInfoLabel*, TProgressBar*) { return new TRecordingInfobox(InfoLog); };
        InfoOpen(nullptr, nullptr);
    }

    TvlDrawbox* Box = nullptr;
    TStandInStore* Store = nullptr;
    TTestCreator* ToolA = nullptr;
    TTestCreator* ToolB = nullptr;
    TTestCreator* ToolC = nullptr;
    TScaleSetting* SavedScale = nullptr;
    std::vector<std::string> InfoLog;
};

} // namespace vl::test
