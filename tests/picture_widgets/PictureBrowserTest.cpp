#include "AppGlobals.h"
#include "DialogService.h"
#include "PhotoSamples.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "ctlPicScroll.h"
#include "frmPictureBrowser.h"

#include <QAccessible>
#include <QDir>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

// The picture browser driven by clicks and keys on a folder of real files,
// checking the files it hands over.
class PictureBrowserTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        useLanguage("en-us");
        m_folder = m_root.path() + "/pictures";
        QDir().mkpath(m_folder);
        AppGlobals::settings()->SetProp("preferences", "SavedPictureBrowserPath", m_folder);
    }
    void TearDown() override {
        m_browser.reset();
        // Pictures still being read finish before the settings go.
        QThreadPool::globalInstance()->waitForDone();
        DialogService::clear();
        TempDataHome::TearDown();
    }

    void useLanguage(const QString& code) {
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage(code));
        AppGlobals::installLocalizer(std::move(localizer));
    }

    void open() {
        m_browser = std::make_unique<frmPictureBrowser>();
        m_browser->setSlideSize(QSize(160, 120));
        m_browser->show();
        m_browser->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_browser.get()));
    }

    QString picture(const QString& name, QSize size, const char* format = nullptr) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(qRgb(30, 140, 200));
        // A mark in the top left corner shows which way up the picture is.
        for (int y = 0; y < size.height() / 4; ++y)
            for (int x = 0; x < size.width() / 4; ++x)
                image.setPixel(x, y, qRgb(250, 200, 0));
        const QString path = m_folder + u'/' + name;
        EXPECT_TRUE(image.save(path, format));
        return path;
    }

    template <typename T> T* child(const char* name) const {
        T* found = m_browser->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QListWidget* list() const { return child<QListWidget>("lstFiles"); }
    ctlPicScroll* view() const { return child<ctlPicScroll>("picView"); }
    QLabel* message() const { return child<QLabel>("lblMessage"); }
    void click(const char* button) {
        QTest::mouseClick(child<QPushButton>(button), Qt::LeftButton);
    }

    QStringList listed() const {
        QStringList names;
        for (int row = 0; row < list()->count(); ++row)
            names << list()->item(row)->text();
        return names;
    }

    // Chooses a file in the list as the user does and waits until it is read.
    void choose(const QString& name) {
        QSignalSpy finished(m_browser.get(), &frmPictureBrowser::loadFinished);
        const QList<QListWidgetItem*> items = list()->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(items.size(), 1) << name.toStdString();
        list()->setFocus();
        list()->setCurrentItem(items.first());
        const QString path = m_folder + u'/' + name;
        while (!finished.contains(QVariantList{path}))
            ASSERT_TRUE(finished.wait(60000)) << "never read " << name.toStdString();
    }

    QString addToSlide() {
        QSignalSpy added(m_browser.get(), &frmPictureBrowser::AddPicture);
        click("cmdAdd");
        EXPECT_EQ(added.size(), 1);
        return added.isEmpty() ? QString() : added.first().first().toString();
    }

    QString m_folder;
    std::unique_ptr<frmPictureBrowser> m_browser;
};

TEST_F(PictureBrowserTest, ListsExactlyTheFilesTheSettingsPatternsMatch) {
    for (const char* name : {"photo.jpg", "xjpg", "LOUD.PNG", "scan.Tif", "layers.psd", "b.bmp",
                             "notes.txt", "photo.jpeg", "archive.zip", "anim.gif.bak"})
        TempDataHome::writeFile(m_folder + u'/' + name, "x");
    QDir().mkpath(m_folder + "/folder.png");
    open();
    // "*jpg" has no dot: a name that merely ends in jpg is a picture too.
    EXPECT_EQ(listed(),
              QStringList({"b.bmp", "layers.psd", "LOUD.PNG", "photo.jpg", "scan.Tif", "xjpg"}));
    // The list's entries are named by their files for screen readers.
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(list());
    ASSERT_NE(access, nullptr);
    QStringList spoken;
    for (int i = 0; i < access->childCount(); ++i)
        spoken << access->child(i)->text(QAccessible::Name);
    EXPECT_EQ(spoken, listed());
}

