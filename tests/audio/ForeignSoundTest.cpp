#include "AudioFixture.h"
#include "ProgramRun.h"
#include "WavFile.h"
#include "WavHeader.h"
#include "WavTrimmer.h"
#include "modPlaySound.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QStandardPaths>
#include <QtEndian>

namespace {
bool sox(const QStringList& arguments) {
    if (QStandardPaths::findExecutable("sox").isEmpty())
        return false;
    QProcess process;
    process.start("sox", arguments);
    return process.waitForFinished(60000) && process.exitCode() == 0;
}

// The peak memory of this process so far, in kB.
qint64 peakMemoryKb() {
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    return -1;
}

QByteArray le32(quint32 v) {
    char b[4];
    qToLittleEndian(v, b);
    return QByteArray(b, 4);
}
} // namespace

using ForeignSoundTest = AudioFixture;

TEST_F(ForeignSoundTest, EveryWavLayoutIsMeasuredAndCutLikeSoxDoes) {
    if (QStandardPaths::findExecutable("sox").isEmpty())
        GTEST_SKIP() << "sox is not installed";
    struct Layout {
        const char* name;
        QStringList options;
        const char* info;
    };
    const QList<Layout> layouts{
        {"s24.wav", {"-r", "22050", "-b", "24", "-c", "1"}, "WAV;1500;22050;24"},
        {"s32.wav", {"-r", "44100", "-b", "32", "-c", "2"}, "WAV;1500;44100;32"},
        {"float.wav", {"-r", "48000", "-e", "floating-point", "-b", "32"}, "WAV;1500;48000;32"},
        {"mulaw.wav", {"-r", "8000", "-e", "mu-law"}, "WAV;1500;8000;8"},
        {"alaw.wav", {"-r", "8000", "-e", "a-law"}, "WAV;1500;8000;8"},
        {"six.wav", {"-r", "44100", "-b", "16", "-c", "6"}, "WAV;1500;44100;16"},
        {"ima.wav", {"-r", "8000", "-e", "ima-adpcm"}, "WAV;1500;8000;4"},
        {"ms.wav", {"-r", "8000", "-e", "ms-adpcm"}, "WAV;1500;8000;4"},
    };
    for (const Layout& layout : layouts) {
        const QString file = path(layout.name);
        ASSERT_TRUE(sox(QStringList{"-n"} + layout.options +
                        QStringList{file, "synth", "1.5", "sine", "440"}))
            << layout.name;
        EXPECT_EQ(modPlaySound::GetSoundInfo(file), layout.info) << layout.name;
        WavHeader header;
        ASSERT_EQ(header.read(file), WavHeader::Error::None);
        const QString cut = path(QStringLiteral("cut_%1").arg(layout.name));
        const QString error = WavTrimmer::trim(file, cut, 100, 600);
        if (!header.hasWholeFrames()) {
            // Frames cannot be cut out of ADPCM blocks; the refusal says why.
            EXPECT_TRUE(error.contains("ADPCM")) << error.toStdString();
            EXPECT_FALSE(QFile::exists(cut));
            continue;
        }
        ASSERT_EQ(error, QString()) << layout.name;
        // sox cuts the same frames: both decode to the same samples, in the same layout.
        const QString reference = path(QStringLiteral("sox_%1").arg(layout.name));
        ASSERT_TRUE(sox({file, reference, "trim", "0.1", "=0.6"}));
        const int channels = header.channels() > 2 ? 2 : header.channels();
        EXPECT_EQ(ffmpegDecode(cut, channels), ffmpegDecode(reference, channels)) << layout.name;
        EXPECT_EQ(ffprobe(cut, "stream=codec_name,channels,sample_rate"),
                  ffprobe(reference, "stream=codec_name,channels,sample_rate"))
            << layout.name;
    }
    // A sound in another coding plays as what it decodes to.
    int error = 0;
    mci("open waveaudio!" + path("mulaw.wav") + " alias m", &error);
    ASSERT_EQ(error, 0);
    mci("play m", &error);
    EXPECT_EQ(error, 0);
    m_backend.advance(2000);
    EXPECT_EQ(m_backend.played(), ffmpegDecode(path("mulaw.wav"), 1));
}

TEST_F(ForeignSoundTest, AnHourLongRecordingIsMeasuredAndCutWithoutReadingItWhole) {
    // 2 GB of silence at 44100 Hz stereo, as a sparse file: its header says
    // all, and a cut from it needs only the frames cut.
    const qint64 dataBytes = 2000LL * 1000 * 1000;
    QByteArray head = "RIFF" + le32(quint32(36 + dataBytes)) + "WAVEfmt " + le32(16);
    head += QByteArray("\x01\x00\x02\x00", 4) + le32(44100) + le32(44100 * 4);
    head += QByteArray("\x04\x00\x10\x00", 4) + "data" + le32(quint32(dataBytes));
    QFile big(path("hours.wav"));
    ASSERT_TRUE(big.open(QIODevice::WriteOnly) && big.write(head) == head.size() &&
                big.resize(head.size() + dataBytes));
    big.close();
    const qint64 before = peakMemoryKb();
    const qint64 lengthMs = (dataBytes / 4 * 1000 + 22050) / 44100;
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("hours.wav")),
              QStringLiteral("WAV;%1;44100;16").arg(lengthMs));
    ASSERT_EQ(WavTrimmer::trim(path("hours.wav"), path("minute.wav"), 5000000, 5060000), QString());
    EXPECT_EQ(QFileInfo(path("minute.wav")).size(), 44 + 60 * 44100 * 4);
    // Less than a tenth of the file came into memory.
    EXPECT_LT(peakMemoryKb() - before, dataBytes / 1024 / 10);
}

TEST_F(ForeignSoundTest, MeasuringNeverWaitsForASoundServerThatDoesNotAnswer) {
    // A sound server socket that takes connections and never says a word.
    QLocalServer deaf;
    ASSERT_TRUE(deaf.listen(path("native")));
    QList<QLocalSocket*> held;
    QObject::connect(&deaf, &QLocalServer::newConnection,
                     [&] { held << deaf.nextPendingConnection(); });
    ASSERT_TRUE(WavFile::write(path("a.wav"), tone(8000, 440, 1000)));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("VELLUMO_AUDIO");
    environment.insert("PULSE_SERVER", "unix:" + path("native"));
    QProcess cli;
    cli.setProcessEnvironment(environment);
    cli.start(cliProgram(), {"sound-info", path("a.wav")});
    // The server's own timeout is 30 s; the answer must come long before.
    QDeadlineTimer deadline(15000);
    while (cli.state() != QProcess::NotRunning && !deadline.hasExpired()) {
        cli.waitForFinished(50);
        QCoreApplication::processEvents();
    }
    ASSERT_EQ(cli.state(), QProcess::NotRunning) << "sound-info waited for the sound server";
    EXPECT_EQ(cli.readAllStandardOutput().trimmed(), "WAV;1000;8000;16");
}

TEST_F(ForeignSoundTest, Mp3sLongerThanTwentyMinutesMeasureExactly) {
    if (!ffmpeg({"-f", "lavfi", "-i", "sine=d=1290:sample_rate=8000", "-ac", "1", "-b:a", "8k",
                 path("long.mp3")}))
        GTEST_SKIP() << "ffmpeg is not installed";
    // ffmpeg's own decoder gives the reference: 1290 s of 8000 Hz mono samples.
    EXPECT_EQ(ffmpegDecode(path("long.mp3"), 1).size(), 1290LL * 8000 * 2);
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("long.mp3")), "MP3;1290000;-1;-1");
}
