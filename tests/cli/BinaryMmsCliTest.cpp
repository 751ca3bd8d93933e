#include "QtPrinters.h"
#include "ScriptedCliTest.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

// Binary MMS exported by the tool and imported back, opened under the name
// of a message file, and cut short.
class BinaryMmsCliTest : public ScriptedCliTest {
protected:
    void SetUp() override {
        const ProgramRun made = cli({"new",
                                     path("m.mms"),
                                     "--name",
                                     "Trip",
                                     "--slide",
                                     "2500",
                                     "--color",
                                     "0000FF",
                                     "--slide-text",
                                     QStringLiteral("Gr\u00FC\u00DFe \u20AC aus K\u00F6ln"),
                                     "--slide",
                                     "1200",
                                     "--image",
                                     archive("Pictures/sun.gif"),
                                     "0,0,80,60",
                                     "--sound",
                                     archive("Sounds/double_beep.wav"),
                                     "--slide",
                                     "3000",
                                     "--background",
                                     archive("Backgrounds/beach.jpg"),
                                     "--slide-text",
                                     "drei"});
        ASSERT_EQ(made.code, 0) << made.err.toStdString();
    }

    // The set and the binary MMS made from m.mms in folder.
    void exportTo(const QString& folder, const QStringList& options,
                  const QString& smil = "mms.smil") const {
        QDir().mkpath(path(folder));
        const ProgramRun done =
            cli(QStringList{"export", path("m.mms"), "--format", "ms", path(folder + "/" + smil)} +
                options);
        ASSERT_EQ(done.code, 0) << done.err.toStdString();
    }
    ProgramRun importTo(const QString& source, const QString& target) const {
        return cli({"import", path(source), path(target)});
    }
    // The info lines, with the names the work folder gives files made uniform.
    QString info(const QString& message) const {
        const ProgramRun done = cli({"info", path(message)});
        EXPECT_EQ(done.code, 0) << done.err.toStdString();
        static const QRegularExpression unique(QStringLiteral("\\b[AB]\\d{6}_\\d+\\.(\\w+)"));
        return QString(done.out).replace(unique, QStringLiteral("FILE.\\1"));
    }
    // The media files of a message, by slide: picture and sound bytes.
    QList<QByteArray> media(const QString& message) const {
        const QString folder = path(message + ".d/");
        QDir().mkpath(folder);
        EXPECT_EQ(run("tar", {"xzf", path(message), "-C", folder}).code, 0);
        static const QRegularExpression named(QStringLiteral("(?:file|sound:) ([AB]\\S+)"));
        QList<QByteArray> files;
        const ProgramRun described = cli({"info", path(message)});
        for (const QRegularExpressionMatch& match : named.globalMatch(described.out))
            files << bytes(folder + match.captured(1));
        return files;
    }
    static QByteArray bytes(const QString& file) {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }
    static QString archive(const QString& file) {
        return QStringLiteral(VELLUMO_SOURCE_DIR) + "/data/archive/" + file;
    }
};

TEST_F(BinaryMmsCliTest, SentAndReceivedMessagesComeBackAsTheirSmilSetDoes) {
    exportTo("set", {"--kind", "smil"});
    ASSERT_EQ(importTo("set/mms.smil", "from smil.mms").code, 0);
    const QString expected = info("from smil.mms").replace("name: import", "name: Trip");
    EXPECT_TRUE(expected.contains("slides: 3\nslide 1: duration 2500 ms"))
        << expected.toStdString();
    EXPECT_TRUE(
        expected.contains(QStringLiteral("text: \"Gr\u00FC\u00DFe \u20AC aus K\u00F6ln\"")));
    EXPECT_TRUE(expected.contains("slide 2: duration 1200 ms"));
    EXPECT_TRUE(expected.contains("sound: FILE.amr \"Slide2\""));
    EXPECT_TRUE(expected.contains("text: \"drei\""));

    for (const QString& kind : {QStringLiteral("sent"), QStringLiteral("received")}) {
        // Whatever the presentation is called, the message holds no texts index.
        exportTo(kind,
                 kind == "sent" ? QStringList{"--kind", "wap"}
                                : QStringList{"--kind", "wap", "--retrieve-conf"},
                 kind == "sent" ? "card.smil" : "mms.smil");
        EXPECT_FALSE(bytes(path(kind + "/mms.wap")).contains("texts"));
        const ProgramRun imported = importTo(kind + "/mms.wap", kind + ".mms");
        ASSERT_EQ(imported.code, 0) << imported.err.toStdString();
        EXPECT_EQ(imported.err, "") << "nothing left out";
        EXPECT_EQ(info(kind + ".mms"), expected) << kind.toStdString();
        const QList<QByteArray> files = media(kind + ".mms");
        const QList<QByteArray> exported{
            bytes(path(kind + "/Slide1.jpg")), bytes(path(kind + "/Slide2.jpg")),
            bytes(path(kind + "/Slide2.amr")), bytes(path(kind + "/Slide3.jpg"))};
        EXPECT_EQ(files, exported) << kind.toStdString();
        EXPECT_FALSE(exported.contains(QByteArray()));
    }

    // Under the name of a message file it opens, and imports, all the same.
    ASSERT_TRUE(QFile::copy(path("received/mms.wap"), path("phone.mms")));
    EXPECT_EQ(info("phone.mms"), expected);
    ASSERT_EQ(importTo("phone.mms", "kept.mms").code, 0);
    EXPECT_EQ(info("kept.mms"), expected);
}

TEST_F(BinaryMmsCliTest, ACutMessageIsRefusedWithItsNameOrTakenAsFarAsItGoes) {
    exportTo("sent", {"--kind", "wap"});
    const QByteArray whole = bytes(path("sent/mms.wap"));
    const auto write = [this](const QString& name, const QByteArray& data) {
        QFile out(path(name));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(data);
    };
    write("cut.wap", whole.left(200));
    const ProgramRun refused = importTo("cut.wap", "cut out.mms");
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.err.contains(path("cut.wap")) && refused.err.contains("claims more bytes"))
        << refused.err.toStdString();
    EXPECT_FALSE(QFile::exists(path("cut out.mms")));
    write("cut.mms", whole.left(200));
    const ProgramRun opened = cli({"info", path("cut.mms")});
    EXPECT_NE(opened.code, 0);
    EXPECT_TRUE(opened.err.contains(path("cut.mms"))) << opened.err.toStdString();

    // Cut in the last part, the last slide's text: the rest comes in, and what did not is said.
    write("late.wap", whole.left(whole.size() - 2));
    const ProgramRun partly = importTo("late.wap", "partly.mms");
    ASSERT_EQ(partly.code, 0) << partly.err.toStdString();
    EXPECT_TRUE(partly.err.contains("warning: import: The message is damaged"))
        << partly.err.toStdString();
    EXPECT_TRUE(partly.err.contains("Slide3.txt")) << partly.err.toStdString();
    const QString described = info("partly.mms");
    EXPECT_TRUE(described.contains("slides: 3")) << described.toStdString();
    EXPECT_TRUE(described.contains("slide 3: duration 3000 ms"));
    EXPECT_FALSE(described.contains("drei"));
}
