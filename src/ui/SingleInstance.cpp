#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <optional>

// A request is one line: "activate", then each argument percent-encoded after
// a blank, so blanks and line breaks inside arguments survive. The running
// copy answers "ok" once it has taken the request.
namespace {
const QByteArray kActivate = "activate";
const QByteArray kAnswer = "ok\n";
constexpr int kConnectTimeoutMs = 1000;
// Long enough for a busy first copy, short enough that a hung one does not
// keep the user waiting for a window.
constexpr int kAnswerTimeoutMs = 3000;
// Far more than any command line; a longer request is no later copy's.
constexpr qint64 kMaxRequestBytes = 1 << 20;

QByteArray request(const QStringList& arguments) {
    QByteArray line = kActivate;
    for (const QString& argument : arguments)
        line += ' ' + argument.toUtf8().toPercentEncoding();
    return line + '\n';
}

std::optional<QStringList> parsedRequest(const QByteArray& line) {
    QList<QByteArray> fields = line.chopped(1).split(' ');
    if (fields.takeFirst() != kActivate)
        return std::nullopt;
    QStringList arguments;
    for (const QByteArray& field : fields)
        arguments << QString::fromUtf8(QByteArray::fromPercentEncoding(field));
    return arguments;
}

bool waitForAnswer(QLocalSocket& socket) {
    const QDeadlineTimer deadline(kAnswerTimeoutMs);
    while (!socket.canReadLine())
        if (!socket.waitForReadyRead(int(deadline.remainingTime())))
            return false;
    return socket.readLine() == kAnswer;
}
} // namespace

SingleInstance::SingleInstance(const QString& serverName, QObject* parent)
    : QObject(parent), m_serverName(serverName) {}

bool SingleInstance::activateRunningCopy(const QStringList& arguments) {
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(kConnectTimeoutMs))
        return false;
    socket.write(request(arguments));
    return socket.waitForBytesWritten(kAnswerTimeoutMs) && waitForAnswer(socket);
}

bool SingleInstance::listen() {
    // Checked first: Qt puts a socket with access options in place by renaming
    // it over any file of that name, a live copy's socket included.
    if (someoneAnswers())
        return refuseListening(
            QStringLiteral("another copy already answers on %1").arg(m_serverName));
    delete m_server;
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(m_serverName) && !listenOverStaleSocket())
        return refuseListening(m_server->errorString());
    m_error.clear();
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::answerConnection);
    return true;
}

// Nobody answered on the socket just now, so a file in the way was left by a
// copy that crashed.
bool SingleInstance::listenOverStaleSocket() {
    if (m_server->serverError() != QAbstractSocket::AddressInUseError)
        return false;
    QLocalServer::removeServer(m_serverName);
    return m_server->listen(m_serverName);
}

bool SingleInstance::refuseListening(const QString& why) {
    m_error = why;
    return false;
}

bool SingleInstance::someoneAnswers() const {
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    return socket.waitForConnected(kConnectTimeoutMs);
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
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readRequest(socket); });
    }
}

void SingleInstance::readRequest(QLocalSocket* socket) {
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > kMaxRequestBytes)
            socket->abort();
        return;
    }
    const std::optional<QStringList> arguments = parsedRequest(socket->readLine());
    if (!arguments) {
        socket->abort();
        return;
    }
    socket->write(kAnswer);
    socket->flush();
    qInfo("Another copy was started; this one comes forward instead.");
    emit activationRequested();
    emit commandLineReceived(*arguments);
}
