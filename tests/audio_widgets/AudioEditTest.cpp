#include "FrmAudioEdit.h"
#include "Mci.h"
#include "PcmSound.h"
#include "QtPrinters.h"
#include "ScriptedAudioBackend.h"
#include "WavFile.h"
#include "WaveformPeaks.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {
// Mono 16-bit samples of a 440 Hz tone at the given loudness (0..1).
PcmSound tone(int rate, qint64 ms, double loudness) {
    const qint64 frames = rate * ms / 1000;
    QByteArray data(frames * 2, Qt::Uninitialized);
    for (qint64 i = 0; i < frames; ++i) {
        const auto sample =
            qint16(std::lround(32767 * loudness * std::sin(2 * std::numbers::pi * 440 * i / rate)));
        std::memcpy(data.data() + 2 * i, &sample, 2);
    }
    return PcmSound(PcmFormat{rate, 1, 16}, data);
}
} // namespace

// The audio editor on the scripted sound card: the commands it sends, in
// order, and its markers as the user moves them.
class AudioEditTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        Mci::install(&m_mci);
        m_mci.setTrace([this](const QString& command) { m_sent << command; });
        m_sound = m_dir.filePath("voice.wav");
        ASSERT_TRUE(WavFile::write(m_sound, tone(8000, 2000, 0.5)));
        m_editor = std::make_unique<FrmAudioEdit>();
    }
    void TearDown() override {
        m_editor.reset();
        Mci::install(nullptr);
    }
    QString label(const char* name) const {
        return m_editor->findChild<QLabel*>(name) ? m_editor->findChild<QLabel*>(name)->text()
                                                  : QString();
    }
    QPushButton* button(const char* name) const { return m_editor->findChild<QPushButton*>(name); }
    QStringList labels() const {
        QStringList texts;
        for (const QLabel* shown : m_editor->findChildren<QLabel*>())
            texts << shown->text();
        return texts;
    }

    QTemporaryDir m_dir;
    ScriptedAudioBackend m_backend;
    Mci m_mci{m_backend};
    QStringList m_sent;
    QString m_sound;
    std::unique_ptr<FrmAudioEdit> m_editor;
};

TEST_F(AudioEditTest, OpeningASoundAsksForItsFactsInOrderAndShowsThem) {
    ASSERT_TRUE(m_editor->SetAudioSource(m_sound));
    EXPECT_EQ(m_sent, QStringList({"stop csound", "close csound",
                                   "open waveaudio!" + m_sound + " alias csound",
                                   "set csound time format ms", "status csound length",
                                   "status csound samplespersec", "status csound bitspersample"}));
    const QStringList shown = labels();
    for (const char* expected : {"Length: 2.00s", "Samples per second: 8000", "Bits per sample: 16",
                                 "A: 0.00s", "B: 2.00s"})
        EXPECT_TRUE(shown.contains(expected))
            << expected << " in " << shown.join('|').toStdString();
    EXPECT_EQ(m_editor->slider()->maximum(), 2000);
}

TEST_F(AudioEditTest, NudgesMoveByTenMillisecondsAndNeverCrossZeroOrEachOther) {
    ASSERT_TRUE(m_editor->SetAudioSource(m_sound));
    QTest::mouseClick(button("cmdAEarlier"), Qt::LeftButton);
    EXPECT_EQ(m_editor->startMs(), 0) << "A at 0 stays at 0";
    for (int press = 0; press < 3; ++press)
        QTest::mouseClick(button("cmdALater"), Qt::LeftButton);
    QTest::mouseClick(button("cmdBEarlier"), Qt::LeftButton);
    EXPECT_EQ(m_editor->startMs(), 30);
    EXPECT_EQ(m_editor->endMs(), 1990);
    EXPECT_TRUE(labels().contains("A: 0.03s") && labels().contains("B: 1.99s"));
    QTest::mouseClick(button("cmdBLater"), Qt::LeftButton);
    QTest::mouseClick(button("cmdBLater"), Qt::LeftButton);
    EXPECT_EQ(m_editor->endMs(), 2000) << "B stops at the end";

    m_editor->SetStartEndTime(1000, 1010);
    QTest::mouseClick(button("cmdALater"), Qt::LeftButton);
    EXPECT_LT(m_editor->startMs(), m_editor->endMs());
    QTest::mouseClick(button("cmdBEarlier"), Qt::LeftButton);
    EXPECT_LT(m_editor->startMs(), m_editor->endMs());
}

