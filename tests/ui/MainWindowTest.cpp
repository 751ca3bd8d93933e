#include "AppGlobals.h"
#include "DialogService.h"
#include "FileCommands.h"
#include "MainWindowFixture.h"
#include "MessageDocument.h"
#include "ProgramRun.h"
#include "SettingsBootstrap.h"
#include "SlidePanel.h"
#include "TempDataHome.h"
#include "TextPropertiesPanel.h"
#include "ToolTabs.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "ctlMainMenu.h"
#include "ctlPictureEditor.h"
#include "ctlSlideThumbs.h"
#include "ctlSlideTime.h"
#include "frmDownloadImage.h"
#include "frmMain.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <memory>

// The main window driven as a user drives it: keys, clicks and answered boxes,
// with what it saved read back by the command line tool.
class MainWindowTest : public MainWindowFixture {
protected:
    // Opens a menu of the bar by Alt and its letter and chooses with keys.
    void menuKeys(Qt::Key title, const QList<Qt::Key>& keys) {
        QTest::keyClick(&window(), title, Qt::AltModifier);
        for (const Qt::Key key : keys) {
            QWidget* popup = QApplication::activePopupWidget();
            ASSERT_NE(popup, nullptr) << "no menu open";
            QTest::keyClick(popup, key);
        }
    }
    MessageDocument& document() { return window().document(); }
};

TEST_F(MainWindowTest, ANewUserComposesAMessageWithTheKeyboardAlone) {
    setting("AskNewSlide", "0");
    setting("MMSTimeFormat", "s");
    const QString file = dataFile("card.mms");
    frmMain& main = window();
    EXPECT_EQ(main.windowTitle(), "Untitled.mms -Vellumo");

    // Slide 1: a text and a time.
    QTest::keyClick(&main, Qt::Key_T, Qt::AltModifier);
    QTest::keyClicks(QApplication::focusWidget(), "First");
    QTest::keyClick(&main, Qt::Key_M, Qt::AltModifier);
    QWidget* time = QApplication::focusWidget();
    ASSERT_EQ(time, main.slidePanel()->timeField());
    main.slidePanel()->timeField()->selectAll();
    QTest::keyClicks(time, "2.5");
    QTest::keyClick(time, Qt::Key_Return);

    // Two more slides from the Slide menu, each with its text.
    for (const char* text : {"Second", "Third"}) {
        menuKeys(Qt::Key_S, {Qt::Key_Return});
        QTest::keyClick(&main, Qt::Key_T, Qt::AltModifier);
        QTest::keyClicks(QApplication::focusWidget(), text);
    }
    ASSERT_EQ(document().slideCount(), 3);
    EXPECT_EQ(document().currentSlide(), 3);

    // The third slide goes first, moved up twice from the strip.
    main.slideStrip()->setFocus();
    QTest::keyClick(main.slideStrip(), Qt::Key_End);
    QTest::keyClick(main.slideStrip(), Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(main.slideStrip(), Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(document().currentSlide(), 1);

    DialogService::queueFileAnswer(file);
    QTest::keyClick(&main, Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(main.windowTitle(), "card.mms -Vellumo");
    EXPECT_FALSE(document().isModified());
    DialogService::queueAnswer(QMessageBox::Yes);
    QTest::keyClick(&main, Qt::Key_Q, Qt::ControlModifier);
    QTRY_VERIFY(!main.isVisible());

    const QString info = cliInfo(file);
    EXPECT_TRUE(info.contains("slides: 3")) << info.toStdString();
    const qsizetype third = info.indexOf("text: \"Third\"");
    const qsizetype first = info.indexOf("text: \"First\"");
    EXPECT_TRUE(third > 0 && first > third) << info.toStdString();
    EXPECT_TRUE(info.contains("duration 2500 ms")) << info.toStdString();
}

TEST_F(MainWindowTest, AskedSlideCommandsAndTheDeleteRules) {
    setting("AskNewSlide", "1");
    setting("AskDeleteSlide", "yes"); // anything but "1" acts at once
    frmMain& main = window();
    DialogService::queueAnswer(QMessageBox::No);
    QTest::mouseClick(main.findChild<QPushButton*>("cmdAddNewSlide"), Qt::LeftButton);
    EXPECT_EQ(document().slideCount(), 1) << "No keeps the message as it was";
    DialogService::queueAnswer(QMessageBox::Yes);
    QTest::mouseClick(main.findChild<QPushButton*>("cmdAddNewSlide"), Qt::LeftButton);
    ASSERT_EQ(document().slideCount(), 2);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 2);
    EXPECT_EQ(DialogService::answeredBoxes()[1].title, "Append slide");
    EXPECT_EQ(DialogService::answeredBoxes()[1].icon, QMessageBox::Question);

    QTest::mouseClick(main.findChild<QPushButton*>("cmdDeleteSlide"), Qt::LeftButton);
    EXPECT_EQ(document().slideCount(), 1);
    EXPECT_EQ(document().currentSlide(), 1) << "the last of several goes, the new last is current";
    document().setSlideText("kept?");
    QTest::mouseClick(main.findChild<QPushButton*>("cmdDeleteSlide"), Qt::LeftButton);
    ASSERT_EQ(document().slideCount(), 1) << "the only slide is emptied, never removed";
    EXPECT_EQ(document().message()->Slides().Item(1).Text(), "");
    EXPECT_EQ(DialogService::answeredBoxes().size(), 2) << "deleting asked nothing";
}

TEST_F(MainWindowTest, AFailedOpenOrSaveLosesNothing) {
    frmMain& main = window();
    writeFile(dataFile("not-a-message.mms"), "just text");
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_FALSE(main.fileCommands()->open(dataFile("not-a-message.mms")));
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].icon, QMessageBox::Warning);
    EXPECT_EQ(document().slideCount(), 1) << "a new untitled message takes its place";
    EXPECT_EQ(main.windowTitle(), "Untitled.mms -Vellumo");

    const QString saved = dataFile("saved.mms");
    DialogService::queueFileAnswer(saved);
    ASSERT_TRUE(main.fileCommands()->saveAs());
    document().setSlideText("changed");
    // A folder where the file should go: the save fails and keeps everything.
    QFile::remove(saved);
    QDir().mkpath(saved);
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_FALSE(main.fileCommands()->save());
    EXPECT_EQ(DialogService::answeredBoxes().last().icon, QMessageBox::Critical);
    EXPECT_TRUE(document().isModified());
    EXPECT_TRUE(QFileInfo(saved).isDir());

    // Leaving with changes: Cancel keeps the window and the message.
    DialogService::queueAnswer(QMessageBox::Cancel);
    main.close();
    EXPECT_TRUE(main.isVisible());
    EXPECT_EQ(DialogService::answeredBoxes().last().text,
              AppGlobals::text("ASK_SAVECHANGES", "Save the changes before you exit?"));
    DialogService::queueAnswer(QMessageBox::No);
    main.close();
    EXPECT_FALSE(main.isVisible());
}

