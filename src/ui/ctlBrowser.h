#pragma once

#include <QColor>
#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>
#include <QWidget>

class MediaFolderModel;
class MediaThumbDelegate;
class QLabel;
class QListView;
class QPushButton;
class QSplitter;
class ctlDirTree;

// One media browser: the files of a folder that match its patterns, shown
// as thumbnails, with Add (also a double click or Enter), Browse and Delete.
// It hands files to the main window, which puts them on the slide; dragging
// a thumbnail onto the slide picture places it where it is dropped. The list
// follows the folder: files that appear, go or change are shown at once.
class ctlBrowser : public QWidget {
    Q_OBJECT
public:
    // The kinds of browser: they decide how a file is drawn and what Browse offers.
    enum ThumbType { Backgrounds = 1, Pictures = 2, Sounds = 3, Animations = 4 };

    explicit ctlBrowser(QWidget* parent = nullptr);

    void TranslateControl();
    void SetBrowserThumbType(int thumbType);
    int thumbType() const;
    // 0 stretches a picture to the thumbnail's frame, 1 keeps its proportions.
    void SetPictureStretchMode(int mode);
    // The ","-separated patterns; the list is filtered anew at once.
    void setFiles(const QString& patterns);
    QString Files() const;
    // For sounds: one icon number per pattern, ","-separated.
    void setIcons(const QString& icons);
    // The folder shown when none is chosen yet, and the folder shown now.
    void SetBrowserDefaultDir(const QString& folder);
    QString GetBrowserDir() const;
    void setPath(const QString& folder);
    // Reads the folder anew with the current patterns.
    void LoadFiles();
    // With the extended mode on, a folder tree beside the list picks the folder.
    void UseExternalBrowser(bool on);
    bool externalBrowser() const { return m_tree != nullptr; }
    void SetControlBackColor(const QColor& colour);
    void setCaption(const QString& caption);
    QString Caption() const { return m_caption; }
    void setCaptionVisible(bool visible);
    void setButtonsVisible(bool visible);
    void setControlsEnabled(bool enabled);
    void setThumbSize(QSize size);
    // A button of the owner's at the end of the row (it takes the button).
    void addButton(QPushButton* button);

    // The chosen file's name (without folder) and its 1-based index; "" and 0 for none.
    QString filename() const;
    int selectedIndex() const;
    void selectIndex(int index);
    QListView* list() const { return m_list; }
    MediaFolderModel* model() const { return m_model; }
    ctlDirTree* folderTree() const { return m_tree; }

    void addSelected();
    void browse();
    void deleteSelected();

signals:
    void thumbSelected(int index, const QString& file);
    // folder ends in "/"; the main window joins the two.
    void addFile(const QString& folder, const QString& file);
    void fileBrowsed(const QString& path);
    void browseCancelled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildLayout();
    void watchFolder();
    void prioritizeInSight();
    QString browseFilter() const;
    void inform(const QString& text, const QString& title);

    MediaFolderModel* m_model;
    MediaThumbDelegate* m_delegate;
    QLabel* m_title;
    QListView* m_list;
    QSplitter* m_split;
    ctlDirTree* m_tree = nullptr;
    QWidget* m_buttons;
    QPushButton* m_add;
    QPushButton* m_browse;
    QPushButton* m_delete;
    QString m_caption;
    QString m_defaultFolder;
    QString m_path;
    QFileSystemWatcher m_watcher;
    QTimer m_reload;
    QTimer m_inSight;
};
