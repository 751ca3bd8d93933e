#include "AppGlobals.h"
#include "FolderPrint.h"
#include "MessageExport.h"
#include "MmsPartReader.h"
#include "PackageDefinition.h"
#include "ProgramRun.h"
#include "UnwritableFolder.h"
#include "WorkFolderTest.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>

TEST(PackageDefinitionTest, TheFiveLinesOfATwoFilePackage) {
    const QStringList lines =
        PackageDefinition::lines("T", "/F/", {"a.jpg", "Slide1.txt", "", "b.amr"});
    EXPECT_EQ(lines, QStringList({
                         "#{\"T\"},(0x10E7B29D),1,0,0,TYPE=SISUPGRADE",
                         "(0x10E7B29D),1,0,0,{\"CopyOnlyStub\"}",
                         "(0x10C4D6A3), 1, 0, 0, {\"CorvanePZentorxPlatformProductID\"}",
                         "\"/F/a.jpg\"-\"!:\\documents\\MMS\\Templates\\T\\a.jpg\"",
                         "\"/F/b.amr\"-\"!:\\documents\\MMS\\Templates\\T\\b.amr\"",
                     }));
}

class PackageExportTest : public WorkFolderTest {
protected:
    void SetUp() override {
        WorkFolderTest::SetUp();
        m_out = dataFile("out/");
        QDir().mkpath(m_out);
        m_message = m_manager.CreateMsg();
        m_message->setName("Holiday");
        QFile::copy(programFile("archive/Pictures/heart.gif"),
                    m_manager.GetWorkFolderPath() + "I1.gif");
        clsSlide& slide = m_message->Slides().Add();
        slide.DrawObjects().Add().SetAllPproperties(
            DrawObjectProperties::forImage("I1.gif", QRect(0, 0, 64, 64)));
        slide.setText("Wish you were here");
        m_message->Slides().Add().setText("second");
    }

    QJsonObject readPackage(const QString& path) {
        QProcess reader;
        reader.start(VELLUMO_PYTHON3,
                     {QStringLiteral(VELLUMO_SOURCE_DIR) + "/tests/tools/sis_reader.py", path});
        EXPECT_TRUE(reader.waitForFinished(30000));
        EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardError().toStdString();
        return QJsonDocument::fromJson(reader.readAllStandardOutput()).object();
    }

    static QString sha256(const QString& path) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex();
    }

    clsMessage* m_message = nullptr;
    QString m_out;
};

TEST_F(PackageExportTest, TheBuiltPackageReadsBackWithEveryFile) {
    // The package is named after "mms" whatever the presentation is called.
    ASSERT_EQ(m_manager.ExportMMS(*m_message, 4, 0, m_out + "Holiday.smil", false), 0)
        << m_manager.GetExportImportStatus().toStdString();
    const QStringList definition = readFile(m_out + "mms.pkg").split("\r\n", Qt::SkipEmptyParts);
    ASSERT_EQ(definition.size(), 3 + 3) << "the picture, the index and the presentation";
    EXPECT_EQ(definition[0], "#{\"mms\"},(0x10E7B29D),1,0,0,TYPE=SISUPGRADE");

    const QJsonObject package = readPackage(m_out + "mms.SIS");
    EXPECT_EQ(package["uid1"].toInteger(), 0x10E7B29D);
    EXPECT_TRUE(package["uid4_ok"].toBool());
    EXPECT_TRUE(package["checksum_ok"].toBool());
    EXPECT_EQ(package["names"].toArray().first().toString(), "mms");
    QStringList requisites;
    for (const QJsonValue& requisite : package["requisites"].toArray())
        requisites << QString::number(requisite.toObject()["uid"].toInteger(), 16);
    EXPECT_EQ(requisites, QStringList({"10c4d6a3", "10e7b29d"})) << "last line first";

    QStringList destinations;
    for (const QJsonValue& value : package["files"].toArray()) {
        const QJsonObject file = value.toObject();
        const QString destination = file["destination"].toString();
        destinations.prepend(destination); // records come last file first
        const QString name = destination.section('\\', -1);
        EXPECT_EQ(file["source"].toString(), name) << "no folder of this machine";
        EXPECT_EQ(file["data"].toArray().first().toObject()["sha256"].toString(),
                  sha256(m_out + name))
            << name.toStdString();
    }
    // The second slide is text on a plain colour: it has no picture to install.
    EXPECT_EQ(destinations, QStringList({"!:\\documents\\MMS\\Templates\\mms\\Slide1.jpg",
                                         "!:\\documents\\MMS\\Templates\\mms\\texts.xml",
                                         "!:\\documents\\MMS\\Templates\\mms\\mms.smil"}));
}

