#include "TarEngine.h"
#include "QtPrinters.h"
#include "TarCommandLine.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <clocale>
#include <cstring>
#include <gtest/gtest.h>

// The archives are checked with GNU tar, and the hostile ones are made with
// Python's tarfile module, which writes whatever name and kind it is told.
namespace {
struct ToolRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

ToolRun runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    ToolRun run;
    if (!process.waitForFinished(60000))
        return run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QString quoted(const QString& path) {
    return u'"' + path + u'"';
}

QString packLine(const QString& archive, const QString& folder) {
    return "--display-dialog=0 -cvfz " + quoted(archive) + " " + quoted(folder + "\\*.*");
}

QString unpackLine(const QString& archive, const QString& folder) {
    return "--use-directory=0 --display-dialog=0 -xvf " + quoted(archive) + " -o  " +
           quoted(folder);
}

QString templateLine(const QString& archive, const QStringList& files) {
    QString line = "--use-directory=0 --display-dialog=0 -fc " + quoted(archive);
    for (const QString& file : files)
        line += " " + quoted(file);
    return line;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

// Everything under a folder, symbolic links and folders included, with the
// bytes of each regular file: two snapshots differ when anything was touched.
QMap<QString, QByteArray> snapshot(const QString& folder) {
    QMap<QString, QByteArray> result;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info(it.next());
        const QString key = QDir(folder).relativeFilePath(info.filePath());
        if (info.isSymLink())
            result[key] = "link:" + info.symLinkTarget().toUtf8();
        else if (info.isDir())
            result[key] = "folder";
        else
            result[key] = readAll(info.filePath());
    }
    return result;
}

QStringList namesIn(const QString& folder) {
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QStringList lines(const QByteArray& text) {
    return QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts);
}

class TarEngineTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_root.filePath(name); }

    // Builds an archive with Python's tarfile from (name, kind, payload) triples:
    // kind is file, dir, symlink, hardlink, chr or fifo; payload is the content
    // or the link target.
    void pythonTar(const QString& archive, const QList<QStringList>& members,
                   const QString& mode = "w") {
        QString script = "import io,sys,tarfile\n"
                         "t=tarfile.open(sys.argv[1],'" +
                         mode +
                         "',format=tarfile.GNU_FORMAT)\n"
                         "a=sys.argv[2:]\n"
                         "for i in range(0,len(a),3):\n"
                         "  name,kind,payload=a[i],a[i+1],a[i+2]\n"
                         "  m=tarfile.TarInfo(name)\n"
                         "  data=payload.encode()\n"
                         "  m.type={'file':tarfile.REGTYPE,'dir':tarfile.DIRTYPE,"
                         "'symlink':tarfile.SYMTYPE,'hardlink':tarfile.LNKTYPE,"
                         "'chr':tarfile.CHRTYPE,'fifo':tarfile.FIFOTYPE}[kind]\n"
                         "  if kind=='file':\n"
                         "    m.size=len(data); t.addfile(m,io.BytesIO(data))\n"
                         "  else:\n"
                         "    m.linkname=payload; t.addfile(m)\n"
                         "t.close()\n";
        QStringList arguments{"-c", script, archive};
        for (const QStringList& member : members)
            arguments += member;
        const ToolRun run = runTool("python3", arguments);
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    }

    QTemporaryDir m_root;
    TarEngine m_engine;
};
} // namespace

