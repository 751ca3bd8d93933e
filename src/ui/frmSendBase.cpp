#include "frmSendBase.h"

#include "AppGlobals.h"
#include "clsMMSCommunication.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

// Room for a sentence on a line; an empty line takes no room.
constexpr int kLineWidth = 400;

QLabel* line(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(QString::fromLatin1(name));
    label->setWordWrap(true);
    label->setMinimumWidth(kLineWidth);
    label->hide();
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}
} // namespace

frmSendBase::frmSendBase(clsMMSCommunication& connection, QWidget* parent)
    : QDialog(parent), m_connection(connection), m_content(new QVBoxLayout),
      lblStatus(line("lblStatus")), lblError(line("lblError")), lblInfo(line("lblInfo")),
      prgDownload(new QProgressBar), cmdClose(new QPushButton), m_buttons(new QHBoxLayout) {
    prgDownload->setObjectName(QStringLiteral("prgDownload"));
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    lblError->setStyleSheet(QStringLiteral("color: #b00020"));
    m_buttons->addStretch(1);
    m_buttons->addWidget(cmdClose);
    auto* layout = new QVBoxLayout(this);
    // The dialog is as large as what it shows, also when a panel opens.
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addLayout(m_content);
    for (QWidget* widget : {static_cast<QWidget*>(prgDownload), static_cast<QWidget*>(lblStatus),
                            static_cast<QWidget*>(lblError), static_cast<QWidget*>(lblInfo)})
        layout->addWidget(widget);
    layout->addLayout(m_buttons);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::reject);
}

void frmSendBase::addButton(QPushButton* button) {
    m_buttons->insertWidget(1, button);
}

void frmSendBase::TranslateForm() {
    cmdClose->setText(text("BTN_CLOSE", "Close"));
    prgDownload->setAccessibleName(text("STR_PROGRESS", "Progress"));
    lblStatus->setAccessibleName(text("STR_SEND_STATUS", "State of the transfer"));
    lblError->setAccessibleName(text("STR_SEND_ERROR", "What went wrong"));
    lblInfo->setAccessibleName(text("STR_SEND_HINT", "Hint"));
}

void frmSendBase::SetStatusTxt(const QString& text) {
    showLine(lblStatus, text);
}

QString frmSendBase::statusText() const {
    return lblStatus->text();
}

QString frmSendBase::errorText() const {
    return lblError->text();
}

void frmSendBase::setError(const QString& text) {
    showLine(lblError, text);
}

void frmSendBase::setHint(const QString& text) {
    showLine(lblInfo, text);
}

void frmSendBase::showLine(QLabel* label, const QString& text) {
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

void frmSendBase::setWorking(bool working) {
    m_working = working;
    cmdClose->setEnabled(!working);
}

void frmSendBase::reject() {
    if (!m_working)
        QDialog::reject();
}

void frmSendBase::closeEvent(QCloseEvent* event) {
    if (m_working)
        return event->ignore();
    QDialog::closeEvent(event);
}

bool frmSendBase::sendFile(const QString& path) {
    SetStatusTxt(text("STR_NO_MSG_DOWNLOAD", "Nothing has been sent."));
    const int code = m_connection.SendFile(path);
    showResult(code);
    return code == clsMMSCommunication::kSent;
}

void frmSendBase::showResult(int code) {
    setHint(QString());
    switch (code) {
    case clsMMSCommunication::kSent:
        SetStatusTxt(text("STR_READY", "Ready"));
        setError(QString());
        break;
    case clsMMSCommunication::kBusy:
        setError(text("STR_DOWNLOAD_BUSY", "A transfer is still in progress. Please wait until "
                                           "it has finished."));
        break;
    case clsMMSCommunication::kNoDevice:
        setError(text("STR_NO_DEVICE_CONNECTED", "No phone is connected."));
        break;
    case clsMMSCommunication::kFailed: {
        const QString failed = text("STR_DOWNLOAD_FAILED", "Sending to the phone failed.");
        SetStatusTxt(failed);
        const QString why = m_connection.lastFailure();
        setError(why.isEmpty() ? failed : failed + u'\n' + why);
        break;
    }
    default:
        setError(text("STR_NO_DEVICE", "No way of sending to the phone is available."));
        break;
    }
}
