// GIF encoding speed: our optimal palette, mapping and LZW encoder against
// ImageMagick's convert doing the same job (256-colour palette, with and
// without Floyd-Steinberg dithering) on the same photograph-like pictures.
// The convert runs include its start-up, as a user running it per picture
// pays it; imageMagickStartAndRead measures that share on its own.
#include "cDIBSectionSave.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdlib>

namespace {
QTemporaryDir& folder() {
    static QTemporaryDir instance;
    return instance;
}

// A plasma fractal from ImageMagick: smooth gradients and fine noise, as in a
// photograph.
QString input(int width, int height) {
    const QString file = folder().filePath(QString("plasma%1x%2.png").arg(width).arg(height));
    if (!QFile::exists(file)) {
        const int exitCode =
            QProcess::execute("convert", {"-size", QString("%1x%2").arg(width).arg(height), "-seed",
                                          "1", "plasma:fractal", "-depth", "8", file});
        if (exitCode != 0) {
            fprintf(stderr, "cannot run ImageMagick's convert\n");
            std::exit(1);
        }
    }
    return file;
}

void ours(benchmark::State& state) {
    const QImage picture(input(int(state.range(0)), int(state.range(1))));
    GifOptions options;
    options.errorDiffusion = state.range(2) != 0;
    const QString output = folder().filePath("ours.gif");
    for (auto _ : state)
        cDIBSectionSave::SaveStdPicture(picture, output, options);
}

void imageMagick(benchmark::State& state) {
    const QString source = input(int(state.range(0)), int(state.range(1)));
    const QString dither = state.range(2) != 0 ? "FloydSteinberg" : "None";
    const QString output = folder().filePath("convert.gif");
    for (auto _ : state)
        if (QProcess::execute("convert", {source, "-dither", dither, "-colors", "256", output}) !=
            0)
            state.SkipWithError("convert failed");
}

// What convert spends before any quantising: starting, reading the PNG and
// writing nothing. Subtracting it gives the encoding work alone.
void imageMagickStartAndRead(benchmark::State& state) {
    const QString source = input(int(state.range(0)), int(state.range(1)));
    for (auto _ : state)
        if (QProcess::execute("convert", {source, "null:"}) != 0)
            state.SkipWithError("convert failed");
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"w", "h", "dither"});
    for (int dither : {1, 0}) {
        benchmark->Args({640, 480, dither});
        benchmark->Args({176, 144, dither});
    }
    benchmark->Unit(benchmark::kMillisecond)->UseRealTime();
}
} // namespace

BENCHMARK(ours)->Apply(sizes);
BENCHMARK(imageMagick)->Apply(sizes);
BENCHMARK(imageMagickStartAndRead)
    ->ArgNames({"w", "h"})
    ->Args({640, 480})
    ->Args({176, 144})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
