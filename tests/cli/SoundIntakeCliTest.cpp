#include "ScriptedCliTest.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

// Sounds made by sox given to a script's slides: they come in by the same
// rules as in the window, and the message exports whatever they are.
class SoundIntakeCliTest : public ScriptedCliTest {
protected:
    void sox(const QStringList& arguments) const {
        const ProgramRun done = run("sox", arguments);
        ASSERT_EQ(done.code, 0) << done.err.toStdString();
    }
    // The work-folder name of slide n's sound, as `info` tells it.
    QString soundOf(const QString& message, int slide) const {
        const ProgramRun info = cli({"info", path(message)});
        const QRegularExpression line(
            QStringLiteral("slide %1:[^\\n]*\\n(?:  [^\\n]*\\n)*?  sound: (\\S+)").arg(slide));
        return line.match(info.out).captured(1);
    }
};

TEST_F(SoundIntakeCliTest, ScriptSoundsFollowTheWindowsRulesAndExport) {
    for (const QString channels : {"1", "2"})
        sox({"-n", "-r", "8000", "-b", "16", "-c", channels, path("talk" + channels + ".wav"),
             "synth", "1.2", "sine", "300"});
    sox({"-n", "-r", "8000", "-b", "16", "-c", "1", path("empty.wav"), "trim", "0", "0"});
    ASSERT_TRUE(
        QFile::copy(VELLUMO_SOURCE_DIR "/tests/data/audio/tempo_change.mid", path("tune.midi")));
    const ProgramRun made = cli({"new", path("s.mms"), "--slide", "--sound", path("talk1.wav"),
                                 "--slide", "--sound", path("talk2.wav"), "--slide", "--sound",
                                 path("tune.midi"), "--slide", "--sound", path("empty.wav")});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();
    // An 8 kHz 16-bit mono WAV becomes AMR; stereo stays WAV, as the encoder takes only mono.
    EXPECT_TRUE(soundOf("s.mms", 1).endsWith(".amr")) << soundOf("s.mms", 1).toStdString();
    EXPECT_TRUE(soundOf("s.mms", 2).endsWith(".wav"));
    EXPECT_TRUE(soundOf("s.mms", 3).endsWith(".mid"));
    // A sound of no length is neither converted nor dropped, and the script is told.
    EXPECT_TRUE(soundOf("s.mms", 4).endsWith(".wav"));
    EXPECT_TRUE(made.err.contains("empty.wav") && made.err.contains("warning"))
        << made.err.toStdString();
    const ProgramRun info = cli({"info", path("s.mms")});
    EXPECT_TRUE(info.out.contains("\"talk1\" 1200 ms")) << info.out.toStdString();
    EXPECT_TRUE(info.out.contains("\"tune\" 1750 ms"));

    QDir().mkpath(path("out"));
    const ProgramRun exported =
        cli({"export", path("s.mms"), "--kind", "smil", "--format", "ms", path("out/mms.smil")});
    ASSERT_EQ(exported.code, 0) << exported.err.toStdString();
    const QStringList files = QDir(path("out")).entryList(QDir::Files);
    EXPECT_EQ(files.filter(".amr").size(), 1) << files.join(' ').toStdString();
    EXPECT_EQ(files.filter(".wav").size(), 2) << files.join(' ').toStdString();

    // Without the wish for AMR, the mono WAV stays as it is.
    ASSERT_EQ(cli({"settings", "set", "preferences", "ConvertWavToAmr", "0"}).code, 0);
    ASSERT_EQ(cli({"new", path("w.mms"), "--slide", "--sound", path("talk1.wav")}).code, 0);
    EXPECT_TRUE(soundOf("w.mms", 1).endsWith(".wav"));
}
