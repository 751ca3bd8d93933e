#include "PhotoSamples.h"
#include "ProgramRun.h"
#include "QtPrinters.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Messages built, inspected, unpacked and packed the way a user's script does.
class MessageCliTest : public ::testing::Test {
protected:
    using Result = ProgramRun;

    Result cli(const QStringList& arguments) const { return run(cliPath(), arguments); }

    // The tool with every file it writes limited to the given size, as on a
    // nearly full disk.
    Result cliWithFileLimit(int kilobytes, const QStringList& arguments) const {
        const QString line = QStringLiteral("trap '' XFSZ; ulimit -f %1; exec \"$0\" \"$@\"");
        return run("bash", QStringList{"-c", line.arg(kilobytes), cliPath()} + arguments);
    }

    Result run(const QString& program, const QStringList& arguments) const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_DATA_HOME", m_home.path() + "/xdg");
        return runProgram(program, arguments, env, m_home.path());
    }

    QString path(const QString& name) const { return m_home.path() + "/" + name; }
    static QString cliPath() { return cliProgram(); }

    // A PCM WAV of silence: 8 kHz, mono, 16 bits.
    void writeSilentWav(const QString& name, int seconds) const {
        const quint32 dataSize = quint32(seconds) * 16000;
        QByteArray wav;
        QDataStream out(&wav, QIODevice::WriteOnly);
        out.setByteOrder(QDataStream::LittleEndian);
        out.writeRawData("RIFF", 4);
        out << quint32(36 + dataSize);
        out.writeRawData("WAVEfmt ", 8);
        // Stereo, so that it is copied as it is rather than made into AMR.
        out << quint32(16) << quint16(1) << quint16(2) << quint32(4000) << quint32(16000)
            << quint16(4) << quint16(16);
        out.writeRawData("data", 4);
        out << dataSize;
        wav.append(QByteArray(dataSize, '\0'));
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(wav), wav.size());
    }
    static QString archive(const QString& file) {
        return QStringLiteral(VELLUMO_SOURCE_DIR) + "/data/archive/" + file;
    }

    QTemporaryDir m_home;
};

TEST_F(MessageCliTest, AScriptedMessageSavesFlatAndReadsBack) {
    const Result made = cli({"new",
                             "card.mms",
                             "--name",
                             "Card",
                             "--slide",
                             "4000",
                             "--color",
                             "FFFFCC",
                             "--image",
                             archive("Pictures/star.gif"),
                             "10,10,40,40",
                             "--text",
                             "Happy birthday",
                             "10,60,140,40",
                             "--font",
                             "DejaVu Sans",
                             "--font-size",
                             "14",
                             "--bold",
                             "--align",
                             "center",
                             "--font-color",
                             "CC0000",
                             "--slide",
                             "--background",
                             archive("Backgrounds/sky_gradient.jpg"),
                             "--sound",
                             archive("Sounds/chime.wav"),
                             "--slide-text",
                             "two\nlines",
                             "--slide",
                             "--background",
                             archive("Animations/bouncing_ball.gif")});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();

    const QStringList members = tarMembers(path("card.mms"));
    ASSERT_EQ(members.size(), 8) << members.join(' ').toStdString();
    EXPECT_EQ(members.filter(QRegularExpression("^Slide_[123]\\.(bmp|gif)$")),
              QStringList({"Slide_1.bmp", "Slide_2.bmp", "Slide_3.gif"}));
    EXPECT_TRUE(members.contains("message.xml"));
    for (const QString& name : members)
        EXPECT_FALSE(name.contains('/')) << name.toStdString();

    const Result info = cli({"info", "card.mms"});
    ASSERT_EQ(info.code, 0) << info.err.toStdString();
    EXPECT_TRUE(info.out.contains("name: Card\nversion: 2.0\nslides: 3\n"));
    EXPECT_TRUE(info.out.contains("slide 1: duration 4000 ms, file Slide_1.bmp"));
    EXPECT_TRUE(info.out.contains("  background: kind 0 colour #FFFFCC"));
    EXPECT_TRUE(info.out.contains("text \"Happy birthday\" at 10,60 size 140x40 zorder 2 font "
                                  "\"DejaVu Sans\" 14 colour #CC0000 align center bold"));
    EXPECT_TRUE(info.out.contains("slide 2: duration 1600 ms")) << "the sound sets the time";
    EXPECT_TRUE(info.out.contains("\"chime\" 1600 ms"));
    EXPECT_TRUE(info.out.contains("  text: \"two\\nlines\""));
    EXPECT_TRUE(info.out.contains("kind 2 colour #FFFFFF file B"));
    EXPECT_TRUE(info.out.contains(".gif duration 800 ms")) << info.out.toStdString();

    ASSERT_EQ(cli({"render", "card.mms", "1", "one.png", "--size", "320x240"}).code, 0);
    const QImage one(path("one.png"));
    EXPECT_EQ(one.size(), QSize(320, 240));
    EXPECT_EQ(one.pixelColor(300, 10), QColor(0xFF, 0xFF, 0xCC));
}

