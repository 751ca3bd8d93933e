#pragma once

#include <QLockFile>
#include <QString>
#include <memory>
#include <optional>

// The work folder one running copy of the program holds: the first of BASE,
// BASE-2, BASE-3… that no living copy holds, locked for as long as the claim
// lives, so that a second copy never empties the first one's message. A copy
// that died leaves its lock stale, and its folder, with any unsaved work
// marked beside it, to the next copy that starts.
class WorkFolderClaim {
public:
    static constexpr int kMostCopies = 64;

    // nullptr when every folder is held, or no lock can be written beside them.
    static std::unique_ptr<WorkFolderClaim> claim(const QString& base);

    QString folder() const { return m_folder; }
    // The message file the unsaved work in the folder belongs to ("" for a
    // message never saved); nullopt when the folder holds no unsaved work.
    std::optional<QString> unsavedWork() const;
    // Marks the folder as holding unsaved work of messageFile.
    bool markUnsaved(const QString& messageFile);
    void clearMark();

private:
    WorkFolderClaim(QString folder, std::unique_ptr<QLockFile> lock);
    QString markPath() const;

    QString m_folder;
    std::unique_ptr<QLockFile> m_lock;
};