TEST_F(PictureBrowserTest, AChosenPictureIsShownFittedIntoTheWindow) {
    picture("wide.png", QSize(300, 150));
    open();
    EXPECT_FALSE(child<QPushButton>("cmdAdd")->isEnabled());
    choose("wide.png");
    EXPECT_TRUE(view()->isVisible());
    EXPECT_FALSE(message()->isVisible());
    EXPECT_EQ(view()->GetPicture().size(), QSize(300, 150));
    EXPECT_EQ(view()->displayMode(), ctlPicScroll::ModeFit);
    EXPECT_TRUE(child<QPushButton>("cmdAdd")->isEnabled());
}

TEST_F(PictureBrowserTest, ARotatedPictureIsHandedOverAsAPngOfTheTurnedSize) {
    picture("photo.png", QSize(120, 80));
    open();
    choose("photo.png");
    click("cmdRotateRight");
    const QString file = addToSlide();
    QImageReader reader(file);
    EXPECT_EQ(reader.format(), "png");
    const QImage handed = reader.read();
    EXPECT_EQ(handed.size(), QSize(80, 120));
    // Turned clockwise, the marked top left corner is now at the top right.
    EXPECT_EQ(handed.pixel(79, 0), qRgb(250, 200, 0));
    EXPECT_EQ(handed.pixel(0, 0), qRgb(30, 140, 200));
    // Another hand-over never overwrites a file the owner may not have copied yet.
    const QString second = addToSlide();
    EXPECT_NE(second, file);
    EXPECT_TRUE(QFileInfo::exists(file));
}

