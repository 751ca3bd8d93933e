#include "FakeClock.h"
#include "WorkFolderTest.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace {
QStringList run(const QString& program, const QStringList& arguments, int* exitCode = nullptr) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(60000);
    if (exitCode)
        *exitCode = process.exitCode();
    return QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}
} // namespace

class MmsManagerTest : public WorkFolderTest {
protected:
    QStringList workFiles() const { return QDir(m_work).entryList(QDir::Files, QDir::Name); }
};

TEST_F(MmsManagerTest, FoldersComeFromTheSettings) {
    EXPECT_EQ(m_work, dataFile("Vellumo/work/"));
    EXPECT_EQ(m_manager.GetUserArchivePath(), dataFile("Vellumo/archive/"));
    EXPECT_TRUE(QFileInfo(m_work).isDir());
    EXPECT_EQ(m_manager.messageFileName(), "message.xml");
    const QString temp = m_manager.GetTempFolderPath("tpldir");
    EXPECT_TRUE(temp.endsWith("/tpldir/"));
    EXPECT_TRUE(QFileInfo(temp).isDir());
    const QFileInfo parent(QFileInfo(temp.chopped(1)).path());
    EXPECT_EQ(parent.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                      QFile::ReadOther | QFile::WriteOther | QFile::ExeOther),
              0)
        << "nobody else may look into it";
    QString othersFolder;
    {
        clsMMSManager other;
        othersFolder = other.GetTempFolderPath("tpldir");
        EXPECT_NE(othersFolder, temp) << "each manager has its own";
    }
    EXPECT_FALSE(QFileInfo::exists(othersFolder)) << "and it goes with the manager";
    EXPECT_TRUE(clsMMSManager::DeleteFolder(temp));
    AppGlobals::settings()->SetProp("preferences", "SaveMessagePath", "/saved/here");
    EXPECT_EQ(m_manager.GetSaveMessagePath(), "/saved/here/");
}

TEST_F(MmsManagerTest, FileNameHelpersAndTheirEdges) {
    using M = clsMMSManager;
    EXPECT_EQ(M::GetFilenameFromPath("C:\\a\\b.c\\song.mp3", true), "song.mp3");
    EXPECT_EQ(M::GetFilenameFromPath("/home/u/song.mp3", false), "song");
    EXPECT_EQ(M::GetFilenameFromPath("noslash", false), "noslash");
    EXPECT_EQ(M::GetPathFromFilename("C:\\a\\b.txt", 1), "C:\\a\\");
    EXPECT_EQ(M::GetPathFromFilename("C:\\a\\b.txt", -1), "C:\\a") << "true (-1) is not positive";
    EXPECT_EQ(M::GetPathFromFilename("b.txt", 1), "");
    EXPECT_EQ(M::GetFilenameExtension("pic.BMP"), ".BMP");
    EXPECT_EQ(M::GetFilenameExtension("/a.folder/file"), ".folder/file") << "the last dot wins";
    EXPECT_EQ(M::GetFilenameExtension("none"), "");
    EXPECT_EQ(M::ReplaceFilenameExtension("a.b.jpg", "gif"), "a.b.gif");
    EXPECT_EQ(M::ReplaceFilenameExtension("nodot", "txt"), "txt");
}

TEST_F(MmsManagerTest, UniqueNamesDifferEvenWithinOneMillisecond) {
    FakeClock clock(1234567, QDateTime(QDate(2005, 11, 14), QTime(9, 0)));
    clock.setStepEvery(5);
    ScopedClock installed(clock);
    const QString first = m_manager.GetUniqueFileName("A", "Song.WAV");
    const QString second = m_manager.GetUniqueFileName("A", "Song.WAV");
    EXPECT_EQ(first, "A051114_1234567.wav");
    EXPECT_NE(first, second);
    EXPECT_TRUE(second.startsWith("A051114_123456"));

    writeFile(dataFile("in put.MP3"), "mp3 data");
    const QString saved = m_manager.SaveFileToWorkFolder("X", dataFile("in put.MP3"), "");
    EXPECT_TRUE(saved.startsWith("X051114_"));
    EXPECT_TRUE(saved.endsWith(".MP3")) << "kept as given";
    EXPECT_EQ(readFile(m_work + saved), "mp3 data");
    EXPECT_EQ(m_manager.SaveFileToWorkFolder("X", dataFile("gone.mp3"), ""), "")
        << "a file that cannot be copied gives no name";
    m_manager.DeleteWorkFolderFile(saved);
    m_manager.DeleteWorkFolderFile("");
    m_manager.DeleteWorkFolderFile("never-there");
    EXPECT_FALSE(QFileInfo::exists(m_work + saved));
}

