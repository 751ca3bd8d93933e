#include "clsRunPgm.h"

#include "AppPaths.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QProcess>

Q_LOGGING_CATEGORY(lcRunPgm, "vellumo.runpgm")

namespace {
// Starting is fork and exec; a program that cannot start says so at once.
constexpr int kStartWaitMs = 5000;
// A killed program is reaped right after the signal.
constexpr int kKillWaitMs = 2000;
// Windows' GetExitCodeProcess marker for "still running".
constexpr std::int32_t kStillActive = 259;

std::int32_t endCode(const QProcess& process) {
    // A program that died from a signal has no exit code of its own.
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : 1;
}
} // namespace

clsRunPgm::clsRunPgm() = default;

clsRunPgm::~clsRunPgm() {
    if (m_process && m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished(kKillWaitMs);
    }
    delete m_process;
}

bool clsRunPgm::run(const QString& folder, const QString& commandLine, std::int16_t windowStyle) {
    Q_UNUSED(windowStyle);
    if (m_running)
        return m_running;
    QStringList words = QProcess::splitCommand(commandLine);
    if (words.isEmpty())
        return false;
    const QString diskFolder = AppPaths::toDisk(folder);
    const QString program = diskFolder.isEmpty()
                                ? words.takeFirst()
                                : AppPaths::withSlash(diskFolder) + words.takeFirst();

    releaseProcess();
    m_process = new QProcess;
    m_process->setProcessChannelMode(QProcess::ForwardedChannels);
    m_process->start(program, words);
    if (!m_process->waitForStarted(kStartWaitMs)) {
        qCWarning(lcRunPgm) << "cannot start" << program << ":" << m_process->errorString();
        releaseProcess();
        return false;
    }
    m_processId = static_cast<std::int32_t>(m_process->processId());
    m_running = true;
    return m_running;
}

bool clsRunPgm::isActive() {
    if (!m_running)
        return false;
    if (!m_process) {
        m_running = false;
        m_exitCode = 1;
        return false;
    }
    // A zero wait lets QProcess notice an ended child without an event loop.
    if (m_process->state() != QProcess::NotRunning && !m_process->waitForFinished(0)) {
        m_exitCode = kStillActive;
        return true;
    }
    m_exitCode = endCode(*m_process);
    m_running = false;
    return false;
}

bool clsRunPgm::terminate() {
    if (!m_running)
        return true;
    if (m_process && m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        if (!m_process->waitForFinished(kKillWaitMs))
            return true;
    }
    m_running = false;
    return false;
}

bool clsRunPgm::terminated() {
    if (m_process && m_process->state() != QProcess::NotRunning) {
        // QProcess kills its child when deleted; hand it to the application so
        // it lives as long as the program does and cleans up after itself.
        QObject::connect(m_process, &QProcess::finished, m_process, &QObject::deleteLater);
        m_process->setParent(QCoreApplication::instance());
        m_process = nullptr;
    }
    m_running = false;
    return true;
}

void clsRunPgm::releaseProcess() {
    delete m_process;
    m_process = nullptr;
}
