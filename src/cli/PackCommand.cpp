#include "PackCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"

#include <QDir>
#include <QFileInfo>

int PackCommand::run(const QStringList& arguments) {
    if (arguments.size() != 2)
        return CliOutput::usageError(usage());
    const QString folder = QDir(arguments[0]).absolutePath();
    try {
        CliSession session;
        session.useWorkFolder(folder);
        session.setSurface({});
        clsMMSManager& manager = session.manager();
        if (!QFileInfo::exists(manager.GetWorkFolderPath() + manager.messageFileName()))
            return CliOutput::error("pack: " + folder + " holds no " + manager.messageFileName());
        manager.AdoptWorkFolderMessage();
        if (!manager.isCurrentMessage())
            return CliOutput::error("pack: " + manager.messageFileName() + " is not a message");
        if (!manager.SaveMsg(QFileInfo(arguments[1]).absoluteFilePath()))
            return CliOutput::error("pack: " + manager.lastError());
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("pack: " + error.description());
    }
}

QString PackCommand::usage() {
    return QStringLiteral("vellumo-cli pack FOLDER OUT.mms");
}
