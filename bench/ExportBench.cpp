// Export of a 50-slide message (a background photograph, a picture, a text and
// a three-second recording on every slide) as a SMIL set, and the parts the
// time goes to: rendering a slide, encoding its JPEG, converting its sound.
#include "AmrConverter.h"
#include "BenchMessage.h"
#include "ImageWriter.h"
#include "SlideRenderer.h"
#include "clsMMSManager.h"

#include <QDir>
#include <QPainter>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {
using Fixture = BenchMessage;
constexpr int kSlides = BenchMessage::kSlides;

Fixture& fixture() {
    static Fixture instance;
    return instance;
}

void exportMessage(benchmark::State& state) {
    Fixture& f = fixture();
    const QString out = f.home.path() + "/out/";
    QDir().mkpath(out);
    for (auto _ : state)
        benchmark::DoNotOptimize(f.manager.ExportMMS(*f.message, 1, 0, out + "mms.smil", true));
    state.counters["slides"] = kSlides;
}

void renderSlide(benchmark::State& state) {
    Fixture& f = fixture();
    const SlideRenderer renderer(f.manager.GetWorkFolderPath(), QSize(160, 120));
    for (auto _ : state)
        benchmark::DoNotOptimize(renderer.render(f.message->Slides().Item(1).DrawObjects()));
}

void encodeSlideJpeg(benchmark::State& state) {
    Fixture& f = fixture();
    const QImage slide = SlideRenderer(f.manager.GetWorkFolderPath(), QSize(160, 120))
                             .render(f.message->Slides().Item(1).DrawObjects());
    const QString target = f.home.path() + "/one.jpg";
    for (auto _ : state)
        ImageWriter::write(slide, ImageWriter::Jpeg, target, ImageWriter::Settings{});
}

void convertSoundToAmr(benchmark::State& state) {
    Fixture& f = fixture();
    const QString source = f.manager.GetWorkFolderPath() + "A.wav";
    const QString target = f.home.path() + "/one.amr";
    for (auto _ : state)
        benchmark::DoNotOptimize(AmrConverter::wav2amr(source, target));
}
} // namespace

BENCHMARK(exportMessage)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(renderSlide)->Unit(benchmark::kMicrosecond);
BENCHMARK(encodeSlideJpeg)->Unit(benchmark::kMicrosecond);
BENCHMARK(convertSoundToAmr)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    return BenchMessage::runBenchmarks(argc, argv);
}