TEST_F(MainWindowTest, UndoAndRedoFromTheEditMenuFollowTheModifiedFlag) {
    frmMain& main = window();
    setting("AskNewSlide", "0");
    menuKeys(Qt::Key_S, {Qt::Key_Return});
    ASSERT_EQ(document().slideCount(), 2);
    EXPECT_TRUE(document().isModified());
    EXPECT_TRUE(main.mainMenu()->isItemEnabled(ctlMainMenu::Undo));
    QTest::keyClick(&main, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(document().slideCount(), 1);
    EXPECT_FALSE(document().isModified()) << "back at the state it started in";
    EXPECT_FALSE(main.mainMenu()->isItemEnabled(ctlMainMenu::Undo));
    menuKeys(Qt::Key_E, {Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(document().slideCount(), 2) << "Edit, Redo";
}

TEST_F(MainWindowTest, UnsavedChangesAreAskedAboutBeforeNewOrOpen) {
    setting("AskNewSlide", "0");
    const QString kept = dataFile("kept.mms");
    DialogService::queueFileAnswer(kept);
    ASSERT_TRUE(window().fileCommands()->saveAs());
    document().appendSlide();

    DialogService::queueAnswer(QMessageBox::Cancel);
    EXPECT_FALSE(window().fileCommands()->newMessage());
    EXPECT_EQ(document().slideCount(), 2) << "Cancel keeps the message";
    EXPECT_EQ(DialogService::answeredBoxes().last().title, "Save");

    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_TRUE(window().fileCommands()->newMessage());
    EXPECT_EQ(document().slideCount(), 1);
    EXPECT_EQ(window().windowTitle(), "Untitled.mms -Vellumo");

    // The saved file opens as it was saved, from the recent list, and a file
    // that has gone leaves the list with the program's own box.
    ASSERT_EQ(window().mainMenu()->recentFiles().GetRecentFilesList(), QStringList{kept});
    EXPECT_TRUE(window().fileCommands()->openRecent(kept));
    EXPECT_EQ(document().slideCount(), 1);
    EXPECT_EQ(window().windowTitle(), "kept.mms -Vellumo");
    QFile::remove(kept);
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_FALSE(window().fileCommands()->openRecent(kept));
    EXPECT_TRUE(window().mainMenu()->recentFiles().GetRecentFilesList().isEmpty());
}

TEST_F(MainWindowTest, TheCommandLinesFileOpensWithProgressAndThePlaceIsKept) {
    const QString file = dataFile("given.mms");
    ASSERT_EQ(runProgram(cliProgram(), {"new", file, "--slide", "1000", "--slide-text", "one",
                                        "--slide", "--slide", "--slide-text", "three"})
                  .code,
              0);
    QStringList progress;
    QObject::connect(
        &window().manager(), &clsMMSManager::ProsessingSlide,
        [&](int slide, int count) { progress << QString("%1/%2").arg(slide).arg(count); });
    window().openCommandLine(" \"" + file + "\"");
    EXPECT_EQ(document().slideCount(), 3);
    EXPECT_EQ(window().windowTitle(), "given.mms -Vellumo");
    EXPECT_EQ(progress, QStringList({"1/3", "2/3", "3/3"}));
    EXPECT_EQ(window().slidePanel()->textBox()->toPlainText(), "one");
    EXPECT_EQ(frmMain::fileFromCommandLine(" plain.mms other"), "plain.mms");

    window().move(40, 50);
    DialogService::queueAnswer(QMessageBox::Yes);
    window().close();
    const QString position = AppGlobals::settings()->GetProp("preferences", "MainPosition", "");
    EXPECT_EQ(position, QString("%1;%2").arg(window().x()).arg(window().y()));
    EXPECT_NE(position, "-1;-1");
}

TEST_F(MainWindowTest, AStyleChosenWhileTypingIsKeptAndAChoiceStaysOnItsSlide) {
    ctlPictureEditor* editor = window().pictureEditor();
    editor->AddText();
    window().toolTabs()->setCurrentWidget(window().textProperties());
    editor->setFocus();
    QTest::keyClick(editor, Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), "Hi");
    QTest::mouseClick(window().textProperties()->findChild<QToolButton*>("chkBold"),
                      Qt::LeftButton);
    const DrawObjectProperties typed = editor->selectedProperties();
    EXPECT_TRUE(typed.text.contains("Hi")) << typed.text.toStdString();
    EXPECT_TRUE(typed.bold) << "Bold clicked while the text was being typed";

    ASSERT_TRUE(document().duplicateSlideAfter(1));
    document().setCurrentSlide(2);
    EXPECT_EQ(editor->selectedObject(), 0) << "nothing is chosen on a slide not yet touched";
}

// The Slide menu's picture commands: a background chosen from a file, and
// the slide's picture offered to the send dialog.
TEST_F(MainWindowTest, TheSlideMenuSetsABackgroundAndSendsThePicture) {
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    const QString file = dataFile("back.png");
    ASSERT_TRUE(picture.save(file));
    DialogService::queueFileAnswer(file);
    window().mainMenu()->MenuClick(ctlMainMenu::Background);
    const clsSlide& slide = window().document().message()->Slides().Item(1);
    EXPECT_FALSE(slide.DrawObjects().BackPicture().isEmpty());
    EXPECT_TRUE(window().document().isModified());

    ASSERT_TRUE(window().mainMenu()->isItemEnabled(ctlMainMenu::DownloadPicture));
    window().mainMenu()->MenuClick(ctlMainMenu::DownloadPicture);
    auto* dialog = window().findChild<frmDownloadImage*>();
    ASSERT_NE(dialog, nullptr);
    const QPixmap shown = dialog->findChild<QLabel*>("lblPicture")->pixmap();
    ASSERT_FALSE(shown.isNull());
    EXPECT_EQ(shown.toImage().pixelColor(shown.rect().center()), QColor(Qt::magenta));
}
