// Shared stand-ins of the draw box tests: a tool that records what reaches it, creators with chosen
// IDs, objects that log their paint and a data module that holds them, and a fixture with a form.
#pragma once

#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"
#include "platform/window/Controls.h"
#include "store/DataModBase.h"
#include "support/FormFixture.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vl::test {

// One call that reached a tool or a host event.
struct TCall {
    std::string What;
    TPoint Pos;
    TShiftState Shift;
    TScaleSetting* Scale = nullptr; // `ActScaleSet` at the call
};

class TRecordingTool : public TMouseTool {
public:
    TRecordingTool(TComponent* AOwner, std::vector<TCall>& Log) : TMouseTool(AOwner), FLog(Log) {}

    void LMouseDown(TShiftState Shift, const TPoint& P) override { Note("LMouseDown", Shift, P); }
    void LMouseUp(TShiftState Shift, const TPoint& P) override { Note("LMouseUp", Shift, P); }
    void MouseMove(TShiftState Shift, const TPoint& P) override { Note("MouseMove", Shift, P); }
    void LeftDblClk(TShiftState Shift, const TPoint& P) override { Note("LeftDblClk", Shift, P); }
    void RMouseDown(TShiftState Shift, const TPoint& P) override { Note("RMouseDown", Shift, P); }
    void RMouseUp(TShiftState Shift, const TPoint& P) override { Note("RMouseUp", Shift, P); }
    void RightDblClk(TShiftState Shift, const TPoint& P) override { Note("RightDblClk", Shift, P); }
    bool KeyDown(std::uint16_t& Key, TShiftState Shift) override {
        Note("KeyDown", Shift, Point(Key, 0));
        return false;
    }
    bool KeyUp(std::uint16_t& Key, TShiftState Shift) override {
        Note("KeyUp", Shift, Point(Key, 0));
        return false;
    }

private:
    void Note(const char* What, TShiftState Shift, TPoint P) {
        FLog.push_back({What, P, Shift, ActScaleSet});
    }
    std::vector<TCall>& FLog;
};

class TStandInObject;

// A creator whose ID is chosen by the test (else its index) and that counts its paint-related calls.
class TStandInCreator : public TvlCreator {
public:
    explicit TStandInCreator(TComponent* AOwner, std::optional<std::int16_t> ID = std::nullopt)
        : TvlCreator(AOwner), FID(ID) {}
    std::int16_t GetID() override { return FID ? *FID : TvlCreator::GetID(); }
    TvlObject* CreateObject() override;
    void CheckScaling() override { ++Scalings; }
    void ReleaseResources() override { ++Releases; }
    int Scalings = 0;
    int Releases = 0;

private:
    std::optional<std::int16_t> FID;
};

// An object that fills its limits on the canvas of `ActScaleSet` and logs what it is asked.
class TStandInObject : public TvlObject {
public:
    TStandInObject(std::string Name, TLimRec Lim, std::vector<std::string>* Log = nullptr)
        : FName(std::move(Name)), FLim(Lim), FLog(Log) {}
    bool Visible() const override { return IsVisible; }
    bool CheckFrame(const void* Params, TCheckFrame Mode) override {
        if (Mode != cfLimRec) return false;
        const auto& r = *static_cast<const TLimRec*>(Params);
        return FLim.Xmin <= r.Xmax && FLim.Xmax >= r.Xmin && FLim.Ymin <= r.Ymax && FLim.Ymax >= r.Ymin;
    }
    void Show() override {
        Note("Show");
        ShownWith = ActScaleSet;
        if (OnShow) OnShow();
        if (ActScaleSet && ActScaleSet->Canvas()) {
            TCanvas& c = *ActScaleSet->Canvas();
            c.Brush().SetColor(Fill);
            c.Brush().SetStyle(bsSolid);
            c.FillRect(Rect(FLim.Xmin, FLim.Ymin, FLim.Xmax, FLim.Ymax));
        }
    }
    bool Nosy() const override { return IsNosy; }
    void ObjectMessage(TObjMessage& Msg) override { Messages.push_back(Msg.Msg); }
    void AdjustToScale() override { ++Adjusted; }
    void Invalidate() override { Note("Invalidate"); }
    void MovePos(TPoint D) override {
        Note("MovePos");
        FLim.Xmin += D.x;
        FLim.Xmax += D.x;
        FLim.Ymin += D.y;
        FLim.Ymax += D.y;
    }
    const TLimRec& Lim() const { return FLim; }

