#include "ObexTarget.h"
#include "RawObexPeer.h"
#include "TransferOptions.h"
#include "TransferTestSupport.h"
#include "clsMMSCommunication.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
TransferOptions optionsFor(const QString& target) {
    TransferOptions options;
    options.obexTarget = target;
    options.connectTimeoutMs = 3000;
    options.responseTimeoutMs = 3000;
    // One look at start-up is all these tests want.
    options.probeIntervalMs = 600000;
    return options;
}
} // namespace

class ObexAdapterTest : public ::testing::Test {
protected:
    QString writeFile(const QString& name, const QByteArray& bytes) {
        return writeFileIn(m_dir.path(), name, bytes);
    }

    // Sets the connection up for OBEX and waits for the first look at the phone.
    std::unique_ptr<clsMMSCommunication> connectTo(const TransferOptions& options) {
        auto connection =
            std::make_unique<clsMMSCommunication>(clsMMSCommunication::adapters(options));
        EXPECT_EQ(connection->Initialize(2), 2);
        EXPECT_TRUE(connection->waitForConnectionKnown(10000));
        return connection;
    }

    QTemporaryDir m_dir;
};

TEST_F(ObexAdapterTest, APushArrivesWholeAtARealServer) {
    ObexTestServer server;
    if (const QString skip = startPrivateObexServer(server); !skip.isEmpty())
        GTEST_SKIP() << skip.toStdString();

    // Several packets and several body pieces, so the stream and its last
    // (End-of-Body) piece are both exercised.
    const QByteArray bytes = patternBytes(150000);
    const QString path = writeFile("Holiday message.tpl", bytes);
    auto connection = connectTo(optionsFor("tcp:127.0.0.1:650"));
    ASSERT_TRUE(connection->isConnected()) << server.log().toStdString();
    EXPECT_EQ(connection->deviceName(), "tcp:127.0.0.1:650");

    EXPECT_EQ(connection->SendFile(path), 0) << connection->lastFailure().toStdString();
    const QByteArray received = readAll(server.folder() + "/Holiday message.tpl");
    EXPECT_EQ(received.size(), bytes.size()) << server.log().toStdString();
    EXPECT_TRUE(received == bytes) << "the server's copy differs";
}

TEST_F(ObexAdapterTest, NoServerListeningMeansNoPhone) {
    auto connection = connectTo(optionsFor(QStringLiteral("tcp:127.0.0.1:%1").arg(closedPort())));
    EXPECT_FALSE(connection->isConnected());
    EXPECT_EQ(connection->SendFile(writeFile("a.tpl", "abc")), 3);
}

TEST_F(ObexAdapterTest, AServerHangingUpDuringThePutFailsTheSend) {
    RawObexPeer peer(RawObexPeer::Behaviour::HangUpDuringPut);
    auto connection = connectTo(optionsFor(peer.target()));
    ASSERT_TRUE(connection->isConnected());
    // Far more than one packet: writes go on after the hang-up.
    EXPECT_EQ(connection->SendFile(writeFile("big.tpl", patternBytes(400000))), 4);
    EXPECT_FALSE(connection->lastFailure().isEmpty());
    EXPECT_FALSE(connection->isBusy());
}

TEST_F(ObexAdapterTest, ASilentServerFailsTheSendAfterTheAnswerTimeLimit) {
    RawObexPeer peer(RawObexPeer::Behaviour::Silent);
    TransferOptions options = optionsFor(peer.target());
    options.responseTimeoutMs = 300;
    auto connection = connectTo(options);
    ASSERT_TRUE(connection->isConnected());
    EXPECT_EQ(connection->SendFile(writeFile("a.tpl", "abc")), 4);
    EXPECT_TRUE(connection->lastFailure().contains("did not answer"))
        << connection->lastFailure().toStdString();
}

TEST_F(ObexAdapterTest, AMissingFileIsRefusedAndTheConnectionStaysBusy) {
    RawObexPeer peer(RawObexPeer::Behaviour::Silent);
    auto connection = connectTo(optionsFor(peer.target()));
    ASSERT_TRUE(connection->isConnected());
    const QString missing = m_dir.filePath("missing.tpl");
    EXPECT_EQ(connection->SendFile(missing), 4);
    EXPECT_TRUE(connection->lastFailure().contains(missing));
    EXPECT_EQ(connection->SendFile(missing), 2) << "busy stays set after a refusal";
}

TEST_F(ObexAdapterTest, ATargetThatCannotBeUnderstoodCannotBeCreated) {
    clsMMSCommunication connection(clsMMSCommunication::adapters(optionsFor("usb:phone")));
    EXPECT_EQ(connection.Initialize(2), 0);
}

TEST_F(ObexAdapterTest, AnUnreachableBluetoothPhoneIsNotConnected) {
    TransferOptions options = optionsFor("bt:00:00:00:00:00:00:9");
    options.connectTimeoutMs = 1000;
    auto connection = connectTo(options);
    EXPECT_FALSE(connection->isConnected());
    EXPECT_EQ(connection->SendFile(writeFile("a.tpl", "abc")), 3);
}

TEST(ObexTargetText, TcpAndBluetoothTargetsAreReadAndNonsenseIsNamed) {
    const ObexTarget tcp = ObexTarget::parse(" tcp:phone.local:650 ");
    EXPECT_EQ(tcp.kind, ObexTarget::Kind::Tcp);
    EXPECT_EQ(tcp.host, "phone.local");
    EXPECT_EQ(tcp.port, 650);
    EXPECT_EQ(ObexTarget::parse("tcp:[::1]:6500").host, "::1");

    const ObexTarget bt = ObexTarget::parse("bt:00:1A:7d:DA:71:13:12");
    EXPECT_EQ(bt.kind, ObexTarget::Kind::Bluetooth);
    EXPECT_EQ(bt.address, (std::array<std::uint8_t, 6>{0x00, 0x1A, 0x7D, 0xDA, 0x71, 0x13}));
    EXPECT_EQ(bt.channel, 12);

    for (const char* bad : {"", "tcp:", "tcp:host", "tcp::650", "tcp:host:0", "tcp:host:70000",
                            "tcp:my host:650", "bt:00:1A:7D:DA:71:13", "bt:00:1A:7D:DA:71:1:3",
                            "bt:00:1A:7D:DA:71:GG:3", "bt:00:1A:7D:DA:71:13:31", "irda:x"}) {
        const ObexTarget target = ObexTarget::parse(bad);
        EXPECT_FALSE(target.isValid()) << bad;
        EXPECT_TRUE(target.error.contains(bad)) << target.error.toStdString();
    }
}
