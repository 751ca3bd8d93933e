#pragma once

#include "ConnectionAdapter.h"

#include <QTimer>

class QProcess;

// The infrared kind: an outside program sends the file. Its command line has
// "%f%" where the file path goes; the phone counts as connected while the
// program is installed, and the program's exit code tells how the send ended.
class CommandLineAdapter : public ConnectionAdapter {
    Q_OBJECT
public:
    CommandLineAdapter(const QString& commandLine, int recheckIntervalMs,
                       QObject* parent = nullptr);
    ~CommandLineAdapter() override;

    void StartMonitoring() override;
    bool SendFile(const QString& path) override;
    void setCommandLine(const QString& commandLine) override;
    bool connectionKnown() const override { return m_monitoring; }

    // The program and its arguments for one file: the command line split at
    // blanks (double quotes group words and are dropped), then "%f%" replaced
    // in every word, so a path with blanks stays one argument.
    static QStringList argumentsFor(const QString& commandLine, const QString& path);

private:
    void checkInstalled();
    void onFinished();
    QString programName() const;

    QString m_commandLine;
    bool m_monitoring = false;
    bool m_installed = false;
    QString m_device;
    QString m_checkedProgram;
    QTimer m_recheck;
    QProcess* m_process = nullptr;
};
