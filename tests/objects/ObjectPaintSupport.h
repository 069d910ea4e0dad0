// The fixture of the paint and hit protocol tests: a shown draw box whose logical units are pixels, so
// that logical positions are the box's client pixels, a stand-in store with the module base's
// selection, and a test creator whose objects outline their local rectangle and offer a handle at
// each corner.
#pragma once

#include "objects/Generators.h"
#include "objects/TvlObject.h"
#include "platform/core/Streams.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Graphics.h"
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
#include "tools/HostRoutines.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vl::test {

inline constexpr QRgb White = 0xFFFFFF;
inline constexpr QRgb Blue = 0x0000FF;
inline constexpr QRgb Red = 0xFF0000;
inline constexpr QRgb Black = 0x000000;
inline constexpr QRgb Grey = 0x808080;
inline constexpr QRgb Green = 0x008000;

// A form with one shown draw box at (10, 10), 300 by 200 pixels, white, logical units of one pixel
// with the origin at the top left, a paint data module and one creator (ID -3) with a black pen of
// width 1 and a solid blue brush.
class PaintFixture : public FormFixture, public TServiceBundle {
protected:
    void SetUp() override {
        SavedScale = ActScaleSet;
        Box = NewPixelBoxForm();
        Box->AfterPaint = [this](TObject*) { ++Paints; };
        Store = new TStandInStore(Form.get());
        Store->SetName(QStringLiteral("Data1"));
        Store->FDrawForm = Box;
        Box->SetDataModule(Store);
        Tool = new TTestCreator(Form.get(), std::int16_t(-3));
        Tool->PrepareObject = [](TTestObject& O) { MakePaintable(O); };
        Tool->FDrawForm = Box;
        Gen().Pen().SetColor(clBlack);
        Gen().Pen().SetWidth(1);
        Gen().Brush().SetColor(clBlue);
        Gen().Brush().SetStyle(bsSolid);
        Form->BeginLoadingAll();
        Form->LoadedAll();
        Form->Activate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Form->Widget()));
        Settle();
        ActScaleSet = &Box->ScaleSetting();
    }
    void TearDown() override {
        SizingHandle = szNone;
        Store->MarkCase().Clear();
        Store->Objects.clear();
        Form.reset();
        QApplication::processEvents();
        ActScaleSet = SavedScale;
        Screen.SetPixelsPerInch(0);
    }

    TCustomGenerator& Gen() { return *Tool->Generator(); }
    TCanvas& Canvas() { return *Box->ScaleSetting().Canvas(); }
    // Repaints the whole box now.
    void PaintAll() {
        Box->InvalidateBox();
        Box->Update();
        Settle();
    }
    // A rectangle of `W` by `H` units that outlines itself and has corner handles, at `P`, visible,
    // numbered after the objects already held, drawing into `Shapes`.
    TTestObject* AddObj(TPoint P, const std::string& Name = "obj", std::int32_t W = 20, std::int32_t H = 20) {
        auto obj = std::make_unique<TTestObject>(Tool);
        MakePaintable(*obj);
        obj->SetPos(P);
        obj->W = W;
        obj->H = H;
        obj->SetVisible(true);
        obj->SetID(static_cast<std::uint16_t>(Store->Objects.size() + 1));
        obj->Name = Name;
        obj->ShapeLog = &Shapes;
        return Store->Hold(std::move(obj));
    }
    static void MakePaintable(TTestObject& O) {
        O.W = 20;
        O.H = 20;
        O.OutlinesRect = true;
        O.CornerHandles = true;
    }
    QRgb SurfacePixel(int X, int Y) const { return Box->Surface().Image().pixel(X, Y) & 0xFFFFFF; }
    QPoint InWindow(int X, int Y) const { return ClientInWindow(*Box, X, Y); }
    // The colour that reached the window at a client pixel of the box.
    QRgb ScreenPixel(int X, int Y) const { return WindowPixel(InWindow(X, Y)); }

    TvlDrawbox* Box = nullptr;
    TStandInStore* Store = nullptr;
    TTestCreator* Tool = nullptr;
    TScaleSetting* SavedScale = nullptr;
    std::vector<TShapeCall> Shapes;
    int Paints = 0;
};

} // namespace vl::test
