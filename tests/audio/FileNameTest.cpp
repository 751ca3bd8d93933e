#include "AudioFixture.h"
#include "MciError.h"
#include "WavFile.h"
#include "modPlaySound.h"

#include <QProcess>

// Sounds whose names hold the interpreter's own words or quotes, made by sox.
using FileNameTest = AudioFixture;

namespace {
bool sox(const QString& target) {
    QProcess process;
    process.start("sox",
                  {"-n", "-r", "8000", "-b", "16", "-c", "1", target, "synth", "1", "sine", "440"});
    return process.waitForFinished(60000) && process.exitCode() == 0;
}
} // namespace

TEST_F(FileNameTest, AnyFileNameCanBeMeasuredAndPlayed) {
    for (const char* name : {"my alias song.wav", "type cast.wav", "say \"hi\".wav",
                             "alias playsound.wav", "a buffer 4.wav", "\"quoted\".wav"}) {
        const QString file = path(name);
        ASSERT_TRUE(sox(file)) << name;
        EXPECT_EQ(modPlaySound::GetSoundInfo(file), "WAV;1000;8000;16") << name;
        EXPECT_EQ(modPlaySound::PlaySound(file), 0) << name;
        m_backend.advance(100);
        QString mode;
        std::int64_t position = 0;
        modPlaySound::GetPlayStatus(mode, position);
        EXPECT_EQ(mode, "playing") << name;
        modPlaySound::StopSound();
    }
}

TEST_F(FileNameTest, QuotedPathsOpenAndSave) {
    const QString file = path("my alias type song.wav");
    ASSERT_TRUE(sox(file));
    int error = -1;
    mci("open waveaudio!\"" + file + "\" alias q", &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mci("status q length"), "1000");
    mci("open \"waveaudio!" + file + "\" alias r", &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mci("status r samplespersec"), "8000");
    mci("open \"" + file + "\" type waveaudio alias s", &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mci("status s bitspersample"), "16");

    m_backend.setMicrophone(ramp({8000, 1, 16}, 8000).data());
    mci("open new type waveaudio alias rec", &error);
    mci("set rec time format ms bitspersample 16 samplespersec 8000 channels 1", &error);
    mci("record rec", &error);
    m_backend.advance(250);
    mci("stop rec", &error);
    const QString target = path("saved \"take\" alias x.wav");
    mci("save rec \"" + target + "\"", &error);
    EXPECT_EQ(error, 0);
    PcmSound saved;
    ASSERT_EQ(WavFile::read(target, saved), WavFile::Error::None);
    EXPECT_EQ(saved.frames(), 2000);
    mci("save rec " + path("bare \"quote.wav"), &error);
    EXPECT_EQ(error, 0) << "a bare path keeps its quote";
    EXPECT_TRUE(QFile::exists(path("bare \"quote.wav")));

    mci("open waveaudio!" + file + " alias q", &error);
    EXPECT_EQ(error, MciError::DuplicateAlias) << "the last alias is the device's";
}
