#include "RawObexPeer.h"
#include "TransferOptions.h"
#include "TransferTestSupport.h"
#include "clsMMSCommunication.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

namespace {
// The smallest packet an OBEX peer may announce.
constexpr std::uint16_t kSmallestPacket = 255;
constexpr int kAnswerTimeMs = 3000;
// Far past the answer time limit: a send still running then would run for ever.
constexpr int kGuardMs = kAnswerTimeMs + 20000;

// About 150 characters: in UTF-16 the name alone is larger than a 255-byte packet.
QString longName() {
    return QStringLiteral(
        "Greetings from the summer holiday at the lake with the whole family, "
        "the dog, the neighbours, the grandparents, the cousins and everyone else we met.tpl");
}
} // namespace

// Every way an OBEX push can end, from a peer of the test's own, through the
// real OBEX adapter and connection object.
class ObexSessionEndTest : public ::testing::Test {
protected:
    struct Outcome {
        int code = -1;
        QString failure;
        bool busy = true;
        bool guardFired = false;
    };

    QString writeFile(const QString& name, const QByteArray& bytes) {
        return writeFileIn(m_dir.path(), name, bytes);
    }

    // Sends one file to the peer. A send that has not ended when the guard
    // runs out is ended by switching the kind off, and reported.
    Outcome push(const RawObexPeer& peer, const QString& path) {
        TransferOptions options;
        options.obexTarget = peer.target();
        options.connectTimeoutMs = 3000;
        options.responseTimeoutMs = kAnswerTimeMs;
        options.probeIntervalMs = 600000;
        clsMMSCommunication connection(clsMMSCommunication::adapters(options));
        Outcome outcome;
        if (connection.Initialize(2) != 2 || !connection.waitForConnectionKnown(10000) ||
            !connection.isConnected()) {
            ADD_FAILURE() << "the peer was not found";
            return outcome;
        }
        QTimer guard;
        guard.setSingleShot(true);
        QObject::connect(&guard, &QTimer::timeout, [&] {
            outcome.guardFired = true;
            connection.Initialize(0);
        });
        guard.start(kGuardMs);
        outcome.code = connection.SendFile(path);
        outcome.failure = connection.lastFailure();
        outcome.busy = connection.isBusy();
        return outcome;
    }

    // The send ended with a failed Progress, on its own and for the given reason.
    static void expectFailure(const Outcome& outcome, const QString& reason) {
        EXPECT_FALSE(outcome.guardFired) << "the send never ended";
        EXPECT_EQ(outcome.code, clsMMSCommunication::kFailed);
        EXPECT_FALSE(outcome.busy) << "a failed Progress ends the send";
        EXPECT_TRUE(outcome.failure.contains(reason, Qt::CaseInsensitive))
            << outcome.failure.toStdString();
    }

    QTemporaryDir m_dir;
};

TEST_F(ObexSessionEndTest, ANameTooLongForTheSmallestPacketIsShortenedAndTheFileArrives) {
    RawObexPeer peer({RawObexPeer::Behaviour::Accept, kSmallestPacket});
    const QByteArray bytes = patternBytes(5000);
    const Outcome outcome = push(peer, writeFile(longName(), bytes));
    ASSERT_FALSE(outcome.guardFired) << "the send never ended";
    ASSERT_EQ(outcome.code, clsMMSCommunication::kSent) << outcome.failure.toStdString();

    EXPECT_TRUE(peer.receivedWhole());
    EXPECT_TRUE(peer.receivedBody() == bytes) << "the peer's copy differs";
    EXPECT_LE(peer.largestPacket(), kSmallestPacket);
    const QString name = peer.receivedName();
    EXPECT_LT(name.size(), longName().size());
    EXPECT_GT(name.size(), 40) << "as much of the name as fits is kept";
    EXPECT_TRUE(name.endsWith(".tpl")) << name.toStdString();
    EXPECT_TRUE(longName().startsWith(name.chopped(4))) << name.toStdString();
}

