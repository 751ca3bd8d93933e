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
    // Takes "--name VALUE" out of the arguments; "" when it is not there.
    static QString takeOption(QStringList& arguments, const QString& name);
    // Prints the usage text and returns 64, the usual code for a bad command line.
    static int usageError(const QString& usage);
};
