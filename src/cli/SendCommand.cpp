#include "SendCommand.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "MmsImporter.h"
#include "ObexTarget.h"
#include "PhoneFormat.h"
#include "TransferOptions.h"
#include "clsMMSCommunication.h"
#include "clsPropertiesXML.h"

#include <QFileInfo>
#include <optional>

namespace {
struct SendRequest {
    QString file;
    std::optional<int> kind;
    std::optional<QString> target;
};

std::optional<int> kindNamed(const QString& name) {
    if (name == QLatin1String("ir"))
        return 1;
    if (name == QLatin1String("obex"))
        return 2;
    if (name == QLatin1String("suite"))
        return 3;
    return std::nullopt;
}

std::optional<SendRequest> parse(const QStringList& arguments) {
    SendRequest request;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& word = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (word == QLatin1String("--via") && hasValue) {
            request.kind = kindNamed(arguments[++i]);
            if (!request.kind)
                return std::nullopt;
        } else if (word == QLatin1String("--target") && hasValue) {
            request.target = arguments[++i];
        } else if (word.startsWith(QLatin1String("--")) || !request.file.isEmpty()) {
            return std::nullopt;
        } else {
            request.file = word;
        }
    }
    if (request.file.isEmpty())
        return std::nullopt;
    return request;
}

// What goes to the phone for the file: a message of the program's own goes
// as the package or template the phone reads, made in the session's private
// folder; any other file, a received binary message among them, as it is.
QString fileToSend(const QString& file, const clsMMSCommunication& connection,
                   CliSession& session) {
    const bool ownMessage = QFileInfo(file).suffix().compare("mms", Qt::CaseInsensitive) == 0 &&
                            !MmsImporter::isBinaryMms(file);
    if (!ownMessage)
        return QFileInfo(file).absoluteFilePath();
    clsMessage* message = session.open(file);
    const QString folder = session.scratchFolder(QStringLiteral("send"));
    if (!message || folder.isEmpty())
        return QString();
    const QString made = PhoneFormat::make(
        session.manager(), *message, PhoneFormat::wantsPackage(connection.deviceId()), folder);
    if (made.isEmpty())
        CliOutput::error("send: " + session.manager().GetExportImportStatus());
    return made;
}

int send(const SendRequest& request, clsPropertiesXML& settings, CliSession& session) {
    TransferOptions options = TransferOptions::fromSettings(&settings);
    if (request.target) {
        // A target given here is checked here, not taken for a missing connection kind.
        if (const ObexTarget target = ObexTarget::parse(*request.target); !target.isValid()) {
            CliOutput::error("send: " + target.error);
            return clsMMSCommunication::kFailed;
        }
        options.obexTarget = *request.target;
    }
    const int kind = request.kind.value_or(
        request.target ? 2 : settings.GetProp("preferences", "CommunicationType", "1").toInt());

    clsMMSCommunication connection(clsMMSCommunication::adapters(options));
    if (connection.Initialize(kind) == 0 && kind != 0)
        CliOutput::error("send: this connection kind is not available on this computer");
    if (connection.activeKind() == 1)
        connection.SetIrDaCommandline(irDaCommandline(settings));
    connection.waitForConnectionKnown(qMax(options.connectTimeoutMs, options.suiteTimeoutMs) +
                                      1000);

    const QString file = fileToSend(request.file, connection, session);
    if (file.isEmpty())
        return clsMMSCommunication::kFailed;
    const int code = connection.SendFile(file);
    QString line = QStringLiteral("%1 %2").arg(code).arg(SendCommand::meaning(code));
    if (code == clsMMSCommunication::kFailed && !connection.lastFailure().isEmpty())
        line += ": " + connection.lastFailure();
    if (code == clsMMSCommunication::kSent && !connection.deviceName().isEmpty())
        line += " to " + connection.deviceName();
    CliOutput::out(line);
    return code;
}
} // namespace

int SendCommand::run(const QStringList& arguments) {
    const std::optional<SendRequest> request = parse(arguments);
    if (!request)
        return CliOutput::usageError(usage());
    try {
        CliSession session;
        return send(*request, *AppGlobals::settings(), session);
    } catch (const AppError& error) {
        return CliOutput::error("send: " + error.description());
    }
}

QString SendCommand::usage() {
    return QStringLiteral("vellumo-cli send FILE [--via ir|obex|suite] [--target TARGET]");
}

QString SendCommand::meaning(int code) {
    switch (code) {
    case clsMMSCommunication::kSent:
        return QStringLiteral("sent");
    case clsMMSCommunication::kBusy:
        return QStringLiteral("a send is still in progress");
    case clsMMSCommunication::kNoDevice:
        return QStringLiteral("no phone connected");
    default:
        return QStringLiteral("sending failed");
    }
}
