#pragma once

#include "ConnectionAdapter.h"

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

struct TransferOptions;

// The phone connection: sends one file at a time through the transfer kind
// chosen in the settings (1 infrared, 2 OBEX, 3 phone suite) and keeps track
// of whether a phone is connected.
class clsMMSCommunication : public QObject {
    Q_OBJECT
public:
    // Makes the adapter of a kind, or nullptr when that kind cannot exist here.
    using AdapterFactory = std::function<std::unique_ptr<ConnectionAdapter>(std::int32_t kind)>;

    // SendFile results.
    static constexpr int kSent = 0;
    static constexpr int kBusy = 2;
    static constexpr int kNoDevice = 3;
    static constexpr int kFailed = 4;

    // Adapters configured from the settings store.
    explicit clsMMSCommunication(QObject* parent = nullptr);
    explicit clsMMSCommunication(AdapterFactory factory, QObject* parent = nullptr);
    ~clsMMSCommunication() override;

    // The adapters this platform has, configured from options.
    static AdapterFactory adapters(const TransferOptions& options);

    std::int32_t Initialize(std::int32_t kind);
    void SetIrDaCommandline(const QString& commandLine);
    QString deviceName() const { return m_deviceName; }
    // The class keeps one device text; both names give it.
    QString deviceId() const { return m_deviceName; }
    // Waits, letting events run, until the transfer ends.
    int SendFile(const QString& path);
    // A running transfer cannot be cancelled.
    bool TerminateCommand() { return false; }

    std::int32_t activeKind() const { return m_activeKind; }
    bool isConnected() const { return m_connected; }
    bool isBusy() const { return m_busy; }
    // Why the last send failed, for the log and a status line.
    QString lastFailure() const { return m_lastFailure; }
    // Lets events run until the active adapter has looked for a phone once,
    // for callers that send right after Initialize. False on time-out or
    // when no kind is active.
    bool waitForConnectionKnown(int timeoutMs);

signals:
    void Connect(bool connected, std::int32_t value, const QString& device);

private:
    void releaseMonitor(std::unique_ptr<ConnectionAdapter>& monitor);
    bool createMonitor(std::unique_ptr<ConnectionAdapter>& monitor, std::int32_t kind);
    ConnectionAdapter* activeMonitor() const;
    void Monitor_Connect(bool connected, int value, const QString& device);
    void Monitor_Progress(int status, const QString& detail);

    AdapterFactory m_factory;
    std::unique_ptr<ConnectionAdapter> mIrMon;
    std::unique_ptr<ConnectionAdapter> mObexMon;
    std::unique_ptr<ConnectionAdapter> mZentorMon;
    std::int32_t m_activeKind = 0;
    bool m_connected = false;
    QString m_deviceName;
    bool m_busy = false;
    // The adapter whose accepted transfer SendFile waits for.
    ConnectionAdapter* m_sending = nullptr;
    bool m_succeeded = false;
    QString m_lastFailure;
};
