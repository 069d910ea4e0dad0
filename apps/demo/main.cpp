// The demo host: a main window with a draw box filling it, the way a host application places one.
//
//   vellorum_demo                          opens the window
//   vellorum_demo --screenshot FILE.png    renders the window into FILE.png and exits
//
// The host creates its components on the form in order, sets their properties and runs the form's
// one loading pass; the box then has its mapping, a data module and its tools.

#include "geometry/Vltypes.h"
#include "platform/Controls.h"
#include "platform/Graphics.h"
#include "platform/Services.h"
#include "surface/Drawbox.h"
#include "surface/Grid.h"
#include "surface/ScaleSetting.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QStringList>
#include <QWidget>

#include <cstdio>

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
    box->SetBounds(0, 0, form.ClientWidth(), form.ClientHeight());
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
        box->SetBounds(0, 0, form.ClientWidth(), form.ClientHeight());
    };

    form.BeginLoadingAll();
    form.LoadedAll();
    // Logical (0, 0) a little inside the bottom-left corner.
    box->ScaleSetting().SetVPHome(vl::Point(40, box->ClientHeight() - 40));
    box->ScaleSetting().SetVPOrg(box->ScaleSetting().VPHome());

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
