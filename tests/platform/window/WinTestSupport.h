// Shared fixtures of the window tests: a shown, active form and a control that records what reaches
// it.
#pragma once

#include "platform/services/ServiceDoubles.h"
#include "platform/services/Services.h"
#include "platform/window/Controls.h"
#include "support/FormFixture.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace vl::test {

// A control that records its messages and paints, and whose paint can be replaced.
class TRecordingControl : public TCustomControl {
public:
    explicit TRecordingControl(TComponent* AOwner) : TCustomControl(AOwner) {
        SetColor(clWhite);
        SetTabStop(true);
    }

    std::vector<TMessage> Messages; // every message through WndProc, in order
    std::vector<TRect> PaintClips;  // the clip box of each paint, device pixels
    int Paints = 0;
    int DeviceContexts = 0;
    std::function<void(TCanvas&)> OnPaint;
    std::function<void(TMessage&)> Intercept; // runs in WndProc before the default handling
    bool WantKeys = false;                    // CN_KEYDOWN answers 0: Tab reaches KeyDown

    std::vector<TMessage> Of(std::uint32_t Msg) const {
        std::vector<TMessage> result;
        for (const TMessage& m : Messages) {
            if (m.Msg == Msg) result.push_back(m);
        }
        return result;
    }
    std::vector<std::uint32_t> MouseMessages() const {
        std::vector<std::uint32_t> result;
        for (const TMessage& m : Messages) {
            if (m.Msg >= WM_MOUSEMOVE && m.Msg <= WM_MBUTTONDBLCLK && m.Msg != WM_MOUSEMOVE)
                result.push_back(m.Msg);
        }
        return result;
    }

    void WndProc(TMessage& Message) override {
        Messages.push_back(Message);
        if (Intercept) {
            Intercept(Message);
            if (Message.Msg == WM_NULL) return;
        }
        TCustomControl::WndProc(Message);
    }

    HDC GetDeviceContext() override {
        ++DeviceContexts;
        return TCustomControl::GetDeviceContext();
    }

    using TWinControl::PaintHandler;

protected:
    void Paint() override {
        ++Paints;
        PaintClips.push_back(Canvas().ClipRect());
        if (OnPaint) OnPaint(Canvas());
    }
    void CNKeyDown(TMessage& Message) override {
        if (WantKeys)
            Message.Result = 0;
        else
            TCustomControl::CNKeyDown(Message);
    }
};

// A shown, active form with one recording control at (10, 10), 200 x 150, and error and dialog
// doubles installed.
class WindowFixture : public FormFixture {
protected:
    void SetUp() override {
        Form = std::make_unique<TForm>();
        Form->SetBounds(0, 0, 320, 240);
        Control = new TRecordingControl(Form.get());
        Control->SetName("Box");
        Control->SetBounds(10, 10, 200, 150);
        Control->SetParent(Form.get());
        Form->Activate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Form->Widget()));
        Settle();
    }

    void TearDown() override {
        Form.reset();
        QApplication::processEvents();
    }

    // A point of the control's client area in the window's coordinates.
    QPoint InWindow(int X, int Y) const { return Control->Widget()->mapTo(Form->Widget(), QPoint(X, Y)); }

    // The colour of a surface pixel (0xRRGGBB).
    QRgb SurfacePixel(int X, int Y) const { return Control->Surface().Image().pixel(X, Y) & 0xFFFFFF; }
    // The colour on the screen at a client pixel: what reached the window's backing store.
    QRgb ScreenPixel(int X, int Y) const { return WindowPixel(InWindow(X, Y)); }

    TErrorServiceDouble Errors;
    TServiceScope<TErrorService> ErrorScope{Errors};
    TMessageServiceDouble Dialogs;
    TServiceScope<TMessageService> DialogScope{Dialogs};
    TRecordingControl* Control = nullptr;
};

} // namespace vl::test
