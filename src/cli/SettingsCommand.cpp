#include "SettingsCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "SettingsBootstrap.h"
#include "clsPropertiesXML.h"

int SettingsCommand::run(const QStringList& arguments) {
    const QString verb = arguments.value(0);
    const bool get =
        verb == QLatin1String("get") && (arguments.size() == 3 || arguments.size() == 4);
    const bool set = verb == QLatin1String("set") && arguments.size() == 4;
    if (!get && !set)
        return CliOutput::usageError(usage());
    try {
        auto settings = SettingsBootstrap::openAndPrepare();
        if (get) {
            CliOutput::out(settings->GetProp(arguments[1], arguments[2], arguments.value(3)));
            return 0;
        }
        if (arguments[2].isEmpty())
            return CliOutput::error("settings: the key name must not be empty");
        settings->SetProp(arguments[1], arguments[2], arguments[3]);
        if (settings->isDirty() && !settings->SaveXmlFile())
            return CliOutput::error("settings: cannot write " + settings->XmlFileName());
        return 0;
    } catch (const AppError& error) {
        return CliOutput::error("settings: " + error.description());
    }
}

QString SettingsCommand::usage() {
    return QStringLiteral("vellumo-cli settings get SECTION KEY [DEFAULT]\n"
                          "vellumo-cli settings set SECTION KEY VALUE");
}