TEST_F(TarEngineTest, PackedFolderHoldsItsFilesByNameAndGnuTarExtractsThem) {
    const QString folder = path("work folder");
    const QMap<QString, QByteArray> files{
        {"message.xml", "<mms version=\"2.0\"/>"},
        {"Slide_1.bmp", QByteArray(70000, '\x5a') + QByteArray(300, '\0')},
        {"A051114_1234567.wav", "RIFF....WAVE"},
        {"name with spaces.jpg", "jpeg"},
        {"no_extension", ""},
        {"Grüße.txt", "umlaut"},
    };
    for (auto it = files.begin(); it != files.end(); ++it)
        writeFile(folder + "/" + it.key(), it.value());
    writeFile(folder + "/sub/inner.txt", "not packed: sub-folders stay out");
    ASSERT_TRUE(QFile::link(folder + "/message.xml", folder + "/link.xml"));

    const QString archive = path("out dir/message one.mms");
    QDir().mkpath(path("out dir"));
    QString output;
    ASSERT_EQ(m_engine.run(packLine(archive, folder), &output), 0)
        << m_engine.lastError().toStdString();
    EXPECT_TRUE(m_engine.lastError().isEmpty());
    EXPECT_FALSE(m_engine.isRunning());

    QStringList sorted = files.keys();
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(output, sorted.join(u'\n') + u'\n');
    EXPECT_TRUE(readAll(archive).startsWith("\x1f\x8b"));

    const ToolRun list = runTool("tar", {"--quoting-style=literal", "-tzf", archive});
    ASSERT_EQ(list.exitCode, 0) << list.err.toStdString();
    EXPECT_EQ(lines(list.out), sorted);

    const QString extracted = path("by gnu tar");
    QDir().mkpath(extracted);
    ASSERT_EQ(runTool("tar", {"xzf", archive, "-C", extracted}).exitCode, 0);
    EXPECT_EQ(snapshot(extracted), files);
    EXPECT_EQ(QFileInfo(archive).dir().entryList(QDir::Files), QStringList{"message one.mms"});

    // And back through the engine itself.
    const QString unpacked = path("by engine");
    ASSERT_EQ(m_engine.run(unpackLine(archive, unpacked), &output), 0)
        << m_engine.lastError().toStdString();
    EXPECT_EQ(snapshot(unpacked), files);
    EXPECT_EQ(lines(output.toUtf8()), sorted);
}

// gzip reads whatever follows its stream as another member; zeros there make
// it warn, and a strict reader refuses the file.
TEST_F(TarEngineTest, AMessageFileEndsWhereItsGzipStreamEnds) {
    const QString folder = path("small");
    writeFile(folder + "/message.xml", "<ROOT/>");
    writeFile(folder + "/A1.wav", QByteArray(3000, '\x11'));
    const QString archive = path("small.mms");
    ASSERT_EQ(m_engine.run(packLine(archive, folder)), 0) << m_engine.lastError().toStdString();

    const ToolRun test = runTool("gzip", {"-tv", archive});
    EXPECT_EQ(test.exitCode, 0) << test.err.toStdString();
    EXPECT_FALSE(test.err.contains("trailing")) << test.err.toStdString();
    // The last four bytes are the gzip trailer's length of the tar inside.
    const QByteArray bytes = readAll(archive);
    ASSERT_GT(bytes.size(), 8);
    const ToolRun inflated = runTool("gzip", {"-dc", archive});
    quint32 stored = 0;
    std::memcpy(&stored, bytes.constData() + bytes.size() - 4, 4);
    EXPECT_EQ(qFromLittleEndian(stored), quint32(inflated.out.size()));
    EXPECT_EQ(inflated.out.size() % 512, 0);
}

// Names are stored as the bytes they have on disk: under the C locale no
// character conversion is possible, and a name must still come out intact.
TEST_F(TarEngineTest, NonAsciiNamesSurviveTheCLocale) {
    writeFile(path("in/Grüße € ü.txt"), "x");
    const std::string saved = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "C");
    const int packed = m_engine.run(packLine(path("c.mms"), path("in")));
    const int unpacked = m_engine.run(unpackLine(path("c.mms"), path("out")));
    std::setlocale(LC_ALL, saved.c_str());
    ASSERT_EQ(packed, 0);
    EXPECT_EQ(unpacked, 0) << m_engine.lastError().toStdString();
    EXPECT_EQ(namesIn(path("out")), QStringList{"Grüße € ü.txt"});
    const ToolRun list = runTool("tar", {"--quoting-style=literal", "-tzf", path("c.mms")});
    EXPECT_EQ(QString::fromUtf8(list.out), "Grüße € ü.txt\n");
}

TEST_F(TarEngineTest, GnuTarArchivesWithFoldersUnpackFlat) {
    const QString source = path("src");
    writeFile(source + "/a/b/c.jpg", QByteArray(5000, 'c'));
    writeFile(source + "/a/d.txt", "d");
    writeFile(source + "/top.xml", "<top/>");
    const QMap<QString, QByteArray> flat{
        {"c.jpg", QByteArray(5000, 'c')}, {"d.txt", "d"}, {"top.xml", "<top/>"}};
    for (const QString flags : {"czf", "cf"}) {
        const QString archive = path("gnu." + flags);
        ASSERT_EQ(runTool("tar", {flags, archive, "-C", source, "a", "top.xml"}).exitCode, 0);
        EXPECT_TRUE(m_engine.isArchive(archive));
        const QString folder = path("flat-" + flags);
        QString output;
        ASSERT_EQ(m_engine.run(unpackLine(archive, folder), &output), 0)
            << m_engine.lastError().toStdString();
        EXPECT_EQ(snapshot(folder), flat) << flags.toStdString();
        EXPECT_TRUE(output.contains("a/b/c.jpg\n")) << output.toStdString();
    }
}

