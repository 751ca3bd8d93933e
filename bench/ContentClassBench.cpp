// Checking a 50-slide message against a content class, against writing the
// binary MMS that the check measures (the benchmarks' 50-slide message, its
// slides sent as JPEG, its recordings as AMR-NB).
// The check reads the send form already written: the binary MMS is written
// once and checked as often as the user edits, so the check must cost a
// fraction of the writing.
#include "AppGlobals.h"
#include "BenchMessage.h"
#include "ContentClassChecker.h"
#include "SettingsBootstrap.h"
#include "clsPropertiesXML.h"

#include <QDir>
#include <benchmark/benchmark.h>

namespace {
struct Fixture : BenchMessage {
    QString folder;
    SendForm form;

    Fixture() : folder(home.path() + "/send/") {
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        QDir().mkpath(folder);
        if (!form.write(manager, *message, folder))
            qFatal("the send form cannot be written: %s", qPrintable(form.error()));
    }
};

Fixture& fixture() {
    static Fixture instance;
    return instance;
}

void writeBinaryMessage(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            f.manager.SaveAsMMS(f.folder, "mms", f.message->MMSFileList(), f.message->name()));
    state.counters["bytes"] = double(f.form.bytes());
}

void checkAgainstImageRich(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        const ContentClassChecker checker(f.form);
        benchmark::DoNotOptimize(checker.report(ContentClass::ImageRich));
    }
    state.counters["parts"] = double(f.form.parts().size());
}

// For scale: the whole send form, SMIL set and binary MMS, as the window
// writes it before a check.
void writeSendForm(benchmark::State& state) {
    Fixture& f = fixture();
    SendForm form;
    for (auto _ : state)
        benchmark::DoNotOptimize(form.write(f.manager, *f.message, f.folder));
}
} // namespace

BENCHMARK(writeBinaryMessage)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(checkAgainstImageRich)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(writeSendForm)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    return BenchMessage::runBenchmarks(argc, argv);
}
