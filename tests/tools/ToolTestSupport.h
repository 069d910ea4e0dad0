// Shared pieces of the tool tests: a form with a shown draw box, a stand-in store that takes the
// objects added to it, square test objects and their creator, and tools that log what happens to them.
#pragma once

#include "objects/TvlObject.h"
#include "platform/window/Buttons.h"
#include "platform/window/Controls.h"
#include "store/DataModBase.h"
#include "support/FormFixture.h"
#include "support/InputHelpers.h"
#include "support/ObjectDoubles.h"
#include "support/ServiceBundle.h"
#include "support/StoreDoubles.h"
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

#include <memory>
#include <string>
#include <vector>

namespace vl::test {

// One shared log of what tools and objects did, in order.
using TLog = std::vector<std::string>;

// Makes `O` a square of 10 units from its position whose hot area is that square, as the tool tests'
// objects are; a master given to it is ignored.
inline void MakeSquare(TTestObject& O) {
    O.W = 10;
    O.H = 10;
    O.HitByLimits = true;
    O.FollowsMaster = false;
}

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
class TSquareCreator : public TTestCreator {
public:
    explicit TSquareCreator(TComponent* AOwner) : TTestCreator(AOwner) {
        PlacesOnClick = true;
        PrepareObject = MakeSquare;
    }
};

// A form with one draw box (pixels as logical units, origin top left) and a data module.
class ToolFixture : public FormFixture, public TServiceBundle {
protected:
    void SetUp() override {
        Box = NewPixelBoxForm();
        DataMod = new TStandInStore(Form.get());
        DataMod->Marking = TStandInMarks::Listed;
        DataMod->TakesAdds = true;
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
    QPoint InWindow(int X, int Y) const { return ClientInWindow(*Box, X, Y); }
    // A press and release of `Button` at a client point of the box, and the events that follow.
    void Press(Qt::MouseButton Button, int X, int Y) {
        Click(Window(), InWindow(X, Y), Button);
        Settle();
    }
    TvlDrawbox* Box = nullptr;
    TStandInStore* DataMod = nullptr;
    TLog Log;
};

} // namespace vl::test
