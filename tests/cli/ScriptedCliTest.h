#pragma once

#include "ProgramRun.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Programs run as a user's script runs them: in a folder of the test's own,
// with a data folder of their own.
class ScriptedCliTest : public ::testing::Test {
protected:
    ProgramRun run(const QString& program, const QStringList& arguments) const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_DATA_HOME", m_home.path() + "/xdg");
        return runProgram(program, arguments, env, m_home.path());
    }
    ProgramRun cli(const QStringList& arguments) const { return run(cliProgram(), arguments); }
    QString path(const QString& name) const { return m_home.path() + "/" + name; }

    QTemporaryDir m_home;
};
