#include "AppGlobals.h"
#include "ClassGuard.h"
#include "ClassSizeLabel.h"
#include "DialogService.h"
#include "FileCommands.h"
#include "MainWindowFixture.h"
#include "MediaFormat.h"
#include "MessageDocument.h"
#include "MmsInfoLines.h"
#include "ProgramRun.h"
#include "clsMessage.h"
#include "ctlMainMenu.h"
#include "ctlPictureEditor.h"
#include "frmDownloadMMS.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

// The content class and creation mode chosen in the settings, as the main
// window holds a message to them.
class ContentClassWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        setting("AskNewSlide", "0");
    }

    MessageDocument& document() { return window().document(); }
    clsSlide& slide() { return document().message()->Slides().Item(document().currentSlide()); }
    QString workFolder() { return window().manager().GetWorkFolderPath(); }
    QStringList workFiles() { return QDir(workFolder()).entryList(QDir::Files, QDir::Name); }

    ContentClassChecker::Report measured() {
        QString error;
        const auto report = ClassGuard::measure(window().manager(), *document().message(), &error);
        EXPECT_TRUE(report) << error.toStdString();
        return report.value_or(ContentClassChecker::Report{});
    }

    static QString lastBox() {
        const auto boxes = DialogService::answeredBoxes();
        return boxes.isEmpty() ? QString() : boxes.back().text;
    }

    frmDownloadMMS* openSendDialog() {
        for (frmDownloadMMS* dialog : window().findChildren<frmDownloadMMS*>())
            if (dialog->isVisible())
                return dialog;
        return nullptr;
    }

    // Chooses Send in the File menu; true when the send dialog opened (it is closed again).
    bool sendFromMenu() {
        EXPECT_TRUE(chooseMenuItem(ctlMainMenu::FileMenu, "MNU_FILE_SEND", "Send to phone"));
        frmDownloadMMS* dialog = openSendDialog();
        if (dialog)
            dialog->close();
        return dialog != nullptr;
    }

    // A GIF of two frames, larger than the smallest classes allow.
    QString largeAnimation() {
        const QString path = dataFile("big.gif");
        const ProgramRun run = runProgram("convert", {"-delay", "50", "-size", "320x240", "xc:red",
                                                      "xc:blue", "-loop", "0", path});
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        return path;
    }
};

TEST_F(ContentClassWindowTest, WarningModeWarnsOnceWithEveryBrokenRuleAndLetsTheUserGoOn) {
    setting("ContentClass", "Text");
    setting("CreationMode", "Warning");
    ASSERT_TRUE(window().pictureEditor()->AddImage(programFile("archive/Pictures/heart.gif")));
    const ContentClassChecker::Report report = measured();
    ASSERT_FALSE(report.fits());

    const QString file = dataFile("card.mms");
    DialogService::queueFileAnswer(file);
    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_FALSE(window().fileCommands()->saveAs());
    EXPECT_FALSE(QFileInfo::exists(file)) << "the user said no";
    EXPECT_TRUE(document().isModified());
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    const QString warning = lastBox();
    EXPECT_TRUE(warning.startsWith("The message does not fit Text")) << warning.toStdString();
    for (const ContentClassChecker::Broken& rule : report.broken)
        EXPECT_TRUE(warning.contains("• " + rule.line())) << rule.line().toStdString();

    DialogService::queueFileAnswer(file);
    DialogService::queueAnswer(QMessageBox::Yes);
    ASSERT_TRUE(window().fileCommands()->saveAs());
    EXPECT_TRUE(QFileInfo::exists(file));
    EXPECT_FALSE(document().isModified());

    // Once said, the same message goes out without being asked about again.
    DialogService::clear();
    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_TRUE(sendFromMenu());
    EXPECT_TRUE(window().fileCommands()->save());
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());

    // A changed message is asked about again; no stops the sending.
    ASSERT_TRUE(document().setSlideText("Hello"));
    EXPECT_FALSE(sendFromMenu());
    EXPECT_EQ(DialogService::answeredBoxes().size(), 1);

    DialogService::queueAnswer(QMessageBox::Yes);
    EXPECT_TRUE(sendFromMenu());
    EXPECT_EQ(DialogService::answeredBoxes().size(), 2);

    // Free mode never asks.
    setting("ContentClass", "Text");
    setting("CreationMode", "Free");
    DialogService::clear();
    DialogService::queueAnswer(QMessageBox::No);
    ASSERT_TRUE(document().setSlideText("Free"));
    EXPECT_TRUE(window().fileCommands()->save());
    EXPECT_TRUE(sendFromMenu());
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}

