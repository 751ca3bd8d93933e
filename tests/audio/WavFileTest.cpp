#include "WavFile.h"
#include "AudioFixture.h"
#include "WavTrimmer.h"

#include <QProcess>

#include <QStandardPaths>

#define REQUIRE_FFMPEG()                                                                           \
    if (QStandardPaths::findExecutable("ffmpeg").isEmpty())                                        \
    GTEST_SKIP() << "ffmpeg is not installed"

using WavFileTest = AudioFixture;

TEST_F(WavFileTest, ReadsEveryPcmLayoutFfmpegWrites) {
    REQUIRE_FFMPEG();
    struct Case {
        int rate, channels;
        const char* codec;
        int bits;
    };
    for (const Case& c : {Case{8000, 1, "pcm_s16le", 16}, Case{44100, 2, "pcm_s16le", 16},
                          Case{11025, 1, "pcm_u8", 8}, Case{22050, 2, "pcm_u8", 8},
                          Case{12345, 1, "pcm_s16le", 16}}) {
        const QString file = path(QStringLiteral("in_%1_%2.wav").arg(c.rate).arg(c.channels));
        ASSERT_TRUE(
            ffmpeg({"-f", "lavfi", "-i",
                    QStringLiteral("sine=frequency=500:sample_rate=%1:duration=1.5").arg(c.rate),
                    "-ac", QString::number(c.channels), "-c:a", c.codec, file}));
        PcmSound sound;
        ASSERT_EQ(WavFile::read(file, sound), WavFile::Error::None) << file.toStdString();
        EXPECT_EQ(sound.format(), (PcmFormat{c.rate, c.channels, c.bits}));
        EXPECT_EQ(sound.lengthMs(), 1500);
        // Our samples equal ffmpeg's own decoding of the file.
        EXPECT_EQ(sound.toInt16().data(), ffmpegDecode(file, c.channels));
    }
}

TEST_F(WavFileTest, WrittenFileIsReadBackIdenticallyByUsAndFfprobe) {
    const PcmSound sound = ramp({22050, 2, 16}, 22050 * 2 + 3);
    ASSERT_TRUE(WavFile::write(path("out.wav"), sound));
    PcmSound back;
    ASSERT_EQ(WavFile::read(path("out.wav"), back), WavFile::Error::None);
    EXPECT_EQ(back.format(), sound.format());
    EXPECT_EQ(back.data(), sound.data());
    if (!QStandardPaths::findExecutable("ffprobe").isEmpty()) {
        EXPECT_EQ(ffprobe(path("out.wav"), "stream=codec_name,sample_rate,channels,duration_ts"),
                  "pcm_s16le\n22050\n2\n44103");
    }
}

TEST_F(WavFileTest, OddSizedEightBitDataIsPaddedAndSkipsUnknownChunks) {
    const PcmSound sound = ramp({8000, 1, 8}, 801);
    QByteArray bytes = WavFile::toBytes(sound);
    EXPECT_EQ(bytes.size() % 2, 0);
    // A foreign chunk of odd size before the data must be stepped over with its pad byte.
    const QByteArray list("LIST\x03\x00\x00\x00"
                          "abc\x00",
                          12);
    bytes.insert(36, list);
    PcmSound back;
    ASSERT_EQ(WavFile::parse(bytes, back), WavFile::Error::None);
    EXPECT_EQ(back.data(), sound.data());
}