TEST_F(MmsManagerTest, SavedMessagesListFlatAndOpenWithEverything) {
    writeFile(m_work + "leftover.txt", "from before");
    clsMessage* message = m_manager.CreateMsg();
    ASSERT_NE(message, nullptr);
    EXPECT_TRUE(workFiles().isEmpty()) << "a new message starts in an empty work folder";
    EXPECT_EQ(message->DefaultDuration(), 3000);
    message->setName("greeting");
    QImage red(16, 16, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(m_work + "I1.png"));
    writeFile(m_work + "A1.wav", "RIFF");
    clsSlide& first = message->Slides().Add();
    first.setSound("A1.wav");
    first.setSoundDuration(1500);
    first.DrawObjects().Add().SetAllPproperties(
        DrawObjectProperties::forImage("I1.png", QRect(0, 0, 160, 120)));
    message->Slides().Add().setText("second");
    QList<int> progress;
    QObject::connect(&m_manager, &clsMMSManager::ProsessingSlide,
                     [&](int slide, int count) { progress << slide * 10 + count; });

    const QString file = dataFile("saved message.mms");
    ASSERT_TRUE(m_manager.SaveMsg(file)) << m_manager.lastError().toStdString();
    EXPECT_EQ(progress, QList<int>({12, 22}));
    int code = -1;
    QStringList members = run("tar", {"tzf", file}, &code);
    members.sort();
    EXPECT_EQ(code, 0);
    EXPECT_EQ(members,
              QStringList({"A1.wav", "I1.png", "Slide_1.bmp", "Slide_2.bmp", "message.xml"}));

    int result = -1;
    clsMessage* opened = m_manager.OpenMsg(file, result);
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(m_manager.isCurrentMessage());
    EXPECT_EQ(opened->name(), "greeting") << "the name is the message's own, not the file's";
    ASSERT_EQ(opened->Slides().Count(), 2);
    EXPECT_EQ(opened->Slides().Item(1).Sound(), "A1.wav");
    EXPECT_EQ(opened->Slides().Item(1).SoundDuration(), 1500);
    EXPECT_EQ(opened->Slides().Item(2).Text(), "second");
    const QImage picture = opened->Slides().Item(1).image();
    ASSERT_FALSE(picture.isNull()) << "slide pictures come back from their files";
    EXPECT_EQ(picture.pixelColor(80, 60), QColor(Qt::red));
    EXPECT_FALSE(opened->Slides().Item(2).image().isNull());
    EXPECT_FALSE(opened->isChanged());
}

TEST_F(MmsManagerTest, AMessageAssembledByHandOpens) {
    const QString folder = dataFile("hand/");
    writeFile(folder + "message.xml",
              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ROOT><HEADER><CONTENT version=\"2.0\" "
              "type=\"Vellumo messages\"/></HEADER><MMS><FILELIST/></MMS>"
              "<MESSAGE name=\"hand\" created=\"x\"><SLIDES>"
              "<SLIDE name=\"Slide\" index=\"1\" dur=\"2000\"><IMAGE url=\"Slide_1\"/>"
              "<SOUND url=\"\" name=\"\" dur=\"\"/><TEXT text=\"Hi&#13;&#10;there\"/>"
              "<DRAWOBJECTS><BACKGROUND name=\"background\" type=\"0\" color=\"255\"/>"
              "</DRAWOBJECTS></SLIDE>"
              "<SLIDE name=\"Slide\" index=\"2\" dur=\"3000\"/>"
              "</SLIDES></MESSAGE></ROOT>");
    QImage slide(10, 10, QImage::Format_RGB32);
    slide.fill(Qt::blue);
    ASSERT_TRUE(slide.save(folder + "Slide_1.bmp"));
    int code = -1;
    run("tar", {"czf", dataFile("hand.mms"), "-C", folder, "message.xml", "Slide_1.bmp"}, &code);
    ASSERT_EQ(code, 0);

    int result = -1;
    clsMessage* message = m_manager.OpenMsg(dataFile("hand.mms"), result);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(result, 0);
    ASSERT_EQ(message->Slides().Count(), 2);
    EXPECT_EQ(message->Slides().Item(1).Text(), "Hi\r\nthere");
    EXPECT_EQ(message->Slides().Item(1).Color(), 255);
    EXPECT_EQ(message->Slides().Item(1).image().pixelColor(5, 5), QColor(Qt::blue));
    EXPECT_EQ(message->Slides().Item(2).Duration(), 3000);
    EXPECT_TRUE(message->Slides().Item(2).image().isNull()) << "a missing slide file is empty";
}

