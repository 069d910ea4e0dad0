// Controls as components: parent and bounds, the form as owner, properties that reach the window,
// messages sent by code.

#include "WinTestSupport.h"

namespace vl::test {
namespace {

using WinControl = WindowFixture;

TEST_F(WinControl, BoundsAreDevicePixelsRelativeToTheParentsClientArea) {
    EXPECT_EQ(Control->BoundsRect(), Rect(10, 10, 210, 160));
    EXPECT_EQ(Control->Widget()->geometry(), QRect(10, 10, 200, 150));
    Control->SetLeft(20);
    Control->SetTop(30);
    EXPECT_EQ(Control->Widget()->pos(), QPoint(20, 30));
    Control->SetClientWidth(100);
    EXPECT_EQ(Control->Width(), 100);
    EXPECT_EQ(Control->ClientWidth(), 100);
    EXPECT_EQ(Control->ClientHeight(), 150);
}

TEST_F(WinControl, FormOwnsItsComponentsAndControlsAreItsChildren) {
    EXPECT_EQ(Form->ComponentCount(), 1);
    EXPECT_EQ(Form->Components(0), Control);
    EXPECT_EQ(Form->ControlCount(), 1);
    EXPECT_EQ(Form->Controls(0), Control);
    EXPECT_EQ(Control->Parent(), Form.get());
    EXPECT_EQ(Control->Widget()->parentWidget(), Form->Widget());
    EXPECT_EQ(Form->FindComponent("Box"), Control);
}

TEST_F(WinControl, DeletingAControlTakesItFromItsParent) {
    delete Control;
    Control = nullptr;
    EXPECT_EQ(Form->ControlCount(), 0);
    EXPECT_EQ(Form->ComponentCount(), 0);
}

TEST_F(WinControl, ControlWithoutParentHasAHiddenWindow) {
    auto* loose = new TRecordingControl(Form.get());
    loose->SetBounds(0, 0, 30, 30);
    loose->SetVisible(true);
    EXPECT_FALSE(loose->IsWindowVisible());
    loose->SetParent(Form.get());
    EXPECT_TRUE(loose->IsWindowVisible());
    loose->SetParent(nullptr);
    EXPECT_FALSE(loose->IsWindowVisible());
    EXPECT_EQ(Form->ControlCount(), 1);
}

TEST_F(WinControl, CursorNumbersReachTheWidget) {
    Control->SetCursor(crCross);
    EXPECT_EQ(Control->Widget()->cursor().shape(), Qt::CrossCursor);
    Screen.SetCursors(CursorSmallCross, LoadCursorByName("SMALL_CROSS"));
    Control->SetCursor(CursorSmallCross);
    EXPECT_EQ(Control->Cursor(), CursorSmallCross);
    EXPECT_EQ(Control->Widget()->cursor().shape(), Qt::BitmapCursor);
    EXPECT_EQ(Control->Widget()->cursor().hotSpot(), QPoint(15, 15));
    Screen.SetCursors(CursorSmallCross, nullptr);
    Control->SetCursor(crDefault);
    EXPECT_EQ(Control->Widget()->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(WinControl, ColourChangeRepaintsWithTheNewColour) {
    Control->SetColor(clRed);
    Settle();
    EXPECT_EQ(Control->Surface().Image().pixel(5, 5) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(ScreenPixel(5, 5), 0xFF0000u);
}

TEST_F(WinControl, OpaqueControlIsNotErased) {
    Control->SetControlStyle(Control->ControlStyle() | TControlStyle(csOpaque));
    Control->Canvas().SetPixels(5, 5, clBlack);
    Control->Messages.clear();
    Control->SetColor(clRed);
    Control->Update();
    EXPECT_EQ(Control->Surface().Image().pixel(5, 5) & 0xFFFFFF, 0u);
    EXPECT_EQ(Control->Of(WM_PAINT).size(), 1u);
    EXPECT_TRUE(Control->Of(WM_ERASEBKGND).empty());
}

TEST_F(WinControl, PerformSendsThroughWndProc) {
    Control->Messages.clear();
    Control->Perform(WM_USER + 7, 1, 2);
    ASSERT_EQ(Control->Messages.size(), 1u);
    EXPECT_EQ(Control->Messages[0].Msg, WM_USER + 7);
    EXPECT_EQ(Control->Messages[0].WParam, 1);
    EXPECT_EQ(Control->Messages[0].LParam, 2);
}

TEST_F(WinControl, PaintHandlerCanBeCalledWithAnyContext) {
    QImage image(10, 10, QImage::Format_RGB32);
    HDC dc = CreateImageDC(&image);
    TMessage paint;
    paint.Msg = WM_PAINT;
    paint.DC = dc;
    const int before = Control->Paints;
    Control->PaintHandler(paint);
    DeleteDC(dc);
    EXPECT_EQ(Control->Paints, before + 1);
}

TEST_F(WinControl, LoadingProtocolRunsLoadedInCreationOrder) {
    struct TLoadedControl : TRecordingControl {
        using TRecordingControl::TRecordingControl;
        std::vector<QString>* Log = nullptr;
        void Loaded() override {
            TRecordingControl::Loaded();
            Log->push_back(Name());
        }
    };
    std::vector<QString> log;
    auto form = std::make_unique<TForm>();
    auto* a = new TLoadedControl(form.get());
    a->SetName("A");
    a->Log = &log;
    auto* b = new TLoadedControl(form.get());
    b->SetName("B");
    b->Log = &log;
    form->BeginLoadingAll();
    EXPECT_TRUE(a->ComponentState().Contains(csLoading));
    form->LoadedAll();
    EXPECT_EQ(log, (std::vector<QString>{"A", "B"}));
    EXPECT_FALSE(b->ComponentState().Contains(csLoading));
}

TEST_F(WinControl, FormCaptionAndActivation) {
    Form->SetCaption("Plan");
    EXPECT_EQ(Form->Caption(), "Plan");
    EXPECT_EQ(Form->Widget()->windowTitle(), "Plan");
    EXPECT_TRUE(Form->Active());
    EXPECT_TRUE(Form->IsWindowVisible());
}

TEST_F(WinControl, ControlCanvasOnADestroyedControlDropsItsContext) {
    auto* other = new TRecordingControl(Form.get());
    other->SetBounds(0, 0, 20, 20);
    other->SetParent(Form.get());
    TControlCanvas canvas(other);
    canvas.SetPixels(1, 1, clBlack);
    delete other;
    EXPECT_EQ(canvas.Control(), nullptr);
    EXPECT_EQ(canvas.HandleAllocated(), nullptr);
}

} // namespace
} // namespace vl::test
