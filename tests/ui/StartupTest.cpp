#include "AppGlobals.h"
#include "AppPaths.h"
#include "DialogService.h"
#include "ProgramRun.h"
#include "RunningCopy.h"
#include "SingleInstance.h"
#include "TempDataHome.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "frmMain.h"
#include "frmSplash.h"
#include "modMain.h"

#include <QApplication>
#include <QFileInfo>
#include <QLocalServer>
#include <QPointer>
#include <QTest>

namespace {
QStringList& warnings() {
    static QStringList kept;
    return kept;
}
void keepWarning(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtWarningMsg)
        warnings() << text;
}
} // namespace

class StartupTest : public TempDataHome {
protected:
    void TearDown() override {
        modMain::Shutdown();
        DialogService::clear();
        TempDataHome::TearDown();
    }
    QString userFile() const { return dataFile("Vellumo/vellumo.xml"); }
    void setProgramSetting(const QString& section, const QString& key, const QString& value) {
        clsPropertiesXML program;
        program.Initialize(programFile("vellumo.xml"), "");
        program.SetProp(section, key, value);
    }
};

TEST_F(StartupTest, MainOpensSettingsLanguageHelpAndTheWindow) {
    setProgramSetting("preferences", "ShowSplash", "0");
    // The file the command line names is not there: the window says so.
    DialogService::queueAnswer(QMessageBox::Ok);
    ASSERT_FALSE(modMain::Main({"vellumo", "my message.mms"}).has_value());
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_TRUE(DialogService::answeredBoxes()[0].text.startsWith("The message file cannot be"));
    ASSERT_NE(AppGlobals::settings(), nullptr);
    EXPECT_EQ(AppGlobals::settings()->XmlFileName(), userFile());
    EXPECT_EQ(AppGlobals::localizer()->GetLanguage(), "en-us");
    EXPECT_EQ(AppGlobals::helpFile(), programFile("help/en-us.html"));
    EXPECT_TRUE(QFileInfo::exists(AppGlobals::helpFile()));
    EXPECT_EQ(AppGlobals::commandLine(), " \"my message.mms\"");
    ASSERT_NE(modMain::mainWindow(), nullptr);
    EXPECT_TRUE(modMain::mainWindow()->isVisible());
    EXPECT_EQ(modMain::mainWindow()->windowTitle(), "Untitled.mms -Vellumo");
    EXPECT_FALSE(modMain::splashShown());
    EXPECT_EQ(modMain::currentStep(), "ModMain.Main - frmMain.Show");
}

TEST_F(StartupTest, TheSplashShowsWhenAskedAndClosesItself) {
    ASSERT_FALSE(modMain::Main({"vellumo"}).has_value());
    ASSERT_TRUE(modMain::splashShown());
    frmSplash* splash = modMain::splash();
    ASSERT_NE(splash, nullptr);
    EXPECT_TRUE(splash->isVisible());
    EXPECT_FALSE(splash->isClosing());
    EXPECT_EQ(AppGlobals::commandLine(), "");
    QPointer<frmSplash> watched(splash);
    splash->startPlayback(10);
    for (int i = 0; i < 100 && watched; ++i)
        QTest::qWait(10);
    EXPECT_TRUE(watched.isNull()) << "the splash closes and goes away by itself";
}

// A video and an animated picture each play once round and end the splash;
// a file that is neither leaves the drawn picture.
TEST_F(StartupTest, TheSplashPlaysTheVideoOrAnimationTheSettingsName) {
    const QString gif = dataFile("turn.gif");
    const ProgramRun animation = runProgram(
        "convert", {"-delay", "20", "-size", "60x40", "xc:red", "xc:lime", "xc:blue", gif});
    ASSERT_EQ(animation.code, 0) << animation.err.toStdString();
    const QString video = dataFile("turn.mp4");
    const ProgramRun clip = runProgram(
        "ffmpeg", {"-loglevel", "error", "-f", "lavfi", "-i",
                   "color=c=red:s=64x48:d=0.3:r=10[a];color=c=lime:s=64x48:d=0.5:r=10[b];"
                   "[a][b]concat=n=2:v=1",
                   "-pix_fmt", "yuv420p", video});
    ASSERT_EQ(clip.code, 0) << clip.err.toStdString();
    const auto centre = [](const frmSplash& splash) {
        return splash.picture().toImage().pixelColor(splash.picture().rect().center());
    };
    for (const QString& file : {gif, video}) {
        frmSplash splash;
        splash.setVideo(file);
        splash.setAttribute(Qt::WA_DeleteOnClose, false);
        splash.startPlayback();
        QTRY_VERIFY_WITH_TIMEOUT(centre(splash).green() > 200 && centre(splash).red() < 80, 5000);
        QTRY_VERIFY_WITH_TIMEOUT(splash.isClosing(), 5000);
        EXPECT_FALSE(splash.isVisible()) << file.toStdString();
    }
    writeFile(dataFile("not.mp4"), "no video here");
    frmSplash plain;
    const QImage drawn = plain.picture().toImage();
    plain.setVideo(dataFile("not.mp4"));
    EXPECT_EQ(plain.picture().toImage(), drawn);
}

