#include "FolderPrint.h"
#include "ProgramRun.h"
#include "QtPrinters.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <csignal>
#include <map>

// The command line tool as someone who sends the user files means harm would
// use it: planted links, names that climb out of their folder, FIFOs as
// targets, files cut short, commands killed half-way. Each case ends in the
// program's own message and code, with the user's files exactly as they were.
class HostileInputTest : public ::testing::Test {
protected:
    using Result = ProgramRun;

    void SetUp() override {
        ASSERT_TRUE(m_home.isValid());
        ASSERT_TRUE(QDir().mkpath(tmp()));
    }

    QString path(const QString& name) const { return m_home.path() + "/" + name; }
    // The temporary folder the commands are given, so what they leave shows.
    QString tmp() const { return path("tmp"); }
    static QString archive(const QString& file) {
        return QStringLiteral(VELLUMO_SOURCE_DIR) + "/data/archive/" + file;
    }
    static QString cliPath() { return cliProgram(); }

    QProcessEnvironment environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_DATA_HOME", path("xdg"));
        env.insert("TMPDIR", tmp());
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.remove("XDG_RUNTIME_DIR");
        return env;
    }

    Result cli(const QStringList& arguments) const {
        return runProgram(cliPath(), arguments, environment(), m_home.path());
    }

    // A shell line, with CLI standing for the tool.
    Result shell(const QString& line) const {
        QProcessEnvironment env = environment();
        env.insert("CLI", cliPath());
        return runProgram("bash", {"-c", line}, env, m_home.path());
    }

    void writeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    static QByteArray readFile(const QString& file) {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    QStringList leftovers() const {
        return QDir(tmp()).entryList({"Vellumo-*"}, QDir::AllEntries | QDir::Hidden);
    }

    // A one-slide message of a still background, unpacked into folder "name".
    void makeMessageFolder(const QString& name, const QString& background) const {
        const Result made = cli({"new", name + ".mms", "--slide", "2000", "--background",
                                 archive(background), "--slide-text", "hello"});
        ASSERT_EQ(made.code, 0) << made.err.toStdString();
        const Result unpacked = cli({"unpack", name + ".mms", name});
        ASSERT_EQ(unpacked.code, 0) << unpacked.err.toStdString();
    }

    // A template made the way a user makes one, from a message of that background.
    QString makeTemplate(const QString& name, const QString& background) const {
        const Result made =
            cli({"new", name + ".mms", "--slide", "2000", "--background", archive(background)});
        EXPECT_EQ(made.code, 0) << made.err.toStdString();
        QDir().mkpath(path(name));
        const Result exported = cli(
            {"export", name + ".mms", "--kind", "tpl", "--format", "ms", path(name + "/mms.smil")});
        EXPECT_EQ(exported.code, 0) << exported.err.toStdString();
        return path(name + "/mms.tpl");
    }

    QColor centreOfSlide(const QString& message) const {
        const QString png = message + ".png";
        const Result rendered = cli({"render", message, "1", png});
        EXPECT_EQ(rendered.code, 0) << rendered.err.toStdString();
        const QImage picture(path(png));
        return picture.isNull() ? QColor() : picture.pixelColor(picture.rect().center());
    }

    // Within what JPEG encoding changes, and far from another picture.
    static bool sameColour(const QColor& a, const QColor& b) {
        return std::abs(a.red() - b.red()) < 8 && std::abs(a.green() - b.green()) < 8 &&
               std::abs(a.blue() - b.blue()) < 8;
    }

    QTemporaryDir m_home;
};

TEST_F(HostileInputTest, TemplateImportWorksInAPrivateFolderAndLeavesNothing) {
    const QString tpl = makeTemplate("x", "Backgrounds/sky_gradient.jpg");
    // Someone else's link where a shared unpack folder would be.
    ASSERT_TRUE(QDir().mkpath(path("victim")));
    writeFile("victim/keep.doc", "keep");
    ASSERT_TRUE(QFile::link(path("victim"), tmp() + "/tpldir"));

    const Result imported = cli({"import", tpl, "m.mms"});
    EXPECT_EQ(imported.code, 0) << imported.err.toStdString();
    EXPECT_EQ(QDir(path("victim")).entryList(QDir::Files), QStringList{"keep.doc"});
    EXPECT_EQ(readFile(path("victim/keep.doc")), "keep");
    EXPECT_TRUE(QFileInfo(tmp() + "/tpldir").isSymLink()) << "a stranger's link is left alone";
    EXPECT_EQ(leftovers(), QStringList()) << "the unpacked media went with the command";
    EXPECT_TRUE(tarMembers(path("m.mms")).contains("message.xml"));
}

