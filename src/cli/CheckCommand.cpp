#include "CheckCommand.h"

#include "AppError.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "ContentClassChecker.h"

namespace {
constexpr int kNotAMessage = 2;
} // namespace

std::optional<ContentClass::Id> CheckCommand::chosenClass(QStringList& arguments) {
    if (!arguments.contains("--class"))
        return ContentClassChecker::classFromSettings();
    return ContentClass::fromName(CliOutput::takeOption(arguments, "--class"));
}

QStringList CheckCommand::brokenLines(const ContentClassChecker::Report& report) {
    QStringList lines;
    for (const ContentClassChecker::Broken& broken : report.broken)
        lines << broken.text;
    return lines;
}

int CheckCommand::run(const QStringList& original) {
    QStringList arguments = original;
    const std::optional<ContentClass::Id> chosen = chosenClass(arguments);
    if (arguments.size() != 1 || !chosen)
        return CliOutput::usageError(usage());
    try {
        CliSession session;
        clsMessage* message = session.open(arguments[0]);
        if (!message)
            return kNotAMessage;
        QString why;
        const auto report =
            ContentClassChecker::checkMessage(session.manager(), *message, *chosen, &why);
        if (!report) {
            CliOutput::error("check: " + why);
            return kNotAMessage;
        }
        CliOutput::out(report->smallest ? ContentClass::name(*report->smallest) : "none");
        for (const QString& line : brokenLines(*report))
            CliOutput::out(line);
        return report->fits() ? 0 : 1;
    } catch (const AppError& error) {
        CliOutput::error("check: " + error.description());
        return kNotAMessage;
    }
}

QString CheckCommand::usage() {
    QStringList names;
    for (const ContentClass::Limits& limits : ContentClass::table())
        names << QString::fromLatin1(limits.name);
    return "vellumo-cli check FILE.mms [--class \"" + names.join("\"|\"") + "\"]";
}
