// The demo host: a main window with a draw box filling it, the way a host application places one.
//
//   vellorum_demo                          opens the window
//   vellorum_demo --screenshot FILE.png    renders the window into FILE.png and exits
//
// The host creates its components on the form in order, sets their properties and runs the form's
// one loading pass; the box then has its mapping, a data module and its tools.

#include "geometry/Vltypes.h"
#include "objects/Generators.h"
#include "objects/TvlObject.h"
#include "platform/core/WinApi.h"
#include "platform/graphics/Graphics.h"
#include "platform/services/Services.h"
#include "platform/window/Buttons.h"
#include "platform/window/Controls.h"
#include "store/Vlmm.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"
#include "tools/MouseToolBase.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QStringList>
#include <QWidget>

#include <QAbstractButton>

#include <cstdio>
#include <memory>

namespace {

// What the host draws on top of the drawing: a frame of 8 m by 6 m (in tenths of a millimetre, at
// 1:50) and a caption, in logical coordinates with the origin at the bottom left.
void DrawSheet(vl::TCustomDrawBox& Box) {
    vl::TCanvas& canvas = Box.Canvas();
    canvas.Pen().SetColor(vl::clNavy);
    canvas.Pen().SetWidth(1);
    canvas.Brush().SetStyle(vl::bsClear);
    canvas.Rectangle(0, 60000, 80000, 0);
    canvas.Font().SetColor(vl::clNavy);
    canvas.Font().SetHeight(-3000);
    canvas.TextOut(2000, 57000, QStringLiteral("Vellorum - scale 1:50, grid 1 m"));
}

// An object of the generator's size, marked by a frame; it draws in the tool's colours through the tool's
// `OnObjectDraw`, as every object does.
class TDemoObj : public vl::TvlObject {
public:
    explicit TDemoObj(vl::TvlCreator* ATool) : vl::TvlObject(ATool) {}
    std::int32_t GetWidth() override { return Generator()->Width(); }
    std::int32_t GetHeight() override { return Generator()->Height(); }
    // The mark: a frame round the object in the box's mark pen, inside its limits so that a repaint of
    // its area covers it.
    void ShapeMark() override { vl::ActScaleSet->Canvas()->Rectangle(0, 0, GetWidth(), GetHeight()); }
};

// A creator that makes one object per click, numbered, in the data module, shown at once.
class TDemoCreator : public vl::TvlCreator {
public:
    explicit TDemoCreator(vl::TComponent* AOwner) : vl::TvlCreator(AOwner) { CreateGenerator(); }
    void CreateGenerator() override { FGenerator = std::make_unique<vl::TPtGenerator>(); }
    vl::TCapClass DefaultClass() override { return &vl::NewObjectOf<TDemoObj>; }
    vl::TvlObject* SetNewObj(const vl::TPoint& CurPos) override { return PlaceNewObject(CurPos); }
};

// The pointer: a click selects the frontmost object under the mouse and draws its mark (with Shift
// it joins the selection, or leaves it when it was in it already); a click on empty paper clears the
// selection. The Delete key deletes the marked objects. A right click in any other tool comes back
// here.
class TDemoPointer : public vl::TSaveTool {
public:
    explicit TDemoPointer(vl::TComponent* AOwner) : vl::TSaveTool(AOwner) {}

    // The box's own single-layer store, or null before the box has installed it.
    vl::TvlDataModule* Store() const { return dynamic_cast<vl::TvlDataModule*>(DataModule()); }

    void LMouseDown(vl::TShiftState Shift, const vl::TPoint& CurPos) override {
        vl::TvlDataModule* dm = Store();
        if (!dm) return;
        vl::TvlObject* hit = nullptr;
        if (!dm->Empty()) {
            // The unit square at the point, as the store's own search builds it; the last object in
            // z-order that accepts it is the one painted on top.
            vl::TLimRec at = vl::LimRec(CurPos.x, CurPos.y, CurPos.x + 1, CurPos.y + 1);
            hit = dm->LastObjectWith(
                [](vl::TvlObject* Obj, void* Params) {
                    return Obj->Found(*static_cast<vl::TLimRec*>(Params));
                },
                &at);
        }
        if (Shift.Contains(vl::ssShift)) {
            if (!hit) return;
            if (hit->Selected())
                dm->UnSelect(hit);
            else
                dm->Mark(hit);
            return;
        }
        if (hit && hit->Selected() && dm->MarkCount() == 1) return;
        if (dm->MarkCount() > 0) dm->UnmarkAll();
        if (hit) dm->Mark(hit);
    }

