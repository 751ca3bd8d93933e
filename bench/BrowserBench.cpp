// A folder of 500 phone photos opened in the pictures browser: how long the
// window is busy before it answers again, the longest wait a click would
// have while the thumbnails fill in, and the time until all are shown, with
// an empty thumbnail cache and again from the cache. The user scrolls to the
// end at once: how soon the last photo's thumbnail is there tells whether
// the thumbnails in sight come first. Against ImageMagick
// making the same 500 thumbnails (mogrify, with its JPEG size hint).
#include "AppGlobals.h"
#include "GuiBenchMain.h"
#include "MediaFolderModel.h"
#include "SettingsBootstrap.h"
#include "ThumbnailCache.h"
#include "ThumbnailLoader.h"
#include "clsPropertiesXML.h"
#include "ctlBrowser.h"

#include <QListView>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <benchmark/benchmark.h>

namespace {
constexpr int kPhotos = 500;
constexpr int kDistinct = 10;

struct Folder {
    QTemporaryDir root;
    QString photos;

    Folder() : photos(root.path() + "/photos") {
        qputenv("XDG_DATA_HOME", QFile::encodeName(root.path() + "/xdg"));
        qputenv("XDG_CACHE_HOME", QFile::encodeName(root.path() + "/cache"));
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        QDir().mkpath(photos);
        // Ten 12-megapixel photos of different scenes, each copied fifty times.
        for (int i = 0; i < kDistinct; ++i) {
            const QString source = root.path() + QStringLiteral("/source%1.jpg").arg(i);
            QProcess::execute("convert", {"-size", "4000x3000", "-seed", QString::number(i),
                                          "plasma:fractal", "-quality", "90", source});
            for (int copy = i; copy < kPhotos; copy += kDistinct)
                QFile::copy(source,
                            photos +
                                QStringLiteral("/IMG_%1.jpg").arg(copy, 4, 10, QLatin1Char('0')));
        }
    }
};

Folder& folder() {
    static Folder instance;
    return instance;
}

// Opens the folder and runs the window's loop until every thumbnail is in,
// timing the loop's longest pause with a 5 ms heartbeat.
void openFolder(benchmark::State& state) {
    ctlBrowser browser;
    browser.resize(400, 600);
    browser.show();
    browser.setFiles("*.jpg");
    int shown = 0;
    qint64 lastRowShown = 0;
    QElapsedTimer clock;
    QObject::connect(&browser.model()->loader(), &ThumbnailLoader::ready,
                     [&](int row, const MediaThumbnail&) {
                         ++shown;
                         if (row == kPhotos - 1 && !lastRowShown)
                             lastRowShown = clock.elapsed();
                     });
    qint64 longestPause = 0;
    qint64 lastBeat = 0;
    QTimer heartbeat;
    heartbeat.setInterval(5);
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        longestPause = std::max(longestPause, clock.elapsed() - lastBeat);
        lastBeat = clock.elapsed();
    });
    clock.start();
    browser.setPath(folder().photos);
    const qint64 listed = clock.elapsed();
    lastBeat = listed;
    heartbeat.start();
    // The user goes straight to the end of the folder.
    browser.list()->scrollToBottom();
    while (shown < kPhotos)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    state.counters["rows"] = browser.model()->rowCount();
    state.counters["listed_ms"] = double(listed);
    state.counters["longest_pause_ms"] = double(longestPause);
    state.counters["all_thumbnails_ms"] = double(clock.elapsed());
    state.counters["last_photo_ms"] = double(lastRowShown);
}

void BM_OpenFolderWithAnEmptyCache(benchmark::State& state) {
    folder();
    for (auto _ : state) {
        QDir(ThumbnailCache::root()).removeRecursively();
        openFolder(state);
    }
}
BENCHMARK(BM_OpenFolderWithAnEmptyCache)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_OpenFolderAgainFromTheCache(benchmark::State& state) {
    folder();
    for (auto _ : state)
        openFolder(state);
}
BENCHMARK(BM_OpenFolderAgainFromTheCache)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_ImageMagickMakesTheSameThumbnails(benchmark::State& state) {
    QTemporaryDir out;
    QStringList arguments{"-path",      out.path(), "-define", "jpeg:size=256x256",
                          "-thumbnail", "128x128",  "-format", "png"};
    for (const QString& name : QDir(folder().photos).entryList({"*.jpg"}))
        arguments << folder().photos + u'/' + name;
    for (auto _ : state)
        QProcess::execute("mogrify", arguments);
    state.counters["made"] = QDir(out.path()).entryList({"*.png"}).size();
}
BENCHMARK(BM_ImageMagickMakesTheSameThumbnails)->Unit(benchmark::kMillisecond)->Iterations(1);
} // namespace

int main(int argc, char** argv) {
    return runGuiBenchmarks(argc, argv);
}