TEST_F(StartupTest, GermanSettingsGiveGermanTextsAndHelp) {
    setProgramSetting("preferences", "ShowSplash", "0");
    ASSERT_FALSE(modMain::Main({"vellumo"}).has_value());
    AppGlobals::settings()->SetProp("preferences", "Language", "de-de");
    modMain::Shutdown();
    ASSERT_FALSE(modMain::Main({"vellumo"}).has_value());
    EXPECT_EQ(AppGlobals::helpFile(), programFile("help/de-de.html"));
    EXPECT_EQ(modMain::mainWindow()->windowTitle(), "Unbenannt.mms -Vellumo");
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "&Yes"), "&Ja")
        << "the buttons of message boxes speak the program's language";
}

TEST_F(StartupTest, ASecondCopyHandsOverItsCommandLineWithoutTouchingSettings) {
    RunningCopy running(SingleInstance::serverNameFor(AppPaths::localAppDataFolder()));
    ASSERT_TRUE(running.listening());

    EXPECT_EQ(modMain::Main({"vellumo", "my card.mms"}), 0);
    EXPECT_EQ(running.received(1), QList<QStringList>{{"my card.mms"}});
    EXPECT_FALSE(QFileInfo::exists(userFile())) << "the second copy must not open the settings";
    EXPECT_EQ(modMain::mainWindow(), nullptr);
}

TEST_F(StartupTest, WhenTheRunningCopyDoesNotAnswerThisOneRunsOnItsOwn) {
    setProgramSetting("preferences", "ShowSplash", "0");
    // Takes connections (the system does that) but never answers them.
    QLocalServer hung;
    ASSERT_TRUE(hung.listen(SingleInstance::serverNameFor(AppPaths::localAppDataFolder())));

    warnings().clear();
    const QtMessageHandler previous = qInstallMessageHandler(keepWarning);
    const std::optional<int> exitCode = modMain::Main({"vellumo"});
    qInstallMessageHandler(previous);

    EXPECT_FALSE(exitCode.has_value()) << "no window would come up if this copy ended";
    ASSERT_NE(modMain::mainWindow(), nullptr);
    EXPECT_TRUE(modMain::mainWindow()->isVisible());
    EXPECT_TRUE(warnings().join('\n').contains("Later copies cannot reach this one"))
        << warnings().join('\n').toStdString();
    EXPECT_TRUE(QFileInfo::exists(hung.fullServerName())) << "its socket is not taken from it";
}

TEST_F(StartupTest, AFailingStepIsReportedByName) {
    writeFile(dataFile("Vellumo"), "a file where the settings folder should be");
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_EQ(modMain::Main({"vellumo"}), 1);
    const auto boxes = DialogService::answeredBoxes();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0].title, "Error");
    EXPECT_TRUE(boxes[0].text.startsWith("An unexpected error occurred.\n\n"));
    EXPECT_TRUE(boxes[0].text.endsWith("(ModMain.Main - Program Properties)"))
        << boxes[0].text.toStdString();
    EXPECT_EQ(modMain::mainWindow(), nullptr);
}

TEST_F(StartupTest, HelpPathAndCommandLineRules) {
    clsPropertiesXML settings;
    settings.Initialize(dataFile("s.xml"), "");
    EXPECT_EQ(modMain::helpFilePath(settings, "de-de"), "");
    settings.SetProp("preferences", "Help", "1");
    EXPECT_EQ(modMain::helpFilePath(settings, "de-de"), programFile("help/de-de.html"));
    settings.SetProp("paths", "help", "\\docs\\");
    EXPECT_EQ(modMain::helpFilePath(settings, "xx"), programFile("docs/xx.html"))
        << "the file need not exist";
    EXPECT_EQ(modMain::commandLineText({"vellumo", "file.mms"}), " file.mms");
    EXPECT_EQ(modMain::commandLineText({"vellumo", "a", "b c"}), " a \"b c\"");
    EXPECT_EQ(modMain::commandLineText({"vellumo"}), "");
}
