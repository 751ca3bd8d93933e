#include "CliOutput.h"

#include <QTextStream>

void CliOutput::out(const QString& line) {
    QTextStream(stdout) << line << Qt::endl;
}

int CliOutput::error(const QString& message) {
    QTextStream(stderr) << "vellumo-cli: " << message << Qt::endl;
    return 1;
}

int CliOutput::usageError(const QString& usage) {
    QTextStream(stderr) << "usage: " << usage << Qt::endl;
    return 64;
}
