#include "AppGlobals.h"
#include "DialogService.h"
#include "FakeClock.h"
#include "MainWindowFixture.h"
#include "MessageDocument.h"
#include "PhoneSkin.h"
#include "PhoneView.h"
#include "PreviewController.h"
#include "SlideRenderer.h"
#include "ToolTabs.h"
#include "clsPopupMenu.h"
#include "clsPropertiesXML.h"
#include "ctlMainMenu.h"
#include "ctlPictureEditor.h"
#include "ctlSlideThumbs.h"
#include "ctlSmilPlayer.h"
#include "frmPreview.h"

#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

// The preview dock and the clock that plays the message, in the main window.
class PreviewTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        setting("PreviewLoop", "0");
    }
    void TearDown() override {
        clsPopupMenu::clear();
        MainWindowFixture::TearDown();
    }
    frmPreview* preview() { return window().previewer()->preview(); }
    // A floating preview with room for the phone at its own size.
    PhoneView* roomyPhone() {
        preview()->setFloating(true);
        preview()->resize(700, 900);
        QCoreApplication::processEvents();
        return preview()->phone();
    }
    PreviewClock& clock() { return window().previewer()->clock(); }
    QString previewTime() { return preview()->findChild<QLabel*>("lblTime")->text(); }
    QPushButton* playButton() { return window().findChild<QPushButton*>("cmdPreview"); }
    // Slides of 3000, 1500 and 2000 ms with texts "one", "two", "three".
    void threeSlides() {
        MessageDocument& document = window().document();
        const QList<QPair<qint64, QString>> slides{{3000, "one"}, {1500, "two"}, {2000, "three"}};
        for (int i = 0; i < slides.size(); ++i) {
            if (i > 0) {
                ASSERT_TRUE(document.appendSlide());
            }
            document.setCurrentSlide(i + 1);
            ASSERT_TRUE(document.setSlideDuration(slides[i].first));
            ASSERT_TRUE(document.setSlideText(slides[i].second));
        }
        document.setCurrentSlide(2);
    }
    // One tick after the clock moved on by ms.
    void tickAfter(std::uint32_t ms) {
        m_clock.advance(ms);
        clock().TimerPreviewPlay_Timer();
    }
    void expectShowing(int slide, const QString& text, const QString& time) {
        EXPECT_EQ(clock().slide(), slide);
        EXPECT_EQ(window().document().currentSlide(), slide);
        EXPECT_EQ(preview()->findChild<QLabel*>("lblText")->text(), text);
        EXPECT_EQ(previewTime(), time);
    }
    // Whether File and Slide, and Edit and Help, can be opened.
    std::pair<bool, bool> menusOpen() {
        bool fileAndSlide = true;
        bool editAndHelp = true;
        for (QAction* menu : window().mainMenu()->actions()) {
            const QString title = menu->text().remove(u'&');
            if (title == "File" || title == "Slide")
                fileAndSlide = fileAndSlide && menu->isEnabled();
            else
                editAndHelp = editAndHelp && menu->isEnabled();
        }
        return {fileAndSlide, editAndHelp};
    }
    // Chooses the item of the phone's menu whose text starts with caption.
    static void chooseInPhoneMenu(const QString& caption) {
        clsPopupMenu::queueChoice([caption](QMenu& menu) -> QAction* {
            for (QAction* action : menu.actions())
                if (action->text().startsWith(caption))
                    return action;
            return nullptr;
        });
    }
    void rightClickPhone() {
        PhoneView* phone = preview()->phone();
        QContextMenuEvent event(QContextMenuEvent::Mouse, phone->rect().center(),
                                phone->mapToGlobal(phone->rect().center()));
        QApplication::sendEvent(phone, &event);
    }

    // Chooses the entry of the preview's presentation menu that starts with caption.
    void choosePresentation(const QString& caption) {
        for (QAction* action :
             preview()->findChild<QToolButton*>("cmdPresentation")->menu()->actions())
            if (action->text().remove(u'&').startsWith(caption))
                return action->trigger();
        FAIL() << "no entry " << caption.toStdString();
    }
    // Moves the clock on and waits for the presentation player's next look at it.
    void presentationAfter(std::uint32_t ms) {
        QSignalSpy ticked(preview()->player(), &ctlSmilPlayer::positionChanged);
        m_clock.advance(ms);
        ASSERT_TRUE(ticked.wait(2000));
    }
    QString problemsShown() { return preview()->findChild<QLabel*>("lblProblems")->text(); }

    FakeClock m_clock{50000, QDateTime(QDate(2026, 11, 23), QTime(10, 0))};
    ScopedClock m_useClock{m_clock};
};

