#include "MmsPartReader.h"
#include "ProgramRun.h"
#include "TextDecoder.h"
#include "WorkFolderTest.h"
#include "clsXMLocalizer.h"

#include <QDir>
#include <QFile>
#include <memory>

// Binary MMS written here byte by byte from the encapsulation and WSP header
// encodings, without the program's packer: messages as other phones and relays
// send them. Pictures come from ImageMagick, sounds from sox, texts in other
// charsets from iconv.
namespace {

QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}

QByteArray uintvar(quint32 value) {
    QByteArray bytes(1, char(value & 0x7F));
    while ((value >>= 7) != 0)
        bytes.prepend(char(0x80 | (value & 0x7F)));
    return bytes;
}

QByteArray text(const QByteArray& bytes) {
    return bytes + '\0';
}

// A value-length: one byte up to 30, else 0x1F and a uintvar.
QByteArray measured(const QByteArray& value) {
    const QByteArray length =
        value.size() <= 30 ? QByteArray(1, char(value.size())) : '\x1f' + uintvar(value.size());
    return length + value;
}

// One entry of a multipart body.
QByteArray entry(const QByteArray& contentType, const QByteArray& headers, const QByteArray& data) {
    return uintvar(contentType.size() + headers.size()) + uintvar(data.size()) + contentType +
           headers + data;
}

QByteArray multipart(const QList<QByteArray>& entries) {
    QByteArray body = uintvar(entries.size());
    for (const QByteArray& one : entries)
        body += one;
    return body;
}

QByteArray location(const QByteArray& name) {
    return '\x8e' + text(name);
}

QByteArray contentId(const QByteArray& id) {
    return '\xc0' + text('"' + id);
}

// Format 0, one track: a note held 384 ticks of 96 at 120 beats a minute, two seconds.
QByteArray twoSecondMidi() {
    return hex("4d546864 00000006 0000 0001 0060") + hex("4d54726b 00000014") +
           hex("00ff5103 07a120  00903c40  8300803c40  00ff2f00");
}

const QByteArray kSmilType = text("application/smil");

class BinaryMmsTest : public WorkFolderTest {
protected:
    void SetUp() override {
        WorkFolderTest::SetUp();
        m_folder = dataFile("received/");
        QDir().mkpath(m_folder);
    }

    // Runs a shell line in the test's folder and gives back the file it made.
    QByteArray made(const QString& line, const QString& file) const {
        const ProgramRun done = runProgram("bash", {"-c", line}, systemEnvironment(), m_folder);
        EXPECT_EQ(done.code, 0) << line.toStdString() << ": " << done.err.toStdString();
        return bytesOf(m_folder + file);
    }
    QByteArray picture(const QString& name, const QString& colour) const {
        return made("convert -size 16x12 xc:" + colour + " " + name, name);
    }
    QByteArray iconv(const QString& words, const QString& charset) const {
        return made("printf '" + words + "' | iconv -f UTF-8 -t " + charset + " > words.bin",
                    "words.bin");
    }
    QByteArray amr(int seconds) const {
        return made("sox -n -r 8000 -c 1 -t amr-nb voice.amr synth " + QString::number(seconds) +
                        " sine 440",
                    "voice.amr");
    }
    static QByteArray bytesOf(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static QProcessEnvironment systemEnvironment() {
        return QProcessEnvironment::systemEnvironment();
    }
    QString save(const QString& name, const QByteArray& bytes) const {
        writeFile(m_folder + name, bytes);
        return m_folder + name;
    }
    QByteArray workFile(const QString& name) const { return bytesOf(m_work + name); }
    clsMessage* import(const QString& path) {
        return m_manager.ImportMMS(path, clsMMSManager::ImportKindOf(path));
    }
    QString status() const { return m_manager.GetExportImportStatus(); }
    QString notes() const { return m_manager.exportImportNotes().join(u'\n'); }

    // An m-send-req as a phone sends it: with headers this program has no use
    // for, an application header, and an unknown code with a long value.
    static QByteArray sendRequest(const QByteArray& contentType, const QByteArray& body) {
        return hex("8c80") + '\x98' + text("T1") + hex("8d92") + hex("85045f5e1000") +
               hex("890181") + '\x97' + text("+4912345/TYPE=PLMN") + '\x96' + text("Holiday") +
               hex("8681") + text("X-Extra") + text("whatever") + '\xda' +
               measured(QByteArray(40, 'x')) + '\x84' + contentType + body;
    }

    // An m-retrieve-conf of a multipart/related whose start is the presentation
    // "<pres>", which is not the first SMIL of the message.
    QByteArray relatedWithPresentation() const {
        const QByteArray decoy = "<smil><body><par dur=\"1s\"><img src=\"cid:photo1@example\"/>"
                                 "</par></body></smil>";
        const QByteArray presentation =
            "<?xml version=\"1.0\"?><smil><head><layout><root-layout/></layout></head><body>"
            "<par dur=\"5000ms\"><img src=\"cid:photo1%40example\" region=\"Image\"/>"
            "<text src=\"Words.TXT\" region=\"Text\"/></par>"
            "<par dur=\"2s\"><img src=\"missing.gif\"/><audio src=\"cid:&lt;tune&gt;\"/></par>"
            "</body></smil>";
        const QByteArray subject = measured(hex("ea") + text("Gr\xc3\xbc\xc3\x9f"
                                                             "e"));
        return hex("8c84") + '\x98' + text("T2") + hex("8d92") + '\x8b' + text("M-2") + '\x96' +
               subject + '\x84' +
               measured(hex("b3") + '\x89' + kSmilType + '\x8a' + text("<pres>")) +
               multipart({entry(kSmilType, contentId("<decoy>"), decoy),
                          entry(hex("9e"), contentId("<photo1@example>") + location("IMG_0001.JPG"),
                                m_photo),
                          entry(measured(hex("8381ea")), location("words.txt"), "Hello there"),
                          entry(text("audio/midi"), contentId("<tune>") + location("tune.mid"),
                                twoSecondMidi()),
                          entry(measured(kSmilType + hex("81ea")),
                                contentId("<pres>") + location("pres.smil"), presentation)});
    }

    QString m_folder;
    QByteArray m_photo;
};

} // namespace

