#include "CliOutput.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "PictureLimits.h"

#include <QStringList>
#include <QTextStream>

void CliOutput::out(const QString& line) {
    QTextStream(stdout) << line << Qt::endl;
}

int CliOutput::error(const QString& message) {
    QTextStream(stderr) << "vellumo-cli: " << message << Qt::endl;
    return 1;
}

int CliOutput::optionError(const QString& command, const QString& message) {
    error(command + ": " + message);
    return 64;
}

int CliOutput::usageError(const QString& usage) {
    QTextStream(stderr) << "usage: " << usage << Qt::endl;
    return 64;
}

void CliOutput::warning(const QString& message) {
    QTextStream(stderr) << "vellumo-cli: warning: " << message << Qt::endl;
}

void CliOutput::progress(int slide, int count) {
    // Every slide would cost more time on a slow terminal than the work itself.
    constexpr int kStep = 100;
    if (slide % kStep != 0 && slide != count)
        return;
    QTextStream(stderr) << "\rvellumo-cli: slide " << slide << " of " << count
                        << (slide == count ? "\n" : "") << Qt::flush;
}

QSize CliOutput::parseSize(const QString& text) {
    const QStringList parts = text.toLower().split(QLatin1Char('x'));
    bool okWidth = false, okHeight = false;
    const QSize size(parts.value(0).toInt(&okWidth), parts.value(1).toInt(&okHeight));
    return parts.size() == 2 && okWidth && okHeight && size.width() > 0 && size.height() > 0
               ? size
               : QSize();
}

QString CliOutput::pictureSize(const QString& option, const QString& text, QSize& size) {
    size = parseSize(text);
    if (!size.isValid())
        return AppGlobals::text("ERR_CLI_OPTION_SIZE", "%0: %1 is not a size as WIDTHxHEIGHT",
                                {option, text});
    try {
        // Checked before a single pixel is made: a mistyped size once took gigabytes.
        PictureLimits::check(size, option);
        return QString();
    } catch (const AppError& error) {
        return option + ": " + error.description();
    }
}

QString CliOutput::takeOption(QStringList& arguments, const QString& name) {
    const qsizetype at = arguments.indexOf(name);
    if (at < 0 || at + 1 >= arguments.size())
        return QString();
    const QString value = arguments[at + 1];
    arguments.remove(at, 2);
    return value;
}
