#include "AppGlobals.h"
#include "SmilDocument.h"
#include "VbFormat.h"
#include "WorkFolderTest.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <cmath>
#include <pugixml.hpp>

namespace {
// 8000 Hz 16-bit mono PCM, the program's own recording format.
QByteArray wav(int ms) {
    const int samples = 8 * ms;
    QByteArray pcm;
    for (int i = 0; i < samples; ++i) {
        const auto value = qint16(8000 * std::sin(i * 2 * M_PI * 440 / 8000));
        pcm.append(char(value & 0xFF)).append(char((value >> 8) & 0xFF));
    }
    auto le32 = [](quint32 v) { return QByteArray(reinterpret_cast<const char*>(&v), 4); };
    QByteArray file = "RIFF" + le32(36 + pcm.size()) + "WAVEfmt " + le32(16);
    file += QByteArray::fromHex("01000100401f0000803e000002001000");
    return file + "data" + le32(pcm.size()) + pcm;
}

QStringList tarMembers(const QString& archive) {
    QProcess tar;
    tar.start("tar", {"tf", archive});
    tar.waitForFinished();
    QStringList names =
        QString::fromUtf8(tar.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    names.sort();
    return names;
}
} // namespace

class SmilExportTest : public WorkFolderTest {
protected:
    void SetUp() override {
        WorkFolderTest::SetUp();
        m_out = dataFile("out/");
        QDir().mkpath(m_out);
        buildMessage();
    }

    // Slide 1: a drawn picture, a recording and a text; slide 2 lasts 0 ms;
    // slide 3: an animation and an MP3 kept as it is.
    void buildMessage() {
        m_message = m_manager.CreateMsg();
        m_message->setName("Greetings & more");
        writeFile(m_work + "A1.wav", wav(1000));
        writeFile(m_work + "A2.mp3", "ID3 not really");
        QFile::copy(programFile("archive/Animations/bouncing_ball.gif"), m_work + "B1.gif");
        clsSlide& first = m_message->Slides().Add();
        first.setDuration(2500);
        first.setColor(0x00FF00);
        first.DrawObjects().Add().SetAllPproperties(
            DrawObjectProperties::forText("Hi", QRect(0, 0, 80, 20)));
        first.setSound("A1.wav");
        first.setText("Hello\r\nWorld");
        m_message->Slides().Add().setDuration(0);
        clsSlide& third = m_message->Slides().Add();
        third.setDuration(3000);
        third.DrawObjects().setBackType(2);
        third.DrawObjects().setBackPicture("B1.gif");
        third.setSound("A2.mp3");
    }

    int exportTo(const QString& name, int kind = 1, int format = 0, bool overwrite = false) {
        return m_manager.ExportMMS(*m_message, kind, format, m_out + name, overwrite);
    }

