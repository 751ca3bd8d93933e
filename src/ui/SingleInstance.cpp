#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QLocalServer>
#include <QLocalSocket>

namespace {
const QByteArray kActivate = "activate\n";
constexpr int kConnectTimeoutMs = 1000;
} // namespace

SingleInstance::SingleInstance(const QString& serverName, QObject* parent)
    : QObject(parent), m_serverName(serverName) {}

bool SingleInstance::activateRunningCopy() {
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(kConnectTimeoutMs))
        return false;
    socket.write(kActivate);
    socket.waitForBytesWritten(kConnectTimeoutMs);
    // The answer tells us the running copy took the request before we go.
    socket.waitForReadyRead(kConnectTimeoutMs);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen() {
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(m_serverName)) {
        // A copy that crashed leaves its socket file behind.
        QLocalServer::removeServer(m_serverName);
        if (!m_server->listen(m_serverName))
            return false;
    }
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::answerConnection);
    return true;
}

QString SingleInstance::serverNameFor(const QString& dataFolder) {
    const QByteArray user = qgetenv("USER");
    const QByteArray folderHash =
        QCryptographicHash::hash(dataFolder.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
    return QStringLiteral("vellumo-%1-%2").arg(QString::fromLocal8Bit(user), folderHash);
}

void SingleInstance::answerConnection() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->readAll().contains(kActivate.trimmed()))
                return;
            socket->write("ok\n");
            qInfo("Another copy was started; this one comes forward instead.");
            emit activationRequested();
        });
    }
}