TEST_F(AudioEditTest, PlayGoesFromAToBWithTheProgressInTheTrack) {
    ASSERT_TRUE(m_editor->SetAudioSource(m_sound));
    m_editor->SetStartEndTime(250, 1250);
    m_sent.clear();
    QTest::mouseClick(button("cmdPlay"), Qt::LeftButton);
    EXPECT_EQ(m_sent.mid(0, 2), QStringList({"stop csound", "play csound from 250 to 1250"}));
    EXPECT_TRUE(m_editor->isPlaying());
    EXPECT_EQ(button("cmdPlay")->text(), "Stop");
    m_backend.advance(400);
    QTRY_VERIFY(m_sent.contains("status csound position"));
    EXPECT_TRUE(m_sent.contains("status csound mode"));
    m_backend.advance(1000);
    QTRY_VERIFY(!m_editor->isPlaying());
    EXPECT_EQ(button("cmdPlay")->text(), "Play");
}

TEST_F(AudioEditTest, OkHandsOnTheRangeAndCancelDoesNot) {
    ASSERT_TRUE(m_editor->SetAudioSource(m_sound));
    QSignalSpy accepted(m_editor.get(), &FrmAudioEdit::rangeAccepted);
    m_editor->SetStartEndTime(250, 1250);
    QTest::mouseClick(button("cmdCancel"), Qt::LeftButton);
    EXPECT_TRUE(accepted.isEmpty());
    QTest::mouseClick(button("cmdOK"), Qt::LeftButton);
    ASSERT_EQ(accepted.size(), 1);
    EXPECT_EQ(accepted[0], QVariantList({qint64(250), qint64(1250)}));
}

TEST_F(AudioEditTest, TheMarkersFollowTheMouseAndTheKeys) {
    ASSERT_TRUE(m_editor->SetAudioSource(m_sound));
    ctlAudioSlider* slider = m_editor->slider();
    slider->resize(416, 96); // a track of 400 pixels: 5 ms a pixel
    QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(8 + 300, 48));
    EXPECT_EQ(slider->ValueB(), 1500) << "the nearer thumb jumps to the press";
    QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(8 + 40, 48));
    EXPECT_EQ(slider->ValueA(), 200);
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Right);
    EXPECT_EQ(slider->ValueA(), 210);
    QTest::keyClick(slider, Qt::Key_Tab);
    QTest::keyClick(slider, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(slider->ValueB(), 1400);
    QTest::keyClick(slider, Qt::Key_End);
    EXPECT_EQ(slider->ValueB(), 2000);
}

TEST_F(AudioEditTest, ASoundThatCannotBeOpenedLeavesNothingToEdit) {
    const QString text = m_dir.filePath("song.mp3");
    QFile file(text);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("this is not a sound, only text that says it is one\n");
    file.close();
    EXPECT_FALSE(m_editor->SetAudioSource(text));
    EXPECT_TRUE(labels().contains("No sound is loaded."));
    EXPECT_FALSE(button("cmdPlay")->isEnabled());
    EXPECT_FALSE(m_editor->slider()->isEnabled());
}

TEST(WaveformPeaksTest, EachSpanHoldsTheLoudestAndQuietestSample) {
    const WaveformPeaks loud(tone(8000, 1000, 0.5), 100);
    ASSERT_EQ(loud.count(), 100);
    for (int span = 0; span < loud.count(); ++span) {
        EXPECT_NEAR(loud.at(span).high, 0.5, 0.01) << span;
        EXPECT_NEAR(loud.at(span).low, -0.5, 0.01) << span;
    }
    const WaveformPeaks quiet(tone(8000, 1000, 0.0), 100);
    EXPECT_EQ(quiet.at(50).high, 0);
    // Never more spans than frames.
    EXPECT_EQ(WaveformPeaks(tone(8000, 1, 0.5), 100).count(), 8);
    EXPECT_TRUE(WaveformPeaks(PcmSound(), 100).isEmpty());
}