TEST_F(MmsManagerTest, ForeignFilesAndMissingMediaAreHandled) {
    writeFile(dataFile("x.mms"), "just some text, not an archive");
    writeFile(m_work + "stale.bin", "old");
    int result = -1;
    EXPECT_EQ(m_manager.OpenMsg(dataFile("x.mms"), result), nullptr);
    EXPECT_EQ(result, 2);
    EXPECT_TRUE(workFiles().isEmpty());

    // A message whose sound and picture are not in the file opens without them.
    const QString folder = dataFile("partial/");
    writeFile(folder + "message.xml",
              "<ROOT><HEADER><CONTENT version=\"2.0\"/></HEADER><MESSAGE><SLIDES>"
              "<SLIDE name=\"Slide\" index=\"1\"><SOUND url=\"A9.amr\" name=\"x\" dur=\"5\"/>"
              "<DRAWOBJECTS><BACKGROUND type=\"1\" url=\"B9.jpg\"/>"
              "<DRAWOBJECT type=\"image\" image=\"I9.png\"/><DRAWOBJECT type=\"text\" text=\"t\"/>"
              "</DRAWOBJECTS></SLIDE></SLIDES></MESSAGE></ROOT>");
    int code = -1;
    run("tar", {"czf", dataFile("partial.mms"), "-C", folder, "message.xml"}, &code);
    clsMessage* message = m_manager.OpenMsg(dataFile("partial.mms"), result);
    ASSERT_NE(message, nullptr);
    QStringList missing = m_manager.missingMedia();
    missing.sort();
    ASSERT_EQ(missing.size(), 3);
    EXPECT_TRUE(missing[0].contains("A9.amr") && missing[0].contains("missing"));
    EXPECT_TRUE(missing[1].contains("B9.jpg") && missing[2].contains("I9.png"));
    const clsSlide& slide = message->Slides().Item(1);
    EXPECT_EQ(slide.Sound(), "");
    EXPECT_EQ(slide.DrawObjects().BackType(), 0);
    ASSERT_EQ(slide.DrawObjects().Count(), 1);
    EXPECT_EQ(slide.DrawObjects().Item(1).typ(), "text");

    // Another program's XML: not current, so nothing is touched.
    writeFile(folder + "message.xml", "<ROOT><HEADER><CONTENT version=\"1.0\"/></HEADER></ROOT>");
    run("tar", {"czf", dataFile("old.mms"), "-C", folder, "message.xml"}, &code);
    ASSERT_NE(m_manager.OpenMsg(dataFile("old.mms"), result), nullptr);
    EXPECT_FALSE(m_manager.isCurrentMessage());
}

TEST_F(MmsManagerTest, AFailedSaveKeepsTheOldFile) {
    const QString file = dataFile("keep.mms");
    writeFile(file, "the previous message");
    m_manager.CreateMsg()->Slides().Add();
    m_manager.setSlideRenderer([](const clsSlide&, const QString&) { return false; });
    EXPECT_FALSE(m_manager.SaveMsg(file));
    EXPECT_FALSE(m_manager.lastError().isEmpty());
    EXPECT_EQ(readFile(file), "the previous message");
    m_manager.setSlideRenderer(m_manager.defaultSlideRenderer());
    EXPECT_FALSE(m_manager.SaveMsg(dataFile("no/such/folder/x.mms")));
    EXPECT_TRUE(m_manager.SaveMsg(file));
    EXPECT_NE(readFile(file), "the previous message");
}

TEST_F(MmsManagerTest, HostileArchivesNeverWriteOutsideTheWorkFolder) {
    const QString evil = dataFile("evil/");
    writeFile(evil + "payload", "owned");
    QDir().mkpath(evil + "a");
    int code = -1;
    // Member names that climb out of the folder, and an absolute one.
    run("tar",
        {"czf", dataFile("evil.mms"), "-P", "--transform", "s,^payload,../../escaped,", "-C", evil,
         "payload"},
        &code);
    ASSERT_EQ(code, 0);
    int result = -1;
    m_manager.OpenMsg(dataFile("evil.mms"), result);
    EXPECT_FALSE(QFileInfo::exists(dataFile("escaped")));
    EXPECT_FALSE(QFileInfo::exists(dataFile("Vellumo/escaped")));
    EXPECT_FALSE(QFileInfo::exists(m_work + "../escaped"));
}

TEST_F(MmsManagerTest, PicturesAreWrittenInTheChosenFormat) {
    QImage picture(32, 24, QImage::Format_RGB32);
    picture.fill(QColor(10, 200, 30));
    m_manager.SavePictureBoxImage(picture, 2, dataFile("p.gif"));
    m_manager.SavePictureBoxImage(picture, 1, dataFile("p.jpg"));
    EXPECT_EQ(QImage(dataFile("p.gif")).size(), QSize(32, 24));
    EXPECT_EQ(readFile(dataFile("p.gif")).left(6), "GIF89a");
    EXPECT_EQ(QImage(dataFile("p.jpg")).size(), QSize(32, 24));
    EXPECT_THROW(m_manager.SavePictureBoxImage(QImage(), 1, dataFile("e.jpg")), std::exception);
}
