#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

// What vellumo-cli prints: results on standard output, one-line errors on
// standard error with a non-zero exit code.
class CliOutput {
public:
    static void out(const QString& line);
    // Prints "vellumo-cli: <message>" and returns 1.
    static int error(const QString& message);
    // Prints "vellumo-cli: warning: <message>" and goes on.
    static void warning(const QString& message);
    // "slide N of COUNT" on one line of a terminal, rewritten as work goes on.
    static void progress(int slide, int count);
    // Parses "WxH" ("176x144"); an invalid size when the text is not one.
    static QSize parseSize(const QString& text);
    // Parses the value of an option giving a picture size into size; the
    // text for the user ("--size: ...") when it is no size or one beyond
    // the program's picture limits, empty when it can be used.
    static QString pictureSize(const QString& option, const QString& text, QSize& size);
    // Takes "--name VALUE" out of the arguments; "" when it is not there.
    static QString takeOption(QStringList& arguments, const QString& name);
    // Prints "vellumo-cli: <command>: <message>" for an option the command
    // cannot take and returns 64, the usual code for a bad command line.
    static int optionError(const QString& command, const QString& message);
    // Prints the usage text and returns 64.
    static int usageError(const QString& usage);
};
