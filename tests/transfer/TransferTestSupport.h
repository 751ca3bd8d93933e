#pragma once

#include "ConnectionAdapter.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <cstdint>

// Writes an executable shell script.
void writeScript(const QString& path, const QByteArray& body);
QByteArray readAll(const QString& path);
// Writes bytes as folder/name and returns that path.
QString writeFileIn(const QString& folder, const QString& name, const QByteArray& bytes);
// Bytes that do not repeat, so a shifted or dropped piece shows.
QByteArray patternBytes(int size);
// A loopback port nothing listens on.
std::uint16_t closedPort();

// Moves this thread (and every program it starts) into a network namespace
// of its own with only loopback up, so a test server on a fixed port meets
// nobody else. Needs root; returns why it could not when it fails.
QString enterPrivateNetwork();

// openobex-apps' interactive test program as an OBEX server on TCP port 650,
// receiving pushed files into its own folder. It serves one OBEX session.
class ObexTestServer {
public:
    ObexTestServer();
    ~ObexTestServer();
    // Empty when listening, else why not.
    QString start();
    QString folder() const { return m_folder.path(); }
    // What it printed so far.
    QString log();

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QByteArray m_output;
};

// Enters a private network and starts the server there. Returns why the test
// cannot run here (no root, the server program not installed), or "" when the
// server listens; any other trouble is recorded as a failure and returned too.
QString startPrivateObexServer(ObexTestServer& server);

// An adapter the test drives by hand: for the rules of the connection object
// that no real component can be made to show on demand.
class FakeAdapter : public ConnectionAdapter {
    Q_OBJECT
public:
    void StartMonitoring() override { ++monitoringStarts; }
    bool SendFile(const QString& path) override;
    void setCommandLine(const QString& line) override { commandLine = line; }
    bool connectionKnown() const override { return true; }

    void reportConnect(bool connected, const QString& device, int value = 0) {
        emit Connect(connected, value, device);
    }
    void reportProgress(int status) { emit Progress(status, QStringLiteral("status from test")); }

    bool accepts = true;
    int monitoringStarts = 0;
    QStringList sent;
    QString commandLine;
};
