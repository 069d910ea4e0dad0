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
#include "platform/Buttons.h"
#include "platform/Controls.h"
#include "platform/Graphics.h"
#include "platform/Services.h"
#include "store/DataModBase.h"
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

#include <algorithm>
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

// The host's store of objects: a plain list in z-order that owns what it holds.
class TDemoDataMod : public vl::TvlDataMod {
public:
    explicit TDemoDataMod(vl::TComponent* AOwner) : vl::TvlDataMod(AOwner) {}
    vl::TLimRec GetLimits() override {
        vl::TLimRec l = vl::EmptyLimRec;
        for (const auto& o : FObjects) {
            const vl::TLimRec r = o->GetLimits();
            l.Xmin = std::min(l.Xmin, r.Xmin);
            l.Ymin = std::min(l.Ymin, r.Ymin);
            l.Xmax = std::max(l.Xmax, r.Xmax);
            l.Ymax = std::max(l.Ymax, r.Ymax);
        }
        return l;
    }
    void AllObjects(const vl::TAllObjectsProc& Action, void* Params) override {
        for (const auto& o : FObjects) Action(o.get(), Params);
    }
    void InitLimits() override {}
    bool Empty() override { return FObjects.empty(); }
    void LoadFromFile(const QString&) override {}
    void SaveToFile(const QString&) override {}
    int MarkCount() const override { return 0; }
    vl::TvlObject* Marked(int) const override { return nullptr; }
    void UnSelect(vl::TvlObject*) override {}
    std::uint16_t IncCounter(std::uint16_t Counter) override {
        if (Counter >= FCounters.size()) FCounters.resize(Counter + 1u, 0);
        return ++FCounters[Counter];
    }
    void Add(vl::TvlObject* AObject, std::int32_t) override { FObjects.emplace_back(AObject); }

private:
    std::vector<std::unique_ptr<vl::TvlObject>> FObjects;
    std::vector<std::uint16_t> FCounters;
};

// An object of the generator's size; it draws in the tool's colours through the tool's
// `OnObjectDraw`, as every object does.
class TDemoObj : public vl::TvlObject {
public:
    explicit TDemoObj(vl::TvlCreator* ATool) : vl::TvlObject(ATool) {}
    std::int32_t GetWidth() override { return Generator()->Width(); }
    std::int32_t GetHeight() override { return Generator()->Height(); }
};

// A creator that makes one object per click, numbered, in the data module, shown at once.
class TDemoCreator : public vl::TvlCreator {
public:
    explicit TDemoCreator(vl::TComponent* AOwner) : vl::TvlCreator(AOwner) { CreateGenerator(); }
    void CreateGenerator() override { FGenerator = std::make_unique<vl::TPtGenerator>(); }
    vl::TCapClass DefaultClass() override { return &vl::NewObjectOf<TDemoObj>; }
    vl::TvlObject* SetNewObj(const vl::TPoint& CurPos) override {
        vl::TvlObject* obj = CreateObject();
        obj->SetPos(CurPos);
        obj->Count();
        ObjectSetData(obj);
        AddToDataModule(obj);
        obj->Invalidate();
        obj->SetVisible(true);
        return obj;
    }
};

// The tool that does nothing with the mouse: the one a right click returns to.
class TDemoPointer : public vl::TSaveTool {
public:
    explicit TDemoPointer(vl::TComponent* AOwner) : vl::TSaveTool(AOwner) {}
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

    // Made after the creators, so that it and its objects go before them: objects refer to their tools.
    auto* dataModule = new TDemoDataMod(&form);
    dataModule->SetName(QStringLiteral("DataModule1"));
    dataModule->SetDrawForm(box);
    box->SetDataModule(dataModule);

    PaletteButton(form, *pointer, QStringLiteral("Pointer"), 0);
    PaletteButton(form, *circles, QStringLiteral("Circles"), 1);
    PaletteButton(form, *boxes, QStringLiteral("Boxes"), 2);

    form.BeginLoadingAll();
    form.LoadedAll();
    // Logical (0, 0) a little inside the bottom-left corner.
    box->ScaleSetting().SetVPHome(vl::Point(40, box->ClientHeight() - 40));
    box->ScaleSetting().SetVPOrg(box->ScaleSetting().VPHome());

    if (!screenshot.isEmpty()) {
        // What a user would do with the palette: pick a creator and click in the drawing.
        static_cast<vl::TSpeedButton*>(circles->Button())->Click();
        for (int i = 0; i < 4; ++i) circles->SetNewObj(vl::Point(6000 + i * 9000, 30000 + (i % 2) * 8000));
        static_cast<vl::TSpeedButton*>(boxes->Button())->Click();
        boxes->SetNewObj(vl::Point(10000, 10000));
        boxes->SetNewObj(vl::Point(40000, 14000));
    }

    if (screenshot.isEmpty()) {
        form.Activate();
        return app.exec();
    }

    form.Show();
    QApplication::processEvents();
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