TEST_F(TarEngineTest, FilesThatAreNoTarArchiveAreRefusedWithNothingWritten) {
    writeFile(path("text.mms"), "This is a plain text file, long enough to look like data.\n");
    writeFile(path("empty.mms"), "");
    ASSERT_EQ(
        runTool("sh", {"-c", "gzip -c " + path("text.mms") + " > " + path("gz.mms")}).exitCode, 0);
    ASSERT_EQ(runTool("python3", {"-c",
                                  "import sys,zipfile\n"
                                  "z=zipfile.ZipFile(sys.argv[1],'w')\n"
                                  "z.writestr('message.xml','<mms/>')\nz.close()",
                                  path("zip.mms")})
                  .exitCode,
              0);
    ASSERT_EQ(runTool("tar", {"cf", path("nomember.mms"), "-T", "/dev/null"}).exitCode, 0);
    for (const QString name :
         {"text.mms", "empty.mms", "gz.mms", "zip.mms", "nomember.mms", "missing.mms", "."}) {
        EXPECT_FALSE(m_engine.isArchive(path(name))) << name.toStdString();
        const QString folder = path("out");
        EXPECT_EQ(m_engine.run(unpackLine(path(name), folder)), TarEngine::NotAnArchive)
            << name.toStdString();
        EXPECT_FALSE(m_engine.lastError().isEmpty());
        EXPECT_FALSE(QFileInfo::exists(folder)) << name.toStdString();
    }
}

TEST_F(TarEngineTest, HostileMembersNeverWriteOutsideTheFolder) {
    const QString outside = path("outside");
    writeFile(outside + "/secret.txt", "keep me");
    const QString folder = path("box/work");
    // A link left in the folder must be replaced, not written through.
    QDir().mkpath(folder);
    ASSERT_TRUE(QFile::link(outside + "/secret.txt", folder + "/planted.txt"));

    const QString archive = path("hostile.tar.gz");
    pythonTar(archive,
              {{"../evil1.txt", "file", "1"},
               {"/tmp/" + QFileInfo(path("abs")).fileName() + "-evil2.txt", "file", "2"},
               {"sub/../../evil3.txt", "file", "3"},
               {"..\\..\\evil4.txt", "file", "4"},
               {"C:\\evil5.txt", "file", "5"},
               {"escape", "symlink", outside},
               {"escape/through.txt", "file", "through"},
               {"secret.txt", "symlink", outside + "/secret.txt"},
               {"secret.txt", "file", "replaced inside"},
               {"hard.txt", "hardlink", outside + "/secret.txt"},
               {"null", "chr", ""},
               {"pipe", "fifo", ""},
               {"", "file", "empty name"},
               {".", "file", "dot"},
               {"folder/", "dir", ""},
               {"planted.txt", "file", "fresh"},
               {"good.txt", "file", "good"}},
              "w:gz");
    const QMap<QString, QByteArray> before = snapshot(m_root.path());

    QString output;
    EXPECT_EQ(m_engine.run(unpackLine(archive, folder), &output), TarEngine::MembersRefused);
    const QString error = m_engine.lastError();
    for (const char* refused :
         {"\"../evil1.txt\": name leads out", "-evil2.txt\": absolute name",
          "\"sub/../../evil3.txt\": name leads out", "\"../../evil4.txt\": name leads out",
          "\"C:/evil5.txt\": absolute name", "\"escape\": symbolic link",
          "\"secret.txt\": symbolic link", "\"hard.txt\": hard link", "\"null\": device",
          "\"pipe\": FIFO", "\"\": empty name", "\".\": not a file name"})
        EXPECT_TRUE(error.contains(refused)) << refused << " not in " << error.toStdString();

    // Only regular files, directly in the folder, and nothing else anywhere changed.
    const QMap<QString, QByteArray> inside{{"good.txt", "good"},
                                           {"planted.txt", "fresh"},
                                           {"secret.txt", "replaced inside"},
                                           {"through.txt", "through"}};
    EXPECT_EQ(snapshot(folder), inside);
    QMap<QString, QByteArray> after = snapshot(m_root.path());
    for (auto it = inside.begin(); it != inside.end(); ++it)
        after.remove("box/work/" + it.key());
    QMap<QString, QByteArray> expected = before;
    expected.remove("box/work/planted.txt");
    EXPECT_EQ(after, expected);
    EXPECT_EQ(readAll(outside + "/secret.txt"), "keep me");
    EXPECT_FALSE(QFileInfo::exists("/tmp/" + QFileInfo(path("abs")).fileName() + "-evil2.txt"));
    EXPECT_EQ(lines(output.toUtf8()),
              QStringList({"escape/through.txt", "secret.txt", "planted.txt", "good.txt"}));
}

