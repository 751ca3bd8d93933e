#include "AppGlobals.h"
#include "SettingsBootstrap.h"
#include "SmilImporter.h"
#include "TempDataHome.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>

// Messages, presentations and texts saved by other programs in encodings of
// their own; every encoded file here is made by iconv from UTF-8 text.
namespace {
QByteArray iconv(const QString& text, const QString& to) {
    QProcess process;
    process.start("iconv", {"-f", "UTF-8", "-t", to});
    process.write(text.toUtf8());
    process.closeWriteChannel();
    process.waitForFinished(60000);
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

QString messageXml(const QString& encoding, const QString& slideText) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding +
           "\"?>\r\n<ROOT><HEADER><CONTENT version=\"2.0\" type=\"Vellumo messages\"/></HEADER>"
           "<MMS><FILELIST/></MMS><MESSAGE name=\"m\"><SLIDES><SLIDE name=\"Slide\" index=\"1\" "
           "dur=\"3000\"><IMAGE url=\"Slide_1\"/><SOUND/><TEXT text=\"" +
           slideText + "\"/><DRAWOBJECTS/></SLIDE></SLIDES></MESSAGE></ROOT>";
}

const QString kWestern = QString::fromUtf8("Hällo € “quoted” …");
} // namespace

class ForeignTextTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        m_folder = dataFile("foreign/");
        QDir().mkpath(m_folder);
    }

    // The text of the one slide of a message file holding these bytes.
    QString slideTextOf(const QByteArray& bytes) {
        writeFile(m_folder + "message.xml", bytes);
        clsMessage message;
        message.Initialize(m_folder + "message.xml", "m", m_folder);
        if (message.Slides().Count() != 1)
            return "(no slide)";
        return message.Slides().Item(1).Text();
    }

    // The slides of a presentation whose one text element reads textElement.
    QList<SmilImporter::Slide> importText(const QString& textElement,
                                          const QByteArray& textsIndex = QByteArray()) {
        writeFile(m_folder + "show.smil",
                  "<smil><body><par dur=\"2s\">" + textElement.toUtf8() + "</par></body></smil>");
        if (!textsIndex.isEmpty())
            writeFile(m_folder + "texts.xml", textsIndex);
        SmilImporter importer;
        EXPECT_TRUE(importer.read(m_folder + "show.smil", m_folder + "texts.xml"))
            << importer.error().toStdString();
        return importer.slides();
    }

    QString importedText(const QString& textElement, const QByteArray& textsIndex = {}) {
        const QList<SmilImporter::Slide> slides = importText(textElement, textsIndex);
        return slides.size() == 1 ? slides.first().text : "(no slide)";
    }

    QString m_folder;
};

TEST_F(ForeignTextTest, AMessageIsReadInTheEncodingItIsSavedIn) {
    const QString xml = messageXml("UTF-16", kWestern);
    EXPECT_EQ(slideTextOf(iconv(xml, "UTF-16")), kWestern) << "with a byte-order mark";
    EXPECT_EQ(slideTextOf(iconv(xml, "UTF-16BE")), kWestern) << "big-endian without one";
    EXPECT_EQ(slideTextOf(iconv(xml, "UTF-16LE")), kWestern) << "little-endian without one";
    const QString latin = QString::fromUtf8("Grüße, Ærø");
    EXPECT_EQ(slideTextOf(iconv(messageXml("ISO-8859-1", latin), "ISO-8859-1")), latin);
    EXPECT_EQ(slideTextOf(iconv(messageXml("windows-1252", kWestern), "WINDOWS-1252")), kWestern);
    EXPECT_EQ(slideTextOf("\xEF\xBB\xBF" + messageXml("utf-8", kWestern).toUtf8()), kWestern);
}

TEST_F(ForeignTextTest, AMessageReadFromACodePageIsSavedAsUtf8AndReadsBackTheSame) {
    writeFile(m_folder + "message.xml",
              iconv(messageXml("ISO-8859-15", QString::fromUtf8("Œuvre €")), "ISO-8859-15"));
    clsMessage message;
    message.Initialize(m_folder + "message.xml", "m", m_folder);
    message.setSlideRenderer([](const clsSlide&, const QString&) { return true; });
    ASSERT_TRUE(message.SaveMessage(m_folder + "saved.xml"));
    const QByteArray saved = readFile(m_folder + "saved.xml").toUtf8();
    EXPECT_TRUE(saved.contains("encoding=\"utf-8\"")) << saved.left(80).toStdString();
    EXPECT_TRUE(saved.contains(QString::fromUtf8("Œuvre €").toUtf8()));
    clsMessage back;
    back.Initialize(m_folder + "saved.xml", "m", m_folder);
    ASSERT_EQ(back.Slides().Count(), 1);
    EXPECT_EQ(back.Slides().Item(1).Text(), QString::fromUtf8("Œuvre €"));
}

