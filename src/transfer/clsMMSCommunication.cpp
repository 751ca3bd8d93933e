#include "clsMMSCommunication.h"

#include "AppGlobals.h"
#include "CommandLineAdapter.h"
#include "ObexAdapter.h"
#include "PhoneSuiteAdapter.h"
#include "TransferLog.h"
#include "TransferOptions.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace {
constexpr std::int32_t kInfrared = 1;
constexpr std::int32_t kObex = 2;
constexpr std::int32_t kPhoneSuite = 3;

// Sleeps until something happens (a socket, a timer, a finished program,
// user input) and lets it run, so a wait costs no processor time. A time
// limit wakes it up even when nothing happens.
void waitForEvents(int timeoutMs = -1) {
    QTimer wakeUp;
    wakeUp.setSingleShot(true);
    if (timeoutMs >= 0)
        wakeUp.start(timeoutMs);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}
} // namespace

clsMMSCommunication::clsMMSCommunication(QObject* parent)
    : clsMMSCommunication(adapters(TransferOptions::fromSettings(AppGlobals::settings())), parent) {
}

clsMMSCommunication::clsMMSCommunication(AdapterFactory factory, QObject* parent)
    : QObject(parent), m_factory(std::move(factory)) {}

clsMMSCommunication::~clsMMSCommunication() {
    // Adapters going away must not report into a half-destroyed object.
    for (auto* monitor : {&mIrMon, &mObexMon, &mZentorMon})
        if (*monitor)
            (*monitor)->disconnect(this);
}

clsMMSCommunication::AdapterFactory clsMMSCommunication::adapters(const TransferOptions& options) {
    return [options](std::int32_t kind) -> std::unique_ptr<ConnectionAdapter> {
        switch (kind) {
        case kInfrared:
            return std::make_unique<CommandLineAdapter>(QStringLiteral("bluetooth-sendto \"%f%\""),
                                                        options.probeIntervalMs);
        case kObex: {
            const ObexTarget target = ObexTarget::parse(options.obexTarget);
            if (!target.isValid()) {
                qCWarning(lcTransfer).noquote() << target.error;
                return nullptr;
            }
            return std::make_unique<ObexAdapter>(target, options);
        }
        case kPhoneSuite:
            if (!PhoneSuiteAdapter::isAvailable(options.suiteProgram)) {
                qCWarning(lcTransfer).noquote()
                    << QStringLiteral("%1 is not installed").arg(options.suiteProgram);
                return nullptr;
            }
            return std::make_unique<PhoneSuiteAdapter>(options);
        default:
            return nullptr;
        }
    };
}

std::int32_t clsMMSCommunication::Initialize(std::int32_t kind) {
    m_activeKind = 0;
    std::unique_ptr<ConnectionAdapter>* wanted = nullptr;
    if (kind == kInfrared)
        wanted = &mIrMon;
    else if (kind == kObex)
        wanted = &mObexMon;
    else if (kind == kPhoneSuite)
        wanted = &mZentorMon;
    for (auto* monitor : {&mIrMon, &mObexMon, &mZentorMon})
        if (monitor != wanted)
            releaseMonitor(*monitor);
    if (!wanted)
        return m_activeKind;
    releaseMonitor(*wanted);
    if (createMonitor(*wanted, kind)) {
        m_activeKind = kind;
        (*wanted)->StartMonitoring();
    }
    return m_activeKind;
}

bool clsMMSCommunication::createMonitor(std::unique_ptr<ConnectionAdapter>& monitor,
                                        std::int32_t kind) {
    monitor = m_factory ? m_factory(kind) : nullptr;
    if (!monitor)
        return false;
    connect(monitor.get(), &ConnectionAdapter::Connect, this,
            &clsMMSCommunication::Monitor_Connect);
    connect(monitor.get(), &ConnectionAdapter::Progress, this,
            &clsMMSCommunication::Monitor_Progress);
    return true;
}

void clsMMSCommunication::releaseMonitor(std::unique_ptr<ConnectionAdapter>& monitor) {
    if (!monitor)
        return;
    monitor->disconnect(this);
    const bool wasSending = monitor.get() == m_sending;
    monitor.reset();
    // A transfer dies with its adapter; ending it here keeps a waiting
    // SendFile from waiting for ever.
    if (wasSending)
        Monitor_Progress(ConnectionAdapter::kProgressFailed,
                         QStringLiteral("the transfer kind was changed during the send"));
}

ConnectionAdapter* clsMMSCommunication::activeMonitor() const {
    switch (m_activeKind) {
    case kInfrared:
        return mIrMon.get();
    case kObex:
        return mObexMon.get();
    case kPhoneSuite:
        return mZentorMon.get();
    default:
        return nullptr;
    }
}

void clsMMSCommunication::SetIrDaCommandline(const QString& commandLine) {
    if (mIrMon)
        mIrMon->setCommandLine(commandLine);
}

int clsMMSCommunication::SendFile(const QString& path) {
    if (m_busy)
        return kBusy;
    if (!m_connected)
        return kNoDevice;
    m_busy = true;
    m_lastFailure.clear();
    ConnectionAdapter* monitor = activeMonitor();
    if (!monitor || !monitor->SendFile(path)) {
        // busy stays set: later sends answer 2 until a Progress report ends it.
        m_lastFailure =
            monitor ? monitor->lastError() : QStringLiteral("no transfer kind is active");
        return kFailed;
    }
    m_sending = monitor;
    while (m_busy)
        waitForEvents();
    return m_succeeded ? kSent : kFailed;
}

bool clsMMSCommunication::waitForConnectionKnown(int timeoutMs) {
    const QDeadlineTimer deadline(timeoutMs);
    ConnectionAdapter* monitor = activeMonitor();
    while (monitor && !monitor->connectionKnown() && !deadline.hasExpired()) {
        waitForEvents(static_cast<int>(deadline.remainingTime()));
        monitor = activeMonitor();
    }
    return monitor && monitor->connectionKnown();
}

void clsMMSCommunication::Monitor_Connect(bool connected, int value, const QString& device) {
    if (!connected) {
        if (device == m_deviceName) {
            m_connected = false;
            m_deviceName.clear();
        }
    } else if (!m_connected) {
        m_connected = true;
        m_deviceName = device;
    }
    emit Connect(m_connected, value, m_deviceName);
}

void clsMMSCommunication::Monitor_Progress(int status, const QString& detail) {
    if (status != ConnectionAdapter::kProgressDone && status != ConnectionAdapter::kProgressFailed)
        return;
    m_succeeded = status == ConnectionAdapter::kProgressDone;
    if (!m_succeeded)
        m_lastFailure = detail;
    m_busy = false;
    m_sending = nullptr;
}
