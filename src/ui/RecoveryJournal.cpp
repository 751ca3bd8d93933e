#include "RecoveryJournal.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "FileCommands.h"
#include "MessageDocument.h"
#include "WorkFolderClaim.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QFileInfo>

RecoveryJournal::RecoveryJournal(MessageDocument& document, FileCommands& files,
                                 WorkFolderClaim& claim, QObject* parent)
    : QObject(parent), m_document(document), m_files(files), m_claim(claim) {
    m_pending.setSingleShot(true);
    m_pending.setInterval(0);
    connect(&m_pending, &QTimer::timeout, this, &RecoveryJournal::write);
    const auto schedule = [this] { m_pending.start(); };
    connect(&document, &MessageDocument::slidesChanged, this, schedule);
    connect(&document, &MessageDocument::modifiedChanged, this, schedule);
    connect(&document.undoStack(), &QUndoStack::indexChanged, this, schedule);
    connect(&files, &FileCommands::fileNameChanged, this, schedule);
}

bool RecoveryJournal::offerRecovery(QWidget* window) {
    const std::optional<QString> file = m_claim.unsavedWork();
    if (!file)
        return false;
    const QString name = file->isEmpty()
                             ? AppGlobals::text("STR_UNTITLED", "Untitled") + QStringLiteral(".mms")
                             : QFileInfo(*file).fileName();
    const QString question =
        AppGlobals::text("ASK_RECOVER",
                         "The program did not end properly last time, and the message %0 had "
                         "unsaved changes.",
                         {name}) +
        QStringLiteral("\n\n") +
        AppGlobals::text("ASK_RECOVER_Q", "Recover it? No discards the changes.");
    if (DialogService::messageBox(window, question, AppGlobals::text("APP_PRODUCTNAME", "Vellumo"),
                                  QMessageBox::Yes | QMessageBox::No,
                                  QMessageBox::Question) != QMessageBox::Yes) {
        m_claim.clearMark();
        return false;
    }
    return m_files.recover(*file);
}

void RecoveryJournal::close() {
    m_pending.stop();
    m_claim.clearMark();
}

void RecoveryJournal::write() {
    // A drag in progress is written when it ends, as one step.
    if (m_document.isLiveEditing())
        return;
    clsMessage* message = m_document.message();
    if (!message || !m_document.isModified())
        return m_claim.clearMark();
    clsMMSManager& manager = m_document.manager();
    // The mark goes only with a message written whole: a half-written one
    // would recover as garbage.
    if (message->SaveXml(manager.GetWorkFolderPath() + manager.messageFileName()))
        m_claim.markUnsaved(m_files.fileName());
}
