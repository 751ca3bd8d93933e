// Import of a 10,000-slide presentation made elsewhere (100 pictures and one
// sound shared by the slides, a text of its own on every slide), in the core
// and through vellumo-cli, and `info` of the message it becomes, against GNU
// tar unpacking that same message file.
#include "GuiBenchMain.h"
#include "clsMMSManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {
constexpr int kSlides = 10000;
constexpr int kPictures = 100;

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray silence(int ms) {
    const QByteArray pcm(16 * ms, '\0');
    auto le32 = [](quint32 v) { return QByteArray(reinterpret_cast<const char*>(&v), 4); };
    return "RIFF" + le32(36 + pcm.size()) + "WAVEfmt " + le32(16) +
           QByteArray::fromHex("01000100401f0000803e000002001000") + "data" + le32(pcm.size()) +
           pcm;
}

struct Fixture {
    QTemporaryDir home;
    QString set = home.path() + "/set/";
    QString message = home.path() + "/big.mms";

    Fixture() {
        qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
        QDir().mkpath(set);
        for (int i = 0; i < kPictures; ++i) {
            QImage picture(176, 144, QImage::Format_RGB32);
            picture.fill(QColor::fromHsv(i * 3, 200, 200));
            picture.save(set + QString("p%1.jpg").arg(i), "JPEG", 85);
        }
        write(set + "tone.wav", silence(2000));
        QByteArray smil = "<smil><head/><body>";
        QByteArray texts = "<mms-text-files><message>";
        for (int i = 0; i < kSlides; ++i) {
            const QByteArray n = QByteArray::number(i);
            smil += "<par dur=\"2s\"><img src=\"p" + QByteArray::number(i % kPictures) +
                    ".jpg\"/><audio src=\"tone.wav\"/><text src=\"t" + n + ".txt\"/></par>";
            texts += "<file filename=\"t" + n + ".txt\">Slide number " + n + "</file>";
        }
        write(set + "mms.smil", smil + "</body></smil>");
        write(set + "texts.xml", texts + "</message></mms-text-files>");
    }

    static int cli(const QStringList& arguments) {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(QCoreApplication::applicationDirPath() + "/vellumo-cli", arguments);
        process.waitForFinished(-1);
        return process.exitCode();
    }
};

Fixture& fixture() {
    static Fixture instance;
    return instance;
}

void importInCore(benchmark::State& state) {
    Fixture& f = fixture();
    clsMMSManager manager;
    manager.InitializeAt(f.home.path() + "/work", f.home.path() + "/archive", "message.xml");
    for (auto _ : state)
        if (!manager.ImportMMS(f.set + "mms.smil", clsMMSManager::ImportSmil))
            state.SkipWithError(qPrintable(manager.GetExportImportStatus()));
    state.counters["slides"] = kSlides;
}

void importThroughCli(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state)
        if (Fixture::cli({"import", f.set + "mms.smil", f.message}) != 0)
            state.SkipWithError("vellumo-cli import failed");
}

void infoThroughCli(benchmark::State& state) {
    Fixture& f = fixture();
    if (!QFileInfo::exists(f.message))
        Fixture::cli({"import", f.set + "mms.smil", f.message});
    for (auto _ : state)
        if (Fixture::cli({"info", f.message}) != 0)
            state.SkipWithError("vellumo-cli info failed");
}

void gnuTarUnpacksTheSameMessage(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        QTemporaryDir target;
        QProcess::execute("tar", {"xzf", f.message, "-C", target.path()});
    }
}
} // namespace

BENCHMARK(importInCore)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(importThroughCli)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(infoThroughCli)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(gnuTarUnpacksTheSameMessage)->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return runGuiBenchmarks(argc, argv);
}
