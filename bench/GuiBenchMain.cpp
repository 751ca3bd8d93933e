#include "GuiBenchMain.h"

#include <QApplication>
#include <benchmark/benchmark.h>

int runGuiBenchmarks(int argc, char** argv, const std::function<void()>& tearDown) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("Vellumo");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    if (tearDown)
        tearDown();
    return 0;
}
