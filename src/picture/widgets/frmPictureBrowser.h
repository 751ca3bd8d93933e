#pragma once

#include "PrivateTempDir.h"

#include <QDialog>
#include <QFutureWatcher>
#include <QImage>
#include <QKeySequence>
#include <QThreadPool>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;
class ctlPicScroll;

// A window for picking a picture from a folder of pictures in many
// formats: the folder's pictures are listed, the chosen one is shown (read
// off the window's thread, so a large photo never freezes it), and it can
// be turned, mirrored, zoomed and cropped to the slide's proportions before
// it is handed over as a PNG file through AddPicture. The owner copies the
// file; it lives only as long as this window.
class frmPictureBrowser : public QDialog {
    Q_OBJECT
public:
    explicit frmPictureBrowser(QWidget* parent = nullptr);

    void TranslateControl();
    // The size of the slide picture; the crop frame keeps its proportions.
    void setSlideSize(QSize size);
    // Lists the pictures of folder; an empty list for a folder that is missing.
    void setFolder(const QString& folder);
    QString folder() const { return m_folder; }

signals:
    void AddPicture(const QString& file);
    // A picture was shown, or its message, once it had been read.
    void loadFinished(const QString& path);

protected:
    // The folder is remembered however the window is closed.
    void done(int result) override;

private:
    struct Loaded {
        QString path;
        QImage picture;
        QString error;
    };
    static Loaded loadPicture(const QString& path);

    QPushButton* addButton(const char* name, const char* icon, const QKeySequence& keys);
    void buildLayout();
    void connectCommands();
    void describe(QPushButton* button, const QString& text);
    void browseFolder();
    void loadSelected();
    void pictureLoaded();
    void showMessage(const QString& text);
    void enablePictureCommands(bool enabled);
    void showPictureInfo();
    void addToSlide();
    QString freeFileName() const;

    QLineEdit* txtFolder;
    QLabel* lblFolder;
    QPushButton* cmdBrowse;
    QListWidget* lstFiles;
    QLabel* lblFiles;
    QStackedWidget* m_viewArea;
    ctlPicScroll* picView;
    QLabel* lblMessage;
    QLabel* lblInfo;
    QPushButton* cmdRotateLeft;
    QPushButton* cmdRotateRight;
    QPushButton* cmdFlip;
    QPushButton* cmdZoomIn;
    QPushButton* cmdZoomOut;
    QPushButton* cmdRealSize;
    QPushButton* cmdFit;
    QPushButton* cmdCrop;
    QPushButton* cmdAdd;
    QPushButton* cmdClose;

    QString m_folder;
    // The file being read or shown; results for any other are dropped.
    QString m_current;
    QFutureWatcher<Loaded> m_loading;
    // One picture is read at a time; a newer choice drops the one waiting.
    QThreadPool m_reader;
    PrivateTempDir m_handOver;
};
