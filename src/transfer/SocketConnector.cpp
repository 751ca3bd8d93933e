#include "SocketConnector.h"

#include <QSocketNotifier>

#include <bluetooth/bluetooth.h>
#include <bluetooth/rfcomm.h>
#include <cerrno>
#include <cstring>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
QString systemError(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}
} // namespace

SocketConnector::SocketConnector(QObject* parent) : QObject(parent) {
    m_timeout.setSingleShot(true);
    connect(&m_timeout, &QTimer::timeout, this, [this] {
        finish(false, QStringLiteral("no connection to %1 within %2 ms")
                          .arg(m_where)
                          .arg(m_timeout.interval()));
    });
}

SocketConnector::~SocketConnector() {
    close();
}

void SocketConnector::start(const ObexTarget& target, int timeoutMs) {
    close();
    m_done = false;
    QString reason;
    bool started = false;
    if (target.kind == ObexTarget::Kind::Tcp)
        started = openTcp(target, reason);
    else if (target.kind == ObexTarget::Kind::Bluetooth)
        started = openBluetooth(target, reason);
    else
        reason = target.error;
    if (!started) {
        finishLater(false, reason);
        return;
    }
    m_timeout.start(timeoutMs);
}

bool SocketConnector::openTcp(const ObexTarget& target, QString& reason) {
    m_where = QStringLiteral("%1 port %2").arg(target.host).arg(target.port);
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const int status = getaddrinfo(target.host.toUtf8().constData(),
                                   QByteArray::number(target.port).constData(), &hints, &found);
    if (status != 0) {
        reason = QStringLiteral("cannot find %1: %2").arg(target.host, gai_strerror(status));
        return false;
    }
    const bool started = beginConnect(found->ai_family, found->ai_protocol, found->ai_addr,
                                      found->ai_addrlen, reason);
    freeaddrinfo(found);
    return started;
}

bool SocketConnector::openBluetooth(const ObexTarget& target, QString& reason) {
    m_where = QStringLiteral("Bluetooth channel %1").arg(target.channel);
    sockaddr_rc address{};
    address.rc_family = AF_BLUETOOTH;
    // The stack keeps device addresses least significant byte first.
    for (size_t i = 0; i < target.address.size(); ++i)
        address.rc_bdaddr.b[i] = target.address[target.address.size() - 1 - i];
    address.rc_channel = target.channel;
    return beginConnect(AF_BLUETOOTH, BTPROTO_RFCOMM, &address, sizeof address, reason);
}

bool SocketConnector::beginConnect(int family, int protocol, const void* address, unsigned length,
                                   QString& reason) {
    m_fd = ::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, protocol);
    if (m_fd < 0) {
        reason = QStringLiteral("cannot open a socket for %1: %2").arg(m_where, systemError(errno));
        return false;
    }
    if (::connect(m_fd, static_cast<const sockaddr*>(address), length) == 0) {
        finishLater(true, QString());
        return true;
    }
    if (errno != EINPROGRESS) {
        reason = QStringLiteral("cannot connect to %1: %2").arg(m_where, systemError(errno));
        return false;
    }
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Write, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SocketConnector::onWritable);
    return true;
}

void SocketConnector::onWritable() {
    int error = 0;
    socklen_t size = sizeof error;
    if (::getsockopt(m_fd, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
        error = errno;
    if (error == 0)
        finish(true, QString());
    else
        finish(false, QStringLiteral("cannot connect to %1: %2").arg(m_where, systemError(error)));
}

void SocketConnector::finishLater(bool connected, const QString& reason) {
    QMetaObject::invokeMethod(
        this, [this, connected, reason] { finish(connected, reason); }, Qt::QueuedConnection);
}

void SocketConnector::finish(bool connected, const QString& reason) {
    if (m_done)
        return;
    m_done = true;
    m_timeout.stop();
    delete m_notifier;
    m_notifier = nullptr;
    if (!connected)
        close();
    emit finished(connected, reason);
}

int SocketConnector::takeDescriptor() {
    const int fd = m_fd;
    m_fd = -1;
    return fd;
}

void SocketConnector::close() {
    delete m_notifier;
    m_notifier = nullptr;
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}
