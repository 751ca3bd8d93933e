#pragma once

#include "ConnectionAdapter.h"
#include "TransferOptions.h"

#include <QTimer>
#include <functional>

class QProcess;

// The phone-suite kind, over the desktop phone link's command line tool: a
// reachable paired device is the connected phone (its name is the device
// text), and sending shares the file with it.
class PhoneSuiteAdapter : public ConnectionAdapter {
    Q_OBJECT
public:
    explicit PhoneSuiteAdapter(const TransferOptions& options, QObject* parent = nullptr);
    ~PhoneSuiteAdapter() override;

    // Whether the tool is installed; without it this kind cannot exist.
    static bool isAvailable(const QString& program);

    void StartMonitoring() override;
    bool SendFile(const QString& path) override;
    bool connectionKnown() const override { return m_known; }

private:
    using Done = std::function<void(QProcess&, const QString& failure)>;
    void runTool(QProcess*& slot, const QStringList& arguments, Done done);
    void listDevices();
    void onListed(QProcess& process, const QString& failure);
    void setDevice(const QString& id, const QString& name);

    TransferOptions m_options;
    QTimer m_pollTimer;
    QProcess* m_list = nullptr;
    QProcess* m_share = nullptr;
    QString m_deviceId;
    QString m_deviceName;
    bool m_known = false;
};
