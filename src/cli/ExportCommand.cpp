#include "ExportCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"

#include <QFileInfo>
#include <map>

namespace {
// Not an export kind of the manager's: a SMIL set saved once more as a binary MMS.
constexpr int kBinaryMms = 8;
const std::map<QString, int> kKinds{{"smil", clsMMSManager::ExportSmil},
                                    {"tpl", clsMMSManager::ExportTemplate},
                                    {"sis", clsMMSManager::ExportPackage},
                                    {"wap", kBinaryMms}};
const std::map<QString, int> kFormats{{"ms", 0}, {"s", 1}};

// The SMIL set first, then FOLDER/mms.wap from it.
int exportBinary(clsMMSManager& manager, clsMessage& message, int format, const QString& target,
                 bool overwrite, bool retrieve) {
    const QString folder = QFileInfo(target).absolutePath() + "/";
    if (!overwrite && QFileInfo::exists(folder + "mms.wap")) {
        CliOutput::error("export: " + folder + "mms.wap already exists");
        return clsMMSManager::ExportExists;
    }
    const int result = manager.ExportMMS(message, clsMMSManager::ExportSmil, format, target, true);
    if (result != clsMMSManager::ExportOk) {
        CliOutput::error("export: " + manager.GetExportImportStatus());
        return result;
    }
    const auto type = retrieve ? MmsPacker::MessageType::RetrieveConfirmation
                               : MmsPacker::MessageType::SendRequest;
    if (manager.SaveAsMMS(folder, "mms", message.MMSFileList(), message.name(), type))
        return 0;
    CliOutput::error("export: " + manager.saveAsMmsStatus());
    return manager.saveAsMmsCode();
}
} // namespace

int ExportCommand::run(const QStringList& original) {
    QStringList arguments = original;
    const bool overwrite = arguments.removeAll("--overwrite") > 0;
    const bool retrieve = arguments.removeAll("--retrieve-conf") > 0;
    const auto kind = kKinds.find(CliOutput::takeOption(arguments, "--kind"));
    const auto format = kFormats.find(CliOutput::takeOption(arguments, "--format"));
    if (arguments.size() != 2 || kind == kKinds.end() || format == kFormats.end() ||
        !arguments[1].endsWith(".smil", Qt::CaseInsensitive))
        return CliOutput::usageError(usage());
    try {
        CliSession session;
        clsMessage* message = session.open(arguments[0]);
        if (!message)
            return clsMMSManager::ExportFailed;
        const QString target = QFileInfo(arguments[1]).absoluteFilePath();
        clsMMSManager& manager = session.manager();
        int result = clsMMSManager::ExportOk;
        if (kind->second == kBinaryMms) {
            result = exportBinary(manager, *message, format->second, target, overwrite, retrieve);
        } else {
            result = manager.ExportMMS(*message, kind->second, format->second, target, overwrite);
            if (result != clsMMSManager::ExportOk)
                CliOutput::error("export: " + manager.GetExportImportStatus());
        }
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
