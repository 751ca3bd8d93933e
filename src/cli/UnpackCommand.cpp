#include "UnpackCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"

#include <QDir>

int UnpackCommand::run(const QStringList& arguments) {
    if (arguments.size() != 2)
        return CliOutput::usageError(usage());
    const QDir folder(arguments[1]);
    // Opening empties the work folder first; never do that to someone's files.
    if (folder.exists() && !folder.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
        return CliOutput::error("unpack: " + arguments[1] + " is not empty");
    try {
        CliSession session;
        session.useWorkFolder(folder.absolutePath());
        int result = 0;
        if (!session.manager().OpenMsg(arguments[0], result)) {
            CliOutput::error("unpack: " + session.manager().lastError());
            return result;
        }
        session.reportMissingMedia();
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("unpack: " + error.description());
    }
}

QString UnpackCommand::usage() {
    return QStringLiteral("vellumo-cli unpack FILE.mms FOLDER");
}
