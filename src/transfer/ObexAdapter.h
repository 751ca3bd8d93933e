#pragma once

#include "ConnectionAdapter.h"
#include "ObexTarget.h"
#include "TransferOptions.h"

#include <QTimer>

class ObexPushSession;
class SocketConnector;

// The OBEX kind: pushes files with OBEX Object Push to one target from the
// settings. Whether a phone is there is found by opening a connection to the
// target now and then; the target text is the device text. A probe's
// connection is kept for a moment and carries a send that follows at once:
// many phones serve one connection at a time and are still busy with the
// probe's hang-up when a second connect arrives.
class ObexAdapter : public ConnectionAdapter {
    Q_OBJECT
public:
    // The target must be valid (see ObexTarget::parse).
    ObexAdapter(const ObexTarget& target, const TransferOptions& options,
                QObject* parent = nullptr);
    ~ObexAdapter() override;

    void StartMonitoring() override;
    bool SendFile(const QString& path) override;
    bool connectionKnown() const override { return m_known; }

private:
    void probe();
    void onProbed(bool reachable, const QString& reason);
    void setConnected(bool connected);
    void keepSpare(int socket);
    void dropSpare();
    int takeLiveSpare();
    void onSocketReady(bool connected, const QString& reason);
    void startSession(int socket);
    void onPushFinished(bool succeeded, const QString& reason);
    bool transferRunning() const { return m_connector || m_session || m_handover >= 0; }

    ObexTarget m_target;
    TransferOptions m_options;
    QString m_device;
    QTimer m_probeTimer;
    SocketConnector* m_probe = nullptr;
    SocketConnector* m_connector = nullptr;
    ObexPushSession* m_session = nullptr;
    QString m_path;
    int m_spare = -1;
    QTimer m_spareTimer;
    int m_handover = -1;
    bool m_connected = false;
    bool m_known = false;
};
