#include "AppGlobals.h"
#include "AppPaths.h"
#include "DialogService.h"
#include "FileCommands.h"
#include "MainWindowFixture.h"
#include "MessageDocument.h"
#include "SettingsBootstrap.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "ctlPictureEditor.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>
#include <csignal>
#include <unistd.h>

namespace {
const char kDataHome[] = "VELLUMO_CRASH_DATA_HOME";
const char kProgramFolder[] = "VELLUMO_CRASH_PROGRAM_FOLDER";
const char kMessage[] = "VELLUMO_CRASH_MESSAGE";

QString markOf(const QString& workFolder) {
    QString folder = workFolder;
    folder.chop(1);
    return folder + ".unsaved";
}

QString slideText(MessageDocument& document, int index) {
    return document.message()->Slides().Item(index).Text();
}
} // namespace

// Run only by CrashRecoveryTest, as a process of its own: opens the message,
// edits it, waits until the edits are kept for recovery, and dies as a
// killed program does, without a chance to clean up.
TEST(CrashRecoveryChild, DISABLED_EditsTheMessageAndIsKilled) {
    ASSERT_FALSE(qEnvironmentVariableIsEmpty(kDataHome));
    qputenv("XDG_DATA_HOME", qgetenv(kDataHome));
    AppPaths::setProgramFolder(qEnvironmentVariable(kProgramFolder));
    AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
    AppGlobals::settings()->SetProp("preferences", "ShowSplash", "0");
    AppGlobals::settings()->SetProp("preferences", "AskNewSlide", "0");
    frmMain window;
    window.show();
    ASSERT_TRUE(window.fileCommands()->open(qEnvironmentVariable(kMessage)));
    MessageDocument& document = window.document();
    ASSERT_TRUE(document.setSlideText("Edited before the crash"));
    ASSERT_TRUE(document.appendSlide());
    ASSERT_TRUE(document.setSlideText("A slide of its own"));
    emit window.pictureEditor()->soundDropped(AppPaths::programFolder() + "archive/Sounds/",
                                              "arpeggio.mp3");
    ASSERT_FALSE(document.message()->Slides().Item(2).Sound().isEmpty());
    ASSERT_TRUE(document.setSlideDuration(4321));
    const QString work = window.manager().GetWorkFolderPath();
    const QString xml = work + window.manager().messageFileName();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            QFile file(xml);
            return QFileInfo::exists(markOf(work)) && file.open(QIODevice::ReadOnly) &&
                   file.readAll().contains(document.message()->Slides().Item(2).Sound().toUtf8());
        },
        10000));
    ::kill(::getpid(), SIGKILL);
}

// A program that is killed loses nothing the user did: started again, it
// offers the unsaved message back.
class CrashRecoveryTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        setting("AskNewSlide", "0");
        // The MP3 the edits add is no part of the chosen class; saving is not asked about here.
        setting("CreationMode", "Free");
        m_file = dataFile("card.mms");
        window().document().setSlideText("As saved");
        DialogService::queueFileAnswer(m_file);
        ASSERT_TRUE(window().fileCommands()->saveAs());
        m_saved = readBytes(m_file);
        m_window.reset();
    }

    static QByteArray readBytes(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // Runs the child test above in a process of its own; true when it was killed.
    bool editAndKill() {
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(kDataHome, dataFile(""));
        env.insert(kProgramFolder, programFile(""));
        env.insert(kMessage, m_file);
        child.setProcessEnvironment(env);
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QCoreApplication::applicationFilePath(),
                    {"--gtest_filter=CrashRecoveryChild.*", "--gtest_also_run_disabled_tests"});
        const bool ended = child.waitForFinished(180000);
        const QByteArray said = child.readAll();
        EXPECT_TRUE(ended);
        EXPECT_EQ(child.exitStatus(), QProcess::CrashExit) << said.toStdString();
        return ended && child.exitStatus() == QProcess::CrashExit;
    }

    MessageDocument& document() { return window().document(); }

    QString m_file;
    QByteArray m_saved;
};

TEST_F(CrashRecoveryTest, AKilledProgramsEditsComeBackWhenTheUserSaysYes) {
    ASSERT_TRUE(editAndKill());
    DialogService::queueAnswer(QMessageBox::Yes);
    MessageDocument& recovered = document();
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_TRUE(DialogService::answeredBoxes().front().text.contains("card.mms had unsaved"));

    ASSERT_EQ(recovered.slideCount(), 2);
    EXPECT_EQ(slideText(recovered, 1), "Edited before the crash");
    EXPECT_EQ(slideText(recovered, 2), "A slide of its own");
    const clsSlide& second = recovered.message()->Slides().Item(2);
    EXPECT_EQ(second.Duration(), 4321);
    ASSERT_FALSE(second.Sound().isEmpty());
    EXPECT_EQ(readBytes(window().manager().GetWorkFolderPath() + second.Sound()),
              readBytes(programFile("archive/Sounds/arpeggio.mp3")));
    EXPECT_TRUE(recovered.isModified());
    EXPECT_EQ(window().fileCommands()->fileName(), m_file);
    EXPECT_TRUE(window().windowCaption().startsWith("card.mms"));
    EXPECT_EQ(readBytes(m_file), m_saved) << "the file is as it was saved";

    // Saved, it is the file the user had, with the edits, and nothing is left to recover.
    ASSERT_TRUE(window().fileCommands()->save());
    const QString mark = markOf(window().manager().GetWorkFolderPath());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFileInfo::exists(mark); }, 5000));
    EXPECT_TRUE(cliInfo(m_file).contains("A slide of its own"));
}

TEST_F(CrashRecoveryTest, NoGivesAnEmptyNewMessageAndForgetsTheWork) {
    ASSERT_TRUE(editAndKill());
    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_EQ(document().slideCount(), 1);
    EXPECT_TRUE(slideText(document(), 1).isEmpty());
    EXPECT_FALSE(document().isModified());
    EXPECT_TRUE(window().fileCommands()->fileName().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(markOf(window().manager().GetWorkFolderPath())));
    EXPECT_EQ(readBytes(m_file), m_saved);
}

TEST_F(CrashRecoveryTest, TheMarkFollowsTheEditsAndASecondCopyKeepsToItsOwnFolder) {
    const QString work = window().manager().GetWorkFolderPath();
    ASSERT_TRUE(window().fileCommands()->open(m_file));
    EXPECT_FALSE(QFileInfo::exists(markOf(work))) << "an opened message is saved";
    ASSERT_TRUE(document().setSlideText("Unsaved"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFileInfo::exists(markOf(work)); }, 5000));

    // A second copy neither asks about nor empties the first one's work.
    {
        frmMain second;
        EXPECT_NE(second.manager().GetWorkFolderPath(), work);
        EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
        EXPECT_TRUE(QFileInfo::exists(markOf(work)));
        EXPECT_TRUE(QFileInfo::exists(work + window().manager().messageFileName()));
    }
    EXPECT_EQ(slideText(document(), 1), "Unsaved");

    // Undone to the saved state, nothing is unsaved.
    document().undoStack().undo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFileInfo::exists(markOf(work)); }, 5000));
    ASSERT_TRUE(document().setSlideText("Unsaved again"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFileInfo::exists(markOf(work)); }, 5000));
    DialogService::queueAnswer(QMessageBox::No); // do not save the changes
    ASSERT_TRUE(window().fileCommands()->newMessage());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFileInfo::exists(markOf(work)); }, 5000));
}
