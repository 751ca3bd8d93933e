#include "MainWindowFixture.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "ProgramRun.h"
#include "SettingsBootstrap.h"
#include "clsPropertiesXML.h"

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

QString MainWindowFixture::cliInfo(const QString& file) {
    return runProgram(cliProgram(), {"info", file}).out;
}