TEST_F(ForeignTextTest, AnUnknownDeclaredEncodingOpensAsTheEmptyMessage) {
    EXPECT_EQ(slideTextOf(messageXml("x-no-such-charset", "a").toUtf8()), "(no slide)");
}

TEST_F(ForeignTextTest, TextFilesAreReadByTheirMarkThenAsUtf8ThenAsTheWindowsCodePage) {
    const QString hello = QString::fromUtf8("Hällo");
    writeFile(m_folder + "le.txt", iconv(hello, "UTF-16"));
    EXPECT_EQ(importedText("<text src=\"le.txt\"/>"), hello);
    writeFile(m_folder + "be.txt", "\xFE\xFF" + iconv(hello, "UTF-16BE"));
    EXPECT_EQ(importedText("<text src=\"be.txt\"/>"), hello);
    writeFile(m_folder + "bom8.txt", "\xEF\xBB\xBF" + kWestern.toUtf8());
    EXPECT_EQ(importedText("<text src=\"bom8.txt\"/>"), kWestern);
    writeFile(m_folder + "plain8.txt", kWestern.toUtf8() + "\r\n");
    EXPECT_EQ(importedText("<text src=\"plain8.txt\"/>"), kWestern);
    writeFile(m_folder + "cp.txt", iconv(kWestern + "\r\n", "WINDOWS-1252"));
    EXPECT_EQ(importedText("<text src=\"cp.txt\"/>"), kWestern);
}

TEST_F(ForeignTextTest, ACharsetThePresentationNamesWins) {
    const QString russian = QString::fromUtf8("Привет");
    writeFile(m_folder + "ru.txt", iconv(russian, "KOI8-R"));
    EXPECT_EQ(importedText("<text src=\"ru.txt\" charset=\"KOI8-R\"/>"), russian);
    EXPECT_EQ(importedText("<text src=\"ru.txt\" type=\"text/plain; charset=koi8-r\"/>"), russian);
    writeFile(m_folder + "bare16.txt", iconv(russian, "UTF-16LE"));
    EXPECT_EQ(importedText("<text src=\"bare16.txt\" type='text/plain;charset=\"utf-16le\"'/>"),
              russian);
}

TEST_F(ForeignTextTest, AnIndexEntryIsItsWholeText) {
    const auto entry = [this](const QByteArray& content) {
        return importedText("<text src=\"t.txt\"/>",
                            "<mms-text-files><message><file filename=\"t.txt\">" + content +
                                "</file></message></mms-text-files>");
    };
    EXPECT_EQ(entry("one<!-- c -->two"), "onetwo");
    EXPECT_EQ(entry("one<![CDATA[ <b>&amp; ]]>two"), "one <b>&amp; two");
    EXPECT_EQ(entry("one<?pi data?>two"), "onetwo");
    EXPECT_EQ(entry("a &amp;amp; b &#x20AC;&#8230;"), QString::fromUtf8("a &amp; b €…"));
    EXPECT_EQ(entry("a &unknown; b"), "a &unknown; b") << "kept as written, not dropped";
}

TEST_F(ForeignTextTest, DeclaredEntitiesExpandButOutsideFilesAreNeverRead) {
    writeFile(dataFile("secret.txt"), "SECRET");
    const QByteArray index =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE mms-text-files [\n"
        "<!ENTITY who \"the &amp; &place;\">\n<!ENTITY place 'world'>\n"
        "<!ENTITY leak SYSTEM \"file://" +
        dataFile("secret.txt").toUtf8() +
        "\">\n]>\n<mms-text-files><message><file filename=\"t.txt\">Hello &who; &leak;"
        "</file></message></mms-text-files>";
    const QString text = importedText("<text src=\"t.txt\"/>", index);
    EXPECT_EQ(text, "Hello the & world &leak;");
    EXPECT_FALSE(text.contains("SECRET"));
}

TEST_F(ForeignTextTest, EntitiesThatMultiplyStayBounded) {
    QByteArray declarations = "<!ENTITY l0 \"lol\">";
    for (int i = 1; i < 12; ++i)
        declarations += QByteArray("<!ENTITY l%1 \"").replace("%1", QByteArray::number(i)) +
                        QByteArray("&l" + QByteArray::number(i - 1) + ";").repeated(10) + "\">";
    QElapsedTimer timer;
    timer.start();
    const QString text = importedText(
        "<text src=\"t.txt\"/>",
        "<!DOCTYPE mms-text-files [" + declarations +
            "]><mms-text-files><message><file filename=\"t.txt\">&l11;</file></message>"
            "</mms-text-files>");
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_LE(text.size(), 2 * 1024 * 1024);
    EXPECT_TRUE(text.startsWith("lol") || text.startsWith("&l")) << "kept, in part or as written";
}
