#include "FitCommand.h"

#include "AppError.h"
#include "CheckCommand.h"
#include "CliOutput.h"
#include "CliSession.h"
#include "MessageFitter.h"

#include <QFileInfo>

namespace {
constexpr int kNotAMessage = 2;

// The fitted message goes to its own file: the original is never replaced.
bool sameFile(const QString& a, const QString& b) {
    const QFileInfo first(a);
    const QFileInfo second(b);
    return first.absoluteFilePath() == second.absoluteFilePath() ||
           (first.exists() && second.exists() &&
            first.canonicalFilePath() == second.canonicalFilePath());
}

int fitInto(CliSession& session, clsMessage& message, ContentClass::Id id, const QString& target) {
    MessageFitter fitter(session.manager());
    const MessageFitter::Result result = fitter.fit(message, id);
    for (const QString& change : result.changes)
        CliOutput::out(change);
    if (!result.error.isEmpty()) {
        CliOutput::error("fit: " + result.error);
        return kNotAMessage;
    }
    session.setSurface(QSize());
    if (!session.manager().SaveMsg(QFileInfo(target).absoluteFilePath()))
        return CliOutput::error("fit: " + session.manager().lastError());
    for (const QString& line : CheckCommand::brokenLines(result.report))
        CliOutput::out(line);
    return result.fits() ? 0 : 1;
}
} // namespace

int FitCommand::run(const QStringList& original) {
    QStringList arguments = original;
    if (!arguments.contains("--class"))
        return CliOutput::usageError(usage());
    const std::optional<ContentClass::Id> id = CheckCommand::chosenClass(arguments);
    if (arguments.size() != 2 || !id)
        return CliOutput::usageError(usage());
    if (sameFile(arguments[0], arguments[1]))
        return CliOutput::error("fit: the fitted message must not replace " + arguments[0]);
    try {
        CliSession session;
        clsMessage* message = session.open(arguments[0]);
        if (!message)
            return kNotAMessage;
        return fitInto(session, *message, *id, arguments[1]);
    } catch (const AppError& error) {
        CliOutput::error("fit: " + error.description());
        return kNotAMessage;
    }
}

QString FitCommand::usage() {
    return QStringLiteral("vellumo-cli fit FILE.mms --class NAME OUT.mms");
}