TEST_F(TarEngineTest, SizeAndCountLimitsStopTheExtraction) {
    TarEngine small(TarLimits{1000, 2500, 5});
    const QByteArray big(2000, 'b');
    const QByteArray part(900, 'p');

    pythonTar(path("big.tar"), {{"ok.txt", "file", "ok"}, {"big.bin", "file", big}});
    EXPECT_EQ(small.run(unpackLine(path("big.tar"), path("big"))), TarEngine::LimitExceeded);
    EXPECT_TRUE(small.lastError().contains("big.bin")) << small.lastError().toStdString();
    EXPECT_EQ(namesIn(path("big")), QStringList{"ok.txt"});

    pythonTar(path("total.tar"),
              {{"p1", "file", part}, {"p2", "file", part}, {"p3", "file", part}});
    EXPECT_EQ(small.run(unpackLine(path("total.tar"), path("total"))), TarEngine::LimitExceeded);
    EXPECT_EQ(namesIn(path("total")), QStringList({"p1", "p2"}));

    QList<QStringList> many;
    for (int i = 0; i < 7; ++i)
        many.append({QString("m%1").arg(i), "file", "x"});
    pythonTar(path("many.tar"), many);
    EXPECT_EQ(small.run(unpackLine(path("many.tar"), path("many"))), TarEngine::LimitExceeded);
    EXPECT_EQ(namesIn(path("many")).size(), 5);

    // The default limit, against a member that declares 300 MiB in a tiny
    // archive: GNU tar stores the sparse file's holes as a map.
    const QString sparse = path("sparse/huge.bin");
    QDir().mkpath(path("sparse"));
    ASSERT_EQ(runTool("truncate", {"-s", "300M", sparse}).exitCode, 0);
    ASSERT_EQ(runTool("tar", {"-S", "-czf", path("sparse.tgz"), "-C", path("sparse"), "huge.bin"})
                  .exitCode,
              0);
    ASSERT_LT(QFileInfo(path("sparse.tgz")).size(), 100000);
    EXPECT_EQ(m_engine.run(unpackLine(path("sparse.tgz"), path("huge"))), TarEngine::LimitExceeded);
    EXPECT_TRUE(namesIn(path("huge")).isEmpty());
}

// What is packed must unpack again: the same table holds on both sides, and a
// folder beyond it is refused before the target is touched.
TEST_F(TarEngineTest, PackingKeepsWithinTheLimitsUnpackingHolds) {
    const TarLimits limits{1000, 2500, 3};
    TarEngine engine(limits);
    for (const char* name : {"a", "b", "c"})
        writeFile(path(QString("three/") + name), QByteArray(800, 'x'));
    ASSERT_EQ(engine.run(packLine(path("three.mms"), path("three"))), TarEngine::Success)
        << engine.lastError().toStdString();
    EXPECT_EQ(engine.run(unpackLine(path("three.mms"), path("back"))), TarEngine::Success);

    writeFile(path("three/d"), "x");
    writeFile(path("old.mms"), "previous");
    EXPECT_EQ(engine.run(packLine(path("old.mms"), path("three"))), TarEngine::LimitExceeded);
    EXPECT_TRUE(engine.lastError().contains("at most 3 files")) << engine.lastError().toStdString();
    EXPECT_EQ(readAll(path("old.mms")), "previous");

    QFile::remove(path("three/d"));
    writeFile(path("three/c"), QByteArray(1001, 'x'));
    EXPECT_EQ(engine.run(packLine(path("new.mms"), path("three"))), TarEngine::LimitExceeded);
    EXPECT_TRUE(engine.lastError().contains("at most 1000 bytes"))
        << engine.lastError().toStdString();
    EXPECT_FALSE(QFileInfo::exists(path("new.mms")));

    writeFile(path("three/c"), QByteArray(999, 'x'));
    EXPECT_EQ(engine.run(packLine(path("new.mms"), path("three"))), TarEngine::LimitExceeded)
        << "2599 bytes together";
    EXPECT_TRUE(engine.lastError().contains("at most 2500 bytes"));
}