TEST_F(PreviewTest, TheClockShowsEachSlideInTurnOnTheTickCountAndStopsAtTheEnd) {
    threeSlides();
    QTest::mouseClick(playButton(), Qt::LeftButton);
    ASSERT_TRUE(clock().isPlaying());
    EXPECT_EQ(playButton()->text(), "Stop");
    EXPECT_EQ(previewTime(), "0.0/6.5");
    EXPECT_EQ(menusOpen(), std::make_pair(false, true));
    EXPECT_FALSE(window().slideStrip()->RightClickMenuEnabled());
    EXPECT_FALSE(window().findChild<QPushButton*>("cmdAddNewSlide")->isEnabled());
    EXPECT_FALSE(preview()->findChild<QToolButton*>("cmdImgSize")->isVisible());

    // The first tick only shows slide 1, whatever time went by before it.
    tickAfter(700);
    expectShowing(1, "one", "0.0/6.5");
    tickAfter(1000);
    expectShowing(1, "one", "1.0/6.5");
    tickAfter(2000);
    expectShowing(2, "two", "3.0/6.5");
    // A late tick: slide 2's 1500 ms ran out 500 ms ago; slide 3 starts now
    // with its whole time, and the time shown is the clock's.
    tickAfter(2000);
    expectShowing(3, "three", "5.0/6.5");
    tickAfter(1999);
    EXPECT_EQ(clock().slide(), 3);
    tickAfter(1);
    EXPECT_FALSE(clock().isPlaying());

    EXPECT_EQ(playButton()->text(), "Play");
    EXPECT_EQ(menusOpen(), std::make_pair(true, true));
    EXPECT_TRUE(window().slideStrip()->RightClickMenuEnabled());
    EXPECT_TRUE(window().findChild<QPushButton*>("cmdAddNewSlide")->isEnabled());
    EXPECT_TRUE(preview()->findChild<QToolButton*>("cmdImgSize")->isVisible());
}

TEST_F(PreviewTest, TheMessageStartsAgainOnlyWhilePreviewLoopIsStillOne) {
    threeSlides();
    setting("PreviewLoop", "1");
    QTest::mouseClick(playButton(), Qt::LeftButton);
    tickAfter(0);
    tickAfter(3000);
    tickAfter(1500);
    tickAfter(2000);
    ASSERT_TRUE(clock().isPlaying());
    EXPECT_EQ(clock().slide(), 0) << "waiting for slide 1 again";
    EXPECT_EQ(previewTime(), "0.0/6.5");
    tickAfter(10);
    expectShowing(1, "one", "0.0/6.5");

    setting("PreviewLoop", "0");
    tickAfter(3000);
    tickAfter(1500);
    tickAfter(2000);
    EXPECT_FALSE(clock().isPlaying());
}

TEST_F(PreviewTest, EveryWayOfStoppingRestoresTheWindowAndNewIsRefusedWhilePlaying) {
    threeSlides();
    window().mainMenu()->MenuClick(ctlMainMenu::Preview);
    ASSERT_TRUE(clock().isPlaying());
    DialogService::queueAnswer(QMessageBox::Ok);
    window().mainMenu()->MenuClick(ctlMainMenu::New);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].text, "The preview is playing. Stop it first.");
    EXPECT_EQ(window().document().slideCount(), 3) << "the message is still there";

    QTest::mouseClick(preview()->findChild<QPushButton*>("cmdPlay"), Qt::LeftButton);
    EXPECT_FALSE(clock().isPlaying());
    EXPECT_EQ(menusOpen(), std::make_pair(true, true));

    QTest::mouseClick(playButton(), Qt::LeftButton);
    ASSERT_TRUE(clock().isPlaying());
    auto* previewPlay = preview()->findChild<QPushButton*>("cmdPlay");
    previewPlay->setFocus();
    QTest::keyClick(previewPlay, Qt::Key_Escape);
    EXPECT_FALSE(clock().isPlaying()) << "closing the preview stops the message";
    EXPECT_TRUE(preview()->isHidden());
    EXPECT_EQ(AppGlobals::setting("preferences", "ShowPreview", ""), "0");
    EXPECT_EQ(AppGlobals::setting("preferences", "PreviewModeSaved", ""), "0");

    // Played without the preview, the time goes to the window's own label.
    QTest::mouseClick(playButton(), Qt::LeftButton);
    tickAfter(0);
    tickAfter(1200);
    EXPECT_EQ(window().findChild<QLabel*>("lblTime")->text(), "1.2/6.5");
    QTest::mouseClick(playButton(), Qt::LeftButton);
    EXPECT_EQ(window().findChild<QLabel*>("lblTime")->text(), "6.5s");

    window().mainMenu()->MenuClick(ctlMainMenu::ShowPreview);
    EXPECT_TRUE(preview()->isVisible());
    EXPECT_FALSE(preview()->isFloating());
    EXPECT_EQ(AppGlobals::setting("preferences", "ShowPreview", ""), "1");
}

