#include "AmrConverter.h"
#include "AudioFixture.h"
#include "Mp3Encoder.h"
#include "QualitySettings.h"
#include "WavFile.h"
#include "clsPropertiesXML.h"

#include <QProcess>
#include <QStandardPaths>

#define REQUIRE_FFMPEG()                                                                           \
    if (QStandardPaths::findExecutable("ffmpeg").isEmpty())                                        \
    GTEST_SKIP() << "ffmpeg is not installed"

using ConverterTest = AudioFixture;

TEST_F(ConverterTest, Wav2AmrIsReadByFfmpegAsTheSameSpeech) {
    REQUIRE_FFMPEG();
    const PcmSound voice = tone(8000, 180, 3000);
    ASSERT_TRUE(WavFile::write(path("voice.wav"), voice));
    ASSERT_EQ(AmrConverter::wav2amr(path("voice.wav"), path("voice.amr")), AmrConverter::Ok);
    const QByteArray amr = readBytes(path("voice.amr"));
    ASSERT_TRUE(amr.startsWith("#!AMR\n"));
    // 150 frames of 20 ms, each a 12.2 kbit/s frame: header byte 0x3C and 31 bytes.
    EXPECT_EQ(amr.size(), 6 + 150 * 32);
    EXPECT_EQ(amr[6], '\x3c');

    EXPECT_EQ(ffprobe(path("voice.amr"), "stream=codec_name,sample_rate,channels"),
              "amr_nb\n8000\n1");
    const QByteArray decoded = ffmpegDecode(path("voice.amr"), 1);
    EXPECT_EQ(decoded.size(), voice.data().size());
    EXPECT_GT(bestCorrelation(voice.data(), decoded, 200), 0.8);
    // The same decoding as our own way back.
    ASSERT_EQ(AmrConverter::amr2wav(path("voice.amr"), path("back.wav")), AmrConverter::Ok);
    EXPECT_EQ(ffprobe(path("back.wav"), "stream=codec_name,sample_rate,channels"),
              "pcm_s16le\n8000\n1");
    PcmSound back;
    ASSERT_EQ(WavFile::read(path("back.wav"), back), WavFile::Error::None);
    EXPECT_EQ(back.format(), (PcmFormat{8000, 1, 16}));
    EXPECT_EQ(back.lengthMs(), 3000);
    EXPECT_GT(bestCorrelation(voice.data(), back.data(), 200), 0.8);
}

TEST_F(ConverterTest, ConvertersRefuseWrongAndDamagedInput) {
    ASSERT_TRUE(WavFile::write(path("cd.wav"), ramp({44100, 2, 16}, 4410)));
    EXPECT_EQ(AmrConverter::wav2amr(path("cd.wav"), path("x.amr")), AmrConverter::WrongFormat);
    EXPECT_EQ(AmrConverter::wav2amr(path("none.wav"), path("x.amr")),
              AmrConverter::SourceUnreadable);
    writeBytes(path("bad.wav"), "RIFF1234WAVEfmt ");
    EXPECT_EQ(AmrConverter::wav2amr(path("bad.wav"), path("x.amr")), AmrConverter::CorruptSource);
    EXPECT_EQ(AmrConverter::amr2wav(path("bad.wav"), path("x.wav")), AmrConverter::CorruptSource);
    writeBytes(path("reserved.amr"), QByteArray("#!AMR\n\x4c", 7) + QByteArray(40, '\x11'));
    EXPECT_EQ(AmrConverter::amr2wav(path("reserved.amr"), path("x.wav")),
              AmrConverter::CorruptSource);
    writeBytes(path("half.amr"), QByteArray("#!AMR\n\x3c", 7));
    EXPECT_EQ(AmrConverter::amr2wav(path("half.amr"), path("x.wav")), AmrConverter::CorruptSource);
    EXPECT_FALSE(QFile::exists(path("x.wav")));
    EXPECT_FALSE(QFile::exists(path("x.amr")));

    // A file cut in its last frame keeps the whole frames before it.
    ASSERT_TRUE(WavFile::write(path("v.wav"), tone(8000, 200, 1000)));
    ASSERT_EQ(AmrConverter::wav2amr(path("v.wav"), path("v.amr")), AmrConverter::Ok);
    writeBytes(path("cut.amr"), readBytes(path("v.amr")).left(6 + 10 * 32 + 7));
    ASSERT_EQ(AmrConverter::amr2wav(path("cut.amr"), path("cut.wav")), AmrConverter::Ok);
    PcmSound cut;
    ASSERT_EQ(WavFile::read(path("cut.wav"), cut), WavFile::Error::None);
    EXPECT_EQ(cut.lengthMs(), 200);
    EXPECT_EQ(AmrConverter::wav2amr(path("v.wav"), m_dir.path() + "/no/such/dir/v.amr"),
              AmrConverter::TargetUnwritable);
}

