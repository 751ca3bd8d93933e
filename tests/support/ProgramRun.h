#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// A program run to its end, as a user's script runs it.
struct ProgramRun {
    int code = -1;
    QString out;
    QString err;
};

// Runs program in folder ("" for the current one) with env; a run that has
// not ended after three minutes fails the test.
ProgramRun runProgram(const QString& program, const QStringList& arguments,
                      const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment(),
                      const QString& folder = QString());
// The command line tool of this build.
QString cliProgram();
// The members GNU tar lists in an archive, sorted.
QStringList tarMembers(const QString& archive);