TEST_F(PreviewTest, ThePhonesMenuTogglesTheLoopAndBackAgain) {
    window();
    setting("PreviewLoop", "0");
    chooseInPhoneMenu("Play in a loop");
    rightClickPhone();
    EXPECT_EQ(AppGlobals::setting("preferences", "PreviewLoop", ""), "1");
    chooseInPhoneMenu("Play in a loop");
    rightClickPhone();
    EXPECT_EQ(AppGlobals::setting("preferences", "PreviewLoop", ""), "0");
    const QList<clsPopupMenu::ShownMenu> menus = clsPopupMenu::answeredMenus();
    ASSERT_EQ(menus.size(), 2);
    EXPECT_EQ(menus[0].descriptor, "Send picture to phone…;1,Play in a loop;2");
    EXPECT_EQ(menus[1].descriptor, "Send picture to phone…;1,#Play in a loop;2");
}

TEST_F(PreviewTest, TheSizeChooserChangesTheSlideSizeExceptForAuto) {
    setting("MmsImageSizes", "Auto;176x144;320x240");
    window();
    auto* chooser = preview()->findChild<QToolButton*>("cmdImgSize");
    QList<QAction*> entries = chooser->menu()->actions();
    ASSERT_EQ(entries.size(), 3);
    entries[0]->trigger();
    EXPECT_EQ(AppGlobals::setting("preferences", "MmsImageSize", ""), "Auto");
    EXPECT_EQ(window().pictureEditor()->surfaceSize(), QSize(160, 120));

    entries[1]->trigger();
    EXPECT_EQ(AppGlobals::setting("preferences", "MmsImageSize", ""), "176x144");
    EXPECT_EQ(window().pictureEditor()->surfaceSize(), QSize(176, 144));
    EXPECT_EQ(preview()->findChild<QLabel*>("lblSlideImageSize")->text(), "176x144");
    EXPECT_TRUE(entries[1]->isChecked());
    EXPECT_EQ(roomyPhone()->slideRect().size(), QSize(176, 144));
}

TEST_F(PreviewTest, ASkinsPhoneFramesTheSlideAndAMissingPictureLeavesTheSlideAlone) {
    setting("Skin", "clamshell");
    window();
    const PhoneSkin skin = PhoneSkin::fromSettings();
    ASSERT_FALSE(skin.phonePicture.isEmpty());
    EXPECT_EQ(AppGlobals::setting("preferences", "PhoneImageSize", ""), "176,144,0")
        << "the phone's picture size comes with it";
    EXPECT_EQ(window().pictureEditor()->surfaceSize(), QSize(176, 144));
    PhoneView* phone = roomyPhone();
    EXPECT_EQ(phone->sizeHint(), QPixmap(skin.phonePicture).size());
    // The slide sits centred in the screen, 2 pixels in from each side.
    EXPECT_EQ(phone->slideRect().size(), QSize(176, 144));
    EXPECT_EQ(phone->slideRect().size() + QSize(4, 4), skin.screen.size());
    // The skin's background lies behind the menu and every tool tab.
    const QImage back = QImage(skin.backPicture).convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(window().mainMenu()->palette().window().textureImage().convertToFormat(
                  QImage::Format_RGB32),
              back);
    for (int tab = 0; tab < window().toolTabs()->count(); ++tab)
        EXPECT_EQ(window().toolTabs()->widget(tab)->grab().toImage().pixelColor(1, 1),
                  back.pixelColor(1, 1))
            << "tab " << tab;

    m_window.reset();
    setting("PreviewBackPicture", m_root.path() + "/gone.png");
    DialogService::queueAnswer(QMessageBox::Ok);
    window();
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].title, "InitSkin");
    EXPECT_EQ(DialogService::answeredBoxes()[0].text, "The background bitmap could not be loaded!");
    EXPECT_EQ(preview()->phone()->sizeHint(), QSize(176, 144)) << "the slide on its own";
}