TEST_F(HostileInputTest, TwoImportsAtOnceKeepTheirOwnPictures) {
    const QString dark = makeTemplate("dark", "Backgrounds/sunset_gradient.jpg");
    const QString light = makeTemplate("light", "Backgrounds/sky_gradient.jpg");
    const QColor darkColour = centreOfSlide("dark.mms");
    const QColor lightColour = centreOfSlide("light.mms");
    ASSERT_FALSE(sameColour(darkColour, lightColour));
    for (int round = 0; round < 3; ++round) {
        QProcess first, second;
        for (QProcess* process : {&first, &second}) {
            process->setProcessEnvironment(environment());
            process->setWorkingDirectory(m_home.path());
        }
        first.start(cliPath(), {"import", dark, "dark-in.mms"});
        second.start(cliPath(), {"import", light, "light-in.mms"});
        ASSERT_TRUE(first.waitForFinished(120000) && second.waitForFinished(120000));
        ASSERT_EQ(first.exitCode(), 0) << first.readAllStandardError().toStdString();
        ASSERT_EQ(second.exitCode(), 0) << second.readAllStandardError().toStdString();
        EXPECT_TRUE(sameColour(centreOfSlide("dark-in.mms"), darkColour)) << "round " << round;
        EXPECT_TRUE(sameColour(centreOfSlide("light-in.mms"), lightColour)) << "round " << round;
    }
}

TEST_F(HostileInputTest, ASmilSetCannotReadThroughLinksOrClimbOut) {
    writeFile("secret.txt", "the user's secret");
    ASSERT_TRUE(QDir().mkpath(path("set")));
    QFile::copy(archive("Backgrounds/sky_gradient.jpg"), path("set/pic.jpg"));
    ASSERT_TRUE(QFile::link(path("secret.txt"), path("set/t.txt")));
    QFile::copy(archive("Backgrounds/sky_gradient.jpg"), path("outside.jpg"));
    const QByteArray head = "<smil><body><par dur=\"1000ms\">";
    const QByteArray tail = "</par></body></smil>";
    const std::map<QByteArray, QByteArray> sets{
        {"link.smil", "<img src=\"pic.jpg\"/><text src=\"t.txt\"/>"},
        {"climb.smil", "<img src=\"../outside.jpg\"/>"},
        {"absolute.smil", "<img src=\"" + path("outside.jpg").toUtf8() + "\"/>"},
        {"sub.smil", "<audio src=\"./../secret.txt\"/>"},
    };
    for (const auto& [name, body] : sets) {
        writeFile("set/" + name, head + body + tail);
        const Result imported = cli({"import", path("set/" + name), "out.mms"});
        EXPECT_EQ(imported.code, 1) << name.toStdString();
        EXPECT_TRUE(imported.err.contains("cannot use")) << imported.err.toStdString();
        EXPECT_FALSE(QFileInfo::exists(path("out.mms"))) << name.toStdString();
    }
}

