#include "ProgramRun.h"
#include "QtPrinters.h"
#include "ScriptedCliTest.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>

// check and fit driven as a user's script drives them, on media made by
// ImageMagick and FFmpeg.
class ContentClassCliTest : public ScriptedCliTest {
protected:
    void tool(const QString& program, const QStringList& arguments) const {
        const ProgramRun done = run(program, arguments);
        ASSERT_EQ(done.code, 0) << program.toStdString() << ": " << done.err.toStdString();
    }
    void photo(const QString& name, QSize size) const {
        tool("convert",
             {"-seed", "11", "-size", QString("%1x%2").arg(size.width()).arg(size.height()),
              "plasma:", "-blur", "0x2", path(name)});
    }
    // A message of one slide whose picture is the whole photo.
    void message(const QString& name, const QString& picture, QSize size,
                 const QStringList& more = {}) const {
        const QString surface = QString("%1x%2").arg(size.width()).arg(size.height());
        const ProgramRun made = cli(QStringList{"new", path(name), "--size", surface, "--slide",
                                                "3000", "--background", path(picture)} +
                                    more);
        ASSERT_EQ(made.code, 0) << made.err.toStdString();
    }
    QByteArray digest(const QString& name) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
    }
    // The exported SMIL set of a message, in its own folder.
    QString exported(const QString& name) const {
        const QString folder = path(name + ".set");
        QDir().mkpath(folder);
        const ProgramRun done =
            cli({"export", path(name), "--kind", "smil", "--format", "ms", folder + "/mms.smil"});
        EXPECT_EQ(done.code, 0) << done.err.toStdString();
        return folder + "/";
    }
};

TEST_F(ContentClassCliTest, CheckNamesTheSmallestClassAndTheBrokenRules) {
    photo("edge.jpg", {160, 120});
    message("edge.mms", "edge.jpg", {160, 120});
    const ProgramRun edge = cli({"check", path("edge.mms"), "--class", "Image Basic"});
    EXPECT_EQ(edge.code, 0) << edge.err.toStdString();
    EXPECT_EQ(edge.out, "Image Basic\n");

    photo("wide.jpg", {161, 120});
    message("wide.mms", "wide.jpg", {161, 120});
    const ProgramRun wide = cli({"check", path("wide.mms"), "--class", "Image Basic"});
    EXPECT_EQ(wide.code, 1);
    EXPECT_EQ(wide.out, "Image Rich\n"
                        "Slide1.jpg is 161x120 pixels; Image Basic allows at most 160x120.\n");
    // The settings' class, Image Rich as shipped, when none is named.
    EXPECT_EQ(cli({"check", path("wide.mms")}).code, 0);
}

TEST_F(ContentClassCliTest, TheSizeCheckedIsTheSizeOfTheBinaryMessage) {
    const ProgramRun made =
        cli({"new", path("m.mms"), "--slide", "3000", "--slide-text", QString(31000, 'w')});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();
    const ProgramRun text = cli({"check", path("m.mms"), "--class", "Text"});
    EXPECT_EQ(text.code, 1);
    const QRegularExpressionMatch size =
        QRegularExpression("^The message is (\\d+) bytes; Text allows at most 30720 bytes.$",
                           QRegularExpression::MultilineOption)
            .match(text.out);
    ASSERT_TRUE(size.hasMatch()) << text.out.toStdString();
    QDir().mkpath(path("wap"));
    const ProgramRun wap =
        cli({"export", path("m.mms"), "--kind", "wap", "--format", "ms", path("wap/mms.smil")});
    ASSERT_EQ(wap.code, 0) << wap.err.toStdString();
    EXPECT_EQ(size.captured(1).toLongLong(), QFileInfo(path("wap/mms.wap")).size());
}

TEST_F(ContentClassCliTest, WhatIsNoMessageOrNoClassIsRefused) {
    QFile junk(path("junk.mms"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("this is no message");
    junk.close();
    EXPECT_EQ(cli({"check", path("junk.mms")}).code, 2);
    EXPECT_EQ(cli({"check", path("missing.mms")}).code, 2);
    EXPECT_EQ(cli({"check", path("junk.mms"), "--class", "Huge"}).code, 64);
    EXPECT_EQ(cli({"fit", path("junk.mms"), "--class", "Image Rich", path("out.mms")}).code, 2);
    EXPECT_FALSE(QFileInfo::exists(path("out.mms")));
}

TEST_F(ContentClassCliTest, FitMakesAPhotoAndALongSoundImageRichAndLeavesTheOriginal) {
    photo("photo.jpg", {1600, 1200});
    tool("ffmpeg", {"-nostdin", "-v", "error", "-f", "lavfi", "-i",
                    "sine=frequency=330:sample_rate=44100:duration=20", "-c:a", "pcm_s16le",
                    path("long.wav")});
    message("big.mms", "photo.jpg", {1600, 1200}, {"--sound", path("long.wav")});
    EXPECT_EQ(cli({"check", path("big.mms"), "--class", "Image Rich"}).code, 1);
    const QByteArray before = digest("big.mms");

    EXPECT_NE(cli({"fit", path("big.mms"), "--class", "Image Rich", path("big.mms")}).code, 0);
    const ProgramRun fit = cli({"fit", path("big.mms"), "--class", "Image Rich", path("fit.mms")});
    EXPECT_EQ(fit.code, 0) << fit.out.toStdString() << fit.err.toStdString();
    EXPECT_EQ(digest("big.mms"), before);
    const ProgramRun check = cli({"check", path("fit.mms"), "--class", "Image Rich"});
    EXPECT_EQ(check.code, 0) << check.out.toStdString();
    EXPECT_EQ(check.out, "Image Rich\n");

    const QString set = exported("fit.mms");
    EXPECT_EQ(QImage(set + "Slide1.jpg").size(), QSize(640, 480));
    tool("convert", {path("photo.jpg"), "-resize", "640x480", path("reference.png")});
    const ProgramRun psnr =
        run("compare", {"-metric", "PSNR", set + "Slide1.jpg", path("reference.png"), "null:"});
    EXPECT_GT(psnr.err.section(' ', 0, 0).toDouble(), 30.0) << psnr.err.toStdString();
    // Counted frame by frame: ffprobe only estimates the length of an AMR file.
    const ProgramRun probe = run("ffprobe", {"-v", "error", "-count_frames", "-show_entries",
                                             "stream=codec_name,sample_rate,nb_read_frames", "-of",
                                             "default=nw=1", set + "Slide1.amr"});
    EXPECT_TRUE(probe.out.contains("codec_name=amr_nb")) << probe.out.toStdString();
    EXPECT_TRUE(probe.out.contains("sample_rate=8000"));
    const int frames =
        QRegularExpression("nb_read_frames=(\\d+)").match(probe.out).captured(1).toInt();
    EXPECT_NEAR(frames * 20, 20000, 40); // 20 ms a frame
}