// The phone drawing on its own, with pictures of known colours.
TEST(PhoneViewTest, FillModeZeroStretchesOtherModesKeepTheSlidesOwnSize) {
    QPixmap phone(100, 120);
    phone.fill(Qt::gray);
    QImage slide(40, 30, QImage::Format_RGB32);
    slide.fill(Qt::red);
    PhoneView view;
    view.resize(100, 120);
    const QRect screen(10, 20, 80, 60);

    view.setPhone(phone, screen, 0);
    view.setSlide(slide);
    EXPECT_EQ(view.slideRect(), screen);
    QImage drawn = view.grab().toImage();
    EXPECT_EQ(drawn.pixelColor(11, 21), QColor(Qt::red));
    EXPECT_EQ(drawn.pixelColor(88, 78), QColor(Qt::red));

    view.setPhone(phone, screen, 1);
    EXPECT_EQ(view.slideRect(), QRect(30, 35, 40, 30)) << "centred: (80-40)/2, (60-30)/2";
    drawn = view.grab().toImage();
    EXPECT_EQ(drawn.pixelColor(12, 22), QColor(Qt::gray));
    EXPECT_EQ(drawn.pixelColor(50, 50), QColor(Qt::red));

    // Larger than the screen: from the screen's corner, cut at its edges, never shrunk.
    QImage big(120, 90, QImage::Format_RGB32);
    big.fill(Qt::blue);
    view.setSlide(big);
    EXPECT_EQ(view.slideRect(), QRect(10, 20, 120, 90));
    drawn = view.grab().toImage();
    EXPECT_EQ(drawn.pixelColor(10, 20), QColor(Qt::blue));
    EXPECT_EQ(drawn.pixelColor(89, 79), QColor(Qt::blue));
    EXPECT_EQ(drawn.pixelColor(95, 85), QColor(Qt::gray)) << "the phone around the screen stays";

    // No phone picture: the slide alone, at its own size.
    view.setPhone(QPixmap(), screen, 1);
    view.setSlide(slide);
    view.resize(40, 30);
    EXPECT_EQ(view.slideRect(), QRect(0, 0, 40, 30));
    EXPECT_EQ(view.sizeHint(), QSize(160, 120).expandedTo(QSize(40, 30)));
}

TEST_F(PreviewTest, TheMessagePlaysAsItsExportedPresentationOnThePhonesScreen) {
    threeSlides();
    PhoneView* phone = roomyPhone();
    choosePresentation("Play as presentation");
    ctlSmilPlayer* player = preview()->player();
    ASSERT_TRUE(player->isPlaying()) << problemsShown().toStdString();
    EXPECT_TRUE(player->isVisible());
    EXPECT_EQ(player->geometry(), phone->screenRect());
    EXPECT_EQ(player->duration(), 6500) << "the slides' times went out with the message";
    EXPECT_EQ(preview()->findChild<QPushButton*>("cmdPlay")->text(), "Stop");
    EXPECT_FALSE(preview()->findChild<QToolButton*>("cmdImgSize")->isVisible());
    presentationAfter(3100);
    EXPECT_EQ(previewTime(), "3.1/6.5");
    EXPECT_EQ(window().document().slideCount(), 3) << "the message is only read";

    // The window's own play button stops it, as it stops the slides.
    QTest::mouseClick(playButton(), Qt::LeftButton);
    EXPECT_FALSE(player->isPlaying());
    EXPECT_FALSE(clock().isPlaying());
    EXPECT_FALSE(player->isVisible());
    EXPECT_EQ(previewTime(), "0.0/6.5");
    EXPECT_TRUE(preview()->findChild<QToolButton*>("cmdImgSize")->isVisible());

    choosePresentation("Play as presentation");
    presentationAfter(6500);
    EXPECT_FALSE(player->isPlaying()) << "it stops at its end";
    EXPECT_TRUE(problemsShown().isEmpty()) << problemsShown().toStdString();
}

TEST_F(PreviewTest, AForeignPresentationSaysWhatItMissesAndANonPresentationDoesNotPlay) {
    window();
    roomyPhone();
    const QString smil = dataFile("foreign.smil");
    writeFile(smil, "<smil><body><par dur=\"2s\"><img src=\"gone.png\"/>"
                    "<text src=\"note.txt\"/></par></body></smil>");
    DialogService::queueFileAnswer(smil);
    choosePresentation("Open presentation");
    ASSERT_TRUE(preview()->player()->isPlaying());
    EXPECT_TRUE(problemsShown().contains("gone.png")) << problemsShown().toStdString();
    EXPECT_TRUE(problemsShown().contains("note.txt")) << problemsShown().toStdString();
    presentationAfter(2000);
    EXPECT_FALSE(preview()->player()->isPlaying());

    writeFile(smil, "not a presentation");
    DialogService::queueFileAnswer(smil);
    choosePresentation("Open presentation");
    EXPECT_FALSE(preview()->player()->isPlaying());
    EXPECT_FALSE(preview()->player()->isVisible());
    EXPECT_FALSE(problemsShown().isEmpty());
    EXPECT_EQ(preview()->findChild<QPushButton*>("cmdPlay")->text(), "Play");
}
