#include "ProgramRun.h"

#include <QProcess>
#include <gtest/gtest.h>

ProgramRun runProgram(const QString& program, const QStringList& arguments,
                      const QProcessEnvironment& env, const QString& folder) {
    QProcess process;
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(180000)) << program.toStdString();
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QString cliProgram() {
    return QStringLiteral(VELLUMO_BUILD_DIR) + "/vellumo-cli";
}

QStringList tarMembers(const QString& archive) {
    QStringList names = runProgram("tar", {"tf", archive}).out.split('\n', Qt::SkipEmptyParts);
    names.sort();
    return names;
}
