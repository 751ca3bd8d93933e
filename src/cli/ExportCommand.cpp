#include "ExportCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"

#include <QFileInfo>
#include <map>

namespace {
const std::map<QString, int> kKinds{{"smil", clsMMSManager::ExportSmil},
                                    {"tpl", clsMMSManager::ExportTemplate},
                                    {"sis", clsMMSManager::ExportPackage}};
const std::map<QString, int> kFormats{{"ms", 0}, {"s", 1}};

// Takes "--name VALUE" out of the arguments; "" when it is not there.
QString takeOption(QStringList& arguments, const QString& name) {
    const qsizetype at = arguments.indexOf(name);
    if (at < 0 || at + 1 >= arguments.size())
        return QString();
    const QString value = arguments[at + 1];
    arguments.remove(at, 2);
    return value;
}
} // namespace

int ExportCommand::run(const QStringList& original) {
    QStringList arguments = original;
    const bool overwrite = arguments.removeAll("--overwrite") > 0;
    const auto kind = kKinds.find(takeOption(arguments, "--kind"));
    const auto format = kFormats.find(takeOption(arguments, "--format"));
    if (arguments.size() != 2 || kind == kKinds.end() || format == kFormats.end() ||
        !arguments[1].endsWith(".smil", Qt::CaseInsensitive))
        return CliOutput::usageError(usage());
    try {
        CliSession session;
        clsMessage* message = session.open(arguments[0]);
        if (!message)
            return clsMMSManager::ExportFailed;
        const int result =
            session.manager().ExportMMS(*message, kind->second, format->second,
                                        QFileInfo(arguments[1]).absoluteFilePath(), overwrite);
        if (result != clsMMSManager::ExportOk)
            CliOutput::error("export: " + session.manager().GetExportImportStatus());
        return result;
    } catch (const AppError& error) {
        CliOutput::error("export: " + error.description());
        return clsMMSManager::ExportFailed;
    }
}

QString ExportCommand::usage() {
    return QStringLiteral("vellumo-cli export FILE.mms --kind smil|tpl|sis --format ms|s "
                          "FOLDER/NAME.smil [--overwrite]");
}