TEST_F(WavFileTest, CompressedAndDamagedFilesAreRefusedWithTheirReason) {
    REQUIRE_FFMPEG();
    ASSERT_TRUE(ffmpeg({"-f", "lavfi", "-i", "sine=sample_rate=8000:duration=1", "-c:a", "adpcm_ms",
                        path("adpcm.wav")}));
    PcmSound sound;
    EXPECT_EQ(WavFile::read(path("adpcm.wav"), sound), WavFile::Error::Compressed);
    EXPECT_FALSE(WavFile::errorText(WavFile::Error::Compressed).isEmpty());

    const QByteArray good = WavFile::toBytes(ramp({8000, 1, 16}, 8000));
    EXPECT_EQ(WavFile::parse(good.left(30), sound), WavFile::Error::NotWave); // fmt cut short
    EXPECT_EQ(WavFile::parse(good.left(36), sound), WavFile::Error::NoData);
    EXPECT_EQ(WavFile::parse("RIFX" + good.mid(4), sound), WavFile::Error::NotWave);
    QByteArray threeChannels = good;
    threeChannels[22] = 3;
    EXPECT_EQ(WavFile::parse(threeChannels, sound), WavFile::Error::Unsupported);
    QByteArray wrongAlign = good;
    wrongAlign[32] = 4;
    EXPECT_EQ(WavFile::parse(wrongAlign, sound), WavFile::Error::Unsupported);
    EXPECT_EQ(WavFile::read(path("missing.wav"), sound), WavFile::Error::Unreadable);

    // A recording cut off mid-data keeps its whole frames.
    ASSERT_EQ(WavFile::parse(good.left(44 + 1001), sound), WavFile::Error::None);
    EXPECT_EQ(sound.frames(), 500);
}

TEST_F(WavFileTest, TrimmingCutsExactlyTheFramesBetweenTheMarkers) {
    for (const PcmFormat& format :
         {PcmFormat{8000, 1, 16}, PcmFormat{44100, 2, 16}, PcmFormat{11025, 1, 8}}) {
        const PcmSound sound = ramp(format, format.sampleRate * 3);
        ASSERT_TRUE(WavFile::write(path("three.wav"), sound));
        ASSERT_EQ(WavTrimmer::trim(path("three.wav"), path("cut.wav"), 1000, 2500), QString());
        PcmSound cut;
        ASSERT_EQ(WavFile::read(path("cut.wav"), cut), WavFile::Error::None);
        EXPECT_EQ(cut.format(), format);
        EXPECT_EQ(cut.lengthMs(), 1500);
        const int bpf = format.bytesPerFrame();
        // The frames nearest to 1000 and 2500 ms; 11025 Hz puts 2500 ms half-way between two.
        const qsizetype first = format.sampleRate;
        const qsizetype end = (format.sampleRate * 2500 + 500) / 1000;
        EXPECT_EQ(cut.data(), sound.data().mid(first * bpf, (end - first) * bpf));
    }
}

TEST_F(WavFileTest, TrimmingWholeOrOutOfRange) {
    const PcmSound sound = ramp({8000, 1, 16}, 8000);
    ASSERT_TRUE(WavFile::write(path("one.wav"), sound));
    EXPECT_EQ(WavTrimmer::trim(path("one.wav"), path("whole.wav"), -1, 500), QString());
    EXPECT_EQ(readBytes(path("whole.wav")), readBytes(path("one.wav")));
    // Every frame, also the one after the last whole millisecond, and none of none.
    for (const auto& [effect, frames] :
         {std::pair{QStringList{"synth", "8001s", "sine", "440"}, "8001"},
          {QStringList{"trim", "0", "0"}, "0"}}) {
        QProcess sox;
        sox.start("sox",
                  QStringList{"-r", "8000", "-n", "-b", "16", "-c", "1", path("odd.wav")} + effect);
        ASSERT_TRUE(sox.waitForFinished(60000) && sox.exitCode() == 0);
        EXPECT_EQ(WavTrimmer::trim(path("odd.wav"), path("kept.wav"), -1, -1), QString());
        QProcess soxi;
        soxi.start("soxi", {"-s", path("kept.wav")});
        ASSERT_TRUE(soxi.waitForFinished(60000));
        EXPECT_EQ(soxi.readAllStandardOutput().trimmed(), frames);
    }
    EXPECT_FALSE(WavTrimmer::trim(path("one.wav"), path("x.wav"), 500, 500).isEmpty());
    EXPECT_FALSE(WavTrimmer::trim(path("one.wav"), path("x.wav"), 0, 1001).isEmpty());
    EXPECT_FALSE(WavTrimmer::trim(path("none.wav"), path("x.wav"), 0, 10).isEmpty());
}
