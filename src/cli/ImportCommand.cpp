#include "ImportCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"

#include <QFileInfo>

int ImportCommand::run(const QStringList& arguments) {
    if (arguments.size() != 2)
        return CliOutput::usageError(usage());
    // As in the import dialog: the extension decides what the file is.
    const int kind = arguments[0].endsWith(".tpl", Qt::CaseInsensitive)
                         ? clsMMSManager::ImportTemplate
                         : clsMMSManager::ImportSmil;
    try {
        CliSession session;
        session.setSurface({});
        clsMMSManager& manager = session.manager();
        if (!manager.ImportMMS(QFileInfo(arguments[0]).absoluteFilePath(), kind))
            return CliOutput::error("import: " + manager.GetExportImportStatus());
        for (const QString& note : manager.exportImportNotes())
            CliOutput::warning("import: " + note);
        if (!manager.SaveMsg(QFileInfo(arguments[1]).absoluteFilePath()))
            return CliOutput::error("import: " + manager.lastError());
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("import: " + error.description());
    }
}

QString ImportCommand::usage() {
    return QStringLiteral("vellumo-cli import FILE.smil|FILE.tpl OUT.mms");
}
