#include "AppGlobals.h"
#include "DialogService.h"
#include "MainWindowFixture.h"
#include "Mci.h"
#include "MediaFolderModel.h"
#include "MessageDocument.h"
#include "PhotoSamples.h"
#include "ProgramRun.h"
#include "ScriptedAudioBackend.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "ThumbnailCache.h"
#include "ThumbnailLoader.h"
#include "ToolTabs.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "ctlAudioRecorder.h"
#include "ctlBrowser.h"
#include "ctlDirTree.h"
#include "ctlPictureEditor.h"
#include "frmMain.h"
#include "frmPictureBrowser.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>
#include <memory>

namespace {
void touch(const QString& path, const QByteArray& bytes = "x") {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

void savePicture(const QString& path, QSize size, const QColor& colour) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    ASSERT_TRUE(picture.save(path)) << path.toStdString();
}

QStringList listed(const ctlBrowser& browser) {
    QStringList names;
    for (int row = 0; row < browser.model()->rowCount(); ++row)
        names << browser.model()->index(row).data().toString();
    return names;
}

void waitForThumbnails(const ctlBrowser& browser) {
    browser.model()->loader().waitForDone();
}
} // namespace

// The browsers beside the slide, on folders prepared by the test, driven
// through the main window as a user drives them.
class MediaBrowserTest : public MainWindowFixture {
protected:
    void SetUp() override {
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_root.path() + "/cache"));
        MainWindowFixture::SetUp();
        m_media = m_root.path() + "/media";
        for (const char* kind : {"Backgrounds", "Pictures", "Animations", "Sounds"}) {
            ASSERT_TRUE(QDir().mkpath(m_media + u'/' + kind));
            AppGlobals::settings()->SetProp("browserPaths", kind, m_media + u'/' + kind);
        }
    }
    void TearDown() override {
        MainWindowFixture::TearDown();
        qunsetenv("XDG_CACHE_HOME");
    }
    ctlBrowser& browser(int kind) { return *window().toolTabs()->browser(kind); }
    QString folder(const char* kind) const { return m_media + u'/' + kind; }
    QString saveAndDescribe() {
        const QString file = dataFile("browsed.mms");
        EXPECT_TRUE(window().document().saveMessage(file));
        return cliInfo(file);
    }

    QString m_media;
};

TEST_F(MediaBrowserTest, EachTabListsExactlyWhatItsPatternsMatch) {
    const QStringList names{"a.bmp", "B.GIF",  "c.jpg",    "d.jpeg", "e.png",     "MH_ring.mid",
                            "y.mid", "z.MIDI", "MH_q.imy", "r.imy",  "s.mp3",     "t.amr",
                            "u.wav", "v.ogg",  "w.avi",    "x.mp4",  "notes.txt", "jpg"};
    for (const char* kind : {"Backgrounds", "Pictures", "Animations", "Sounds"})
        for (const QString& name : names)
            touch(folder(kind) + u'/' + name);
    // Neither a folder named like a picture nor a link is a file of the folder.
    ASSERT_TRUE(QDir().mkpath(folder("Pictures") + "/album.jpg"));
    touch(m_root.path() + "/secret.jpg");
    ASSERT_TRUE(QFile::link(m_root.path() + "/secret.jpg", folder("Pictures") + "/link.jpg"));

    const QStringList pictures{"a.bmp", "B.GIF", "c.jpg", "d.jpeg"};
    EXPECT_EQ(listed(browser(ctlBrowser::Backgrounds)), pictures);
    EXPECT_EQ(listed(browser(ctlBrowser::Pictures)), pictures);
    EXPECT_EQ(listed(browser(ctlBrowser::Animations)), QStringList({"B.GIF", "w.avi", "x.mp4"}));
    ctlBrowser& sounds = browser(ctlBrowser::Sounds);
    EXPECT_EQ(listed(sounds), QStringList({"MH_q.imy", "MH_ring.mid", "r.imy", "s.mp3", "t.amr",
                                           "u.wav", "y.mid", "z.MIDI"}));
    // The first pattern a name matches gives its icon: "MH_*.mid" before "*.mid".
    QList<int> icons;
    for (int row = 0; row < sounds.model()->rowCount(); ++row)
        icons << sounds.model()->index(row).data(MediaFolderModel::IconNumberRole).toInt();
    EXPECT_EQ(icons, QList<int>({104, 105, 102, 106, 107, 101, 103, 103}));

    // New patterns filter at once; so does a file that appears in the folder.
    sounds.setFiles("*.wav,*.amr");
    EXPECT_EQ(listed(sounds), QStringList({"t.amr", "u.wav"}));
    touch(folder("Sounds") + "/new.wav");
    QTRY_COMPARE(listed(sounds), QStringList({"new.wav", "t.amr", "u.wav"}));

    // Each list is named by its tab, each item by its file.
    for (int kind = 1; kind <= 4; ++kind) {
        ctlBrowser& shown = browser(kind);
        const int tab = window().toolTabs()->indexOf(&shown);
        EXPECT_EQ(shown.list()->accessibleName(), window().toolTabs()->tabText(tab));
    }
    EXPECT_EQ(browser(ctlBrowser::Pictures).model()->index(0).data(Qt::AccessibleTextRole),
              "a.bmp");
}

