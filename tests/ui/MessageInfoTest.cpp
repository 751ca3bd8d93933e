#include "AppGlobals.h"
#include "DialogService.h"
#include "MainWindowFixture.h"
#include "MessageDocument.h"
#include "MmsInfoLines.h"
#include "ProgramRun.h"
#include "clsMessage.h"
#include "clsXMLocalizer.h"
#include "ctlMainMenu.h"
#include "ctlPictureEditor.h"
#include "frmMmsInfo.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {
const QString kRule = "  " + QString(72, u'-');
} // namespace

// The window that tells how large the message is when sent, opened from the
// main window's File menu on messages built with the real editor.
class MessageInfoTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        setting("AskNewSlide", "0");
    }

    MessageDocument& document() { return window().document(); }

    // Opens the File menu from the menu bar and chooses the message information in it.
    frmMmsInfo* openInfo() {
        EXPECT_TRUE(chooseMenuItem(ctlMainMenu::FileMenu, "MNU_FILE_INFO", "Info"));
        // One closed before may not be gone yet.
        for (frmMmsInfo* info : window().findChildren<frmMmsInfo*>())
            if (info->isVisible())
                return info;
        return nullptr;
    }

    // Slide 1: a picture, a sound and a text; slide 2: a background picture only.
    void pictureSoundAndTextThenPictureOnly() {
        ctlPictureEditor* editor = window().pictureEditor();
        ASSERT_TRUE(editor->AddImage(programFile("archive/Pictures/heart.gif")));
        emit editor->soundDropped(programFile("archive/Sounds/"), "notification.amr");
        ASSERT_FALSE(document().message()->Slides().Item(1).Sound().isEmpty());
        ASSERT_TRUE(document().setSlideText("Hello"));
        ASSERT_TRUE(document().appendSlide());
        ASSERT_TRUE(editor->AddBackgroundPicture(programFile("archive/Backgrounds/beach.jpg")));
    }

    // The sizes of the files the command line tool exports the saved message as.
    QHash<QString, qint64> exportedSizes(const QString& file) {
        const QString folder = dataFile("export/");
        QDir().mkpath(folder);
        const ProgramRun run = runProgram(cliProgram(), {"export", file, "--kind", "smil",
                                                         "--format", "ms", folder + "mms.smil"});
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        QHash<QString, qint64> sizes;
        for (const QFileInfo& exported : QDir(folder).entryInfoList(QDir::Files))
            sizes.insert(exported.fileName(), exported.size());
        return sizes;
    }

    static QString partLine(const QString& name, qint64 bytes) {
        return "\t" + name + "\t" + QString::number(bytes) + " bytes";
    }

    // The window follows the language of the settings, as after a restart.
    static void speak(const char* language) {
        setting("Language", language);
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage(language));
        AppGlobals::installLocalizer(std::move(localizer));
    }

    static void screenshot(QWidget& widget, const QString& name) {
        QDir().mkpath("/tmp/shots");
        EXPECT_TRUE(widget.grab().save("/tmp/shots/" + name));
    }
};

TEST_F(MessageInfoTest, EveryPartIsListedWithTheSizeItIsSentAtAndTheMessageStaysAsItWas) {
    pictureSoundAndTextThenPictureOnly();
    const QString file = dataFile("card.mms");
    DialogService::queueFileAnswer(file);
    QTest::keyClick(&window(), Qt::Key_S, Qt::ControlModifier);
    ASSERT_FALSE(document().isModified());
    const QByteArray before = document().message()->DocumentXml();
    const QString workFolder = window().manager().GetWorkFolderPath();
    const QStringList workFiles = QDir(workFolder).entryList(QDir::Files, QDir::Name);

    frmMmsInfo* info = openInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->isVisible());
    const QHash<QString, qint64> sent = exportedSizes(file);
    const QString sound = programFile("archive/Sounds/notification.amr");
    EXPECT_EQ(sent.value("Slide1.amr"), QFileInfo(sound).size()) << "an AMR goes as it is";
    EXPECT_EQ(info->lines(), QStringList({
                                 "Slide 1" + kRule,
                                 partLine("Slide1.jpg", sent.value("Slide1.jpg")),
                                 partLine("Slide1.amr", sent.value("Slide1.amr")),
                                 partLine("Slide1.txt", 7), // "Hello" and CR LF
                                 "Slide 2" + kRule,
                                 partLine("Slide2.jpg", sent.value("Slide2.jpg")),
                                 "SMIL presentation" + kRule,
                                 partLine("mms.smil", sent.value("mms.smil")),
                             }));
    const qint64 total = sent.value("Slide1.jpg") + sent.value("Slide1.amr") + 7 +
                         sent.value("Slide2.jpg") + sent.value("mms.smil");
    EXPECT_EQ(info->totalBytes(), total);
    EXPECT_EQ(info->status(),
              "Total size: " + QString::number(double(total) / 1024, 'f', 2) + " KB");

    EXPECT_EQ(document().message()->DocumentXml(), before) << "measuring changed the message";
    EXPECT_FALSE(document().isModified());
    EXPECT_EQ(QDir(workFolder).entryList(QDir::Files, QDir::Name), workFiles)
        << "the parts are written elsewhere";
}

