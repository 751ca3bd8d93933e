#pragma once

#include <QString>
#include <QTemporaryDir>

// A temporary folder of this process alone: a fresh name that nobody could
// have planted a link under, mode 0700, removed when the object goes and when
// a signal ends the process. Its name carries the process id
// ("Vellumo-<pid>-XXXXXX"), so what a killed process left can be told from
// what a running one still uses.
class PrivateTempDir {
public:
    PrivateTempDir();
    ~PrivateTempDir();
    PrivateTempDir(const PrivateTempDir&) = delete;
    PrivateTempDir& operator=(const PrivateTempDir&) = delete;

    bool isValid() const { return m_dir.isValid(); }
    // Without a trailing "/".
    QString path() const { return m_dir.path(); }
    QString errorString() const { return m_dir.errorString(); }
    // Creates sub (a plain name) inside the folder; its path with a trailing "/",
    // or "" when it cannot be made.
    QString subFolder(const QString& sub) const;

    // Removes the folders of this user's processes that are gone. Returns how
    // many were removed.
    static int removeLeftovers();

private:
    QTemporaryDir m_dir;
    int m_slot = -1;
};