TEST_F(BinaryMmsTest, Utf16TextsAreReadInTheOrderTheirBytesShow) {
    const QString words = QStringLiteral("Gr\u00FC\u00DFe aus K\u00F6ln");
    for (const char* charset : {"UTF-16", "UTF-16LE", "UTF-16BE"}) {
        const QByteArray bytes = iconv(words, charset);
        EXPECT_EQ(TextDecoder::decode(bytes, "utf-16"), words) << charset;
        EXPECT_EQ(TextDecoder::decode(bytes, "ISO-10646-UCS-2"), words) << charset;
    }
    // Nothing tells the order of CJK text without a mark: the standard's big-endian.
    const QString kanji = QStringLiteral("\u6F22\u5B57");
    EXPECT_EQ(TextDecoder::decode(iconv(kanji, "UTF-16BE"), "utf-16"), kanji);
    EXPECT_EQ(TextDecoder::decode(iconv(words, "UTF-16LE"), "utf-16le"), words);
}

TEST_F(BinaryMmsTest, TheReaderTakesEveryHeaderFormAndFlattensNestedParts) {
    const QByteArray voice = amr(1);
    const QByteArray from = measured(hex("80") + measured(hex("ea") + text("J\xc3\xb6rg +4930")));
    // A subject starting with a byte above 0x7F needs the quote.
    const QByteArray subject = measured(hex("ea") + hex("7f") + text("\xc3\x84rger"));
    // Type and start in the parameter numbers of encoding version 1.4 (start 0x19).
    const QByteArray type = measured(hex("b3") + '\x89' + kSmilType + '\x99' + text("<s@x>"));
    const QByteArray alternative =
        multipart({entry(measured(hex("8381ea")), location("a.txt"), "plain"),
                   entry(hex("82"), location("a.html"), "<b>html</b>")});
    const QByteArray message =
        hex("8c84") + '\x98' + text("T3") + hex("8d93") + '\x89' + from + '\x96' + subject +
        '\x84' + type +
        multipart({entry(measured(kSmilType + hex("81ea")), contentId("<s@x>") + location("s.smil"),
                         "<smil/>"),
                   entry(hex("a6"), location("alt"), alternative),
                   // Header names written out, and a disposition that is stepped over.
                   entry(hex("9e"),
                         text("Content-ID") + text("<pic>") + '\xae' +
                             measured(hex("81") + '\x98' + text("p.jpg")),
                         "JPEG"),
                   // A media number no table names: a long integer.
                   entry(measured(hex("020201")), QByteArray(), voice)});

    MmsPartReader reader;
    ASSERT_TRUE(reader.read(message)) << reader.error().toStdString();
    EXPECT_EQ(reader.messageType(), MmsPartReader::RetrieveConfirmation);
    EXPECT_EQ(reader.subject(), QStringLiteral("\u00C4rger"));
    EXPECT_EQ(reader.from(), QStringLiteral("J\u00F6rg +4930"));
    EXPECT_EQ(reader.contentType().mediaType, "application/vnd.wap.multipart.related");
    EXPECT_EQ(reader.contentType().type, "application/smil");
    EXPECT_EQ(reader.contentType().start, "<s@x>");
    EXPECT_TRUE(reader.problems().isEmpty()) << reader.problems().join('\n').toStdString();

    const QList<MmsPartReader::Part>& parts = reader.parts();
    ASSERT_EQ(parts.size(), 5) << "the alternative's two parts take its place";
    EXPECT_EQ(parts[0].contentId, "s@x");
    EXPECT_EQ(parts[0].name, "s.smil");
    EXPECT_EQ(parts[0].type.mediaType, "application/smil");
    EXPECT_EQ(parts[0].type.charset, "utf-8");
    EXPECT_EQ(parts[0].data, "<smil/>");
    EXPECT_EQ(parts[1].name, "a.txt");
    EXPECT_EQ(parts[1].type.mediaType, "text/plain");
    EXPECT_EQ(parts[1].data, "plain");
    EXPECT_EQ(parts[2].type.mediaType, "text/html");
    EXPECT_EQ(parts[2].data, "<b>html</b>");
    EXPECT_EQ(parts[3].contentId, "pic");
    EXPECT_EQ(parts[3].type.mediaType, "image/jpeg");
    EXPECT_EQ(parts[3].data, "JPEG");
    EXPECT_EQ(parts[4].type.mediaType, "");
    EXPECT_EQ(parts[4].data, voice);

    // A body that is no multipart is the message's one part.
    ASSERT_TRUE(reader.read(hex("8c80") + '\x96' + text("Hi") + hex("8483") + "just text"));
    ASSERT_EQ(reader.parts().size(), 1);
    EXPECT_EQ(reader.parts()[0].type.mediaType, "text/plain");
    EXPECT_EQ(reader.parts()[0].data, "just text");
}

