#pragma once

#include <QObject>
#include <QString>

class QLocalServer;

// Keeps one copy of the program per user and data folder. The first copy
// listens on a local socket; a later copy asks it to come forward and exits.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& serverName, QObject* parent = nullptr);

    // True when a running copy answered and was asked to come forward.
    bool activateRunningCopy();
    // Starts answering later copies; false when the socket cannot be made.
    bool listen();

    // The socket name for the current user and the given data folder, so that
    // copies with different data folders (tests, for one) do not meet.
    static QString serverNameFor(const QString& dataFolder);

signals:
    void activationRequested();

private:
    void answerConnection();

    QString m_serverName;
    QLocalServer* m_server = nullptr;
};