TEST_F(MediaBrowserTest, AddPutsTheChosenFileOnTheCurrentSlide) {
    savePicture(folder("Backgrounds") + "/sea.jpg", QSize(160, 120), Qt::blue);
    savePicture(folder("Pictures") + "/sun.bmp", QSize(30, 30), Qt::yellow);
    ctlBrowser& backgrounds = browser(ctlBrowser::Backgrounds);
    ctlBrowser& pictures = browser(ctlBrowser::Pictures);

    // Enter on the chosen background, a double click on the chosen picture.
    backgrounds.list()->setFocus();
    backgrounds.selectIndex(1);
    QTest::keyClick(backgrounds.list(), Qt::Key_Return);
    window().toolTabs()->setCurrentWidget(&pictures);
    pictures.selectIndex(1);
    const QRect item = pictures.list()->visualRect(pictures.model()->index(0));
    // A double click as the system delivers it: a click, then the second press.
    QTest::mouseClick(pictures.list()->viewport(), Qt::LeftButton, {}, item.center());
    QTest::mouseDClick(pictures.list()->viewport(), Qt::LeftButton, {}, item.center());

    const QString info = saveAndDescribe();
    EXPECT_TRUE(info.contains("background: kind 1")) << info.toStdString();
    EXPECT_TRUE(info.contains("object 1: image")) << info.toStdString();
    EXPECT_EQ(info.count("object "), 1) << "a double click adds once: " << info.toStdString();

    // Browse offers the browser's kind of file first and puts the pick on the slide.
    const ProgramRun tone = runProgram(
        "ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=d=1.2:r=8000", dataFile("tone.wav")});
    ASSERT_EQ(tone.code, 0) << tone.err.toStdString();
    DialogService::queueFileAnswer(dataFile("tone.wav"));
    QTest::mouseClick(browser(ctlBrowser::Sounds).findChild<QPushButton*>("cmdBrowse"),
                      Qt::LeftButton);
    ASSERT_EQ(DialogService::answeredFileDialogs().size(), 1);
    EXPECT_TRUE(DialogService::answeredFileDialogs()[0].filter.startsWith("Sounds (*.wav "))
        << DialogService::answeredFileDialogs()[0].filter.toStdString();
    EXPECT_TRUE(
        saveAndDescribe().contains(QRegularExpression("sound: A\\w+\\.(wav|amr) \"tone\" 1200 ms")))
        << saveAndDescribe().toStdString();

    // Add with nothing chosen says so and adds nothing.
    pictures.list()->setCurrentIndex(QModelIndex());
    DialogService::queueAnswer(QMessageBox::Ok);
    QTest::mouseClick(pictures.findChild<QPushButton*>("cmdAdd"), Qt::LeftButton);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].text, "Select a file first, then click Add.");
    EXPECT_EQ(saveAndDescribe().count("object "), 1);
}