TEST_F(HostileInputTest, NamesInAMessageNeverReachOutsideFiles) {
    makeMessageFolder("w", "Backgrounds/sky_gradient.jpg");
    // Deep enough that a name climbing two folders up stays in the test's own.
    ASSERT_TRUE(QDir().mkpath(path("a/b")) && QDir().rename(path("w"), path("a/b/w")));
    const QByteArray secret = "SECRET-" + QByteArray(200, 'x');
    writeFile("secret.mp3", secret);
    const QString climb = QString("../").repeated(20) + path("secret.mp3").mid(1);
    QByteArray xml = readFile(path("a/b/w/message.xml"));
    xml.replace("<SOUND", "<SOUND url=\"" + climb.toUtf8() + "\" name=\"s\"");
    xml.replace("<SLIDE name=\"Slide\"", "<SLIDE name=\"../../evil\"");
    writeFile("a/b/w/message.xml", xml);
    ASSERT_TRUE(xml.contains("../../evil"));

    const Result packed = cli({"pack", "a/b/w", "evil.mms"});
    ASSERT_EQ(packed.code, 0) << packed.err.toStdString();
    EXPECT_TRUE(packed.err.contains("left out")) << packed.err.toStdString();
    for (const auto& [entry, print] : folderFingerprint(m_home.path()))
        EXPECT_FALSE(entry.contains("evil_1")) << entry.toStdString();
    for (const QString& member : tarMembers(path("evil.mms")))
        EXPECT_FALSE(member.contains('/')) << member.toStdString();
    EXPECT_TRUE(tarMembers(path("evil.mms")).contains("Slide_1.bmp"));

    // The same names straight in a received file, as every export meets them.
    QDir().mkpath(path("hostile"));
    QFile::copy(path("a/b/w/message.xml"), path("hostile/message.xml"));
    for (const QString& name : QDir(path("a/b/w")).entryList({"B*"}, QDir::Files))
        QFile::copy(path("a/b/w/" + name), path("hostile/" + name));
    ASSERT_EQ(shell("tar czf received.mms -C hostile .").code, 0);
    for (const char* kind : {"smil", "tpl", "wap"}) {
        const QString folder = path(QString("out-") + kind);
        QDir().mkpath(folder);
        const Result exported =
            cli({"export", "received.mms", "--kind", kind, "--format", "ms", folder + "/mms.smil"});
        EXPECT_EQ(exported.code, 0) << kind << exported.err.toStdString();
        for (const QString& file : QDir(folder).entryList(QDir::Files))
            EXPECT_FALSE(readFile(folder + "/" + file).contains("SECRET-"))
                << kind << " " << file.toStdString();
    }
}

TEST_F(HostileInputTest, PackOnlyReadsTheFolderItPacks) {
    makeMessageFolder("w", "Backgrounds/sky_gradient.jpg");
    writeFile("w/Slide_notes.txt", "the user's own notes");
    const auto before = folderFingerprint(path("w"));

    ASSERT_EQ(cli({"pack", "w", "out.mms"}).code, 0);
    EXPECT_EQ(folderFingerprint(path("w")), before);

    // A pack cut short by a file size limit: the folder stays whole and the
    // next pack still has its slide.
    const Result limited = shell("( trap '' XFSZ; ulimit -f 20; \"$CLI\" pack w big.mms )");
    EXPECT_NE(limited.code, 0);
    EXPECT_EQ(folderFingerprint(path("w")), before);
    const Result again = cli({"pack", "w", "again.mms"});
    EXPECT_EQ(again.code, 0) << again.err.toStdString();
    EXPECT_TRUE(tarMembers(path("again.mms")).contains("Slide_1.bmp"));

    const Result intoItself = cli({"pack", "w", "w/message.xml"});
    EXPECT_NE(intoItself.code, 0);
    EXPECT_TRUE(intoItself.err.contains("folder being packed")) << intoItself.err.toStdString();
    EXPECT_EQ(folderFingerprint(path("w")), before);

    // A message XML cut short is no message, not an empty one.
    QByteArray xml = readFile(path("w/message.xml"));
    writeFile("w/message.xml", xml.left(xml.size() / 2));
    const auto cut = folderFingerprint(path("w"));
    const Result broken = cli({"pack", "w", "broken.mms"});
    EXPECT_NE(broken.code, 0);
    EXPECT_FALSE(QFileInfo::exists(path("broken.mms")));
    EXPECT_EQ(folderFingerprint(path("w")), cut);
}

TEST_F(HostileInputTest, AReadOnlyFolderCanBePacked) {
    makeMessageFolder("w", "Backgrounds/sky_gradient.jpg");
    const auto before = folderFingerprint(path("w"));
    // Root ignores permission bits, so the folder is made read-only by a mount.
    const Result packed =
        shell("unshare -m bash -c 'mount --bind w w && mount -o remount,bind,ro w && "
              "touch w/probe 2>/dev/null && exit 77; \"$CLI\" pack w ro.mms'");
    if (packed.code == 77 || packed.err.contains("unshare"))
        GTEST_SKIP() << "no private mount here: " << packed.err.toStdString();
    EXPECT_EQ(packed.code, 0) << packed.err.toStdString();
    EXPECT_TRUE(tarMembers(path("ro.mms")).contains("Slide_1.bmp"));
    EXPECT_EQ(folderFingerprint(path("w")), before);
}

