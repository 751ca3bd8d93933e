#pragma once

#include <QMainWindow>
#include <QString>

class QAction;
class QLabel;
class QMenu;

// The composer's main window. For now a shell: title, menus for leaving the
// program and for help, and bringing itself forward when another copy asks.
class frmMain : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMain(QWidget* parent = nullptr);

    // The message file shown in the title; empty for a message never saved.
    void setMessageFileName(const QString& fileName);
    QString messageFileName() const { return m_messageFileName; }
    // The file name or "Untitled.mms", then " -" and the application title.
    QString windowCaption() const;

    void TranslateForm();
    void bringToFront();

    static QString applicationTitle() { return QStringLiteral("Vellumo"); }

private:
    void buildMenus();
    void showHelp();
    void showAbout();

    QString m_messageFileName;
    QMenu* mnuFile = nullptr;
    QMenu* mnuHelp = nullptr;
    QAction* mnuFileExit = nullptr;
    QAction* mnuHelpContents = nullptr;
    QAction* mnuHelpAbout = nullptr;
    QLabel* lblWelcome = nullptr;
};
