#include "TransferTestSupport.h"
#include "clsRunPgm.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

namespace {
bool processExists(std::int32_t pid) {
    return ::kill(pid, 0) == 0 || errno != ESRCH;
}

// Polls the way the message manager does, with a generous limit.
bool waitUntilEnded(clsRunPgm& runner) {
    const QDeadlineTimer deadline(20000);
    while (runner.isActive()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(10);
    }
    return true;
}
} // namespace

class RunPgmTest : public ::testing::Test {
protected:
    QTemporaryDir m_dir;
    QString path(const QString& relative) const { return m_dir.filePath(relative); }
};

TEST_F(RunPgmTest, FolderAndCommandLineMakeTheProgramPath) {
    QDir().mkpath(path("x"));
    writeScript(path("x/y"), "printf '%s|' \"$0\" \"$@\" > \"" + path("ran").toUtf8() + "\"\n");

    // Stored folders may use "\" and lack the trailing separator.
    const QString stored = m_dir.path() + "\\x";
    clsRunPgm runner;
    ASSERT_TRUE(runner.run(stored, "y \"first arg\" second", 1));
    ASSERT_TRUE(waitUntilEnded(runner));
    EXPECT_EQ(runner.GetExitCode(), 0);
    EXPECT_EQ(readAll(path("ran")), path("x/y").toUtf8() + "|first arg|second|");
}

TEST_F(RunPgmTest, EmptyFolderRunsTheCommandLineAsItIsAndKeepsTheExitCode) {
    clsRunPgm runner;
    ASSERT_TRUE(runner.run("", "sh -c \"exit 7\"", 0));
    ASSERT_TRUE(waitUntilEnded(runner));
    EXPECT_EQ(runner.GetExitCode(), 7);
    EXPECT_FALSE(runner.running());
    EXPECT_FALSE(runner.isActive()) << "an ended program stays ended";
}

TEST_F(RunPgmTest, WhileRunningIsActiveSaysSoAndASecondRunDoesNothing) {
    clsRunPgm runner;
    ASSERT_TRUE(runner.run("", "sleep 30", 0));
    const std::int32_t pid = runner.processId();
    EXPECT_TRUE(runner.isActive());
    EXPECT_EQ(runner.GetExitCode(), 259) << "the still-active marker";
    EXPECT_TRUE(runner.run("", "sh -c \"exit 1\"", 0));
    EXPECT_EQ(runner.processId(), pid);
    EXPECT_FALSE(runner.terminate());
}

TEST_F(RunPgmTest, TerminateHasTheInvertedSense) {
    clsRunPgm runner;
    EXPECT_TRUE(runner.terminate()) << "nothing runs: true";

    ASSERT_TRUE(runner.run("", "sleep 30", 0));
    const std::int32_t pid = runner.processId();
    EXPECT_FALSE(runner.terminate()) << "killed: false";
    EXPECT_FALSE(runner.isActive());
    EXPECT_FALSE(processExists(pid));
    EXPECT_TRUE(runner.terminate()) << "nothing runs any more";
}

TEST_F(RunPgmTest, DestroyingTheRunnerKillsItsProgram) {
    std::int32_t pid = 0;
    {
        clsRunPgm runner;
        ASSERT_TRUE(runner.run("", "sleep 30", 0));
        pid = runner.processId();
        ASSERT_TRUE(processExists(pid));
    }
    EXPECT_FALSE(processExists(pid));
}

TEST_F(RunPgmTest, TerminatedForgetsTheProgramWithoutTouchingIt) {
    std::int32_t pid = 0;
    {
        clsRunPgm runner;
        ASSERT_TRUE(runner.run("", "sleep 30", 0));
        pid = runner.processId();
        EXPECT_TRUE(runner.terminated());
        EXPECT_FALSE(runner.running());
        EXPECT_FALSE(runner.isActive());
    }
    EXPECT_TRUE(processExists(pid)) << "a forgotten program outlives its runner";
    ::kill(pid, SIGKILL);
}

TEST_F(RunPgmTest, AProgramThatCannotStartLeavesNothingRunning) {
    clsRunPgm runner;
    EXPECT_FALSE(runner.run(m_dir.path(), "no-such-program", 0));
    EXPECT_FALSE(runner.running());
    EXPECT_FALSE(runner.run("", "", 0));
    EXPECT_FALSE(runner.isActive());
}
