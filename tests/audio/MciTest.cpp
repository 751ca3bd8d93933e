#include "AudioFilePlayer.h"
#include "AudioFixture.h"
#include "FakeClock.h"
#include "MciError.h"
#include "NullAudioBackend.h"
#include "QualityPreset.h"
#include "RecorderSession.h"
#include "WavFile.h"

using MciTest = AudioFixture;

TEST_F(MciTest, RecordingWithTheRecorderSequenceSavesExactlyTheMicrophone) {
    const PcmSound voice = ramp({8000, 1, 16}, 8000 * 2); // 2 s of speech-rate samples
    m_backend.setMicrophone(voice.data());
    int error = -1;
    // The first close finds nothing open; the sequence carries on regardless.
    mci("close mysound", &error);
    EXPECT_EQ(error, MciError::InvalidDeviceName);
    for (const char* command :
         {"open new type waveaudio alias mysound buffer 9",
          "set mysound time format ms alignment 2 channels 1 bitspersample 16 samplespersec 8000 "
          "bytespersec 16000",
          "record mysound to 300000"}) {
        mci(command, &error);
        ASSERT_EQ(error, 0) << command;
    }
    EXPECT_EQ(mci("status mysound mode"), "recording");
    m_backend.advance(700);
    EXPECT_EQ(mci("status mysound position"), "700");
    m_backend.advance(800);
    EXPECT_EQ(mci("status mysound mode"), "recording");
    mci("stop mysound", &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mci("status mysound mode"), "stopped");
    EXPECT_EQ(mci("status mysound length"), "1500");
    mci("save mysound " + path("my recording.wav"), &error);
    ASSERT_EQ(error, 0);

    PcmSound saved;
    ASSERT_EQ(WavFile::read(path("my recording.wav"), saved), WavFile::Error::None);
    EXPECT_EQ(saved.format(), (PcmFormat{8000, 1, 16}));
    EXPECT_EQ(saved.data(), voice.data().left(1500 * 16));
}

TEST_F(MciTest, RecordLimitStopsTheDeviceByItself) {
    m_backend.setMicrophone(ramp({22050, 2, 16}, 22050).data());
    RecorderSession recorder;
    const QualityPreset stereo = QualityPreset::parse("1;22050;88200;2;16");
    ASSERT_EQ(recorder.StartRecording(stereo, 250), 0);
    EXPECT_EQ(recorder.Mode(), "recording");
    m_backend.advance(200);
    EXPECT_EQ(recorder.Mode(), "recording");
    m_backend.advance(200);
    EXPECT_EQ(recorder.Mode(), "stopped");
    EXPECT_EQ(recorder.LengthMs(), 250);
    ASSERT_EQ(recorder.Save(path("limit.wav")), 0);
    PcmSound saved;
    ASSERT_EQ(WavFile::read(path("limit.wav"), saved), WavFile::Error::None);
    EXPECT_EQ(saved.frames(), 5513); // the frame nearest to 250 ms at 22050 Hz
    EXPECT_EQ(saved.format(), (PcmFormat{22050, 2, 16}));

    // Playing the recording back: "stop", then "play from 1".
    ASSERT_EQ(recorder.Play(), 0);
    EXPECT_EQ(recorder.Mode(), "playing");
    m_backend.advance(1000);
    EXPECT_EQ(recorder.Mode(), "stopped");
    EXPECT_EQ(m_backend.played(), saved.slice(22, saved.frames()).data());
    RecorderSession::CloseSound();
    int error = 0;
    mci("status mysound mode", &error);
    EXPECT_EQ(error, MciError::InvalidDeviceName);
}

TEST_F(MciTest, FormatMustBeConsistentAndSetBeforeRecording) {
    int error = 0;
    mci("open new type waveaudio alias r buffer 9", &error);
    ASSERT_EQ(error, 0);
    // The new device starts in its default format.
    EXPECT_EQ(mci("status r samplespersec"), "11025");
    EXPECT_EQ(mci("status r bitspersample"), "8");
    mci("set r time format ms alignment 2 channels 1 bitspersample 16 samplespersec 8000 "
        "bytespersec 8000",
        &error);
    EXPECT_EQ(error, MciError::OutOfRange);
    mci("set r bitspersample 24", &error);
    EXPECT_EQ(error, MciError::OutOfRange);
    mci("set r time format frames", &error);
    EXPECT_EQ(error, MciError::BadTimeFormat);
    mci("set r channels two", &error);
    EXPECT_EQ(error, MciError::BadInteger);
    mci("set r channels 2 channels 2", &error);
    EXPECT_EQ(error, MciError::DuplicateFlags);
    mci("set r samplespersec 16000 bitspersample 16", &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mci("status r bytespersec"), "32000");
    m_backend.refuseRecording(true);
    mci("record r to 100", &error);
    EXPECT_EQ(error, MciError::InputsUnsuitable);
    m_backend.refuseRecording(false);
    mci("record r to 100", &error);
    ASSERT_EQ(error, 0);
    m_backend.advance(100);
    mci("set r channels 2", &error);
    EXPECT_EQ(error, MciError::NonapplicableFunction);
}