TEST_F(MessageInfoTest, PartsOfExactlyOneAndAHalfKilobytesShowAsOnePointFifty) {
    // A text on a plain colour: the slide has no picture to send.
    ASSERT_TRUE(document().setSlideText("x"));
    frmMmsInfo* info = openInfo();
    ASSERT_NE(info, nullptr);
    const QStringList lines = info->lines();
    ASSERT_EQ(lines.size(), 4) << lines.join("\n").toStdString();
    EXPECT_EQ(lines[0], "Slide 1" + kRule);
    EXPECT_EQ(lines[1], partLine("Slide1.txt", 3));
    EXPECT_EQ(lines[2], "SMIL presentation" + kRule);
    const qint64 presentation = lines[3].section(u'\t', 2).section(u' ', 0, 0).toLongLong();
    ASSERT_GT(presentation, 100);
    ASSERT_LT(presentation, 1500);
    info->close();

    // The presentation names the text file, not its contents, so only the text grows.
    ASSERT_TRUE(document().setSlideText(QString(1536 - presentation - 2, u'x')));
    info = openInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->lines().value(1), partLine("Slide1.txt", 1536 - presentation));
    EXPECT_EQ(info->lines().value(3), partLine("mms.smil", presentation));
    EXPECT_EQ(info->totalBytes(), 1536);
    EXPECT_EQ(info->status(), "Total size: 1.50 KB");
}

TEST_F(MessageInfoTest, TotalsAreKilobytesWithTwoDecimalsAndNoGrouping) {
    EXPECT_EQ(MmsInfoLines::kilobytes(1536), "1.50");
    EXPECT_EQ(MmsInfoLines::kilobytes(1023), "1.00") << "rounded, not cut";
    EXPECT_EQ(MmsInfoLines::kilobytes(10240000), "10000.00");
    EXPECT_EQ(frmMmsInfo::totalText(307200), "Total size: 300.00 KB");
}

TEST_F(MessageInfoTest, AnimationsAndVideosAreHeadedAsSuch) {
    ctlPictureEditor* editor = window().pictureEditor();
    // Each time the editor warns that the animation is sent instead of the slide picture.
    DialogService::queueAnswer(QMessageBox::Ok);
    ASSERT_TRUE(editor->AddBackgroundPicture(programFile("archive/Animations/bouncing_ball.gif")));
    ASSERT_TRUE(document().appendSlide());
    DialogService::queueAnswer(QMessageBox::Ok);
    ASSERT_TRUE(editor->AddBackgroundPicture(programFile("archive/Animations/sunrise.mp4")));
    ASSERT_TRUE(document().appendSlide());
    frmMmsInfo* info = openInfo();
    ASSERT_NE(info, nullptr);
    const QStringList lines = info->lines();
    ASSERT_EQ(lines.size(), 7) << lines.join("\n").toStdString();
    EXPECT_EQ(lines[0], "Animation 1" + kRule);
    EXPECT_EQ(lines[1],
              partLine("Slide1.gif",
                       QFileInfo(programFile("archive/Animations/bouncing_ball.gif")).size()))
        << "an animation goes as it is";
    EXPECT_EQ(lines[2], "Video 2" + kRule);
    EXPECT_EQ(lines[3], partLine("Slide2.mp4",
                                 QFileInfo(programFile("archive/Animations/sunrise.mp4")).size()));
    EXPECT_EQ(lines[4], "Slide 3" + kRule) << "an empty slide has nothing to send";
    EXPECT_EQ(lines[5], "SMIL presentation" + kRule);
}

TEST_F(MessageInfoTest, ProgressIsShownWhileThePartsAreWritten) {
    ASSERT_TRUE(document().setSlideText("one"));
    ASSERT_TRUE(document().appendSlide());
    ASSERT_TRUE(document().setSlideText("two"));
    frmMmsInfo info(window().manager(), &window());
    QSignalSpy shown(&info, &frmMmsInfo::statusChanged);
    ASSERT_TRUE(info.SetMessage(*document().message()));
    QStringList texts;
    for (const QList<QVariant>& status : shown)
        texts << status.at(0).toString();
    EXPECT_EQ(texts, QStringList({"Calculating the size of the message…",
                                  "Processing… Slide 1 of 2", "Processing… Slide 2 of 2",
                                  "Compressing…", frmMmsInfo::totalText(info.totalBytes())}));
}

