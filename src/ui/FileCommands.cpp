#include "FileCommands.h"

#include "AppGlobals.h"
#include "ClassGuard.h"
#include "DialogService.h"
#include "MessageDocument.h"
#include "MmsImporter.h"
#include "RecentFilesList.h"
#include "clsMMSManager.h"

#include <QFileInfo>

FileCommands::FileCommands(MessageDocument& document, RecentFilesList& recent, QWidget* window,
                           ClassGuard* guard)
    : QObject(window), m_document(document), m_recent(recent), m_window(window), m_guard(guard) {}

QString FileCommands::text(const char* key, const char* fallback) const {
    return AppGlobals::text(key, fallback);
}

bool FileCommands::newMessage() {
    if (!changesHandled())
        return false;
    m_document.newMessage();
    setFileName(QString());
    return true;
}

bool FileCommands::openDialog() {
    if (!changesHandled())
        return false;
    DialogService::FileRequest request;
    request.title = text("STR_DLGMSG_OPEN", "Open message");
    request.folder = startFolder();
    request.filter = DialogService::qtFilter(text("STR_BFILTER_VELLUMO", "Messages|*.mms"));
    request.defaultSuffix = QStringLiteral("mms");
    const QString path = DialogService::fileDialog(m_window, request);
    return !path.isEmpty() && open(path);
}

bool FileCommands::open(const QString& path) {
    if (m_document.openMessage(path)) {
        // A message as it is sent opens as an import does: saving asks for a
        // file of the program's own instead of replacing it.
        setFileName(MmsImporter::isBinaryMms(path) ? QString() : path);
        m_recent.AddToRecentFilesList(path);
        emit recentFilesChanged();
        return true;
    }
    m_recent.RemoveFromRecentFilesList(path);
    emit recentFilesChanged();
    DialogService::messageBox(m_window, text("STR_OPEN_MSG_ERROR", "The message cannot be opened."),
                              text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Ok,
                              QMessageBox::Warning);
    // The window never stays without a message.
    m_document.newMessage();
    setFileName(QString());
    return false;
}

bool FileCommands::openRecent(const QString& path) {
    return !path.isEmpty() && changesHandled() && open(path);
}

FileCommands::ImportOutcome FileCommands::importMessage(const QString& path, int kind) {
    if (!changesHandled())
        return Declined;
    if (!m_document.importMessage(path, kind))
        return NotImported;
    setFileName(QString());
    return Imported;
}

bool FileCommands::recover(const QString& path) {
    if (!m_document.recoverMessage(clsMMSManager::GetFilenameFromPath(path, false))) {
        DialogService::messageBox(
            m_window, text("STR_RECOVER_FAILED", "The unsaved message cannot be recovered."),
            text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Ok, QMessageBox::Warning);
        setFileName(QString());
        return false;
    }
    setFileName(path);
    return true;
}

bool FileCommands::save() {
    return m_fileName.isEmpty() ? saveAs() : saveTo(m_fileName);
}

bool FileCommands::saveAs() {
    DialogService::FileRequest request;
    request.kind = DialogService::FileRequest::Save;
    request.title = text("STR_DLGMSG_SAVEAS", "Save message as");
    request.folder = startFolder() + u'/' +
                     (m_fileName.isEmpty() ? text("STR_UNTITLED", "Untitled")
                                           : QFileInfo(m_fileName).completeBaseName());
    request.filter = DialogService::qtFilter(text("STR_BFILTER_VELLUMO", "Messages|*.mms"));
    request.defaultSuffix = QStringLiteral("mms");
    const QString path = DialogService::fileDialog(m_window, request);
    return !path.isEmpty() && saveTo(path);
}

bool FileCommands::saveTo(const QString& path) {
    if (m_guard && !m_guard->mayLeave(ClassGuard::Leaving::Save))
        return false;
    if (!m_document.saveMessage(path)) {
        DialogService::messageBox(
            m_window, text("STR_SAVE_MSG_ERROR", "The message cannot be saved."),
            text("STR_ERROR", "Error"), QMessageBox::Ok, QMessageBox::Critical);
        return false;
    }
    setFileName(path);
    m_recent.AddToRecentFilesList(path);
    emit recentFilesChanged();
    return true;
}

bool FileCommands::mayExit() {
    if (!m_document.isModified())
        return DialogService::messageBox(m_window, text("ASK_EXIT", "Do you want to exit?"),
                                         text("APP_PRODUCTNAME", "Vellumo"),
                                         QMessageBox::Yes | QMessageBox::No,
                                         QMessageBox::Question) == QMessageBox::Yes;
    const auto answer = DialogService::messageBox(
        m_window, text("ASK_SAVECHANGES", "Save the changes before you exit?"),
        text("APP_PRODUCTNAME", "Vellumo"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Question);
    if (answer == QMessageBox::Yes)
        return !m_document.message() || save();
    return answer == QMessageBox::No;
}

bool FileCommands::changesHandled() {
    if (!m_document.isModified())
        return true;
    const auto answer = DialogService::messageBox(
        m_window, text("STR_SAVE_MSG", "Save the changes?"), text("BTN_SAVE", "Save"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Question);
    if (answer == QMessageBox::Yes)
        return save();
    return answer == QMessageBox::No;
}

void FileCommands::setFileName(const QString& path) {
    m_fileName = path;
    emit fileNameChanged();
}

QString FileCommands::startFolder() const {
    if (!m_fileName.isEmpty())
        return QFileInfo(m_fileName).absolutePath();
    return AppGlobals::setting("preferences", "SaveMessagePath", QString());
}
