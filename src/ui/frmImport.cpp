#include "frmImport.h"

#include "FieldLabel.h"
#include "FileCommands.h"
#include "clsMMSManager.h"

#include <QFileInfo>
#include <QPushButton>

frmImport::frmImport(FileCommands& files, clsMMSManager& manager, QWidget* parent)
    : FileJobDialog(manager, {"ImportFilterIndex", "ImportLastDir"}, parent), m_files(files),
      m_manager(manager) {
    setObjectName(QStringLiteral("frmImport"));
    TranslateForm();
}

QString frmImport::filter() {
    return text("STR_IMPORT_FILTER",
                "All Files (*.*)|*.*|SMIL and Template files (*.smil;*.tpl)|*.smil;*.tpl|SMIL "
                "files (*.smil)|*.smil|Template files (*.tpl)|*.tpl|Encoded MMS files "
                "(*.wap;*.mms)|*.wap;*.mms");
}

void frmImport::TranslateForm() {
    FileJobDialog::TranslateForm();
    setWindowTitle(text("STR_IMPORT_CAPTION", "Import message"));
    runButton().setText(FieldLabel::withMnemonic(text("BTN_IMPORT", "&Import")));
}

QString frmImport::helpText() const {
    return text("STR_IMPORT_HELP1", "Choose a SMIL file, a template or a received message "
                                    "(.mms, .wap), then click Import.");
}

DialogService::FileRequest frmImport::fileRequest() const {
    DialogService::FileRequest request;
    request.title = text("STR_IMPORT_CAPTION", "Import message");
    request.filter = DialogService::qtFilter(filter());
    return request;
}

void frmImport::run() {
    const QString path = QFileInfo(fileName()).absoluteFilePath();
    beginRun(text("STR_IMPORTING_FILE", "Importing the file…"), false);
    switch (m_files.importMessage(path, clsMMSManager::ImportKindOf(path))) {
    case FileCommands::Imported:
        return endRun((QStringList{text("STR_IMPORT_SUCCESS", "The message has been imported.")} +
                       m_manager.exportImportNotes())
                          .join(u'\n'),
                      true);
    case FileCommands::NotImported:
        return endRun(text("STR_ERROR_SMIL_FILE_NAME",
                           "The file could not be imported. It is not a readable SMIL or "
                           "template file.") +
                          "\n\n" + m_manager.GetExportImportStatus(),
                      true);
    case FileCommands::Declined:
        return endRun(QString(), false);
    }
}