TEST_F(PackageExportTest, AFailingBuilderKeepsTheDefinitionAndSaysSo) {
    // A folder where the package should go makes the builder fail to write it.
    QDir().mkpath(m_out + "mms.SIS");
    EXPECT_EQ(m_manager.ExportMMS(*m_message, 4, 0, m_out + "Broken.smil", true), 1);
    EXPECT_TRUE(
        m_manager.GetExportImportStatus().startsWith("The installation package cannot be built."))
        << m_manager.GetExportImportStatus().toStdString();
    EXPECT_TRUE(QFileInfo::exists(m_out + "mms.pkg"));
    EXPECT_TRUE(QFileInfo(m_out + "mms.SIS").isDir());

    const QString other = dataFile("other/");
    writeFile(other + "mms.SIS", "an earlier package");
    EXPECT_EQ(m_manager.ExportMMS(*m_message, 4, 0, other + "Old.smil", false), 2);
    EXPECT_EQ(readFile(other + "mms.SIS"), "an earlier package");
    EXPECT_FALSE(QFileInfo::exists(other + "mms.smil")) << "nothing written";
}

TEST_F(PackageExportTest, ASmilSetBecomesABinaryMmsWithTheSettingsMimeTable) {
    ASSERT_EQ(m_manager.ExportMMS(*m_message, 1, 0, m_out + "mms.smil", false), 0);
    ASSERT_TRUE(m_manager.SaveAsMMS(m_out, "mms", m_message->MMSFileList(), m_message->name()))
        << m_manager.saveAsMmsStatus().toStdString();
    EXPECT_TRUE(m_manager.GetSaveAsMMSStatus());
    EXPECT_EQ(m_manager.saveAsMmsCode(), 0);
    QFile file(m_out + "mms.wap");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray wap = file.readAll();
    EXPECT_EQ(wap.left(2), QByteArray("\x8c\x80")) << "an m-send-req";
    EXPECT_TRUE(wap.contains("Holiday"));
    EXPECT_TRUE(wap.contains("application/smil")) << "the settings' MIME table was registered";

    // A file the list names but the folder lacks: code 6 and the packer's reason.
    EXPECT_FALSE(m_manager.SaveAsMMS(m_out, "other", m_message->MMSFileList() + ";gone.jpg", "x"));
    EXPECT_FALSE(m_manager.GetSaveAsMMSStatus());
    EXPECT_EQ(m_manager.saveAsMmsCode(), clsMMSManager::kSaveAsMmsFailed);
    EXPECT_TRUE(m_manager.saveAsMmsStatus().startsWith("The files could not be packed (WAP 2) "))
        << m_manager.saveAsMmsStatus().toStdString();
    EXPECT_TRUE(m_manager.saveAsMmsStatus().contains("gone.jpg"));
    EXPECT_FALSE(QFileInfo::exists(m_out + "other.wap"));
}

// Exports that are made aside and moved into place: what a failure leaves and
// what arrives under the name the user chose.
class MessageExportTest : public PackageExportTest {
protected:
    void SetUp() override {
        PackageExportTest::SetUp();
        QFile::copy(programFile("archive/Sounds/double_beep.wav"), m_work + "A1.wav");
        m_message->Slides().Item(2).setSound("A1.wav");
    }

