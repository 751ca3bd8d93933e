#pragma once

#include <QString>
#include <cstdint>

class QProcess;

// Starts one outside program and lets the caller poll it: whether it still
// runs, how it ended, and kill it. Callers poll from timers or from waiting
// loops that pump events, so nothing here blocks for long.
class clsRunPgm {
public:
    clsRunPgm();
    // A program still running when its runner goes away is killed.
    ~clsRunPgm();
    clsRunPgm(const clsRunPgm&) = delete;
    clsRunPgm& operator=(const clsRunPgm&) = delete;

    // Starts folder + command line. The folder may use "\" like stored paths;
    // the command line is split at blanks with double quotes kept together,
    // and its first word is the program. The window style has no meaning for
    // programs here and is accepted for the callers' sake. Does nothing while
    // a program runs. Returns the running flag.
    bool run(const QString& folder, const QString& commandLine, std::int16_t windowStyle);
    bool isActive();
    // The exit code seen by the last isActive(); 1 when the program was gone.
    std::int32_t GetExitCode() const { return m_exitCode; }
    // True when a program may still be running: the sense is inverted on
    // purpose, callers depend on it. Kills the program when one runs.
    bool terminate();
    // Forgets the program without touching it; it keeps running on its own.
    bool terminated();

    std::int32_t processId() const { return m_processId; }
    bool running() const { return m_running; }

private:
    void releaseProcess();

    QProcess* m_process = nullptr;
    bool m_running = false;
    std::int32_t m_processId = 0;
    std::int32_t m_exitCode = 0;
};
