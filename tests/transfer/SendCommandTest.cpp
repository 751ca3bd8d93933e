#include "ProgramRun.h"
#include "RawObexPeer.h"
#include "TempDataHome.h"
#include "TransferTestSupport.h"

#include <gtest/gtest.h>

// vellumo-cli send, run the way a user's script runs it.
class SendCommandTest : public TempDataHome {
protected:
    struct Result {
        int exitCode;
        QString output;
    };

    Result send(const QStringList& arguments) {
        const ProgramRun run = runProgram(cliProgram(), QStringList{"send"} + arguments);
        return {run.code, run.out.trimmed()};
    }

    QString messageFile() {
        const QString path = dataFile("Holiday message.tpl");
        writeFile(path, patternBytes(70000));
        return path;
    }
};

TEST_F(SendCommandTest, BadCommandLinesGetTheUsage) {
    EXPECT_EQ(send({}).exitCode, 64);
    EXPECT_EQ(send({"a.tpl", "--via", "fax"}).exitCode, 64);
    EXPECT_EQ(send({"a.tpl", "b.tpl"}).exitCode, 64);
    EXPECT_EQ(send({"a.tpl", "--target"}).exitCode, 64);
}

TEST_F(SendCommandTest, NoServerGivesThreeAndSaysSo) {
    const Result result =
        send({messageFile(), "--target", QStringLiteral("tcp:127.0.0.1:%1").arg(closedPort())});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.output, "3 no phone connected");
}

TEST_F(SendCommandTest, AFilePushedToARealServerArrivesWhole) {
    ObexTestServer server;
    if (const QString skip = startPrivateObexServer(server); !skip.isEmpty())
        GTEST_SKIP() << skip.toStdString();

    const QString path = messageFile();
    const Result result = send({path, "--via", "obex", "--target", "tcp:127.0.0.1:650"});
    EXPECT_EQ(result.exitCode, 0) << result.output.toStdString();
    EXPECT_EQ(result.output, "0 sent to tcp:127.0.0.1:650");
    EXPECT_TRUE(readAll(server.folder() + "/Holiday message.tpl") == readAll(path))
        << server.log().toStdString();
}

TEST_F(SendCommandTest, ALongNameToAPeerWithTheSmallestPacketsIsSentNotSpunOn) {
    RawObexPeer peer({RawObexPeer::Behaviour::Accept, 255});
    // 150 characters: the name alone outgrows one 255-byte packet.
    const QString name = QString(146, QLatin1Char('n')) + ".tpl";
    const QString path = dataFile(name);
    writeFile(path, patternBytes(70000));
    // send() gives up after a minute, which fails the test instead of hanging it.
    const Result result = send({path, "--via", "obex", "--target", peer.target()});
    EXPECT_EQ(result.exitCode, 0) << result.output.toStdString();
    EXPECT_EQ(result.output, "0 sent to " + peer.target());
    EXPECT_TRUE(peer.receivedBody() == readAll(path));
    EXPECT_TRUE(peer.receivedName().endsWith(".tpl")) << peer.receivedName().toStdString();
}