TEST_F(BinaryMmsTest, AMixedMessageWithoutPresentationGetsASlidePerPicture) {
    const QByteArray photo = picture("photo.jpg", "red");
    const QByteArray square = picture("square.png", "lime");
    const QByteArray anim = picture("anim.gif", "blue");
    const QByteArray voice = amr(4);
    const QByteArray hello = iconv("Hallo Welt", "UTF-16");
    const QByteArray gruss = iconv("Gr\u00FC\u00DFe", "UTF-16BE");
    const QByteArray koeln = iconv("K\u00F6ln", "ISO-8859-1");
    const QByteArray body = multipart(
        {// UTF-16 with its mark, charset 1015 as a long integer.
         entry(measured(hex("8381") + hex("0203f7")), location("hello.txt"), hello),
         entry(hex("9e"), contentId("<photo>") + '\xae' + measured(hex("81")), photo),
         entry(text("audio/amr"), location("voice"), voice), entry(hex("a0"), QByteArray(), square),
         // No mark, the charset as an untyped parameter, the location's name written out.
         entry(measured(hex("83") + text("charset") + text("utf-16")),
               text("Content-Location") + text("gruss.txt"), gruss),
         entry(hex("9d"), location("anim.gif"), anim),
         entry(measured(hex("838184")), location("koeln.txt"), koeln),
         entry(text("application/octet-stream"), location("tune"), twoSecondMidi()),
         entry(text("application/vnd.example.card"), location("card.vcf"), "BEGIN:VCARD")});
    // Told by its bytes, whatever it is called.
    const QString path = save("holiday.dat", sendRequest(hex("a3"), body));
    EXPECT_EQ(clsMMSManager::ImportKindOf(path), clsMMSManager::ImportBinary);

    clsMessage* message = import(path);
    ASSERT_NE(message, nullptr) << status().toStdString();
    EXPECT_EQ(message->name(), "Holiday");
    ASSERT_EQ(message->Slides().Count(), 3);
    const clsSlide& first = message->Slides().Item(1);
    EXPECT_EQ(first.Text(), "Hallo Welt") << "the text before the first picture";
    EXPECT_EQ(workFile(first.DrawObjects().BackPicture()), photo);
    EXPECT_TRUE(first.DrawObjects().BackPicture().endsWith(".jpg"));
    EXPECT_EQ(workFile(first.Sound()), voice);
    EXPECT_TRUE(first.Sound().endsWith(".amr")) << "named by its bytes";
    EXPECT_NEAR(first.SoundDuration(), 4000, 40);
    EXPECT_EQ(first.Duration(), 4000) << "the sound is longer than the default slide";
    const clsSlide& second = message->Slides().Item(2);
    EXPECT_EQ(workFile(second.DrawObjects().BackPicture()), square);
    EXPECT_EQ(second.Text(), QStringLiteral("Gr\u00FC\u00DFe"));
    EXPECT_EQ(second.Duration(), 3000);
    EXPECT_TRUE(second.Sound().isEmpty());
    const clsSlide& third = message->Slides().Item(3);
    EXPECT_EQ(workFile(third.DrawObjects().BackPicture()), anim);
    EXPECT_EQ(third.DrawObjects().BackType(), clsDrawObjects::BackAnimated);
    EXPECT_EQ(third.Text(), QStringLiteral("K\u00F6ln"));
    EXPECT_EQ(workFile(third.Sound()), twoSecondMidi());
    EXPECT_TRUE(third.Sound().endsWith(".mid"));
    EXPECT_EQ(third.Duration(), 3000);
    EXPECT_EQ(m_manager.exportImportNotes().size(), 1) << notes().toStdString();
    EXPECT_TRUE(notes().contains("card.vcf") && notes().contains("application/vnd.example.card"))
        << notes().toStdString();
}

