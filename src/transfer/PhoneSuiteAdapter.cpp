#include "PhoneSuiteAdapter.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

PhoneSuiteAdapter::PhoneSuiteAdapter(const TransferOptions& options, QObject* parent)
    : ConnectionAdapter(parent), m_options(options) {
    m_pollTimer.setInterval(options.probeIntervalMs);
    connect(&m_pollTimer, &QTimer::timeout, this, &PhoneSuiteAdapter::listDevices);
}

PhoneSuiteAdapter::~PhoneSuiteAdapter() {
    for (QProcess* process : {m_list, m_share}) {
        if (process) {
            process->disconnect(this);
            process->kill();
            process->waitForFinished(2000);
        }
    }
}

bool PhoneSuiteAdapter::isAvailable(const QString& program) {
    if (program.contains('/'))
        return QFileInfo(program).isExecutable();
    return !program.isEmpty() && !QStandardPaths::findExecutable(program).isEmpty();
}

void PhoneSuiteAdapter::StartMonitoring() {
    listDevices();
    m_pollTimer.start();
}

// Runs the tool once with a time limit, kept in slot while it runs; done()
// gets the process and, when it did not end well, why. A program that cannot
// start may report so before start() returns, hence the slot is set first.
void PhoneSuiteAdapter::runTool(QProcess*& slot, const QStringList& arguments, Done done) {
    auto* process = new QProcess(this);
    slot = process;
    auto* limit = new QTimer(process);
    limit->setSingleShot(true);
    connect(limit, &QTimer::timeout, process, [process] { process->kill(); });
    auto finish = [this, process, &slot, done] {
        slot = nullptr;
        process->disconnect(this);
        process->deleteLater();
        QString failure;
        if (process->error() == QProcess::FailedToStart)
            failure = QStringLiteral("cannot start %1: %2")
                          .arg(m_options.suiteProgram, process->errorString());
        else if (process->exitStatus() != QProcess::NormalExit)
            failure = QStringLiteral("%1 did not finish within %2 ms or crashed")
                          .arg(m_options.suiteProgram)
                          .arg(m_options.suiteTimeoutMs);
        else if (process->exitCode() != 0)
            failure = QStringLiteral("%1 ended with exit code %2: %3")
                          .arg(m_options.suiteProgram)
                          .arg(process->exitCode())
                          .arg(QString::fromLocal8Bit(process->readAllStandardError()).trimmed());
        done(*process, failure);
    };
    connect(process, &QProcess::finished, this, finish);
    connect(process, &QProcess::errorOccurred, this, [finish](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish();
    });
    process->start(m_options.suiteProgram, arguments);
    limit->start(m_options.suiteTimeoutMs);
}

void PhoneSuiteAdapter::listDevices() {
    if (m_list || m_share)
        return;
    runTool(m_list, {"--list-available", "--id-name-only"},
            [this](QProcess& process, const QString& failure) { onListed(process, failure); });
}

// Each line of the listing is "<device id> <device name>"; the first
// reachable device is the phone.
void PhoneSuiteAdapter::onListed(QProcess& process, const QString& failure) {
    m_known = true;
    if (!failure.isEmpty()) {
        setLastError(failure);
        setDevice(QString(), QString());
        return;
    }
    const QString first = QString::fromUtf8(process.readAllStandardOutput()).section('\n', 0, 0);
    const QString line = first.trimmed();
    setDevice(line.section(' ', 0, 0), line.section(' ', 1).trimmed());
}

void PhoneSuiteAdapter::setDevice(const QString& id, const QString& name) {
    if (id == m_deviceId && name == m_deviceName)
        return;
    if (!m_deviceId.isEmpty())
        emit Connect(false, 0, m_deviceName);
    m_deviceId = id;
    m_deviceName = name.isEmpty() ? id : name;
    if (!m_deviceId.isEmpty())
        emit Connect(true, 0, m_deviceName);
}

bool PhoneSuiteAdapter::SendFile(const QString& path) {
    if (m_share) {
        setLastError(QStringLiteral("a share is already running"));
        return false;
    }
    if (m_deviceId.isEmpty()) {
        setLastError(QStringLiteral("no reachable phone to share with"));
        return false;
    }
    if (!QFileInfo(path).isFile()) {
        setLastError(QStringLiteral("no file to send: %1").arg(path));
        return false;
    }
    runTool(
        m_share, {"--device", m_deviceId, "--share", path},
        [this](QProcess&, const QString& failure) { finishTransfer(failure.isEmpty(), failure); });
    return true;
}
