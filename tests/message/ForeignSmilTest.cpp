#include "ProgramRun.h"
#include "WorkFolderTest.h"

#include <QDir>
#include <QImage>

// Presentations and templates made by other programs. Pictures come from
// ImageMagick, sounds from sox, a clip from ffmpeg, templates from GNU tar.
class ForeignSmilTest : public WorkFolderTest {
protected:
    void SetUp() override {
        WorkFolderTest::SetUp();
        m_folder = dataFile("made elsewhere/");
        QDir().mkpath(m_folder);
    }

    // The pure colour of a picture the message took in (JPEG shifts it a little).
    QRgb colourOf(const QString& workFile) const {
        const QRgb found = QImage(m_work + workFile).pixel(0, 0);
        const auto pure = [](int channel) { return channel > 127 ? 255 : 0; };
        return qRgb(pure(qRed(found)), pure(qGreen(found)), pure(qBlue(found)));
    }
    void run(const QString& program, const QStringList& arguments) {
        const ProgramRun done = runProgram(program, arguments, systemEnvironment(), m_folder);
        ASSERT_EQ(done.code, 0) << program.toStdString() << ": " << done.err.toStdString();
    }
    static QProcessEnvironment systemEnvironment() {
        return QProcessEnvironment::systemEnvironment();
    }
    void picture(const QString& name, const QString& colour = "red") {
        run("convert", {"-size", "16x12", "xc:" + colour, name});
    }
    void tone(const QString& name, const QString& seconds = "1") {
        run("sox",
            {"-n", "-r", "8000", "-b", "16", "-c", "1", name, "synth", seconds, "sine", "440"});
    }
    void presentation(const QString& name, const QString& body) {
        writeFile(m_folder + name, "<?xml version=\"1.0\"?>\n<smil><head/><body>" + body.toUtf8() +
                                       "</body></smil>");
    }
    clsMessage* importSmil(const QString& name) {
        clsMessage* message = m_manager.ImportMMS(m_folder + name, clsMMSManager::ImportSmil);
        EXPECT_NE(message, nullptr) << m_manager.GetExportImportStatus().toStdString();
        return message;
    }
    // A template packed by GNU tar from the presentation folder.
    QString pack(const QStringList& members, const QStringList& options = {}) {
        const QString archive = dataFile("foreign.tpl");
        QFile::remove(archive);
        run("tar", options + QStringList{"-cf", archive} + members);
        return archive;
    }
    clsMessage* importTemplate(const QString& archive) {
        return m_manager.ImportMMS(archive, clsMMSManager::ImportTemplate);
    }
    QString status() const { return m_manager.GetExportImportStatus(); }

    QString m_folder;
};

TEST_F(ForeignSmilTest, SourcesAreUrisOfTheFilesBesideThePresentation) {
    picture("my photo.jpg");
    picture("image1.jpg", "blue");
    tone("logo sound.wav");
    presentation("uri.smil", "<par dur=\"2s\"><img src=\"my%20photo.jpg\"/></par>"
                             "<par dur=\"2s\"><img src=\"cid:image1.jpg\"/>"
                             "<audio src=\"cid:%3Clogo%20sound.wav%3E\"/></par>");
    clsMessage* message = importSmil("uri.smil");
    ASSERT_NE(message, nullptr);
    ASSERT_EQ(message->Slides().Count(), 2);
    EXPECT_EQ(colourOf(message->Slides().Item(1).DrawObjects().BackPicture()), qRgb(255, 0, 0));
    const clsSlide& second = message->Slides().Item(2);
    EXPECT_EQ(colourOf(second.DrawObjects().BackPicture()), qRgb(0, 0, 255));
    EXPECT_EQ(second.SoundName(), "logo sound");
    EXPECT_NEAR(second.SoundDuration(), 1000, 20);

    presentation("web.smil",
                 "<par dur=\"2s\"><img src=\"http://example.org/my%20photo.jpg\"/></par>");
    EXPECT_EQ(m_manager.ImportMMS(m_folder + "web.smil", clsMMSManager::ImportSmil), nullptr);
    EXPECT_TRUE(status().contains("http://example.org/my%20photo.jpg")) << status().toStdString();
}

