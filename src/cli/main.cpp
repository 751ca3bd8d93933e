#include "AudioCommands.h"
#include "CliOutput.h"
#include "ConvertImageCommand.h"
#include "SettingsCommand.h"

#include <QCoreApplication>
#include <functional>
#include <map>

namespace {
struct Command {
    std::function<int(const QStringList&)> run;
    std::function<QString()> usage;
};

const std::map<QString, Command>& commands() {
    static const std::map<QString, Command> table{
        {"amr2wav", {AudioCommands::amr2wav, AudioCommands::amr2wavUsage}},
        {"convert-image", {ConvertImageCommand::run, ConvertImageCommand::usage}},
        {"play", {AudioCommands::play, AudioCommands::playUsage}},
        {"settings", {SettingsCommand::run, SettingsCommand::usage}},
        {"sound-info", {AudioCommands::soundInfo, AudioCommands::soundInfoUsage}},
        {"trim", {AudioCommands::trim, AudioCommands::trimUsage}},
        {"wav2amr", {AudioCommands::wav2amr, AudioCommands::wav2amrUsage}},
    };
    return table;
}

QString fullUsage() {
    QString text = QStringLiteral("vellumo-cli COMMAND ...\n");
    for (const auto& [name, command] : commands())
        text += command.usage() + "\n";
    return text.trimmed();
}
} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("Vellumo");
    QCoreApplication::setApplicationVersion(VELLUMO_VERSION);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const auto command = commands().find(arguments.value(0));
    if (command == commands().end())
        return CliOutput::usageError(fullUsage());
    return command->second.run(arguments.mid(1));
}
