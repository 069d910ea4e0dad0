// Shared pieces of the tool tests: a form with a shown draw box, a data module that holds objects,
// an object with a square hot area, and tools that log what happens to them.
#pragma once

#include "objects/TvlObject.h"
#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"
#include "platform/window/Buttons.h"
#include "platform/window/Controls.h"
#include "store/DataModBase.h"
#include "support/FormFixture.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"
#include "tools/MouseToolBase.h"

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vl::test {

// One shared log of what tools and objects did, in order.
using TLog = std::vector<std::string>;

// An object whose hot area is the square of `Size` units from its position; it logs its
// invalidations and still grows the restore rect as every object does.
class TSquareObj : public TvlObject {
public:
    explicit TSquareObj(TvlCreator* ATool) : TvlObject(ATool) {}
    std::int32_t GetWidth() override { return Size; }
    std::int32_t GetHeight() override { return Size; }
    bool Found(const TLimRec& R) override {
        if (FoundLog) FoundLog->push_back(Name + ".Found");
        const TLimRec l = GetLimits();
        return Visible() && R.Xmin < l.Xmax && R.Xmax > l.Xmin && R.Ymin < l.Ymax && R.Ymax > l.Ymin;
    }
    void Invalidate() override {
        ++Invalidations;
        TvlObject::Invalidate();
    }
    static inline std::int32_t Size = 10;
    int Invalidations = 0;
    std::string Name;
    TLog* FoundLog = nullptr;
};

// A data module that owns its objects in z-order, keeps counters and records backups and adds.
class TToolDataMod : public TvlDataMod {
public:
    explicit TToolDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}

    TLimRec GetLimits() override {
        TLimRec l = EmptyLimRec;
        for (const auto& o : Objects) {
            const TLimRec r = o->GetLimits();
            l.Xmin = std::min(l.Xmin, r.Xmin);
            l.Ymin = std::min(l.Ymin, r.Ymin);
            l.Xmax = std::max(l.Xmax, r.Xmax);
            l.Ymax = std::max(l.Ymax, r.Ymax);
        }
        return l;
    }
    void AllObjects(const TAllObjectsProc& Action, void* Params) override {
        for (std::size_t i = 0; i < Objects.size(); ++i) Action(Objects[i].get(), Params);
    }
    void InitLimits() override {}
    bool Empty() override { return Objects.empty(); }
    void LoadFromFile(const QString&) override {}
    void SaveToFile(const QString&) override {}
    int MarkCount() const override { return 0; }
    TvlObject* Marked(int) const override { return nullptr; }
    void UnSelect(TvlObject*) override {}
    std::uint16_t IncCounter(std::uint16_t Counter) override { return ++Counters[Counter]; }
    void Add(TvlObject* AObject, std::int32_t Layer) override {
        Objects.emplace_back(AObject);
        Layers.push_back(Layer);
    }
    void Backup(TBackupMode Mode) override { Backups.push_back(Mode); }

    TvlObject* Object(std::size_t I) const { return Objects.at(I).get(); }

    std::vector<std::unique_ptr<TvlObject>> Objects;
    std::vector<std::int32_t> Layers;
    std::vector<TBackupMode> Backups;
    std::map<std::uint16_t, std::uint16_t> Counters;
};

// A plain tool that logs its activation and termination by name, and the sender of `Activate`.
class TLogTool : public TSaveTool {
public:
    TLogTool(TComponent* AOwner, const std::string& Name, TLog& Log)
        : TSaveTool(AOwner), FName(Name), FLog(Log) {
        OnActivate = [this](TObject* Sender) {
            FLog.push_back(FName + ".OnActivate");
            EXPECT_EQ(Sender, this);
        };
        OnTerminate = [this](TObject*) { FLog.push_back(FName + ".OnTerminate"); };
    }
    void Activate(TObject* Sender) override {
        LastSender = Sender;
        TSaveTool::Activate(Sender);
    }
    void LMouseDown(TShiftState, const TPoint&) override { FLog.push_back(FName + ".LMouseDown"); }
    void LMouseUp(TShiftState, const TPoint&) override { FLog.push_back(FName + ".LMouseUp"); }
    void RMouseDown(TShiftState S, const TPoint& P) override {
        FLog.push_back(FName + ".RMouseDown");
        TSaveTool::RMouseDown(S, P);
    }
    void RMouseUp(TShiftState, const TPoint&) override { FLog.push_back(FName + ".RMouseUp"); }
    void MouseMove(TShiftState, const TPoint&) override { ++Moves; }

    TObject* LastSender = nullptr;
    int Moves = 0;

private:
    std::string FName;
    TLog& FLog;
};

// A creator that makes one square object per click, the way point creators register theirs, and
// remembers the position it was given.
class TSquareCreator : public TvlCreator {
public:
    explicit TSquareCreator(TComponent* AOwner) : TvlCreator(AOwner) {}
    TCapClass DefaultClass() override { return &NewObjectOf<TSquareObj>; }
    TvlObject* SetNewObj(const TPoint& CurPos) override {
        Given.push_back(CurPos);
        return PlaceNewObject(CurPos);
    }
    void SetDefaultData(TvlObject*) override { ++DefaultData; }
    std::vector<TPoint> Given;
    int DefaultData = 0;
};

// A form with one draw box (pixels as logical units, origin top left) and a data module.
class ToolFixture : public FormFixture {
protected:
    void SetUp() override {
        NewForm(Bounds(0, 0, 400, 300));
        Box = NewBox(Rect(10, 10, 310, 210));
        Box->SetColor(clWhite);
        Box->ScaleSetting().SetMinUnit(TLenUnits::Pixel);
        DataMod = new TToolDataMod(Form.get());
        DataMod->SetName(QStringLiteral("Data1"));
        DataMod->FDrawForm = Box;
        Box->SetDataModule(DataMod);
    }
    void TearDown() override {
        // Objects refer to their creators: they go first, as the box sees to in a host.
        DataMod->Objects.clear();
        Form.reset();
        QApplication::processEvents();
        Screen.SetPixelsPerInch(0);
    }

    template <class T, class... A>
    T* AddTool(A&&... Args) {
        auto* tool = new T(Form.get(), std::forward<A>(Args)...);
        tool->FDrawForm = Box;
        return tool;
    }
    TLogTool* AddLogTool(const std::string& Name, bool Default = false) {
        auto* tool = AddTool<TLogTool>(Name, Log);
        if (Default) tool->SetOptions(TToolOptions{toDefaultTool});
        return tool;
    }
    QPoint InWindow(int X, int Y) const {
        const int b = Box->BorderWidth();
        return Box->Widget()->mapTo(Form->Widget(), QPoint(X + b, Y + b));
    }
    void Press(Qt::MouseButton Button, int X, int Y) {
        QTest::mousePress(Window(), Button, {}, InWindow(X, Y));
        QTest::mouseRelease(Window(), Button, {}, InWindow(X, Y));
        Settle();
    }

    TErrorServiceDouble Errors;
    TServiceScope<TErrorService> ErrorScope{Errors};
    TMessageServiceDouble Dialogs;
    TServiceScope<TMessageService> DialogScope{Dialogs};
    TCursorServiceDouble Cursor;
    TServiceScope<TCursorService> CursorScope{Cursor};
    TvlDrawbox* Box = nullptr;
    TToolDataMod* DataMod = nullptr;
    TLog Log;
};

} // namespace vl::test