TEST_F(MediaBrowserTest, AThumbnailDraggedOntoTheSlideLandsWhereItIsDropped) {
    savePicture(folder("Pictures") + "/dot.bmp", QSize(10, 10), Qt::red);
    const ProgramRun video =
        runProgram("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=c=blue:s=64x48:d=1",
                              "-pix_fmt", "yuv420p", folder("Animations") + "/clip.mp4"});
    ASSERT_EQ(video.code, 0) << video.err.toStdString();
    ctlPictureEditor* editor = window().pictureEditor();
    const QRect shown = editor->pictureRect();
    const double zoom = double(shown.width()) / 160;
    auto dragOnto = [&](ctlBrowser& from, QPoint slidePoint) {
        std::unique_ptr<QMimeData> data(from.model()->mimeData({from.model()->index(0)}));
        const QPoint at = shown.topLeft() + slidePoint * zoom;
        QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(editor, &enter);
        ASSERT_TRUE(enter.isAccepted());
        QDropEvent dropped(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(editor, &dropped);
    };
    dragOnto(browser(ctlBrowser::Pictures), QPoint(120, 30));
    ASSERT_EQ(editor->shownObjects().size(), 1);
    // A video dragged from the animations becomes the background, after the question.
    DialogService::queueAnswer(QMessageBox::Ok);
    dragOnto(browser(ctlBrowser::Animations), QPoint(10, 10));
    const QString info = saveAndDescribe();
    EXPECT_TRUE(info.contains("background: kind 2")) << info.toStdString();
    EXPECT_TRUE(info.contains(QRegularExpression("object 1: image I\\w+\\.bmp at 120,30 ")))
        << info.toStdString();
    // The slide shows the video's first picture.
    const QColor shownColour = editor->RenderImage(QSize(160, 120)).pixelColor(5, 5);
    EXPECT_TRUE(shownColour.blue() > 240 && shownColour.red() < 16)
        << shownColour.name().toStdString();
}

TEST_F(MediaBrowserTest, PicturesOfOtherProgramsReachTheSlideThroughThePictureBrowser) {
    const QString photos = m_root.path() + "/photos";
    ASSERT_TRUE(QDir().mkpath(photos));
    AppGlobals::settings()->SetProp("preferences", "SavedPictureBrowserPath", photos);
    for (const char* name : {"scan.tga", "paint.pcx", "layers.psd"}) {
        const ProgramRun made = runProgram(
            "convert", {"-size", "80x60", "gradient:orange-purple", photos + u'/' + name});
        ASSERT_EQ(made.code, 0) << made.err.toStdString();
    }
    QTest::keyClick(&window(), Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
    frmPictureBrowser* pictures = window().pictureBrowser();
    ASSERT_TRUE(pictures->isVisible());
    auto* files = pictures->findChild<QListWidget*>("lstFiles");
    ASSERT_EQ(files->count(), 3);
    for (int row = 0; row < files->count(); ++row) {
        QSignalSpy finished(pictures, &frmPictureBrowser::loadFinished);
        files->setCurrentRow(row);
        ASSERT_TRUE(finished.wait(60000));
        QTest::keyClick(pictures, Qt::Key_Return, Qt::ControlModifier);
    }
    const QString info = saveAndDescribe();
    for (const char* object : {"object 1: image", "object 2: image", "object 3: image"})
        EXPECT_TRUE(info.contains(object)) << info.toStdString();
    EXPECT_EQ(info.count("size 80x60"), 3) << info.toStdString();
}

TEST_F(MediaBrowserTest, TheSlidesSoundPlaysFromBesideItsNameAnAmrThroughAWavCopy) {
    ScriptedAudioBackend card;
    Mci mci(card);
    Mci::install(&mci);
    QStringList sent;
    mci.setTrace([&sent](const QString& command) { sent << command; });
    AppGlobals::settings()->SetProp("preferences", "ConvertWavToAmr", "1");
    const ProgramRun tone =
        runProgram("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=d=1:r=8000",
                              folder("Sounds") + "/hum.wav"});
    ASSERT_EQ(tone.code, 0) << tone.err.toStdString();
    ctlBrowser& sounds = browser(ctlBrowser::Sounds);
    sounds.selectIndex(1);
    sounds.addSelected();
    auto* play = window().findChild<QPushButton*>("cmdPlaySound");
    ASSERT_TRUE(play->isEnabled());
    const QString sound = window().document().message()->Slides().Item(1).Sound();
    ASSERT_TRUE(sound.endsWith(".amr")) << sound.toStdString();

    QTest::mouseClick(play, Qt::LeftButton);
    EXPECT_EQ(play->text(), "Stop");
    const QString opened = sent.filter("alias playsound").value(0);
    EXPECT_TRUE(opened.startsWith("open waveaudio!") && opened.endsWith(".wav alias playsound") &&
                !opened.contains(window().manager().GetWorkFolderPath()))
        << "a copy outside the work folder: " << opened.toStdString();
    card.advance(1500);
    QTRY_COMPARE(play->text(), QString("Play"));
    EXPECT_GE(card.played().size(), 15000) << "about a second of 8000 Hz 16-bit sound";

    // A sound that has gone from the work folder is reported, not played.
    ASSERT_TRUE(QFile::remove(window().manager().GetWorkFolderPath() + sound));
    DialogService::queueAnswer(QMessageBox::Ok);
    QTest::mouseClick(play, Qt::LeftButton);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].text, "The file cannot be found.");
    EXPECT_EQ(play->text(), "Play");
    m_window.reset();
    Mci::install(nullptr);
}

