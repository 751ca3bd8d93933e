#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class QTabWidget;
class QWidget;
class frmHelp;
class frmMain;

// Opens each window of the program the way a user reaches it, with a sample
// message, in one language, and saves a picture of it for the help pages.
// Everything happens in a data folder of its own, so the user's settings and
// archive are never touched.
class HelpShots {
public:
    // With a pages folder, each help page is also saved there whole, to be
    // looked at.
    HelpShots(const QString& language, const QString& folder, const QString& pagesFolder);
    // False when the program did not start or a picture could not be saved;
    // what went wrong is on standard error.
    bool run();

private:
    bool start();
    void shootMainWindow();
    void shootTools();
    void shootRecorder();
    void shootPreview();
    void shootPictureBrowser();
    void shootSettings();
    void shootFileJobs();
    void shootInformation();
    void shootSending();
    void shootAbout();
    void shootHelp();
    void shootPages(frmHelp* help);
    // Shows a window of its own, takes its picture and closes it.
    void shootWindow(QWidget* window, const QString& name);
    void showAsHome(QWidget* window) const;
    void selectCaption() const;
    void save(QWidget* widget, const QString& name, int widest = 0);
    void savePicture(QWidget* widget, const QString& path, int widest = 0);
    void saveTop(QTabWidget* tabs, const QString& name, const QWidget* shown);
    void saveArea(QWidget* widget, const QRect& area, const QString& name);
    void fail(const QString& what);

    frmMain& window() const;
    QString m_language;
    bool m_german;
    QString m_folder;
    QString m_pagesFolder;
    QTemporaryDir m_home;
    bool m_failed = false;
};