TEST_F(ObexSessionEndTest, ANameThatFitsIsSentUnchangedInSmallPackets) {
    RawObexPeer peer({RawObexPeer::Behaviour::Accept, kSmallestPacket});
    const QByteArray bytes = patternBytes(3000);
    const Outcome outcome = push(peer, writeFile("Holiday message.tpl", bytes));
    ASSERT_EQ(outcome.code, clsMMSCommunication::kSent) << outcome.failure.toStdString();
    EXPECT_EQ(peer.receivedName(), "Holiday message.tpl");
    EXPECT_TRUE(peer.receivedBody() == bytes);
    EXPECT_LE(peer.largestPacket(), kSmallestPacket);
}

TEST_F(ObexSessionEndTest, ARefusedConnectionFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::RefuseConnect, kSmallestPacket, 0xC3});
    expectFailure(push(peer, writeFile("a.tpl", "abc")), "refused the connection: Forbidden");
}

TEST_F(ObexSessionEndTest, ABareRefusalOfTheConnectionFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::RefuseConnectBriefly, kSmallestPacket, 0xC3});
    expectFailure(push(peer, writeFile("a.tpl", "abc")), "refused the connection: Forbidden");
}

TEST_F(ObexSessionEndTest, ARefusedFileFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::RefusePut, kSmallestPacket, 0xCD});
    expectFailure(push(peer, writeFile(longName(), patternBytes(5000))), "refused the file");
}

TEST_F(ObexSessionEndTest, AResetDuringThePutFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::ResetDuringPut, kSmallestPacket});
    expectFailure(push(peer, writeFile(longName(), patternBytes(5000))), "connection");
}

TEST_F(ObexSessionEndTest, AHangUpDuringThePutFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::HangUpDuringPut, kSmallestPacket});
    expectFailure(push(peer, writeFile(longName(), patternBytes(5000))), "connection");
}

TEST_F(ObexSessionEndTest, GarbageForAnAnswerToTheConnectionFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::GarbageForConnect, kSmallestPacket});
    expectFailure(push(peer, writeFile("a.tpl", "abc")), "not OBEX");
}

TEST_F(ObexSessionEndTest, AnAnswerShorterThanItsOwnHeaderFailsTheSend) {
    RawObexPeer::Setup setup{RawObexPeer::Behaviour::GarbageDuringPut, kSmallestPacket};
    // Success, with a length that does not even cover the code and the length.
    setup.garbage = QByteArray("\xA0\x00\x00", 3);
    RawObexPeer peer(setup);
    expectFailure(push(peer, writeFile(longName(), patternBytes(5000))), "not OBEX");
}

TEST_F(ObexSessionEndTest, APeerFallingSilentAfterTheConnectionFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::SilentAfterConnect, kSmallestPacket});
    expectFailure(push(peer, writeFile(longName(), patternBytes(5000))), "did not answer");
}

TEST_F(ObexSessionEndTest, AnAnswerThatNeverCompletesFailsTheSend) {
    // A byte now and then is no answer: the time limit still runs.
    RawObexPeer peer({RawObexPeer::Behaviour::DribbleDuringPut, kSmallestPacket});
    expectFailure(push(peer, writeFile("a.tpl", patternBytes(1000))), "did not answer");
}

TEST_F(ObexSessionEndTest, APeerThatNeverLetsThePutEndFailsTheSend) {
    RawObexPeer peer({RawObexPeer::Behaviour::ContinueForever, kSmallestPacket});
    expectFailure(push(peer, writeFile("a.tpl", patternBytes(1000))), "round in circles");
}

TEST_F(ObexSessionEndTest, PacketsTooSmallForAnyNameFailTheSendAndSaySo) {
    // Below what OBEX allows, yet announced: not even a one-letter name fits.
    RawObexPeer peer({RawObexPeer::Behaviour::Accept, 16});
    expectFailure(push(peer, writeFile("a.tpl", "abc")), "packets of only 16 bytes");
}