TEST_F(MediaBrowserTest, ARecordingGoesOnTheSlideWithOk) {
    ScriptedAudioBackend card;
    Mci mci(card);
    Mci::install(&mci);
    AppGlobals::settings()->SetProp("preferences", "ConvertWavToAmr", "0");
    card.setMicrophone(QByteArray(8000 * 2 * 2, '\x10'));
    ctlAudioRecorder* recorder = window().toolTabs()->recorder();
    window().toolTabs()->setCurrentWidget(recorder);
    QTest::mouseClick(recorder->findChild<QPushButton*>("cmdRecord"), Qt::LeftButton);
    card.advance(1500);
    QTest::mouseClick(recorder->findChild<QPushButton*>("cmdStop"), Qt::LeftButton);
    QTRY_VERIFY(recorder->findChild<QPushButton*>("cmdOK")->isEnabled());
    recorder->findChild<QLineEdit*>("txtName")->setText("hello there");
    QTest::mouseClick(recorder->findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    const QString info = saveAndDescribe();
    EXPECT_TRUE(info.contains(QRegularExpression("sound: A\\w+\\.wav \"hello_there\" 1500 ms")))
        << info.toStdString();
    m_window.reset();
    Mci::install(nullptr);
}

TEST_F(MediaBrowserTest, DeleteInformsWithoutAChoiceAndTrashesAChosenFile) {
    savePicture(folder("Pictures") + "/one.bmp", QSize(8, 8), Qt::red);
    savePicture(folder("Pictures") + "/two.bmp", QSize(8, 8), Qt::green);
    ctlBrowser& pictures = browser(ctlBrowser::Pictures);
    pictures.list()->setCurrentIndex(QModelIndex());

    DialogService::queueAnswer(QMessageBox::Ok);
    pictures.deleteSelected();
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes().first().title, "Delete file");
    EXPECT_EQ(QDir(folder("Pictures")).entryList(QDir::Files).size(), 2) << "nothing deleted";

    // Answering No keeps the file; Yes moves it to the user's trash.
    pictures.selectIndex(1);
    pictures.list()->setFocus();
    DialogService::queueAnswer(QMessageBox::No);
    QTest::keyClick(pictures.list(), Qt::Key_Delete);
    EXPECT_TRUE(QFileInfo::exists(folder("Pictures") + "/one.bmp"));
    DialogService::queueAnswer(QMessageBox::Yes);
    QTest::keyClick(pictures.list(), Qt::Key_Delete);
    EXPECT_FALSE(QFileInfo::exists(folder("Pictures") + "/one.bmp"));
    EXPECT_TRUE(QFileInfo::exists(m_dataHome + "/Trash/files/one.bmp"));
    EXPECT_TRUE(QFileInfo::exists(m_dataHome + "/Trash/info/one.bmp.trashinfo"));
    EXPECT_EQ(listed(pictures), QStringList({"two.bmp"})) << "the list reloads";
}