TEST_F(ContentClassWindowTest, RestrictedModeRefusesPartsThatBreakTheClassAndOffersToFitThem) {
    setting("ContentClass", "Image Rich");
    setting("CreationMode", "Restricted");
    ctlPictureEditor* editor = window().pictureEditor();
    const QStringList before = workFiles();

    // An MP3 is no sound of Image Rich; refused, it leaves nothing behind.
    DialogService::queueAnswer(QMessageBox::No);
    emit editor->soundDropped(programFile("archive/Sounds/"), "arpeggio.mp3");
    EXPECT_TRUE(slide().Sound().isEmpty());
    EXPECT_EQ(workFiles(), before);
    EXPECT_TRUE(lastBox().startsWith("arpeggio.mp3 cannot be added: it does not fit Image Rich"))
        << lastBox().toStdString();
    EXPECT_TRUE(lastBox().endsWith("Convert it to AMR-NB so that it fits?"));

    // Made to fit, it arrives as AMR-NB with its length.
    DialogService::queueAnswer(QMessageBox::Yes);
    emit editor->soundDropped(programFile("archive/Sounds/"), "arpeggio.mp3");
    const QString sound = workFolder() + slide().Sound();
    ASSERT_TRUE(slide().Sound().endsWith(".amr")) << slide().Sound().toStdString();
    QFile amr(sound);
    ASSERT_TRUE(amr.open(QIODevice::ReadOnly));
    EXPECT_EQ(MediaFormat::identify(amr.readAll()).kind, MediaFormat::AmrNb);
    EXPECT_GT(slide().SoundDuration(), 500);
    EXPECT_TRUE(
        ContentClassChecker::fileRules(sound, "arpeggio.amr", ContentClass::ImageRich).isEmpty());
    EXPECT_EQ(workFiles().size(), before.size() + 1) << "the MP3 copy is gone";

    // A video cannot be made a still here: it is refused with the reason only.
    DialogService::queueAnswer(QMessageBox::Ok); // yes, an animation
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_FALSE(editor->AddBackgroundPicture(programFile("archive/Animations/sunrise.mp4")));
    EXPECT_TRUE(lastBox().startsWith("sunrise.mp4 cannot be added")) << lastBox().toStdString();
    EXPECT_FALSE(lastBox().contains('?'));

    // An animation too large for Image Basic becomes its first picture, drawn at the slide's size.
    setting("ContentClass", "Image Basic");
    const QString gif = largeAnimation();
    DialogService::queueAnswer(QMessageBox::Ok);
    DialogService::queueAnswer(QMessageBox::Yes);
    ASSERT_TRUE(editor->AddBackgroundPicture(gif));
    EXPECT_TRUE(lastBox().endsWith("Use its first picture as a still background?"));
    EXPECT_EQ(slide().DrawObjects().BackType(), clsDrawObjects::BackStill);
    EXPECT_TRUE(slide().DrawObjects().BackPicture().endsWith(".bmp"));

    // Free mode takes it as it is.
    setting("CreationMode", "Free");
    DialogService::clear();
    DialogService::queueAnswer(QMessageBox::Ok);
    ASSERT_TRUE(editor->AddBackgroundPicture(gif));
    EXPECT_EQ(slide().DrawObjects().BackType(), clsDrawObjects::BackAnimated);
    EXPECT_EQ(DialogService::answeredBoxes().size(), 1) << "only the animation question";
}

