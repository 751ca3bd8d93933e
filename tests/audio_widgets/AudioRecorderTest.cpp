#include "AppGlobals.h"
#include "DialogService.h"
#include "FakeClock.h"
#include "Mci.h"
#include "NullAudioBackend.h"
#include "PcmSound.h"
#include "QtPrinters.h"
#include "ScriptedAudioBackend.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "WavFile.h"
#include "clsPropertiesXML.h"
#include "ctlAudioRecorder.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <numbers>

namespace {
// Two seconds of a loud 440 Hz tone at 8000 Hz, 16-bit mono.
QByteArray microphoneTone() {
    QByteArray pcm(8000 * 2 * 2, Qt::Uninitialized);
    for (int i = 0; i < 8000 * 2; ++i) {
        const auto sample = qint16(12000 * std::sin(2 * std::numbers::pi * 440 * i / 8000));
        std::memcpy(pcm.data() + 2 * i, &sample, 2);
    }
    return pcm;
}
} // namespace

// The recorder on the scripted sound card, with its own settings and clock.
class AudioRecorderTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        Mci::install(&m_mci);
        m_mci.setTrace([this](const QString& command) { m_sent << command; });
        m_card.setMicrophone(microphoneTone());
        m_recorder = std::make_unique<ctlAudioRecorder>();
        m_recorder->setSaveFolder(m_root.path() + "/work/Sounds");
    }
    void TearDown() override {
        m_recorder.reset();
        Mci::install(nullptr);
        DialogService::clear();
        TempDataHome::TearDown();
    }
    QPushButton* button(const char* name) const {
        return m_recorder->findChild<QPushButton*>(name);
    }
    QLineEdit* name() const { return m_recorder->findChild<QLineEdit*>("txtName"); }
    void chooseQuality(int entry) {
        m_recorder->findChild<QComboBox*>("cboQuality")->setCurrentIndex(entry - 1);
    }
    // Records for the given time and waits until the recorder has seen the stop.
    void recordFor(qint64 ms) {
        QTest::mouseClick(button("cmdRecord"), Qt::LeftButton);
        m_card.advance(ms);
        QTest::mouseClick(button("cmdStop"), Qt::LeftButton);
        QTRY_VERIFY(button("cmdRecord")->isEnabled());
    }
    QString saveFolder() const { return m_root.path() + "/work/Sounds/"; }

    FakeClock m_clock{1000, QDateTime(QDate(2026, 3, 7), QTime(9, 5, 4))};
    ScopedClock m_useClock{m_clock};
    ScriptedAudioBackend m_card;
    Mci m_mci{m_card};
    QStringList m_sent;
    std::unique_ptr<ctlAudioRecorder> m_recorder;
};

TEST_F(AudioRecorderTest, ARecordingIsStartedStoppedAndPlayedWithTheExactCommands) {
    recordFor(1000);
    EXPECT_EQ(m_sent.mid(0, 4),
              QStringList({"close mysound", "open new type waveaudio alias mysound buffer 9",
                           "set mysound time format ms alignment 2 channels 1 bitspersample 16 "
                           "samplespersec 8000 bytespersec 16000",
                           "record mysound to 300000"}))
        << "the default limit is five minutes, kept by the device";
    EXPECT_TRUE(m_sent.contains("status mysound mode"));
    EXPECT_TRUE(m_sent.contains("stop mysound"));
    EXPECT_EQ(name()->text(), "R_260307_090504");
    EXPECT_TRUE(m_recorder->hasUnsavedRecording());

    m_sent.clear();
    QTest::mouseClick(button("cmdPlay"), Qt::LeftButton);
    EXPECT_TRUE(m_sent.contains("play mysound from 1"));
    EXPECT_FALSE(button("cmdRecord")->isEnabled()) << "no new recording while one plays";
    m_card.advance(500);
    QTRY_COMPARE(m_recorder->findChild<QLabel*>("lblElapsed")->text().right(1), QString("s"));
}

