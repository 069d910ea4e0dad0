// Shared pieces of the draw box tests: a tool that records what reaches it, the stand-in store with a
// list of marks, and a fixture with a form.
#pragma once

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

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <memory>
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

// The stand-in store of the draw box tests: it holds bare rectangles and a list of marks that the
// test fills.
inline TStandInStore* NewListedStore(TComponent* Owner) {
    auto* store = new TStandInStore(Owner);
    store->Marking = TStandInMarks::Listed;
    return store;
}

// A form with draw boxes; boxes are made with `MakeBox` before `LoadForm`, as a host does.
class BoxFixture : public FormFixture, public TServiceBundle {
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
    // The box "Box1" with one logical unit per pixel.
    TvlDrawbox* MakePixelBox() {
        TvlDrawbox* box = MakeBox(QStringLiteral("Box1"));
        box->ScaleSetting().SetMinUnit(TLenUnits::Pixel);
        return box;
    }
    // A listed stand-in store serving `Box`.
    TStandInStore* ServeWithStandIn(TvlDrawbox* Box) {
        TStandInStore* store = NewListedStore(Form.get());
        store->FDrawForm = Box;
        Box->SetDataModule(store);
        return store;
    }
    // A client point of a box in the window's coordinates.
    static QPoint InWindow(TWinControl* Box, int X, int Y) { return ClientInWindow(*Box, X, Y); }
    static QRgb SurfacePixel(TWinControl* Box, int X, int Y) {
        return Box->Surface().Image().pixel(X, Y) & 0xFFFFFF;
    }
};

// A form with the box "Box1" of pixel units, served by a listed stand-in store.
class StoredBoxFixture : public BoxFixture {
protected:
    void SetUp() override {
        BoxFixture::SetUp();
        Box = MakePixelBox();
        Dm = ServeWithStandIn(Box);
    }
    // Repaints the whole box now.
    void Repaint() {
        Box->InvalidateBox();
        Box->Update();
    }

    TvlDrawbox* Box = nullptr;
    TStandInStore* Dm = nullptr;
};

} // namespace vl::test
