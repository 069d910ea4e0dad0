// The demo host: a main window with a draw box filling it, the way a host application places one.
//
//   vellorum_demo                          opens the window
//   vellorum_demo --screenshot FILE.png    renders the window into FILE.png and exits
//
// The host creates its components on the form in order, sets their properties and runs the form's
// one loading pass; the box then has its mapping, a data module and its tools.

#include "geometry/Vltypes.h"
#include "objects/Generators.h"
#include "objects/PointObj.h"
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
#include "tools/Creators.h"
#include "tools/HostRoutines.h"
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
#include <vector>

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

// A creator of point objects (the library's own shapes) that places one per click, numbered, in the
// data module, shown at once.
class TShapeCreator : public vl::TvlCreator {
public:
    explicit TShapeCreator(vl::TComponent* AOwner) : vl::TvlCreator(AOwner) { CreateGenerator(); }
    void CreateGenerator() override { FGenerator = std::make_unique<vl::TPtGenerator>(); }
    vl::TvlObject* SetNewObj(const vl::TPoint& CurPos) override { return PlaceNewObject(CurPos); }
};

// The pointer: a click selects the frontmost object under the mouse and draws its mark (with Shift
// it joins the selection, or leaves it when it was in it already); a click on empty paper clears the
// selection. A single marked object shows its rotate handle; dragging the handle turns the object
// after the mouse. The Delete key deletes the marked objects; R turns them by 15 degrees round their
// hot spots (Shift+R back). A right click in any other tool comes back here.
class TDemoPointer : public vl::TSaveTool {
public:
    explicit TDemoPointer(vl::TComponent* AOwner) : vl::TSaveTool(AOwner) {}

    // The box's own single-layer store, or null before the box has installed it.
    vl::TvlDataModule* Store() const { return dynamic_cast<vl::TvlDataModule*>(DataModule()); }

    void LMouseDown(vl::TShiftState Shift, const vl::TPoint& CurPos) override {
        vl::TvlDataModule* dm = Store();
        if (!dm) return;
        if (StartTurn(CurPos)) return;
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
        if (hit) {
            hit->SetSizing(true);
            dm->Mark(hit);
        }
    }

    // A press on the rotate handle of the one marked object starts turning it.
    bool StartTurn(const vl::TPoint& CurPos) {
        vl::TvlDataModule* dm = Store();
        if (dm->MarkCount() != 1) return false;
        vl::TvlObject* obj = dm->Marked(0);
        if (!obj->GetSizing()) return false;
        const vl::TPoint local = vl::Point(CurPos.x - obj->MinX(), CurPos.y - obj->MinY());
        if (!obj->SizingHandles(local, vl::smCheck) || vl::SizingHandle != vl::szRotate) return false;
        FTurning = obj;
        FLast = CurPos;
        return true;
    }

    // While the handle is held the object turns by each step of the mouse.
    void MouseMove(vl::TShiftState Shift, const vl::TPoint& CurPos) override {
        vl::TSaveTool::MouseMove(Shift, CurPos);
        if (!FTurning) return;
        FTurning->Invalidate();
        // A paint of the marked object lets go of the handle (its handle drawing resets it), so the
        // held handle is named again before each step.
        vl::SizingHandle = vl::szRotate;
        FTurning->MovePos(vl::Point(CurPos.x - FLast.x, CurPos.y - FLast.y));
        FTurning->Invalidate();
        FLast = CurPos;
        if (vl::TvlDataModule* dm = Store()) dm->InvalidateRestoreRect();
    }

    void LMouseUp(vl::TShiftState Shift, const vl::TPoint& CurPos) override {
        vl::TSaveTool::LMouseUp(Shift, CurPos);
        if (!FTurning) return;
        FTurning = nullptr;
        vl::SizingHandle = vl::szNone;
    }

    bool KeyDown(std::uint16_t& aKey, vl::TShiftState aShift) override {
        vl::TvlDataModule* dm = Store();
        if (!dm || dm->MarkCount() == 0) return false;
        if (aKey == vl::VK_DELETE) {
            FTurning = nullptr;
            // Deletes what is marked and flushes the restore rect that the deleted objects grew.
            dm->DeleteObjects();
            return true;
        }
        if (aKey == 'R') {
            TurnMarked(aShift.Contains(vl::ssShift) ? -TurnStep : TurnStep);
            return true;
        }
        return false;
    }

    // Turns every marked object round its own position and repaints what they covered.
    void TurnMarked(double Delta) {
        vl::TvlDataModule* dm = Store();
        if (!dm) return;
        for (int i = 0; i < dm->MarkCount(); ++i) {
            vl::TvlObject* obj = dm->Marked(i);
            obj->Rotate(obj->Pos_Log(), Delta);
        }
        dm->InvalidateRestoreRect();
    }

