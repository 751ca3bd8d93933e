#include "TransferTestSupport.h"
#include "clsMMSCommunication.h"

#include <QPointer>
#include <QTimer>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace {
struct ConnectReport {
    bool connected;
    int value;
    QString device;
    bool operator==(const ConnectReport&) const = default;
};
} // namespace

// The connection object's rules, driven through an adapter the test controls.
class CommunicationTest : public ::testing::Test {
protected:
    CommunicationTest()
        : m_connection([this](std::int32_t kind) -> std::unique_ptr<ConnectionAdapter> {
              if (m_unavailable.count(kind))
                  return nullptr;
              auto adapter = std::make_unique<FakeAdapter>();
              m_made[kind] = adapter.get();
              return adapter;
          }) {
        QObject::connect(&m_connection, &clsMMSCommunication::Connect,
                         [this](bool connected, std::int32_t value, const QString& device) {
                             m_reports.push_back({connected, value, device});
                         });
    }

    FakeAdapter* connectedAdapter(std::int32_t kind = 2) {
        EXPECT_EQ(m_connection.Initialize(kind), kind);
        FakeAdapter* adapter = m_made[kind];
        adapter->reportConnect(true, "Phone");
        return adapter;
    }

    clsMMSCommunication m_connection;
    std::map<std::int32_t, QPointer<FakeAdapter>> m_made;
    std::set<std::int32_t> m_unavailable;
    std::vector<ConnectReport> m_reports;
};

TEST_F(CommunicationTest, InitializeKeepsOnlyTheMonitorOfTheChosenKind) {
    EXPECT_EQ(m_connection.Initialize(1), 1);
    ASSERT_TRUE(m_made[1]);
    EXPECT_EQ(m_made[1]->monitoringStarts, 1);

    EXPECT_EQ(m_connection.Initialize(3), 3);
    EXPECT_FALSE(m_made[1]) << "the infrared monitor is released";
    ASSERT_TRUE(m_made[3]);

    EXPECT_EQ(m_connection.Initialize(0), 0);
    EXPECT_FALSE(m_made[3]);
    EXPECT_EQ(m_connection.Initialize(9), 0);
    EXPECT_EQ(m_connection.activeKind(), 0);

    m_unavailable.insert(2);
    EXPECT_EQ(m_connection.Initialize(2), 0) << "a kind that cannot be created";
}

TEST_F(CommunicationTest, CommandLineGoesToTheInfraredMonitorOnly) {
    m_connection.SetIrDaCommandline("ignored without a monitor");
    m_connection.Initialize(2);
    m_connection.SetIrDaCommandline("not for OBEX");
    EXPECT_TRUE(m_made[2]->commandLine.isEmpty());
    m_connection.Initialize(1);
    m_connection.SetIrDaCommandline("sender \"%f%\"");
    EXPECT_EQ(m_made[1]->commandLine, "sender \"%f%\"");
}

TEST_F(CommunicationTest, ConnectReportsFollowTheRulesAndAreForwarded) {
    m_connection.Initialize(2);
    FakeAdapter* adapter = m_made[2];
    adapter->reportConnect(true, "Alpha", 7);
    adapter->reportConnect(true, "Beta", 8);
    adapter->reportConnect(false, "Beta", 9);
    EXPECT_TRUE(m_connection.isConnected());
    EXPECT_EQ(m_connection.deviceName(), "Alpha");
    EXPECT_EQ(m_connection.deviceId(), "Alpha");
    adapter->reportConnect(false, "Alpha", 10);
    EXPECT_FALSE(m_connection.isConnected());
    EXPECT_EQ(m_connection.deviceName(), "");

    const std::vector<ConnectReport> expected{
        {true, 7, "Alpha"}, {true, 8, "Alpha"}, {true, 9, "Alpha"}, {false, 10, ""}};
    EXPECT_EQ(m_reports, expected);
}

TEST_F(CommunicationTest, NoPhoneMeansThree) {
    EXPECT_EQ(m_connection.SendFile("/any/file"), 3) << "kind 0, never connected";
    m_connection.Initialize(2);
    EXPECT_EQ(m_connection.SendFile("/any/file"), 3);
    EXPECT_TRUE(m_made[2]->sent.isEmpty());
    EXPECT_FALSE(m_connection.TerminateCommand());
}

TEST_F(CommunicationTest, SendFileWaitsForTheEndAndIgnoresOtherProgress) {
    FakeAdapter* adapter = connectedAdapter();
    bool returned = false;
    std::vector<bool> waitingAfter;
    // Progress 1 and 3 only say that work goes on; 2 ends the send.
    QTimer::singleShot(0, adapter, [&] {
        adapter->reportProgress(1);
        QTimer::singleShot(0, adapter, [&] {
            waitingAfter.push_back(!returned && m_connection.isBusy());
            adapter->reportProgress(3);
            QTimer::singleShot(0, adapter, [&] {
                waitingAfter.push_back(!returned && m_connection.isBusy());
                adapter->reportProgress(2);
            });
        });
    });
    EXPECT_EQ(m_connection.SendFile("/work/a.tpl"), 0);
    returned = true;
    EXPECT_EQ(waitingAfter, std::vector<bool>({true, true}));
    EXPECT_EQ(adapter->sent, QStringList{"/work/a.tpl"});
    EXPECT_FALSE(m_connection.isBusy());
}

TEST_F(CommunicationTest, ASecondSendWhileTheFirstWaitsGetsTwo) {
    FakeAdapter* adapter = connectedAdapter();
    int second = -1;
    QTimer::singleShot(0, adapter, [&] {
        second = m_connection.SendFile("/work/b.tpl");
        adapter->reportProgress(4);
    });
    EXPECT_EQ(m_connection.SendFile("/work/a.tpl"), 4) << "status 4 is a failed send";
    EXPECT_EQ(second, 2);
    EXPECT_EQ(adapter->sent.size(), 1);
    EXPECT_EQ(m_connection.lastFailure(), "status from test");
}

TEST_F(CommunicationTest, ARefusalLeavesBusySetUntilProgressEndsIt) {
    FakeAdapter* adapter = connectedAdapter();
    adapter->accepts = false;
    EXPECT_EQ(m_connection.SendFile("/work/a.tpl"), 4);
    EXPECT_EQ(m_connection.lastFailure(), "refused by the test");
    EXPECT_TRUE(m_connection.isBusy());
    EXPECT_EQ(m_connection.SendFile("/work/a.tpl"), 2);

    adapter->reportProgress(4);
    adapter->accepts = true;
    QTimer::singleShot(0, adapter, [adapter] { adapter->reportProgress(2); });
    EXPECT_EQ(m_connection.SendFile("/work/a.tpl"), 0);
}

TEST_F(CommunicationTest, ChangingTheKindDuringASendEndsTheWait) {
    connectedAdapter();
    QTimer::singleShot(0, &m_connection, [&] { m_connection.Initialize(1); });
    EXPECT_EQ(m_connection.SendFile("/work/a.tpl"), 4);
    EXPECT_FALSE(m_connection.isBusy());
}
