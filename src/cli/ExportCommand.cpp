#include "ExportCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "MessageExport.h"

#include <QFileInfo>
#include <map>

namespace {
const std::map<QString, MessageExport::Kind> kKinds{{"smil", MessageExport::Smil},
                                                    {"tpl", MessageExport::Template},
                                                    {"sis", MessageExport::Package},
                                                    {"wap", MessageExport::SentMms}};
const std::map<QString, int> kFormats{{"ms", 0}, {"s", 1}};
} // namespace

int ExportCommand::run(const QStringList& original) {
    QStringList arguments = original;
    const bool overwrite = arguments.removeAll("--overwrite") > 0;
    const bool retrieve = arguments.removeAll("--retrieve-conf") > 0;
    const auto kindOption = kKinds.find(CliOutput::takeOption(arguments, "--kind"));
    const auto format = kFormats.find(CliOutput::takeOption(arguments, "--format"));
    if (arguments.size() != 2 || kindOption == kKinds.end() || format == kFormats.end() ||
        !arguments[1].endsWith(".smil", Qt::CaseInsensitive))
        return CliOutput::usageError(usage());
    try {
        CliSession session;
        clsMessage* message = session.open(arguments[0]);
        if (!message)
            return clsMMSManager::ExportFailed;
        // The whole set stays beside what was made of it, named as the manager names it.
        const QFileInfo target(arguments[1]);
        MessageExport::Kind kind = kindOption->second;
        if (kind == MessageExport::SentMms && retrieve)
            kind = MessageExport::ReceivedMms;
        const QString output =
            target.absolutePath() + u'/' + MessageExport::madeName(kind, target.fileName());
        clsMMSManager& manager = session.manager();
        MessageExport exporter(manager);
        const int result = exporter.run(*message, kind, format->second, output, overwrite,
                                        MessageExport::WholeSet);
        if (result != clsMMSManager::ExportOk)
            CliOutput::error("export: " + exporter.status());
        for (const QString& note : manager.exportImportNotes())
            CliOutput::warning("export: " + note);
        return result;
    } catch (const AppError& error) {
        CliOutput::error("export: " + error.description());
        return clsMMSManager::ExportFailed;
    }
}

QString ExportCommand::usage() {
    return QStringLiteral("vellumo-cli export FILE.mms --kind smil|tpl|sis|wap --format ms|s "
                          "FOLDER/NAME.smil [--overwrite] [--retrieve-conf]");
}
