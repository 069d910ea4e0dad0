// The base of the tests that put components and controls on a host form shown on an offscreen
// window: the form itself, its loading as the form's streaming would do it, showing and activating
// it (focus works offscreen only on an active window), and letting Qt's queued events run.
#pragma once

#include "platform/services/Services.h"
#include "platform/window/Controls.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"

#include <QApplication>
#include <QImage>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <memory>

namespace vl::test {

class FormFixture : public ::testing::Test {
protected:
    // The form "Form1" at 96 pixels per inch; `Bounds` are set unless empty.
    void NewForm(TRect Bounds = {}) {
        Screen.SetPixelsPerInch(96);
        Form = std::make_unique<TForm>();
        Form->SetName(QStringLiteral("Form1"));
        if (Bounds != TRect{}) Form->SetBoundsRect(Bounds);
    }
    // The draw box "Box1" on the form.
    TvlDrawbox* NewBox(TRect Bounds) {
        auto* box = new TvlDrawbox(Form.get());
        box->SetName(QStringLiteral("Box1"));
        box->SetParent(Form.get());
        box->SetBoundsRect(Bounds);
        return box;
    }
    // The form of 400 by 300 with the draw box "Box1" at (10, 10), 300 by 200 pixels, white, one
    // logical unit per pixel with the origin at the top left, so that logical positions are the
    // box's client pixels.
    TvlDrawbox* NewPixelBoxForm() {
        NewForm(Bounds(0, 0, 400, 300));
        TvlDrawbox* box = NewBox(Rect(10, 10, 310, 210));
        box->SetColor(clWhite);
        box->ScaleSetting().SetMinUnit(TLenUnits::Pixel);
        return box;
    }
    // `Loaded` of the form and then of every component, in creation order.
    void LoadForm() {
        Form->BeginLoadingAll();
        Form->LoadedAll();
    }
    // Shows and activates the form and lets the first paints run.
    void ShowForm() {
        Form->Activate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Form->Widget()));
        Settle();
    }
    // Delivers pending events, paints included.
    static void Settle() {
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
    }
    QWindow* Window() const { return Form->Widget()->windowHandle(); }
    // The colour (0xRRGGBB) that reached the form's window at `At`, in the window's coordinates: what
    // is in the window's backing store.
    QRgb WindowPixel(QPoint At) const {
        const QImage shot =
            Form->Widget()->screen()->grabWindow(Form->Widget()->winId(), At.x(), At.y(), 1, 1).toImage();
        return shot.pixel(0, 0) & 0xFFFFFF;
    }

    // Made by the fixtures' `SetUp`; freed in their `TearDown`.
    std::unique_ptr<TForm> Form;
};

} // namespace vl::test
