#pragma once

#include <QTreeWidget>

// The folder tree of a browser's extended mode: the user's home, desktop and
// documents, and under "Computer" every mounted volume drawn by its kind
// (fixed, removable, network, optical, RAM disk; a network or optical drive
// that does not answer drawn greyed). Folders are read when they are opened,
// so a slow or large volume costs nothing until the user goes there.
class ctlDirTree : public QTreeWidget {
    Q_OBJECT
public:
    enum Role { PathRole = Qt::UserRole + 1, IconKeyRole };

    explicit ctlDirTree(QWidget* parent = nullptr);

    void TranslateControl();
    // Reads the volumes and the top folders anew.
    void Refresh();
    // Opens the tree down to folder and makes it current, without raising folderChosen.
    void selectFolder(const QString& folder);
    QString currentFolder() const;
    // The theme icon an icon key is drawn with.
    static QIcon iconFor(const QString& key);

signals:
    void folderChosen(const QString& folder);

private:
    QTreeWidgetItem* addFolder(QTreeWidgetItem* parent, const QString& path, const QString& caption,
                               const QString& iconKey);
    void addVolumes(QTreeWidgetItem* computer);
    void fillChildren(QTreeWidgetItem* item);
    QTreeWidgetItem* childFor(QTreeWidgetItem* item, const QString& folder);
    static QString kindCaption(const QString& iconKey);

    bool m_selecting = false;
};
