#include "AmrConverter.h"
#include "AudioFixture.h"
#include "MciError.h"
#include "WavFile.h"
#include "modPlaySound.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#define REQUIRE_FFMPEG()                                                                           \
    if (QStandardPaths::findExecutable("ffmpeg").isEmpty())                                        \
    GTEST_SKIP() << "ffmpeg is not installed"

using SoundInfoTest = AudioFixture;

namespace {
QByteArray threeFrameGif() {
    QByteArray gif("GIF89a\x01\x00\x01\x00\x80\x00\x00", 13);
    gif.append("\x00\x00\x00\xff\xff\xff", 6); // two-colour global table
    for (int delay : {20, 30, 0}) {
        gif.append("\x21\xf9\x04\x00", 4).append(char(delay)).append("\x00\x00\x00", 3);
        gif.append("\x2c\x00\x00\x00\x00\x01\x00\x01\x00\x00", 10);
        gif.append("\x02\x02\x44\x01\x00", 5); // one pixel, LZW-coded
    }
    return gif.append(';');
}

// The frame delays ImageMagick reads, so the hand-made file is known to be sound.
QString identifyDelays(const QString& file, bool* checked) {
    const QString identify = QStandardPaths::findExecutable("identify");
    *checked = !identify.isEmpty();
    if (!*checked)
        return {};
    QProcess process;
    process.start(identify, {"-format", "%T,", file});
    process.waitForFinished(30000);
    return QString::fromUtf8(process.readAllStandardOutput());
}
} // namespace

TEST_F(SoundInfoTest, LengthRateAndBitsOfFilesMadeByOutsideTools) {
    REQUIRE_FFMPEG();
    ASSERT_TRUE(ffmpeg({"-f", "lavfi", "-i", "sine=frequency=440:sample_rate=8000:duration=3",
                        "-c:a", "pcm_s16le", path("speech.wav")}));
    ASSERT_TRUE(ffmpeg({"-f", "lavfi", "-i", "sine=frequency=440:sample_rate=22050:duration=1.234",
                        "-ac", "2", "-c:a", "pcm_u8", path("stereo8.WAV")}));
    ASSERT_TRUE(ffmpeg({"-f", "lavfi", "-i", "sine=frequency=440:sample_rate=44100:duration=2.5",
                        "-ac", "2", "-c:a", "libmp3lame", "-b:a", "128k", path("song.mp3")}));
    ASSERT_TRUE(QFile::copy(dataFile("tempo_change.mid"), path("tune.mid")));
    ASSERT_TRUE(QFile::copy(dataFile("tempo_change.mid"), path("tune.midi")));
    ASSERT_TRUE(QFile::copy(dataFile("melody.imy"), path("ring.imy")));

    EXPECT_EQ(modPlaySound::GetSoundInfo(path("speech.wav")), "WAV;3000;8000;16");
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("stereo8.WAV")), "WAV;1234;22050;8");
    // The MP3 length is that of the encoded samples, without the encoder's padding.
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("song.mp3")), "MP3;2500;-1;-1");
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("tune.mid")), "MID;1750;-1;-1");
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("tune.midi")), "MIDI;1750;-1;-1");
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("ring.imy")), "IMY;-1;-1;-1");
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("noextension")), "---;-1;-1;-1");
    EXPECT_EQ(modPlaySound::GetSoundInfo(m_dir.path() + "/dir.d/noextension"), "---;-1;-1;-1");
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("missing.wav")), "WAV;-1;-1;-1");
    // The information query leaves nothing open behind it.
    int error = 0;
    mci("status playsound mode", &error);
    EXPECT_EQ(error, MciError::InvalidDeviceName);
}

TEST_F(SoundInfoTest, AmrHasNoDeviceAndIMelodyIsNotPlayed) {
    ASSERT_TRUE(WavFile::write(path("v.wav"), tone(8000, 200, 500)));
    ASSERT_EQ(AmrConverter::wav2amr(path("v.wav"), path("v.amr")), 0);
    EXPECT_EQ(modPlaySound::GetSoundInfo(path("v.amr")), "AMR;-1;-1;-1");
    QFile::copy(dataFile("melody.imy"), path("ring.imy"));
    EXPECT_EQ(modPlaySound::PlaySound(path("ring.imy")), modPlaySound::kNotPlayable);
    EXPECT_EQ(modPlaySound::PlaySound(path("v.amr")), modPlaySound::kNotPlayable);
    EXPECT_TRUE(m_backend.played().isEmpty());
}

TEST_F(SoundInfoTest, PlaySoundPlaysFromTheFirstMillisecondUntilStopped) {
    const PcmSound sound = ramp({8000, 1, 16}, 8000);
    ASSERT_TRUE(WavFile::write(path("p.wav"), sound));
    ASSERT_EQ(modPlaySound::PlaySound(path("p.wav")), 0);
    m_backend.advance(400);
    QString mode;
    std::int64_t position = 0;
    modPlaySound::GetPlayStatus(mode, position);
    EXPECT_EQ(mode, "playing");
    EXPECT_EQ(position, 401);
    modPlaySound::StopSound();
    modPlaySound::GetPlayStatus(mode, position);
    EXPECT_EQ(mode, "stopped");
    EXPECT_EQ(position, -1);
    EXPECT_EQ(m_backend.played(), sound.slice(8, 8 + 3200).data());
}