TEST_F(MessageInfoTest, APartThatCannotBeWrittenIsNamedInsteadOfATotal) {
    ASSERT_TRUE(document().editSlide("STR_SOUND", "Sound",
                                     [](clsSlide& slide) { slide.setSound("gone.amr"); }));
    frmMmsInfo* info = openInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->lines().isEmpty());
    EXPECT_TRUE(info->status().startsWith("The sound cannot be converted."))
        << info->status().toStdString();
    EXPECT_TRUE(info->status().contains("gone.amr")) << info->status().toStdString();
}

TEST_F(MessageInfoTest, WithoutAMessageTheUserIsToldSoAndNoWindowOpens) {
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_EQ(frmMmsInfo::showFor(&window(), window().manager(), nullptr), nullptr);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].text,
              "There is no open message to show information about.");
    EXPECT_EQ(window().findChild<frmMmsInfo*>(), nullptr);
}

TEST_F(MessageInfoTest, ScreenReadersKeyboardAndClipboardSeeEveryLine) {
    speak("en-us");
    pictureSoundAndTextThenPictureOnly();
    QPointer<frmMmsInfo> info = openInfo();
    ASSERT_FALSE(info.isNull());
    EXPECT_EQ(info->windowTitle(), "Message information");
    auto* list = info->findChild<QListWidget*>("listBoxInfo");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(list);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), info->windowTitle());
    const QStringList lines = info->lines();
    ASSERT_EQ(accessible->childCount(), lines.size());
    for (int i = 0; i < lines.size(); ++i)
        EXPECT_EQ(accessible->child(i)->text(QAccessible::Name), lines[i]);
    screenshot(*info, "info-en.png");

    list->setFocus();
    list->setCurrentRow(2);
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), lines.join("\n") + "\n") << "all lines, not one";
    QApplication::clipboard()->clear();
    QTest::mouseClick(info->findChild<QPushButton*>("cmdCopy"), Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text(), lines.join("\n") + "\n");

    QTest::keyClick(list, Qt::Key_Escape);
    QTRY_VERIFY(info.isNull());
    info = openInfo();
    ASSERT_FALSE(info.isNull());
    QTest::mouseClick(info->findChild<QPushButton*>("cmdClose"), Qt::LeftButton);
    QTRY_VERIFY(info.isNull());
}

TEST_F(MessageInfoTest, InGermanTheHeadingsAndUnitsAreGerman) {
    speak("de-de");
    pictureSoundAndTextThenPictureOnly();
    window().TranslateForm();
    frmMmsInfo* info = openInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->windowTitle(), "Nachrichteninformationen");
    const QStringList lines = info->lines();
    ASSERT_EQ(lines.size(), 8);
    EXPECT_EQ(lines[0], "Folie 1" + kRule);
    EXPECT_EQ(lines[3], partLine("Slide1.txt", 7).replace("bytes", "Bytes"));
    EXPECT_EQ(lines[6], "SMIL-Präsentation" + kRule);
    EXPECT_TRUE(info->status().startsWith("Gesamtgröße: ")) << info->status().toStdString();
    EXPECT_EQ(info->findChild<QPushButton*>("cmdClose")->text(), "Schließen");
    screenshot(*info, "info-de.png");
}

// Beside the sizes the window says whether the message will arrive: a
// slide picture at 160x120 in a small message is Image Basic, and the same
// message measured against a class without pictures names the picture.
TEST_F(MessageInfoTest, TheSmallestContentClassAndTheRulesBrokenAreShown) {
    setting("ContentClass", "Text");
    ASSERT_TRUE(window().pictureEditor()->AddBackgroundPicture(
        programFile("archive/Backgrounds/beach.jpg")));
    ASSERT_TRUE(document().setSlideText("Hello"));
    frmMmsInfo* info = openInfo();
    ASSERT_NE(info, nullptr);
    const QStringList said = info->findChild<QLabel*>("lblClass")->text().split('\n');
    ASSERT_GE(said.size(), 3) << said.join('\n').toStdString();
    EXPECT_EQ(said[0], "Smallest content class: Image Basic");
    EXPECT_EQ(said[1], "It does not fit Text:");
    EXPECT_TRUE(said[2].startsWith("Slide1.jpg: ")) << said[2].toStdString();
    info->close();

    setting("ContentClass", "Image Rich");
    info = openInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->findChild<QLabel*>("lblClass")->text().endsWith("It fits Image Rich."))
        << info->findChild<QLabel*>("lblClass")->text().toStdString();
}