TEST_F(MciTest, PlayingFromAToBPlaysExactlyThoseFrames) {
    const PcmSound sound = ramp({8000, 1, 16}, 8000 * 3);
    ASSERT_TRUE(WavFile::write(path("three.wav"), sound));
    AudioFilePlayer player;
    ASSERT_EQ(player.Open(path("three.wav")), 0);
    EXPECT_EQ(player.lengthMs(), 3000);

    ASSERT_EQ(player.Play(1000, 2500), 0);
    QString mode;
    std::int64_t position = 0;
    m_backend.advance(500);
    ASSERT_EQ(player.Poll(mode, position), 0);
    EXPECT_EQ(mode, "playing");
    EXPECT_EQ(position, 1500);
    m_backend.advance(1500);
    ASSERT_EQ(player.Poll(mode, position), 0);
    EXPECT_EQ(mode, "stopped");
    EXPECT_EQ(position, 2500);
    EXPECT_EQ(m_backend.played(), sound.slice(8000, 20000).data());

    // -1 for either marker plays the whole sound.
    ASSERT_EQ(player.Play(-1, 2500), 0);
    m_backend.advance(3000);
    EXPECT_EQ(m_backend.played().size(), (12000 + 24000) * 2);

    // Stop keeps the position; a stopped sound plays on from there.
    ASSERT_EQ(player.Play(0, 3000), 0);
    m_backend.advance(1000);
    ASSERT_EQ(player.Stop(), 0);
    ASSERT_EQ(player.Poll(mode, position), 0);
    EXPECT_EQ(mode, "stopped");
    EXPECT_EQ(position, 1000);
    int error = 0;
    mci("play csound from 2000 to 3001", &error);
    EXPECT_EQ(error, MciError::OutOfRange);
    mci("play csound from 2000 to 1000", &error);
    EXPECT_EQ(error, MciError::OutOfRange);
    player.Close();
}

TEST_F(MciTest, EightBitSoundsAreWidenedForTheDevice) {
    const PcmSound sound = ramp({11025, 2, 8}, 11025);
    ASSERT_TRUE(WavFile::write(path("u8.wav"), sound));
    int error = 0;
    mci("open waveaudio!" + path("u8.wav") + " alias s", &error);
    ASSERT_EQ(error, 0);
    EXPECT_EQ(mci("status s bitspersample"), "8");
    EXPECT_EQ(mci("status s channels"), "2");
    mci("play s", &error);
    ASSERT_EQ(error, 0);
    m_backend.advance(2000);
    EXPECT_EQ(m_backend.played(), sound.toInt16().data());
    const auto* wide = reinterpret_cast<const std::int16_t*>(m_backend.played().constData());
    EXPECT_EQ(wide[1], (static_cast<unsigned char>(sound.data()[1]) - 128) * 256);
}

