// makesis run as the export runs it, its packages read back by an
// independent reader (sis_reader.py).
#include "QtPrinters.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {
struct ProgramRun {
    int exitCode = -1;
    QString out;
    QString err;
};

const QString templates = QStringLiteral("!:\\documents\\MMS\\Templates\\T\\");

ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& folder) {
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QString sha256(const QByteArray& bytes) {
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QByteArray jpegBytes() {
    QImage image(48, 32, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 5, y * 7, (x * y) % 256));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG", 90);
    return buffer.data();
}

// An AMR file header and frames of noise: data zlib cannot shrink.
QByteArray amrBytes() {
    QByteArray bytes("#!AMR\n");
    QRandomGenerator random(8);
    for (int i = 0; i < 4000; ++i)
        bytes.append(char(random.bounded(256)));
    return bytes;
}
} // namespace

class MakesisTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        QDir(m_dir.path()).mkpath(QStringLiteral("F"));
        QDir(m_dir.path()).mkpath(QStringLiteral("elsewhere"));
        m_jpeg = jpegBytes();
        m_amr = amrBytes();
        write(QStringLiteral("F/a.jpg"), m_jpeg);
        write(QStringLiteral("F/b.amr"), m_amr);
    }

    QString path(const QString& relative) const { return m_dir.filePath(relative); }

    void write(const QString& relative, const QByteArray& bytes) const {
        QFile file(path(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    // Run from another folder, so relative sources must be found from the
    // .pkg's folder, not the working folder.
    ProgramRun makesis(const QStringList& arguments) const {
        return runProgram(QStringLiteral(VELLUMO_BUILD_DIR "/makesis"), arguments,
                          path(QStringLiteral("elsewhere")));
    }

    QJsonObject readSis(const QString& sisPath) const {
        const ProgramRun reader =
            runProgram(QStringLiteral(VELLUMO_PYTHON3),
                       {QStringLiteral(VELLUMO_SOURCE_DIR "/tests/tools/sis_reader.py"), sisPath},
                       m_dir.path());
        EXPECT_EQ(reader.exitCode, 0) << reader.err.toStdString();
        return QJsonDocument::fromJson(reader.out.toUtf8()).object();
    }

    // The five lines the export writes for base name T and files a.jpg and b.amr
    // in sourceFolder.
    QByteArray exportedPkg(const QString& extraHeaderWords = {},
                           const QString& sourceFolder = QStringLiteral("F")) const {
        const QString folder = path(sourceFolder) + u'/';
        const QStringList lines{
            "#{\"T\"},(0x10E7B29D),1,0,0,TYPE=SISUPGRADE" + extraHeaderWords,
            "(0x10E7B29D),1,0,0,{\"CopyOnlyStub\"}",
            "(0x10C4D6A3), 1, 0, 0, {\"CorvanePZentorxPlatformProductID\"}",
            "\"" + folder + "a.jpg\"-\"" + templates + "a.jpg\"",
            "\"" + folder + "b.amr\"-\"" + templates + "b.amr\"",
        };
        return (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toUtf8();
    }

    static void expectFile(const QJsonValue& record, const QString& destination,
                           const QByteArray& bytes) {
        const QJsonObject file = record.toObject();
        EXPECT_EQ(file["destination"].toString(), destination);
        EXPECT_EQ(file["type"].toInt(), 0);
        const QJsonArray data = file["data"].toArray();
        ASSERT_EQ(data.size(), 1);
        EXPECT_EQ(data[0].toObject()["size"].toInteger(), bytes.size());
        EXPECT_EQ(data[0].toObject()["sha256"].toString(), sha256(bytes))
            << destination.toStdString();
    }

    QStringList folderEntries() const {
        return QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    QTemporaryDir m_dir;
    QByteArray m_jpeg;
    QByteArray m_amr;
};

TEST_F(MakesisTest, TheExportedPackageReadsBackWithEveryRecord) {
    write(QStringLiteral("T.pkg"), exportedPkg());
    const ProgramRun run = makesis({path(QStringLiteral("T.pkg"))});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
    ASSERT_TRUE(QFile::exists(path(QStringLiteral("T.SIS")))) << "written beside the .pkg";

    const QJsonObject sis = readSis(path(QStringLiteral("T.SIS")));
    EXPECT_EQ(sis["uid1"].toInteger(), 0x10E7B29D);
    EXPECT_EQ(sis["uid2"].toInteger(), 0x10003A12);
    EXPECT_EQ(sis["uid3"].toInteger(), 0x10000419);
    EXPECT_TRUE(sis["uid4_ok"].toBool());
    EXPECT_TRUE(sis["checksum_ok"].toBool());
    EXPECT_EQ(sis["type"].toInt(), 5) << "upgrade";
    EXPECT_EQ(sis["version"].toArray(), QJsonArray({1, 0, 0}));
    EXPECT_EQ(sis["options"].toInt(), 0x0001) << "UTF-16 names, compressed data";
    EXPECT_EQ(sis["drive"].toInt(), 0x21);
    EXPECT_EQ(sis["languages"].toArray(), QJsonArray({1}));
    EXPECT_EQ(sis["names"].toArray(), QJsonArray({"T"}));
    EXPECT_EQ(sis["max_installed_space"].toInteger(), m_jpeg.size() + m_amr.size());

    // Requisites, like files, are stored last line first.
    const QJsonArray requisites = sis["requisites"].toArray();
    ASSERT_EQ(requisites.size(), 2);
    EXPECT_EQ(requisites[0].toObject()["uid"].toInteger(), 0x10C4D6A3);
    EXPECT_EQ(requisites[0].toObject()["major"].toInt(), 1);
    EXPECT_EQ(requisites[0].toObject()["names"].toArray(),
              QJsonArray({"CorvanePZentorxPlatformProductID"}));
    EXPECT_EQ(requisites[1].toObject()["uid"].toInteger(), 0x10E7B29D);
    EXPECT_EQ(requisites[1].toObject()["names"].toArray(), QJsonArray({"CopyOnlyStub"}));

    // The last file line comes first.
    const QJsonArray files = sis["files"].toArray();
    ASSERT_EQ(files.size(), 2);
    expectFile(files[0], templates + "b.amr", m_amr);
    expectFile(files[1], templates + "a.jpg", m_jpeg);
    for (const QJsonValue& file : files)
        EXPECT_FALSE(file["data"][0]["raw"].toBool()) << "stored as a zlib stream";
    EXPECT_LE(sis["last_string_end"].toInteger(), sis["first_data_start"].toInteger())
        << "every string lies before every file's data";
}

TEST_F(MakesisTest, ThePackageKeepsNoFolderNameOfTheMachineItWasBuiltOn) {
    const QString folder = QStringLiteral("Private - tax papers 2025");
    QDir(m_dir.path()).mkpath(folder);
    write(folder + "/a.jpg", m_jpeg);
    write(folder + "/b.amr", m_amr);
    write(QStringLiteral("T.pkg"), exportedPkg({}, folder));
    const ProgramRun run = makesis({path(QStringLiteral("T.pkg"))});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();

    QFile built(path(QStringLiteral("T.SIS")));
    ASSERT_TRUE(built.open(QIODevice::ReadOnly));
    const QByteArray package = built.readAll();
    // Names are stored as UTF-16; an 8-bit copy would give the folder away as well.
    const auto appears = [&package](const QString& text) {
        const QByteArray utf16(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        return package.contains(utf16) || package.contains(text.toUtf8());
    };
    EXPECT_FALSE(appears(folder));
    EXPECT_FALSE(appears(QFileInfo(m_dir.path()).fileName())) << "nor the folder above it";

    const QJsonObject sis = readSis(built.fileName());
    EXPECT_TRUE(sis["checksum_ok"].toBool());
    const QJsonArray files = sis["files"].toArray();
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(files[0]["source"].toString(), "b.amr");
    EXPECT_EQ(files[1]["source"].toString(), "a.jpg");
    expectFile(files[0], templates + "b.amr", m_amr);
    expectFile(files[1], templates + "a.jpg", m_jpeg);
}

TEST_F(MakesisTest, NoCompressStoresTheDataAsItIsAndAnOutputNameIsHonoured) {
    write(QStringLiteral("T.pkg"), exportedPkg(QStringLiteral(", NOCOMPRESS")));
    const QString out = path(QStringLiteral("elsewhere/Raw.SIS"));
    const ProgramRun run = makesis({QStringLiteral("-v"), path(QStringLiteral("T.pkg")), out});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(templates + "a.jpg")) << run.out.toStdString();
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("T.SIS"))));

    const QJsonObject sis = readSis(out);
    EXPECT_TRUE(sis["checksum_ok"].toBool());
    EXPECT_EQ(sis["options"].toInt(), 0x0009);
    const QJsonArray files = sis["files"].toArray();
    ASSERT_EQ(files.size(), 2);
    expectFile(files[0], templates + "b.amr", m_amr);
    expectFile(files[1], templates + "a.jpg", m_jpeg);
    for (const QJsonValue& file : files) {
        const QJsonObject data = file["data"][0].toObject();
        EXPECT_TRUE(data["raw"].toBool());
        EXPECT_EQ(data["stored"].toInteger(), data["size"].toInteger());
    }
}

TEST_F(MakesisTest, TwoLanguagesGiveTwoNamesCodesAndLanguageFiles) {
    // Latin-1 text, LF line ends, relative sources with '\', comments.
    const QByteArray pkg = "; a package in two languages\n"
                           "&EN,FR\n"
                           "#{\"Vorlage\",\"Mod\xE8le\"},(0x10E7B29D),2,3,7,TYPE=SA,SHUTDOWNAPPS\n"
                           "\n"
                           "(0x10C4D6A3),1,0,0,{\"Phone\",\"T\xE9l\xE9phone\"} ; the platform\n"
                           "{\"F\\a.jpg\" \"F\\b.amr\"}-\"!:\\data\\pick.bin\"\n"
                           "\"F\\b.amr\"-\"!:\\data\\readme.txt\",FT,TA\n";
    write(QStringLiteral("L.pkg"), pkg);
    const ProgramRun run = makesis({path(QStringLiteral("L.pkg"))});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();

    const QJsonObject sis = readSis(path(QStringLiteral("L.SIS")));
    EXPECT_TRUE(sis["uid4_ok"].toBool());
    EXPECT_TRUE(sis["checksum_ok"].toBool());
    EXPECT_EQ(sis["languages"].toArray(), QJsonArray({1, 2}));
    EXPECT_EQ(sis["names"].toArray(), QJsonArray({"Vorlage", QString::fromUtf8("Modèle")}));
    EXPECT_EQ(sis["version"].toArray(), QJsonArray({2, 3, 7}));
    EXPECT_EQ(sis["type"].toInt(), 0);
    EXPECT_EQ(sis["options"].toInt(), 0x0011);
    EXPECT_EQ(sis["requisites"][0]["names"].toArray(),
              QJsonArray({"Phone", QString::fromUtf8("Téléphone")}));
    EXPECT_EQ(sis["files"][1]["source"].toString(), "a.jpg") << "'\\' separates folders too";

    const QJsonArray files = sis["files"].toArray();
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(files[0]["type"].toInt(), 1) << "text shown at install";
    EXPECT_EQ(files[0]["details"].toInt(), 2) << "abort";
    const QJsonObject perLanguage = files[1].toObject();
    EXPECT_EQ(perLanguage["record"].toInt(), 1);
    const QJsonArray versions = perLanguage["data"].toArray();
    ASSERT_EQ(versions.size(), 2);
    EXPECT_EQ(versions[0]["sha256"].toString(), sha256(m_jpeg));
    EXPECT_EQ(versions[1]["sha256"].toString(), sha256(m_amr));
    EXPECT_EQ(sis["max_installed_space"].toInteger(), m_jpeg.size() + 2 * m_amr.size());
}

TEST_F(MakesisTest, BadPackagesNameTheLineAndLeaveNoPackage) {
    struct Case {
        const char* pkg;
        const char* error;
    };
    const QByteArray header = "#{\"T\"},(0x10E7B29D),1,0,0,TYPE=SISUPGRADE\r\n";
    const Case cases[] = {
        {"", "T.pkg:1: the package definition is empty"},
        {"; nothing but a comment\r\n\r\n", "T.pkg:2: missing the header line"},
        {"\"F/a.jpg\"-\"!:\\a.jpg\"\r\n", "T.pkg:1: missing the header line"},
        {"#{\"T\"},(0xZZ),1,0,0\r\n", "T.pkg:1: expected a UID in parentheses"},
        {"#{\"T\"},0x10E7B29D,1,0,0\r\n", "T.pkg:1: expected a UID in parentheses"},
        {"#{\"T\"},(0x10E7B29D),1,0,0,TYPE=SISWHATEVER\r\n",
         "T.pkg:1: unknown package type SISWHATEVER"},
        {"#{\"T\"},(0x10E7B29D),1,0,0,FASTER\r\n", "T.pkg:1: unknown option word FASTER"},
        {"#{\"T\",\"U\"},(0x10E7B29D),1,0,0\r\n",
         "T.pkg:1: the component name has 2 entries for 1 languages"},
        {"&EN,XX\r\n", "T.pkg:1: unknown language code XX"},
        {"HEADER\r\n(0x10E7B29D),1,0\r\n", "T.pkg:2: expected ',' before the variant"},
        {"HEADER\r\n(0x123456789),1,0,0,{\"X\"}\r\n",
         "T.pkg:2: 0x123456789 is too large for a UID in parentheses"},
        {"HEADER\r\n\"F/a.jpg\"-\"!:\\a.jpg\r\n", "T.pkg:2: unterminated quoted string"},
        {"HEADER\r\n\"F/a.jpg\"-\"!:\\a.jpg\",FX\r\n", "T.pkg:2: unknown file type FX"},
        {"HEADER\r\n\"F/a.jpg\"-\"!:\\a.jpg\"\r\n\"F/gone.jpg\"-\"!:\\b.jpg\"\r\n",
         "T.pkg:3: cannot read source \"F/gone.jpg\""},
        {"HEADER\r\n\"C:\\src\\a.jpg\"-\"!:\\a.jpg\"\r\n",
         "T.pkg:2: cannot read source \"C:\\src\\a.jpg\""},
        {"HEADER\r\n\"F\"-\"!:\\a.jpg\"\r\n", "T.pkg:2: cannot read source \"F\""},
        {"HEADER\r\n@\"other.sis\",(0x1)\r\n", "T.pkg:2: expected a requisite"},
    };
    for (const Case& test : cases) {
        QByteArray pkg(test.pkg);
        pkg.replace("HEADER\r\n", header);
        write(QStringLiteral("T.pkg"), pkg);
        const ProgramRun run = makesis({path(QStringLiteral("T.pkg"))});
        EXPECT_EQ(run.exitCode, 1) << test.pkg;
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(test.error)))
            << test.pkg << "\n  gave: " << run.err.toStdString();
        EXPECT_EQ(folderEntries(), QStringList({QStringLiteral("T.pkg")}))
            << "no package and no temporary file left behind: " << test.pkg;
    }
}

