// Stand-ins of the list and layer tests: an object whose limits the test sets, creators with a chosen
// ID and z value, a data module that holds nothing, an info box that records what it is told, and a
// fixture with a form, a draw box in force and three creators.
#pragma once

#include "geometry/FileHeader.h"
#include "objects/Generators.h"
#include "objects/TvlObject.h"
#include "platform/core/Streams.h"
#include "platform/services/Infobox.h"
#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"
#include "platform/window/Controls.h"
#include "store/DataModBase.h"
#include "support/FormFixture.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vl::test {

// An object whose limits are set by the test; it counts its invalidations.
class TLimObj : public TvlObject {
public:
    explicit TLimObj(TvlCreator* ATool = nullptr) : TvlObject(ATool) {}
    TLimRec GetLimits() override { return Lims; }
    void Invalidate() override {
        ++Invalidations;
        TvlObject::Invalidate();
    }
    void SetID(std::uint16_t Value) { ObjID = Value; }
    void SetRawPos(std::int32_t X, std::int32_t Y) {
        Pos.x = X;
        Pos.y = Y;
    }
    const TPos& RawPos() const { return Pos; }

    TLimRec Lims = LimRec(0, 0, 0, 0);
    int Invalidations = 0;
};

// A creator with a chosen ID (else its component index) whose objects are `TLimObj`s.
class TStoreCreator : public TvlCreator {
public:
    explicit TStoreCreator(TComponent* AOwner, std::optional<std::int16_t> ID = std::nullopt)
        : TvlCreator(AOwner), FID(ID) {}
    std::int16_t GetID() override { return FID ? *FID : TvlCreator::GetID(); }
    TCapClass DefaultClass() override { return &NewObjectOf<TLimObj>; }

    // A new object of this tool, numbered `ID`, visible, at (`X`, `Y`).
    TLimObj* Make(std::uint16_t ID, std::int32_t X = 0, std::int32_t Y = 0) {
        auto* obj = static_cast<TLimObj*>(CreateObject());
        obj->SetID(ID);
        obj->SetRawPos(X, Y);
        obj->State.Include(isVisible);
        return obj;
    }

private:
    std::optional<std::int16_t> FID;
};

// A data module that holds no objects: the restore rect and the box are what the layer tests need.
class TStoreTestDataMod : public TvlDataMod {
public:
    explicit TStoreTestDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}
    TLimRec GetLimits() override { return EmptyLimRec; }
    void AllObjects(const TAllObjectsProc&, void*) override {}
    void InitLimits() override {}
    bool Empty() override { return true; }
    void LoadFromFile(const QString&) override {}
    void SaveToFile(const QString&) override {}
    int MarkCount() const override { return 0; }
    TvlObject* Marked(int) const override { return nullptr; }
    void UnSelect(TvlObject*) override {}
};

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
class StoreFixture : public FormFixture {
protected:
    void SetUp() override {
        NewForm();
        Box = NewBox(Rect(0, 0, 300, 200));
        Store = new TStoreTestDataMod(Form.get());
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

    TStoreCreator* AddTool(std::int16_t ID) {
        auto* tool = new TStoreCreator(Form.get(), ID);
        tool->SetName(QStringLiteral("Tool%1").arg(-ID));
        tool->SetDrawForm(Box);
        return tool;
    }
    // Opens a recording info box that writes into `InfoLog`.
    void RecordInfo() {
        InfoboxFactory = [this](TInfoLabel*, TProgressBar*) { return new TRecordingInfobox(InfoLog); };
        InfoOpen(nullptr, nullptr);
    }

    static QByteArray Hex(const char* H) { return QByteArray::fromHex(QByteArray(H).replace(' ', "")); }
    static std::unique_ptr<TMemoryStream> StreamOf(const QByteArray& Bytes) {
        return std::make_unique<TMemoryStream>(Bytes);
    }

    TErrorServiceDouble Errors;
    TServiceScope<TErrorService> ErrorScope{Errors};
    TMessageServiceDouble Dialogs;
    TServiceScope<TMessageService> DialogScope{Dialogs};
    TCursorServiceDouble Cursor;
    TServiceScope<TCursorService> CursorScope{Cursor};
    TvlDrawbox* Box = nullptr;
    TStoreTestDataMod* Store = nullptr;
    TStoreCreator* ToolA = nullptr;
    TStoreCreator* ToolB = nullptr;
    TStoreCreator* ToolC = nullptr;
    TScaleSetting* SavedScale = nullptr;
    std::vector<std::string> InfoLog;
};

} // namespace vl::test