    int run(MessageExport::Kind kind, const QString& name, bool overwrite,
            MessageExport::Keep keep = MessageExport::OutputOnly) {
        return m_exporter.run(*m_message, kind, 0, m_out + name, overwrite, keep);
    }
    static QByteArray bytes(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList entries() const {
        return QDir(m_out).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    MessageExport m_exporter{m_manager};
};

TEST_F(MessageExportTest, AFailureHalfWayLeavesTheEarlierSetAsItWas) {
    ASSERT_EQ(run(MessageExport::Smil, "mms.smil", false), clsMMSManager::ExportOk)
        << m_exporter.status().toStdString();
    const auto before = folderFingerprint(m_out);
    ASSERT_TRUE(before.count(m_out + "Slide1.txt"));
    // Slide 1 is written anew before slide 2's sound turns out to be gone.
    m_message->Slides().Item(1).setText("changed");
    ASSERT_TRUE(QFile::remove(m_work + "A1.wav"));
    EXPECT_EQ(run(MessageExport::Smil, "mms.smil", true), clsMMSManager::ExportFailed);
    EXPECT_TRUE(m_exporter.status().startsWith("The sound cannot be converted."))
        << m_exporter.status().toStdString();
    EXPECT_EQ(folderFingerprint(m_out), before);
}

TEST_F(MessageExportTest, AFolderThatTakesNoFilesGetsNone) {
    const UnwritableFolder locked(m_out);
    if (!locked.holds())
        GTEST_SKIP() << "no way to make a folder unwritable here";
    for (const auto kind : {MessageExport::Smil, MessageExport::Template, MessageExport::SentMms}) {
        EXPECT_EQ(run(kind, "card" + MessageExport::extension(kind), false),
                  clsMMSManager::ExportFailed);
        EXPECT_TRUE(m_exporter.status().startsWith("Nothing can be written into the folder " +
                                                   QDir::toNativeSeparators(dataFile("out"))))
            << m_exporter.status().toStdString();
    }
    EXPECT_EQ(entries(), QStringList());
}

TEST_F(MessageExportTest, OnlyTheOutputArrivesUnderTheChosenName) {
    ASSERT_EQ(run(MessageExport::Template, "card.tpl", false), clsMMSManager::ExportOk)
        << m_exporter.status().toStdString();
    EXPECT_EQ(entries(), QStringList{"card.tpl"});
    // The recording travels as AMR; the text slide has no picture of its own.
    EXPECT_EQ(tarMembers(m_out + "card.tpl"),
              QStringList({"Slide1.jpg", "Slide2.amr", "mms.smil", "texts.xml"}));

    ASSERT_EQ(run(MessageExport::SentMms, "card.wap", false), clsMMSManager::ExportOk);
    ASSERT_EQ(run(MessageExport::ReceivedMms, "in.wap", false), clsMMSManager::ExportOk);
    EXPECT_EQ(entries(), QStringList({"card.tpl", "card.wap", "in.wap"}));
    for (const QString& name : {QStringLiteral("card.wap"), QStringLiteral("in.wap")}) {
        MmsPartReader reader;
        ASSERT_TRUE(reader.read(bytes(m_out + name))) << reader.error().toStdString();
        QStringList parts;
        for (const MmsPartReader::Part& part : reader.parts())
            parts << part.name;
        EXPECT_EQ(parts, QStringList(
                             {"mms.smil", "Slide1.jpg", "Slide1.txt", "Slide2.amr", "Slide2.txt"}));
    }
    EXPECT_EQ(bytes(m_out + "card.wap").left(2), QByteArray("\x8c\x80")) << "m-send-req";
    EXPECT_EQ(bytes(m_out + "in.wap").left(2), QByteArray("\x8c\x84")) << "m-retrieve-conf";

    const auto before = folderFingerprint(m_out);
    EXPECT_EQ(run(MessageExport::SentMms, "card.wap", false), clsMMSManager::ExportExists);
    EXPECT_TRUE(m_exporter.status().contains("already exists"));
    EXPECT_EQ(folderFingerprint(m_out), before);
}

TEST_F(MessageExportTest, AKeptPackageDefinitionNamesWhereItsFilesLie) {
    ASSERT_EQ(run(MessageExport::Package, "mms.SIS", false, MessageExport::WholeSet),
              clsMMSManager::ExportOk)
        << m_exporter.status().toStdString();
    EXPECT_TRUE(QFileInfo(m_out + "mms.SIS").size() > 100);
    const QStringList lines = readFile(m_out + "mms.pkg").split("\r\n", Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3 + 4) << "two media, the index and the presentation";
    for (const QString& line : lines.mid(3)) {
        const QString source = line.section(u'"', 1, 1);
        EXPECT_TRUE(source.startsWith(m_out)) << line.toStdString();
        EXPECT_TRUE(QFileInfo(source).isFile()) << line.toStdString();
    }
    EXPECT_TRUE(entries().filter(QRegularExpression("^\\.")).isEmpty()) << "no hidden leftovers";
}
