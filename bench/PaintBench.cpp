// The paint walk of a shown draw box over a large drawing: 100 000 objects in the box's own
// single-layer data module, each a 20 x 20 pixel square filled by its creator's `OnObjectDraw`.
// Two paints are measured: the whole 1920 x 1080 client area, and a 50 x 50 pixel restore rect
// flushed through the data module (the walk still visits every object, and the frame test culls all
// but those that meet the rect). The peer is plain QPainter filling the same 100 000 rectangles into
// a 1920 x 1080 RGB32 image. Memory per object is the growth of the heap in use (mallinfo2) while the
// objects are made, divided by their number. After the benchmarks a direct best-of-five timing prints
// the figures and the ratio ours / QPainter.

#include "platform/graphics/Graphics.h"
#include "platform/window/Controls.h"
#include "store/Vlmm.h"
#include "surface/Drawbox.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int BoxWidth = 1920;
constexpr int BoxHeight = 1080;
constexpr int Count = 100000;
constexpr int Side = 20;
constexpr int RestoreSide = 50;

// A square of `Side` logical units (pixels here) from its position.
class TBenchSquare : public vl::TvlObject {
public:
    explicit TBenchSquare(vl::TvlCreator* ATool) : vl::TvlObject(ATool) {}
    std::int32_t GetWidth() override { return Side; }
    std::int32_t GetHeight() override { return Side; }
};

// The creator whose draw event fills each square.
class TBenchCreator : public vl::TvlCreator {
public:
    explicit TBenchCreator(vl::TComponent* AOwner) : vl::TvlCreator(AOwner) {
        OnObjectDraw = [](vl::TvlObject* Obj) {
            vl::TCanvas& c = *vl::ActScaleSet->Canvas();
            c.Brush().SetColor(0xA06020);
            c.Brush().SetStyle(vl::bsSolid);
            c.FillRect(vl::Rect(0, 0, Obj->GetWidth(), Obj->GetHeight()));
        };
    }
    vl::TCapClass DefaultClass() override { return &vl::NewObjectOf<TBenchSquare>; }
    // Makes and stores one square at `CurPos`, as a click would, without flushing.
    vl::TvlObject* SetNewObj(const vl::TPoint& CurPos) override {
        std::unique_ptr<vl::TvlObject> made(CreateObject());
        made->SetPos(CurPos);
        made->Count();
        ObjectSetData(made.get());
        vl::TvlObject* obj = AddToDataModule(std::move(made));
        obj->SetVisible(true);
        return obj;
    }
};

// The same positions for the drawing and the peer.
const std::vector<QPoint>& Positions() {
    static const std::vector<QPoint> positions = [] {
        std::vector<QPoint> p;
        p.reserve(Count);
        std::mt19937 random(12345);
        std::uniform_int_distribution<int> x(0, BoxWidth - Side), y(0, BoxHeight - Side);
        for (int i = 0; i < Count; ++i) p.emplace_back(x(random), y(random));
        return p;
    }();
    return positions;
}

// The host: a form with a borderless box of 1920 x 1080 pixels at one logical unit per pixel, the
// creator, and the drawing.
struct THost {
    std::unique_ptr<vl::TForm> Form;
    vl::TvlDrawbox* Box = nullptr;
    vl::TvlDataModule* Dm = nullptr;
    TBenchCreator* Creator = nullptr;
    double BytesPerObject = 0;
    // Objects that the last paint asked to draw.
    int Drawn = 0;

    THost() {
        Form = std::make_unique<vl::TForm>();
        Form->SetName(QStringLiteral("BenchForm"));
        Form->SetBounds(0, 0, BoxWidth, BoxHeight);
        Box = new vl::TvlDrawbox(Form.get());
        Box->SetName(QStringLiteral("Box1"));
        Box->SetParent(Form.get());
        Box->SetBorderStyle(vl::bsNone);
        Box->SetBounds(0, 0, BoxWidth, BoxHeight);
        Box->SetColor(vl::clWhite);
        Box->ScaleSetting().SetMinUnit(vl::TLenUnits::Pixel);
        Creator = new TBenchCreator(Form.get());
        Creator->SetName(QStringLiteral("Squares"));
        Creator->FDrawForm = Box;
        auto draw = Creator->OnObjectDraw;
        Creator->OnObjectDraw = [this, draw](vl::TvlObject* Obj) {
            ++Drawn;
            draw(Obj);
        };
        Form->BeginLoadingAll();
        Form->LoadedAll();
        Dm = dynamic_cast<vl::TvlDataModule*>(Box->DataModule());
        if (!Dm) {
            std::fprintf(stderr, "PaintBench: the box installed no single-layer data module\n");
            std::exit(1);
        }
        Form->Show();
        QApplication::processEvents();
        // The box's scroll bars take their room from the client area: the box grows by as much.
        const int dw = BoxWidth - Box->ClientWidth(), dh = BoxHeight - Box->ClientHeight();
        if (dw != 0 || dh != 0) {
            Form->SetBounds(0, 0, BoxWidth + dw, BoxHeight + dh);
            Box->SetBounds(0, 0, BoxWidth + dw, BoxHeight + dh);
            QApplication::processEvents();
        }
        if (Box->ClientWidth() != BoxWidth || Box->ClientHeight() != BoxHeight) {
            std::fprintf(stderr, "PaintBench: the box's client area is %dx%d, not %dx%d\n",
                         Box->ClientWidth(), Box->ClientHeight(), BoxWidth, BoxHeight);
            std::exit(1);
        }

        const std::size_t before = mallinfo2().uordblks;
        for (const QPoint& p : Positions()) Creator->SetNewObj(vl::Point(p.x(), p.y()));
        const std::size_t after = mallinfo2().uordblks;
        BytesPerObject = double(after - before) / Count;
        if (Dm->GetCount() != Count) {
            std::fprintf(stderr, "PaintBench: the store holds %d objects, not %d\n", Dm->GetCount(), Count);
            std::exit(1);
        }
        Dm->InitRestoreRect();
        PaintAll(); // the first paint rebuilds the limits and settles the scroll range
        QApplication::processEvents();
    }