TEST_F(HostileInputTest, TargetsThatAreNoFilesAreRefused) {
    makeMessageFolder("w", "Backgrounds/sky_gradient.jpg");
    ASSERT_EQ(shell("mkfifo f.mms f.gif f.png && mkdir out && mkfifo out/mms.smil").code, 0);
    // A device of the test's own (a null device): a program that replaced it
    // must not be able to replace the system's.
    const bool device = shell("mknod null.mms c 1 3").code == 0;
    std::map<QString, QStringList> commands{
        {"new", {"new", "f.mms", "--slide", "1000"}},
        {"convert-image", {"convert-image", archive("Pictures/star.gif"), "f.gif"}},
        {"render", {"render", "w.mms", "1", "f.png"}},
        {"pack", {"pack", "w", "f.mms"}},
        {"export",
         {"export", "w.mms", "--kind", "smil", "--format", "ms", "out/mms.smil", "--overwrite"}},
    };
    if (device)
        commands["device"] = {"new", "null.mms", "--slide", "1000"};
    for (const auto& [what, arguments] : commands) {
        const Result refused = cli(arguments);
        EXPECT_NE(refused.code, 0) << what.toStdString();
        EXPECT_TRUE(refused.err.contains("not a regular file")) << refused.err.toStdString();
    }
    for (const QString& fifo : QStringList{"f.mms", "f.gif", "f.png", "out/mms.smil"})
        EXPECT_FALSE(QFileInfo(path(fifo)).isFile()) << fifo.toStdString();
    EXPECT_EQ(shell("test -p f.mms && test -p out/mms.smil").code, 0);
    EXPECT_TRUE(!device || shell("test -c null.mms").code == 0);

    // A link to a regular file is written through, and stays a link.
    writeFile("real.mms", "old");
    ASSERT_TRUE(QFile::link("real.mms", path("link.mms")));
    ASSERT_EQ(cli({"new", "link.mms", "--slide", "1000"}).code, 0);
    EXPECT_TRUE(QFileInfo(path("link.mms")).isSymLink());
    EXPECT_TRUE(tarMembers(path("real.mms")).contains("message.xml"));
}

TEST_F(HostileInputTest, WhatIsSavedStaysWithinWhatOpens) {
    // A sound larger than a message may carry: refused with the limit named,
    // before anything is written.
    ASSERT_EQ(shell("truncate -s 300M big.wav").code, 0);
    const Result big = cli({"new", "big.mms", "--slide", "1000", "--sound", "big.wav"});
    EXPECT_NE(big.code, 0);
    EXPECT_TRUE(big.err.contains("256 MB")) << big.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(path("big.mms")));
}

TEST_F(HostileInputTest, ControlCharactersNeverReachTheXml) {
    const QString text = QString("a\x01") + "b\x0b" + "c\x1f" + "d\tline\nnext";
    const Result made = cli({"new", "c.mms", "--name", QString("bell\x07"), "--slide", "1000",
                             "--slide-text", text, "--text", text, "0,0,100,40"});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();
    ASSERT_EQ(cli({"unpack", "c.mms", "c"}).code, 0);
    QDir().mkpath(path("cx"));
    ASSERT_EQ(
        cli({"export", "c.mms", "--kind", "smil", "--format", "ms", path("cx/mms.smil")}).code, 0);
    for (const QString& file : QStringList{"c/message.xml", "cx/mms.smil", "cx/texts.xml"}) {
        const Result lint = shell("xmllint --noout " + file);
        EXPECT_EQ(lint.code, 0) << file.toStdString() << lint.err.toStdString();
    }
    QByteArray xml = readFile(path("c/message.xml"));
    EXPECT_TRUE(xml.contains("name=\"bell\"")) << xml.toStdString();
    EXPECT_TRUE(readFile(path("cx/texts.xml")).contains("abcd\tline")) << "tabs stay";
    EXPECT_EQ(readFile(path("cx/Slide1.txt")), "abcd\tline\r\nnext\r\n") << "line breaks stay";

    // References a strict reader refuses, written by some other program.
    xml.replace("bell", "ring&#7;&#1;");
    writeFile("c/message.xml", xml);
    ASSERT_EQ(shell("tar czf hostile.mms -C c .").code, 0);
    QDir().mkpath(path("hx"));
    ASSERT_EQ(
        cli({"export", "hostile.mms", "--kind", "smil", "--format", "ms", path("hx/mms.smil")})
            .code,
        0);
    EXPECT_EQ(shell("xmllint --noout hx/mms.smil hx/texts.xml").code, 0);
    EXPECT_TRUE(readFile(path("hx/mms.smil")).contains("content=\"ring\""));
}