    bool KeyDown(std::uint16_t& aKey, vl::TShiftState aShift) override {
        (void)aShift;
        vl::TvlDataModule* dm = Store();
        if (aKey != vl::VK_DELETE || !dm || dm->MarkCount() == 0) return false;
        // Deletes what is marked and flushes the restore rect that the deleted objects grew.
        dm->DeleteObjects();
        return true;
    }
};

// A palette button that shows whether its tool is current.
vl::TSpeedButton* PaletteButton(vl::TForm& Form, vl::TMouseTool& Tool, const QString& Caption, int Index) {
    auto* button = new vl::TSpeedButton(&Form);
    button->SetParent(&Form);
    button->SetBounds(4 + Index * 84, 4, 80, 26);
    button->SetCaption(Caption);
    button->ButtonWidget()->setCheckable(true);
    Tool.SetButton(button);
    Tool.OnActivate = [button](vl::TObject*) { button->ButtonWidget()->setChecked(true); };
    Tool.OnTerminate = [button](vl::TObject*) { button->ButtonWidget()->setChecked(false); };
    return button;
}

constexpr int PaletteHeight = 34;

} // namespace

int main(int argc, char** argv) {
    QString screenshot;
    {
        // The options are read before Qt starts, so that a display-less run can choose its platform.
        for (int i = 1; i < argc; ++i) {
            if (QString::fromLocal8Bit(argv[i]) == QStringLiteral("--screenshot") && i + 1 < argc) {
                screenshot = QString::fromLocal8Bit(argv[i + 1]);
            }
        }
    }
    QApplication app(argc, argv);

    vl::TForm form;
    form.SetName(QStringLiteral("MainForm"));
    form.SetCaption(QStringLiteral("Vellorum demo"));
    form.SetBounds(0, 0, 800, 600);

    auto* box = new vl::TvlDrawbox(&form);
    box->SetName(QStringLiteral("Drawbox1"));
    box->SetParent(&form);
    box->SetBounds(0, PaletteHeight, form.ClientWidth(), form.ClientHeight() - PaletteHeight);
    box->SetColor(vl::clWhite);
    box->SetAutoScroll(true);
    box->ScaleSetting().SetOrigin(vl::TOrigin::LeftBottom);
    box->ScaleSetting().SetRcp_Scale(50);
    box->Grid().SetIncHorz(10000);
    box->Grid().SetIncVert(10000);
    box->Grid().Pen().SetColor(0xE0E0E0);
    box->Grid().SetVisible(true);
    box->AfterPaint = [box](vl::TObject*) { DrawSheet(*box); };
    form.OnResize = [&form, box](vl::TObject*) {
        box->SetBounds(0, PaletteHeight, form.ClientWidth(), form.ClientHeight() - PaletteHeight);
    };

    // The tool palette: each button activates its tool; a right click returns to the pointer.
    auto* pointer = new TDemoPointer(&form);
    pointer->SetName(QStringLiteral("Pointer"));
    pointer->SetDrawForm(box);
    pointer->SetOptions(vl::TToolOptions{vl::toDefaultTool});
    pointer->SetCursor(vl::crArrow);

    auto* circles = new TDemoCreator(&form);
    circles->SetName(QStringLiteral("Circles"));
    circles->SetDrawForm(box);
    circles->Generator()->SetWidth(4000);
    circles->Generator()->SetHeight(4000);
    circles->Generator()->Pen().SetColor(vl::clMaroon);
    circles->Generator()->Brush().SetColor(0x80C0FF);
    circles->OnObjectDraw = [](vl::TvlObject* Obj) {
        vl::ActScaleSet->Canvas()->Ellipse(0, 0, Obj->GetWidth(), Obj->GetHeight());
    };

    auto* boxes = new TDemoCreator(&form);
    boxes->SetName(QStringLiteral("Boxes"));
    boxes->SetDrawForm(box);
    boxes->Generator()->SetWidth(6000);
    boxes->Generator()->SetHeight(3000);
    boxes->Generator()->SetCounter(1); // numbered apart from the circles
    boxes->Generator()->Pen().SetColor(vl::clGreen);
    boxes->Generator()->Pen().SetWidth(60);
    boxes->Generator()->Brush().SetColor(0xC0FFC0);
    boxes->OnObjectDraw = [](vl::TvlObject* Obj) {
        vl::TCanvas& canvas = *vl::ActScaleSet->Canvas();
        canvas.Rectangle(0, 0, Obj->GetWidth(), Obj->GetHeight());
        canvas.Brush().SetStyle(vl::bsClear);
        canvas.Font().SetHeight(-1200);
        canvas.TextOut(400, Obj->GetHeight() - 600, QStringLiteral("#%1").arg(Obj->ID()));
    };

    PaletteButton(form, *pointer, QStringLiteral("Pointer"), 0);
    PaletteButton(form, *circles, QStringLiteral("Circles"), 1);
    PaletteButton(form, *boxes, QStringLiteral("Boxes"), 2);

    form.BeginLoadingAll();
    form.LoadedAll();
    // Logical (0, 0) a little inside the bottom-left corner.
    box->ScaleSetting().SetVPHome(vl::Point(40, box->ClientHeight() - 40));
    box->ScaleSetting().SetVPOrg(box->ScaleSetting().VPHome());

    if (screenshot.isEmpty()) {
        form.Activate();
        return app.exec();
    }

    // What a user would do with the palette: pick a creator and click in the drawing, then pick the
    // pointer, select an object and delete it with the Delete key, and select another one.
    form.Show();
    QApplication::processEvents();
    static_cast<vl::TSpeedButton*>(circles->Button())->Click();
    for (int i = 0; i < 4; ++i) circles->SetNewObj(vl::Point(6000 + i * 9000, 30000 + (i % 2) * 8000));
    static_cast<vl::TSpeedButton*>(boxes->Button())->Click();
    boxes->SetNewObj(vl::Point(10000, 10000));
    vl::TvlObject* kept = boxes->SetNewObj(vl::Point(40000, 14000));
    vl::TvlObject* doomed = boxes->SetNewObj(vl::Point(62000, 8000));
    box->InvalidateRestoreRect();
    QApplication::processEvents();

    static_cast<vl::TSpeedButton*>(pointer->Button())->Click();
    const auto centre = [](vl::TvlObject* Obj) {
        const vl::TLimRec l = Obj->GetLimits();
        return vl::Point((l.Xmin + l.Xmax) / 2, (l.Ymin + l.Ymax) / 2);
    };
    pointer->LMouseDown(vl::TShiftState{}, centre(doomed));
    std::uint16_t key = vl::VK_DELETE;
    const bool deleted = pointer->KeyDown(key, vl::TShiftState{});
    pointer->LMouseDown(vl::TShiftState{}, centre(kept));
    QApplication::processEvents();
    vl::TvlDataModule* store = pointer->Store();
    std::printf("vellorum_demo: %d objects, %d marked (#%d)%s\n", store ? store->GetCount() : 0,
                store ? store->MarkCount() : 0, store && store->MarkCount() > 0 ? store->Marked(0)->ID() : 0,
                deleted ? ", one deleted with the Delete key" : "");

    box->Invalidate();
    box->Update();
    const QImage picture = form.Widget()->grab().toImage();
    const QFileInfo target(screenshot);
    QDir().mkpath(target.absolutePath());
    if (!picture.save(target.absoluteFilePath(), "PNG")) {
        std::fprintf(stderr, "vellorum_demo: cannot write %s\n", qPrintable(screenshot));
        return 1;
    }
    std::printf("vellorum_demo: wrote %s (%dx%d)\n", qPrintable(target.absoluteFilePath()), picture.width(),
                picture.height());
    return 0;
}
