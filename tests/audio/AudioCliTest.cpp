#include "AudioFixture.h"
#include "ProgramRun.h"
#include "WavFile.h"

#include <QFile>

namespace {
// vellumo-cli as a user's script runs it, without a sound card.
ProgramRun cli(const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("VELLUMO_AUDIO", "null");
    ProgramRun run = runProgram(cliProgram(), arguments, environment);
    run.out = run.out.trimmed();
    run.err = run.err.trimmed();
    return run;
}
} // namespace

using AudioCliTest = AudioFixture;

TEST_F(AudioCliTest, TrimConvertMeasureAndPlayFromTheCommandLine) {
    const PcmSound voice = tone(8000, 220, 3000);
    ASSERT_TRUE(WavFile::write(path("voice.wav"), voice));
    ProgramRun run =
        cli({"trim", path("voice.wav"), path("part.wav"), "--from", "1000", "--to", "2500"});
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(cli({"sound-info", path("part.wav")}).out, "WAV;1500;8000;16");
    PcmSound part;
    ASSERT_EQ(WavFile::read(path("part.wav"), part), WavFile::Error::None);
    EXPECT_EQ(part.data(), voice.data().mid(8000 * 2, 12000 * 2));

    ASSERT_EQ(cli({"wav2amr", path("part.wav"), path("part.amr")}).code, 0);
    EXPECT_EQ(cli({"sound-info", path("part.amr")}).out, "AMR;-1;-1;-1");
    ASSERT_EQ(cli({"amr2wav", path("part.amr"), path("again.wav")}).code, 0);
    EXPECT_EQ(cli({"sound-info", path("again.wav")}).out, "WAV;1500;8000;16");

    ASSERT_TRUE(WavFile::write(path("short.wav"), tone(8000, 220, 300)));
    run = cli({"play", path("short.wav")});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
}

TEST_F(AudioCliTest, FailuresAreReportedOnStandardError) {
    ASSERT_TRUE(WavFile::write(path("stereo.wav"), ramp({44100, 2, 16}, 441)));
    ProgramRun run = cli({"wav2amr", path("stereo.wav"), path("x.amr")});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.err.contains("8000 Hz")) << run.err.toStdString();
    run = cli({"trim", path("stereo.wav"), path("x.wav"), "--from", "5", "--to", "500"});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(cli({"trim", path("stereo.wav"), path("x.wav"), "--from", "5"}).code, 64);
    writeBytes(path("broken.wav"), "RIFF\x04\x00\x00\x00WAVE");
    run = cli({"play", path("broken.wav")});
    EXPECT_EQ(run.code, 1);
    EXPECT_FALSE(run.err.isEmpty());
    EXPECT_EQ(cli({"sound-info", path("broken.wav")}).out, "WAV;-1;-1;-1");
    EXPECT_EQ(cli({"play", dataFile("melody.imy")}).code, 1);
}
