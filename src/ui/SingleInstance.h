#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class QLocalServer;
class QLocalSocket;

// Keeps one copy of the program per user and data folder. The first copy
// listens on a local socket; a later copy hands it its command line, asks it
// to come forward and exits.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& serverName, QObject* parent = nullptr);

    // Hands the running copy the arguments after the program and asks it to
    // come forward. True only when it answered that it took them; a copy that
    // does not answer cannot bring up a window, so this one must.
    bool activateRunningCopy(const QStringList& arguments = {});
    // Starts answering later copies. False, with errorString() saying why,
    // when the socket cannot be made or a live copy already answers on it.
    bool listen();
    QString errorString() const { return m_error; }

    // The socket name for the current user and the given data folder, so that
    // copies with different data folders (tests, for one) do not meet.
    static QString serverNameFor(const QString& dataFolder);

signals:
    void activationRequested();
    // The arguments a later copy was started with, such as a message to open.
    void commandLineReceived(const QStringList& arguments);

private:
    bool listenOverStaleSocket();
    bool refuseListening(const QString& why);
    bool someoneAnswers() const;
    void answerConnection();
    void readRequest(QLocalSocket* socket);

    QString m_serverName;
    QLocalServer* m_server = nullptr;
    QString m_error;
};
