#include "TransferTestSupport.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStandardPaths>
#include <QThread>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

void writeScript(const QString& path, const QByteArray& body) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write("#!/bin/sh\n" + body);
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QString writeFileIn(const QString& folder, const QString& name, const QByteArray& bytes) {
    const QString path = folder + "/" + name;
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray patternBytes(int size) {
    QByteArray bytes(size, '\0');
    std::uint32_t state = 2463534242u;
    for (char& byte : bytes) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        byte = static_cast<char>(state & 0xff);
    }
    return bytes;
}

std::uint16_t closedPort() {
    const int probe = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ::bind(probe, reinterpret_cast<sockaddr*>(&address), size);
    ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    ::close(probe);
    return ntohs(address.sin_port);
}

QString enterPrivateNetwork() {
    if (::unshare(CLONE_NEWNET) != 0)
        return QStringLiteral("cannot make a private network namespace (needs root): %1")
            .arg(QString::fromLocal8Bit(std::strerror(errno)));
    const int control = ::socket(AF_INET, SOCK_DGRAM, 0);
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    const bool up = control >= 0 && ::ioctl(control, SIOCGIFFLAGS, &request) == 0 &&
                    (request.ifr_flags |= IFF_UP, ::ioctl(control, SIOCSIFFLAGS, &request) == 0);
    if (control >= 0)
        ::close(control);
    return up ? QString() : QStringLiteral("cannot bring loopback up in the namespace");
}

namespace {
constexpr int kObexPort = 650;

// Whether a socket of this thread's namespace listens on the port
// (/proc/net/tcp and tcp6 list it in hex, state 0A is LISTEN).
bool listening(int port) {
    const QByteArray local = ':' + QByteArray::number(port, 16).toUpper().rightJustified(4, '0');
    for (const char* table : {"/proc/thread-self/net/tcp", "/proc/thread-self/net/tcp6"}) {
        const QList<QByteArray> lines = readAll(table).split('\n');
        for (const QByteArray& line : lines) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            if (fields.size() > 3 && fields[1].endsWith(local) && fields[3] == "0A")
                return true;
        }
    }
    return false;
}
} // namespace

ObexTestServer::ObexTestServer() {
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

ObexTestServer::~ObexTestServer() {
    m_process.kill();
    m_process.waitForFinished(5000);
}

QString ObexTestServer::start() {
    const QString program = QStandardPaths::findExecutable("obex_test");
    if (program.isEmpty())
        return QStringLiteral("obex_test (openobex-apps) is not installed");
    m_process.setWorkingDirectory(m_folder.path());
    m_process.start(program, {"-i"});
    if (!m_process.waitForStarted(5000))
        return QStringLiteral("obex_test does not start: %1").arg(m_process.errorString());
    // "s" makes it a server; it reads commands from standard input.
    m_process.write("s\n");
    m_process.waitForBytesWritten(5000);
    const QDeadlineTimer deadline(10000);
    while (!listening(kObexPort)) {
        if (deadline.hasExpired() || m_process.state() != QProcess::Running)
            return QStringLiteral("obex_test does not listen on port 650:\n%1").arg(log());
        QThread::msleep(20);
    }
    return QString();
}

QString ObexTestServer::log() {
    m_process.waitForReadyRead(0);
    m_output += m_process.readAll();
    return QString::fromLocal8Bit(m_output);
}

bool FakeAdapter::SendFile(const QString& path) {
    sent << path;
    if (!accepts)
        setLastError(QStringLiteral("refused by the test"));
    return accepts;
}

QString startPrivateObexServer(ObexTestServer& server) {
    const QString unavailable = enterPrivateNetwork();
    if (!unavailable.isEmpty())
        return unavailable;
    const QString problem = server.start();
    if (!problem.isEmpty() && !problem.contains("not installed"))
        ADD_FAILURE() << problem.toStdString();
    return problem;
}
