#pragma once

#include <QString>
#include <QStringList>

class clsPropertiesXML;

// The message files opened last, for the File menu's Recent sub-menu, kept in
// settings section "RecentFiles". Item i (from 1) of the sub-menu carries the
// number i * 256 + 9: its low byte is the Recent command, its high byte which
// file it was.
class RecentFilesList {
public:
    static constexpr int RecentCommand = 9;

    void SetRecentFilesListSize(int size);
    int size() const { return m_size; }
    // When the list is full the oldest entry goes first, even for a path that
    // is there already, which keeps its place.
    void AddToRecentFilesList(const QString& path);
    void RemoveFromRecentFilesList(const QString& path);
    QStringList GetRecentFilesList() const { return m_paths; }
    void SetRecentFilesList(const QStringList& paths);

    // Takes a number the Recent sub-menu reported; true when it was one of its
    // items, which is then the selected file.
    bool choose(int number);
    QString GetRecentSelectedFile() const { return m_paths.value(m_selected - 1); }

    // The sub-menu as a descriptor entry: caption, then one item per file,
    // disabled when there is none. Paths are shown as they are, but for the
    // characters the descriptor reserves, which are shown by look-alikes.
    QString descriptor(const QString& caption) const;

    void load(clsPropertiesXML& settings);
    void save(clsPropertiesXML& settings) const;

private:
    static QString shown(const QString& path);

    QStringList m_paths;
    int m_size = 8;
    int m_selected = 0;
};