// A phone that takes the connection and never answers keeps a send waiting.
class SilentPeer {
public:
    SilentPeer() { m_server.listen(QHostAddress::LocalHost); }
    QString target() const { return "tcp:127.0.0.1:" + QString::number(m_server.serverPort()); }

private:
    QTcpServer m_server;
};

TEST_F(HostileInputTest, KilledCommandsLeaveNoUnpackedCopy) {
    ASSERT_EQ(cli({"new", "k.mms", "--slide", "1000", "--slide-text", "hi"}).code, 0);
    ASSERT_EQ(leftovers(), QStringList());

    const Result piped = shell("\"$CLI\" info k.mms | true; echo ${PIPESTATUS[0]}");
    EXPECT_EQ(piped.out.trimmed(), "141") << "ended by SIGPIPE " << piped.err.toStdString();
    EXPECT_EQ(leftovers(), QStringList());

    SilentPeer peer;
    auto startWaitingSend = [&](QProcess& process) {
        process.setProcessEnvironment(environment());
        process.setWorkingDirectory(m_home.path());
        process.start(cliPath(), {"send", "k.mms", "--via", "obex", "--target", peer.target()});
        QElapsedTimer waited;
        waited.start();
        while (leftovers().isEmpty() && waited.elapsed() < 30000)
            QThread::msleep(20);
        QThread::msleep(300);
    };
    for (const int signal : {SIGTERM, SIGINT}) {
        QProcess process;
        startWaitingSend(process);
        ASSERT_FALSE(leftovers().isEmpty()) << "the command makes its private folder";
        ::kill(pid_t(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished(30000));
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit) << "the signal ends it as before";
        EXPECT_EQ(leftovers(), QStringList()) << "signal " << signal;
    }

    QProcess killed;
    startWaitingSend(killed);
    ::kill(pid_t(killed.processId()), SIGKILL);
    ASSERT_TRUE(killed.waitForFinished(30000));
    EXPECT_FALSE(leftovers().isEmpty()) << "nothing can clean up after SIGKILL at once";
    ASSERT_EQ(cli({"settings", "get", "preferences", "Language"}).code, 0);
    EXPECT_EQ(leftovers(), QStringList()) << "the next start sweeps it up";
}

TEST_F(HostileInputTest, ExportFoldersWithOddNamesWorkOrAreRefusedForTheirName) {
    ASSERT_EQ(cli({"new", "m.mms", "--slide", "2000", "--background",
                   archive("Backgrounds/beach.jpg"), "--slide-text", "hi"})
                  .code,
              0);
    struct Case {
        QString folder;
        QStringList refused; // the kinds refused for the name, the rest must work
        QString reason;
    };
    const QList<Case> cases{
        {"q\"uote", {"tpl", "sis"}, "double quote"},
        {"new\nline", {"sis"}, "line break"},
        {"back\\slash", {"smil", "tpl", "sis", "wap"}, "backslash"},
    };
    for (const Case& c : cases) {
        for (const QString kind : {"smil", "tpl", "sis", "wap"}) {
            const QString folder = path(kind + "-" + c.folder);
            ASSERT_TRUE(QDir().mkpath(folder));
            const Result done =
                cli({"export", "m.mms", "--kind", kind, "--format", "ms", folder + "/card.smil"});
            const QStringList left =
                QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            if (c.refused.contains(kind)) {
                EXPECT_EQ(done.code, 1) << kind.toStdString() << c.reason.toStdString();
                EXPECT_TRUE(done.err.contains(folder) && done.err.contains(c.reason))
                    << done.err.toStdString();
                EXPECT_EQ(left, QStringList()) << kind.toStdString();
                continue;
            }
            ASSERT_EQ(done.code, 0) << kind.toStdString() << ": " << done.err.toStdString();
            EXPECT_FALSE(left.filter(".vellumo-export").size()) << left.join(' ').toStdString();
            if (kind == "tpl") {
                // What was made is a real template: GNU tar finds its texts index.
                QProcess tar;
                tar.start("tar", {"tf", folder + "/mms.tpl"});
                ASSERT_TRUE(tar.waitForFinished(30000));
                EXPECT_TRUE(tar.readAllStandardOutput().contains("texts.xml"));
            }
        }
    }
}