TEST_F(AudioRecorderTest, SavingUsesTheNameWithUnderscoresAndAsksBeforeReplacing) {
    recordFor(1000);
    name()->setText("my greeting");
    ASSERT_TRUE(m_recorder->save());
    const QString saved = saveFolder() + "my_greeting.wav";
    EXPECT_EQ(m_recorder->savedFile(), saved);
    PcmSound sound;
    ASSERT_EQ(WavFile::read(saved, sound), WavFile::Error::None);
    EXPECT_EQ(sound.format(), (PcmFormat{8000, 1, 16}));
    EXPECT_NEAR(double(sound.lengthMs()), 1000, 50);

    // Saving again asks; No keeps the file as it was.
    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_FALSE(m_recorder->save());
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].text,
              "The file my_greeting.wav already exists.\nDo you want to replace it?");

    // A name that would leave the folder is refused.
    name()->setText("../escape");
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_FALSE(m_recorder->save());
    EXPECT_FALSE(QFileInfo::exists(m_root.path() + "/work/escape.wav"));
}

TEST_F(AudioRecorderTest, TheChosenRangeIsSavedSampleExactly) {
    recordFor(2000);
    m_recorder->SetStartEndTime(250, 1250);
    name()->setText("cut");
    ASSERT_TRUE(m_recorder->save());
    PcmSound sound;
    ASSERT_EQ(WavFile::read(saveFolder() + "cut.wav", sound), WavFile::Error::None);
    EXPECT_EQ(sound.frames(), 8000);
}

TEST_F(AudioRecorderTest, TheAmrEntryRecordsForPhonesAndOkHandsTheFileOn) {
    AppGlobals::settings()->SetProp("recording", "Quality_3", "1;44100;88200;1;16");
    chooseQuality(2);
    recordFor(1000);
    EXPECT_TRUE(m_sent.contains("set mysound time format ms alignment 2 channels 1 bitspersample "
                                "16 samplespersec 8000 bytespersec 16000"))
        << "entry 2 records the built-in preset whatever the settings hold";
    name()->setText("hello");
    QSignalSpy finished(m_recorder.get(), &ctlAudioRecorder::recordingFinished);
    QTest::mouseClick(button("cmdOK"), Qt::LeftButton);
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0], QVariantList({saveFolder(), QString("hello.amr")}));
    EXPECT_TRUE(QFileInfo::exists(saveFolder() + "amrwav/hello.wav"));
    QProcess probe;
    probe.start("ffprobe", {"-v", "error", "-show_entries", "stream=codec_name,sample_rate", "-of",
                            "csv=p=0", saveFolder() + "hello.amr"});
    ASSERT_TRUE(probe.waitForFinished(30000));
    EXPECT_EQ(QString::fromUtf8(probe.readAllStandardOutput()).trimmed(), "amr_nb,8000");
}

TEST_F(AudioRecorderTest, SetupRunsTheMixerOfTheSettingsAndSaysWhenItIsMissing) {
    AppGlobals::settings()->SetProp("recording", "MixerCommand", "no-such-mixer-program -t 4");
    DialogService::queueAnswer(QMessageBox::Ok);
    QTest::mouseClick(button("cmdSetup"), Qt::LeftButton);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].text,
              "The mixer no-such-mixer-program could not be started. Is it installed?");

    const QString marker = m_root.path() + "/mixer-ran";
    AppGlobals::settings()->SetProp("recording", "MixerCommand", "touch \"" + marker + "\"");
    QTest::mouseClick(button("cmdSetup"), Qt::LeftButton);
    QTRY_VERIFY(QFileInfo::exists(marker));
    EXPECT_EQ(DialogService::answeredBoxes().size(), 1) << "a mixer that starts says nothing";
}

