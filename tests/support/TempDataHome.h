#pragma once

#include "QtPrinters.h"
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// A test with its own program folder (a copy of the shipped data) and its own
// user data folder (XDG_DATA_HOME), so nothing touches the real ones.
class TempDataHome : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Files in the temporary folders.
    QString programFile(const QString& relative) const;
    QString dataFile(const QString& relative) const;
    static QString readFile(const QString& path);
    static void writeFile(const QString& path, const QByteArray& bytes);

    QTemporaryDir m_root;
    QString m_programFolder;
    QString m_dataHome;
};
