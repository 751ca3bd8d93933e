#include "AudioFixture.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <cmath>
#include <numbers>

void AudioFixture::SetUp() {
    ASSERT_TRUE(m_dir.isValid());
    Mci::install(&m_mci);
}

void AudioFixture::TearDown() {
    Mci::install(nullptr);
}

QString AudioFixture::dataFile(const QString& name) {
    return QStringLiteral(VELLUMO_SOURCE_DIR "/tests/data/audio/") + name;
}

namespace {
QByteArray runTool(const QString& tool, const QStringList& arguments, bool* ok) {
    const QString program = QStandardPaths::findExecutable(tool);
    *ok = false;
    if (program.isEmpty())
        return {};
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return {};
    *ok = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return process.readAllStandardOutput();
}
} // namespace

bool AudioFixture::ffmpeg(const QStringList& arguments) const {
    if (QStandardPaths::findExecutable("ffmpeg").isEmpty())
        return false;
    bool ok = false;
    runTool("ffmpeg", QStringList{"-v", "error", "-y"} + arguments, &ok);
    return ok;
}

QByteArray AudioFixture::ffmpegDecode(const QString& file, int channels) const {
    bool ok = false;
    const QByteArray pcm = runTool("ffmpeg",
                                   {"-v", "error", "-i", file, "-f", "s16le", "-acodec",
                                    "pcm_s16le", "-ac", QString::number(channels), "-"},
                                   &ok);
    return ok ? pcm : QByteArray();
}

QString AudioFixture::ffprobe(const QString& file, const QString& entries) const {
    bool ok = false;
    const QByteArray out =
        runTool("ffprobe",
                {"-v", "error", "-show_entries", entries, "-of", "default=nw=1:nk=1", file}, &ok);
    return ok ? QString::fromUtf8(out).trimmed() : QString();
}

QString AudioFixture::mci(const QString& command, int* error, int replySize) {
    QString reply;
    const int result = m_mci.mciSendString(command, &reply, replySize);
    if (error)
        *error = result;
    return reply;
}

PcmSound AudioFixture::ramp(const PcmFormat& format, std::int64_t frames) {
    QByteArray data(frames * format.bytesPerFrame(), Qt::Uninitialized);
    for (qsizetype i = 0; i < data.size(); ++i)
        data[i] = char((i * 7 + i / 251) & 0xFF);
    return PcmSound(format, data);
}

PcmSound AudioFixture::tone(int rate, double hz, std::int64_t ms, double amplitude) {
    const std::int64_t frames = ms * rate / 1000;
    QByteArray data(frames * 2, Qt::Uninitialized);
    auto* out = reinterpret_cast<std::int16_t*>(data.data());
    for (std::int64_t i = 0; i < frames; ++i) {
        // A voiced sound: a fundamental with two overtones, slowly swelling.
        const double t = double(i) / rate;
        const double envelope = 0.6 + 0.4 * std::sin(2 * std::numbers::pi * 3 * t);
        out[i] = std::int16_t(amplitude * envelope *
                              (0.6 * std::sin(2 * std::numbers::pi * hz * t) +
                               0.3 * std::sin(4 * std::numbers::pi * hz * t) +
                               0.1 * std::sin(6 * std::numbers::pi * hz * t)));
    }
    return PcmSound({rate, 1, 16}, data);
}

void AudioFixture::writeBytes(const QString& file, const QByteArray& bytes) {
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(bytes);
}

QByteArray AudioFixture::readBytes(const QString& file) {
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

double bestCorrelation(const QByteArray& a, const QByteArray& b, int maxLag) {
    const auto* x = reinterpret_cast<const std::int16_t*>(a.constData());
    const auto* y = reinterpret_cast<const std::int16_t*>(b.constData());
    const qsizetype n = std::min(a.size(), b.size()) / 2 - maxLag;
    double best = -1;
    for (int lag = 0; lag <= maxLag && n > 0; ++lag) {
        double xy = 0, xx = 0, yy = 0;
        for (qsizetype i = 0; i < n; ++i) {
            xy += double(x[i]) * y[i + lag];
            xx += double(x[i]) * x[i];
            yy += double(y[i + lag]) * y[i + lag];
        }
        if (xx > 0 && yy > 0)
            best = std::max(best, xy / std::sqrt(xx * yy));
    }
    return best;
}