TEST_F(ForeignSmilTest, TimedMediaOutsideAParAreSlidesOfTheirOwn) {
    picture("a.jpg");
    picture("b.png", "lime");
    tone("tone.wav", "2");
    writeFile(m_folder + "words.txt", "Hello\n");
    run("ffmpeg", {"-loglevel", "error", "-f", "lavfi", "-i", "testsrc=size=32x24:rate=5", "-t",
                   "1", "-c:v", "mpeg4", "clip.mp4"});
    presentation("seq.smil",
                 "<seq><ref src=\"a.jpg\" dur=\"3s\"/><ref src=\"tone.wav\" dur=\"2s\"/>"
                 "<video src=\"clip.mp4\" dur=\"4s\"/>"
                 "<ref src=\"words.txt\" type=\"text/plain\" dur=\"1s\"/></seq>"
                 "<img src=\"b.png\" dur=\"5000ms\"/>"
                 "<par dur=\"6s\"><ref src=\"a.jpg\"/><ref src=\"tone.wav\"/></par>");
    clsMessage* message = importSmil("seq.smil");
    ASSERT_NE(message, nullptr);
    ASSERT_EQ(message->Slides().Count(), 6);
    const QList<qint64> durations{3000, 2000, 4000, 1000, 5000, 6000};
    for (int i = 1; i <= 6; ++i)
        EXPECT_EQ(message->Slides().Item(i).Duration(), durations[i - 1]) << i;
    EXPECT_EQ(message->Slides().Item(1).DrawObjects().BackType(), clsDrawObjects::BackStill);
    EXPECT_EQ(message->Slides().Item(2).SoundName(), "tone");
    EXPECT_EQ(message->Slides().Item(3).DrawObjects().BackType(), clsDrawObjects::BackAnimated);
    EXPECT_EQ(message->Slides().Item(4).Text(), "Hello");
    const clsSlide& last = message->Slides().Item(6);
    EXPECT_EQ(last.DrawObjects().BackPicture(),
              message->Slides().Item(1).DrawObjects().BackPicture())
        << "a file named twice is copied once";
    EXPECT_FALSE(last.Sound().isEmpty());
    EXPECT_TRUE(m_manager.exportImportNotes().isEmpty());
}

TEST_F(ForeignSmilTest, DurationsThatReadAsZeroAreNamedOnImportAndOnExport) {
    picture("a.jpg");
    presentation("clock.smil", "<par dur=\"00:00:03.5\"><img src=\"a.jpg\"/></par>"
                               "<par dur=\"2s\"><img src=\"a.jpg\"/></par>"
                               "<par dur=\"indefinite\"><img src=\"a.jpg\"/></par>"
                               "<par><img src=\"a.jpg\"/><img src=\"a.jpg\"/></par>");
    clsMessage* message = importSmil("clock.smil");
    ASSERT_NE(message, nullptr);
    ASSERT_EQ(message->Slides().Count(), 4) << "the slides are kept as read";
    EXPECT_EQ(message->Slides().Item(1).Duration(), 0);
    const QStringList notes = m_manager.exportImportNotes();
    ASSERT_EQ(notes.size(), 4) << notes.join('\n').toStdString();
    EXPECT_TRUE(notes[0].contains("Slide 1") && notes[0].contains("00:00:03.5"));
    EXPECT_TRUE(notes[1].contains("Slide 3") && notes[1].contains("indefinite"));
    EXPECT_TRUE(notes[2].contains("Slide 4") && notes[2].contains("a.jpg")) << "a second picture";
    EXPECT_TRUE(notes[3].contains("Slide 4") && notes[3].contains("no duration"));

    const QString out = dataFile("out/");
    QDir().mkpath(out);
    ASSERT_EQ(m_manager.ExportMMS(*message, clsMMSManager::ExportSmil, 0, out + "mms.smil", false),
              0);
    EXPECT_EQ(m_manager.exportImportNotes(),
              QStringList{"Left out for lasting less than 1 ms: slide 1, 3, 4."});
}

