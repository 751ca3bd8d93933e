#pragma once

#include <QObject>
#include <QString>

// One way of handing a file to the phone. The connection object talks to
// every kind through these operations and events only.
class ConnectionAdapter : public QObject {
    Q_OBJECT
public:
    // Progress status values the connection object acts on; others only
    // tell that work goes on.
    static constexpr int kProgressWorking = 1;
    static constexpr int kProgressDone = 2;
    static constexpr int kProgressFailed = 4;

    using QObject::QObject;
    ~ConnectionAdapter() override;

    // Called once after creation; Connect follows whenever a phone comes or goes.
    virtual void StartMonitoring() = 0;
    // Answers at once whether the transfer was started; its end comes as
    // Progress 2 or 4. A refusal leaves the reason in lastError().
    virtual bool SendFile(const QString& path) = 0;
    // Only the infrared kind runs a command line; the others ignore it.
    virtual void setCommandLine(const QString& commandLine);
    // Whether the first look for a phone has finished, so a caller that has
    // just started monitoring knows the connected state is real.
    virtual bool connectionKnown() const = 0;

    QString lastError() const { return m_lastError; }

signals:
    void Connect(bool connected, int value, const QString& device);
    void Progress(int status, const QString& detail);

protected:
    // Records and logs why something failed.
    void setLastError(const QString& reason);
    // Ends a transfer with its outcome; a failure keeps its reason.
    void finishTransfer(bool succeeded, const QString& reason);

private:
    QString m_lastError;
};
