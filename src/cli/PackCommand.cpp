#include "PackCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"

#include <QDir>
#include <QFileInfo>

namespace {
// Packing only reads the folder: the archive may not land in it, where it could
// replace the very message XML or media being packed.
bool landsInside(const QDir& folder, const QFileInfo& target) {
    return QDir(target.absolutePath()).canonicalPath() == folder.canonicalPath();
}
} // namespace

int PackCommand::run(const QStringList& arguments) {
    if (arguments.size() != 2)
        return CliOutput::usageError(usage());
    const QDir folder(arguments[0]);
    const QFileInfo target(arguments[1]);
    if (!folder.exists())
        return CliOutput::error("pack: " + arguments[0] + " is not a folder");
    if (landsInside(folder, target))
        return CliOutput::error("pack: " + arguments[1] +
                                " lies in the folder being packed; choose a place outside it");
    try {
        CliSession session;
        session.setSurface({});
        clsMMSManager& manager = session.manager();
        if (!manager.AdoptFolderMessage(folder.absolutePath()))
            return CliOutput::error("pack: " + manager.lastError());
        if (!manager.isCurrentMessage())
            return CliOutput::error("pack: " + manager.messageFileName() + " is not a message");
        session.reportMissingMedia();
        if (!manager.SaveMsg(target.absoluteFilePath()))
            return CliOutput::error("pack: " + manager.lastError());
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("pack: " + error.description());
    }
}

QString PackCommand::usage() {
    return QStringLiteral("vellumo-cli pack FOLDER OUT.mms");
}
