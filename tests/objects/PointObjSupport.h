// The fixture of the point object tests: a shown draw box whose logical units are pixels (so that a
// logical position is a client pixel of the box), the box's own single-layer data module, and a
// creator of point objects with a black 1-pixel pen and a solid blue brush, 40 by 20 units.
#pragma once

#include "objects/Generators.h"
#include "objects/PointObj.h"
#include "platform/core/Scoped.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"
#include "store/Vlmm.h"
#include "support/FormFixture.h"
#include "support/ServiceBundle.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

#include <QApplication>
#include <QImage>

#include <gtest/gtest.h>

#include <memory>

namespace vl::test {

// A creator of point objects that places one per click.
class TPointTool : public TvlCreator {
public:
    explicit TPointTool(TComponent* AOwner) : TvlCreator(AOwner) {}
    TvlObject* SetNewObj(const TPoint& CurPos) override { return PlaceNewObject(CurPos); }
    // A new point object at `P`, numbered and held by the data module.
    TPointObj* Place(TPoint P) { return static_cast<TPointObj*>(PlaceNewObject(P)); }
};

class PointFixture : public FormFixture, public TServiceBundle {
protected:
    void SetUp() override {
        SavedScale = ActScaleSet;
        Box = NewPixelBoxForm();
        Tool = new TPointTool(Form.get());
        Tool->SetName(QStringLiteral("Shapes"));
        Tool->SetDrawForm(Box);
        Gen().SetWidth(40);
        Gen().SetHeight(20);
        Gen().Pen().SetColor(clBlack);
        Gen().Pen().SetWidth(1);
        Gen().Brush().SetColor(clBlue);
        Gen().Brush().SetStyle(bsSolid);
        // A second tool, made before the data module so that it outlives the objects it makes.
        Slaves = new TPointTool(Form.get());
        Slaves->SetName(QStringLiteral("Slaves"));
        Slaves->SetDrawForm(Box);
        MakeTools();
        LoadForm();
        ShowForm();
        Store = dynamic_cast<TvlDataModule*>(Box->DataModule());
        ASSERT_NE(Store, nullptr);
        ActScaleSet = &Box->ScaleSetting();
        SetFileHeader();
    }
    void TearDown() override {
        SizingHandle = szNone;
        Form.reset();
        QApplication::processEvents();
        ActScaleSet = SavedScale;
        SetFileHeader();
        Screen.SetPixelsPerInch(0);
    }

    // A derived fixture's own tools, made on the form before it is loaded, so that they outlive the
    // data module's objects as `Slaves` does.
    virtual void MakeTools() {}

    TCustomGenerator& Gen() { return *Tool->Generator(); }
    TCanvas& Canvas() { return *Box->ScaleSetting().Canvas(); }
    void SetOptions(std::initializer_list<TGeneratorOption> Options) {
        TGeneratorOptions o;
        for (TGeneratorOption opt : Options) o.Include(opt);
        Gen().SetOptions(o);
    }
    // Repaints the whole box now and answers its surface.
    QImage Painted() {
        Box->InvalidateBox();
        Box->Update();
        Settle();
        return Box->Surface().Image().convertToFormat(QImage::Format_RGB32);
    }
    // What the same primitives give on a memory bitmap of the box's size, white, mapped as the box
    // is, with the generator's pen and brush selected and the window origin at `Corner`: `Draw` makes
    // the plain device-context calls.
    template <class F>
    QImage Reference(TPoint Corner, F Draw) {
        TBitmap bitmap(Box->ClientWidth(), Box->ClientHeight());
        TCanvas& canvas = bitmap.Canvas();
        canvas.Brush().SetColor(clWhite);
        canvas.Brush().SetStyle(bsSolid);
        canvas.FillRect(Rect(0, 0, bitmap.Width(), bitmap.Height()));
        canvas.SetPen(Gen().Pen());
        canvas.SetBrush(Gen().Brush());
        HDC dc = canvas.Handle();
        Box->ScaleSetting().SetMap(dc);
        SetWindowOrgEx(dc, -Corner.x, -Corner.y);
        Draw(canvas, dc);
        return bitmap.Image().convertToFormat(QImage::Format_RGB32);
    }

    TvlDrawbox* Box = nullptr;
    TvlDataModule* Store = nullptr;
    TPointTool* Tool = nullptr;
    TPointTool* Slaves = nullptr;
    TScaleSetting* SavedScale = nullptr;
    // A test that changes the file header puts back the one it found.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
};

// The number of pixels in which two images of one size differ.
inline int DifferingPixels(const QImage& A, const QImage& B) {
    if (A.size() != B.size()) return -1;
    int n = 0;
    for (int y = 0; y < A.height(); ++y)
        for (int x = 0; x < A.width(); ++x)
            if ((A.pixel(x, y) & 0xFFFFFF) != (B.pixel(x, y) & 0xFFFFFF)) ++n;
    return n;
}

// The number of pixels of `Image` that have the colour `Rgb` (0xRRGGBB).
inline int CountColour(const QImage& Image, QRgb Rgb) {
    int n = 0;
    for (int y = 0; y < Image.height(); ++y)
        for (int x = 0; x < Image.width(); ++x)
            if ((Image.pixel(x, y) & 0xFFFFFF) == Rgb) ++n;
    return n;
}

} // namespace vl::test