TEST_F(MediaBrowserTest, ThumbnailsTellWhatEachFileIsAndComeFromTheSharedCache) {
    const QString photo = folder("Pictures") + "/photo.jpg";
    ASSERT_TRUE(PhotoSamples::gradientJpeg(photo, QSize(4000, 3000)).isEmpty());
    PhotoSamples::truncatedJpegHeader(folder("Pictures") + "/broken.jpg");
    const ProgramRun gif =
        runProgram("convert", {"-delay", "50", "-size", "40x30", "xc:red", "xc:blue", "xc:green",
                               folder("Animations") + "/three.gif"});
    ASSERT_EQ(gif.code, 0) << gif.err.toStdString();
    const ProgramRun video =
        runProgram("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=c=red:s=64x48:d=2",
                              "-pix_fmt", "yuv420p", folder("Animations") + "/clip.mp4"});
    ASSERT_EQ(video.code, 0) << video.err.toStdString();
    const ProgramRun sound =
        runProgram("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=d=1.5:r=8000",
                              folder("Sounds") + "/tone.wav"});
    ASSERT_EQ(sound.code, 0) << sound.err.toStdString();

    ctlBrowser& pictures = browser(ctlBrowser::Pictures);
    ctlBrowser& animations = browser(ctlBrowser::Animations);
    ctlBrowser& sounds = browser(ctlBrowser::Sounds);
    for (ctlBrowser* shown : {&pictures, &animations, &sounds})
        waitForThumbnails(*shown);
    auto at = [](ctlBrowser& shown, int row, int role) {
        return shown.model()->index(row).data(role);
    };
    // broken.jpg, photo.jpg
    EXPECT_TRUE(at(pictures, 0, MediaFolderModel::ErrorRole).toString().contains("broken.jpg"));
    const QPixmap thumb = at(pictures, 1, Qt::DecorationRole).value<QPixmap>();
    EXPECT_EQ(thumb.size(), QSize(128, 96)) << "a 4000x3000 photo, scaled whole";
    // clip.mp4, three.gif
    EXPECT_EQ(at(animations, 0, MediaFolderModel::DetailRole).toString(), "2.0s");
    const QImage frame = at(animations, 0, Qt::DecorationRole).value<QPixmap>().toImage();
    ASSERT_FALSE(frame.isNull());
    EXPECT_GT(qRed(frame.pixel(32, 24)), 200);
    EXPECT_EQ(at(animations, 1, MediaFolderModel::DetailRole).toString(), "1.5s");
    EXPECT_EQ(at(animations, 1, Qt::DecorationRole).value<QPixmap>().toImage().pixelColor(5, 5),
              QColor(Qt::red));
    EXPECT_EQ(at(sounds, 0, MediaFolderModel::DetailRole).toString(), "WAV 1.5s");

    // The photo's thumbnail is in the cache, as other programs expect it.
    const ThumbnailCache cache;
    const QImage cached(cache.thumbnailPath(photo));
    ASSERT_FALSE(cached.isNull());
    EXPECT_EQ(cached.text("Thumb::URI"), ThumbnailCache::uriOf(photo));
    EXPECT_EQ(cached.text("Thumb::MTime"),
              QString::number(QFileInfo(photo).lastModified().toSecsSinceEpoch()));
    EXPECT_EQ(QFileInfo(cache.thumbnailPath(photo)).permissions() & 0x0077, 0)
        << "nobody else reads the user's thumbnails";

    // A second visit draws what the cache holds (here made green, tags kept)...
    QImage green = cached;
    green.fill(Qt::green);
    green.setText("Thumb::URI", cached.text("Thumb::URI"));
    green.setText("Thumb::MTime", cached.text("Thumb::MTime"));
    ASSERT_TRUE(green.save(cache.thumbnailPath(photo)));
    pictures.LoadFiles();
    waitForThumbnails(pictures);
    EXPECT_EQ(at(pictures, 1, Qt::DecorationRole).value<QPixmap>().toImage().pixelColor(9, 9),
              QColor(Qt::green));
    // ...until the photo changes.
    QFile touched(photo);
    ASSERT_TRUE(touched.open(QIODevice::ReadWrite));
    touched.setFileTime(QDateTime::currentDateTime().addSecs(60),
                        QFileDevice::FileModificationTime);
    touched.close();
    pictures.LoadFiles();
    waitForThumbnails(pictures);
    EXPECT_NE(at(pictures, 1, Qt::DecorationRole).value<QPixmap>().toImage().pixelColor(9, 9),
              QColor(Qt::green));
}