    clsMessage* m_message = nullptr;
    QString m_out;
};

TEST_F(SmilExportTest, TheSetIsAWellFormedPresentationWithEveryFileBesideIt) {
    QList<QPair<int, int>> progress;
    QObject::connect(&m_manager, &clsMMSManager::ProsessingSlide, [&](int slide, int count) {
        progress.append({slide, count});
    });
    ASSERT_EQ(exportTo("mms.smil"), 0) << m_manager.GetExportImportStatus().toStdString();
    EXPECT_EQ(m_manager.GetExportImportStatus(), "OK");
    EXPECT_EQ(progress, (QList<QPair<int, int>>{{1, 3}, {2, 3}, {3, 3}, {3, 3}}));

    pugi::xml_document smil;
    ASSERT_TRUE(smil.load_file((m_out + "mms.smil").toLocal8Bit().constData()));
    const pugi::xml_node root = smil.child("smil");
    EXPECT_STREQ(root.child("head").child("meta").attribute("content").value(), "Greetings & more");
    const pugi::xml_node layout = root.child("head").child("layout");
    EXPECT_STREQ(layout.child("root-layout").attribute("width").value(), "160");
    EXPECT_STREQ(layout.child("root-layout").attribute("height").value(), "160");
    EXPECT_STREQ(
        layout.find_child_by_attribute("region", "id", "Image").attribute("height").value(), "120");
    EXPECT_STREQ(layout.find_child_by_attribute("region", "id", "Text").attribute("top").value(),
                 "120");
    QStringList durations, sources;
    for (pugi::xml_node par : root.child("body").children("par")) {
        durations << par.attribute("dur").value();
        for (pugi::xml_node media : par.children())
            sources << media.attribute("src").value();
    }
    EXPECT_EQ(durations, QStringList({"2500ms", "3000ms"})) << "a 0 ms slide has no par";
    EXPECT_EQ(sources,
              QStringList({"Slide1.jpg", "Slide1.amr", "Slide1.txt", "Slide3.gif", "Slide3.mp3"}));
    for (const QString& source : sources)
        EXPECT_TRUE(QFileInfo::exists(m_out + source)) << source.toStdString();

    EXPECT_EQ(readFile(m_out + "Slide1.amr").left(6), "#!AMR\n") << "the recording became AMR";
    EXPECT_EQ(QImage(m_out + "Slide1.jpg").size(), QSize(160, 120));
    EXPECT_EQ(readFile(m_out + "Slide1.txt"), "Hello\r\nWorld\r\n");
    EXPECT_EQ(readFile(m_out + "Slide3.gif"), readFile(m_work + "B1.gif"));
    EXPECT_EQ(m_message->MMSFileList(),
              "Slide1.jpg;Slide1.amr;Slide1.txt;Slide3.gif;Slide3.mp3;texts.xml;mms.smil");
    // Which slide each file came from, for those who list the parts by slide.
    const QList<SmilExporter::SlideFiles> slides = m_manager.exportedSlides();
    ASSERT_EQ(slides.size(), 2) << "the 0 ms slide went nowhere";
    EXPECT_EQ(slides[0].slide, 1);
    EXPECT_EQ(QStringList({slides[0].picture, slides[0].sound, slides[0].text}),
              QStringList({"Slide1.jpg", "Slide1.amr", "Slide1.txt"}));
    EXPECT_EQ(slides[1].slide, 3);
    EXPECT_EQ(QStringList({slides[1].picture, slides[1].sound, slides[1].text}),
              QStringList({"Slide3.gif", "Slide3.mp3", ""}));

    pugi::xml_document texts;
    ASSERT_TRUE(texts.load_file((m_out + "texts.xml").toLocal8Bit().constData()));
    const pugi::xml_node message = texts.child("mms-text-files").child("message");
    EXPECT_STREQ(message.child("title").text().get(), "Greetings & more");
    EXPECT_STREQ(message.child("file").attribute("filename").value(), "Slide1.txt");
    // Any XML reader hands line ends back as LF.
    EXPECT_STREQ(message.child("file").text().get(), "Hello\nWorld");
}

TEST_F(SmilExportTest, SecondsAlwaysUseADecimalPoint) {
    VbFormat::setDecimalSeparator(",");
    ASSERT_EQ(exportTo("mms.smil", 1, 1), 0);
    VbFormat::setDecimalSeparator(".");
    EXPECT_TRUE(readFile(m_out + "mms.smil").contains("dur=\"2.500s\""));
    EXPECT_EQ(SmilDocument::formatDuration(2500, 0), "2500ms");
    EXPECT_EQ(SmilDocument::parseDuration("4s"), 4000);
    EXPECT_EQ(SmilDocument::parseDuration("750ms"), 750);
    EXPECT_EQ(SmilDocument::parseDuration("2.500s"), 2000) << "whole seconds before multiplying";
    EXPECT_EQ(SmilDocument::parseDuration("3.5s"), 4000);
    EXPECT_EQ(SmilDocument::parseDuration("indefinite"), 0);
    EXPECT_EQ(SmilDocument::parseDuration(""), 0);
    EXPECT_EQ(SmilDocument::parseDuration("-4s"), 0);
    EXPECT_EQ(SmilDocument::parseDuration("99999999999ms"), 2147483647) << "32-bit milliseconds";
    EXPECT_EQ(SmilDocument::parseDuration("4666666666666666666666666s"), 0)
        << "a number out of every range is no number";
}

TEST_F(SmilExportTest, AnotherNameNumbersEveryFileAfterIt) {
    m_message->Slides().Item(1).DOMElement().attribute("name") = "My Slide";
    ASSERT_EQ(exportTo("trip.smil"), 0);
    QStringList files = QDir(m_out).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(files, QStringList({"trip.smil", "trip_001.jpg", "trip_002.amr", "trip_003.txt",
                                  "trip_004.gif", "trip_005.mp3", "trip_texts.xml"}));
    // The fixed names keep the slide's name, blanks turned into underscores.
    ASSERT_EQ(exportTo("mms.smil"), 0);
    EXPECT_TRUE(QFileInfo::exists(m_out + "My_Slide1.txt"));
}

TEST_F(SmilExportTest, AnExistingTargetIsLeftAloneWithoutLeave) {
    writeFile(m_out + "mms.smil", "mine");
    EXPECT_EQ(exportTo("mms.smil"), 2);
    EXPECT_EQ(readFile(m_out + "mms.smil"), "mine");
    EXPECT_EQ(QDir(m_out).entryList(QDir::Files), QStringList{"mms.smil"}) << "nothing written";
    writeFile(m_out + "mms.tpl", "old template");
    EXPECT_EQ(exportTo("card.smil", 2), 2);
    EXPECT_EQ(readFile(m_out + "mms.tpl"), "old template");
    EXPECT_EQ(exportTo("mms.smil", 1, 0, true), 0);
    EXPECT_NE(readFile(m_out + "mms.smil"), "mine");
}

TEST_F(SmilExportTest, ATemplateHoldsThePresentationIndexAndMediaOnly) {
    ASSERT_EQ(exportTo("card.smil", 2), 0) << m_manager.GetExportImportStatus().toStdString();
    EXPECT_EQ(tarMembers(m_out + "mms.tpl"), QStringList({"Slide1.amr", "Slide1.jpg", "Slide3.gif",
                                                          "Slide3.mp3", "mms.smil", "texts.xml"}));
    EXPECT_NE(readFile(m_out + "mms.tpl").left(2).toLatin1(), QByteArray("\x1f\x8b"))
        << "templates are not compressed";

    clsMessage* imported = m_manager.ImportMMS(m_out + "mms.tpl", 2);
    ASSERT_NE(imported, nullptr) << m_manager.GetExportImportStatus().toStdString();
    EXPECT_EQ(imported->name(), "import");
    ASSERT_EQ(imported->Slides().Count(), 2);
    EXPECT_EQ(imported->Slides().Item(1).Text(), "Hello\r\nWorld") << "texts come from the index";
}

TEST_F(SmilExportTest, ExportThenImportGivesTheSlidesBack) {
    ASSERT_EQ(exportTo("mms.smil", 1, 1), 0);
    clsMessage* back = m_manager.ImportMMS(m_out + "mms.smil", 1);
    ASSERT_NE(back, nullptr) << m_manager.GetExportImportStatus().toStdString();
    ASSERT_EQ(back->Slides().Count(), 2);
    const clsSlide& first = back->Slides().Item(1);
    EXPECT_EQ(first.Duration(), 2000) << "2.500s loses its fraction on the way back";
    EXPECT_EQ(first.Text(), "Hello\r\nWorld");
    EXPECT_EQ(first.DrawObjects().BackType(), 1);
    EXPECT_EQ(QImage(m_work + first.DrawObjects().BackPicture()).size(), QSize(160, 120));
    EXPECT_TRUE(first.Sound().startsWith("A") && first.Sound().endsWith(".amr"));
    EXPECT_EQ(readFile(m_work + first.Sound()), readFile(m_out + "Slide1.amr"));
    EXPECT_EQ(first.SoundName(), "Slide1");
    EXPECT_GT(first.SoundDuration(), 900);
    const clsSlide& second = back->Slides().Item(2);
    EXPECT_EQ(second.Duration(), 3000);
    EXPECT_EQ(second.DrawObjects().BackType(), 2);
    EXPECT_EQ(readFile(m_work + second.Sound()), "ID3 not really");
}

TEST_F(SmilExportTest, AnotherToolsPresentationImports) {
    const QString folder = dataFile("foreign/");
    writeFile(folder + "pic one.png", "");
    QImage(8, 8, QImage::Format_RGB32).save(folder + "pic one.png");
    writeFile(folder + "words.txt", "Gr\xfc\xdf"
                                    "e\r\n");
    writeFile(folder + "tune.mid", "MThd");
    writeFile(
        folder + "show.smil",
        "<?xml version=\"1.0\"?>\n<smil xmlns=\"http://www.w3.org/2001/SMIL20/Language\">"
        "<head><layout><root-layout width=\"176\" height=\"208\"/></layout></head>"
        "<body><seq><par dur=\"4s\" fill=\"freeze\"><img src=\"pic one.png\" region=\"Image\" "
        "alt=\"x\"/><text src=\"./words.txt\"/></par><par dur=\"750ms\"><audio "
        "src=\"tune.mid\" begin=\"0s\"/></par></seq></body></smil>");
    clsMessage* message = m_manager.ImportMMS(folder + "show.smil", 1);
    ASSERT_NE(message, nullptr) << m_manager.GetExportImportStatus().toStdString();
    ASSERT_EQ(message->Slides().Count(), 2);
    EXPECT_EQ(message->Slides().Item(1).Duration(), 4000);
    EXPECT_EQ(message->Slides().Item(1).Text(), QString::fromUtf8("Grüße"));
    EXPECT_EQ(message->Slides().Item(2).Duration(), 750);
    EXPECT_EQ(message->Slides().Item(2).SoundName(), "tune");
}

TEST_F(SmilExportTest, BadPresentationsGiveNoMessageAndLeaveTheWorkFolder) {
    const QString folder = dataFile("bad/");
    const QStringList before = QDir(m_work).entryList(QDir::Files);
    writeFile(folder + "broken.smil", "<smil><body><par dur=\"1s\">");
    writeFile(folder + "nobody.smil", "<smil><head/></smil>");
    writeFile(folder + "missing.smil",
              "<smil><body><par><img src=\"gone.jpg\"/></par></body></smil>");
    writeFile(folder + "escape.smil",
              "<smil><body><par><audio src=\"../../x.wav\"/></par></body></smil>");
    writeFile(folder + "fake.tpl", "not a tar file");
    for (const auto& [file, kind] : {std::pair{"broken.smil", 1},
                                     {"nobody.smil", 1},
                                     {"missing.smil", 1},
                                     {"escape.smil", 1},
                                     {"fake.tpl", 2}}) {
        EXPECT_EQ(m_manager.ImportMMS(folder + file, kind), nullptr) << file;
        EXPECT_FALSE(m_manager.GetExportImportStatus().isEmpty()) << file;
    }
    EXPECT_TRUE(m_manager.GetExportImportStatus().contains(
        "fake.tpl cannot be used: it is no tar archive"));
    EXPECT_EQ(QDir(m_work).entryList(QDir::Files), before) << "the open message keeps its files";
    EXPECT_EQ(m_manager.message(), m_message);
}
