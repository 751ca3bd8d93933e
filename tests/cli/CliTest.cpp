#include "ProgramRun.h"
#include "QtPrinters.h"

#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

// The programs as a user's script runs them: built binaries, shipped data
// beside them, a fresh data folder.
class CliTest : public ::testing::Test {
protected:
    QProcessEnvironment environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_DATA_HOME", m_dataHome.path());
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("LANG", "en_US.UTF-8");
        env.remove("LC_ALL");
        return env;
    }

    ProgramRun cli(const QStringList& arguments) const {
        ProgramRun run = runProgram(cliProgram(), arguments, environment());
        run.out = run.out.trimmed();
        return run;
    }

    QString userFile() const { return m_dataHome.path() + "/Vellumo/vellumo.xml"; }

    QTemporaryDir m_dataHome;
};

TEST_F(CliTest, SettingsAreReadAndWrittenInTheUsersFile) {
    EXPECT_EQ(cli({"settings", "get", "preferences", "Initialized"}).out, "1")
        << "the first call runs the first-run set-up";
    EXPECT_TRUE(QFileInfo::exists(userFile()));
    EXPECT_EQ(cli({"settings", "get", "preferences", "Language"}).out, "en-us");
    EXPECT_EQ(cli({"settings", "get", "nothing", "here", "fallback"}).out, "fallback");

    const ProgramRun set = cli({"settings", "set", "preferences", "SlideDuration", "4500"});
    EXPECT_EQ(set.code, 0) << set.err.toStdString();
    EXPECT_EQ(cli({"settings", "get", "preferences", "SlideDuration"}).out, "4500");
    EXPECT_TRUE(QFileInfo::exists(m_dataHome.path() + "/Vellumo/archive/Sounds/chime.wav"));
}

TEST_F(CliTest, BadCommandLinesGiveUsageAndACode) {
    const ProgramRun none = cli({});
    EXPECT_EQ(none.code, 64);
    EXPECT_TRUE(none.err.contains("settings get SECTION KEY"));
    EXPECT_EQ(cli({"settings", "get", "onlysection"}).code, 64);
    EXPECT_EQ(cli({"settings", "set", "s", "", "v"}).code, 1);
}

TEST_F(CliTest, LocaleChoosesTheFirstLanguage) {
    QProcessEnvironment env = environment();
    env.insert("LANG", "de_DE.UTF-8");
    EXPECT_EQ(
        runProgram(cliProgram(), {"settings", "get", "preferences", "Language"}, env).out.trimmed(),
        "de-de");
}

TEST_F(CliTest, ASecondProgramStartLeavesAtOnceAndTheFirstComesForward) {
    QProcess first;
    first.setProcessEnvironment(environment());
    first.start(QStringLiteral(VELLUMO_BUILD_DIR) + "/vellumo");
    ASSERT_TRUE(first.waitForStarted());
    for (int i = 0; i < 300 && !QFileInfo::exists(userFile()); ++i)
        QThread::msleep(100);
    ASSERT_TRUE(QFileInfo::exists(userFile())) << "the first copy never set up its settings";
    QThread::msleep(500);
    const QDateTime written = QFileInfo(userFile()).lastModified();
    QFile file(userFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();

    QProcess second;
    second.setProcessEnvironment(environment());
    second.start(QStringLiteral(VELLUMO_BUILD_DIR) + "/vellumo");
    EXPECT_TRUE(second.waitForFinished(20000));
    EXPECT_EQ(second.exitCode(), 0);

    first.waitForReadyRead(5000);
    EXPECT_TRUE(first.readAllStandardError().contains("comes forward"));
    EXPECT_EQ(first.state(), QProcess::Running);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
    EXPECT_EQ(QFileInfo(userFile()).lastModified(), written);
    first.kill();
    first.waitForFinished();
}
