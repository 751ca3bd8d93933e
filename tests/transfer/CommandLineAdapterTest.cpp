#include "CommandLineAdapter.h"
#include "TransferOptions.h"
#include "TransferTestSupport.h"
#include "clsMMSCommunication.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The infrared kind with a real script standing in for the send program.
class CommandLineAdapterTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir().mkpath(m_dir.filePath("ir tools")));
        m_program = m_dir.filePath("ir tools/send file");
        // Writes each argument on a line and ends with the code it was given.
        writeScript(m_program,
                    "printf '%s\\n' \"$@\" > \"" + argsFile().toUtf8() + "\"\nexit \"$2\"\n");
        m_message = m_dir.filePath("my messages/Summer trip 1.tpl");
        QDir().mkpath(m_dir.filePath("my messages"));
        QFile file(m_message);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("tpl");
    }

    QString argsFile() const { return m_dir.filePath("args.txt"); }
    // The way the main window sets the connection up for infrared.
    void setUp(const QString& commandLine) {
        ASSERT_EQ(m_connection.Initialize(1), 1);
        m_connection.SetIrDaCommandline(commandLine);
    }

    QTemporaryDir m_dir;
    QString m_program;
    QString m_message;
    clsMMSCommunication m_connection{clsMMSCommunication::adapters(TransferOptions())};
};

TEST_F(CommandLineAdapterTest, ThePathReachesTheProgramAsOneArgument) {
    setUp("\"" + m_program + "\" \"%f%\" 0");
    EXPECT_TRUE(m_connection.isConnected()) << "the program is installed";
    EXPECT_EQ(m_connection.deviceName(), m_program);
    EXPECT_EQ(m_connection.SendFile(m_message), 0) << m_connection.lastFailure().toStdString();
    EXPECT_EQ(readAll(argsFile()), m_message.toUtf8() + "\n0\n");
}

TEST_F(CommandLineAdapterTest, ANonZeroExitCodeIsAFailedSend) {
    setUp("\"" + m_program + "\" \"%f%\" 5");
    EXPECT_EQ(m_connection.SendFile(m_message), 4);
    EXPECT_TRUE(m_connection.lastFailure().contains("exit code 5"))
        << m_connection.lastFailure().toStdString();
}

TEST_F(CommandLineAdapterTest, AMissingProgramMeansNoPhone) {
    setUp("vellumo-no-such-sender \"%f%\"");
    EXPECT_FALSE(m_connection.isConnected());
    EXPECT_EQ(m_connection.SendFile(m_message), 3);

    // Installing it (here: pointing at one that exists) connects the phone.
    m_connection.SetIrDaCommandline("\"" + m_program + "\" \"%f%\" 0");
    EXPECT_TRUE(m_connection.isConnected());
}

TEST_F(CommandLineAdapterTest, AMissingFileIsRefused) {
    setUp("\"" + m_program + "\" \"%f%\" 0");
    EXPECT_EQ(m_connection.SendFile(m_dir.filePath("gone.tpl")), 4);
    EXPECT_TRUE(m_connection.lastFailure().contains("gone.tpl"));
    EXPECT_FALSE(QFile::exists(argsFile())) << "the program must not run";
}

TEST(CommandLineArguments, QuotingGroupsWordsAndThePlaceholderIsReplacedInside) {
    EXPECT_EQ(CommandLineAdapter::argumentsFor("sender \"%f%\"", "/a b/c\"d.tpl"),
              QStringList({"sender", "/a b/c\"d.tpl"}));
    EXPECT_EQ(CommandLineAdapter::argumentsFor("\"/opt/my tools/send\" --file=%f% -q", "/x.tpl"),
              QStringList({"/opt/my tools/send", "--file=/x.tpl", "-q"}));
    EXPECT_EQ(CommandLineAdapter::argumentsFor("", "/x.tpl"), QStringList());
}