// A message of 10,000 slides holds a slide file for each, and more.
TEST_F(TarEngineTest, AMessageOfTenThousandSlidesFitsTheStandardLimits) {
    const QString folder = path("many");
    QDir().mkpath(folder);
    for (int i = 1; i <= 10050; ++i) {
        QFile file(folder + QString("/Slide_%1.bmp").arg(i));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    ASSERT_EQ(m_engine.run(packLine(path("many.mms"), folder)), TarEngine::Success)
        << m_engine.lastError().toStdString();
    ASSERT_EQ(m_engine.run(unpackLine(path("many.mms"), path("back"))), TarEngine::Success)
        << m_engine.lastError().toStdString();
    EXPECT_EQ(QDir(path("back")).entryList(QDir::Files).size(), 10050);
}

TEST_F(TarEngineTest, DamagedArchiveLeavesNoHalfMember) {
    const QString source = path("src");
    writeFile(source + "/first.txt", "complete");
    QByteArray noise(200000, '\0');
    for (qsizetype i = 0; i < noise.size(); ++i)
        noise[i] = char((i * 7919) % 251);
    writeFile(source + "/second.bin", noise);
    ASSERT_EQ(
        runTool("tar", {"cf", path("whole.tar"), "-C", source, "first.txt", "second.bin"}).exitCode,
        0);
    writeFile(path("cut.tar"), readAll(path("whole.tar")).left(100000));
    EXPECT_TRUE(m_engine.isArchive(path("cut.tar")));
    EXPECT_EQ(m_engine.run(unpackLine(path("cut.tar"), path("out"))), TarEngine::DamagedArchive);
    EXPECT_TRUE(m_engine.lastError().contains("second.bin")) << m_engine.lastError().toStdString();
    EXPECT_EQ(namesIn(path("out")), QStringList{"first.txt"});
}

TEST_F(TarEngineTest, FailedPackKeepsThePreviousArchive) {
    writeFile(path("old.mms"), "previous archive");
    writeFile(path("in/a.txt"), "a");
    QDir().mkpath(path("empty"));
    // The kernel reports size 0 for this file and then delivers data, so the
    // pack fails after it has started writing.
    const QString line = templateLine(path("old.mms"), {path("in/a.txt"), "/proc/self/status"});
    EXPECT_EQ(m_engine.run(line), TarEngine::WriteFailed);
    EXPECT_TRUE(m_engine.lastError().contains("/proc/self/status"))
        << m_engine.lastError().toStdString();
    EXPECT_EQ(readAll(path("old.mms")), "previous archive");

    EXPECT_EQ(m_engine.run(packLine(path("old.mms"), path("no such folder"))),
              TarEngine::MissingFile);
    EXPECT_EQ(m_engine.run(packLine(path("old.mms"), path("empty"))), TarEngine::MissingFile);
    EXPECT_EQ(m_engine.run(packLine(path("no folder/new.mms"), path("in"))),
              TarEngine::WriteFailed);
    EXPECT_EQ(readAll(path("old.mms")), "previous archive");
    EXPECT_EQ(namesIn(m_root.path()), QStringList({"empty", "in", "old.mms"}));
}

TEST_F(TarEngineTest, TemplateIsPlainTarOfTheGivenFilesInOrder) {
    writeFile(path("one place/zeta.xml"), "<z/>");
    writeFile(path("other place/alpha.gif"), "GIF89a");
    writeFile(path("other place/mid dle.txt"), "m");
    const QStringList files{path("one place/zeta.xml"), path("other place/alpha.gif"),
                            path("other place/mid dle.txt")};
    const QString archive = path("target/My template.tpl");
    QDir().mkpath(path("target"));
    QString output = "untouched";
    ASSERT_EQ(m_engine.run(templateLine(archive, files), &output), 0)
        << m_engine.lastError().toStdString();
    EXPECT_TRUE(output.isEmpty());
    const QByteArray bytes = readAll(archive);
    EXPECT_FALSE(bytes.startsWith("\x1f\x8b"));
    EXPECT_EQ(bytes.mid(257, 5), "ustar");
    const ToolRun list = runTool("tar", {"tf", archive});
    ASSERT_EQ(list.exitCode, 0) << list.err.toStdString();
    EXPECT_EQ(lines(list.out), QStringList({"zeta.xml", "alpha.gif", "mid dle.txt"}));
    EXPECT_EQ(runTool("tar", {"xOf", archive, "alpha.gif"}).out, "GIF89a");

    const QString missing = path("target/missing.tpl");
    EXPECT_EQ(m_engine.run(templateLine(missing, {files.at(0), path("nowhere.gif")})),
              TarEngine::MissingFile);
    EXPECT_TRUE(m_engine.lastError().contains("nowhere.gif"));
    EXPECT_FALSE(QFileInfo::exists(missing));
}

TEST_F(TarEngineTest, ListingIsCutToTheOutputSize) {
    const QString folder = path("many");
    for (int i = 0; i < 40; ++i)
        writeFile(folder + QString("/file_number_%1.txt").arg(i, 3, 10, QChar(u'0')), "x");
    QString full;
    ASSERT_EQ(m_engine.run(packLine(path("a.mms"), folder), &full, 100000), 0);
    EXPECT_EQ(full.size(), 40 * 20);
    QString output;
    ASSERT_EQ(m_engine.run(packLine(path("a.mms"), folder), &output), 0);
    EXPECT_EQ(output, full.left(511));
    ASSERT_EQ(m_engine.run(unpackLine(path("a.mms"), path("out")), &output, 30), 0);
    EXPECT_EQ(output, full.left(29));
    ASSERT_EQ(m_engine.run(unpackLine(path("a.mms"), path("out")), &output, 0), 0);
    EXPECT_TRUE(output.isEmpty());
}

TEST_F(TarEngineTest, CommandLinesAreCheckedStrictly) {
    writeFile(path("in/a.txt"), "a");
    ASSERT_EQ(m_engine.run("--display-dialog=0 -zfvc " + quoted(path("a.mms")) + " " +
                           quoted(path("in") + "/*.*")),
              0);
    EXPECT_EQ(m_engine.run("--use-directory=0 --display-dialog=0 -fvx " + quoted(path("a.mms")) +
                           " -o " + quoted(path("out"))),
              0);
    EXPECT_EQ(readAll(path("out/a.txt")), "a");

    const QString archive = quoted(path("a.mms"));
    const QString out = " -o  " + quoted(path("bad"));
    for (const QString& line :
         {QString(), QString("   "), "--use-directory=0 -xvqf " + archive + out,
          "--use-directory=0 -xv " + archive + out, "--use-directory=0 -xcf " + archive + out,
          "--use-directory=0 -vf " + archive + out, "--use-directory=0 -xf " + archive,
          "--use-directory=0 -xf " + archive + " -o", "--use-directory=0 -xf \"open" + out,
          "--use-directory=2 -xf " + archive + out, "--colour=1 -xf " + archive + out,
          "--use-directory -xf " + archive + out, "-xf " + archive + out,
          "--use-directory=0 -xf " + archive + " extra" + out, "-cf " + archive,
          "-cf " + archive + " \"\"", "-cf " + archive + " " + quoted(path("in/a.txt")) + out}) {
        EXPECT_EQ(m_engine.run(line), TarEngine::BadCommandLine) << line.toStdString();
        EXPECT_FALSE(m_engine.lastError().isEmpty()) << line.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(path("bad")));

    const TarCommandLine parsed("--use-directory=0 -xf \"C:\\in dir\\m.mms\" -o \"D:\\w\\\"");
    ASSERT_TRUE(parsed.isValid()) << parsed.error().toStdString();
    EXPECT_EQ(parsed.operation(), TarCommandLine::Operation::Extract);
    EXPECT_FALSE(parsed.keepsFolders());
    EXPECT_FALSE(parsed.listsMembers());
    EXPECT_EQ(parsed.archive(), "C:/in dir/m.mms");
    EXPECT_EQ(parsed.outputFolder(), "D:/w/");
}
