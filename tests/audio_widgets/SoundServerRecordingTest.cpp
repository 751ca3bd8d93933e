#include "AppGlobals.h"
#include "DialogService.h"
#include "Mci.h"
#include "PcmSound.h"
#include "PrivateSoundServer.h"
#include "QtAudioBackend.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "WavFile.h"
#include "clsPropertiesXML.h"
#include "ctlAudioRecorder.h"

#include <QComboBox>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <cmath>
#include <numbers>

namespace {
constexpr int kToneHz = 440;

// Ten seconds of a 440 Hz tone, 8000 Hz 16-bit mono.
PcmSound tone() {
    QByteArray pcm(8000 * 10 * 2, Qt::Uninitialized);
    for (int i = 0; i < 8000 * 10; ++i) {
        const auto sample = qint16(12000 * std::sin(2 * std::numbers::pi * kToneHz * i / 8000));
        std::memcpy(pcm.data() + 2 * i, &sample, 2);
    }
    return PcmSound(PcmFormat{8000, 1, 16}, pcm);
}

int peak(const PcmSound& sound) {
    int loudest = 0;
    for (qsizetype i = 0; i + 1 < sound.data().size(); i += 2) {
        qint16 sample;
        std::memcpy(&sample, sound.data().constData() + i, 2);
        loudest = std::max(loudest, std::abs(int(sample)));
    }
    return loudest;
}

// Upward zero crossings per second: the tone's pitch, when it is the tone.
double pitch(const PcmSound& sound) {
    int crossings = 0;
    qint16 previous = 0;
    for (qsizetype i = 0; i + 1 < sound.data().size(); i += 2) {
        qint16 sample;
        std::memcpy(&sample, sound.data().constData() + i, 2);
        crossings += previous < 0 && sample >= 0;
        previous = sample;
    }
    return crossings * 1000.0 / double(sound.lengthMs());
}

// The length FFmpeg decodes, after the encoder's delay and padding are
// skipped as the file's own header says (a container's frame count would
// include them).
double decodedSeconds(const QString& file) {
    QProcess decode;
    decode.start("ffmpeg", {"-v", "error", "-i", file, "-f", "null", "-progress", "pipe:1", "-"});
    decode.waitForFinished(30000);
    const QStringList lines = QString::fromLatin1(decode.readAllStandardOutput()).split('\n');
    QString last;
    for (const QString& line : lines)
        if (line.startsWith("out_time_us="))
            last = line.mid(12);
    return last.toDouble() / 1e6;
}
} // namespace

// The recorder over Qt's sound devices and a real sound server of the test's
// own, into which a tone is played while it records. Qt connects to the
// server once per process, so the tests of a run share one server.
class SoundServerRecordingTest : public TempDataHome {
protected:
    static void SetUpTestSuite() {
        s_server = new PrivateSoundServer;
        s_started = s_server->start();
    }
    static void TearDownTestSuite() {
        delete s_server;
        s_server = nullptr;
    }
    void SetUp() override {
        ASSERT_EQ(s_started, QString());
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        m_card = QtAudioBackend::createIfAvailable();
        ASSERT_TRUE(m_card) << "Qt finds no sound output on the server";
        m_mci = std::make_unique<Mci>(*m_card);
        Mci::install(m_mci.get());
        m_recorder = std::make_unique<ctlAudioRecorder>();
        m_recorder->setSaveFolder(m_root.path() + "/Sounds");
        const QString music = m_root.path() + "/tone.wav";
        ASSERT_TRUE(WavFile::write(music, tone()));
        s_server->play(music);
        // A box the test does not expect fails it instead of waiting for a user.
        for (int i = 0; i < 4; ++i)
            DialogService::queueAnswer(QMessageBox::No);
        // The player needs a moment to connect and fill the output.
        QTest::qWait(700);
    }
    void TearDown() override {
        EXPECT_EQ(DialogService::answeredBoxes().size(), 0);
        m_recorder.reset();
        Mci::install(nullptr);
        DialogService::clear();
        TempDataHome::TearDown();
    }
    QPushButton* button(const char* name) const {
        return m_recorder->findChild<QPushButton*>(name);
    }
    void recordUntilTheDeviceStops() {
        QTest::mouseClick(button("cmdRecord"), Qt::LeftButton);
        ASSERT_TRUE(button("cmdStop")->isEnabled()) << "the recording started";
        QTRY_VERIFY_WITH_TIMEOUT(button("cmdRecord")->isEnabled(), 20000);
    }
    QString saveAs(const QString& name, int entry) {
        m_recorder->findChild<QComboBox*>("cboQuality")->setCurrentIndex(entry - 1);
        m_recorder->findChild<QLineEdit*>("txtName")->setText(name);
        return m_recorder->save() ? m_recorder->savedFile() : QString();
    }
    static PcmSound read(const QString& wav) {
        PcmSound sound;
        EXPECT_EQ(WavFile::read(wav, sound), WavFile::Error::None) << wav.toStdString();
        return sound;
    }

