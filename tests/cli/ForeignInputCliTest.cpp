#include "ProgramRun.h"
#include "QtPrinters.h"
#include "ScriptedCliTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// A presentation made by other programs (picture by ImageMagick, sound by
// sox, text by iconv) imported, described and exported again from a script.
class ForeignInputCliTest : public ScriptedCliTest {
protected:
    void make(const QString& program, const QStringList& arguments) const {
        const ProgramRun done = run(program, arguments);
        ASSERT_EQ(done.code, 0) << program.toStdString() << ": " << done.err.toStdString();
    }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

TEST_F(ForeignInputCliTest, AForeignShowImportsWithItsOddDurationsNamedAndItsTextsReadable) {
    make("convert", {"-size", "20x10", "xc:orange", "Cover Photo.JPG"});
    make("sox",
         {"-n", "-r", "8000", "-b", "16", "-c", "1", "tune.wav", "synth", "1.5", "sine", "330"});
    make("bash", {"-c", "printf 'S\\xfc\\xdf \\x80 \\x93hi\\x94\\r\\n' > words.txt"});
    make("bash", {"-c", "printf 'H\\xc3\\xa4llo' | iconv -f UTF-8 -t UTF-16 > hello.txt"});
    write("show.smil", "<smil><body><seq>"
                       "<par dur=\"00:00:03.5\"><img src=\"cover%20photo.jpg\"/></par>"
                       "<par dur=\"4s\"><ref src=\"cid:tune.wav\"/><text src=\"words.txt\"/></par>"
                       "<text src=\"hello.txt\" dur=\"2s\"/></seq></body></smil>");
    const ProgramRun imported = cli({"import", path("show.smil"), path("show.mms")});
    ASSERT_EQ(imported.code, 0) << imported.err.toStdString();
    EXPECT_TRUE(imported.err.contains("warning: import: Slide 1") &&
                imported.err.contains("00:00:03.5"))
        << imported.err.toStdString();

    const ProgramRun gzip = run("gzip", {"-tv", path("show.mms")});
    EXPECT_EQ(gzip.code, 0);
    EXPECT_FALSE(gzip.err.contains("trailing")) << gzip.err.toStdString();

    const ProgramRun info = cli({"info", path("show.mms")});
    ASSERT_EQ(info.code, 0) << info.err.toStdString();
    EXPECT_TRUE(info.out.contains("slides: 3")) << info.out.toStdString();
    EXPECT_TRUE(info.out.contains("slide 1: duration 0 ms"));
    EXPECT_TRUE(info.out.contains(QString::fromUtf8("text: \"Süß € “hi”\"")))
        << info.out.toStdString();
    EXPECT_TRUE(info.out.contains(QString::fromUtf8("text: \"Hällo\"")));
    EXPECT_TRUE(info.out.contains("sound: ") && info.out.contains("\"tune\" 1500 ms"));

    QDir().mkpath(path("out"));
    const ProgramRun exported =
        cli({"export", path("show.mms"), "--kind", "smil", "--format", "ms", path("out/mms.smil")});
    ASSERT_EQ(exported.code, 0) << exported.err.toStdString();
    EXPECT_TRUE(exported.err.contains("less than 1 ms: slide 1.")) << exported.err.toStdString();
}

TEST_F(ForeignInputCliTest, ATemplateWithoutItsPresentationIsRefusedForThat) {
    make("convert", {"-size", "8x8", "xc:blue", "only.png"});
    make("tar", {"cf", "bare.tpl", "only.png"});
    const ProgramRun imported = cli({"import", path("bare.tpl"), path("bare.mms")});
    EXPECT_EQ(imported.code, 1);
    EXPECT_TRUE(imported.err.contains("bare.tpl") && imported.err.contains("holds no mms.smil"))
        << imported.err.toStdString();
    EXPECT_FALSE(QFile::exists(path("bare.mms")));
}
