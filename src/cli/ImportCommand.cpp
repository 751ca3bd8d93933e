#include "ImportCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"

#include <QFileInfo>

int ImportCommand::run(const QStringList& arguments) {
    if (arguments.size() != 2)
        return CliOutput::usageError(usage());
    // As in the import dialog: a binary MMS by its bytes, a template by its extension.
    const int kind = clsMMSManager::ImportKindOf(arguments[0]);
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
    return QStringLiteral("vellumo-cli import FILE.smil|FILE.tpl|FILE.wap OUT.mms");
}
