#include "CommandLineAdapter.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace {
const QString kFilePlaceholder = QStringLiteral("%f%");

bool isInstalled(const QString& program) {
    if (program.isEmpty())
        return false;
    if (program.contains('/')) {
        const QFileInfo file(program);
        return file.isFile() && file.isExecutable();
    }
    return !QStandardPaths::findExecutable(program).isEmpty();
}
} // namespace

CommandLineAdapter::CommandLineAdapter(const QString& commandLine, int recheckIntervalMs,
                                       QObject* parent)
    : ConnectionAdapter(parent), m_commandLine(commandLine) {
    m_recheck.setInterval(recheckIntervalMs);
    connect(&m_recheck, &QTimer::timeout, this, &CommandLineAdapter::checkInstalled);
}

CommandLineAdapter::~CommandLineAdapter() {
    if (m_process) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(2000);
        delete m_process;
    }
}

QStringList CommandLineAdapter::argumentsFor(const QString& commandLine, const QString& path) {
    QStringList words = QProcess::splitCommand(commandLine);
    for (QString& word : words)
        word.replace(kFilePlaceholder, path);
    return words;
}

void CommandLineAdapter::StartMonitoring() {
    m_monitoring = true;
    checkInstalled();
    m_recheck.start();
}

void CommandLineAdapter::setCommandLine(const QString& commandLine) {
    m_commandLine = commandLine;
    if (m_monitoring)
        checkInstalled();
}

QString CommandLineAdapter::programName() const {
    return QProcess::splitCommand(m_commandLine).value(0);
}

void CommandLineAdapter::checkInstalled() {
    const QString program = programName();
    const bool installed = isInstalled(program);
    if (installed == m_installed && program == m_checkedProgram)
        return;
    m_checkedProgram = program;
    if (m_installed) {
        m_installed = false;
        emit Connect(false, 0, m_device);
    }
    if (installed) {
        m_installed = true;
        m_device = program;
        emit Connect(true, 0, m_device);
    } else {
        setLastError(QStringLiteral("the send program \"%1\" is not installed").arg(program));
    }
}

bool CommandLineAdapter::SendFile(const QString& path) {
    if (m_process) {
        setLastError(QStringLiteral("the send program is still running"));
        return false;
    }
    if (!QFileInfo(path).isFile()) {
        setLastError(QStringLiteral("no file to send: %1").arg(path));
        return false;
    }
    QStringList words = argumentsFor(m_commandLine, path);
    if (words.isEmpty()) {
        setLastError(QStringLiteral("no send program is set"));
        return false;
    }
    const QString program = words.takeFirst();
    m_process = new QProcess(this);
    m_process->setProcessChannelMode(QProcess::ForwardedChannels);
    connect(m_process, &QProcess::finished, this, &CommandLineAdapter::onFinished);
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            onFinished();
    });
    m_process->start(program, words);
    return true;
}

void CommandLineAdapter::onFinished() {
    QProcess* process = m_process;
    m_process = nullptr;
    process->disconnect(this);
    process->deleteLater();
    if (process->error() == QProcess::FailedToStart) {
        finishTransfer(
            false,
            QStringLiteral("cannot start %1: %2").arg(process->program(), process->errorString()));
    } else if (process->exitStatus() != QProcess::NormalExit) {
        finishTransfer(false, QStringLiteral("%1 crashed").arg(process->program()));
    } else if (process->exitCode() != 0) {
        finishTransfer(false, QStringLiteral("%1 ended with exit code %2")
                                  .arg(process->program())
                                  .arg(process->exitCode()));
    } else {
        finishTransfer(true, QString());
    }
}