    // The whole client area invalidated and painted before returning.
    void PaintAll() {
        Drawn = 0;
        Box->InvalidateBox();
        Box->Update();
    }
    // The restore rect of 50 x 50 units in the middle flushed through the data module and painted.
    void PaintRestoreRect() {
        Drawn = 0;
        const int x = BoxWidth / 2, y = BoxHeight / 2;
        Dm->FRestoreRect = vl::LimRec(x, y, x + RestoreSide, y + RestoreSide);
        Dm->InvalidateRestoreRect();
        Box->Update();
    }
};

// Made after the application and freed before it.
std::unique_ptr<THost> TheHost;

THost& Host() {
    if (!TheHost) TheHost = std::make_unique<THost>();
    return *TheHost;
}

void PainterRects(QImage& image) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QColor fill(0x20, 0x60, 0xA0);
    for (const QPoint& p : Positions()) painter.fillRect(QRect(p.x(), p.y(), Side, Side), fill);
}

QImage MakeImage() {
    QImage image(BoxWidth, BoxHeight, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

void BM_FullPaint(benchmark::State& state) {
    THost& host = Host();
    for (auto _ : state) {
        host.PaintAll();
        state.PauseTiming();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["drawn"] = host.Drawn;
    state.SetItemsProcessed(state.iterations() * Count);
}

void BM_RestoreRectPaint(benchmark::State& state) {
    THost& host = Host();
    for (auto _ : state) {
        host.PaintRestoreRect();
        state.PauseTiming();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["drawn"] = host.Drawn;
    state.SetItemsProcessed(state.iterations() * Count);
}

void BM_QPainterRects(benchmark::State& state) {
    QImage image = MakeImage();
    for (auto _ : state) {
        PainterRects(image);
        benchmark::DoNotOptimize(image.constBits());
    }
    state.SetItemsProcessed(state.iterations() * Count);
}

BENCHMARK(BM_FullPaint)->Name("Paint/Full1920x1080/Ours")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RestoreRectPaint)->Name("Paint/RestoreRect50x50/Ours")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QPainterRects)->Name("Paint/Full1920x1080/QPainter")->Unit(benchmark::kMillisecond);

// Process CPU time in milliseconds: steadier than wall time on a loaded machine.
double CpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

template <typename F>
double BestOfFive(F&& draw) {
    double best = 1e30;
    for (int i = 0; i < 5; ++i) {
        const double start = CpuMs();
        draw();
        best = std::min(best, CpuMs() - start);
        QApplication::processEvents();
    }
    return best;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    Host(); // the drawing is made before any timing
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    THost& host = Host();
    const double full = BestOfFive([&] { host.PaintAll(); });
    const int fullDrawn = host.Drawn;
    const double restore = BestOfFive([&] { host.PaintRestoreRect(); });
    const int restoreDrawn = host.Drawn;
    QImage image = MakeImage();
    const double painter = BestOfFive([&] { PainterRects(image); });

    std::printf("Drawing: %d objects of %dx%d pixels, box client %dx%d\n", Count, Side, Side, BoxWidth,
                BoxHeight);
    std::printf("Full paint:        %.2f ms (CPU), %.0f objects/s, %d objects drawn\n", full,
                Count / (full / 1e3), fullDrawn);
    std::printf("Restore rect 50x50: %.3f ms (CPU), %.0f objects walked/s, %d objects drawn\n", restore,
                Count / (restore / 1e3), restoreDrawn);
    std::printf("Memory per object: %.1f bytes (heap in use, mallinfo2, before and after making them)\n",
                host.BytesPerObject);
    std::printf(
        "Peer: QPainter filling the same %d rectangles into a %dx%d image: %.2f ms (CPU), %.0f rects/s\n",
        Count, BoxWidth, BoxHeight, painter, Count / (painter / 1e3));
    std::printf("Ratio full paint ours/QPainter: %.2f\n", full / painter);
    TheHost.reset();
    return 0;
}
