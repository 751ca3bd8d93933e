#include "NewCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "MessageScript.h"

#include <QFileInfo>

int NewCommand::run(const QStringList& arguments) {
    if (arguments.isEmpty() || arguments[0].startsWith("--"))
        return CliOutput::usageError(usage());
    try {
        CliSession session;
        clsMMSManager& manager = session.manager();
        manager.CreateMsg();
        MessageScript script(manager);
        if (!script.apply(arguments.mid(1)))
            return CliOutput::error("new: " + script.error());
        session.setSurface(script.surface());
        if (!manager.SaveMsg(QFileInfo(arguments[0]).absoluteFilePath()))
            return CliOutput::error("new: " + manager.lastError());
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("new: " + error.description());
    }
}

QString NewCommand::usage() {
    return QStringLiteral("vellumo-cli new OUT.mms [--slide [MS] ...] (see: vellumo-cli help new)");
}
