// Stand-ins of the object base tests: a creator with a chosen ID, a data module that owns its objects
// and answers `FindObject` and `IncCounter`, an object class that can be made a slave and given a
// size, and a fixture with a form, a draw box and the box's scale setting in force.
#pragma once

#include "geometry/FileHeader.h"
#include "objects/TvlObject.h"
#include "platform/core/Streams.h"
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

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace vl::test {

class TObjTestObj;

// A creator whose ID is chosen by the test (else its index among the form's components).
class TObjTestCreator : public TvlCreator {
public:
    explicit TObjTestCreator(TComponent* AOwner, std::optional<std::int16_t> ID = std::nullopt)
        : TvlCreator(AOwner), FID(ID) {}
    std::int16_t GetID() override { return FID ? *FID : TvlCreator::GetID(); }
    TvlObject* CreateObject() override;

private:
    std::optional<std::int16_t> FID;
};

// An object whose size is set by the test and whose `SetMaster` makes it a slave (or a slaved first
// end) of the given master, as the point and line classes do.
class TObjTestObj : public TvlObject {
public:
    using TvlObject::TvlObject;

    void SetMaster(TvlObject* Value) override {
        if (Value) {
            State.Include(isSlave);
            Pos.ConObj = Value;
            Pos.SetRelPos(0);
        } else {
            const TPoint p = GetPos();
            State.Exclude(isSlave);
            Pos.ConObj = nullptr;
            Pos.x = p.x;
            Pos.y = p.y;
        }
    }
    void SetP1Master(TvlObject* Value) {
        State.Include(isP1Slave);
        Pos.ConObj = Value;
        Pos.SetRelPos(0);
    }
    std::int32_t GetWidth() override { return W; }
    std::int32_t GetHeight() override { return H; }

    TPos& RawPos() { return Pos; }
    void SetID(std::uint16_t Value) { ObjID = Value; }

    std::int32_t W = 0;
    std::int32_t H = 0;
};

inline TvlObject* TObjTestCreator::CreateObject() {
    return new TObjTestObj(this);
}

// A data module that owns its objects in order, keeps its counters and its mark list.
class TObjTestDataMod : public TvlDataMod {
public:
    explicit TObjTestDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}

    template <class T = TObjTestObj>
    T* Add(TvlCreator* Tool, std::uint16_t ID) {
        auto obj = std::make_unique<T>(Tool);
        obj->SetID(ID);
        T* raw = obj.get();
        Objects.push_back(std::move(obj));
        return raw;
    }
    TvlObject* Take(std::unique_ptr<TvlObject> Obj) {
        Objects.push_back(std::move(Obj));
        return Objects.back().get();
    }

    TLimRec GetLimits() override { return EmptyLimRec; }
    void AllObjects(const TAllObjectsProc& Action, void* Params) override {
        for (const auto& o : Objects) Action(o.get(), Params);
    }
    void InitLimits() override {}
    bool Empty() override { return Objects.empty(); }
    void LoadFromFile(const QString&) override {}
    void SaveToFile(const QString&) override {}
    int MarkCount() const override { return static_cast<int>(Marks.size()); }
    TvlObject* Marked(int I) const override { return Marks.at(static_cast<std::size_t>(I)); }
    void Select(TvlObject* O) override {
        if (O->State.Contains(isSelected)) return;
        O->State.Include(isSelected);
        Marks.push_back(O);
    }
    void UnSelect(TvlObject* O) override {
        if (!O) {
            for (TvlObject* m : Marks) m->RemoveSelectFlag();
            Marks.clear();
            return;
        }
        std::erase(Marks, O);
        O->RemoveSelectFlag();
    }
    void CheckLimits(TvlObject* O, bool Done) override { LimitChecks.push_back({O, Done}); }
    std::uint16_t IncCounter(std::uint16_t Counter) override {
        if (Counter >= Counters.size()) Counters.resize(Counter + 1u, 0);
        return ++Counters[Counter];
    }
    TvlObject* FindObject(TContype Link) override {
        ++Finds;
        for (const auto& o : Objects)
            if (o->ClassNr() == Link.ConType && o->ID() == Link.ConID) return o.get();
        return nullptr;
    }

    std::vector<std::unique_ptr<TvlObject>> Objects;
    std::vector<TvlObject*> Marks;
    std::vector<std::uint16_t> Counters = std::vector<std::uint16_t>(6, 0);
    std::vector<std::pair<TvlObject*, bool>> LimitChecks;
    int Finds = 0;
};

// A form with one draw box, a data module and two creators (IDs -5 and -6); the box's scale setting
// is in force and `FileHeader` is in the current form.
class ObjectFixture : public FormFixture {
protected:
    void SetUp() override {
        NewForm();
        Box = NewBox(Rect(0, 0, 300, 200));
        Store = new TObjTestDataMod(Form.get());
        Box->SetDataModule(Store);
        Store->SetDrawForm(Box);
        ToolA = new TObjTestCreator(Form.get(), std::int16_t(-5));
        ToolA->SetDrawForm(Box);
        ToolB = new TObjTestCreator(Form.get(), std::int16_t(-6));
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
    // A memory stream holding `Hex` (spaces ignored), at position 0.
    static std::unique_ptr<TMemoryStream> StreamOf(const char* Hex) {
        return std::make_unique<TMemoryStream>(QByteArray::fromHex(QByteArray(Hex).replace(' ', "")));
    }
    static QByteArray Hex(const char* H) { return QByteArray::fromHex(QByteArray(H).replace(' ', "")); }

    TErrorServiceDouble Errors;
    TServiceScope<TErrorService> ErrorScope{Errors};
    TMessageServiceDouble Dialogs;
    TServiceScope<TMessageService> DialogScope{Dialogs};
    TCursorServiceDouble Cursor;
    TServiceScope<TCursorService> CursorScope{Cursor};
    TvlDrawbox* Box = nullptr;
    TObjTestDataMod* Store = nullptr;
    TObjTestCreator* ToolA = nullptr;
    TObjTestCreator* ToolB = nullptr;
    TScaleSetting* SavedScale = nullptr;
};

} // namespace vl::test