// A device never ends and a pipe waits for a writer: either would hold the
// builder for ever or fill its memory, so neither is read at all.
TEST_F(MakesisTest, WhatIsNoRegularFileIsRefusedUnread) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(QStringLiteral("F/pipe.jpg"))).constData(), 0600), 0);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(QStringLiteral("P.pkg"))).constData(), 0600), 0);
    const QByteArray header = "#{\"T\"},(0x10E7B29D),1,0,0,TYPE=SISUPGRADE\r\n";
    for (const QByteArray& source : {QByteArray("/dev/zero"), QByteArray("F/pipe.jpg")}) {
        write(QStringLiteral("T.pkg"), header + "\"" + source + "\"-\"!:\\a.jpg\"\r\n");
        const ProgramRun run = makesis({path(QStringLiteral("T.pkg"))});
        EXPECT_EQ(run.exitCode, 1) << source.constData();
        EXPECT_TRUE(run.err.contains("T.pkg:2: cannot read source \"" + source +
                                     "\": it is no regular file"))
            << run.err.toStdString();
        EXPECT_FALSE(QFile::exists(path(QStringLiteral("T.SIS"))));
    }
    const ProgramRun pipe = makesis({path(QStringLiteral("P.pkg"))});
    EXPECT_EQ(pipe.exitCode, 1);
    EXPECT_TRUE(pipe.err.contains(QStringLiteral("P.pkg: cannot open: it is no regular file")))
        << pipe.err.toStdString();
}

TEST_F(MakesisTest, CommandLineMistakesAndUnwritableTargets) {
    EXPECT_EQ(makesis({}).exitCode, 2);
    EXPECT_TRUE(makesis({}).err.contains(QStringLiteral("usage: makesis")));
    EXPECT_EQ(makesis({QStringLiteral("a.pkg"), QStringLiteral("b"), QStringLiteral("c")}).exitCode,
              2);

    const ProgramRun missing = makesis({path(QStringLiteral("none.pkg"))});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("none.pkg: cannot open")));

    write(QStringLiteral("T.pkg"), exportedPkg());
    const ProgramRun unwritable =
        makesis({path(QStringLiteral("T.pkg")), path(QStringLiteral("no/such/folder/T.SIS"))});
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_TRUE(unwritable.err.contains(QStringLiteral("cannot write")))
        << unwritable.err.toStdString();
}