TEST_F(BinaryMmsTest, APresentationFindsItsPartsByContentIdAndLocation) {
    m_photo = picture("photo.jpg", "red");
    const QString path = save("in.wap", relatedWithPresentation());
    clsMessage* message = import(path);
    ASSERT_NE(message, nullptr) << status().toStdString();
    EXPECT_EQ(message->name(), QStringLiteral("Gr\u00FC\u00DFe"));
    ASSERT_EQ(message->Slides().Count(), 2) << "the start part, not the first SMIL";
    const clsSlide& first = message->Slides().Item(1);
    EXPECT_EQ(first.Duration(), 5000);
    EXPECT_EQ(workFile(first.DrawObjects().BackPicture()), m_photo);
    EXPECT_EQ(first.Text(), "Hello there");
    const clsSlide& second = message->Slides().Item(2);
    EXPECT_EQ(second.Duration(), 2000);
    EXPECT_TRUE(second.DrawObjects().BackPicture().isEmpty());
    EXPECT_EQ(workFile(second.Sound()), twoSecondMidi());
    EXPECT_EQ(second.SoundName(), "tune");
    EXPECT_EQ(m_manager.exportImportNotes().size(), 1) << notes().toStdString();
    EXPECT_TRUE(notes().contains("missing.gif")) << notes().toStdString();
    EXPECT_TRUE(QDir(m_work).entryList({"*.smil"}, QDir::Files).isEmpty())
        << "the presentation is no media of the message";
}

TEST_F(BinaryMmsTest, OpeningAMessageFileThatIsABinaryMmsImportsIt) {
    m_photo = picture("photo.jpg", "red");
    const QString path = save("received.mms", relatedWithPresentation());
    int result = -1;
    clsMessage* message = m_manager.OpenMsg(path, result);
    ASSERT_NE(message, nullptr) << m_manager.lastError().toStdString();
    EXPECT_EQ(result, clsMMSManager::OpenOk);
    EXPECT_EQ(message->Slides().Count(), 2);
    EXPECT_TRUE(notes().contains("missing.gif"));

    // A damaged one is refused, naming the file, and the open message stays.
    const QByteArray whole = relatedWithPresentation();
    const QString cut = save("cut.mms", whole.left(60));
    EXPECT_EQ(m_manager.OpenMsg(cut, result), nullptr);
    EXPECT_EQ(result, clsMMSManager::OpenNotArchive);
    EXPECT_TRUE(m_manager.lastError().contains(cut)) << m_manager.lastError().toStdString();
    EXPECT_EQ(m_manager.message(), message);
    EXPECT_EQ(workFile(message->Slides().Item(1).DrawObjects().BackPicture()), m_photo);
}