TEST_F(MediaBrowserTest, FoldersThatGoOrCannotBeReadShowAnEmptyList) {
    savePicture(folder("Pictures") + "/one.bmp", QSize(8, 8), Qt::red);
    ctlBrowser& pictures = browser(ctlBrowser::Pictures);
    ASSERT_EQ(listed(pictures).size(), 1);
    ASSERT_TRUE(QDir(folder("Pictures")).removeRecursively());
    QTRY_VERIFY(listed(pictures).isEmpty());
    pictures.setPath(m_root.path() + "/never-there");
    EXPECT_TRUE(listed(pictures).isEmpty());
    EXPECT_EQ(pictures.GetBrowserDir(), m_root.path() + "/never-there");
}

TEST_F(MediaBrowserTest, TheExtendedModeChoosesTheFolderInATree) {
    const QString home = m_root.path() + "/home";
    ASSERT_TRUE(QDir().mkpath(home + "/photos/2026"));
    ASSERT_TRUE(QDir().mkpath(home + "/.hidden"));
    savePicture(home + "/photos/2026/beach.jpg", QSize(16, 12), Qt::cyan);
    const QByteArray realHome = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(home));
    AppGlobals::settings()->SetProp("preferences", "ExtendedBrowser", "1");
    ctlBrowser& pictures = browser(ctlBrowser::Pictures);
    ctlDirTree* tree = pictures.folderTree();
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(tree->topLevelItem(0)->data(0, ctlDirTree::PathRole).toString(), home);

    tree->setFocus();
    tree->setCurrentItem(tree->topLevelItem(0));
    QTest::keyClick(tree, Qt::Key_Right); // open home
    QTest::keyClick(tree, Qt::Key_Down);  // photos: the hidden folder is not listed
    QTest::keyClick(tree, Qt::Key_Right);
    QTest::keyClick(tree, Qt::Key_Down); // 2026
    EXPECT_EQ(tree->currentFolder(), home + "/photos/2026");
    EXPECT_EQ(listed(pictures), QStringList({"beach.jpg"}));
    EXPECT_EQ(pictures.GetBrowserDir(), home + "/photos/2026");

    // The folder the browser shows at the next start is the one chosen.
    DialogService::queueAnswer(QMessageBox::Yes);
    window().close();
    EXPECT_EQ(AppGlobals::setting("browserPaths", "Pictures", ""), home + "/photos/2026");
    qputenv("HOME", realHome);
}

// The chosen file's whole cell shows the selection, so its name, drawn in the
// selection's text colour, stands on the selection and can be read.
TEST_F(MediaBrowserTest, TheChosenFileIsHighlightedWholeUnderItsName) {
    savePicture(folder("Pictures") + "/a.jpg", QSize(40, 30), Qt::red);
    savePicture(folder("Pictures") + "/b.jpg", QSize(40, 30), Qt::blue);
    window().toolTabs()->setCurrentWidget(&browser(ctlBrowser::Pictures));
    ctlBrowser& pictures = browser(ctlBrowser::Pictures);
    pictures.LoadFiles();
    waitForThumbnails(pictures);
    pictures.selectIndex(2);
    QListView* list = pictures.list();
    const QImage shown = list->viewport()->grab().toImage();
    const auto besideName = [&](int row) {
        const QRect cell = list->visualRect(list->model()->index(row, 0));
        return shown.pixelColor(cell.left() + 3, cell.bottom() - 3);
    };
    EXPECT_NE(besideName(0), besideName(1));
    EXPECT_TRUE(besideName(1) == list->palette().color(QPalette::Active, QPalette::Highlight) ||
                besideName(1) == list->palette().color(QPalette::Inactive, QPalette::Highlight))
        << besideName(1).name().toStdString();
}
