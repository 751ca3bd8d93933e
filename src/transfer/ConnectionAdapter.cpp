#include "ConnectionAdapter.h"

#include "TransferLog.h"

ConnectionAdapter::~ConnectionAdapter() = default;

void ConnectionAdapter::setCommandLine(const QString& commandLine) {
    Q_UNUSED(commandLine);
}

void ConnectionAdapter::setLastError(const QString& reason) {
    m_lastError = reason;
    qCWarning(lcTransfer).noquote() << reason;
}

void ConnectionAdapter::finishTransfer(bool succeeded, const QString& reason) {
    if (!succeeded)
        setLastError(reason);
    emit Progress(succeeded ? kProgressDone : kProgressFailed, reason);
}
