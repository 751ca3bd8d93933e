#include "ProgramRun.h"
#include "RawObexPeer.h"
#include "TempDataHome.h"
#include "TransferTestSupport.h"

#include <QDir>
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

TEST_F(SendCommandTest, AMessageGoesAsTheTemplateOrPackageThePhoneReadsNeverAsItself) {
    const QString message = dataFile("Holiday.mms");
    ASSERT_EQ(
        runProgram(cliProgram(), {"new", message, "--slide", "1500", "--slide-text", "Hi"}).code,
        0);
    RawObexPeer peer(RawObexPeer::Behaviour::Accept);
    Result result = send({message, "--via", "obex", "--target", peer.target()});
    ASSERT_EQ(result.exitCode, 0) << result.output.toStdString();
    EXPECT_EQ(peer.receivedName(), "mms.tpl");
    // GNU tar reads what arrived as the template with its texts index.
    const QString arrived = dataFile("arrived.tpl");
    writeFile(arrived, peer.receivedBody());
    const ProgramRun listed = runProgram("tar", {"tf", arrived});
    EXPECT_TRUE(listed.out.contains("texts.xml")) << listed.out.toStdString();

    // A phone the settings name as one that installs packages gets the package.
    ASSERT_EQ(runProgram(cliProgram(), {"settings", "set", "preferences", "SisDownloadDeviceId",
                                        "Zentor;" + peer.target()})
                  .code,
              0);
    result = send({message, "--via", "obex", "--target", peer.target()});
    ASSERT_EQ(result.exitCode, 0) << result.output.toStdString();
    EXPECT_EQ(peer.receivedName(), "mms.SIS");
    EXPECT_FALSE(peer.receivedBody().startsWith("\x1f\x8b")) << "not the message file";
    // Nothing was made beside the message.
    EXPECT_EQ(QDir(dataFile("")).entryList({"mms.*"}, QDir::Files), QStringList());
}

TEST_F(SendCommandTest, RefusalsGarbageAndBadTargetsAreToldApart) {
    const QString file = messageFile();
    RawObexPeer forbidding({RawObexPeer::Behaviour::RefuseConnect, 0x2000, 0xC3});
    Result result = send({file, "--via", "obex", "--target", forbidding.target()});
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_TRUE(result.output.contains("refused the connection: Forbidden"))
        << result.output.toStdString();

    RawObexPeer talkingNonsense(RawObexPeer::Behaviour::GarbageForConnect);
    result = send({file, "--via", "obex", "--target", talkingNonsense.target()});
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_TRUE(result.output.contains("not OBEX")) << result.output.toStdString();

    const ProgramRun bad = runProgram(
        cliProgram(), {"send", file, "--via", "obex", "--target", "tcp:127.0.0.1:650:extra"});
    EXPECT_EQ(bad.code, 4);
    EXPECT_TRUE(bad.err.contains("tcp:127.0.0.1:650:extra")) << bad.err.toStdString();
    EXPECT_FALSE(bad.err.contains("not available on this computer")) << bad.err.toStdString();
}