    static inline PrivateSoundServer* s_server = nullptr;
    static inline QString s_started;
    std::unique_ptr<AudioBackend> m_card;
    std::unique_ptr<Mci> m_mci;
    std::unique_ptr<ctlAudioRecorder> m_recorder;
};

TEST_F(SoundServerRecordingTest, InputRecordsTheTonePlayedForTwoSecondsAndItSavesInEachKind) {
    m_recorder->SetMaxRecordTime(2000);
    QTest::mouseClick(button("cmdInput"), Qt::LeftButton);
    recordUntilTheDeviceStops();

    const PcmSound wav = read(saveAs("tone", 1));
    EXPECT_NEAR(double(wav.lengthMs()), 2000, 100);
    EXPECT_GT(peak(wav), 6000) << "the tone, not silence";
    EXPECT_NEAR(pitch(wav), kToneHz, kToneHz * 0.05);

    const QString amr = saveAs("tone", 2);
    ASSERT_TRUE(amr.endsWith("tone.amr")) << amr.toStdString();
    EXPECT_NEAR(decodedSeconds(amr), 2.0, 0.1);
    const QString mp3 = saveAs("tone", 5);
    ASSERT_TRUE(mp3.endsWith("tone.mp3")) << mp3.toStdString();
    EXPECT_NEAR(decodedSeconds(mp3), 2.0, 0.1);
}

TEST_F(SoundServerRecordingTest, TheMicrophoneRecordsThroughTheServerAndTheRecordingPlaysBack) {
    m_recorder->SetMaxRecordTime(1000);
    recordUntilTheDeviceStops();
    const PcmSound wav = read(saveAs("voice", 1));
    EXPECT_NEAR(double(wav.lengthMs()), 1000, 50);
    EXPECT_GT(peak(wav), 6000);

    QTest::mouseClick(button("cmdPlay"), Qt::LeftButton);
    EXPECT_TRUE(button("cmdStop")->isEnabled()) << "the server took the sound to play";
    QTRY_VERIFY_WITH_TIMEOUT(button("cmdRecord")->isEnabled(), 10000);
}

// Last of the suite: the server is gone after it.
TEST_F(SoundServerRecordingTest, PullingTheServerAwayStopsTheRecordingAndKeepsWhatItHad) {
    m_recorder->SetMaxRecordTime(60000);
    QTest::mouseClick(button("cmdRecord"), Qt::LeftButton);
    ASSERT_TRUE(button("cmdStop")->isEnabled());
    // A fresh server takes a while to deliver; the meter tells when sound arrives.
    QTRY_VERIFY_WITH_TIMEOUT(m_recorder->findChild<QProgressBar*>("prgLevel")->value() > 0, 15000);
    QTest::qWait(1000);
    s_server->kill();
    QTRY_VERIFY_WITH_TIMEOUT(button("cmdRecord")->isEnabled(), 15000);

    const PcmSound wav = read(saveAs("cut_short", 1));
    EXPECT_GT(wav.lengthMs(), 500);
    EXPECT_LT(wav.lengthMs(), 10000);
    EXPECT_GT(peak(wav), 6000);
}
