#pragma once

#include "ObexTarget.h"

#include <QObject>
#include <QTimer>

class QSocketNotifier;

// Opens a non-blocking stream connection to an OBEX target (TCP or Bluetooth
// RFCOMM) without ever blocking the window: the outcome arrives as a signal,
// at the latest when the time limit runs out.
class SocketConnector : public QObject {
    Q_OBJECT
public:
    explicit SocketConnector(QObject* parent = nullptr);
    // Closes a connection nobody took.
    ~SocketConnector() override;

    // finished() follows exactly once, always from the event loop.
    void start(const ObexTarget& target, int timeoutMs);
    // The connected socket, from now on the caller's to close; -1 when none.
    int takeDescriptor();
    // Closes the connection now rather than when this object goes.
    void close();

signals:
    void finished(bool connected, const QString& reason);

private:
    bool openTcp(const ObexTarget& target, QString& reason);
    bool openBluetooth(const ObexTarget& target, QString& reason);
    bool beginConnect(int family, int protocol, const void* address, unsigned length,
                      QString& reason);
    void onWritable();
    void finish(bool connected, const QString& reason);
    void finishLater(bool connected, const QString& reason);

    int m_fd = -1;
    bool m_done = true;
    QString m_where;
    QSocketNotifier* m_notifier = nullptr;
    QTimer m_timeout;
};
