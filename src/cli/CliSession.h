#pragma once

#include "clsMMSManager.h"

#include "CliSettings.h"
#include "PrivateTempDir.h"
#include <QString>

// What every message command needs: the user's settings, opened as the
// program opens them, and a message manager. The manager works in a private
// temporary folder, so a script never disturbs the window's work folder,
// unless a command names a folder of its own.
class CliSession {
public:
    // Throws AppError when the settings cannot be opened.
    CliSession();

    clsMMSManager& manager() { return m_manager; }
    void useWorkFolder(const QString& folder);
    // A folder of the session's own for what it makes; "" when it cannot be made.
    QString scratchFolder(const QString& name) const { return m_temp.subFolder(name); }
    // Opens a message file; prints why and returns nullptr when it cannot.
    clsMessage* open(const QString& file);
    // A renderer at the given surface size (the settings' size when empty).
    void setSurface(const QSize& size);
    // Prints the manager's list of media the opened message was missing.
    void reportMissingMedia() const;

private:
    CliSettings m_settings;
    PrivateTempDir m_temp;
    clsMMSManager m_manager;
};
