#include "MainWindowFixture.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "ProgramRun.h"
#include "SettingsBootstrap.h"
#include "clsPropertiesXML.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

void MainWindowFixture::SetUp() {
    TempDataHome::SetUp();
    AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
    setting("ShowSplash", "0");
}

void MainWindowFixture::TearDown() {
    m_window.reset();
    DialogService::clear();
    TempDataHome::TearDown();
}

void MainWindowFixture::setting(const char* key, const QString& value) {
    AppGlobals::settings()->SetProp("preferences", key, value);
}

frmMain& MainWindowFixture::window() {
    if (!m_window) {
        m_window = std::make_unique<frmMain>();
        m_window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    }
    return *m_window;
}

bool MainWindowFixture::chooseMenuItem(int menu, const char* key, const char* fallback) {
    QMenuBar* bar = window().menuBar();
    bar->setActiveAction(bar->actions().at(menu));
    auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!popup)
        return false;
    const QString caption = AppGlobals::text(key, fallback).remove(u'&');
    for (QAction* action : popup->actions()) {
        if (action->text().remove(u'&').section(u'\t', 0, 0) != caption)
            continue;
        if (!action->isEnabled())
            break;
        popup->setActiveAction(action);
        QTest::keyClick(popup, Qt::Key_Return);
        return true;
    }
    popup->close();
    return false;
}

QString MainWindowFixture::cliInfo(const QString& file) {
    return runProgram(cliProgram(), {"info", file}).out;
}
