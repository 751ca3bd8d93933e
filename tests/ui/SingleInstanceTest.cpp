#include "SingleInstance.h"
#include "QtPrinters.h"
#include "RunningCopy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

class SingleInstanceTest : public ::testing::Test {
protected:
    QString serverName() const { return SingleInstance::serverNameFor(m_folder.path()); }
    QString socketPath() const { return QDir::tempPath() + "/" + serverName(); }

    // What a copy that crashed leaves: a socket file nobody listens on.
    void leaveStaleSocket() const {
        const QByteArray path = QFile::encodeName(socketPath());
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        ASSERT_LT(size_t(path.size()), sizeof address.sun_path);
        std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_GE(fd, 0);
        const int bound = ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::close(fd);
        ASSERT_EQ(bound, 0) << std::strerror(errno);
    }

    QTemporaryDir m_folder;
};

TEST_F(SingleInstanceTest, ALaterCopyHandsOverItsWholeCommandLine) {
    RunningCopy first(serverName());
    ASSERT_TRUE(first.listening());
    const QStringList arguments{"/tmp/my card.mms", "", "--flag", "100% Grüße\nzwei Zeilen"};
    SingleInstance second(serverName());
    EXPECT_TRUE(second.activateRunningCopy(arguments));
    SingleInstance third(serverName());
    EXPECT_TRUE(third.activateRunningCopy());
    EXPECT_EQ(first.received(2), (QList<QStringList>{arguments, {}}));
}

TEST_F(SingleInstanceTest, ACopyThatDoesNotAnswerWasNotActivated) {
    SingleInstance nobodyThere(serverName());
    EXPECT_FALSE(nobodyThere.activateRunningCopy());

    // It takes the connection (the system does that) but never answers.
    QLocalServer hung;
    ASSERT_TRUE(hung.listen(serverName()));
    SingleInstance second(serverName());
    EXPECT_FALSE(second.activateRunningCopy({"a.mms"}));
}

TEST_F(SingleInstanceTest, OnlyASocketNobodyAnswersOnIsTakenOver) {
    leaveStaleSocket();
    ASSERT_TRUE(QFileInfo::exists(socketPath()));
    {
        RunningCopy first(serverName());
        EXPECT_TRUE(first.listening()) << "a crashed copy's socket is taken over";

        SingleInstance second(serverName());
        EXPECT_FALSE(second.listen());
        EXPECT_TRUE(second.errorString().contains("another copy already answers"))
            << second.errorString().toStdString();
        SingleInstance third(serverName());
        EXPECT_TRUE(third.activateRunningCopy({"b.mms"})) << "the first copy still answers";
        EXPECT_EQ(first.received(1), QList<QStringList>{{"b.mms"}});
    }
    EXPECT_FALSE(QFileInfo::exists(socketPath())) << "a copy that ends removes its socket";
}
