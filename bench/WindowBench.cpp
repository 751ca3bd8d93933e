// The main window on a 200-slide message: opening it to a painted window with
// its thumbnails, against GNU tar unpacking the same file, and each slide
// command on it.
#include "AppGlobals.h"
#include "FileCommands.h"
#include "GuiBenchMain.h"
#include "MessageDocument.h"
#include "SettingsBootstrap.h"
#include "clsPropertiesXML.h"
#include "frmMain.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <memory>

namespace {
constexpr int kSlides = 200;

struct Fixture {
    QTemporaryDir home;
    QString message;
    std::unique_ptr<frmMain> window;

    Fixture() {
        qputenv("XDG_DATA_HOME", QFile::encodeName(home.path() + "/xdg"));
        message = home.path() + "/big.mms";
        // Built the way a user's script builds one.
        QStringList arguments{"new", message};
        const QString background =
            QCoreApplication::applicationDirPath() + "/archive/Backgrounds/sky_gradient.jpg";
        for (int i = 1; i <= kSlides; ++i)
            arguments << "--slide"
                      << "1000"
                      << "--background" << background << "--slide-text"
                      << QString("Slide %1").arg(i);
        QProcess::execute(QCoreApplication::applicationDirPath() + "/vellumo-cli", arguments);
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        AppGlobals::settings()->SetProp("preferences", "AskNewSlide", "0");
        AppGlobals::settings()->SetProp("preferences", "AskDeleteSlide", "0");
        window = std::make_unique<frmMain>();
        window->show();
    }
};

Fixture& fixture() {
    static Fixture instance;
    return instance;
}

void paintNow(frmMain& window) {
    QCoreApplication::processEvents();
    window.grab();
}

void BM_OpenToAPaintedWindow(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        f.window->fileCommands()->open(f.message);
        paintNow(*f.window);
    }
    state.counters["slides"] = f.window->document().slideCount();
}
BENCHMARK(BM_OpenToAPaintedWindow)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_GnuTarUnpacksTheSameFile(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        QTemporaryDir target;
        QProcess::execute("tar", {"xzf", f.message, "-C", target.path()});
    }
}
BENCHMARK(BM_GnuTarUnpacksTheSameFile)->Unit(benchmark::kMillisecond)->Iterations(5);

// One slide command, undone again so every run meets the same message.
template <typename Command> void slideCommand(benchmark::State& state, Command command) {
    Fixture& f = fixture();
    f.window->fileCommands()->open(f.message);
    MessageDocument& document = f.window->document();
    document.setCurrentSlide(kSlides / 2);
    for (auto _ : state) {
        command(document);
        paintNow(*f.window);
        state.PauseTiming();
        document.undoStack().undo();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
}

void BM_AppendSlide(benchmark::State& state) {
    slideCommand(state, [](MessageDocument& d) { d.appendSlide(); });
}
void BM_InsertSlide(benchmark::State& state) {
    slideCommand(state, [](MessageDocument& d) { d.insertSlideBefore(d.currentSlide()); });
}
void BM_DuplicateSlide(benchmark::State& state) {
    slideCommand(state, [](MessageDocument& d) { d.duplicateSlideAfter(d.currentSlide()); });
}
void BM_DeleteSlide(benchmark::State& state) {
    slideCommand(state, [](MessageDocument& d) { d.deleteSlide(d.currentSlide()); });
}
void BM_MoveSlide(benchmark::State& state) {
    slideCommand(state, [](MessageDocument& d) { d.moveSlide(d.currentSlide(), 1); });
}
void BM_TypeIntoSlideText(benchmark::State& state) {
    slideCommand(state, [](MessageDocument& d) {
        d.endFieldVisit();
        d.setSlideText("typed");
    });
}
BENCHMARK(BM_AppendSlide)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_InsertSlide)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_DuplicateSlide)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_DeleteSlide)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_MoveSlide)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_TypeIntoSlideText)->Unit(benchmark::kMillisecond)->Iterations(10);
} // namespace

int main(int argc, char** argv) {
    return runGuiBenchmarks(argc, argv, [] { fixture().window.reset(); });
}