TEST_F(BinaryMmsTest, DamagedMessagesAreRefusedOrTakenAsFarAsTheyGo) {
    m_photo = picture("photo.jpg", "red");
    const QByteArray whole = relatedWithPresentation();

    // Cut anywhere, the reader stops with a reason and keeps only whole parts.
    for (qsizetype cut = 0; cut < whole.size(); ++cut) {
        MmsPartReader reader;
        ASSERT_FALSE(reader.read(whole.left(cut))) << cut;
        EXPECT_FALSE(reader.error().isEmpty()) << cut;
        EXPECT_LT(reader.parts().size(), 5) << cut;
    }

    // Cut inside the last part, the presentation: the first SMIL shows what it names.
    clsMessage* message = import(save("late cut.wap", whole.left(whole.size() - 20)));
    ASSERT_NE(message, nullptr) << status().toStdString();
    ASSERT_EQ(message->Slides().Count(), 1);
    EXPECT_EQ(workFile(message->Slides().Item(1).DrawObjects().BackPicture()), m_photo);
    EXPECT_TRUE(notes().contains("damaged") && notes().contains("claims more bytes"))
        << notes().toStdString();
    EXPECT_TRUE(notes().contains("words.txt") && notes().contains("tune.mid"))
        << "what no slide shows is named: " << notes().toStdString();

    // Cut inside the first part: nothing to show, the file and the reason named.
    const QString early = save("early cut.wap", whole.left(80));
    EXPECT_EQ(import(early), nullptr);
    EXPECT_TRUE(status().contains(early) && status().contains("claims more bytes"))
        << status().toStdString();

    // Headers that cannot be read cost their part only; a type with nothing to show is refused.
    const QByteArray jpeg = entry(hex("9e"), location("p.jpg"), m_photo);
    const QByteArray broken = entry(hex("1f7f"), location("x"), "lost");
    message = import(save("broken part.wap", sendRequest(hex("a3"), multipart({broken, jpeg}))));
    ASSERT_NE(message, nullptr) << status().toStdString();
    EXPECT_EQ(message->Slides().Count(), 1);
    EXPECT_TRUE(notes().contains("part 1")) << notes().toStdString();

    // Names the presentation could not carry as they are: characters XML has
    // no room for, a blank where a long name is cut.
    const QByteArray longName = QByteArray(59, 'a') + ' ' + QByteArray(10, 'b');
    message = import(
        save("odd names.wap",
             sendRequest(hex("a3"), multipart({entry(hex("9e"), location("\xef\xbf\xbf"), m_photo),
                                               entry(hex("83"), {}, "words"),
                                               entry(hex("9e"), location(longName),
                                                     QByteArray("no\0picture", 10))}))));
    ASSERT_NE(message, nullptr) << status().toStdString();
    ASSERT_EQ(message->Slides().Count(), 2);
    EXPECT_EQ(workFile(message->Slides().Item(1).DrawObjects().BackPicture()), m_photo);
    EXPECT_EQ(message->Slides().Item(1).Text(), "words");

    // Parts nested beyond reason are left out, said, and the rest is read.
    QByteArray nested = multipart({jpeg});
    for (int level = 0; level < 12; ++level)
        nested = multipart({entry(hex("a3"), QByteArray(), nested)});
    message = import(save("deeper.wap",
                          sendRequest(hex("a3"), multipart({jpeg, entry(hex("a3"), {}, nested)}))));
    ASSERT_NE(message, nullptr) << status().toStdString();
    EXPECT_EQ(message->Slides().Count(), 1);
    EXPECT_TRUE(notes().contains("deeper than 8 levels")) << notes().toStdString();

    const QString card =
        save("card.wap", sendRequest(hex("a3"), multipart({entry(text("text/x-vcard"), {}, "X")})));
    EXPECT_EQ(import(card), nullptr);
    EXPECT_TRUE(status().contains("nothing a slide can show")) << status().toStdString();
    const QString notice = save("notice.wap", hex("8c82") + '\x98' + text("T") + hex("8483"));
    EXPECT_EQ(clsMMSManager::ImportKindOf(notice), clsMMSManager::ImportSmil);
    EXPECT_EQ(m_manager.ImportMMS(notice, clsMMSManager::ImportBinary), nullptr);
    EXPECT_TRUE(status().contains("no MMS as one is sent or received")) << status().toStdString();
    // Headers without a content type, a length past the end, a number of six bytes.
    EXPECT_EQ(import(save("headers.wap", hex("8c80") + '\x96' + text("Hi"))), nullptr);
    EXPECT_TRUE(status().contains("without a content type")) << status().toStdString();
    EXPECT_EQ(import(save("long.wap", hex("8c80") + '\x96' + hex("1f8fffffff7f") + "x")), nullptr);
    EXPECT_TRUE(status().contains("ends early, at byte")) << status().toStdString();
    EXPECT_EQ(import(save("number.wap", hex("8c80") + '\x96' + hex("1f80808080800100"))), nullptr);
    EXPECT_TRUE(status().contains("unreadable value at byte 9")) << status().toStdString();

    // In the user's language.
    auto german = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
    ASSERT_TRUE(german->SetLanguage("de-de"));
    AppGlobals::installLocalizer(std::move(german));
    EXPECT_EQ(import(early), nullptr);
    EXPECT_TRUE(status().startsWith("Die Nachricht " + early + " kann nicht gelesen werden: Teil"))
        << status().toStdString();
}
