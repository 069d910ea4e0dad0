// The raster device against plain QPainter on the same RGB32 image: 100 000 one-pixel lines and
// 100 000 filled, outlined rectangles, the same random geometry for both. Our device follows the
// platform's exact rules (excluded end points and edges, per-pixel raster modes); QPainter is the
// peer. After the benchmarks, a direct best-of-five timing prints the ratio ours / QPainter.

#include "platform/gdi/Gdi.h"

#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

namespace {

constexpr int Size = 1000;
constexpr int Count = 100000;

struct TGeometry {
    std::vector<QLine> Lines;
    std::vector<QRect> Rects; // left, top, right, bottom as in the platform (right/bottom exclusive)
};

const TGeometry& Geometry() {
    static const TGeometry geometry = [] {
        TGeometry g;
        std::mt19937 random(12345);
        std::uniform_int_distribution<int> coord(0, Size - 1), extent(2, 50);
        for (int i = 0; i < Count; ++i)
            g.Lines.emplace_back(coord(random), coord(random), coord(random), coord(random));
        for (int i = 0; i < Count; ++i) {
            const int l = coord(random), t = coord(random);
            g.Rects.emplace_back(QPoint(l, t), QPoint(l + extent(random), t + extent(random)));
        }
        return g;
    }();
    return geometry;
}

QImage MakeImage() {
    QImage image(Size, Size, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

void OursLines(QImage& image) {
    vl::HDC dc = vl::CreateImageDC(&image);
    for (const QLine& l : Geometry().Lines) {
        vl::MoveToEx(dc, l.x1(), l.y1());
        vl::LineTo(dc, l.x2(), l.y2());
    }
    vl::DeleteDC(dc);
}

void PainterLines(QImage& image) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(Qt::black, 0));
    for (const QLine& l : Geometry().Lines) painter.drawLine(l);
}

void OursRects(QImage& image) {
    vl::HDC dc = vl::CreateImageDC(&image);
    vl::HBRUSH brush = vl::CreateSolidBrush(vl::RGB(0x20, 0x60, 0xA0));
    vl::SelectObject(dc, brush);
    for (const QRect& r : Geometry().Rects) vl::Rectangle(dc, r.left(), r.top(), r.right(), r.bottom());
    vl::SelectObject(dc, vl::GetStockObject(vl::WHITE_BRUSH));
    vl::DeleteObject(brush);
    vl::DeleteDC(dc);
}

void PainterRects(QImage& image) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(Qt::black, 0));
    painter.setBrush(QColor(0xA0, 0x60, 0x20));
    // The same pixels: the outline through the border pixels' centres, right and bottom excluded.
    for (const QRect& r : Geometry().Rects)
        painter.drawRect(r.left(), r.top(), r.right() - r.left() - 1, r.bottom() - r.top() - 1);
}

template <void (*Draw)(QImage&)>
void Run(benchmark::State& state) {
    QImage image = MakeImage();
    for (auto _ : state) {
        Draw(image);
        benchmark::DoNotOptimize(image.constBits());
    }
    state.SetItemsProcessed(state.iterations() * Count);
}

BENCHMARK(Run<OursLines>)->Name("Lines/Ours")->Unit(benchmark::kMillisecond);
BENCHMARK(Run<PainterLines>)->Name("Lines/QPainter")->Unit(benchmark::kMillisecond);
BENCHMARK(Run<OursRects>)->Name("FilledRects/Ours")->Unit(benchmark::kMillisecond);
BENCHMARK(Run<PainterRects>)->Name("FilledRects/QPainter")->Unit(benchmark::kMillisecond);

// Process CPU time in milliseconds: steadier than wall time on a loaded machine.
double CpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

double BestOfFive(void (*draw)(QImage&)) {
    QImage image = MakeImage();
    double best = 1e30;
    for (int i = 0; i < 5; ++i) {
        const double start = CpuMs();
        draw(image);
        best = std::min(best, CpuMs() - start);
    }
    return best;
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    const double oursLines = BestOfFive(OursLines), painterLines = BestOfFive(PainterLines);
    const double oursRects = BestOfFive(OursRects), painterRects = BestOfFive(PainterRects);
    std::printf("100000 one-pixel lines:    ours %.2f ms, QPainter %.2f ms (CPU), ratio ours/QPainter %.2f\n",
                oursLines, painterLines, oursLines / painterLines);
    std::printf("100000 filled rectangles:  ours %.2f ms, QPainter %.2f ms (CPU), ratio ours/QPainter %.2f\n",
                oursRects, painterRects, oursRects / painterRects);
    return 0;
}
