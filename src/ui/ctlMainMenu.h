#pragma once

#include "RecentFilesList.h"

#include <QHash>
#include <QMenuBar>
#include <QSet>

class QMenu;

// The main window's menu bar: File, Edit, Slide and Help. Each menu is built
// anew from its descriptor whenever it opens, so enabled items, import and
// export and the recent files are always as they are now. A chosen item is
// reported by its number; the standard shortcuts reach the same numbers while
// the menus are closed.
class ctlMainMenu : public QMenuBar {
    Q_OBJECT
public:
    enum Menu { FileMenu = 0, SlideMenu = 1, HelpMenu = 2, EditMenu = 3 };
    // The Slide menu's commands are the strip's, numbered ten higher.
    static constexpr int SlideCommandOffset = 10;
    enum Command {
        New = 1,
        Open = 2,
        Save = 3,
        SaveAs = 4,
        Import = 5,
        Export = 6,
        Info = 7,
        Settings = 8,
        Recent = 9,
        Exit = 10,
        AddSlide = 11,
        InsertBefore = 13,
        InsertAfter = 14,
        DuplicateBefore = 16,
        DuplicateAfter = 17,
        DeleteSlide = 19,
        DeleteImage = 20,
        DeleteSound = 21,
        DeleteText = 22,
        Background = 23,
        Preview = 24,
        DownloadPicture = 25,
        ShowPreview = 26,
        Help = 27,
        About = 28,
        Undo = 29,
        Redo = 30,
        MoveSlideUp = 31,
        MoveSlideDown = 32,
        SendMessage = 33,
        FitToClass = 34,
    };

    explicit ctlMainMenu(QWidget* parent = nullptr);

    void TranslateControl();
    // The skin behind the titles.
    void SetBackground(const QPixmap& picture, const QColor& colour);
    void MenuEnabled(int menu, bool enabled);
    void MenuItemEnabled(int number, bool enabled);
    bool isItemEnabled(int number) const { return !m_disabled.contains(number); }
    void EnableExportImport(bool enabled);
    bool exportImportEnabled() const { return m_exportImport; }
    RecentFilesList& recentFiles() { return m_recent; }
    QString GetRecentSelectedFile() const { return m_recent.GetRecentSelectedFile(); }
    // The descriptor the menu is built from when it opens.
    QString descriptor(int menu) const;
    // Registers the shortcuts with the window, so they work with menus closed.
    void installShortcuts(QWidget* window);

signals:
    void MenuClick(int number);

private:
    void rebuild(int menu);
    void scheduleRebuild();
    void showShortcuts(QMenu& menu) const;
    void reportChoices(QMenu& menu);
    void onTriggered(QAction* action);
    QString item(const char* key, const char* fallback, int number) const;
    QString fileDescriptor() const;
    QString slideDescriptor() const;

    QMenu* m_menus[4] = {};
    QSet<int> m_disabled;
    bool m_exportImport = false;
    bool m_rebuildPending = false;
    RecentFilesList m_recent;
    QHash<int, QAction*> m_shortcuts;
};
