#include "frmDownloadMMS.h"

#include "AppGlobals.h"
#include "PhoneFormat.h"
#include "clsMMSCommunication.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QProgressBar>
#include <QTimer>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}
} // namespace

frmDownloadMMS::frmDownloadMMS(clsMMSCommunication& connection, QWidget* parent)
    : frmSendBase(connection, parent) {
    setObjectName(QStringLiteral("frmDownloadMMS"));
    TranslateForm();
}

void frmDownloadMMS::SetupDownloadData(clsMMSManager* manager, clsMessage* message) {
    m_manager = manager;
    m_message = message;
}

void frmDownloadMMS::TranslateForm() {
    frmSendBase::TranslateForm();
    setWindowTitle(text("STR_SEND_MESSAGE_TITLE", "Send the message to the phone"));
}

// The send starts once the dialog is on the screen, so the user sees it work.
void frmDownloadMMS::showEvent(QShowEvent* event) {
    frmSendBase::showEvent(event);
    if (m_started)
        return;
    m_started = true;
    QTimer::singleShot(0, this, &frmDownloadMMS::DownloadMMS);
}

void frmDownloadMMS::DownloadMMS() {
    if (!m_manager || !m_message)
        return SetStatusTxt(text("STR_NO_MSG_DOWNLOAD", "Nothing has been sent."));
    setWorking(true);
    const QString file = pack(PhoneFormat::wantsPackage(connection().deviceId()));
    if (file.isEmpty()) {
        SetStatusTxt(QString());
        setError(m_manager->GetExportImportStatus() + QStringLiteral("\n\n") +
                 text("STR_NO_FILE_DOWNLOAD", "The message could not be prepared for sending."));
        return setWorking(false);
    }
    SetStatusTxt(text("STR_DOWNLOAD_MSG", "Sending the message to the phone…"));
    setHint(text("STR_DOWNLOAD_INFO", "If your phone asks, accept the incoming file."));
    sendFile(file);
    setWorking(false);
}

// Packed in a folder of the dialog's own, so the message's work folder keeps
// only the message. The path of the packed file, or "" when packing failed.
QString frmDownloadMMS::pack(bool package) {
    progress()->reset();
    SetStatusTxt(text("STR_COMPRESS", "Compressing…"));
    const QString folder = m_packed.subFolder(QStringLiteral("send"));
    if (folder.isEmpty())
        return QString();
    const auto connection = connect(m_manager, &clsMMSManager::ProsessingSlide, this,
                                    &frmDownloadMMS::mMmsManager_ProsessingSlide);
    const QString made = PhoneFormat::make(*m_manager, *m_message, package, folder);
    disconnect(connection);
    if (!made.isEmpty())
        SetStatusTxt(text("STR_READY", "Ready"));
    return made;
}

void frmDownloadMMS::mMmsManager_ProsessingSlide(int slide, int count) {
    SetStatusTxt(text("STR_PROCESS", "Processing…"));
    progress()->setRange(0, count);
    progress()->setValue(slide);
}
