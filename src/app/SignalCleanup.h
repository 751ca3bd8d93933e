#pragma once

#include <QString>

// Folders that must not outlive the process, even when it is ended by a
// signal: a user's Ctrl+C, a "kill", or a pipe closed under it ("| head -1").
// On SIGINT, SIGTERM, SIGHUP, SIGQUIT and SIGPIPE the registered folders are
// removed with only async-signal-safe calls, then the signal takes its usual
// course, so the exit status says what ended the process. (SIGKILL cannot be
// caught: PrivateTempDir::removeLeftovers sweeps up after it at a later start.)
class SignalCleanup {
public:
    // Installs the handlers; later calls do nothing.
    static void install();
    // Remembers a folder; returns its slot, or -1 when all slots are taken.
    static int add(const QString& folder);
    static void remove(int slot);
};