TEST_F(ConverterTest, AnEmptySoundConvertsBothWays) {
    QProcess sox;
    sox.start("sox",
              {"-n", "-r", "8000", "-b", "16", "-c", "1", path("empty.wav"), "trim", "0", "0"});
    ASSERT_TRUE(sox.waitForFinished(60000) && sox.exitCode() == 0);
    ASSERT_EQ(AmrConverter::wav2amr(path("empty.wav"), path("empty.amr")), AmrConverter::Ok);
    EXPECT_EQ(readBytes(path("empty.amr")), "#!AMR\n");
    ASSERT_EQ(AmrConverter::amr2wav(path("empty.amr"), path("back.wav")), AmrConverter::Ok);
    PcmSound back;
    ASSERT_EQ(WavFile::read(path("back.wav"), back), WavFile::Error::None);
    EXPECT_EQ(back.frames(), 0);
    EXPECT_EQ(back.format(), (PcmFormat{8000, 1, 16}));
}

// Longer than an hour, which once was where decoding stopped without a word.
TEST_F(ConverterTest, ALongAmrDecodesToTheEnd) {
    QProcess sox;
    sox.start("sox", {"-n", "-r", "8000", "-b", "16", "-c", "1", path("ten.wav"), "synth", "10",
                      "sine", "300"});
    ASSERT_TRUE(sox.waitForFinished(60000) && sox.exitCode() == 0);
    ASSERT_EQ(AmrConverter::wav2amr(path("ten.wav"), path("ten.amr")), AmrConverter::Ok);
    const QByteArray frames = readBytes(path("ten.amr")).mid(6);
    writeBytes(path("long.amr"), "#!AMR\n" + frames.repeated(390)); // 65 minutes
    ASSERT_EQ(AmrConverter::amr2wav(path("long.amr"), path("long.wav")), AmrConverter::Ok);
    QProcess soxi;
    soxi.start("soxi", {"-s", path("long.wav")});
    ASSERT_TRUE(soxi.waitForFinished(60000));
    EXPECT_EQ(soxi.readAllStandardOutput().trimmed(), QByteArray::number(8000LL * 10 * 390));
}

TEST_F(ConverterTest, Mp3EncoderWritesGaplessFilesFfmpegDecodesToTheSameLength) {
    REQUIRE_FFMPEG();
    ASSERT_TRUE(WavFile::write(path("stereo.wav"), ramp({22050, 2, 16}, 22050 * 2)));
    QString error;
    ASSERT_TRUE(Mp3Encoder::encodeFile(path("stereo.wav"), path("stereo.mp3"), 8000, error))
        << error.toStdString();
    EXPECT_EQ(ffprobe(path("stereo.mp3"), "stream=codec_name,sample_rate,channels,bit_rate"),
              "mp3\n22050\n2\n64000");
    EXPECT_EQ(ffmpegDecode(path("stereo.mp3"), 2).size(), 22050 * 2 * 4);

    ASSERT_TRUE(WavFile::write(path("mono.wav"), tone(16000, 300, 1000)));
    ASSERT_TRUE(Mp3Encoder::encodeFile(path("mono.wav"), path("mono.mp3"), 8000, error));
    const QByteArray decoded = ffmpegDecode(path("mono.mp3"), 1);
    EXPECT_EQ(decoded.size(), 16000 * 2);
    EXPECT_GT(bestCorrelation(tone(16000, 300, 1000).data(), decoded, 50), 0.9);
    // At 32 kbit/s a frame is too small for the Info tag: nothing is lost,
    // but the decoder cannot drop the encoder's delay and padding.
    ASSERT_TRUE(Mp3Encoder::encodeFile(path("mono.wav"), path("small.mp3"), 4000, error));
    EXPECT_EQ(ffprobe(path("small.mp3"), "stream=bit_rate"), "32000");
    EXPECT_GE(ffmpegDecode(path("small.mp3"), 1).size(), 16000 * 2);

    EXPECT_FALSE(Mp3Encoder::encodeFile(path("mono.wav"), path("x.mp3"), 500, error));
    EXPECT_FALSE(error.isEmpty());
}