TEST_F(SoundInfoTest, MidiIsRenderedByTheSynthesizer) {
    int error = 0;
    mci("open sequencer!" + dataFile("tempo_change.mid") + " alias m", &error);
    ASSERT_EQ(error, 0);
    mci("play m", &error);
    ASSERT_EQ(error, 0) << Mci::mciGetErrorString(error).toStdString();
    m_backend.advance(2000);
    EXPECT_EQ(mci("status m mode"), "stopped");
    // 1.75 s of 44100 Hz stereo, and a note can be heard in it.
    const QByteArray played = m_backend.played();
    EXPECT_NEAR(played.size() / 4, 77175, 1);
    const auto* samples = reinterpret_cast<const std::int16_t*>(played.constData());
    int loudest = 0;
    for (qsizetype i = 0; i < played.size() / 2; ++i)
        loudest = std::max(loudest, std::abs(int(samples[i])));
    EXPECT_GT(loudest, 300);
}

TEST_F(SoundInfoTest, AnimationAndVideoLengthsForTheMpegVideoDevice) {
    REQUIRE_FFMPEG();
    ASSERT_TRUE(
        ffmpeg({"-f", "lavfi", "-i", "testsrc=size=64x48:rate=10:duration=2", path("v.avi")}));
    ASSERT_TRUE(ffmpeg({"-f", "lavfi", "-i", "testsrc=size=64x48:rate=10:duration=1.5", "-pix_fmt",
                        "yuv420p", path("v.mp4")}));
    int error = 0;
    for (const auto& [file, length] : {std::pair{"v.avi", "2000"}, std::pair{"v.mp4", "1500"}}) {
        mci("stop mciMedia");
        mci(QStringLiteral("open MPEGVideo!%1 alias mciMedia").arg(path(file)), &error);
        ASSERT_EQ(error, 0) << file;
        mci("set mciMedia time format ms", &error);
        EXPECT_EQ(mci("status mciMedia length"), length) << file;
        mci("close mciMedia");
    }
    // Frames of 20, 30 and 0 hundredths; a frame without delay is shown a tenth of a second.
    writeBytes(path("a.gif"), threeFrameGif());
    bool checked = false;
    const QString delays = identifyDelays(path("a.gif"), &checked);
    if (checked) {
        EXPECT_EQ(delays, "20,30,0,");
    }
    mci("open MPEGVideo!" + path("a.gif") + " alias g", &error);
    ASSERT_EQ(error, 0);
    EXPECT_EQ(mci("status g length"), "600");
    writeBytes(path("cut.gif"), threeFrameGif().left(40));
    EXPECT_EQ(m_mci.mciSendString("open MPEGVideo!" + path("cut.gif") + " alias c", nullptr, 0),
              MciError::InvalidFile);
    // A video runs its time silently.
    mci("play g", &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mci("status g mode"), "playing");
}

TEST_F(SoundInfoTest, DamagedFilesGiveMinusOneNeverACrash) {
    REQUIRE_FFMPEG();
    ASSERT_TRUE(ffmpeg({"-f", "lavfi", "-i", "sine=sample_rate=44100:duration=1", "-c:a",
                        "libmp3lame", path("good.mp3")}));
    const QByteArray mp3 = readBytes(path("good.mp3"));
    const QByteArray mid = readBytes(dataFile("tempo_change.mid"));
    const QByteArray wav = WavFile::toBytes(ramp({8000, 1, 16}, 800));
    QByteArray noise(4096, '\0');
    for (qsizetype i = 0; i < noise.size(); ++i)
        noise[i] = char((i * 2654435761u) >> 13);
    writeBytes(path("noise.mp3"), noise);
    writeBytes(path("noise.wav"), noise);
    writeBytes(path("noise.mid"), noise);
    writeBytes(path("empty.mp3"), {});
    writeBytes(path("cut.wav"), wav.left(20));
    writeBytes(path("cut.mid"), mid.left(40));
    writeBytes(path("half.mp3"), mp3.left(mp3.size() / 2));
    for (const char* name :
         {"noise.mp3", "noise.wav", "noise.mid", "empty.mp3", "cut.wav", "cut.mid"})
        EXPECT_TRUE(modPlaySound::GetSoundInfo(path(name)).endsWith(";-1;-1;-1")) << name;
    // Half an MP3 still plays for part of its time.
    const QStringList half = modPlaySound::GetSoundInfo(path("half.mp3")).split(';');
    ASSERT_EQ(half.size(), 4);
    EXPECT_GT(half[1].toInt(), 200);
    EXPECT_LT(half[1].toInt(), 1000);
}