TEST_F(MciTest, ErrorsHaveNumbersAndReadableTexts) {
    int error = 0;
    struct Case {
        QString command;
        int expected;
    };
    ASSERT_TRUE(WavFile::write(path("a.wav"), ramp({8000, 1, 16}, 800)));
    mci("open waveaudio!" + path("a.wav") + " alias a", &error);
    ASSERT_EQ(error, 0);
    writeBytes(path("junk.wav"), "RIFF\x10\x00\x00\x00WAVEjunk");
    const QList<Case> cases{
        {"", MciError::MissingCommandString},
        {"   ", MciError::MissingCommandString},
        {"fly a", MciError::UnrecognizedCommand},
        {"play nobody", MciError::InvalidDeviceName},
        {"status a volume", MciError::UnrecognizedKeyword},
        {"status a", MciError::MissingParameter},
        {"play a from", MciError::MissingParameter},
        {"play a from x", MciError::BadInteger},
        {"play a from -5", MciError::BadInteger},
        {"play a backwards", MciError::UnrecognizedKeyword},
        {"open waveaudio!" + path("a.wav") + " alias A", MciError::DuplicateAlias},
        {"open waveaudio!" + path("nothing.wav") + " alias b", MciError::FileNotFound},
        {"open waveaudio!" + path("junk.wav") + " alias b", MciError::InvalidFile},
        {"open cdaudio!" + path("a.wav") + " alias b", MciError::InvalidDeviceName},
        {"open new type waveaudio", MciError::NewRequiresAlias},
        {"open new type sequencer alias s", MciError::FilenameRequired},
        {"open " + path("a.wav") + " alias b", MciError::DeviceTypeRequired},
        {"open waveaudio!\"" + path("a.wav") + " alias b", MciError::NoClosingQuote},
        {"record a to 10", MciError::InputsUnsuitable},
        {"save a", MciError::FilenameRequired},
        {"close nobody", MciError::InvalidDeviceName},
    };
    m_backend.refuseRecording(true);
    for (const Case& c : cases) {
        mci(c.command, &error);
        EXPECT_EQ(error, c.expected) << c.command.toStdString();
        EXPECT_FALSE(Mci::mciGetErrorString(error).isEmpty());
    }
    QString text;
    EXPECT_TRUE(mciGetErrorString(MciError::InvalidDeviceName, &text, 10));
    EXPECT_EQ(text.size(), 9);
    EXPECT_FALSE(mciGetErrorString(1234, &text, 128));
    // Sequencer and video devices do not record or save.
    mci("open sequencer!" + dataFile("tempo_change.mid") + " alias m", &error);
    ASSERT_EQ(error, 0);
    mci("record m", &error);
    EXPECT_EQ(error, MciError::UnsupportedFunction);
    mci("status m samplespersec", &error);
    EXPECT_EQ(error, MciError::UnrecognizedKeyword);
}

TEST_F(MciTest, RepliesAreCutToTheBufferAndAliasesIgnoreCase) {
    ASSERT_TRUE(WavFile::write(path("with space.wav"), ramp({44100, 1, 16}, 44100 * 12)));
    int error = 0;
    mci("open waveaudio!" + path("with space.wav") + " alias PlaySound", &error);
    ASSERT_EQ(error, 0);
    EXPECT_EQ(mci("status playsound length", &error, 512), "12000");
    EXPECT_EQ(mci("status PLAYSOUND length", &error, 3), "12");
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mci("status playsound length", &error, 0), "");
    mci("close all", &error);
    EXPECT_EQ(error, 0);
    mci("status playsound mode", &error);
    EXPECT_EQ(error, MciError::InvalidDeviceName);
    mci("open waveaudio!\"" + path("with space.wav") + "\" alias q", &error);
    EXPECT_EQ(error, 0);
    mci("open \"" + path("with space.wav") + "\" type waveaudio alias r", &error);
    EXPECT_EQ(error, 0);
}

TEST_F(MciTest, SilentBackendKeepsTimeOnTheProgramClock) {
    FakeClock clock(4294967000u, QDateTime::currentDateTime()); // about to wrap
    ScopedClock scoped(clock);
    NullAudioBackend silent;
    Mci mci(silent);
    ASSERT_TRUE(WavFile::write(path("a.wav"), ramp({8000, 1, 16}, 8000)));
    QString reply;
    ASSERT_EQ(mci.mciSendString("open waveaudio!" + path("a.wav") + " alias a", nullptr, 0), 0);
    ASSERT_EQ(mci.mciSendString("play a from 100", nullptr, 0), 0);
    clock.advance(600);
    mci.mciSendString("status a position", &reply, 128);
    EXPECT_EQ(reply, "700");
    mci.mciSendString("status a mode", &reply, 128);
    EXPECT_EQ(reply, "playing");
    clock.advance(400);
    mci.mciSendString("status a mode", &reply, 128);
    EXPECT_EQ(reply, "stopped");
    // Without a microphone nothing can be recorded, and the program is told so.
    ASSERT_EQ(mci.mciSendString("open new type waveaudio alias r", nullptr, 0), 0);
    EXPECT_EQ(mci.mciSendString("record r to 1000", nullptr, 0), MciError::InputsUnsuitable);
}
