#include "FolderPrint.h"
#include "MessageExport.h"
#include "MmsPartReader.h"
#include "ProgramRun.h"
#include "UnwritableFolder.h"
#include "WorkFolderTest.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

// Exports that are made aside and moved into place: what a failure leaves and
// what arrives under the name the user chose.
class MessageExportTest : public WorkFolderTest {
protected:
    void SetUp() override {
        WorkFolderTest::SetUp();
        m_out = dataFile("out/");
        QDir().mkpath(m_out);
        m_message = m_manager.CreateMsg();
        m_message->setName("Holiday");
        QFile::copy(programFile("archive/Pictures/heart.gif"), m_work + "I1.gif");
        QFile::copy(programFile("archive/Sounds/double_beep.wav"), m_work + "A1.wav");
        clsSlide& first = m_message->Slides().Add();
        first.DrawObjects().Add().SetAllPproperties(
            DrawObjectProperties::forImage("I1.gif", QRect(0, 0, 64, 64)));
        first.setText("Wish you were here");
        clsSlide& second = m_message->Slides().Add();
        second.setText("second");
        second.setSound("A1.wav");
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
    clsMessage* m_message = nullptr;
    QString m_out;
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
        EXPECT_EQ(parts, QStringList({"mms.smil", "Slide1.jpg", "Slide1.txt", "Slide2.amr",
                                      "Slide2.txt"}));
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