TEST_F(ForeignSmilTest, TemplatesMadeWhereCaseDoesNotMatterOrWithFoldersResolve) {
    picture("Photo.JPG");
    QDir().mkpath(m_folder + "pics");
    picture("pics/p.jpg", "blue");
    tone("Tune.WAV");
    writeFile(m_folder + "MMS.SMIL",
              "<smil><body><par dur=\"2s\"><img src=\"photo.jpg\"/><audio src=\"tune.wav\"/>"
              "</par><par dur=\"3s\"><img src=\"pics/p.jpg\"/></par></body></smil>");
    clsMessage* message =
        importTemplate(pack({"MMS.SMIL", "Photo.JPG", "pics/p.jpg", "Tune.WAV"}, {"-C", m_folder}));
    ASSERT_NE(message, nullptr) << status().toStdString();
    ASSERT_EQ(message->Slides().Count(), 2);
    EXPECT_EQ(colourOf(message->Slides().Item(1).DrawObjects().BackPicture()), qRgb(255, 0, 0));
    EXPECT_EQ(message->Slides().Item(1).SoundName(), "Tune");
    EXPECT_EQ(colourOf(message->Slides().Item(2).DrawObjects().BackPicture()), qRgb(0, 0, 255));
}

TEST_F(ForeignSmilTest, RefusedTemplatesSayWhy) {
    picture("a.jpg");
    EXPECT_EQ(importTemplate(pack({"a.jpg"}, {"-C", m_folder})), nullptr);
    EXPECT_TRUE(status().contains("holds no mms.smil")) << status().toStdString();

    writeFile(m_folder + "mms.smil", "<smil><body><par dur=\"1s\"><img src=\"a.jpg\"/></par>"
                                     "</body></smil>");
    ASSERT_TRUE(QFile::link("/etc/hostname", m_folder + "link.jpg"));
    EXPECT_EQ(importTemplate(pack({"mms.smil", "a.jpg", "link.jpg"}, {"-C", m_folder})), nullptr);
    EXPECT_TRUE(status().contains("link.jpg") && status().contains("symbolic link"))
        << status().toStdString();

    run("truncate", {"-s", "300M", "huge.wav"});
    EXPECT_EQ(importTemplate(pack({"mms.smil", "a.jpg", "huge.wav"}, {"--sparse", "-C", m_folder})),
              nullptr);
    EXPECT_TRUE(status().contains("huge.wav") && status().contains("size limits"))
        << status().toStdString();

    QDir().mkpath(m_folder + "inner");
    EXPECT_EQ(importTemplate(pack({"../mms.smil", "../a.jpg"}, {"-P", "-C", m_folder + "inner"})),
              nullptr);
    EXPECT_TRUE(status().contains("leads out of the folder")) << status().toStdString();

    writeFile(dataFile("plain.tpl"), "no archive at all");
    EXPECT_EQ(importTemplate(dataFile("plain.tpl")), nullptr);
    EXPECT_TRUE(status().contains("no tar archive")) << status().toStdString();
    EXPECT_EQ(m_manager.message(), nullptr) << "no half message came of any of them";
}

TEST_F(ForeignSmilTest, ImportSaysHowFarItIs) {
    picture("a.jpg");
    QString pars;
    for (int i = 0; i < 50; ++i)
        pars += "<par dur=\"1s\"><img src=\"a.jpg\"/></par>";
    presentation("fifty.smil", pars);
    QList<int> seen;
    QObject::connect(&m_manager, &clsMMSManager::ProsessingSlide, [&seen](int slide, int count) {
        EXPECT_EQ(count, 50);
        seen << slide;
    });
    ASSERT_NE(importSmil("fifty.smil"), nullptr);
    ASSERT_EQ(seen.size(), 50);
    EXPECT_EQ(seen.first(), 1);
    EXPECT_EQ(seen.last(), 50);
}