TEST_F(PictureBrowserTest, KeysTurnMirrorAndZoomThePicture) {
    picture("photo.png", QSize(120, 80));
    open();
    choose("photo.png");
    QTest::keyClick(m_browser.get(), Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(view()->GetPicture().size(), QSize(80, 120));
    // Turned anticlockwise, the mark is at the bottom left; mirrored, bottom right.
    EXPECT_EQ(view()->GetPicture().pixel(0, 119), qRgb(250, 200, 0));
    QTest::keyClick(m_browser.get(), Qt::Key_M, Qt::ControlModifier);
    EXPECT_EQ(view()->GetPicture().pixel(79, 119), qRgb(250, 200, 0));
    QTest::keyClick(m_browser.get(), Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(view()->ZoomPercent(), 100);
    QTest::keyClick(m_browser.get(), Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(view()->ZoomPercent(), 125);
    QTest::keyClick(m_browser.get(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(view()->displayMode(), ctlPicScroll::ModeFit);
    // Alt and a button's underlined letter press it too (as a click shown on screen).
    QTest::keyClick(m_browser.get(), Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view()->GetPicture().size() == QSize(120, 80); }));
}

TEST_F(PictureBrowserTest, ABrokenFileShowsWhyInTheWindowAndTheListGoesOn) {
    PhotoSamples::randomBytes(m_folder + "/broken.png", 3000);
    picture("good.png", QSize(64, 48));
    open();
    choose("broken.png");
    EXPECT_TRUE(message()->isVisible());
    EXPECT_TRUE(message()->text().contains("broken.png")) << message()->text().toStdString();
    EXPECT_TRUE(message()->text().contains("cannot be decoded")) << message()->text().toStdString();
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
    EXPECT_FALSE(child<QPushButton>("cmdAdd")->isEnabled());
    // The next file is read as if nothing had happened.
    QTest::keyClick(list(), Qt::Key_Down);
    QSignalSpy finished(m_browser.get(), &frmPictureBrowser::loadFinished);
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_EQ(view()->GetPicture().size(), QSize(64, 48));
    EXPECT_TRUE(view()->isVisible());
}

TEST_F(PictureBrowserTest, ALargePhotoIsReadWithoutHoldingUpTheWindow) {
    ASSERT_EQ(PhotoSamples::gradientJpeg(m_folder + "/big.jpg", QSize(6000, 4000)), QString());
    picture("small.png", QSize(40, 30));
    open();
    QSignalSpy finished(m_browser.get(), &frmPictureBrowser::loadFinished);
    list()->setCurrentItem(list()->findItems("big.jpg", Qt::MatchExactly).first());
    // The window answers at once, saying what it is doing.
    EXPECT_TRUE(message()->isVisible());
    EXPECT_TRUE(message()->text().contains("big.jpg"));
    // The user moves on before the photo is read; it must not replace the next one.
    list()->setCurrentItem(list()->findItems("small.png", Qt::MatchExactly).first());
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_EQ(finished.first().first().toString(), m_folder + "/small.png");
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(finished.size(), 1);
    EXPECT_EQ(view()->GetPicture().size(), QSize(40, 30));
}

TEST_F(PictureBrowserTest, CroppingHandsOverAPartInTheSlidesProportions) {
    picture("square.png", QSize(400, 400));
    open();
    choose("square.png");
    click("cmdCrop");
    EXPECT_TRUE(view()->cropping());
    const QImage whole = QImage(addToSlide());
    EXPECT_EQ(whole.size(), QSize(400, 300));
    // Made smaller from the keyboard, the part keeps the slide's 4:3.
    view()->setFocus();
    for (int i = 0; i < 10; ++i)
        QTest::keyClick(view(), Qt::Key_Left, Qt::ShiftModifier);
    const QImage part = QImage(addToSlide());
    EXPECT_EQ(part.width(), 360);
    EXPECT_EQ(part.height() * 4, part.width() * 3);
    // Cropping off hands over the whole picture again.
    click("cmdCrop");
    EXPECT_EQ(QImage(addToSlide()).size(), QSize(400, 400));
}

TEST_F(PictureBrowserTest, TheFolderChosenIsRememberedWhenTheWindowCloses) {
    const QString other = m_root.path() + "/other";
    QDir().mkpath(other);
    QImage(8, 8, QImage::Format_RGB32).save(other + "/one.png");
    open();
    DialogService::queueFileAnswer(other);
    click("cmdBrowse");
    ASSERT_EQ(DialogService::answeredFileDialogs().size(), 1);
    EXPECT_EQ(DialogService::answeredFileDialogs().first().kind,
              DialogService::FileRequest::Folder);
    EXPECT_EQ(DialogService::answeredFileDialogs().first().folder, m_folder);
    EXPECT_EQ(listed(), QStringList({"one.png"}));
    QTest::keyClick(m_browser.get(), Qt::Key_Escape);
    EXPECT_FALSE(m_browser->isVisible());
    EXPECT_EQ(AppGlobals::setting("preferences", "SavedPictureBrowserPath", ""), other);
    open();
    EXPECT_EQ(listed(), QStringList({"one.png"}));
    EXPECT_EQ(child<QLineEdit>("txtFolder")->text(), QDir::toNativeSeparators(other));
}

TEST_F(PictureBrowserTest, EveryControlIsNamedInTheUsersLanguage) {
    useLanguage("de-de");
    open();
    EXPECT_EQ(m_browser->windowTitle(), "Bildbrowser");
    EXPECT_EQ(child<QPushButton>("cmdAdd")->accessibleName(), "Zur Folie hinzufügen");
    EXPECT_EQ(list()->accessibleName(), "Bilder");
    EXPECT_EQ(view()->accessibleName(), "Bild");
    for (QPushButton* button : m_browser->findChildren<QPushButton*>()) {
        EXPECT_FALSE(button->accessibleName().isEmpty()) << button->objectName().toStdString();
        EXPECT_TRUE(button->text().contains(u'&')) << button->objectName().toStdString();
        EXPECT_TRUE(button->toolTip().startsWith(button->accessibleName()));
    }
    EXPECT_EQ(child<QPushButton>("cmdRotateLeft")->toolTip(), "Nach links drehen (Strg+L)");
    EXPECT_EQ(child<QPushButton>("cmdClose")->toolTip(), "Schließen (Esc)");
    useLanguage("en-us");
    m_browser->TranslateControl();
    EXPECT_EQ(m_browser->windowTitle(), "Picture browser");
    EXPECT_EQ(child<QLineEdit>("txtFolder")->accessibleName(), "Folder");
}
