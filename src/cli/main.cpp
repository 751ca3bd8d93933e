#include "AudioCommands.h"
#include "CheckCommand.h"
#include "CliOutput.h"
#include "ConvertImageCommand.h"
#include "ExportCommand.h"
#include "FitCommand.h"
#include "FramesCommand.h"
#include "ImportCommand.h"
#include "InfoCommand.h"
#include "MessageScript.h"
#include "NewCommand.h"
#include "PackCommand.h"
#include "PrivateTempDir.h"
#include "RenderCommand.h"
#include "SendCommand.h"
#include "SettingsCommand.h"
#include "SignalCleanup.h"
#include "UnpackCommand.h"

#include <QFile>
#include <QGuiApplication>
#include <functional>
#include <map>

namespace {
int help(const QStringList& arguments);
QString helpUsage() {
    return QStringLiteral("vellumo-cli help [new]");
}

struct Command {
    std::function<int(const QStringList&)> run;
    std::function<QString()> usage;
};

const std::map<QString, Command>& commands() {
    static const std::map<QString, Command> table{
        {"amr2wav", {AudioCommands::amr2wav, AudioCommands::amr2wavUsage}},
        {"check", {CheckCommand::run, CheckCommand::usage}},
        {"convert-image", {ConvertImageCommand::run, ConvertImageCommand::usage}},
        {"export", {ExportCommand::run, ExportCommand::usage}},
        {"fit", {FitCommand::run, FitCommand::usage}},
        {"frames", {FramesCommand::run, FramesCommand::usage}},
        {"help", {help, helpUsage}},
        {"import", {ImportCommand::run, ImportCommand::usage}},
        {"info", {InfoCommand::run, InfoCommand::usage}},
        {"new", {NewCommand::run, NewCommand::usage}},
        {"pack", {PackCommand::run, PackCommand::usage}},
        {"play", {AudioCommands::play, AudioCommands::playUsage}},
        {"render", {RenderCommand::run, RenderCommand::usage}},
        {"send", {SendCommand::run, SendCommand::usage}},
        {"settings", {SettingsCommand::run, SettingsCommand::usage}},
        {"sound-info", {AudioCommands::soundInfo, AudioCommands::soundInfoUsage}},
        {"trim", {AudioCommands::trim, AudioCommands::trimUsage}},
        {"unpack", {UnpackCommand::run, UnpackCommand::usage}},
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

// Without a session (a service, root in a terminal) the platform complains on
// standard error, which belongs to our own messages; give it a folder quietly.
// A private one: a fixed name in the shared temporary folder could be a link
// planted by someone else.
void ensureRuntimeFolder(const PrivateTempDir& runtime) {
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR") && runtime.isValid())
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
}

// The options of "new" are too many for one usage line: they have a page of their own.
int help(const QStringList& arguments) {
    CliOutput::out(arguments.value(0) == QLatin1String("new") ? MessageScript::help()
                                                              : fullUsage());
    return 0;
}
} // namespace

int main(int argc, char* argv[]) {
    // Slides are painted with fonts, which need a GUI application; a script
    // has no window, so it paints off screen unless told otherwise.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // A command ended by Ctrl+C, a kill or a closed pipe leaves no unpacked
    // message behind; what a SIGKILL left is swept up here.
    SignalCleanup::install();
    PrivateTempDir::removeLeftovers();
    const PrivateTempDir runtime;
    ensureRuntimeFolder(runtime);
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName("Vellumo");
    QGuiApplication::setApplicationVersion(VELLUMO_VERSION);
    const QStringList arguments = QGuiApplication::arguments().mid(1);
    const auto command = commands().find(arguments.value(0));
    if (command == commands().end())
        return CliOutput::usageError(fullUsage());
    return command->second.run(arguments.mid(1));
}