TEST_F(ConverterTest, BitRatesAreTheEncodersPerSampleRate) {
    EXPECT_EQ(Mp3Encoder::bitratesKbps(44100),
              (QList<int>{32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}));
    EXPECT_EQ(Mp3Encoder::bitratesKbps(22050),
              (QList<int>{8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}));
    EXPECT_EQ(Mp3Encoder::bitratesKbps(8000).back(), 64);
    EXPECT_TRUE(Mp3Encoder::bitratesKbps(44000).isEmpty());
}

class QualitySettingTest : public AudioFixture {
protected:
    void SetUp() override {
        AudioFixture::SetUp();
        m_settings = std::make_unique<clsPropertiesXML>();
        m_settings->Initialize(path("settings.xml"), "Vellumo");
    }
    QString get(const QString& key) { return m_settings->GetProp("recording", key, "<none>"); }
    std::unique_ptr<clsPropertiesXML> m_settings;
};

TEST_F(QualitySettingTest, Mp3PresetsTakeTheLargestStereoRateNotAboveTheMaximum) {
    m_settings->SetProp("recording", "SamplingRateQuality_3", "16000;4000");
    m_settings->SetProp("recording", "SamplingRateQuality_4", "22050;8999");
    m_settings->SetProp("recording", "SamplingRateQuality_5", "44100;3999");
    m_settings->SetProp("recording", "SamplingRateQuality_6", "44000;16000");
    QualitySettings quality(*m_settings);
    quality.InitQualitySetting();
    EXPECT_EQ(get("CodecInstalled"), "1");
    EXPECT_EQ(get("Quality_3"), "1;16000;4000;2;16");
    EXPECT_EQ(get("Quality_4"), "1;22050;8000;2;16");
    EXPECT_EQ(get("Quality_5"), "0;44100;0;2;16"); // below the smallest MPEG-1 rate
    EXPECT_EQ(get("Quality_6"), "0;44000;0;2;16"); // no such MP3 sample rate
    EXPECT_EQ(get("Quality_1"), "<none>");

    const QualityPreset mp3 = quality.presetForEntry(4);
    EXPECT_TRUE(mp3.isMp3());
    EXPECT_EQ(mp3.bytesPerSec(), 88200);
    EXPECT_EQ(mp3.blockAlign(), 4);
    EXPECT_FALSE(quality.presetForEntry(5).available);
    for (int speech : {1, 2})
        EXPECT_EQ(quality.presetForEntry(speech).toString(), "1;8000;16000;1;16");
    EXPECT_EQ(quality.presetForEntry(1).setCommand("mysound"),
              "set mysound time format ms alignment 2 channels 1 bitspersample 16 samplespersec "
              "8000 bytespersec 16000");
    EXPECT_FALSE(quality.presetForEntry(1).isMp3());
}

TEST_F(QualitySettingTest, EntrySixIsSeededAndAnotherCodecMeansBuiltInEverywhere) {
    m_settings->SetProp("recording", "CodecName", "Some Other Codec");
    m_settings->SetProp("recording", "Quality_4", "1;44100;16000;2;16");
    m_settings->SetProp("recording", "SamplingRateQuality_4", "22050;8000");
    QualitySettings quality(*m_settings);
    quality.InitQualitySetting();
    EXPECT_EQ(get("CodecInstalled"), "0");
    EXPECT_EQ(get("Quality_4"), "1;44100;16000;2;16"); // left alone
    EXPECT_EQ(get("Quality_6"), "1;8000;16000;1;16");
    for (int entry = 1; entry <= 6; ++entry)
        EXPECT_EQ(quality.presetForEntry(entry).toString(), "1;8000;16000;1;16");
    EXPECT_EQ(QualityPreset::parse("1;x;3;4;5").toString(), "1;8000;16000;1;16");
}