    static constexpr double TurnStep = 3.14159265358979323846 / 12;

private:
    vl::TvlObject* FTurning = nullptr; // the object whose rotate handle is held
    vl::TPoint FLast{0, 0};
};

// A palette button that shows whether its tool is current.
vl::TSpeedButton* PaletteButton(vl::TForm& Form, vl::TMouseTool& Tool, const QString& Caption, int Index) {
    auto* button = new vl::TSpeedButton(&Form);
    button->SetParent(&Form);
    button->SetBounds(4 + Index * 74, 4, 70, 26);
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

    // The shape creators: each makes point objects of one shape; all of them can be turned.
    struct ShapeTool {
        const char* Name;
        const char* Caption;
        vl::TShapetype Shape;
        std::int32_t Width, Height;
        vl::TColor Pen, Brush;
        double Turn; // degrees that new objects start with
    };
    const ShapeTool shapeTools[] = {
        {"Rectangles", "Rectangle", vl::stRectangle, 6000, 3000, vl::clGreen, 0xC0FFC0, 0},
        {"Ellipses", "Ellipse", vl::stEllipse, 6000, 3500, vl::clMaroon, 0x80C0FF, 0},
        {"Circles", "Circle", vl::stCircle, 4000, 4000, vl::clNavy, 0xFFE0C0, 0},
        {"Rounded", "Rounded", vl::stRoundRect, 7000, 3500, vl::clPurple, 0xFFC0FF, 0},
        {"Turned", "Turned", vl::stRectangle, 6000, 2000, vl::clTeal, 0xE0FFFF, 30},
    };
    std::vector<TShapeCreator*> creators;
    for (const ShapeTool& t : shapeTools) {
        auto* tool = new TShapeCreator(&form);
        tool->SetName(QString::fromLatin1(t.Name));
        tool->SetDrawForm(box);
        vl::TCustomGenerator& gen = *tool->Generator();
        gen.SetShape(t.Shape);
        gen.SetWidth(t.Width);
        gen.SetHeight(t.Height);
        gen.SetHotspotX(t.Width / 2); // objects stand and turn on their centres
        gen.SetHotspotY(t.Height / 2);
        gen.SetOptions(vl::TGeneratorOptions{vl::goRotation});
        gen.Pen().SetColor(t.Pen);
        gen.Pen().SetWidth(40);
        gen.Brush().SetColor(t.Brush);
        gen.SetCounter(static_cast<std::uint16_t>(creators.size()));
        if (t.Turn != 0) {
            const double turn = t.Turn;
            tool->OnObjectSetData = [turn](vl::TvlObject* Obj) {
                if (auto* point = dynamic_cast<vl::TPointObj*>(Obj)) point->SetAlpha_DEG(turn);
            };
        }
        creators.push_back(tool);
    }

    // Drawing by hand: points with one click, lines with two, chains of lines until the right press,
    // and connectors between points that follow them when they move.
    auto* points = new vl::TvlPoints(&form);
    points->SetName(QStringLiteral("Points"));
    points->SetDrawForm(box);
    points->Generator()->SetShape(vl::stCircle);
    points->Generator()->SetWidth(1200);
    points->Generator()->SetHeight(1200);
    points->Generator()->SetHotspotX(600);
    points->Generator()->SetHotspotY(600);
    points->Generator()->Brush().SetColor(vl::clRed);
    points->Generator()->SetCounter(static_cast<std::uint16_t>(creators.size()));

    auto* lines = new vl::TvlLines(&form);
    lines->SetName(QStringLiteral("Lines"));
    lines->SetDrawForm(box);
    lines->Generator()->Pen().SetColor(vl::clBlack);
    lines->Generator()->Pen().SetWidth(40);
    lines->Generator()->SetCounter(static_cast<std::uint16_t>(creators.size() + 1));

    auto* chains = new vl::TvlLines(&form);
    chains->SetName(QStringLiteral("Chains"));
    chains->SetDrawForm(box);
    chains->SetPolyShape(true);
    chains->Generator()->Pen().SetColor(vl::clBlue);
    chains->Generator()->Pen().SetWidth(40);
    chains->Generator()->SetCounter(static_cast<std::uint16_t>(creators.size() + 2));

    auto* connectors = new vl::TLineDepends(&form);
    connectors->SetName(QStringLiteral("Connectors"));
    connectors->SetDrawForm(box);
    connectors->SetMasterObject(points);
    connectors->SetPolyShape(true);
    connectors->Generator()->Pen().SetColor(vl::clGreen);
    connectors->Generator()->Pen().SetWidth(60);
    connectors->Generator()->SetCounter(static_cast<std::uint16_t>(creators.size() + 3));

    int slot = 0;
    PaletteButton(form, *pointer, QStringLiteral("Pointer"), slot++);
    for (std::size_t i = 0; i < creators.size(); ++i)
        PaletteButton(form, *creators[i], QString::fromLatin1(shapeTools[i].Caption), slot++);
    PaletteButton(form, *points, QStringLiteral("Points"), slot++);
    PaletteButton(form, *lines, QStringLiteral("Line"), slot++);
    PaletteButton(form, *chains, QStringLiteral("Chain"), slot++);
    PaletteButton(form, *connectors, QStringLiteral("Connect"), slot++);

    form.BeginLoadingAll();
    form.LoadedAll();
    // Logical (0, 0) a little inside the bottom-left corner.
    box->ScaleSetting().SetVPHome(vl::Point(40, box->ClientHeight() - 40));
    box->ScaleSetting().SetVPOrg(box->ScaleSetting().VPHome());

    if (screenshot.isEmpty()) {
        form.Activate();
        return app.exec();
    }

    // What a user would do with the palette: pick each creator and click in the drawing, then pick the
    // pointer, select an object and delete it with the Delete key, select another and turn it with R.
    form.Show();
    QApplication::processEvents();
    const auto place = [&](std::size_t Tool, std::int32_t X, std::int32_t Y) {
        static_cast<vl::TSpeedButton*>(creators[Tool]->Button())->Click();
        return creators[Tool]->SetNewObj(vl::Point(X, Y));
    };
    place(0, 9000, 44000);
    place(1, 24000, 44000);
    place(2, 39000, 44000);
    place(3, 56000, 44000);
    vl::TvlObject* turned = place(4, 12000, 24000);
    vl::TvlObject* doomed = place(0, 30000, 24000);
    vl::TvlObject* kept = place(3, 50000, 22000);
    place(1, 66000, 12000);
    place(2, 8000, 9000);
    // Points joined by connectors, a line and a chain, as clicks would make them.
    static_cast<vl::TSpeedButton*>(points->Button())->Click();
    vl::TvlObject* p1 = points->SetNewObj(vl::Point(26000, 10000));
    vl::TvlObject* p2 = points->SetNewObj(vl::Point(36000, 4000));
    vl::TvlObject* p3 = points->SetNewObj(vl::Point(44000, 12000));
    static_cast<vl::TSpeedButton*>(connectors->Button())->Click();
    connectors->LinkNewObjTo(p1);
    connectors->LinkNewObjTo(p2);
    connectors->LinkNewObjTo(p3);
    connectors->RMouseDown(vl::TShiftState{}, vl::Point(0, 0));
    static_cast<vl::TSpeedButton*>(lines->Button())->Click();
    lines->SetNewObj(vl::Point(4000, 2000));
    lines->SetNewObj(vl::Point(20000, 16000));
    const vl::TPoint chain[] = {{60000, 2000}, {64000, 20000}, {72000, 20000}, {76000, 30000}};
    chains->SetPolyObjA(chain);
    // A point moved: its connectors follow.
    vl::MoveObject(p2, vl::Point(0, 4000));
    box->InvalidateRestoreRect();
    QApplication::processEvents();

    static_cast<vl::TSpeedButton*>(pointer->Button())->Click();
    const auto centre = [](vl::TvlObject* Obj) { return Obj->Pos_Log(); };
    pointer->LMouseDown(vl::TShiftState{}, centre(doomed));
    std::uint16_t key = vl::VK_DELETE;
    const bool deleted = pointer->KeyDown(key, vl::TShiftState{});
    pointer->LMouseDown(vl::TShiftState{}, centre(kept));
    key = 'R';
    for (int i = 0; i < 3; ++i) pointer->KeyDown(key, vl::TShiftState{});
    QApplication::processEvents();
    vl::TvlDataModule* store = pointer->Store();
    auto* turnedPoint = dynamic_cast<vl::TPointObj*>(turned);
    auto* keptPoint = dynamic_cast<vl::TPointObj*>(kept);
    std::printf("vellorum_demo: %d objects, %d marked (#%d)%s; turned %.1f and %.1f degrees\n",
                store ? store->GetCount() : 0, store ? store->MarkCount() : 0,
                store && store->MarkCount() > 0 ? store->Marked(0)->ID() : 0,
                deleted ? ", one deleted with the Delete key" : "",
                turnedPoint ? turnedPoint->Alpha_DEG() : 0.0, keptPoint ? keptPoint->Alpha_DEG() : 0.0);

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