TEST_F(ContentClassWindowTest, RestrictedModeLetsNoUnfittingMessageLeaveButFitsItWhenAsked) {
    setting("MmsImageSize", "640x480");
    setting("ContentClass", "Image Basic");
    setting("CreationMode", "Restricted");
    ASSERT_TRUE(window().pictureEditor()->AddBackgroundPicture(
        programFile("archive/Backgrounds/beach.jpg")));
    ASSERT_FALSE(measured().fits());

    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_FALSE(sendFromMenu());
    EXPECT_TRUE(lastBox().endsWith("Make the message fit now?")) << lastBox().toStdString();

    // Yes fits the message as one step, then sends it.
    DialogService::queueAnswer(QMessageBox::Yes);
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_TRUE(sendFromMenu());
    EXPECT_TRUE(lastBox().contains("scaled from 640x480 to 160x120")) << lastBox().toStdString();
    EXPECT_TRUE(lastBox().endsWith("It fits Image Basic."));
    EXPECT_TRUE(measured().fits());

    // Saved, the fitted message is Image Basic for the command line's checker too.
    const QString file = dataFile("fitted.mms");
    DialogService::queueFileAnswer(file);
    ASSERT_TRUE(window().fileCommands()->saveAs());
    const ProgramRun check = runProgram(cliProgram(), {"check", file, "--class", "Image Basic"});
    EXPECT_EQ(check.code, 0) << check.out.toStdString() << check.err.toStdString();
    EXPECT_EQ(check.out.section(u'\n', 0, 0), "Image Basic");

    document().undoStack().undo();
    EXPECT_FALSE(measured().fits()) << "undo takes the fitting back";
}

TEST_F(ContentClassWindowTest, TheFitCommandOfTheFileMenuReportsWhatItDid) {
    setting("MmsImageSize", "640x480");
    setting("ContentClass", "Image Rich");
    setting("CreationMode", "Free");
    ASSERT_TRUE(window().pictureEditor()->AddBackgroundPicture(
        programFile("archive/Backgrounds/beach.jpg")));
    ASSERT_TRUE(document().appendSlide());
    emit window().pictureEditor()->soundDropped(programFile("archive/Sounds/"), "arpeggio.mp3");
    ASSERT_TRUE(slide().Sound().endsWith(".mp3"));
    ASSERT_FALSE(measured().fits());

    DialogService::queueAnswer(QMessageBox::Ok);
    ASSERT_TRUE(chooseMenuItem(ctlMainMenu::FileMenu, "MNU_FILE_FIT", "Fit to content class"));
    EXPECT_TRUE(lastBox().contains("Slide 2: the sound")) << lastBox().toStdString();
    EXPECT_TRUE(lastBox().endsWith("It fits Image Rich."));
    EXPECT_TRUE(slide().Sound().endsWith(".amr"));
    EXPECT_TRUE(measured().fits());
    EXPECT_EQ(document().undoStack().undoText(), "Fit to content class");
}

TEST_F(ContentClassWindowTest, TheStatusBarShowsTheSizeAgainstTheClassOnceEditingPauses) {
    setting("ContentClass", "Image Rich");
    ClassSizeLabel* label = window().sizeLabel();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !label->text().isEmpty(); }, 5000));
    const auto shown = [&](const QString& expected) {
        return QTest::qWaitFor([&] { return label->text() == expected; }, 5000);
    };
    const auto expectedFor = [&](ContentClass::Id id, bool over) {
        const qint64 bytes = measured().bytes;
        const QString size = MmsInfoLines::kilobytes(bytes);
        const QString limit = MmsInfoLines::kilobytes(ContentClass::limits(id).maxBytes);
        return over ? size + " KB: over the " + limit + " KB of " + ContentClass::name(id)
                    : size + " KB of " + limit + " KB (" + ContentClass::name(id) + ")";
    };
    EXPECT_TRUE(shown(expectedFor(ContentClass::ImageRich, false))) << label->text().toStdString();

    ASSERT_TRUE(window().pictureEditor()->AddBackgroundPicture(
        programFile("archive/Backgrounds/beach.jpg")));
    const QString before = label->text();
    const QString after = expectedFor(ContentClass::ImageRich, false);
    EXPECT_EQ(label->text(), before) << "measured only once the editing pauses";
    ASSERT_NE(before, after) << "the picture adds to the size";
    EXPECT_TRUE(shown(after)) << label->text().toStdString();
    EXPECT_FALSE(label->isOverLimit());

    // The settings' class is taken on when they are applied.
    setting("ContentClass", "Image Basic");
    setting("MmsImageSize", "640x480");
    window().applySettings();
    const QString noise = dataFile("noise.jpg");
    ASSERT_EQ(
        runProgram("convert", {"-size", "640x480", "xc:gray", "+noise", "Random", noise}).code, 0);
    ASSERT_TRUE(window().pictureEditor()->AddBackgroundPicture(noise));
    EXPECT_TRUE(shown(expectedFor(ContentClass::ImageBasic, true))) << label->text().toStdString();
    EXPECT_TRUE(label->isOverLimit());
    EXPECT_TRUE(label->accessibleName().startsWith("Message size: "));
}