    bool IsVisible = true;
    bool IsNosy = false;
    TColor Fill = clRed;
    std::vector<std::uint32_t> Messages;
    int Adjusted = 0;
    TScaleSetting* ShownWith = nullptr;
    std::function<void()> OnShow;

private:
    void Note(const char* What) {
        if (FLog) FLog->push_back(FName + "." + What);
    }
    std::string FName;
    TLimRec FLim;
    std::vector<std::string>* FLog;
};

inline TvlObject* TStandInCreator::CreateObject() {
    return new TStandInObject("created", LimRec(0, 0, 1, 1));
}

// A data module that holds stand-in objects in z-order and owns them.
class TStandInDataMod : public TvlDataMod {
public:
    explicit TStandInDataMod(TComponent* AOwner) : TvlDataMod(AOwner) {}

    TStandInObject* Add(std::unique_ptr<TStandInObject> Obj) {
        Objects.push_back(std::move(Obj));
        return Objects.back().get();
    }
    TLimRec GetLimits() override {
        if (ThrowOnEmpty) throw Exception(QStringLiteral("broken"));
        TLimRec l = EmptyLimRec;
        for (const auto& o : Objects) {
            l.Xmin = std::min(l.Xmin, o->Lim().Xmin);
            l.Ymin = std::min(l.Ymin, o->Lim().Ymin);
            l.Xmax = std::max(l.Xmax, o->Lim().Xmax);
            l.Ymax = std::max(l.Ymax, o->Lim().Ymax);
        }
        return l;
    }
    void AllObjects(const TAllObjectsProc& Action, void* Params) override {
        for (const auto& o : Objects) Action(o.get(), Params);
    }
    void InitLimits() override { ++LimitInits; }
    bool Empty() override {
        if (ThrowOnEmpty) throw Exception(QStringLiteral("broken"));
        return Objects.empty();
    }
    void LoadFromFile(const QString& F) override { Loads << F; }
    void SaveToFile(const QString& F) override { Saves << F; }
    int MarkCount() const override { return static_cast<int>(Marks.size()); }
    TvlObject* Marked(int I) const override { return Marks.at(static_cast<std::size_t>(I)); }
    void UnSelect(TvlObject* O) override {
        UnSelects.push_back(O);
        if (!O) Marks.clear();
    }

    std::vector<std::unique_ptr<TStandInObject>> Objects;
    std::vector<TvlObject*> Marks;
    std::vector<TvlObject*> UnSelects;
    QStringList Loads;
    QStringList Saves;
    int LimitInits = 0;
    bool ThrowOnEmpty = false;
};

// A form with draw boxes; boxes are made with `MakeBox` before `LoadForm`, as a host does.
class BoxFixture : public FormFixture {
protected:
    void SetUp() override { NewForm(Bounds(0, 0, 640, 480)); }
    void TearDown() override {
        Form.reset();
        QApplication::processEvents();
        Screen.SetPixelsPerInch(0);
    }

    TvlDrawbox* MakeBox(const QString& Name, TRect Bounds = Rect(10, 10, 312, 212)) {
        auto* box = new TvlDrawbox(Form.get());
        box->SetName(Name);
        box->SetParent(Form.get());
        box->SetBoundsRect(Bounds);
        box->SetColor(clWhite);
        return box;
    }
    // A client point of a box in the window's coordinates.
    QPoint InWindow(TWinControl* Box, int X, int Y) const {
        const int b = Box->BorderWidth();
        return Box->Widget()->mapTo(Form->Widget(), QPoint(X + b, Y + b));
    }
    static QRgb SurfacePixel(TWinControl* Box, int X, int Y) {
        return Box->Surface().Image().pixel(X, Y) & 0xFFFFFF;
    }

    TErrorServiceDouble Errors;
    TServiceScope<TErrorService> ErrorScope{Errors};
    TMessageServiceDouble Dialogs;
    TServiceScope<TMessageService> DialogScope{Dialogs};
    TCursorServiceDouble Cursor;
    TServiceScope<TCursorService> CursorScope{Cursor};
};

} // namespace vl::test