TEST_F(AudioRecorderTest, TheHighQualityIsAnMp3OfTheEncodersBitRate) {
    chooseQuality(5);
    recordFor(1000);
    EXPECT_TRUE(m_sent.contains("set mysound time format ms alignment 4 channels 2 bitspersample "
                                "16 samplespersec 44100 bytespersec 176400"))
        << m_sent.join('|').toStdString();
    name()->setText("song");
    ASSERT_TRUE(m_recorder->save());
    EXPECT_EQ(m_recorder->savedFile(), saveFolder() + "song.mp3");
    QProcess probe;
    probe.start("ffprobe",
                {"-v", "error", "-show_entries", "stream=codec_name,sample_rate,channels", "-of",
                 "csv=p=0", saveFolder() + "song.mp3"});
    ASSERT_TRUE(probe.waitForFinished(30000));
    EXPECT_EQ(QString::fromUtf8(probe.readAllStandardOutput()).trimmed(), "mp3,44100,2");
}

TEST_F(AudioRecorderTest, InputRecordsWhatTheComputerPlaysAndTheMeterShowsHowLoud) {
    // A quiet buzz, about 30 dB under full scale, plays on the card while the
    // microphone hears the loud tone.
    QByteArray buzz(8000 * 2, Qt::Uninitialized);
    for (int i = 0; i < 8000; ++i) {
        const auto sample = qint16((i % 2 ? 1036 : -1036) + i % 7);
        std::memcpy(buzz.data() + 2 * i, &sample, 2);
    }
    const PcmSound played(PcmFormat{8000, 1, 16}, buzz);
    const QString music = m_root.path() + "/music.wav";
    ASSERT_TRUE(WavFile::write(music, played));
    ASSERT_EQ(m_mci.mciSendString("open waveaudio!" + music + " alias music", nullptr, 0), 0);
    ASSERT_EQ(m_mci.mciSendString("play music", nullptr, 0), 0);

    auto* meter = m_recorder->findChild<QProgressBar*>("prgLevel");
    QTest::mouseClick(button("cmdInput"), Qt::LeftButton);
    ASSERT_TRUE(button("cmdInput")->isChecked());
    QTest::mouseClick(button("cmdRecord"), Qt::LeftButton);
    m_card.advance(500);
    // -30 dB fills half the meter, which spans 60 dB.
    QTRY_VERIFY(meter->value() > 0);
    EXPECT_NEAR(meter->value(), 50, 2);
    m_card.advance(500);
    QTest::mouseClick(button("cmdStop"), Qt::LeftButton);
    QTRY_VERIFY(button("cmdRecord")->isEnabled());
    EXPECT_EQ(meter->value(), 0) << "the meter rests when the recording stops";

    name()->setText("from_player");
    ASSERT_TRUE(m_recorder->save());
    PcmSound saved;
    ASSERT_EQ(WavFile::read(saveFolder() + "from_player.wav", saved), WavFile::Error::None);
    EXPECT_EQ(saved.data(), played.data()) << "exactly what was played, not the microphone";

    QTest::mouseClick(button("cmdInput"), Qt::LeftButton);
    recordFor(1000);
    name()->setText("from_microphone");
    ASSERT_TRUE(m_recorder->save());
    ASSERT_EQ(WavFile::read(saveFolder() + "from_microphone.wav", saved), WavFile::Error::None);
    EXPECT_EQ(saved.data(), microphoneTone().left(16000));
}

TEST_F(AudioRecorderTest, WithoutASoundDeviceTheRecorderSaysSoInsteadOfFailing) {
    NullAudioBackend silence;
    Mci noCard(silence);
    Mci::install(&noCard);
    m_recorder = std::make_unique<ctlAudioRecorder>();
    m_recorder->show();
    EXPECT_FALSE(button("cmdRecord")->isEnabled());
    EXPECT_FALSE(button("cmdInput")->isEnabled());
    const auto* notice = m_recorder->findChild<QLabel*>("lblNoInput");
    EXPECT_TRUE(notice->isVisible());
    EXPECT_EQ(notice->text(), "No sound device is present: nothing can be recorded.");
    m_recorder.reset();
    Mci::install(&m_mci);
}
