#include "frmMain.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "frmHelp.h"

#include "clsXMLocalizer.h"
#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>

frmMain::frmMain(QWidget* parent) : QMainWindow(parent) {
    setObjectName("frmMain");
    buildMenus();
    lblWelcome = new QLabel(this);
    lblWelcome->setObjectName("lblWelcome");
    lblWelcome->setAlignment(Qt::AlignCenter);
    lblWelcome->setWordWrap(true);
    setCentralWidget(lblWelcome);
    resize(800, 600);
    TranslateForm();
}

void frmMain::buildMenus() {
    mnuFile = menuBar()->addMenu(QString());
    mnuFile->setObjectName("mnuFile");
    mnuFileExit = mnuFile->addAction(QString(), this, &QWidget::close);
    mnuFileExit->setObjectName("mnuFileExit");
    mnuFileExit->setShortcut(QKeySequence::Quit);

    mnuHelp = menuBar()->addMenu(QString());
    mnuHelp->setObjectName("mnuHelp");
    mnuHelpContents = mnuHelp->addAction(QString(), this, &frmMain::showHelp);
    mnuHelpContents->setObjectName("mnuHelpContents");
    mnuHelpContents->setShortcut(QKeySequence::HelpContents);
    mnuHelpAbout = mnuHelp->addAction(QString(), this, &frmMain::showAbout);
    mnuHelpAbout->setObjectName("mnuHelpAbout");
}

void frmMain::setMessageFileName(const QString& fileName) {
    m_messageFileName = fileName;
    setWindowTitle(windowCaption());
}

QString frmMain::windowCaption() const {
    const QString name = m_messageFileName.isEmpty()
                             ? AppGlobals::text("STR_UNTITLED", "Untitled") + ".mms"
                             : QFileInfo(m_messageFileName).fileName();
    return name + " -" + applicationTitle();
}

void frmMain::TranslateForm() {
    if (clsXMLocalizer* localizer = AppGlobals::localizer())
        localizer->TranslateForm(this);
    setWindowTitle(windowCaption());
}

void frmMain::bringToFront() {
    showNormal();
    raise();
    activateWindow();
}

void frmMain::showHelp() {
    const QString file = AppGlobals::helpFile();
    if (file.isEmpty() || !QFileInfo::exists(file)) {
        const QString text = AppGlobals::localizer()
                                 ? AppGlobals::localizer()->GetStringPar("STR_HELP_MISSING", {file})
                                 : QString();
        DialogService::messageBox(this, text.isEmpty() ? file : text,
                                  AppGlobals::text("APP_PRODUCTNAME", applicationTitle()),
                                  QMessageBox::Ok, QMessageBox::Information);
        return;
    }
    frmHelp::showFile(file, this);
}

void frmMain::showAbout() {
    const QString version = QApplication::applicationVersion();
    DialogService::messageBox(
        this, applicationTitle() + AppGlobals::text("STR_ABOUT_VERSION", " version: ") + version,
        AppGlobals::text("APP_PRODUCTNAME", applicationTitle()), QMessageBox::Ok,
        QMessageBox::Information);
}
