#include "ObexAdapter.h"

#include "ObexPushSession.h"
#include "SocketConnector.h"

#include <QFileInfo>

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace {
// How long a probe's connection waits for a send before it is closed.
constexpr int kSpareKeepMs = 2000;
} // namespace

ObexAdapter::ObexAdapter(const ObexTarget& target, const TransferOptions& options, QObject* parent)
    : ConnectionAdapter(parent), m_target(target), m_options(options),
      m_device(options.obexTarget.trimmed()) {
    m_probeTimer.setInterval(options.probeIntervalMs);
    connect(&m_probeTimer, &QTimer::timeout, this, &ObexAdapter::probe);
    m_spareTimer.setSingleShot(true);
    m_spareTimer.setInterval(kSpareKeepMs);
    connect(&m_spareTimer, &QTimer::timeout, this, &ObexAdapter::dropSpare);
}

ObexAdapter::~ObexAdapter() {
    dropSpare();
    if (m_handover >= 0)
        ::close(m_handover);
}

void ObexAdapter::StartMonitoring() {
    probe();
    m_probeTimer.start();
}

void ObexAdapter::probe() {
    // A running push answers the question itself; a probe would only
    // compete with it for the phone's attention.
    if (m_probe || transferRunning() || m_spare >= 0)
        return;
    m_probe = new SocketConnector(this);
    connect(m_probe, &SocketConnector::finished, this, &ObexAdapter::onProbed);
    m_probe->start(m_target, m_options.connectTimeoutMs);
}

void ObexAdapter::onProbed(bool reachable, const QString& reason) {
    if (reachable)
        keepSpare(m_probe->takeDescriptor());
    else if (m_connected || !m_known)
        // Said once when the phone goes, not at every look.
        setLastError(QStringLiteral("no phone at %1: %2").arg(m_device, reason));
    m_probe->deleteLater();
    m_probe = nullptr;
    m_known = true;
    setConnected(reachable);
}

void ObexAdapter::setConnected(bool connected) {
    if (connected == m_connected)
        return;
    m_connected = connected;
    emit Connect(connected, 0, m_device);
}

void ObexAdapter::keepSpare(int socket) {
    dropSpare();
    m_spare = socket;
    m_spareTimer.start();
}

void ObexAdapter::dropSpare() {
    m_spareTimer.stop();
    if (m_spare >= 0)
        ::close(m_spare);
    m_spare = -1;
}

// The kept connection, unless the phone has hung up on it meanwhile.
int ObexAdapter::takeLiveSpare() {
    const int socket = m_spare;
    m_spare = -1;
    m_spareTimer.stop();
    if (socket < 0)
        return -1;
    char byte;
    const ssize_t peeked = ::recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (peeked < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
        return socket;
    ::close(socket);
    return -1;
}

bool ObexAdapter::SendFile(const QString& path) {
    if (transferRunning()) {
        setLastError(QStringLiteral("an OBEX push is already running"));
        return false;
    }
    if (!QFileInfo(path).isFile()) {
        setLastError(QStringLiteral("no file to send: %1").arg(path));
        return false;
    }
    m_path = path;
    const int spare = takeLiveSpare();
    if (spare >= 0) {
        // Started from the event loop like a fresh connection, so the
        // caller always hears the outcome after SendFile has answered.
        m_handover = spare;
        QMetaObject::invokeMethod(
            this,
            [this] {
                const int socket = m_handover;
                m_handover = -1;
                startSession(socket);
            },
            Qt::QueuedConnection);
        return true;
    }
    m_connector = new SocketConnector(this);
    connect(m_connector, &SocketConnector::finished, this, &ObexAdapter::onSocketReady);
    m_connector->start(m_target, m_options.connectTimeoutMs);
    return true;
}

void ObexAdapter::onSocketReady(bool connected, const QString& reason) {
    const int socket = m_connector->takeDescriptor();
    m_connector->deleteLater();
    m_connector = nullptr;
    if (!connected) {
        setConnected(false);
        finishTransfer(false, reason);
        return;
    }
    startSession(socket);
}

void ObexAdapter::startSession(int socket) {
    m_session = new ObexPushSession(socket, m_options.responseTimeoutMs, this);
    QString why;
    if (!m_session->start(m_path, why)) {
        delete m_session;
        m_session = nullptr;
        finishTransfer(false, why);
        return;
    }
    connect(m_session, &ObexPushSession::finished, this, &ObexAdapter::onPushFinished);
}

void ObexAdapter::onPushFinished(bool succeeded, const QString& reason) {
    m_session->deleteLater();
    m_session = nullptr;
    finishTransfer(succeeded, reason);
}