TEST_F(MessageCliTest, UnpackAndPackGoBothWays) {
    ASSERT_EQ(cli({"new", "a.mms", "--slide", "--text", "hi", "0,0,50,20", "--slide"}).code, 0);
    const Result unpacked = cli({"unpack", "a.mms", "folder"});
    ASSERT_EQ(unpacked.code, 0) << unpacked.err.toStdString();
    QStringList files = QDir(path("folder")).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(files, QStringList({"Slide_1.bmp", "Slide_2.bmp", "message.xml"}));

    EXPECT_EQ(cli({"unpack", "a.mms", "folder"}).code, 1) << "a folder with files is refused";
    QFile::remove(path("folder/Slide_2.bmp"));
    ASSERT_EQ(cli({"pack", "folder", "b.mms"}).code, 0);
    EXPECT_EQ(tarMembers(path("b.mms")), QStringList({"Slide_1.bmp", "Slide_2.bmp", "message.xml"}))
        << "slide files are rendered anew";
    EXPECT_EQ(cli({"pack", "nothing-here", "c.mms"}).code, 1);
    EXPECT_FALSE(QFileInfo::exists(path("c.mms")));
}

TEST_F(MessageCliTest, BadInputGetsAClearAnswer) {
    QFile text(path("x.mms"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("not a message at all");
    text.close();
    const Result notArchive = cli({"unpack", "x.mms", "out"});
    EXPECT_EQ(notArchive.code, 2);
    EXPECT_TRUE(notArchive.err.contains("not a message file"));
    EXPECT_TRUE(QDir(path("out")).isEmpty());
    EXPECT_EQ(cli({"info", "x.mms"}).code, 2);

    const Result noSlide = cli({"new", "y.mms", "--color", "FF0000"});
    EXPECT_EQ(noSlide.code, 1);
    EXPECT_TRUE(noSlide.err.contains("--color needs a --slide before it"));
    const Result badRect = cli({"new", "y.mms", "--slide", "--text", "t", "1,2,3"});
    EXPECT_TRUE(badRect.err.contains("--text expects X,Y,W,H"));
    const Result missing = cli({"new", "y.mms", "--slide", "--sound", "/no/such.wav"});
    EXPECT_TRUE(missing.err.contains("cannot read /no/such.wav"));
    EXPECT_FALSE(QFileInfo::exists(path("y.mms")));
    EXPECT_EQ(cli({"render", "x.mms", "one", "z.png"}).code, 64);
    EXPECT_TRUE(cli({"help", "new"}).out.contains("--font-color RRGGBB"));
}

TEST_F(MessageCliTest, ExportAndImportFromTheCommandLine) {
    ASSERT_EQ(
        cli({"new", "m.mms", "--name", "Trip", "--slide", "2500", "--color", "0000FF",
             "--slide-text", "first", "--slide", "1200", "--image", archive("Pictures/sun.gif"),
             "0,0,80,60", "--sound", archive("Sounds/double_beep.wav")})
            .code,
        0);
    QDir().mkpath(path("set"));
    const Result smil = cli({"export", "m.mms", "--kind", "smil", "--format", "s", "set/mms.smil"});
    ASSERT_EQ(smil.code, 0) << smil.err.toStdString();
    EXPECT_TRUE(QFileInfo::exists(path("set/texts.xml")));
    const Result again =
        cli({"export", "m.mms", "--kind", "smil", "--format", "s", "set/mms.smil"});
    EXPECT_EQ(again.code, 2);
    EXPECT_TRUE(again.err.contains("already exists"));
    EXPECT_EQ(
        cli({"export", "m.mms", "--kind", "smil", "--format", "s", "set/mms.smil", "--overwrite"})
            .code,
        0);

    const Result tpl = cli({"export", "m.mms", "--kind", "tpl", "--format", "ms", "set/card.smil"});
    ASSERT_EQ(tpl.code, 0) << tpl.err.toStdString();
    QProcess tar;
    tar.start("tar", {"tf", path("set/mms.tpl")});
    tar.waitForFinished();
    QStringList members =
        QString::fromUtf8(tar.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    members.sort();
    // An opened message's slides carry their rendered pictures, so both have one.
    EXPECT_EQ(members,
              QStringList({"Slide1.jpg", "Slide2.amr", "Slide2.jpg", "mms.smil", "texts.xml"}));

    for (const QString& source : {QStringLiteral("set/mms.smil"), QStringLiteral("set/mms.tpl")}) {
        const Result imported = cli({"import", source, "back.mms"});
        ASSERT_EQ(imported.code, 0) << imported.err.toStdString();
        const Result info = cli({"info", "back.mms"});
        EXPECT_TRUE(info.out.contains("name: import\nversion: 2.0\nslides: 2\n"));
        EXPECT_TRUE(info.out.contains("  text: \"first\""));
        EXPECT_TRUE(info.out.contains("slide 2: duration 1000 ms") ||
                    info.out.contains("slide 2: duration 1200 ms"))
            << info.out.toStdString();
    }
    const Result sis = cli({"export", "m.mms", "--kind", "sis", "--format", "ms", "set/card.smil"});
    ASSERT_EQ(sis.code, 0) << sis.err.toStdString();
    EXPECT_TRUE(QFileInfo(path("set/mms.SIS")).size() > 100);
    EXPECT_TRUE(QFileInfo::exists(path("set/mms.pkg")));
    const Result wap = cli({"export", "m.mms", "--kind", "wap", "--format", "ms", "set/mms.smil"});
    ASSERT_EQ(wap.code, 0) << wap.err.toStdString();
    EXPECT_EQ(QFile(path("set/mms.wap")).exists(), true);
    EXPECT_EQ(cli({"export", "m.mms", "--kind", "wap", "--format", "ms", "set/mms.smil"}).code, 2);
    EXPECT_EQ(cli({"export", "m.mms", "--kind", "wap", "--format", "ms", "set/mms.smil",
                   "--overwrite", "--retrieve-conf"})
                  .code,
              0);
    QFile received(path("set/mms.wap"));
    ASSERT_TRUE(received.open(QIODevice::ReadOnly));
    EXPECT_EQ(received.read(2), QByteArray("\x8c\x84")) << "an m-retrieve-conf";
    EXPECT_EQ(cli({"export", "m.mms", "--kind", "zip", "--format", "s", "set/x.smil"}).code, 64);
    const Result bad = cli({"import", "m.mms", "x.mms"});
    EXPECT_EQ(bad.code, 1);
    EXPECT_FALSE(bad.err.isEmpty());
}

TEST_F(MessageCliTest, APhonePhotoFillsTheSlide) {
    // 48 megapixels: decoded whole it would take 192 MB for a 160 x 120 slide.
    ASSERT_EQ(PhotoSamples::gradientJpeg(path("photo.jpg"), QSize(8000, 6000)), QString());
    const Result made =
        cli({"new", "p.mms", "--slide", "--color", "FFFFFF", "--background", path("photo.jpg")});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();
    EXPECT_TRUE(made.err.isEmpty()) << made.err.toStdString();
    const Result rendered = cli({"render", "p.mms", "1", "slide.png"});
    ASSERT_EQ(rendered.code, 0) << rendered.err.toStdString();
    EXPECT_TRUE(rendered.err.isEmpty()) << rendered.err.toStdString();
    const QImage slide(path("slide.png"));
    ASSERT_EQ(slide.size(), QSize(160, 120));
    for (int y : {0, 40, 80, 119})
        for (int x : {0, 80, 159})
            EXPECT_PRED2(PhotoSamples::near, slide.pixelColor(x, y),
                         PhotoSamples::gradientAt(y / 119.0))
                << x << "," << y;
}

TEST_F(MessageCliTest, PicturesThatCannotBeDrawnAreRefusedWhenAdded) {
    PhotoSamples::randomBytes(path("noise.jpg"), 4096);
    QFile(path("empty.png")).open(QIODevice::WriteOnly);
    PhotoSamples::truncatedJpegHeader(path("cut.jpg"));
    for (const QString& file : QStringList{"noise.jpg", "empty.png", "cut.jpg"}) {
        for (const QString& option : QStringList{"--background", "--image"}) {
            QStringList arguments{"new", "bad.mms", "--slide", option, path(file)};
            if (option == "--image")
                arguments << "0,0,80,60";
            const Result refused = cli(arguments);
            EXPECT_EQ(refused.code, 1) << option.toStdString() << " " << file.toStdString();
            EXPECT_TRUE(refused.err.contains(option + " refused: The picture " + path(file) +
                                             " cannot be decoded"))
                << refused.err.toStdString();
            EXPECT_FALSE(QFileInfo::exists(path("bad.mms")));
        }
    }
    PhotoSamples::pngClaiming(path("huge.png"), QSize(20000, 10001));
    const Result huge = cli({"new", "bad.mms", "--slide", "--background", path("huge.png")});
    EXPECT_EQ(huge.code, 1);
    EXPECT_TRUE(huge.err.contains("The picture has 20000 x 10001 pixels; pictures of more than "
                                  "200 megapixels are refused."))
        << huge.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(path("bad.mms")));
}

TEST_F(MessageCliTest, AFileThatCannotBeCopiedInFailsTheMessage) {
    // Both files are larger than the limit below; the slide picture and the
    // message file stay well under it.
    QImage picture(800, 600, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    ASSERT_TRUE(picture.save(path("big.bmp")));
    writeSilentWav("big.wav", 100);
    const int limitKb = 1024;
    ASSERT_GT(QFileInfo(path("big.bmp")).size(), limitKb * 1024);
    ASSERT_GT(QFileInfo(path("big.wav")).size(), limitKb * 1024);

    const QList<QStringList> cases{
        {"--background", path("big.bmp")},
        {"--image", path("big.bmp"), "0,0,40,40"},
        {"--sound", path("big.wav")},
    };
    for (const QStringList& option : cases) {
        const QStringList arguments = QStringList{"new", "out.mms", "--slide", "2000"} + option;
        const Result limited = cliWithFileLimit(limitKb, arguments);
        EXPECT_EQ(limited.code, 1) << option[0].toStdString();
        EXPECT_TRUE(
            limited.err.contains(option[0] + " cannot copy " + option[1] + " into the message: "))
            << limited.err.toStdString();
        EXPECT_FALSE(QFileInfo::exists(path("out.mms"))) << option[0].toStdString();

        const Result unlimited = cli(arguments);
        EXPECT_EQ(unlimited.code, 0) << unlimited.err.toStdString();
        ASSERT_TRUE(QFile::remove(path("out.mms"))) << "without the limit the same message saves";
    }
}

TEST_F(MessageCliTest, AReplacedBackgroundLeavesNothingInTheMessage) {
    const Result made =
        cli({"new", "m.mms", "--slide", "--background", archive("Backgrounds/sky_gradient.jpg"),
             "--background", archive("Backgrounds/pink_dots.gif")});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();
    const QStringList members = tarMembers(path("m.mms"));
    EXPECT_EQ(members.filter(QRegularExpression("^B.*\\.")).size(), 1)
        << members.join(' ').toStdString();
    EXPECT_EQ(members.filter(QRegularExpression("^B.*\\.gif$")).size(), 1)
        << "the second one stays";
}
